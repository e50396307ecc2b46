#include "ui/updates/ReminderRules.h"
#include "doubles/TestProgram.h"

using namespace tickwise;

class ReminderRulesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void supportsGentleReminders();
    void showsAScheduledUpdateOnlyInFocus();
    void becomesReminder_data();
    void becomesReminder();
};

void ReminderRulesTest::supportsGentleReminders()
{
    QCOMPARE(supportsGentleScheduledUpdateReminders, true);
}

void ReminderRulesTest::showsAScheduledUpdateOnlyInFocus()
{
    QCOMPARE(shouldHandleShowingScheduledUpdate(true), true);
    QCOMPARE(shouldHandleShowingScheduledUpdate(false), false);
}

void ReminderRulesTest::becomesReminder_data()
{
    QTest::addColumn<bool>("handles");
    QTest::addColumn<bool>("userInitiated");
    QTest::addColumn<bool>("expected");
    QTest::newRow("scheduled and not shown") << false << false << true;
    QTest::newRow("scheduled and shown") << true << false << false;
    QTest::newRow("user-initiated, even if not shown") << false << true << false;
    QTest::newRow("user-initiated and shown") << true << true << false;
}

void ReminderRulesTest::becomesReminder()
{
    QFETCH(bool, handles);
    QFETCH(bool, userInitiated);
    QFETCH(bool, expected);
    QCOMPARE(tickwise::becomesReminder(handles, userInitiated), expected);
}

TICKWISE_TEST(ReminderRulesTest)
#include "ReminderRulesTest.moc"
