#include "platform/SleepMonitor.h"

#include "support/PrivateBus.h"

#include <QDBusMessage>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>

using namespace tickwise;
using namespace tickwise::test;

namespace {

using Reachability = QNetworkInformation::Reachability;

/// Speaks as org.freedesktop.login1 does.
class FakeLogin
{
public:
    explicit FakeLogin(const QDBusConnection &bus)
        : m_bus(bus)
    {
        m_bus.registerService(QStringLiteral("org.freedesktop.login1"));
    }

    void prepareForSleep(bool start, const QString &path = QStringLiteral("/org/freedesktop/login1"))
    {
        QDBusMessage signal = QDBusMessage::createSignal(path, QStringLiteral("org.freedesktop.login1.Manager"),
                                                         QStringLiteral("PrepareForSleep"));
        m_bus.send(signal << start);
    }

private:
    QDBusConnection m_bus;
};

} // namespace

class SleepMonitorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsSleepAndWake();
    void hearsAServiceThatStartsLater();
    void hearsNobodyElse();
    void quietWithoutASystemBus();
    void networkReturns_data();
    void networkReturns();
    void networkReturnsFromTheSystem();
};

void SleepMonitorTest::tellsSleepAndWake()
{
    PrivateBus bus;
    FakeLogin login(bus.connect());
    SleepMonitor monitor(bus.connect());
    QSignalSpy willSleep(&monitor, &SleepMonitor::willSleep);
    QSignalSpy didWake(&monitor, &SleepMonitor::didWake);
    login.prepareForSleep(true);
    QTRY_COMPARE(willSleep.size(), 1);
    QCOMPARE(didWake.size(), 0);
    login.prepareForSleep(false);
    QTRY_COMPARE(didWake.size(), 1);
    QCOMPARE(willSleep.size(), 1);
}

void SleepMonitorTest::hearsAServiceThatStartsLater()
{
    PrivateBus bus;
    SleepMonitor monitor(bus.connect());
    QSignalSpy didWake(&monitor, &SleepMonitor::didWake);
    FakeLogin login(bus.connect());
    QTRY_VERIFY((login.prepareForSleep(false), didWake.size() > 0));
}

void SleepMonitorTest::hearsNobodyElse()
{
    PrivateBus bus;
    FakeLogin login(bus.connect());
    SleepMonitor monitor(bus.connect());
    QSignalSpy willSleep(&monitor, &SleepMonitor::willSleep);
    QSignalSpy didWake(&monitor, &SleepMonitor::didWake);
    login.prepareForSleep(true, QStringLiteral("/somewhere/else"));
    QDBusMessage stranger =
        QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/login1"),
                                   QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("PrepareForSleep"));
    bus.connect().send(stranger << true);
    login.prepareForSleep(false);
    QTRY_COMPARE(didWake.size(), 1);
    QCOMPARE(willSleep.size(), 0);
}

void SleepMonitorTest::quietWithoutASystemBus()
{
    SleepMonitor monitor(QDBusConnection(QStringLiteral("not connected")));
    QSignalSpy willSleep(&monitor, &SleepMonitor::willSleep);
    QSignalSpy didWake(&monitor, &SleepMonitor::didWake);
    QCoreApplication::processEvents();
    QCOMPARE(willSleep.size() + didWake.size(), 0);
}

void SleepMonitorTest::networkReturns_data()
{
    QTest::addColumn<QList<int>>("states");
    QTest::addColumn<int>("returns");
    const int unknown = static_cast<int>(Reachability::Unknown);
    const int disconnected = static_cast<int>(Reachability::Disconnected);
    const int site = static_cast<int>(Reachability::Site);
    const int online = static_cast<int>(Reachability::Online);
    QTest::newRow("off and on") << QList<int>{online, disconnected, online} << 2;
    QTest::newRow("on and on") << QList<int>{online, online} << 1;
    QTest::newRow("off") << QList<int>{disconnected} << 0;
    QTest::newRow("half on") << QList<int>{disconnected, site} << 0;
    QTest::newRow("half on, then on") << QList<int>{site, online} << 1;
    QTest::newRow("unknown") << QList<int>{online, unknown, unknown} << 1;
}

void SleepMonitorTest::networkReturns()
{
    QFETCH(QList<int>, states);
    QFETCH(int, returns);
    SleepMonitor monitor(QDBusConnection(QStringLiteral("not connected")));
    QSignalSpy returned(&monitor, &SleepMonitor::networkReturned);
    for (const int state : states)
        monitor.noteReachability(static_cast<Reachability>(state));
    QCOMPARE(returned.size(), returns);
}

void SleepMonitorTest::networkReturnsFromTheSystem()
{
    SleepMonitor monitor(QDBusConnection(QStringLiteral("not connected")));
    QVERIFY(monitor.watchNetwork());
    const QNetworkInformation *const network = QNetworkInformation::instance();
    QVERIFY(network != nullptr);
    monitor.noteReachability(Reachability::Disconnected);
    QSignalSpy returned(&monitor, &SleepMonitor::networkReturned);
    Q_EMIT const_cast<QNetworkInformation *>(network)->reachabilityChanged(Reachability::Online);
    QCOMPARE(returned.size(), 1);
}

QTEST_GUILESS_MAIN(SleepMonitorTest)
#include "SleepMonitorTest.moc"
