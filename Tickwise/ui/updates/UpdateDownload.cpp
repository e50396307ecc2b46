#include "ui/updates/UpdateDownload.h"

#include "support/DetachedWork.h"

#include <QDir>

#include <algorithm>

namespace tickwise {

namespace {

constexpr std::chrono::seconds packageTimeout{30};
constexpr std::chrono::hours packageDeadline{2};
constexpr qsizetype maximumFileNameLength = 120;

bool isPlainFileName(const QString &name)
{
    const auto isPlain = [](QChar character) {
        return character.unicode() < 0x80 &&
               (character.isLetterOrNumber() || QStringLiteral("._-+~").contains(character));
    };
    return !name.isEmpty() && name.size() <= maximumFileNameLength && !name.startsWith(u'.') &&
           !name.startsWith(u'-') && std::all_of(name.begin(), name.end(), isPlain);
}

qint64 byteLimit(const AppcastItem &item)
{
    return item.length > 0 ? std::min(item.length, maximumPackageBytes) : maximumPackageBytes;
}

UpdateFailure diskFailure(const QFile &file)
{
    return downloadFailure(FileError{file.fileName(), file.errorString()});
}

} // namespace

QString packageFileName(const AppcastItem &item)
{
    const QString name = item.url.fileName(QUrl::FullyDecoded);
    return isPlainFileName(name) ? name : QStringLiteral("tickwise-update");
}

void removeDownloads(const QString &directory)
{
    QDir(directory).removeRecursively();
}

UpdateDownload::UpdateDownload(HttpClient &http, UpdateDownloadOrder order)
    : m_http(http)
    , m_order(std::move(order))
    , m_file(QDir(m_order.directory).filePath(QStringLiteral("download.part")))
{
    QObject::connect(&m_verification, &QFutureWatcher<SignatureCheck>::finished, &m_context,
                     [this] { conclude(signatureRefusal(m_verification.result())); });
    QMetaObject::invokeMethod(
        &m_context, [this] { start(); }, Qt::QueuedConnection);
}

UpdateDownload::~UpdateDownload()
{
    removeFile();
}

void UpdateDownload::start()
{
    if (openFile())
        request();
    else
        finish(tl::unexpected(diskFailure(m_file)));
}

bool UpdateDownload::openFile()
{
    removeDownloads(m_order.directory);
    const auto ownerOnly = QFile::ReadOwner | QFile::WriteOwner;
    // Unbuffered, so that a full disk shows where it is met.
    return QDir().mkpath(m_order.directory) && QFile::setPermissions(m_order.directory, ownerOnly | QFile::ExeOwner) &&
           m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered, ownerOnly);
}

void UpdateDownload::request()
{
    HttpRequest request;
    request.url = m_order.item.url;
    request.timeout = packageTimeout;
    request.deadline = packageDeadline;
    request.maximumBytes = byteLimit(m_order.item);
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
    if (const std::optional<UpdateFailure> failure = refusal(response))
        finish(tl::unexpected(*failure));
    else
        verify();
}

std::optional<UpdateFailure> UpdateDownload::refusal(const Result<HttpResponse> &response) const
{
    if (m_file.error() != QFileDevice::NoError)
        return diskFailure(m_file);
    if (!response)
        return downloadFailure(response.error());
    if (!response->isSuccess())
        return downloadFailure(UrlLoadingError{UrlErrorCode::badServerResponse, {}, response->status});
    return lengthRefusal();
}

std::optional<UpdateFailure> UpdateDownload::lengthRefusal() const
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

void UpdateDownload::conclude(const std::optional<UpdateFailure> &failure)
{
    if (failure)
        finish(tl::unexpected(*failure));
    else
        keep();
}

std::optional<UpdateFailure> UpdateDownload::signatureRefusal(SignatureCheck check) const
{
    switch (check) {
    case SignatureCheck::valid:
        return std::nullopt;
    case SignatureCheck::missing:
        return UpdateFailure{UpdateFailureKind::noSignature, QStringLiteral("the package is not signed")};
    case SignatureCheck::unreadable:
        return diskFailure(m_file);
    case SignatureCheck::malformed:
    case SignatureCheck::mismatch:
        break;
    }
    return UpdateFailure{UpdateFailureKind::signature, QStringLiteral("the package's signature is not valid")};
}

void UpdateDownload::keep()
{
    const QString path = QDir(m_order.directory).filePath(packageFileName(m_order.item));
    m_file.close();
    if (m_file.rename(path)) {
        m_file.setFileName(QString()); // from now on the receiver's, no longer removed with this object
        finish(path);
    } else {
        finish(tl::unexpected(diskFailure(m_file)));
    }
}

void UpdateDownload::removeFile()
{
    // The request writes into the file until it is dropped.
    m_request.cancel();
    if (!m_file.fileName().isEmpty())
        m_file.remove();
}

void UpdateDownload::finish(tl::expected<QString, UpdateFailure> result)
{
    if (!result)
        removeFile();
    const auto done = m_order.done; // the call may end this object
    done(std::move(result));
}

} // namespace tickwise
