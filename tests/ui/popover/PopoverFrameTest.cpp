#include "ui/popover/PopoverFrame.h"

#include "doubles/TestProgram.h"

#include <QPainter>

using namespace tickwise;

namespace {

constexpr QSize windowSize(300, 240);
constexpr QRect panel(40, 40, 220, 150);

PopoverFrame::Style style(double ratio = 1, bool hasShadow = true)
{
    return {QColor(40, 50, 60), QColor(255, 255, 255, 31), hasShadow, 1, ratio};
}

/// What the frame leaves on a transparent window when it paints these parts one after the other.
QImage painted(const std::vector<QRect> &parts, const PopoverFrame::Style &look, const QRect &box = panel)
{
    QImage picture(windowSize * look.devicePixelRatio, QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(look.devicePixelRatio);
    picture.fill(Qt::transparent);
    PopoverFrame frame;
    for (const QRect &part : parts) {
        QPainter painter(&picture);
        painter.setClipRect(part);
        frame.paint(painter, box, part, look);
    }
    return picture;
}

QImage whole(const PopoverFrame::Style &look)
{
    return painted({QRect(QPoint(), windowSize)}, look);
}

} // namespace

class PopoverFrameTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void edgesHaveNoSeams_data();
    void edgesHaveNoSeams();
    void isTheSameOnBothSides();
    void partsMatchTheWhole();
    void shadowFadesOut();
    void withoutShadowNothingIsOutside();
    void followsItsStyle();
    void shapeIsThePanelWithoutItsCorners();
};

void PopoverFrameTest::edgesHaveNoSeams_data()
{
    QTest::addColumn<double>("ratio");
    for (const double ratio : {1.0, 1.25, 1.5, 2.0, 3.0})
        QTest::addRow("%g", ratio) << ratio;
}

void PopoverFrameTest::edgesHaveNoSeams()
{
    QFETCH(double, ratio);
    const QImage picture = whole(style(ratio));
    // Along the straight part of an edge nothing changes, from outside the panel to its middle.
    const int first = qRound((panel.left() + 20) * ratio);
    const int last = qRound((panel.right() - 20) * ratio);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = first; x <= last; ++x)
            QCOMPARE(picture.pixel(x, y), picture.pixel(first, y));
    }
    QCOMPARE(picture.pixelColor(picture.rect().center()), style().ground);
}

void PopoverFrameTest::isTheSameOnBothSides()
{
    const QImage picture = whole(style());
    QCOMPARE(picture.mirrored(true, false), picture);
}

void PopoverFrameTest::partsMatchTheWhole()
{
    std::vector<QRect> parts;
    for (int y = 0; y < windowSize.height(); y += 35)
        parts.emplace_back(0, y, windowSize.width(), 35);
    QCOMPARE(painted(parts, style()), whole(style()));
}

void PopoverFrameTest::shadowFadesOut()
{
    const QImage picture = whole(style());
    const int x = panel.center().x();
    int last = 255;
    for (int y = panel.bottom() + 1; y < panel.bottom() + 32; ++y) {
        const int alpha = qAlpha(picture.pixel(x, y));
        QVERIFY2(alpha <= last, qPrintable(QString::number(y)));
        last = alpha;
    }
    QCOMPARE(last, 0);
    QVERIFY(qAlpha(picture.pixel(x, panel.bottom() + 4)) > qAlpha(picture.pixel(x, panel.top() - 4)));
}

void PopoverFrameTest::withoutShadowNothingIsOutside()
{
    const QImage picture = whole(style(1, false));
    for (int x = 0; x < picture.width(); ++x) {
        QCOMPARE(qAlpha(picture.pixel(x, panel.top() - 1)), 0);
        QCOMPARE(qAlpha(picture.pixel(x, panel.bottom() + 1)), 0);
    }
    QCOMPARE(qAlpha(picture.pixel(panel.topLeft())), 0); // round
    QCOMPARE(qAlpha(picture.pixel(panel.center().x(), panel.top())), 255);
}

void PopoverFrameTest::followsItsStyle()
{
    PopoverFrame frame;
    QImage picture(windowSize, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    PopoverFrame::Style look = style();
    frame.paint(painter, panel, picture.rect(), look);
    look.ground = Qt::white;
    frame.paint(painter, panel, picture.rect(), look);
    painter.end();
    QCOMPARE(picture.pixelColor(panel.left() + 3, panel.center().y()), QColor(Qt::white));
}

void PopoverFrameTest::shapeIsThePanelWithoutItsCorners()
{
    const QRegion shape = PopoverFrame::shape(panel);
    QCOMPARE(shape.boundingRect(), panel);
    const QImage picture = whole(style(1, false));
    for (int y = panel.top(); y <= panel.bottom(); ++y) {
        for (int x = panel.left(); x <= panel.right(); ++x) {
            const int covered = qAlpha(picture.pixel(x, y));
            if (covered < 64 || covered > 192)
                QCOMPARE(shape.contains(QPoint(x, y)), covered > 192);
        }
    }
}

TICKWISE_WIDGET_TEST(PopoverFrameTest)
#include "PopoverFrameTest.moc"
