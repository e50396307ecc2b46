#include "platform/surfaces/PanelStrut.h"

#include "doubles/TestProgram.h"

#include <limits>

using namespace tickwise;

using Strut = std::vector<uint32_t>;
class PanelStrutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void areas_data();
    void areas();
};

/// Two monitors beside each other, 1000 and 600 wide; the second is 200 lower at its bottom.
void PanelStrutTest::areas_data()
{
    const QRect first(0, 0, 1000, 800);
    const QRect second(1000, 0, 600, 600);
    const uint32_t largest = std::numeric_limits<uint32_t>::max();
    QTest::addColumn<QRect>("monitor");
    QTest::addColumn<Strut>("strut");
    QTest::addColumn<QRect>("area");
    QTest::newRow("no panel") << first << Strut() << first;
    QTest::newRow("too few numbers") << first << Strut{0, 0, 30, 0} << first;
    QTest::newRow("nothing kept") << first << Strut(12, 0) << first;
    QTest::newRow("top") << first << Strut{0, 0, 30, 0, 0, 0, 0, 0, 0, 999, 0, 0} << QRect(0, 30, 1000, 770);
    QTest::newRow("top of the other") << second << Strut{0, 0, 30, 0, 0, 0, 0, 0, 0, 999, 0, 0} << second;
    QTest::newRow("top of both") << second << Strut{0, 0, 30, 0, 0, 0, 0, 0, 0, 1599, 0, 0}
                                 << QRect(1000, 30, 600, 570);
    QTest::newRow("bottom") << first << Strut{0, 0, 0, 40, 0, 0, 0, 0, 0, 0, 0, 999} << QRect(0, 0, 1000, 760);
    QTest::newRow("bottom of the higher one")
        << second << Strut{0, 0, 0, 240, 0, 0, 0, 0, 0, 0, 1000, 1599} << QRect(1000, 0, 600, 560);
    QTest::newRow("left") << first << Strut{50, 0, 0, 0, 0, 799, 0, 0, 0, 0, 0, 0} << QRect(50, 0, 950, 800);
    QTest::newRow("left, on the second") << second << Strut{1050, 0, 0, 0, 0, 599, 0, 0, 0, 0, 0, 0}
                                         << QRect(1050, 0, 550, 600);
    QTest::newRow("left of the second leaves the first")
        << first << Strut{1050, 0, 0, 0, 0, 599, 0, 0, 0, 0, 0, 0} << first;
    QTest::newRow("right") << second << Strut{0, 60, 0, 0, 0, 0, 0, 599, 0, 0, 0, 0} << QRect(1000, 0, 540, 600);
    QTest::newRow("right, away from the first") << first << Strut{0, 60, 0, 0, 0, 0, 0, 599, 0, 0, 0, 0} << first;
    QTest::newRow("beyond all numbers") << first << Strut(12, largest) << first;
}

void PanelStrutTest::areas()
{
    QFETCH(QRect, monitor);
    QFETCH(Strut, strut);
    QTEST(withoutStrut(monitor, strut, {1600, 800}), "area");
}

TICKWISE_TEST(PanelStrutTest)
#include "PanelStrutTest.moc"
