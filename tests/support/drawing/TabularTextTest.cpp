#include "support/drawing/TabularText.h"

#include "doubles/TestProgram.h"

#include <QPainter>

using namespace tickwise;

namespace {

QFont fontOf(int pixels)
{
    QFont font;
    font.setPixelSize(pixels);
    return font;
}

/// Draws with a painter of that scale, starting at 5.3, 30.
QImage painted(double scale, const std::function<void(QPainter &)> &draw)
{
    QImage image(400, 100, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.scale(scale, scale);
    painter.setPen(Qt::darkBlue);
    painter.translate(5.3, 30);
    draw(painter);
    return image;
}

} // namespace

class TabularTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void digitsAreEquallyWide();
    void eachPartStartsWhereTheOthersEnd_data();
    void eachPartStartsWhereTheOthersEnd();
    void drawsWhatAPainterDraws_data();
    void drawsWhatAPainterDraws();
    void forgetsNoText();
};

void TabularTextTest::digitsAreEquallyWide()
{
    const TabularText text(fontOf(13));
    QCOMPARE(text.width(u"1,111.1"), text.width(u"8,888.8"));
    QCOMPARE(text.width(u"11"), 2 * text.width(u"7"));
    QCOMPARE(text.width(u""), 0.0);
}

void TabularTextTest::eachPartStartsWhereTheOthersEnd_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("parts");
    const auto add = [](const char16_t *text, const QStringList &parts) {
        QTest::newRow(qPrintable(QString::fromUtf16(text))) << QString::fromUtf16(text) << parts;
    };
    add(u"", {});
    add(u"7", {QStringLiteral("7")});
    add(u"BTC 12.5%", {QStringLiteral("BTC "), QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("."),
                       QStringLiteral("5"), QStringLiteral("%")});
    add(u"▼ -0.1", {QStringLiteral("▼ -"), QStringLiteral("0"), QStringLiteral("."), QStringLiteral("1")});
    add(u"下午3", {QStringLiteral("下午"), QStringLiteral("3")});
}

void TabularTextTest::eachPartStartsWhereTheOthersEnd()
{
    QFETCH(QString, text);
    QFETCH(QStringList, parts);
    const TabularText tabular(fontOf(13));
    QStringList found;
    for (const TabularText::Part &part : tabular.parts(text, 100)) {
        const double before = tabular.width(QStringView(text).first(part.text.data() - text.constData()));
        QVERIFY(std::abs(part.left - 100 - before) <= 1); // digits stand in the middle of their cells
        found.append(part.text.toString());
    }
    QCOMPARE(found, parts);
}

void TabularTextTest::drawsWhatAPainterDraws_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("scale");
    for (const char16_t *const text : {u"67,432.1", u"▲ +1.23%", u"▼ -0.07%", u"BTC 0.1234", u"下午3:05", u"1e+99"}) {
        for (const double scale : {1.0, 1.25, 1.5, 2.0, 3.0})
            QTest::addRow("%s at %g", qPrintable(QString::fromUtf16(text)), scale) << QString::fromUtf16(text) << scale;
    }
}

void TabularTextTest::drawsWhatAPainterDraws()
{
    QFETCH(QString, text);
    QFETCH(double, scale);
    const TabularText tabular(fontOf(13));
    const QImage expected = painted(scale, [&](QPainter &painter) {
        painter.setFont(fontOf(13));
        for (const TabularText::Part &part : tabular.parts(text, 0))
            painter.drawText(QPointF(part.left, 0), part.text.toString());
    });
    QVERIFY(expected != painted(scale, [](QPainter &) {}));
    QCOMPARE(painted(scale, [&](QPainter &painter) { tabular.draw(painter, 0, 0, text); }), expected);
}

/// However many texts it has drawn before.
void TabularTextTest::forgetsNoText()
{
    const TabularText used(fontOf(13));
    const auto draw = [](const TabularText &tabular, const QString &text) {
        return painted(1, [&](QPainter &painter) { tabular.draw(painter, 0, 0, text); });
    };
    for (int i = 0; i < 300; ++i)
        draw(used, QStringLiteral("%1 %2").arg(QChar(u'A' + i % 26), QString(1 + i / 26, QChar(u'x'))));
    const QString price = QStringLiteral("▲ +12.5%");
    QCOMPARE(draw(used, price), draw(TabularText(fontOf(13)), price));
    QCOMPARE(used.width(price), TabularText(fontOf(13)).width(price));
}

TICKWISE_WIDGET_TEST(TabularTextTest)
#include "TabularTextTest.moc"
