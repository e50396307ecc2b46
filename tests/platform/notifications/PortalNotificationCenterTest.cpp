#include "platform/notifications/PortalNotificationCenter.h"

#include "doubles/PrivateBus.h"
#include "doubles/TestProgram.h"
#include "platform/notifications/FreedesktopNotificationCenter.h"

#include <QDBusContext>
#include <QDBusVariant>
#include <QSignalSpy>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const UserNotification shownNotification{QStringLiteral("price-alert-bitcoin-1.5"),
                                         QStringLiteral("Bitcoin\nprice alert"), QStringLiteral("BTC <up>")};

/// The portal for notifications.
class FakeNotificationPortal : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Notification")
    Q_PROPERTY(uint version READ version SCRIPTABLE true)

public:
    explicit FakeNotificationPortal(QDBusConnection bus)
    {
        bus.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), this,
                           QDBusConnection::ExportScriptableContents);
        bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop"));
    }
    uint version() const { return 1; }

    std::map<QString, QVariantMap> shown;
    bool hangs = false;

public Q_SLOTS:
    Q_SCRIPTABLE void AddNotification(const QString &id, const QVariantMap &content)
    {
        setDelayedReply(hangs);
        shown[id] = content;
    }

Q_SIGNALS:
    Q_SCRIPTABLE void ActionInvoked(const QString &id, const QString &action, const QVariantList &parameter);
};

struct PortalClient
{
    explicit PortalClient(const QString &address, std::chrono::milliseconds timeout = std::chrono::seconds(5))
        : bus(address)
        , center(
              bus, [this] { ++sounds; }, timeout)
    {
    }
    Completion<void> collect()
    {
        return [this](const Result<void> &result) { results.push_back(result); };
    }
    bool lastFailedWith(DesktopServiceError::Kind kind) const
    {
        return !results.empty() && !results.back() &&
               std::get<DesktopServiceError>(results.back().error()).kind == kind;
    }

    SessionBus bus;
    int sounds = 0;
    std::vector<Result<void>> results;
    PortalNotificationCenter center;
};

} // namespace

class PortalNotificationCenterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void handsTheNotificationOver();
    void clickActivates();
    void failsWithoutThePortal();
    void failsWithoutABus();
    void hangingPortalTimesOut();
    void busThatDiesAndReturns();
    void sandboxChoosesThePortal();
};

void PortalNotificationCenterTest::handsTheNotificationOver()
{
    PrivateBus bus;
    FakeNotificationPortal portal(bus.connect());
    PortalClient client(bus.address());
    client.center.requestAuthorization(client.collect());
    client.center.add(shownNotification, client.collect());
    QVERIFY(client.results.empty());
    QTRY_COMPARE(client.results.size(), std::size_t(2));
    QVERIFY(client.results.front() && client.results.back());
    QCOMPARE(client.sounds, 1);
    QCOMPARE(portal.shown.at(shownNotification.identifier),
             (QVariantMap{{QStringLiteral("title"), QStringLiteral("Bitcoin price alert")},
                          {QStringLiteral("body"), QStringLiteral("BTC <up>")},
                          {QStringLiteral("priority"), QStringLiteral("normal")},
                          {QStringLiteral("default-action"), QStringLiteral("open")}}));
}

void PortalNotificationCenterTest::clickActivates()
{
    PrivateBus bus;
    FakeNotificationPortal portal(bus.connect());
    PortalClient client(bus.address());
    QSignalSpy activated(&client.center, &UserNotificationCenter::activated);
    Q_EMIT portal.ActionInvoked(QStringLiteral("a"), QStringLiteral("other"), {});
    Q_EMIT portal.ActionInvoked(QStringLiteral("b"), QStringLiteral("open"), {});
    const QVariantMap data{{QStringLiteral("activation-token"), QStringLiteral("token")}};
    Q_EMIT portal.ActionInvoked(QStringLiteral("c"), QStringLiteral("open"), {QStringLiteral("target"), data});
    QTRY_COMPARE(activated.size(), 2);
    QCOMPARE(activated.at(0), (QVariantList{QStringLiteral("b"), QString()}));
    QCOMPARE(activated.at(1), (QVariantList{QStringLiteral("c"), QStringLiteral("token")}));
}

void PortalNotificationCenterTest::failsWithoutThePortal()
{
    PrivateBus bus;
    PortalClient client(bus.address());
    client.center.requestAuthorization(client.collect());
    client.center.add(shownNotification, client.collect());
    QTRY_COMPARE(client.results.size(), std::size_t(2));
    QVERIFY(!client.results.front());
    QVERIFY(client.lastFailedWith(DesktopServiceError::Kind::noService));
    QCOMPARE(client.sounds, 0);
}

void PortalNotificationCenterTest::failsWithoutABus()
{
    PortalClient client(QStringLiteral("unix:path=/nonexistent"));
    client.center.add(shownNotification, client.collect());
    QVERIFY(client.results.empty());
    QTRY_COMPARE(client.results.size(), std::size_t(1));
    QVERIFY(client.lastFailedWith(DesktopServiceError::Kind::noMessageBus));
}

void PortalNotificationCenterTest::hangingPortalTimesOut()
{
    PrivateBus bus;
    FakeNotificationPortal portal(bus.connect());
    portal.hangs = true;
    PortalClient client(bus.address(), std::chrono::milliseconds(100));
    client.center.add(shownNotification, client.collect());
    QTRY_COMPARE(client.results.size(), std::size_t(1));
    QVERIFY(client.lastFailedWith(DesktopServiceError::Kind::timedOut));
    QCOMPARE(client.sounds, 0);
}

void PortalNotificationCenterTest::busThatDiesAndReturns()
{
    PrivateBus bus;
    PortalClient client(bus.address());
    QSignalSpy connected(&client.bus, &SessionBus::connected);
    bus.stop();
    bus.start();
    QTRY_COMPARE(connected.size(), 1);
    FakeNotificationPortal portal(bus.connect());
    client.center.add(shownNotification, client.collect());
    QTRY_COMPARE(client.results.size(), std::size_t(1));
    QVERIFY(client.results.back());
    QSignalSpy activated(&client.center, &UserNotificationCenter::activated);
    Q_EMIT portal.ActionInvoked(QStringLiteral("a"), QStringLiteral("open"), {});
    QTRY_COMPARE(activated.size(), 1);
}

void PortalNotificationCenterTest::sandboxChoosesThePortal()
{
    PrivateBus bus;
    SessionBus session(bus.address());
    const auto sandboxed = makeUserNotificationCenter(session, true, {}, [] {});
    const auto open = makeUserNotificationCenter(session, false, {}, [] {});
    QVERIFY(qobject_cast<PortalNotificationCenter *>(sandboxed.get()));
    QVERIFY(qobject_cast<FreedesktopNotificationCenter *>(open.get()));
}

TICKWISE_TEST(PortalNotificationCenterTest)
#include "PortalNotificationCenterTest.moc"
