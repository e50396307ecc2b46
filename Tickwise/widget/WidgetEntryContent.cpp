#include "widget/WidgetEntryContent.h"

#include <algorithm>

namespace tickwise {

namespace {

WidgetRow makeRow(const CoinMetadata &coin, const std::map<QString, WidgetSnapshot::Quote> &quotes)
{
    WidgetRow row{.id = coin.id, .symbol = coin.symbol, .name = coin.name, .logoAssetName = coin.logoAssetName};
    row.hasMarket = quotes.empty() && coin.status != CoinStatus::delisted;
    if (const auto quote = quotes.find(coin.id); quote != quotes.end()) {
        row.hasMarket = true;
        row.price = quote->second.price;
        row.change24hPercent = quote->second.change24hPercent;
    }
    return row;
}

std::optional<TimePoint> newestUpdate(const std::vector<Coin> &coins)
{
    std::optional<TimePoint> newest;
    for (const Coin &coin : coins) {
        if (coin.currentPrice)
            newest = std::max(newest, coin.lastUpdated);
    }
    return newest;
}

} // namespace

WidgetEntryContent widgetEntryContent(const WidgetSnapshot &snapshot, const CoinIndex &catalog)
{
    WidgetEntryContent content{.currency = snapshot.currency,
                               .updatedAt = snapshot.writtenAt,
                               .language = snapshot.language,
                               .colorByChange = snapshot.colorByChange,
                               .upColorHex = snapshot.upColorHex,
                               .downColorHex = snapshot.downColorHex};
    for (const QString &id : snapshot.watchlist) {
        if (const CoinMetadata *const coin = catalog.value(id))
            content.rows.push_back(makeRow(*coin, snapshot.quotes));
    }
    return content;
}

WidgetEntryContent widgetEntryContent(const std::vector<Coin> &coins, const AppSettings &settings,
                                      BaseCurrency priceCurrency, const CoinIndex &catalog)
{
    WidgetEntryContent content = widgetEntryContent(makeWidgetSnapshot(coins, settings, TimePoint()), catalog);
    content.currency = priceCurrency;
    content.updatedAt = newestUpdate(coins);
    return content;
}

} // namespace tickwise
