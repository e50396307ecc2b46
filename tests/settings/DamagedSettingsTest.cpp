#include "doubles/TestProgram.h"
#include "settings/AppSettingsCoding.h"
#include "support/json/Json.h"

using namespace tickwise;

namespace {

AppSettings decodedOf(const QByteArray &document)
{
    return decodeSettings(document).value();
}

DecodingError decodingError(const QByteArray &document)
{
    const Result<AppSettings> settings = decodeSettings(document);
    return settings ? DecodingError{QStringLiteral("none"), -1} : std::get<DecodingError>(settings.error());
}

QByteArray nested(const char *open, const char *close, int depth)
{
    return QByteArray(open).repeated(depth) + QByteArray(close).repeated(depth);
}

} // namespace

/// Documents that no version wrote.
class DamagedSettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refused_data();
    void refused();
    void refusalNamesThePlaceOnly();
    void halfSurrogatePairs();
    void byteOrderMarkIsKept();
    void overflowingNumbers_data();
    void overflowingNumbers();
    void coinsAmongOtherValues_data();
    void coinsAmongOtherValues();
    void hostileDocuments_data();
    void hostileDocuments();
    void sizeLimit();
};

void DamagedSettingsTest::refused_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("text");
    const QString notJson = QStringLiteral("not valid JSON");
    const QString notObject = QStringLiteral("not an object");
    QTest::newRow("empty") << QByteArray() << notJson;
    QTest::newRow("text") << QByteArray("not json") << notJson;
    QTest::newRow("cut off") << QByteArray(R"({"language": "en")") << notJson;
    QTest::newRow("second value") << QByteArray("{} {}") << notJson;
    QTest::newRow("comment") << QByteArray("/* */ {}") << notJson;
    QTest::newRow("trailing comma") << QByteArray(R"({"language": "en",})") << notJson;
    QTest::newRow("invalid UTF-8") << QByteArray("{\"language\": \"\xc3\x28\"}") << notJson;
    QTest::newRow("overlong UTF-8") << QByteArray("{\"language\": \"\xc0\xaf\"}") << notJson;
    QTest::newRow("NUL bytes") << QByteArray(16, '\0') << notJson;
    QTest::newRow("overflow, then cut off") << QByteArray(R"({"pollingInterval": 1e999, )") << notJson;
    QTest::newRow("overflow, then no number") << QByteArray(R"({"a": 1e999, "b": 01e999})") << notJson;
    QTest::newRow("array") << QByteArray("[]") << notObject;
    QTest::newRow("null") << QByteArray("null") << notObject;
    QTest::newRow("number") << QByteArray("12") << notObject;
    QTest::newRow("overflowing number") << QByteArray("1e999") << notObject;
    QTest::newRow("string") << QByteArray("\"{}\"") << notObject;
}

void DamagedSettingsTest::refused()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, text);
    QCOMPARE(decodingError(document).text, text);
}

void DamagedSettingsTest::refusalNamesThePlaceOnly()
{
    const QByteArray secret(1000, 'k');
    const DecodingError error = decodingError("{\"language\": " + secret + "}");
    QCOMPARE(error.offset, std::optional<qint64>(14));
    QCOMPARE(description(Error(error)), QStringLiteral("not valid JSON at byte 14"));
}

void DamagedSettingsTest::halfSurrogatePairs()
{
    const AppSettings settings = decodedOf(R"({"\udc00": "\ud800", "displayedCoinId": "a\ud800b", "language": "en"})");
    QCOMPARE(settings.displayedCoinId, QStringLiteral("a\ufffdb"));
    QCOMPARE(settings.language, AppLanguage::en);
}

void DamagedSettingsTest::byteOrderMarkIsKept()
{
    const AppSettings settings =
        decodedOf(R"({"displayedCoinId": "\ufeffbitcoin", "addedCoins": [{"coinId": "\ufeffx"}]})");
    QCOMPARE(settings.displayedCoinId, QStringLiteral("\ufeffbitcoin"));
    QCOMPARE(settings.watchlistCoins.front().coinId, QStringLiteral("\ufeffx"));
    QVERIFY(decodedOf(encodeSettings(settings).value()) == settings);
}

void DamagedSettingsTest::overflowingNumbers_data()
{
    QTest::addColumn<QByteArray>("number");
    QTest::addColumn<double>("interval");
    QTest::newRow("too large") << QByteArray("1e999") << 10.0;
    QTest::newRow("too large, with a fraction") << QByteArray("0.1e999") << 10.0;
    QTest::newRow("too large, negative") << QByteArray("-1.5E+400") << 10.0;
    QTest::newRow("long integer") << QByteArray(400, '9') << 10.0;
    QTest::newRow("integer beyond 64 bits") << QByteArray("100000000000000000000") << 1e20;
    QTest::newRow("integer of 64 bits") << QByteArray("18446744073709551615") << 18446744073709551615.0;
    QTest::newRow("too small") << QByteArray("1e-999") << 0.0;
    QTest::newRow("largest") << QByteArray("1.7976931348623157e308") << 1.7976931348623157e308;
}

void DamagedSettingsTest::overflowingNumbers()
{
    QFETCH(QByteArray, number);
    QFETCH(double, interval);
    // Texts that look like numbers and an escaped quote must pass through untouched, on both sides of the number.
    const AppSettings settings =
        decodedOf(R"({"displayedCoinId": "1e999 \" -1e999", "x": 1e999, "pollingInterval": )" + number +
                  R"(,"customUpColorHex":"\\","desktopOverlayBackgroundOpacity":1e-1})");
    QCOMPARE(settings.displayedCoinId, QStringLiteral("1e999 \" -1e999"));
    QCOMPARE(settings.pollingInterval, interval);
    QCOMPARE(settings.customUpColorHex, QStringLiteral("\\"));
    QCOMPARE(settings.desktopOverlayBackgroundOpacity, 0.1);
}

void DamagedSettingsTest::coinsAmongOtherValues_data()
{
    QTest::addColumn<QByteArray>("unread");
    QTest::newRow("nothing") << QByteArray("null");
    QTest::newRow("an integer beyond 64 bits") << QByteArray("100000000000000000000");
    QTest::newRow("deep arrays") << nested("[", "]", 2000);
}

void DamagedSettingsTest::coinsAmongOtherValues()
{
    QFETCH(QByteArray, unread);
    const AppSettings settings =
        decodedOf(R"({"addedCoins": [1, "a", [{"coinId": "nested"}], {"coinId": ["x"]}, {"coinId": 7},
        {"coinId": "a", "coinId": "b"}, null, {"coinId": "c", "notificationThreshold": [{}]}, {"coinId": "b"}], "a": )" +
                  unread + "}");
    QStringList ids;
    for (const WatchlistCoin &coin : settings.watchlistCoins)
        ids << coin.coinId;
    QCOMPARE(ids, QStringList({QStringLiteral("b"), QStringLiteral("c"), QStringLiteral("b")}));
}

void DamagedSettingsTest::hostileDocuments_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<bool>("decodes");
    constexpr int deep = 1000000;
    QTest::newRow("open arrays") << QByteArray(deep, '[') << false;
    QTest::newRow("deep arrays") << "{\"language\": " + nested("[", "]", deep) + "}" << true;
    QTest::newRow("deep objects") << "{\"addedCoins\": [" + nested("{\"a\":[", "]}", deep / 5) + "]}" << true;
    QTest::newRow("deep arrays, overflow") << "{\"a\": 1e999, \"b\": " + nested("[", "]", deep) + "}" << true;
    const QByteArray overflows = QByteArray("1e999,").repeated(100000);
    QTest::newRow("many overflows") << "{\"a\": [" + overflows + "1e999]}" << true;
    QTest::newRow("overflows for coins") << "{\"addedCoins\": [" + overflows + "1e999]}" << true;
    QTest::newRow("many keys") << "{" + QByteArray("\"launchAtLogin\":null,").repeated(100000) + "\"a\":0}" << true;
    QByteArray distinct = "{";
    for (int i = 0; i < 200000; ++i)
        distinct += '"' + QByteArray::number(i) + "\":0,";
    QTest::newRow("many distinct keys") << distinct + "\"a\":0}" << true;
}

void DamagedSettingsTest::hostileDocuments()
{
    QFETCH(QByteArray, document);
    QFETCH(bool, decodes);
    const Result<AppSettings> settings = decodeSettings(document);
    QCOMPARE(settings.has_value(), decodes);
    if (decodes)
        QCOMPARE(settings->launchAtLogin, false);
}

void DamagedSettingsTest::sizeLimit()
{
    const QByteArray start = R"({"pollingInterval": 3)";
    const QByteArray largest = start + QByteArray(largestJsonDocument - start.size() - 1, ' ') + "}";
    QCOMPARE(decodedOf(largest).pollingInterval, 3.0);
    const DecodingError error = decodingError(largest + " ");
    QVERIFY2(error.text.contains(QStringLiteral("4194305 bytes")), qPrintable(error.text));
    // Not even looked at: 50 MB of garbage are refused for their size.
    QVERIFY(decodingError(QByteArray(50000000, '[')).text.contains(QStringLiteral("50000000 bytes")));
}

TICKWISE_TEST(DamagedSettingsTest)
#include "DamagedSettingsTest.moc"
