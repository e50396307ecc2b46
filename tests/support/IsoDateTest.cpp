#include "support/IsoDate.h"

#include "doubles/TestProgram.h"

#include <ctime>

using namespace tickwise;

class IsoDateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reads_data();
    void reads();
    void refuses_data();
    void refuses();
    void writes_data();
    void writes();
    void doesNotDependOnTheTimeZone();
};

void IsoDateTest::reads_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("seconds");
    const auto row = [](const char *text, qint64 seconds) {
        QTest::newRow(text) << QString::fromLatin1(text) << seconds;
    };
    row("1970-01-01T00:00:00Z", 0);
    row("2026-01-31T08:15:00Z", 1769847300);
    row("2024-02-29T23:59:59Z", 1709251199);
    row("2262-04-11T23:47:16Z", 9223372036);
}

void IsoDateTest::reads()
{
    QFETCH(QString, text);
    QFETCH(qint64, seconds);
    const TimePoint instant{std::chrono::seconds(seconds)};
    QVERIFY(parseIsoDate(text) == instant);
    QCOMPARE(isoDateText(instant), text);
}

void IsoDateTest::refuses_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text : {"",
                             "now",
                             "2026-01-31",
                             "2026-01-31T08:15:00",
                             "2026-01-31T08:15:00z",
                             "2026-01-31t08:15:00Z",
                             "2026-01-31 08:15:00Z",
                             "2026-01-31T08:15:00+00:00",
                             "2026-01-31T08:15:00.5Z",
                             "2026-01-31T08:15Z",
                             "2026-01-31T08:15:00Z ",
                             " 2026-01-31T08:15:00Z",
                             "2026-02-30T08:15:00Z",
                             "2026-13-01T08:15:00Z",
                             "2026-01-31T25:15:00Z",
                             "2026-01-31T24:00:00Z",
                             "2026-1-31T08:15:00Z",
                             "1969-12-31T23:59:59Z",
                             "2262-04-11T23:47:17Z",
                             "9999-12-31T23:59:59Z",
                             "12026-01-31T08:15:00Z"})
        QTest::newRow(text) << QString::fromLatin1(text);
}

void IsoDateTest::refuses()
{
    QFETCH(QString, text);
    QVERIFY(!parseIsoDate(text));
}

void IsoDateTest::writes_data()
{
    QTest::addColumn<qint64>("milliseconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("fraction") << qint64{1999} << QStringLiteral("1970-01-01T00:00:01Z");
    QTest::newRow("before 1970") << qint64{-1} << QStringLiteral("1969-12-31T23:59:59Z");
}

void IsoDateTest::writes()
{
    QFETCH(qint64, milliseconds);
    QTEST(isoDateText(TimePoint(std::chrono::milliseconds(milliseconds))), "text");
}

void IsoDateTest::doesNotDependOnTheTimeZone()
{
    const QByteArray before = qgetenv("TZ");
    qputenv("TZ", "Asia/Taipei");
    tzset();
    const QString text = isoDateText(TimePoint(std::chrono::seconds(1769847300)));
    const std::optional<TimePoint> instant = parseIsoDate(text);
    before.isNull() ? qunsetenv("TZ") : qputenv("TZ", before);
    tzset();
    QCOMPARE(text, QStringLiteral("2026-01-31T08:15:00Z"));
    QVERIFY(instant == TimePoint(std::chrono::seconds(1769847300)));
}

TICKWISE_TEST(IsoDateTest)
#include "IsoDateTest.moc"
