#pragma once

#include "catalog/Coin.h"
#include "settings/AppSettings.h"

#include <QColor>

namespace tickwise {

/// Everything that a coin's row follows from.
struct CoinRowInputs
{
    const Coin &coin;
    const AppSettings &settings;
    BaseCurrency currency; ///< of the coin's price
    TimePoint now;
};

/// What a coin's row shows. Texts are in the current language and plain.
struct CoinRowContent
{
    QString symbol;
    QString price; ///< "67,432"; "--" without a price
    bool hasPrice = false;
    std::optional<QColor> priceColor; ///< none: the text's own color
    QString change;                   ///< "+1.23%", the word for a delisted coin, or nothing
    bool isDelisted = false;
    bool operator==(const CoinRowContent &) const = default;
};

/// A value that is not finite counts as none.
CoinRowContent coinRowContent(const CoinRowInputs &inputs);

/// Name, exact price with its currency, time of the price; lines separated by "\n".
QString coinRowToolTip(const CoinRowInputs &inputs);

/// What a screen reader says: "Bitcoin, 67,432 USD, up 1.23 percent".
QString coinRowSpokenText(const CoinRowInputs &inputs);

} // namespace tickwise
