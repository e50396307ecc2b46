#pragma once

#include "catalog/Coin.h"
#include "settings/AppSettings.h"
#include "support/Result.h"

#include <QByteArray>

#include <map>
#include <optional>
#include <vector>

namespace tickwise {

/// What the desktop widget knows of the application: the record of "widget-snapshot.json".
struct WidgetSnapshot
{
    struct Quote
    {
        double price = 0;                       ///< display currency
        std::optional<double> change24hPercent; ///< percent
        bool operator==(const Quote &) const = default;
    };

    TimePoint writtenAt;
    AppLanguage language = AppLanguage::system;
    BaseCurrency currency = BaseCurrency::usd;
    bool colorByChange = true;
    QString upColorHex;   ///< "#" and six hexadecimal digits
    QString downColorHex; ///< "#" and six hexadecimal digits
    QString displayedCoinId;
    std::vector<QString> watchlist;  ///< coin ids, in watchlist order
    std::map<QString, Quote> quotes; ///< by coin id; coins without a price are absent
    bool operator==(const WidgetSnapshot &) const = default;
};

/// The snapshot of these coins and settings, written at `now`.
WidgetSnapshot makeWidgetSnapshot(const std::vector<Coin> &coins, const AppSettings &settings, TimePoint now);

/// The compact JSON document, keys in the order of the fields. Failure: a number that is not finite.
Result<QByteArray> encodeWidgetSnapshot(const WidgetSnapshot &snapshot);

/// Strict decoding: a missing key or a wrongly typed value anywhere fails the whole document.
Result<WidgetSnapshot> decodeWidgetSnapshot(const QByteArray &document);

} // namespace tickwise
