#include "support/drawing/Contrast.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

class ContrastTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void contrastOfTwoColors_data();
    void contrastOfTwoColors();
    void readableColors_data();
    void readableColors();
};

void ContrastTest::contrastOfTwoColors_data()
{
    QTest::addColumn<QColor>("color");
    QTest::addColumn<double>("onWhite");
    QTest::newRow("black") << QColor(Qt::black) << 21.0;
    QTest::newRow("white") << QColor(Qt::white) << 1.0;
    QTest::newRow("the lightest gray that can be read") << QColor(0x76, 0x76, 0x76) << 4.54;
    QTest::newRow("blue") << QColor(Qt::blue) << 8.59;
}

void ContrastTest::contrastOfTwoColors()
{
    QFETCH(QColor, color);
    QFETCH(double, onWhite);
    QVERIFY(std::abs(contrast(color, Qt::white) - onWhite) < 0.01);
    QCOMPARE(contrast(Qt::white, color), contrast(color, Qt::white));
}

void ContrastTest::readableColors_data()
{
    QTest::addColumn<QColor>("ground");
    QTest::addColumn<QColor>("preferred");
    QTest::addColumn<QColor>("expected");
    QTest::newRow("the preferred one") << QColor(0x15, 0x53, 0x9e) << QColor(0xfc, 0xfc, 0xfc)
                                       << QColor(0xfc, 0xfc, 0xfc);
    QTest::newRow("white on a light blue") << QColor(0x3d, 0xae, 0xe9) << QColor(Qt::white) << QColor(Qt::black);
    QTest::newRow("white on a middle blue") << QColor(0x30, 0x8c, 0xc6) << QColor(Qt::white) << QColor(Qt::black);
    QTest::newRow("black on a dark blue") << QColor(0x15, 0x53, 0x9e) << QColor(Qt::black) << QColor(Qt::white);
    QTest::newRow("its own color") << QColor(Qt::white) << QColor(Qt::white) << QColor(Qt::black);
}

void ContrastTest::readableColors()
{
    QFETCH(QColor, ground);
    QFETCH(QColor, preferred);
    QFETCH(QColor, expected);
    QCOMPARE(readableOn(ground, preferred), expected);
    QVERIFY(contrast(ground, expected) >= readableContrast);
}

TICKWISE_TEST(ContrastTest)
#include "ContrastTest.moc"
