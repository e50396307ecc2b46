#include "catalog/CoinCatalog.h"

#include "doubles/Catalogs.h"
#include "doubles/TestProgram.h"

using namespace tickwise;
using namespace tickwise::test;

class CatalogValidationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void validCatalogHasNoProblems();
    void otherSchemaVersionIsTheOnlyProblem();
    void duplicateIdCarriesNoId();
    void eachDuplicateIdIsReported();
    void problemsComeInTheOrderOfTheRules();
    void listedCount_data();
    void listedCount();
    void requiredCoins_data();
    void requiredCoins();
    void activeSymbolsAreUniqueOnce();
    void unlistedActiveCoinsCountForUniqueSymbols();
    void activeAndDelistedMayShareASymbol();
    void record_data();
    void record();
    void everyRuleOfARecordIsReportedInOrder();
    void migration_data();
    void migration();
};

void CatalogValidationTest::validCatalogHasNoProblems()
{
    QCOMPARE(validateCatalog(1, validCoins()), QStringList());
}

void CatalogValidationTest::otherSchemaVersionIsTheOnlyProblem()
{
    std::vector<CoinMetadata> faulty{coinRecord(QStringLiteral("-"), QStringLiteral("a"))};
    QCOMPARE(validateCatalog(2, faulty), QStringList{QStringLiteral("schemaVersion 2")});
    QCOMPARE(validateCatalog(-1, validCoins()), QStringList{QStringLiteral("schemaVersion -1")});
}

void CatalogValidationTest::duplicateIdCarriesNoId()
{
    std::vector<CoinMetadata> coins = validCoins();
    coins.push_back(coinRecord(QStringLiteral("coin-7"), QStringLiteral("OTHER")));
    QCOMPARE(validateCatalog(1, coins), QStringList{QStringLiteral("duplicate id")});
}

void CatalogValidationTest::eachDuplicateIdIsReported()
{
    std::vector<CoinMetadata> coins = validCoins();
    coins.push_back(coinRecord(QStringLiteral("coin-7"), QStringLiteral("X1")));
    coins.push_back(coinRecord(QStringLiteral("coin-7"), QStringLiteral("X2")));
    coins.push_back(coinRecord(QStringLiteral("coin-9"), QStringLiteral("X3")));
    const QString problem = QStringLiteral("duplicate id");
    QCOMPARE(validateCatalog(1, coins), (QStringList{problem, problem, problem}));
}

void CatalogValidationTest::problemsComeInTheOrderOfTheRules()
{
    const auto broken = [](const char *id) {
        CoinMetadata coin = coinRecord(QString::fromLatin1(id), QStringLiteral("SAME"));
        coin.rank = 0;
        return coin;
    };
    QCOMPARE(validateCatalog(1, {broken("b"), broken("a"), broken("b")}),
             (QStringList{QStringLiteral("duplicate id"), QStringLiteral("listed count 3"),
                          QStringLiteral("missing tradable bitcoin"), QStringLiteral("missing tradable ethereum"),
                          QStringLiteral("duplicate active symbol"), QStringLiteral("b: rank"),
                          QStringLiteral("a: rank"), QStringLiteral("b: rank")}));
}

void CatalogValidationTest::listedCount_data()
{
    QTest::addColumn<int>("listed");
    QTest::addColumn<QStringList>("problems");
    QTest::newRow("199") << 199 << QStringList{QStringLiteral("listed count 199")};
    QTest::newRow("200") << 200 << QStringList();
    QTest::newRow("1000") << 1000 << QStringList();
    QTest::newRow("1001") << 1001 << QStringList{QStringLiteral("listed count 1001")};
}

void CatalogValidationTest::listedCount()
{
    QFETCH(int, listed);
    QTEST(validateCatalog(1, validCoins(listed)), "problems");
}

void CatalogValidationTest::requiredCoins_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("problem");
    for (const auto &[index, id] : {std::pair(0, "bitcoin"), std::pair(1, "ethereum")}) {
        const QString problem = QStringLiteral("missing tradable ") + QLatin1String(id);
        QTest::newRow(qPrintable(problem + QStringLiteral(": missing")))
            << index << QStringLiteral("missing") << problem;
        QTest::newRow(qPrintable(problem + QStringLiteral(": unlisted")))
            << index << QStringLiteral("unlisted") << problem;
        QTest::newRow(qPrintable(problem + QStringLiteral(": delisted")))
            << index << QStringLiteral("delisted") << problem;
    }
}

void CatalogValidationTest::requiredCoins()
{
    QFETCH(int, index);
    QFETCH(QString, fault);
    QFETCH(QString, problem);
    std::vector<CoinMetadata> coins = validCoins(210);
    CoinMetadata &coin = coins[static_cast<std::size_t>(index)];
    if (fault == QStringLiteral("missing"))
        coin.id = QStringLiteral("another");
    else if (fault == QStringLiteral("unlisted"))
        coin.listed = false;
    else
        coin.status = CoinStatus::delisted;
    const QStringList problems = validateCatalog(1, coins);
    QCOMPARE(problems.front(), problem);
    // A listed coin that is not active breaks its own rule as well.
    QCOMPARE(problems.size(), fault == QStringLiteral("delisted") ? 2 : 1);
}

void CatalogValidationTest::activeSymbolsAreUniqueOnce()
{
    std::vector<CoinMetadata> coins = validCoins();
    coins[5].symbol = QStringLiteral("ETH");
    coins[6].symbol = QStringLiteral("ETH");
    coins[8].symbol = QStringLiteral("BTC");
    QCOMPARE(validateCatalog(1, coins), QStringList{QStringLiteral("duplicate active symbol")});
}

void CatalogValidationTest::unlistedActiveCoinsCountForUniqueSymbols()
{
    std::vector<CoinMetadata> coins = validCoins();
    CoinMetadata unlisted = coinRecord(QStringLiteral("another-ether"), QStringLiteral("ETH"));
    unlisted.listed = false;
    coins.push_back(unlisted);
    QCOMPARE(validateCatalog(1, coins), QStringList{QStringLiteral("duplicate active symbol")});
}

void CatalogValidationTest::activeAndDelistedMayShareASymbol()
{
    std::vector<CoinMetadata> coins = validCoins();
    CoinMetadata gone = coinRecord(QStringLiteral("old-ether"), QStringLiteral("ETH"));
    gone.status = CoinStatus::delisted;
    gone.listed = false;
    coins.push_back(gone);
    QCOMPARE(validateCatalog(1, coins), QStringList());
}

void CatalogValidationTest::record_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("suffix");
    const auto row = [](const char *field, const QString &value, const char *suffix) {
        QTest::newRow(qPrintable(QStringLiteral("%1=%2").arg(QLatin1String(field), value)))
            << QString::fromLatin1(field) << value << QString::fromLatin1(suffix);
    };
    const QString a = QStringLiteral("a");
    row("id", a.repeated(80), "");
    row("id", a.repeated(81), ": id");
    row("id", QStringLiteral("-abc"), ": id");
    row("id", QStringLiteral("Abc"), ": id");
    row("id", QString(), ": id");
    row("id", QStringLiteral("a_b"), ": id");
    row("id", QStringLiteral("ab\n"), ": id");
    row("id", QStringLiteral("0-1-2"), "");
    row("symbol", QStringLiteral("A-B"), ": symbol");
    row("symbol", QStringLiteral("A").repeated(15), "");
    row("symbol", QStringLiteral("A").repeated(16), ": symbol");
    row("symbol", QStringLiteral("abc"), ": symbol");
    row("symbol", QString(), ": symbol");
    row("name", a.repeated(60), "");
    row("name", a.repeated(61), ": name");
    row("name", QString(), ": name");
    row("name", QStringLiteral("e\u0301").repeated(60), "");
    row("name", QStringLiteral("e\u0301").repeated(61), ": name");
    row("rank", QStringLiteral("0"), ": rank");
    row("rank", QStringLiteral("-3"), ": rank");
    row("rank", QStringLiteral("1"), "");
    row("rank", QString(), "");
    row("logoURL", QStringLiteral("https://coin-images.coingecko.com/a.png"), "");
    row("logoURL", QStringLiteral("https://assets.coingecko.com/a.png"), "");
    row("logoURL", QStringLiteral("https://example.org/a.png"), ": logo host");
    row("logoURL", QStringLiteral("https://assets.coingecko.com.example.org/a.png"), ": logo host");
    row("logoURL", QStringLiteral("http://assets.coingecko.com/a.png"), ": logo host");
    row("logoURL", QStringLiteral("not a url"), ": logo host");
    row("logoURL", QStringLiteral("https://[broken"), ": logo host");
    row("logoURL", QStringLiteral("https:///a.png"), ": logo host");
    row("status", QStringLiteral("delisted"), ": listed but not active");
}

void CatalogValidationTest::record()
{
    QFETCH(QString, field);
    QFETCH(QString, value);
    QFETCH(QString, suffix);
    std::vector<CoinMetadata> coins = validCoins(210);
    CoinMetadata &coin = coins[20];
    if (field == QStringLiteral("id"))
        coin.id = value;
    else if (field == QStringLiteral("symbol"))
        coin.symbol = value;
    else if (field == QStringLiteral("name"))
        coin.name = value;
    else if (field == QStringLiteral("rank"))
        coin.rank = value.isEmpty() ? std::nullopt : std::optional<std::int64_t>(value.toInt());
    else if (field == QStringLiteral("logoURL"))
        coin.logoURL = value;
    else
        coin.status = CoinStatus::delisted;
    QCOMPARE(validateCatalog(1, coins), suffix.isEmpty() ? QStringList() : QStringList{coin.id + suffix});
}

void CatalogValidationTest::everyRuleOfARecordIsReportedInOrder()
{
    std::vector<CoinMetadata> coins = validCoins(210);
    CoinMetadata &coin = coins[20];
    coin.id = QStringLiteral("Bad");
    coin.symbol = QStringLiteral("b-d");
    coin.name = QString();
    coin.rank = 0;
    coin.logoURL = QStringLiteral("x");
    coin.status = CoinStatus::migrated;
    QCOMPARE(validateCatalog(1, coins),
             (QStringList{QStringLiteral("Bad: id"), QStringLiteral("Bad: symbol"), QStringLiteral("Bad: name"),
                          QStringLiteral("Bad: rank"), QStringLiteral("Bad: logo host"),
                          QStringLiteral("Bad: listed but not active"), QStringLiteral("Bad: migratedTo missing")}));
}

void CatalogValidationTest::migration_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("problem");
    QTest::newRow("active") << QStringLiteral("ethereum") << QString();
    QTest::newRow("absent") << QString() << QStringLiteral("old: migratedTo missing");
    QTest::newRow("unknown") << QStringLiteral("nowhere") << QStringLiteral("old: migratedTo missing");
    QTest::newRow("delisted") << QStringLiteral("gone") << QStringLiteral("old: migration target not active");
    QTest::newRow("migrated") << QStringLiteral("older") << QStringLiteral("old: migration target not active");
}

void CatalogValidationTest::migration()
{
    QFETCH(QString, target);
    QFETCH(QString, problem);
    const auto unlisted = [](const QString &id, CoinStatus status, const std::optional<QString> &to) {
        CoinMetadata coin = coinRecord(id, id.toUpper());
        coin.listed = false;
        coin.status = status;
        coin.migratedTo = to;
        return coin;
    };
    std::vector<CoinMetadata> coins = validCoins();
    coins.push_back(unlisted(QStringLiteral("gone"), CoinStatus::delisted, std::nullopt));
    coins.push_back(unlisted(QStringLiteral("older"), CoinStatus::migrated, QStringLiteral("ethereum")));
    coins.push_back(
        unlisted(QStringLiteral("old"), CoinStatus::migrated, target.isEmpty() ? std::nullopt : std::optional(target)));
    QCOMPARE(validateCatalog(1, coins), problem.isEmpty() ? QStringList() : QStringList{problem});
}

TICKWISE_TEST(CatalogValidationTest)
#include "CatalogValidationTest.moc"
