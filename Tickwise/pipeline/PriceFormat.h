#pragma once

#include <QString>

namespace tickwise {

/// The price text of the whole system: at most 4 fraction digits below 1, 2 below 100, else none; thousands grouped by
/// ","; half-even. 0.123456 gives "0.1235", 67432.7 gives "67,433".
QString formatPrice(double value);

/// What stands in place of a price that is not known.
inline QString noPriceText()
{
    return QStringLiteral("--");
}

/// The price as alerts write it: `formatPrice` with as many fraction digits more as three significant digits take.
/// 0.0000112345 gives "0.0000112".
QString formatAlertPrice(double value);

/// The shortest decimal text that reads back as exactly this value, grouped as in `formatPrice`; for tooltips.
QString exactPrice(double value);

/// A 24-hour change in percent: "+1.23%", "-0.50%"; zero counts as a rise.
QString changeText(double percent);

} // namespace tickwise
