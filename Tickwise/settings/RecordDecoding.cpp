#include "settings/RecordDecoding.h"

namespace tickwise {

template<>
Result<DesktopOverlayOrigin> decodeJson<DesktopOverlayOrigin>(const JsonValue &json)
{
    JsonReader reader(json);
    const DesktopOverlayOrigin origin{reader.required<double>("x"), reader.required<double>("y")};
    return reader.result(origin);
}

template<>
Result<WatchlistCoin> decodeJson<WatchlistCoin>(const JsonValue &json)
{
    JsonReader reader(json);
    WatchlistCoin coin{reader.required<QString>("coinId")};
    coin.alertKind = reader.valueOr("alertKind", coin.alertKind);
    coin.notificationThreshold = reader.valueOr("notificationThreshold", coin.notificationThreshold);
    return reader.result(coin);
}

} // namespace tickwise
