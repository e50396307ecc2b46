#include "platform/session/TerminationSignals.h"

#include "doubles/TestProgram.h"

#include <QSignalSpy>

#include <csignal>

using namespace tickwise;

class TerminationSignalsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void arrivesFromTheEventLoop_data();
    void arrivesFromTheEventLoop();
    void handlersGoWithTheObject();
};

void TerminationSignalsTest::arrivesFromTheEventLoop_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void TerminationSignalsTest::arrivesFromTheEventLoop()
{
    QFETCH(int, number);
    const TerminationSignals signalsOfProcess;
    QSignalSpy received(&signalsOfProcess, &TerminationSignals::received);
    std::raise(number);
    QCOMPARE(received.count(), 0);
    QTRY_COMPARE(received.count(), 1);
    QCOMPARE(received.front().front().toInt(), number);
}

void TerminationSignalsTest::handlersGoWithTheObject()
{
    {
        const TerminationSignals signalsOfProcess;
    }
    struct sigaction current = {};
    QCOMPARE(sigaction(SIGTERM, nullptr, &current), 0);
    QVERIFY(current.sa_handler == SIG_DFL);
}

TICKWISE_TEST(TerminationSignalsTest)
#include "TerminationSignalsTest.moc"
