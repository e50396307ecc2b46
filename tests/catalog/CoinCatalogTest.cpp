#include "catalog/CoinCatalog.h"

#include "doubles/Catalogs.h"
#include "doubles/LogCapture.h"
#include "doubles/TestProgram.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace tickwise;
using namespace tickwise::test;

class CoinCatalogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void shippedCatalogLoads();
    void shippedImagesAreNamed();
    void unusableFileLeavesAnEmptyCatalogAndOneFaultLine_data();
    void unusableFileLeavesAnEmptyCatalogAndOneFaultLine();
    void publishingTellsSubscribers();
    void idsLeadToTheRecordsOfTheList();
    void repackingMovesTheTextsAndChangesNothing();
    void reconcile_data();
    void reconcile();
    void reconcileMovesTheDisplayedCoin();
    void reconcileDropsTheEntryWhenTheSuccessorIsThere();
    void reconcileMovesTheDisplayedCoinOfADroppedEntry();
    void reconcileSkips_data();
    void reconcileSkips();
    void reconcileTwoCoinsOfOneSuccessor();
    void reconcileWithoutMigrationChangesNothing();

private:
    static std::vector<CoinMetadata> migrating();
    QTemporaryDir m_directory;
};

void CoinCatalogTest::shippedCatalogLoads()
{
    const LogCapture log;
    const CoinCatalog catalog(QStringLiteral(":/coins.json"), noImages);
    QVERIFY(log.lines().empty());
    QCOMPARE(catalog.coins().size(), 750U);
    QCOMPARE(catalog.byID().size(), 750);
    QCOMPARE(catalog.coins().front().id, QStringLiteral("bitcoin"));
    QCOMPARE(catalog.byID().value(QStringLiteral("ethereum"))->symbol, QStringLiteral("ETH"));
}

void CoinCatalogTest::shippedImagesAreNamed()
{
    const CoinCatalog catalog(QStringLiteral(":/coins.json"),
                              [](const QString &name) { return name == QStringLiteral("coin-bitcoin"); });
    QCOMPARE(catalog.coins().front().logoAssetName, std::optional(QStringLiteral("coin-bitcoin")));
    QCOMPARE(catalog.byID().value(QStringLiteral("bitcoin"))->logoAssetName,
             std::optional(QStringLiteral("coin-bitcoin")));
    QVERIFY(!catalog.byID().value(QStringLiteral("ethereum"))->logoAssetName);
}

void CoinCatalogTest::unusableFileLeavesAnEmptyCatalogAndOneFaultLine_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("cause");
    QTest::newRow("missing") << QByteArray() << QStringLiteral("coins.json missing from bundle");
    QTest::newRow("directory") << QByteArray("directory") << QString();
    QTest::newRow("garbage") << QByteArray("garbage") << QStringLiteral("not valid JSON");
    QTest::newRow("problems") << QByteArray("{\"schemaVersion\":1,\"coins\":[]}")
                              << QStringLiteral("listed count 0, missing tradable bitcoin, missing tradable ethereum");
    QTest::newRow("version") << QByteArray("{\"schemaVersion\":2,\"coins\":[]}") << QStringLiteral("schemaVersion 2");
}

void CoinCatalogTest::unusableFileLeavesAnEmptyCatalogAndOneFaultLine()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, cause);
    const QString path = m_directory.filePath(QString::fromLatin1(QTest::currentDataTag()));
    if (content == "directory") {
        QVERIFY(QDir().mkpath(path));
    } else if (!content.isEmpty()) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }
    const LogCapture log;
    const CoinCatalog catalog(path, noImages);
    QVERIFY(catalog.coins().empty());
    QVERIFY(catalog.byID().isEmpty());
    QCOMPARE(log.lines().size(), 1U);
    QCOMPARE(log.lines().front().type, QtCriticalMsg);
    QCOMPARE(log.lines().front().category, QStringLiteral("com.pelmo.tickwise.CoinCatalog"));
    const QString text = log.lines().front().text;
    QVERIFY2(text.startsWith(QStringLiteral("Bundled coin catalog unusable: ")) && text.contains(cause),
             qPrintable(text));
}

void CoinCatalogTest::publishingTellsSubscribers()
{
    FixedCatalog catalog(validCoins());
    QSignalSpy changed(&catalog, &CoinCatalog::coinsChanged);
    catalog.publish(validCoins(201), noImages);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(catalog.byID().size(), 201);
    catalog.publish(validCoins(201), noImages);
    QCOMPARE(changed.count(), 1);
}

void CoinCatalogTest::idsLeadToTheRecordsOfTheList()
{
    FixedCatalog catalog(validCoins());
    for (const int listed : {200, 201, 201, 202}) {
        catalog.publish(validCoins(listed), noImages);
        QCOMPARE(catalog.byID().size(), listed);
        for (const CoinMetadata &coin : catalog.coins())
            QCOMPARE(catalog.byID().value(coin.id), &coin);
    }
}

void CoinCatalogTest::repackingMovesTheTextsAndChangesNothing()
{
    CoinCatalog catalog(QStringLiteral(":/coins.json"), [](const QString &) { return true; });
    const std::vector<CoinMetadata> before = catalog.coins();
    QSignalSpy changed(&catalog, &CoinCatalog::coinsChanged);
    catalog.repack();
    QVERIFY(catalog.coins() == before);
    QCOMPARE(changed.count(), 0);
    for (std::size_t i = 0; i < before.size(); ++i) {
        const CoinMetadata &coin = catalog.coins()[i];
        QVERIFY(coin.id.constData() != before[i].id.constData());
        QVERIFY(!coin.logoURL || coin.logoURL->constData() != before[i].logoURL->constData());
        QVERIFY(coin.logoAssetName->constData() != before[i].logoAssetName->constData());
        QCOMPARE(catalog.byID().value(coin.id), &coin);
        QCOMPARE(catalog.byID().constFind(coin.id).key().constData(), coin.id.constData());
    }
}

std::vector<CoinMetadata> CoinCatalogTest::migrating()
{
    std::vector<CoinMetadata> coins = validCoins();
    for (const char *id : {"old", "older"}) {
        CoinMetadata old = coinRecord(QString::fromLatin1(id), QStringLiteral("OLD"));
        old.status = CoinStatus::migrated;
        old.listed = false;
        old.migratedTo = QStringLiteral("coin-5");
        coins.push_back(old);
    }
    return coins;
}

void CoinCatalogTest::reconcile_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("newKind");
    QTest::addColumn<double>("newThreshold");
    const auto row = [](const char *name, CoinAlertKind kind, CoinAlertKind newKind, double threshold) {
        QTest::newRow(name) << static_cast<int>(kind) << static_cast<int>(newKind) << threshold;
    };
    row("above", CoinAlertKind::above, CoinAlertKind::change, 2.0);
    row("below", CoinAlertKind::below, CoinAlertKind::change, 2.0);
    row("change", CoinAlertKind::change, CoinAlertKind::change, 7.5);
    row("notSet", CoinAlertKind::notSet, CoinAlertKind::notSet, 7.5);
}

void CoinCatalogTest::reconcile()
{
    QFETCH(int, kind);
    QFETCH(int, newKind);
    QFETCH(double, newThreshold);
    AppSettings settings;
    settings.watchlistCoins = {{QStringLiteral("ethereum")},
                               {QStringLiteral("old"), static_cast<CoinAlertKind>(kind), 7.5},
                               {QStringLiteral("bitcoin")}};
    const auto changed = FixedCatalog(migrating()).reconcile(settings);
    QVERIFY(changed.has_value());
    QCOMPARE(changed->watchlistCoins.size(), 3U);
    const WatchlistCoin expected{QStringLiteral("coin-5"), static_cast<CoinAlertKind>(newKind), newThreshold};
    QVERIFY(changed->watchlistCoins[1] == expected);
    QCOMPARE(changed->displayedCoinId, QStringLiteral("bitcoin"));
}

void CoinCatalogTest::reconcileMovesTheDisplayedCoin()
{
    AppSettings settings;
    settings.watchlistCoins = {{QStringLiteral("old")}};
    settings.displayedCoinId = QStringLiteral("old");
    const auto changed = FixedCatalog(migrating()).reconcile(settings);
    QVERIFY(changed.has_value());
    QCOMPARE(changed->displayedCoinId, QStringLiteral("coin-5"));
}

void CoinCatalogTest::reconcileDropsTheEntryWhenTheSuccessorIsThere()
{
    AppSettings settings;
    const WatchlistCoin successor{QStringLiteral("coin-5"), CoinAlertKind::above, 90};
    settings.watchlistCoins = {{QStringLiteral("old"), CoinAlertKind::below, 3}, successor};
    const auto changed = FixedCatalog(migrating()).reconcile(settings);
    QVERIFY(changed.has_value());
    QCOMPARE(changed->watchlistCoins.size(), 1U);
    QVERIFY(changed->watchlistCoins.front() == successor);
}

void CoinCatalogTest::reconcileMovesTheDisplayedCoinOfADroppedEntry()
{
    AppSettings settings;
    settings.watchlistCoins = {{QStringLiteral("coin-5")}, {QStringLiteral("old")}};
    settings.displayedCoinId = QStringLiteral("old");
    const auto changed = FixedCatalog(migrating()).reconcile(settings);
    QVERIFY(changed.has_value());
    QCOMPARE(changed->watchlistCoins.size(), 1U);
    QCOMPARE(changed->displayedCoinId, QStringLiteral("coin-5"));
}

void CoinCatalogTest::reconcileSkips_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("target");
    const auto row = [](const char *name, const char *id, CoinStatus status, const char *target) {
        QTest::newRow(name) << QString::fromLatin1(id) << static_cast<int>(status) << QString::fromLatin1(target);
    };
    row("unknown coin", "another", CoinStatus::migrated, "coin-5");
    row("active with a target", "odd", CoinStatus::active, "coin-5");
    row("delisted with a target", "odd", CoinStatus::delisted, "coin-5");
    row("without a target", "odd", CoinStatus::migrated, "");
    row("unknown target", "odd", CoinStatus::migrated, "nowhere");
}

void CoinCatalogTest::reconcileSkips()
{
    QFETCH(QString, id);
    QFETCH(int, status);
    QFETCH(QString, target);
    std::vector<CoinMetadata> coins = validCoins();
    CoinMetadata odd = coinRecord(QStringLiteral("odd"), QStringLiteral("ODD"));
    odd.status = static_cast<CoinStatus>(status);
    if (!target.isEmpty())
        odd.migratedTo = target;
    coins.push_back(odd);
    AppSettings settings;
    settings.watchlistCoins = {{id}};
    settings.displayedCoinId = id;
    QVERIFY(!FixedCatalog(coins).reconcile(settings).has_value());
}

void CoinCatalogTest::reconcileTwoCoinsOfOneSuccessor()
{
    AppSettings settings;
    settings.watchlistCoins = {{QStringLiteral("old"), CoinAlertKind::notSet, 3}, {QStringLiteral("older")}};
    const auto changed = FixedCatalog(migrating()).reconcile(settings);
    QVERIFY(changed.has_value());
    QCOMPARE(changed->watchlistCoins.size(), 1U);
    QVERIFY(changed->watchlistCoins.front().alertKind == CoinAlertKind::notSet);
}

void CoinCatalogTest::reconcileWithoutMigrationChangesNothing()
{
    AppSettings settings;
    settings.watchlistCoins.push_back({QStringLiteral("unknown")});
    QVERIFY(!FixedCatalog(migrating()).reconcile(settings).has_value());
}

TICKWISE_TEST(CoinCatalogTest)
#include "CoinCatalogTest.moc"
