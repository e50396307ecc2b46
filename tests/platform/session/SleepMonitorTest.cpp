#include "platform/session/SleepMonitor.h"

#include "doubles/PrivateBus.h"
#include "doubles/TestProgram.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QElapsedTimer>
#include <QSignalSpy>

#include <algorithm>
#include <array>

#include <fcntl.h>
#include <unistd.h>

using namespace tickwise;
using namespace tickwise::test;

namespace {

/// A reader's end of a pipe that tells whether the other end is still open anywhere.
class OpenFile
{
public:
    OpenFile()
    {
        if (pipe2(m_ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
            qFatal("no pipe");
    }
    ~OpenFile()
    {
        close(m_ends[0]);
        if (m_ends[1] >= 0)
            close(m_ends[1]);
    }
    Q_DISABLE_COPY_MOVE(OpenFile)

    QDBusUnixFileDescriptor handOver()
    {
        QDBusUnixFileDescriptor descriptor(m_ends[1]); // holds a copy
        close(std::exchange(m_ends[1], -1));
        return descriptor;
    }
    bool isOpen() const
    {
        char byte = 0;
        return read(m_ends[0], &byte, 1) < 0; // 0 at the end of the file
    }

private:
    std::array<int, 2> m_ends{-1, -1};
};

/// Behaves as org.freedesktop.login1 does.
class FakeLogin : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Manager")

public:
    explicit FakeLogin(const QDBusConnection &bus)
        : m_bus(bus)
    {
        m_bus.registerObject(path(), this, QDBusConnection::ExportAllSlots);
        m_bus.registerService(QStringLiteral("org.freedesktop.login1"));
    }

    static QString path() { return QStringLiteral("/org/freedesktop/login1"); }

    void prepareForSleep(bool start, const QString &path = FakeLogin::path())
    {
        QDBusMessage signal = QDBusMessage::createSignal(path, QStringLiteral("org.freedesktop.login1.Manager"),
                                                         QStringLiteral("PrepareForSleep"));
        m_bus.send(signal << start);
    }

    std::size_t locks() const { return m_locks.size(); }
    int openLocks() const
    {
        return static_cast<int>(
            std::count_if(m_locks.begin(), m_locks.end(), [](const auto &lock) { return lock->isOpen(); }));
    }

    QStringList lastRequest;
    bool refuses = false;

public Q_SLOTS:
    QDBusUnixFileDescriptor Inhibit(const QString &what, const QString &who, const QString &why, const QString &mode,
                                    const QDBusMessage &message)
    {
        lastRequest = {what, who, why, mode};
        if (refuses) {
            message.setDelayedReply(true);
            m_bus.send(message.createErrorReply(QDBusError::AccessDenied, QStringLiteral("no")));
            return {};
        }
        m_locks.push_back(std::make_unique<OpenFile>());
        return m_locks.back()->handOver();
    }

private:
    QDBusConnection m_bus;
    std::vector<std::unique_ptr<OpenFile>> m_locks;
};

constexpr LostWakeLimits quickLimits{std::chrono::milliseconds(10), std::chrono::milliseconds(100)};
constexpr LostWakeLimits longLimits{std::chrono::milliseconds(10), std::chrono::hours(1)};

std::chrono::nanoseconds neverSuspended()
{
    return std::chrono::nanoseconds(0);
}

} // namespace

class SleepMonitorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsSleepAndWake();
    void hearsAServiceThatStartsLater();
    void hearsNobodyElse();
    void holdsADelayLockWhileAwake();
    void locksAgainWhenTheServiceReturns();
    void lockThatComesTooLateIsReleased();
    void refusedLockIsNoHindrance();
    void lostWakeIsSeenByTheClocks();
    void sleepThatDoesNotComeIsOver();
    void noWakeIsInventedBeforeTheSleep();
    void announcedWakeEndsTheChecks();
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
    QTRY_VERIFY((login.prepareForSleep(false), !didWake.isEmpty()));
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

void SleepMonitorTest::holdsADelayLockWhileAwake()
{
    PrivateBus bus;
    FakeLogin login(bus.connect());
    {
        SleepMonitor monitor(bus.connect());
        QTRY_COMPARE(login.openLocks(), 1);
        QCOMPARE(login.lastRequest.at(0), QStringLiteral("sleep"));
        QCOMPARE(login.lastRequest.at(1), QStringLiteral("Tickwise"));
        QVERIFY(!login.lastRequest.at(2).isEmpty());
        QCOMPARE(login.lastRequest.at(3), QStringLiteral("delay"));

        // It is held until everybody has handled the signal.
        int heldInSignal = 0;
        connect(&monitor, &SleepMonitor::willSleep, this, [&] { heldInSignal = login.openLocks(); });
        login.prepareForSleep(true);
        QTRY_COMPARE(heldInSignal, 1);
        QTRY_COMPARE(login.openLocks(), 0);
        QTest::qWait(50);
        QCOMPARE(login.locks(), 1U);

        login.prepareForSleep(false);
        QTRY_COMPARE(login.openLocks(), 1);
        QCOMPARE(login.locks(), 2U);
    }
    QTRY_COMPARE(login.openLocks(), 0);
}

void SleepMonitorTest::locksAgainWhenTheServiceReturns()
{
    PrivateBus bus;
    SleepMonitor monitor(bus.connect());
    for (int start = 0; start < 2; ++start) {
        QDBusConnection connection = bus.connect();
        FakeLogin login(connection);
        QTRY_COMPARE(login.openLocks(), 1);
        connection.unregisterService(QStringLiteral("org.freedesktop.login1"));
        connection.unregisterObject(FakeLogin::path());
    }
}

void SleepMonitorTest::lockThatComesTooLateIsReleased()
{
    PrivateBus bus;
    FakeLogin login(bus.connect());
    SleepMonitor monitor(bus.connect());
    QSignalSpy willSleep(&monitor, &SleepMonitor::willSleep);
    login.prepareForSleep(true); // arrives before the answer to the request
    QTRY_COMPARE(willSleep.size(), 1);
    QTRY_COMPARE(login.locks(), 1U);
    QTRY_COMPARE(login.openLocks(), 0);
}

void SleepMonitorTest::refusedLockIsNoHindrance()
{
    PrivateBus bus;
    FakeLogin login(bus.connect());
    login.refuses = true;
    SleepMonitor monitor(bus.connect());
    QTRY_VERIFY(!login.lastRequest.isEmpty());
    QSignalSpy didWake(&monitor, &SleepMonitor::didWake);
    login.prepareForSleep(true);
    login.prepareForSleep(false);
    QTRY_COMPARE(didWake.size(), 1);
    QCOMPARE(login.locks(), 0U);
}

void SleepMonitorTest::lostWakeIsSeenByTheClocks()
{
    PrivateBus bus;
    FakeLogin login(bus.connect());
    std::chrono::nanoseconds suspended = std::chrono::hours(3); // earlier sleeps
    SleepMonitor monitor(
        bus.connect(), [&suspended] { return suspended; }, longLimits);
    QTRY_COMPARE(login.openLocks(), 1);
    QSignalSpy willSleep(&monitor, &SleepMonitor::willSleep);
    QSignalSpy didWake(&monitor, &SleepMonitor::didWake);
    login.prepareForSleep(true);
    QTRY_COMPARE(willSleep.size(), 1);
    QTest::qWait(100); // ten checks
    QCOMPARE(didWake.size(), 0);
    suspended += std::chrono::hours(8);
    QTRY_COMPARE(didWake.size(), 1);
    QTRY_COMPARE(login.openLocks(), 1);
    QTest::qWait(100);
    QCOMPARE(didWake.size(), 1);
}

void SleepMonitorTest::sleepThatDoesNotComeIsOver()
{
    PrivateBus bus;
    FakeLogin login(bus.connect());
    SleepMonitor monitor(bus.connect(), neverSuspended, quickLimits);
    QSignalSpy willSleep(&monitor, &SleepMonitor::willSleep);
    QSignalSpy didWake(&monitor, &SleepMonitor::didWake);
    QElapsedTimer timer;
    qint64 asleep = 0;
    connect(&monitor, &SleepMonitor::didWake, this, [&] { asleep = timer.elapsed(); });
    for (int sleep = 1; sleep <= 2; ++sleep) {
        timer.start();
        login.prepareForSleep(true);
        QTRY_COMPARE(didWake.size(), sleep);
        QCOMPARE(willSleep.size(), sleep);
        QVERIFY2(asleep >= 80, qPrintable(QString::number(asleep)));
        QTRY_COMPARE(login.openLocks(), 1);
    }
}

void SleepMonitorTest::noWakeIsInventedBeforeTheSleep()
{
    PrivateBus bus;
    FakeLogin login(bus.connect());
    SleepMonitor monitor(bus.connect(), neverSuspended, quickLimits);
    QSignalSpy didWake(&monitor, &SleepMonitor::didWake);
    QTest::qWait(200); // twice the longest delay
    QCOMPARE(didWake.size(), 0);
}

void SleepMonitorTest::announcedWakeEndsTheChecks()
{
    PrivateBus bus;
    FakeLogin login(bus.connect());
    SleepMonitor monitor(bus.connect(), neverSuspended, {std::chrono::milliseconds(10), std::chrono::seconds(1)});
    QSignalSpy didWake(&monitor, &SleepMonitor::didWake);
    login.prepareForSleep(true);
    login.prepareForSleep(false);
    QTRY_COMPARE(didWake.size(), 1);
    QTest::qWait(1200); // longer than the longest delay
    QCOMPARE(didWake.size(), 1);
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
