#pragma once

#include "widget/WidgetSnapshot.h"

namespace tickwise {

/// One coin of the widget's list.
struct WidgetRow
{
    QString id;
    QString symbol;
    QString name;
    std::optional<QString> logoAssetName;
    /// A quote exists, or nothing has been fetched that could tell and the catalog does not say delisted.
    bool hasMarket = false;
    std::optional<double> price;
    std::optional<double> change24hPercent;
    bool operator==(const WidgetRow &) const = default;
};

/// What the widget and the desktop overlay show.
struct WidgetEntryContent
{
    std::vector<WidgetRow> rows;
    BaseCurrency currency = BaseCurrency::usd;
    std::optional<TimePoint> updatedAt;
    AppLanguage language = AppLanguage::system;
    bool colorByChange = true;
    QString upColorHex;
    QString downColorHex;
    bool operator==(const WidgetEntryContent &) const = default;
};

/// The snapshot joined with the catalog (by coin id): one row per watchlist coin that the catalog knows, in order.
WidgetEntryContent widgetEntryContent(const WidgetSnapshot &snapshot, const CoinIndex &catalog);

/// The same from the live values, whose prices are in that currency. `updatedAt` is when the newest of the prices was
/// set; none without a price.
WidgetEntryContent widgetEntryContent(const std::vector<Coin> &coins, const AppSettings &settings,
                                      BaseCurrency priceCurrency, const CoinIndex &catalog);

} // namespace tickwise
