#include "widget/WidgetSnapshot.h"

#include "settings/PriceColors.h"

namespace tickwise {

WidgetSnapshot makeWidgetSnapshot(const std::vector<Coin> &coins, const AppSettings &settings, TimePoint now)
{
    const PriceColorTexts colors = priceColorTexts(settings);
    WidgetSnapshot snapshot{.writtenAt = now,
                            .language = settings.language,
                            .currency = settings.baseCurrency,
                            .colorByChange = settings.priceColorEnabled,
                            .upColorHex = colors.up,
                            .downColorHex = colors.down,
                            .displayedCoinId = settings.displayedCoinId};
    for (const WatchlistCoin &coin : settings.watchlistCoins)
        snapshot.watchlist.push_back(coin.coinId);
    for (const Coin &coin : coins) {
        if (coin.currentPrice)
            snapshot.quotes[coin.id] = {*coin.currentPrice, coin.priceChange24hPercent};
    }
    return snapshot;
}

} // namespace tickwise
