#pragma once

#include <QHash>
#include <QString>

namespace tickwise {

/// The result of one fetch. Symbols are upper case.
struct PriceSnapshot
{
    QHash<QString, double> prices;     ///< in the target currency
    QHash<QString, double> changes24h; ///< percent; no entry where the exchange gave none
    double usdToTargetRate = 1.0;      ///< units of the target currency for one US dollar
    bool operator==(const PriceSnapshot &) const = default;
};

} // namespace tickwise
