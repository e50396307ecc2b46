#include "pipeline/CoinListViewModel.h"

#include "market/FailureReason.h"
#include "pipeline/AlertRule.h"
#include "support/MainThread.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

namespace tickwise {

namespace {

/// The timer's period. An interval that is no time at all runs at the timer's shortest period.
std::chrono::milliseconds timerPeriod(double seconds)
{
    constexpr double shortest = 1;
    constexpr double longest = std::numeric_limits<int>::max(); // a timer holds its milliseconds in an int
    const double milliseconds = std::isnan(seconds) ? shortest : std::clamp(seconds * 1000, shortest, longest);
    return std::chrono::milliseconds(std::llround(milliseconds));
}

ProviderFailure fetchFailure(const Error &error)
{
    const auto *const loading = std::get_if<UrlLoadingError>(&error);
    if (loading && !loading->causes.empty())
        return summary(loading->causes);
    return {{}, failureReason(error), {}};
}

void copyMarketFields(const Coin &from, Coin &to)
{
    to.currentPrice = from.currentPrice;
    to.priceChange24hPercent = from.priceChange24hPercent;
    to.referencePrice = from.referencePrice;
    to.lastUpdated = from.lastUpdated;
}

/// The symbols to fetch, in list order.
QStringList activeSymbols(const std::vector<Coin> &coins)
{
    QStringList symbols;
    for (const Coin &coin : coins) {
        if (coin.status == CoinStatus::active)
            symbols.append(coin.symbol);
    }
    return symbols;
}

/// The elements by id; where an id occurs twice the first one counts.
template<class T, class Id>
QHash<QString, const T *> firstBy(Id id, const std::vector<T> &elements)
{
    QHash<QString, const T *> index;
    index.reserve(static_cast<qsizetype>(elements.size()));
    for (const T &element : elements) {
        const QString &key = std::invoke(id, element);
        if (!index.contains(key))
            index.insert(key, &element);
    }
    return index;
}

} // namespace

CoinListViewModel::CoinListViewModel(CoinCatalog &catalog, PriceFetching &priceService, PriceAlertNotifying &notifier,
                                     SettingsViewModel &settingsViewModel, Clock clock, SuspendedTime suspendedTime,
                                     QObject *parent)
    : QObject(parent)
    , m_catalog(catalog)
    , m_priceService(priceService)
    , m_notifier(notifier)
    , m_settingsViewModel(settingsViewModel)
    , m_clock(std::move(clock))
    , m_suspendedTime(std::move(suspendedTime))
{
    m_pollTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_pollTimer, &QTimer::timeout, this, &CoinListViewModel::fetchPrices);
    rebuildCoins();
    restartPolling();
    m_catalogNotifier = m_catalog.bindableCoins().addNotifier([this] {
        rebuildCoins();
        restartPolling();
    });
}

void CoinListViewModel::rebuildCoins()
{
    requireMainThread();
    if (const std::optional<AppSettings> reconciled = m_catalog.reconcile(m_settingsViewModel.settings()))
        m_settingsViewModel.update(*reconciled);

    const AppSettings &settings = m_settingsViewModel.settings();
    const bool currencyUnchanged = !m_priceDataCurrency || *m_priceDataCurrency == settings.baseCurrency;
    const std::vector<Coin> old = coins();
    const QHash<QString, const Coin *> held =
        currencyUnchanged ? firstBy(&Coin::id, old) : QHash<QString, const Coin *>();
    std::vector<Coin> rebuilt;
    rebuilt.reserve(settings.watchlistCoins.size());
    for (const WatchlistCoin &entry : settings.watchlistCoins) {
        const CoinMetadata *const metadata = m_catalog.byID().value(entry.coinId);
        if (!metadata)
            continue;
        Coin &coin = rebuilt.emplace_back(Coin{*metadata});
        const Coin *const before = held.value(coin.id);
        if (before && before->symbol == coin.symbol)
            copyMarketFields(*before, coin);
    }
    m_listCurrency = settings.baseCurrency;
    if (activeSymbols(rebuilt).isEmpty())
        m_lastFetchFailure = std::nullopt; // no fetch will follow that could correct it
    m_coins = std::move(rebuilt);
    keepDisplayedCoinValid();
}

void CoinListViewModel::keepDisplayedCoinValid()
{
    AppSettings settings = m_settingsViewModel.settings();
    const auto &entries = settings.watchlistCoins;
    const auto isDisplayed = [&](const WatchlistCoin &entry) { return entry.coinId == settings.displayedCoinId; };
    if (entries.empty() || std::any_of(entries.begin(), entries.end(), isDisplayed))
        return;
    settings.displayedCoinId = entries.front().coinId;
    m_settingsViewModel.update(settings);
}

void CoinListViewModel::restartPolling()
{
    requireMainThread();
    stopPolling();
    m_pollTimer.start(timerPeriod(m_settingsViewModel.settings().pollingInterval));
    fetchPrices();
}

void CoinListViewModel::suspendPolling()
{
    requireMainThread();
    m_isSuspended = true;
    stopPolling();
}

void CoinListViewModel::resumePolling()
{
    requireMainThread();
    m_isSuspended = false;
    restartPolling();
}

void CoinListViewModel::stopPolling()
{
    m_pollTimer.stop();
    discardFetch();
}

void CoinListViewModel::discardFetch()
{
    m_fetch.cancel();
    m_isLoading = false;
}

void CoinListViewModel::fetchPrices()
{
    requireMainThread();
    const BaseCurrency requested = m_settingsViewModel.settings().baseCurrency;
    if (m_isLoading || m_isSuspended || requested != m_listCurrency)
        return;
    const QStringList symbols = activeSymbols(coins());
    if (symbols.isEmpty())
        return;
    m_isLoading = true;
    ++m_fetchCount;
    m_fetch = m_priceService.fetchSnapshot(symbols, requested,
                                           [this, conditions = FetchConditions{requested, m_suspendedTime()}](
                                               const Result<PriceSnapshot> &result) { receive(result, conditions); });
}

void CoinListViewModel::receive(const Result<PriceSnapshot> &result, FetchConditions conditions)
{
    // An answer from before the sleep can be read before the message bus says that the machine slept.
    if (hasSlept(conditions.suspendedTime, m_suspendedTime()))
        return restartPolling();
    const quint64 received = m_fetchCount;
    m_lastFetchFailure = result ? std::nullopt : std::optional(fetchFailure(result.error()));
    if (result && m_settingsViewModel.settings().baseCurrency == conditions.currency) {
        m_lastUsdToTargetExchangeRate = result->usdToTargetRate;
        applySnapshot(*result, conditions.currency);
    }
    if (received == m_fetchCount) // else a subscriber has restarted polling, and the fetch under way is a new one
        discardFetch();
}

void CoinListViewModel::applySnapshot(const PriceSnapshot &snapshot, BaseCurrency currency)
{
    std::vector<Coin> updated = coins();
    if (m_priceDataCurrency && *m_priceDataCurrency != currency) {
        for (Coin &coin : updated)
            coin.referencePrice.reset();
    }
    m_priceDataCurrency = currency;

    const AppSettings settings = m_settingsViewModel.settings();
    const QHash<QString, const WatchlistCoin *> alerts = settings.priceChangeNotificationEnabled
                                                             ? firstBy(&WatchlistCoin::coinId, settings.watchlistCoins)
                                                             : QHash<QString, const WatchlistCoin *>();
    const TimePoint now = m_clock();
    for (Coin &coin : updated) {
        const auto price = snapshot.prices.constFind(coin.symbol);
        if (price == snapshot.prices.constEnd())
            continue;
        const auto change = snapshot.changes24h.constFind(coin.symbol);
        coin.currentPrice = *price;
        coin.priceChange24hPercent =
            change == snapshot.changes24h.constEnd() ? std::nullopt : std::optional<double>(*change);
        coin.lastUpdated = now;
        const WatchlistCoin *const alert = alerts.value(coin.id);
        const AlertDecision decision = evaluateAlert(*price, coin.referencePrice, alert, snapshot.usdToTargetRate);
        if (decision.fires) {
            m_notifier.notify(coin, alert->alertKind, settings.baseCurrency, alert->notificationThreshold,
                              decision.changePercent, snapshot.usdToTargetRate);
        }
        coin.referencePrice = decision.referencePrice;
    }
    m_coins = std::move(updated);
}

} // namespace tickwise
