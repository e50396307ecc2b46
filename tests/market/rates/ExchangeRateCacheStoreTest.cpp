#include "market/rates/ExchangeRateCacheStore.h"

#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const auto eur = QStringLiteral("EUR");
const auto jpy = QStringLiteral("JPY");
const auto fileName = QStringLiteral("exchange-rates.json");

ExchangeRateEntry entry()
{
    return {{{jpy, 150.25}, {eur, 0.913083}}, TestClock().now()};
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

} // namespace

class ExchangeRateCacheStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void encodesInOneForm();
    void readsWhatItWrites();
    void keepsWholeSeconds();
    void createsItsDirectory();
    void withoutADirectoryNothingIsKept();
    void nothingStored();
    void undecodable_data();
    void undecodable();
    void dates_data();
    void dates();
    void datesDoNotDependOnTheTimeZone();
    void tooLargeAFile();
    void unwritablePlace();
};

void ExchangeRateCacheStoreTest::encodesInOneForm()
{
    QCOMPARE(encodeRateEntry(entry()).value(),
             QByteArray(R"({"rates":{"EUR":0.913083,"JPY":150.25},"fetchedAt":"2026-01-31T08:15:00Z"})"));
}

void ExchangeRateCacheStoreTest::readsWhatItWrites()
{
    QTemporaryDir directory;
    const ExchangeRateCacheStore store(directory.path());
    QVERIFY(store.save(entry()).has_value());
    QVERIFY(store.load() == entry());
    QCOMPARE(QDir(directory.path()).entryList(QDir::Files), QStringList{fileName});
}

void ExchangeRateCacheStoreTest::keepsWholeSeconds()
{
    ExchangeRateEntry precise = entry();
    precise.fetchedAt += std::chrono::milliseconds(999);
    QVERIFY(decodeRateEntry(encodeRateEntry(precise).value()).value() == entry());
}

void ExchangeRateCacheStoreTest::createsItsDirectory()
{
    QTemporaryDir directory;
    const ExchangeRateCacheStore store(directory.filePath(QStringLiteral("group/container")));
    QVERIFY(!store.load());
    QVERIFY(store.save(entry()).has_value());
    QVERIFY(store.load() == entry());
}

void ExchangeRateCacheStoreTest::withoutADirectoryNothingIsKept()
{
    const ExchangeRateCacheStore store(std::nullopt);
    QVERIFY(store.save(entry()).has_value());
    QVERIFY(!store.load());
    QVERIFY(!QFile::exists(fileName));
}

void ExchangeRateCacheStoreTest::nothingStored()
{
    QTemporaryDir directory;
    QVERIFY(!ExchangeRateCacheStore(directory.path()).load());
}

void ExchangeRateCacheStoreTest::undecodable_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const auto row = [](const char *name, const QByteArray &bytes) { QTest::newRow(name) << bytes; };
    row("empty", "");
    row("no JSON", "rates");
    row("truncated", encodeRateEntry(entry()).value().chopped(5));
    row("list", "[]");
    row("no rates", R"({"fetchedAt":"2026-01-31T08:15:00Z"})");
    row("no date", R"({"rates":{"EUR":1}})");
    row("rates are a list", R"({"rates":[1],"fetchedAt":"2026-01-31T08:15:00Z"})");
    row("rate is a text", R"({"rates":{"EUR":"1"},"fetchedAt":"2026-01-31T08:15:00Z"})");
    row("rate is zero", R"({"rates":{"EUR":0},"fetchedAt":"2026-01-31T08:15:00Z"})");
    row("rate is negative", R"({"rates":{"EUR":-1},"fetchedAt":"2026-01-31T08:15:00Z"})");
    row("rate beyond any number", R"({"rates":{"EUR":1e999},"fetchedAt":"2026-01-31T08:15:00Z"})");
    row("date is a number", R"({"rates":{"EUR":1},"fetchedAt":1769847300})");
    row("wrong UTF-8", "{\"rates\":{\"\xff\":1},\"fetchedAt\":\"2026-01-31T08:15:00Z\"}");
    row("deep", QByteArray(100000, '['));
}

void ExchangeRateCacheStoreTest::undecodable()
{
    QFETCH(QByteArray, bytes);
    const auto decoded = decodeRateEntry(bytes);
    QVERIFY(!decoded);
    QVERIFY(std::holds_alternative<DecodingError>(decoded.error()));
    QTemporaryDir directory;
    writeFile(directory.filePath(fileName), bytes);
    const ExchangeRateCacheStore store(directory.path());
    QVERIFY(!store.load());
    QVERIFY(store.save(entry()).has_value());
    QVERIFY(store.load() == entry());
}

void ExchangeRateCacheStoreTest::dates_data()
{
    QTest::addColumn<QByteArray>("date");
    QTest::addColumn<qint64>("seconds"); // -1: none
    const auto row = [](const char *date, qint64 seconds) { QTest::newRow(date) << QByteArray(date) << seconds; };
    row("2026-01-31T08:15:00Z", 1769847300);
    row("1970-01-01T00:00:00Z", 0);
    row("2028-02-29T23:59:59Z", 1835481599);
    row("2026-02-29T00:00:00Z", -1);
    row("2026-01-31T08:15:00", -1);
    row("2026-01-31T08:15:00.000Z", -1);
    row("2026-01-31T09:15:00+01:00", -1);
    row("2026-01-31T08:15Z", -1);
    row("2026-01-31 08:15:00Z", -1);
    row("2026-01-31", -1);
    row("2026-1-31T08:15:00Z", -1);
    row("2026-01-31T24:00:00Z", -1);
    row("2026-01-31T08:15:00z", -1);
    row("Sat, 31 Jan 2026 08:15:00 GMT", -1);
    row("9999-12-31T23:59:59Z", -1);
    row("1969-12-31T23:59:59Z", -1);
    row("1700-01-01T00:00:00Z", -1);
    row("0001-01-01T00:00:00Z", -1);
    row("", -1);
}

void ExchangeRateCacheStoreTest::dates()
{
    QFETCH(QByteArray, date);
    QFETCH(qint64, seconds);
    const auto decoded = decodeRateEntry(R"({"rates":{"EUR":1},"fetchedAt":")" + date + R"("})");
    QCOMPARE(decoded.has_value(), seconds >= 0);
    if (decoded)
        QVERIFY(decoded->fetchedAt == TimePoint(std::chrono::seconds(seconds)));
}

void ExchangeRateCacheStoreTest::datesDoNotDependOnTheTimeZone()
{
    // Half past two does not exist in Berlin on this day.
    const QByteArray zone = qgetenv("TZ");
    qputenv("TZ", "Europe/Berlin");
    tzset();
    ExchangeRateEntry night{{{eur, 1}}, TimePoint(std::chrono::seconds(1774751400))};
    const QByteArray bytes = encodeRateEntry(night).value();
    const auto decoded = decodeRateEntry(bytes);
    zone.isNull() ? qunsetenv("TZ") : qputenv("TZ", zone);
    tzset();
    QVERIFY(bytes.contains("2026-03-29T02:30:00Z"));
    QVERIFY(decoded.has_value());
    QVERIFY(*decoded == night);
}

void ExchangeRateCacheStoreTest::tooLargeAFile()
{
    QTemporaryDir directory;
    writeFile(directory.filePath(fileName), encodeRateEntry(entry()).value() + QByteArray(300 * 1024, ' '));
    QVERIFY(!ExchangeRateCacheStore(directory.path()).load());
}

void ExchangeRateCacheStoreTest::unwritablePlace()
{
    QTemporaryDir directory;
    writeFile(directory.filePath(QStringLiteral("file")), "x");
    const ExchangeRateCacheStore store(directory.filePath(QStringLiteral("file/below")));
    QVERIFY(std::holds_alternative<FileError>(store.save(entry()).error()));
    QVERIFY(!store.load());
    QVERIFY(QDir(directory.path()).mkpath(fileName));
    QVERIFY(std::holds_alternative<FileError>(ExchangeRateCacheStore(directory.path()).save(entry()).error()));
    QVERIFY(!ExchangeRateCacheStore(directory.path()).load());
}

TICKWISE_TEST(ExchangeRateCacheStoreTest)
#include "ExchangeRateCacheStoreTest.moc"
