#pragma once

#include "market/HttpClient.h"

#include <QHash>
#include <QStringList>

#include <optional>

namespace tickwise {

/// One coin's quote as an exchange reports it.
struct TickerQuote
{
    double priceUsd = 0;                    ///< last price of the coin's USDT pair, taken as US dollars
    std::optional<double> change24hPercent; ///< 2.5 means +2.5 %
    bool operator==(const TickerQuote &) const = default;
};

/// Quotes by upper-case base symbol ("BTC").
using TickerQuotes = QHash<QString, TickerQuote>;

/// One exchange's public spot-ticker endpoint: how to ask it and how to read its answer. Immutable; knows no network.
class TickerProvider
{
public:
    virtual ~TickerProvider() = default;

    /// "binance", "okx" or "bybit"; two providers of one exchange share it.
    virtual QString providerName() const = 0;

    /// The request for these base symbols; none when no URL can be formed.
    virtual std::optional<HttpRequest> makeRequest(const QStringList &symbols) const = 0;

    /// The request for the exchange's whole spot list.
    virtual std::optional<HttpRequest> makeAllTickersRequest() const = 0;

    /// The quotes of the wanted symbols that the body of a 2xx answer holds; an element that cannot be used is left
    /// out. Errors: `DecodingError` for a body of another form, `TickerProviderError` and `badServerResponse` for what
    /// the exchange reports in it.
    virtual Result<TickerQuotes> parseQuotes(const QByteArray &data, const QStringList &symbols) const = 0;
};

} // namespace tickwise
