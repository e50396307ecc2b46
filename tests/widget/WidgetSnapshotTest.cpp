#include "widget/WidgetSnapshot.h"

#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"

#include <cmath>
#include <limits>

using namespace tickwise;
using namespace tickwise::test;

namespace {

Coin coin(const char *id, std::optional<double> price, std::optional<double> change = std::nullopt)
{
    Coin coin;
    coin.id = QLatin1String(id);
    coin.currentPrice = price;
    coin.priceChange24hPercent = change;
    return coin;
}

WidgetSnapshot::Quote quote(double price, std::optional<double> change = std::nullopt)
{
    return {price, change};
}

/// Every key holds something other than its default.
WidgetSnapshot richSnapshot()
{
    WidgetSnapshot snapshot;
    snapshot.writtenAt = TestClock().now();
    snapshot.language = AppLanguage::zhHant;
    snapshot.currency = BaseCurrency::eur;
    snapshot.colorByChange = false;
    snapshot.upColorHex = QStringLiteral("#123456");
    snapshot.downColorHex = QStringLiteral("#ABCDEF");
    snapshot.displayedCoinId = QStringLiteral("ethereum");
    snapshot.watchlist = {QStringLiteral("ethereum"), QStringLiteral("bitcoin")};
    snapshot.quotes = {{QStringLiteral("bitcoin"), quote(67432.1, -1.25)}, {QStringLiteral("ethereum"), quote(0.1)}};
    return snapshot;
}

const QByteArray richDocument =
    R"({"writtenAt":"2026-01-31T08:15:00Z","language":"zh-Hant","currency":"eur","colorByChange":false,)"
    R"("upColorHex":"#123456","downColorHex":"#ABCDEF","displayedCoinId":"ethereum",)"
    R"("watchlist":["ethereum","bitcoin"],)"
    R"("quotes":{"bitcoin":{"price":67432.1,"change24hPercent":-1.25},"ethereum":{"price":0.1}}})";

QByteArray expectedRich()
{
    return QByteArray(richDocument).replace("\"eur\"", QByteArray("\"" + rawValue(BaseCurrency::eur).toUtf8() + "\""));
}

} // namespace

class WidgetSnapshotTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesItsFieldsFromTheSettings();
    void coinWithoutPriceIsAbsent();
    void laterCoinReplacesTheEarlierOne();
    void colors_data();
    void colors();
    void documentHasItsKeysInOrder();
    void emptyWatchlistStillHoldsAllKeys();
    void dates_data();
    void dates();
    void notFiniteNumbersAreFailures_data();
    void notFiniteNumbersAreFailures();
    void numbersRoundTripExactly();
    void decodesWhatItEncodes();
    void decodesChangesThatAreNull();
    void decodingIsStrict_data();
    void decodingIsStrict();
};

void WidgetSnapshotTest::takesItsFieldsFromTheSettings()
{
    AppSettings settings;
    settings.language = AppLanguage::zhHans;
    settings.baseCurrency = BaseCurrency::jpy;
    settings.priceColorEnabled = false;
    settings.displayedCoinId = QStringLiteral("solana");
    settings.watchlistCoins = {{QStringLiteral("solana")}, {QStringLiteral("bitcoin")}};
    const TimePoint now = TestClock().now();
    const WidgetSnapshot snapshot = makeWidgetSnapshot({coin("bitcoin", 5, 0.5)}, settings, now);
    QCOMPARE(snapshot, (WidgetSnapshot{now,
                                       AppLanguage::zhHans,
                                       BaseCurrency::jpy,
                                       false,
                                       QStringLiteral("#2CBD84"),
                                       QStringLiteral("#F6465D"),
                                       QStringLiteral("solana"),
                                       {QStringLiteral("solana"), QStringLiteral("bitcoin")},
                                       {{QStringLiteral("bitcoin"), quote(5, 0.5)}}}));
}

void WidgetSnapshotTest::coinWithoutPriceIsAbsent()
{
    const WidgetSnapshot snapshot =
        makeWidgetSnapshot({coin("bitcoin", std::nullopt, 2), coin("ethereum", 0)}, {}, TimePoint());
    QCOMPARE(snapshot.quotes, (std::map<QString, WidgetSnapshot::Quote>{{QStringLiteral("ethereum"), quote(0)}}));
    QCOMPARE(snapshot.watchlist.size(), std::size_t(2));
}

void WidgetSnapshotTest::laterCoinReplacesTheEarlierOne()
{
    const WidgetSnapshot snapshot =
        makeWidgetSnapshot({coin("bitcoin", 1, 1), coin("bitcoin", 2), coin("bitcoin", std::nullopt)}, {}, TimePoint());
    QCOMPARE(snapshot.quotes, (std::map<QString, WidgetSnapshot::Quote>{{QStringLiteral("bitcoin"), quote(2)}}));
}

void WidgetSnapshotTest::colors_data()
{
    QTest::addColumn<PriceColorScheme>("scheme");
    QTest::addColumn<QString>("up");
    QTest::addColumn<QString>("down");
    QTest::newRow("green up") << PriceColorScheme::greenUpRedDown << QStringLiteral("#2CBD84")
                              << QStringLiteral("#F6465D");
    QTest::newRow("red up") << PriceColorScheme::redUpGreenDown << QStringLiteral("#F6465D")
                            << QStringLiteral("#2CBD84");
    QTest::newRow("custom") << PriceColorScheme::custom << QStringLiteral("#010203") << QStringLiteral("#aabbcc");
}

void WidgetSnapshotTest::colors()
{
    QFETCH(PriceColorScheme, scheme);
    QFETCH(QString, up);
    QFETCH(QString, down);
    AppSettings settings;
    settings.colorScheme = scheme;
    settings.customUpColorHex = QStringLiteral("#010203");
    settings.customDownColorHex = QStringLiteral("#aabbcc");
    const WidgetSnapshot snapshot = makeWidgetSnapshot({}, settings, TimePoint());
    QCOMPARE(snapshot.upColorHex, up);
    QCOMPARE(snapshot.downColorHex, down);
}

void WidgetSnapshotTest::documentHasItsKeysInOrder()
{
    QCOMPARE(encodeWidgetSnapshot(richSnapshot()).value(), expectedRich());
}

void WidgetSnapshotTest::emptyWatchlistStillHoldsAllKeys()
{
    AppSettings settings;
    settings.watchlistCoins.clear();
    const QByteArray document = encodeWidgetSnapshot(makeWidgetSnapshot({}, settings, TestClock().now())).value();
    const QByteArray currency = rawValue(BaseCurrency::usd).toUtf8();
    QCOMPARE(document, QByteArray(R"({"writtenAt":"2026-01-31T08:15:00Z","language":"system","currency":")" + currency +
                                  R"(","colorByChange":true,"upColorHex":"#2CBD84","downColorHex":"#F6465D",)"
                                  R"("displayedCoinId":"bitcoin","watchlist":[],"quotes":{}})"));
}

void WidgetSnapshotTest::dates_data()
{
    QTest::addColumn<qint64>("milliseconds");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("fractions are cut") << qint64(1769847300999) << QByteArray("2026-01-31T08:15:00Z");
    QTest::newRow("before 1970") << qint64(-1) << QByteArray("1969-12-31T23:59:59Z");
    QTest::newRow("end of the clock") << qint64(9223372036854) << QByteArray("2262-04-11T23:47:16Z");
}

void WidgetSnapshotTest::dates()
{
    QFETCH(qint64, milliseconds);
    QFETCH(QByteArray, text);
    WidgetSnapshot snapshot = richSnapshot();
    snapshot.writtenAt = TimePoint(std::chrono::milliseconds(milliseconds));
    QVERIFY(encodeWidgetSnapshot(snapshot).value().startsWith(QByteArray("{\"writtenAt\":\"" + text + "\",")));
}

void WidgetSnapshotTest::notFiniteNumbersAreFailures_data()
{
    QTest::addColumn<double>("price");
    QTest::addColumn<double>("change");
    const double infinity = std::numeric_limits<double>::infinity();
    QTest::newRow("infinite price") << infinity << 1.0;
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << 1.0;
    QTest::newRow("infinite change") << 1.0 << -infinity;
}

void WidgetSnapshotTest::notFiniteNumbersAreFailures()
{
    QFETCH(double, price);
    QFETCH(double, change);
    WidgetSnapshot snapshot = richSnapshot();
    snapshot.quotes[QStringLiteral("solana")] = quote(price, change);
    const Result<QByteArray> document = encodeWidgetSnapshot(snapshot);
    QVERIFY(!document);
    QCOMPARE(description(document.error()), QStringLiteral("quotes.solana.%1: not a finite number")
                                                .arg(std::isfinite(price) ? u"change24hPercent" : u"price"));
}

void WidgetSnapshotTest::numbersRoundTripExactly()
{
    WidgetSnapshot snapshot = richSnapshot();
    for (const double price : {0.1 + 0.2, 5e-324, 1.7976931348623157e308, 1e22, 123456789.123456789}) {
        snapshot.quotes[QStringLiteral("bitcoin")].price = price;
        const Result<WidgetSnapshot> decoded = decodeWidgetSnapshot(encodeWidgetSnapshot(snapshot).value());
        QCOMPARE(decoded->quotes.at(QStringLiteral("bitcoin")).price, price);
        QVERIFY(decoded->quotes == snapshot.quotes);
    }
}

void WidgetSnapshotTest::decodesWhatItEncodes()
{
    QCOMPARE(decodeWidgetSnapshot(encodeWidgetSnapshot(richSnapshot()).value()).value(), richSnapshot());
}

void WidgetSnapshotTest::decodesChangesThatAreNull()
{
    const QByteArray document = expectedRich().replace("-1.25", "null");
    QCOMPARE(decodeWidgetSnapshot(document)->quotes.at(QStringLiteral("bitcoin")), quote(67432.1));
}

void WidgetSnapshotTest::decodingIsStrict_data()
{
    QTest::addColumn<QByteArray>("document");
    const auto without = [](const char *text) { return expectedRich().replace(text, ""); };
    const auto with = [](const char *before, const char *after) { return expectedRich().replace(before, after); };
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("array") << QByteArray("[]");
    QTest::newRow("cut") << expectedRich().chopped(1);
    QTest::newRow("tail") << expectedRich() + "x";
    QTest::newRow("no date") << without(R"("writtenAt":"2026-01-31T08:15:00Z",)");
    QTest::newRow("no language") << without(R"("language":"zh-Hant",)");
    QTest::newRow("no switch") << without(R"("colorByChange":false,)");
    QTest::newRow("no up color") << without(R"("upColorHex":"#123456",)");
    QTest::newRow("no down color") << without(R"("downColorHex":"#ABCDEF",)");
    QTest::newRow("no displayed coin") << without(R"("displayedCoinId":"ethereum",)");
    QTest::newRow("no watchlist") << without(R"("watchlist":["ethereum","bitcoin"],)");
    QTest::newRow("quotes renamed") << with("\"quotes\"", "\"quote\"");
    QTest::newRow("currency renamed") << with("\"currency\"", "\"money\"");
    QTest::newRow("date as number") << with("\"2026-01-31T08:15:00Z\"", "1");
    QTest::newRow("date without time zone") << with("08:15:00Z", "08:15:00");
    QTest::newRow("date with fraction") << with("08:15:00Z", "08:15:00.5Z");
    QTest::newRow("year beyond the clock") << with("2026-01-31", "9999-12-31");
    QTest::newRow("year before the clock") << with("2026-01-31", "0001-01-01");
    QTest::newRow("no such day") << with("2026-01-31", "2026-02-31");
    QTest::newRow("unknown language") << with("zh-Hant", "tlh");
    QTest::newRow("switch as number") << with("false", "0");
    QTest::newRow("watchlist of numbers") << with("[\"ethereum\",", "[1,");
    QTest::newRow("watchlist as object") << with("[\"ethereum\",\"bitcoin\"]", "{}");
    QTest::newRow("quotes as array") << with("\"quotes\":{", "\"other\":{}, \"quotes\":[1], \"rest\":{");
    QTest::newRow("quote without price") << with("{\"price\":0.1}", "{}");
    QTest::newRow("quote as number") << with("{\"price\":0.1}", "0.1");
    QTest::newRow("price as text") << with("\"price\":0.1", "\"price\":\"0.1\"");
    QTest::newRow("change as text") << with("-1.25", "\"-1.25\"");
    QTest::newRow("nested without end") << QByteArray(1000000, '[');
    QTest::newRow("too large") << expectedRich() + QByteArray(8 * 1024 * 1024, ' ');
}

void WidgetSnapshotTest::decodingIsStrict()
{
    QFETCH(QByteArray, document);
    QVERIFY(decodeWidgetSnapshot(expectedRich()));
    QVERIFY(!decodeWidgetSnapshot(document));
}

TICKWISE_TEST(WidgetSnapshotTest)
#include "WidgetSnapshotTest.moc"
