// What a price service makes of exchanges that fail: back-off, the causes it reports, its log.
#include "PriceServiceFixture.h"

#include "doubles/LogCapture.h"
#include "doubles/TestProgram.h"
#include "market/FailureReason.h"
#include "market/Symbols.h"

using namespace tickwise;
using namespace tickwise::test;

namespace {

/// The causes in short: "binance timedOut, okx badAnswer".
QString causesOf(const Result<PriceSnapshot> &result)
{
    static const std::map<FailureReason, QString> names{
        {FailureReason::offline, QStringLiteral("offline")},
        {FailureReason::hostNotFound, QStringLiteral("hostNotFound")},
        {FailureReason::unreachable, QStringLiteral("unreachable")},
        {FailureReason::timedOut, QStringLiteral("timedOut")},
        {FailureReason::regionBlocked, QStringLiteral("regionBlocked")},
        {FailureReason::rateLimited, QStringLiteral("rateLimited")},
        {FailureReason::badAnswer, QStringLiteral("badAnswer")},
    };
    QStringList texts;
    for (const ProviderFailure &cause : loadingError(result).causes)
        texts.append(cause.provider + QLatin1Char(' ') + names.at(cause.reason));
    return texts.join(QStringLiteral(", "));
}

} // namespace

class PriceServiceFailureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyProviderFails();
    void causesOfSkippedProviders();
    void blockedRegionStaysTheReason();
    void unbuildableAddress();
    void rateFailureFailsTheFetch();
    void rateFailureLetsTheTickerRequestEnd();
    void rateFailureAsksNobodyElse_data();
    void rateFailureAsksNobodyElse();
    void rateLimitSkipsBothBinances();
    void rateLimitDefaults_data();
    void rateLimitDefaults();
    void otherFailuresLeaveNoMarks_data();
    void otherFailuresLeaveNoMarks();
    void clockGoesBackBehindARateLimit();
    void clockGoesForward();
    void logsAFailureOnce();
};

void PriceServiceFailureTest::everyProviderFails()
{
    PriceServiceFixture f;
    f.fail(f.main, UrlErrorCode::timedOut);
    f.fail(f.data, UrlErrorCode::cannotFindHost);
    f.answer(f.okx, 451);
    f.answer(f.bybit, 200, "nonsense");
    const auto result = f.fetch({btc});
    QVERIFY(!result);
    QCOMPARE(loadingError(result).code, UrlErrorCode::cannotLoadFromNetwork);
    QCOMPARE(causesOf(result),
             QStringLiteral("binance timedOut, binance hostNotFound, okx regionBlocked, bybit badAnswer"));
    QCOMPARE(failureReason(result.error()), FailureReason::regionBlocked);
}

void PriceServiceFailureTest::causesOfSkippedProviders()
{
    PriceServiceFixture f;
    f.answer(f.main, 429, "{}", {{"Retry-After", "90"}});
    f.okxHas({});
    f.answer(f.bybit, 418, "{}", {{"Retry-After", "40"}});
    const TimePoint start = f.clock.now();
    const auto first = f.fetch({btc});
    QCOMPARE(causesOf(first),
             QStringLiteral("binance rateLimited, binance rateLimited, okx badAnswer, bybit rateLimited"));
    f.clock.advance(5);
    const auto second = f.fetch({btc});
    QVERIFY(f.client.requests().empty());
    QCOMPARE(causesOf(second), causesOf(first));
    const ProviderFailure told = summary(loadingError(second).causes);
    QCOMPARE(told.provider, QStringLiteral("bybit"));
    QVERIFY(told.until == start + secondsDuration(40));
    QVERIFY(loadingError(second).causes.front().until == start + secondsDuration(90));
}

void PriceServiceFailureTest::blockedRegionStaysTheReason()
{
    PriceServiceFixture f;
    f.answer(f.bybit, 403, "<html>blocked</html>");
    QCOMPARE(failureReason(f.fetch({btc}).error()), FailureReason::regionBlocked);
    const auto later = f.fetch({btc});
    QCOMPARE(f.asked(), QStringLiteral("main data okx"));
    QCOMPARE(failureReason(later.error()), FailureReason::regionBlocked);
}

void PriceServiceFailureTest::unbuildableAddress()
{
    PriceServiceFixture f;
    f.service = std::make_unique<PriceService>(
        f.client, f.rates, Endpoints{QStringLiteral("https://"), {}, f.okx, {}, {}, {}, {}}, f.clock.clock());
    QCOMPARE(causesOf(f.fetch({btc})),
             QStringLiteral("binance badAnswer, binance badAnswer, okx unreachable, bybit badAnswer"));
    QCOMPARE(f.asked(), QStringLiteral("okx"));
}

void PriceServiceFailureTest::rateFailureFailsTheFetch()
{
    PriceServiceFixture f;
    f.mainHas({{"BTC", "1"}});
    f.rates.answer = failure(UrlLoadingError{UrlErrorCode::cannotParseResponse, QStringLiteral("no rate")});
    const auto result = f.fetch({btc}, BaseCurrency::eur);
    QVERIFY(!result);
    QCOMPARE(loadingError(result).code, UrlErrorCode::cannotParseResponse);
    QCOMPARE(f.client.open(), 0);
    QVERIFY(!f.fetch({usdt}, BaseCurrency::eur));
}

// The rate fails before the exchange answers that it wants a back-off.
void PriceServiceFailureTest::rateFailureLetsTheTickerRequestEnd()
{
    PriceServiceFixture f;
    f.rates.answer = failure(UrlLoadingError{UrlErrorCode::cannotParseResponse, QStringLiteral("no rate")});
    f.client.answer(f.main, 418, "{}", {{"Retry-After", "300"}});
    const auto result = f.fetch({btc}, BaseCurrency::eur);
    QCOMPARE(loadingError(result).code, UrlErrorCode::cannotParseResponse);
    QCOMPARE(f.asked(), QStringLiteral("main"));
    QCOMPARE(f.client.open(), 0);
    QVERIFY(!f.fetch({btc}, BaseCurrency::eur));
    QCOMPARE(f.asked(), QStringLiteral("okx"));
}

void PriceServiceFailureTest::rateFailureAsksNobodyElse_data()
{
    QTest::addColumn<Prices>("prices");
    QTest::newRow("a gap is left") << Prices{{"BTC", "1"}};
    QTest::newRow("nothing is had") << Prices{};
}

void PriceServiceFailureTest::rateFailureAsksNobodyElse()
{
    QFETCH(Prices, prices);
    PriceServiceFixture f;
    f.rates.answer = failure(UrlLoadingError{UrlErrorCode::timedOut});
    f.client.answer(f.main, 200, Bodies::binance(prices, f.clock.now()));
    const auto result = f.fetch({btc, QStringLiteral("ETH")}, BaseCurrency::eur);
    QCOMPARE(loadingError(result).code, UrlErrorCode::timedOut);
    QCOMPARE(f.asked(), QStringLiteral("main"));
}

void PriceServiceFailureTest::rateLimitSkipsBothBinances()
{
    PriceServiceFixture f;
    f.answer(f.main, 429, "{}", {{"Retry-After", "30"}});
    f.dataHas({{"BTC", "1"}});
    f.okxHas({{"BTC", "2"}});
    QCOMPARE(f.fetch({btc})->prices.value(btc), 2.0);
    QCOMPARE(f.asked(), QStringLiteral("main okx"));
    QVERIFY(f.fetch({btc}).has_value());
    QCOMPARE(f.asked(), QStringLiteral("okx"));
    // With OKX gone, Bybit is next, then both Binances are still skipped.
    f.fail(f.okx, UrlErrorCode::timedOut);
    f.clock.advance(29.9);
    QVERIFY(!f.fetch({btc}));
    QCOMPARE(f.asked(), QStringLiteral("okx bybit"));
    f.clock.advance(0.1);
    f.dataHas({{"BTC", "1"}});
    QVERIFY(!f.fetch({btc}));
    QCOMPARE(f.asked(), QStringLiteral("okx bybit main"));
}

void PriceServiceFailureTest::rateLimitDefaults_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<double>("cooldown");
    QTest::newRow("429") << 429 << 60.0;
    QTest::newRow("418") << 418 << 60.0;
    QTest::newRow("403") << 403 << 600.0;
}

void PriceServiceFailureTest::rateLimitDefaults()
{
    QFETCH(int, status);
    QFETCH(double, cooldown);
    PriceServiceFixture f;
    f.answer(f.main, status);
    QVERIFY(!f.fetch({btc}));
    QCOMPARE(f.asked(), QStringLiteral("main okx bybit"));
    f.clock.advance(cooldown - 0.1);
    QVERIFY(!f.fetch({btc}));
    QCOMPARE(f.asked(), QStringLiteral("okx bybit"));
    f.clock.advance(0.1);
    QVERIFY(!f.fetch({btc}));
    QCOMPARE(f.asked(), QStringLiteral("main okx bybit"));
}

void PriceServiceFailureTest::otherFailuresLeaveNoMarks_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("400") << 400 << QByteArray("{}");
    QTest::newRow("503") << 503 << QByteArray("{}");
    QTest::newRow("301") << 301 << QByteArray();
    QTest::newRow("404") << 404 << QByteArray();
    QTest::newRow("nonsense") << 200 << QByteArray("<html>");
    QTest::newRow("empty body") << 200 << QByteArray();
}

void PriceServiceFailureTest::otherFailuresLeaveNoMarks()
{
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    PriceServiceFixture f;
    f.answer(f.main, status, body);
    for (int poll = 0; poll < 2; ++poll) {
        QVERIFY(!f.fetch({btc}));
        QCOMPARE(f.asked(), QStringLiteral("main data okx bybit"));
    }
}

void PriceServiceFailureTest::clockGoesBackBehindARateLimit()
{
    PriceServiceFixture f;
    f.answer(f.main, 429, "{}", {{"Retry-After", "86400"}});
    QVERIFY(!f.fetch({btc}));
    f.clock.advance(-3600);
    f.mainHas({{"BTC", "1"}});
    QVERIFY(f.fetch({btc}).has_value());
    QCOMPARE(f.asked(), QStringLiteral("main"));
}

void PriceServiceFailureTest::clockGoesForward()
{
    PriceServiceFixture f;
    f.answer(f.main, 429, "{}", {{"Retry-After", "86400"}});
    QVERIFY(!f.fetch({btc}));
    f.clock.advance(400.0 * 86400);
    f.mainHas({{"BTC", "1"}});
    QVERIFY(f.fetch({btc}).has_value());
    QCOMPARE(f.asked(), QStringLiteral("main"));
}

void PriceServiceFailureTest::logsAFailureOnce()
{
    PriceServiceFixture f;
    f.fail(f.main, UrlErrorCode::timedOut);
    f.fail(f.data, UrlErrorCode::cannotFindHost);
    f.okxHas({{"BTC", "1"}});
    const QString category = QStringLiteral("com.pelmo.tickwise.Prices");
    const LogCapture log;
    QVERIFY(f.fetch({btc}).has_value());
    QCOMPARE(log.texts(category), QStringList({QStringLiteral("binance gives no prices: timed out"),
                                               QStringLiteral("binance gives no prices: cannot find host")}));
    f.fail(f.okx, UrlErrorCode::notConnectedToInternet);
    f.fail(f.bybit, UrlErrorCode::notConnectedToInternet);
    for (int poll = 0; poll < 3; ++poll)
        QVERIFY(!f.fetch({btc}));
    QCOMPARE(log.lines().size(), std::size_t(4));
    // Another failure is news, and so is the same one after an answer.
    f.fail(f.okx, UrlErrorCode::timedOut);
    QVERIFY(!f.fetch({btc}));
    QCOMPARE(log.lines().size(), std::size_t(5));
    f.okxHas({{"BTC", "1"}});
    QVERIFY(f.fetch({btc}).has_value());
    f.fail(f.okx, UrlErrorCode::timedOut);
    QVERIFY(!f.fetch({btc}));
    QCOMPARE(log.texts(category).mid(4), QStringList({QStringLiteral("okx gives no prices: timed out"),
                                                      QStringLiteral("okx gives no prices: timed out")}));
    QCOMPARE(log.lines().front().type, QtInfoMsg);
}

TICKWISE_TEST(PriceServiceFailureTest)
#include "PriceServiceFailureTest.moc"
