#pragma once

#include "catalog/logos/CoinLogoStore.h"
#include "market/Endpoints.h"
#include "market/ExchangeRateService.h"
#include "market/HttpClient.h"
#include "market/PriceService.h"
#include "pipeline/CoinListViewModel.h"
#include "pipeline/MenuBarViewModel.h"
#include "pipeline/NotificationService.h"
#include "pipeline/StatusItem.h"
#include "ui/LaunchAtLoginService.h"
#include "ui/popover/PopoverSurface.h"
#include "ui/updates/UpdateController.h"
#include "widget/WidgetSnapshotWriter.h"

#include <QList>
#include <QObject>
#include <QProcessEnvironment>
#include <QTimer>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

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
    std::function<void()> reloadWidgets;
    std::function<bool()> isSecondCopy; ///< true when another copy runs; that one has then been asked to show itself
    std::optional<QString> container;   ///< directory shared with the widget; none when it cannot be had
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    Endpoints endpoints;
    LogoAddressRule isLogoAllowed = isLogoAddress; ///< only loopback worlds have another
    Clock clock = systemClock;
};

/// The settings whose change needs the coin list rebuilt and polling restarted.
struct ReloadSettingsSnapshot
{
    explicit ReloadSettingsSnapshot(const AppSettings &settings);

    BaseCurrency baseCurrency;
    bool priceChangeNotificationEnabled;
    double pollingInterval;
    AppLanguage language;
    bool operator==(const ReloadSettingsSnapshot &) const = default;
};

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
    MenuBarViewModel &menuBarViewModel() { return m_menuBarViewModel; }
    /// Created on first use.
    CoinLogoStore &logoStore();
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
    /// The first address of the scheme "tickwise" brings the application to the front; others are ignored.
    void openUrls(const QList<QUrl> &urls, const QString &token);
    /// Stops polling and drops quotes that are under way: the machine is about to sleep.
    void machineWillSleep();
    /// Polls anew at once: the machine woke, or the network returned.
    void freshPricesNeeded();

Q_SIGNALS:
    void quitRequested();
    /// The user wants to see the application; the token comes from the desktop and may be empty.
    void activationRequested(const QString &token);
    void languageApplied();

private:
    void createStatusItem();
    void createPopover();
    void handleStatusItemClick(std::optional<QPoint> position);
    PopoverAnchor popoverAnchor(PopoverAnchor::Cause cause) const;
    void followWatchlistLogos();
    void prefetchLogos(const QStringList &coinIds);
    void followLaunchAtLogin();
    void followReloadSettings();
    void followLanguage();
    void applyLanguage(AppLanguage language);
    Menu makeStatusMenu();
    void changeCoin(const QString &coinId);

    AppEnvironment m_environment;
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
    std::unique_ptr<PopoverController> m_popover;
    bool m_opensPopoverAfterLaunch = false;
    QTimer m_reloadTimer;
    std::vector<QPropertyNotifier> m_notifiers;
};

} // namespace tickwise
