#pragma once

#include "settings/AppLanguage.h"
#include "support/RawValue.h"

#include <QString>

#include <optional>
#include <vector>

namespace tickwise {

/// Display currencies; the raw value is the ISO 4217 code.
enum class BaseCurrency
{
    usd,
    cny,
    krw,
    hkd,
    jpy,
    twd,
    sgd,
    myr,
    aud,
    cad,
    eur,
    gbp
};

/// What a coin's alert watches.
enum class CoinAlertKind
{
    above,
    below,
    change,
    notSet
};

enum class MenuBarContent
{
    price,
    icon
};
enum class PriceColorScheme
{
    greenUpRedDown,
    redUpGreenDown,
    custom
};
enum class DesktopOverlayTextSize
{
    normal,
    large
};

template<>
std::vector<BaseCurrency> allCases<BaseCurrency>();
template<>
std::vector<CoinAlertKind> allCases<CoinAlertKind>();
template<>
std::vector<MenuBarContent> allCases<MenuBarContent>();
template<>
std::vector<PriceColorScheme> allCases<PriceColorScheme>();
template<>
std::vector<DesktopOverlayTextSize> allCases<DesktopOverlayTextSize>();

/// The stored text of a case.
QString rawValue(BaseCurrency value);
QString rawValue(CoinAlertKind value);
QString rawValue(MenuBarContent value);
QString rawValue(PriceColorScheme value);
QString rawValue(DesktopOverlayTextSize value);

/// The localized name of a case.
QString title(CoinAlertKind value);
QString title(MenuBarContent value);
QString title(PriceColorScheme value);
QString title(DesktopOverlayTextSize value);

/// The two fixed colors of prices.
inline constexpr QLatin1String greenPriceHex("#2CBD84");
inline constexpr QLatin1String redPriceHex("#F6465D");

/// One coin of the watchlist with its alert.
struct WatchlistCoin
{
    QString coinId;
    CoinAlertKind alertKind = CoinAlertKind::change;
    double notificationThreshold = 2.0; ///< percent for `change`, US dollars for `above` and `below`
    bool operator==(const WatchlistCoin &) const = default;
};

/// Over all fields, for hashed containers.
size_t qHash(const WatchlistCoin &coin, size_t seed = 0);

/// The overlay's top-left corner in screen points; y grows upwards.
struct DesktopOverlayOrigin
{
    double x = 0;
    double y = 0;
    bool operator==(const DesktopOverlayOrigin &) const = default;
};

/// The one record of user preferences, stored as one JSON document.
struct AppSettings
{
    bool launchAtLogin = false;
    AppLanguage language = AppLanguage::system;
    BaseCurrency baseCurrency = BaseCurrency::usd;
    bool priceColorEnabled = true;
    PriceColorScheme colorScheme = PriceColorScheme::greenUpRedDown;
    QString customUpColorHex = greenPriceHex;
    QString customDownColorHex = redPriceHex;
    bool priceChangeNotificationEnabled = true;
    double pollingInterval = 10.0; ///< seconds
    bool showMenuBarBackground = false;
    MenuBarContent menuBarContent = MenuBarContent::price;
    bool desktopOverlayEnabled = false;
    double desktopOverlayBackgroundOpacity = 1.0; ///< 0...1
    DesktopOverlayTextSize desktopOverlayTextSize = DesktopOverlayTextSize::normal;
    std::optional<DesktopOverlayOrigin> desktopOverlayTopLeft;
    QString displayedCoinId = QStringLiteral("bitcoin");
    std::vector<WatchlistCoin> watchlistCoins{{QStringLiteral("bitcoin")}, {QStringLiteral("ethereum")}};
    bool operator==(const AppSettings &) const = default;
};

} // namespace tickwise
