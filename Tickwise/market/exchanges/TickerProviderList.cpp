#include "market/exchanges/TickerProviderList.h"

#include "market/exchanges/BinanceTickerProvider.h"
#include "market/exchanges/BybitTickerProvider.h"
#include "market/exchanges/OKXTickerProvider.h"

namespace tickwise {

std::vector<std::unique_ptr<TickerProvider>> makeTickerProviders(const Endpoints &endpoints, const Clock &clock)
{
    std::vector<std::unique_ptr<TickerProvider>> providers;
    providers.push_back(std::make_unique<BinanceTickerProvider>(endpoints.binanceMain, clock));
    providers.push_back(std::make_unique<BinanceTickerProvider>(endpoints.binanceData, clock));
    providers.push_back(std::make_unique<OKXTickerProvider>(endpoints.okx));
    providers.push_back(std::make_unique<BybitTickerProvider>(endpoints.bybit));
    return providers;
}

} // namespace tickwise
