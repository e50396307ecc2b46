// What holds for all providers together.
#include "market/exchanges/TickerProviders.h"
#include "doubles/TestData.h"
#include "doubles/TestProgram.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const auto btc = QStringLiteral("BTC");

/// When the generated lists were made.
TimePoint august2026()
{
    return TimePoint(std::chrono::milliseconds(1787416525000));
}

std::unique_ptr<TickerProvider> providerNamed(const QString &name)
{
    const auto host = QStringLiteral("https://exchange.example");
    if (name == QStringLiteral("okx"))
        return std::make_unique<OKXTickerProvider>(host);
    if (name == QStringLiteral("bybit"))
        return std::make_unique<BybitTickerProvider>(host);
    return std::make_unique<BinanceTickerProvider>(host, august2026);
}

} // namespace

class TickerProvidersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void order();
    void everyInstrumentOfTheGeneratedLists_data();
    void everyInstrumentOfTheGeneratedLists();
    void aChangeBeyondAnyNumberIsAbsent();
    void hostile_data();
    void hostile();
};

void TickerProvidersTest::order()
{
    QStringList lines;
    for (const auto &provider : makeTickerProviders(Endpoints{}, august2026)) {
        const QUrl url = provider->makeAllTickersRequest()->url;
        lines.append(provider->providerName() + QLatin1Char(' ') + url.toString(QUrl::FullyEncoded));
    }
    QCOMPARE(lines, QStringList({
                        QStringLiteral("binance https://api.binance.com/api/v3/ticker/24hr"),
                        QStringLiteral("binance https://data-api.binance.vision/api/v3/ticker/24hr"),
                        QStringLiteral("okx https://www.okx.com/api/v5/market/tickers?instType=SPOT"),
                        QStringLiteral("bybit https://api.bybit.com/v5/market/tickers?category=spot"),
                    }));
}

void TickerProvidersTest::everyInstrumentOfTheGeneratedLists_data()
{
    QTest::addColumn<QString>("provider");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("suffix");
    QTest::newRow("binance") << QStringLiteral("binance") << QStringLiteral("binance_ticker24hr_full_synthetic.json")
                             << QStringLiteral("USDT");
    QTest::newRow("okx") << QStringLiteral("okx") << QStringLiteral("okx_tickers_spot_full_synthetic.json")
                         << QStringLiteral("-USDT");
    QTest::newRow("bybit") << QStringLiteral("bybit") << QStringLiteral("bybit_tickers_spot_full_synthetic.json")
                           << QStringLiteral("USDT");
}

void TickerProvidersTest::everyInstrumentOfTheGeneratedLists()
{
    QFETCH(QString, provider);
    QFETCH(QString, file);
    QFETCH(QString, suffix);
    const QByteArray body = readData(QStringLiteral("exchange/generated/") + file);
    const QJsonDocument document = QJsonDocument::fromJson(body);
    const QJsonObject root = document.object();
    const QJsonArray list = provider == QStringLiteral("binance") ? document.array()
                            : provider == QStringLiteral("okx")
                                ? root[QStringLiteral("data")].toArray()
                                : root[QStringLiteral("result")].toObject()[QStringLiteral("list")].toArray();
    const QString nameKey = provider == QStringLiteral("okx") ? QStringLiteral("instId") : QStringLiteral("symbol");
    const QString priceKey = provider == QStringLiteral("okx") ? QStringLiteral("last") : QStringLiteral("lastPrice");
    QHash<QString, double> expected;
    for (const QJsonValue &record : list) {
        const QString pair = record[nameKey].toString();
        if (pair.endsWith(suffix))
            expected.insert(pair.chopped(suffix.size()), record[priceKey].toString().toDouble());
    }
    QVERIFY(expected.size() > 200);
    const auto quotes = providerNamed(provider)->parseQuotes(body, expected.keys());
    QVERIFY(quotes.has_value());
    QCOMPARE(quotes->size(), expected.size());
    for (auto quote = quotes->cbegin(); quote != quotes->cend(); ++quote)
        QCOMPARE(quote->priceUsd, expected.value(quote.key(), -1));
}

void TickerProvidersTest::aChangeBeyondAnyNumberIsAbsent()
{
    const TickerQuotes expected{{btc, {1e300, std::nullopt}}};
    const auto okx =
        providerNamed(QStringLiteral("okx"))
            ->parseQuotes(R"({"code":"0","data":[{"instId":"BTC-USDT","last":"1e300","open24h":"1e-300"}]})", {btc});
    QVERIFY(okx == expected);
    const auto bybit =
        providerNamed(QStringLiteral("bybit"))
            ->parseQuotes(
                R"({"retCode":0,"result":{"list":[{"symbol":"BTCUSDT","lastPrice":"1e300","price24hPcnt":"1e308"}]}})",
                {btc});
    QVERIFY(bybit == expected);
}

void TickerProvidersTest::hostile_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("many open lists") << QByteArray(8 * 1024 * 1024, '[');
    QTest::newRow("many closed lists") << QByteArray(4 * 1024 * 1024, '[') + QByteArray(4 * 1024 * 1024, ']');
    QTest::newRow("larger than the largest") << QByteArray("[\"") + QByteArray(16 * 1024 * 1024, 'a') + "\"]";
    QTest::newRow("number too long") << "[" + QByteArray(100000, '9') + "]";
    QTest::newRow("lone surrogate") << QByteArray(R"(["\ud800"])");
    QTest::newRow("lone backslash") << QByteArray("[\"\\");
}

void TickerProvidersTest::hostile()
{
    QFETCH(QByteArray, body);
    for (const char *name : {"binance", "okx", "bybit"}) {
        const Result<TickerQuotes> quotes = providerNamed(QLatin1String(name))->parseQuotes(body, {btc});
        QVERIFY(!quotes);
        QVERIFY(std::holds_alternative<DecodingError>(quotes.error()));
    }
}

TICKWISE_TEST(TickerProvidersTest)
#include "TickerProvidersTest.moc"
