#pragma once

#include "settings/AppSettings.h"

#include <QColor>

#include <optional>

namespace tickwise {

/// The texts of the colors for rising and falling prices.
struct PriceColorTexts
{
    QString up;
    QString down;
    bool operator==(const PriceColorTexts &) const = default;
};

/// The texts that the color scheme selects; those of a custom scheme as they are stored, colors or not.
PriceColorTexts priceColorTexts(const AppSettings &settings);

/// The color of a price with that 24-hour change in percent: none, the neutral primary text color, when colors are off
/// or there is no change; else the up color from zero on and the down color below. A custom text that is no color gives
/// the fixed one.
std::optional<QColor> priceColor(const AppSettings &settings, std::optional<double> change);

} // namespace tickwise
