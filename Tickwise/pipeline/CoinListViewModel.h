#pragma once

#include "catalog/CoinCatalog.h"
#include "market/PriceService.h"
#include "pipeline/PriceAlertNotifying.h"
#include "settings/SettingsViewModel.h"
#include "support/Subscription.h"
#include "support/SuspendedTime.h"

#include <QObject>
#include <QProperty>
#include <QTimer>

#include <optional>
#include <vector>

namespace tickwise {

/// The watchlist as coins with live prices: polls the price service, merges its snapshots, evaluates alerts. Main
/// thread only.
class CoinListViewModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(std::vector<tickwise::Coin> coins READ coins NOTIFY coinsChanged BINDABLE bindableCoins)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged BINDABLE bindableIsLoading)

public:
    CoinListViewModel(CoinCatalog &catalog, PriceFetching &priceService, PriceAlertNotifying &notifier,
                      SettingsViewModel &settingsViewModel, Clock clock = systemClock,
                      SuspendedTime suspendedTime = systemSuspendedTime, QObject *parent = nullptr);

    /// One entry per watchlist coin that the catalog knows, in watchlist order.
    const std::vector<Coin> &coins() const { return m_coins.value(); }
    QBindable<std::vector<Coin>> bindableCoins() { return &m_coins; }

    /// True from the start of a fetch until its completion.
    bool isLoading() const { return m_isLoading; }
    QBindable<bool> bindableIsLoading() { return &m_isLoading; }

    /// The rate of the last snapshot that was applied; 1 before.
    double lastUsdToTargetExchangeRate() const { return m_lastUsdToTargetExchangeRate; }
    QBindable<double> bindableLastUsdToTargetExchangeRate() { return &m_lastUsdToTargetExchangeRate; }

    /// The currency of the prices in `coins`; none before the first snapshot. It differs from the settings' currency
    /// between a change of that and the reload that follows.
    std::optional<BaseCurrency> priceDataCurrency() const { return m_priceDataCurrency; }

    /// Why the last fetch failed; none after a success, and when there is no coin to fetch.
    std::optional<ProviderFailure> lastFetchFailure() const { return m_lastFetchFailure; }

    /// Rebuilds `coins` from settings and catalog, keeping held prices where they still mean the same.
    void rebuildCoins();
    /// Restarts the poll timer with the settings' interval, drops the fetch in flight and calls `fetchPrices`.
    void restartPolling();
    /// One fetch, unless one is under way, polling is suspended, or the settings' currency has changed since the last
    /// rebuild: no list mixes two currencies.
    void fetchPrices();
    /// Stops polling and drops the fetch in flight: the machine goes to sleep. Nothing is fetched until
    /// `resumePolling`.
    void suspendPolling();
    /// Restarts polling after `suspendPolling`: the machine woke.
    void resumePolling();

Q_SIGNALS:
    void coinsChanged();
    void isLoadingChanged();
    void lastUsdToTargetExchangeRateChanged();
    void lastFetchFailureChanged();

private:
    /// What has to be unchanged for a snapshot to be applied.
    struct FetchConditions
    {
        BaseCurrency currency;
        std::chrono::nanoseconds suspendedTime;
    };

    void stopPolling();
    void discardFetch();
    void receive(const Result<PriceSnapshot> &result, FetchConditions conditions);
    void applySnapshot(const PriceSnapshot &snapshot, BaseCurrency currency);
    void keepDisplayedCoinValid();

    CoinCatalog &m_catalog;
    PriceFetching &m_priceService;
    PriceAlertNotifying &m_notifier;
    SettingsViewModel &m_settingsViewModel;
    Clock m_clock;
    SuspendedTime m_suspendedTime;
    Subscription m_fetch;
    quint64 m_fetchCount = 0;
    bool m_isSuspended = false;
    BaseCurrency m_listCurrency = BaseCurrency::usd; ///< the settings' currency when `coins` was last rebuilt
    QTimer m_pollTimer;
    std::optional<BaseCurrency> m_priceDataCurrency;
    QPropertyNotifier m_catalogNotifier;
    Q_OBJECT_BINDABLE_PROPERTY(CoinListViewModel, std::vector<Coin>, m_coins, &CoinListViewModel::coinsChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(CoinListViewModel, bool, m_isLoading, false,
                                         &CoinListViewModel::isLoadingChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(CoinListViewModel, double, m_lastUsdToTargetExchangeRate, 1.0,
                                         &CoinListViewModel::lastUsdToTargetExchangeRateChanged)
    Q_OBJECT_BINDABLE_PROPERTY(CoinListViewModel, std::optional<ProviderFailure>, m_lastFetchFailure,
                               &CoinListViewModel::lastFetchFailureChanged)
};

} // namespace tickwise
