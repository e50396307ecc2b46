#include "pipeline/ReorderGeometry.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

namespace {

const QStringList abcd{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"), QStringLiteral("d")};

} // namespace

class ReorderGeometryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void floatingRow_data();
    void floatingRow();
    void insertion_data();
    void insertion();
    void scrollDirection_data();
    void scrollDirection();
    void scrollStep_data();
    void scrollStep();
    void higherRows();
    void order_data();
    void order();
};

void ReorderGeometryTest::floatingRow_data()
{
    QTest::addColumn<double>("pointerY");
    QTest::addColumn<double>("grabOffset");
    QTest::addColumn<int>("rows");
    QTest::addColumn<double>("scrollOffset");
    QTest::addColumn<double>("height");
    QTest::addColumn<double>("top");
    const auto row = [](const char *name, double pointer, double grab, int rows, double offset, double height,
                        double top) { QTest::newRow(name) << pointer << grab << rows << offset << height << top; };
    row("under the pointer", 100, 10, 10, 0, 220, 90);
    row("not above the list", -50, 10, 10, 0, 220, 0);
    row("not below the viewport", 500, 10, 10, 0, 220, 176);
    row("not below a short list", 500, 10, 3, 0, 220, 88);
    row("not below the end of a scrolled list", 500, 10, 10, 220, 220, 176);
    row("at the top of a scrolled viewport", -50, 10, 10, 100, 220, 0);
    row("below a list that bounces at its top", -50, 10, 10, -20, 220, 20);
    row("above the end of a list that bounces there", 500, 10, 10, 260, 220, 136);
    row("one row", 300, 10, 1, 0, 220, 0);
    row("one row that bounces", 300, 10, 1, -8, 220, 8);
    row("a viewport lower than a row", 300, 10, 10, 0, 30, 0);
    row("a viewport of one row", 300, 10, 10, 0, 44, 0);
    row("a viewport a little higher than one row", 300, 10, 10, 0, 45, 1);
}

void ReorderGeometryTest::floatingRow()
{
    QFETCH(double, pointerY);
    QFETCH(double, grabOffset);
    QFETCH(int, rows);
    QFETCH(double, scrollOffset);
    QFETCH(double, height);
    QTEST(floatingRowTop(pointerY, grabOffset, rows, {scrollOffset, height}), "top");
}

void ReorderGeometryTest::insertion_data()
{
    QTest::addColumn<double>("floatingY");
    QTest::addColumn<int>("rows");
    QTest::addColumn<double>("scrollOffset");
    QTest::addColumn<int>("index");
    const auto row = [](const char *name, double y, int rows, double offset, int index) {
        QTest::newRow(name) << y << rows << offset << index;
    };
    row("at its place", 0.0, 10, 0.0, 0);
    row("half a row less", 21.9, 10, 0.0, 0);
    row("half a row", 22.0, 10, 0.0, 1);
    row("a row and a half", 66.0, 10, 0.0, 2);
    row("scrolled", 22.0, 10, 44.0, 2);
    row("the last", 1000.0, 10, 0.0, 9);
    row("above the first", -100.0, 10, 0.0, 0);
    row("one row", 30.0, 1, 0.0, 0);
}

void ReorderGeometryTest::insertion()
{
    QFETCH(double, floatingY);
    QFETCH(int, rows);
    QFETCH(double, scrollOffset);
    QTEST(insertionIndex(floatingY, rows, {scrollOffset, 220}), "index");
}

void ReorderGeometryTest::scrollDirection_data()
{
    QTest::addColumn<double>("pointerY");
    QTest::addColumn<double>("scrollOffset");
    QTest::addColumn<int>("direction"); // -1 up, 1 down, 0 none
    const auto row = [](const char *name, double y, double offset, int direction) {
        QTest::newRow(name) << y << offset << direction;
    };
    // Ten rows of 44 in a viewport of 220: the offset ends at 220.
    row("in the middle", 110.0, 100.0, 0);
    row("near the top", 31.9, 100.0, -1);
    row("32 from the top", 32.0, 100.0, 0);
    row("above the viewport", -10.0, 100.0, -1);
    row("near the top, scrolled by one", 10.0, 1.0, 0);
    row("near the top, scrolled by more", 10.0, 1.1, -1);
    row("near the bottom", 188.1, 100.0, 1);
    row("32 from the bottom", 188.0, 100.0, 0);
    row("below the viewport", 300.0, 100.0, 1);
    row("near the bottom, one from the end", 210.0, 219.0, 0);
    row("near the bottom, more from the end", 210.0, 218.9, 1);
}

void ReorderGeometryTest::scrollDirection()
{
    QFETCH(double, pointerY);
    QFETCH(double, scrollOffset);
    QFETCH(int, direction);
    const auto found = autoScrollDirection(pointerY, 10, {scrollOffset, 220});
    QCOMPARE(found.has_value(), direction != 0);
    if (found)
        QCOMPARE(*found, direction < 0 ? AutoScrollDirection::up : AutoScrollDirection::down);
}

void ReorderGeometryTest::scrollStep_data()
{
    QTest::addColumn<bool>("up");
    QTest::addColumn<int>("rows");
    QTest::addColumn<double>("scrollOffset");
    QTest::addColumn<int>("row"); // -1: none
    const auto row = [](const char *name, bool up, int rows, double offset, int target) {
        QTest::newRow(name) << up << rows << offset << target;
    };
    row("up from between two rows", true, 10, 100.0, 1);
    row("up from the edge of a row", true, 10, 88.0, 1);
    row("up to the first", true, 10, 44.0, 0);
    row("up within the first", true, 10, 20.0, 0);
    row("up at the top", true, 10, 1.0, -1);
    row("up, just not at the top", true, 10, 1.1, 0);
    row("down from between two rows", false, 10, 100.0, 8);
    row("down from the edge of a row", false, 10, 88.0, 7);
    row("down to the last", false, 10, 200.0, 9);
    row("down at the end", false, 10, 219.0, -1);
    row("down, just not at the end", false, 10, 218.9, 9);
    row("no rows", false, 0, 0.0, -1);
}

void ReorderGeometryTest::scrollStep()
{
    QFETCH(bool, up);
    QFETCH(int, rows);
    QFETCH(double, scrollOffset);
    QFETCH(int, row);
    const auto direction = up ? AutoScrollDirection::up : AutoScrollDirection::down;
    const auto step = autoScrollStep(direction, rows, {scrollOffset, 220});
    QCOMPARE(step.has_value(), row >= 0);
    if (step)
        QCOMPARE(*step, (AutoScrollStep{row, up ? ViewportEdge::top : ViewportEdge::bottom}));
}

/// Ten rows of 88 in a viewport of 440: everything is twice as large.
void ReorderGeometryTest::higherRows()
{
    const auto scrolled = [](double offset) { return ReorderViewport{offset, 440, 88}; };
    QCOMPARE(rowTop(3, scrolled(44)), 220.0);
    QCOMPARE(floatingRowTop(1000, 20, 10, scrolled(0)), 352.0);
    QCOMPARE(floatingRowTop(1000, 20, 3, scrolled(0)), 176.0);
    QCOMPARE(insertionIndex(43.9, 10, scrolled(0)), 0);
    QCOMPARE(insertionIndex(44, 10, scrolled(88)), 2);
    QCOMPARE(autoScrollDirection(63.9, 10, scrolled(200)), std::optional(AutoScrollDirection::up));
    QCOMPARE(autoScrollDirection(64, 10, scrolled(200)), std::optional<AutoScrollDirection>());
    QCOMPARE(autoScrollDirection(376.1, 10, scrolled(438.9)), std::optional(AutoScrollDirection::down));
    QCOMPARE(autoScrollDirection(376.1, 10, scrolled(439)), std::optional<AutoScrollDirection>());
    QCOMPARE(autoScrollStep(AutoScrollDirection::up, 10, scrolled(200)),
             std::optional(AutoScrollStep{1, ViewportEdge::top}));
    QCOMPARE(autoScrollStep(AutoScrollDirection::down, 10, scrolled(176)),
             std::optional(AutoScrollStep{7, ViewportEdge::bottom}));
}

void ReorderGeometryTest::order_data()
{
    QTest::addColumn<int>("source");
    QTest::addColumn<int>("insertion");
    QTest::addColumn<QString>("joined");
    const auto row = [](const char *name, int source, int insertion, const char *joined) {
        QTest::newRow(name) << source << insertion << QString::fromLatin1(joined);
    };
    row("down", 0, 2, "bcad");
    row("up", 3, 1, "adbc");
    row("to its place", 1, 1, "abcd");
    row("to the end", 0, 3, "bcda");
    row("past the end", 0, 99, "bcda");
    row("before the start", 2, -5, "cabd");
    row("no such row", 4, 0, "abcd");
    row("a negative row", -1, 0, "abcd");
}

void ReorderGeometryTest::order()
{
    QFETCH(int, source);
    QFETCH(int, insertion);
    QTEST(reordered(abcd, source, insertion).join(QString()), "joined");
}

TICKWISE_TEST(ReorderGeometryTest)
#include "ReorderGeometryTest.moc"
