#include "ui/updates/appcast/VersionComparison.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

class VersionComparisonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void compares_data();
    void compares();
    void isVersion_data();
    void isVersion();
};

void VersionComparisonTest::compares_data()
{
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    QTest::addColumn<int>("order");
    const auto row = [](const char *left, const char *right, int order) {
        QTest::addRow("%s and %s", left, right) << QString::fromLatin1(left) << QString::fromLatin1(right) << order;
    };
    row("1.0", "1.0", 0);
    row("1.10", "1.9", 1);
    row("2", "10", -1);
    row("1.0", "1.0.0", 0);
    row("1.0.1", "1.0", 1);
    row("01.02", "1.2", 0);
    row("1.0b1", "1.0", -1);
    row("1.0b1", "1.0.0", -1);
    row("1.0-beta2", "1.0", -1);
    row("1.0-beta2", "1.0-beta10", -1);
    row("1.0-beta.2", "1.0beta2", 0);
    row("1.0a5", "1.0b1", -1);
    row("1.0b9", "1.0rc1", -1);
    row("1.0RC1", "1.0rc1", 0);
    row("1.0rc1", "0.9", 1);
    row("1.0b", "1.0b1", -1);
    row("1.1b1", "1.0", 1);
    row("1.0+5", "1.0+6", 0);
    row("1.0+5", "1.0", 0);
    row("20260131", "20251231", 1);
    row("99999999999999999999999", "99999999999999999999998", 1);
    row("100000000000000000000000", "99999999999999999999998", 1);
    row("1..2", "1.2", 0);
    row("", "1", -1);
    row("", "", 0);
}

void VersionComparisonTest::compares()
{
    QFETCH(QString, left);
    QFETCH(QString, right);
    QFETCH(int, order);
    QVERIFY(compareVersions(left, right) == (order <=> 0));
    QVERIFY(compareVersions(right, left) == (0 <=> order));
}

void VersionComparisonTest::isVersion_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("expected");
    const auto row = [](const QString &text, bool expected) { QTest::newRow(qPrintable(text)) << text << expected; };
    row(QStringLiteral("1"), true);
    row(QStringLiteral("1.2.3-rc.1+abc~x_y"), true);
    row(QStringLiteral("1").repeated(64), true);
    row(QStringLiteral("1").repeated(65), false);
    row(QString(), false);
    row(QStringLiteral("v1.0"), false);
    row(QStringLiteral("unknown"), false);
    row(QStringLiteral("1 0"), false);
    row(QStringLiteral("1.0\n"), false);
    row(QStringLiteral("1/../2"), false);
    row(QStringLiteral("1.0%1"), false);
    row(QStringLiteral("\u0661.\u0662"), false);
}

void VersionComparisonTest::isVersion()
{
    QFETCH(QString, text);
    QFETCH(bool, expected);
    QCOMPARE(tickwise::isVersion(text), expected);
}

TICKWISE_TEST(VersionComparisonTest)
#include "VersionComparisonTest.moc"
