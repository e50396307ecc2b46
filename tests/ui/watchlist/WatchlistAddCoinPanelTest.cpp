#include "ui/watchlist/WatchlistAddCoinPanel.h"

#include "catalog/logos/CoinLogoStore.h"
#include "doubles/Catalogs.h"
#include "doubles/Languages.h"
#include "doubles/MemoryDefaults.h"
#include "doubles/ScriptedHttpClient.h"
#include "doubles/TestProgram.h"
#include "ui/controls/IconButton.h"
#include "ui/watchlist/CoinToggleList.h"
#include "ui/watchlist/WatchlistView.h"

#include <QTabWidget>
#include <QTemporaryDir>
#include <QVBoxLayout>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const QString panelLogoServer = QStringLiteral("https://assets.coingecko.com/");

std::vector<CoinMetadata> coinsWithLogos()
{
    std::vector<CoinMetadata> coins = validCoins(3);
    for (CoinMetadata &coin : coins)
        coin.logoURL = panelLogoServer + coin.id;
    return coins;
}

/// The panel over a window with two tabs, as the settings window has them.
struct AddCoinPanelWorld
{
    AddCoinPanelWorld()
    {
        window.resize(700, 480);
        (new QVBoxLayout(&window))->addWidget(tabs);
        tabs->addTab(view, QString());
        tabs->addTab(new QWidget, QString());
        window.show();
        window.activateWindow();
    }

    bool open()
    {
        view->openSearch();
        panel = window.findChild<WatchlistAddCoinPanel *>();
        field = panel->findChild<QLineEdit *>(QStringLiteral("searchField"));
        clear = panel->findChild<IconButton *>(QStringLiteral("watchlist.search.clear"));
        list = panel->findChild<CoinToggleList *>(QStringLiteral("searchResults"));
        return QTest::qWaitForWindowActive(&window) && field->hasFocus();
    }

    QTemporaryDir container;
    ScriptedHttpClient http;
    CoinLogoStore logos{CoinLogoCache::inContainer(container.path()), http};
    MemoryDefaults defaults;
    SettingsViewModel settings{UserDefaultsSettingsStore(defaults)};
    FixedCatalog catalog{coinsWithLogos()};
    WatchlistViewModel viewModel{catalog, settings};
    QWidget window;
    QTabWidget *tabs = new QTabWidget;
    WatchlistView *view = new WatchlistView({settings, catalog, viewModel, &logos});
    WatchlistAddCoinPanel *panel = nullptr;
    QLineEdit *field = nullptr;
    IconButton *clear = nullptr;
    CoinToggleList *list = nullptr;
};

/// Whether somebody took the key.
bool press(QWidget &widget, int key, const QString &text, Qt::KeyboardModifiers modifiers = {}, bool isRepeat = false)
{
    QKeyEvent event(QEvent::KeyPress, key, modifiers, text, isRepeat);
    QCoreApplication::sendEvent(&widget, &event);
    return event.isAccepted();
}

void clickFirst(CoinToggleList &list)
{
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualRect(list.model()->index(0, 0)).center());
}

} // namespace

class WatchlistAddCoinPanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useLanguage(AppLanguage::en); }
    void commandsAreNotTyped_data();
    void commandsAreNotTyped();
    void typingGoesOnInTheField();
    void typingAfterAClickGoesOnInTheField();
    void theSpaceBarTogglesAClickedRow();
    void aHeldEnterTogglesOnce();
    void escapeOfACompositionStaysInside();
    void tabStaysInside();
    void tabWithoutResults();
    void goesWithItsTab();
    void closingGivesTheKeyboardBack();
    void minimizingKeepsTheKeyboard();
    void aLogoThatFailedIsAskedForOnceAShowing();
};

void WatchlistAddCoinPanelTest::commandsAreNotTyped_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("text");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("Ctrl+1") << int(Qt::Key_1) << QStringLiteral("1") << Qt::KeyboardModifiers(Qt::ControlModifier);
    QTest::newRow("Ctrl+minus") << int(Qt::Key_Minus) << QStringLiteral("-")
                                << Qt::KeyboardModifiers(Qt::ControlModifier);
    QTest::newRow("Ctrl+Shift+0") << int(Qt::Key_0) << QStringLiteral("=") << (Qt::ControlModifier | Qt::ShiftModifier);
    QTest::newRow("Ctrl+0") << int(Qt::Key_0) << QStringLiteral("0") << Qt::KeyboardModifiers(Qt::ControlModifier);
}

void WatchlistAddCoinPanelTest::commandsAreNotTyped()
{
    QFETCH(int, key);
    QFETCH(QString, text);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    AddCoinPanelWorld world;
    QVERIFY(world.open());
    press(*world.field, key, text, modifiers);
    world.list->setFocus();
    press(*world.list, key, text, modifiers);
    QVERIFY(world.list->hasFocus());
    QVERIFY(world.panel->isVisible());
}

void WatchlistAddCoinPanelTest::typingGoesOnInTheField()
{
    AddCoinPanelWorld world;
    QVERIFY(world.open());
    press(*world.field, Qt::Key_E, QStringLiteral("e"));
    world.clear->setFocus();
    press(*world.clear, Qt::Key_T, QStringLiteral("t"));
    QCOMPARE(world.viewModel.searchText(), QStringLiteral("et"));
    QVERIFY(world.field->hasFocus());
}

void WatchlistAddCoinPanelTest::typingAfterAClickGoesOnInTheField()
{
    AddCoinPanelWorld world;
    QVERIFY(world.open());
    clickFirst(*world.list);
    QVERIFY(world.list->hasFocus());
    press(*world.list, Qt::Key_E, QStringLiteral("E"), Qt::ShiftModifier);
    QVERIFY(world.field->hasFocus());
    press(*world.field, Qt::Key_T, QStringLiteral("t"));
    QCOMPARE(world.viewModel.searchText(), QStringLiteral("Et"));
}

void WatchlistAddCoinPanelTest::theSpaceBarTogglesAClickedRow()
{
    AddCoinPanelWorld world;
    QVERIFY(world.open());
    const bool isAdded = world.viewModel.isAdded(QStringLiteral("bitcoin"));
    clickFirst(*world.list);
    QCOMPARE(world.viewModel.isAdded(QStringLiteral("bitcoin")), !isAdded);
    press(*world.list, Qt::Key_Space, QStringLiteral(" "));
    QCOMPARE(world.viewModel.isAdded(QStringLiteral("bitcoin")), isAdded);
    QVERIFY(world.list->hasFocus());
}

void WatchlistAddCoinPanelTest::aHeldEnterTogglesOnce()
{
    AddCoinPanelWorld world;
    QVERIFY(world.open());
    press(*world.field, Qt::Key_Down, {});
    const auto before = world.settings.settings().watchlistCoins.size();
    for (const bool isRepeat : {false, true, true})
        QVERIFY(press(*world.field, Qt::Key_Return, QStringLiteral("\r"), {}, isRepeat));
    QCOMPARE(world.settings.settings().watchlistCoins.size(), before - 1);
    QVERIFY(press(*world.field, Qt::Key_Return, QStringLiteral("\r"), {}, true));
    QCOMPARE(world.settings.settings().watchlistCoins.size(), before - 1);
}

void WatchlistAddCoinPanelTest::escapeOfACompositionStaysInside()
{
    AddCoinPanelWorld world;
    QVERIFY(world.open());
    QInputMethodEvent composing(QStringLiteral("bi"), {});
    QCoreApplication::sendEvent(world.field, &composing);
    QVERIFY(press(*world.field, Qt::Key_Escape, {}));
    QVERIFY(world.panel->isVisible());
}

void WatchlistAddCoinPanelTest::tabStaysInside()
{
    AddCoinPanelWorld world;
    QVERIFY(world.open());
    press(*world.field, Qt::Key_E, QStringLiteral("e"));
    const std::vector<QWidget *> order{world.field, world.clear, world.list};
    for (std::size_t i = 1; i <= 6; ++i) {
        press(*QApplication::focusWidget(), Qt::Key_Tab, QStringLiteral("\t"));
        QCOMPARE(QApplication::focusWidget(), order.at(i % 3));
    }
    for (std::size_t i = 5; i < 6; --i) {
        press(*QApplication::focusWidget(), Qt::Key_Backtab, QStringLiteral("\t"), Qt::ShiftModifier);
        QCOMPARE(QApplication::focusWidget(), order.at(i % 3));
    }
}

void WatchlistAddCoinPanelTest::tabWithoutResults()
{
    AddCoinPanelWorld world;
    QVERIFY(world.open());
    world.viewModel.setSearchText(QStringLiteral("no such coin"));
    QVERIFY(!world.list->isVisible());
    press(*world.field, Qt::Key_Tab, QStringLiteral("\t"));
    QVERIFY(world.clear->hasFocus());
    press(*world.clear, Qt::Key_Tab, QStringLiteral("\t"));
    QVERIFY(world.field->hasFocus());
}

void WatchlistAddCoinPanelTest::goesWithItsTab()
{
    AddCoinPanelWorld world;
    QVERIFY(world.open());
    world.tabs->setCurrentIndex(1);
    QVERIFY(!world.panel->isVisible());
    QVERIFY(!QApplication::focusWidget() || QApplication::focusWidget()->isVisible());
    world.tabs->setCurrentIndex(0);
    QVERIFY(!world.panel->isVisible());
    QVERIFY(world.open());
}

void WatchlistAddCoinPanelTest::closingGivesTheKeyboardBack()
{
    AddCoinPanelWorld world;
    QVERIFY(world.open());
    press(*world.field, Qt::Key_Escape, {});
    QCOMPARE(QApplication::focusWidget()->objectName(), QStringLiteral("watchlist.addCoin"));
}

void WatchlistAddCoinPanelTest::minimizingKeepsTheKeyboard()
{
    AddCoinPanelWorld world;
    QVERIFY(world.open());
    world.window.showMinimized();
    QTRY_VERIFY(!world.panel->testAttribute(Qt::WA_Mapped)); // what a minimized window does to its children
    QCOMPARE(world.window.focusWidget(), world.field);
    world.window.showNormal();
    QVERIFY(QTest::qWaitForWindowActive(&world.window));
    QVERIFY(world.panel->isVisible());
    QVERIFY(world.field->hasFocus());
    press(*world.field, Qt::Key_Escape, {});
    QVERIFY(!world.panel->isVisible());
}

void WatchlistAddCoinPanelTest::aLogoThatFailedIsAskedForOnceAShowing()
{
    AddCoinPanelWorld world;
    world.http.answer(panelLogoServer, 404, {});
    const QString bitcoin = panelLogoServer + QStringLiteral("bitcoin");
    const auto paint = [&world] {
        world.list->grab();
        QCoreApplication::processEvents();
        QTRY_COMPARE(world.http.open(), 0);
    };
    QVERIFY(world.open());
    paint();
    paint();
    const auto asked = world.http.urls(bitcoin).size();
    QVERIFY(asked > 0);
    paint();
    paint();
    QCOMPARE(world.http.urls(bitcoin).size(), asked);
    world.panel->hide();
    QVERIFY(world.open());
    paint();
    QCOMPARE(world.http.urls(bitcoin).size(), asked + 1);
}

TICKWISE_WIDGET_TEST(WatchlistAddCoinPanelTest)
#include "WatchlistAddCoinPanelTest.moc"
