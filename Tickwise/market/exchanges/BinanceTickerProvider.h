#pragma once

#include "market/exchanges/TickerProvider.h"
#include "support/Clock.h"

namespace tickwise {

/// Binance's spot API below one of its roots (".../api/v3"). Tickers whose 24-hour period closed over an hour ago are
/// left out.
class BinanceTickerProvider : public TickerProvider
{
public:
    explicit BinanceTickerProvider(QString baseURL, Clock clock = systemClock);

    QString providerName() const override { return QStringLiteral("binance"); }
    std::optional<HttpRequest> makeRequest(const QStringList &symbols) const override;
    std::optional<HttpRequest> makeAllTickersRequest() const override;
    Result<TickerQuotes> parseQuotes(const QByteArray &data, const QStringList &symbols) const override;

private:
    QString m_baseURL;
    Clock m_clock;
};

} // namespace tickwise
