#include "overlay/DesktopOverlayPlacement.h"

#include "doubles/TestProgram.h"

#include <limits>

using namespace tickwise;

using Frames = std::vector<DesktopRect>;
using Corner = std::optional<DesktopOverlayOrigin>;
namespace {

const DesktopRect leftScreen{0, 40, 1000, 760};
const DesktopRect rightScreen{1000, 0, 1600, 900};

} // namespace

class DesktopOverlayPlacementTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sizes_data();
    void sizes();
    void places_data();
    void places();
    void countsFromThePrimaryScreen();
    void nudges_data();
    void nudges();
};

void DesktopOverlayPlacementTest::sizes_data()
{
    QTest::addColumn<bool>("large");
    QTest::addColumn<int>("rows");
    QTest::addColumn<QSizeF>("size");
    QTest::newRow("empty") << false << 0 << QSizeF(364, 170);
    QTest::newRow("empty, large") << true << 0 << QSizeF(400, 170);
    QTest::newRow("no content") << false << -1 << QSizeF(364, 170);
    QTest::newRow("one row") << false << 1 << QSizeF(364, 88);
    QTest::newRow("one row, large") << true << 1 << QSizeF(400, 93);
    QTest::newRow("three rows") << false << 3 << QSizeF(364, 166);
    QTest::newRow("three rows, large") << true << 3 << QSizeF(400, 179);
}

void DesktopOverlayPlacementTest::sizes()
{
    QFETCH(bool, large);
    QFETCH(int, rows);
    QTEST(desktopOverlaySize(large ? DesktopOverlayTextSize::large : DesktopOverlayTextSize::normal, rows), "size");
}

void DesktopOverlayPlacementTest::places_data()
{
    QTest::addColumn<Corner>("saved");
    QTest::addColumn<Frames>("frames");
    QTest::addColumn<QPointF>("origin");
    // A window of 400 by 200.
    const auto row = [](const char *name, Corner saved, Frames frames, double x, double y) {
        QTest::newRow(name) << saved << frames << QPointF(x, y);
    };
    const auto at = [](double x, double y) { return Corner(DesktopOverlayOrigin{x, y}); };
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    row("no screens", at(50, 60), {}, 0, 0);
    row("no screens, nothing saved", {}, {}, 0, 0);
    row("nothing saved: top right of the first", {}, {leftScreen, rightScreen}, 576, 576);
    row("nothing saved: the first in order", {}, {rightScreen, leftScreen}, 2176, 676);
    row("where it was", at(100, 700), {leftScreen, rightScreen}, 100, 500);
    row("over the left edge", at(-30, 700), {leftScreen, rightScreen}, 0, 500);
    row("over the bottom edge", at(100, 100), {leftScreen}, 100, 40);
    row("over the top edge", at(100, 900), {leftScreen}, 100, 600);
    row("over the right edge", at(900, 700), {leftScreen}, 600, 500);
    row("mostly on the left", at(700, 700), {leftScreen, rightScreen}, 600, 500);
    row("mostly on the right", at(900, 700), {leftScreen, rightScreen}, 1000, 500);
    row("half on each: the earlier", at(800, 700), {leftScreen, rightScreen}, 600, 500);
    row("half on each: the earlier, turned", at(800, 700), {rightScreen, leftScreen}, 1000, 500);
    row("off every screen: the nearest", at(5000, 5000), {leftScreen, rightScreen}, 2200, 700);
    row("off every screen, to the left", at(-5000, 300), {leftScreen, rightScreen}, 0, 100);
    row("touching an edge is off the screen", at(-400, 300), {leftScreen, rightScreen}, 0, 100);
    row("equally far: the earlier", at(800, 5000), {{0, 0, 1000, 800}, {1000, 0, 1000, 800}}, 600, 600);
    row("far away", at(1e9, -1e9), {leftScreen, rightScreen}, 2200, 0);
    row("not a number counts as nothing saved", at(notANumber, 100), {leftScreen}, 576, 576);
    row("infinite counts as nothing saved", at(100, std::numeric_limits<double>::infinity()), {leftScreen}, 576, 576);
    row("a screen that is too small: its left bottom corner", at(700, 700), {{20, 30, 300, 100}}, 20, 30);
}

void DesktopOverlayPlacementTest::places()
{
    QFETCH(Corner, saved);
    QFETCH(Frames, frames);
    const DesktopRect frame = desktopOverlayFrame({400, 200}, saved, frames);
    QTEST(QPointF(frame.left, frame.bottom), "origin");
    QCOMPARE(QSizeF(frame.width, frame.height), QSizeF(400, 200));
}

void DesktopOverlayPlacementTest::countsFromThePrimaryScreen()
{
    const DesktopScreens primaryOnTheRight{{{1280, 0, 1920, 1080}, {0, 0, 1280, 800}}, {1280, 1080}};
    const DesktopOverlayOrigin saved = desktopOverlayOrigin({1380, 180}, primaryOnTheRight);
    QCOMPARE(saved, (DesktopOverlayOrigin{100, 900}));
    QCOMPARE(desktopOverlayFrame({400, 200}, saved, primaryOnTheRight), QRect(1380, 180, 400, 200));
    const DesktopScreens alone{{{0, 0, 1920, 1080}}, {0, 1080}};
    QCOMPARE(desktopOverlayFrame({400, 200}, saved, alone), QRect(100, 180, 400, 200));
    QCOMPARE(desktopOverlayFrame({400, 200}, DesktopOverlayOrigin{-700, 900}, primaryOnTheRight),
             QRect(580, 180, 400, 200));
}

void DesktopOverlayPlacementTest::nudges_data()
{
    QTest::addColumn<QPoint>("corner");
    QTest::addColumn<QPoint>("step");
    QTest::addColumn<QPoint>("result");
    QTest::newRow("a point") << QPoint(100, 100) << QPoint(1, 0) << QPoint(101, 100);
    QTest::newRow("up to the edge") << QPoint(870, 100) << QPoint(24, 0) << QPoint(880, 100);
    QTest::newRow("over the right edge") << QPoint(880, 100) << QPoint(1, 0) << QPoint(1280, 230);
    QTest::newRow("back over the left edge") << QPoint(1280, 230) << QPoint(-24, 0) << QPoint(880, 230);
    QTest::newRow("nothing beyond") << QPoint(100, 600) << QPoint(0, 24) << QPoint(100, 600);
    QTest::newRow("the nearer one below") << QPoint(1280, 1110) << QPoint(0, 1) << QPoint(1280, 1310);
    QTest::newRow("nothing is above a screen beside") << QPoint(0, 0) << QPoint(0, -1) << QPoint(0, 0);
}

void DesktopOverlayPlacementTest::nudges()
{
    QFETCH(QPoint, corner);
    QFETCH(QPoint, step);
    const DesktopScreens screens{
        {{0, 0, 1280, 800}, {1280, 230, 1920, 1080}, {1280, 1310, 1920, 1080}, {1280, 2390, 1920, 1080}}, {0, 800}};
    const QRect frame(corner, QSize(400, 200));
    QTEST(desktopOverlayNudged(frame, step, screens).topLeft(), "result");
    QCOMPARE(desktopOverlayNudged(frame, step, screens).size(), frame.size());
}

TICKWISE_TEST(DesktopOverlayPlacementTest)
#include "DesktopOverlayPlacementTest.moc"
