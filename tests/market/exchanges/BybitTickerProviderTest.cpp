#include "market/exchanges/BybitTickerProvider.h"

#include "doubles/TestProgram.h"
#include "market/Outcome.h"
#include "market/exchanges/BrokenBodies.h"
#include "market/exchanges/ProviderFixture.h"

using namespace tickwise;
using namespace tickwise::test;

namespace {

/// One element with its values as JSON, as they are to stand in the body.
QByteArray bybitElement(const QByteArray &symbol, const QByteArray &price = "\"1.5\"",
                        const QByteArray &fraction = "\"-0.0125\"")
{
    return "{\"symbol\":" + symbol + ",\"lastPrice\":" + price + ",\"price24hPcnt\":" + fraction + "}";
}

QByteArray bybitAnswer(const QByteArray &elements)
{
    return R"({"retCode":0,"retMsg":"OK","result":{"category":"spot","list":[)" + elements + "]},\"time\":1}";
}

} // namespace

class BybitTickerProviderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void requestAddress();
    void unbuildableUrlGivesNone_data();
    void unbuildableUrlGivesNone();
    void parseRules_data();
    void parseRules();
    void exchangeCodes_data();
    void exchangeCodes();
    void strictness_data();
    void strictness();
    void envelopeStrictness_data();
    void envelopeStrictness();
    void laterDuplicatesWin();
    void oneBadElementNeverFailsTheAnswer();
    void emptyListIsNoError();
    void recordedTickers();
    void recordedErrorBodies_data();
    void recordedErrorBodies();
    void truncatedNeverSucceeds();
    void garbageFails_data();
    void garbageFails();

private:
    Result<TickerQuotes> parse(const QByteArray &body, const QStringList &symbols = bitcoinOnly) const
    {
        return m_provider.parseQuotes(body, symbols);
    }

    BybitTickerProvider m_provider{QStringLiteral("https://bybit.example.test")};
};

void BybitTickerProviderTest::requestAddress()
{
    const auto expected = QStringLiteral("https://bybit.example.test/v5/market/tickers?category=spot");
    QCOMPARE(addressOf(m_provider.makeRequest(bitcoinOnly)), expected);
    QCOMPARE(addressOf(m_provider.makeAllTickersRequest()), expected);
    QCOMPARE(m_provider.makeRequest(bitcoinOnly)->timeout, std::chrono::seconds(5));
    QCOMPARE(m_provider.providerName(), QStringLiteral("bybit"));
}

void BybitTickerProviderTest::unbuildableUrlGivesNone_data()
{
    QTest::addColumn<QString>("host");
    QTest::newRow("empty") << QString();
    QTest::newRow("no scheme") << QStringLiteral("bybit.example.test");
    QTest::newRow("blank in the host") << QStringLiteral("https://bybit example.test");
}

void BybitTickerProviderTest::unbuildableUrlGivesNone()
{
    QFETCH(QString, host);
    QCOMPARE(addressOf(BybitTickerProvider(host).makeRequest(bitcoinOnly)), QStringLiteral("none"));
}

void BybitTickerProviderTest::parseRules_data()
{
    using Quote = std::optional<TickerQuote>;
    QTest::addColumn<QByteArray>("one");
    QTest::addColumn<Quote>("quote");
    QTest::newRow("down") << bybitElement("\"BTCUSDT\"") << Quote({1.5, -1.25});
    QTest::newRow("up") << bybitElement("\"BTCUSDT\"", "\"1.5\"", "\"0.025\"") << Quote({1.5, 2.5});
    QTest::newRow("no usable change") << bybitElement("\"BTCUSDT\"", "\"1.5\"", "\"\"") << Quote({1.5, std::nullopt});
    QTest::newRow("change not finite") << bybitElement("\"BTCUSDT\"", "\"1.5\"", "\"inf\"")
                                       << Quote({1.5, std::nullopt});
    QTest::newRow("empty price") << bybitElement("\"BTCUSDT\"", "\"\"") << Quote();
    QTest::newRow("price with a leading blank") << bybitElement("\"BTCUSDT\"", "\" 1.5\"") << Quote();
    QTest::newRow("other quote currency") << bybitElement("\"BTCUSDC\"") << Quote();
    QTest::newRow("not requested") << bybitElement("\"ETHUSDT\"") << Quote();
    QTest::newRow("no base") << bybitElement("\"USDT\"") << Quote();
    QTest::newRow("empty name") << bybitElement("\"\"") << Quote();
    QTest::newRow("other key order") << QByteArray(R"({"price24hPcnt":"-0.0125","lastPrice":"1.5","symbol":"BTCUSDT"})")
                                     << Quote({1.5, -1.25});
}

void BybitTickerProviderTest::parseRules()
{
    QFETCH(QByteArray, one);
    QFETCH(std::optional<TickerQuote>, quote);
    const Result<TickerQuotes> quotes = parse(bybitAnswer(one));
    QVERIFY(quotes.has_value());
    QCOMPARE(*quotes, quote ? TickerQuotes({{QStringLiteral("BTC"), *quote}}) : TickerQuotes());
}

void BybitTickerProviderTest::exchangeCodes_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("10006") << QByteArray(R"({"retCode":10006,"result":{"list":[]}})");
    QTest::newRow("10001 without a list") << QByteArray(R"({"retCode":10001,"result":{}})");
    QTest::newRow("negative") << QByteArray(R"({"retCode":-1,"result":{"list":[]}})");
    QTest::newRow("with tickers") << R"({"retCode":1,"result":{"list":[)" + bybitElement("\"BTCUSDT\"") + "]}}";
}

void BybitTickerProviderTest::exchangeCodes()
{
    QFETCH(QByteArray, body);
    QCOMPARE(test::codeOf(parse(body)), UrlErrorCode::badServerResponse);
}

void BybitTickerProviderTest::strictness_data()
{
    QTest::addColumn<QByteArray>("one");
    QTest::newRow("no name") << QByteArray(R"({"lastPrice":"1","price24hPcnt":"0"})");
    QTest::newRow("no price") << QByteArray(R"({"symbol":"XUSDT","price24hPcnt":"0"})");
    QTest::newRow("no change") << QByteArray(R"({"symbol":"XUSDT","lastPrice":"1"})");
    QTest::newRow("name a number") << bybitElement("1");
    QTest::newRow("price a number") << bybitElement("\"XUSDT\"", "1.5");
    QTest::newRow("change a number") << bybitElement("\"XUSDT\"", "\"1.5\"", "0.01");
    QTest::newRow("change null") << bybitElement("\"XUSDT\"", "\"1.5\"", "null");
    QTest::newRow("element a text") << QByteArray("\"BTCUSDT\"");
    QTest::newRow("element null") << QByteArray("null");
}

void BybitTickerProviderTest::strictness()
{
    QFETCH(QByteArray, one);
    QVERIFY(test::isDecodingError(parse(bybitAnswer(one))));
    QVERIFY(test::isDecodingError(parse(bybitAnswer(bybitElement("\"BTCUSDT\"") + ',' + one))));
}

void BybitTickerProviderTest::envelopeStrictness_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("no code") << QByteArray(R"({"result":{"list":[]}})");
    QTest::newRow("code a text") << QByteArray(R"({"retCode":"0","result":{"list":[]}})");
    QTest::newRow("code a fraction") << QByteArray(R"({"retCode":0.5,"result":{"list":[]}})");
    QTest::newRow("no result") << QByteArray(R"({"retCode":0})");
    QTest::newRow("result a list") << QByteArray(R"({"retCode":0,"result":[]})");
    QTest::newRow("no list") << QByteArray(R"({"retCode":0,"result":{}})");
    QTest::newRow("list an object") << QByteArray(R"({"retCode":0,"result":{"list":{}}})");
    QTest::newRow("list null") << QByteArray(R"({"retCode":0,"result":{"list":null}})");
}

void BybitTickerProviderTest::envelopeStrictness()
{
    QFETCH(QByteArray, body);
    QVERIFY(test::isDecodingError(parse(body)));
}

void BybitTickerProviderTest::laterDuplicatesWin()
{
    const auto quotes =
        parse(bybitAnswer(bybitElement("\"BTCUSDT\"", "\"1\"") + ',' + bybitElement("\"BTCUSDT\"", "\"2\"", "\"\"") +
                          ',' + bybitElement("\"BTCUSDT\"", "\"\"")));
    QCOMPARE(quotes->value(QStringLiteral("BTC")), TickerQuote({2, std::nullopt}));
}

void BybitTickerProviderTest::oneBadElementNeverFailsTheAnswer()
{
    const auto quotes = parse(bybitAnswer(bybitElement("\"ETHUSDT\"", "\"abc\"") + ',' + bybitElement("\"BTCEUR\"") +
                                          ',' + bybitElement("\"XUSDT\"") + ',' + bybitElement("\"BTCUSDT\"")),
                              {QStringLiteral("BTC"), QStringLiteral("ETH")});
    QCOMPARE(*quotes, TickerQuotes({{QStringLiteral("BTC"), {1.5, -1.25}}}));
}

void BybitTickerProviderTest::emptyListIsNoError()
{
    QCOMPARE(parse(bybitAnswer({})), Result<TickerQuotes>(TickerQuotes()));
}

void BybitTickerProviderTest::recordedTickers()
{
    QCOMPARE(*parse(recordedAnswer("bybit_tickers_spot_BTCUSDT_2023-01-16.json")),
             TickerQuotes({{QStringLiteral("BTC"), {20533.13, 0.0068 * 100}}}));
    const auto quotes = parse(recordedAnswer("bybit_tickers_spot_real_records.json"),
                              {QStringLiteral("BTC"), QStringLiteral("ETH"), QStringLiteral("VEGA")});
    QCOMPARE(*quotes, TickerQuotes({{QStringLiteral("BTC"), {25922.39, 0.0009 * 100}},
                                    {QStringLiteral("ETH"), {1739.07, -0.0019 * 100}},
                                    {QStringLiteral("VEGA"), {0.9232, -0.0423 * 100}}}));
}

void BybitTickerProviderTest::recordedErrorBodies_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("failure");
    QTest::newRow("10001") << recordedAnswer("bybit_error_10001_not_supported_symbols.json")
                           << QStringLiteral("bad server response: the exchange reports code 10001");
    QTest::newRow("10006") << recordedAnswer("bybit_error_10006_too_many_visits.json")
                           << QStringLiteral("bad server response: the exchange reports code 10006");
    QTest::newRow("country block") << recordedAnswer("bybit_http403_country_block.json")
                                   << QStringLiteral("unexpected form: no retCode");
}

void BybitTickerProviderTest::recordedErrorBodies()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, failure);
    QCOMPARE(description(parse(body).error()), failure);
}

void BybitTickerProviderTest::truncatedNeverSucceeds()
{
    const QByteArray body = recordedAnswer("generated/bybit_tickers_spot_full_synthetic.json").trimmed();
    QVERIFY(parse(body).has_value());
    for (const QByteArray &cut : test::truncations(body))
        QVERIFY2(test::isDecodingError(parse(cut)), qPrintable(QString::number(cut.size())));
}

void BybitTickerProviderTest::garbageFails_data()
{
    test::addGarbageRows();
}

void BybitTickerProviderTest::garbageFails()
{
    QFETCH(QByteArray, body);
    QVERIFY(test::isDecodingError(parse(body)));
}

TICKWISE_TEST(BybitTickerProviderTest)
#include "BybitTickerProviderTest.moc"
