#pragma once

#include "support/json/Json.h"

namespace tickwise {

/// Parses a settings document, its overflowing numbers and half surrogate pairs repaired. The value holds what a
/// record can read: members of objects down to the watchlist's coins, and of an array its objects alone. What is left
/// out costs neither time nor memory, so that a document of megabytes delays the start by milliseconds.
Result<JsonValue> parseSettings(const QByteArray &document);

} // namespace tickwise
