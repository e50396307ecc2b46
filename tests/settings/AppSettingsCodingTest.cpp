#include "settings/AppSettingsCoding.h"

#include "doubles/LogCapture.h"
#include "doubles/TestData.h"
#include "doubles/TestProgram.h"
#include "settings/RecordDecoding.h"

#include <QRegularExpression>

#include <limits>

using namespace tickwise;
using tickwise::test::readData;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

using Change = std::function<void(AppSettings &)>;

AppSettings decoded(const QByteArray &document)
{
    return decodeSettings(document).value();
}

QByteArray encoded(const AppSettings &settings)
{
    return encodeSettings(settings).value();
}

WatchlistCoin coin(const char *id, CoinAlertKind kind, double threshold)
{
    return {QString::fromLatin1(id), kind, threshold};
}

AppSettings fullRecord()
{
    AppSettings settings;
    settings.launchAtLogin = true;
    settings.language = AppLanguage::zhHans;
    settings.baseCurrency = BaseCurrency::cny;
    settings.priceColorEnabled = false;
    settings.colorScheme = PriceColorScheme::custom;
    settings.customUpColorHex = QStringLiteral("#00FF00");
    settings.customDownColorHex = QStringLiteral("#FF0000");
    settings.priceChangeNotificationEnabled = false;
    settings.pollingInterval = 30;
    settings.showMenuBarBackground = true;
    settings.menuBarContent = MenuBarContent::icon;
    settings.displayedCoinId = QStringLiteral("solana");
    settings.desktopOverlayEnabled = true;
    settings.desktopOverlayBackgroundOpacity = 0.35;
    settings.desktopOverlayTextSize = DesktopOverlayTextSize::large;
    settings.desktopOverlayTopLeft = DesktopOverlayOrigin{1532.5, 1056};
    settings.watchlistCoins = {coin("solana", CoinAlertKind::above, 250.5),
                               coin("bitcoin", CoinAlertKind::below, 60000),
                               coin("dogecoin", CoinAlertKind::notSet, 2)};
    return settings;
}

} // namespace

class AppSettingsCodingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fields_data();
    void fields();
    void watchlist_data();
    void watchlist();
    void legacyOverlayCorner_data();
    void legacyOverlayCorner();
    void storedDocuments_data();
    void storedDocuments();
    void faultsAreSilent();
    void encodesInKeyOrder();
    void encodesExactText();
    void roundTrip_data();
    void roundTrip();
    void notFinite_data();
    void notFinite();
    void tooLargeToReadAgain();
    void lossyDecodable();
};

void AppSettingsCodingTest::fields_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<Change>("expected");
    const auto row = [](
                         const char *document, Change expected = [](AppSettings &) {}) {
        QTest::newRow(document) << QByteArray(document) << expected;
    };
    row("{}");
    row(R"({"unknown": {"key": [1, 2]}})");
    row(R"({"launchAtLogin": true})", [](AppSettings &s) { s.launchAtLogin = true; });
    row(R"({"launchAtLogin": 1})");
    row(R"({"launchAtLogin": "true"})");
    row(R"({"launchAtLogin": null})");
    row(R"({"language": "zh-Hant"})", [](AppSettings &s) { s.language = AppLanguage::zhHant; });
    row(R"({"language": "zhHant"})");
    row(R"({"language": 3})");
    row(R"({"language": null})");
    row(R"({"baseCurrency": "JPY"})", [](AppSettings &s) { s.baseCurrency = BaseCurrency::jpy; });
    row(R"({"baseCurrency": "CHF"})");
    row(R"({"baseCurrency": "usd"})");
    row(R"({"baseCurrency": "eur"})");
    row(R"({"baseCurrency": ["EUR"]})");
    row(R"({"priceColorEnabled": false})", [](AppSettings &s) { s.priceColorEnabled = false; });
    row(R"({"priceColorEnabled": 0})");
    row(R"({"colorScheme": "custom"})", [](AppSettings &s) { s.colorScheme = PriceColorScheme::custom; });
    row(R"({"colorScheme": "rainbow"})");
    row(R"({"customUpColorHex": ""})", [](AppSettings &s) { s.customUpColorHex = QString(); });
    row(R"({"customUpColorHex": "not a color"})",
        [](AppSettings &s) { s.customUpColorHex = QStringLiteral("not a color"); });
    row(R"({"customUpColorHex": 2932100})");
    row(R"({"customDownColorHex": "#000"})", [](AppSettings &s) { s.customDownColorHex = QStringLiteral("#000"); });
    row(R"({"customDownColorHex": null})");
    row(R"({"priceChangeNotificationEnabled": false})",
        [](AppSettings &s) { s.priceChangeNotificationEnabled = false; });
    row(R"({"priceChangeNotificationEnabled": "no"})");
    row(R"({"pollingInterval": 1})", [](AppSettings &s) { s.pollingInterval = 1; });
    row(R"({"pollingInterval": -3.5})", [](AppSettings &s) { s.pollingInterval = -3.5; });
    row(R"({"pollingInterval": 0})", [](AppSettings &s) { s.pollingInterval = 0; });
    row(R"({"pollingInterval": 18446744073709551615})",
        [](AppSettings &s) { s.pollingInterval = 18446744073709551615.0; });
    row(R"({"pollingInterval": "10"})");
    row(R"({"pollingInterval": true})");
    row(R"({"showMenuBarBackground": true})", [](AppSettings &s) { s.showMenuBarBackground = true; });
    row(R"({"showMenuBarBackground": {}})");
    row(R"({"menuBarContent": "icon"})", [](AppSettings &s) { s.menuBarContent = MenuBarContent::icon; });
    row(R"({"menuBarContent": "Icon"})");
    row(R"({"desktopOverlayEnabled": true})", [](AppSettings &s) { s.desktopOverlayEnabled = true; });
    row(R"({"desktopOverlayEnabled": 1.0})");
    row(R"({"desktopOverlayBackgroundOpacity": -0.5})", [](AppSettings &s) { s.desktopOverlayBackgroundOpacity = 0; });
    row(R"({"desktopOverlayBackgroundOpacity": 7})", [](AppSettings &s) { s.desktopOverlayBackgroundOpacity = 1; });
    row(R"({"desktopOverlayBackgroundOpacity": 0.4})", [](AppSettings &s) { s.desktopOverlayBackgroundOpacity = 0.4; });
    row(R"({"desktopOverlayBackgroundOpacity": "0.4"})");
    row(R"({"desktopOverlayTextSize": "large"})",
        [](AppSettings &s) { s.desktopOverlayTextSize = DesktopOverlayTextSize::large; });
    row(R"({"desktopOverlayTextSize": "huge"})");
    row(R"({"displayedCoinId": "no-such-coin"})",
        [](AppSettings &s) { s.displayedCoinId = QStringLiteral("no-such-coin"); });
    row(R"({"displayedCoinId": 7})");
    row(R"({"displayedCoinId": "a", "displayedCoinId": "b"})",
        [](AppSettings &s) { s.displayedCoinId = QStringLiteral("b"); });
    row(R"({"pollingInterval": 3, "pollingInterval": null})");
    row(R"({"watchlistCoins": []})");
}

void AppSettingsCodingTest::fields()
{
    QFETCH(QByteArray, document);
    QFETCH(Change, expected);
    AppSettings settings;
    expected(settings);
    QVERIFY(decoded(document) == settings);
}

void AppSettingsCodingTest::watchlist_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<std::vector<WatchlistCoin>>("coins");
    using enum CoinAlertKind;
    const auto row = [](const char *value, std::vector<WatchlistCoin> coins) {
        QTest::newRow(value) << QByteArray(value) << coins;
    };
    row("[]", {});
    row("\"x\"", {});
    row("null", {});
    row("{}", {});
    row("5", {});
    row(R"([{"coinId": "a", "alertKind": "above", "notificationThreshold": 5}])", {coin("a", above, 5)});
    row(R"([{"alertKind": "above"}, {"coinId": "b"}])", {coin("b", change, 2)});
    row(R"([{"coinId": null}, {"coinId": 4}, null, [], "c", {"coinId": "d"}])", {coin("d", change, 2)});
    row(R"([{"coinId": "a", "alertKind": "sideways", "notificationThreshold": 9}])", {coin("a", change, 9)});
    row(R"([{"coinId": "a", "alertKind": null}, {"coinId": "b", "alertKind": 1}])",
        {coin("a", change, 2), coin("b", change, 2)});
    row(R"([{"coinId": "a", "alertKind": "below"}])", {coin("a", below, 2)});
    row(R"([{"coinId": "a", "alertKind": "notSet", "notificationThreshold": "7"}])", {coin("a", notSet, 2)});
    row(R"([{"coinId": "a", "notificationThreshold": -1}])", {coin("a", change, -1)});
    row(R"([{"coinId": "b"}, {"coinId": "a"}, {"coinId": "b"}])",
        {coin("b", change, 2), coin("a", change, 2), coin("b", change, 2)});
}

void AppSettingsCodingTest::watchlist()
{
    QFETCH(QByteArray, value);
    QFETCH(std::vector<WatchlistCoin>, coins);
    QVERIFY(decoded("{\"addedCoins\": " + value + "}").watchlistCoins == coins);
}

void AppSettingsCodingTest::legacyOverlayCorner_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<bool>("present");
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("y");
    const auto row = [](const char *document, bool present, double x = 0, double y = 0) {
        QTest::newRow(document) << QByteArray(document) << present << x << y;
    };
    row(R"({"desktopOverlayOrigin": {"x": 100, "y": 50}, "desktopOverlaySize": "large"})", true, 100, 432);
    row(R"({"desktopOverlayOrigin": {"x": 100, "y": 50}, "desktopOverlaySize": "normal"})", true, 100, 220);
    row(R"({"desktopOverlayOrigin": {"x": 100, "y": 50}, "desktopOverlaySize": "Large"})", true, 100, 220);
    row(R"({"desktopOverlayOrigin": {"x": 100, "y": 50}, "desktopOverlaySize": null})", true, 100, 220);
    row(R"({"desktopOverlayOrigin": {"x": 100, "y": 50}, "desktopOverlaySize": 1})", true, 100, 220);
    row(R"({"desktopOverlayOrigin": {"x": -10.5, "y": -50}})", true, -10.5, 120);
    row(R"({"desktopOverlayOrigin": {"x": 100}})", false);
    row(R"({"desktopOverlayOrigin": {"x": 100, "y": "50"}})", false);
    row(R"({"desktopOverlayOrigin": null, "desktopOverlaySize": "large"})", false);
    row(R"({"desktopOverlaySize": "large"})", false);
    row(R"({"desktopOverlayTopLeft": {"x": 1, "y": 2}, "desktopOverlayOrigin": {"x": 100, "y": 50}})", true, 1, 2);
    row(R"({"desktopOverlayTopLeft": {"x": 1}, "desktopOverlayOrigin": {"x": 100, "y": 50}})", true, 100, 220);
    row(R"({"desktopOverlayTopLeft": null, "desktopOverlayOrigin": {"x": 100, "y": 50}})", true, 100, 220);
    row(R"({"desktopOverlayTopLeft": [1, 2]})", false);
}

void AppSettingsCodingTest::legacyOverlayCorner()
{
    QFETCH(QByteArray, document);
    QFETCH(bool, present);
    QFETCH(double, x);
    QFETCH(double, y);
    const std::optional<DesktopOverlayOrigin> corner = decoded(document).desktopOverlayTopLeft;
    QCOMPARE(corner.has_value(), present);
    if (present)
        QVERIFY((*corner == DesktopOverlayOrigin{x, y}));
}

void AppSettingsCodingTest::storedDocuments_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<AppSettings>("expected");
    AppSettings first;
    first.launchAtLogin = true;
    first.language = AppLanguage::zhHant;
    first.baseCurrency = BaseCurrency::twd;
    first.colorScheme = PriceColorScheme::redUpGreenDown;
    first.pollingInterval = 5;
    first.displayedCoinId = QStringLiteral("ethereum");
    first.desktopOverlayEnabled = true;
    first.desktopOverlayTopLeft = DesktopOverlayOrigin{100, 432};
    first.watchlistCoins = {coin("ethereum", CoinAlertKind::change, 2), coin("solana", CoinAlertKind::change, 5)};
    QTest::newRow("first version") << QStringLiteral("first-version.json") << first;
    QTest::newRow("current version") << QStringLiteral("current-version.json") << fullRecord();
    AppSettings damaged;
    damaged.customDownColorHex.clear();
    damaged.showMenuBarBackground = true;
    damaged.desktopOverlayTopLeft = DesktopOverlayOrigin{40, 230};
    damaged.watchlistCoins = {coin("cardano", CoinAlertKind::change, 2), coin("litecoin", CoinAlertKind::below, 2),
                              coin("litecoin", CoinAlertKind::below, 80)};
    QTest::newRow("damaged") << QStringLiteral("damaged.json") << damaged;
}

void AppSettingsCodingTest::storedDocuments()
{
    QFETCH(QString, file);
    QFETCH(AppSettings, expected);
    const AppSettings settings = decoded(readData(QStringLiteral("settings/") + file));
    QCOMPARE(encoded(settings), encoded(expected));
    QVERIFY(settings == expected);
}

void AppSettingsCodingTest::faultsAreSilent()
{
    const test::LogCapture log;
    QVERIFY(decodeSettings(readData(QStringLiteral("settings/damaged.json"))).has_value());
    QCOMPARE(log.lines().size(), 0U);
}

void AppSettingsCodingTest::encodesInKeyOrder()
{
    const QString text = QString::fromUtf8(encoded(fullRecord()));
    QStringList keys;
    static const QRegularExpression key(QStringLiteral("\"([A-Za-z]+)\":"));
    for (auto match = key.globalMatch(text); match.hasNext();)
        keys.append(match.next().captured(1));
    const QString expected = QStringLiteral(
        "launchAtLogin language baseCurrency priceColorEnabled colorScheme customUpColorHex customDownColorHex "
        "priceChangeNotificationEnabled pollingInterval showMenuBarBackground menuBarContent displayedCoinId "
        "desktopOverlayEnabled desktopOverlayBackgroundOpacity desktopOverlayTextSize desktopOverlayTopLeft x y "
        "addedCoins "
        "coinId alertKind notificationThreshold coinId alertKind notificationThreshold coinId alertKind "
        "notificationThreshold");
    QCOMPARE(keys, expected.split(u' '));
}

void AppSettingsCodingTest::encodesExactText()
{
    QCOMPARE(encoded(fullRecord()), readData(QStringLiteral("settings/current-version.json")).trimmed());
    AppSettings settings = fullRecord();
    settings.desktopOverlayTopLeft.reset();
    settings.watchlistCoins.clear();
    QVERIFY(!encoded(settings).contains("desktopOverlayTopLeft"));
    QVERIFY(encoded(settings).endsWith(R"("addedCoins":[]})"));
}

void AppSettingsCodingTest::roundTrip_data()
{
    QTest::addColumn<AppSettings>("settings");
    QTest::newRow("default") << AppSettings();
    QTest::newRow("full") << fullRecord();
    AppSettings empty;
    empty.watchlistCoins.clear();
    empty.customUpColorHex.clear();
    empty.displayedCoinId.clear();
    QTest::newRow("empty") << empty;
    AppSettings doubles;
    doubles.pollingInterval = 0.1 + 0.2;
    doubles.desktopOverlayBackgroundOpacity = 1.0 / 3;
    doubles.desktopOverlayTopLeft = DesktopOverlayOrigin{-1e-310, 1.7976931348623157e308};
    doubles.watchlistCoins = {coin("a", CoinAlertKind::above, 5e-324),
                              coin("b", CoinAlertKind::below, 9007199254740993.0),
                              coin("c", CoinAlertKind::change, 1e22)};
    QTest::newRow("doubles") << doubles;
    AppSettings texts;
    texts.customUpColorHex = QStringLiteral("\"\\/\b\f\n\r\t\u0001\u007f");
    texts.customDownColorHex = QString(QChar(0)) + QStringLiteral("漲跌 \U0001F680 é");
    texts.displayedCoinId = QStringLiteral("\u2028</script>");
    QTest::newRow("texts") << texts;
    AppSettings many;
    for (const BaseCurrency currency : allCases<BaseCurrency>())
        many.watchlistCoins.push_back({rawValue(currency), CoinAlertKind::notSet, 0});
    QTest::newRow("many coins") << many;
}

void AppSettingsCodingTest::roundTrip()
{
    QFETCH(AppSettings, settings);
    QVERIFY(decoded(encoded(settings)) == settings);
}

void AppSettingsCodingTest::notFinite_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *text, Change change) {
        QTest::newRow(text) << change << QString::fromLatin1(text) + QStringLiteral(": not a finite number");
    };
    row("pollingInterval", [](AppSettings &s) { s.pollingInterval = infinity; });
    row("desktopOverlayBackgroundOpacity", [](AppSettings &s) { s.desktopOverlayBackgroundOpacity = std::nan(""); });
    row("desktopOverlayTopLeft.y", [](AppSettings &s) {
        s.desktopOverlayTopLeft = DesktopOverlayOrigin{0, -infinity};
    });
    row("addedCoins[1].notificationThreshold",
        [](AppSettings &s) { s.watchlistCoins[1].notificationThreshold = std::nan(""); });
}

void AppSettingsCodingTest::notFinite()
{
    QFETCH(Change, change);
    QFETCH(QString, text);
    AppSettings settings;
    change(settings);
    const Result<QByteArray> document = encodeSettings(settings);
    QVERIFY(!document.has_value());
    QCOMPARE(description(document.error()), text);
}

void AppSettingsCodingTest::tooLargeToReadAgain()
{
    AppSettings settings;
    settings.customUpColorHex = QString(largestJsonDocument, u'x');
    QVERIFY(!encodeSettings(settings).has_value());
    settings.customUpColorHex.truncate(largestJsonDocument - 2000);
    QVERIFY(decoded(encoded(settings)) == settings);
}

void AppSettingsCodingTest::lossyDecodable()
{
    QCOMPARE(LossyDecodable<double>::decode(JsonValue::parse("2.5")).value, std::optional(2.5));
    QCOMPARE(LossyDecodable<double>::decode(JsonValue::parse("\"2.5\"")).value, std::optional<double>());
    QVERIFY(!LossyDecodable<WatchlistCoin>::decode(JsonValue::parse("[]")).value);
}

TICKWISE_TEST(AppSettingsCodingTest)
#include "AppSettingsCodingTest.moc"
