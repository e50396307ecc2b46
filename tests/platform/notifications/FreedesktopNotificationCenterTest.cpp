#include "platform/notifications/FreedesktopNotificationCenter.h"

#include "FakeNotifications.h"
#include "doubles/PrivateBus.h"
#include "doubles/TestProgram.h"
#include "platform/notifications/TestIdentity.h"

#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QElapsedTimer>
#include <QSignalSpy>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const QStringList everything{QStringLiteral("actions"), QStringLiteral("body-markup"), QStringLiteral("sound")};
constexpr std::chrono::milliseconds shortTimeout{1000};

UserNotification notification(const QString &identifier = QStringLiteral("price-alert-bitcoin-1.5"))
{
    return {identifier, QStringLiteral("Bitcoin price alert"), QStringLiteral("BTC <up>")};
}

/// A center on its own connection, and the results of what was asked of it.
struct Client
{
    explicit Client(const QString &address, std::chrono::milliseconds timeout = std::chrono::seconds(5))
        : bus(address)
        , center(
              bus, tickwiseIdentity, [this] { ++sounds; }, timeout)
    {
    }

    Completion<void> collect()
    {
        return [this](const Result<void> &result) { results.push_back(result); };
    }
    void add(const QString &identifier = QStringLiteral("price-alert-bitcoin-1.5"))
    {
        center.add(notification(identifier), collect());
    }
    std::size_t answered() const { return results.size(); }
    bool lastFailedWith(DesktopServiceError::Kind kind) const
    {
        return !results.empty() && !results.back() &&
               std::get<DesktopServiceError>(results.back().error()).kind == kind;
    }

    SessionBus bus;
    int sounds = 0;
    std::vector<Result<void>> results;
    FreedesktopNotificationCenter center;
};

} // namespace

class FreedesktopNotificationCenterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void deliversWhatTheServiceUnderstands();
    void capabilitiesAreAskedOnce();
    void playsTheSoundThatTheServiceDoesNot();
    void clickActivatesWithItsToken();
    void otherClicksAreNotOurs();
    void remembersTheNewestOnly();
    void failsWithoutAService();
    void failsWithoutABus();
    void failsWhenTheServiceRefuses();
    void hangingServiceTimesOutAndNothingBlocks();
    void hangingDeliveryTimesOut();
    void serviceThatDiesAndReturns();
    void serviceThatComesLaterIsAskedAnew();
    void busThatDies();
    void busThatDiesAndReturns();
    void goneCenterAnswersNothing();
    void realDaemonShowsAndActivates();
};

void FreedesktopNotificationCenterTest::deliversWhatTheServiceUnderstands()
{
    PrivateBus bus;
    FakeNotifications service(bus.connect(), everything);
    Client client(bus.address());
    client.add();
    QVERIFY(client.results.empty()); // never inside the call
    QTRY_COMPARE(client.answered(), std::size_t(1));
    QVERIFY(client.results.front());
    QCOMPARE(service.calls.size(), std::size_t(1));
    const FakeNotifications::Call &call = service.calls.front();
    QCOMPARE(call.applicationName, QStringLiteral("Tickwise"));
    QCOMPARE(call.replaces, 0U);
    QCOMPARE(call.icon, QStringLiteral("icon-name"));
    QCOMPARE(call.summary, QStringLiteral("Bitcoin price alert"));
    QCOMPARE(call.body, QStringLiteral("BTC &lt;up&gt;"));
    QCOMPARE(call.actions, (QStringList{QStringLiteral("default"), QStringLiteral("Open Tickwise")}));
    QCOMPARE(call.hints, (QVariantMap{{QStringLiteral("urgency"), QVariant::fromValue<uchar>(1)},
                                      {QStringLiteral("desktop-entry"), QStringLiteral("com.pelmo.tickwise")},
                                      {QStringLiteral("sound-name"), QStringLiteral("message-new-instant")}}));
    QCOMPARE(call.timeout, -1);
}

void FreedesktopNotificationCenterTest::capabilitiesAreAskedOnce()
{
    PrivateBus bus;
    FakeNotifications service(bus.connect(), {});
    Client client(bus.address());
    client.center.requestAuthorization(client.collect());
    client.add();
    QTRY_COMPARE(client.answered(), std::size_t(2));
    client.add();
    QTRY_COMPARE(client.answered(), std::size_t(3));
    QVERIFY(std::ranges::all_of(client.results, [](const Result<void> &result) { return result.has_value(); }));
    QCOMPARE(service.questions, 1);
    QCOMPARE(service.calls.size(), std::size_t(2));
    QVERIFY(service.calls.back().actions.isEmpty());
    QCOMPARE(service.calls.back().body, QStringLiteral("BTC <up>"));
}

void FreedesktopNotificationCenterTest::playsTheSoundThatTheServiceDoesNot()
{
    PrivateBus bus;
    FakeNotifications service(bus.connect(), {QStringLiteral("body")});
    Client client(bus.address());
    client.add();
    QTRY_COMPARE(client.answered(), std::size_t(1));
    QCOMPARE(client.sounds, 1);
    QVERIFY(!service.calls.front().hints.contains(QStringLiteral("sound-name")));

    Client other(bus.address());
    service.capabilities = {QStringLiteral("sound")};
    other.add();
    QTRY_COMPARE(other.answered(), std::size_t(1));
    QCOMPARE(other.sounds, 0);
    service.refuses = true;
    client.add();
    QTRY_COMPARE(client.answered(), std::size_t(2));
    QCOMPARE(client.sounds, 1); // what is not shown makes no sound
}

void FreedesktopNotificationCenterTest::clickActivatesWithItsToken()
{
    PrivateBus bus;
    FakeNotifications service(bus.connect(), everything);
    Client client(bus.address());
    client.add(QStringLiteral("one"));
    client.add(QStringLiteral("two"));
    QTRY_COMPARE(client.answered(), std::size_t(2));
    QSignalSpy activated(&client.center, &UserNotificationCenter::activated);
    Q_EMIT service.ActivationToken(2, QStringLiteral("token"));
    Q_EMIT service.ActionInvoked(2, QStringLiteral("default"));
    Q_EMIT service.ActionInvoked(1, QStringLiteral("default"));
    QTRY_COMPARE(activated.size(), 2);
    QCOMPARE(activated.at(0), (QVariantList{QStringLiteral("two"), QStringLiteral("token")}));
    QCOMPARE(activated.at(1), (QVariantList{QStringLiteral("one"), QString()}));
}

void FreedesktopNotificationCenterTest::otherClicksAreNotOurs()
{
    PrivateBus bus;
    FakeNotifications service(bus.connect(), everything);
    Client client(bus.address());
    for (const char *identifier : {"one", "two", "three"})
        client.add(QLatin1String(identifier));
    QTRY_COMPARE(client.answered(), std::size_t(3));
    QSignalSpy activated(&client.center, &UserNotificationCenter::activated);
    Q_EMIT service.ActionInvoked(99, QStringLiteral("default")); // another application's
    Q_EMIT service.ActionInvoked(1, QStringLiteral("settings"));
    Q_EMIT service.NotificationClosed(2, 2);
    Q_EMIT service.ActionInvoked(2, QStringLiteral("default"));
    Q_EMIT service.ActionInvoked(3, QStringLiteral("default"));
    QTRY_COMPARE(activated.size(), 1);
    QCOMPARE(activated.at(0).at(0).toString(), QStringLiteral("three"));
}

void FreedesktopNotificationCenterTest::remembersTheNewestOnly()
{
    PrivateBus bus;
    FakeNotifications service(bus.connect(), everything);
    Client client(bus.address());
    for (int i = 1; i <= 65; ++i)
        client.add(QString::number(i));
    QTRY_COMPARE(client.answered(), std::size_t(65));
    QSignalSpy activated(&client.center, &UserNotificationCenter::activated);
    Q_EMIT service.ActionInvoked(1, QStringLiteral("default"));
    Q_EMIT service.ActionInvoked(2, QStringLiteral("default"));
    QTRY_COMPARE(activated.size(), 1);
    QCOMPARE(activated.at(0).at(0).toString(), QStringLiteral("2"));
}

void FreedesktopNotificationCenterTest::failsWithoutAService()
{
    PrivateBus bus;
    Client client(bus.address());
    client.center.requestAuthorization(client.collect());
    QTRY_COMPARE(client.answered(), std::size_t(1));
    QVERIFY(client.lastFailedWith(DesktopServiceError::Kind::noService));
    client.add();
    QTRY_COMPARE(client.answered(), std::size_t(2));
    QVERIFY(client.lastFailedWith(DesktopServiceError::Kind::noService));
    QCOMPARE(client.sounds, 0);
}

void FreedesktopNotificationCenterTest::failsWithoutABus()
{
    Client client(QStringLiteral("unix:path=/nonexistent"));
    client.center.requestAuthorization(client.collect());
    client.add();
    QVERIFY(client.results.empty()); // never inside the call
    QTRY_COMPARE(client.answered(), std::size_t(2));
    QVERIFY(!client.results.front());
    QVERIFY(client.lastFailedWith(DesktopServiceError::Kind::noMessageBus));
}

void FreedesktopNotificationCenterTest::failsWhenTheServiceRefuses()
{
    PrivateBus bus;
    FakeNotifications service(bus.connect(), everything);
    service.refuses = true;
    Client client(bus.address());
    client.add();
    QTRY_COMPARE(client.answered(), std::size_t(1));
    QVERIFY(client.lastFailedWith(DesktopServiceError::Kind::refused));
    QVERIFY(description(client.results.back().error()).endsWith(QStringLiteral("too many")));
}

void FreedesktopNotificationCenterTest::hangingServiceTimesOutAndNothingBlocks()
{
    PrivateBus bus;
    FakeNotifications service(bus.connect(), everything);
    service.hangs = true;
    Client patient(bus.address(), std::chrono::seconds(60));
    Client client(bus.address(), shortTimeout);
    QElapsedTimer elapsed;
    elapsed.start();
    patient.add();
    client.center.requestAuthorization(client.collect());
    client.add();
    QVERIFY(elapsed.elapsed() < 30000); // nobody waited for the service
    QTRY_COMPARE(client.answered(), std::size_t(2));
    QVERIFY(elapsed.elapsed() > shortTimeout.count() / 2); // a call's limit may end 5 % early
    QVERIFY(client.lastFailedWith(DesktopServiceError::Kind::timedOut));
    QVERIFY(service.calls.empty());
    QVERIFY(patient.results.empty());

    service.hangs = false;
    client.add();
    QTRY_COMPARE(client.answered(), std::size_t(3));
    QVERIFY(client.results.back());
}

void FreedesktopNotificationCenterTest::hangingDeliveryTimesOut()
{
    PrivateBus bus;
    FakeNotifications service(bus.connect(), {});
    Client client(bus.address(), shortTimeout);
    client.center.requestAuthorization(client.collect());
    QTRY_COMPARE(client.answered(), std::size_t(1));
    service.hangs = true;
    client.add();
    QTRY_COMPARE(client.answered(), std::size_t(2));
    QVERIFY(client.lastFailedWith(DesktopServiceError::Kind::timedOut));
    QCOMPARE(client.sounds, 0);
}

void FreedesktopNotificationCenterTest::serviceThatDiesAndReturns()
{
    PrivateBus bus;
    auto service = std::make_unique<FakeNotifications>(bus.connect(), everything);
    Client client(bus.address());
    client.add(QStringLiteral("before"));
    QTRY_COMPARE(client.answered(), std::size_t(1));
    service->hangs = true;
    client.add(QStringLiteral("under way"));
    QTRY_COMPARE(service->calls.size(), std::size_t(2));
    service->die();
    QTRY_COMPARE(client.answered(), std::size_t(2));
    QVERIFY(!client.results.back());
    client.add(QStringLiteral("nobody there"));
    QTRY_COMPARE(client.answered(), std::size_t(3));
    QVERIFY(client.lastFailedWith(DesktopServiceError::Kind::noService));

    service = std::make_unique<FakeNotifications>(bus.connect(), QStringList());
    client.add(QStringLiteral("after"));
    QTRY_COMPARE(client.answered(), std::size_t(4));
    QVERIFY(client.results.back());
    QVERIFY(service->calls.front().actions.isEmpty()); // what the new one can, not what the old one could
    QSignalSpy activated(&client.center, &UserNotificationCenter::activated);
    Q_EMIT service->ActionInvoked(1, QStringLiteral("default"));
    QTRY_COMPARE(activated.size(), 1);
    QCOMPARE(activated.at(0).at(0).toString(), QStringLiteral("after"));
}

void FreedesktopNotificationCenterTest::serviceThatComesLaterIsAskedAnew()
{
    PrivateBus bus;
    Client client(bus.address());
    FakeNotifications service(bus.connect(), everything);
    QTRY_COMPARE(service.questions, 1);
    client.add();
    QTRY_COMPARE(client.answered(), std::size_t(1));
    QCOMPARE(service.questions, 1);
}

void FreedesktopNotificationCenterTest::busThatDies()
{
    PrivateBus bus;
    FakeNotifications service(bus.connect(), everything);
    service.hangs = true;
    Client client(bus.address(), shortTimeout);
    client.add();
    QTRY_COMPARE(service.questions, 1);
    bus.stop();
    QTRY_COMPARE(client.answered(), std::size_t(1));
    QVERIFY(!client.results.back());
    client.add();
    QTRY_COMPARE(client.answered(), std::size_t(2));
    QVERIFY(client.lastFailedWith(DesktopServiceError::Kind::noMessageBus));
}

void FreedesktopNotificationCenterTest::busThatDiesAndReturns()
{
    PrivateBus bus;
    Client client(bus.address());
    {
        FakeNotifications former(bus.connect(), everything);
        client.add(QStringLiteral("before"));
        QTRY_COMPARE(client.answered(), std::size_t(1));
    }
    QSignalSpy connected(&client.bus, &SessionBus::connected);
    bus.stop();
    bus.start();
    QTRY_COMPARE(connected.size(), 1);
    FakeNotifications service(bus.connect(), {QStringLiteral("actions")});
    client.add(QStringLiteral("after"));
    QTRY_COMPARE(client.answered(), std::size_t(2));
    QVERIFY(client.results.back());
    QCOMPARE(service.calls.front().body, QStringLiteral("BTC <up>")); // what the new service reads
    QSignalSpy activated(&client.center, &UserNotificationCenter::activated);
    Q_EMIT service.ActivationToken(1, QStringLiteral("token"));
    Q_EMIT service.ActionInvoked(1, QStringLiteral("default"));
    QTRY_COMPARE(activated.size(), 1);
    QCOMPARE(activated.front(), (QVariantList{QStringLiteral("after"), QStringLiteral("token")}));
}

void FreedesktopNotificationCenterTest::goneCenterAnswersNothing()
{
    PrivateBus bus;
    FakeNotifications service(bus.connect(), everything);
    int answers = 0;
    service.hangs = true;
    SessionBus session(bus.address());
    auto center = std::make_unique<FreedesktopNotificationCenter>(
        session, tickwiseIdentity, [] {}, shortTimeout);
    center->add(notification(), [&](const Result<void> &) { ++answers; });
    QTRY_COMPARE(service.questions, 1);
    center.reset();
    Client client(bus.address(), shortTimeout); // its question times out after the other's
    client.add();
    QTRY_COMPARE(client.answered(), std::size_t(1));
    QCOMPARE(answers, 0);
}

void FreedesktopNotificationCenterTest::realDaemonShowsAndActivates()
{
    PrivateBus bus;
    QProcess display;
    display.start(QStringLiteral("Xvfb"),
                  {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"), QStringLiteral("0"),
                   QStringLiteral("640x480x24"), QStringLiteral("-nolisten"), QStringLiteral("tcp")});
    QTRY_VERIFY_WITH_TIMEOUT(display.canReadLine(), 20000);
    QProcess daemon;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), u':' + QString::fromLatin1(display.readLine().trimmed()));
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address());
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    daemon.setProcessEnvironment(environment);
    daemon.start(QStringLiteral("dunst"), {});
    const QDBusConnection control = bus.connect();
    const QString name = QStringLiteral("org.freedesktop.Notifications");
    QTRY_VERIFY_WITH_TIMEOUT(control.interface()->isServiceRegistered(name), 20000);

    Client client(bus.address());
    QSignalSpy activated(&client.center, &UserNotificationCenter::activated);
    client.add();
    QTRY_COMPARE_WITH_TIMEOUT(client.answered(), std::size_t(1), 10000);
    QVERIFY(client.results.front());
    QDBusMessage click =
        QDBusMessage::createMethodCall(name, QStringLiteral("/org/freedesktop/Notifications"),
                                       QStringLiteral("org.dunstproject.cmd0"), QStringLiteral("NotificationAction"));
    click << 0U;
    // The daemon draws its window, which the click needs, some time after its answer.
    QTRY_VERIFY_WITH_TIMEOUT((control.call(click), !activated.isEmpty()), 10000);
    QCOMPARE(activated.at(0).at(0).toString(), notification().identifier);
    daemon.terminate();
    daemon.waitForFinished();
    display.terminate();
    display.waitForFinished();
}

TICKWISE_TEST(FreedesktopNotificationCenterTest)
#include "FreedesktopNotificationCenterTest.moc"
