#pragma once

#include "market/HttpClient.h"
#include "ui/updates/DownloadFolder.h"
#include "ui/updates/UpdateSignature.h"
#include "ui/updates/UpdateState.h"
#include "ui/updates/appcast/AppcastItem.h"

#include <QFile>
#include <QFutureWatcher>

namespace tickwise {

/// A package larger than this is refused.
inline constexpr qint64 maximumPackageBytes = 512LL * 1024 * 1024;

/// What a download needs.
struct UpdateDownloadOrder
{
    AppcastItem item;
    QByteArray publicKey; ///< base64 of the Ed25519 key that packages are signed with
    QString directory;    ///< a `DownloadFolder`
    std::function<void(std::optional<int> percent)> progress;       ///< called when the percentage changed
    std::function<void(tl::expected<QString, UpdateFailure>)> done; ///< the path of the verified package
};

/// Downloads a package, then verifies length and signature. Ends in exactly one call of `done`, later. Only a verified
/// package gets its name; anything else, and anything when the operation is dropped, is removed.
class UpdateDownload : public Operation
{
public:
    UpdateDownload(HttpClient &http, UpdateDownloadOrder order);
    ~UpdateDownload() override;

private:
    void start();
    Result<void> openFile();
    void request();
    void reportProgress(qint64 received, qint64 total);
    void receive(const Result<HttpResponse> &response);
    std::optional<UpdateFailure> responseFailure(const Result<HttpResponse> &response) const;
    std::optional<UpdateFailure> lengthFailure() const;
    void verify();
    void receiveVerification(SignatureCheck check);
    Result<QString> keepPackage();
    void removeFile();
    void finish(tl::expected<QString, UpdateFailure> result);

    HttpClient &m_http;
    UpdateDownloadOrder m_order;
    DownloadFolder m_folder;
    QFile m_file;
    std::optional<int> m_percent;
    QObject m_context;
    Subscription m_request;
    QFutureWatcher<SignatureCheck> m_verification;
};

/// The name that a verified package is kept under: the last part of its address where that is a plain file name.
QString packageFileName(const AppcastItem &item);

} // namespace tickwise
