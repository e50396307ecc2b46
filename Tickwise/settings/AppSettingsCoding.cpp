#include "settings/AppSettingsCoding.h"

#include "settings/JsonDecoding.h"

#include <nlohmann/json.hpp>

#include <charconv>
#include <cmath>

namespace tickwise {

namespace {

// The heights of the overlay in the versions that stored its bottom-left corner, in points.
constexpr double legacyLargeOverlayHeight = 382.0;
constexpr double legacyOverlayHeight = 170.0;

tl::unexpected<Error> invalid(const QString &text, std::optional<qint64> offset = std::nullopt)
{
    return failure(DecodingError{text, offset});
}

bool isNumberCharacter(char c)
{
    return (c >= '0' && c <= '9') || c == '-' || c == '+' || c == '.' || c == 'e' || c == 'E';
}

qsizetype endOfString(const QByteArray &document, qsizetype quote)
{
    qsizetype i = quote + 1;
    while (i < document.size() && document[i] != '"')
        i += document[i] == '\\' ? 2 : 1;
    return std::min(i + 1, document.size());
}

qsizetype endOfNumber(const QByteArray &document, qsizetype start)
{
    qsizetype i = start;
    while (i < document.size() && isNumberCharacter(document[i]))
        ++i;
    return i;
}

/// Whether the token is a JSON number that no double holds, such as 1e999.
bool overflows(const QByteArray &token)
{
    double value = 0;
    if (std::from_chars(token.cbegin(), token.cend(), value).ec != std::errc::result_out_of_range)
        return false;
    // Out of range may also mean too small, or lie in a token that is no JSON: the parser knows.
    try {
        return nlohmann::json::parse(token.cbegin(), token.cend()).is_discarded();
    } catch (const nlohmann::json::out_of_range &) {
        return true;
    } catch (const nlohmann::json::parse_error &) {
        return false;
    }
}

/// The document with null for every number that overflows.
QByteArray withoutOverflowingNumbers(const QByteArray &document)
{
    QByteArray result;
    result.reserve(document.size());
    for (qsizetype i = 0; i < document.size();) {
        const char c = document[i];
        const bool isNumber = c == '-' || (c >= '0' && c <= '9');
        const qsizetype end = c == '"' ? endOfString(document, i) : isNumber ? endOfNumber(document, i) : i + 1;
        const QByteArray token = document.sliced(i, end - i);
        result += isNumber && overflows(token) ? QByteArrayLiteral("null") : token;
        i = end;
    }
    return result;
}

Result<nlohmann::json> parseWithoutOverflow(const QByteArray &document)
{
    const QByteArray repaired = withoutOverflowingNumbers(document);
    nlohmann::json json = nlohmann::json::parse(repaired.cbegin(), repaired.cend(), nullptr, false);
    if (json.is_discarded())
        return invalid(QStringLiteral("not valid JSON"));
    return json;
}

Result<nlohmann::json> parse(const QByteArray &document)
{
    try {
        return nlohmann::json::parse(document.cbegin(), document.cend());
    } catch (const nlohmann::json::out_of_range &) {
        return parseWithoutOverflow(document);
    } catch (const nlohmann::json::parse_error &error) {
        // The parser's own text quotes the document, which may be long and private.
        return invalid(QStringLiteral("not valid JSON"), static_cast<qint64>(error.byte));
    }
}

/// Where the overlay's top-left corner was in a document that stores its bottom-left corner.
std::optional<DesktopOverlayOrigin> migratedOverlayOrigin(const nlohmann::json &object)
{
    std::optional<DesktopOverlayOrigin> origin = decodeIfPresent<DesktopOverlayOrigin>(object, "desktopOverlayOrigin");
    if (!origin)
        return std::nullopt;
    const bool isLarge = decodeIfPresent<QString>(object, "desktopOverlaySize") == QStringLiteral("large");
    origin->y += isLarge ? legacyLargeOverlayHeight : legacyOverlayHeight;
    return origin;
}

std::vector<WatchlistCoin> decodeWatchlist(const nlohmann::json &json)
{
    std::vector<WatchlistCoin> coins;
    if (!json.is_array())
        return coins;
    for (const nlohmann::json &element : json) {
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

void decodePriceFields(const nlohmann::json &object, AppSettings &settings)
{
    const auto read = [&](const char *key, auto &field) { field = decodeOr(object, key, field); };
    read("baseCurrency", settings.baseCurrency);
    read("priceColorEnabled", settings.priceColorEnabled);
    read("colorScheme", settings.colorScheme);
    read("customUpColorHex", settings.customUpColorHex);
    read("customDownColorHex", settings.customDownColorHex);
    read("priceChangeNotificationEnabled", settings.priceChangeNotificationEnabled);
    read("pollingInterval", settings.pollingInterval);
}

void decodeOverlayFields(const nlohmann::json &object, AppSettings &settings)
{
    const auto read = [&](const char *key, auto &field) { field = decodeOr(object, key, field); };
    read("desktopOverlayEnabled", settings.desktopOverlayEnabled);
    read("desktopOverlayBackgroundOpacity", settings.desktopOverlayBackgroundOpacity);
    settings.desktopOverlayBackgroundOpacity = clampedOpacity(settings.desktopOverlayBackgroundOpacity);
    read("desktopOverlayTextSize", settings.desktopOverlayTextSize);
    settings.desktopOverlayTopLeft = decodeIfPresent<DesktopOverlayOrigin>(object, "desktopOverlayTopLeft");
    if (!settings.desktopOverlayTopLeft)
        settings.desktopOverlayTopLeft = migratedOverlayOrigin(object);
}

AppSettings decodeObject(const nlohmann::json &object)
{
    AppSettings settings;
    const auto read = [&](const char *key, auto &field) { field = decodeOr(object, key, field); };
    read("launchAtLogin", settings.launchAtLogin);
    read("language", settings.language);
    decodePriceFields(object, settings);
    read("showMenuBarBackground", settings.showMenuBarBackground);
    read("menuBarContent", settings.menuBarContent);
    read("displayedCoinId", settings.displayedCoinId);
    decodeOverlayFields(object, settings);
    if (const auto coins = object.find("addedCoins"); coins != object.end())
        settings.watchlistCoins = decodeWatchlist(*coins);
    return settings;
}

std::string utf8(const QString &text)
{
    return text.toStdString();
}

template<class Enum>
std::string utf8Raw(Enum value)
{
    return utf8(rawValue(value));
}

nlohmann::ordered_json encodeWatchlist(const std::vector<WatchlistCoin> &coins)
{
    nlohmann::ordered_json array = nlohmann::ordered_json::array();
    for (const WatchlistCoin &coin : coins) {
        array.push_back({{"coinId", utf8(coin.coinId)},
                         {"alertKind", utf8Raw(coin.alertKind)},
                         {"notificationThreshold", coin.notificationThreshold}});
    }
    return array;
}

nlohmann::ordered_json encodeObject(const AppSettings &settings)
{
    nlohmann::ordered_json object;
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

/// The key of a number that JSON cannot carry, when there is one.
std::optional<QString> notFiniteField(const AppSettings &settings)
{
    if (!std::isfinite(settings.pollingInterval))
        return QStringLiteral("pollingInterval");
    if (!std::isfinite(settings.desktopOverlayBackgroundOpacity))
        return QStringLiteral("desktopOverlayBackgroundOpacity");
    const auto &corner = settings.desktopOverlayTopLeft;
    if (corner && !(std::isfinite(corner->x) && std::isfinite(corner->y)))
        return QStringLiteral("desktopOverlayTopLeft");
    for (const WatchlistCoin &coin : settings.watchlistCoins) {
        if (!std::isfinite(coin.notificationThreshold))
            return QStringLiteral("notificationThreshold of ") + coin.coinId;
    }
    return std::nullopt;
}

} // namespace

Result<AppSettings> decodeSettings(const QByteArray &document)
{
    if (document.size() > largestSettingsDocument)
        return invalid(QStringLiteral("%1 bytes are more than a settings document may have").arg(document.size()));
    // The parsed value is only ever moved: copying one that is nested deeply would exhaust the stack.
    const Result<nlohmann::json> json = parse(document);
    if (!json)
        return tl::unexpected(json.error());
    if (!json->is_object())
        return invalid(QStringLiteral("the top level is not an object"));
    return decodeObject(*json);
}

Result<QByteArray> encodeSettings(const AppSettings &settings)
{
    if (const std::optional<QString> field = notFiniteField(settings))
        return invalid(*field + QStringLiteral(" is not a finite number"));
    const QByteArray document = QByteArray::fromStdString(encodeObject(settings).dump());
    if (document.size() > largestSettingsDocument)
        return invalid(QStringLiteral("%1 bytes are more than a settings document may have").arg(document.size()));
    return document;
}

} // namespace tickwise
