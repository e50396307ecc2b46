#pragma once

#include "market/Endpoints.h"
#include "market/exchanges/TickerProvider.h"
#include "support/Clock.h"

#include <memory>
#include <vector>

namespace tickwise {

/// The four providers in the order in which they are tried: Binance's main and data hosts, OKX, Bybit.
std::vector<std::unique_ptr<TickerProvider>> makeTickerProviders(const Endpoints &endpoints, const Clock &clock);

} // namespace tickwise
