#include "widget/program/WidgetController.h"

#include "doubles/MemoryDefaults.h"
#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"
#include "widget/program/ShippedCoins.h"

#include <QTemporaryDir>

using namespace tickwise;
using namespace tickwise::test;

namespace {

/// A desktop of one screen whose panel is 30 pixels high.
class FakeSurface : public DesktopSurface
{
public:
    QPointer<QWidget> shown;
    QRect area{0, 30, 1280, 770};
    bool translucent = true;

    void show(QWidget &window, const QRect &frame) override
    {
        shown = &window;
        window.setGeometry(frame);
        window.show();
    }
    void hide() override { shown = nullptr; }
    bool isShown() const override { return shown; }
    void place(const QRect &frame) override { shown->setGeometry(frame); }
    QRect frame() const override { return shown->geometry(); }
    QPoint pointerPosition(const QMouseEvent &event) const override { return event.globalPosition().toPoint(); }
    void setInteractive(bool) override {}
    DesktopScreens screens() const override { return {{area}, {0, 800}}; }
    bool isTranslucent() const override { return translucent; }
};

WidgetSnapshot threeCoins(AppLanguage language = AppLanguage::en)
{
    WidgetSnapshot snapshot = makeWidgetSnapshot({}, {}, TestClock().now());
    snapshot.language = language;
    snapshot.watchlist = {QStringLiteral("bitcoin"), QStringLiteral("ethereum"), QStringLiteral("tron")};
    for (const QString &id : snapshot.watchlist)
        snapshot.quotes[id] = {12.5, -1};
    return snapshot;
}

} // namespace

class WidgetControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void standsInTheCornerAtFirst();
    void standsWhereItWas();
    void placeOffTheScreenIsMovedBack();
    void hasItsSizeBack();
    void followsTheModel();
    void clickOpensTheApplication();
    void dragMovesAndIsRemembered();
    void dragBeyondTheEdgeComesBack();
    void dragWithoutAnEndEndsWithTheNextPress();
    void dragWithoutAnEndEndsWithAnyPress();
    void dragEndsWithTheWindow();
    void smallMoveIsAClick();
    void menuChangesTheSize();
    void menuOpensAndCloses();
    void menuSpeaksTheSnapshotsLanguage();
    void smallHeaderFits_data();
    void smallHeaderFits();
    void menuIsDrawnInsideTheWindow_data();
    void menuIsDrawnInsideTheWindow();
    void menuInsideClosesByAClickBesideIt();
    void keyboard();
    void screenThatShrinks();
    void cornersAreCutWithoutACompositor();

private:
    WidgetController &start(WidgetPreferences preferences = {}, bool hasChildWindows = true);
    void write(const WidgetSnapshot &snapshot);
    void drag(QPoint from, QPoint way);
    void dragWithoutAnEnd(QPoint from, QPoint way);
    QMenu *menu() { return m_controller->window().findChild<QMenu *>(); }
    QAction *entry(const char16_t *text);

    QTemporaryDir m_directory;
    std::unique_ptr<MemoryDefaults> m_storage;
    std::unique_ptr<WidgetModel> m_model;
    std::unique_ptr<WidgetController> m_controller;
    FakeSurface *m_surface = nullptr;
    int m_opened = 0;
    int m_closed = 0;
};

void WidgetControllerTest::init()
{
    m_opened = m_closed = 0;
    m_storage = std::make_unique<MemoryDefaults>();
    m_model = std::make_unique<WidgetModel>(WidgetSnapshotStore{m_directory.path()}, shippedCoins);
    write(threeCoins());
}

void WidgetControllerTest::cleanup()
{
    m_controller.reset();
    m_model.reset();
}

WidgetController &WidgetControllerTest::start(WidgetPreferences preferences, bool hasChildWindows)
{
    if (preferences != WidgetPreferences())
        saveWidgetPreferences(*m_storage, preferences);
    auto surface = std::make_unique<FakeSurface>();
    m_surface = surface.get();
    m_controller =
        std::make_unique<WidgetController>(WidgetEnvironment{.model = *m_model,
                                                             .storage = *m_storage,
                                                             .surface = std::move(surface),
                                                             .logos = [](const QString &) { return std::nullopt; },
                                                             .openApplication = [this] { ++m_opened; },
                                                             .close = [this] { ++m_closed; },
                                                             .hasChildWindows = hasChildWindows});
    m_controller->show();
    return *m_controller;
}

void WidgetControllerTest::write(const WidgetSnapshot &snapshot)
{
    QVERIFY(WidgetSnapshotStore{m_directory.path()}.write(snapshot));
    m_model->reload();
}

void WidgetControllerTest::drag(QPoint from, QPoint way)
{
    WidgetWindow &window = m_controller->window();
    const QPoint hold = window.mapToGlobal(from);
    const auto send = [&](QEvent::Type type, QPoint place, Qt::MouseButton button, Qt::MouseButtons held) {
        QMouseEvent event(type, window.mapFromGlobal(place), place, button, held, Qt::NoModifier);
        QCoreApplication::sendEvent(&window, &event);
    };
    send(QEvent::MouseButtonPress, hold, Qt::LeftButton, Qt::LeftButton);
    for (int step = 1; step <= 4; ++step)
        send(QEvent::MouseMove, hold + way * step / 4, Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, hold + way, Qt::LeftButton, Qt::NoButton);
}

QAction *WidgetControllerTest::entry(const char16_t *text)
{
    for (QAction *const action : menu()->actions()) {
        if (action->text() == QString::fromUtf16(text))
            return action;
    }
    return nullptr;
}

void WidgetControllerTest::standsInTheCornerAtFirst()
{
    start();
    QCOMPARE(m_surface->frame(), QRect(1280 - 364 - 24, 30 + 24, 364, 166));
    QCOMPARE(m_storage->writes, 0);
}

void WidgetControllerTest::standsWhereItWas()
{
    start({WidgetSize::medium, DesktopOverlayOrigin{100, 500}});
    QCOMPARE(m_surface->frame(), QRect(100, 300, 364, 166));
}

void WidgetControllerTest::placeOffTheScreenIsMovedBack()
{
    start({WidgetSize::medium, DesktopOverlayOrigin{1e9, -1e9}});
    QCOMPARE(m_surface->frame(), QRect(1280 - 364, 800 - 166, 364, 166));
}

void WidgetControllerTest::hasItsSizeBack()
{
    start({WidgetSize::large, DesktopOverlayOrigin{0, 770}});
    QCOMPARE(m_surface->frame(), QRect(0, 30, 364, 22 + 380 + 9 + 28));
}

void WidgetControllerTest::followsTheModel()
{
    WidgetController &controller = start();
    QCOMPARE(controller.window().list().content().rows.size(), std::size_t(3));
    WidgetSnapshot changed = threeCoins();
    changed.watchlist = {QStringLiteral("solana")};
    write(changed);
    QCOMPARE(controller.window().list().content().rows.size(), std::size_t(1));
}

void WidgetControllerTest::clickOpensTheApplication()
{
    QTest::mouseClick(&start().window(), Qt::LeftButton, {}, QPoint(50, 50));
    QCOMPARE(m_opened, 1);
    QCOMPARE(m_storage->writes, 0);
    QTest::mouseClick(&m_controller->window(), Qt::MiddleButton, {}, QPoint(50, 50));
    QCOMPARE(m_opened, 1);
}

void WidgetControllerTest::dragMovesAndIsRemembered()
{
    start({WidgetSize::medium, DesktopOverlayOrigin{100, 500}});
    drag(QPoint(20, 20), QPoint(60, -40));
    QCOMPARE(m_surface->frame(), QRect(160, 260, 364, 166));
    QCOMPARE(loadWidgetPreferences(*m_storage).topLeft, (std::optional<DesktopOverlayOrigin>({160, 540})));
    QCOMPARE(m_opened, 0);
}

void WidgetControllerTest::dragBeyondTheEdgeComesBack()
{
    start({WidgetSize::medium, DesktopOverlayOrigin{100, 500}});
    drag(QPoint(20, 20), QPoint(-400, 0));
    QCOMPARE(m_surface->frame(), QRect(0, 300, 364, 166));
    QCOMPARE(loadWidgetPreferences(*m_storage).topLeft, (std::optional<DesktopOverlayOrigin>({0, 500})));
}

void WidgetControllerTest::dragWithoutAnEnd(QPoint from, QPoint way)
{
    WidgetWindow &window = m_controller->window();
    QTest::mousePress(&window, Qt::LeftButton, {}, from);
    QMouseEvent move(QEvent::MouseMove, from + way, window.mapToGlobal(from + way), Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&window, &move);
}

void WidgetControllerTest::dragWithoutAnEndEndsWithAnyPress()
{
    WidgetWindow &window = start({WidgetSize::medium, DesktopOverlayOrigin{100, 500}}).window();
    dragWithoutAnEnd(QPoint(20, 20), QPoint(50, 0));
    QTest::mousePress(&window, Qt::RightButton, {}, QPoint(20, 20));
    Q_EMIT window.menuRequested(QPoint(10, 10));
    entry(u"Small")->trigger();
    QCOMPARE(m_surface->frame(), QRect(150, 300, 196, 166));
}

void WidgetControllerTest::dragEndsWithTheWindow()
{
    WidgetWindow &window = start({WidgetSize::medium, DesktopOverlayOrigin{100, 500}}).window();
    dragWithoutAnEnd(QPoint(20, 20), QPoint(50, 0));
    window.hide();
    window.show();
    m_surface->onScreensChanged();
    QCOMPARE(m_surface->frame().topLeft(), QPoint(100, 300));
    QCOMPARE(loadWidgetPreferences(*m_storage).topLeft, (DesktopOverlayOrigin{100, 500}));
}

void WidgetControllerTest::dragWithoutAnEndEndsWithTheNextPress()
{
    start({WidgetSize::medium, DesktopOverlayOrigin{100, 500}});
    dragWithoutAnEnd(QPoint(20, 20), QPoint(50, 0));
    QCOMPARE(m_surface->frame().topLeft(), QPoint(150, 300));
    drag(QPoint(20, 20), QPoint(60, -40));
    QCOMPARE(m_surface->frame().topLeft(), QPoint(210, 260));
    QCOMPARE(m_opened, 0);
}

void WidgetControllerTest::smallMoveIsAClick()
{
    start();
    const QRect before = m_surface->frame();
    drag(QPoint(20, 20), QPoint(2, 2));
    QCOMPARE(m_surface->frame(), before);
    QCOMPARE(m_opened, 1);
}

void WidgetControllerTest::menuChangesTheSize()
{
    start({WidgetSize::medium, DesktopOverlayOrigin{100, 500}});
    Q_EMIT m_controller->window().menuRequested(QPoint(10, 10));
    QVERIFY(entry(u"Medium")->isChecked());
    entry(u"Small")->trigger();
    QCOMPARE(m_surface->frame(), QRect(100, 300, 196, 166));
    QCOMPARE(loadWidgetPreferences(*m_storage), (WidgetPreferences{WidgetSize::small, {{100, 500}}}));
    Q_EMIT m_controller->window().menuRequested(QPoint(10, 10));
    QVERIFY(entry(u"Small")->isChecked());
    QVERIFY(!entry(u"Medium")->isChecked());
}

void WidgetControllerTest::menuOpensAndCloses()
{
    start();
    Q_EMIT m_controller->window().menuRequested(QPoint(10, 10));
    entry(u"Open Tickwise")->trigger();
    QCOMPARE(m_opened, 1);
    entry(u"Close Widget")->trigger();
    QCOMPARE(m_closed, 1);
}

void WidgetControllerTest::menuSpeaksTheSnapshotsLanguage()
{
    write(threeCoins(AppLanguage::zhHans));
    start();
    Q_EMIT m_controller->window().menuRequested(QPoint(10, 10));
    QVERIFY(entry(u"关闭小组件"));
}

void WidgetControllerTest::smallHeaderFits_data()
{
    QTest::addColumn<AppLanguage>("language");
    QTest::addColumn<QString>("family");
    for (const AppLanguage language : {AppLanguage::en, AppLanguage::zhHans, AppLanguage::zhHant}) {
        for (const char *const family : {"Noto Sans", "DejaVu Sans"})
            QTest::addRow("%s, %s", qPrintable(rawValue(language)), family) << language << QString::fromLatin1(family);
    }
}

/// At the hours whose texts are the longest, too.
void WidgetControllerTest::smallHeaderFits()
{
    QFETCH(AppLanguage, language);
    QFETCH(QString, family);
    WidgetEntryContent content;
    content.language = language;
    content.rows = {
        {QStringLiteral("bitcoin"), QStringLiteral("BTC"), QStringLiteral("Bitcoin"), {}, true, 67432, -12.34}};
    content.updatedAt = TimePoint(std::chrono::hours(22) + std::chrono::minutes(44));
    const QSize list = pointSize(WidgetSize::small) - QSize(2 * widgetPadding, 2 * widgetPadding);
    const WidgetListLayout layout(DesktopOverlayTextSize::normal, list);
    const WidgetListFaces faces(QFont(family), WidgetListMetrics::of(DesktopOverlayTextSize::normal));
    for (const WidgetText &text :
         layout.texts(widgetListText(content, *content.updatedAt, QTimeZone::utc()), faces, {})) {
        const double width = text.face->width(text.text, text.isTabular);
        QVERIFY2(width <= text.box.width(), qPrintable(QStringLiteral("%1: %2").arg(text.text).arg(width)));
    }
}

void WidgetControllerTest::menuIsDrawnInsideTheWindow_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QPoint>("position");
    for (const WidgetSize size : allCases<WidgetSize>()) {
        QTest::addRow("%s, corner", qPrintable(rawValue(size))) << int(size) << QPoint(0, 0);
        QTest::addRow("%s, other corner", qPrintable(rawValue(size))) << int(size) << QPoint(1000, 1000);
    }
}

void WidgetControllerTest::menuIsDrawnInsideTheWindow()
{
    QFETCH(int, size);
    QFETCH(QPoint, position);
    WidgetController &controller = start({WidgetSize(size), {}}, false);
    Q_EMIT controller.window().menuRequested(position);
    QVERIFY(!menu()->isWindow());
    QVERIFY(menu()->isVisible());
    QVERIFY2(controller.window().rect().contains(menu()->geometry()), qPrintable(QDebug::toString(menu()->geometry())));
    const QRect small = menu()->actionGeometry(entry(u"Small"));
    QTest::mouseMove(menu(), small.center());
    QTest::mouseClick(menu(), Qt::LeftButton, {}, small.center());
    QCOMPARE(loadWidgetPreferences(*m_storage).size, WidgetSize::small);
    QTRY_VERIFY(!menu());
    QCOMPARE(m_opened, 0);
}

void WidgetControllerTest::menuInsideClosesByAClickBesideIt()
{
    WidgetController &controller = start({WidgetSize::large, {}}, false);
    Q_EMIT controller.window().menuRequested(QPoint(0, 0));
    QTest::mouseClick(&controller.window(), Qt::LeftButton, {},
                      controller.window().rect().bottomRight() - QPoint(9, 9));
    QTRY_VERIFY(!menu());
    QCOMPARE(m_opened, 0);
}

void WidgetControllerTest::keyboard()
{
    WidgetWindow &window = start().window();
    QTest::keyClick(&window, Qt::Key_Return);
    QTest::keyClick(&window, Qt::Key_Space);
    QCOMPARE(m_opened, 2);
    QTest::keyClick(&window, Qt::Key_F10);
    QVERIFY(!menu());
    QTest::keyClick(&window, Qt::Key_F10, Qt::ShiftModifier);
    QVERIFY(menu());
    delete menu();
    QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, QPoint(5, 5), window.mapToGlobal(QPoint(5, 5)));
    QCoreApplication::sendEvent(&window, &menuKey);
    QVERIFY(menu());
}

void WidgetControllerTest::screenThatShrinks()
{
    start();
    m_surface->area = QRect(0, 30, 640, 450);
    m_surface->onScreensChanged();
    QCOMPARE(m_surface->frame(), QRect(640 - 364 - 24, 54, 364, 166));
}

void WidgetControllerTest::cornersAreCutWithoutACompositor()
{
    WidgetWindow &window = start().window();
    QVERIFY(window.mask().isEmpty());
    m_surface->translucent = false;
    m_surface->onTranslucencyChanged();
    QVERIFY(!window.mask().contains(QPoint(1, 1)));
    QVERIFY(window.mask().contains(window.rect().center()));
    m_surface->translucent = true;
    m_surface->onTranslucencyChanged();
    QVERIFY(window.mask().isEmpty());
}

TICKWISE_WIDGET_TEST(WidgetControllerTest)
#include "WidgetControllerTest.moc"
