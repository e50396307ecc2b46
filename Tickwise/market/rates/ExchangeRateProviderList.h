#pragma once

#include "market/Endpoints.h"
#include "market/rates/ExchangeRateProvider.h"

#include <memory>
#include <vector>

namespace tickwise {

/// The three providers in the order in which they are tried.
std::vector<std::unique_ptr<ExchangeRateProvider>> makeExchangeRateProviders(const Endpoints &endpoints);

} // namespace tickwise
