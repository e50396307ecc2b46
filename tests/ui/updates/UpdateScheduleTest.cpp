#include "ui/updates/UpdateSchedule.h"

#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"

using namespace tickwise;
using namespace tickwise::test;
using namespace std::chrono_literals;

namespace {

constexpr double secondsPerDay = 86400;

} // namespace

class UpdateScheduleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void timeToNextCheck_data();
    void timeToNextCheck();
    void isDueFromTheEventLoop();
    void wakesOnceADay();
    void waitsOnWhenTheClockWentBack();
    void neverFiresEarly();
    void stops();
};

void UpdateScheduleTest::timeToNextCheck_data()
{
    QTest::addColumn<double>("secondsAgo");
    QTest::addColumn<qint64>("milliseconds");
    QTest::newRow("just now") << 0.0 << qint64(86400000);
    QTest::newRow("an hour ago") << 3600.0 << qint64(82800000);
    QTest::newRow("a bit less than a day ago") << secondsPerDay - 0.0005 << qint64(1);
    QTest::newRow("a day ago") << secondsPerDay << qint64(0);
    QTest::newRow("a year ago") << 365 * secondsPerDay << qint64(0);
    QTest::newRow("in the future") << -1.0 << qint64(0);
    QTest::newRow("years in the future") << -3650 * secondsPerDay << qint64(0);
}

void UpdateScheduleTest::timeToNextCheck()
{
    QFETCH(double, secondsAgo);
    QFETCH(qint64, milliseconds);
    const TimePoint now = TestClock().now();
    QCOMPARE(qint64(tickwise::timeToNextCheck(now - secondsDuration(secondsAgo), now).count()), milliseconds);
    QCOMPARE(qint64(tickwise::timeToNextCheck(std::nullopt, now).count()), qint64(0));
}

void UpdateScheduleTest::isDueFromTheEventLoop()
{
    TestClock clock;
    int due = 0;
    UpdateSchedule schedule(clock.clock(), [&] { ++due; });
    QVERIFY(!schedule.isActive());
    schedule.start(std::nullopt);
    QCOMPARE(due, 0);
    QTRY_COMPARE(due, 1);
    QVERIFY(!schedule.isActive());
}

void UpdateScheduleTest::wakesOnceADay()
{
    TestClock clock;
    UpdateSchedule schedule(clock.clock(), [] {});
    schedule.start(clock.now());
    QVERIFY(schedule.isActive());
    QVERIFY(schedule.interval() == 24h + 1s);
    schedule.start(clock.now() - 23h);
    QVERIFY(schedule.interval() == 1h + 1s);
}

void UpdateScheduleTest::waitsOnWhenTheClockWentBack()
{
    TestClock clock;
    int due = 0;
    UpdateSchedule schedule(clock.clock(), [&] { ++due; });
    schedule.start(clock.now() - 24h + 50ms);
    clock.advance(-3600);
    QTRY_VERIFY(schedule.interval() > 59min);
    QVERIFY(schedule.isActive());
    QCOMPARE(due, 0);
}

void UpdateScheduleTest::neverFiresEarly()
{
    TestClock clock;
    UpdateSchedule schedule(clock.clock(), [] {});
    schedule.start(clock.now() - 24h + 1ms);
    QVERIFY(schedule.interval() >= 1s);
}

void UpdateScheduleTest::stops()
{
    TestClock clock;
    int due = 0;
    UpdateSchedule schedule(clock.clock(), [&] { ++due; });
    schedule.start(std::nullopt);
    schedule.stop();
    QVERIFY(!schedule.isActive());
    QCoreApplication::processEvents();
    QCOMPARE(due, 0);
}

TICKWISE_TEST(UpdateScheduleTest)
#include "UpdateScheduleTest.moc"
