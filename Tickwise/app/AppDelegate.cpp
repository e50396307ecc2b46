#include "app/AppDelegate.h"

#include "app/LocalizationManager.h"
#include "app/PopoverController.h"
#include "app/StatusMenu.h"
#include "catalog/ShippedImages.h"
#include "settings/SettingsStream.h"

#include <QThread>

#include <algorithm>

namespace tickwise {

namespace {

constexpr std::chrono::milliseconds reloadDebounce{500};

} // namespace

ReloadSettingsSnapshot::ReloadSettingsSnapshot(const AppSettings &settings)
    : baseCurrency(settings.baseCurrency)
    , priceChangeNotificationEnabled(settings.priceChangeNotificationEnabled)
    , pollingInterval(settings.pollingInterval)
    , language(settings.language)
{
}

AppDelegate::AppDelegate(AppEnvironment environment, QObject *parent)
    : QObject(parent)
    , m_environment(std::move(environment))
    , m_settingsViewModel(UserDefaultsSettingsStore(m_environment.defaults))
    , m_catalog(QStringLiteral(":/coins.json"), shippedImageExists)
    , m_menuBarViewModel(m_environment.clock)
    , m_notificationService(m_environment.notificationCenter, m_environment.clock)
    , m_launchAtLoginService(m_environment.loginItem)
{
    connect(&m_environment.notificationCenter, &UserNotificationCenter::activated, this,
            [this](const QString &, const QString &token) { activate(token); });
    m_reloadTimer.setSingleShot(true);
    m_reloadTimer.setInterval(reloadDebounce);
    connect(&m_reloadTimer, &QTimer::timeout, this, [this] {
        coinListViewModel().rebuildCoins();
        coinListViewModel().restartPolling();
    });
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching()
{
    Q_ASSERT(thread() == QThread::currentThread());
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
    followWatchlistLogos();
    if (m_popover && std::exchange(m_opensPopoverAfterLaunch, false))
        m_popover->openAfterLaunch(popoverAnchor(PopoverAnchor::Cause::request));
    m_notificationService.requestAuthorization();
    followLaunchAtLogin();
    followReloadSettings();
    followLanguage();
}

CoinListViewModel &AppDelegate::coinListViewModel()
{
    if (!m_coinListViewModel) {
        m_exchangeRateService =
            std::make_unique<ExchangeRateService>(m_environment.httpClient, m_environment.endpoints,
                                                  ExchangeRateCacheStore{m_environment.container}, m_environment.clock);
        m_priceService = std::make_unique<PriceService>(m_environment.httpClient, *m_exchangeRateService,
                                                        m_environment.endpoints, m_environment.clock);
        m_coinListViewModel = std::make_unique<CoinListViewModel>(m_catalog, *m_priceService, m_notificationService,
                                                                  m_settingsViewModel, m_environment.clock);
    }
    return *m_coinListViewModel;
}

void AppDelegate::createStatusItem()
{
    m_statusItem = m_environment.makeStatusItem();
    m_menuBarViewModel.bind(m_statusItem.get(), coinListViewModel(), m_settingsViewModel);
    m_statusItem->setMenu([this] { return makeStatusMenu(); });
    connect(m_statusItem.get(), &StatusItem::clicked, this, &AppDelegate::handleStatusItemClick);
}

void AppDelegate::createPopover()
{
    if (!m_environment.makePopoverSurface)
        return;
    const CoinPopoverContext context{coinListViewModel(), m_settingsViewModel,    m_updateController,
                                     &logoStore(),        [this](SettingsTab) {}, [this] { Q_EMIT quitRequested(); },
                                     m_environment.clock};
    m_popover = std::make_unique<PopoverController>(context, m_environment.makePopoverSurface());
    connect(this, &AppDelegate::languageApplied, m_popover.get(), &PopoverController::retranslate);
}

PopoverAnchor AppDelegate::popoverAnchor(PopoverAnchor::Cause cause) const
{
    PopoverAnchor anchor;
    anchor.cause = cause;
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
    if (m_popover->isShown())
        Q_EMIT activationRequested({});
}

CoinLogoStore &AppDelegate::logoStore()
{
    if (!m_logoStore) {
        m_logoStore = std::make_unique<CoinLogoStore>(CoinLogoCache::inContainer(m_environment.container),
                                                      m_environment.httpClient, m_environment.isLogoAllowed);
    }
    return *m_logoStore;
}

void AppDelegate::followWatchlistLogos()
{
    const auto coinIds = [](const AppSettings &settings) {
        QStringList ids;
        for (const WatchlistCoin &coin : settings.watchlistCoins)
            ids.append(coin.coinId);
        return ids;
    };
    prefetchLogos(coinIds(m_settingsViewModel.settings()));
    m_notifiers.push_back(
        followSettings(m_settingsViewModel, coinIds, [this](const QStringList &ids) { prefetchLogos(ids); }));
}

void AppDelegate::prefetchLogos(const QStringList &coinIds)
{
    std::vector<CoinMetadata> coins;
    for (const QString &id : coinIds) {
        const auto coin = m_catalog.byID().constFind(id);
        if (coin != m_catalog.byID().constEnd())
            coins.push_back(*coin);
    }
    logoStore().sync(coins);
}

void AppDelegate::followLaunchAtLogin()
{
    const auto launchAtLogin = [](const AppSettings &settings) { return settings.launchAtLogin; };
    m_launchAtLoginService.setEnabled(launchAtLogin(m_settingsViewModel.settings()));
    m_notifiers.push_back(followSettings(m_settingsViewModel, launchAtLogin,
                                         [this](bool enabled) { m_launchAtLoginService.setEnabled(enabled); }));
}

void AppDelegate::followReloadSettings()
{
    const auto reloadSettings = [](const AppSettings &settings) { return ReloadSettingsSnapshot(settings); };
    m_notifiers.push_back(followSettings(m_settingsViewModel, reloadSettings,
                                         [this](const ReloadSettingsSnapshot &) { m_reloadTimer.start(); }));
}

void AppDelegate::followLanguage()
{
    const auto language = [](const AppSettings &settings) { return settings.language; };
    applyLanguage(language(m_settingsViewModel.settings()));
    m_notifiers.push_back(
        followSettings(m_settingsViewModel, language, [this](AppLanguage chosen) { applyLanguage(chosen); }));
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
    actions.checkForUpdates = [this] { m_updateController.checkForUpdates(); };
    actions.quit = [this] { Q_EMIT quitRequested(); };
    return statusMenu(m_settingsViewModel.settings(), m_catalog, m_updateController.canCheckForUpdates(), actions);
}

void AppDelegate::changeCoin(const QString &coinId)
{
    AppSettings settings = m_settingsViewModel.settings();
    settings.displayedCoinId = coinId;
    m_settingsViewModel.update(settings);
}

void AppDelegate::activate(const QString &token)
{
    Q_EMIT activationRequested(token);
    if (m_popover)
        m_popover->open(popoverAnchor(PopoverAnchor::Cause::request));
}

void AppDelegate::openUrls(const QList<QUrl> &urls, const QString &token)
{
    const auto isOurs = [](const QUrl &url) { return url.scheme() == QStringLiteral("tickwise"); };
    if (std::any_of(urls.begin(), urls.end(), isOurs))
        activate(token);
}

void AppDelegate::machineWillSleep()
{
    if (m_coinListViewModel)
        m_coinListViewModel->suspendPolling();
}

void AppDelegate::freshPricesNeeded()
{
    if (m_coinListViewModel)
        m_coinListViewModel->restartPolling();
}

} // namespace tickwise
