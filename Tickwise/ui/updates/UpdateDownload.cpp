#include "ui/updates/UpdateDownload.h"

#include "support/DetachedWork.h"

#include <algorithm>

namespace tickwise {

namespace {

constexpr std::chrono::seconds packageTimeout{30};
constexpr std::chrono::hours packageDeadline{2};

qint64 byteLimit(const AppcastItem &item)
{
    return item.length > 0 ? std::min(item.length, maximumPackageBytes) : maximumPackageBytes;
}

Error fileError(const QFile &file)
{
    return FileError{file.fileName(), file.errorString()};
}

bool isSecure(const QUrl &url)
{
    return url.scheme() == QStringLiteral("https");
}

} // namespace

QString packageFileName(const AppcastItem &item)
{
    const QString name = item.url.fileName(QUrl::FullyDecoded);
    return isPackageFileName(name) ? name : QStringLiteral("tickwise-update");
}

UpdateDownload::UpdateDownload(HttpClient &http, UpdateDownloadOrder order)
    : m_http(http)
    , m_order(std::move(order))
    , m_folder(m_order.directory)
    , m_file(m_folder.partialPath())
{
    QObject::connect(&m_verification, &QFutureWatcher<SignatureCheck>::finished, &m_context,
                     [this] { receiveVerification(m_verification.result()); });
    QMetaObject::invokeMethod(
        &m_context, [this] { start(); }, Qt::QueuedConnection);
}

UpdateDownload::~UpdateDownload()
{
    removeFile();
}

void UpdateDownload::start()
{
    if (const Result<void> opened = openFile())
        request();
    else
        finish(tl::unexpected(downloadFailure(opened.error())));
}

Result<void> UpdateDownload::openFile()
{
    return m_folder.prepare().and_then([this]() -> Result<void> {
        // Unbuffered, so that a full disk shows where it is met.
        const auto mode = QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered;
        if (!m_file.open(mode, QFile::ReadOwner | QFile::WriteOwner))
            return failure(fileError(m_file));
        return {};
    });
}

void UpdateDownload::request()
{
    HttpRequest request;
    request.url = m_order.item.url;
    request.timeout = packageTimeout;
    request.deadline = packageDeadline;
    request.maximumBytes = byteLimit(m_order.item);
    request.acceptsCompression = false; // the signature covers the package as it is published
    request.mayRedirectTo = isSecure;   // the signature is what is trusted, not the host
    request.sink = &m_file;
    request.progress = [this](qint64 received, qint64 total) { reportProgress(received, total); };
    m_request = m_http.send(request, [this](const Result<HttpResponse> &response) { receive(response); });
}

void UpdateDownload::reportProgress(qint64 received, qint64 total)
{
    const qint64 whole = m_order.item.length > 0 ? m_order.item.length : total;
    if (whole <= 0)
        return;
    const int percent = static_cast<int>(std::clamp<qint64>(received * 100 / whole, 0, 100));
    if (m_percent == percent)
        return;
    m_percent = percent;
    m_order.progress(m_percent);
}

void UpdateDownload::receive(const Result<HttpResponse> &response)
{
    if (const std::optional<UpdateFailure> failure = responseFailure(response))
        finish(tl::unexpected(*failure));
    else
        verify();
}

std::optional<UpdateFailure> UpdateDownload::responseFailure(const Result<HttpResponse> &response) const
{
    if (m_file.error() != QFileDevice::NoError)
        return downloadFailure(fileError(m_file));
    if (!response)
        return downloadFailure(response.error());
    if (response->status < 200 || response->status > 299)
        return downloadFailure(UrlLoadingError{UrlErrorCode::badServerResponse, {}, response->status});
    return lengthFailure();
}

std::optional<UpdateFailure> UpdateDownload::lengthFailure() const
{
    const qint64 announced = m_order.item.length;
    if (announced <= 0 || m_file.size() == announced)
        return std::nullopt;
    const QString text = QStringLiteral("the package has %1 bytes instead of %2").arg(m_file.size()).arg(announced);
    return downloadFailure(UrlLoadingError{UrlErrorCode::networkConnectionLost, text});
}

// Half a gigabyte takes more than a second.
void UpdateDownload::verify()
{
    m_verification.setFuture(runDetached([path = m_file.fileName(), signature = m_order.item.signature,
                                          key = m_order.publicKey] { return checkSignature(path, signature, key); }));
}

void UpdateDownload::receiveVerification(SignatureCheck check)
{
    if (const std::optional<UpdateFailure> failure = signatureFailure(check, m_file.fileName()))
        return finish(tl::unexpected(*failure));
    if (const Result<QString> path = keepPackage())
        finish(*path);
    else
        finish(tl::unexpected(downloadFailure(path.error())));
}

Result<QString> UpdateDownload::keepPackage()
{
    const QString name = packageFileName(m_order.item);
    const QString path = m_folder.packagePath(name);
    // A file of this name that is not ours must not be taken for ours.
    if (QFile::exists(path))
        return failure(FileError{path, QStringLiteral("exists already")});
    if (const Result<void> recorded = m_folder.recordPackage(name); !recorded)
        return tl::unexpected(recorded.error());
    m_file.close();
    if (!m_file.rename(path))
        return failure(fileError(m_file));
    m_file.setFileName(QString()); // from now on the receiver's, no longer removed with this object
    return path;
}

void UpdateDownload::removeFile()
{
    // The request writes into the file until it is dropped.
    m_request.cancel();
    if (m_file.fileName().isEmpty())
        return;
    m_file.close();
    m_folder.clear();
}

void UpdateDownload::finish(tl::expected<QString, UpdateFailure> result)
{
    if (!result)
        removeFile();
    const auto done = m_order.done; // the call may end this object
    done(std::move(result));
}

} // namespace tickwise
