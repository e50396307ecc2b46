#include "market/rates/ERAPIRateProvider.h"

#include "market/rates/RateTable.h"
#include "support/Excerpt.h"

namespace tickwise {

namespace {

Result<RateTable> successfulTable(simdjson::dom::element root)
{
    std::string_view result;
    if (root["result"].get(result) != simdjson::SUCCESS)
        return unexpectedForm(QStringLiteral("result is not a text"));
    if (result != "success") {
        return failure(
            UrlLoadingError{UrlErrorCode::badServerResponse, QStringLiteral("the service reports ") + excerpt(result)});
    }
    return readRateTable(root, "rates");
}

} // namespace

Result<RateTable> ERAPIRateProvider::decode(const QByteArray &body) const
{
    return readJsonResponse<RateTable>(body, successfulTable);
}

} // namespace tickwise
