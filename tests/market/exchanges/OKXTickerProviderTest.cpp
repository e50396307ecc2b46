#include "market/exchanges/OKXTickerProvider.h"

#include "doubles/TestData.h"
#include "doubles/TestProgram.h"
#include "market/Outcome.h"
#include "market/exchanges/BrokenBodies.h"

using namespace tickwise;
using Kind = TickerProviderError::Kind;

namespace {

const QStringList bitcoin{QStringLiteral("BTC")};

QByteArray recorded(const char *name)
{
    return test::readData(QStringLiteral("exchange/") + QLatin1String(name));
}

/// One element with its values as JSON, as they are to stand in the body.
QByteArray element(const QByteArray &instId, const QByteArray &last = "\"110\"", const QByteArray &open = "\"100\"")
{
    return "{\"instType\":\"SPOT\",\"instId\":" + instId + ",\"last\":" + last + ",\"open24h\":" + open + "}";
}

QByteArray answer(const QByteArray &elements)
{
    return R"({"code":"0","msg":"","data":[)" + elements + "]}";
}

QString address(const std::optional<HttpRequest> &request)
{
    return request ? request->url.toString(QUrl::FullyEncoded) : QStringLiteral("none");
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
    Result<TickerQuotes> parse(const QByteArray &body, const QStringList &symbols = bitcoin) const
    {
        return m_provider.parseQuotes(body, symbols);
    }

    OKXTickerProvider m_provider{QStringLiteral("https://okx.example.test")};
};

void OKXTickerProviderTest::requestAddress()
{
    const auto expected = QStringLiteral("https://okx.example.test/api/v5/market/tickers?instType=SPOT");
    QCOMPARE(address(m_provider.makeRequest(bitcoin)), expected);
    QCOMPARE(address(m_provider.makeAllTickersRequest()), expected);
    QCOMPARE(m_provider.makeRequest(bitcoin)->timeout, std::chrono::seconds(5));
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
    QCOMPARE(address(OKXTickerProvider(host).makeRequest(bitcoin)), QStringLiteral("none"));
}

void OKXTickerProviderTest::parseRules_data()
{
    using Quote = std::optional<TickerQuote>;
    QTest::addColumn<QByteArray>("one");
    QTest::addColumn<Quote>("quote");
    QTest::newRow("ten percent up") << element("\"BTC-USDT\"") << Quote({110, 10.0});
    QTest::newRow("half down") << element("\"BTC-USDT\"", "\"0.5\"", "\"1\"") << Quote({0.5, -50.0});
    QTest::newRow("opened at 0") << element("\"BTC-USDT\"", "\"110\"", "\"0\"") << Quote({110, std::nullopt});
    QTest::newRow("opened below 0") << element("\"BTC-USDT\"", "\"110\"", "\"-5\"") << Quote({110, std::nullopt});
    QTest::newRow("no opening") << element("\"BTC-USDT\"", "\"110\"", "\"\"") << Quote({110, std::nullopt});
    QTest::newRow("opening no number") << element("\"BTC-USDT\"", "\"110\"", "\"nan\"") << Quote({110, std::nullopt});
    QTest::newRow("opening with a blank") << element("\"BTC-USDT\"", "\"110\"", "\" 1\"") << Quote({110, std::nullopt});
    QTest::newRow("empty price") << element("\"BTC-USDT\"", "\"\"") << Quote();
    QTest::newRow("price with a leading blank") << element("\"BTC-USDT\"", "\" 110\"") << Quote();
    QTest::newRow("other quote currency") << element("\"BTC-USDC\"") << Quote();
    QTest::newRow("without the dash") << element("\"BTCUSDT\"") << Quote();
    QTest::newRow("swap") << element("\"BTC-USDT-SWAP\"") << Quote();
    QTest::newRow("not requested") << element("\"ETH-USDT\"") << Quote();
    QTest::newRow("no base") << element("\"-USDT\"") << Quote();
    QTest::newRow("empty name") << element("\"\"") << Quote();
    QTest::newRow("other key order") << QByteArray(R"({"open24h":"100","last":"110","x":[],"instId":"BTC-USDT"})")
                                     << Quote({110, 10.0});
}

void OKXTickerProviderTest::parseRules()
{
    QFETCH(QByteArray, one);
    QFETCH(std::optional<TickerQuote>, quote);
    const Result<TickerQuotes> quotes = parse(answer(one));
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
    QTest::newRow("with tickers") << R"({"code":"50026","data":[)" + element("\"BTC-USDT\"") + "]}" << false;
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
    QTest::newRow("name a number") << element("1");
    QTest::newRow("price a number") << element("\"X-USDT\"", "110");
    QTest::newRow("opening a number") << element("\"X-USDT\"", "\"110\"", "100");
    QTest::newRow("price null") << element("\"X-USDT\"", "null");
    QTest::newRow("element a text") << QByteArray("\"BTC-USDT\"");
    QTest::newRow("element null") << QByteArray("null");
}

void OKXTickerProviderTest::strictness()
{
    QFETCH(QByteArray, one);
    QVERIFY(test::isDecodingError(parse(answer(one))));
    QVERIFY(test::isDecodingError(parse(answer(element("\"BTC-USDT\"") + ',' + one))));
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
    QTest::newRow("only the list") << '[' + element("\"BTC-USDT\"") + ']';
}

void OKXTickerProviderTest::envelopeStrictness()
{
    QFETCH(QByteArray, body);
    QVERIFY(test::isDecodingError(parse(body)));
}

void OKXTickerProviderTest::laterDuplicatesWin()
{
    const auto quotes = parse(answer(element("\"BTC-USDT\"", "\"1\"") + ',' + element("\"BTC-USDT\"", "\"2\"", "\"\"") +
                                     ',' + element("\"BTC-USDT\"", "\"\"")));
    QCOMPARE(quotes->value(QStringLiteral("BTC")), TickerQuote({2, std::nullopt}));
}

void OKXTickerProviderTest::oneBadElementNeverFailsTheAnswer()
{
    const auto quotes = parse(answer(element("\"ETH-USDT\"", "\"abc\"") + ',' + element("\"BTC-EUR\"") + ',' +
                                     element("\"X-USDT\"") + ',' + element("\"BTC-USDT\"")),
                              {QStringLiteral("BTC"), QStringLiteral("ETH")});
    QCOMPARE(*quotes, TickerQuotes({{QStringLiteral("BTC"), {110, 10}}}));
}

void OKXTickerProviderTest::emptyListIsNoError()
{
    QCOMPARE(parse(answer({})), Result<TickerQuotes>(TickerQuotes()));
}

void OKXTickerProviderTest::recordedTicker()
{
    const auto quotes = parse(recorded("okx_ticker_BTC-USDT_2026-08-22.json"));
    QCOMPARE(*quotes, TickerQuotes({{QStringLiteral("BTC"), {77218.1, (77218.1 - 77323.8) / 77323.8 * 100}}}));
}

void OKXTickerProviderTest::recordedFullList()
{
    const auto quotes = parse(recorded("okx_tickers_spot_all_2022-11-21.json"),
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
    QTest::newRow("50011") << recorded("okx_error_50011_http429.json") << QStringLiteral("rate limited");
    QTest::newRow("50014") << recorded("okx_error_50014_http400.json")
                           << QStringLiteral("bad server response: the exchange reports code 50014");
    QTest::newRow("51001") << recorded("okx_error_51001_unknown_instrument.json")
                           << QStringLiteral("bad server response: the exchange reports code 51001");
    QTest::newRow("404") << recorded("okx_error_http404.json") << QStringLiteral("unexpected form: no code");
}

void OKXTickerProviderTest::recordedErrorBodies()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, failure);
    QCOMPARE(description(parse(body).error()), failure);
}

void OKXTickerProviderTest::truncatedNeverSucceeds()
{
    const QByteArray body = recorded("generated/okx_tickers_spot_full_synthetic.json").trimmed();
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
