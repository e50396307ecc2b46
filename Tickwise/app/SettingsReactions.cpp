#include "app/SettingsReactions.h"

#include "settings/SettingsStream.h"

namespace tickwise {

namespace {

constexpr std::chrono::milliseconds reloadDebounce{500};

QStringList watchlistIds(const AppSettings &settings)
{
    QStringList ids;
    for (const WatchlistCoin &coin : settings.watchlistCoins)
        ids.append(coin.coinId);
    return ids;
}

/// The coins that the catalog knows.
std::vector<CoinMetadata> coinsWithIds(const QStringList &ids, const CoinCatalog &catalog)
{
    std::vector<CoinMetadata> coins;
    for (const QString &id : ids) {
        if (const CoinMetadata *const coin = catalog.byID().value(id))
            coins.push_back(*coin);
    }
    return coins;
}

} // namespace

ReloadSettingsSnapshot::ReloadSettingsSnapshot(const AppSettings &settings)
    : baseCurrency(settings.baseCurrency)
    , priceChangeNotificationEnabled(settings.priceChangeNotificationEnabled)
    , pollingInterval(settings.pollingInterval)
    , language(settings.language)
{
}

SettingsReactions::SettingsReactions(SettingsViewModel &settings)
    : m_settings(settings)
{
    m_reloadTimer.setSingleShot(true);
    m_reloadTimer.setTimerType(Qt::PreciseTimer);
    m_reloadTimer.setInterval(reloadDebounce);
}

void SettingsReactions::followWatchlistLogos(const CoinCatalog &catalog, CoinLogoStore &logoStore)
{
    const auto prefetch = [&catalog, &logoStore](const QStringList &ids) {
        logoStore.sync(coinsWithIds(ids, catalog));
    };
    prefetch(watchlistIds(m_settings.settings()));
    m_notifiers.push_back(followSettings(m_settings, watchlistIds, prefetch));
}

void SettingsReactions::followLaunchAtLogin(LaunchAtLoginService &service)
{
    const auto launchAtLogin = [](const AppSettings &settings) { return settings.launchAtLogin; };
    service.setEnabled(launchAtLogin(m_settings.settings()));
    m_notifiers.push_back(
        followSettings(m_settings, launchAtLogin, [&service](bool enabled) { service.setEnabled(enabled); }));
}

void SettingsReactions::followReloadSettings(CoinListViewModel &coinList)
{
    QObject::connect(&m_reloadTimer, &QTimer::timeout, &coinList, [&coinList] {
        coinList.rebuildCoins();
        coinList.restartPolling();
    });
    const auto reloadSettings = [](const AppSettings &settings) { return ReloadSettingsSnapshot(settings); };
    m_notifiers.push_back(
        followSettings(m_settings, reloadSettings, [this](const ReloadSettingsSnapshot &) { m_reloadTimer.start(); }));
}

void SettingsReactions::followWatchlist(CoinListViewModel &coinList)
{
    m_notifiers.push_back(followSettings(m_settings, watchlistIds, [&coinList](const QStringList &) {
        coinList.rebuildCoins();
        coinList.restartPolling();
    }));
}

void SettingsReactions::followStatusMenu(const std::function<void()> &changed)
{
    const auto choice = [](const AppSettings &settings) {
        return QStringList{settings.displayedCoinId} + watchlistIds(settings);
    };
    m_notifiers.push_back(followSettings(m_settings, choice, [changed](const QStringList &) { changed(); }));
}

void SettingsReactions::followLanguage(std::function<void(AppLanguage)> apply)
{
    const auto language = [](const AppSettings &settings) { return settings.language; };
    apply(language(m_settings.settings()));
    m_notifiers.push_back(followSettings(m_settings, language, std::move(apply)));
}

} // namespace tickwise
