#include "market/rates/RateTable.h"

#include "settings/AppSettings.h"
#include "support/Excerpt.h"

#include <cmath>

namespace tickwise {

namespace {

tl::unexpected<Error> unparsable(const QString &detail)
{
    return failure(UrlLoadingError{UrlErrorCode::cannotParseResponse, detail});
}

QString toQString(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

Result<RateTable> readRateTable(simdjson::dom::element root, std::string_view key)
{
    simdjson::dom::object members;
    if (root[key].get(members) != simdjson::SUCCESS)
        return unexpectedForm(excerpt(key) + QStringLiteral(" is not an object"));
    RateTable rates;
    for (const simdjson::dom::key_value_pair &member : members) {
        const QString code = toQString(member.key).toUpper();
        double rate = 0;
        if (!member.value.is_number() || member.value.get(rate) != simdjson::SUCCESS)
            return unexpectedForm(QStringLiteral("the rate of %1 is not a number").arg(excerpt(code)));
        if (std::isfinite(rate) && rate > 0)
            rates.insert(code, rate);
        else if (fromRawValue<BaseCurrency>(code))
            return unparsable(QStringLiteral("the rate of %1 is %2").arg(code).arg(rate));
    }
    if (rates.isEmpty())
        return unparsable(QStringLiteral("the table is empty"));
    return rates;
}

} // namespace tickwise
