#pragma once

#include "catalog/Coin.h"

#include <QByteArray>
#include <QStringList>

namespace tickwise {

/// Finds coins among those that users are offered: the listed coins of a catalog, always in catalog order. Lower-case
/// symbols and names are made once, so that a search at each key press only compares.
class CoinSearch
{
public:
    CoinSearch() = default;
    explicit CoinSearch(const std::vector<CoinMetadata> &catalog);

    /// The coins for what stands in the search field: all of them while it holds nothing but spaces and tabs.
    std::vector<CoinMetadata> visibleCoins(const QString &searchText) const;

    /// The coins whose symbol or name contains the query, in any case and without the spaces and tabs around it; none
    /// for an empty query.
    std::vector<CoinMetadata> matches(const QString &query) const;

    /// The coins with these symbols, spelled exactly so, in the order of the symbols; of several coins with one symbol
    /// the first. Unknown symbols are skipped.
    std::vector<CoinMetadata> withSymbols(const QStringList &symbols) const;

private:
    struct Entry
    {
        CoinMetadata coin;
        QString lowerSymbol;
        QString lowerName;
    };

    std::vector<Entry> m_entries;
};

/// The symbols of a JSON array of texts: without white space around them, in upper case, without those that are empty.
/// No symbols for anything else.
QStringList decodeRecommendedSymbols(const QByteArray &document);

} // namespace tickwise
