#include "market/ProviderHealth.h"
#include "support/TestClock.h"

#include <QTest>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const auto okx = QStringLiteral("okx");
const auto bybit = QStringLiteral("bybit");
const auto xyz = QStringLiteral("XYZ");
const auto btc = QStringLiteral("BTC");

} // namespace

class ProviderHealthTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsWithEverythingAllowed();
    void rateLimit_data();
    void rateLimit();
    void rateLimitTellsWhyAndUntilWhen();
    void aLaterLimitReplacesAnEarlierOne();
    void lackingSymbolsAreLeftOut();
    void anAnswerClearsTheMark();
    void clockGoesBack();
    void anEndlessRetryAfter();
};

void ProviderHealthTest::startsWithEverythingAllowed()
{
    const ProviderHealth health;
    QCOMPARE(health.preferredProviderIndex, std::size_t(0));
    QVERIFY(!health.rateLimit(okx, TestClock().now()));
    QCOMPARE(health.available(okx, {btc, xyz}, TestClock().now()), QStringList({btc, xyz}));
}

void ProviderHealthTest::rateLimit_data()
{
    QTest::addColumn<double>("retryAfter"); // -1: none
    QTest::addColumn<double>("elapsed");
    QTest::addColumn<bool>("limited");
    QTest::newRow("at once") << 30.0 << 0.0 << true;
    QTest::newRow("just before its end") << 30.0 << 29.999 << true;
    QTest::newRow("at its end") << 30.0 << 30.0 << false;
    QTest::newRow("default, before") << -1.0 << 59.999 << true;
    QTest::newRow("default, at its end") << -1.0 << 60.0 << false;
    QTest::newRow("fraction") << 0.5 << 0.5 << false;
}

void ProviderHealthTest::rateLimit()
{
    QFETCH(double, retryAfter);
    QFETCH(double, elapsed);
    TestClock clock;
    ProviderHealth health;
    health.noteRateLimit(okx, retryAfter < 0 ? std::nullopt : std::optional(retryAfter), FailureReason::rateLimited,
                         clock.now());
    clock.advance(elapsed);
    QTEST(health.rateLimit(okx, clock.now()).has_value(), "limited");
    QVERIFY(!health.rateLimit(bybit, clock.now()));
}

void ProviderHealthTest::rateLimitTellsWhyAndUntilWhen()
{
    TestClock clock;
    ProviderHealth health;
    health.noteRateLimit(bybit, 600.0, FailureReason::regionBlocked, clock.now());
    const auto limit = health.rateLimit(bybit, clock.now());
    QVERIFY(limit == (ProviderFailure{bybit, FailureReason::regionBlocked, clock.now() + secondsDuration(600)}));
}

void ProviderHealthTest::aLaterLimitReplacesAnEarlierOne()
{
    TestClock clock;
    ProviderHealth health;
    health.noteRateLimit(okx, 600.0, FailureReason::rateLimited, clock.now());
    health.noteRateLimit(okx, 10.0, FailureReason::rateLimited, clock.now());
    clock.advance(10);
    QVERIFY(!health.rateLimit(okx, clock.now()));
}

void ProviderHealthTest::lackingSymbolsAreLeftOut()
{
    TestClock clock;
    ProviderHealth health;
    health.noteAnswer(
        okx, {btc, xyz}, [](const QString &symbol) { return symbol == btc; }, clock.now());
    QCOMPARE(health.available(okx, {btc, xyz}, clock.now()), QStringList{btc});
    QCOMPARE(health.available(bybit, {btc, xyz}, clock.now()), QStringList({btc, xyz}));
    clock.advance(1799.999);
    QCOMPARE(health.available(okx, {btc, xyz}, clock.now()), QStringList{btc});
    clock.advance(0.001);
    QCOMPARE(health.available(okx, {btc, xyz}, clock.now()), QStringList({btc, xyz}));
}

void ProviderHealthTest::anAnswerClearsTheMark()
{
    TestClock clock;
    ProviderHealth health;
    const auto none = [](const QString &) { return false; };
    const auto all = [](const QString &) { return true; };
    health.noteAnswer(okx, {btc, xyz}, none, clock.now());
    health.noteAnswer(okx, {xyz}, all, clock.now());
    QCOMPARE(health.available(okx, {btc, xyz}, clock.now()), QStringList{xyz});
}

void ProviderHealthTest::clockGoesBack()
{
    TestClock clock;
    ProviderHealth health;
    health.noteRateLimit(okx, 30.0, FailureReason::rateLimited, clock.now());
    health.noteAnswer(
        okx, {xyz}, [](const QString &) { return false; }, clock.now());
    clock.advance(-1);
    QVERIFY(!health.rateLimit(okx, clock.now()));
    QCOMPARE(health.available(okx, {xyz}, clock.now()), QStringList{xyz});
}

void ProviderHealthTest::anEndlessRetryAfter()
{
    TestClock clock;
    ProviderHealth health;
    health.noteRateLimit(okx, 1e300, FailureReason::rateLimited, clock.now());
    clock.advance(10.0 * 365 * 86400);
    QVERIFY(health.rateLimit(okx, clock.now()).has_value());
}

QTEST_GUILESS_MAIN(ProviderHealthTest)
#include "ProviderHealthTest.moc"
