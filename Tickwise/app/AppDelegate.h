#pragma once

#include "app/SettingsReactions.h"
#include "market/Endpoints.h"
#include "market/ExchangeRateService.h"
#include "market/HttpClient.h"
#include "market/PriceService.h"
#include "overlay/DesktopOverlayController.h"
#include "pipeline/MenuBarViewModel.h"
#include "pipeline/NotificationService.h"
#include "pipeline/StatusItem.h"
#include "support/NotificationCenter.h"
#include "ui/LaunchAtLoginService.h"
#include "ui/popover/PopoverSurface.h"
#include "ui/updates/UpdateController.h"
#include "ui/watchlist/WatchlistViewModel.h"
#include "widget/WidgetSnapshotWriter.h"

#include <QObject>
#include <QProcessEnvironment>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace tickwise {

class PopoverController;

/// What the application stands on: the desktop's services and the addresses of the market's. All of it outlives the
/// delegate.
struct AppEnvironment
{
    SettingsDataStorage &defaults;
    HttpClient &httpClient;
    UserNotificationCenter &notificationCenter;
    LoginItem &loginItem;
    /// Attaches an updater to the controller; none: this build has no updater.
    std::function<void(UpdateController &)> attachUpdater;
    std::function<std::unique_ptr<StatusItem>()> makeStatusItem;
    /// Where the popover is shown; none: it is not.
    std::function<std::unique_ptr<PopoverSurface>()> makePopoverSurface;
    /// Where the desktop overlay is shown; none, or a result of none: this desktop has no place for it.
    std::function<std::unique_ptr<DesktopSurface>()> makeDesktopSurface;
    std::function<void()> reloadWidgets;
    std::function<bool()> isSecondCopy; ///< true when another copy runs; that one has then been asked to show itself
    std::optional<QString> container;   ///< directory shared with the widget; none when it cannot be had
    QString catalogPath = QStringLiteral(":/coins.json");
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    Endpoints endpoints;
    LogoAddressRule isLogoAllowed = isLogoAddress; ///< only loopback worlds have another
    Clock clock = systemClock;
    SuspendedTime suspendedTime = systemSuspendedTime;
};

/// The tab that the user information of `NotificationCenter::navigate` names; `general` where it names none.
SettingsTab requestedTab(const QVariantMap &userInfo);

/// Owns the long-lived objects and wires them together in the order of the start-up. Main thread only.
class AppDelegate : public QObject
{
    Q_OBJECT

public:
    explicit AppDelegate(AppEnvironment environment, QObject *parent = nullptr);
    ~AppDelegate() override;

    /// Runs the start-up. A second copy quits at once; a process that hosts a test run stays as it is.
    void applicationDidFinishLaunching();

    SettingsViewModel &settingsViewModel() { return m_settingsViewModel; }
    CoinCatalog &catalog() { return m_catalog; }
    /// Where the windows post the notifications that the delegate observes.
    NotificationCenter &notificationCenter() { return m_notificationCenter; }
    MenuBarViewModel &menuBarViewModel() { return m_menuBarViewModel; }
    /// Created on first use.
    CoinLogoStore &logoStore();
    /// Created on first use.
    WatchlistViewModel &watchlistViewModel();
    /// Created on first use.
    DesktopOverlayController &desktopOverlay();
    UpdateController &updateController() { return m_updateController; }
    /// Created on first use, which starts polling.
    CoinListViewModel &coinListViewModel();

    /// Has the start-up open the popover. To be set before it.
    void setOpensPopoverAfterLaunch(bool opens) { m_opensPopoverAfterLaunch = opens; }
    /// None before the start-up.
    PopoverController *popover() { return m_popover.get(); }

    /// Brings the application to the front and opens the popover: what a second copy and a notification's click ask
    /// for.
    void activate(const QString &token = {});
    /// Closes the popover and asks for the settings window on that tab.
    void openSettingsWindow(SettingsTab tab, const QString &token = {});
    /// The first address with the scheme "tickwise", written just so, brings the application to the front; others are
    /// ignored.
    void openUrls(const QStringList &addresses, const QString &token);
    /// An action of the desktop file: "watchlist", "settings" or "quit". An unknown one brings the application to the
    /// front.
    void performAction(const QString &action, const QString &token);
    /// Stops polling and drops quotes that are under way. Nothing is fetched until `machineDidWake`.
    void machineWillSleep();
    /// Polls anew at once, and looks where the overlay belongs now.
    void machineDidWake();
    /// Polls anew at once, unless the machine is about to sleep: requests on the old route may never end.
    void networkReturned();

Q_SIGNALS:
    void quitRequested();
    /// The user wants to see the application; the token comes from the desktop and may be empty.
    void activationRequested(const QString &token);
    void languageApplied();
    /// The token as in `activationRequested`.
    void settingsWindowRequested(tickwise::SettingsTab tab, const QString &token);

private:
    void handleNavigationNotification(const QVariantMap &userInfo);
    void createStatusItem();
    void followMenuInputs();
    void createPopover();
    void openPopover();
    void handleStatusItemClick(std::optional<QPoint> position);
    PopoverAnchor popoverAnchor(PopoverAnchor::Cause cause) const;
    void applyLanguage(AppLanguage language);
    Menu makeStatusMenu();
    void changeCoin(const QString &coinId);

    AppEnvironment m_environment;
    NotificationCenter m_notificationCenter;
    SettingsViewModel m_settingsViewModel;
    CoinCatalog m_catalog;
    MenuBarViewModel m_menuBarViewModel;
    UpdateController m_updateController;
    NotificationService m_notificationService;
    LaunchAtLoginService m_launchAtLoginService;
    std::unique_ptr<ExchangeRateService> m_exchangeRateService;
    std::unique_ptr<PriceService> m_priceService;
    std::unique_ptr<CoinListViewModel> m_coinListViewModel;
    std::unique_ptr<StatusItem> m_statusItem;
    std::unique_ptr<WidgetSnapshotWriter> m_widgetSnapshotWriter;
    std::unique_ptr<CoinLogoStore> m_logoStore;
    std::unique_ptr<DesktopOverlayController> m_desktopOverlay;
    std::unique_ptr<WatchlistViewModel> m_watchlistViewModel;
    std::unique_ptr<PopoverController> m_popover;
    bool m_opensPopoverAtItem = false; ///< as soon as it is known whether a panel shows the item
    bool m_opensPopoverAfterLaunch = false;
    SettingsReactions m_settingsReactions;
};

} // namespace tickwise
