#include "platform/dbus/SessionBus.h"

#include "doubles/PrivateBus.h"
#include "doubles/TestProgram.h"
#include "platform/dbus/BusCall.h"

#include <QElapsedTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QThread>

#include <atomic>

using namespace tickwise;
using namespace tickwise::test;

namespace {

/// Sees QtDBus's thread drop its connection to the object's signals.
class VisitedBus : public SessionBus
{
public:
    using SessionBus::SessionBus;

    std::atomic<bool> visitedByOthers = false;

protected:
    void disconnectNotify(const QMetaMethod &) override
    {
        if (QThread::currentThread() != thread())
            visitedByOthers = true;
    }
};

} // namespace

class SessionBusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void opensTheBusAtOnce();
    void opensTheBusOfTheEnvironment();
    void aBusThatReturnsIsOpenedAnew();
    void aBusThatDiesTwice();
    void aBusThatStartsLater();
    void aDeafBusIsNoneUntilItHears();
    void laterTriesDoNotBlock();
    void triesAreFurtherAndFurtherApart();
    void closesItsConnection();
    void noOtherThreadVisitsIt();
    void callsEndWhenTheBusDies();
    void callsWithoutABusFailLater();
    void goneContextHearsNothing();
};

void SessionBusTest::opensTheBusAtOnce()
{
    PrivateBus bus;
    const SessionBus session(bus.address());
    QVERIFY(session.connection().isConnected());
    QVERIFY(session.connection().baseService().startsWith(u':'));
}

void SessionBusTest::opensTheBusOfTheEnvironment()
{
    PrivateBus bus;
    const QByteArray former = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("DBUS_SESSION_BUS_ADDRESS", bus.address().toUtf8());
    const SessionBus session;
    former.isNull() ? qunsetenv("DBUS_SESSION_BUS_ADDRESS") : qputenv("DBUS_SESSION_BUS_ADDRESS", former);
    QVERIFY(session.connection().isConnected());
    bus.stop();
    QTRY_VERIFY(!session.connection().isConnected());
}

void SessionBusTest::aBusThatReturnsIsOpenedAnew()
{
    PrivateBus bus;
    SessionBus session(bus.address());
    QSignalSpy connected(&session, &SessionBus::connected);
    QSignalSpy disconnected(&session, &SessionBus::disconnected);
    const QString former = session.connection().name();
    bus.stop();
    QTRY_COMPARE(disconnected.size(), 1);
    QVERIFY(!session.connection().isConnected());
    bus.start();
    QTRY_COMPARE(connected.size(), 1);
    QVERIFY(session.connection().isConnected());
    QVERIFY(session.connection().name() != former);
    QVERIFY(!QDBusConnection(former).isConnected());
    QString owner;
    sendCall<QString>(session.connection(),
                      busCall(QStringLiteral("GetNameOwner"), {session.connection().baseService()}), this,
                      [&owner](const Result<QString> &answer) { owner = answer.value_or(QStringLiteral("none")); });
    QTRY_COMPARE(owner, session.connection().baseService());
}

void SessionBusTest::aBusThatDiesTwice()
{
    PrivateBus bus;
    SessionBus session(bus.address());
    QSignalSpy connected(&session, &SessionBus::connected);
    for (int i = 1; i <= 2; ++i) {
        bus.stop();
        bus.start();
        QTRY_COMPARE(connected.size(), i);
    }
}

void SessionBusTest::aBusThatStartsLater()
{
    PrivateBus bus;
    bus.stop();
    SessionBus session(bus.address());
    QVERIFY(!session.connection().isConnected());
    QSignalSpy connected(&session, &SessionBus::connected);
    bus.start();
    QTRY_COMPARE(connected.size(), 1);
    QVERIFY(session.connection().isConnected());
}

void SessionBusTest::aDeafBusIsNoneUntilItHears()
{
    PrivateBus bus;
    bus.pause();
    QElapsedTimer opening;
    opening.start();
    SessionBus session(bus.address());
    QVERIFY(!session.connection().isConnected());
    QVERIFY2(opening.elapsed() < 10000, "the library itself waits for 25 seconds");
    QSignalSpy connected(&session, &SessionBus::connected);
    bus.resume();
    QTRY_COMPARE(connected.size(), 1);
    QVERIFY(session.connection().isConnected());
}

// Whoever gives up a try closes its connection: it must be seen while it is still open.
void SessionBusTest::laterTriesDoNotBlock()
{
    PrivateBus bus;
    SessionBus session(bus.address());
    bus.stop();
    QLocalServer deaf;
    QVERIFY(deaf.listen(bus.address().section(u'=', 1)));
    QTRY_VERIFY(deaf.hasPendingConnections());
    const std::unique_ptr<QLocalSocket> connection(deaf.nextPendingConnection());
    QVERIFY(connection->bytesAvailable() > 0 || connection->waitForReadyRead());
    connection->readAll();
    QVERIFY(!connection->waitForReadyRead(50));
    QCOMPARE(connection->state(), QLocalSocket::ConnectedState);
}

void SessionBusTest::triesAreFurtherAndFurtherApart()
{
    using namespace std::chrono_literals;
    QVERIFY(SessionBus::delayAfter(SessionBus::firstRetry) == 200ms);
    QVERIFY(SessionBus::delayAfter(25600ms) == 51200ms);
    QVERIFY(SessionBus::delayAfter(51200ms) == 60s);
    QVERIFY(SessionBus::delayAfter(60s) == 60s);
}

void SessionBusTest::closesItsConnection()
{
    PrivateBus bus;
    QString name;
    {
        const SessionBus session(bus.address());
        name = session.connection().name();
        QVERIFY(QDBusConnection(name).isConnected());
    }
    QVERIFY(!QDBusConnection(name).isConnected());
}

void SessionBusTest::noOtherThreadVisitsIt()
{
    PrivateBus bus;
    VisitedBus session(bus.address());
    QSignalSpy connected(&session, &SessionBus::connected);
    bus.stop();
    bus.start();
    QVERIFY(connected.wait());
    // The thread that closes the former connection also opens this one, later.
    const SessionBus next(bus.address());
    QVERIFY(next.connection().isConnected());
    QVERIFY(!session.visitedByOthers);
}

void SessionBusTest::callsEndWhenTheBusDies()
{
    PrivateBus bus;
    const SessionBus session(bus.address());
    std::vector<Result<QString>> answers;
    bus.pause();
    sendCall<QString>(session.connection(), busCall(QStringLiteral("GetId"), {}), this,
                      [&answers](const Result<QString> &answer) { answers.push_back(answer); });
    bus.kill();
    QTRY_COMPARE(answers.size(), 1U);
    QVERIFY(!answers.front());
    QTRY_VERIFY(!session.connection().isConnected());
}

void SessionBusTest::callsWithoutABusFailLater()
{
    const SessionBus session(QStringLiteral("unix:path=/nonexistent"));
    std::vector<Result<QString>> answers;
    sendCall<QString>(session.connection(), busCall(QStringLiteral("GetId"), {}), this,
                      [&answers](const Result<QString> &answer) { answers.push_back(answer); });
    QVERIFY(answers.empty());
    QTRY_COMPARE(answers.size(), 1U);
    QCOMPARE(std::get<DesktopServiceError>(answers.front().error()).kind, DesktopServiceError::Kind::noMessageBus);
}

void SessionBusTest::goneContextHearsNothing()
{
    PrivateBus bus;
    const SessionBus session(bus.address());
    auto context = std::make_unique<QObject>();
    int answers = 0;
    sendCall<QString>(session.connection(), busCall(QStringLiteral("GetId"), {}), context.get(),
                      [&answers](const Result<QString> &) { ++answers; });
    context.reset();
    bool asked = false;
    sendCall<QString>(session.connection(), busCall(QStringLiteral("GetId"), {}), this,
                      [&asked](const Result<QString> &) { asked = true; });
    QTRY_VERIFY(asked);
    QCOMPARE(answers, 0);
}

TICKWISE_TEST(SessionBusTest)
#include "SessionBusTest.moc"
