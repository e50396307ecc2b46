#pragma once

#include "market/exchanges/TickerProvider.h"

namespace tickwise {

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

} // namespace tickwise
