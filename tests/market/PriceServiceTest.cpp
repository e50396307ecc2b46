#include "PriceServiceFixture.h"

#include "doubles/TestProgram.h"
#include "market/Symbols.h"

using namespace tickwise;
using namespace tickwise::test;

namespace {

} // namespace

class PriceServiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneRequestForRepeatsOfAnyCase();
    void noSymbols();
    void tetherAsksNoExchange();
    void tetherBesideOthers();
    void convertsPricesAndNotChanges();
    void aPriceBeyondAnyNumberIsLeftOut();
    void startsWhereTheLastAnswerCameFrom();
    void theOrderWrapsAround();
    void lackingSymbolIsLeftOutForHalfAnHour();
    void aProviderWithoutAnAskableSymbolIsSkipped();
    void anAnswerClearsTheMark();
    void binancesShareTheirMarks();
    void emptyAnswerIsAFailureAndMarks();
    void gapsAfterBinance();
    void gapsAfterOkxAvoidTheDataHost();
    void gapsAreFilledOneAfterAnother();
    void gapFillingPassesOverFailures();
    void gapFillingNotesRateLimits();
    void nobodyHasASymbol();
    void rateIsAskedAtOnceAndOnce();
    void bothMustHaveArrived_data();
    void bothMustHaveArrived();
    void clockGoesBackBehindAMark();
};

void PriceServiceTest::oneRequestForRepeatsOfAnyCase()
{
    PriceServiceFixture f;
    f.mainHas({{"BTC", "100"}, {"ETH", "10"}});
    const auto result = f.fetch({QStringLiteral("eth"), QStringLiteral("btc"), btc});
    QCOMPARE(f.client.requests().size(), std::size_t(1));
    QCOMPARE(f.client.requests().front().url.toString(QUrl::FullyEncoded),
             QStringLiteral("https://main.example/api/v3/ticker/24hr?symbols=%5B%22BTCUSDT%22%2C%22ETHUSDT%22%5D"));
    QVERIFY(result.has_value());
    QCOMPARE(result->prices, (QHash<QString, double>{{btc, 100}, {eth, 10}}));
    QCOMPARE(result->usdToTargetRate, 1.0);
}

void PriceServiceTest::noSymbols()
{
    PriceServiceFixture f;
    Outcomes outcomes;
    const Subscription subscription = f.start({}, outcomes);
    QVERIFY(outcomes.results.empty());
    QVERIFY(outcomes.arrived());
    QCOMPARE(loadingError(outcomes.results.front()).code, UrlErrorCode::badURL);
    QVERIFY(f.client.requests().empty());
    QVERIFY(f.rates.asked.empty());
}

void PriceServiceTest::tetherAsksNoExchange()
{
    PriceServiceFixture f;
    f.rates.answer = 0.9;
    const auto result = f.fetch({QStringLiteral("usdt")}, BaseCurrency::eur);
    QVERIFY(f.client.requests().empty());
    QVERIFY(result.has_value());
    QCOMPARE(result->prices, (QHash<QString, double>{{usdt, 0.9}}));
    QCOMPARE(result->changes24h, (QHash<QString, double>{{usdt, 0.0}}));
    QCOMPARE(result->usdToTargetRate, 0.9);
}

void PriceServiceTest::tetherBesideOthers()
{
    PriceServiceFixture f;
    f.mainHas({{"BTC", "100"}});
    const auto result = f.fetch({usdt, btc});
    QCOMPARE(f.client.requests().front().url.query(QUrl::FullyEncoded), QStringLiteral("symbols=%5B%22BTCUSDT%22%5D"));
    QVERIFY(result.has_value());
    QCOMPARE(result->prices, (QHash<QString, double>{{btc, 100}, {usdt, 1}}));
}

void PriceServiceTest::convertsPricesAndNotChanges()
{
    PriceServiceFixture f;
    f.rates.answer = 7.0;
    f.mainHas({{"BTC", "100"}});
    f.okxHas({{"ETH", "10"}});
    f.bybitHas({{"XYZ", "2"}});
    const auto result = f.fetch({btc, eth, xyz}, BaseCurrency::cny);
    QVERIFY(result.has_value());
    QCOMPARE(result->prices, (QHash<QString, double>{{btc, 700}, {eth, 70}, {xyz, 14}}));
    // OKX gave no usable figure.
    QCOMPARE(result->changes24h, (QHash<QString, double>{{btc, 0}, {xyz, 50}}));
    QCOMPARE(result->usdToTargetRate, 7.0);
    QVERIFY(f.rates.asked == std::vector{BaseCurrency::cny});
}

void PriceServiceTest::aPriceBeyondAnyNumberIsLeftOut()
{
    PriceServiceFixture f;
    f.rates.answer = 1000.0;
    f.mainHas({{"BTC", "1e308"}, {"ETH", "1"}});
    const auto result = f.fetch({btc, eth}, BaseCurrency::krw);
    QVERIFY(result.has_value());
    QCOMPARE(result->prices, (QHash<QString, double>{{eth, 1000}}));
}

void PriceServiceTest::startsWhereTheLastAnswerCameFrom()
{
    PriceServiceFixture f;
    f.fail(f.main, UrlErrorCode::timedOut);
    f.dataHas({{"BTC", "1"}});
    QVERIFY(f.fetch({btc}).has_value());
    QCOMPARE(f.asked(), QStringLiteral("main data"));
    QVERIFY(f.fetch({btc}).has_value());
    QCOMPARE(f.asked(), QStringLiteral("data"));
}

void PriceServiceTest::theOrderWrapsAround()
{
    PriceServiceFixture f;
    f.okxHas({{"BTC", "1"}});
    QVERIFY(f.fetch({btc}).has_value());
    QCOMPARE(f.asked(), QStringLiteral("main data okx"));
    f.fail(f.okx, UrlErrorCode::timedOut);
    QVERIFY(!f.fetch({btc}));
    QCOMPARE(f.asked(), QStringLiteral("okx bybit main data"));
    // A fetch in which nobody answers changes no preference.
    QVERIFY(!f.fetch({btc}));
    QCOMPARE(f.asked(), QStringLiteral("okx bybit main data"));
}

void PriceServiceTest::lackingSymbolIsLeftOutForHalfAnHour()
{
    PriceServiceFixture f;
    f.mainHas({{"BTC", "1"}});
    f.okxHas({{"XYZ", "5"}});
    QCOMPARE(f.fetch({btc, xyz})->prices.value(xyz), 5.0);
    QCOMPARE(f.asked(), QStringLiteral("main okx"));
    f.clock.advance(1799.9);
    f.mainHas({{"BTC", "1"}, {"XYZ", "6"}});
    QCOMPARE(f.fetch({btc, xyz})->prices.value(xyz), 5.0);
    QCOMPARE(f.client.requests().front().url.query(QUrl::FullyEncoded), QStringLiteral("symbols=%5B%22BTCUSDT%22%5D"));
    QCOMPARE(f.asked(), QStringLiteral("main okx"));
    f.clock.advance(0.1);
    f.mainHas({{"BTC", "1"}, {"XYZ", "6"}});
    QCOMPARE(f.fetch({btc, xyz})->prices.value(xyz), 6.0);
    QCOMPARE(f.asked(), QStringLiteral("main"));
}

void PriceServiceTest::aProviderWithoutAnAskableSymbolIsSkipped()
{
    PriceServiceFixture f;
    f.mainHas({});
    f.okxHas({});
    f.bybitHas({{"XYZ", "3"}});
    // The data host shares the mark that the main host's empty answer set.
    QCOMPARE(f.fetch({xyz})->prices.value(xyz), 3.0);
    QCOMPARE(f.asked(), QStringLiteral("main okx bybit"));
    f.fail(f.bybit, UrlErrorCode::timedOut);
    QVERIFY(!f.fetch({xyz}));
    QCOMPARE(f.asked(), QStringLiteral("bybit"));
}

void PriceServiceTest::anAnswerClearsTheMark()
{
    PriceServiceFixture f;
    f.mainHas({{"BTC", "1"}});
    QVERIFY(f.fetch({btc, xyz}).has_value());
    f.clock.advance(1800);
    f.mainHas({{"BTC", "1"}, {"XYZ", "6"}});
    QVERIFY(f.fetch({btc, xyz}).has_value());
    // Had the old mark stayed, going back behind its end would leave the symbol out again.
    f.clock.advance(-900);
    f.mainHas({{"BTC", "1"}, {"XYZ", "7"}});
    QCOMPARE(f.fetch({btc, xyz})->prices.value(xyz), 7.0);
}

void PriceServiceTest::binancesShareTheirMarks()
{
    PriceServiceFixture f;
    f.mainHas({{"BTC", "1"}});
    QVERIFY(f.fetch({btc, xyz}).has_value());
    f.fail(f.main, UrlErrorCode::timedOut);
    f.dataHas({{"BTC", "2"}, {"XYZ", "3"}});
    const auto result = f.fetch({btc, xyz});
    QCOMPARE(result->prices, (QHash<QString, double>{{btc, 2}}));
    QCOMPARE(f.client.urls(f.data).front().query(QUrl::FullyEncoded), QStringLiteral("symbols=%5B%22BTCUSDT%22%5D"));
}

void PriceServiceTest::emptyAnswerIsAFailureAndMarks()
{
    PriceServiceFixture f;
    f.okxHas({{"ETH", "1"}});
    f.bybitHas({{"BTC", "4"}});
    QCOMPARE(f.fetch({btc})->prices.value(btc), 4.0);
    QCOMPARE(f.asked(), QStringLiteral("main data okx bybit"));
    // Bybit answered last; OKX is marked.
    f.fail(f.bybit, UrlErrorCode::timedOut);
    QVERIFY(!f.fetch({btc}));
    QCOMPARE(f.asked(), QStringLiteral("bybit main data"));
}

void PriceServiceTest::gapsAfterBinance()
{
    PriceServiceFixture f;
    f.mainHas({{"BTC", "1"}});
    f.dataHas({{"ETH", "1"}, {"XYZ", "1"}});
    f.okxHas({{"BTC", "9"}, {"ETH", "2"}});
    f.bybitHas({{"BTC", "9"}, {"ETH", "9"}, {"XYZ", "3"}});
    const auto result = f.fetch({btc, eth, xyz});
    QCOMPARE(result->prices, (QHash<QString, double>{{btc, 1}, {eth, 2}, {xyz, 3}}));
    QCOMPARE(f.asked(), QStringLiteral("main okx bybit"));
    // Filling a gap is no reason to prefer.
    QVERIFY(f.fetch({btc}).has_value());
    QCOMPARE(f.asked(), QStringLiteral("main"));
}

void PriceServiceTest::gapsAfterOkxAvoidTheDataHost()
{
    PriceServiceFixture f;
    f.okxHas({{"BTC", "1"}});
    QVERIFY(f.fetch({btc}).has_value()); // OKX is preferred now
    f.dataHas({{"XYZ", "1"}});
    f.bybitHas({{"XYZ", "3"}});
    const auto result = f.fetch({btc, xyz});
    QCOMPARE(f.asked(), QStringLiteral("okx main bybit"));
    QCOMPARE(f.client.urls(f.main).front().query(QUrl::FullyEncoded), QStringLiteral("symbols=%5B%22XYZUSDT%22%5D"));
    QCOMPARE(result->prices, (QHash<QString, double>{{btc, 1}, {xyz, 3}}));
    // OKX is marked for it, and is left out from then on.
    f.okxHas({{"BTC", "1"}, {"XYZ", "9"}});
    QCOMPARE(f.fetch({btc, xyz})->prices.value(xyz), 3.0);
    f.clock.advance(1800);
    QCOMPARE(f.fetch({btc, xyz})->prices.value(xyz), 9.0);
}

void PriceServiceTest::gapsAreFilledOneAfterAnother()
{
    PriceServiceFixture f;
    f.mainHas({{"BTC", "1"}});
    f.hold(f.okx);
    Outcomes outcomes;
    const Subscription subscription = f.start({btc, eth}, outcomes);
    QTRY_COMPARE(f.client.urls(f.okx).size(), std::size_t(1));
    QCoreApplication::processEvents();
    QVERIFY(f.client.urls(f.bybit).empty());
    QCOMPARE(f.client.open(), 1);
    QVERIFY(outcomes.results.empty());
}

void PriceServiceTest::gapFillingPassesOverFailures()
{
    PriceServiceFixture f;
    f.mainHas({{"BTC", "1"}});
    f.answer(f.okx, 503);
    f.bybitHas({{"ETH", "3"}});
    QCOMPARE(f.fetch({btc, eth})->prices, (QHash<QString, double>{{btc, 1}, {eth, 3}}));
    QCOMPARE(f.asked(), QStringLiteral("main okx bybit"));
}

void PriceServiceTest::gapFillingNotesRateLimits()
{
    PriceServiceFixture f;
    f.mainHas({{"BTC", "1"}});
    f.answer(f.okx, 200, R"({"code":"50011","msg":"","data":[]})");
    f.bybitHas({{"ETH", "3"}});
    QVERIFY(f.fetch({btc, eth}).has_value());
    QVERIFY(f.fetch({btc, eth}).has_value());
    QCOMPARE(f.asked(), QStringLiteral("main bybit"));
    f.clock.advance(60);
    f.mainHas({{"BTC", "1"}});
    QVERIFY(f.fetch({btc, eth}).has_value());
    QCOMPARE(f.asked(), QStringLiteral("main okx bybit"));
}

void PriceServiceTest::nobodyHasASymbol()
{
    PriceServiceFixture f;
    f.mainHas({{"BTC", "1"}});
    f.okxHas({});
    f.bybitHas({});
    const auto result = f.fetch({btc, xyz});
    QVERIFY(result.has_value());
    QCOMPARE(result->prices, (QHash<QString, double>{{btc, 1}}));
    QVERIFY(f.fetch({btc, xyz}).has_value());
    QCOMPARE(f.asked(), QStringLiteral("main"));
}

void PriceServiceTest::rateIsAskedAtOnceAndOnce()
{
    PriceServiceFixture f;
    f.hold(f.main);
    Outcomes outcomes;
    const Subscription subscription = f.start({btc}, outcomes, BaseCurrency::gbp);
    QVERIFY(f.rates.asked == std::vector{BaseCurrency::gbp});
    QCOMPARE(f.client.open(), 1);
}

void PriceServiceTest::bothMustHaveArrived_data()
{
    QTest::addColumn<bool>("rateArrives");
    QTest::newRow("no rate") << false;
    QTest::newRow("no prices") << true;
}

void PriceServiceTest::bothMustHaveArrived()
{
    QFETCH(bool, rateArrives);
    PriceServiceFixture f;
    if (rateArrives)
        f.hold(f.main);
    else
        f.mainHas({{"BTC", "1"}});
    f.rates.answer = rateArrives ? std::optional<Result<double>>(1.0) : std::nullopt;
    Outcomes outcomes;
    const Subscription subscription = f.start({btc}, outcomes);
    const int waitingFor = rateArrives ? 1 : 0;
    QTRY_COMPARE(f.client.open(), waitingFor);
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    QVERIFY(outcomes.results.empty());
}

void PriceServiceTest::clockGoesBackBehindAMark()
{
    PriceServiceFixture f;
    f.mainHas({{"BTC", "1"}});
    QVERIFY(f.fetch({btc, xyz}).has_value());
    f.clock.advance(-3600);
    f.mainHas({{"BTC", "1"}, {"XYZ", "2"}});
    QCOMPARE(f.fetch({btc, xyz})->prices.value(xyz), 2.0);
}

TICKWISE_TEST(PriceServiceTest)
#include "PriceServiceTest.moc"
