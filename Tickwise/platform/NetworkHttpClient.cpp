#include "platform/NetworkHttpClient.h"

#include "platform/NetworkTransfer.h"

#include <QHostAddress>
#include <QNetworkProxyFactory>

namespace tickwise {

namespace {

bool isLoopback(const QString &host)
{
    return host == QStringLiteral("localhost") || QHostAddress(host).isLoopback();
}

class SystemProxies : public QNetworkProxyFactory
{
public:
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery &query) override
    {
        return isLoopback(query.peerHostName()) ? QList{QNetworkProxy(QNetworkProxy::NoProxy)}
                                                : systemProxyForQuery(query);
    }
};

} // namespace

NetworkHttpClient::NetworkHttpClient(const QSslConfiguration &tls, std::function<bool()> hasNetwork)
    : m_tls(tls)
    , m_hasNetwork(std::move(hasNetwork))
{
    m_tls.setPeerVerifyMode(QSslSocket::VerifyPeer);
    m_manager.setProxyFactory(new SystemProxies);
}

Subscription NetworkHttpClient::send(const HttpRequest &request, Completion<HttpResponse> done)
{
    return Subscription(std::make_unique<NetworkTransfer>(m_manager, m_tls, m_hasNetwork, request, std::move(done)));
}

} // namespace tickwise
