#include "settings/AppSettingsCoding.h"

#include "settings/RecordDecoding.h"
#include "settings/SettingsParsing.h"

namespace tickwise {

namespace {

// The heights of the overlay in the versions that stored its bottom-left corner, in points.
constexpr double legacyLargeOverlayHeight = 382.0;
constexpr double legacyOverlayHeight = 170.0;

/// Where the overlay's top-left corner was in a document that stores its bottom-left corner.
std::optional<DesktopOverlayOrigin> migratedOverlayOrigin(const JsonReader &reader)
{
    std::optional<DesktopOverlayOrigin> origin = reader.ifDecodable<DesktopOverlayOrigin>("desktopOverlayOrigin");
    if (!origin)
        return std::nullopt;
    const bool isLarge = reader.ifDecodable<QString>("desktopOverlaySize") == QStringLiteral("large");
    origin->y += isLarge ? legacyLargeOverlayHeight : legacyOverlayHeight;
    return origin;
}

std::vector<WatchlistCoin> decodeWatchlistCoins(const JsonValue &json)
{
    std::vector<WatchlistCoin> coins;
    if (!json.is_array())
        return coins;
    for (const JsonValue &element : json) {
        if (std::optional<WatchlistCoin> coin = LossyDecodable<WatchlistCoin>::decode(element).value)
            coins.push_back(std::move(*coin));
    }
    return coins;
}

double clampedOpacity(double opacity)
{
    if (opacity <= 0)
        return 0;
    return opacity > 1 ? 1 : opacity;
}

void decodePriceFields(const JsonReader &reader, AppSettings &settings)
{
    const auto read = [&](const char *key, auto &field) { field = reader.valueOr(key, field); };
    read("baseCurrency", settings.baseCurrency);
    read("priceColorEnabled", settings.priceColorEnabled);
    read("colorScheme", settings.colorScheme);
    read("customUpColorHex", settings.customUpColorHex);
    read("customDownColorHex", settings.customDownColorHex);
    read("priceChangeNotificationEnabled", settings.priceChangeNotificationEnabled);
    read("pollingInterval", settings.pollingInterval);
}

void decodeOverlayFields(const JsonReader &reader, AppSettings &settings)
{
    const auto read = [&](const char *key, auto &field) { field = reader.valueOr(key, field); };
    read("desktopOverlayEnabled", settings.desktopOverlayEnabled);
    read("desktopOverlayBackgroundOpacity", settings.desktopOverlayBackgroundOpacity);
    settings.desktopOverlayBackgroundOpacity = clampedOpacity(settings.desktopOverlayBackgroundOpacity);
    read("desktopOverlayTextSize", settings.desktopOverlayTextSize);
    settings.desktopOverlayTopLeft = reader.ifDecodable<DesktopOverlayOrigin>("desktopOverlayTopLeft");
    if (!settings.desktopOverlayTopLeft)
        settings.desktopOverlayTopLeft = migratedOverlayOrigin(reader);
}

AppSettings decodeRecord(const JsonReader &reader)
{
    AppSettings settings;
    const auto read = [&](const char *key, auto &field) { field = reader.valueOr(key, field); };
    read("launchAtLogin", settings.launchAtLogin);
    read("language", settings.language);
    decodePriceFields(reader, settings);
    read("showMenuBarBackground", settings.showMenuBarBackground);
    read("menuBarContent", settings.menuBarContent);
    read("displayedCoinId", settings.displayedCoinId);
    decodeOverlayFields(reader, settings);
    if (const JsonValue *const coins = reader.member("addedCoins"))
        settings.watchlistCoins = decodeWatchlistCoins(*coins);
    return settings;
}

JsonDocument encodeWatchlist(const std::vector<WatchlistCoin> &coins)
{
    JsonDocument array = JsonDocument::array();
    for (const WatchlistCoin &coin : coins) {
        array.push_back({{"coinId", utf8(coin.coinId)},
                         {"alertKind", utf8Raw(coin.alertKind)},
                         {"notificationThreshold", coin.notificationThreshold}});
    }
    return array;
}

JsonDocument encodeObject(const AppSettings &settings)
{
    JsonDocument object;
    object["launchAtLogin"] = settings.launchAtLogin;
    object["language"] = utf8Raw(settings.language);
    object["baseCurrency"] = utf8Raw(settings.baseCurrency);
    object["priceColorEnabled"] = settings.priceColorEnabled;
    object["colorScheme"] = utf8Raw(settings.colorScheme);
    object["customUpColorHex"] = utf8(settings.customUpColorHex);
    object["customDownColorHex"] = utf8(settings.customDownColorHex);
    object["priceChangeNotificationEnabled"] = settings.priceChangeNotificationEnabled;
    object["pollingInterval"] = settings.pollingInterval;
    object["showMenuBarBackground"] = settings.showMenuBarBackground;
    object["menuBarContent"] = utf8Raw(settings.menuBarContent);
    object["displayedCoinId"] = utf8(settings.displayedCoinId);
    object["desktopOverlayEnabled"] = settings.desktopOverlayEnabled;
    object["desktopOverlayBackgroundOpacity"] = settings.desktopOverlayBackgroundOpacity;
    object["desktopOverlayTextSize"] = utf8Raw(settings.desktopOverlayTextSize);
    if (const auto &corner = settings.desktopOverlayTopLeft)
        object["desktopOverlayTopLeft"] = {{"x", corner->x}, {"y", corner->y}};
    object["addedCoins"] = encodeWatchlist(settings.watchlistCoins);
    return object;
}

} // namespace

Result<AppSettings> decodeSettings(const QByteArray &document)
{
    const Result<JsonValue> json = parseSettings(document);
    if (!json)
        return tl::unexpected(json.error());
    const JsonReader reader(*json);
    return reader.result(decodeRecord(reader));
}

Result<QByteArray> encodeSettings(const AppSettings &settings)
{
    return encodeJson(encodeObject(settings));
}

} // namespace tickwise
