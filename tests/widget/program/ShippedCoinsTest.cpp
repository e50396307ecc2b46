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
    QVERIFY(shippedCoins({}).isEmpty());
    const QString bitcoin = QStringLiteral("bitcoin");
    const QHash<QString, CoinMetadata> coins = shippedCoins({bitcoin, bitcoin, QStringLiteral("no-such-coin")});
    QCOMPARE(coins.keys(), QStringList{bitcoin});
}

void ShippedCoinsTest::agreesWithTheCatalog()
{
    const CoinCatalog catalog(QStringLiteral(":/coins.json"), shippedImageExists);
    std::vector<QString> ids;
    for (const CoinMetadata &coin : catalog.coins())
        ids.push_back(coin.id);
    const QHash<QString, CoinMetadata> coins = shippedCoins(ids);
    QVERIFY(coins.size() > 100);
    QCOMPARE(std::size_t(coins.size()), ids.size());
    for (const CoinMetadata &coin : catalog.coins()) {
        const CoinMetadata &found = coins[coin.id];
        QCOMPARE(found.symbol, coin.symbol);
        QCOMPARE(found.name, coin.name);
        QCOMPARE(found.logoAssetName, coin.logoAssetName);
    }
}

TICKWISE_TEST(ShippedCoinsTest)
#include "ShippedCoinsTest.moc"
