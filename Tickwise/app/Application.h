#pragma once

#include "app/AppDelegate.h"
#include "app/AppInfo.h"
#include "app/SettingsWindowController.h"
#include "platform/dbus/SessionBus.h"
#include "platform/network/NetworkHttpClient.h"
#include "platform/network/NetworkWatch.h"
#include "platform/notifications/SoundPlayer.h"
#include "platform/session/DesktopMotion.h"
#include "platform/session/SingleInstance.h"
#include "platform/session/SleepMonitor.h"
#include "platform/session/TerminationSignals.h"
#include "platform/session/WidgetCenter.h"
#include "platform/session/WindowPalette.h"
#include "platform/session/packages/DesktopPackageInstaller.h"
#include "platform/storage/UserDefaults.h"
#include "ui/LoginItem.h"
#include "ui/updates/SparkleUpdaterBackend.h"
#include "ui/updates/UpdateWindowPresenter.h"

namespace tickwise {

/// What sets one build of the application apart from another: its identity, its files and the world it talks to.
struct ApplicationConfiguration
{
    QString identifier = QString::fromLatin1(appInfo::bundleIdentifier); ///< bus name, desktop file, settings folder
    QString appGroup = QString::fromLatin1(appInfo::appGroup);
    Endpoints endpoints;
    QByteArray authorities; ///< PEM certificates, trusted instead of the system's; empty: the system's
    QString feedUrl = QString::fromLatin1(appInfo::feedUrl); ///< of the appcast; empty: no updater
    QByteArray feedKey = appInfo::feedKey;                   ///< base64 Ed25519 key of the releases
};

/// Prepares the process before its QApplication: log lines, display. False, with a line on stderr, where there is no
/// display.
bool prepareProcess();

/// The composition root: builds the desktop's services and the delegate over them. Needs a QApplication.
class Application
{
public:
    explicit Application(ApplicationConfiguration configuration);

    /// Starts up and runs until somebody asks to quit. Returns the process's exit code.
    int run();

    AppDelegate &delegate() { return m_delegate; }

private:
    AppEnvironment makeEnvironment();
    std::unique_ptr<StatusItem> makeStatusItem();
    SettingsWindowContext settingsWindowContext();
    bool isSecondCopy();
    void attachUpdater(UpdateController &controller);
    void connectServices();
    void followSystemEvents();
    /// Forgets connections of the old route and lets the updater look at its schedule.
    void networkMayHaveChanged();
    QString portalReason();
    const MotionPreference &motion();

    ApplicationConfiguration m_configuration;
    TerminationSignals m_signals;
    SessionBus m_sessionBus;
    WindowPalette m_windowPalette{m_sessionBus};
    SingleInstance m_singleInstance;
    std::optional<SleepMonitor> m_sleepMonitor; ///< none before `followSystemEvents`
    NetworkWatch m_networkWatch;
    UserDefaults m_defaults;
    NetworkHttpClient m_httpClient;
    SoundPlayer m_soundPlayer;
    std::unique_ptr<UserNotificationCenter> m_notificationCenter;
    std::unique_ptr<LoginItem> m_loginItem;
    WidgetCenter m_widgetCenter;
    std::unique_ptr<DesktopMotion> m_motion;
    DesktopPackageInstaller m_packageInstaller;
    UpdateWindowPresenter m_updateWindow;
    QPointer<SparkleUpdaterBackend> m_updater; ///< owned by the delegate's controller
    AppDelegate m_delegate;
    SettingsWindowController m_settingsWindow;
};

} // namespace tickwise
