#include "platform/surfaces/PopoverPlacement.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

namespace {

constexpr QSize size(320, 298);
constexpr int gap = 4;
const QRect wholeScreen(0, 0, 1280, 800);

/// A screen with panels that deep along its edges.
PopoverScreen screen(QMargins panels, QRect geometry = wholeScreen)
{
    return {geometry, geometry.marginsRemoved(panels)};
}

const PopoverScreen topPanel = screen({0, 30, 0, 0});
const PopoverScreen bottomPanel = screen({0, 0, 0, 30});
const PopoverScreen leftPanel = screen({40, 0, 0, 0});
const PopoverScreen rightPanel = screen({0, 0, 40, 0});
const PopoverScreen noPanel = screen({});

} // namespace

class PopoverPlacementTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void beside_data();
    void beside();
    void staysInsideWhereverItIsAskedFor();
    void shrinksToASmallScreen();
    void corner_data();
    void corner();
    void middle();
    void screenOfAPoint();
    void availableAreaIsOnThePointersSide();
    void besideAPanelOfUnknownDepth();
    void movedIntoAnArea();
};

void PopoverPlacementTest::beside_data()
{
    QTest::addColumn<QRect>("geometry");
    QTest::addColumn<QRect>("available");
    QTest::addColumn<QRect>("item");
    QTest::addColumn<QPoint>("topLeft");
    const auto row = [](const char *name, const PopoverScreen &screen, QRect item, QPoint topLeft) {
        QTest::newRow(name) << screen.geometry << screen.available << item << topLeft;
    };
    const int rightmost = 1280 - gap - size.width();
    const int lowest = 800 - gap - size.height();
    row("item in the top panel", topPanel, {600, 4, 100, 22}, {600 + 50 - 160, 30 + gap});
    row("item that fills the top panel", topPanel, {600, 0, 100, 30}, {490, 30 + gap});
    row("item at the top panel's end", topPanel, {1260, 4, 20, 22}, {rightmost, 30 + gap});
    row("item at the top panel's start", topPanel, {0, 4, 20, 22}, {gap, 30 + gap});
    row("pointer in the bottom panel", bottomPanel, {1200, 785, 1, 1}, {rightmost, 770 - gap - size.height()});
    row("pointer in the left panel", leftPanel, {10, 790, 1, 1}, {40 + gap, lowest});
    row("pointer in the right panel", rightPanel, {1270, 5, 1, 1}, {1240 - gap - size.width(), gap});
    row("pointer in a panel that hides, on top", noPanel, {640, 10, 1, 1}, {481, 10 + 1 + gap});
    row("pointer in a panel that hides, below", noPanel, {640, 790, 1, 1}, {481, 790 - gap - size.height()});
    const PopoverScreen second = screen({0, 24, 0, 0}, {1280, -100, 960, 540});
    row("second screen at another height", second, {2200, -95, 1, 1}, {2240 - gap - size.width(), -100 + 24 + gap});
}

void PopoverPlacementTest::beside()
{
    QFETCH(QRect, geometry);
    QFETCH(QRect, available);
    QFETCH(QRect, item);
    QFETCH(QPoint, topLeft);
    const QRect box = popoverBeside({geometry, available}, item, size);
    QCOMPARE(box, QRect(topLeft, size));
    QVERIFY(available.contains(box));
    QVERIFY(!box.intersects(item));
}

void PopoverPlacementTest::staysInsideWhereverItIsAskedFor()
{
    for (const PopoverScreen &each : {topPanel, bottomPanel, leftPanel, rightPanel, noPanel}) {
        for (int x = -50; x <= 1330; x += 30) {
            for (int y = -50; y <= 850; y += 30) {
                const QRect box = popoverBeside(each, QRect(x, y, 1, 1), size);
                QVERIFY2(each.available.contains(box), qPrintable(QStringLiteral("%1, %2").arg(x).arg(y)));
                QCOMPARE(box.size(), size);
            }
        }
    }
}

void PopoverPlacementTest::shrinksToASmallScreen()
{
    const PopoverScreen small = screen({0, 20, 0, 0}, {0, 0, 300, 240});
    const QRect room(gap, 20 + gap, 300 - 2 * gap, 220 - 2 * gap);
    QCOMPARE(popoverBeside(small, QRect(290, 5, 1, 1), size), room);
    QCOMPARE(popoverInCorner(small, size), room);
    QCOMPARE(popoverInMiddle(small, size), room);
}

void PopoverPlacementTest::corner_data()
{
    QTest::addColumn<QRect>("available");
    QTest::addColumn<QPoint>("topLeft");
    const int right = 1280 - gap - size.width();
    const int low = 800 - gap - size.height();
    QTest::newRow("top panel") << topPanel.available << QPoint(right, 30 + gap);
    QTest::newRow("bottom panel") << bottomPanel.available << QPoint(right, low - 30);
    QTest::newRow("left panel") << leftPanel.available << QPoint(40 + gap, low);
    QTest::newRow("right panel") << rightPanel.available << QPoint(right - 40, low);
    QTest::newRow("no panel") << noPanel.available << QPoint(right, gap);
    QTest::newRow("the wider of two") << screen({0, 24, 0, 48}).available << QPoint(right, low - 48);
}

void PopoverPlacementTest::corner()
{
    QFETCH(QRect, available);
    QFETCH(QPoint, topLeft);
    QCOMPARE(popoverInCorner({wholeScreen, available}, size), QRect(topLeft, size));
}

void PopoverPlacementTest::middle()
{
    QCOMPARE(popoverInMiddle(topPanel, size).center(), QPoint(639, 414));
}

void PopoverPlacementTest::screenOfAPoint()
{
    const std::vector<PopoverScreen> screens{screen({}), screen({}, {1280, 200, 1920, 1080}),
                                             screen({}, {0, 800, 640, 480})};
    QCOMPARE(screenAt(screens, {1279, 700}).geometry, screens[0].geometry);
    QCOMPARE(screenAt(screens, {1280, 700}).geometry, screens[1].geometry);
    QCOMPARE(screenAt(screens, {10, 900}).geometry, screens[2].geometry);
    QCOMPARE(screenAt(screens, {5000, 100}).geometry, screens[1].geometry);
    QCOMPARE(screenAt(screens, {1300, 100}).geometry, screens[0].geometry);
}

void PopoverPlacementTest::availableAreaIsOnThePointersSide()
{
    const QSize whole(1280, 800);
    const QSize usable(1240, 770);
    QCOMPARE(availableArea(whole, usable, {1200, 5}), QRect(0, 30, 1240, 770));
    QCOMPARE(availableArea(whole, usable, {5, 790}), QRect(40, 0, 1240, 770));
    QCOMPARE(availableArea(whole, whole, {5, 790}), QRect(0, 0, 1280, 800));
    QCOMPARE(availableArea(usable, whole, {5, 5}), QRect(0, 0, 1240, 770));
}

void PopoverPlacementTest::besideAPanelOfUnknownDepth()
{
    const QSize screen(1280, 800);
    QCOMPARE(usableBesideUnknownPanel(screen, {1070, 785}), QSize(1280, 756));
    QCOMPARE(usableBesideUnknownPanel(screen, {1279, 0}), QSize(1280, 756));
    QCOMPARE(usableBesideUnknownPanel(screen, {10, 400}), QSize(1236, 800));
    QCOMPARE(usableBesideUnknownPanel(screen, {1270, 400}), QSize(1236, 800));
    QCOMPARE(usableBesideUnknownPanel(screen, {640, 400}), screen);
}

void PopoverPlacementTest::movedIntoAnArea()
{
    const QRect area(10, 20, 100, 50);
    QCOMPARE(movedInto(area, {30, 30, 20, 10}), QRect(30, 30, 20, 10));
    QCOMPARE(movedInto(area, {-40, 300, 20, 10}), QRect(10, 60, 20, 10));
    QCOMPARE(movedInto(area, {300, -40, 20, 10}), QRect(90, 20, 20, 10));
    QCOMPARE(movedInto(area, {50, 40, 200, 90}), QRect(10, 20, 200, 90));
}

TICKWISE_TEST(PopoverPlacementTest)
#include "PopoverPlacementTest.moc"
