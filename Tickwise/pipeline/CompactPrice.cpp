#include "pipeline/CompactPrice.h"

#include <cmath>

namespace tickwise {

namespace {

constexpr qsizetype shortLength = 5;

struct Unit
{
    double size;
    char16_t mark;
};

constexpr Unit units[] = {{1e3, u'K'}, {1e6, u'M'}, {1e9, u'B'}, {1e12, u'T'}};

/// Three significant digits, or all digits before the point.
QString threeDigits(double value)
{
    const int decimals = value < 9.995 ? 2 : value < 99.95 ? 1 : 0;
    return QString::number(value, 'f', decimals);
}

} // namespace

QString compactPrice(double price)
{
    if (price < 0.0995)
        return QString::number(price, 'f', 4);
    if (price < 0.9995)
        return QString::number(price, 'f', 3);
    if (price < 999.5)
        return threeDigits(price);
    if (price < 9999.5)
        return QString::number(price, 'f', 0);
    // A value that would round up to 1000 of a unit belongs to the next one.
    const Unit *unit = &units[0];
    while (unit != std::end(units) - 1 && price / unit->size >= 999.5)
        ++unit;
    return threeDigits(price / unit->size) + QChar(unit->mark);
}

QString compactPrice(const QString &price)
{
    if (price.size() <= shortLength)
        return price;
    bool isNumber = false;
    const double value = QString(price).remove(u',').toDouble(&isNumber);
    return isNumber && std::isfinite(value) && value >= 0 ? compactPrice(value) : price;
}

} // namespace tickwise
