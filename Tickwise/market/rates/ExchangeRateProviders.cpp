#include "market/rates/ExchangeRateProviders.h"

#include "market/JsonBody.h"
#include "settings/AppSettings.h"

#include <cmath>

namespace tickwise {

namespace {

using simdjson::dom::element;

tl::unexpected<Error> unparsable(const QString &detail)
{
    return failure(UrlLoadingError{UrlErrorCode::cannotParseResponse, detail});
}

QString textOf(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// The table under the key, with upper-case codes.
Result<RateTable> table(element root, std::string_view key)
{
    simdjson::dom::object members;
    if (root[key].get(members) != simdjson::SUCCESS)
        return unexpectedForm(textOf(key) + QStringLiteral(" is not an object"));
    RateTable rates;
    for (const simdjson::dom::key_value_pair &member : members) {
        const QString code = textOf(member.key).toUpper();
        double rate = 0;
        if (!member.value.is_number() || member.value.get(rate) != simdjson::SUCCESS)
            return unexpectedForm(QStringLiteral("the rate of %1 is not a number").arg(code));
        if (std::isfinite(rate) && rate > 0)
            rates.insert(code, rate);
        else if (fromRawValue<BaseCurrency>(code))
            return unparsable(QStringLiteral("the rate of %1 is %2").arg(code).arg(rate));
    }
    if (rates.isEmpty())
        return unparsable(QStringLiteral("the table is empty"));
    return rates;
}

Result<RateTable> successfulTable(element root)
{
    std::string_view result;
    if (root["result"].get(result) != simdjson::SUCCESS)
        return unexpectedForm(QStringLiteral("result is not a text"));
    if (result != "success") {
        return failure(
            UrlLoadingError{UrlErrorCode::badServerResponse, QStringLiteral("the service reports ") + textOf(result)});
    }
    return table(root, "rates");
}

} // namespace

Result<RateTable> ERAPIRateProvider::decode(const QByteArray &body) const
{
    return withDocument<RateTable>(body, successfulTable);
}

Result<RateTable> CurrencyAPIRateProvider::decode(const QByteArray &body) const
{
    return withDocument<RateTable>(body, [](element root) { return table(root, "usd"); });
}

std::vector<std::unique_ptr<ExchangeRateProvider>> makeExchangeRateProviders(const Endpoints &endpoints)
{
    const QString dataSet = QStringLiteral("/v1/currencies/usd.min.json");
    std::vector<std::unique_ptr<ExchangeRateProvider>> providers;
    providers.push_back(
        std::make_unique<ERAPIRateProvider>(endpoints.exchangeRateApi + QStringLiteral("/v6/latest/USD")));
    providers.push_back(std::make_unique<CurrencyAPIRateProvider>(endpoints.currencyApiPrimary + dataSet));
    providers.push_back(std::make_unique<CurrencyAPIRateProvider>(endpoints.currencyApiFallback + dataSet));
    return providers;
}

} // namespace tickwise
