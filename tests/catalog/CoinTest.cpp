#include "catalog/Coin.h"

#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"

#include <QSet>

#include <functional>

using namespace tickwise;
using namespace tickwise::test;

using Edit = std::function<void(Coin &)>;
namespace {

Coin fullCoin()
{
    Coin coin;
    coin.id = QStringLiteral("bitcoin");
    coin.symbol = QStringLiteral("BTC");
    coin.name = QStringLiteral("Bitcoin");
    coin.rank = 1;
    coin.logoURL = QStringLiteral("https://assets.coingecko.com/b.png");
    coin.listed = true;
    coin.migratedTo = QStringLiteral("other");
    coin.logoAssetName = QStringLiteral("coin-bitcoin");
    coin.currentPrice = 67432.5;
    coin.priceChange24hPercent = -1.5;
    coin.referencePrice = 67000;
    coin.lastUpdated = TestClock().now();
    return coin;
}

} // namespace

class CoinTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void statusTexts();
    void everyFieldCounts_data();
    void everyFieldCounts();
    void isAMemberOfASet();
};

void CoinTest::statusTexts()
{
    QCOMPARE(fromRawValue<CoinStatus>(QStringLiteral("active")), std::optional(CoinStatus::active));
    QCOMPARE(fromRawValue<CoinStatus>(QStringLiteral("delisted")), std::optional(CoinStatus::delisted));
    QCOMPARE(fromRawValue<CoinStatus>(QStringLiteral("migrated")), std::optional(CoinStatus::migrated));
    QCOMPARE(fromRawValue<CoinStatus>(QStringLiteral("Active")), std::nullopt);
}

void CoinTest::everyFieldCounts_data()
{
    QTest::addColumn<Edit>("edit");
    const auto row = [](const char *name, const Edit &edit) { QTest::newRow(name) << edit; };
    const QString other = QStringLiteral("x");
    row("id", [=](Coin &coin) { coin.id = other; });
    row("symbol", [=](Coin &coin) { coin.symbol = other; });
    row("name", [=](Coin &coin) { coin.name = other; });
    row("rank", [](Coin &coin) { coin.rank = 2; });
    row("no rank", [](Coin &coin) { coin.rank.reset(); });
    row("logoURL", [=](Coin &coin) { coin.logoURL = other; });
    row("no logoURL", [](Coin &coin) { coin.logoURL.reset(); });
    row("status", [](Coin &coin) { coin.status = CoinStatus::delisted; });
    row("listed", [](Coin &coin) { coin.listed = false; });
    row("migratedTo", [=](Coin &coin) { coin.migratedTo = other; });
    row("no migratedTo", [](Coin &coin) { coin.migratedTo.reset(); });
    row("logoAssetName", [](Coin &coin) { coin.logoAssetName.reset(); });
    row("currentPrice", [](Coin &coin) { coin.currentPrice = 1; });
    row("no currentPrice", [](Coin &coin) { coin.currentPrice.reset(); });
    row("priceChange24hPercent", [](Coin &coin) { coin.priceChange24hPercent = 1.5; });
    row("referencePrice", [](Coin &coin) { coin.referencePrice.reset(); });
    row("lastUpdated", [](Coin &coin) { *coin.lastUpdated += std::chrono::seconds(1); });
    row("no lastUpdated", [](Coin &coin) { coin.lastUpdated.reset(); });
}

void CoinTest::everyFieldCounts()
{
    QFETCH(Edit, edit);
    const Coin before = fullCoin();
    Coin after = before;
    edit(after);
    QVERIFY(after != before);
    QVERIFY(qHash(after) != qHash(before));
    const CoinMetadata &record = before;
    const CoinMetadata &changed = after;
    QCOMPARE(qHash(changed) == qHash(record), changed == record);
}

void CoinTest::isAMemberOfASet()
{
    Coin moved = fullCoin();
    moved.currentPrice = 1;
    const QSet<Coin> coins{fullCoin(), moved, fullCoin()};
    QCOMPARE(coins.size(), 2);
    QVERIFY(coins.contains(moved));
    const Coin other = fullCoin();
    const CoinMetadata &record = moved;
    const CoinMetadata &same = other;
    QVERIFY(QSet<CoinMetadata>{record}.contains(same));
}

TICKWISE_TEST(CoinTest)
#include "CoinTest.moc"
