// The keyboard in the rows of the watchlist, in the settings window: where it goes, and which coin it edits.

#include "doubles/Catalogs.h"
#include "doubles/Languages.h"
#include "doubles/MemoryDefaults.h"
#include "doubles/TestProgram.h"
#include "ui/settings/SettingsWindow.h"
#include "ui/watchlist/CoinToggleList.h"
#include "ui/watchlist/WatchlistRows.h"
#include "ui/watchlist/WatchlistView.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>

#include <algorithm>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const QString deleteName = QStringLiteral("watchlist.delete");
const QString handleName = QStringLiteral("watchlist.reorder");

struct WatchlistKeyboardWorld
{
    explicit WatchlistKeyboardWorld(const std::vector<WatchlistCoin> &entries)
    {
        watch(entries);
        settings.setSettingsWindowTab(SettingsTab::watchlist);
        window.show();
    }

    explicit WatchlistKeyboardWorld(int watched)
        : WatchlistKeyboardWorld(firstCoins(watched))
    {
    }

    static std::vector<WatchlistCoin> firstCoins(int count)
    {
        std::vector<WatchlistCoin> entries;
        const std::vector<CoinMetadata> coins = validCoins();
        for (auto coin = coins.begin(); coin < coins.begin() + count; ++coin)
            entries.push_back({coin->id});
        return entries;
    }

    void watch(const std::vector<WatchlistCoin> &entries)
    {
        AppSettings changed = settings.settings();
        changed.watchlistCoins = entries;
        settings.update(changed);
    }

    bool isActive() { return QTest::qWaitForWindowActive(&window); }
    const std::vector<WatchlistCoin> &entries() const { return settings.settings().watchlistCoins; }
    QStringList ids() const
    {
        QStringList ids;
        for (const WatchlistCoin &coin : entries())
            ids.append(coin.coinId);
        return ids;
    }
    WatchlistRows &rows() { return view->rows(); }
    QScrollBar &bar() { return *rows().verticalScrollBar(); }
    QWidget &control(int row, const QString &name) { return *rows().rowAt(row)->findChild<QWidget *>(name); }
    QLineEdit &number(int row) { return *rows().rowAt(row)->findChild<QLineEdit *>(); }
    QWidget &add() { return *view->findChild<QWidget *>(QStringLiteral("watchlist.addCoin")); }
    CoinToggleList &recommended()
    {
        return *view->findChild<CoinToggleList *>(QStringLiteral("watchlist.recommended"));
    }
    /// The coin of the row that has the keyboard.
    static QString focusedCoin()
    {
        for (QWidget *widget = QApplication::focusWidget(); widget; widget = widget->parentWidget()) {
            if (const auto *const row = qobject_cast<WatchlistRow *>(widget))
                return row->content().entry.coinId;
        }
        return {};
    }

    MemoryDefaults defaults;
    SettingsViewModel settings{UserDefaultsSettingsStore(defaults)};
    FixedCatalog catalog{validCoins()};
    WatchlistViewModel viewModel{catalog, settings};
    WatchlistView *view = new WatchlistView({settings, catalog, viewModel});
    SettingsWindow window{settings, defaults, {new QLabel, view, new QLabel}};
};

void pressFocused(int key, Qt::KeyboardModifiers modifiers = {})
{
    QTest::keyClick(QApplication::focusWidget(), Qt::Key(key), modifiers);
}

void repeatFocused(int key)
{
    QKeyEvent event(QEvent::KeyPress, key, {}, {}, true);
    QCoreApplication::sendEvent(QApplication::focusWidget(), &event);
}

bool isInSight(const QWidget &control, const WatchlistRows &rows)
{
    return rows.viewport()->isAncestorOf(&control) && control.visibleRegion().boundingRect() == control.rect();
}

} // namespace

class WatchlistKeyboardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useLanguage(AppLanguage::en); }
    void deletingTheLastRowFocusesTheOneBefore();
    void deletingARowFocusesTheNext();
    void aDeletedRowWithTheKeyboardInItsNumber();
    void deletingTheOnlyRowFocusesAddCoin();
    void aHeldKeyDeletesOneCoin();
    void aHeldKeyTogglesOnce();
    void altArrowsGoOnWithTheirRow();
    void theKeyboardStaysWithACoinThatMovesOutOfSight();
    void tabVisitsEveryRow();
    void backtabVisitsEveryRow();
    void tabEntersWhereTheListBegins();
    void tabGoesOnFromARowOutOfSight();
    void anEditStaysWithItsCoin();
    void anotherCoinHasNoEditsToUndo();
    void aNumberThatGoesWithItsAlert();
    void aDuplicateIsEditedAlone();
    void aDuplicateIsMovedAlone();
};

void WatchlistKeyboardTest::deletingTheLastRowFocusesTheOneBefore()
{
    WatchlistKeyboardWorld world(10);
    QVERIFY(world.isActive());
    world.bar().setValue(world.bar().maximum());
    world.control(9, deleteName).setFocus();
    pressFocused(Qt::Key_Return);
    QCOMPARE(world.ids().size(), 9);
    QCOMPARE(world.focusedCoin(), QStringLiteral("coin-8"));
    QCOMPARE(QApplication::focusWidget()->objectName(), deleteName);
    QVERIFY(isInSight(*QApplication::focusWidget(), world.rows()));
}

void WatchlistKeyboardTest::deletingARowFocusesTheNext()
{
    WatchlistKeyboardWorld world(4);
    QVERIFY(world.isActive());
    world.control(1, deleteName).setFocus();
    pressFocused(Qt::Key_Return);
    QCOMPARE(world.focusedCoin(), QStringLiteral("coin-2"));
    pressFocused(Qt::Key_Return);
    QCOMPARE(world.ids(), (QStringList{QStringLiteral("bitcoin"), QStringLiteral("coin-3")}));
}

void WatchlistKeyboardTest::aDeletedRowWithTheKeyboardInItsNumber()
{
    WatchlistKeyboardWorld world(10);
    QVERIFY(world.isActive());
    world.bar().setValue(world.bar().maximum());
    QTest::mouseClick(&world.number(9), Qt::LeftButton);
    QVERIFY(world.number(9).hasFocus());
    QTest::mouseClick(&world.control(9, deleteName), Qt::LeftButton);
    QCOMPARE(world.ids().size(), 9);
    QCOMPARE(world.focusedCoin(), QStringLiteral("coin-8"));
    QCOMPARE(QApplication::focusWidget()->objectName(), handleName);
}

void WatchlistKeyboardTest::deletingTheOnlyRowFocusesAddCoin()
{
    WatchlistKeyboardWorld world(1);
    QVERIFY(world.isActive());
    world.control(0, deleteName).setFocus();
    pressFocused(Qt::Key_Return);
    QVERIFY(world.ids().isEmpty());
    QVERIFY(world.add().hasFocus());
}

void WatchlistKeyboardTest::aHeldKeyDeletesOneCoin()
{
    WatchlistKeyboardWorld world(4);
    QVERIFY(world.isActive());
    world.control(1, deleteName).setFocus();
    pressFocused(Qt::Key_Return);
    repeatFocused(Qt::Key_Return);
    repeatFocused(Qt::Key_Return);
    QCOMPARE(world.ids().size(), 3);
}

void WatchlistKeyboardTest::aHeldKeyTogglesOnce()
{
    WatchlistKeyboardWorld world(1);
    QVERIFY(world.isActive());
    world.recommended().setFocus();
    world.recommended().setCurrentIndex(world.recommended().model()->index(1, 0));
    for (const int key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        const auto before = world.ids().size();
        pressFocused(key);
        repeatFocused(key);
        QCOMPARE(qAbs(world.ids().size() - before), 1);
        repeatFocused(key);
        QCOMPARE(qAbs(world.ids().size() - before), 1);
    }
}

void WatchlistKeyboardTest::altArrowsGoOnWithTheirRow()
{
    WatchlistKeyboardWorld world(4);
    QVERIFY(world.isActive());
    world.control(0, handleName).setFocus();
    pressFocused(Qt::Key_Down, Qt::AltModifier);
    pressFocused(Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(world.ids(), (QStringList{QStringLiteral("ethereum"), QStringLiteral("coin-2"), QStringLiteral("bitcoin"),
                                       QStringLiteral("coin-3")}));
    QCOMPARE(QApplication::focusWidget(), &world.control(2, handleName));
}

void WatchlistKeyboardTest::theKeyboardStaysWithACoinThatMovesOutOfSight()
{
    WatchlistKeyboardWorld world(60);
    QVERIFY(world.isActive());
    world.control(0, handleName).setFocus();
    for (int i = 0; i < 40; ++i)
        pressFocused(Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(world.ids().at(40), QStringLiteral("bitcoin"));
    QCOMPARE(world.focusedCoin(), QStringLiteral("bitcoin"));
    QVERIFY(isInSight(*QApplication::focusWidget(), world.rows()));
    auto entries = world.entries();
    std::rotate(entries.begin(), entries.begin() + 40, entries.end());
    world.watch(entries);
    QCOMPARE(world.focusedCoin(), QStringLiteral("bitcoin"));
    QCOMPARE(QApplication::focusWidget(), &world.control(0, handleName));
}

void WatchlistKeyboardTest::tabVisitsEveryRow()
{
    WatchlistKeyboardWorld world(30);
    QVERIFY(world.isActive());
    world.add().setFocus();
    QStringList visited;
    for (int row = 0; row < 30; ++row) {
        const QStringList before = visited;
        for (int control = 0; control < 4; ++control) {
            pressFocused(Qt::Key_Tab);
            QVERIFY(isInSight(*QApplication::focusWidget(), world.rows()));
            visited.append(world.focusedCoin());
        }
        QCOMPARE(visited.mid(before.size()), QStringList(4, world.ids().at(row)));
        QCOMPARE(QApplication::focusWidget()->objectName(), deleteName);
    }
    pressFocused(Qt::Key_Tab);
    QVERIFY(world.recommended().hasFocus());
}

void WatchlistKeyboardTest::backtabVisitsEveryRow()
{
    WatchlistKeyboardWorld world(30);
    QVERIFY(world.isActive());
    world.recommended().setFocus();
    for (int control = 30 * 4 - 1; control >= 0; --control) {
        pressFocused(Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(world.focusedCoin(), world.ids().at(control / 4));
        QVERIFY(isInSight(*QApplication::focusWidget(), world.rows()));
    }
    pressFocused(Qt::Key_Backtab, Qt::ShiftModifier);
    QVERIFY(world.add().hasFocus());
}

void WatchlistKeyboardTest::tabEntersWhereTheListBegins()
{
    WatchlistKeyboardWorld world(60);
    QVERIFY(world.isActive());
    world.bar().setValue(world.bar().maximum());
    world.add().setFocus();
    pressFocused(Qt::Key_Tab);
    QCOMPARE(world.focusedCoin(), QStringLiteral("bitcoin"));
    QCOMPARE(world.bar().value(), 0);
}

void WatchlistKeyboardTest::tabGoesOnFromARowOutOfSight()
{
    WatchlistKeyboardWorld world(60);
    QVERIFY(world.isActive());
    world.control(2, deleteName).setFocus();
    world.bar().setValue(world.bar().maximum());
    pressFocused(Qt::Key_Tab);
    QCOMPARE(world.focusedCoin(), QStringLiteral("coin-3"));
    QVERIFY(isInSight(*QApplication::focusWidget(), world.rows()));
}

void WatchlistKeyboardTest::anEditStaysWithItsCoin()
{
    WatchlistKeyboardWorld world(3);
    QVERIFY(world.isActive());
    QTest::mouseClick(&world.number(1), Qt::LeftButton);
    world.number(1).selectAll();
    pressFocused(Qt::Key_3);
    QTest::mouseClick(&world.control(0, deleteName), Qt::LeftButton);
    pressFocused(Qt::Key_5);
    QCOMPARE(world.entries().at(0), (WatchlistCoin{QStringLiteral("ethereum"), CoinAlertKind::change, 35}));
    QCOMPARE(world.entries().at(1), (WatchlistCoin{QStringLiteral("coin-2")}));
}

void WatchlistKeyboardTest::anotherCoinHasNoEditsToUndo()
{
    WatchlistKeyboardWorld world(1);
    QVERIFY(world.isActive());
    world.number(0).setFocus();
    world.number(0).selectAll();
    pressFocused(Qt::Key_7);
    world.add().setFocus();
    world.watch({{QStringLiteral("ethereum"), CoinAlertKind::change, 7}});
    world.number(0).setFocus();
    QCOMPARE(world.number(0).text(), QStringLiteral("7"));
    pressFocused(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(world.entries().at(0).notificationThreshold, 7.0);
}

void WatchlistKeyboardTest::aNumberThatGoesWithItsAlert()
{
    WatchlistKeyboardWorld world(30);
    QVERIFY(world.isActive());
    world.number(1).setFocus();
    world.bar().setValue(world.bar().maximum());
    auto entries = world.entries();
    entries.at(1).alertKind = CoinAlertKind::notSet;
    world.watch(entries);
    QVERIFY(!world.number(1).isVisible());
    QCOMPARE(QApplication::focusWidget(), &world.control(1, deleteName));
    for (int row = 0; row < 30; ++row)
        QVERIFY(!world.rows().rowAt(row) || world.rows().rowAt(row)->content().entry == entries.at(size_t(row)));
}

void WatchlistKeyboardTest::aDuplicateIsEditedAlone()
{
    const QString bitcoin = QStringLiteral("bitcoin");
    WatchlistKeyboardWorld world(
        {{bitcoin, CoinAlertKind::change, 1}, {QStringLiteral("ethereum")}, {bitcoin, CoinAlertKind::change, 3}});
    QVERIFY(world.isActive());
    world.number(2).setFocus();
    world.number(2).selectAll();
    pressFocused(Qt::Key_9);
    Q_EMIT world.rows().rowAt(2)->findChild<QComboBox *>()->activated(0);
    QCOMPARE(world.entries().at(0), (WatchlistCoin{bitcoin, CoinAlertKind::change, 1}));
    QCOMPARE(world.entries().at(2), (WatchlistCoin{bitcoin, CoinAlertKind::above, 9}));
}

void WatchlistKeyboardTest::aDuplicateIsMovedAlone()
{
    const QString bitcoin = QStringLiteral("bitcoin");
    const QString ethereum = QStringLiteral("ethereum");
    WatchlistKeyboardWorld world({{bitcoin, CoinAlertKind::change, 1},
                                  {QStringLiteral("coin-2")},
                                  {ethereum},
                                  {bitcoin, CoinAlertKind::change, 3}});
    QVERIFY(world.isActive());
    world.control(3, handleName).setFocus();
    pressFocused(Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(world.ids(), (QStringList{bitcoin, QStringLiteral("coin-2"), bitcoin, ethereum}));
    QCOMPARE(world.entries().at(2).notificationThreshold, 3.0);
    QCOMPARE(QApplication::focusWidget(), &world.control(2, handleName));
}

TICKWISE_WIDGET_TEST(WatchlistKeyboardTest)
#include "WatchlistKeyboardTest.moc"
