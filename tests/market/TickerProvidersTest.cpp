#include "TickerTexts.h"

#include "support/TestClock.h"

using namespace tickwise;
using namespace tickwise::test;

namespace {

const auto btc = QStringLiteral("BTC");
const auto eth = QStringLiteral("ETH");

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

private:
    std::unique_ptr<TickerProvider> provider(const QByteArray &name) { return providerNamed(name, m_clock.clock()); }

    TestClock m_clock;
};

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

QTEST_GUILESS_MAIN(TickerProvidersTest)
#include "TickerProvidersTest.moc"
