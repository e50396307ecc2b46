#include "market/TickerProviders.h"
#include "support/TestClock.h"

#include <QTest>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const auto btc = QStringLiteral("BTC");
const auto eth = QStringLiteral("ETH");

QByteArray binanceTicker(const QByteArray &pair, const QByteArray &last, const QByteArray &change, qint64 closeTime)
{
    return R"({"symbol":")" + pair + R"(","priceChangePercent":")" + change + R"(","lastPrice":")" + last +
           R"(","closeTime":)" + QByteArray::number(closeTime) + "}";
}

QByteArray okxBody(const QByteArray &tickers)
{
    return R"({"code":"0","msg":"","data":[)" + tickers + "]}";
}

QByteArray okxTicker(const QByteArray &pair, const QByteArray &last, const QByteArray &open)
{
    return R"({"instId":")" + pair + R"(","last":")" + last + R"(","open24h":")" + open + R"("})";
}

QByteArray bybitBody(const QByteArray &tickers)
{
    return R"({"retCode":0,"retMsg":"OK","result":{"category":"spot","list":[)" + tickers + "]}}";
}

QByteArray bybitTicker(const QByteArray &pair, const QByteArray &last, const QByteArray &fraction)
{
    return R"({"symbol":")" + pair + R"(","lastPrice":")" + last + R"(","price24hPcnt":")" + fraction + R"("})";
}

qint64 milliseconds(TimePoint time)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

QString address(const std::optional<HttpRequest> &request)
{
    return request ? request->url.toString(QUrl::FullyEncoded) : QString();
}

} // namespace

class TickerProvidersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void order();
    void addresses_data();
    void addresses();
    void requestsAskFreshlyForFiveSeconds();
    void unbuildableAddress_data();
    void unbuildableAddress();
    void binanceElements_data();
    void binanceElements();
    void binanceFreshness_data();
    void binanceFreshness();
    void binanceLaterDuplicateWins();
    void okxElements_data();
    void okxElements();
    void okxLaterDuplicateWins();
    void okxCodes_data();
    void okxCodes();
    void bybitElements_data();
    void bybitElements();
    void bybitLaterDuplicateWins();
    void bybitCodes_data();
    void bybitCodes();
    void strictForm_data();
    void strictForm();
    void nonAsciiNames();
    void keysInAnyOrder();
    void anEmptyListIsNoError();

private:
    std::unique_ptr<TickerProvider> provider(const QByteArray &name);
    void compare(const Result<TickerQuotes> &result, const TickerQuotes &expected);

    TestClock m_clock;
};

std::unique_ptr<TickerProvider> TickerProvidersTest::provider(const QByteArray &name)
{
    if (name == "okx")
        return std::make_unique<OKXTickerProvider>(QStringLiteral("https://okx.example"));
    if (name == "bybit")
        return std::make_unique<BybitTickerProvider>(QStringLiteral("https://bybit.example"));
    return std::make_unique<BinanceTickerProvider>(QStringLiteral("https://binance.example/api/v3"), m_clock.clock());
}

void TickerProvidersTest::compare(const Result<TickerQuotes> &result, const TickerQuotes &expected)
{
    QVERIFY2(result.has_value(), result ? "" : qPrintable(description(result.error())));
    QCOMPARE(result->keys(), expected.keys());
    for (const QString &symbol : expected.keys()) {
        QCOMPARE((*result)[symbol].priceUsd, expected[symbol].priceUsd);
        QCOMPARE((*result)[symbol].change24hPercent.has_value(), expected[symbol].change24hPercent.has_value());
        QCOMPARE((*result)[symbol].change24hPercent.value_or(0), expected[symbol].change24hPercent.value_or(0));
    }
}

void TickerProvidersTest::order()
{
    const auto providers = makeTickerProviders(Endpoints{}, m_clock.clock());
    QStringList lines;
    for (const auto &one : providers)
        lines.append(one->providerName() + QLatin1Char(' ') + address(one->makeAllTickersRequest()));
    QCOMPARE(lines, QStringList({
                        QStringLiteral("binance https://api.binance.com/api/v3/ticker/24hr"),
                        QStringLiteral("binance https://data-api.binance.vision/api/v3/ticker/24hr"),
                        QStringLiteral("okx https://www.okx.com/api/v5/market/tickers?instType=SPOT"),
                        QStringLiteral("bybit https://api.bybit.com/v5/market/tickers?category=spot"),
                    }));
}

void TickerProvidersTest::addresses_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QStringList>("symbols");
    QTest::addColumn<QString>("expected");
    const auto binance = QStringLiteral("https://binance.example/api/v3/ticker/24hr?symbols=");
    QTest::newRow("two symbols") << QByteArray("binance") << QStringList{btc, eth}
                                 << binance + QStringLiteral("%5B%22BTCUSDT%22%2C%22ETHUSDT%22%5D");
    QTest::newRow("the order given") << QByteArray("binance") << QStringList{eth, btc}
                                     << binance + QStringLiteral("%5B%22ETHUSDT%22%2C%22BTCUSDT%22%5D");
    QTest::newRow("one symbol") << QByteArray("binance") << QStringList{btc}
                                << binance + QStringLiteral("%5B%22BTCUSDT%22%5D");
    QTest::newRow("not ASCII") << QByteArray("binance") << QStringList{QStringLiteral("币")}
                               << binance + QStringLiteral("%5B%22%E5%B8%81USDT%22%5D");
    QTest::newRow("reserved characters") << QByteArray("binance") << QStringList{QStringLiteral("A&B%+#")}
                                         << binance + QStringLiteral("%5B%22A%26B%25%2B%23USDT%22%5D");
    QTest::newRow("OKX") << QByteArray("okx") << QStringList{btc, eth}
                         << QStringLiteral("https://okx.example/api/v5/market/tickers?instType=SPOT");
    QTest::newRow("Bybit") << QByteArray("bybit") << QStringList{btc, eth}
                           << QStringLiteral("https://bybit.example/v5/market/tickers?category=spot");
}

void TickerProvidersTest::addresses()
{
    QFETCH(QByteArray, name);
    QFETCH(QStringList, symbols);
    QTEST(address(provider(name)->makeRequest(symbols)), "expected");
}

void TickerProvidersTest::requestsAskFreshlyForFiveSeconds()
{
    for (const char *name : {"binance", "okx", "bybit"}) {
        for (const auto &request : {provider(name)->makeRequest({btc}), provider(name)->makeAllTickersRequest()}) {
            QVERIFY(request.has_value());
            QCOMPARE(request->timeout, std::chrono::milliseconds(5000));
            QCOMPARE(request->maximumBytes, qint64(16 * 1024 * 1024));
            QVERIFY(!request->mayRedirectTo);
        }
    }
}

void TickerProvidersTest::unbuildableAddress_data()
{
    QTest::addColumn<QString>("base");
    QTest::newRow("empty") << QString();
    QTest::newRow("no host") << QStringLiteral("https://");
    QTest::newRow("blank in the host") << QStringLiteral("https://not a host/api/v3");
    QTest::newRow("broken port") << QStringLiteral("https://host:port/api/v3");
}

void TickerProvidersTest::unbuildableAddress()
{
    QFETCH(QString, base);
    QVERIFY(!BinanceTickerProvider(base).makeRequest({btc}));
    QVERIFY(!BinanceTickerProvider(base).makeAllTickersRequest());
    QVERIFY(!OKXTickerProvider(base).makeRequest({btc}));
    QVERIFY(!BybitTickerProvider(base).makeRequest({btc}));
}

void TickerProvidersTest::binanceElements_data()
{
    QTest::addColumn<QByteArray>("pair");
    QTest::addColumn<QByteArray>("last");
    QTest::addColumn<QByteArray>("change");
    QTest::addColumn<TickerQuotes>("expected");
    const auto row = [](const char *name, const char *pair, const char *last, const char *change,
                        const TickerQuotes &expected) {
        QTest::newRow(name) << QByteArray(pair) << QByteArray(last) << QByteArray(change) << expected;
    };
    row("plain", "BTCUSDT", "16176.40000000", "-3.092", {{btc, {16176.4, -3.092}}});
    row("another quote currency", "BTCUSDC", "1", "1", {});
    row("the quote currency first", "USDTBTC", "1", "1", {});
    row("not requested", "ETHUSDT", "1", "1", {});
    row("lower case", "btcusdt", "1", "1", {});
    row("only the quote currency", "USDT", "1", "1", {});
    row("change is no number", "BTCUSDT", "1.5", "abc", {{btc, {1.5, std::nullopt}}});
    row("change is empty", "BTCUSDT", "1.5", "", {{btc, {1.5, std::nullopt}}});
    row("price with a leading blank", "BTCUSDT", " 1.5", "1", {});
    row("price with a trailing blank", "BTCUSDT", "1.5 ", "1", {});
    row("price is empty", "BTCUSDT", "", "1", {});
    row("price is not finite", "BTCUSDT", "nan", "1", {});
    row("price is too large", "BTCUSDT", "1e999", "1", {});
    row("escaped name", "BT\\u0043USDT", "2", "1", {{btc, {2, 1.0}}});
}

void TickerProvidersTest::binanceElements()
{
    QFETCH(QByteArray, pair);
    QFETCH(QByteArray, last);
    QFETCH(QByteArray, change);
    QFETCH(TickerQuotes, expected);
    const QByteArray body = "[" + binanceTicker(pair, last, change, milliseconds(m_clock.now())) + "]";
    compare(provider("binance")->parseQuotes(body, {btc}), expected);
}

void TickerProvidersTest::binanceFreshness_data()
{
    QTest::addColumn<QByteArray>("closeTime");
    QTest::addColumn<bool>("kept");
    const qint64 limit = milliseconds(m_clock.now()) - 3600 * 1000;
    QTest::newRow("an hour old") << QByteArray::number(limit) << true;
    QTest::newRow("a millisecond older") << QByteArray::number(limit - 1) << false;
    QTest::newRow("a fraction") << QByteArray::number(limit - 1) + ".5" << false;
    QTest::newRow("now") << QByteArray::number(milliseconds(m_clock.now())) << true;
    QTest::newRow("in the future") << QByteArray::number(milliseconds(m_clock.now()) + 1000000) << true;
    QTest::newRow("negative") << QByteArray("-1") << false;
    QTest::newRow("larger than any time") << QByteArray("1e300") << true;
}

void TickerProvidersTest::binanceFreshness()
{
    QFETCH(QByteArray, closeTime);
    QByteArray body = "[" + binanceTicker("BTCUSDT", "1", "1", 12345) + "]";
    body.replace("12345", closeTime);
    const Result<TickerQuotes> quotes = provider("binance")->parseQuotes(body, {btc});
    QVERIFY(quotes.has_value());
    QTEST(quotes->contains(btc), "kept");
}

void TickerProvidersTest::binanceLaterDuplicateWins()
{
    const qint64 now = milliseconds(m_clock.now());
    const QByteArray body = "[" + binanceTicker("BTCUSDT", "1", "1", now) + "," +
                            binanceTicker("BTCUSDT", "2", "x", now) + "," + binanceTicker("BTCUSDT", "x", "3", now) +
                            "]";
    compare(provider("binance")->parseQuotes(body, {btc}), {{btc, {2, std::nullopt}}});
}

void TickerProvidersTest::okxElements_data()
{
    QTest::addColumn<QByteArray>("pair");
    QTest::addColumn<QByteArray>("last");
    QTest::addColumn<QByteArray>("open");
    QTest::addColumn<TickerQuotes>("expected");
    const auto row = [](const char *name, const char *pair, const char *last, const char *open,
                        const TickerQuotes &expected) {
        QTest::newRow(name) << QByteArray(pair) << QByteArray(last) << QByteArray(open) << expected;
    };
    row("ten percent up", "BTC-USDT", "110", "100", {{btc, {110, 10.0}}});
    row("down", "BTC-USDT", "75", "100", {{btc, {75, -25.0}}});
    row("open is zero", "BTC-USDT", "110", "0", {{btc, {110, std::nullopt}}});
    row("open is negative", "BTC-USDT", "110", "-1", {{btc, {110, std::nullopt}}});
    row("open is empty", "BTC-USDT", "110", "", {{btc, {110, std::nullopt}}});
    row("change beyond any number", "BTC-USDT", "1e300", "1e-300", {{btc, {1e300, std::nullopt}}});
    row("last is empty", "BTC-USDT", "", "100", {});
    row("last with a blank", "BTC-USDT", "110\\n", "100", {});
    row("another quote currency", "BTC-USDC", "110", "100", {});
    row("no dash", "BTCUSDT", "110", "100", {});
    row("not requested", "ETH-USDT", "110", "100", {});
}

void TickerProvidersTest::okxElements()
{
    QFETCH(QByteArray, pair);
    QFETCH(QByteArray, last);
    QFETCH(QByteArray, open);
    QFETCH(TickerQuotes, expected);
    compare(provider("okx")->parseQuotes(okxBody(okxTicker(pair, last, open)), {btc}), expected);
}

void TickerProvidersTest::okxLaterDuplicateWins()
{
    const QByteArray tickers = okxTicker("BTC-USDT", "1", "1") + "," + okxTicker("BTC-USDT", "2", "0");
    compare(provider("okx")->parseQuotes(okxBody(tickers), {btc}), {{btc, {2, std::nullopt}}});
}

void TickerProvidersTest::okxCodes_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("expected");
    const auto limited = QStringLiteral("rate limited");
    const auto reports = QStringLiteral("bad server response: the exchange reports code ");
    QTest::newRow("50011") << QByteArray(R"({"code":"50011","msg":"x","data":[]})") << limited;
    QTest::newRow("50011 without data") << QByteArray(R"({"msg":"Too Many Requests","code":"50011"})") << limited;
    QTest::newRow("50011 with nonsense") << QByteArray(R"({"code":"50011","data":[7]})") << limited;
    QTest::newRow("51001") << QByteArray(R"({"code":"51001","msg":"x","data":[]})")
                           << reports + QStringLiteral("51001");
    QTest::newRow("empty") << QByteArray(R"({"code":"","data":[]})") << reports;
    QTest::newRow("00") << QByteArray(R"({"code":"00","data":[]})") << reports + QStringLiteral("00");
}

void TickerProvidersTest::okxCodes()
{
    QFETCH(QByteArray, body);
    const Result<TickerQuotes> result = provider("okx")->parseQuotes(body, {btc});
    QVERIFY(!result);
    QTEST(description(result.error()), "expected");
}

void TickerProvidersTest::bybitElements_data()
{
    QTest::addColumn<QByteArray>("pair");
    QTest::addColumn<QByteArray>("last");
    QTest::addColumn<QByteArray>("fraction");
    QTest::addColumn<TickerQuotes>("expected");
    const auto row = [](const char *name, const char *pair, const char *last, const char *fraction,
                        const TickerQuotes &expected) {
        QTest::newRow(name) << QByteArray(pair) << QByteArray(last) << QByteArray(fraction) << expected;
    };
    row("down", "BTCUSDT", "25922.39", "-0.0125", {{btc, {25922.39, -1.25}}});
    row("no change figure", "BTCUSDT", "1", "", {{btc, {1, std::nullopt}}});
    row("change beyond any number", "BTCUSDT", "1", "1e308", {{btc, {1, std::nullopt}}});
    row("last with a blank", "BTCUSDT", " 1", "0", {});
    row("another quote currency", "BTCUSDC", "1", "0", {});
    row("not requested", "ETHUSDT", "1", "0", {});
}

void TickerProvidersTest::bybitElements()
{
    QFETCH(QByteArray, pair);
    QFETCH(QByteArray, last);
    QFETCH(QByteArray, fraction);
    QFETCH(TickerQuotes, expected);
    compare(provider("bybit")->parseQuotes(bybitBody(bybitTicker(pair, last, fraction)), {btc}), expected);
}

void TickerProvidersTest::bybitLaterDuplicateWins()
{
    const QByteArray tickers = bybitTicker("BTCUSDT", "1", "0.5") + "," + bybitTicker("BTCUSDT", "2", "0");
    compare(provider("bybit")->parseQuotes(bybitBody(tickers), {btc}), {{btc, {2, 0.0}}});
}

void TickerProvidersTest::bybitCodes_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("expected");
    const auto reports = QStringLiteral("bad server response: the exchange reports code ");
    QTest::newRow("10006") << QByteArray(R"({"retCode":10006,"result":{}})") << reports + QStringLiteral("10006");
    QTest::newRow("with a list") << QByteArray(R"({"retCode":-1,"result":{"list":[]}})")
                                 << reports + QStringLiteral("-1");
}

void TickerProvidersTest::bybitCodes()
{
    QFETCH(QByteArray, body);
    const Result<TickerQuotes> result = provider("bybit")->parseQuotes(body, {btc});
    QVERIFY(!result);
    QTEST(description(result.error()), "expected");
}

void TickerProvidersTest::strictForm_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("body");
    const auto row = [](const char *name, const char *what, const QByteArray &body) {
        QTest::newRow(qPrintable(QLatin1String(name) + QLatin1Char(' ') + QLatin1String(what)))
            << QByteArray(name) << body;
    };
    // A good ticker comes first: one with a wrong form anywhere in the list still fails the whole answer.
    const QByteArray binance = binanceTicker("BTCUSDT", "1", "1", milliseconds(m_clock.now())) + ",";
    const char *const form = R"({"symbol":"X","priceChangePercent":"1","lastPrice":"1","closeTime":1})";
    const auto binanceRow = [&](const char *what, const char *from, const char *to) {
        row("binance", what, "[" + binance + QByteArray(form).replace(from, to) + "]");
    };
    binanceRow("without symbol", "symbol", "s");
    binanceRow("without lastPrice", "lastPrice", "l");
    binanceRow("without priceChangePercent", "priceChangePercent", "p");
    binanceRow("without closeTime", "closeTime", "c");
    binanceRow("number as symbol", R"("X")", "1");
    binanceRow("number as lastPrice", R"("lastPrice":"1")", R"("lastPrice":1)");
    binanceRow("number as priceChangePercent", R"("priceChangePercent":"1")", R"("priceChangePercent":1)");
    binanceRow("null as lastPrice", R"("lastPrice":"1")", R"("lastPrice":null)");
    binanceRow("text as closeTime", R"("closeTime":1)", R"("closeTime":"1")");
    binanceRow("bool as closeTime", R"("closeTime":1)", R"("closeTime":true)");
    row("binance", "number as ticker", "[" + binance + "1]");
    row("binance", "object instead of a list", form);
    row("binance", "empty body", "");
    row("binance", "blank body", " \n");
    row("binance", "page", "<!DOCTYPE html><html><body>Maintenance</body></html>");
    row("binance", "rest after the list", "[] []");
    row("binance", "wrong UTF-8", "[\"\xff\"]");

    const QByteArray okx = okxTicker("BTC-USDT", "1", "1") + ",";
    row("okx", "without open24h", okxBody(okx + R"({"instId":"X","last":"1"})"));
    row("okx", "without last", okxBody(okx + R"({"instId":"X","open24h":"1"})"));
    row("okx", "without instId", okxBody(okx + R"({"last":"1","open24h":"1"})"));
    row("okx", "number as last", okxBody(okx + R"({"instId":"X","last":1,"open24h":"1"})"));
    row("okx", "number as open24h", okxBody(okx + R"({"instId":"X","last":"1","open24h":1})"));
    row("okx", "number as instId", okxBody(okx + R"({"instId":1,"last":"1","open24h":"1"})"));
    row("okx", "number as code", R"({"code":0,"data":[]})");
    row("okx", "without code", R"({"data":[]})");
    row("okx", "without data", R"({"code":"0"})");
    row("okx", "object as data", R"({"code":"0","data":{}})");
    row("okx", "list instead of an object", "[]");

    const QByteArray bybit = bybitTicker("BTCUSDT", "1", "1") + ",";
    row("bybit", "without symbol", bybitBody(bybit + R"({"lastPrice":"1","price24hPcnt":"1"})"));
    row("bybit", "without lastPrice", bybitBody(bybit + R"({"symbol":"X","price24hPcnt":"1"})"));
    row("bybit", "without price24hPcnt", bybitBody(bybit + R"({"symbol":"X","lastPrice":"1"})"));
    row("bybit", "number as symbol", bybitBody(bybit + R"({"symbol":1,"lastPrice":"1","price24hPcnt":"1"})"));
    row("bybit", "number as lastPrice", bybitBody(bybit + R"({"symbol":"X","lastPrice":1,"price24hPcnt":"1"})"));
    row("bybit", "number as price24hPcnt", bybitBody(bybit + R"({"symbol":"X","lastPrice":"1","price24hPcnt":1})"));
    row("bybit", "text as retCode", R"({"retCode":"0","result":{"list":[]}})");
    row("bybit", "fraction as retCode", R"({"retCode":0.5,"result":{"list":[]}})");
    row("bybit", "without retCode", R"({"result":{"list":[]}})");
    row("bybit", "without result", R"({"retCode":0})");
    row("bybit", "without list", R"({"retCode":0,"result":{}})");
    row("bybit", "object as list", R"({"retCode":0,"result":{"list":{}}})");
}

void TickerProvidersTest::strictForm()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, body);
    const Result<TickerQuotes> result = provider(name)->parseQuotes(body, {btc});
    QVERIFY(!result);
    QVERIFY2(std::holds_alternative<DecodingError>(result.error()), qPrintable(description(result.error())));
}

void TickerProvidersTest::nonAsciiNames()
{
    const auto name = QStringLiteral("币安人生");
    const QByteArray pair = name.toUtf8() + "USDT";
    const qint64 now = milliseconds(m_clock.now());
    compare(provider("binance")->parseQuotes("[" + binanceTicker(pair, "0.5", "1", now) + "]", {name}),
            {{name, {0.5, 1.0}}});
    compare(provider("binance")->parseQuotes(
                "[" + binanceTicker(R"(\u5e01\u5b89\u4eba\u751fUSDT)", "0.5", "1", now) + "]", {name}),
            {{name, {0.5, 1.0}}});
    compare(provider("bybit")->parseQuotes(bybitBody(bybitTicker(pair, "2", "0")), {btc}), {});
}

void TickerProvidersTest::keysInAnyOrder()
{
    compare(provider("okx")->parseQuotes(
                R"({"data":[{"open24h":"100","last":"110","instId":"BTC-USDT","x":{"last":"1"}}],"code":"0"})", {btc}),
            {{btc, {110, 10.0}}});
    compare(provider("bybit")->parseQuotes(
                R"({"result":{"list":[{"price24hPcnt":"0","lastPrice":"1","symbol":"BTCUSDT"}]},"retCode":0})", {btc}),
            {{btc, {1, 0.0}}});
    QByteArray body = R"([{"closeTime":12345,"lastPrice":"1","symbol":"BTCUSDT","priceChangePercent":"2"}])";
    body.replace("12345", QByteArray::number(milliseconds(m_clock.now())));
    compare(provider("binance")->parseQuotes(body, {btc}), {{btc, {1, 2.0}}});
}

void TickerProvidersTest::anEmptyListIsNoError()
{
    compare(provider("binance")->parseQuotes("[]", {btc}), {});
    compare(provider("okx")->parseQuotes(okxBody({}), {btc}), {});
    compare(provider("bybit")->parseQuotes(bybitBody({}), {btc}), {});
}

QTEST_GUILESS_MAIN(TickerProvidersTest)
#include "TickerProvidersTest.moc"
