#pragma once

#include "market/HttpClient.h"
#include "platform/network/NetworkWatch.h"
#include "platform/network/SystemProxies.h"

namespace tickwise {

class CurlSession;

/// HTTP/1.1 over libcurl: certificates verified, the system's proxies (never for loopback addresses), connections kept
/// alive, nothing cached, no cookies, at most five redirects and none from https to http.
///
/// Errors are `UrlLoadingError` with libcurl's text as detail; a status of 400 and above is a response. A sink that
/// takes no bytes ends in `FileError`. Destroying the client ends what is under way with `cancelled`.
class NetworkHttpClient : public HttpClient
{
public:
    /// `authorities` are PEM certificates, trusted instead of the system's if there are any; `hasNetwork` is asked only
    /// to tell why a host was not found or not reached.
    explicit NetworkHttpClient(QByteArray authorities = {}, std::function<bool()> hasNetwork = machineHasNetwork);
    ~NetworkHttpClient() override;

    [[nodiscard]] Subscription send(const HttpRequest &request, Completion<HttpResponse> done) override;

    /// Requests from now on go over new connections: those that are kept do not survive sleep or another network.
    void forgetConnections();

private:
    QByteArray m_authorities;
    std::function<bool()> m_hasNetwork;
    SystemProxies m_proxies;
    std::shared_ptr<CurlSession> m_session;
    QObject m_lifetime;
};

} // namespace tickwise
