#pragma once

#include "market/JsonResponse.h"
#include "market/rates/ExchangeRateProvider.h"

namespace tickwise {

/// Reads the object under the key of the document as a table, with upper-case codes. Included by the implementations of
/// the rate providers only.
Result<RateTable> readRateTable(simdjson::dom::element root, std::string_view key);

} // namespace tickwise
