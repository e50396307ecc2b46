#pragma once

#include "market/exchanges/TickerProvider.h"

namespace tickwise {

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

} // namespace tickwise
