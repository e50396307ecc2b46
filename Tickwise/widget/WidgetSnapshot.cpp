#include "widget/WidgetSnapshot.h"

namespace tickwise {

namespace {

QString green()
{
    return QStringLiteral("#2CBD84");
}

QString red()
{
    return QStringLiteral("#F6465D");
}

} // namespace

PriceColorTexts priceColorTexts(const AppSettings &settings)
{
    switch (settings.colorScheme) {
    case PriceColorScheme::greenUpRedDown:
        return {green(), red()};
    case PriceColorScheme::redUpGreenDown:
        return {red(), green()};
    case PriceColorScheme::custom:
        return {settings.customUpColorHex, settings.customDownColorHex};
    }
    return {green(), red()};
}

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
