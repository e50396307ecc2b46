#include "support/json/JsonReader.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

namespace {

enum class Color
{
    green,
    red
};

QString rawValue(Color color)
{
    return color == Color::green ? QStringLiteral("green") : QStringLiteral("red");
}

JsonValue parsed(const QByteArray &document)
{
    return parseJson(document).value();
}

QString errorOf(const JsonReader &reader)
{
    return reader.error() ? description(*reader.error()) : QStringLiteral("no error");
}

} // namespace

template<>
std::vector<Color> tickwise::allCases<Color>()
{
    return {Color::green, Color::red};
}

class JsonReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decodesTypes_data();
    void decodesTypes();
    void integers_data();
    void integers();
    void readsEveryMember();
    void missingIsNotNull();
    void strictErrors_data();
    void strictErrors();
    void firstErrorIsKept();
    void placeInTheDocument();
    void toleratesEverything_data();
    void toleratesEverything();
    void containers();
};

void JsonReaderTest::decodesTypes_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QByteArray>("types"); // those that the value decodes as
    const auto row = [](const char *json, const char *types) {
        QTest::newRow(json) << QByteArray(json) << QByteArray(types);
    };
    row("true", "bool ");
    row("0", "number integer ");
    row("0.5", "number ");
    row("\"red\"", "text color ");
    row("\"Red\"", "text ");
    row("\"1\"", "text ");
    row("null", "");
    row("[1]", "");
    row("{}", "");
}

void JsonReaderTest::decodesTypes()
{
    QFETCH(QByteArray, json);
    const JsonValue value = parsed(json);
    QByteArray decoded;
    decoded += decodeJson<bool>(value) ? "bool " : "";
    decoded += decodeJson<double>(value) ? "number " : "";
    decoded += decodeJson<std::int64_t>(value) ? "integer " : "";
    decoded += decodeJson<QString>(value) ? "text " : "";
    decoded += decodeJson<Color>(value) ? "color " : "";
    QTEST(decoded, "types");
}

void JsonReaderTest::integers_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<std::optional<std::int64_t>>("value");
    const auto row = [](const char *json, std::optional<std::int64_t> value) {
        QTest::newRow(json) << QByteArray(json) << value;
    };
    row("0", 0);
    row("-5", -5);
    row("9223372036854775807", std::numeric_limits<std::int64_t>::max());
    row("9223372036854775808", std::nullopt);
    row("-9223372036854775808", std::numeric_limits<std::int64_t>::min());
    row("-9223372036854775809", std::nullopt);
    row("18446744073709551616", std::nullopt);
    row("2.0", 2);
    row("-1e3", -1000);
    row("2.5", std::nullopt);
    row("9007199254740991.0", 9007199254740991);
    row("9007199254740992.0", 9007199254740992);
    row("9007199254740994.0", std::nullopt);
    row("-9007199254740992.0", -9007199254740992);
    row("-9007199254740994.0", std::nullopt);
    row("1e18", std::nullopt);
    row("1e300", std::nullopt);
}

void JsonReaderTest::integers()
{
    QFETCH(QByteArray, json);
    QFETCH(std::optional<std::int64_t>, value);
    const Result<std::int64_t> decoded = decodeJson<std::int64_t>(parsed(json));
    QCOMPARE(decoded.has_value(), value.has_value());
    if (value)
        QCOMPARE(*decoded, *value);
}

void JsonReaderTest::readsEveryMember()
{
    const JsonValue json = parsed(R"({"on": true, "price": 1.5, "name": "a", "color": "red", "rank": 7})");
    JsonReader reader(json);
    QCOMPARE(reader.required<bool>("on"), true);
    QCOMPARE(reader.required<double>("price"), 1.5);
    QCOMPARE(reader.required<QString>("name"), QStringLiteral("a"));
    QVERIFY(reader.required<Color>("color") == Color::red);
    QCOMPARE(reader.optional<std::int64_t>("rank"), std::optional<std::int64_t>(7));
    QCOMPARE(reader.ifDecodable<double>("price"), std::optional(1.5));
    QCOMPARE(reader.valueOr("price", 9.0), 1.5);
    QCOMPARE(reader.result(3), Result<int>(3));
}

void JsonReaderTest::missingIsNotNull()
{
    const JsonValue json = parsed(R"({"nothing": null})");
    JsonReader reader(json);
    QVERIFY(!reader.optional<double>("nothing"));
    QVERIFY(!reader.optional<double>("missing"));
    QVERIFY(reader.member("nothing") && reader.member("nothing")->is_null());
    QVERIFY(!reader.member("missing"));
    QVERIFY(!reader.error());
}

void JsonReaderTest::strictErrors_data()
{
    QTest::addColumn<std::function<void(JsonReader &)>>("read");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *text, const std::function<void(JsonReader &)> &read) {
        QTest::newRow(text) << read << QString::fromLatin1(text);
    };
    row("missing: missing", [](JsonReader &reader) { reader.required<double>("missing"); });
    row("nothing: not a number", [](JsonReader &reader) { reader.required<double>("nothing"); });
    row("text: not a truth value", [](JsonReader &reader) { reader.required<bool>("text"); });
    row("text: not an integer", [](JsonReader &reader) { reader.optional<std::int64_t>("text"); });
    row("text: not a known value", [](JsonReader &reader) { reader.optional<Color>("text"); });
    row("missing: missing", [](JsonReader &reader) { reader.array("missing"); });
    row("list: not an object", [](JsonReader &reader) { reader.object("list"); });
    row("text: not an array", [](JsonReader &reader) { reader.array("text"); });
    row("text: odd", [](JsonReader &reader) { reader.fail("text", QStringLiteral("odd")); });
}

void JsonReaderTest::strictErrors()
{
    QFETCH(std::function<void(JsonReader &)>, read);
    const JsonValue json = parsed(R"({"nothing": null, "text": "x", "list": [1]})");
    JsonReader reader(json);
    read(reader);
    QTEST(errorOf(reader), "text");
    QVERIFY(!reader.result(1).has_value());
}

void JsonReaderTest::firstErrorIsKept()
{
    const JsonValue json = parsed("{}");
    JsonReader reader(json);
    QCOMPARE(reader.required<double>("first"), 0.0);
    QCOMPARE(reader.required<QString>("second"), QString());
    QCOMPARE(errorOf(reader), QStringLiteral("first: missing"));
}

void JsonReaderTest::placeInTheDocument()
{
    const JsonValue json = parsed("[{}, 5]");
    JsonReader reader(json[0], QStringLiteral("coins[0]"));
    reader.required<QString>("id");
    QCOMPARE(errorOf(reader), QStringLiteral("coins[0].id: missing"));
    QCOMPARE(errorOf(JsonReader(json[1], QStringLiteral("coins[1]"))), QStringLiteral("coins[1]: not an object"));
    QCOMPARE(errorOf(JsonReader(json)), QStringLiteral("not an object"));
    QVERIFY(!JsonReader(json).member("0"));
}

void JsonReaderTest::toleratesEverything_data()
{
    QTest::addColumn<QByteArray>("json");
    for (const char *json : {"{}", R"({"price": null})", R"({"price": "1"})", R"({"price": [1]})", "[1]", "null", "7"})
        QTest::newRow(json) << QByteArray(json);
}

void JsonReaderTest::toleratesEverything()
{
    QFETCH(QByteArray, json);
    const JsonValue value = parsed(json);
    const JsonReader reader(value);
    QCOMPARE(reader.ifDecodable<double>("price"), std::optional<double>());
    QCOMPARE(reader.valueOr("price", 2.5), 2.5);
    QCOMPARE(reader.error().has_value(), !value.is_object());
}

void JsonReaderTest::containers()
{
    const JsonValue json = parsed(R"({"list": [1, 2], "map": {"a": 1}})");
    JsonReader reader(json);
    QCOMPARE(reader.array("list").size(), 2U);
    QCOMPARE(reader.object("map").size(), 1U);
    QVERIFY(!reader.error());
    QVERIFY(reader.array("map").empty());
}

TICKWISE_TEST(JsonReaderTest)
#include "JsonReaderTest.moc"
