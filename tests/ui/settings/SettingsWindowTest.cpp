#include "ui/settings/SettingsWindow.h"

#include "doubles/Catalogs.h"
#include "doubles/Languages.h"
#include "doubles/LogCapture.h"
#include "doubles/MemoryDefaults.h"
#include "doubles/TestProgram.h"
#include "ui/settings/SettingsWindowFrame.h"
#include "ui/watchlist/WatchlistRows.h"
#include "ui/watchlist/WatchlistView.h"

#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTabWidget>

#include <memory>

using namespace tickwise;

namespace {

QStringList idsOf(const SettingsViewModel &settings)
{
    QStringList ids;
    for (const WatchlistCoin &coin : settings.settings().watchlistCoins)
        ids.append(coin.coinId);
    return ids;
}

} // namespace

class SettingsWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void opensWithItsSize();
    void keepsItsLimits();
    void hasOneSizeUntilItIsActive();
    void hasItsLimitsAtOnceOnKde();
    void keepsItsFrame();
    void aFrameThatIsNoneIsTheUsualOne();
    void followsTheTab();
    void setsTheTab();
    void escapeCloses();
    void escapeEndsADragFirst();
    void escapeEndsACompositionFirst();
    void aHeldEscapeDoesNotClose();
    void theCloseKeyCloses();
    void aFullDiskIsALogLine();
    void languageChangeWritesTheTexts();

private:
    std::unique_ptr<SettingsWindow> makeWindow();
    static QTabWidget *tabsOf(const SettingsWindow &window) { return window.findChild<QTabWidget *>(); }

    test::MemoryDefaults m_defaults;
    std::unique_ptr<SettingsViewModel> m_settings;
};

void SettingsWindowTest::init()
{
    qunsetenv("XDG_CURRENT_DESKTOP");
    test::useLanguage(AppLanguage::en);
    m_defaults.entries.clear();
    m_defaults.fails = false;
    m_settings = std::make_unique<SettingsViewModel>(UserDefaultsSettingsStore(m_defaults));
}

std::unique_ptr<SettingsWindow> SettingsWindowTest::makeWindow()
{
    return std::make_unique<SettingsWindow>(*m_settings, m_defaults,
                                            SettingsWindow::Pages{new QLabel, new QLabel, new QLabel});
}

void SettingsWindowTest::opensWithItsSize()
{
    const auto window = makeWindow();
    QCOMPARE(window->size(), QSize(786, 500));
    QCOMPARE(window->windowTitle(), localized(QStringLiteral("window.settings.title")));
    QCOMPARE(tabsOf(*window)->count(), 3);
}

void SettingsWindowTest::keepsItsLimits()
{
    const auto window = makeWindow();
    window->resize(2000, 2000);
    QCOMPARE(window->size(), QSize(800, 500));
    window->resize(10, 10);
    QCOMPARE(window->size(), QSize(600, 420));
}

void SettingsWindowTest::hasOneSizeUntilItIsActive()
{
    const auto window = makeWindow();
    window->show();
    QCOMPARE(window->minimumSize(), QSize(786, 500));
    QCOMPARE(window->maximumSize(), QSize(786, 500));
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    QCOMPARE(window->minimumSize(), QSize(600, 420));
    QCOMPARE(window->maximumSize(), QSize(800, 500));
    window->resize(700, 450);
    window->hide();
    window->show();
    QCOMPARE(window->size(), QSize(700, 450));
}

void SettingsWindowTest::hasItsLimitsAtOnceOnKde()
{
    qputenv("XDG_CURRENT_DESKTOP", "KDE");
    const auto clean = qScopeGuard([] { qunsetenv("XDG_CURRENT_DESKTOP"); });
    const auto window = makeWindow();
    window->show();
    QCOMPARE(window->minimumSize(), QSize(600, 420));
    QCOMPARE(window->maximumSize(), QSize(800, 500));
}

void SettingsWindowTest::keepsItsFrame()
{
    auto window = makeWindow();
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    window->resize(650, 440);
    window->close();
    QCOMPARE(decodeWindowFrame(m_defaults.entries.at(QStringLiteral("SettingsWindow")))->size(), QSize(650, 440));
    window = makeWindow();
    QCOMPARE(window->size(), QSize(650, 440));
}

void SettingsWindowTest::aFrameThatIsNoneIsTheUsualOne()
{
    m_defaults.entries[QStringLiteral("SettingsWindow")] = "{\"x\":1}";
    QCOMPARE(makeWindow()->size(), QSize(786, 500));
    m_defaults.entries[QStringLiteral("SettingsWindow")] = "[10,10,5000,20]";
    QCOMPARE(makeWindow()->size(), QSize(800, 420));
}

void SettingsWindowTest::followsTheTab()
{
    m_settings->setSettingsWindowTab(SettingsTab::about);
    const auto window = makeWindow();
    QCOMPARE(tabsOf(*window)->currentIndex(), 2);
    m_settings->setSettingsWindowTab(SettingsTab::watchlist);
    QCOMPARE(tabsOf(*window)->currentIndex(), 1);
}

void SettingsWindowTest::setsTheTab()
{
    const auto window = makeWindow();
    tabsOf(*window)->setCurrentIndex(1);
    QCOMPARE(m_settings->settingsWindowTab(), SettingsTab::watchlist);
}

void SettingsWindowTest::escapeCloses()
{
    const auto window = makeWindow();
    window->show();
    QSignalSpy closed(window.get(), &SettingsWindow::closed);
    QTest::keyClick(window.get(), Qt::Key_Escape);
    QCOMPARE(closed.size(), 1);
    QVERIFY(!window->isVisible());
}

void SettingsWindowTest::escapeEndsADragFirst()
{
    test::FixedCatalog catalog{test::validCoins()};
    WatchlistViewModel viewModel{catalog, *m_settings};
    auto *const view = new WatchlistView({*m_settings, catalog, viewModel});
    SettingsWindow window(*m_settings, m_defaults, {new QLabel, view, new QLabel});
    m_settings->setSettingsWindowTab(SettingsTab::watchlist);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    auto *const handle = view->rows().rowAt(0)->findChild<QWidget *>(QStringLiteral("watchlist.reorder"));
    const QStringList order = idsOf(*m_settings);
    QTest::mousePress(handle, Qt::LeftButton);
    QTest::mouseMove(handle, handle->rect().center() + QPoint(0, 50));
    QVERIFY(view->session().draggedID());
    QTest::keyClick(window.windowHandle(), Qt::Key_Escape);
    QVERIFY(!view->session().draggedID());
    QVERIFY(window.isVisible());
    QTest::mouseRelease(handle, Qt::LeftButton);
    QCOMPARE(idsOf(*m_settings), order);
    QTest::keyClick(window.windowHandle(), Qt::Key_Escape);
    QVERIFY(!window.isVisible());
}

void SettingsWindowTest::escapeEndsACompositionFirst()
{
    auto *const field = new QLineEdit;
    SettingsWindow window(*m_settings, m_defaults, {field, new QLabel, new QLabel});
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    field->setFocus();
    QInputMethodEvent composing(QStringLiteral("1"), {});
    QCoreApplication::sendEvent(field, &composing);
    QTest::keyClick(field, Qt::Key_Escape);
    QVERIFY(window.isVisible());
    QInputMethodEvent over;
    QCoreApplication::sendEvent(field, &over);
    QTest::keyClick(field, Qt::Key_Escape);
    QVERIFY(!window.isVisible());
}

void SettingsWindowTest::aHeldEscapeDoesNotClose()
{
    const auto window = makeWindow();
    window->show();
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Escape, {}, {}, true);
    QCoreApplication::sendEvent(window.get(), &held);
    QVERIFY(window->isVisible());
}

void SettingsWindowTest::theCloseKeyCloses()
{
    const auto window = makeWindow();
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    QSignalSpy closed(window.get(), &SettingsWindow::closed);
    QTest::keySequence(window.get(), QKeySequence(QKeySequence::Close));
    QCOMPARE(closed.size(), 1);
}

void SettingsWindowTest::aFullDiskIsALogLine()
{
    const test::LogCapture log;
    const auto window = makeWindow();
    window->show();
    m_defaults.fails = true;
    window->close();
    QVERIFY(!window->isVisible());
    QCOMPARE(log.texts(QStringLiteral("com.pelmo.tickwise.Settings")).size(), 1);
}

void SettingsWindowTest::languageChangeWritesTheTexts()
{
    const auto window = makeWindow();
    test::useLanguage(AppLanguage::zhHans);
    QEvent change(QEvent::LanguageChange);
    QCoreApplication::sendEvent(window.get(), &change);
    QCOMPARE(tabsOf(*window)->tabText(0), localized(QStringLiteral("settings.tab.general")));
    QCOMPARE(window->windowTitle(), localized(QStringLiteral("window.settings.title")));
    test::useLanguage(AppLanguage::en);
}

TICKWISE_WIDGET_TEST(SettingsWindowTest)
#include "SettingsWindowTest.moc"
