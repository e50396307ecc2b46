#pragma once

#include "settings/AppSettings.h"

#include <optional>

namespace tickwise {

/// What one price update does to a coin's alert.
struct AlertDecision
{
    bool fires = false;
    double changePercent = 0;             ///< the move from the baseline to the new price
    std::optional<double> referencePrice; ///< the baseline afterwards, display currency
    bool operator==(const AlertDecision &) const = default;
};

/// The threshold of `above` and `below` in the display currency: `usd` × rate, or `usd` itself without a rate (<= 0).
double alertLevel(double usd, double usdToTargetRate);

/// Evaluates an alert for the new price. `alert` is none when alerts are off or the coin has none: the baseline is then
/// only set where it was absent.
///
/// `above` and `below` fire on the update that reaches the level from the other side of it and re-arm once the price is
/// back on that side; `change` fires on a move of at least the threshold from the baseline; each alert restarts the
/// baseline.
AlertDecision evaluateAlert(double price, std::optional<double> referencePrice, const WatchlistCoin *alert,
                            double usdToTargetRate);

} // namespace tickwise
