#include "demo/LoopbackMarket.h"

#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"
#include "market/FailureReason.h"
#include "market/Outcome.h"
#include "market/PriceService.h"
#include "market/Symbols.h"
#include "platform/network/NetworkHttpClient.h"

#include <QSignalSpy>

using namespace tickwise;
using namespace tickwise::test;
using namespace std::chrono_literals;
using enum MarketEndpoint;
using Transport = LoopbackMarket::Transport;
using Repeat = LoopbackMarket::Repeat;

namespace {

} // namespace

/// The price and rate services over real connections to exchanges that misbehave.
class MarketServiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { start({}); }
    void cleanup();

    void allIsWell_data();
    void allIsWell();
    void failsOverAndRecovers_data();
    void failsOverAndRecovers();
    void everyExchangeFails_data();
    void everyExchangeFails();
    void shutDownExchanges();
    void silentExchangeTimesOut();
    void rateLimitIsKept();
    void gapsAreFilled();
    void gapsAreFilledAroundAFault();
    void unknownSymbolSendsBinanceHome();
    void badCertificates_data();
    void badCertificates();
    void redirectElsewhereIsNotFollowed();
    void ratesFailOver_data();
    void ratesFailOver();
    void ratesFail();
    void oneRateRequestForAll();
    void droppedHandleAborts_data();
    void droppedHandleAborts();
    void destroyedServiceCancels();

private:
    void start(LoopbackMarket::Options options);
    Outcome<PriceSnapshot> fetch(const QStringList &symbols, BaseCurrency currency = BaseCurrency::usd);
    /// The exchanges asked in the last fetch, in order.
    std::vector<MarketEndpoint> asked() const
    {
        std::vector<MarketEndpoint> endpoints;
        for (const LoopbackMarket::Request &request : m_market->requests()) {
            // A request is sent again when its connection dies before the first byte.
            if (endpoints.empty() || endpoints.back() != request.endpoint)
                endpoints.push_back(request.endpoint);
        }
        return endpoints;
    }

    TestClock m_clock;
    std::unique_ptr<LoopbackMarket> m_market;
    std::unique_ptr<NetworkHttpClient> m_client;
    std::unique_ptr<ExchangeRateService> m_rates;
    std::unique_ptr<PriceService> m_prices;
};

void MarketServiceTest::start(LoopbackMarket::Options options)
{
    cleanup();
    options.clock = m_clock.clock();
    m_market = std::make_unique<LoopbackMarket>(options);
    m_market->setPrice(btc, 67432.1, 2.5);
    m_market->setPrice(eth, 3521.44, -1.25);
    m_market->setPrice(sol, 150.5, 10);
    m_market->setRate(QStringLiteral("EUR"), 0.5);
    m_client = std::make_unique<NetworkHttpClient>(LoopbackMarket::authorities(), [] { return true; });
    m_rates = std::make_unique<ExchangeRateService>(*m_client, m_market->endpoints(),
                                                    ExchangeRateCacheStore(std::nullopt), m_clock.clock());
    m_prices = std::make_unique<PriceService>(*m_client, *m_rates, m_market->endpoints(), m_clock.clock());
}

void MarketServiceTest::cleanup()
{
    m_prices.reset();
    m_rates.reset();
    m_client.reset();
    m_market.reset();
    m_clock.set(TestClock().now());
}

Outcome<PriceSnapshot> MarketServiceTest::fetch(const QStringList &symbols, BaseCurrency currency)
{
    m_market->forgetRequests();
    Outcome<PriceSnapshot> outcome;
    // A loop of its own, because megabytes would crawl through a wait that polls.
    QEventLoop loop;
    QTimer::singleShot(20000, &loop, [] { qFatal("the fetch does not end"); });
    const Subscription subscription =
        m_prices->fetchSnapshot(symbols, currency, [&](const Result<PriceSnapshot> &result) {
            outcome.results.push_back(result);
            loop.quit();
        });
    loop.exec();
    return outcome;
}

void MarketServiceTest::allIsWell_data()
{
    QTest::addColumn<Transport>("transport");
    QTest::newRow("plain") << Transport::plain;
    QTest::newRow("TLS") << Transport::tls;
}

void MarketServiceTest::allIsWell()
{
    QFETCH(Transport, transport);
    start({.transport = transport});
    const PriceSnapshot snapshot = fetch({btc, eth, QStringLiteral("USDT")}, BaseCurrency::eur).value();
    QCOMPARE(snapshot.usdToTargetRate, 0.5);
    QCOMPARE(snapshot.prices.size(), 3);
    QCOMPARE(snapshot.prices.value(btc), 67432.1 * 0.5);
    QCOMPARE(snapshot.changes24h.value(eth), -1.25);
    QCOMPARE(m_market->requestCount(binanceMain), 1);
    QCOMPARE(m_market->requestCount(exchangeRateApi), 1);
    for (const LoopbackMarket::Request &request : m_market->requests()) {
        if (request.endpoint == binanceMain)
            QCOMPARE(request.target, QByteArray("/api/v3/ticker/24hr?symbols=%5B%22BTCUSDT%22%2C%22ETHUSDT%22%5D"));
    }
}

void MarketServiceTest::failsOverAndRecovers_data()
{
    QTest::addColumn<Transport>("transport");
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<bool>("isLimit"); // of the exchange, so that its other host is skipped
    for (const auto &named : {std::pair("plain", Transport::plain), std::pair("TLS", Transport::tls)}) {
        const auto row = [&named](const char *fault) -> QTestData & {
            return QTest::addRow("%s, %s", fault, named.first) << named.second;
        };
        row("reset") << faults::reset() << false;
        row("reset in the body") << faults::resetAfter(20) << false;
        row("truncated") << faults::truncateAfter(40) << false;
        row("garbage") << faults::garbage() << false;
        row("not HTTP") << faults::notHttp() << false;
        row("page under 200") << faults::blockPage(200) << false;
        row("block page") << faults::blockPage() << true;
        row("401") << faults::status(401) << false;
        row("418") << faults::status(418, "{}") << true;
        row("429") << faults::status(429, "{}", {{"Retry-After", "30"}}) << true;
        row("451") << faults::blockPage(451) << false;
        row("400") << faults::status(400, "{}") << false;
        row("500") << faults::status(500) << false;
        row("oversize") << faults::oversize() << false;
        row("gzip bomb") << faults::gzipBomb() << false;
        row("redirect loop") << faults::status(302, {}, {{"Location", "/api/v3/ticker/24hr"}}) << false;
        row("empty list") << faults::body("[]") << true;
    }
}

void MarketServiceTest::failsOverAndRecovers()
{
    QFETCH(Transport, transport);
    QFETCH(Fault, fault);
    QFETCH(bool, isLimit);
    start({.transport = transport});
    m_market->script(binanceMain, fault, Repeat::always);
    QCOMPARE(fetch({btc}).value().prices.value(btc), 67432.1);
    const MarketEndpoint next = isLimit ? okx : binanceData;
    QCOMPARE(asked(), (std::vector{binanceMain, next}));

    m_market->clearScript(binanceMain);
    for (const MarketEndpoint other : {binanceData, okx, bybit})
        m_market->script(other, faults::status(500), Repeat::always);
    m_clock.advance(1800);
    m_market->setPrice(btc, 70000);
    QCOMPARE(fetch({btc}).value().prices.value(btc), 70000.0);
    QCOMPARE(asked().back(), binanceMain);
}

void MarketServiceTest::everyExchangeFails_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<FailureReason>("reason");
    QTest::newRow("reset") << faults::reset() << FailureReason::unreachable;
    QTest::newRow("500") << faults::status(500) << FailureReason::badAnswer;
    QTest::newRow("garbage") << faults::garbage() << FailureReason::badAnswer;
    QTest::newRow("429") << faults::status(429) << FailureReason::rateLimited;
    QTest::newRow("block page") << faults::blockPage() << FailureReason::regionBlocked;
    QTest::newRow("451") << faults::status(451) << FailureReason::regionBlocked;
}

void MarketServiceTest::everyExchangeFails()
{
    QFETCH(Fault, fault);
    QFETCH(FailureReason, reason);
    for (const MarketEndpoint exchange : {binanceMain, binanceData, okx, bybit})
        m_market->script(exchange, fault, Repeat::always);
    const UrlLoadingError error = fetch({btc}).error();
    QCOMPARE(error.code, UrlErrorCode::cannotLoadFromNetwork);
    QCOMPARE(error.causes.size(), 4U);
    QCOMPARE(failureReason(error), reason);
}

void MarketServiceTest::shutDownExchanges()
{
    for (const MarketEndpoint exchange : {binanceMain, binanceData, okx})
        m_market->shutDown(exchange);
    QCOMPARE(fetch({btc}).value().prices.value(btc), 67432.1);
    QCOMPARE(asked(), std::vector{bybit});
    m_market->shutDown(bybit);
    QCOMPARE(failureReason(fetch({btc}).error()), FailureReason::unreachable);
}

void MarketServiceTest::silentExchangeTimesOut()
{
    m_market->script(binanceMain, faults::hang(), Repeat::always);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(fetch({btc}).value().prices.value(btc), 67432.1);
    QVERIFY(timer.elapsed() >= 4500);
    QCOMPARE(asked(), (std::vector{binanceMain, binanceData}));
}

void MarketServiceTest::rateLimitIsKept()
{
    m_market->script(binanceMain, faults::status(429, "{}", {{"Retry-After", "30"}}));
    QVERIFY(fetch({btc}).results[0].has_value());
    QCOMPARE(asked(), (std::vector{binanceMain, okx}));
    QVERIFY(fetch({btc}).results[0].has_value());
    QCOMPARE(asked(), std::vector{okx});
    m_market->script(okx, faults::status(500), Repeat::always);
    m_market->script(bybit, faults::status(500), Repeat::always);
    m_clock.advance(29);
    QVERIFY(!fetch({btc}).results[0].has_value());
    QCOMPARE(asked(), (std::vector{okx, bybit}));
    m_clock.advance(1);
    QVERIFY(fetch({btc}).results[0].has_value());
    QCOMPARE(asked(), (std::vector{okx, bybit, binanceMain}));
}

void MarketServiceTest::gapsAreFilled()
{
    m_market->script(binanceMain, faults::status(500));
    m_market->script(binanceData, faults::status(500));
    m_market->removeSymbol(okx, eth);
    m_market->removeSymbol(okx, sol);
    m_market->removeSymbol(binanceMain, sol);
    const PriceSnapshot snapshot = fetch({btc, eth, sol}).value();
    QCOMPARE(snapshot.prices, (QHash<QString, double>{{btc, 67432.1}, {eth, 3521.44}, {sol, 150.5}}));
    QCOMPARE(asked(), (std::vector{binanceMain, binanceData, okx, binanceMain, bybit}));
}

void MarketServiceTest::gapsAreFilledAroundAFault()
{
    m_market->script(binanceMain, faults::body("[]"), Repeat::always);
    m_market->removeSymbol(okx, sol);
    m_market->script(bybit, faults::resetAfter(10), Repeat::always);
    QCOMPARE(fetch({btc, sol}).value().prices, (QHash<QString, double>{{btc, 67432.1}}));
    m_market->clearScript(bybit);
    QCOMPARE(fetch({btc, sol}).value().prices.size(), 2);
    QCOMPARE(asked(), (std::vector{okx, bybit}));
}

void MarketServiceTest::unknownSymbolSendsBinanceHome()
{
    m_market->removeSymbol(binanceMain, eth);
    m_market->removeSymbol(binanceData, eth);
    QCOMPARE(fetch({btc, eth}).value().prices.size(), 2);
    QCOMPARE(asked(), (std::vector{binanceMain, binanceData, okx}));
}

void MarketServiceTest::badCertificates_data()
{
    QTest::addColumn<LoopbackCertificate>("certificate");
    QTest::addColumn<FailureReason>("reason");
    QTest::newRow("expired") << LoopbackCertificate::expired << FailureReason::clockWrong;
    QTest::newRow("not yet valid") << LoopbackCertificate::notYetValid << FailureReason::clockWrong;
    QTest::newRow("stranger") << LoopbackCertificate::fromStranger << FailureReason::secureConnectionFailed;
}

void MarketServiceTest::badCertificates()
{
    QFETCH(LoopbackCertificate, certificate);
    QFETCH(FailureReason, reason);
    start({.transport = Transport::tls, .certificate = certificate});
    const UrlLoadingError error = fetch({btc}).error();
    QCOMPARE(error.code, UrlErrorCode::cannotLoadFromNetwork);
    QCOMPARE(failureReason(error), reason);
    QVERIFY(m_market->requests().empty());
}

void MarketServiceTest::redirectElsewhereIsNotFollowed()
{
    m_market->script(binanceMain, faults::redirect(m_market->url(files, QStringLiteral("/elsewhere"))), Repeat::always);
    QCOMPARE(fetch({btc}).value().prices.value(btc), 67432.1);
    QCOMPARE(asked(), (std::vector{binanceMain, binanceData}));
    QCOMPARE(m_market->requestCount(files), 0);
}

void MarketServiceTest::ratesFailOver_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::newRow("reset") << faults::reset();
    QTest::newRow("truncated") << faults::truncateAfter(20);
    QTest::newRow("garbage") << faults::garbage();
    QTest::newRow("429") << faults::status(429);
    QTest::newRow("503") << faults::status(503);
    QTest::newRow("gzip bomb") << faults::gzipBomb();
    QTest::newRow("rate 0") << faults::body(R"({"result":"success","rates":{"EUR":0}})");
}

void MarketServiceTest::ratesFailOver()
{
    QFETCH(Fault, fault);
    m_market->script(exchangeRateApi, fault, Repeat::always);
    m_market->script(currencyApiPrimary, faults::status(404), Repeat::always);
    QCOMPARE(fetch({QStringLiteral("USDT")}, BaseCurrency::eur).value().usdToTargetRate, 0.5);
    QCOMPARE(asked(), (std::vector{exchangeRateApi, currencyApiPrimary, currencyApiFallback}));
}

void MarketServiceTest::ratesFail()
{
    for (const MarketEndpoint service : {exchangeRateApi, currencyApiPrimary, currencyApiFallback})
        m_market->script(service, faults::status(500), Repeat::always);
    QCOMPARE(fetch({btc}, BaseCurrency::eur).error().code, UrlErrorCode::cannotLoadFromNetwork);
    for (const MarketEndpoint service : {exchangeRateApi, currencyApiPrimary, currencyApiFallback})
        m_market->clearScript(service);
    QCOMPARE(fetch({btc}, BaseCurrency::eur).value().usdToTargetRate, 0.5);
    m_clock.advance(7200);
    m_market->shutDown(exchangeRateApi);
    m_market->shutDown(currencyApiPrimary);
    m_market->shutDown(currencyApiFallback);
    QCOMPARE(fetch({btc}, BaseCurrency::eur).value().usdToTargetRate, 0.5);
}

void MarketServiceTest::oneRateRequestForAll()
{
    Outcome<PriceSnapshot> outcomes[2];
    const auto one = m_prices->fetchSnapshot({btc}, BaseCurrency::eur, outcomes[0].completion());
    const auto two = m_prices->fetchSnapshot({eth}, BaseCurrency::eur, outcomes[1].completion());
    QTRY_VERIFY(outcomes[0].isOver() && outcomes[1].isOver());
    QCOMPARE(m_market->requestCount(exchangeRateApi), 1);
    QCOMPARE(outcomes[1].value().usdToTargetRate, 0.5);
}

void MarketServiceTest::droppedHandleAborts_data()
{
    QTest::addColumn<MarketEndpoint>("endpoint");
    QTest::addColumn<Transport>("transport");
    QTest::newRow("exchange, plain") << binanceMain << Transport::plain;
    QTest::newRow("exchange, TLS") << binanceMain << Transport::tls;
    QTest::newRow("rate service") << exchangeRateApi << Transport::plain;
}

void MarketServiceTest::droppedHandleAborts()
{
    QFETCH(MarketEndpoint, endpoint);
    QFETCH(Transport, transport);
    start({.transport = transport});
    m_market->script(endpoint, faults::stallAfter(10), Repeat::always);
    Outcome<PriceSnapshot> outcome;
    Subscription subscription = m_prices->fetchSnapshot({btc}, BaseCurrency::eur, outcome.completion());
    QTRY_COMPARE(m_market->requestCount(endpoint), 1);
    QCOMPARE(m_market->server(endpoint).openConnections(), 1);
    subscription.cancel();
    QTRY_COMPARE(m_market->server(endpoint).openConnections(), 0);
    QVERIFY(!outcome.isOver());
    m_market->clearScript(endpoint);
    QVERIFY(fetch({btc}, BaseCurrency::eur).results[0].has_value());
    QCOMPARE(m_market->requestCount(binanceMain), 1);
}

void MarketServiceTest::destroyedServiceCancels()
{
    m_market->script(binanceMain, faults::delay(50ms), Repeat::always);
    Outcome<PriceSnapshot> outcome;
    const auto subscription = m_prices->fetchSnapshot({btc}, BaseCurrency::usd, outcome.completion());
    m_prices.reset();
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(outcome.error().code, UrlErrorCode::cancelled);
}

TICKWISE_TEST(MarketServiceTest)
#include "MarketServiceTest.moc"
