#include "app/AppDelegate.h"

#include "app/LocalizationManager.h"
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
    m_widgetSnapshotWriter =
        std::make_unique<WidgetSnapshotWriter>(WidgetSnapshotStore{m_environment.container}, coinListViewModel(),
                                               m_settingsViewModel, m_environment.reloadWidgets, m_environment.clock);
    followWatchlistLogos();
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
    connect(m_statusItem.get(), &StatusItem::clicked, this, [this] { activate(); });
    followMenuInputs();
}

void AppDelegate::followMenuInputs()
{
    const auto update = [this] { m_statusItem->menuChanged(); };
    const auto choice = [](const AppSettings &settings) {
        QStringList ids{settings.displayedCoinId};
        for (const WatchlistCoin &coin : settings.watchlistCoins)
            ids.append(coin.coinId);
        return ids;
    };
    m_notifiers.push_back(followSettings(m_settingsViewModel, choice, [update](const QStringList &) { update(); }));
    m_notifiers.push_back(m_updateController.bindableCanCheckForUpdates().addNotifier(update));
    connect(this, &AppDelegate::languageApplied, m_statusItem.get(), update);
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
