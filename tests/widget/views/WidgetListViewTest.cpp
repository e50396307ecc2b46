#include "widget/views/WidgetListView.h"

#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"
#include "support/drawing/Contrast.h"

#include <QAccessible>
#include <QSignalSpy>

#include <algorithm>

using namespace tickwise;

namespace {

WidgetRow row(const char *id, const char *symbol, double price, double change)
{
    return {QString::fromLatin1(id), QString::fromLatin1(symbol), QString::fromLatin1(id), {}, true, price, change};
}

WidgetEntryContent threeCoins(TimePoint updatedAt)
{
    WidgetEntryContent content;
    content.rows = {row("bitcoin", "BTC", 67432, 1.23), row("ethereum", "ETH", 3456.7, -0.5),
                    row("tron", "TRX", 0.12, 0)};
    content.updatedAt = updatedAt;
    content.language = AppLanguage::en;
    content.upColorHex = QStringLiteral("#00FF00");
    content.downColorHex = QStringLiteral("#FF0000");
    return content;
}

QImage painted(WidgetListView &view)
{
    QImage image(view.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    view.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

bool contains(const QImage &image, const QColor &color, const QRect &area)
{
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (image.pixelColor(x, y) == color)
                return true;
        }
    }
    return false;
}

int largestAlpha(const QImage &image, const QRect &area)
{
    int largest = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x)
            largest = std::max(largest, image.pixelColor(x, y).alpha());
    }
    return largest;
}

int opaquePixels(const QImage &image, const QRect &area)
{
    int count = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x)
            count += image.pixelColor(x, y).alpha() > 0;
    }
    return count;
}

} // namespace

class WidgetListViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void paintsEachRowInItsColor();
    void cutsRowsThatDoNotFit();
    void paintsTheEmptyState();
    void turnsOrangeByItself();
    void orangeCanBeRead_data();
    void orangeCanBeRead();
    void waitsOnlyWhileItIsShown();
    void sameContentIsNotRepainted();
    void halosDarkenTheGround();
    void boostWritesInWhite();
    void asksForTheLogosThatItShows();
    void readsItsRowsOut();
    void growsWithTheDesktopsTexts();
};

void WidgetListViewTest::paintsEachRowInItsColor()
{
    test::TestClock clock;
    WidgetListView view({}, clock.clock());
    view.resize(336, int(WidgetListView::heightOf(DesktopOverlayTextSize::normal, 3)));
    view.setContent(threeCoins(clock.now()));
    const QImage image = painted(view);
    const auto line = [](int index) { return QRect(200, 22 + index * 39, 136, 38); };
    QVERIFY(contains(image, QColor(0, 255, 0), line(0)));
    QVERIFY(!contains(image, QColor(255, 0, 0), line(0)));
    QVERIFY(contains(image, QColor(255, 0, 0), line(1)));
    QVERIFY(contains(image, QColor(0, 255, 0), line(2)));
}

void WidgetListViewTest::cutsRowsThatDoNotFit()
{
    test::TestClock clock;
    WidgetListView view({}, clock.clock());
    view.resize(336, 22 + 38 + 1 + 38 + 20);
    view.setContent(threeCoins(clock.now()));
    const QImage image = painted(view);
    QVERIFY(opaquePixels(image, QRect(0, 61, 336, 38)) > 0);
    QCOMPARE(opaquePixels(image, QRect(0, 99, 336, 20)), 0);
    view.resize(336, 22 + 38 + 1 + 38 - 1);
    QCOMPARE(view.shownRows(), 2);
    view.resize(336, 22 + 38 + 1 + 38 - 3);
    QCOMPARE(view.shownRows(), 1);
}

void WidgetListViewTest::paintsTheEmptyState()
{
    WidgetListView view({});
    view.resize(336, 142);
    const QImage image = painted(view);
    QVERIFY(opaquePixels(image, QRect(148, 40, 40, 40)) > 200);
    QVERIFY(opaquePixels(image, QRect(60, 85, 216, 25)) > 100);
    QCOMPARE(opaquePixels(image, QRect(0, 0, 336, 20)), 0);
}

void WidgetListViewTest::orangeCanBeRead_data()
{
    QTest::addColumn<QColor>("text");
    QTest::addColumn<QColor>("ground");
    QTest::newRow("light") << QColor(0x23, 0x26, 0x29) << QColor(0xEF, 0xEF, 0xEF);
    QTest::newRow("white") << QColor(Qt::black) << QColor(Qt::white);
    QTest::newRow("dark") << QColor(Qt::white) << QColor(0x2A, 0x2A, 0x2E);
    QTest::newRow("black") << QColor(0xFC, 0xFC, 0xFC) << QColor(Qt::black);
}

void WidgetListViewTest::orangeCanBeRead()
{
    QFETCH(QColor, text);
    QFETCH(QColor, ground);
    const QColor orange = staleColor(text);
    QVERIFY(contrast(orange, ground) >= readableContrast);
    QVERIFY(orange.hslHue() > 25 && orange.hslHue() < 40 && orange.hslSaturationF() > 0.9F);

    test::TestClock clock;
    WidgetListView view({}, clock.clock());
    view.resize(336, 200);
    QPalette palette;
    palette.setColor(QPalette::WindowText, text);
    view.setPalette(palette);
    const QRect time(230, 0, 106, 22);
    view.setContent(threeCoins(clock.now() - std::chrono::minutes(29)));
    const QImage fresh = painted(view);
    QVERIFY(!contains(fresh, orange, time));
    const int opacity = largestAlpha(fresh, time);
    QVERIFY2(opacity > 80 && opacity <= 166, qPrintable(QString::number(opacity))); // secondary text: 65 %
    view.setContent(threeCoins(clock.now() - std::chrono::minutes(31)));
    QVERIFY(contains(painted(view), orange, time));
}

void WidgetListViewTest::turnsOrangeByItself()
{
    test::TestClock clock;
    const TimePoint updatedAt = clock.now();
    clock.advance(1800 - 0.04);
    WidgetListView view({}, clock.clock());
    view.resize(336, 200);
    view.setContent(threeCoins(updatedAt));
    view.show();
    QVERIFY(!view.text().isStale);
    clock.advance(0.041);
    QTRY_VERIFY(view.text().isStale);
    QVERIFY(contains(painted(view), staleColor(view.palette().windowText().color()), QRect(230, 0, 106, 22)));
}

void WidgetListViewTest::waitsOnlyWhileItIsShown()
{
    test::TestClock clock;
    const TimePoint updatedAt = clock.now();
    WidgetListView view({}, clock.clock());
    view.setContent(threeCoins(updatedAt));
    view.show();
    view.hide();
    clock.advance(1801);
    view.show();
    QVERIFY(view.text().isStale);
}

void WidgetListViewTest::sameContentIsNotRepainted()
{
    class Counting : public WidgetListView
    {
    public:
        using WidgetListView::WidgetListView;
        int paints = 0;

    protected:
        void paintEvent(QPaintEvent *event) override
        {
            ++paints;
            WidgetListView::paintEvent(event);
        }
    };
    test::TestClock clock;
    Counting view({}, clock.clock());
    view.setContent(threeCoins(clock.now()));
    view.show();
    QTRY_VERIFY(view.paints > 0);
    const int before = view.paints;
    view.setContent(threeCoins(clock.now()));
    QCoreApplication::processEvents();
    QCOMPARE(view.paints, before);
    WidgetEntryContent changed = threeCoins(clock.now());
    changed.rows.front().price = 67433;
    view.setContent(changed);
    QTRY_VERIFY(view.paints > before);
}

void WidgetListViewTest::halosDarkenTheGround()
{
    test::TestClock clock;
    WidgetListView view({}, clock.clock());
    view.resize(336, 140);
    view.setContent(threeCoins(clock.now()));
    const QRect names(30, 24, 120, 36);
    const int plain = opaquePixels(painted(view), names);
    view.setLegibility({true, true});
    const int haloed = opaquePixels(painted(view), names);
    QVERIFY(haloed > 2 * plain);
    view.setLegibility({});
    QCOMPARE(opaquePixels(painted(view), names), plain);
}

void WidgetListViewTest::boostWritesInWhite()
{
    test::TestClock clock;
    WidgetListView view({}, clock.clock());
    view.resize(336, 140);
    view.setContent(threeCoins(clock.now()));
    const QRect symbol(30, 24, 60, 20);
    QVERIFY(!contains(painted(view), Qt::white, symbol));
    view.setLegibility({false, true});
    QVERIFY(contains(painted(view), Qt::white, symbol));
}

void WidgetListViewTest::asksForTheLogosThatItShows()
{
    test::TestClock clock;
    QStringList asked;
    WidgetListView view(
        [&](const QString &id) -> std::optional<QImage> {
            asked.append(id);
            return std::nullopt;
        },
        clock.clock());
    view.resize(336, 22 + 38 + 10);
    view.setContent(threeCoins(clock.now()));
    painted(view);
    QCOMPARE(asked, QStringList{QStringLiteral("bitcoin")});
}

void WidgetListViewTest::readsItsRowsOut()
{
    test::TestClock clock;
    WidgetListView view({}, clock.clock());
    view.resize(336, int(WidgetListView::heightOf(DesktopOverlayTextSize::normal, 2)));
    view.setContent(threeCoins(clock.now()));
    view.show();
    QAccessibleInterface *const list = QAccessible::queryAccessibleInterface(&view);
    QCOMPARE(list->role(), QAccessible::List);
    QCOMPARE(list->text(QAccessible::Name), QStringLiteral("Watchlist"));
    QCOMPARE(list->childCount(), 2);
    QAccessibleInterface *const second = list->child(1);
    QCOMPARE(second->role(), QAccessible::ListItem);
    QVERIFY(second->text(QAccessible::Name).startsWith(QStringLiteral("ethereum, 3,457 USD, -0.50%")));
    QCOMPARE(second->parent(), list);
    QCOMPARE(list->indexOfChild(second), 1);
    const QRect place = second->rect();
    QCOMPARE(place.translated(-view.mapToGlobal(QPoint())), QRect(0, 22 + 39, 336, 38));
    QCOMPARE(list->childAt(place.center().x(), place.center().y()), second);
    view.setContent({});
    QCOMPARE(list->childCount(), 0);
    QCOMPARE(second->text(QAccessible::Name), QString());
}

void WidgetListViewTest::growsWithTheDesktopsTexts()
{
    test::TestClock clock;
    WidgetListView view({}, clock.clock());
    view.resize(336, 61);
    view.setContent(threeCoins(clock.now()));
    const QRect change(236, 22, 100, 38);
    QVERIFY(contains(painted(view), QColor(0, 255, 0), change));
    const int usual = opaquePixels(painted(view), change);
    view.setScale(2);
    view.resize(672, 122);
    QCOMPARE(view.shownRows(), 1);
    QCOMPARE(view.rowRect(0), QRectF(0, 44, 672, 76));
    const int doubled = opaquePixels(painted(view), QRect(change.topLeft() * 2, change.size() * 2));
    QVERIFY2(doubled > 3 * usual && doubled < 5 * usual, qPrintable(QStringLiteral("%1 %2").arg(usual).arg(doubled)));
}

TICKWISE_WIDGET_TEST(WidgetListViewTest)
#include "WidgetListViewTest.moc"
