#pragma once

#include "market/HttpClient.h"
#include "market/JsonResponse.h"
#include "market/exchanges/TickerProvider.h"

#include <bitset>
#include <string>
#include <unordered_map>

namespace tickwise {

// What the ticker providers share. Included by their implementations only.

/// The GET request for the address with one query item, or without a query where `key` is empty; none when no URL can
/// be formed. `encodedValue` goes into the URL as it is.
std::optional<HttpRequest> tickerRequest(const QString &address, const QString &key = {},
                                         const QString &encodedValue = {});

/// The error of an answer in which the exchange reports another code than success.
tl::unexpected<Error> exchangeFailure(std::string_view code);

/// A percentage; none when it is too large for a number.
std::optional<double> finitePercent(double percent);

/// The wanted base symbols, looked up by their bytes without converting every pair name.
class WantedSymbols
{
public:
    explicit WantedSymbols(const QStringList &symbols);

    /// The wanted symbol whose pair with the suffix ("USDT", "-USDT") has this name; none for any other pair.
    const QString *baseOf(std::string_view pair, std::string_view suffix) const;

private:
    static std::size_t fingerprint(std::string_view symbol);

    QList<QByteArray> m_bytes; // what the keys point to
    std::unordered_map<std::string_view, QString> m_symbols;
    std::bitset<1024> m_fingerprints; // most other symbols are excluded by it
};

/// Reads the tickers of a list one by one; `readOne(element, quotes)` returns false when a ticker does not have its
/// form, which fails the whole list.
template<class ReadOne>
Result<TickerQuotes> readTickers(simdjson::dom::element list, const ReadOne &readOne)
{
    simdjson::dom::array tickers;
    if (list.get(tickers) != simdjson::SUCCESS)
        return unexpectedForm(QStringLiteral("the tickers are not a list"));
    TickerQuotes quotes;
    std::size_t index = 0;
    for (const simdjson::dom::element ticker : tickers) {
        if (!readOne(ticker, quotes))
            return unexpectedForm(QStringLiteral("ticker %1").arg(index));
        ++index;
    }
    return quotes;
}

} // namespace tickwise
