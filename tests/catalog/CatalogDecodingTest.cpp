#include "catalog/CoinCatalog.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

class CatalogDecodingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsEveryField();
    void ignoresUnknownKeys();
    void takesIntegersHoweverTheyAreWritten_data();
    void takesIntegersHoweverTheyAreWritten();
    void strict_data();
    void strict();
    void faultNamesRecordAndKey();
    void brokenJsonTellsTheOffset();
};

void CatalogDecodingTest::readsEveryField()
{
    const auto document = decodeCatalog(R"({"schemaVersion":1,"coins":[
        {"id":"bitcoin","symbol":"BTC","name":"Bitcoin","rank":1,"logoURL":"https://assets.coingecko.com/b.png","status":"active","listed":true},
        {"id":"old","symbol":"OLD","name":"Old","rank":null,"status":"migrated","listed":false,"migratedTo":"bitcoin"},
        {"id":"gone","symbol":"GONE","name":"Gone","status":"delisted","listed":false}]})");
    QVERIFY(document.has_value());
    QCOMPARE(document->schemaVersion, 1);
    QCOMPARE(document->coins.size(), 3U);
    const CoinMetadata &bitcoin = document->coins[0];
    QCOMPARE(bitcoin.id, QStringLiteral("bitcoin"));
    QCOMPARE(bitcoin.symbol, QStringLiteral("BTC"));
    QCOMPARE(bitcoin.name, QStringLiteral("Bitcoin"));
    QCOMPARE(bitcoin.rank, std::optional<std::int64_t>(1));
    QCOMPARE(bitcoin.logoURL, std::optional(QStringLiteral("https://assets.coingecko.com/b.png")));
    QVERIFY(bitcoin.listed);
    QVERIFY(bitcoin.status == CoinStatus::active);
    QVERIFY(!document->coins[1].rank);
    QVERIFY(document->coins[1].status == CoinStatus::migrated);
    QCOMPARE(document->coins[1].migratedTo, std::optional(QStringLiteral("bitcoin")));
    QVERIFY(document->coins[2].status == CoinStatus::delisted);
    QVERIFY(!document->coins[2].logoAssetName);
}

void CatalogDecodingTest::ignoresUnknownKeys()
{
    const auto document = decodeCatalog(
        R"({"schemaVersion":1,"more":{},"coins":[{"id":"a","symbol":"A","name":"A","status":"active","listed":true,"logoAssetName":"x","color":3}]})");
    QVERIFY(document.has_value());
    QVERIFY(!document->coins.front().logoAssetName);
}

void CatalogDecodingTest::takesIntegersHoweverTheyAreWritten_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<qint64>("number");
    QTest::newRow("usual") << QByteArray("7") << qint64(7);
    QTest::newRow("negative") << QByteArray("-7") << qint64(-7);
    QTest::newRow("with a fraction of zero") << QByteArray("7.0") << qint64(7);
    QTest::newRow("with an exponent") << QByteArray("7e1") << qint64(70);
    QTest::newRow("2^53 as float") << QByteArray("9007199254740992.0") << qint64(9007199254740992);
    QTest::newRow("-2^53 as float") << QByteArray("-9007199254740992.0") << qint64(-9007199254740992);
    QTest::newRow("largest") << QByteArray("9223372036854775807") << std::numeric_limits<qint64>::max();
    QTest::newRow("smallest") << QByteArray("-9223372036854775808") << std::numeric_limits<qint64>::min();
}

void CatalogDecodingTest::takesIntegersHoweverTheyAreWritten()
{
    QFETCH(QByteArray, text);
    QFETCH(qint64, number);
    const auto document = decodeCatalog(
        "{\"schemaVersion\":" + text +
        R"(,"coins":[{"id":"a","symbol":"A","name":"A","status":"active","listed":true,"rank":)" + text + "}]}");
    QVERIFY(document.has_value());
    QCOMPARE(document->schemaVersion, number);
    QCOMPARE(document->coins.front().rank, std::optional<std::int64_t>(number));
}

void CatalogDecodingTest::strict_data()
{
    QTest::addColumn<QByteArray>("text");
    const auto row = [](const char *name, const char *record) {
        QTest::newRow(name) << QByteArrayLiteral("{\"schemaVersion\":1,\"coins\":[") + record + "]}";
    };
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("array") << QByteArray("[]");
    QTest::newRow("no version") << QByteArray("{\"coins\":[]}");
    QTest::newRow("version as text") << QByteArray("{\"schemaVersion\":\"1\",\"coins\":[]}");
    QTest::newRow("no coins") << QByteArray("{\"schemaVersion\":1}");
    QTest::newRow("coins as object") << QByteArray("{\"schemaVersion\":1,\"coins\":{}}");
    row("not an object", "7");
    row("no id", R"({"symbol":"A","name":"A","status":"active","listed":true})");
    row("no symbol", R"({"id":"a","name":"A","status":"active","listed":true})");
    row("null name", R"({"id":"a","symbol":"A","name":null,"status":"active","listed":true})");
    row("rank as text", R"({"id":"a","symbol":"A","name":"A","rank":"1","status":"active","listed":true})");
    row("rank with fraction", R"({"id":"a","symbol":"A","name":"A","rank":1.5,"status":"active","listed":true})");
    row("rank too large",
        R"({"id":"a","symbol":"A","name":"A","rank":9223372036854775808,"status":"active","listed":true})");
    row("rank beyond 2^53 as float",
        R"({"id":"a","symbol":"A","name":"A","rank":9007199254740994.0,"status":"active","listed":true})");
    row("rank below -2^53 as float",
        R"({"id":"a","symbol":"A","name":"A","rank":-1e17,"status":"active","listed":true})");
    QTest::newRow("version beyond 2^53 as float") << QByteArray("{\"schemaVersion\":1e17,\"coins\":[]}");
    row("logoURL as number", R"({"id":"a","symbol":"A","name":"A","logoURL":1,"status":"active","listed":true})");
    row("unknown status", R"({"id":"a","symbol":"A","name":"A","status":"Active","listed":true})");
    row("no status", R"({"id":"a","symbol":"A","name":"A","listed":true})");
    row("listed as number", R"({"id":"a","symbol":"A","name":"A","status":"active","listed":1})");
    row("no listed", R"({"id":"a","symbol":"A","name":"A","status":"active"})");
    row("migratedTo as number", R"({"id":"a","symbol":"A","name":"A","status":"active","listed":true,"migratedTo":1})");
    QTest::newRow("invalid utf-8") << QByteArray("{\"schemaVersion\":1,\"coins\":[],\"x\":\"\xff\"}");
    QTest::newRow("number too large") << QByteArray("{\"schemaVersion\":1e999,\"coins\":[]}");
    QTest::newRow("deep") << QByteArray(1000000, '[');
}

void CatalogDecodingTest::strict()
{
    QFETCH(QByteArray, text);
    const auto document = decodeCatalog(text);
    QVERIFY(!document.has_value());
    QVERIFY(std::holds_alternative<DecodingError>(document.error()));
}

void CatalogDecodingTest::faultNamesRecordAndKey()
{
    const auto document = decodeCatalog(
        R"({"schemaVersion":1,"coins":[{"id":"a","symbol":"A","name":"A","status":"active","listed":true},{"id":"b"}]})");
    QVERIFY(!document.has_value());
    QVERIFY2(description(document.error()).contains(QStringLiteral("coins[1].symbol")),
             qPrintable(description(document.error())));
}

void CatalogDecodingTest::brokenJsonTellsTheOffset()
{
    const auto document = decodeCatalog("{\"schemaVersion\":1,");
    QVERIFY(!document.has_value());
    QVERIFY(std::get<DecodingError>(document.error()).offset.has_value());
}

TICKWISE_TEST(CatalogDecodingTest)
#include "CatalogDecodingTest.moc"
