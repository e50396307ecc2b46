#include "market/JsonResponse.h"

#include "doubles/TestData.h"
#include "doubles/TestProgram.h"

using namespace tickwise;

namespace {

/// The first bytes of `body`, with the rest still in memory after them.
QByteArray beginning(const QByteArray &body, qsizetype length)
{
    QByteArray shorter(body.constData(), body.size());
    shorter.reserve(body.size() + 64);
    shorter.resize(length);
    return shorter;
}

/// The document written out again, or the error.
std::string outcome(const QByteArray &body)
{
    JsonResponseParser parser;
    const Result<simdjson::dom::element> root = parser.parse(body);
    return root ? simdjson::minify(*root) : description(root.error()).toStdString();
}

} // namespace

class JsonResponseTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bytesAfterTheEndDoNotCount_data();
    void bytesAfterTheEndDoNotCount();
    void cutBodiesReadTheSame();
    void capacityBeforeTheBodyIsNoPadding();
    void boundedNumbers_data();
    void boundedNumbers();
    void numbersBeyondTheParser_data();
    void numbersBeyondTheParser();
};

void JsonResponseTest::bytesAfterTheEndDoNotCount_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<qsizetype>("length");
    QTest::addColumn<std::string>("expected");
    QTest::newRow("list") << QByteArray("[1,2],3]") << qsizetype(5) << std::string("[1,2]");
    QTest::newRow("number") << QByteArray("1234") << qsizetype(2) << std::string("12");
    QTest::newRow("text") << QByteArray("\"ab\"cd\"") << qsizetype(4) << std::string("\"ab\"");
    QTest::newRow("word") << QByteArray("truely") << qsizetype(4) << std::string("true");
}

void JsonResponseTest::bytesAfterTheEndDoNotCount()
{
    QFETCH(QByteArray, body);
    QFETCH(qsizetype, length);
    QTEST(outcome(beginning(body, length)), "expected");
}

void JsonResponseTest::cutBodiesReadTheSame()
{
    const QByteArray whole = test::readData(QStringLiteral("exchange/generated/okx_tickers_spot_full_synthetic.json"));
    for (qsizetype length = whole.size(); length > 0; length -= 997)
        QCOMPARE(outcome(beginning(whole, length)), outcome(QByteArray(whole.constData(), length)));
}

void JsonResponseTest::capacityBeforeTheBodyIsNoPadding()
{
    QByteArray body;
    body.reserve(200);
    body.append(QByteArray(100, ' ')).append('[').append(QByteArray(98, ' ')).append(']');
    body.remove(0, 100);
    QCOMPARE(outcome(body), std::string("[]"));
}

void JsonResponseTest::boundedNumbers_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QByteArray>("expected");
    const auto row = [](const char *json, const char *expected) {
        QTest::newRow(json) << QByteArray(json) << QByteArray(expected);
    };
    row("", "");
    row("[1,-2.5e3]", "[1,-2.5e3]");
    row("123456789012345678", "123456789012345678");
    row("9223372036854775807", "9223372036854775807.0");
    row("-9223372036854775809", "-9223372036854775809.0");
    row("100000000000000000000", "100000000000000000000.0");
    row(R"({"a":100000000000000000000,"b":[1e999,true]})", R"({"a":100000000000000000000.0,"b":[0.0,true]})");
    row("-1e999", "0.0");
    row("1E400", "0.0");
    row("1e-999", "1e-999");
    row("1E-999", "1E-999");
    row("12345678901234567890.5", "12345678901234567890.5");
    row(R"("100000000000000000000")", R"("100000000000000000000")");
    row(R"(["\"100000000000000000000"])", R"(["\"100000000000000000000"])");
    row(R"(["\\",100000000000000000000])", R"(["\\",100000000000000000000.0])");
    row(R"("100000000000000000000)", R"("100000000000000000000)");
    row(R"("\)", R"("\)");
    // What is no number stays as wrong as it is.
    row("000000000000000000001", "000000000000000000001");
    row("-", "-");
    row("--100000000000000000000", "--100000000000000000000");
    row("1000000000000000000000.", "1000000000000000000000.");
    row("1e", "1e");
    row("1e+", "1e+");
    row("1.e999", "1.e999");
    row("1e9999x", "0.0x");
}

void JsonResponseTest::boundedNumbers()
{
    QFETCH(QByteArray, json);
    QTEST(withBoundedNumbers(json), "expected");
}

void JsonResponseTest::numbersBeyondTheParser_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("isRead");
    QTest::newRow("64 bits") << QByteArray("[18446744073709551615,-9223372036854775808]") << true;
    QTest::newRow("65 bits") << QByteArray("[18446744073709551616]") << true;
    QTest::newRow("negative, 64 bits and a sign") << QByteArray("[-9223372036854775809]") << true;
    QTest::newRow("a thousand digits") << "[" + QByteArray(1000, '9') + "]" << true;
    QTest::newRow("beyond any double") << QByteArray("[1e999]") << true;
    QTest::newRow("leading zeros") << QByteArray("[0018446744073709551616]") << false;
    QTest::newRow("two numbers") << QByteArray("[18446744073709551616 1]") << false;
    QTest::newRow("another error too") << QByteArray("[18446744073709551616,1.]") << false;
    QTest::newRow("cut") << QByteArray("[18446744073709551616,") << false;
}

void JsonResponseTest::numbersBeyondTheParser()
{
    QFETCH(QByteArray, body);
    QFETCH(bool, isRead);
    JsonResponseParser parser;
    QCOMPARE(parser.parse(body).has_value(), isRead);
}

TICKWISE_TEST(JsonResponseTest)
#include "JsonResponseTest.moc"
