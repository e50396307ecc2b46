#include "pipeline/StatusItemPainter.h"

#include "doubles/TestProgram.h"
#include "pipeline/CompactPrice.h"
#include "support/drawing/TintedSvg.h"

#include <QPainter>

using namespace tickwise;

namespace {

const QColor pureGreen(0x2c, 0xbd, 0x84);
const QColor panelText(0xf2, 0xf2, 0xf2);

StatusItemStyle style()
{
    return {QFont(), panelText};
}

StatusItemContent priced(const QString &text)
{
    StatusItemContent content;
    content.logo = false;
    content.text = text;
    content.symbol = text.trimmed().section(u' ', 0, 0);
    content.price = text.trimmed().section(u' ', 1);
    content.textColor = pureGreen;
    content.title = text.trimmed();
    return content;
}

StatusItemContent pilled(const QString &text)
{
    StatusItemContent content = priced(text);
    content.textColor = QColor(Qt::white);
    content.pillColor = pureGreen;
    return content;
}

QImage wide(const StatusItemContent &content, int height = 22, int scale = 1)
{
    return paintStatusItem(content, style(), statusItemWidth(content, style().font, height), height, scale);
}

int opaquePixels(const QImage &image, const QColor &color)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += image.pixelColor(x, y) == color ? 1 : 0;
    }
    return count;
}

/// The smallest rectangle with everything that is not transparent.
QRect inked(const QImage &image)
{
    QRect box;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) > 60)
                box |= QRect(x, y, 1, 1);
        }
    }
    return box;
}

} // namespace

class StatusItemPainterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textIsDrawnInItsColor();
    void textWithoutAColorTakesThePanels();
    void textStandsInTheMiddle_data();
    void textStandsInTheMiddle();
    void aPillHasItsColorAndRoundCorners();
    void aPillStandsInTheMiddle();
    void noPillLeavesTheBackgroundTransparent();
    void aPillIsNoHigherThanTheTextNeeds();
    void theLogoTakesItsLengthAndThePanelsColor();
    void doubleDensityDoublesTheSize();
    void everyDigitTakesTheSameWidth();
    void otherCharactersKeepTheirPlaceWhenDigitsTick();
    void compactIconHoldsSymbolAndPrice();
    void compactIconMakesLongTextSmaller();
    void compactIconFillsItsPill();
    void badgeShowsTheTrend();
    void badgeWithoutAPillIsTheColoredArrow();
    void badgeOfANeutralCoinShowsItsInitial();
    void compactPriceIsShort_data();
    void compactPriceIsShort();
    void compactPriceOfText_data();
    void compactPriceOfText();
};

void StatusItemPainterTest::textIsDrawnInItsColor()
{
    const QImage image = wide(priced(QStringLiteral("BTC 67,432")));
    QVERIFY(opaquePixels(image, pureGreen) > 10);
    QCOMPARE(opaquePixels(image, panelText), 0);
}

void StatusItemPainterTest::textWithoutAColorTakesThePanels()
{
    StatusItemContent content = priced(QStringLiteral("BTC 67,432"));
    content.textColor.reset();
    QVERIFY(opaquePixels(wide(content), panelText) > 10);
}

void StatusItemPainterTest::textStandsInTheMiddle_data()
{
    QTest::addColumn<int>("height");
    for (int height : {16, 18, 22, 24, 30, 40})
        QTest::addRow("%d", height) << height;
}

void StatusItemPainterTest::textStandsInTheMiddle()
{
    QFETCH(int, height);
    // Without a comma, which hangs below the line.
    const QRect box = inked(wide(priced(QStringLiteral("BTC 432")), height));
    const int above = box.top();
    const int below = height - 1 - box.bottom();
    QVERIFY2(std::abs(above - below) <= 1, qPrintable(QStringLiteral("%1 above, %2 below").arg(above).arg(below)));
    QVERIFY(above >= 1);
}

void StatusItemPainterTest::aPillHasItsColorAndRoundCorners()
{
    const QImage image = wide(pilled(QStringLiteral(" BTC 67,432 ")));
    QCOMPARE(image.pixelColor(2, image.height() / 2), pureGreen);
    QCOMPARE(image.pixelColor(image.width() - 3, image.height() / 2), pureGreen);
    QVERIFY(opaquePixels(image, Qt::white) > 10);
    for (int x : {0, image.width() - 1}) {
        for (int y : {1, image.height() - 2})
            QVERIFY(qAlpha(image.pixel(x, y)) < 90);
    }
    QCOMPARE(image.pixelColor(4, 1), pureGreen);
    QCOMPARE(image.pixelColor(0, 5), pureGreen);
}

void StatusItemPainterTest::aPillStandsInTheMiddle()
{
    const QRect box = inked(wide(pilled(QStringLiteral(" BTC 67,432 ")), 30));
    QCOMPARE(box.top(), 5);
    QCOMPARE(box.bottom(), 24);
}

void StatusItemPainterTest::noPillLeavesTheBackgroundTransparent()
{
    const QImage image = wide(priced(QStringLiteral("BTC 67,432")));
    QCOMPARE(qAlpha(image.pixel(0, image.height() / 2)), 0);
    QCOMPARE(qAlpha(image.pixel(image.width() / 2, 0)), 0);
}

void StatusItemPainterTest::aPillIsNoHigherThanTheTextNeeds()
{
    QCOMPARE(inked(wide(pilled(QStringLiteral(" BTC 1 ")), 40)).height(), 20);
    QCOMPARE(inked(wide(pilled(QStringLiteral(" BTC 1 ")), 16)).height(), 16);
}

void StatusItemPainterTest::theLogoTakesItsLengthAndThePanelsColor()
{
    const StatusItemContent content;
    QCOMPARE(statusItemWidth(content, style().font, 22), 28.0);
    const QImage image = wide(content);
    QCOMPARE(image.size(), QSize(28, 22));
    QVERIFY(opaquePixels(image, panelText) > 10);
    const QRect box = inked(image);
    QVERIFY(box.width() <= 18 && box.height() <= 18);
    QVERIFY(box.left() >= 5 && box.right() <= 22);
    QCOMPARE(box.size(), inked(tintedSvg(QStringLiteral(":/menubar-logo.svg"), 18, panelText)).size());
}

void StatusItemPainterTest::doubleDensityDoublesTheSize()
{
    const StatusItemContent content = pilled(QStringLiteral(" BTC 67,432 "));
    QCOMPARE(wide(content, 22, 2).size(), wide(content, 22, 1).size() * 2);
}

void StatusItemPainterTest::everyDigitTakesTheSameWidth()
{
    const auto width = [](const QString &text) { return statusItemWidth(priced(text), style().font, 22); };
    for (char16_t digit = u'0'; digit <= u'9'; ++digit)
        QCOMPARE(width(QStringLiteral("BTC ") + QString(5, QChar(digit))), width(QStringLiteral("BTC 00000")));
}

void StatusItemPainterTest::otherCharactersKeepTheirPlaceWhenDigitsTick()
{
    const QImage ones = wide(priced(QStringLiteral("BTC 11,111")));
    const QImage eights = wide(priced(QStringLiteral("BTC 88,888")));
    const int symbolWidth = ones.width() / 3;
    QCOMPARE(ones.copy(0, 0, symbolWidth, ones.height()), eights.copy(0, 0, symbolWidth, eights.height()));
    QVERIFY(ones != eights);
}

void StatusItemPainterTest::compactIconHoldsSymbolAndPrice()
{
    const QImage image = paintCompactStatusItem(priced(QStringLiteral("BTC 67,432")), style(), 32);
    QCOMPARE(image.size(), QSize(32, 32));
    const QRect upper = inked(image.copy(0, 0, 32, 16));
    const QRect lower = inked(image.copy(0, 16, 32, 16));
    QVERIFY(upper.height() >= 8 && lower.height() >= 8);
    QVERIFY(lower.width() > 24);
    QVERIFY(opaquePixels(image, pureGreen) > 20);
}

void StatusItemPainterTest::compactIconMakesLongTextSmaller()
{
    const auto symbol = [](const char *text) {
        return inked(
            paintCompactStatusItem(priced(QLatin1String(text) + QStringLiteral(" 1")), style(), 64).copy(0, 0, 64, 32));
    };
    const QRect shortSymbol = symbol("HHH");
    const QRect longSymbol = symbol("HHHHHHHHHH");
    QVERIFY(shortSymbol.height() > 18);
    QVERIFY(longSymbol.height() < shortSymbol.height());
    QVERIFY(longSymbol.height() >= 8);
    QVERIFY2(longSymbol.width() > 56, "it takes the icon's width");
}

void StatusItemPainterTest::compactIconFillsItsPill()
{
    const QImage image = paintCompactStatusItem(pilled(QStringLiteral(" BTC 67,432 ")), style(), 32);
    QVERIFY(qAlpha(image.pixel(0, 0)) < 60);
    QCOMPARE(image.pixelColor(16, 0), pureGreen);
    QVERIFY(opaquePixels(image, Qt::white) > 10);
}

void StatusItemPainterTest::badgeShowsTheTrend()
{
    StatusItemContent content = pilled(QStringLiteral(" BTC 67,432 "));
    content.trend = StatusTrend::up;
    const QImage up = paintStatusBadge(content, style(), 32);
    content.trend = StatusTrend::down;
    const QImage down = paintStatusBadge(content, style(), 32);
    QCOMPARE(up.pixelColor(16, 16), QColor(Qt::white));
    QCOMPARE(up.pixelColor(9, 12), pureGreen);
    QCOMPARE(up.pixelColor(10, 20), QColor(Qt::white));
    QCOMPARE(down.pixelColor(10, 11), QColor(Qt::white));
    QCOMPARE(down.pixelColor(9, 20), pureGreen);
    QCOMPARE(qAlpha(up.pixel(0, 0)), 0);
}

void StatusItemPainterTest::badgeWithoutAPillIsTheColoredArrow()
{
    StatusItemContent content = priced(QStringLiteral("BTC 67,432"));
    content.trend = StatusTrend::up;
    const QImage image = paintStatusBadge(content, style(), 32);
    QCOMPARE(image.pixelColor(16, 16), pureGreen);
    QCOMPARE(qAlpha(image.pixel(5, 8)), 0);
    QVERIFY2(image.pixelColor(16, 23).green() > 150, "its edge has no line");
}

void StatusItemPainterTest::badgeOfANeutralCoinShowsItsInitial()
{
    StatusItemContent content = priced(QStringLiteral("BTC 67,432"));
    content.textColor.reset();
    const QImage image = paintStatusBadge(content, style(), 32);
    QCOMPARE(qAlpha(image.pixel(7, 16)), 0);
    QVERIFY2(opaquePixels(image.copy(10, 8, 12, 16), panelText) > 10, "the letter");
    QVERIFY2(opaquePixels(image.copy(2, 12, 4, 8), panelText) > 4, "the ring");
    QCOMPARE(inked(paintStatusBadge(content, style(), 64).copy(0, 31, 14, 2)), QRect(6, 0, 4, 2)); // its line
    content = pilled(QStringLiteral(" BTC 67,432 "));
    const QImage pill = paintStatusBadge(content, style(), 32);
    QCOMPARE(pill.pixelColor(5, 16), pureGreen);
    QVERIFY(opaquePixels(pill, Qt::white) > 10);
}

void StatusItemPainterTest::compactPriceIsShort_data()
{
    QTest::addColumn<double>("price");
    QTest::addColumn<QString>("text");
    const auto row = [](double price, const char *text) { QTest::newRow(text) << price << QString::fromLatin1(text); };
    row(0, "0.0000");
    row(0.0001, "0.0001");
    row(0.0994, "0.0994");
    row(0.1235, "0.123");
    row(0.9994, "0.999");
    row(0.0995, "0.100");
    row(0.9995, "1.00");
    row(5, "5.00");
    row(12.35, "12.3");
    row(123.4, "123");
    row(999.4, "999");
    row(999.5, "1000");
    row(9.994, "9.99");
    row(9.996, "10.0");
    row(99.94, "99.9");
    row(99.96, "100");
    row(3188, "3188");
    row(9999.4, "9999");
    row(9999.5, "10.0K");
    row(67432, "67.4K");
    row(99960, "100K");
    row(999499, "999K");
    row(999500, "1.00M");
    row(1234567, "1.23M");
    row(999.6e6, "1.00B");
    row(1.5e12, "1.50T");
    row(1.5e15, "1500T");
}

void StatusItemPainterTest::compactPriceIsShort()
{
    QFETCH(double, price);
    QTEST(compactPrice(price), "text");
}

void StatusItemPainterTest::compactPriceOfText_data()
{
    QTest::addColumn<QString>("price");
    QTest::addColumn<QString>("text");
    QTest::newRow("grouped") << QStringLiteral("67,432") << QStringLiteral("67.4K");
    QTest::newRow("short enough") << QStringLiteral("3,188") << QStringLiteral("3,188");
    QTest::newRow("two decimals") << QStringLiteral("12.35") << QStringLiteral("12.35");
    QTest::newRow("four decimals") << QStringLiteral("0.1235") << QStringLiteral("0.123");
    QTest::newRow("zero") << QStringLiteral("0.000000") << QStringLiteral("0.0000");
    QTest::newRow("no price") << QStringLiteral("--") << QStringLiteral("--");
    QTest::newRow("no number") << QStringLiteral("unknown") << QStringLiteral("unknown");
    QTest::newRow("negative") << QStringLiteral("-67,432") << QStringLiteral("-67,432");
    QTest::newRow("empty") << QString() << QString();
}

void StatusItemPainterTest::compactPriceOfText()
{
    QFETCH(QString, price);
    QTEST(compactPrice(price), "text");
}

TICKWISE_WIDGET_TEST(StatusItemPainterTest)
#include "StatusItemPainterTest.moc"
