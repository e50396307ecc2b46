#include "widget/WidgetEntryContent.h"

#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"

using namespace tickwise;
using namespace tickwise::test;

namespace {

CoinMetadata record(const char *id, const char *symbol)
{
    CoinMetadata coin;
    coin.id = QLatin1String(id);
    coin.symbol = QLatin1String(symbol);
    coin.name = QStringLiteral("Name of ") + coin.symbol;
    return coin;
}

std::vector<CoinMetadata> records()
{
    CoinMetadata bitcoin = record("bitcoin", "BTC");
    bitcoin.logoAssetName = QStringLiteral("coin-bitcoin");
    return {bitcoin, record("ethereum", "ETH")};
}

const CoinIndex &catalog()
{
    static const std::vector<CoinMetadata> coins = records();
    static const CoinIndex index = indexById(coins);
    return index;
}

Coin priced(const char *id, std::optional<double> price, std::optional<TimePoint> updated)
{
    Coin coin;
    coin.id = QLatin1String(id);
    coin.currentPrice = price;
    coin.lastUpdated = updated;
    return coin;
}

} // namespace

class WidgetEntryContentTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void joinsTheSnapshotWithTheCatalog();
    void unknownCoinsHaveNoRow();
    void whatWasNotFetchedIsNotDelisted();
    void liveContentTellsWhenPricesAreFrom();
    void equalInputGivesEqualContent();
};

void WidgetEntryContentTest::joinsTheSnapshotWithTheCatalog()
{
    WidgetSnapshot snapshot;
    snapshot.writtenAt = TestClock().now();
    snapshot.language = AppLanguage::zhHans;
    snapshot.currency = BaseCurrency::gbp;
    snapshot.colorByChange = false;
    snapshot.upColorHex = QStringLiteral("#111111");
    snapshot.downColorHex = QStringLiteral("#222222");
    snapshot.watchlist = {QStringLiteral("ethereum"), QStringLiteral("bitcoin")};
    snapshot.quotes[QStringLiteral("bitcoin")] = {5, -1.5};

    const WidgetRow ethereum{QStringLiteral("ethereum"), QStringLiteral("ETH"), QStringLiteral("Name of ETH")};
    const WidgetRow bitcoin{QStringLiteral("bitcoin"),
                            QStringLiteral("BTC"),
                            QStringLiteral("Name of BTC"),
                            QStringLiteral("coin-bitcoin"),
                            true,
                            5.0,
                            -1.5};
    QCOMPARE(widgetEntryContent(snapshot, catalog()), (WidgetEntryContent{{ethereum, bitcoin},
                                                                          BaseCurrency::gbp,
                                                                          TestClock().now(),
                                                                          AppLanguage::zhHans,
                                                                          false,
                                                                          QStringLiteral("#111111"),
                                                                          QStringLiteral("#222222")}));
}

void WidgetEntryContentTest::unknownCoinsHaveNoRow()
{
    WidgetSnapshot snapshot;
    snapshot.watchlist = {QStringLiteral("lost"), QStringLiteral("bitcoin")};
    snapshot.quotes[QStringLiteral("lost")] = {5, 1};
    const WidgetEntryContent content = widgetEntryContent(snapshot, catalog());
    QCOMPARE(content.rows.size(), std::size_t(1));
    QCOMPARE(content.rows.front().id, QStringLiteral("bitcoin"));
    QVERIFY(!content.rows.front().hasMarket);
}

void WidgetEntryContentTest::whatWasNotFetchedIsNotDelisted()
{
    std::vector<CoinMetadata> coins = records();
    coins.back().status = CoinStatus::delisted;
    WidgetSnapshot snapshot;
    snapshot.watchlist = {QStringLiteral("bitcoin"), QStringLiteral("ethereum")};
    const std::vector<WidgetRow> rows = widgetEntryContent(snapshot, indexById(coins)).rows;
    QVERIFY(rows.front().hasMarket && !rows.front().price);
    QVERIFY(!rows.back().hasMarket);
}

void WidgetEntryContentTest::liveContentTellsWhenPricesAreFrom()
{
    const TimePoint now = TestClock().now();
    const AppSettings settings;
    const WidgetEntryContent content =
        widgetEntryContent({priced("bitcoin", 5, now - std::chrono::seconds(20)),
                            priced("ethereum", 6, now - std::chrono::seconds(10)), priced("solana", std::nullopt, now)},
                           settings, BaseCurrency::eur, catalog());
    QCOMPARE(content.currency, BaseCurrency::eur);
    QCOMPARE(content.updatedAt, std::optional(now - std::chrono::seconds(10)));
    QCOMPARE(content.rows.size(), std::size_t(2));
    QCOMPARE(content.rows.back().price, std::optional(6.0));
    QCOMPARE(content.upColorHex, QStringLiteral("#2CBD84"));
    const std::vector<Coin> unpriced{priced("bitcoin", std::nullopt, now)};
    QCOMPARE(widgetEntryContent(unpriced, settings, BaseCurrency::usd, catalog()).updatedAt, std::nullopt);
}

void WidgetEntryContentTest::equalInputGivesEqualContent()
{
    const std::vector<Coin> coins{priced("bitcoin", 5, TestClock().now())};
    std::vector<Coin> moved = coins;
    moved.front().currentPrice = 6;
    const auto contentOf = [](const std::vector<Coin> &list) {
        return widgetEntryContent(list, {}, BaseCurrency::usd, catalog());
    };
    QVERIFY(contentOf(coins) == contentOf(coins));
    QVERIFY(contentOf(coins) != contentOf(moved));
}

TICKWISE_TEST(WidgetEntryContentTest)
#include "WidgetEntryContentTest.moc"
