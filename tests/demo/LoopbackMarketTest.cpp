#include "demo/LoopbackMarket.h"

#include "doubles/TestClock.h"
#include "doubles/TestData.h"
#include "doubles/TestProgram.h"
#include "platform/network/NetworkHttpClient.h"

#include <QSignalSpy>

#include <nlohmann/json.hpp>

using namespace tickwise;
using namespace std::chrono_literals;
using enum MarketEndpoint;
using Json = nlohmann::ordered_json;

namespace {

Json parsed(const QByteArray &bytes)
{
    return Json::parse(bytes.begin(), bytes.end());
}

Json recorded(const char *name)
{
    return parsed(test::readData(QStringLiteral("exchange/") + QString::fromLatin1(name)));
}

QStringList keys(const Json &object)
{
    QStringList names;
    for (const auto &[name, value] : object.items())
        names.append(QString::fromStdString(name));
    return names;
}

/// The fields whose JSON types differ.
QStringList typeDifferences(const Json &one, const Json &other)
{
    QStringList names;
    for (const auto &[name, value] : one.items()) {
        if (value.type() != other.at(name).type() && !(value.is_number() && other.at(name).is_number()))
            names.append(QString::fromStdString(name));
    }
    return names;
}

const QString allOfOkx = QStringLiteral("/api/v5/market/tickers?instType=SPOT");
const QString allOfBybit = QStringLiteral("/v5/market/tickers?category=spot");
const QString erTable = QStringLiteral("/v6/latest/USD");
const QString currencyTable = QStringLiteral("/v1/currencies/usd.min.json");

QString ticker24hr(const char *symbols)
{
    return QStringLiteral("/ticker/24hr?symbols=") +
           QString::fromLatin1(QUrl::toPercentEncoding(QString::fromLatin1(symbols)));
}

} // namespace

class LoopbackMarketTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void recordsHaveTheRecordedFields();
    void envelopesHaveTheRecordedFields();
    void binanceAnswersTheSymbolsAsked();
    void binanceRefusesUnknownSymbols();
    void binanceRefusesIllegalSymbols();
    void binanceWithoutSymbolsListsAll();
    void closeTimeIsNow();
    void pricesAreWrittenExactly_data();
    void pricesAreWrittenExactly();
    void removedSymbolsAreLacking();
    void ratesAreTold();
    void unknownPathsAreNotFound();
    void servesFiles();
    void scriptsOnceThenAlways();
    void everyServiceAnswersOverTls();
    void recordsRequests();
    void catalogCoinsHavePlausiblePrices();
    void walkMovesPricesAndTheirChange();
    void sameSeedWalksTheSameWay();
    void gzipStreamsAreRead();

private:
    HttpResponse get(const LoopbackMarket &market, MarketEndpoint endpoint, const QString &path);
    HttpResponse get(MarketEndpoint endpoint, const QString &path) { return get(*m_market, endpoint, path); }
    Json json(MarketEndpoint endpoint, const QString &path) { return parsed(get(endpoint, path).body); }

    test::TestClock m_clock;
    std::unique_ptr<LoopbackMarket> m_market;
    std::unique_ptr<NetworkHttpClient> m_client;
};

void LoopbackMarketTest::init()
{
    LoopbackMarket::Options options;
    options.clock = m_clock.clock();
    m_client = std::make_unique<NetworkHttpClient>(LoopbackMarket::authorities());
    m_market = std::make_unique<LoopbackMarket>(options);
    m_market->setPrice(QStringLiteral("BTC"), 67432.1, 2.5);
    m_market->setPrice(QStringLiteral("ETH"), 3521.44, -1.25);
}

HttpResponse LoopbackMarketTest::get(const LoopbackMarket &market, MarketEndpoint endpoint, const QString &path)
{
    std::optional<Result<HttpResponse>> outcome;
    HttpRequest request;
    request.url = market.url(endpoint, path);
    const Subscription subscription =
        m_client->send(request, [&outcome](Result<HttpResponse> result) { outcome = std::move(result); });
    if (!QTest::qWaitFor([&outcome] { return outcome.has_value(); }) || !outcome->has_value())
        return {};
    return **outcome;
}

void LoopbackMarketTest::recordsHaveTheRecordedFields()
{
    const std::vector<std::pair<Json, Json>> pairs = {
        {json(binanceMain, ticker24hr(R"(["BTCUSDT"])")).at(0),
         recorded("binance_ticker24hr_symbols12_2022-11-21.json").at(0)},
        {json(okx, allOfOkx).at("data").at(0), recorded("okx_ticker_BTC-USDT_2026-08-22.json").at("data").at(0)},
        {json(bybit, allOfBybit).at("result").at("list").at(0),
         recorded("bybit_tickers_spot_real_records.json").at("result").at("list").at(0)},
    };
    for (const auto &[made, real] : pairs) {
        QCOMPARE(keys(made), keys(real));
        QCOMPARE(typeDifferences(made, real), QStringList());
    }
}

void LoopbackMarketTest::envelopesHaveTheRecordedFields()
{
    const std::vector<std::pair<Json, Json>> pairs = {
        {json(okx, allOfOkx), recorded("okx_ticker_BTC-USDT_2026-08-22.json")},
        {json(bybit, allOfBybit), recorded("bybit_tickers_spot_real_records.json")},
        {json(exchangeRateApi, erTable), recorded("exchangerate_latest_USD_2024-01-09.json")},
        {json(currencyApiPrimary, currencyTable), recorded("currencyapi_usd.min_2026-09-29.json")},
    };
    for (const auto &[made, real] : pairs) {
        QCOMPARE(keys(made), keys(real));
        QCOMPARE(typeDifferences(made, real), QStringList());
    }
}

void LoopbackMarketTest::binanceAnswersTheSymbolsAsked()
{
    const Json tickers = json(binanceData, ticker24hr(R"(["ETHUSDT","BTCUSDT"])"));
    QCOMPARE(tickers.size(), 2U);
    QCOMPARE(tickers[0]["symbol"].get<std::string>(), std::string("ETHUSDT"));
    QCOMPARE(tickers[1]["lastPrice"].get<std::string>(), std::string("67432.10000000"));
    QCOMPARE(tickers[1]["priceChangePercent"].get<std::string>(), std::string("2.500"));
}

void LoopbackMarketTest::binanceRefusesUnknownSymbols()
{
    const HttpResponse response = get(binanceMain, ticker24hr(R"(["BTCUSDT","NOSUCHUSDT"])"));
    QCOMPARE(response.status, 400);
    QCOMPARE(parsed(response.body).dump(), recorded("binance_error_1121_invalid_symbol.json").dump());
}

void LoopbackMarketTest::binanceRefusesIllegalSymbols()
{
    const HttpResponse response = get(binanceMain, ticker24hr(R"(["btcusdt"])"));
    QCOMPARE(response.status, 400);
    QCOMPARE(parsed(response.body).dump(), recorded("binance_error_1100_illegal_characters.json").dump());
}

void LoopbackMarketTest::binanceWithoutSymbolsListsAll()
{
    QCOMPARE(json(binanceMain, QStringLiteral("/ticker/24hr")).size(), 2U);
}

void LoopbackMarketTest::closeTimeIsNow()
{
    const QString path = ticker24hr(R"(["BTCUSDT"])");
    QCOMPARE(json(binanceMain, path)[0]["closeTime"].get<qint64>(), 1769847300000);
    m_clock.advance(12.5);
    QCOMPARE(json(binanceMain, path)[0]["closeTime"].get<qint64>(), 1769847312500);
}

void LoopbackMarketTest::pricesAreWrittenExactly_data()
{
    QTest::addColumn<double>("usd");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("large") << 112233.45 << QByteArray("112233.45");
    QTest::newRow("whole") << 2300.0 << QByteArray("2300");
    QTest::newRow("small") << 0.1187 << QByteArray("0.1187");
    QTest::newRow("tiny") << 0.00000719 << QByteArray("0.00000719");
    QTest::newRow("tiniest") << 0.000000000123 << QByteArray("0.000000000123");
}

void LoopbackMarketTest::pricesAreWrittenExactly()
{
    QFETCH(double, usd);
    QFETCH(QByteArray, text);
    m_market->setPrice(QStringLiteral("BTC"), usd);
    QCOMPARE(json(okx, allOfOkx)["data"][0]["last"].get<std::string>(), text.toStdString());
    QCOMPARE(json(bybit, allOfBybit)["result"]["list"][0]["lastPrice"].get<std::string>(), text.toStdString());
}

void LoopbackMarketTest::removedSymbolsAreLacking()
{
    m_market->removeSymbol(okx, QStringLiteral("ETH"));
    m_market->removeSymbol(binanceMain, QStringLiteral("ETH"));
    QCOMPARE(json(okx, allOfOkx)["data"].size(), 1U);
    QCOMPARE(json(bybit, allOfBybit)["result"]["list"].size(), 2U);
    QCOMPARE(get(binanceMain, ticker24hr(R"(["ETHUSDT"])")).status, 400);
    QCOMPARE(get(binanceData, ticker24hr(R"(["ETHUSDT"])")).status, 200);
    m_market->setPrice(QStringLiteral("ETH"), 3500);
    QCOMPARE(json(okx, allOfOkx)["data"].size(), 2U);
}

void LoopbackMarketTest::ratesAreTold()
{
    m_market->setRate(QStringLiteral("EUR"), 0.875);
    m_market->setRate(QStringLiteral("XTS"), 12.5);
    const Json er = json(exchangeRateApi, erTable);
    QCOMPARE(er["rates"]["EUR"].get<double>(), 0.875);
    QCOMPARE(er["rates"]["XTS"].get<double>(), 12.5);
    for (const MarketEndpoint endpoint : {currencyApiPrimary, currencyApiFallback})
        QCOMPARE(json(endpoint, currencyTable)["usd"]["eur"].get<double>(), 0.875);
    for (const char *code : {"USD", "CNY", "KRW", "HKD", "JPY", "TWD", "SGD", "MYR", "AUD", "CAD", "EUR", "GBP"})
        QVERIFY2(er["rates"].contains(code), code);
}

void LoopbackMarketTest::unknownPathsAreNotFound()
{
    for (int i = 0; i < marketEndpointCount; ++i) {
        const HttpResponse response = get(static_cast<MarketEndpoint>(i), QStringLiteral("/no/such/path"));
        QCOMPARE(response.status, 404);
        QCOMPARE(parsed(response.body).dump(), recorded("okx_error_http404.json").dump());
    }
    QCOMPARE(get(okx, QStringLiteral("/api/v5/market/tickers")).status, 400);
}

void LoopbackMarketTest::servesFiles()
{
    m_market->addFile(QStringLiteral("/coins/bitcoin.png"), "picture", "image/png");
    const HttpResponse response = get(files, QStringLiteral("/coins/bitcoin.png?1696501400"));
    QCOMPARE(response.status, 200);
    QCOMPARE(response.body, QByteArray("picture"));
    QCOMPARE(response.header("Content-Type"), std::optional<QByteArray>("image/png"));
}

void LoopbackMarketTest::scriptsOnceThenAlways()
{
    m_market->script(okx, faults::status(429));
    m_market->script(okx, faults::status(418));
    m_market->script(okx, faults::blockPage(), LoopbackMarket::Repeat::always);
    QList<int> statuses;
    for (int i = 0; i < 4; ++i)
        statuses.append(get(okx, allOfOkx).status);
    QCOMPARE(statuses, (QList{429, 418, 403, 403}));
    QCOMPARE(get(bybit, allOfBybit).status, 200);
    m_market->clearScript(okx);
    QCOMPARE(get(okx, allOfOkx).status, 200);
}

void LoopbackMarketTest::everyServiceAnswersOverTls()
{
    LoopbackMarket::Options options;
    options.transport = LoopbackMarket::Transport::tls;
    LoopbackMarket market(options);
    market.setPrice(QStringLiteral("BTC"), 1);
    market.addFile(QStringLiteral("/a"), "a", "text/plain");
    QVERIFY(market.endpoints().okx.startsWith(QStringLiteral("https://127.0.0.1:")));
    const std::vector<std::pair<MarketEndpoint, QString>> all = {
        {binanceMain, ticker24hr(R"(["BTCUSDT"])")},
        {binanceData, ticker24hr(R"(["BTCUSDT"])")},
        {okx, allOfOkx},
        {bybit, allOfBybit},
        {exchangeRateApi, erTable},
        {currencyApiPrimary, currencyTable},
        {currencyApiFallback, currencyTable},
        {files, QStringLiteral("/a")},
    };
    for (const auto &[endpoint, path] : all)
        QCOMPARE(get(market, endpoint, path).status, 200);
}

void LoopbackMarketTest::recordsRequests()
{
    QSignalSpy spy(m_market.get(), &LoopbackMarket::requested);
    get(okx, allOfOkx);
    m_clock.advance(5);
    get(currencyApiPrimary, currencyTable);
    QCOMPARE(spy.count(), 2);
    QCOMPARE(m_market->requests().size(), 2U);
    const LoopbackMarket::Request &first = m_market->requests().at(0);
    QCOMPARE(first.endpoint, okx);
    QCOMPARE(first.method, QByteArray("GET"));
    QCOMPARE(first.target, allOfOkx.toLatin1());
    QCOMPARE(first.connection, 1);
    QVERIFY(first.header("host").has_value());
    const LoopbackMarket::Request &second = m_market->requests().at(1);
    QCOMPARE(second.target, QByteArray("/npm/@fawazahmed0/currency-api@latest/v1/currencies/usd.min.json"));
    QCOMPARE(secondsBetween(first.time, second.time), 5.0);
    QCOMPARE(m_market->requestCount(okx), 1);
}

void LoopbackMarketTest::catalogCoinsHavePlausiblePrices()
{
    m_market->addCatalogCoins();
    const auto &prices = m_market->world().prices();
    QVERIFY2(prices.size() > 600, qPrintable(QString::number(prices.size())));
    QVERIFY(!prices.contains(QStringLiteral("USDT")));
    QCOMPARE(prices.at(QStringLiteral("USDC")).usd, 1.0);
    QCOMPARE(prices.at(QStringLiteral("BTC")).usd, 67432.1);
    for (const auto &[symbol, price] : prices) {
        QVERIFY2(price.usd > 1e-7 && price.usd < 1e6, qPrintable(symbol));
        QVERIFY2(std::abs(price.change24hPercent()) < 41, qPrintable(symbol));
    }
    QCOMPARE(json(okx, allOfOkx)["data"].size(), prices.size());
}

void LoopbackMarketTest::walkMovesPricesAndTheirChange()
{
    const auto before = m_market->world().prices();
    m_market->startMoving(5ms);
    QTRY_VERIFY(m_market->world().prices() != before);
    m_market->startMoving(0ms);
    const WorldPrice &was = before.at(QStringLiteral("BTC"));
    const WorldPrice &now = m_market->world().prices().at(QStringLiteral("BTC"));
    QVERIFY(now.usd != was.usd);
    QVERIFY(std::abs(now.usd / was.usd - 1) < 0.1);
    QCOMPARE(now.usd24hAgo, was.usd24hAgo);
}

void LoopbackMarketTest::sameSeedWalksTheSameWay()
{
    MarketWorld one(7);
    MarketWorld same(7);
    MarketWorld other(8);
    for (MarketWorld *world : {&one, &same, &other}) {
        world->addCatalogCoins();
        world->move();
    }
    QVERIFY(one.prices() == same.prices());
    QVERIFY(one.prices() != other.prices());
}

void LoopbackMarketTest::gzipStreamsAreRead()
{
    m_market->script(okx, faults::gzip());
    const HttpResponse response = get(okx, allOfOkx);
    QCOMPARE(response.header("Content-Encoding"), std::optional<QByteArray>("gzip"));
    QCOMPARE(parsed(response.body)["data"].size(), 2U);
}

TICKWISE_TEST(LoopbackMarketTest)
#include "LoopbackMarketTest.moc"
