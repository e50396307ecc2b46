#include "support/json/JsonNumber.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

class JsonNumberTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void grammar_data();
    void grammar();
};

void JsonNumberTest::grammar_data()
{
    QTest::addColumn<bool>("isNumber");
    for (const char *number : {"0", "-0", "7", "-12", "10", "0.5", "-0.05", "1e5", "1E5", "1e+05", "1.5e-9"})
        QTest::newRow(number) << true;
    for (const char *other :
         {"", "-", "+1", "01", "-01", ".5", "1.", "-.5", "1e", "1e+", "1.e5", "1.5.5", "1e5e5", "1-", "e5", "0x1"})
        QTest::newRow(other) << false;
}

void JsonNumberTest::grammar()
{
    const std::string_view text = QTest::currentDataTag();
    QFETCH(bool, isNumber);
    QCOMPARE(isJsonNumber(text), isNumber);
}

TICKWISE_TEST(JsonNumberTest)
#include "JsonNumberTest.moc"
