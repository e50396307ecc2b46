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

/// The price service as the coin list sees it.
class PriceFetching
{
public:
    virtual ~PriceFetching() = default;

    /// Prices of the symbols (any case, repeats allowed) in the currency: exactly one snapshot or one error, later, on
    /// the main thread. Dropping the handle aborts the requests and changes no bookkeeping.
    [[nodiscard]] virtual Subscription fetchSnapshot(const QStringList &symbols, BaseCurrency currency,
                                                     Completion<PriceSnapshot> done) = 0;
};

/// Fetches the prices from the first exchange that answers, fills gaps from the others and multiplies by the currency's
/// rate.
///
/// Errors: `badURL` (no symbols), `cannotLoadFromNetwork` (no exchange answered; `causes` holds each one's failure),
/// `cancelled` (the service was destroyed), or the rate service's error.
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
