#include "overlay/DesktopOverlayController.h"

#include "doubles/CoinListWorld.h"
#include "doubles/LogCapture.h"
#include "doubles/RecordingDesktopSurface.h"
#include "doubles/ScriptedHttpClient.h"
#include "doubles/TestProgram.h"

#include <QAbstractButton>

#include <limits>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const QString logCategory = QStringLiteral("com.pelmo.tickwise.DesktopOverlay");

/// A controller over a coin list and a surface among doubles. The screen is 1280 x 800 with a panel of 30 at its top.
struct OverlayControllerWorld
{
    explicit OverlayControllerWorld(int watched = 3, bool enabled = true)
        : coins(watched)
    {
        coins.change([enabled](AppSettings &settings) { settings.desktopOverlayEnabled = enabled; });
        build();
    }

    void build()
    {
        controller = std::make_unique<DesktopOverlayController>(
            DesktopOverlayContext{coins.settings, *coins.coinList, coins.catalog, logos,
                                  [this]() -> std::unique_ptr<DesktopSurface> {
                                      ++surfacesMade;
                                      if (!hasPlace)
                                          return nullptr;
                                      auto made = std::make_unique<RecordingDesktopSurface>(calls);
                                      surface = made.get();
                                      return made;
                                  },
                                  coins.clock.clock(), [this] { return textScale; }});
    }

    /// What was asked of the surface since the last question.
    QStringList takeCalls() { return std::exchange(calls, {}); }
    std::optional<DesktopOverlayOrigin> saved() const { return coins.settings.settings().desktopOverlayTopLeft; }
    void save(double x, double y)
    {
        coins.change([x, y](AppSettings &settings) { settings.desktopOverlayTopLeft = DesktopOverlayOrigin{x, y}; });
    }
    void setEnabled(bool enabled)
    {
        coins.change([enabled](AppSettings &settings) { settings.desktopOverlayEnabled = enabled; });
    }
    void drag(QPoint start, QPoint end)
    {
        DesktopOverlayWindow &window = *controller->window();
        QTest::mousePress(&window, Qt::LeftButton, {}, window.mapFromGlobal(start));
        QMouseEvent move(QEvent::MouseMove, window.mapFromGlobal(end), end, Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&window, &move);
        QTest::mouseRelease(&window, Qt::LeftButton, {}, window.mapFromGlobal(end));
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(controller->window(), key, modifiers);
    }

    CoinListWorld coins;
    QTemporaryDir container;
    ScriptedHttpClient http;
    CoinLogoStore logos{CoinLogoCache::inContainer(container.path()), http};
    bool hasPlace = true;
    double textScale = 1;
    int surfacesMade = 0;
    QStringList calls;
    RecordingDesktopSurface *surface = nullptr;
    std::unique_ptr<DesktopOverlayController> controller;
};

QStringList words(std::initializer_list<const char *> texts)
{
    QStringList list;
    for (const char *const text : texts)
        list.append(QString::fromLatin1(text));
    return list;
}

} // namespace

class DesktopOverlayControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsWhenEnabled();
    void needsNoSurfaceWhileDisabled();
    void appliesTheSameTwiceWithoutAFrame();
    void sizes_data();
    void sizes();
    void growsWithTheDesktopsTexts_data();
    void growsWithTheDesktopsTexts();
    void followsTheTextScale();
    void followsPricesAndSettings();
    void keepsTheWindow();
    void adjustsOnlyWhatIsShown();
    void adjustsByDragging();
    void ignoresThePointerWhenNotAdjusting();
    void adjustsByKeys();
    void keysStayOnTheScreen();
    void keysReachTheOtherScreen();
    void beginningAgainAsksForTheKeyboardAgain();
    void escapePutsItBack();
    void closingPutsItBack();
    void letsTheApplicationQuit();
    void doneButtonSaves();
    void disablingLeavesWithoutSaving();
    void pricesDoNotMoveItWhileAdjusting();
    void screenChanges();
    void savedPlaceOnAGoneScreenStaysSaved();
    void strangePositions_data();
    void strangePositions();
    void severalScreens();
    void unavailable();
    void withoutCompositor();
};

void DesktopOverlayControllerTest::showsWhenEnabled()
{
    OverlayControllerWorld world;
    QCOMPARE(world.takeCalls(), words({"show 892,54 364x166"}));
    const DesktopOverlayModel &model = world.controller->model();
    QCOMPARE(model.content(), widgetEntryContent(world.coins.coinList->coins(), world.coins.settings.settings(),
                                                 BaseCurrency::usd, world.coins.catalog.byID()));
    QVERIFY(!model.isAdjusting());
    QVERIFY(!world.controller->window()->allowsKey());
    QVERIFY(world.controller->window()->isVisible());
}

void DesktopOverlayControllerTest::needsNoSurfaceWhileDisabled()
{
    OverlayControllerWorld world(3, false);
    world.coins.price(100);
    QCOMPARE(world.surfacesMade, 0);
    QVERIFY(!world.controller->window());
    world.setEnabled(true);
    QCOMPARE(world.surfacesMade, 1);
    QCOMPARE(world.takeCalls(), words({"show 892,54 364x166"}));
    QCOMPARE(world.controller->model().content().rows.front().price, std::optional(100.0));
}

void DesktopOverlayControllerTest::appliesTheSameTwiceWithoutAFrame()
{
    OverlayControllerWorld world;
    world.takeCalls();
    world.controller->apply(world.coins.settings.settings(), world.controller->model().content());
    QCOMPARE(world.takeCalls(), QStringList());
}

void DesktopOverlayControllerTest::sizes_data()
{
    QTest::addColumn<int>("watched");
    QTest::addColumn<DesktopOverlayTextSize>("textSize");
    QTest::addColumn<QSize>("size");
    QTest::newRow("empty") << 0 << DesktopOverlayTextSize::normal << QSize(364, 170);
    QTest::newRow("empty, large") << 0 << DesktopOverlayTextSize::large << QSize(400, 170);
    QTest::newRow("three") << 3 << DesktopOverlayTextSize::normal << QSize(364, 166);
    QTest::newRow("three, large") << 3 << DesktopOverlayTextSize::large << QSize(400, 179);
}

void DesktopOverlayControllerTest::sizes()
{
    QFETCH(int, watched);
    QFETCH(DesktopOverlayTextSize, textSize);
    OverlayControllerWorld world(watched);
    world.coins.change([textSize](AppSettings &settings) { settings.desktopOverlayTextSize = textSize; });
    QTEST(world.surface->frame().size(), "size");
    QTEST(world.controller->window()->size(), "size");
}

void DesktopOverlayControllerTest::growsWithTheDesktopsTexts_data()
{
    QTest::addColumn<double>("textScale");
    QTest::addColumn<int>("watched");
    QTest::addColumn<DesktopOverlayTextSize>("textSize");
    QTest::addColumn<QRect>("frame");
    QTest::newRow("usual") << 1.0 << 3 << DesktopOverlayTextSize::normal << QRect(892, 54, 364, 166);
    QTest::newRow("a quarter larger") << 1.25 << 3 << DesktopOverlayTextSize::normal << QRect(801, 54, 455, 208);
    QTest::newRow("half as large again") << 1.5 << 3 << DesktopOverlayTextSize::normal << QRect(710, 54, 546, 249);
    QTest::newRow("twice as large") << 2.0 << 3 << DesktopOverlayTextSize::large << QRect(456, 54, 800, 358);
    QTest::newRow("empty") << 1.5 << 0 << DesktopOverlayTextSize::normal << QRect(710, 54, 546, 255);
}

void DesktopOverlayControllerTest::growsWithTheDesktopsTexts()
{
    QFETCH(double, textScale);
    QFETCH(int, watched);
    QFETCH(DesktopOverlayTextSize, textSize);
    OverlayControllerWorld world(watched, false);
    world.textScale = textScale;
    world.coins.change([textSize](AppSettings &settings) { settings.desktopOverlayTextSize = textSize; });
    world.setEnabled(true);
    QTEST(world.surface->frame(), "frame");
    QCOMPARE(world.controller->window()->view().list().shownRows(), watched);
}

/// It keeps the corner that is saved, on the screen, and what the user does not move again.
void DesktopOverlayControllerTest::followsTheTextScale()
{
    OverlayControllerWorld world;
    world.save(700, 700);
    world.takeCalls();
    world.textScale = 1.5;
    world.surface->onScreensChanged();
    QCOMPARE(world.takeCalls(), words({"place 700,100 546x249"}));
    QCOMPARE(world.controller->window()->view().backdrop().radius(), 33.0);
    world.textScale = 2;
    world.surface->onScreensChanged();
    QCOMPARE(world.takeCalls(), words({"place 552,100 728x332"}));
    QCOMPARE(world.saved(), (DesktopOverlayOrigin{700, 700}));
    world.textScale = 1;
    world.coins.price(100);
    QCOMPARE(world.takeCalls(), words({"place 700,100 364x166"}));
}

void DesktopOverlayControllerTest::followsPricesAndSettings()
{
    OverlayControllerWorld world(2);
    world.takeCalls();
    world.coins.price(100);
    QCOMPARE(world.controller->model().content().rows.front().price, std::optional(100.0));
    QCOMPARE(world.takeCalls(), QStringList());
    world.coins.watch(3);
    QCOMPARE(world.takeCalls(), words({"place 892,54 364x166"}));
    world.save(40, 700);
    QCOMPARE(world.takeCalls(), words({"place 40,100 364x166"}));
    world.coins.change([](AppSettings &settings) { settings.desktopOverlayBackgroundOpacity = 0.1; });
    QCOMPARE(world.controller->window()->view().backdrop().opacity(), 0.1);
    QVERIFY(world.controller->window()->view().list().legibility().halo);
    QCOMPARE(world.takeCalls(), QStringList());
}

void DesktopOverlayControllerTest::keepsTheWindow()
{
    OverlayControllerWorld world;
    const DesktopOverlayWindow *const window = world.controller->window();
    world.takeCalls();
    world.setEnabled(false);
    QCOMPARE(world.takeCalls(), words({"hide"}));
    QVERIFY(!window->isVisible());
    world.setEnabled(true);
    QCOMPARE(world.takeCalls(), words({"show 892,54 364x166"}));
    QCOMPARE(world.controller->window(), window);
    QCOMPARE(world.surfacesMade, 1);
}

void DesktopOverlayControllerTest::adjustsOnlyWhatIsShown()
{
    OverlayControllerWorld world(3, false);
    world.controller->beginAdjusting();
    QVERIFY(!world.controller->model().isAdjusting());
    world.setEnabled(true);
    world.setEnabled(false);
    world.controller->beginAdjusting();
    QVERIFY(!world.controller->model().isAdjusting());
    world.controller->finishAdjusting();
    QVERIFY(!world.saved());
}

void DesktopOverlayControllerTest::adjustsByDragging()
{
    OverlayControllerWorld world;
    world.takeCalls();
    world.controller->beginAdjusting();
    QVERIFY(world.controller->model().isAdjusting());
    QVERIFY(world.controller->window()->allowsKey());
    QCOMPARE(world.takeCalls(), words({"interactive"}));
    world.drag({900, 70}, {500, 370});
    QCOMPARE(world.takeCalls(), words({"place 492,354 364x166"}));
    QVERIFY(!world.saved());
    world.controller->finishAdjusting();
    QCOMPARE(world.takeCalls(), words({"passive"}));
    QVERIFY(!world.controller->window()->allowsKey());
    QCOMPARE(world.saved(), (DesktopOverlayOrigin{492, 446}));
}

void DesktopOverlayControllerTest::ignoresThePointerWhenNotAdjusting()
{
    OverlayControllerWorld world;
    world.takeCalls();
    world.drag({900, 70}, {500, 370});
    world.press(Qt::Key_Left);
    world.press(Qt::Key_Return);
    QCOMPARE(world.takeCalls(), QStringList());
    QVERIFY(!world.saved());
}

void DesktopOverlayControllerTest::adjustsByKeys()
{
    OverlayControllerWorld world;
    world.controller->beginAdjusting();
    world.takeCalls();
    world.press(Qt::Key_Left);
    world.press(Qt::Key_Down);
    world.press(Qt::Key_Left, Qt::ShiftModifier);
    world.press(Qt::Key_Down, Qt::ShiftModifier);
    world.press(Qt::Key_Up);
    world.press(Qt::Key_Right);
    QCOMPARE(world.takeCalls(), words({"place 891,54 364x166", "place 891,55 364x166", "place 867,55 364x166",
                                       "place 867,79 364x166", "place 867,78 364x166", "place 868,78 364x166"}));
    QVERIFY(!world.saved());
    world.press(Qt::Key_Enter);
    QVERIFY(!world.controller->model().isAdjusting());
    QCOMPARE(world.saved(), (DesktopOverlayOrigin{868, 722}));
}

void DesktopOverlayControllerTest::keysStayOnTheScreen()
{
    OverlayControllerWorld world;
    world.controller->beginAdjusting();
    for (int i = 0; i < 3; ++i) {
        world.press(Qt::Key_Up, Qt::ShiftModifier);
        world.press(Qt::Key_Right, Qt::ShiftModifier);
    }
    QCOMPARE(world.surface->frame(), QRect(916, 30, 364, 166));
}

void DesktopOverlayControllerTest::keysReachTheOtherScreen()
{
    OverlayControllerWorld world;
    world.surface->now.visibleFrames.push_back(QRect(1280, 100, 1920, 1080));
    world.controller->beginAdjusting();
    for (int i = 0; i < 3; ++i)
        world.press(Qt::Key_Right, Qt::ShiftModifier);
    QCOMPARE(world.surface->frame(), QRect(1304, 100, 364, 166));
    world.press(Qt::Key_Return);
    QCOMPARE(world.saved(), (DesktopOverlayOrigin{1304, 700}));
}

void DesktopOverlayControllerTest::beginningAgainAsksForTheKeyboardAgain()
{
    OverlayControllerWorld world;
    world.controller->beginAdjusting();
    world.takeCalls();
    world.controller->beginAdjusting();
    QCOMPARE(world.takeCalls(), words({"interactive"}));
}

void DesktopOverlayControllerTest::escapePutsItBack()
{
    OverlayControllerWorld world;
    world.save(40, 700);
    world.controller->beginAdjusting();
    world.press(Qt::Key_Right, Qt::ShiftModifier);
    world.takeCalls();
    world.press(Qt::Key_Escape);
    QCOMPARE(world.takeCalls(), words({"passive", "place 40,100 364x166"}));
    QVERIFY(!world.controller->model().isAdjusting());
    QCOMPARE(world.saved(), (DesktopOverlayOrigin{40, 700}));
}

void DesktopOverlayControllerTest::closingPutsItBack()
{
    OverlayControllerWorld world;
    world.controller->beginAdjusting();
    QCloseEvent event;
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(world.controller->window(), &event);
    QVERIFY(!event.isAccepted());
    QVERIFY(!world.controller->model().isAdjusting());
    QVERIFY(world.controller->window()->isVisible());
    QVERIFY(!world.saved());
}

/// An application whose windows do not let themselves be closed cannot quit.
void DesktopOverlayControllerTest::letsTheApplicationQuit()
{
    OverlayControllerWorld world;
    world.controller->beginAdjusting();
    QVERIFY(world.controller->window()->close());
}

void DesktopOverlayControllerTest::doneButtonSaves()
{
    OverlayControllerWorld world;
    world.controller->beginAdjusting();
    auto *const done = world.controller->window()->findChild<QAbstractButton *>(QStringLiteral("desktop.adjust.done"));
    QTest::mouseClick(done, Qt::LeftButton);
    QVERIFY(!world.controller->model().isAdjusting());
    QCOMPARE(world.saved(), (DesktopOverlayOrigin{892, 746}));
}

void DesktopOverlayControllerTest::disablingLeavesWithoutSaving()
{
    OverlayControllerWorld world;
    world.controller->beginAdjusting();
    world.press(Qt::Key_Left);
    world.takeCalls();
    world.setEnabled(false);
    QCOMPARE(world.takeCalls(), words({"passive", "hide"}));
    QVERIFY(!world.controller->model().isAdjusting());
    QVERIFY(!world.controller->window()->allowsKey());
    QVERIFY(!world.saved());
}

void DesktopOverlayControllerTest::pricesDoNotMoveItWhileAdjusting()
{
    OverlayControllerWorld world;
    world.controller->beginAdjusting();
    world.press(Qt::Key_Left, Qt::ShiftModifier);
    world.takeCalls();
    world.coins.price(100);
    QCOMPARE(world.takeCalls(), QStringList());
    world.coins.watch(4);
    QCOMPARE(world.takeCalls(), words({"place 868,54 364x205"}));
}

void DesktopOverlayControllerTest::screenChanges()
{
    OverlayControllerWorld world;
    world.takeCalls();
    world.surface->onScreensChanged();
    QCOMPARE(world.takeCalls(), QStringList());
    world.surface->now = {{QRect(0, 0, 1000, 700)}, {0, 700}};
    world.surface->onScreensChanged();
    QCOMPARE(world.takeCalls(), words({"place 612,24 364x166"}));
    world.controller->beginAdjusting();
    world.takeCalls();
    world.surface->now = {{QRect(0, 0, 800, 600)}, {0, 600}};
    world.surface->onScreensChanged();
    world.controller->reposition();
    QCOMPARE(world.takeCalls(), QStringList());
    world.press(Qt::Key_Escape);
    QCOMPARE(world.takeCalls(), words({"passive", "place 412,24 364x166"}));
    world.setEnabled(false);
    world.takeCalls();
    world.surface->onScreensChanged();
    QCOMPARE(world.takeCalls(), QStringList());
}

void DesktopOverlayControllerTest::savedPlaceOnAGoneScreenStaysSaved()
{
    OverlayControllerWorld world;
    world.surface->now = {{QRect(0, 0, 1280, 800), QRect(1280, 0, 1280, 800)}, {0, 800}};
    world.save(2000, 600);
    QCOMPARE(world.surface->frame(), QRect(2000, 200, 364, 166));
    world.surface->now = {{QRect(0, 0, 1280, 800)}, {0, 800}};
    world.surface->onScreensChanged();
    QCOMPARE(world.surface->frame(), QRect(916, 200, 364, 166));
    QCOMPARE(world.saved(), (DesktopOverlayOrigin{2000, 600}));
    world.surface->now = {{QRect(0, 0, 1280, 800), QRect(1280, 0, 1280, 800)}, {0, 800}};
    world.surface->onScreensChanged();
    QCOMPARE(world.surface->frame(), QRect(2000, 200, 364, 166));
}

void DesktopOverlayControllerTest::strangePositions_data()
{
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("y");
    QTest::addColumn<QRect>("frame");
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    const double largest = std::numeric_limits<double>::max();
    const QRect topRight(892, 54, 364, 166);
    QTest::newRow("far") << 1e9 << 1e9 << QRect(916, 30, 364, 166);
    QTest::newRow("as far as numbers go") << -largest << largest << QRect(0, 30, 364, 166);
    QTest::newRow("not a number") << notANumber << 10.0 << topRight;
    QTest::newRow("infinite") << 10.0 << std::numeric_limits<double>::infinity() << topRight;
    QTest::newRow("between points") << 40.4 << 700.6 << QRect(40, 99, 364, 166);
}

void DesktopOverlayControllerTest::strangePositions()
{
    QFETCH(double, x);
    QFETCH(double, y);
    OverlayControllerWorld world;
    world.save(x, y);
    QTEST(world.surface->frame(), "frame");
    world.takeCalls();
    world.controller->apply(world.coins.settings.settings(), world.controller->model().content());
    QCOMPARE(world.takeCalls(), QStringList());
}

/// The second screen is above the first, and the first has a panel at its bottom.
void DesktopOverlayControllerTest::severalScreens()
{
    OverlayControllerWorld world;
    world.surface->now = {{QRect(0, 0, 1280, 770), QRect(0, -1000, 1600, 1000)}, {0, 800}};
    world.save(100, 1500);
    QCOMPARE(world.surface->frame(), QRect(100, -700, 364, 166));
    world.controller->beginAdjusting();
    world.press(Qt::Key_Return);
    QCOMPARE(world.saved(), (DesktopOverlayOrigin{100, 1500}));
    world.save(100, 830);
    QCOMPARE(world.surface->frame(), QRect(100, 0, 364, 166));
}

void DesktopOverlayControllerTest::unavailable()
{
    LogCapture log;
    OverlayControllerWorld world(3, false);
    world.hasPlace = false;
    QCOMPARE(log.texts(logCategory), QStringList());
    world.setEnabled(true);
    world.coins.price(100);
    world.controller->beginAdjusting();
    world.controller->reposition();
    world.controller->retranslate();
    QVERIFY(!world.controller->isAvailable());
    QVERIFY(!world.controller->window());
    QVERIFY(!world.controller->model().isAdjusting());
    QVERIFY(world.coins.settings.settings().desktopOverlayEnabled);
    QCOMPARE(log.texts(logCategory), words({"This desktop has no place for the overlay"}));
    QCOMPARE(world.surfacesMade, 1);
}

void DesktopOverlayControllerTest::withoutCompositor()
{
    OverlayControllerWorld world;
    world.coins.change([](AppSettings &settings) { settings.desktopOverlayBackgroundOpacity = 0.1; });
    DesktopOverlayWindow &window = *world.controller->window();
    QVERIFY(window.mask().isEmpty());
    world.surface->translucent = false;
    world.surface->onTranslucencyChanged();
    QCOMPARE(window.view().backdrop().opacity(), 1.0);
    QVERIFY(!window.view().list().legibility().halo);
    QVERIFY(!window.mask().contains(QPoint(0, 0)));
    QVERIFY(window.mask().contains(window.rect().center()));
    world.surface->translucent = true;
    world.surface->onTranslucencyChanged();
    QCOMPARE(window.view().backdrop().opacity(), 0.1);
    QVERIFY(window.mask().isEmpty());
}

TICKWISE_WIDGET_TEST(DesktopOverlayControllerTest)
#include "DesktopOverlayControllerTest.moc"
