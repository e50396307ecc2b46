#include "platform/NetworkHttpClient.h"

#include "platform/NetworkTransfer.h"

#include <QHostAddress>
#include <QNetworkInformation>
#include <QNetworkInterface>
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

bool isUsable(const QNetworkInterface &interface)
{
    const QNetworkInterface::InterfaceFlags flags = interface.flags();
    return flags.testFlag(QNetworkInterface::IsUp) && flags.testFlag(QNetworkInterface::IsRunning) &&
           !flags.testFlag(QNetworkInterface::IsLoopBack) && !interface.addressEntries().isEmpty();
}

} // namespace

bool machineHasNetwork()
{
    const QNetworkInformation *information = QNetworkInformation::instance();
    if (information && information->reachability() == QNetworkInformation::Reachability::Disconnected)
        return false;
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    return std::any_of(interfaces.begin(), interfaces.end(), isUsable);
}

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
