#include "platform/surfaces/WindowPopoverSurface.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

namespace {

constexpr QSize popoverSize(320, 298);
constexpr int margin = 30;
constexpr int panelHeight = 30;

/// A screen in logical pixels, with a panel at its top.
PopoverScreen screenAt(QRect geometry)
{
    return {geometry, geometry.adjusted(0, panelHeight, 0, 0)};
}

struct World
{
    explicit World(std::vector<PopoverScreen> there, bool isXWayland = false, bool hasCompositor = true)
        : screens(std::move(there))
        , surface({isXWayland, [hasCompositor] { return hasCompositor; }, [this] { return pointer; },
                   [this] { return screens; },
                   [this](QWidget &shown) { isOutOfTaskBar = &shown == &window && !shown.isVisible(); }})
    {
        surface.onPlaced = [this](const PopoverPlace &got) { place = got; };
    }

    bool click(QPoint at)
    {
        pointer = at;
        return surface.show(window, popoverSize, margin, {PopoverAnchor::Cause::click, std::nullopt, at});
    }
    /// The popover on the screen.
    QRect popover() const { return place.panel.translated(window.geometry().topLeft()); }

    std::vector<PopoverScreen> screens;
    QPoint pointer;
    QWidget window;
    PopoverPlace place;
    bool isOutOfTaskBar = false; ///< and was so before it was shown
    WindowPopoverSurface surface;
};

// A screen drawn at twice the size has half the logical pixels; one at 1.5 leaves a gap to its neighbor.
const PopoverScreen usual = screenAt({0, 0, 1920, 1080});
const PopoverScreen doubled = screenAt({1920, 0, 1280, 720});
const PopoverScreen oneAndAHalf = screenAt({3840, 200, 1707, 960});
const PopoverScreen above = screenAt({-200, -768, 1024, 768});

} // namespace

class WindowPopoverSurfaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void screensOfDifferentScale_data();
    void screensOfDifferentScale();
    void aScreenThatGoesWhileItIsOpen();
    void aRequestOpensWhereTheItemWas();
    void withoutScreensItIsNotShown();
    void aManagedWindowStaysOutOfPanels();
    void withoutACompositorThereIsNoMargin();
};

void WindowPopoverSurfaceTest::screensOfDifferentScale_data()
{
    QTest::addColumn<QPoint>("click");
    QTest::addColumn<QRect>("screen");
    QTest::newRow("usual") << QPoint(1900, 10) << usual.available;
    QTest::newRow("doubled, at its start") << QPoint(1921, 10) << doubled.available;
    QTest::newRow("doubled, at its end") << QPoint(3199, 10) << doubled.available;
    QTest::newRow("doubled, at its bottom") << QPoint(2500, 719) << doubled.available;
    QTest::newRow("one and a half") << QPoint(5500, 210) << oneAndAHalf.available;
    QTest::newRow("above, left of the first") << QPoint(-190, -760) << above.available;
}

void WindowPopoverSurfaceTest::screensOfDifferentScale()
{
    QFETCH(QPoint, click);
    QFETCH(QRect, screen);
    World world({usual, doubled, oneAndAHalf, above});
    QVERIFY(world.click(click));
    QCOMPARE(world.popover().size(), popoverSize);
    QVERIFY(screen.contains(world.popover()));
    QVERIFY(world.popover().left() - 8 <= click.x() && click.x() <= world.popover().right() + 8);
}

void WindowPopoverSurfaceTest::aScreenThatGoesWhileItIsOpen()
{
    World world({usual, doubled});
    QVERIFY(world.click(QPoint(2500, 10)));
    world.screens = {usual};
    world.surface.resize(popoverSize + QSize(0, 104));
    QCOMPARE(world.popover().size(), popoverSize + QSize(0, 104));
    QVERIFY(usual.available.contains(world.popover()));
}

void WindowPopoverSurfaceTest::aRequestOpensWhereTheItemWas()
{
    World world({usual, doubled});
    QVERIFY(world.click(QPoint(2500, 10)));
    const QRect clicked = world.popover();
    world.surface.hide();
    world.pointer = QPoint(100, 900);
    QVERIFY(world.surface.show(world.window, popoverSize, margin, {PopoverAnchor::Cause::request}));
    QCOMPARE(world.popover(), clicked);
}

void WindowPopoverSurfaceTest::withoutScreensItIsNotShown()
{
    World world({});
    QVERIFY(!world.click(QPoint(10, 10)));
    QVERIFY(!world.window.isVisible());
}

void WindowPopoverSurfaceTest::aManagedWindowStaysOutOfPanels()
{
    World grabbing({usual});
    QVERIFY(grabbing.click(QPoint(1900, 10)));
    QCOMPARE(grabbing.place.panel.topLeft(), QPoint(margin, margin));
    QVERIFY(!grabbing.isOutOfTaskBar);
    World managed({usual}, true);
    QVERIFY(managed.click(QPoint(1900, 10)));
    QCOMPARE(managed.popover(), grabbing.popover());
    QVERIFY(usual.available.contains(managed.window.geometry()));
    QVERIFY(managed.place.panel.left() == margin && managed.place.panel.top() < margin);
    QVERIFY(managed.isOutOfTaskBar);
}

void WindowPopoverSurfaceTest::withoutACompositorThereIsNoMargin()
{
    World world({usual}, false, false);
    QVERIFY(world.click(QPoint(1900, 10)));
    QCOMPARE(world.place.panel, QRect(QPoint(), popoverSize));
    QVERIFY(!world.place.isTranslucent);
}

TICKWISE_WIDGET_TEST(WindowPopoverSurfaceTest)
#include "WindowPopoverSurfaceTest.moc"
