#include "platform/network/NetworkTransfer.h"

#include "platform/network/CurlSession.h"
#include "platform/network/SystemProxies.h"

#include <QFileDevice>
#include <QPointer>

namespace tickwise {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr int maximumRedirects = 5;
constexpr qsizetype parserPadding = 64; // a parser that may read behind the end needs no copy of the body

bool isHttp(const QUrl &url)
{
    return url.isValid() && !url.host().isEmpty() &&
           (url.scheme() == QStringLiteral("https") || url.scheme() == QStringLiteral("http"));
}

int portOf(const QUrl &url)
{
    return url.port(url.scheme() == QStringLiteral("https") ? 443 : 80);
}

FileError sinkError(const QIODevice &sink)
{
    const auto *file = qobject_cast<const QFileDevice *>(&sink);
    return {file ? file->fileName() : QString(), sink.errorString()};
}

} // namespace

bool mayRedirect(const HttpRequest &request, const QUrl &from, const QUrl &to)
{
    if (!isHttp(to) || (from.scheme() == QStringLiteral("https") && to.scheme() != QStringLiteral("https")))
        return false;
    if (request.mayRedirectTo)
        return request.mayRedirectTo(to);
    return from.scheme() == to.scheme() && from.host() == to.host() && portOf(from) == portOf(to);
}

NetworkTransfer::NetworkTransfer(TransferNetwork network, const HttpRequest &request, Completion<HttpResponse> done)
    : m_network(std::move(network))
    , m_request(request)
    , m_done(std::move(done))
    , m_end(steady_clock::now() + request.deadline)
{
    if (!isHttp(request.url)) {
        fail(UrlErrorCode::badURL, request.url.toString());
        return;
    }
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, &m_context, [this] { watchTime(); });
    QObject::connect(&m_network.lifetime, &QObject::destroyed, &m_context,
                     [this] { fail(UrlErrorCode::cancelled, QStringLiteral("The client is gone")); });
    open(request.url);
}

NetworkTransfer::~NetworkTransfer()
{
    release();
}

void NetworkTransfer::open(const QUrl &url)
{
    m_url = url;
    m_response = {};
    m_gzip.reset();
    m_received = 0;
    m_lastByte = steady_clock::now();
    watchTime();
    if (!m_network.session)
        return; // the time is over already
    if (isLoopback(url.host()))
        start({});
    else
        m_proxyQuery = m_network.proxies.find(url, [this](const QByteArray &proxy) { start(proxy); });
}

void NetworkTransfer::start(const QByteArray &proxy)
{
    m_exchange = m_network.session->start({m_url, proxy, m_network.authorities, m_request.acceptsCompression}, *this);
}

// The one timer runs until the end of the longest wait as it was seen last; bytes that came since only move its next
// end.
void NetworkTransfer::watchTime()
{
    const Instant now = steady_clock::now();
    const Instant silence = m_lastByte + m_request.timeout;
    if (now >= m_end)
        fail(UrlErrorCode::timedOut, QStringLiteral("not done after %1 ms").arg(m_request.deadline.count()));
    else if (now >= silence)
        fail(UrlErrorCode::timedOut, QStringLiteral("nothing for %1 ms").arg(m_request.timeout.count()));
    else
        m_timer.start(std::chrono::ceil<milliseconds>(std::min(silence, m_end) - now));
}

bool NetworkTransfer::isRedirect() const
{
    const int code = m_response.status;
    return (code == 301 || code == 302 || code == 303 || code == 307 || code == 308) && m_response.header("Location");
}

bool NetworkTransfer::isGzip() const
{
    const auto encoding = m_response.header("Content-Encoding");
    return m_request.acceptsCompression && encoding && encoding->compare("gzip", Qt::CaseInsensitive) == 0;
}

bool NetworkTransfer::goesToSink() const
{
    return m_request.sink && m_response.status >= 200 && m_response.status <= 299;
}

qint64 NetworkTransfer::announcedLength() const
{
    bool isNumber = false;
    const qint64 length = m_response.header("Content-Length").value_or(QByteArray()).toLongLong(&isNumber);
    return isNumber ? length : -1;
}

bool NetworkTransfer::takeHead(HttpResponse head)
{
    m_lastByte = steady_clock::now();
    m_response = std::move(head);
    if (announcedLength() > m_request.maximumBytes) {
        fail(UrlErrorCode::dataLengthExceedsMaximum, QStringLiteral("%1 bytes announced").arg(announcedLength()));
        return false;
    }
    reserveBody();
    return true;
}

void NetworkTransfer::reserveBody()
{
    if (announcedLength() > 0 && !isGzip() && !isRedirect() && !goesToSink())
        m_response.body.reserve(announcedLength() + parserPadding);
}

bool NetworkTransfer::takeBody(const char *bytes, qint64 count)
{
    m_lastByte = steady_clock::now();
    if (!decode(bytes, count))
        return false;
    reportProgress();
    return true;
}

bool NetworkTransfer::decode(const char *bytes, qint64 count)
{
    if (!isGzip())
        return store(bytes, count);
    if (!m_gzip)
        m_gzip = std::make_unique<GzipReader>();
    const auto receiver = [this](const char *inflated, qint64 length) { return store(inflated, length); };
    const GzipReader::Status result = m_gzip->feed(bytes, count, receiver);
    if (result == GzipReader::Status::damaged)
        fail(UrlErrorCode::cannotParseResponse, QStringLiteral("damaged gzip stream"));
    return result == GzipReader::Status::more;
}

bool NetworkTransfer::store(const char *bytes, qint64 count)
{
    m_received += count;
    if (m_received > m_request.maximumBytes) {
        fail(UrlErrorCode::dataLengthExceedsMaximum, QStringLiteral("more than %1 bytes").arg(m_request.maximumBytes));
        return false;
    }
    return isRedirect() || deliver(bytes, count);
}

bool NetworkTransfer::deliver(const char *bytes, qint64 count)
{
    if (!goesToSink()) {
        m_response.body.append(bytes, count);
        return true;
    }
    // Whoever listens to the sink may drop the handle.
    const QPointer<QObject> alive(&m_context);
    const bool isTaken = m_request.sink->write(bytes, count) == count;
    if (isTaken || !alive)
        return isTaken && alive;
    finish(failure(sinkError(*m_request.sink)));
    return false;
}

void NetworkTransfer::reportProgress()
{
    if (!m_request.progress || isRedirect())
        return;
    // The callback may drop the handle, and with it the function that it is.
    const auto progress = m_request.progress;
    progress(m_received, isGzip() ? -1 : announcedLength());
}

void NetworkTransfer::takeEnd(NetworkFailure why)
{
    m_exchange = nullptr;
    if (why.result != CURLE_OK) {
        why.hasNetwork = m_network.hasNetwork();
        fail(urlErrorCode(why), why.text);
        return;
    }
    if (m_response.status == 0) {
        failWithoutHead(why.status);
        return;
    }
    if (isRedirect()) {
        follow();
        return;
    }
    if (m_gzip && !m_gzip->isComplete()) {
        fail(UrlErrorCode::networkConnectionLost, QStringLiteral("the gzip stream ends early"));
        return;
    }
    finish(std::move(m_response));
}

// libcurl takes a head that ends early, and one that only announces another, for a whole answer.
void NetworkTransfer::failWithoutHead(int announced)
{
    if (announced >= 100 && announced < 200)
        fail(UrlErrorCode::badServerResponse, QStringLiteral("nothing behind status %1").arg(announced));
    else
        fail(UrlErrorCode::networkConnectionLost, QStringLiteral("the head ends early"));
}

void NetworkTransfer::follow()
{
    const QUrl target = m_url.resolved(QUrl::fromEncoded(m_response.header("Location").value_or(QByteArray())));
    // The request's rule may drop the handle, and with it the function that it is.
    const QPointer<QObject> alive(&m_context);
    const HttpRequest request = m_request;
    const bool mayFollow = ++m_redirects <= maximumRedirects && mayRedirect(request, QUrl(m_url), target);
    if (!alive || !m_network.session)
        return;
    if (mayFollow)
        open(target);
    else
        fail(UrlErrorCode::redirectRefused, m_url.host() + QStringLiteral(" sends to ") + target.toString());
}

void NetworkTransfer::fail(UrlErrorCode code, const QString &detail)
{
    UrlLoadingError error;
    error.code = code;
    error.detail = detail;
    error.httpStatus = m_response.status;
    finish(failure(std::move(error)));
}

// The completion runs in an event of its own, outside of libcurl's work, so that it may destroy the client.
void NetworkTransfer::finish(Result<HttpResponse> result)
{
    release();
    QMetaObject::invokeMethod(
        &m_context,
        [this, result = std::move(result)]() mutable {
            const Completion<HttpResponse> done = std::move(m_done);
            done(std::move(result));
        },
        Qt::QueuedConnection);
}

void NetworkTransfer::release()
{
    if (!m_network.session)
        return;
    m_timer.stop();
    QObject::disconnect(&m_network.lifetime, nullptr, &m_context, nullptr);
    m_proxyQuery.cancel();
    if (m_exchange)
        m_network.session->drop(std::exchange(m_exchange, nullptr));
    m_network.session.reset();
}

} // namespace tickwise
