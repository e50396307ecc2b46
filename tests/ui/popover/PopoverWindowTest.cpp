#include "ui/popover/PopoverWindow.h"

#include "doubles/TestProgram.h"

#include <QCloseEvent>
#include <QHelpEvent>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>

using namespace tickwise;

namespace {

const QRect panelOf(100, 60, 200, 150);

struct PopoverWindowWorld
{
    explicit PopoverWindowWorld(bool hasChildWindows = true)
    {
        auto *const content = new QWidget;
        button = new QPushButton(content);
        button->setToolTip(QStringLiteral("help"));
        window = std::make_unique<PopoverWindow>(content);
        window->resize(400, 300);
        window->place({panelOf, true, hasChildWindows});
        window->show();
    }

    int dismissals(const std::function<void()> &act) const
    {
        QSignalSpy spy(window.get(), &PopoverWindow::dismissed);
        act();
        return int(spy.count());
    }
    QLabel *toolTip() const { return window->findChild<QLabel *>(QString(), Qt::FindDirectChildrenOnly); }
    void askForToolTip() const
    {
        QHelpEvent event(QEvent::ToolTip, QPoint(5, 5), button->mapToGlobal(QPoint(5, 5)));
        QCoreApplication::sendEvent(button, &event);
    }

    std::unique_ptr<PopoverWindow> window;
    QPushButton *button = nullptr;
};

} // namespace

class PopoverWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void contentCoversThePanel();
    void clickOutsideDismisses_data();
    void clickOutsideDismisses();
    void escapeDismisses();
    void closingDismisses();
    void doesNotKeepTheApplicationFromQuitting();
    void paintsPanelBorderAndShadow();
    void paintsNothingBeforeItIsPlaced();
    void drawsToolTipsInsideWhereNoWindowMay();
};

void PopoverWindowTest::contentCoversThePanel()
{
    const PopoverWindowWorld world;
    QCOMPARE(world.button->parentWidget()->geometry(), panelOf);
    QVERIFY(world.button->parentWidget()->isVisible());
    world.window->unplace();
    QVERIFY(!world.button->parentWidget()->isVisible());
}

void PopoverWindowTest::clickOutsideDismisses_data()
{
    QTest::addColumn<QPoint>("place");
    QTest::addColumn<int>("count");
    QTest::newRow("inside") << panelOf.center() << 0;
    QTest::newRow("at the corner") << panelOf.topLeft() << 0;
    QTest::newRow("in the shadow") << panelOf.topLeft() - QPoint(1, 1) << 1;
    QTest::newRow("far away") << QPoint(1, 1) << 1;
    QTest::newRow("beyond the window") << QPoint(-50, 1000) << 1;
}

void PopoverWindowTest::clickOutsideDismisses()
{
    QFETCH(QPoint, place);
    const PopoverWindowWorld world;
    for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton})
        QTEST(world.dismissals([&] { QTest::mouseClick(world.window.get(), button, {}, place); }), "count");
}

void PopoverWindowTest::escapeDismisses()
{
    const PopoverWindowWorld world;
    QCOMPARE(world.dismissals([&] { QTest::keyClick(world.window.get(), Qt::Key_Escape); }), 1);
    QCOMPARE(world.dismissals([&] { QTest::keyClick(world.window.get(), Qt::Key_A); }), 0);
    world.button->setFocus();
    QCOMPARE(world.dismissals([&] { QTest::keyClick(world.button, Qt::Key_Escape); }), 1);
}

void PopoverWindowTest::closingDismisses()
{
    const PopoverWindowWorld world;
    QCOMPARE(world.dismissals([&] { world.window->close(); }), 1);
    QVERIFY(!world.window->isVisible());
}

void PopoverWindowTest::doesNotKeepTheApplicationFromQuitting()
{
    const PopoverWindowWorld world;
    QCloseEvent event;
    QCoreApplication::sendEvent(world.window.get(), &event);
    QVERIFY(event.isAccepted());
}

void PopoverWindowTest::paintsPanelBorderAndShadow()
{
    PopoverWindowWorld world;
    world.window->setAttribute(Qt::WA_TranslucentBackground);
    world.button->parentWidget()->hide();
    QImage picture(world.window->size(), QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    world.window->render(&picture, QPoint(), QRegion(), QWidget::DrawChildren);
    QCOMPARE(picture.pixelColor(panelOf.center()), world.window->palette().color(QPalette::Window));
    QVERIFY(picture.pixelColor(panelOf.center().x(), panelOf.top()) != picture.pixelColor(panelOf.center()));
    const int below = qAlpha(picture.pixel(panelOf.center().x(), panelOf.bottom() + 3));
    QVERIFY2(below > 10 && below < 120, qPrintable(QString::number(below)));
    QCOMPARE(qAlpha(picture.pixel(1, 1)), 0);
    QVERIFY2(qAlpha(picture.pixel(panelOf.topLeft())) < 120, "the corner is not round");
}

void PopoverWindowTest::paintsNothingBeforeItIsPlaced()
{
    PopoverWindowWorld world;
    world.window->unplace();
    QImage picture(world.window->size(), QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    world.window->render(&picture, QPoint(), QRegion(), QWidget::RenderFlags());
    QCOMPARE(qAlpha(picture.pixel(panelOf.center())), 0);
}

void PopoverWindowTest::drawsToolTipsInsideWhereNoWindowMay()
{
    const PopoverWindowWorld usual;
    QVERIFY(!usual.toolTip());
    const PopoverWindowWorld world(false);
    world.askForToolTip();
    QVERIFY(world.toolTip() && world.toolTip()->isVisible());
    QCOMPARE(world.toolTip()->text(), QStringLiteral("help"));
    QVERIFY(world.window->rect().contains(world.toolTip()->geometry()));
    QTest::mousePress(world.button, Qt::LeftButton);
    QVERIFY(!world.toolTip()->isVisible());
    world.askForToolTip();
    world.window->unplace();
    QVERIFY(!world.toolTip()->isVisible());
}

TICKWISE_WIDGET_TEST(PopoverWindowTest)
#include "PopoverWindowTest.moc"
