#include "market/RetryAfter.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

class RetryAfterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void values_data();
    void values();
    void isAbsentWithoutTheHeader();
    void twoHeadersAreNoValue_data();
    void twoHeadersAreNoValue();
};

void RetryAfterTest::values_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<double>("seconds"); // 0: none
    const auto row = [](const char *header, double seconds) {
        QTest::addRow("'%s'", header) << QByteArray(header) << seconds;
    };
    row("30", 30);
    row("0.5", 0.5);
    row("1e2", 100);
    row("1800", 1800);
    row(" 30", 0);
    row("\t30", 0);
    row("30 ", 0);
    row("30s", 0);
    row("30, 60", 0);
    row("", 0);
    row("0", 0);
    row("0.0", 0);
    row("-0", 0);
    row("-30", 0);
    row("nan", 0);
    row("inf", 0);
    row("infinity", 0);
    row("1e999", 0);
    row("0x1e", 0);
    row("1,5", 0);
    row("soon", 0);
    row("Wed, 21 Oct 2026 07:28:00 GMT", 0);
}

void RetryAfterTest::values()
{
    QFETCH(QByteArray, header);
    QFETCH(double, seconds);
    QCOMPARE(retryAfter({429, {{"Content-Type", "text/plain"}, {"retry-after", header}}, {}}),
             seconds > 0 ? std::optional(seconds) : std::nullopt);
}

void RetryAfterTest::isAbsentWithoutTheHeader()
{
    QCOMPARE(retryAfter({429, {{"Content-Type", "text/plain"}}, {}}), std::nullopt);
}

void RetryAfterTest::twoHeadersAreNoValue_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::newRow("different") << QByteArray("30") << QByteArray("60");
    QTest::newRow("equal") << QByteArray("30") << QByteArray("30");
    QTest::newRow("the second is no value") << QByteArray("30") << QByteArray("soon");
}

void RetryAfterTest::twoHeadersAreNoValue()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    QCOMPARE(retryAfter({429, {{"Retry-After", first}, {"X-Between", "1"}, {"retry-after", second}}, {}}),
             std::nullopt);
}

TICKWISE_TEST(RetryAfterTest)
#include "RetryAfterTest.moc"
