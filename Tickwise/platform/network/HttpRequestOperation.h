#pragma once

#include "market/HttpClient.h"
#include "platform/network/CurlTransfer.h"
#include "platform/network/GzipReader.h"

#include <QTimer>

namespace tickwise {

class CurlSession;
class SystemProxies;

/// Whether a redirect from `from` to `to` may be followed: never from https to http, to another scheme, host or port
/// only where the request allows it.
bool mayRedirect(const HttpRequest &request, const QUrl &from, const QUrl &to);

/// What a request needs of its client.
struct HttpRequestContext
{
    std::shared_ptr<CurlSession> session;
    SystemProxies &proxies;
    QObject &lifetime; ///< its end ends the requests with `cancelled`; the proxies outlive it
    QByteArray authorities;
    AuthorityFiles systemAuthorities;
    std::function<bool()> hasNetwork;
};

/// One request under way: the transfers that its redirects lead through, one after another, bounded in time and size.
/// Destroying it aborts the request.
class HttpRequestOperation : public Operation, private TransferReceiver
{
public:
    HttpRequestOperation(HttpRequestContext context, const HttpRequest &request, Completion<HttpResponse> done);
    ~HttpRequestOperation() override;

private:
    using Instant = std::chrono::steady_clock::time_point;

    void takePhase(TransferPhase phase) override;
    bool takeHead(HttpResponse head) override;
    bool takeBody(const char *bytes, qint64 count) override;
    void takeEnd(NetworkFailure failure) override;

    void open(const QUrl &url);
    void start(const QByteArray &proxy);
    void reserveBody();
    bool isOversized(qint64 bytes);
    bool decode(const char *bytes, qint64 count);
    bool store(const char *bytes, qint64 count);
    void appendToBody(const char *bytes, qint64 count);
    bool deliver(const char *bytes, qint64 count);
    void reportProgress();
    void failWithoutHead(int status);
    void failLookup();
    void failAtDeadline();
    void follow();
    void watchTime();
    void fail(UrlErrorCode code, const QString &detail);
    void finish(Result<HttpResponse> result);
    void release();
    bool isRedirect() const;
    bool goesToSink() const;
    qint64 announcedLength() const;

    HttpRequestContext m_network;
    HttpRequest m_request;
    Completion<HttpResponse> m_done;
    QUrl m_url; ///< of the transfer under way
    Subscription m_proxyQuery;
    CurlTransfer *m_transfer = nullptr;
    HttpResponse m_response;
    bool m_isGzip = false; ///< whether the body is compressed
    std::unique_ptr<GzipReader> m_gzip;
    qint64 m_sent = 0;     ///< bytes of the body as the server sent them
    qint64 m_received = 0; ///< bytes of the body, inflated
    int m_redirects = 0;
    std::optional<TransferPhase> m_phase; ///< none: it waits for the proxies' answer or for a connection
    Instant m_phaseBegan;
    Instant m_lastByte; ///< when bytes came last, or the phase began
    Instant m_deadline; ///< does not come closer while the transfer waits
    QTimer m_timer;
    QObject m_context;
};

} // namespace tickwise
