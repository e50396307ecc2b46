#include "market/rates/CurrencyAPIRateProvider.h"

#include "market/rates/RateTable.h"

namespace tickwise {

Result<RateTable> CurrencyAPIRateProvider::decode(const QByteArray &body) const
{
    return readJsonResponse<RateTable>(body, [](simdjson::dom::element root) { return readRateTable(root, "usd"); });
}

} // namespace tickwise
