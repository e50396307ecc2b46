#include "settings/PriceColors.h"

#include "settings/HexColor.h"

#include <cmath>

namespace tickwise {

PriceColorTexts priceColorTexts(const AppSettings &settings)
{
    switch (settings.colorScheme) {
    case PriceColorScheme::greenUpRedDown:
        return {greenPriceHex, redPriceHex};
    case PriceColorScheme::redUpGreenDown:
        return {redPriceHex, greenPriceHex};
    case PriceColorScheme::custom:
        return {settings.customUpColorHex, settings.customDownColorHex};
    }
    return {greenPriceHex, redPriceHex};
}

std::optional<QColor> priceColor(const AppSettings &settings, std::optional<double> change)
{
    static const QColor green = colorFromHex(greenPriceHex).value();
    static const QColor red = colorFromHex(redPriceHex).value();
    if (!settings.priceColorEnabled || !change || std::isnan(*change))
        return std::nullopt;
    const PriceColorTexts texts = priceColorTexts(settings);
    return *change >= 0 ? colorFromHex(texts.up).value_or(green) : colorFromHex(texts.down).value_or(red);
}

} // namespace tickwise
