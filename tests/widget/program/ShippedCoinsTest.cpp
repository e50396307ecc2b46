#include "widget/program/ShippedCoins.h"

#include "catalog/CoinCatalog.h"
#include "catalog/ShippedImages.h"
#include "doubles/TestProgram.h"

using namespace tickwise;

class ShippedCoinsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsOnlyWhatIsAskedFor();
    void agreesWithTheCatalog();
};

void ShippedCoinsTest::findsOnlyWhatIsAskedFor()
{
    QVERIFY(shippedCoins({}).empty());
    const QString bitcoin = QStringLiteral("bitcoin");
    const std::vector<CoinMetadata> coins = shippedCoins({bitcoin, bitcoin, QStringLiteral("no-such-coin")});
    QCOMPARE(coins.size(), 1U);
    QCOMPARE(coins.front().id, bitcoin);
}

void ShippedCoinsTest::agreesWithTheCatalog()
{
    const CoinCatalog catalog(QStringLiteral(":/coins.json"), shippedImageExists);
    std::vector<QString> ids;
    for (const CoinMetadata &coin : catalog.coins())
        ids.push_back(coin.id);
    const std::vector<CoinMetadata> coins = shippedCoins(ids);
    QVERIFY(coins.size() > 100);
    QCOMPARE(coins.size(), ids.size());
    const CoinIndex index = indexById(coins);
    for (const CoinMetadata &coin : catalog.coins()) {
        QVERIFY(index.contains(coin.id));
        const CoinMetadata &found = *index[coin.id];
        QCOMPARE(found.symbol, coin.symbol);
        QCOMPARE(found.name, coin.name);
        QCOMPARE(found.logoAssetName, coin.logoAssetName);
    }
}

TICKWISE_TEST(ShippedCoinsTest)
#include "ShippedCoinsTest.moc"
