#include "pipeline/CoinSearch.h"

#include "support/json/JsonReader.h"

#include <QHash>

#include <algorithm>

namespace tickwise {

namespace {

/// Spaces of any width and the tab, but no line breaks.
bool isBlank(QChar c)
{
    return c == u'\t' || c.category() == QChar::Separator_Space;
}

QStringView withoutBlanksAround(QStringView text)
{
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

} // namespace

CoinSearch::CoinSearch(const std::vector<CoinMetadata> &catalog)
{
    m_entries.reserve(catalog.size());
    for (const CoinMetadata &coin : catalog) {
        if (coin.listed)
            m_entries.push_back({coin, coin.symbol.toLower(), coin.name.toLower()});
    }
}

std::vector<CoinMetadata> CoinSearch::visibleCoins(const QString &searchText) const
{
    if (!withoutBlanksAround(searchText).isEmpty())
        return matches(searchText);
    std::vector<CoinMetadata> coins;
    coins.reserve(m_entries.size());
    for (const Entry &entry : m_entries)
        coins.push_back(entry.coin);
    return coins;
}

std::vector<CoinMetadata> CoinSearch::matches(const QString &query) const
{
    const QString text = withoutBlanksAround(query).toString().toLower();
    std::vector<CoinMetadata> coins;
    if (text.isEmpty())
        return coins;
    for (const Entry &entry : m_entries) {
        if (entry.lowerSymbol.contains(text) || entry.lowerName.contains(text))
            coins.push_back(entry.coin);
    }
    return coins;
}

std::vector<CoinMetadata> CoinSearch::withSymbols(const QStringList &symbols) const
{
    QHash<QString, const CoinMetadata *> bySymbol;
    for (const Entry &entry : m_entries) {
        if (!bySymbol.contains(entry.coin.symbol))
            bySymbol.insert(entry.coin.symbol, &entry.coin);
    }
    std::vector<CoinMetadata> coins;
    for (const QString &symbol : symbols) {
        if (const CoinMetadata *const coin = bySymbol.value(symbol))
            coins.push_back(*coin);
    }
    return coins;
}

QStringList decodeRecommendedSymbols(const QByteArray &document)
{
    const Result<JsonValue> json = parseJson(document);
    if (!json || !json->is_array())
        return {};
    QStringList symbols;
    for (const JsonValue &value : *json) {
        const Result<QString> text = decodeJson<QString>(value);
        if (!text)
            return {};
        const QString symbol = text->trimmed().toUpper();
        if (!symbol.isEmpty())
            symbols.append(symbol);
    }
    return symbols;
}

} // namespace tickwise
