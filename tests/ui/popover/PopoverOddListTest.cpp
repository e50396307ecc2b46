// Watchlists and prices as no program of ours would write them.

#include "ui/popover/CoinPopoverView.h"

#include "doubles/CoinListWorld.h"
#include "doubles/Languages.h"
#include "doubles/TestProgram.h"
#include "ui/updates/UpdateController.h"

#include <QListView>
#include <QScrollBar>

#include <limits>

using namespace tickwise;
using namespace tickwise::test;

namespace {

struct PopoverOddListWorld
{
    explicit PopoverOddListWorld(const QString &symbol = QStringLiteral("BTC"),
                                 const QString &name = QStringLiteral("Bitcoin"))
        : coins(manyCoins(symbol, name), 1)
        , view({*coins.coinList, coins.settings, updates, nullptr, [](SettingsTab) {}, [] {}, coins.clock.clock()})
    {
        view.resize(CoinPopoverView::sizeFor(8));
        view.show();
    }

    void watch(const QStringList &ids)
    {
        coins.change([&](AppSettings &settings) {
            settings.watchlistCoins.clear();
            for (const QString &id : ids)
                settings.watchlistCoins.push_back({id});
        });
        coins.coinList->rebuildCoins();
    }
    QStringList symbols() const
    {
        QStringList symbols;
        for (int row = 0; row < view.list().model()->rowCount(); ++row)
            symbols.append(view.list().model()->index(row, 0).data().toString());
        return symbols;
    }
    QImage row(int number)
    {
        return view.list().viewport()->grab(view.list().visualRect(view.list().model()->index(number, 0))).toImage();
    }

    CoinListWorld coins;
    UpdateController updates;
    mutable CoinPopoverView view;
};

} // namespace

class PopoverOddListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useLanguage(AppLanguage::en); }
    void unknownCoinsHaveNoRow();
    void duplicatesHaveRowsOfTheirOwn();
    void aListOfUnknownCoinsIsEmpty();
    void fiveThousandCoins();
    void oddPrices_data();
    void oddPrices();
    void oddNames_data();
    void oddNames();
    void aListThatShrinksUnderTheUser();
};

void PopoverOddListTest::unknownCoinsHaveNoRow()
{
    PopoverOddListWorld world;
    world.watch({QStringLiteral("no-such-coin"), QStringLiteral("ethereum"), QString(), QStringLiteral("bitcoin")});
    QCOMPARE(world.symbols(), (QStringList{QStringLiteral("ETH"), QStringLiteral("BTC")}));
    QCOMPARE(world.coins.settings.settings().watchlistCoins.size(), std::size_t(4));
}

void PopoverOddListTest::duplicatesHaveRowsOfTheirOwn()
{
    PopoverOddListWorld world;
    world.watch({QStringLiteral("bitcoin"), QStringLiteral("ethereum"), QStringLiteral("bitcoin")});
    world.coins.price(100);
    QCOMPARE(world.symbols().size(), 3);
    QCOMPARE(world.row(2), world.row(0));
}

void PopoverOddListTest::aListOfUnknownCoinsIsEmpty()
{
    PopoverOddListWorld world;
    world.watch({QStringLiteral("one"), QStringLiteral("two")});
    QVERIFY(!world.view.list().isVisible());
    world.watch({QStringLiteral("one"), QStringLiteral("ethereum")});
    QVERIFY(world.view.list().isVisible());
}

void PopoverOddListTest::fiveThousandCoins()
{
    PopoverOddListWorld world;
    world.coins.watch(5000);
    world.coins.price(100);
    QCOMPARE(world.view.list().model()->rowCount(), 5000);
    QScrollBar &bar = *world.view.list().verticalScrollBar();
    QTRY_VERIFY(bar.maximum() > 0);
    bar.setValue(bar.maximum());
    const QRect last = world.view.list().visualRect(world.view.list().model()->index(4999, 0));
    QCOMPARE(last.bottom() + 1, world.view.list().viewport()->height());
    world.coins.watch(2);
    QCOMPARE(world.symbols().size(), 2);
}

void PopoverOddListTest::oddPrices_data()
{
    QTest::addColumn<double>("price");
    QTest::addColumn<QString>("spoken");
    QTest::newRow("zero") << 0.0 << QStringLiteral("Bitcoin, 0 USD, up 1.00 percent");
    QTest::newRow("tiny") << 1e-9 << QStringLiteral("Bitcoin, 0 USD, up 1.00 percent");
    QTest::newRow("huge") << 1e15 << QStringLiteral("Bitcoin, 1,000,000,000,000,000 USD, up 1.00 percent");
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN()
                                  << QStringLiteral("Bitcoin, No price yet, up 1.00 percent");
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity()
                              << QStringLiteral("Bitcoin, No price yet, up 1.00 percent");
}

void PopoverOddListTest::oddPrices()
{
    QFETCH(double, price);
    PopoverOddListWorld world;
    world.watch({QStringLiteral("bitcoin"), QStringLiteral("ethereum")});
    const QImage before = world.row(0);
    world.coins.price(price);
    QVERIFY(world.row(0) != before);
    QTEST(world.view.list().model()->index(0, 0).data(Qt::AccessibleTextRole).toString(), "spoken");
}

void PopoverOddListTest::oddNames_data()
{
    QTest::addColumn<QString>("symbol");
    QTest::addColumn<QString>("name");
    QTest::newRow("long") << QStringLiteral("ABCDEFGHIJKLMNO") << QString(60, QLatin1Char('N'));
    QTest::newRow("right to left") << QStringLiteral("\u05d1\u05d9\u05d8") << QStringLiteral("\u05d1\u05d9\u05d8");
    QTest::newRow("combining") << QStringLiteral("E\u0301\u0302") << QStringLiteral("a\u0308\u0323\u0301");
    QTest::newRow("placeholders") << QStringLiteral("%1%2") << QStringLiteral("%1 %2 %n");
    QTest::newRow("markup") << QStringLiteral("<b>B</b>") << QStringLiteral("<img src=x>");
}

void PopoverOddListTest::oddNames()
{
    QFETCH(QString, symbol);
    QFETCH(QString, name);
    PopoverOddListWorld world(symbol, name);
    world.watch({QStringLiteral("ethereum"), QStringLiteral("bitcoin"), QStringLiteral("ethereum")});
    world.coins.price(100);
    const QModelIndex index = world.view.list().model()->index(1, 0);
    QVERIFY(index.data(Qt::AccessibleTextRole).toString().startsWith(name + QStringLiteral(", 100 USD")));
    QVERIFY(index.data(Qt::ToolTipRole).toString().startsWith(name + QLatin1Char('\n')));
    // The rows above and below look as they do beside a usual row.
    QCOMPARE(world.row(0), world.row(2));
}

void PopoverOddListTest::aListThatShrinksUnderTheUser()
{
    PopoverOddListWorld world;
    world.coins.watch(500);
    QScrollBar &bar = *world.view.list().verticalScrollBar();
    QTRY_VERIFY(bar.maximum() > 0);
    bar.setValue(bar.maximum());
    world.view.list().setCurrentIndex(world.view.list().model()->index(499, 0));
    world.coins.watch(9);
    world.coins.price(100);
    QVERIFY(!world.row(8).isNull());
    world.coins.watch(0);
    QVERIFY(!world.view.list().isVisible());
    QTest::keyClick(&world.view.list(), Qt::Key_Down);
    world.coins.watch(3);
    QCOMPARE(world.symbols().size(), 3);
}

TICKWISE_WIDGET_TEST(PopoverOddListTest)
#include "PopoverOddListTest.moc"
