#include "app/SystemEvents.h"

#include "app/AppDelegate.h"
#include "doubles/AppDoubles.h"
#include "doubles/PipelineDoubles.h"
#include "doubles/ScriptedHttpClient.h"
#include "doubles/TestProgram.h"
#include "platform/network/NetworkWatch.h"
#include "platform/session/SleepMonitor.h"

using namespace tickwise;
using namespace tickwise::test;

namespace {

/// A started delegate whose requests stay open, and the sources of the events.
struct SystemEventsWorld
{
    SystemEventsWorld()
    {
        http.hold(Endpoints().binanceMain);
        delegate.applicationDidFinishLaunching();
        connectSystemEvents(sleepMonitor, networkWatch, delegate, [this] { openAtChange.append(http.open()); });
    }

    int polls() const { return static_cast<int>(http.urls(Endpoints().binanceMain).size()); }

    MemoryDefaults storage;
    ScriptedHttpClient http;
    RecordingNotificationCenter notifications;
    RecordingLoginItem loginItem;
    SleepMonitor sleepMonitor{QDBusConnection(QStringLiteral("not connected"))};
    NetworkWatch networkWatch{-1};
    QList<int> openAtChange; ///< the open requests whenever the network may have changed
    AppDelegate delegate{{.defaults = storage,
                          .httpClient = http,
                          .notificationCenter = notifications,
                          .loginItem = loginItem,
                          .makeStatusItem = [] { return std::make_unique<RecordingStatusItem>(); },
                          .reloadWidgets = [] {},
                          .isSecondCopy = [] { return false; },
                          .environment = QProcessEnvironment(QProcessEnvironment::InheritFromParent)}};
};

} // namespace

class SystemEventsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sleepStopsPolling();
    void wakeForgetsTheOldNetworkAndPolls();
    void networkThatReturnsForgetsTheOldOneAndPolls();
    void networkThatReturnsDuringSleepDoesNotPoll();
};

void SystemEventsTest::sleepStopsPolling()
{
    SystemEventsWorld world;
    QCOMPARE(world.http.open(), 1);
    Q_EMIT world.sleepMonitor.willSleep();
    QCOMPARE(world.http.open(), 0);
    QVERIFY(world.openAtChange.isEmpty());
}

void SystemEventsTest::wakeForgetsTheOldNetworkAndPolls()
{
    SystemEventsWorld world;
    Q_EMIT world.sleepMonitor.willSleep();
    Q_EMIT world.sleepMonitor.didWake();
    QCOMPARE(world.openAtChange, QList<int>{0});
    QCOMPARE(world.http.open(), 1);
    QCOMPARE(world.polls(), 2);
}

void SystemEventsTest::networkThatReturnsForgetsTheOldOneAndPolls()
{
    SystemEventsWorld world;
    Q_EMIT world.networkWatch.networkReturned();
    QCOMPARE(world.openAtChange.size(), 1);
    QCOMPARE(world.http.open(), 1);
    QCOMPARE(world.polls(), 2);
}

void SystemEventsTest::networkThatReturnsDuringSleepDoesNotPoll()
{
    SystemEventsWorld world;
    Q_EMIT world.sleepMonitor.willSleep();
    Q_EMIT world.networkWatch.networkReturned();
    QCOMPARE(world.polls(), 1);
}

TICKWISE_TEST(SystemEventsTest)
#include "SystemEventsTest.moc"
