#include "widget/views/WidgetText.h"

#include "doubles/TestProgram.h"

#include <QPainter>

using namespace tickwise;

namespace {

std::shared_ptr<const WidgetFace> face(int pixels)
{
    QFont font;
    font.setPixelSize(pixels);
    return std::make_shared<const WidgetFace>(font);
}

struct TextWorld
{
    std::shared_ptr<const WidgetFace> small = face(11);
    WidgetText price{QStringLiteral("1,234"), face(13), Qt::black, true, QRectF(100, 0, 100, 38), Qt::AlignRight};
    WidgetText name{QStringLiteral("Bitcoin"), small, Qt::gray, false, QRectF(0, 0, 100, 38)};
    std::vector<PlacedWidgetText> placed;

    QRectF replace(bool halo = false) { return replaceTexts(placed, {price, name}, halo); }
};

} // namespace

class WidgetTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sameTextsChangeNothing();
    void anotherTextChangesItsPlace();
    void anotherColorChangesItsPlace();
    void roomThatIsNotNeededChangesNothing();
    void fewerAndMoreTexts();
    void halosTakeRoom();
    void shadowsFadeOut_data();
    void shadowsFadeOut();
    void shadowsOfPartsAreThoseOfTheWhole();
};

void WidgetTextTest::sameTextsChangeNothing()
{
    TextWorld world;
    QVERIFY(!world.replace().isEmpty());
    QVERIFY(world.replace().isNull());
}

void WidgetTextTest::anotherTextChangesItsPlace()
{
    TextWorld world;
    world.replace();
    const QRectF oldInk = world.placed.front().ink(false);
    world.price.text = QStringLiteral("9,999,999");
    const QRectF changed = world.replace();
    QCOMPARE(changed, oldInk | world.placed.front().ink(false));
    QVERIFY(changed.left() > 100 && changed.right() >= 200 && changed.width() > oldInk.width());
    world.price.text = QStringLiteral("1");
    QCOMPARE(world.replace(), changed);
}

void WidgetTextTest::anotherColorChangesItsPlace()
{
    TextWorld world;
    world.replace();
    world.name.color = Qt::red;
    QCOMPARE(world.replace(), world.placed.back().ink(false));
}

void WidgetTextTest::roomThatIsNotNeededChangesNothing()
{
    TextWorld world;
    world.replace();
    world.name.box.setRight(90);
    QVERIFY(world.replace().isNull());
    world.name.box.setRight(20);
    QVERIFY(!world.replace().isNull());
    QVERIFY(world.placed.back().ink(false).right() < 30);
}

void WidgetTextTest::fewerAndMoreTexts()
{
    TextWorld world;
    world.replace();
    const QRectF name = world.placed.back().ink(false);
    QCOMPARE(replaceTexts(world.placed, {world.price}, false), name);
    QCOMPARE(world.placed.size(), std::size_t(1));
    QCOMPARE(world.replace(), name);
    QCOMPARE(world.placed.size(), std::size_t(2));
}

void WidgetTextTest::halosTakeRoom()
{
    TextWorld world;
    world.replace();
    const PlacedWidgetText &price = world.placed.front();
    QVERIFY(price.ink(true).contains(price.ink(false)));
    world.price.text.clear();
    world.replace(true);
    QVERIFY(price.ink(true).isNull());
}

void WidgetTextTest::shadowsFadeOut_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("scale");
    QTest::newRow("digit") << QStringLiteral("8") << 1.0;
    QTest::newRow("descender") << QStringLiteral("jg|") << 1.0;
    QTest::newRow("triangle") << QStringLiteral("\u25B2") << 1.25;
    QTest::newRow("Chinese") << QStringLiteral("\u6BD4") << 2.0;
}

/// They are not cut anywhere.
void WidgetTextTest::shadowsFadeOut()
{
    QFETCH(QString, text);
    QFETCH(double, scale);
    QImage image(200, 200, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.scale(scale, scale);
    face(20)->halo.draw(painter, 40, 50, text);
    painter.end();
    const auto alpha = [&image](int x, int y) { return qAlpha(image.pixel(x, y)); };
    int darkest = 0;
    for (int y = 1; y < image.height() - 1; ++y) {
        for (int x = 1; x < image.width() - 1; ++x) {
            darkest = std::max(darkest, alpha(x, y));
            const int clearest = std::min({alpha(x - 1, y), alpha(x + 1, y), alpha(x, y - 1), alpha(x, y + 1)});
            QVERIFY2(clearest > 0 || alpha(x, y) <= 12, qPrintable(QStringLiteral("%1,%2").arg(x).arg(y)));
        }
    }
    QVERIFY(darkest > 60);
}

/// The shadows of a number are put together from those of its digits.
void WidgetTextTest::shadowsOfPartsAreThoseOfTheWhole()
{
    const auto own = face(13);
    const QString text = QStringLiteral("8,888");
    const auto shadow = [&](const std::function<void(QPainter &)> &draw) {
        QImage image(120, 60, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        draw(painter);
        return image.convertToFormat(QImage::Format_Alpha8);
    };
    const QImage parts = shadow([&](QPainter &painter) {
        for (const TabularText::Part &part : own->tabular.parts(text, 20))
            own->halo.draw(painter, part.left, 35, part.text);
    });
    const QImage ground = shadow([&](QPainter &painter) {
        painter.setFont(own->font);
        own->tabular.draw(painter, 20, 35, text);
    });
    int darkest = 0;
    for (int y = 0; y < ground.height(); ++y) {
        for (int x = 0; x < ground.width(); ++x) {
            const int alpha = parts.constScanLine(y)[x];
            darkest = std::max(darkest, alpha);
            if (ground.constScanLine(y)[x] == 255)
                QVERIFY2(alpha > 40, qPrintable(QStringLiteral("%1,%2: %3").arg(x).arg(y).arg(alpha)));
        }
    }
    QVERIFY2(darkest > 60 && darkest < 150, qPrintable(QString::number(darkest)));
}

TICKWISE_WIDGET_TEST(WidgetTextTest)
#include "WidgetTextTest.moc"
