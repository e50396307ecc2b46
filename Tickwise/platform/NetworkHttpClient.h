#pragma once

#include "market/HttpClient.h"
#include "platform/NetworkWatch.h"

#include <QNetworkAccessManager>
#include <QSslConfiguration>

namespace tickwise {

/// HTTP/1.1 over Qt: certificates verified, the system's proxies (never for loopback addresses), connections kept
/// alive, nothing cached, no cookies, at most five redirects and none from https to http.
///
/// Errors are `UrlLoadingError` with Qt's text as detail; a status of 400 and above is a response. A sink that takes no
/// bytes ends in `FileError`. Destroying the client ends what is under way with `cancelled`.
class NetworkHttpClient : public HttpClient
{
public:
    /// `tls` names the trusted authorities; `hasNetwork` is asked only to tell why a host was not found or not reached.
    explicit NetworkHttpClient(const QSslConfiguration &tls = QSslConfiguration::defaultConfiguration(),
                               std::function<bool()> hasNetwork = machineHasNetwork);

    [[nodiscard]] Subscription send(const HttpRequest &request, Completion<HttpResponse> done) override;

private:
    QNetworkAccessManager m_manager;
    QSslConfiguration m_tls;
    std::function<bool()> m_hasNetwork;
};

} // namespace tickwise
