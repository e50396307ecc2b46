#pragma once

#include "catalog/CoinCatalog.h"
#include "market/PriceService.h"
#include "pipeline/PriceAlertNotifying.h"
#include "settings/SettingsViewModel.h"
#include "support/Subscription.h"

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
                      SettingsViewModel &settingsViewModel, Clock clock = systemClock, QObject *parent = nullptr);

    /// One entry per watchlist coin that the catalog knows, in watchlist order.
    const std::vector<Coin> &coins() const { return m_coins.value(); }
    QBindable<std::vector<Coin>> bindableCoins() { return &m_coins; }

    /// True from the start of a fetch until its completion.
    bool isLoading() const { return m_isLoading; }
    QBindable<bool> bindableIsLoading() { return &m_isLoading; }

    /// The rate of the last snapshot that was applied; 1 before.
    double lastUsdToTargetExchangeRate() const { return m_lastUsdToTargetExchangeRate; }
    QBindable<double> bindableLastUsdToTargetExchangeRate() { return &m_lastUsdToTargetExchangeRate; }

    /// The currency that the held prices were fetched in; none before the first.
    std::optional<BaseCurrency> priceCurrency() const { return m_priceDataCurrency; }

    /// Why the last fetch failed; none after a success.
    std::optional<ProviderFailure> lastFetchFailure() const { return m_lastFetchFailure; }
    QBindable<std::optional<ProviderFailure>> bindableLastFetchFailure() { return &m_lastFetchFailure; }

    /// Rebuilds `coins` from settings and catalog, keeping held prices where they still mean the same.
    void rebuildCoins();
    /// Restarts the poll timer with the settings' interval, drops the fetch in flight and fetches at once.
    void restartPolling();
    /// One fetch, unless one is under way.
    void fetchPrices();
    /// Stops polling and drops the fetch in flight until `restartPolling`: the machine goes to sleep, and quotes from
    /// before must not count as fresh afterwards.
    void suspendPolling();

Q_SIGNALS:
    void coinsChanged();
    void isLoadingChanged();
    void lastUsdToTargetExchangeRateChanged();
    void lastFetchFailureChanged();

private:
    void discardFetch();
    void receive(const Result<PriceSnapshot> &result, BaseCurrency requested);
    void applySnapshot(const PriceSnapshot &snapshot, BaseCurrency currency);
    void keepDisplayedCoinValid();

    CoinCatalog &m_catalog;
    PriceFetching &m_priceService;
    PriceAlertNotifying &m_notifier;
    SettingsViewModel &m_settingsViewModel;
    Clock m_clock;
    Subscription m_fetch;
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
