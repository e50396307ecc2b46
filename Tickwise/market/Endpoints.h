#pragma once

#include <QString>

namespace tickwise {

/// Base URLs of the market services; the defaults are the live services. API roots carry no trailing slash.
struct Endpoints
{
    QString binanceMain = QStringLiteral("https://api.binance.com/api/v3");
    QString binanceData = QStringLiteral("https://data-api.binance.vision/api/v3");
    QString okx = QStringLiteral("https://www.okx.com");
    QString bybit = QStringLiteral("https://api.bybit.com");
    QString exchangeRateApi = QStringLiteral("https://open.er-api.com");
    QString currencyApiPrimary = QStringLiteral("https://cdn.jsdelivr.net/npm/@fawazahmed0/currency-api@latest");
    QString currencyApiFallback = QStringLiteral("https://latest.currency-api.pages.dev");
};

} // namespace tickwise
