#include "app/AppDelegate.h"

#include "app/DelegateDoubles.h"
#include "doubles/RecordingDesktopSurface.h"
#include "doubles/TestProgram.h"
#include "support/Localization.h"

#include <QAbstractButton>

using namespace tickwise;
using namespace tickwise::test;

namespace {

/// A started delegate whose overlay has a place among doubles.
struct DelegateOverlayWorld : DelegateDoubles
{
    explicit DelegateOverlayWorld(bool enabled = true)
    {
        http.hold(Endpoints().binanceMain);
        AppEnvironment environment = doubles();
        environment.makeDesktopSurface = [this] {
            auto made = std::make_unique<RecordingDesktopSurface>(calls);
            surface = made.get();
            return made;
        };
        delegate = std::make_unique<AppDelegate>(std::move(environment));
        change([enabled](AppSettings &settings) { settings.desktopOverlayEnabled = enabled; });
        delegate->applicationDidFinishLaunching();
    }

    void change(const std::function<void(AppSettings &)> &edit) { changeSettings(*delegate, edit); }
    void post() { delegate->notificationCenter().post(NotificationCenter::adjustDesktopOverlay); }
    bool isAdjusting() { return delegate->desktopOverlay().model().isAdjusting(); }

    QStringList calls;
    RecordingDesktopSurface *surface = nullptr;
    std::unique_ptr<AppDelegate> delegate;
};

} // namespace

class DelegateOverlayTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startUpShowsIt();
    void startUpLeavesADisabledOneAlone();
    void notificationStartsAdjusting();
    void otherNotificationsDoNot();
    void wakePutsItInPlace();
    void languageReachesIt();
};

void DelegateOverlayTest::startUpShowsIt()
{
    DelegateOverlayWorld world;
    QCOMPARE(world.calls, QStringList{QStringLiteral("show 892,54 364x127")});
}

void DelegateOverlayTest::startUpLeavesADisabledOneAlone()
{
    DelegateOverlayWorld world(false);
    QVERIFY(!world.surface);
    world.post();
    QVERIFY(!world.isAdjusting());
}

void DelegateOverlayTest::notificationStartsAdjusting()
{
    DelegateOverlayWorld world;
    world.post();
    QVERIFY(world.isAdjusting());
    world.delegate->desktopOverlay().finishAdjusting();
    QCOMPARE(world.delegate->settingsViewModel().settings().desktopOverlayTopLeft, (DesktopOverlayOrigin{892, 746}));
}

void DelegateOverlayTest::otherNotificationsDoNot()
{
    DelegateOverlayWorld world;
    world.delegate->notificationCenter().post(NotificationCenter::navigate);
    QVERIFY(!world.isAdjusting());
}

void DelegateOverlayTest::wakePutsItInPlace()
{
    DelegateOverlayWorld world;
    world.surface->now = {{QRect(0, 0, 1000, 700)}, {0, 700}};
    world.delegate->machineWillSleep();
    world.delegate->machineDidWake();
    QCOMPARE(world.calls.back(), QStringLiteral("place 612,24 364x127"));
}

void DelegateOverlayTest::languageReachesIt()
{
    DelegateOverlayWorld world;
    world.change([](AppSettings &settings) { settings.language = AppLanguage::zhHans; });
    QCOMPARE(world.delegate->desktopOverlay().model().content().language, AppLanguage::zhHans);
    QCOMPARE(world.delegate->desktopOverlay().window()->view().adjustControls().doneButton().text(),
             localized(QStringLiteral("desktop.adjust.done")));
}

TICKWISE_WIDGET_TEST(DelegateOverlayTest)
#include "DelegateOverlayTest.moc"
