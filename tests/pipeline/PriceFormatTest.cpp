#include "pipeline/PriceFormat.h"

#include "doubles/TestProgram.h"

#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>

#include <cmath>
#include <limits>
#include <random>

using namespace tickwise;

class PriceFormatTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void price_data();
    void price();
    void alertPrice_data();
    void alertPrice();
    void exact_data();
    void exact();
    void agreesWithTheLibrarysFormatter();
    void valuesThatAreNoNumbersDoNotCrash();
};

void PriceFormatTest::price_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    const auto row = [](double value, const char *text) { QTest::newRow(text) << value << QString::fromLatin1(text); };
    row(0.123456, "0.1235");
    row(12.3456, "12.35");
    row(67432.7, "67,433");
    row(5, "5");
    row(0, "0");
    row(0.5, "0.5");
    QTest::newRow("0.99996 rounds up") << 0.99996 << QStringLiteral("1");
    row(0.99994, "0.9999");
    QTest::newRow("1.0000001") << 1.0000001 << QStringLiteral("1");
    row(99.994, "99.99");
    QTest::newRow("99.996") << 99.996 << QStringLiteral("100");
    row(100.5, "100"); // half-even
    row(101.5, "102");
    row(999.4, "999");
    row(1000, "1,000");
    row(1234567.5, "1,234,568");
    row(1234566.5, "1,234,566");
    QTest::newRow("below the last digit") << 0.00004 << QStringLiteral("0");
    row(0.00015, "0.0002");
    row(-3.25, "-3.25");
    row(2.125, "2.12");
    row(1e15, "1,000,000,000,000,000");
}

void PriceFormatTest::price()
{
    QFETCH(double, value);
    QTEST(formatPrice(value), "text");
}

void PriceFormatTest::alertPrice_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    const auto row = [](double value, const char *text) {
        QTest::addRow("%g is %s", value, text) << value << QString::fromLatin1(text);
    };
    row(0, "0");
    row(0.00001, "0.00001");
    row(0.0000112345, "0.0000112");
    row(0.00099951, "0.001");
    row(0.0012345, "0.00123");
    row(0.0099996, "0.01");
    row(0.012345, "0.0123");
    row(0.123456, "0.1235");
    row(0.000000001239, "0.00000000124");
    row(1e-30, "0.000000000000000000000000000001");
    row(1.2345, "1.23");
    row(12.3456, "12.35");
    row(67432.7, "67,433");
    row(-0.00012345, "-0.000123");
}

void PriceFormatTest::alertPrice()
{
    QFETCH(double, value);
    QTEST(formatAlertPrice(value), "text");
}

void PriceFormatTest::exact_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    const auto row = [](double value, const char *text) { QTest::newRow(text) << value << QString::fromLatin1(text); };
    row(67432.71, "67,432.71");
    row(0.1, "0.1");
    row(100, "100");
    row(1000, "1,000");
    row(-1000, "-1,000");
    row(-100, "-100");
    row(1234567.125, "1,234,567.125");
    row(0.00000831, "0.00000831");
    row(0, "0");
}

void PriceFormatTest::exact()
{
    QFETCH(double, value);
    QTEST(exactPrice(value), "text");
}

/// ICU's formatter of the same rules is much larger and slower to start, but tells whether ours is right.
void PriceFormatTest::agreesWithTheLibrarysFormatter()
{
    UErrorCode status = U_ZERO_ERROR;
    icu::DecimalFormat formatter("#,##0", icu::DecimalFormatSymbols(icu::Locale("en_US_POSIX"), status), status);
    formatter.setRoundingMode(icu::DecimalFormat::kRoundHalfEven);
    std::mt19937_64 random(20261121); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same in every run
    std::uniform_real_distribution<double> magnitude(-6, 8);
    for (int round = 0; round < 100'000; ++round) {
        // Every second value has few digits, among which are those that lie halfway.
        const double raw = std::pow(10, magnitude(random)) * (round % 7 == 0 ? -1 : 1);
        const double value = round % 2 == 0 ? raw : std::round(raw * 100'000) / 100'000;
        formatter.setMaximumFractionDigits(value < 1 ? 4 : value < 100 ? 2 : 0);
        icu::UnicodeString text;
        formatter.format(value, text);
        QCOMPARE(formatPrice(value), QString::fromUtf16(text.getBuffer(), text.length()));
    }
}

void PriceFormatTest::valuesThatAreNoNumbersDoNotCrash()
{
    QCOMPARE(formatPrice(std::numeric_limits<double>::infinity()), QStringLiteral("inf"));
    QCOMPARE(formatPrice(std::numeric_limits<double>::quiet_NaN()), QStringLiteral("nan"));
    QCOMPARE(exactPrice(std::numeric_limits<double>::infinity()), QStringLiteral("inf"));
    QCOMPARE(exactPrice(1e300).count(QLatin1Char(',')), 100);
}

TICKWISE_TEST(PriceFormatTest)
#include "PriceFormatTest.moc"
