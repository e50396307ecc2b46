#include "market/rates/ExchangeRateProviderList.h"

#include "market/rates/CurrencyAPIRateProvider.h"
#include "market/rates/ERAPIRateProvider.h"

namespace tickwise {

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
