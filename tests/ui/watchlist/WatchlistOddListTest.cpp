// The watchlist with entries as no program of ours would write them, and with changes from elsewhere while it is used.

#include "doubles/Catalogs.h"
#include "doubles/FakeMotion.h"
#include "doubles/Languages.h"
#include "doubles/MemoryDefaults.h"
#include "doubles/TestProgram.h"
#include "ui/controls/IconButton.h"
#include "ui/watchlist/CoinToggleList.h"
#include "ui/watchlist/WatchlistRow.h"
#include "ui/watchlist/WatchlistRows.h"
#include "ui/watchlist/WatchlistView.h"

#include <QComboBox>
#include <QLineEdit>
#include <QScrollBar>

using namespace tickwise;
using namespace tickwise::test;

namespace {

struct WatchlistOddListWorld
{
    explicit WatchlistOddListWorld(const QStringList &ids, const QString &symbol = QStringLiteral("BTC"),
                                   const QString &name = QStringLiteral("Bitcoin"))
        : catalog(manyCoins(symbol, name))
        , view({settings, catalog, viewModel, nullptr, &motion})
    {
        watch(ids);
        view.resize(600, 480);
        view.show();
        QCoreApplication::processEvents();
    }

    void watch(const QStringList &ids)
    {
        AppSettings changed = settings.settings();
        changed.watchlistCoins.clear();
        for (const QString &id : ids)
            changed.watchlistCoins.push_back({id});
        settings.update(changed);
    }
    QStringList ids() const
    {
        QStringList ids;
        for (const WatchlistCoin &coin : settings.settings().watchlistCoins)
            ids.append(coin.coinId);
        return ids;
    }
    IconButton *handle(int row)
    {
        return view.rows().rowAt(row)->findChild<IconButton *>(QStringLiteral("watchlist.reorder"));
    }
    QAbstractButton *trash(int row)
    {
        return view.rows().rowAt(row)->findChild<QAbstractButton *>(QStringLiteral("watchlist.delete"));
    }
    /// Presses the row's handle and moves it down by `dy`.
    void drag(int row, int dy)
    {
        IconButton *const pressed = handle(row);
        const QPoint from = pressed->rect().center();
        const QPoint start = pressed->mapToGlobal(from);
        QTest::mousePress(pressed, Qt::LeftButton, {}, from);
        for (const int step : {dy / 2, dy})
            QTest::mouseMove(pressed, pressed->mapFromGlobal(start + QPoint(0, step)));
    }
    void drop(int row) { QTest::mouseRelease(handle(row), Qt::LeftButton); }
    static void enter(IconButton &handle)
    {
        QEnterEvent enter(QPointF(5, 5), QPointF(5, 5), handle.mapToGlobal(QPointF(5, 5)));
        QCoreApplication::sendEvent(&handle, &enter);
    }

    MemoryDefaults defaults;
    SettingsViewModel settings{UserDefaultsSettingsStore(defaults)};
    FixedCatalog catalog;
    WatchlistViewModel viewModel{catalog, settings};
    FakeMotion motion;
    WatchlistView view;
};

const QString bitcoin = QStringLiteral("bitcoin");
const QString ethereum = QStringLiteral("ethereum");

QStringList numberedCoins(int count)
{
    QStringList ids;
    for (int i = 2; i < count + 2; ++i)
        ids.append(QStringLiteral("coin-%1").arg(i));
    return ids;
}

} // namespace

class WatchlistOddListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useLanguage(AppLanguage::en); }
    void aDraggedDuplicateLeavesTheOtherInPlace();
    void reorderingDuplicatesLosesNothing();
    void fiveThousandEntries();
    void oddNamesStayInTheirColumn_data();
    void oddNamesStayInTheirColumn();
    void aDelistedCoinSaysSo();
    void theDesktopDecidesAboutMotion();
    void theHandleIsHoveredWhereItLies();
    void aDoubleClickOnTheHandleLeavesItUp();
    void aDoubleClickDeletesOneCoin();
    void anEditFromElsewhereKeepsADrag();
    void aListEmptiedDuringADrag();
    void aWatchlistChangedDuringASearch();
    void theWindowGoesDuringADrag();
};

void WatchlistOddListTest::aDraggedDuplicateLeavesTheOtherInPlace()
{
    WatchlistOddListWorld world({bitcoin, ethereum, bitcoin, QStringLiteral("coin-2")});
    world.drag(2, 30);
    QCOMPARE(world.view.session().sourceIndex(), 2);
    QCOMPARE(world.view.rows().rowAt(0)->y(), 0);
    QCOMPARE(world.view.rows().rowAt(2)->y(), 2 * 44 + 30);
    world.drop(2);
    QCOMPARE(world.ids(), (QStringList{bitcoin, ethereum, QStringLiteral("coin-2"), bitcoin}));
}

void WatchlistOddListTest::reorderingDuplicatesLosesNothing()
{
    WatchlistOddListWorld world({bitcoin, QStringLiteral("no-such-coin"), bitcoin, QString()});
    AppSettings settings = world.settings.settings();
    for (std::size_t i = 0; i < 4; ++i)
        settings.watchlistCoins[i].notificationThreshold = double(i);
    world.settings.update(settings);
    world.drag(3, -3 * 44);
    world.drop(3);
    QCOMPARE(world.ids(), (QStringList{QString(), bitcoin, QStringLiteral("no-such-coin"), bitcoin}));
    std::vector<double> thresholds;
    for (const WatchlistCoin &coin : world.settings.settings().watchlistCoins)
        thresholds.push_back(coin.notificationThreshold);
    QCOMPARE(thresholds, (std::vector<double>{3, 0, 1, 2}));
}

void WatchlistOddListTest::fiveThousandEntries()
{
    WatchlistOddListWorld world(numberedCoins(4998));
    QScrollBar &bar = *world.view.rows().verticalScrollBar();
    bar.setValue(bar.maximum());
    QVERIFY(world.view.rows().rowAt(4997));
    world.drag(4997, -44);
    world.drop(4997);
    QCOMPARE(world.ids().size(), 4998);
    QCOMPARE(world.ids().at(4996), QStringLiteral("coin-4999"));
    QCOMPARE(world.ids().at(4997), QStringLiteral("coin-4998"));
    QVERIFY(world.view.findChildren<WatchlistRow *>().size() < 30);
}

void WatchlistOddListTest::oddNamesStayInTheirColumn_data()
{
    QTest::addColumn<QString>("symbol");
    QTest::addColumn<QString>("name");
    QTest::newRow("long") << QStringLiteral("WWWWWWWWWWWWWWW") << QString(60, QLatin1Char('W'));
    QTest::newRow("right to left") << QString(15, QChar(0x05d1)) << QString(60, QChar(0x05d1));
    QTest::newRow("combining") << QStringLiteral("E\u0301\u0302\u0303") << QStringLiteral("Z\u0301\u0302\u0303\u0304");
    QTest::newRow("lines") << QStringLiteral("A\nB") << QStringLiteral("C\nD\nE");
}

void WatchlistOddListTest::oddNamesStayInTheirColumn()
{
    QFETCH(QString, symbol);
    QFETCH(QString, name);
    WatchlistOddListWorld usual({bitcoin, ethereum});
    WatchlistOddListWorld odd({bitcoin, ethereum}, symbol, name);
    const auto controls = [](WatchlistOddListWorld &world) {
        WatchlistRow *const row = world.view.rows().rowAt(0);
        return row->grab(QRect(row->width() - 240, 0, 240, row->height())).toImage();
    };
    QVERIFY(odd.view.rows().rowAt(0)->grab().toImage() != usual.view.rows().rowAt(0)->grab().toImage());
    QCOMPARE(controls(odd), controls(usual));
    QCOMPARE(odd.view.rows().rowAt(1)->grab().toImage(), usual.view.rows().rowAt(1)->grab().toImage());
}

void WatchlistOddListTest::aDelistedCoinSaysSo()
{
    WatchlistRow row(nullptr);
    row.resize(600, 44);
    CoinMetadata coin = coinRecord(bitcoin, QStringLiteral("BTC"));
    row.setContent({{bitcoin}, coin});
    QCOMPARE(row.accessibleName(), QStringLiteral("BTC, BTC"));
    const QImage active = row.grab().toImage();
    coin.status = CoinStatus::delisted;
    row.setContent({{bitcoin}, coin});
    QCOMPARE(row.accessibleName(), QStringLiteral("BTC, BTC, Delisted"));
    QVERIFY(row.grab().toImage() != active);
}

void WatchlistOddListTest::theDesktopDecidesAboutMotion()
{
    WatchlistOddListWorld world({bitcoin, ethereum, QStringLiteral("coin-2")});
    world.drag(0, 88);
    world.drop(0);
    QCOMPARE(world.ids().back(), bitcoin);
    world.motion.reduced = false;
    world.drag(0, 88);
    world.drop(0);
    QVERIFY(world.view.session().isSettling());
    QTRY_COMPARE(world.ids().back(), ethereum);
}

void WatchlistOddListTest::theHandleIsHoveredWhereItLies()
{
    WatchlistOddListWorld world({bitcoin, ethereum, QStringLiteral("coin-2")});
    IconButton *const handle = world.handle(0);
    world.enter(*handle);
    world.drag(0, 88);
    QVERIFY(handle->underMouse());
    world.drop(0);
    QCoreApplication::processEvents();
    QVERIFY(handle->underMouse()); // it lies where it was dropped
    QCOMPARE(world.handle(2), handle);
    world.drag(2, -88);
    world.view.session().cancel(); // it returns to its slot, and the pointer does not
    QTRY_VERIFY(!handle->underMouse());
}

void WatchlistOddListTest::aDoubleClickOnTheHandleLeavesItUp()
{
    WatchlistOddListWorld world({bitcoin, ethereum});
    QTest::mouseDClick(world.handle(0), Qt::LeftButton);
    QVERIFY(!world.handle(0)->isDown());
    QCOMPARE(world.ids(), (QStringList{bitcoin, ethereum}));
}

void WatchlistOddListTest::aDoubleClickDeletesOneCoin()
{
    WatchlistOddListWorld world({bitcoin, ethereum, QStringLiteral("coin-2")});
    const QPoint place = world.trash(0)->mapTo(&world.view, world.trash(0)->rect().center());
    QWindow *const window = world.view.windowHandle();
    QTest::mouseDClick(window, Qt::LeftButton, {}, place);
    QCOMPARE(world.ids(), (QStringList{ethereum, QStringLiteral("coin-2")}));
    QTest::mouseClick(window, Qt::LeftButton, {}, place);
    QCOMPARE(world.ids(), QStringList{QStringLiteral("coin-2")});
}

void WatchlistOddListTest::anEditFromElsewhereKeepsADrag()
{
    WatchlistOddListWorld world({bitcoin, ethereum, QStringLiteral("coin-2")});
    world.drag(0, 44);
    AppSettings settings = world.settings.settings();
    settings.watchlistCoins[2].notificationThreshold = 9;
    settings.baseCurrency = BaseCurrency::eur;
    world.settings.update(settings);
    QVERIFY(world.view.session().draggedID());
    world.drop(0);
    QCOMPARE(world.ids(), (QStringList{ethereum, bitcoin, QStringLiteral("coin-2")}));
    QCOMPARE(world.settings.settings().watchlistCoins[2].notificationThreshold, 9.0);
    QCOMPARE(world.settings.settings().baseCurrency, BaseCurrency::eur);
}

void WatchlistOddListTest::aListEmptiedDuringADrag()
{
    WatchlistOddListWorld world({bitcoin, ethereum});
    IconButton *const handle = world.handle(0);
    world.drag(0, 44);
    world.watch({});
    QVERIFY(!world.view.session().draggedID());
    QTest::mouseMove(handle, QPoint(5, 90));
    QTest::mouseRelease(handle, Qt::LeftButton);
    QVERIFY(world.ids().isEmpty());
    world.watch({ethereum});
    QCOMPARE(world.view.rows().rowAt(0)->content().entry.coinId, ethereum);
}

void WatchlistOddListTest::aWatchlistChangedDuringASearch()
{
    WatchlistOddListWorld world({bitcoin});
    world.view.openSearch();
    auto *const panel = world.view.findChild<WatchlistAddCoinPanel *>();
    auto *const field = panel->findChild<QLineEdit *>();
    auto *const list = panel->findChild<CoinToggleList *>();
    QTest::keyClicks(field, QStringLiteral("eth"));
    const QModelIndex found = list->model()->index(0, 0);
    QCOMPARE(found.data(CoinToggleModel::isAddedRole).toBool(), false);
    world.watch({ethereum});
    QCOMPARE(found.data(CoinToggleModel::isAddedRole).toBool(), true);
    QCOMPARE(field->text(), QStringLiteral("eth"));
    QTest::keyClick(field, Qt::Key_Down);
    QTest::keyClick(field, Qt::Key_Return);
    QVERIFY(world.ids().isEmpty());
    QVERIFY(panel->isVisible());
}

void WatchlistOddListTest::theWindowGoesDuringADrag()
{
    auto world = std::make_unique<WatchlistOddListWorld>(QStringList{bitcoin, ethereum});
    world->motion.reduced = false;
    world->drag(0, 44);
    world->drop(0);
    QVERIFY(world->view.session().isSettling());
    const int writes = world->defaults.writes;
    world->view.close();
    QTRY_VERIFY(!world->view.session().draggedID());
    QVERIFY(world->defaults.writes <= writes + 1);
    world->drag(0, 44);
    world.reset();
}

TICKWISE_WIDGET_TEST(WatchlistOddListTest)
#include "WatchlistOddListTest.moc"
