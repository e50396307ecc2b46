#pragma once

#include "market/Endpoints.h"
#include "market/FailureLog.h"
#include "market/HttpClient.h"
#include "market/RateLimits.h"
#include "market/rates/ExchangeRateCacheStore.h"
#include "market/rates/ExchangeRateProvider.h"
#include "settings/AppSettings.h"
#include "support/Subscription.h"

#include <memory>
#include <optional>
#include <vector>

namespace tickwise {

/// The rate service as the price service sees it.
class RateFetching
{
public:
    virtual ~RateFetching() = default;

    /// Units of the currency for one US dollar: one value or one error, later, on the main thread.
    [[nodiscard]] virtual Subscription rate(BaseCurrency currency, Completion<double> done) = 0;
};

/// Fetches rates from public services and keeps them for an hour in memory and on disk. Requests that come while a
/// table is being fetched share that fetch. When it fails, a rate of any age is delivered rather than an error.
class ExchangeRateService : public RateFetching
{
public:
    static constexpr double lifetime = 3600; ///< seconds for which a table is served

    ExchangeRateService(HttpClient &client, const Endpoints &endpoints, ExchangeRateCacheStore cacheStore,
                        Clock clock = systemClock);
    ~ExchangeRateService() override;

    [[nodiscard]] Subscription rate(BaseCurrency currency, Completion<double> done) override;

private:
    class TableFetch;
    class RateRequest;

    bool isFresh() const;
    void loadCacheFile();
    void join(RateRequest &request);
    void leave(RateRequest &request);
    void receiveTable(const Result<RateTable> &table);
    void adopt(const RateTable &table);
    void log(const ExchangeRateProvider &provider, const Error &error);

    HttpClient &m_client;
    std::vector<std::unique_ptr<ExchangeRateProvider>> m_providers;
    ExchangeRateCacheStore m_cacheStore;
    Clock m_clock;
    RateTable m_cachedRates;
    std::optional<TimePoint> m_cacheTimestamp;
    FailureLog m_failures;
    RateLimits m_rateLimits; // by the provider's address
    std::unique_ptr<TableFetch> m_inFlight;
    std::vector<RateRequest *> m_requests; // those that wait for the fetch
};

} // namespace tickwise
