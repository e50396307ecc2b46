#include "overlay/DesktopOverlayView.h"

#include "doubles/Languages.h"
#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"
#include "overlay/DesktopOverlayPlacement.h"

#include <QAbstractButton>
#include <QLabel>

using namespace tickwise;
using namespace tickwise::test;

namespace {

struct OverlayViewWorld
{
    OverlayViewWorld()
    {
        useLanguage(AppLanguage::en);
        QPalette palette;
        palette.setColor(QPalette::Window, Qt::white);
        palette.setColor(QPalette::Base, QColor(240, 250, 255));
        view.setPalette(palette);
        setRows(3);
        view.show();
    }

    void setRows(int rows)
    {
        WidgetEntryContent content;
        content.language = AppLanguage::en;
        for (int i = 0; i < rows; ++i)
            content.rows.push_back({.id = QString::number(i), .symbol = QStringLiteral("C%1").arg(i)});
        model.setContent(content);
        view.resize((desktopOverlaySize(model.textSize(), rows) * scale).toSize());
    }
    void setScale(double newScale)
    {
        scale = newScale;
        view.setScale(scale);
        setRows(3);
    }
    /// The view as it stands on nothing.
    QImage painted()
    {
        QImage image(view.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        view.render(&image, {}, {}, QWidget::DrawChildren);
        return image;
    }

    double scale = 1;
    TestClock clock;
    DesktopOverlayModel model;
    DesktopOverlayView view{model, {}, clock.clock()};
};

} // namespace

class DesktopOverlayViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void listFillsTheWindow_data();
    void listFillsTheWindow();
    void backdropHasTheOpacity();
    void cornersAreRound();
    void cornersThatAreCutOffAreFilled();
    void adjusting();
    void controlsFit_data();
    void controlsFit();
    void buttonCallsTheModel();
    void legibility();
    void retranslates();
    void growsWithTheDesktopsTexts();
};

void DesktopOverlayViewTest::cleanup()
{
    useLanguage(AppLanguage::en);
}

void DesktopOverlayViewTest::listFillsTheWindow_data()
{
    QTest::addColumn<DesktopOverlayTextSize>("textSize");
    QTest::newRow("normal") << DesktopOverlayTextSize::normal;
    QTest::newRow("large") << DesktopOverlayTextSize::large;
}

void DesktopOverlayViewTest::listFillsTheWindow()
{
    QFETCH(DesktopOverlayTextSize, textSize);
    OverlayViewWorld world;
    world.model.setTextSize(textSize);
    world.setRows(4);
    QCOMPARE(world.view.list().geometry(), world.view.rect().adjusted(14, 14, -14, -14));
    QCOMPARE(double(world.view.list().height()), WidgetListView::heightOf(textSize, 4));
}

void DesktopOverlayViewTest::backdropHasTheOpacity()
{
    OverlayViewWorld world;
    const QPoint besideTheList(7, world.view.height() / 2);
    QCOMPARE(world.painted().pixelColor(besideTheList), QColor(Qt::white));
    world.model.setBackgroundOpacity(0.4);
    QCOMPARE(world.painted().pixelColor(besideTheList).alpha(), 102);
    world.model.setBackgroundOpacity(0);
    QCOMPARE(world.painted().pixelColor(besideTheList).alpha(), 0);
    world.view.setTranslucent(false);
    QCOMPARE(world.painted().pixelColor(besideTheList), QColor(Qt::white));
}

void DesktopOverlayViewTest::cornersAreRound()
{
    OverlayViewWorld world;
    const QImage image = world.painted();
    const int right = image.width() - 1;
    const int bottom = image.height() - 1;
    for (const QPoint corner : {QPoint(0, 0), QPoint(right, 0), QPoint(0, bottom), QPoint(right, bottom)}) {
        QCOMPARE(image.pixelColor(corner).alpha(), 0);
        const QPoint inwards(corner.x() == 0 ? 1 : -1, corner.y() == 0 ? 1 : -1);
        QCOMPARE(image.pixelColor(corner + 5 * inwards).alpha(), 0);
        QCOMPARE(image.pixelColor(corner + 8 * inwards).alpha(), 255);
    }
}

/// A mask has no half transparent pixels that would smooth the edge.
void DesktopOverlayViewTest::cornersThatAreCutOffAreFilled()
{
    OverlayViewWorld world;
    world.view.setTranslucent(false);
    QCOMPARE(world.painted().pixelColor(0, 0), QColor(Qt::white));
    world.view.setTranslucent(true);
    QCOMPARE(world.painted().pixelColor(0, 0).alpha(), 0);
}

void DesktopOverlayViewTest::adjusting()
{
    OverlayViewWorld world;
    DesktopOverlayAdjustControls &controls = world.view.adjustControls();
    QVERIFY(!controls.isVisible());
    world.model.setBackgroundOpacity(0.1);
    world.model.setAdjusting(true);
    QVERIFY(controls.isVisible());
    QCOMPARE(world.view.backdrop().opacity(), 0.6);
    QCOMPARE(controls.geometry().center(), world.view.rect().center());
    QCOMPARE(world.painted().pixelColor(controls.geometry().topLeft() + QPoint(12, 5)), QColor(240, 250, 255));
    world.model.setAdjusting(false);
    QVERIFY(!controls.isVisible());
    QCOMPARE(world.view.backdrop().opacity(), 0.1);
}

void DesktopOverlayViewTest::controlsFit_data()
{
    QTest::addColumn<AppLanguage>("language");
    QTest::addColumn<int>("rows");
    QTest::addColumn<double>("scale");
    for (const AppLanguage language : {AppLanguage::en, AppLanguage::zhHans, AppLanguage::zhHant}) {
        for (const int rows : {0, 1, 5}) {
            for (const double scale : {1.0, 1.5, 2.0})
                QTest::addRow("%s, %d rows, %g", qPrintable(rawValue(language)), rows, scale)
                    << language << rows << scale;
        }
    }
}

void DesktopOverlayViewTest::controlsFit()
{
    QFETCH(AppLanguage, language);
    QFETCH(int, rows);
    QFETCH(double, scale);
    OverlayViewWorld world;
    useLanguage(language);
    world.setScale(scale);
    world.view.retranslate();
    world.setRows(rows);
    world.model.setAdjusting(true);
    DesktopOverlayAdjustControls &controls = world.view.adjustControls();
    QVERIFY(world.view.rect().contains(controls.geometry()));
    QAbstractButton &done = controls.doneButton();
    QVERIFY(done.width() >= done.sizeHint().width() && done.height() >= done.sizeHint().height());
    const auto *const hint = controls.findChild<QLabel *>();
    QVERIFY(hint->height() >= hint->heightForWidth(hint->width()));
    QCOMPARE(done.geometry().top() - hint->geometry().bottom() - 1, int(8 * scale));
    const int padding = int(12 * scale);
    QVERIFY(hint->geometry().top() >= padding && controls.height() - 1 - done.geometry().bottom() >= padding);
    QCOMPARE(hint->font().pixelSize(), padding);
}

void DesktopOverlayViewTest::buttonCallsTheModel()
{
    OverlayViewWorld world;
    int calls = 0;
    world.model.onDoneAdjusting = [&calls] { ++calls; };
    world.model.setAdjusting(true);
    QAbstractButton &done = world.view.adjustControls().doneButton();
    QTest::mouseClick(&done, Qt::LeftButton);
    QCOMPARE(calls, 1);
    QTest::keyClick(&done, Qt::Key_Space);
    QCOMPARE(calls, 2);
    QCOMPARE(done.text(), QStringLiteral("Done"));
}

void DesktopOverlayViewTest::legibility()
{
    OverlayViewWorld world;
    world.model.setBackgroundOpacity(0.1);
    QVERIFY(world.view.list().legibility().halo && world.view.list().legibility().boost);
    world.model.setAdjusting(true);
    QCOMPARE(world.view.list().legibility(), WidgetLegibility());
    world.model.setAdjusting(false);
    world.model.setBackgroundOpacity(0.2);
    QCOMPARE(world.view.list().legibility(), WidgetLegibility());
}

void DesktopOverlayViewTest::retranslates()
{
    OverlayViewWorld world;
    const auto *const hint = world.view.adjustControls().findChild<QLabel *>();
    const QString english = hint->text();
    useLanguage(AppLanguage::zhHans);
    world.view.retranslate();
    QVERIFY(hint->text() != english && !hint->text().isEmpty());
}

/// Each point is four pixels where texts are twice as large: corners, gaps, texts and lines.
void DesktopOverlayViewTest::growsWithTheDesktopsTexts()
{
    OverlayViewWorld world;
    const QImage usual = world.painted();
    world.setScale(2);
    const QImage large = world.painted();
    QCOMPARE(large.size(), usual.size() * 2);
    QCOMPARE(world.view.list().geometry(), world.view.rect().adjusted(28, 28, -28, -28));
    QCOMPARE(world.view.list().shownRows(), 3);
    QCOMPARE(large.pixelColor(10, 10).alpha(), 0);
    QCOMPARE(large.pixelColor(16, 16).alpha(), 255);
    const auto darkness = [](const QImage &image) {
        qint64 sum = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                sum += 255 - qGray(image.pixel(x, y));
        }
        return double(sum) / image.height() / image.width();
    };
    QVERIFY2(std::abs(darkness(large) / darkness(usual) - 1) < 0.1,
             qPrintable(QStringLiteral("%1, %2").arg(darkness(usual)).arg(darkness(large))));
}

TICKWISE_WIDGET_TEST(DesktopOverlayViewTest)
#include "DesktopOverlayViewTest.moc"
