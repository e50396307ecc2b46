#pragma once

#include "ui/updates/PackageInstaller.h"
#include "ui/updates/UpdateSignature.h"
#include "ui/updates/UpdateUserDriver.h"
#include "ui/updates/UpdaterSettings.h"
#include "ui/updates/appcast/UpdateFeedFetch.h"

#include <QFutureWatcher>

namespace tickwise {

/// What an updater is told about the program that it updates.
struct UpdaterConfiguration
{
    QUrl feed;            ///< https
    QByteArray publicKey; ///< base64 of the Ed25519 key that packages are signed with
    QString runningVersion;
    QString systemVersion;     ///< the VERSION_ID of os-release, or anything else where there is none
    QString downloadDirectory; ///< a `DownloadFolder`
};

/// What an updater works with; the references outlive it.
struct UpdaterServices
{
    HttpClient &http;
    Clock clock;
    SettingsDataStorage &storage;
    UpdateUserDriver &driver;
    std::function<bool()> appIsFocused;
    PackageInstaller &installer; ///< gets verified packages only
};

/// One way from a check to an installed package: check, choose, offer, check again, download, verify, install. Deleting
/// it cancels whatever is under way and removes what was downloaded.
///
/// A check of the schedule is not shown until it found an update, and then only while the application has the focus;
/// otherwise the update waits for the user's attention.
class UpdateSession : public QObject
{
    Q_OBJECT

public:
    /// `installedVersion` has replaced the running version, but was not started yet; empty: none.
    UpdateSession(const UpdaterConfiguration &configuration, const UpdaterServices &services,
                  UpdaterSettingsStore &settings, QString installedVersion);
    ~UpdateSession() override;

    /// Fetches the feed; while a found update waits to be shown, to see whether there is a newer one.
    void check();
    /// The user asked: shows the session's state, and checks again if it had come to its end.
    void receiveUserAttention();

    /// Whether the user has seen anything of the session.
    bool isShown() const { return m_isShown; }
    /// Whether the user has to wait for the session.
    bool isWorking() const;

Q_SIGNALS:
    /// A scheduled check found an update that is not shown to the user now.
    void updateWaits();
    void userAttentionReceived();
    void stateChanged();
    void installed(const QString &version);
    /// The session's last signal; it may be deleted then.
    void finished();

private:
    void receiveFeed(const UpdateFeedResult &feed);
    void recordCheck();
    void choose(const std::vector<AppcastItem> &items);
    void receiveOffer(const AppcastItem &item);
    void offer(const AppcastItem &item);
    void perform(UpdateAction action);
    void restart();
    void skipVersion();
    void forgetSkippedVersion();
    void acceptOffer();
    void download();
    void receivePackage(const tl::expected<QString, UpdateFailure> &package);
    void verifyAgain();
    void receiveVerification(SignatureCheck check);
    void receiveInstallation(const Result<PackageInstallation> &installation);
    void fail(const UpdateFailure &failure);
    void endIn(UpdatePhase phase);
    void show();
    void removePackage();
    void finish();

    const UpdaterConfiguration &m_configuration;
    const UpdaterServices &m_services;
    UpdaterSettingsStore &m_settings;
    QString m_installedVersion;
    UpdateState m_state;
    bool m_userInitiated = false;
    bool m_isShown = false;
    QString m_acceptedVersion; ///< the user wants it, and the feed is asked whether it still offers it
    QString m_package;         ///< downloaded and verified, removed with the session
    Subscription m_operation;
    QFutureWatcher<SignatureCheck> m_verification;
};

} // namespace tickwise
