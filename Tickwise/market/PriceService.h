#pragma once

#include "market/PriceSnapshot.h"
#include "settings/AppSettings.h"
#include "support/Subscription.h"

#include <QStringList>

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

} // namespace tickwise
