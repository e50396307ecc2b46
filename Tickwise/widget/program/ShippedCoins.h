#pragma once

#include "catalog/Coin.h"

#include <vector>

namespace tickwise {

/// The records of these coins in the shipped catalog: id, symbol, name and shipped logo, no more; unknown ids are left
/// out. The catalog is in memory only for as long as this takes. Its validation is the application's.
std::vector<CoinMetadata> shippedCoins(const std::vector<QString> &ids);

} // namespace tickwise
