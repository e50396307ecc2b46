#pragma once

#include "ui/updates/UpdateFeedFetch.h"
#include "ui/updates/UpdateUserDriver.h"
#include "ui/updates/UpdaterSettings.h"

#include <QPointer>

namespace tickwise {

/// What an updater is told about the program that it updates.
struct UpdaterConfiguration
{
    QUrl feed;
    QByteArray publicKey; ///< base64 of the Ed25519 key that packages are signed with
    QString runningVersion;
    QString systemVersion;     ///< the VERSION_ID of os-release, or anything else where there is none
    QString downloadDirectory; ///< belongs to the updater alone
};

/// What an updater works with; the references outlive it.
struct UpdaterServices
{
    HttpClient &http;
    Clock clock;
    SettingsDataStorage &storage;
    UpdateUserDriver &driver;
    std::function<bool()> appIsFocused;
    std::function<void(const QString &path)> openPackage; ///< gets verified packages only
};

/// Told about the course of a session, and asked how a scheduled update is shown.
class UpdateSessionDelegate
{
public:
    virtual ~UpdateSessionDelegate() = default;
    virtual bool shouldHandleShowingScheduledUpdate(bool inImmediateFocus) const = 0;
    virtual void willHandleShowingUpdate(bool handlesShowingUpdate, bool userInitiated) = 0;
    virtual void didReceiveUserAttention() = 0;
    virtual void sessionDidChange() = 0;
    /// The session's last call; the delegate may delete it.
    virtual void willFinishUpdateSession() = 0;
};

/// One way from a check to a verified package: check, choose, offer, download, verify, open. Deleting it cancels
/// whatever is under way and removes what was downloaded.
class UpdateSession : public QObject
{
    Q_OBJECT

public:
    UpdateSession(const UpdaterConfiguration &configuration, const UpdaterServices &services,
                  UpdaterSettingsStore &settings, UpdateSessionDelegate &delegate);
    ~UpdateSession() override;

    /// Fetches the feed; while a found update waits to be shown, to see whether there is a newer one.
    void check();
    /// The user asked: shows where the session stands, and checks again if it had come to its end.
    void receiveUserAttention();

    /// Whether the user has to wait for the session.
    bool isWorking() const;

private:
    void receiveFeed(const UpdateFeedResult &feed);
    std::optional<UpdateFailure> remember(const UpdateFeedResult &feed);
    void choose(const std::vector<AppcastItem> &items);
    void offer(const AppcastItem &item);
    void answer(UpdateAction action);
    void skip();
    void acceptSkipped();
    void download();
    void receivePackage(const tl::expected<QString, UpdateFailure> &package);
    void openPackage();
    void fail(const UpdateFailure &failure);
    void conclude(UpdatePhase phase);
    void show();
    void finish();

    const UpdaterConfiguration &m_configuration;
    const UpdaterServices &m_services;
    UpdaterSettingsStore &m_settings;
    UpdateSessionDelegate &m_delegate;
    UpdateState m_state;
    bool m_userInitiated = false;
    bool m_isShown = false;
    QString m_package; ///< downloaded, verified and not yet handed out
    Subscription m_operation;
};

} // namespace tickwise
