#include "settings/JsonDecoding.h"

namespace tickwise {

namespace {

tl::unexpected<Error> mismatch(const QString &expected)
{
    return failure(DecodingError{QStringLiteral("expected ") + expected, std::nullopt});
}

} // namespace

template<>
Result<bool> decodeJson<bool>(const nlohmann::json &json)
{
    if (!json.is_boolean())
        return mismatch(QStringLiteral("a truth value"));
    return json.get<bool>();
}

template<>
Result<double> decodeJson<double>(const nlohmann::json &json)
{
    if (!json.is_number())
        return mismatch(QStringLiteral("a number"));
    return json.get<double>();
}

template<>
Result<QString> decodeJson<QString>(const nlohmann::json &json)
{
    if (!json.is_string())
        return mismatch(QStringLiteral("a text"));
    return QString::fromStdString(json.get_ref<const std::string &>());
}

template<>
Result<DesktopOverlayOrigin> decodeJson<DesktopOverlayOrigin>(const nlohmann::json &json)
{
    if (!json.is_object())
        return mismatch(QStringLiteral("an object"));
    const std::optional<double> x = decodeIfPresent<double>(json, "x");
    const std::optional<double> y = decodeIfPresent<double>(json, "y");
    if (!x || !y)
        return mismatch(QStringLiteral("both coordinates"));
    return DesktopOverlayOrigin{*x, *y};
}

template<>
Result<WatchlistCoin> decodeJson<WatchlistCoin>(const nlohmann::json &json)
{
    if (!json.is_object())
        return mismatch(QStringLiteral("an object"));
    const std::optional<QString> coinId = decodeIfPresent<QString>(json, "coinId");
    if (!coinId)
        return mismatch(QStringLiteral("a coin id"));
    WatchlistCoin coin{*coinId};
    coin.alertKind = decodeOr(json, "alertKind", coin.alertKind);
    coin.notificationThreshold = decodeOr(json, "notificationThreshold", coin.notificationThreshold);
    return coin;
}

} // namespace tickwise
