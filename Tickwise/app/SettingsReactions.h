#pragma once

#include "catalog/CoinCatalog.h"
#include "catalog/logos/CoinLogoStore.h"
#include "pipeline/CoinListViewModel.h"
#include "settings/SettingsViewModel.h"
#include "ui/LaunchAtLoginService.h"

#include <QTimer>

#include <functional>
#include <vector>

namespace tickwise {

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

/// Applies changes of the settings to the services and models that they concern, for as long as it lives. What is
/// passed to it has to outlive it. Main thread only.
class SettingsReactions
{
public:
    explicit SettingsReactions(SettingsViewModel &settings);

    /// Prefetches the logos of the watchlist's coins, now and after each change of the list.
    void followWatchlistLogos(const CoinCatalog &catalog, CoinLogoStore &logoStore);
    /// Rebuilds the list and restarts polling at once when the watchlist has other coins or another order.
    void followWatchlist(CoinListViewModel &coinList);
    /// Calls `changed` when the coins or the checked coin of the status menu are others.
    void followStatusMenu(const std::function<void()> &changed);
    /// Applies the setting now and after each change.
    void followLaunchAtLogin(LaunchAtLoginService &service);
    /// Rebuilds the list and restarts polling 500 ms after the last change of a `ReloadSettingsSnapshot`.
    void followReloadSettings(CoinListViewModel &coinList);
    /// Calls `apply` with the language, now and after each change.
    void followLanguage(std::function<void(AppLanguage)> apply);

private:
    SettingsViewModel &m_settings;
    QTimer m_reloadTimer;
    std::vector<QPropertyNotifier> m_notifiers;
};

} // namespace tickwise
