#include "ui/controls/Look.h"

#include "doubles/TestProgram.h"
#include "support/drawing/Contrast.h"
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

/// The color of the paint on an opaque ground.
QColor over(const QColor &ground, const QColor &paint)
{
    const float share = paint.alphaF();
    const auto mix = [share](float below, float above) { return below * (1 - share) + above * share; };
    return QColor::fromRgbF(mix(ground.redF(), paint.redF()), mix(ground.greenF(), paint.greenF()),
                            mix(ground.blueF(), paint.blueF()));
}

} // namespace

class LookTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLinkThatCannotBeReadHasTheTextsColor();
    void secondaryTextFollowsThePalette();
    void secondaryTextCanBeReadOnAHoveredRow_data();
    void secondaryTextCanBeReadOnAHoveredRow();
};

void LookTest::aLinkThatCannotBeReadHasTheTextsColor()
{
    QCOMPARE(look::link(paletteOf(Qt::black, Qt::white, Qt::blue)), QColor(Qt::blue));
    QCOMPARE(look::link(paletteOf(Qt::white, Qt::black, Qt::blue)), QColor(Qt::white));
}

void LookTest::secondaryTextCanBeReadOnAHoveredRow_data()
{
    QTest::addColumn<QColor>("text");
    QTest::addColumn<QColor>("window");
    QTest::newRow("light") << QColor(35, 38, 41) << QColor(239, 240, 241);
    QTest::newRow("dark") << QColor(252, 252, 252) << QColor(42, 46, 50);
}

void LookTest::secondaryTextCanBeReadOnAHoveredRow()
{
    QFETCH(QColor, text);
    QFETCH(QColor, window);
    const QPalette palette = paletteOf(text, window, Qt::blue);
    const QColor plain = over(window, look::secondaryText(palette));
    QVERIFY(contrast(plain, window) >= readableContrast);
    const QColor row = over(window, look::hover(palette));
    const QColor hovered = over(row, look::secondaryText(palette, look::Ground::hovered));
    QVERIFY(contrast(hovered, row) >= readableContrast);
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
