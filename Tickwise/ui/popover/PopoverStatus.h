#pragma once

#include "catalog/Coin.h"
#include "support/Error.h"

namespace tickwise {

/// The line under the popover's rows: why the last fetch failed, else how old the newest price is, else that prices
/// are being loaded; nothing for an empty list.
QString popoverStatus(const std::vector<Coin> &coins, const std::optional<ProviderFailure> &failure, TimePoint now);

} // namespace tickwise
