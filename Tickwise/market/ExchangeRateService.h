#pragma once

#include "market/HttpClient.h"
#include "market/Pause.h"
#include "market/ProviderCauses.h"
#include "market/rates/ExchangeRateCacheStore.h"
#include "settings/AppSettings.h"
#include "support/Subscription.h"

#include <QHash>

#include <memory>
#include <optional>
#include <vector>

namespace tickwise {

/// What the price service needs of the rate service.
class RateFetching
{
public:
    virtual ~RateFetching() = default;

    /// Units of the currency for one US dollar: one value or one error, later, on the main thread.
    [[nodiscard]] virtual Subscription rate(BaseCurrency currency, Completion<double> done) = 0;
};

/// Rates from public services: kept for an hour in memory and on disk, fetched once for all who wait, and of any age
/// rather than none.
class ExchangeRateService : public RateFetching
{
public:
    static constexpr double lifetime = 3600;       ///< seconds that a table is good for
    static constexpr double rateLimitPause = 1200; ///< seconds, when a service does not say how long

    ExchangeRateService(HttpClient &client, const Endpoints &endpoints, ExchangeRateCacheStore cacheStore,
                        Clock clock = systemClock);
    ~ExchangeRateService() override;

    [[nodiscard]] Subscription rate(BaseCurrency currency, Completion<double> done) override;

private:
    class TableFetch;
    class Waiting;

    bool isFresh() const;
    void loadCacheFile();
    void wait(Waiting &waiting);
    void leave(Waiting &waiting);
    void receiveTable(const Result<RateTable> &result);
    void adopt(const RateTable &table);

    HttpClient &m_client;
    std::vector<std::unique_ptr<ExchangeRateProvider>> m_providers;
    ExchangeRateCacheStore m_cacheStore;
    Clock m_clock;
    RateTable m_cachedRates;
    std::optional<TimePoint> m_cacheTimestamp;
    ProviderCauses m_failing;
    QHash<QString, Pause> m_rateLimits; // by the provider's address
    std::unique_ptr<TableFetch> m_inFlight;
    std::vector<Waiting *> m_waiting;
};

} // namespace tickwise
