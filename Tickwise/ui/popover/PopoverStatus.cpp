#include "ui/popover/PopoverStatus.h"

#include "pipeline/StatusItemContent.h"
#include "support/Localization.h"

namespace tickwise {

QString popoverStatus(const std::vector<Coin> &coins, const std::optional<ProviderFailure> &failure, TimePoint now)
{
    if (coins.empty())
        return {};
    if (failure)
        return failureText(*failure, now);
    std::optional<TimePoint> newest;
    for (const Coin &coin : coins)
        newest = std::max(newest, coin.lastUpdated);
    return newest ? ageText(*newest, now) : localized(QStringLiteral("popover.loading"));
}

} // namespace tickwise
