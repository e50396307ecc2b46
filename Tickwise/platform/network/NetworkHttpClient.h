#pragma once

#include "market/HttpClient.h"
#include "platform/network/NetworkWatch.h"
#include "platform/network/SystemAuthorities.h"
#include "platform/network/SystemProxies.h"

namespace tickwise {

class CurlSession;

/// HTTP/1.1 over libcurl: certificates verified, the system's proxies (never for loopback addresses), connections kept
/// alive, nothing cached, no cookies, at most five redirects and none from https to http.
///
/// Errors are `UrlLoadingError` with libcurl's text as detail; a status of 400 and above is a response. A sink that
/// cannot be written to ends in `FileError`. Destroying the client ends the requests under way with `cancelled`.
class NetworkHttpClient : public HttpClient
{
public:
    /// `authorities` are PEM certificates, trusted instead of the system's if there are any; `hasNetwork` only decides
    /// how a host that was not found or not reached is reported.
    explicit NetworkHttpClient(QByteArray authorities = {}, std::function<bool()> hasNetwork = machineHasNetwork,
                               AuthorityFiles systemAuthorities = systemAuthorityFiles());
    ~NetworkHttpClient() override;

    [[nodiscard]] Subscription send(const HttpRequest &request, Completion<HttpResponse> done) override;

    /// Makes later requests open new connections and ask for proxies anew: after sleep or on another network the kept
    /// ones are of no use.
    void forgetConnections();

private:
    QByteArray m_authorities;
    std::function<bool()> m_hasNetwork;
    AuthorityFiles m_systemAuthorities;
    SystemProxies m_proxies;
    std::shared_ptr<CurlSession> m_session;
    QObject m_lifetime;
};

} // namespace tickwise
