#include "support/SuspendedTime.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

class SuspendedTimeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void standsStillWhileTheMachineRuns();
    void sleepIsALongerTimeThanTwoReadings();
};

void SuspendedTimeTest::standsStillWhileTheMachineRuns()
{
    const std::chrono::nanoseconds before = systemSuspendedTime();
    QVERIFY(before > -std::chrono::milliseconds(100));
    QTest::qWait(250);
    QVERIFY(!hasSlept(before, systemSuspendedTime()));
}

void SuspendedTimeTest::sleepIsALongerTimeThanTwoReadings()
{
    using std::chrono::milliseconds;
    const std::chrono::nanoseconds earlierSleeps = std::chrono::hours(5);
    QVERIFY(!hasSlept(earlierSleeps, earlierSleeps));
    QVERIFY(!hasSlept(earlierSleeps, earlierSleeps + milliseconds(100)));
    QVERIFY(!hasSlept(earlierSleeps, earlierSleeps - std::chrono::hours(1)));
    QVERIFY(hasSlept(earlierSleeps, earlierSleeps + milliseconds(101)));
}

TICKWISE_TEST(SuspendedTimeTest)
#include "SuspendedTimeTest.moc"
