#include "market/ExchangeRateProviders.h"

#include "settings/AppSettings.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace tickwise {

namespace {

using nlohmann::json;

Result<json> parsed(const QByteArray &body)
{
    try {
        json root = json::parse(body.cbegin(), body.cend());
        if (root.is_object())
            return root;
        return failure(DecodingError{QStringLiteral("the document is not an object")});
    } catch (const json::parse_error &error) {
        return failure(DecodingError{QString::fromUtf8(error.what()), static_cast<qint64>(error.byte)});
    } catch (const json::exception &error) {
        return failure(DecodingError{QString::fromUtf8(error.what())});
    }
}

tl::unexpected<Error> unparsable(const QString &detail)
{
    return failure(UrlLoadingError{UrlErrorCode::cannotParseResponse, detail});
}

/// The table under the key, with upper-case codes.
Result<RateTable> table(const json &root, const char *key)
{
    const auto member = root.find(key);
    if (member == root.end() || !member->is_object())
        return failure(DecodingError{QStringLiteral("%1 is not an object").arg(QLatin1String(key))});
    RateTable rates;
    for (const auto &[code, rate] : member->items()) {
        if (!rate.is_number())
            return failure(
                DecodingError{QStringLiteral("the rate of %1 is not a number").arg(QString::fromStdString(code))});
        const double value = rate.get<double>();
        const QString upperCase = QString::fromStdString(code).toUpper();
        if (std::isfinite(value) && value > 0)
            rates.insert(upperCase, value);
        else if (fromRawValue<BaseCurrency>(upperCase))
            return unparsable(QStringLiteral("the rate of %1 is %2").arg(upperCase).arg(value));
    }
    if (rates.isEmpty())
        return unparsable(QStringLiteral("the table is empty"));
    return rates;
}

Result<RateTable> successfulTable(const json &root)
{
    const auto result = root.find("result");
    if (result == root.end() || !result->is_string())
        return failure(DecodingError{QStringLiteral("result is not a text")});
    if (*result != "success") {
        return failure(UrlLoadingError{UrlErrorCode::badServerResponse,
                                       QStringLiteral("the service reports ") + QString::fromStdString(*result)});
    }
    return table(root, "rates");
}

} // namespace

Result<RateTable> ERAPIRateProvider::decode(const QByteArray &body) const
{
    return parsed(body).and_then(successfulTable);
}

Result<RateTable> CurrencyAPIRateProvider::decode(const QByteArray &body) const
{
    return parsed(body).and_then([](const json &root) { return table(root, "usd"); });
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
