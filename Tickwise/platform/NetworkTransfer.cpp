#include "platform/NetworkTransfer.h"

#include "platform/NetworkFailure.h"

#include <QFileDevice>
#include <QNetworkAccessManager>

#include <array>

namespace tickwise {

namespace {

constexpr int maximumRedirects = 5;
constexpr qint64 readBufferBytes = 64 * 1024;

bool isHttp(const QUrl &url)
{
    return url.isValid() && !url.host().isEmpty() &&
           (url.scheme() == QStringLiteral("https") || url.scheme() == QStringLiteral("http"));
}

int portOf(const QUrl &url)
{
    return url.port(url.scheme() == QStringLiteral("https") ? 443 : 80);
}

QNetworkRequest networkRequest(const HttpRequest &request, const QUrl &url, const QSslConfiguration &tls)
{
    QNetworkRequest made(url);
    made.setSslConfiguration(tls);
    made.setTransferTimeout(static_cast<int>(request.timeout.count()));
    // Said by us, Qt leaves the inflating to us, which it could not stop at a limit without losing the reply.
    made.setRawHeader("Accept-Encoding", "gzip");
    made.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    made.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    made.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    made.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    made.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    made.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    // One request at a time goes to a host: a second stream would bring nothing.
    made.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    return made;
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

NetworkTransfer::NetworkTransfer(QNetworkAccessManager &manager, const QSslConfiguration &tls,
                                 std::function<bool()> hasNetwork, const HttpRequest &request,
                                 Completion<HttpResponse> done)
    : m_manager(manager)
    , m_tls(tls)
    , m_hasNetwork(std::move(hasNetwork))
    , m_request(request)
    , m_done(std::move(done))
{
    if (!isHttp(request.url)) {
        fail(UrlErrorCode::badURL, request.url.toString());
        return;
    }
    m_deadline.setSingleShot(true);
    m_deadline.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_deadline, &QTimer::timeout, &m_context, [this] { failForDeadline(); });
    m_deadline.start(request.deadline);
    open(request.url);
}

NetworkTransfer::~NetworkTransfer()
{
    release();
}

void NetworkTransfer::open(const QUrl &url)
{
    QNetworkReply *reply = m_manager.get(networkRequest(m_request, url, m_tls));
    m_reply = reply;
    m_gzip.reset();
    m_received = 0;
    reply->setReadBufferSize(readBufferBytes);
    QObject::connect(reply, &QNetworkReply::sslErrors, &m_context,
                     [this](const QList<QSslError> &e) { m_sslErrors = e; });
    QObject::connect(reply, &QNetworkReply::metaDataChanged, &m_context, [this] { readHead(); });
    QObject::connect(reply, &QNetworkReply::readyRead, &m_context, [this] { readBody(); });
    QObject::connect(reply, &QNetworkReply::finished, &m_context, [this] { conclude(); });
    QObject::connect(reply, &QObject::destroyed, &m_context,
                     [this] { fail(UrlErrorCode::cancelled, QStringLiteral("The client is gone")); });
}

int NetworkTransfer::status() const
{
    return m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

bool NetworkTransfer::isRedirect() const
{
    const int code = status();
    return (code == 301 || code == 302 || code == 303 || code == 307 || code == 308) &&
           m_reply->hasRawHeader("Location");
}

bool NetworkTransfer::isGzip() const
{
    return m_reply->rawHeader("Content-Encoding").trimmed().compare("gzip", Qt::CaseInsensitive) == 0;
}

qint64 NetworkTransfer::announcedLength() const
{
    const QVariant length = m_reply->header(QNetworkRequest::ContentLengthHeader);
    return length.isValid() ? length.toLongLong() : -1;
}

void NetworkTransfer::readHead()
{
    if (m_reply && announcedLength() > m_request.maximumBytes)
        fail(UrlErrorCode::dataLengthExceedsMaximum, QStringLiteral("%1 bytes announced").arg(announcedLength()));
}

void NetworkTransfer::readBody()
{
    std::array<char, 16 * 1024> chunk; // NOLINT: filled by read
    bool any = false;
    while (m_reply && m_reply->isOpen()) {
        const qint64 count = m_reply->read(chunk.data(), chunk.size());
        if (count <= 0)
            break;
        any = true;
        if (!decode(chunk.data(), count))
            return;
    }
    if (any && m_reply)
        reportProgress();
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
    if (!m_request.sink || status() < 200 || status() > 299) {
        m_body.append(bytes, count);
        return true;
    }
    if (m_request.sink->write(bytes, count) == count)
        return true;
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

void NetworkTransfer::conclude()
{
    const QPointer<QObject> alive(&m_context);
    readBody();
    if (!alive || !m_reply)
        return;
    const QNetworkReply::NetworkError error = m_reply->error();
    if (error != QNetworkReply::NoError && !isStatusOnly(error, status())) {
        const NetworkFailure why{error, m_reply->errorString(), m_sslErrors, status(), m_hasNetwork()};
        fail(urlErrorCode(why), why.text);
        return;
    }
    if (isRedirect()) {
        follow(m_reply->url().resolved(QUrl::fromEncoded(m_reply->rawHeader("Location"))));
        return;
    }
    if (status() == 0) {
        fail(UrlErrorCode::badServerResponse, QStringLiteral("no HTTP answer"));
        return;
    }
    if (m_gzip && !m_gzip->isComplete()) {
        fail(UrlErrorCode::networkConnectionLost, QStringLiteral("the gzip stream ends early"));
        return;
    }
    finish(takeResponse());
}

HttpResponse NetworkTransfer::takeResponse()
{
    HttpResponse response{status(), {}, std::move(m_body)};
    for (const QNetworkReply::RawHeaderPair &header : m_reply->rawHeaderPairs())
        response.headers.emplace_back(header.first, header.second);
    return response;
}

void NetworkTransfer::follow(const QUrl &target)
{
    const QUrl from = m_reply->url();
    if (++m_redirects > maximumRedirects || !mayRedirect(m_request, from, target)) {
        fail(UrlErrorCode::redirectRefused, from.host() + QStringLiteral(" sends to ") + target.toString());
        return;
    }
    release();
    open(target);
}

void NetworkTransfer::failForDeadline()
{
    fail(UrlErrorCode::timedOut, QStringLiteral("not done after %1 ms").arg(m_request.deadline.count()));
}

void NetworkTransfer::fail(UrlErrorCode code, const QString &detail)
{
    UrlLoadingError error;
    error.code = code;
    error.detail = detail;
    error.httpStatus = m_reply ? status() : 0;
    finish(failure(std::move(error)));
}

// The completion runs in an event of its own, outside of any signal of the reply, so that it may destroy the client.
void NetworkTransfer::finish(Result<HttpResponse> result)
{
    m_deadline.stop();
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
    if (!m_reply)
        return;
    QNetworkReply *reply = m_reply;
    m_reply = nullptr;
    QObject::disconnect(reply, nullptr, &m_context, nullptr);
    reply->abort();
    reply->deleteLater();
}

} // namespace tickwise
