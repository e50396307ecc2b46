#pragma once

#include "market/Endpoints.h"
#include "market/ExchangeRateService.h"
#include "market/HttpClient.h"
#include "market/PriceSnapshot.h"
#include "settings/AppSettings.h"
#include "support/Subscription.h"

#include <QStringList>

#include <memory>

namespace tickwise {

/// What the coin list needs of the price service.
class PriceFetching
{
public:
    virtual ~PriceFetching() = default;

    /// Prices of the symbols (any case, repeats allowed) in the currency: exactly one snapshot or one error, later, on
    /// the main thread. Dropping the handle aborts the requests and changes no bookkeeping.
    [[nodiscard]] virtual Subscription fetchSnapshot(const QStringList &symbols, BaseCurrency currency,
                                                     Completion<PriceSnapshot> done) = 0;
};

/// Prices from whichever exchange answers, with the gaps filled by the others, times the currency's rate.
///
/// Errors: `badURL` (no symbols), `cannotLoadFromNetwork` (no exchange answered; `causes` tells each one's failure),
/// `cancelled` (the service went away), or the rate service's error.
class PriceService : public PriceFetching
{
public:
    PriceService(HttpClient &client, RateFetching &exchangeRateService, const Endpoints &endpoints,
                 Clock clock = systemClock);
    ~PriceService() override;

    [[nodiscard]] Subscription fetchSnapshot(const QStringList &symbols, BaseCurrency currency,
                                             Completion<PriceSnapshot> done) override;

private:
    struct Core;
    class SnapshotFetch;

    std::unique_ptr<Core> m_core;
};

} // namespace tickwise
