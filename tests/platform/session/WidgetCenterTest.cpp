#include "platform/session/WidgetCenter.h"

#include "doubles/LogCapture.h"
#include "doubles/PrivateBus.h"
#include "doubles/TestProgram.h"
#include "platform/dbus/BusCall.h"
#include "platform/dbus/SessionBus.h"

#include <QDBusAbstractInterface>
#include <QSignalSpy>

using namespace tickwise;
using namespace tickwise::test;

namespace {

/// Hears what a widget hears.
class Widget : public QDBusAbstractInterface
{
    Q_OBJECT

public:
    Widget(const QDBusConnection &bus, const QString &sender)
        : QDBusAbstractInterface(sender, QStringLiteral("/com/pelmo/tickwise/WidgetCenter"),
                                 "com.pelmo.tickwise.WidgetCenter", bus, nullptr)
    {
    }

Q_SIGNALS:
    void ReloadAllTimelines();
};

/// Returns when the bus knows what the connection listens to.
void settle(const SessionBus &bus)
{
    QVERIFY(bus.connection().call(busCall(QStringLiteral("GetId"), {})).type() == QDBusMessage::ReplyMessage);
}

} // namespace

class WidgetCenterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void widgetsHearTheReload();
    void busThatReturnsIsUsed();
    void quietWithoutABus();
    void reloadsAreHeard();
    void reloadsAreHeardOnABusThatReturns();
    void reloadsAreHeardOnABusThatComesLater();
};

void WidgetCenterTest::widgetsHearTheReload()
{
    PrivateBus bus;
    const SessionBus application(bus.address());
    const Widget widget(bus.connect(), application.connection().baseService());
    const Widget another(bus.connect(), application.connection().baseService());
    QSignalSpy heard(&widget, &Widget::ReloadAllTimelines);
    QSignalSpy alsoHeard(&another, &Widget::ReloadAllTimelines);
    WidgetCenter(application).reloadAllTimelines();
    QTRY_COMPARE(heard.size(), 1);
    QTRY_COMPARE(alsoHeard.size(), 1);
}

void WidgetCenterTest::busThatReturnsIsUsed()
{
    PrivateBus bus;
    SessionBus application(bus.address());
    const WidgetCenter center(application);
    QSignalSpy connected(&application, &SessionBus::connected);
    bus.stop();
    bus.start();
    QTRY_COMPARE(connected.size(), 1);
    const Widget widget(bus.connect(), application.connection().baseService());
    QSignalSpy heard(&widget, &Widget::ReloadAllTimelines);
    center.reloadAllTimelines();
    QTRY_COMPARE(heard.size(), 1);
}

void WidgetCenterTest::quietWithoutABus()
{
    const LogCapture log;
    const SessionBus noBus(QStringLiteral("unix:path=/nonexistent/bus"));
    WidgetCenter(noBus).reloadAllTimelines();
    QVERIFY(log.lines().empty());
}

void WidgetCenterTest::reloadsAreHeard()
{
    PrivateBus bus;
    const SessionBus widgetBus(bus.address());
    const SessionBus applicationBus(bus.address());
    const WidgetReloads reloads(widgetBus);
    QSignalSpy heard(&reloads, &WidgetReloads::reloadRequested);
    settle(widgetBus);
    WidgetCenter(applicationBus).reloadAllTimelines();
    QTRY_COMPARE(heard.size(), 1);
}

void WidgetCenterTest::reloadsAreHeardOnABusThatReturns()
{
    PrivateBus bus;
    const SessionBus widgetBus(bus.address());
    const SessionBus applicationBus(bus.address());
    const WidgetReloads reloads(widgetBus);
    QSignalSpy heard(&reloads, &WidgetReloads::reloadRequested);
    QSignalSpy connected(&applicationBus, &SessionBus::connected);
    bus.stop();
    bus.start();
    QTRY_COMPARE(heard.size(), 1);
    QTRY_COMPARE(connected.size(), 1);
    settle(widgetBus);
    WidgetCenter(applicationBus).reloadAllTimelines();
    QTRY_COMPARE(heard.size(), 2);
}

void WidgetCenterTest::reloadsAreHeardOnABusThatComesLater()
{
    PrivateBus bus;
    bus.stop();
    const SessionBus widgetBus(bus.address());
    const WidgetReloads reloads(widgetBus);
    QSignalSpy heard(&reloads, &WidgetReloads::reloadRequested);
    bus.start();
    QTRY_COMPARE(heard.size(), 1);
    const SessionBus applicationBus(bus.address());
    settle(widgetBus);
    WidgetCenter(applicationBus).reloadAllTimelines();
    QTRY_COMPARE(heard.size(), 2);
}

TICKWISE_TEST(WidgetCenterTest)
#include "WidgetCenterTest.moc"
