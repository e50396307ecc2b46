#include "support/drawing/Contrast.h"

#include <algorithm>
#include <cmath>

namespace tickwise {

namespace {

double linear(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &color)
{
    return 0.2126 * linear(double(color.redF())) + 0.7152 * linear(double(color.greenF())) +
           0.0722 * linear(double(color.blueF()));
}

} // namespace

double contrast(const QColor &a, const QColor &b)
{
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor readableOn(const QColor &ground, const QColor &preferred)
{
    if (contrast(ground, preferred) >= readableContrast)
        return preferred;
    return contrast(ground, Qt::white) >= contrast(ground, Qt::black) ? Qt::white : Qt::black;
}

} // namespace tickwise
