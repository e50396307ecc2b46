#include "platform/network/NetworkHttpClient.h"

#include "platform/network/CurlSession.h"
#include "platform/network/HttpRequestOperation.h"

namespace tickwise {

NetworkHttpClient::NetworkHttpClient(QByteArray authorities, std::function<bool()> hasNetwork,
                                     AuthorityFiles systemAuthorities)
    : m_authorities(std::move(authorities))
    , m_hasNetwork(std::move(hasNetwork))
    , m_systemAuthorities(std::move(systemAuthorities))
    , m_session(std::make_shared<CurlSession>())
{
}

NetworkHttpClient::~NetworkHttpClient() = default;

Subscription NetworkHttpClient::send(const HttpRequest &request, Completion<HttpResponse> done)
{
    HttpRequestContext context{m_session, m_proxies, m_lifetime, m_authorities, m_systemAuthorities, m_hasNetwork};
    return Subscription(std::make_unique<HttpRequestOperation>(std::move(context), request, std::move(done)));
}

// Requests under way keep the session in which they began.
void NetworkHttpClient::forgetConnections()
{
    m_session = std::make_shared<CurlSession>();
    m_proxies.reset();
}

} // namespace tickwise
