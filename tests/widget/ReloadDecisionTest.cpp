#include "widget/ReloadDecision.h"

#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"

using namespace tickwise;
using namespace tickwise::test;

using Edit = std::function<void(WidgetSnapshot &)>;
namespace {

const QString bitcoinId = QStringLiteral("bitcoin");
const QString ethereumId = QStringLiteral("ethereum");

WidgetSnapshot lastSnapshot()
{
    WidgetSnapshot snapshot = makeWidgetSnapshot({}, {}, TestClock().now());
    snapshot.quotes[bitcoinId] = {100, 1.0};
    return snapshot;
}

} // namespace

class ReloadDecisionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstWriteReloads();
    void decides_data();
    void decides();
    void lastWithoutQuotesReloadsForAnyQuote();
    void oldPriceOfZeroOrLessNeverTriggers_data();
    void oldPriceOfZeroOrLessNeverTriggers();
    void oldPriceOfOneOrLessCounts_data();
    void oldPriceOfOneOrLessCounts();
    void timeCountsFromTheReload();
};

void ReloadDecisionTest::firstWriteReloads()
{
    QVERIFY(needsWidgetReload(std::nullopt, lastSnapshot()));
}

void ReloadDecisionTest::decides_data()
{
    QTest::addColumn<Edit>("edit");
    QTest::addColumn<bool>("reloads");
    const auto row = [](const char *name, bool reloads, const Edit &edit) { QTest::newRow(name) << edit << reloads; };
    const auto after = [](double seconds) -> Edit {
        return [seconds](WidgetSnapshot &snapshot) { snapshot.writtenAt += secondsDuration(seconds); };
    };
    const auto priced = [](double price) -> Edit {
        return [price](WidgetSnapshot &snapshot) { snapshot.quotes[bitcoinId].price = price; };
    };
    row("nothing changed", false, [](WidgetSnapshot &) {});
    row("299 s", false, after(299));
    row("300 s", true, after(300));
    row("just before 300 s", false, after(299.999));
    row("clock went back", false, after(-1000));
    row("language", true, [](WidgetSnapshot &snapshot) { snapshot.language = AppLanguage::zhHans; });
    row("currency", true, [](WidgetSnapshot &snapshot) { snapshot.currency = BaseCurrency::eur; });
    row("color switch", true, [](WidgetSnapshot &snapshot) { snapshot.colorByChange = false; });
    row("up color", true, [](WidgetSnapshot &snapshot) { snapshot.upColorHex = QStringLiteral("#000000"); });
    row("down color", true, [](WidgetSnapshot &snapshot) { snapshot.downColorHex = QStringLiteral("#000000"); });
    row("swapped colors", true,
        [](WidgetSnapshot &snapshot) { std::swap(snapshot.upColorHex, snapshot.downColorHex); });
    row("displayed coin", true, [](WidgetSnapshot &snapshot) { snapshot.displayedCoinId = ethereumId; });
    row("watchlist shorter", true, [](WidgetSnapshot &snapshot) { snapshot.watchlist.pop_back(); });
    row("watchlist order", true, [](WidgetSnapshot &snapshot) { std::ranges::reverse(snapshot.watchlist); });
    row("1 % up", false, priced(101));
    row("more than 1 % up", true, priced(101.01));
    row("1 % down", false, priced(99));
    row("more than 1 % down", true, priced(98.99));
    row("price gone to zero", true, priced(0));
    row("change only", false, [](WidgetSnapshot &snapshot) { snapshot.quotes[bitcoinId].change24hPercent = 50; });
    row("change gone", false, [](WidgetSnapshot &snapshot) { snapshot.quotes[bitcoinId].change24hPercent.reset(); });
    row("coin gained its price", true, [](WidgetSnapshot &snapshot) { snapshot.quotes[ethereumId] = {1, 1}; });
    row("coin lost its price", false, [](WidgetSnapshot &snapshot) { snapshot.quotes.clear(); });
}

void ReloadDecisionTest::decides()
{
    QFETCH(Edit, edit);
    QFETCH(bool, reloads);
    WidgetSnapshot snapshot = lastSnapshot();
    edit(snapshot);
    QCOMPARE(needsWidgetReload(WidgetReload{lastSnapshot(), lastSnapshot().writtenAt}, snapshot), reloads);
}

void ReloadDecisionTest::lastWithoutQuotesReloadsForAnyQuote()
{
    WidgetSnapshot empty = lastSnapshot();
    empty.quotes.clear();
    const WidgetReload last{empty, empty.writtenAt};
    QVERIFY(needsWidgetReload(last, lastSnapshot()));
    QVERIFY(!needsWidgetReload(last, empty));
}

void ReloadDecisionTest::oldPriceOfZeroOrLessNeverTriggers_data()
{
    QTest::addColumn<double>("oldPrice");
    QTest::newRow("zero") << 0.0;
    QTest::newRow("negative") << -5.0;
}

void ReloadDecisionTest::oldPriceOfZeroOrLessNeverTriggers()
{
    QFETCH(double, oldPrice);
    WidgetSnapshot old = lastSnapshot();
    old.quotes[bitcoinId].price = oldPrice;
    QVERIFY(!needsWidgetReload(WidgetReload{old, old.writtenAt}, lastSnapshot()));
}

void ReloadDecisionTest::oldPriceOfOneOrLessCounts_data()
{
    QTest::addColumn<double>("oldPrice");
    QTest::addColumn<double>("newPrice");
    QTest::addColumn<bool>("reloads");
    QTest::newRow("from 1, 0.9 %") << 1.0 << 1.009 << false;
    QTest::newRow("from 1, 1.1 %") << 1.0 << 1.011 << true;
    QTest::newRow("from 0.5, 0.9 %") << 0.5 << 0.5045 << false;
    QTest::newRow("from 0.5, 1.1 %") << 0.5 << 0.4945 << true;
    QTest::newRow("from 0.00000001") << 1e-8 << 1.02e-8 << true;
}

void ReloadDecisionTest::oldPriceOfOneOrLessCounts()
{
    QFETCH(double, oldPrice);
    QFETCH(double, newPrice);
    QFETCH(bool, reloads);
    WidgetSnapshot old = lastSnapshot();
    old.quotes[bitcoinId].price = oldPrice;
    WidgetSnapshot snapshot = old;
    snapshot.quotes[bitcoinId].price = newPrice;
    QCOMPARE(needsWidgetReload(WidgetReload{old, old.writtenAt}, snapshot), reloads);
}

void ReloadDecisionTest::timeCountsFromTheReload()
{
    WidgetSnapshot old = lastSnapshot();
    old.writtenAt -= std::chrono::hours(1);
    QVERIFY(!needsWidgetReload(WidgetReload{old, lastSnapshot().writtenAt}, lastSnapshot()));
}

TICKWISE_TEST(ReloadDecisionTest)
#include "ReloadDecisionTest.moc"
