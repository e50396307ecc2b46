#include "platform/network/HttpRequestOperation.h"

#include "platform/network/CurlSession.h"
#include "platform/network/SystemProxies.h"
#include "support/Excerpt.h"

#include <QFileDevice>
#include <QPointer>

#include <algorithm>
#include <limits>

namespace tickwise {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr int maximumRedirects = 5;
constexpr qsizetype parserPadding = 64; // lets a parser that reads past the end do without a copy of the body
constexpr qsizetype firstBodyCapacity = qsizetype{64} * 1024; // of a body of unknown length

bool isHttp(const QUrl &url)
{
    return url.isValid() && !url.host().isEmpty() &&
           (url.scheme() == QStringLiteral("https") || url.scheme() == QStringLiteral("http"));
}

int portOf(const QUrl &url)
{
    return url.port(url.scheme() == QStringLiteral("https") ? 443 : 80);
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
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

HttpRequestOperation::HttpRequestOperation(HttpRequestContext context, const HttpRequest &request,
                                           Completion<HttpResponse> done)
    : m_network(std::move(context))
    , m_request(request)
    , m_done(std::move(done))
    , m_deadline(steady_clock::now() + request.deadline)
{
    if (!isHttp(request.url)) {
        fail(UrlErrorCode::badURL, excerpt(request.url.toString()));
        return;
    }
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, &m_context, [this] { watchTime(); });
    QObject::connect(&m_network.lifetime, &QObject::destroyed, &m_context,
                     [this] { fail(UrlErrorCode::cancelled, QStringLiteral("the client was destroyed")); });
    open(request.url);
}

HttpRequestOperation::~HttpRequestOperation()
{
    release();
}

void HttpRequestOperation::open(const QUrl &url)
{
    m_url = url;
    m_response = {};
    m_gzip.reset();
    m_sent = 0;
    m_received = 0;
    m_timer.stop();
    m_phase.reset();
    m_phaseBegan = steady_clock::now();
    if (m_phaseBegan >= m_deadline)
        failAtDeadline();
    else if (isLoopback(url.host()))
        start({});
    else
        m_proxyQuery = m_network.proxies.find(url, [this](const QByteArray &proxy) { start(proxy); });
}

void HttpRequestOperation::start(const QByteArray &proxy)
{
    m_transfer = m_network.session->start(
        {m_url, proxy, m_network.authorities, m_network.systemAuthorities, m_request.acceptsCompression}, *this);
}

void HttpRequestOperation::takePhase(TransferPhase phase)
{
    if (phase == m_phase)
        return;
    const Instant now = steady_clock::now();
    if (!m_phase)
        m_deadline += now - m_phaseBegan;
    m_phase = phase;
    m_phaseBegan = now;
    m_lastByte = now;
    watchTime();
}

// The timer runs until the limit that was known when it was started; bytes that came since only make it start again.
void HttpRequestOperation::watchTime()
{
    const bool isLookup = m_phase == TransferPhase::lookup;
    const Instant limit = isLookup ? m_phaseBegan + m_request.lookupTimeout : m_lastByte + m_request.timeout;
    const Instant now = steady_clock::now();
    if (now >= m_deadline)
        failAtDeadline();
    else if (now < limit)
        m_timer.start(std::chrono::ceil<milliseconds>(std::min(limit, m_deadline) - now));
    else if (isLookup)
        failLookup();
    else
        fail(UrlErrorCode::timedOut, QStringLiteral("nothing for %1 ms").arg(m_request.timeout.count()));
}

void HttpRequestOperation::failAtDeadline()
{
    fail(UrlErrorCode::timedOut, QStringLiteral("not done after %1 ms").arg(m_request.deadline.count()));
}

void HttpRequestOperation::failLookup()
{
    NetworkFailure failure;
    failure.result = CURLE_COULDNT_RESOLVE_HOST;
    failure.hasNetwork = m_network.hasNetwork();
    fail(urlErrorCode(failure),
         QStringLiteral("no name server answered for %1 ms").arg(m_request.lookupTimeout.count()));
}

bool HttpRequestOperation::isRedirect() const
{
    const int code = m_response.status;
    return (code == 301 || code == 302 || code == 303 || code == 307 || code == 308) && m_response.header("Location");
}

bool HttpRequestOperation::goesToSink() const
{
    return m_request.sink && m_response.isSuccess();
}

qint64 HttpRequestOperation::announcedLength() const
{
    const QByteArray text = m_response.header("Content-Length").value_or(QByteArray());
    bool isNumber = false;
    const qint64 length = text.toLongLong(&isNumber);
    if (isNumber)
        return length;
    // libcurl ignores a length beyond 64 bits.
    const bool isDigits = !text.isEmpty() && std::all_of(text.begin(), text.end(), isDigit);
    return isDigits ? std::numeric_limits<qint64>::max() : -1;
}

bool HttpRequestOperation::takeHead(HttpResponse head)
{
    m_lastByte = steady_clock::now();
    m_response = std::move(head);
    const auto encoding = m_response.header("Content-Encoding");
    m_isGzip = m_request.acceptsCompression && encoding && encoding->compare("gzip", Qt::CaseInsensitive) == 0;
    if (announcedLength() > m_request.maximumBytes) {
        fail(UrlErrorCode::dataLengthExceedsMaximum, QStringLiteral("%1 bytes announced").arg(announcedLength()));
        return false;
    }
    reserveBody();
    return true;
}

void HttpRequestOperation::reserveBody()
{
    if (announcedLength() > 0 && !m_isGzip && !isRedirect() && !goesToSink())
        m_response.body.reserve(announcedLength() + parserPadding);
}

bool HttpRequestOperation::takeBody(const char *bytes, qint64 count)
{
    m_lastByte = steady_clock::now();
    m_sent += count;
    if (isOversized(m_sent) || !decode(bytes, count))
        return false;
    reportProgress();
    return true;
}

bool HttpRequestOperation::decode(const char *bytes, qint64 count)
{
    if (!m_isGzip)
        return store(bytes, count);
    if (!m_gzip)
        m_gzip = std::make_unique<GzipReader>();
    const auto receiver = [this](const char *inflated, qint64 length) { return store(inflated, length); };
    const GzipReader::Status result = m_gzip->feed(bytes, count, receiver);
    if (result == GzipReader::Status::damaged)
        fail(UrlErrorCode::cannotParseResponse, QStringLiteral("damaged gzip stream"));
    return result == GzipReader::Status::more;
}

bool HttpRequestOperation::store(const char *bytes, qint64 count)
{
    m_received += count;
    return !isOversized(m_received) && (isRedirect() || deliver(bytes, count));
}

bool HttpRequestOperation::isOversized(qint64 bytes)
{
    if (bytes <= m_request.maximumBytes)
        return false;
    fail(UrlErrorCode::dataLengthExceedsMaximum, QStringLiteral("more than %1 bytes").arg(m_request.maximumBytes));
    return true;
}

// A body of unknown length grows by `reserve`, which nearly always extends it in place; `append` alone would copy it
// into a new array for each doubling. The parser's spare capacity stays at the end.
void HttpRequestOperation::appendToBody(const char *bytes, qint64 count)
{
    QByteArray &body = m_response.body;
    const qsizetype needed = body.size() + count + parserPadding;
    if (body.capacity() < needed)
        body.reserve(std::max({needed, body.capacity() * 2, firstBodyCapacity}));
    body.append(bytes, count);
}

bool HttpRequestOperation::deliver(const char *bytes, qint64 count)
{
    if (!goesToSink()) {
        appendToBody(bytes, count);
        return true;
    }
    // A slot of the sink's signals may drop the handle.
    const QPointer<QObject> alive(&m_context);
    const bool isTaken = m_request.sink->write(bytes, count) == count;
    if (isTaken || !alive)
        return isTaken && alive;
    finish(failure(sinkError(*m_request.sink)));
    return false;
}

void HttpRequestOperation::reportProgress()
{
    if (!m_request.progress || isRedirect())
        return;
    // The callback may drop the handle, which would destroy the callback: call a copy.
    const auto progress = m_request.progress;
    progress(m_received, m_isGzip ? -1 : announcedLength());
}

void HttpRequestOperation::takeEnd(NetworkFailure why)
{
    m_transfer = nullptr;
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

// libcurl takes a head that ends early, and an interim one, for a whole answer.
void HttpRequestOperation::failWithoutHead(int status)
{
    if (status >= 100 && status < 200)
        fail(UrlErrorCode::badServerResponse, QStringLiteral("no answer after status %1").arg(status));
    else
        fail(UrlErrorCode::networkConnectionLost, QStringLiteral("the head ends early"));
}

void HttpRequestOperation::follow()
{
    const QUrl target = m_url.resolved(QUrl::fromEncoded(m_response.header("Location").value_or(QByteArray())));
    // The request's rule may drop the handle, which would destroy the rule: call a copy.
    const QPointer<QObject> alive(&m_context);
    const HttpRequest request = m_request;
    const bool mayFollow = ++m_redirects <= maximumRedirects && mayRedirect(request, QUrl(m_url), target);
    if (!alive || !m_network.session)
        return;
    if (mayFollow)
        open(target);
    else
        fail(UrlErrorCode::redirectRefused,
             m_url.host() + QStringLiteral(" redirects to ") + excerpt(target.toString()));
}

void HttpRequestOperation::fail(UrlErrorCode code, const QString &detail)
{
    UrlLoadingError error;
    error.code = code;
    error.detail = detail;
    error.httpStatus = m_response.status;
    finish(failure(std::move(error)));
}

// The completion runs from the event loop, outside of libcurl's work, so that it may destroy the client.
void HttpRequestOperation::finish(Result<HttpResponse> result)
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

void HttpRequestOperation::release()
{
    if (!m_network.session)
        return;
    m_timer.stop();
    QObject::disconnect(&m_network.lifetime, nullptr, &m_context, nullptr);
    m_proxyQuery.cancel();
    if (m_transfer)
        m_network.session->drop(std::exchange(m_transfer, nullptr));
    m_network.session.reset();
}

} // namespace tickwise
