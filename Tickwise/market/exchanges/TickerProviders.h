#pragma once

#include "market/Endpoints.h"
#include "market/exchanges/TickerProvider.h"

#include <memory>
#include <vector>

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

/// OKX's spot list.
class OKXTickerProvider : public TickerProvider
{
public:
    explicit OKXTickerProvider(QString host)
        : m_host(std::move(host))
    {
    }

    QString providerName() const override { return QStringLiteral("okx"); }
    std::optional<HttpRequest> makeRequest(const QStringList &symbols) const override;
    std::optional<HttpRequest> makeAllTickersRequest() const override;
    Result<TickerQuotes> parseQuotes(const QByteArray &data, const QStringList &symbols) const override;

private:
    QString m_host;
};

/// Bybit's spot list.
class BybitTickerProvider : public TickerProvider
{
public:
    explicit BybitTickerProvider(QString host)
        : m_host(std::move(host))
    {
    }

    QString providerName() const override { return QStringLiteral("bybit"); }
    std::optional<HttpRequest> makeRequest(const QStringList &symbols) const override;
    std::optional<HttpRequest> makeAllTickersRequest() const override;
    Result<TickerQuotes> parseQuotes(const QByteArray &data, const QStringList &symbols) const override;

private:
    QString m_host;
};

/// The four providers in the order in which they are tried: Binance's main and data hosts, OKX, Bybit.
std::vector<std::unique_ptr<TickerProvider>> makeTickerProviders(const Endpoints &endpoints, const Clock &clock);

} // namespace tickwise
