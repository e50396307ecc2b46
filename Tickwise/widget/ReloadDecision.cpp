#include "widget/ReloadDecision.h"

#include <algorithm>
#include <cmath>

namespace tickwise {

namespace {

constexpr std::chrono::seconds longestTimeWithoutReload{300};
constexpr double largestMoveWithoutReload = 1.0; // percent

bool displayDiffers(const WidgetSnapshot &a, const WidgetSnapshot &b)
{
    return a.language != b.language || a.currency != b.currency || a.colorByChange != b.colorByChange ||
           a.upColorHex != b.upColorHex || a.downColorHex != b.downColorHex || a.displayedCoinId != b.displayedCoinId ||
           a.watchlist != b.watchlist;
}

bool isLargeMove(double oldPrice, double newPrice)
{
    return oldPrice > 0 && std::abs(newPrice - oldPrice) / oldPrice * 100 > largestMoveWithoutReload;
}

} // namespace

bool needsWidgetReload(const std::optional<WidgetReload> &last, const WidgetSnapshot &snapshot)
{
    if (!last || snapshot.writtenAt - last->time >= longestTimeWithoutReload ||
        displayDiffers(last->snapshot, snapshot))
        return true;
    const auto &old = last->snapshot.quotes;
    return std::ranges::any_of(snapshot.quotes, [&](const auto &entry) {
        const auto before = old.find(entry.first);
        return before == old.end() || isLargeMove(before->second.price, entry.second.price);
    });
}

} // namespace tickwise
