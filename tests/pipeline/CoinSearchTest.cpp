#include "pipeline/CoinSearch.h"

#include "doubles/Catalogs.h"
#include "doubles/TestProgram.h"

using namespace tickwise;
using namespace tickwise::test;

namespace {

CoinMetadata named(const char *id, const char *symbol, const QString &name)
{
    CoinMetadata coin = coinRecord(QString::fromLatin1(id), QString::fromLatin1(symbol));
    coin.name = name;
    return coin;
}

/// Ids are words that neither symbols nor names contain.
std::vector<CoinMetadata> catalog()
{
    std::vector<CoinMetadata> coins{named("first", "BTC", QStringLiteral("Bitcoin")),
                                    named("second", "ETH", QStringLiteral("Ethereum")),
                                    named("third", "DOGE", QStringLiteral("Dogecoin")),
                                    named("fourth", "HIDE", QStringLiteral("Hidden Coin")),
                                    named("fifth", "WBTC", QStringLiteral("Wrapped\u00a0Bitcoin")),
                                    named("sixth", "COIN", QStringLiteral("COIN Exchange")),
                                    named("seventh", "IST", QStringLiteral("\u0130stanbul Stra\u00dfe")),
                                    named("eighth", "ETH", QStringLiteral("Another Ether"))};
    coins[3].listed = false;
    return coins;
}

QStringList ids(const std::vector<CoinMetadata> &coins)
{
    QStringList ids;
    for (const CoinMetadata &coin : coins)
        ids.append(coin.id);
    return ids;
}

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts);
}

const QStringList allListed = words("first second third fifth sixth seventh eighth");

} // namespace

class CoinSearchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void matches_data();
    void matches();
    void visibleCoins_data();
    void visibleCoins();
    void emptyCatalogFindsNothing();
    void givesWholeRecords();
    void withSymbols_data();
    void withSymbols();
    void recommendedSymbols_data();
    void recommendedSymbols();
};

void CoinSearchTest::matches_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QStringList>("found");
    QTest::newRow("symbol") << QStringLiteral("btc") << words("first fifth");
    QTest::newRow("in upper case with spaces around") << QStringLiteral("  BTC ") << words("first fifth");
    QTest::newRow("tabs around") << QStringLiteral("\tbtc\t") << words("first fifth");
    QTest::newRow("wide and fixed spaces around") << QStringLiteral("\u3000btc\u00a0") << words("first fifth");
    QTest::newRow("line break behind") << QStringLiteral("btc\n") << QStringList();
    QTest::newRow("name in any case, catalog order") << QStringLiteral("coin") << words("first third fifth sixth");
    QTest::newRow("exact symbol does not come first") << QStringLiteral("COIN") << words("first third fifth sixth");
    QTest::newRow("inside a name") << QStringLiteral("her") << words("second eighth");
    QTest::newRow("space inside") << QStringLiteral("other e") << words("eighth");
    QTest::newRow("fixed space is not a space") << QStringLiteral("wrapped bit") << QStringList();
    QTest::newRow("both symbol and name") << QStringLiteral("eth") << words("second eighth");
    QTest::newRow("across symbol and name") << QStringLiteral("btcbit") << QStringList();
    QTest::newRow("id alone") << QStringLiteral("seventh") << QStringList();
    QTest::newRow("unlisted") << QStringLiteral("hide") << QStringList();
    QTest::newRow("full lower case") << QStringLiteral("i\u0307stanbul STRA\u00dfE") << words("seventh");
    QTest::newRow("capital with a dot") << QStringLiteral("\u0130STAN") << words("seventh");
    QTest::newRow("unknown") << QStringLiteral("zzz") << QStringList();
    QTest::newRow("no pattern") << QStringLiteral("b.*") << QStringList();
    QTest::newRow("empty") << QString() << QStringList();
    QTest::newRow("blank") << QStringLiteral(" \t\u3000") << QStringList();
}

void CoinSearchTest::matches()
{
    QFETCH(QString, query);
    QTEST(ids(CoinSearch(catalog()).matches(query)), "found");
}

void CoinSearchTest::visibleCoins_data()
{
    QTest::addColumn<QString>("searchText");
    QTest::addColumn<QStringList>("visible");
    QTest::newRow("empty") << QString() << allListed;
    QTest::newRow("spaces") << QStringLiteral("   ") << allListed;
    QTest::newRow("spaces and tabs") << QStringLiteral(" \t ") << allListed;
    QTest::newRow("line break") << QStringLiteral("\n") << QStringList();
    QTest::newRow("line break between spaces") << QStringLiteral(" \n ") << QStringList();
    QTest::newRow("query") << QStringLiteral(" doge") << words("third");
    QTest::newRow("no match") << QStringLiteral("zzz") << QStringList();
}

void CoinSearchTest::visibleCoins()
{
    QFETCH(QString, searchText);
    QTEST(ids(CoinSearch(catalog()).visibleCoins(searchText)), "visible");
}

void CoinSearchTest::emptyCatalogFindsNothing()
{
    for (const CoinSearch &search : {CoinSearch(), CoinSearch(std::vector<CoinMetadata>())}) {
        QVERIFY(search.visibleCoins(QString()).empty());
        QVERIFY(search.visibleCoins(QStringLiteral("btc")).empty());
        QVERIFY(search.withSymbols({QStringLiteral("BTC")}).empty());
    }
}

void CoinSearchTest::givesWholeRecords()
{
    std::vector<CoinMetadata> coins = catalog();
    coins[0].rank = 1;
    coins[0].logoURL = QStringLiteral("https://assets.coingecko.com/a.png");
    coins[0].logoAssetName = QStringLiteral("coin-first");
    const CoinSearch search(coins);
    QCOMPARE(search.visibleCoins(QString()).front(), coins[0]);
    QCOMPARE(search.matches(QStringLiteral("bitcoin")).front(), coins[0]);
    QCOMPARE(search.withSymbols({QStringLiteral("BTC")}).front(), coins[0]);
}

void CoinSearchTest::withSymbols_data()
{
    QTest::addColumn<QStringList>("symbols");
    QTest::addColumn<QStringList>("found");
    QTest::newRow("order of the symbols") << words("DOGE BTC") << words("third first");
    QTest::newRow("first of two coins") << words("ETH") << words("second");
    QTest::newRow("unknown is skipped") << words("NONE BTC") << words("first");
    QTest::newRow("unlisted is skipped") << words("HIDE BTC") << words("first");
    QTest::newRow("spelled exactly") << words("btc Doge") << QStringList();
    QTest::newRow("part of a symbol") << words("BT") << QStringList();
    QTest::newRow("none") << QStringList() << QStringList();
}

void CoinSearchTest::withSymbols()
{
    QFETCH(QStringList, symbols);
    QTEST(ids(CoinSearch(catalog()).withSymbols(symbols)), "found");
}

void CoinSearchTest::recommendedSymbols_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QStringList>("symbols");
    QTest::newRow("usual") << QByteArray(R"(["BTC","ETH"])") << words("BTC ETH");
    QTest::newRow("trimmed and in upper case")
        << QByteArray(R"([" btc\n","\r\n\teTh ","\u3000doge"])") << words("BTC ETH DOGE");
    QTest::newRow("empty texts") << QByteArray(R"(["BTC",""," \n","ETH"])") << words("BTC ETH");
    QTest::newRow("twice") << QByteArray(R"(["BTC","btc"])") << words("BTC BTC");
    QTest::newRow("no symbols") << QByteArray("[]") << QStringList();
    QTest::newRow("number among texts") << QByteArray(R"(["BTC",1])") << QStringList();
    QTest::newRow("null among texts") << QByteArray(R"(["BTC",null])") << QStringList();
    QTest::newRow("object") << QByteArray(R"({"BTC":"ETH"})") << QStringList();
    QTest::newRow("text") << QByteArray("\"BTC\"") << QStringList();
    QTest::newRow("cut") << QByteArray(R"(["BTC")") << QStringList();
    QTest::newRow("nothing") << QByteArray() << QStringList();
}

void CoinSearchTest::recommendedSymbols()
{
    QFETCH(QByteArray, document);
    QTEST(decodeRecommendedSymbols(document), "symbols");
}

TICKWISE_TEST(CoinSearchTest)
#include "CoinSearchTest.moc"
