#include "settings/AppSettings.h"

#include "support/Localization.h"

#include <QHash>

namespace tickwise {

QString rawValue(BaseCurrency value)
{
    switch (value) {
    case BaseCurrency::usd:
        return QStringLiteral("USD");
    case BaseCurrency::cny:
        return QStringLiteral("CNY");
    case BaseCurrency::krw:
        return QStringLiteral("KRW");
    case BaseCurrency::hkd:
        return QStringLiteral("HKD");
    case BaseCurrency::jpy:
        return QStringLiteral("JPY");
    case BaseCurrency::twd:
        return QStringLiteral("TWD");
    case BaseCurrency::sgd:
        return QStringLiteral("SGD");
    case BaseCurrency::myr:
        return QStringLiteral("MYR");
    case BaseCurrency::aud:
        return QStringLiteral("AUD");
    case BaseCurrency::cad:
        return QStringLiteral("CAD");
    case BaseCurrency::eur:
        return QStringLiteral("EUR");
    case BaseCurrency::gbp:
        return QStringLiteral("GBP");
    }
    return {};
}

QString rawValue(CoinAlertKind value)
{
    switch (value) {
    case CoinAlertKind::above:
        return QStringLiteral("above");
    case CoinAlertKind::below:
        return QStringLiteral("below");
    case CoinAlertKind::change:
        return QStringLiteral("change");
    case CoinAlertKind::notSet:
        return QStringLiteral("notSet");
    }
    return {};
}

QString rawValue(MenuBarContent value)
{
    switch (value) {
    case MenuBarContent::price:
        return QStringLiteral("price");
    case MenuBarContent::icon:
        return QStringLiteral("icon");
    }
    return {};
}

QString rawValue(PriceColorScheme value)
{
    switch (value) {
    case PriceColorScheme::greenUpRedDown:
        return QStringLiteral("greenUpRedDown");
    case PriceColorScheme::redUpGreenDown:
        return QStringLiteral("redUpGreenDown");
    case PriceColorScheme::custom:
        return QStringLiteral("custom");
    }
    return {};
}

QString rawValue(DesktopOverlayTextSize value)
{
    switch (value) {
    case DesktopOverlayTextSize::normal:
        return QStringLiteral("normal");
    case DesktopOverlayTextSize::large:
        return QStringLiteral("large");
    }
    return {};
}

template<>
std::vector<BaseCurrency> allCases<BaseCurrency>()
{
    using enum BaseCurrency;
    return {usd, cny, krw, hkd, jpy, twd, sgd, myr, aud, cad, eur, gbp};
}

template<>
std::vector<CoinAlertKind> allCases<CoinAlertKind>()
{
    using enum CoinAlertKind;
    return {above, below, change, notSet};
}

template<>
std::vector<MenuBarContent> allCases<MenuBarContent>()
{
    return {MenuBarContent::price, MenuBarContent::icon};
}

template<>
std::vector<PriceColorScheme> allCases<PriceColorScheme>()
{
    using enum PriceColorScheme;
    return {greenUpRedDown, redUpGreenDown, custom};
}

template<>
std::vector<DesktopOverlayTextSize> allCases<DesktopOverlayTextSize>()
{
    return {DesktopOverlayTextSize::normal, DesktopOverlayTextSize::large};
}

size_t qHash(const WatchlistCoin &coin, size_t seed)
{
    return qHashMulti(seed, coin.coinId, static_cast<int>(coin.alertKind), coin.notificationThreshold);
}

// The key of a title is its enum's prefix and the raw value.

QString title(CoinAlertKind value)
{
    return localized(QStringLiteral("alertKind.") + rawValue(value));
}

QString title(MenuBarContent value)
{
    return localized(QStringLiteral("menubarContent.") + rawValue(value));
}

QString title(PriceColorScheme value)
{
    return localized(QStringLiteral("colorScheme.") + rawValue(value));
}

QString title(DesktopOverlayTextSize value)
{
    return localized(QStringLiteral("desktop.textSize.") + rawValue(value));
}

} // namespace tickwise
