#include "platform/network/NetworkHttpClient.h"

#include "platform/network/CurlSession.h"
#include "platform/network/NetworkTransfer.h"

namespace tickwise {

NetworkHttpClient::NetworkHttpClient(QByteArray authorities, std::function<bool()> hasNetwork)
    : m_authorities(std::move(authorities))
    , m_hasNetwork(std::move(hasNetwork))
    , m_session(std::make_shared<CurlSession>())
{
}

NetworkHttpClient::~NetworkHttpClient() = default;

Subscription NetworkHttpClient::send(const HttpRequest &request, Completion<HttpResponse> done)
{
    TransferNetwork network{m_session, m_proxies, m_lifetime, m_authorities, m_hasNetwork};
    return Subscription(std::make_unique<NetworkTransfer>(std::move(network), request, std::move(done)));
}

// Requests under way hold the session that they began in.
void NetworkHttpClient::forgetConnections()
{
    m_session = std::make_shared<CurlSession>();
    m_proxies.startAnew();
}

} // namespace tickwise
