#include "support/json/Json.h"

#include "doubles/TestProgram.h"
#include "support/json/JsonRepair.h"

#include <limits>

using namespace tickwise;

namespace {

DecodingError decodingError(const auto &result)
{
    return result ? DecodingError{QStringLiteral("no error"), -1} : std::get<DecodingError>(result.error());
}

} // namespace

class JsonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refusesWhatIsNotJson_data();
    void refusesWhatIsNotJson();
    void lastOfTwoEqualKeysHolds();
    void refusesOrRepairs_data();
    void refusesOrRepairs();
    void repairs_data();
    void repairs();
    void sizeLimit();
    void deepNesting();
    void keepsEveryText_data();
    void keepsEveryText();
    void encodesInOrder();
    void encodesNumbersExactly_data();
    void encodesNumbersExactly();
    void refusesNotFinite_data();
    void refusesNotFinite();
};

void JsonTest::refusesWhatIsNotJson_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<qint64>("offset");
    QTest::newRow("empty") << QByteArray() << qint64{1};
    QTest::newRow("text") << QByteArray("nonsense") << qint64{2};
    QTest::newRow("cut off") << QByteArray(R"({"a": 1)") << qint64{8};
    QTest::newRow("two values") << QByteArray("{} {}") << qint64{4};
    QTest::newRow("NUL after the value") << QByteArray("{}\0x", 4) << qint64{3};
    QTest::newRow("NUL only") << QByteArray(1, '\0') << qint64{1};
    QTest::newRow("invalid UTF-8") << QByteArray("[\"\xff\"]") << qint64{3};
    QTest::newRow("invalid escape") << QByteArray(R"(["\u12g4"])") << qint64{7};
    QTest::newRow("after repairs") << QByteArray(R"([1e999, "\ud800", x])") << qint64{19};
}

void JsonTest::refusesWhatIsNotJson()
{
    QFETCH(QByteArray, document);
    QFETCH(qint64, offset);
    const DecodingError repaired = decodingError(parseJson(document, JsonFaults::repair));
    QCOMPARE(repaired.text, QStringLiteral("not valid JSON"));
    QCOMPARE(repaired.offset, std::optional(offset));
    QVERIFY(!parseJson(document).has_value());
}

void JsonTest::lastOfTwoEqualKeysHolds()
{
    QCOMPARE(parseJson(R"({"a": 1, "b": 0, "a": 2})").value()["a"].get<int>(), 2);
}

void JsonTest::refusesOrRepairs_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("strict");
    const QString range = QStringLiteral("a number is out of range");
    QTest::newRow("overflow") << QByteArray("[1e999]") << range;
    QTest::newRow("integer") << '[' + QByteArray(400, '9') + ']' << range;
    QTest::newRow("high surrogate") << QByteArray(R"(["\ud800"])") << QStringLiteral("not valid JSON");
    QTest::newRow("low surrogate") << QByteArray(R"(["\udc00"])") << QStringLiteral("not valid JSON");
}

void JsonTest::refusesOrRepairs()
{
    QFETCH(QByteArray, document);
    QCOMPARE(parseJson(document, JsonFaults::repair).has_value(), true);
    QTEST(decodingError(parseJson(document)).text, "strict");
}

void JsonTest::repairs_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QByteArray>("repaired");
    const auto row = [](const char *document, const char *repaired) {
        QTest::newRow(document) << QByteArray(document) << QByteArray(repaired);
    };
    row("1e999", "null ");
    row("[-1.5E+400,0.1e999]", "[null     ,null   ]");
    row("0.001e312", "null     ");
    row("0.001e311", "0.001e311");
    row("[100e306,100e307,0.18e309,0.17e309]", "[100e306,null   ,null    ,0.17e309]");
    row("1e99999999999999999999", "null                  ");
    row("[1e-99999999999999999999,5e-325,-0.1e-999]", "[1e-99999999999999999999,5e-325,-0.1e-999]");
    row("[1e308,1e-999,0e999,-0.0,12]", "[1e308,1e-999,0e999,-0.0,12]");
    row("[1.7976931348623157e308,1.8e308]", "[1.7976931348623157e308,null   ]");
    row("[01e999,1.e999,.5e999,1e999x,+1e999]", "[01e999,1.e999,.null ,null x,+null ]");
    row("[1e+,1e,-,--1e999,1e99e9]", "[1e+,1e,-,--1e999,1e99e9]");
    row(R"("1e999 \" 1e999")", R"("1e999 \" 1e999")");
    QTest::newRow("long integer") << QByteArray(400, '9') << "null" + QByteArray(396, ' ');
    QTest::newRow("long small number") << "0." + QByteArray(400, '0') + '1' << "0." + QByteArray(400, '0') + '1';
    row(R"({"1e999":1e999,"\\":1e999})", R"({"1e999":null ,"\\":null })");
    row(R"("\ud800")", R"("\ufffd")");
    row(R"("\uDBFF\uD800\uDC00")", R"("\ufffd\uD800\uDC00")");
    row(R"("\udfff\ud83d\ude00\udc00")", R"("\ufffd\ud83d\ude00\ufffd")");
    row(R"("\ud83dx\ude00")", R"("\ufffdx\ufffd")");
    row(R"("\\ud800 \\\ud800")", R"("\\ud800 \\\ufffd")");
    row(R"("\ud7ff\ue000\u00e9")", R"("\ud7ff\ue000\u00e9")");
    row(R"("\ud80)", R"("\ud80)");
    row(R"("\u-800\ud8 0")", R"("\u-800\ud8 0")");
    row("\"\\", "\"\\");
    row(R"(\ud800)", R"(\ud800)");
}

void JsonTest::repairs()
{
    QFETCH(QByteArray, document);
    QTEST(repairedJson(document), "repaired");
}

void JsonTest::sizeLimit()
{
    QVERIFY(parseJson("[1,2]", JsonFaults::refuse, 5).has_value());
    QCOMPARE(decodingError(parseJson("[1,2]", JsonFaults::refuse, 4)).text,
             QStringLiteral("5 bytes are more than the 4 of the largest document"));
    QVERIFY(encodeJson(JsonDocument{1, 2}, 5).has_value());
    QCOMPARE(decodingError(encodeJson(JsonDocument{1, 2}, 4)).text,
             QStringLiteral("5 bytes are more than the 4 of the largest document"));
    QVERIFY(parseJson(QByteArray(largestJsonDocument - 2, ' ') + "[]").has_value());
    QVERIFY(!parseJson(QByteArray(largestJsonDocument - 1, ' ') + "[]").has_value());
}

void JsonTest::deepNesting()
{
    const QByteArray deep = QByteArray(200000, '[') + QByteArray(200000, ']');
    QVERIFY(parseJson("{\"a\":" + deep + ",\"b\":" + deep + "}").has_value());
    QVERIFY(!parseJson(QByteArray(200000, '[')).has_value());
}

void JsonTest::keepsEveryText_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("byte order mark alone") << QStringLiteral("\ufeff");
    QTest::newRow("byte order mark first") << QStringLiteral("\ufeffa\ufeff");
    QTest::newRow("two byte order marks") << QStringLiteral("\ufeff\ufeffb");
    QTest::newRow("reversed byte order mark") << QStringLiteral("\ufffec");
    QTest::newRow("emoji") << QStringLiteral("😀 é");
    QTest::newRow("NUL and line break") << QString(QChar(0)) + QStringLiteral("\n\u2028");
}

void JsonTest::keepsEveryText()
{
    QFETCH(QString, text);
    QCOMPARE(textFromUtf8(utf8(text)), text);
    const QByteArray document = encodeJson(JsonDocument{utf8(text)}).value();
    QCOMPARE(textFromUtf8(parseJson(document).value().front().get<std::string>()), text);
}

void JsonTest::encodesInOrder()
{
    JsonDocument document;
    document["z"] = true;
    document["a"] = JsonDocument::array({1, nullptr});
    document["é\n"] = {{"y", 1.5}, {"b", "x"}};
    QCOMPARE(encodeJson(document).value(), QByteArray("{\"z\":true,\"a\":[1,null],\"é\\n\":{\"y\":1.5,\"b\":\"x\"}}"));
}

void JsonTest::encodesNumbersExactly_data()
{
    QTest::addColumn<double>("number");
    for (const double number : {0.1, 1.0 / 3, 1e300, 5e-324, std::numeric_limits<double>::max(), 9007199254740993.0})
        QTest::addRow("%.17g", number) << number;
}

void JsonTest::encodesNumbersExactly()
{
    QFETCH(double, number);
    QVERIFY(parseJson(encodeJson(JsonDocument{number}).value()).value().front().get<double>() == number);
}

void JsonTest::refusesNotFinite_data()
{
    QTest::addColumn<double>("number");
    QTest::newRow("infinity") << std::numeric_limits<double>::infinity();
    QTest::newRow("minus infinity") << -std::numeric_limits<double>::infinity();
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN();
}

void JsonTest::refusesNotFinite()
{
    QFETCH(double, number);
    JsonDocument document;
    document["list"] = JsonDocument::array({1.0, {{"price", 2.0}}, {{"price", number}}});
    QCOMPARE(decodingError(encodeJson(document)).text, QStringLiteral("list[2].price: not a finite number"));
}

TICKWISE_TEST(JsonTest)
#include "JsonTest.moc"
