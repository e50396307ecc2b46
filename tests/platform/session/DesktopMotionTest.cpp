#include "platform/session/DesktopMotion.h"

#include "doubles/PrivateBus.h"
#include "doubles/TestProgram.h"
#include "platform/dbus/BusCall.h"

#include <QDBusContext>
#include <QDBusVariant>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString gnome = QStringLiteral("org.gnome.desktop.interface");

/// A settings portal that knows just some settings.
class FakeMotionPortal : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    explicit FakeMotionPortal(PrivateBus &bus)
        : m_connection(bus.connect())
    {
        m_connection.registerObject(portalPath(), this, QDBusConnection::ExportAllSlots);
        m_connection.registerService(portalService());
    }

    void set(const QString &group, const QString &key, const QVariant &value)
    {
        settings[group + key] = value;
        QDBusMessage signal = QDBusMessage::createSignal(
            portalPath(), QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("SettingChanged"));
        signal << group << key << QVariant::fromValue(QDBusVariant(value));
        m_connection.send(signal);
    }

    QHash<QString, QVariant> settings;
    int questions = 0;

public Q_SLOTS:
    QDBusVariant Read(const QString &group, const QString &key) // NOLINT: the protocol's spelling
    {
        ++questions;
        const QVariant value = settings.value(group + key);
        if (!value.isValid())
            sendErrorReply(QStringLiteral("org.freedesktop.portal.Error.NotFound"), QStringLiteral("no such setting"));
        return QDBusVariant(QVariant::fromValue(QDBusVariant(value.isValid() ? value : QVariant(0))));
    }

private:
    QDBusConnection m_connection;
};

} // namespace

class DesktopMotionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rule_data();
    void rule();
    void withoutAPortalThereIsMotion();
    void readsThePortal();
    void followsThePortal();
};

void DesktopMotionTest::rule_data()
{
    QTest::addColumn<QVariant>("reducedMotion");
    QTest::addColumn<QVariant>("animations");
    QTest::addColumn<QVariant>("factor");
    QTest::addColumn<bool>("isReduced");
    const QVariant none;
    QTest::newRow("nothing known") << none << none << none << false;
    QTest::newRow("portal: no preference") << QVariant(0U) << none << none << false;
    QTest::newRow("portal: reduced") << QVariant(1U) << none << none << true;
    QTest::newRow("portal: unknown number") << QVariant(7U) << none << none << false;
    QTest::newRow("the portal's own decides") << QVariant(0U) << QVariant(false) << QVariant(0.0) << false;
    QTest::newRow("GNOME: on") << none << QVariant(true) << none << false;
    QTest::newRow("GNOME: off") << none << QVariant(false) << none << true;
    QTest::newRow("GNOME: of another type") << none << QVariant(QStringLiteral("false")) << none << false;
    QTest::newRow("KDE: usual") << none << none << QVariant(1.0) << false;
    QTest::newRow("KDE: instant") << none << none << QVariant(0.0) << true;
    QTest::newRow("KDE: instant, as text") << none << none << QVariant(QStringLiteral("0")) << true;
    QTest::newRow("KDE: fast") << none << none << QVariant(0.25) << false;
    QTest::newRow("KDE: no number") << none << none << QVariant(QStringLiteral("slow")) << false;
}

void DesktopMotionTest::rule()
{
    QFETCH(QVariant, reducedMotion);
    QFETCH(QVariant, animations);
    QFETCH(QVariant, factor);
    QTEST(asksForReducedMotion({reducedMotion, animations, factor}), "isReduced");
}

void DesktopMotionTest::withoutAPortalThereIsMotion()
{
    PrivateBus bus;
    SessionBus session(bus.address());
    const DesktopMotion motion(session);
    QVERIFY(!motion.isReduced());
}

void DesktopMotionTest::readsThePortal()
{
    PrivateBus bus;
    FakeMotionPortal portal(bus);
    portal.settings[gnome + QStringLiteral("enable-animations")] = false;
    SessionBus session(bus.address());
    const DesktopMotion motion(session);
    QTRY_VERIFY(motion.isReduced());
    QTRY_COMPARE(portal.questions, 3);
}

void DesktopMotionTest::followsThePortal()
{
    PrivateBus bus;
    FakeMotionPortal portal(bus);
    SessionBus session(bus.address());
    const DesktopMotion motion(session);
    QTRY_COMPARE(portal.questions, 3);
    portal.set(appearance, QStringLiteral("reduced-motion"), 1U);
    QTRY_VERIFY(motion.isReduced());
    portal.set(appearance, QStringLiteral("reduced-motion"), 0U);
    QTRY_VERIFY(!motion.isReduced());
    portal.set(gnome, QStringLiteral("enable-animations"), true);
    portal.set(gnome, QStringLiteral("cursor-blink"), false);
    portal.set(appearance, QStringLiteral("reduced-motion"), 1U);
    QTRY_VERIFY(motion.isReduced());
}

TICKWISE_TEST(DesktopMotionTest)
#include "DesktopMotionTest.moc"
