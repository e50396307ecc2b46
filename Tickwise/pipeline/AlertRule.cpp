#include "pipeline/AlertRule.h"

#include <cmath>

namespace tickwise {

namespace {

double movePercent(double price, double base)
{
    return base == 0 ? 0 : (price - base) / base * 100;
}

bool fires(CoinAlertKind kind, double price, std::optional<double> reference, double threshold, double level,
           double move)
{
    switch (kind) {
    case CoinAlertKind::above:
        return reference && level > *reference && price >= level;
    case CoinAlertKind::below:
        return reference && level < *reference && price <= level;
    case CoinAlertKind::change:
        return threshold <= std::abs(move);
    case CoinAlertKind::notSet:
        return false;
    }
    return false;
}

/// True where the price itself is the new baseline although nothing fired.
bool rearms(CoinAlertKind kind, double price, double level)
{
    return (kind == CoinAlertKind::above && price < level) || (kind == CoinAlertKind::below && price > level);
}

} // namespace

double alertLevel(double usd, double usdToTargetRate)
{
    return usdToTargetRate > 0 ? usd * usdToTargetRate : usd;
}

AlertDecision evaluateAlert(double price, std::optional<double> referencePrice, const WatchlistCoin *alert,
                            double usdToTargetRate)
{
    const double move = movePercent(price, referencePrice.value_or(price));
    if (!alert)
        return {false, move, referencePrice.value_or(price)};
    const double level = alertLevel(alert->notificationThreshold, usdToTargetRate);
    if (fires(alert->alertKind, price, referencePrice, alert->notificationThreshold, level, move))
        return {true, move, price};
    if (rearms(alert->alertKind, price, level))
        return {false, move, price};
    return {false, move, referencePrice.value_or(price)};
}

} // namespace tickwise
