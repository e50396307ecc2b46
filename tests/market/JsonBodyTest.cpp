#include "market/JsonBody.h"
#include "doubles/TestProgram.h"

#include "doubles/TestData.h"

using namespace tickwise;

namespace {

/// The first bytes of `body`, with the rest of it still behind their end.
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
    BodyParser parser;
    const Result<simdjson::dom::element> root = parser.parse(body);
    return root ? simdjson::minify(*root) : description(root.error()).toStdString();
}

} // namespace

class JsonBodyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingBehindTheEndCounts_data();
    void nothingBehindTheEndCounts();
    void cutBodiesReadTheSame();
    void roomInFrontIsNoRoomBehind();
};

void JsonBodyTest::nothingBehindTheEndCounts_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<qsizetype>("length");
    QTest::addColumn<std::string>("expected");
    QTest::newRow("list") << QByteArray("[1,2],3]") << qsizetype(5) << std::string("[1,2]");
    QTest::newRow("number") << QByteArray("1234") << qsizetype(2) << std::string("12");
    QTest::newRow("text") << QByteArray("\"ab\"cd\"") << qsizetype(4) << std::string("\"ab\"");
    QTest::newRow("word") << QByteArray("truely") << qsizetype(4) << std::string("true");
}

void JsonBodyTest::nothingBehindTheEndCounts()
{
    QFETCH(QByteArray, body);
    QFETCH(qsizetype, length);
    QTEST(outcome(beginning(body, length)), "expected");
}

void JsonBodyTest::cutBodiesReadTheSame()
{
    const QByteArray whole = test::readData(QStringLiteral("exchange/generated/okx_tickers_spot_full_synthetic.json"));
    for (qsizetype length = whole.size(); length > 0; length -= 997)
        QCOMPARE(outcome(beginning(whole, length)), outcome(QByteArray(whole.constData(), length)));
}

void JsonBodyTest::roomInFrontIsNoRoomBehind()
{
    QByteArray body;
    body.reserve(200);
    body.append(QByteArray(100, ' ')).append('[').append(QByteArray(98, ' ')).append(']');
    body.remove(0, 100);
    QCOMPARE(outcome(body), std::string("[]"));
}

TICKWISE_TEST(JsonBodyTest)
#include "JsonBodyTest.moc"
