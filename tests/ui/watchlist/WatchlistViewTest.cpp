#include "ui/watchlist/WatchlistView.h"

#include "doubles/Catalogs.h"
#include "doubles/FakeMotion.h"
#include "doubles/Languages.h"
#include "doubles/MemoryDefaults.h"
#include "doubles/TestProgram.h"
#include "ui/controls/IconButton.h"
#include "ui/watchlist/CoinToggleList.h"
#include "ui/watchlist/WatchlistAddCoinPanel.h"
#include "ui/watchlist/WatchlistRows.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>

#include <memory>

using namespace tickwise;
using namespace tickwise::test;

namespace {

struct WatchlistViewWorld
{
    explicit WatchlistViewWorld(int watched)
    {
        AppSettings chosen = settings.settings();
        chosen.watchlistCoins.clear();
        for (int i = 0; i < watched; ++i)
            chosen.watchlistCoins.push_back({catalog.coins()[static_cast<size_t>(i)].id});
        settings.update(chosen);
        view = std::make_unique<WatchlistView>(WatchlistContext{settings, catalog, viewModel, nullptr, &motion});
        view->resize(600, 480);
        view->show();
        QCoreApplication::processEvents();
    }

    QStringList ids() const
    {
        QStringList ids;
        for (const WatchlistCoin &coin : settings.settings().watchlistCoins)
            ids.append(coin.coinId);
        return ids;
    }

    IconButton *handle(int row) const
    {
        return view->rows().rowAt(row)->findChild<IconButton *>(QStringLiteral("watchlist.reorder"));
    }

    QPoint center(const QWidget &widget) const { return widget.rect().center(); }

    MemoryDefaults defaults;
    SettingsViewModel settings{UserDefaultsSettingsStore(defaults)};
    FixedCatalog catalog{validCoins()};
    WatchlistViewModel viewModel{catalog, settings};
    FakeMotion motion;
    std::unique_ptr<WatchlistView> view;
};

void drag(WatchlistViewWorld &world, int row, int dy)
{
    IconButton *const handle = world.handle(row);
    const QPoint from = world.center(*handle);
    const QPoint start = handle->mapToGlobal(from);
    QTest::mousePress(handle, Qt::LeftButton, {}, from);
    // The handle moves with its row.
    for (const int step : {dy / 2, dy})
        QTest::mouseMove(handle, handle->mapFromGlobal(start + QPoint(0, step)));
}

} // namespace

class WatchlistViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useLanguage(AppLanguage::en); }
    void showsARowAnEntry();
    void longListsHaveFewWidgets();
    void deletesARow();
    void editsTheAlert();
    void deletingDuringADragCancelsIt();
    void keyboardMovesARow();
    void keyboardStopsAtTheEnds();
    void dragCommitsTheOrder();
    void aClickOnTheHandleIsNoDrag();
    void aDragThatWasHiddenIsOver();
    void aDragWithoutAReleaseEndsWithTheNext();
    void changeFromElsewhereEndsADrag();
    void recommendedRowsToggle();
    void emptyListSaysSo();
    void unknownCoinsAndDuplicatesAreShown();
    void searchFindsAndAdds();
    void searchMarksTheCurrentRow();
    void searchKeepsItsText();
    void escapeClosesTheSearch();
    void escapeEndsACompositionFirst();
    void togglingInTheSearchCancelsADrag();
    void languageChangeWritesTheTexts();
    void rowsHaveNames();
};

void WatchlistViewTest::showsARowAnEntry()
{
    const WatchlistViewWorld world(3);
    QCOMPARE(world.view->rows().rows().size(), size_t(3));
    QCOMPARE(world.view->rows().rowAt(1)->content().coin.symbol, QStringLiteral("ETH"));
    QCOMPARE(world.view->rows().rowAt(1)->height(), 44);
    QCOMPARE(world.view->rows().rowAt(2)->y(), 88);
}

void WatchlistViewTest::longListsHaveFewWidgets()
{
    WatchlistViewWorld world(200);
    QVERIFY(world.view->findChildren<WatchlistRow *>().size() < 30);
    world.view->rows().verticalScrollBar()->setValue(100 * 44);
    QVERIFY(world.view->rows().rowAt(100));
    QVERIFY(world.view->findChildren<WatchlistRow *>().size() < 30);
    QCOMPARE(world.view->rows().rowAt(100)->content().entry.coinId, world.ids().at(100));
}

void WatchlistViewTest::deletesARow()
{
    WatchlistViewWorld world(3);
    world.view->rows().rowAt(0)->findChild<IconButton *>(QStringLiteral("watchlist.delete"))->click();
    QCOMPARE(world.ids(), (QStringList{QStringLiteral("ethereum"), QStringLiteral("coin-2")}));
    QCOMPARE(world.settings.settings().displayedCoinId, QStringLiteral("ethereum"));
    QCOMPARE(world.view->rows().rowAt(0)->content().entry.coinId, QStringLiteral("ethereum"));
    QVERIFY(!world.view->rows().rowAt(2));
}

void WatchlistViewTest::editsTheAlert()
{
    WatchlistViewWorld world(2);
    const WatchlistRow *const row = world.view->rows().rowAt(1);
    auto *const kind = row->findChild<QComboBox *>();
    auto *const number = row->findChild<QLineEdit *>();
    QCOMPARE(number->text(), QStringLiteral("2"));
    Q_EMIT kind->activated(0);
    QCOMPARE(world.settings.settings().watchlistCoins[1].alertKind, CoinAlertKind::above);
    QVERIFY(number->isVisible());
    number->selectAll();
    QTest::keyClicks(number, QStringLiteral("4500"));
    QCOMPARE(world.settings.settings().watchlistCoins[1].notificationThreshold, 4500.0);
    QCOMPARE(world.settings.settings().watchlistCoins[0], (WatchlistCoin{QStringLiteral("bitcoin")}));
    Q_EMIT kind->activated(3);
    QCOMPARE(world.settings.settings().watchlistCoins[1].alertKind, CoinAlertKind::notSet);
    QVERIFY(!number->isVisible());
}

void WatchlistViewTest::deletingDuringADragCancelsIt()
{
    WatchlistViewWorld world(4);
    drag(world, 0, 88);
    QVERIFY(world.view->session().draggedID());
    world.view->rows().rowAt(2)->findChild<IconButton *>(QStringLiteral("watchlist.delete"))->click();
    QVERIFY(!world.view->session().draggedID());
    QCOMPARE(world.ids().size(), 3);
    QCOMPARE(world.ids().front(), QStringLiteral("bitcoin"));
}

void WatchlistViewTest::keyboardMovesARow()
{
    WatchlistViewWorld world(3);
    world.handle(0)->setFocus();
    QTest::keyClick(world.handle(0), Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(world.ids(),
             (QStringList{QStringLiteral("ethereum"), QStringLiteral("bitcoin"), QStringLiteral("coin-2")}));
    QTest::keyClick(world.handle(1), Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(world.ids().back(), QStringLiteral("bitcoin"));
    QTest::keyClick(world.handle(2), Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(world.ids().at(1), QStringLiteral("bitcoin"));
}

void WatchlistViewTest::keyboardStopsAtTheEnds()
{
    WatchlistViewWorld world(2);
    const int writes = world.defaults.writes;
    QTest::keyClick(world.handle(0), Qt::Key_Up, Qt::AltModifier);
    QTest::keyClick(world.handle(1), Qt::Key_Down, Qt::AltModifier);
    QTest::keyClick(world.handle(1), Qt::Key_Down);
    QCOMPARE(world.defaults.writes, writes);
}

void WatchlistViewTest::dragCommitsTheOrder()
{
    WatchlistViewWorld world(4);
    AppSettings settings = world.settings.settings();
    settings.watchlistCoins[0].notificationThreshold = 7;
    world.settings.update(settings);
    drag(world, 0, 88);
    QCOMPARE(world.view->session().insertionIndex(), 2);
    QTest::mouseRelease(world.handle(0), Qt::LeftButton);
    QCOMPARE(world.ids(), (QStringList{QStringLiteral("ethereum"), QStringLiteral("coin-2"), QStringLiteral("bitcoin"),
                                       QStringLiteral("coin-3")}));
    QCOMPARE(world.settings.settings().watchlistCoins[2].notificationThreshold, 7.0);
    QCOMPARE(world.view->rows().rowAt(2)->content().entry.coinId, QStringLiteral("bitcoin"));
    QCOMPARE(world.view->rows().rowAt(2)->y(), 88);
}

void WatchlistViewTest::aClickOnTheHandleIsNoDrag()
{
    WatchlistViewWorld world(3);
    const int writes = world.defaults.writes;
    QTest::mouseClick(world.handle(1), Qt::LeftButton);
    QVERIFY(!world.view->session().draggedID());
    QCOMPARE(world.defaults.writes, writes);
}

void WatchlistViewTest::aDragThatWasHiddenIsOver()
{
    WatchlistViewWorld world(4);
    const QStringList order = world.ids();
    drag(world, 0, 88);
    world.view->hide();
    QVERIFY(!world.view->session().draggedID());
    world.view->show();
    QTest::mouseRelease(world.handle(0), Qt::LeftButton);
    QCOMPARE(world.ids(), order);
}

void WatchlistViewTest::aDragWithoutAReleaseEndsWithTheNext()
{
    WatchlistViewWorld world(4);
    drag(world, 0, 88);
    drag(world, 3, -44);
    QCOMPARE(world.view->session().draggedID(), QStringLiteral("coin-3"));
    QTest::mouseRelease(world.handle(3), Qt::LeftButton);
    QCOMPARE(world.ids(), (QStringList{QStringLiteral("bitcoin"), QStringLiteral("ethereum"), QStringLiteral("coin-3"),
                                       QStringLiteral("coin-2")}));
}

void WatchlistViewTest::changeFromElsewhereEndsADrag()
{
    WatchlistViewWorld world(3);
    drag(world, 0, 44);
    AppSettings settings = world.settings.settings();
    settings.watchlistCoins.pop_back();
    world.settings.update(settings);
    QVERIFY(!world.view->session().draggedID());
    QTest::mouseRelease(world.handle(0), Qt::LeftButton);
    QCOMPARE(world.ids(), (QStringList{QStringLiteral("bitcoin"), QStringLiteral("ethereum")}));
}

void WatchlistViewTest::recommendedRowsToggle()
{
    WatchlistViewWorld world(1);
    auto *const list = world.view->findChild<CoinToggleList *>(QStringLiteral("watchlist.recommended"));
    QVERIFY(list->model()->rowCount() >= 2);
    const QModelIndex ethereum = list->model()->index(1, 0);
    QCOMPARE(ethereum.data(CoinToggleModel::isAddedRole).toBool(), false);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(ethereum).center());
    QCOMPARE(world.ids().size(), 2);
    QCOMPARE(ethereum.data(CoinToggleModel::isAddedRole).toBool(), true);
    list->setCurrentIndex(ethereum);
    QTest::keyClick(list, Qt::Key_Return);
    QCOMPARE(world.ids().size(), 1);
}

void WatchlistViewTest::emptyListSaysSo()
{
    WatchlistViewWorld world(1);
    world.view->rows().rowAt(0)->findChild<IconButton *>(QStringLiteral("watchlist.delete"))->click();
    QVERIFY(world.ids().isEmpty());
    QVERIFY(!world.view->rows().isVisible());
    QCOMPARE(world.settings.settings().displayedCoinId, QStringLiteral("bitcoin"));
}

void WatchlistViewTest::unknownCoinsAndDuplicatesAreShown()
{
    WatchlistViewWorld world(1);
    AppSettings settings = world.settings.settings();
    settings.watchlistCoins.push_back({QStringLiteral("no-such-coin")});
    settings.watchlistCoins.push_back({QStringLiteral("bitcoin")});
    world.settings.update(settings);
    QCOMPARE(world.view->rows().rows().size(), size_t(3));
    QCOMPARE(world.view->rows().rowAt(1)->content().coin.name, QStringLiteral("no-such-coin"));
    QTest::keyClick(world.handle(1), Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(world.ids().size(), 3);
}

void WatchlistViewTest::searchFindsAndAdds()
{
    WatchlistViewWorld world(1);
    world.view->findChild<QPushButton *>(QStringLiteral("watchlist.addCoin"))->click();
    auto *const panel = world.view->findChild<WatchlistAddCoinPanel *>();
    QVERIFY(panel && panel->isVisible());
    auto *const field = panel->findChild<QLineEdit *>();
    auto *const list = panel->findChild<CoinToggleList *>();
    QCOMPARE(list->model()->rowCount(), 200);
    QTest::keyClicks(field, QStringLiteral("c150"));
    QCOMPARE(list->model()->rowCount(), 1);
    QTest::keyClick(field, Qt::Key_Down);
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(world.ids().back(), QStringLiteral("coin-150"));
    QTest::keyClicks(field, QStringLiteral("zzz"));
    QCOMPARE(list->model()->rowCount(), 0);
    QVERIFY(!panel->findChild<QLabel *>(QStringLiteral("watchlist.search.noResults"))->text().isEmpty());
    panel->findChild<IconButton *>(QStringLiteral("watchlist.search.clear"))->click();
    QCOMPARE(list->model()->rowCount(), 200);
}

void WatchlistViewTest::searchMarksTheCurrentRow()
{
    WatchlistViewWorld world(1);
    world.view->openSearch();
    auto *const panel = world.view->findChild<WatchlistAddCoinPanel *>();
    auto *const field = panel->findChild<QLineEdit *>();
    auto *const list = panel->findChild<CoinToggleList *>();
    const auto row = [list](int number) {
        return list->grab(list->visualRect(list->model()->index(number, 0))).toImage();
    };
    const QImage first = row(0);
    const QImage second = row(1);
    QTest::keyClick(field, Qt::Key_Down);
    QVERIFY(field->hasFocus());
    QVERIFY(row(0) != first);
    QTest::keyClick(field, Qt::Key_Down);
    QCOMPARE(row(0), first);
    QVERIFY(row(1) != second);
}

void WatchlistViewTest::searchKeepsItsText()
{
    WatchlistViewWorld world(1);
    world.view->openSearch();
    auto *const panel = world.view->findChild<WatchlistAddCoinPanel *>();
    QTest::keyClicks(panel->findChild<QLineEdit *>(), QStringLiteral("eth"));
    panel->hide();
    world.view->openSearch();
    QCOMPARE(panel->findChild<QLineEdit *>()->text(), QStringLiteral("eth"));
    QCOMPARE(world.viewModel.searchText(), QStringLiteral("eth"));
}

void WatchlistViewTest::escapeClosesTheSearch()
{
    WatchlistViewWorld world(1);
    world.view->openSearch();
    auto *const panel = world.view->findChild<WatchlistAddCoinPanel *>();
    QTest::keyClick(panel->findChild<QLineEdit *>(), Qt::Key_Escape);
    QVERIFY(!panel->isVisible());
    QVERIFY(world.view->isVisible());
}

void WatchlistViewTest::escapeEndsACompositionFirst()
{
    WatchlistViewWorld world(1);
    world.view->openSearch();
    auto *const panel = world.view->findChild<WatchlistAddCoinPanel *>();
    auto *const field = panel->findChild<QLineEdit *>();
    QInputMethodEvent composing(QStringLiteral("bi"), {});
    QCoreApplication::sendEvent(field, &composing);
    QTest::keyClick(field, Qt::Key_Escape);
    QVERIFY(panel->isVisible());
    QInputMethodEvent over;
    QCoreApplication::sendEvent(field, &over);
    QTest::keyClick(field, Qt::Key_Escape);
    QVERIFY(!panel->isVisible());
}

void WatchlistViewTest::togglingInTheSearchCancelsADrag()
{
    WatchlistViewWorld world(3);
    drag(world, 0, 88);
    QVERIFY(world.view->session().draggedID());
    world.viewModel.toggle(QStringLiteral("coin-9"), &world.view->session());
    QVERIFY(!world.view->session().draggedID());
    QCOMPARE(world.ids().front(), QStringLiteral("bitcoin"));
    QCOMPARE(world.ids().size(), 4);
}

void WatchlistViewTest::languageChangeWritesTheTexts()
{
    WatchlistViewWorld world(2);
    drag(world, 0, 44);
    useLanguage(AppLanguage::zhHans);
    QEvent change(QEvent::LanguageChange);
    QCoreApplication::sendEvent(world.view.get(), &change);
    QCOMPARE(world.view->findChild<QPushButton *>(QStringLiteral("watchlist.addCoin"))->text(),
             localized(QStringLiteral("watchlist.addCoin")));
    QCOMPARE(world.view->rows().rowAt(1)->findChild<QComboBox *>()->itemText(3), title(CoinAlertKind::notSet));
    useLanguage(AppLanguage::en);
    QVERIFY(world.view->session().draggedID());
}

void WatchlistViewTest::rowsHaveNames()
{
    const WatchlistViewWorld world(2);
    const WatchlistRow *const row = world.view->rows().rowAt(1);
    QCOMPARE(row->accessibleName(), QStringLiteral("ETH, ETH"));
    for (const QWidget *const widget : row->findChildren<QWidget *>()) {
        if (widget->focusPolicy() != Qt::NoFocus && !qobject_cast<const QLabel *>(widget))
            QVERIFY2(!widget->accessibleName().isEmpty(), widget->metaObject()->className());
    }
}

TICKWISE_WIDGET_TEST(WatchlistViewTest)
#include "WatchlistViewTest.moc"
