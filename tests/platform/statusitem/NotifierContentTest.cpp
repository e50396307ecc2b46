#include "platform/statusitem/NotifierContent.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

namespace {

StatusItemStyle style()
{
    return {QFont(), QColor(0xf2, 0xf2, 0xf2)};
}

StatusItemContent priced(const QString &text)
{
    StatusItemContent content;
    content.logo = false;
    content.text = text;
    content.symbol = text.trimmed().section(u' ', 0, 0);
    content.price = text.trimmed().section(u' ', 1);
    content.textColor = QColor(0x2c, 0xbd, 0x84);
    content.title = text.trimmed();
    return content;
}

QFont fontOf(int pixels)
{
    QFont font;
    font.setPixelSize(pixels);
    return font;
}

} // namespace

class NotifierContentTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pixmapBytesAreInNetworkOrderWithStraightAlpha();
    void premultipliedPixmapOnRequest();
    void wideContentOffersTheHostsHeight();
    void wideContentOffersDoubleDensityOnlyWhereThereIsSuchAScreen();
    void wideContentKeepsItsWidthWhilePricesTick();
    void labelHostsGetTextAndBadge();
    void logoModeHasAnEmptyLabel();
    void otherPresentationsHaveNoLabel();
    void squarePixmapsHaveTheHostsAlpha();
    void toolTipIsEscaped();
    void widthOnlyGrowsForOneNumberOfCharacters();
    void widthsOfOtherHeightsAreTheirOwn();
    void anotherFontForgetsTheWidths();
    void clearedWidthsStartAnew();
};

void NotifierContentTest::pixmapBytesAreInNetworkOrderWithStraightAlpha()
{
    QImage image(2, 1, QImage::Format_ARGB32);
    image.setPixel(0, 0, qRgba(0xff, 0x80, 0x40, 0x80));
    image.setPixel(1, 0, qRgba(1, 2, 3, 0xff));
    const StatusPixmap pixmap = statusPixmap(image);
    QCOMPARE(pixmap.width, 2);
    QCOMPARE(pixmap.height, 1);
    QCOMPARE(pixmap.bytes.toHex(), QByteArray("80ff8040ff010203"));
    const QByteArray again = statusPixmap(image.convertToFormat(QImage::Format_ARGB32_Premultiplied)).bytes;
    QCOMPARE(again.size(), 8);
    QCOMPARE(uchar(again[0]), uchar(0x80));
    QVERIFY2(uchar(again[1]) > 0xf8, "the color is not multiplied by its alpha");
}

void NotifierContentTest::premultipliedPixmapOnRequest()
{
    QImage image(1, 1, QImage::Format_ARGB32);
    image.setPixel(0, 0, qRgba(0xff, 0, 0, 0x80));
    QCOMPARE(statusPixmap(image, true).bytes.toHex(), QByteArray("80800000"));
}

void NotifierContentTest::wideContentOffersTheHostsHeight()
{
    StatusItemWidth widths;
    const StatusNotifierContent item = notifierContent(priced(QStringLiteral("BTC 67,432")), style(),
                                                       StatusItemPresentation::wideSni, {{16}}, 1, widths);
    QCOMPARE(item.pixmaps.size(), 1);
    QCOMPARE(item.pixmaps[0].height, 16);
    QVERIFY(item.pixmaps[0].width > 48);
    QCOMPARE(item.title, QStringLiteral("BTC 67,432"));
}

void NotifierContentTest::wideContentOffersDoubleDensityOnlyWhereThereIsSuchAScreen()
{
    StatusItemWidth widths;
    const StatusItemContent content = priced(QStringLiteral("BTC 67,432"));
    const StatusNotifierContent item =
        notifierContent(content, style(), StatusItemPresentation::wideSni, {{22}}, 2, widths);
    QCOMPARE(item.pixmaps.size(), 2);
    QCOMPARE(item.pixmaps[1].height, 44);
    QCOMPARE(item.pixmaps[1].width, item.pixmaps[0].width * 2);
}

void NotifierContentTest::wideContentKeepsItsWidthWhilePricesTick()
{
    StatusItemWidth widths;
    const auto width = [&widths](const QString &text) {
        return notifierContent(priced(text), style(), StatusItemPresentation::wideSni, {{22}}, 1, widths)
            .pixmaps[0]
            .width;
    };
    const int wide = width(QStringLiteral("WWW 67,432"));
    QCOMPARE(width(QStringLiteral("III 11,111")), wide);
    QVERIFY(width(QStringLiteral("III 1,111")) < wide);
}

void NotifierContentTest::labelHostsGetTextAndBadge()
{
    StatusItemWidth widths;
    StatusItemContent content = priced(QStringLiteral(" BTC 67,432 "));
    content.trend = StatusTrend::down;
    const StatusNotifierContent item =
        notifierContent(content, style(), StatusItemPresentation::sniWithLabel, {{16, 22}}, 1, widths);
    QCOMPARE(item.label, QStringLiteral("BTC 67,432"));
    QCOMPARE(item.labelGuide, QStringLiteral("BTC 88,888"));
    QCOMPARE(item.pixmaps.size(), 2);
    QCOMPARE(item.pixmaps[1].width, 22);
    QCOMPARE(statusLabel(content), QStringLiteral("BTC 67,432"));
}

void NotifierContentTest::logoModeHasAnEmptyLabel()
{
    StatusItemWidth widths;
    const StatusNotifierContent item =
        notifierContent({}, style(), StatusItemPresentation::sniWithLabel, {{22}}, 1, widths);
    QCOMPARE(item.label, QString());
    QVERIFY(item.label.has_value());
}

void NotifierContentTest::otherPresentationsHaveNoLabel()
{
    StatusItemWidth widths;
    const StatusItemContent content = priced(QStringLiteral("BTC 67,432"));
    QVERIFY(!notifierContent(content, style(), StatusItemPresentation::wideSni, {{22}}, 1, widths).label);
    QVERIFY(!notifierContent(content, style(), StatusItemPresentation::squareSni, {{22}}, 1, widths).label);
}

void NotifierContentTest::squarePixmapsHaveTheHostsAlpha()
{
    StatusItemWidth widths;
    const auto pixmaps = [&widths](bool premultiplied) {
        return notifierContent(priced(QStringLiteral("BTC 67,432")), style(), StatusItemPresentation::squareSni,
                               {{22}, premultiplied}, 1, widths)
            .pixmaps;
    };
    const StatusItemContent content = priced(QStringLiteral("BTC 67,432"));
    const QImage painted = paintCompactStatusItem(content, style(), 22);
    QCOMPARE(pixmaps(true), QList<StatusPixmap>{statusPixmap(painted, true)});
    QCOMPARE(pixmaps(false), QList<StatusPixmap>{statusPixmap(painted, false)});
    QVERIFY(pixmaps(true) != pixmaps(false));
}

void NotifierContentTest::toolTipIsEscaped()
{
    StatusItemWidth widths;
    StatusItemContent content = priced(QStringLiteral("BTC 67,432"));
    content.toolTipTitle = QStringLiteral("Bitcoin");
    content.toolTipBody = QStringLiteral("a < b\nc & d");
    QCOMPARE(notifierContent(content, style(), StatusItemPresentation::squareSni, {{22}}, 1, widths).toolTip,
             (StatusToolTip{QStringLiteral("Bitcoin"), QStringLiteral("a &lt; b<br/>c &amp; d")}));
    QCOMPARE(
        notifierContent(content, style(), StatusItemPresentation::wideSni, {{22}, false, LineBreak::newline}, 1, widths)
            .toolTip,
        (StatusToolTip{QStringLiteral("Bitcoin"), QStringLiteral("a &lt; b\nc &amp; d")}));
}

void NotifierContentTest::widthOnlyGrowsForOneNumberOfCharacters()
{
    StatusItemWidth widths;
    const auto width = [&widths](qsizetype characters, double needed) {
        return widths.widthFor(fontOf(13), 22, characters, needed);
    };
    QCOMPARE(width(10, 60), 60.0);
    QCOMPARE(width(10, 55), 60.0);
    QCOMPARE(width(10, 64), 64.0);
    QCOMPARE(width(9, 50), 50.0);
    QCOMPARE(width(10, 10), 64.0);
}

void NotifierContentTest::widthsOfOtherHeightsAreTheirOwn()
{
    StatusItemWidth widths;
    QCOMPARE(widths.widthFor(fontOf(13), 48, 10, 120), 120.0);
    QCOMPARE(widths.widthFor(fontOf(13), 16, 10, 60), 60.0);
    QCOMPARE(widths.widthFor(fontOf(13), 48, 10, 90), 120.0);
}

void NotifierContentTest::anotherFontForgetsTheWidths()
{
    StatusItemWidth widths;
    QCOMPARE(widths.widthFor(fontOf(20), 22, 10, 90), 90.0);
    QCOMPARE(widths.widthFor(fontOf(13), 22, 10, 60), 60.0);
    QCOMPARE(widths.widthFor(fontOf(20), 22, 10, 80), 80.0);
}

void NotifierContentTest::clearedWidthsStartAnew()
{
    StatusItemWidth widths;
    QCOMPARE(widths.widthFor(fontOf(13), 22, 10, 90), 90.0);
    widths.clear();
    QCOMPARE(widths.widthFor(fontOf(13), 22, 10, 60), 60.0);
}

TICKWISE_WIDGET_TEST(NotifierContentTest)
#include "NotifierContentTest.moc"
