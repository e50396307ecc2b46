#include "ui/controls/Look.h"

#include "doubles/TestProgram.h"
#include "ui/controls/SecondaryLabel.h"

#include <QPalette>

using namespace tickwise;

namespace {

QPalette paletteOf(const QColor &text, const QColor &ground, const QColor &link)
{
    QPalette palette(text, ground, ground, ground, ground, text, text, ground, ground);
    palette.setColor(QPalette::Link, link);
    return palette;
}

} // namespace

class LookTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void contrastOfTwoColors_data();
    void contrastOfTwoColors();
    void aLinkThatCannotBeReadHasTheTextsColor();
    void secondaryTextFollowsThePalette();
};

void LookTest::contrastOfTwoColors_data()
{
    QTest::addColumn<QColor>("color");
    QTest::addColumn<double>("onWhite");
    QTest::newRow("black") << QColor(Qt::black) << 21.0;
    QTest::newRow("white") << QColor(Qt::white) << 1.0;
    QTest::newRow("the lightest gray that can be read") << QColor(0x76, 0x76, 0x76) << 4.54;
    QTest::newRow("blue") << QColor(Qt::blue) << 8.59;
}

void LookTest::contrastOfTwoColors()
{
    QFETCH(QColor, color);
    QFETCH(double, onWhite);
    QVERIFY(std::abs(look::contrast(color, Qt::white) - onWhite) < 0.01);
    QCOMPARE(look::contrast(Qt::white, color), look::contrast(color, Qt::white));
}

void LookTest::aLinkThatCannotBeReadHasTheTextsColor()
{
    QCOMPARE(look::link(paletteOf(Qt::black, Qt::white, Qt::blue)), QColor(Qt::blue));
    QCOMPARE(look::link(paletteOf(Qt::white, Qt::black, Qt::blue)), QColor(Qt::white));
}

void LookTest::secondaryTextFollowsThePalette()
{
    QWidget window;
    const auto *const label = new SecondaryLabel(&window);
    for (const QPalette &palette :
         {paletteOf(Qt::black, Qt::white, Qt::blue), paletteOf(Qt::white, Qt::black, Qt::blue)}) {
        window.setPalette(palette);
        QCOMPARE(label->palette().color(QPalette::WindowText), look::secondaryText(palette));
    }
}

TICKWISE_WIDGET_TEST(LookTest)
#include "LookTest.moc"
