#include "platform/session/SingleInstance.h"

#include "doubles/PrivateBus.h"
#include "doubles/TestProgram.h"
#include "platform/dbus/SessionBus.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingReply>
#include <QDBusReply>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <csignal>
#include <sys/stat.h>
#include <unistd.h>

using namespace tickwise;
using namespace tickwise::test;

namespace {

QString applicationId()
{
    return QStringLiteral("com.pelmo.tickwise.test");
}

QString objectPath()
{
    return QStringLiteral("/com/pelmo/tickwise/test");
}

QString nowhere()
{
    return QStringLiteral("unix:path=/nonexistent/bus");
}

/// A copy of the application in a process of its own.
class Copy : public QProcess
{
public:
    Copy(const QString &busAddress, const QString &lockDirectory, const QStringList &arguments = {},
         const QString &token = QString())
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), busAddress);
        environment.insert(QStringLiteral("XDG_ACTIVATION_TOKEN"), token);
        setProcessEnvironment(environment);
        start(QStringLiteral(SINGLE_INSTANCE_HELPER), QStringList{applicationId(), lockDirectory} + arguments);
    }

    ~Copy() override
    {
        closeWriteChannel();
        waitForFinished(5000);
    }

    QString nextLine()
    {
        while (!canReadLine()) {
            if (!waitForReadyRead(10000))
                return QStringLiteral("nothing: ") + QString::fromUtf8(readAllStandardError());
        }
        return QString::fromUtf8(readLine()).trimmed();
    }
};

QDBusMessage applicationCall(const QString &method)
{
    return QDBusMessage::createMethodCall(applicationId(), objectPath(), QStringLiteral("org.freedesktop.Application"),
                                          method);
}

} // namespace

class SingleInstanceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLaunchersCallsBecomeSignals();
    void addressesArriveAsTheyWereWritten();
    void callsThatTheBusHeldBackArrive();
    void secondCopyQuitsAtOnce();
    void secondCopyHandsItsAddressesOver();
    void twoApplicationsDoNotMeet();
    void theNameIsFreeAfterTheFirstCopy();
    void hangingFirstCopyDoesNotHangTheSecond();
    void busThatGoesAndReturns();
    void busThatStartsLater();
    void nameThatIsHeldForAMomentIsWaitedFor();
    void copiesOnTwoBusesMeetAtTheLock();
    void copyWithABusMeetsOneWithout();
    void secondCopyQuitsWithoutABus();
    void lockOfAKilledCopyIsNoHindrance();
    void lockFileOfRubbishIsNoHindrance();
    void noPlaceForALockFile();
    void lockDirectoryIsTheRuntimeDirectory();
    void lockDirectoryOfThisUserAlone();
    void lockDirectoryThatAnotherUserMayEnter();

private:
    QTemporaryDir m_locks;
};

void SingleInstanceTest::aLaunchersCallsBecomeSignals()
{
    PrivateBus bus;
    SessionBus sessionBus(bus.address());
    SingleInstance instance(applicationId(), sessionBus, m_locks.path());
    QCOMPARE(instance.claim({}, {}), SingleInstance::Role::first);
    QSignalSpy activated(&instance, &SingleInstance::activated);
    QSignalSpy opened(&instance, &SingleInstance::urlsOpened);
    const QDBusConnection launcher = bus.connect();

    const QVariantMap token{{QStringLiteral("activation-token"), QStringLiteral("t1")}};
    launcher.send(applicationCall(QStringLiteral("Activate")) << token);
    QTRY_COMPARE(activated.size(), 1);
    QCOMPARE(activated.at(0).at(0).toString(), QStringLiteral("t1"));

    const QVariantMap startupId{{QStringLiteral("desktop-startup-id"), QStringLiteral("s1")}};
    launcher.send(applicationCall(QStringLiteral("Open"))
                  << QStringList{QStringLiteral("tickwise://popover")} << startupId);
    QTRY_COMPARE(opened.size(), 1);
    QCOMPARE(opened.at(0).at(0).toStringList(), QStringList{QStringLiteral("tickwise://popover")});
    QCOMPARE(opened.at(0).at(1).toString(), QStringLiteral("s1"));

    QSignalSpy actions(&instance, &SingleInstance::actionActivated);
    launcher.send(applicationCall(QStringLiteral("ActivateAction"))
                  << QStringLiteral("watchlist") << QVariantList{} << token);
    QTRY_COMPARE(actions.size(), 1);
    QCOMPARE(actions.at(0).at(0).toString(), QStringLiteral("watchlist"));
    QCOMPARE(actions.at(0).at(1).toString(), QStringLiteral("t1"));
    QCOMPARE(activated.size(), 1);
}

void SingleInstanceTest::addressesArriveAsTheyWereWritten()
{
    PrivateBus bus;
    Copy first(bus.address(), m_locks.path());
    QCOMPARE(first.nextLine(), QStringLiteral("first"));
    const QStringList addresses{QStringLiteral("TICKWISE://Popover?q=%20x"), QStringLiteral("http://[broken")};
    bus.connect().send(applicationCall(QStringLiteral("Open")) << addresses << QVariantMap{});
    QCOMPARE(first.nextLine(), QStringLiteral("opened TICKWISE://Popover?q=%20x http://[broken"));
    Copy second(bus.address(), m_locks.path(), addresses);
    QCOMPARE(second.nextLine(), QStringLiteral("alreadyRunning"));
    QCOMPARE(first.nextLine(), QStringLiteral("opened TICKWISE://Popover?q=%20x http://[broken"));
}

void SingleInstanceTest::callsThatTheBusHeldBackArrive()
{
    PrivateBus bus;
    const QTemporaryDir locks; // nobody waits for the end of the program that the bus starts
    const QString command = QStringLiteral(SINGLE_INSTANCE_HELPER " %1 %2 --once").arg(applicationId(), locks.path());
    bus.addActivation(applicationId(),
                      QStringLiteral("/usr/bin/env DBUS_SESSION_BUS_ADDRESS=%1 %2").arg(bus.address(), command));
    // The bus starts the application for this call and hands it over together with the name.
    const QDBusMessage reply = bus.connect().call(
        applicationCall(QStringLiteral("Open")) << QStringList{QStringLiteral("tickwise://popover")} << QVariantMap{});
    QCOMPARE(reply.errorMessage(), QString());
    QCOMPARE(static_cast<int>(reply.type()), static_cast<int>(QDBusMessage::ReplyMessage));
}

void SingleInstanceTest::secondCopyQuitsAtOnce()
{
    PrivateBus bus;
    Copy first(bus.address(), m_locks.path());
    QCOMPARE(first.nextLine(), QStringLiteral("first"));
    Copy second(bus.address(), m_locks.path(), {}, QStringLiteral("token"));
    QCOMPARE(second.nextLine(), QStringLiteral("alreadyRunning"));
    QVERIFY(second.waitForFinished(5000));
    QCOMPARE(first.nextLine(), QStringLiteral("activated token"));
    QCOMPARE(first.state(), QProcess::Running);
}

void SingleInstanceTest::secondCopyHandsItsAddressesOver()
{
    PrivateBus bus;
    Copy first(bus.address(), m_locks.path());
    QCOMPARE(first.nextLine(), QStringLiteral("first"));
    Copy second(bus.address(), m_locks.path(), {QStringLiteral("tickwise://popover")}, QStringLiteral("token"));
    QCOMPARE(second.nextLine(), QStringLiteral("alreadyRunning"));
    QCOMPARE(first.nextLine(), QStringLiteral("opened tickwise://popover token"));
}

void SingleInstanceTest::twoApplicationsDoNotMeet()
{
    PrivateBus bus;
    SessionBus sessionBus(bus.address());
    SessionBus otherSessionBus(bus.address());
    SingleInstance one(applicationId(), sessionBus, m_locks.path());
    SingleInstance other(QStringLiteral("com.pelmo.tickwise.other"), otherSessionBus, m_locks.path());
    QCOMPARE(one.claim({}, {}), SingleInstance::Role::first);
    QCOMPARE(other.claim({}, {}), SingleInstance::Role::first);
}

void SingleInstanceTest::theNameIsFreeAfterTheFirstCopy()
{
    PrivateBus bus;
    {
        Copy first(bus.address(), m_locks.path());
        QCOMPARE(first.nextLine(), QStringLiteral("first"));
    }
    Copy next(bus.address(), m_locks.path());
    QCOMPARE(next.nextLine(), QStringLiteral("first"));
}

void SingleInstanceTest::hangingFirstCopyDoesNotHangTheSecond()
{
    PrivateBus bus;
    Copy first(bus.address(), m_locks.path(), {QStringLiteral("--hang")});
    QCOMPARE(first.nextLine(), QStringLiteral("first"));
    // A stopped process is the worst case: nothing of it answers.
    ::kill(static_cast<pid_t>(first.processId()), SIGSTOP);
    Copy second(bus.address(), m_locks.path());
    QElapsedTimer timer;
    timer.start();
    const QString role = second.nextLine();
    const qint64 elapsed = timer.elapsed();
    ::kill(static_cast<pid_t>(first.processId()), SIGCONT);
    QCOMPARE(role, QStringLiteral("alreadyRunning"));
    QVERIFY2(elapsed < 8000, "the second copy waited for the first");
}

void SingleInstanceTest::busThatGoesAndReturns()
{
    PrivateBus bus;
    Copy first(bus.address(), m_locks.path());
    QCOMPARE(first.nextLine(), QStringLiteral("first"));
    for (int time = 0; time < 2; ++time) {
        bus.stop();
        bus.start();
        // It lost its connection, not its life: two copies would write the same settings.
        Copy early(bus.address(), m_locks.path());
        QCOMPARE(early.nextLine(), QStringLiteral("alreadyRunning"));
        QVERIFY(early.waitForFinished(5000));
        const QDBusConnection observer = bus.connect();
        QTRY_VERIFY(observer.interface()->isServiceRegistered(applicationId()));
        first.readAll(); // the early copy may have reached it or not
        Copy second(bus.address(), m_locks.path(), {}, QStringLiteral("token"));
        QCOMPARE(second.nextLine(), QStringLiteral("alreadyRunning"));
        QString line = first.nextLine();
        if (line == QStringLiteral("activated"))
            line = first.nextLine();
        QCOMPARE(line, QStringLiteral("activated token"));
    }
    QCOMPARE(first.state(), QProcess::Running);
    first.closeWriteChannel();
    QVERIFY(first.waitForFinished(5000));
    QCOMPARE(first.exitStatus(), QProcess::NormalExit);
    QCOMPARE(first.exitCode(), 0);
}

void SingleInstanceTest::busThatStartsLater()
{
    PrivateBus bus;
    bus.stop();
    Copy first(bus.address(), m_locks.path());
    QCOMPARE(first.nextLine(), QStringLiteral("first"));
    bus.start();
    const QDBusConnection observer = bus.connect();
    QTRY_VERIFY(observer.interface()->isServiceRegistered(applicationId()));
    observer.send(applicationCall(QStringLiteral("Activate"))
                  << QVariantMap{{QStringLiteral("activation-token"), QStringLiteral("t1")}});
    QCOMPARE(first.nextLine(), QStringLiteral("activated t1"));
}

void SingleInstanceTest::nameThatIsHeldForAMomentIsWaitedFor()
{
    PrivateBus bus;
    bus.stop();
    SessionBus sessionBus(bus.address());
    SingleInstance instance(applicationId(), sessionBus, m_locks.path());
    QCOMPARE(instance.claim({}, {}), SingleInstance::Role::first);
    // Nothing reconnects before the event loop runs.
    bus.start();
    QDBusConnection holder = bus.connect();
    QVERIFY(holder.registerService(applicationId()));
    const auto queueLength = [&] {
        const QDBusMessage question =
            QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
                                           QStringLiteral("org.freedesktop.DBus"), QStringLiteral("ListQueuedOwners"));
        return QDBusReply<QStringList>(holder.call(QDBusMessage(question) << applicationId())).value().size();
    };
    QTRY_COMPARE(queueLength(), 2);
    QVERIFY(holder.unregisterService(applicationId()));
    QTRY_COMPARE(holder.interface()->serviceOwner(applicationId()).value(), sessionBus.connection().baseService());
}

void SingleInstanceTest::copiesOnTwoBusesMeetAtTheLock()
{
    PrivateBus bus;
    PrivateBus otherBus;
    Copy first(bus.address(), m_locks.path());
    QCOMPARE(first.nextLine(), QStringLiteral("first"));
    Copy second(otherBus.address(), m_locks.path());
    QCOMPARE(second.nextLine(), QStringLiteral("alreadyRunning"));
    QVERIFY(second.waitForFinished(5000));
    QCOMPARE(first.state(), QProcess::Running);
}

void SingleInstanceTest::copyWithABusMeetsOneWithout()
{
    PrivateBus bus;
    Copy first(nowhere(), m_locks.path());
    QCOMPARE(first.nextLine(), QStringLiteral("first"));
    Copy second(bus.address(), m_locks.path());
    QCOMPARE(second.nextLine(), QStringLiteral("alreadyRunning"));
}

void SingleInstanceTest::secondCopyQuitsWithoutABus()
{
    Copy first(nowhere(), m_locks.path());
    QCOMPARE(first.nextLine(), QStringLiteral("first"));
    Copy second(nowhere(), m_locks.path());
    QCOMPARE(second.nextLine(), QStringLiteral("alreadyRunning"));
    QVERIFY(second.waitForFinished(5000));
    QCOMPARE(first.state(), QProcess::Running);
}

void SingleInstanceTest::lockOfAKilledCopyIsNoHindrance()
{
    Copy killed(nowhere(), m_locks.path());
    QCOMPARE(killed.nextLine(), QStringLiteral("first"));
    killed.kill();
    QVERIFY(killed.waitForFinished(5000));
    QVERIFY(QFile::exists(m_locks.filePath(applicationId() + QStringLiteral(".lock"))));
    Copy next(nowhere(), m_locks.path());
    QCOMPARE(next.nextLine(), QStringLiteral("first"));
}

void SingleInstanceTest::lockFileOfRubbishIsNoHindrance()
{
    const QTemporaryDir locks;
    QFile file(locks.filePath(applicationId() + QStringLiteral(".lock")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("1\nsomebody else\nanother machine\n");
    file.close();
    SessionBus noBus(nowhere());
    SingleInstance instance(applicationId(), noBus, locks.path());
    QCOMPARE(instance.claim({}, {}), SingleInstance::Role::first);
}

void SingleInstanceTest::noPlaceForALockFile()
{
    SessionBus noBus(nowhere());
    SingleInstance one(applicationId(), noBus, QStringLiteral("/nonexistent/folder"));
    QCOMPARE(one.claim({}, {}), SingleInstance::Role::first);
    SingleInstance other(applicationId(), noBus, QString());
    QCOMPARE(other.claim({}, {}), SingleInstance::Role::first);
    QVERIFY(!QFile::exists(u'/' + applicationId() + QStringLiteral(".lock")));
}

void SingleInstanceTest::lockDirectoryIsTheRuntimeDirectory()
{
    const QTemporaryDir runtime; // made with mode 0700
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtime.path()));
    QCOMPARE(SingleInstance::defaultLockDirectory(applicationId()), runtime.path());
}

void SingleInstanceTest::lockDirectoryOfThisUserAlone()
{
    const QTemporaryDir temporary;
    qunsetenv("XDG_RUNTIME_DIR");
    qputenv("TMPDIR", QFile::encodeName(temporary.path()));
    const QString own = temporary.filePath(applicationId() + QStringLiteral("-%1").arg(::getuid()));
    QCOMPARE(SingleInstance::defaultLockDirectory(applicationId()), own);
    QCOMPARE(SingleInstance::defaultLockDirectory(applicationId()), own);
    struct stat information = {};
    QCOMPARE(::stat(QFile::encodeName(own).constData(), &information), 0);
    QCOMPARE(information.st_mode & 0777U, 0700U);
    qunsetenv("TMPDIR");
}

void SingleInstanceTest::lockDirectoryThatAnotherUserMayEnter()
{
    const QTemporaryDir temporary;
    qputenv("XDG_RUNTIME_DIR", "/nonexistent");
    qputenv("TMPDIR", QFile::encodeName(temporary.path()));
    const QString own = temporary.filePath(applicationId() + QStringLiteral("-%1").arg(::getuid()));
    QVERIFY(QDir().mkdir(own));
    QCOMPARE(::chmod(QFile::encodeName(own).constData(), 0777), 0);
    QCOMPARE(SingleInstance::defaultLockDirectory(applicationId()), QString());
    qunsetenv("TMPDIR");
}

TICKWISE_TEST(SingleInstanceTest)
#include "SingleInstanceTest.moc"
