#include "market/exchanges/OKXTickerProvider.h"

#include "doubles/TestProgram.h"
#include "market/Outcome.h"
#include "market/exchanges/BrokenBodies.h"
#include "market/exchanges/ProviderFixture.h"

using namespace tickwise;
using namespace tickwise::test;
using Kind = TickerProviderError::Kind;

namespace {

/// One element with its values as JSON, as they are to stand in the body.
QByteArray okxElement(const QByteArray &instId, const QByteArray &last = "\"110\"", const QByteArray &open = "\"100\"")
{
    return "{\"instType\":\"SPOT\",\"instId\":" + instId + ",\"last\":" + last + ",\"open24h\":" + open + "}";
}

QByteArray okxAnswer(const QByteArray &elements)
{
    return R"({"code":"0","msg":"","data":[)" + elements + "]}";
}

} // namespace

class OKXTickerProviderTest : public QObject
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
    void recordedTicker();
    void recordedFullList();
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

    OKXTickerProvider m_provider{QStringLiteral("https://okx.example.test")};
};

void OKXTickerProviderTest::requestAddress()
{
    const auto expected = QStringLiteral("https://okx.example.test/api/v5/market/tickers?instType=SPOT");
    QCOMPARE(addressOf(m_provider.makeRequest(bitcoinOnly)), expected);
    QCOMPARE(addressOf(m_provider.makeAllTickersRequest()), expected);
    QCOMPARE(m_provider.makeRequest(bitcoinOnly)->timeout, std::chrono::seconds(5));
    QCOMPARE(m_provider.providerName(), QStringLiteral("okx"));
}

void OKXTickerProviderTest::unbuildableUrlGivesNone_data()
{
    QTest::addColumn<QString>("host");
    QTest::newRow("empty") << QString();
    QTest::newRow("no scheme") << QStringLiteral("okx.example.test");
    QTest::newRow("blank in the host") << QStringLiteral("https://okx example.test");
}

void OKXTickerProviderTest::unbuildableUrlGivesNone()
{
    QFETCH(QString, host);
    QCOMPARE(addressOf(OKXTickerProvider(host).makeRequest(bitcoinOnly)), QStringLiteral("none"));
}

void OKXTickerProviderTest::parseRules_data()
{
    using Quote = std::optional<TickerQuote>;
    QTest::addColumn<QByteArray>("one");
    QTest::addColumn<Quote>("quote");
    QTest::newRow("ten percent up") << okxElement("\"BTC-USDT\"") << Quote({110, 10.0});
    QTest::newRow("half down") << okxElement("\"BTC-USDT\"", "\"0.5\"", "\"1\"") << Quote({0.5, -50.0});
    QTest::newRow("opened at 0") << okxElement("\"BTC-USDT\"", "\"110\"", "\"0\"") << Quote({110, std::nullopt});
    QTest::newRow("opened below 0") << okxElement("\"BTC-USDT\"", "\"110\"", "\"-5\"") << Quote({110, std::nullopt});
    QTest::newRow("no opening") << okxElement("\"BTC-USDT\"", "\"110\"", "\"\"") << Quote({110, std::nullopt});
    QTest::newRow("opening no number") << okxElement("\"BTC-USDT\"", "\"110\"", "\"nan\"")
                                       << Quote({110, std::nullopt});
    QTest::newRow("opening with a blank")
        << okxElement("\"BTC-USDT\"", "\"110\"", "\" 1\"") << Quote({110, std::nullopt});
    QTest::newRow("empty price") << okxElement("\"BTC-USDT\"", "\"\"") << Quote();
    QTest::newRow("price with a leading blank") << okxElement("\"BTC-USDT\"", "\" 110\"") << Quote();
    QTest::newRow("other quote currency") << okxElement("\"BTC-USDC\"") << Quote();
    QTest::newRow("without the dash") << okxElement("\"BTCUSDT\"") << Quote();
    QTest::newRow("swap") << okxElement("\"BTC-USDT-SWAP\"") << Quote();
    QTest::newRow("not requested") << okxElement("\"ETH-USDT\"") << Quote();
    QTest::newRow("no base") << okxElement("\"-USDT\"") << Quote();
    QTest::newRow("empty name") << okxElement("\"\"") << Quote();
    QTest::newRow("other key order") << QByteArray(R"({"open24h":"100","last":"110","x":[],"instId":"BTC-USDT"})")
                                     << Quote({110, 10.0});
}

void OKXTickerProviderTest::parseRules()
{
    QFETCH(QByteArray, one);
    QFETCH(std::optional<TickerQuote>, quote);
    const Result<TickerQuotes> quotes = parse(okxAnswer(one));
    QVERIFY(quotes.has_value());
    QCOMPARE(*quotes, quote ? TickerQuotes({{QStringLiteral("BTC"), *quote}}) : TickerQuotes());
}

void OKXTickerProviderTest::exchangeCodes_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("limited");
    QTest::newRow("50011") << QByteArray(R"({"code":"50011","msg":"...","data":[]})") << true;
    QTest::newRow("50011 without data") << QByteArray(R"({"code":"50011"})") << true;
    QTest::newRow("50011 with data of another form") << QByteArray(R"({"data":{},"code":"50011"})") << true;
    QTest::newRow("51001") << QByteArray(R"({"code":"51001","msg":"","data":[]})") << false;
    QTest::newRow("1") << QByteArray(R"({"code":"1","data":[]})") << false;
    QTest::newRow("00") << QByteArray(R"({"code":"00","data":[]})") << false;
    QTest::newRow("empty") << QByteArray(R"({"code":"","data":[]})") << false;
    QTest::newRow("with tickers") << R"({"code":"50026","data":[)" + okxElement("\"BTC-USDT\"") + "]}" << false;
}

void OKXTickerProviderTest::exchangeCodes()
{
    QFETCH(QByteArray, body);
    QFETCH(bool, limited);
    const Result<TickerQuotes> result = parse(body);
    if (limited)
        QCOMPARE(test::refusalOf(result), TickerProviderError({Kind::rateLimited, std::nullopt, 0, false}));
    else
        QCOMPARE(test::codeOf(result), UrlErrorCode::badServerResponse);
}

void OKXTickerProviderTest::strictness_data()
{
    QTest::addColumn<QByteArray>("one");
    QTest::newRow("no name") << QByteArray(R"({"last":"1","open24h":"1"})");
    QTest::newRow("no price") << QByteArray(R"({"instId":"X-USDT","open24h":"1"})");
    QTest::newRow("no opening") << QByteArray(R"({"instId":"X-USDT","last":"1"})");
    QTest::newRow("name a number") << okxElement("1");
    QTest::newRow("price a number") << okxElement("\"X-USDT\"", "110");
    QTest::newRow("opening a number") << okxElement("\"X-USDT\"", "\"110\"", "100");
    QTest::newRow("price null") << okxElement("\"X-USDT\"", "null");
    QTest::newRow("element a text") << QByteArray("\"BTC-USDT\"");
    QTest::newRow("element null") << QByteArray("null");
}

void OKXTickerProviderTest::strictness()
{
    QFETCH(QByteArray, one);
    QVERIFY(test::isDecodingError(parse(okxAnswer(one))));
    QVERIFY(test::isDecodingError(parse(okxAnswer(okxElement("\"BTC-USDT\"") + ',' + one))));
}

void OKXTickerProviderTest::envelopeStrictness_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("no code") << QByteArray(R"({"data":[]})");
    QTest::newRow("code a number") << QByteArray(R"({"code":0,"data":[]})");
    QTest::newRow("rate-limit code a number") << QByteArray(R"({"code":50011,"data":[]})");
    QTest::newRow("code null") << QByteArray(R"({"code":null,"data":[]})");
    QTest::newRow("no data") << QByteArray(R"({"code":"0"})");
    QTest::newRow("data an object") << QByteArray(R"({"code":"0","data":{}})");
    QTest::newRow("data null") << QByteArray(R"({"code":"0","data":null})");
    QTest::newRow("only the list") << '[' + okxElement("\"BTC-USDT\"") + ']';
}

void OKXTickerProviderTest::envelopeStrictness()
{
    QFETCH(QByteArray, body);
    QVERIFY(test::isDecodingError(parse(body)));
}

void OKXTickerProviderTest::laterDuplicatesWin()
{
    const auto quotes =
        parse(okxAnswer(okxElement("\"BTC-USDT\"", "\"1\"") + ',' + okxElement("\"BTC-USDT\"", "\"2\"", "\"\"") + ',' +
                        okxElement("\"BTC-USDT\"", "\"\"")));
    QCOMPARE(quotes->value(QStringLiteral("BTC")), TickerQuote({2, std::nullopt}));
}

void OKXTickerProviderTest::oneBadElementNeverFailsTheAnswer()
{
    const auto quotes = parse(okxAnswer(okxElement("\"ETH-USDT\"", "\"abc\"") + ',' + okxElement("\"BTC-EUR\"") + ',' +
                                        okxElement("\"X-USDT\"") + ',' + okxElement("\"BTC-USDT\"")),
                              {QStringLiteral("BTC"), QStringLiteral("ETH")});
    QCOMPARE(*quotes, TickerQuotes({{QStringLiteral("BTC"), {110, 10}}}));
}

void OKXTickerProviderTest::emptyListIsNoError()
{
    QCOMPARE(parse(okxAnswer({})), Result<TickerQuotes>(TickerQuotes()));
}

void OKXTickerProviderTest::recordedTicker()
{
    const auto quotes = parse(recordedAnswer("okx_ticker_BTC-USDT_2026-08-22.json"));
    QCOMPARE(*quotes, TickerQuotes({{QStringLiteral("BTC"), {77218.1, (77218.1 - 77323.8) / 77323.8 * 100}}}));
}

void OKXTickerProviderTest::recordedFullList()
{
    const auto quotes = parse(recordedAnswer("okx_tickers_spot_all_2022-11-21.json"),
                              {QStringLiteral("BTC"), QStringLiteral("SHIB"), QStringLiteral("NOSUCH")});
    QCOMPARE(quotes->size(), 2);
    QCOMPARE(quotes->value(QStringLiteral("BTC")), TickerQuote({16175.9, (16175.9 - 16691.9) / 16691.9 * 100}));
    QCOMPARE(quotes->value(QStringLiteral("SHIB")),
             TickerQuote({0.00000867, (0.00000867 - 0.00000917) / 0.00000917 * 100}));
}

void OKXTickerProviderTest::recordedErrorBodies_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("failure");
    QTest::newRow("50011") << recordedAnswer("okx_error_50011_http429.json") << QStringLiteral("rate limited");
    QTest::newRow("50014") << recordedAnswer("okx_error_50014_http400.json")
                           << QStringLiteral("bad server response: the exchange reports code 50014");
    QTest::newRow("51001") << recordedAnswer("okx_error_51001_unknown_instrument.json")
                           << QStringLiteral("bad server response: the exchange reports code 51001");
    QTest::newRow("404") << recordedAnswer("okx_error_http404.json") << QStringLiteral("unexpected form: no code");
}

void OKXTickerProviderTest::recordedErrorBodies()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, failure);
    QCOMPARE(description(parse(body).error()), failure);
}

void OKXTickerProviderTest::truncatedNeverSucceeds()
{
    const QByteArray body = recordedAnswer("generated/okx_tickers_spot_full_synthetic.json").trimmed();
    QVERIFY(parse(body).has_value());
    for (const QByteArray &cut : test::truncations(body))
        QVERIFY2(test::isDecodingError(parse(cut)), qPrintable(QString::number(cut.size())));
}

void OKXTickerProviderTest::garbageFails_data()
{
    test::addGarbageRows();
}

void OKXTickerProviderTest::garbageFails()
{
    QFETCH(QByteArray, body);
    QVERIFY(test::isDecodingError(parse(body)));
}

TICKWISE_TEST(OKXTickerProviderTest)
#include "OKXTickerProviderTest.moc"
