#include "market/exchanges/BinanceTickerProvider.h"

#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"
#include "market/Outcome.h"
#include "market/exchanges/BrokenBodies.h"
#include "market/exchanges/ProviderFixture.h"

using namespace tickwise;
using namespace tickwise::test;

namespace {

const auto apiRoot = QStringLiteral("https://api.example.test/api/v3");

/// One element with its values as JSON, as they are to stand in the body.
QByteArray binanceElement(const QByteArray &symbol, const QByteArray &price = "\"1.5\"",
                          const QByteArray &change = "\"2.5\"", const QByteArray &closeTime = "1769847300000")
{
    return "{\"symbol\":" + symbol + ",\"priceChangePercent\":" + change + ",\"lastPrice\":" + price +
           ",\"closeTime\":" + closeTime + "}";
}

} // namespace

class BinanceTickerProviderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_clock.set(test::TestClock().now()); }
    void requestAddress_data();
    void requestAddress();
    void requestKeepsNoTimeToWait();
    void allTickersRequest();
    void unbuildableUrlGivesNone_data();
    void unbuildableUrlGivesNone();
    void parseRules_data();
    void parseRules();
    void staleTickerIsDropped_data();
    void staleTickerIsDropped();
    void strictness_data();
    void strictness();
    void laterDuplicatesWin();
    void oneBadElementNeverFailsTheAnswer();
    void otherKeysAndOrdersDoNotMatter();
    void recordsOfDifferentOrders();
    void emptyListIsNoError();
    void recordedTwelve();
    void recordedFullLists_data();
    void recordedFullLists();
    void recordedPairsWithoutTrades();
    void recordedErrorBodies_data();
    void recordedErrorBodies();
    void nonAsciiPairNames();
    void truncatedNeverSucceeds();
    void garbageFails_data();
    void garbageFails();
    void parsesAgainAfterAnUnusuallyLargeBody();
    void ownClock();

private:
    Result<TickerQuotes> parse(const QByteArray &body, const QStringList &symbols = bitcoinOnly) const
    {
        return m_provider.parseQuotes(body, symbols);
    }
    /// Quotes at a time near the recording.
    static Result<TickerQuotes> parseAt(double secondsSince1970, const QByteArray &body, const QStringList &symbols);

    test::TestClock m_clock;
    BinanceTickerProvider m_provider{apiRoot, m_clock.clock()};
};

Result<TickerQuotes> BinanceTickerProviderTest::parseAt(double secondsSince1970, const QByteArray &body,
                                                        const QStringList &symbols)
{
    test::TestClock clock(secondsSince1970);
    return BinanceTickerProvider(apiRoot, clock.clock()).parseQuotes(body, symbols);
}

void BinanceTickerProviderTest::requestAddress_data()
{
    QTest::addColumn<QStringList>("symbols");
    QTest::addColumn<QString>("query");
    QTest::newRow("two") << QStringList{QStringLiteral("BTC"), QStringLiteral("ETH")}
                         << QStringLiteral("symbols=%5B%22BTCUSDT%22%2C%22ETHUSDT%22%5D");
    QTest::newRow("order as given") << QStringList{QStringLiteral("ETH"), QStringLiteral("BTC")}
                                    << QStringLiteral("symbols=%5B%22ETHUSDT%22%2C%22BTCUSDT%22%5D");
    QTest::newRow("one") << bitcoinOnly << QStringLiteral("symbols=%5B%22BTCUSDT%22%5D");
    QTest::newRow("none") << QStringList() << QStringLiteral("symbols=%5B%5D");
    QTest::newRow("reserved characters") << QStringList{QStringLiteral("A+B&C=D%E#F G")}
                                         << QStringLiteral("symbols=%5B%22A%2BB%26C%3DD%25E%23F%20GUSDT%22%5D");
    QTest::newRow("not ASCII") << QStringList{QStringLiteral("币")}
                               << QStringLiteral("symbols=%5B%22%E5%B8%81USDT%22%5D");
}

void BinanceTickerProviderTest::requestAddress()
{
    QFETCH(QStringList, symbols);
    QFETCH(QString, query);
    QCOMPARE(addressOf(m_provider.makeRequest(symbols)), apiRoot + QStringLiteral("/ticker/24hr?") + query);
}

void BinanceTickerProviderTest::requestKeepsNoTimeToWait()
{
    QCOMPARE(m_provider.makeRequest(bitcoinOnly)->timeout, std::chrono::seconds(5));
    QCOMPARE(m_provider.makeAllTickersRequest()->timeout, std::chrono::seconds(5));
}

void BinanceTickerProviderTest::allTickersRequest()
{
    QCOMPARE(addressOf(m_provider.makeAllTickersRequest()), apiRoot + QStringLiteral("/ticker/24hr"));
    QCOMPARE(m_provider.providerName(), QStringLiteral("binance"));
}

void BinanceTickerProviderTest::unbuildableUrlGivesNone_data()
{
    QTest::addColumn<QString>("base");
    QTest::newRow("empty") << QString();
    QTest::newRow("no scheme") << QStringLiteral("api.example.test/api/v3");
    QTest::newRow("blank in the host") << QStringLiteral("https://api example.test/api/v3");
    QTest::newRow("no host") << QStringLiteral("https:///api/v3");
    QTest::newRow("bad port") << QStringLiteral("https://api.example.test:99999/api/v3");
}

void BinanceTickerProviderTest::unbuildableUrlGivesNone()
{
    QFETCH(QString, base);
    const BinanceTickerProvider provider(base, m_clock.clock());
    QCOMPARE(addressOf(provider.makeRequest(bitcoinOnly)), QStringLiteral("none"));
    QCOMPARE(addressOf(provider.makeAllTickersRequest()), QStringLiteral("none"));
}

void BinanceTickerProviderTest::parseRules_data()
{
    using Quote = std::optional<TickerQuote>;
    QTest::addColumn<QByteArray>("one");
    QTest::addColumn<Quote>("quote");
    QTest::newRow("plain") << binanceElement("\"BTCUSDT\"") << Quote({1.5, 2.5});
    QTest::newRow("negative change") << binanceElement("\"BTCUSDT\"", "\"67432.10000000\"", "\"-3.092\"")
                                     << Quote({67432.1, -3.092});
    QTest::newRow("tiny price") << binanceElement("\"BTCUSDT\"", "\"0.00000719\"") << Quote({0.00000719, 2.5});
    QTest::newRow("no usable change") << binanceElement("\"BTCUSDT\"", "\"1.5\"", "\"abc\"")
                                      << Quote({1.5, std::nullopt});
    QTest::newRow("empty change") << binanceElement("\"BTCUSDT\"", "\"1.5\"", "\"\"") << Quote({1.5, std::nullopt});
    QTest::newRow("change not finite") << binanceElement("\"BTCUSDT\"", "\"1.5\"", "\"nan\"")
                                       << Quote({1.5, std::nullopt});
    QTest::newRow("change with a sign of percent")
        << binanceElement("\"BTCUSDT\"", "\"1.5\"", "\"2.5%\"") << Quote({1.5, std::nullopt});
    QTest::newRow("price with a leading blank") << binanceElement("\"BTCUSDT\"", "\" 1.5\"") << Quote();
    QTest::newRow("price with a trailing blank") << binanceElement("\"BTCUSDT\"", "\"1.5 \"") << Quote();
    QTest::newRow("empty price") << binanceElement("\"BTCUSDT\"", "\"\"") << Quote();
    QTest::newRow("price with a comma") << binanceElement("\"BTCUSDT\"", "\"1,5\"") << Quote();
    QTest::newRow("price in hexadecimal") << binanceElement("\"BTCUSDT\"", "\"0x10\"") << Quote();
    QTest::newRow("price not finite") << binanceElement("\"BTCUSDT\"", "\"inf\"") << Quote();
    QTest::newRow("price too large") << binanceElement("\"BTCUSDT\"", "\"1e999\"") << Quote();
    QTest::newRow("other quote currency") << binanceElement("\"BTCUSDC\"") << Quote();
    QTest::newRow("not requested") << binanceElement("\"ETHUSDT\"") << Quote();
    QTest::newRow("longer name") << binanceElement("\"WBTCUSDT\"") << Quote();
    QTest::newRow("lower case") << binanceElement("\"btcusdt\"") << Quote();
    QTest::newRow("other order") << binanceElement("\"USDTBTC\"") << Quote();
    QTest::newRow("no base") << binanceElement("\"USDT\"") << Quote();
    QTest::newRow("shorter than the suffix") << binanceElement("\"SDT\"") << Quote();
    QTest::newRow("empty name") << binanceElement("\"\"") << Quote();
    QTest::newRow("escaped name") << binanceElement("\"\\u0042TCUSDT\"") << Quote({1.5, 2.5});
}

void BinanceTickerProviderTest::parseRules()
{
    QFETCH(QByteArray, one);
    QFETCH(std::optional<TickerQuote>, quote);
    const Result<TickerQuotes> quotes = parse('[' + one + ']');
    QVERIFY(quotes.has_value());
    QCOMPARE(*quotes, quote ? TickerQuotes({{QStringLiteral("BTC"), *quote}}) : TickerQuotes());
}

void BinanceTickerProviderTest::staleTickerIsDropped_data()
{
    QTest::addColumn<qint64>("now"); // milliseconds
    for (const qint64 now : {1769847300000, 1769847300001, 1769847300123, 1769847300777, 1769847300999, 1893456000003})
        QTest::addRow("%lld", now) << now;
}

void BinanceTickerProviderTest::staleTickerIsDropped()
{
    QFETCH(qint64, now);
    m_clock.set(TimePoint(std::chrono::milliseconds(now)));
    const qint64 oldest = now - 3600 * 1000;
    const auto count = [this](qint64 closeTime) {
        return parse('[' + binanceElement("\"BTCUSDT\"", "\"1\"", "\"1\"", QByteArray::number(closeTime)) + ']')
            ->size();
    };
    QCOMPARE(count(oldest), 1);
    QCOMPARE(count(oldest + 1), 1);
    QCOMPARE(count(now + 5000), 1);
    QCOMPARE(count(oldest - 1), 0);
    QCOMPARE(count(0), 0);
    QCOMPARE(count(-1), 0);
}

void BinanceTickerProviderTest::strictness_data()
{
    QTest::addColumn<QByteArray>("one");
    QTest::newRow("no symbol") << QByteArray(R"({"priceChangePercent":"1","lastPrice":"1","closeTime":1})");
    QTest::newRow("no change") << QByteArray(R"({"symbol":"X","lastPrice":"1","closeTime":1})");
    QTest::newRow("no price") << QByteArray(R"({"symbol":"X","priceChangePercent":"1","closeTime":1})");
    QTest::newRow("no close time") << QByteArray(R"({"symbol":"X","priceChangePercent":"1","lastPrice":"1"})");
    QTest::newRow("symbol a number") << binanceElement("1");
    QTest::newRow("price a number") << binanceElement("\"XUSDT\"", "1.5");
    QTest::newRow("change a number") << binanceElement("\"XUSDT\"", "\"1.5\"", "2.5");
    QTest::newRow("close time a text") << binanceElement("\"XUSDT\"", "\"1.5\"", "\"2.5\"", "\"1769847300000\"");
    QTest::newRow("price null") << binanceElement("\"XUSDT\"", "null");
    QTest::newRow("change null") << binanceElement("\"XUSDT\"", "\"1.5\"", "null");
    QTest::newRow("close time null") << binanceElement("\"XUSDT\"", "\"1.5\"", "\"2.5\"", "null");
    QTest::newRow("element a text") << QByteArray("\"BTCUSDT\"");
    QTest::newRow("element a list") << QByteArray("[]");
    QTest::newRow("element null") << QByteArray("null");
}

void BinanceTickerProviderTest::strictness()
{
    QFETCH(QByteArray, one);
    QVERIFY(test::isDecodingError(parse('[' + one + ']')));
    QVERIFY(test::isDecodingError(parse('[' + one + ',' + binanceElement("\"BTCUSDT\"") + ']')));
    QVERIFY(test::isDecodingError(parse('[' + binanceElement("\"BTCUSDT\"") + ',' + one + ']')));
}

void BinanceTickerProviderTest::laterDuplicatesWin()
{
    const auto quotes =
        parse('[' + binanceElement("\"BTCUSDT\"", "\"1\"") + ',' + binanceElement("\"BTCUSDT\"", "\"2\"", "\"-\"") +
              ',' + binanceElement("\"BTCUSDT\"", "\"three\"") + ']');
    QCOMPARE(quotes->value(QStringLiteral("BTC")), TickerQuote({2, std::nullopt}));
}

void BinanceTickerProviderTest::oneBadElementNeverFailsTheAnswer()
{
    const auto quotes = parse('[' + binanceElement("\"ETHUSDT\"", "\"abc\"") + ',' + binanceElement("\"BTCEUR\"") +
                                  ',' + binanceElement("\"SOLUSDT\"", "\"1\"", "\"1\"", "0") + ',' +
                                  binanceElement("\"XUSDT\"") + ',' + binanceElement("\"BTCUSDT\"", "\"7\"") + ']',
                              {QStringLiteral("BTC"), QStringLiteral("ETH"), QStringLiteral("SOL")});
    QCOMPARE(*quotes, TickerQuotes({{QStringLiteral("BTC"), {7, 2.5}}}));
}

void BinanceTickerProviderTest::otherKeysAndOrdersDoNotMatter()
{
    const auto quotes = parse(R"([{"closeTime":1769847300000.0,"extra":{"symbol":[1,null]},"lastPrice":"9","symbol":)"
                              R"("BTCUSDT","count":-1,"priceChangePercent":"0"}])");
    QCOMPARE(*quotes, TickerQuotes({{QStringLiteral("BTC"), {9, 0}}}));
}

void BinanceTickerProviderTest::recordsOfDifferentOrders()
{
    const QByteArray plain = binanceElement("\"BTCUSDT\"", "\"1\"");
    const QByteArray longer = R"({"a":1,"b":[{}],)" + binanceElement("\"ETHUSDT\"", "\"2\"").mid(1);
    const QByteArray turned =
        R"({"closeTime":1769847300000,"lastPrice":"3","priceChangePercent":"2.5","symbol":"SOLUSDT"})";
    const TickerQuotes expected{
        {QStringLiteral("BTC"), {1, 2.5}}, {QStringLiteral("ETH"), {2, 2.5}}, {QStringLiteral("SOL"), {3, 2.5}}};
    QByteArrayList records{plain, longer, turned};
    std::sort(records.begin(), records.end());
    do {
        QCOMPARE(*parse('[' + records.join(',') + ']', expected.keys()), expected);
        QVERIFY(test::isDecodingError(parse('[' + records.join(',') + R"(,{"symbol":"X","lastPrice":"1"}])")));
    } while (std::next_permutation(records.begin(), records.end()));
}

void BinanceTickerProviderTest::emptyListIsNoError()
{
    QCOMPARE(parse("[]"), Result<TickerQuotes>(TickerQuotes()));
    QCOMPARE(parse('[' + binanceElement("\"BTCUSDT\"") + ']', {}), Result<TickerQuotes>(TickerQuotes()));
}

void BinanceTickerProviderTest::recordedTwelve()
{
    const auto quotes = parseAt(1669012568, recordedAnswer("binance_ticker24hr_symbols12_2022-11-21.json"),
                                {QStringLiteral("BTC"), QStringLiteral("SHIB"), QStringLiteral("TRX")});
    QCOMPARE(*quotes, TickerQuotes({{QStringLiteral("BTC"), {16176.4, -3.092}},
                                    {QStringLiteral("SHIB"), {0.00000867, -5.453}},
                                    {QStringLiteral("TRX"), {0.05022, -3.349}}}));
}

void BinanceTickerProviderTest::recordedFullLists_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<double>("now");
    QTest::addColumn<double>("price");
    QTest::addColumn<double>("change");
    QTest::newRow("2019") << recordedAnswer("binance_ticker24hr_all_2019-08-22.json") << 1566445107.0 << 9912.33
                          << -4.322;
    QTest::newRow("2022") << recordedAnswer("binance_ticker24hr_all_2022-11-21.json") << 1669012568.0 << 16176.4
                          << -3.092;
}

void BinanceTickerProviderTest::recordedFullLists()
{
    QFETCH(QByteArray, body);
    QFETCH(double, now);
    QFETCH(double, price);
    QFETCH(double, change);
    QCOMPARE(*parseAt(now, body, bitcoinOnly), TickerQuotes({{QStringLiteral("BTC"), {price, change}}}));
    QCOMPARE(*parseAt(now + 7200, body, bitcoinOnly), TickerQuotes());
}

void BinanceTickerProviderTest::recordedPairsWithoutTrades()
{
    const auto quotes = parseAt(1668503221, recordedAnswer("binance_ticker24hr_zero_trades_2022-11-21.json"),
                                {QStringLiteral("MCO"), QStringLiteral("YOYO")});
    QCOMPARE(quotes, Result<TickerQuotes>(TickerQuotes()));
}

void BinanceTickerProviderTest::recordedErrorBodies_data()
{
    QTest::addColumn<QByteArray>("body");
    for (const char *const name :
         {"binance_error_1003_http418_banned_old.json", "binance_error_1003_http429.json",
          "binance_error_1100_illegal_characters.json", "binance_error_1121_invalid_symbol.json"})
        QTest::newRow(name) << recordedAnswer(name);
}

void BinanceTickerProviderTest::recordedErrorBodies()
{
    QFETCH(QByteArray, body);
    QVERIFY(test::isDecodingError(parse(body)));
}

void BinanceTickerProviderTest::nonAsciiPairNames()
{
    const QString name = QStringLiteral("币安人生");
    const auto quotes = parseAt(1787416523, recordedAnswer("generated/binance_ticker24hr_full_synthetic.json"), {name});
    QCOMPARE(*quotes, TickerQuotes({{name, {0.00137091, 4.636}}}));
}

void BinanceTickerProviderTest::truncatedNeverSucceeds()
{
    const QByteArray body = recordedAnswer("generated/binance_ticker24hr_full_synthetic.json").trimmed();
    QVERIFY(parse(body).has_value());
    for (const QByteArray &cut : test::truncations(body))
        QVERIFY2(test::isDecodingError(parse(cut)), qPrintable(QString::number(cut.size())));
}

void BinanceTickerProviderTest::garbageFails_data()
{
    test::addGarbageRows();
}

void BinanceTickerProviderTest::garbageFails()
{
    QFETCH(QByteArray, body);
    QVERIFY(test::isDecodingError(parse(body)));
}

void BinanceTickerProviderTest::parsesAgainAfterAnUnusuallyLargeBody()
{
    const QByteArray one = '[' + binanceElement("\"BTCUSDT\"") + ']';
    QCOMPARE(parse(one + QByteArray(3 * 1024 * 1024, ' '))->size(), 1);
    QVERIFY(test::isDecodingError(parse(one + QByteArray(17 * 1024 * 1024, ' '))));
    QCOMPARE(parse(one)->size(), 1);
}

void BinanceTickerProviderTest::ownClock()
{
    const auto now = std::chrono::duration_cast<std::chrono::milliseconds>(systemClock().time_since_epoch()).count();
    const QByteArray body =
        '[' + binanceElement("\"BTCUSDT\"", "\"1\"", "\"1\"", QByteArray::number(qint64(now))) + ']';
    QCOMPARE(BinanceTickerProvider(apiRoot).parseQuotes(body, bitcoinOnly)->size(), 1);
}

TICKWISE_TEST(BinanceTickerProviderTest)
#include "BinanceTickerProviderTest.moc"
