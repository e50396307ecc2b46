#include "app/AppDelegate.h"

#include "app/LocalizationManager.h"
#include "app/PopoverController.h"
#include "app/StatusMenu.h"
#include "catalog/ShippedImages.h"
#include "support/MainThread.h"

#include <QUrl>

#include <algorithm>

namespace tickwise {

namespace {

/// QUrl reads every spelling of a scheme as the lower-case one; the exact one is in the address itself.
bool isOwnAddress(const QString &address)
{
    return address.startsWith(QLatin1String("tickwise:")) && QUrl(address).isValid();
}

} // namespace

SettingsTab requestedTab(const QVariantMap &userInfo)
{
    const QVariant tab = userInfo.value(NotificationCenter::tabKey);
    if (tab.metaType() != QMetaType::fromType<QString>())
        return SettingsTab::general;
    return fromRawValue<SettingsTab>(tab.toString()).value_or(SettingsTab::general);
}

AppDelegate::AppDelegate(AppEnvironment environment, QObject *parent)
    : QObject(parent)
    , m_environment(std::move(environment))
    , m_settingsViewModel(UserDefaultsSettingsStore(m_environment.defaults))
    , m_catalog(m_environment.catalogPath, shippedImageExists)
    , m_menuBarViewModel(m_environment.clock)
    , m_notificationService(m_environment.notificationCenter, m_environment.clock)
    , m_launchAtLoginService(m_environment.loginItem)
    , m_settingsReactions(m_settingsViewModel)
{
    connect(&m_environment.notificationCenter, &UserNotificationCenter::activated, this,
            [this](const QString &, const QString &token) { activate(token); });
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching()
{
    requireMainThread();
    // Names a process that hosts a test run: nothing of the user's may be touched there.
    if (m_environment.environment.contains(QStringLiteral("XCTestConfigurationFilePath")))
        return;
    if (m_environment.isSecondCopy()) {
        Q_EMIT quitRequested();
        return;
    }
    if (m_environment.attachUpdater)
        m_environment.attachUpdater(m_updateController);
    createStatusItem();
    createPopover();
    m_widgetSnapshotWriter =
        std::make_unique<WidgetSnapshotWriter>(WidgetSnapshotStore{m_environment.container}, coinListViewModel(),
                                               m_settingsViewModel, m_environment.reloadWidgets, m_environment.clock);
    desktopOverlay();
    m_settingsReactions.followWatchlistLogos(m_catalog, logoStore());
    m_settingsReactions.followWatchlist(coinListViewModel());
    connect(&m_notificationCenter, &NotificationCenter::posted, this, [this](const QString &name) {
        if (name == NotificationCenter::adjustDesktopOverlay)
            desktopOverlay().beginAdjusting();
    });
    if (m_popover && std::exchange(m_opensPopoverAfterLaunch, false))
        m_popover->openAfterLaunch([this] { return popoverAnchor(PopoverAnchor::Cause::request); });
    m_notificationService.requestAuthorization();
    m_settingsReactions.followLaunchAtLogin(m_launchAtLoginService);
    m_settingsReactions.followReloadSettings(coinListViewModel());
    m_settingsReactions.followLanguage([this](AppLanguage language) { applyLanguage(language); });
    connect(&m_notificationCenter, &NotificationCenter::posted, this,
            [this](const QString &name, const QVariantMap &userInfo) {
                if (name == NotificationCenter::navigate)
                    handleNavigationNotification(userInfo);
            });
}

CoinListViewModel &AppDelegate::coinListViewModel()
{
    if (!m_coinListViewModel) {
        m_exchangeRateService =
            std::make_unique<ExchangeRateService>(m_environment.httpClient, m_environment.endpoints,
                                                  ExchangeRateCacheStore{m_environment.container}, m_environment.clock);
        m_priceService = std::make_unique<PriceService>(m_environment.httpClient, *m_exchangeRateService,
                                                        m_environment.endpoints, m_environment.clock);
        m_coinListViewModel =
            std::make_unique<CoinListViewModel>(m_catalog, *m_priceService, m_notificationService, m_settingsViewModel,
                                                m_environment.clock, m_environment.suspendedTime);
    }
    return *m_coinListViewModel;
}

void AppDelegate::createStatusItem()
{
    m_statusItem = m_environment.makeStatusItem();
    m_menuBarViewModel.bind(m_statusItem.get(), coinListViewModel(), m_settingsViewModel);
    m_statusItem->setMenu([this] { return makeStatusMenu(); });
    connect(m_statusItem.get(), &StatusItem::clicked, this, &AppDelegate::handleStatusItemClick);
    connect(m_statusItem.get(), &StatusItem::availabilityChanged, this, [this] {
        if (std::exchange(m_opensPopoverAtItem, false))
            openPopover();
    });
    followMenuInputs();
}

void AppDelegate::createPopover()
{
    if (!m_environment.makePopoverSurface)
        return;
    const auto navigate = [this](SettingsTab tab) {
        m_notificationCenter.post(NotificationCenter::navigate, {{QStringLiteral("tab"), rawValue(tab)}});
    };
    const auto quit = [this] { Q_EMIT quitRequested(); };
    const CoinPopoverContext context{
        coinListViewModel(), m_settingsViewModel, m_updateController, &logoStore(), navigate, quit,
        m_environment.clock};
    m_popover = std::make_unique<PopoverController>(context, m_environment.makePopoverSurface());
    connect(this, &AppDelegate::languageApplied, m_popover.get(), &PopoverController::retranslate);
    connect(m_popover.get(), &PopoverController::activationRequested, this, [this] { Q_EMIT activationRequested({}); });
}

PopoverAnchor AppDelegate::popoverAnchor(PopoverAnchor::Cause cause) const
{
    PopoverAnchor anchor;
    anchor.cause = cause;
    anchor.item = m_statusItem->geometry();
    anchor.hasStatusItem = m_statusItem->isShown();
    return anchor;
}

void AppDelegate::handleStatusItemClick(std::optional<QPoint> position)
{
    if (!m_popover)
        return activate();
    PopoverAnchor anchor = popoverAnchor(PopoverAnchor::Cause::click);
    anchor.position = position;
    m_popover->toggle(anchor);
}

void AppDelegate::followMenuInputs()
{
    const auto update = [this] { m_statusItem->menuChanged(); };
    m_settingsReactions.followStatusMenu(update);
    connect(&m_updateController, &UpdateController::canCheckForUpdatesChanged, m_statusItem.get(), update);
    connect(this, &AppDelegate::languageApplied, m_statusItem.get(), update);
}

WatchlistViewModel &AppDelegate::watchlistViewModel()
{
    if (!m_watchlistViewModel)
        m_watchlistViewModel = std::make_unique<WatchlistViewModel>(m_catalog, m_settingsViewModel);
    return *m_watchlistViewModel;
}

CoinLogoStore &AppDelegate::logoStore()
{
    if (!m_logoStore) {
        m_logoStore = std::make_unique<CoinLogoStore>(CoinLogoCache::inContainer(m_environment.container),
                                                      m_environment.httpClient, m_environment.isLogoAllowed);
    }
    return *m_logoStore;
}

DesktopOverlayController &AppDelegate::desktopOverlay()
{
    if (!m_desktopOverlay) {
        m_desktopOverlay = std::make_unique<DesktopOverlayController>(
            DesktopOverlayContext{m_settingsViewModel, coinListViewModel(), m_catalog, logoStore(),
                                  m_environment.makeDesktopSurface, m_environment.clock});
        connect(this, &AppDelegate::languageApplied, m_desktopOverlay.get(), &DesktopOverlayController::retranslate);
    }
    return *m_desktopOverlay;
}

void AppDelegate::applyLanguage(AppLanguage language)
{
    LocalizationManager::shared().apply(language);
    m_menuBarViewModel.refresh();
    Q_EMIT languageApplied();
}

Menu AppDelegate::makeStatusMenu()
{
    StatusMenuActions actions;
    actions.changeCoin = [this](const QString &coinId) { changeCoin(coinId); };
    actions.openSettings = [this] { openSettingsWindow(SettingsTab::general); };
    actions.openAbout = [this] { openSettingsWindow(SettingsTab::about); };
    actions.checkForUpdates = [this] { m_updateController.checkForUpdates(); };
    actions.quit = [this] { Q_EMIT quitRequested(); };
    return statusMenu(m_settingsViewModel.settings(), m_catalog, m_updateController.canCheckForUpdates(), actions);
}

void AppDelegate::changeCoin(const QString &coinId)
{
    requireMainThread();
    AppSettings settings = m_settingsViewModel.settings();
    settings.displayedCoinId = coinId;
    m_settingsViewModel.update(settings);
}

void AppDelegate::activate(const QString &token)
{
    requireMainThread();
    Q_EMIT activationRequested(token);
    openPopover();
}

/// Without a panel that shows the item the popover belongs elsewhere.
void AppDelegate::openPopover()
{
    if (!m_popover)
        return;
    if (m_statusItem->availability() == StatusItemAvailability::unknown)
        m_opensPopoverAtItem = true;
    else
        m_popover->open(popoverAnchor(PopoverAnchor::Cause::request));
}

void AppDelegate::openSettingsWindow(SettingsTab tab, const QString &token)
{
    requireMainThread();
    m_opensPopoverAtItem = false;
    if (m_popover)
        m_popover->close();
    Q_EMIT settingsWindowRequested(tab, token);
}

void AppDelegate::openUrls(const QStringList &addresses, const QString &token)
{
    requireMainThread();
    if (std::any_of(addresses.begin(), addresses.end(), isOwnAddress))
        activate(token);
}

void AppDelegate::performAction(const QString &action, const QString &token)
{
    requireMainThread();
    if (action == u"watchlist")
        openSettingsWindow(SettingsTab::watchlist, token);
    else if (action == u"settings")
        openSettingsWindow(SettingsTab::general, token);
    else if (action == u"quit")
        Q_EMIT quitRequested();
    else
        activate(token);
}

void AppDelegate::handleNavigationNotification(const QVariantMap &userInfo)
{
    requireMainThread();
    openSettingsWindow(requestedTab(userInfo));
}

void AppDelegate::machineWillSleep()
{
    if (m_coinListViewModel)
        m_coinListViewModel->suspendPolling();
}

void AppDelegate::machineDidWake()
{
    if (m_coinListViewModel)
        m_coinListViewModel->resumePolling();
    if (m_desktopOverlay)
        m_desktopOverlay->reposition();
}

void AppDelegate::networkReturned()
{
    if (m_coinListViewModel)
        m_coinListViewModel->restartPolling();
    if (m_logoStore)
        m_logoStore->forgetFailures();
}

} // namespace tickwise
