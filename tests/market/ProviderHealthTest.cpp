#include "market/ProviderHealth.h"

#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"
#include "market/Symbols.h"

using namespace tickwise;
using namespace tickwise::test;

namespace {

const auto okxMark = QStringLiteral("okx");
const auto bybitMark = QStringLiteral("bybit");
const auto abc = QStringLiteral("ABC");
const QStringList both{abc, xyz};

} // namespace

class ProviderHealthTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void startsWithTheFirstProviderAndNoMarks();
    void rateLimitLasts_data();
    void rateLimitLasts();
    void rateLimitIsOfOneProvider();
    void laterRateLimitReplacesTheEarlier();
    void rateLimitEndsWhenTheClockGoesBack();
    void rateLimitEndsWhenTheClockJumpsAhead();
    void endlessRateLimitIsBounded();
    void lackedSymbolIsLeftOut();
    void markLasts_data();
    void markLasts();
    void markIsOfOneProvider();
    void deliveredSymbolLosesItsMark();
    void anotherMissRenewsTheMark();
    void symbolsNotAskedKeepTheirMarks();
    void markEndsWhenTheClockGoesBack();
    void orderIsKept();

private:
    void noteLacks(const QString &provider, const QStringList &asked, const QStringList &had = {})
    {
        m_health.noteAnswer(
            provider, asked, [&](const QString &symbol) { return had.contains(symbol); }, m_clock.now());
    }
    bool isLimited(const QString &provider) const { return m_health.rateLimit(provider, m_clock.now()).has_value(); }
    QStringList available(const QString &provider, const QStringList &symbols = both) const
    {
        return m_health.available(provider, symbols, m_clock.now());
    }

    test::TestClock m_clock;
    ProviderHealth m_health;
};

void ProviderHealthTest::init()
{
    m_clock.set(test::TestClock().now());
    m_health = {};
}

void ProviderHealthTest::startsWithTheFirstProviderAndNoMarks()
{
    QCOMPARE(m_health.preferredProviderIndex, 0U);
    QVERIFY(!isLimited(okxMark));
    QCOMPARE(available(okxMark), both);
}

void ProviderHealthTest::rateLimitLasts_data()
{
    QTest::addColumn<std::optional<double>>("retryAfter");
    QTest::addColumn<double>("seconds");
    QTest::newRow("30 s") << std::optional(30.0) << 30.0;
    QTest::newRow("half a second") << std::optional(0.5) << 0.5;
    QTest::newRow("not told") << std::optional<double>() << 60.0;
    QTest::newRow("600 s") << std::optional(600.0) << 600.0;
}

void ProviderHealthTest::rateLimitLasts()
{
    QFETCH(std::optional<double>, retryAfter);
    QFETCH(double, seconds);
    const TimePoint start = m_clock.now();
    m_health.noteRateLimit(okxMark, retryAfter, FailureReason::rateLimited, start);
    const TimePoint end = start + secondsDuration(seconds);
    QCOMPARE(m_health.rateLimit(okxMark, start).value_or(ProviderFailure{}).until, end);
    m_clock.set(end - std::chrono::milliseconds(1));
    QCOMPARE(m_health.rateLimit(okxMark, m_clock.now()).value_or(ProviderFailure{}).until, end);
    m_clock.set(end);
    QVERIFY(!isLimited(okxMark));
}

void ProviderHealthTest::rateLimitIsOfOneProvider()
{
    m_health.noteRateLimit(okxMark, 30.0, FailureReason::rateLimited, m_clock.now());
    QVERIFY(isLimited(okxMark));
    QVERIFY(!isLimited(bybitMark));
}

void ProviderHealthTest::laterRateLimitReplacesTheEarlier()
{
    m_health.noteRateLimit(okxMark, 600.0, FailureReason::rateLimited, m_clock.now());
    m_clock.advance(10);
    m_health.noteRateLimit(okxMark, 5.0, FailureReason::rateLimited, m_clock.now());
    m_clock.advance(5);
    QVERIFY(!isLimited(okxMark));
}

void ProviderHealthTest::rateLimitEndsWhenTheClockGoesBack()
{
    m_health.noteRateLimit(okxMark, 30.0, FailureReason::rateLimited, m_clock.now());
    m_clock.advance(-1);
    QVERIFY(!isLimited(okxMark));
    m_clock.advance(-86400 * 365);
    QVERIFY(!isLimited(okxMark));
}

void ProviderHealthTest::rateLimitEndsWhenTheClockJumpsAhead()
{
    m_health.noteRateLimit(okxMark, 600.0, FailureReason::rateLimited, m_clock.now());
    m_clock.advance(86400);
    QVERIFY(!isLimited(okxMark));
}

void ProviderHealthTest::endlessRateLimitIsBounded()
{
    m_health.noteRateLimit(okxMark, 1e300, FailureReason::rateLimited, m_clock.now());
    const auto until = m_health.rateLimit(okxMark, m_clock.now()).value_or(ProviderFailure{}).until;
    QVERIFY(until && *until > m_clock.now());
}

void ProviderHealthTest::lackedSymbolIsLeftOut()
{
    noteLacks(okxMark, both, {abc});
    QCOMPARE(available(okxMark), QStringList{abc});
    QCOMPARE(available(okxMark, {xyz}), QStringList());
}

void ProviderHealthTest::markLasts_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<bool>("holds");
    QTest::newRow("at once") << 0.0 << true;
    QTest::newRow("1799.999 s") << 1799.999 << true;
    QTest::newRow("1800 s") << 1800.0 << false;
    QTest::newRow("a day") << 86400.0 << false;
}

void ProviderHealthTest::markLasts()
{
    QFETCH(double, seconds);
    QFETCH(bool, holds);
    noteLacks(okxMark, {xyz});
    m_clock.advance(seconds);
    QCOMPARE(available(okxMark, {xyz}).isEmpty(), holds);
}

void ProviderHealthTest::markIsOfOneProvider()
{
    noteLacks(okxMark, both);
    QCOMPARE(available(bybitMark), both);
}

void ProviderHealthTest::deliveredSymbolLosesItsMark()
{
    noteLacks(okxMark, {xyz});
    noteLacks(okxMark, {xyz}, {xyz});
    QCOMPARE(available(okxMark), both);
}

void ProviderHealthTest::anotherMissRenewsTheMark()
{
    noteLacks(okxMark, {xyz});
    m_clock.advance(1800);
    noteLacks(okxMark, {xyz});
    m_clock.advance(1799);
    QCOMPARE(available(okxMark), QStringList{abc});
}

void ProviderHealthTest::symbolsNotAskedKeepTheirMarks()
{
    noteLacks(okxMark, {xyz});
    noteLacks(okxMark, {abc}, both);
    QCOMPARE(available(okxMark), QStringList{abc});
}

void ProviderHealthTest::markEndsWhenTheClockGoesBack()
{
    noteLacks(okxMark, {xyz});
    m_clock.advance(-1);
    QCOMPARE(available(okxMark), both);
}

void ProviderHealthTest::orderIsKept()
{
    const QStringList symbols{xyz, abc, QStringLiteral("B")};
    QCOMPARE(available(okxMark, symbols), symbols);
}

TICKWISE_TEST(ProviderHealthTest)
#include "ProviderHealthTest.moc"
