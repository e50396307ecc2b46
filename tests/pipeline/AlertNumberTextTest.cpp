#include "pipeline/AlertNumberText.h"

#include "doubles/TestProgram.h"

#include <limits>

using namespace tickwise;

class AlertNumberTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void filters_data();
    void filters();
    void shows_data();
    void shows();
    void reads_data();
    void reads();
    void readsWhatItShows();
};

void AlertNumberTextTest::filters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("kept");
    const auto row = [](const char *name, const QString &text, const char *kept) {
        QTest::newRow(name) << text << QString::fromLatin1(kept);
    };
    row("empty", QString(), "");
    row("digits", QStringLiteral("0123456789"), "0123456789");
    row("letters", QStringLiteral("abc"), "");
    row("a second point", QStringLiteral("1.2.3"), "1.23");
    row("an exponent", QStringLiteral("1.2.3e5"), "1.235");
    row("a sign", QStringLiteral("-5"), "5");
    row("grouping", QStringLiteral("67,432.5"), "67432.5");
    row("a point first", QStringLiteral(".5"), ".5");
    row("points only", QStringLiteral("..."), ".");
    row("full-width digits", QStringLiteral("１２３"), "");
    row("Arabic digits", QStringLiteral("\u0661\u0662"), "");
    row("around a slash and a colon", QStringLiteral("/1:2"), "12");
}

void AlertNumberTextTest::filters()
{
    QFETCH(QString, text);
    QTEST(filteredAlertNumber(text), "kept");
}

void AlertNumberTextTest::shows_data()
{
    QTest::addColumn<double>("threshold");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *text, double threshold) {
        QTest::newRow(text) << threshold << QString::fromLatin1(text);
    };
    row("2", 2.0);
    row("0", 0.0);
    row("67432.5", 67432.5);
    row("1234567", 1234567);
    row("0.000001", 0.000001);
    row("0.123457", 0.1234567);
    row("0.25", 0.25);
    row("-3", -3);
    row("1000000000000000", 1e15);
    row("inf", std::numeric_limits<double>::infinity());
    row("nan", std::numeric_limits<double>::quiet_NaN());
}

void AlertNumberTextTest::shows()
{
    QFETCH(double, threshold);
    QTEST(alertNumberText(threshold), "text");
}

void AlertNumberTextTest::reads_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<std::optional<double>>("number");
    const auto row = [](const char *name, const QString &text, std::optional<double> number) {
        QTest::newRow(name) << text << number;
    };
    row("a number", QStringLiteral("12.5"), 12.5);
    row("no fraction yet", QStringLiteral("12."), 12.0);
    row("no whole part", QStringLiteral(".5"), 0.5);
    row("nothing", QString(), {});
    row("a point", QStringLiteral("."), {});
    row("400 digits", QString(400, u'9'), {});
    row("300 digits", QLatin1Char('1') + QString(300, u'0'), 1e300);
}

void AlertNumberTextTest::reads()
{
    QFETCH(QString, text);
    const std::optional<double> number = alertNumber(text);
    QTEST(number, "number");
}

void AlertNumberTextTest::readsWhatItShows()
{
    for (const double threshold : {2.0, 0.000001, 67432.5, 1e15, 1e300})
        QCOMPARE(alertNumber(alertNumberText(threshold)), std::optional(threshold));
}

TICKWISE_TEST(AlertNumberTextTest)
#include "AlertNumberTextTest.moc"
