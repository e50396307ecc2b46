#include "pipeline/WatchlistEditing.h"

#include <algorithm>

namespace tickwise {

namespace {

constexpr double addedThreshold = 2.0; // percent

QString fallbackCoin()
{
    return QStringLiteral("bitcoin");
}

} // namespace

bool isInWatchlist(const AppSettings &settings, const QString &id)
{
    return std::ranges::any_of(settings.watchlistCoins, [&](const WatchlistCoin &coin) { return coin.coinId == id; });
}

AppSettings withCoinAdded(AppSettings settings, const QString &id)
{
    if (!isInWatchlist(settings, id))
        settings.watchlistCoins.push_back({id, CoinAlertKind::change, addedThreshold});
    return settings;
}

AppSettings withCoinRemoved(AppSettings settings, const QString &id)
{
    auto &coins = settings.watchlistCoins;
    std::erase_if(coins, [&](const WatchlistCoin &coin) { return coin.coinId == id; });
    if (settings.displayedCoinId == id)
        settings.displayedCoinId = coins.empty() ? fallbackCoin() : coins.front().coinId;
    return settings;
}

AppSettings withWatchlistOrder(AppSettings settings, const QStringList &ids)
{
    const auto place = [&](const WatchlistCoin &coin) {
        const qsizetype index = ids.indexOf(coin.coinId);
        return index < 0 ? ids.size() : index;
    };
    std::ranges::stable_sort(settings.watchlistCoins, {}, place);
    return settings;
}

AppSettings withCoinToggled(AppSettings settings, const QString &id)
{
    return isInWatchlist(settings, id) ? withCoinRemoved(std::move(settings), id)
                                       : withCoinAdded(std::move(settings), id);
}

} // namespace tickwise
