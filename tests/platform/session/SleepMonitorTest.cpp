#include "platform/session/SleepMonitor.h"
#include "doubles/TestProgram.h"

#include "doubles/PrivateBus.h"

#include <QDBusMessage>
#include <QProcess>
#include <QSignalSpy>

using namespace tickwise;
using namespace tickwise::test;

namespace {

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

TICKWISE_TEST(SleepMonitorTest)
#include "SleepMonitorTest.moc"
