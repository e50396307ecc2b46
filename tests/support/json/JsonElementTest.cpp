#include "support/json/JsonElement.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

namespace {

enum class ElementColor
{
    green,
    red
};

QString rawValue(ElementColor color)
{
    return color == ElementColor::green ? QStringLiteral("green") : QStringLiteral("red");
}

/// What a strict reader makes of the member "it": the texts of the values that it decodes as, or of the errors.
template<class Value>
QStringList readings(const Value &document)
{
    const auto read = [&document]<class T>(T /*type*/) {
        StrictJsonReader<Value> reader(document, QStringLiteral("place"));
        const T required = reader.template required<T>("it");
        StrictJsonReader<Value> lenient(document);
        const std::optional<T> optional = lenient.template optional<T>("it");
        QString text;
        QDebug(&text).nospace() << required << ' ' << optional.has_value();
        for (const auto &error : {reader.error(), lenient.error()})
            text += error ? description(*error) : QString();
        return text;
    };
    StrictJsonReader<Value> reader(document);
    qsizetype count = 0;
    reader.forEach("it", [&count](const Value &) { return ++count < 2; });
    return {read(true), read(std::int64_t()), read(QString()),
            QString::number(count) + (reader.error() ? description(*reader.error()) : QString()),
            QString::number(int(StrictJsonReader<Value>(document).template required<ElementColor>("it")))};
}

} // namespace

template<>
std::vector<ElementColor> tickwise::allCases<ElementColor>()
{
    return {ElementColor::green, ElementColor::red};
}

class JsonElementTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsAsTheOtherParser_data();
    void readsAsTheOtherParser();
};

void JsonElementTest::readsAsTheOtherParser_data()
{
    QTest::addColumn<QByteArray>("document");
    for (const char *value : {"true",
                              "false",
                              "null",
                              "0",
                              "-0",
                              "7",
                              "-7",
                              "7.0",
                              "7e1",
                              "1.5",
                              "9007199254740992.0",
                              "9007199254740994.0",
                              "-1e17",
                              "9223372036854775807",
                              "-9223372036854775808",
                              "9223372036854775808",
                              "18446744073709551615",
                              "\"\"",
                              "\"red\"",
                              "\"Red\"",
                              "\"\\ud83d\\ude80 \\u0000 x\"",
                              "\"\xEF\xBB\xBF mark\"",
                              "[]",
                              "[1]",
                              "[1,[2],{}]",
                              "{}",
                              "{\"it\":1}"})
        QTest::newRow(value) << QByteArray("{\"it\":") + value + ",\"other\":{\"it\":true}}";
    QTest::newRow("missing") << QByteArray("{}");
    QTest::newRow("a longer key") << QByteArray("{\"item\":1,\"i\":2}");
    QTest::newRow("twice") << QByteArray("{\"it\":1,\"x\":0,\"it\":\"red\"}");
    QTest::newRow("no object") << QByteArray("[1]");
    QTest::newRow("no container") << QByteArray("7");
}

void JsonElementTest::readsAsTheOtherParser()
{
    QFETCH(QByteArray, document);
    simdjson::dom::parser parser;
    const JsonElement element = parser.parse(document.constData(), static_cast<std::size_t>(document.size())).value();
    const QStringList expected = readings(parseJson(document).value());
    QCOMPARE(readings(element), expected);
    QVERIFY(!expected.join(QString()).isEmpty());
}

TICKWISE_TEST(JsonElementTest)
#include "JsonElementTest.moc"
