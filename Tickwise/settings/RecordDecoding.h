#pragma once

#include "settings/AppSettings.h"
#include "support/json/JsonReader.h"

namespace tickwise {

/// Both coordinates are required.
template<>
Result<DesktopOverlayOrigin> decodeJson<DesktopOverlayOrigin>(const JsonValue &json);

/// "coinId" is required; the other fields fall back one by one.
template<>
Result<WatchlistCoin> decodeJson<WatchlistCoin>(const JsonValue &json);

} // namespace tickwise
