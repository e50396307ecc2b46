#pragma once

#include "catalog/Coin.h"
#include "settings/AppSettings.h"

namespace tickwise {

/// Delivers a price alert that fired.
class PriceAlertNotifying
{
public:
    virtual ~PriceAlertNotifying() = default;

    /// `coin` already carries its new price; `threshold` is as stored (percent, or US dollars); `changePercent` is the
    /// move since the baseline; `usdToTargetRate` is the snapshot's. Never fails towards the caller.
    virtual void notify(const Coin &coin, CoinAlertKind kind, BaseCurrency currency, double threshold,
                        double changePercent, double usdToTargetRate) = 0;
};

} // namespace tickwise
