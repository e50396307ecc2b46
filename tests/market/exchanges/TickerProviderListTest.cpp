// What holds for all providers together.
#include "market/exchanges/TickerProviderList.h"
#include "doubles/TestData.h"
#include "doubles/TestProgram.h"
#include "market/Symbols.h"

#include "market/exchanges/BinanceTickerProvider.h"
#include "market/exchanges/BybitTickerProvider.h"
#include "market/exchanges/OKXTickerProvider.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace tickwise;
using namespace tickwise::test;

namespace {

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

/// The 24-hour change in percent as the exchange's record gives it.
double changeOf(const QString &provider, const QJsonValue &record)
{
    const auto number = [&record](const char *key) { return record[QLatin1String(key)].toString().toDouble(); };
    if (provider == QStringLiteral("binance"))
        return number("priceChangePercent");
    if (provider == QStringLiteral("bybit"))
        return number("price24hPcnt") * 100;
    return (number("last") / number("open24h") - 1) * 100;
}

} // namespace

class TickerProviderListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void order();
    void everyInstrumentOfTheGeneratedLists_data();
    void everyInstrumentOfTheGeneratedLists();
    void requestsWaitFiveSeconds();
    void numbersThatAreNotReadDoNotMatter_data();
    void numbersThatAreNotReadDoNotMatter();
    void reportedCodesAreExcerpts();
    void aChangeBeyondAnyNumberIsAbsent();
    void hostile_data();
    void hostile();
};

void TickerProviderListTest::order()
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

void TickerProviderListTest::everyInstrumentOfTheGeneratedLists_data()
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

void TickerProviderListTest::everyInstrumentOfTheGeneratedLists()
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
    QHash<QString, double> changes;
    for (const QJsonValue &record : list) {
        const QString pair = record[nameKey].toString();
        if (!pair.endsWith(suffix))
            continue;
        expected.insert(pair.chopped(suffix.size()), record[priceKey].toString().toDouble());
        changes.insert(pair.chopped(suffix.size()), changeOf(provider, record));
    }
    QVERIFY(expected.size() > 200);
    const auto quotes = providerNamed(provider)->parseQuotes(body, expected.keys());
    QVERIFY(quotes.has_value());
    QCOMPARE(quotes->size(), expected.size());
    for (auto quote = quotes->cbegin(); quote != quotes->cend(); ++quote) {
        QCOMPARE(quote->priceUsd, expected.value(quote.key(), -1));
        QVERIFY(quote->change24hPercent);
        // QCOMPARE holds no two different numbers near zero for equal.
        QCOMPARE(*quote->change24hPercent + 1000, changes.value(quote.key()) + 1000);
    }
}

void TickerProviderListTest::requestsWaitFiveSeconds()
{
    for (const auto &provider : makeTickerProviders(Endpoints{}, august2026)) {
        QCOMPARE(provider->makeRequest({btc})->timeout, std::chrono::milliseconds(5000));
        QCOMPARE(provider->makeAllTickersRequest()->timeout, std::chrono::milliseconds(5000));
    }
}

void TickerProviderListTest::numbersThatAreNotReadDoNotMatter_data()
{
    QTest::addColumn<QByteArray>("number");
    QTest::newRow("64 bits") << QByteArray("18446744073709551615");
    QTest::newRow("more than 64 bits") << QByteArray("100000000000000000000");
    QTest::newRow("more than 64 bits, negative") << QByteArray("-100000000000000000000");
    QTest::newRow("beyond any double") << QByteArray("1e999");
}

void TickerProviderListTest::numbersThatAreNotReadDoNotMatter()
{
    QFETCH(QByteArray, number);
    const QByteArray extra = "\"count\":" + number + ",";
    const std::map<QString, QByteArray> bodies{
        {QStringLiteral("binance"),
         "[{" + extra + R"("symbol":"BTCUSDT","priceChangePercent":"1","lastPrice":"2","closeTime":1787416525000}])"},
        {QStringLiteral("okx"),
         "{" + extra + R"("code":"0","data":[{)" + extra + R"("instId":"BTC-USDT","last":"2","open24h":"1"}]})"},
        {QStringLiteral("bybit"), "{" + extra + R"("retCode":0,"result":{"list":[{)" + extra +
                                      R"("symbol":"BTCUSDT","lastPrice":"2","price24hPcnt":"1"}]}})"},
    };
    for (const auto &[name, body] : bodies) {
        const auto quotes = providerNamed(name)->parseQuotes(body, {btc});
        QVERIFY2(quotes.has_value(), qPrintable(name));
        QCOMPARE(quotes->value(btc).priceUsd, 2.0);
    }
    const auto refused = providerNamed(QStringLiteral("bybit"))
                             ->parseQuotes("{\"retCode\":" + number + R"(,"result":{"list":[]}})", {btc});
    QVERIFY(!refused);
}

void TickerProviderListTest::reportedCodesAreExcerpts()
{
    const QByteArray code = R"(\u001b[2J)" + QByteArray(1 << 20, 'x');
    const auto quotes = providerNamed(QStringLiteral("okx"))->parseQuotes("{\"code\":\"" + code + "\"}", {btc});
    QCOMPARE(description(quotes.error()),
             QStringLiteral("bad server response: the exchange reports code \\u001b[2J") + QString(196, u'x'));
}

void TickerProviderListTest::aChangeBeyondAnyNumberIsAbsent()
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

void TickerProviderListTest::hostile_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("many open lists") << QByteArray(8 * 1024 * 1024, '[');
    QTest::newRow("many closed lists") << QByteArray(4 * 1024 * 1024, '[') + QByteArray(4 * 1024 * 1024, ']');
    QTest::newRow("larger than the largest") << QByteArray("[\"") + QByteArray(16 * 1024 * 1024, 'a') + "\"]";
    QTest::newRow("number too long") << "[" + QByteArray(100000, '9') + "]";
    QTest::newRow("lone surrogate") << QByteArray(R"(["\ud800"])");
    QTest::newRow("lone backslash") << QByteArray("[\"\\");
}

void TickerProviderListTest::hostile()
{
    QFETCH(QByteArray, body);
    for (const char *name : {"binance", "okx", "bybit"}) {
        const Result<TickerQuotes> quotes = providerNamed(QLatin1String(name))->parseQuotes(body, {btc});
        QVERIFY(!quotes);
        QVERIFY(std::holds_alternative<DecodingError>(quotes.error()));
    }
}

TICKWISE_TEST(TickerProviderListTest)
#include "TickerProviderListTest.moc"
