#include "pipeline/WatchlistEditing.h"

#include <QHash>

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
    // An id can stand in the list more than once; its entries keep their order among themselves.
    QHash<QString, QList<qsizetype>> places;
    for (qsizetype place = ids.size() - 1; place >= 0; --place)
        places[ids[place]].append(place);
    std::vector<std::pair<qsizetype, WatchlistCoin>> placed;
    for (WatchlistCoin &coin : settings.watchlistCoins) {
        QList<qsizetype> &free = places[coin.coinId];
        const qsizetype place = free.isEmpty() ? ids.size() : free.takeLast();
        placed.emplace_back(place, std::move(coin));
    }
    std::ranges::stable_sort(placed, {}, &std::pair<qsizetype, WatchlistCoin>::first);
    std::ranges::transform(placed, settings.watchlistCoins.begin(), &std::pair<qsizetype, WatchlistCoin>::second);
    return settings;
}

AppSettings withCoinToggled(AppSettings settings, const QString &id)
{
    return isInWatchlist(settings, id) ? withCoinRemoved(std::move(settings), id)
                                       : withCoinAdded(std::move(settings), id);
}

} // namespace tickwise
