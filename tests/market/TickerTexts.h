#pragma once

#include "market/TickerProviders.h"

#include <QTest>

namespace tickwise::test {

// Answers of the exchanges, written by hand.

inline QByteArray binanceTicker(const QByteArray &pair, const QByteArray &last, const QByteArray &change,
                                qint64 closeTime)
{
    return R"({"symbol":")" + pair + R"(","priceChangePercent":")" + change + R"(","lastPrice":")" + last +
           R"(","closeTime":)" + QByteArray::number(closeTime) + "}";
}

inline QByteArray okxBody(const QByteArray &tickers)
{
    return R"({"code":"0","msg":"","data":[)" + tickers + "]}";
}

inline QByteArray okxTicker(const QByteArray &pair, const QByteArray &last, const QByteArray &open)
{
    return R"({"instId":")" + pair + R"(","last":")" + last + R"(","open24h":")" + open + R"("})";
}

inline QByteArray bybitBody(const QByteArray &tickers)
{
    return R"({"retCode":0,"retMsg":"OK","result":{"category":"spot","list":[)" + tickers + "]}}";
}

inline QByteArray bybitTicker(const QByteArray &pair, const QByteArray &last, const QByteArray &fraction)
{
    return R"({"symbol":")" + pair + R"(","lastPrice":")" + last + R"(","price24hPcnt":")" + fraction + R"("})";
}

inline qint64 milliseconds(TimePoint time)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

inline std::unique_ptr<TickerProvider> providerNamed(const QByteArray &name, const Clock &clock)
{
    if (name == "okx")
        return std::make_unique<OKXTickerProvider>(QStringLiteral("https://okx.example"));
    if (name == "bybit")
        return std::make_unique<BybitTickerProvider>(QStringLiteral("https://bybit.example"));
    return std::make_unique<BinanceTickerProvider>(QStringLiteral("https://binance.example/api/v3"), clock);
}

inline void compare(const Result<TickerQuotes> &result, const TickerQuotes &expected)
{
    QVERIFY2(result.has_value(), result ? "" : qPrintable(description(result.error())));
    QCOMPARE(result->keys(), expected.keys());
    for (const QString &symbol : expected.keys()) {
        QCOMPARE((*result)[symbol].priceUsd, expected[symbol].priceUsd);
        QCOMPARE((*result)[symbol].change24hPercent.has_value(), expected[symbol].change24hPercent.has_value());
        QCOMPARE((*result)[symbol].change24hPercent.value_or(0), expected[symbol].change24hPercent.value_or(0));
    }
}

} // namespace tickwise::test
