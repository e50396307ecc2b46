#pragma once

#include "market/HttpClient.h"
#include "platform/network/CurlTransfer.h"
#include "platform/network/GzipReader.h"

#include <QTimer>

namespace tickwise {

class CurlSession;
class SystemProxies;

/// Whether an answer from `from` may send the request on to `to`: never from https to http, to another place only where
/// the request allows it.
bool mayRedirect(const HttpRequest &request, const QUrl &from, const QUrl &to);

/// What transfers go through.
struct TransferNetwork
{
    std::shared_ptr<CurlSession> session;
    SystemProxies &proxies;
    QObject &lifetime; ///< its end is the end of the transfers, with `cancelled`; the proxies outlive it
    QByteArray authorities;
    std::function<bool()> hasNetwork;
};

/// One request under way, with the redirects it leads through. Destroying it aborts the request.
class NetworkTransfer : public Operation, private ExchangeReceiver
{
public:
    NetworkTransfer(TransferNetwork network, const HttpRequest &request, Completion<HttpResponse> done);
    ~NetworkTransfer() override;

private:
    using Instant = std::chrono::steady_clock::time_point;

    bool takeHead(HttpResponse head) override;
    bool takeBody(const char *bytes, qint64 count) override;
    void takeEnd(NetworkFailure failure) override;

    void open(const QUrl &url);
    void start(const QByteArray &proxy);
    void reserveBody();
    bool decode(const char *bytes, qint64 count);
    bool store(const char *bytes, qint64 count);
    bool deliver(const char *bytes, qint64 count);
    void reportProgress();
    void failWithoutHead(int announced);
    void follow();
    void watchTime();
    void fail(UrlErrorCode code, const QString &detail);
    void finish(Result<HttpResponse> result);
    void release();
    bool isRedirect() const;
    bool isGzip() const;
    bool goesToSink() const;
    qint64 announcedLength() const;

    TransferNetwork m_network;
    HttpRequest m_request;
    Completion<HttpResponse> m_done;
    QUrl m_url; ///< of the exchange under way
    Subscription m_proxyQuery;
    CurlTransfer *m_exchange = nullptr;
    HttpResponse m_response;
    std::unique_ptr<GzipReader> m_gzip;
    qint64 m_received = 0; ///< bytes of the body, inflated
    int m_redirects = 0;
    Instant m_end;      ///< the request's deadline
    Instant m_lastByte; ///< when something came last, or the exchange began
    QTimer m_timer;
    QObject m_context;
};

} // namespace tickwise
