#include "widget/program/WidgetModel.h"

#include "doubles/LogCapture.h"
#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"
#include "support/files/WholeFile.h"
#include "widget/program/ShippedCoins.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const QString widgetCategory = QStringLiteral("com.pelmo.tickwise.Widget");

WidgetSnapshot snapshotOf(std::vector<QString> watchlist, double price = 67432)
{
    WidgetSnapshot snapshot = makeWidgetSnapshot({}, {}, TestClock().now());
    snapshot.watchlist = std::move(watchlist);
    for (const QString &id : snapshot.watchlist)
        snapshot.quotes[id] = {price, 1.5};
    return snapshot;
}

QByteArray documentOf(const WidgetSnapshot &snapshot)
{
    return encodeWidgetSnapshot(snapshot).value_or(QByteArray());
}

} // namespace

class WidgetModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void emptyBeforeTheFirstFile();
    void withoutAContainer();
    void showsTheSnapshot();
    void followsTheFile();
    void unusableFileLeavesTheLastContent_data();
    void unusableFileLeavesTheLastContent();
    void fileThatIsGoneLeavesTheLastContent();
    void failureIsLoggedOnce();
    void unknownFieldsAreIgnored();
    void snapshotFromTheFuture();
    void coinsAreLookedUpWhenTheWatchlistChanges();
    void longWatchlistIsCut();

private:
    WidgetSnapshotStore store() const { return {m_directory->path()}; }
    void write(const QByteArray &bytes) const;

    std::unique_ptr<QTemporaryDir> m_directory;
};

void WidgetModelTest::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
}

void WidgetModelTest::write(const QByteArray &bytes) const
{
    QVERIFY(writeWholeFile(*store().path(), bytes, Durability::unsynced));
}

void WidgetModelTest::emptyBeforeTheFirstFile()
{
    const LogCapture log;
    WidgetModel model(store(), shippedCoins);
    model.reload();
    QCOMPARE(model.content(), WidgetEntryContent());
    QVERIFY(log.lines().empty());
}

void WidgetModelTest::withoutAContainer()
{
    const LogCapture log;
    WidgetModel model({}, shippedCoins);
    model.reload();
    QCOMPARE(model.content(), WidgetEntryContent());
    QCOMPARE(log.texts(widgetCategory).size(), 1);
}

void WidgetModelTest::showsTheSnapshot()
{
    write(documentOf(snapshotOf({QStringLiteral("ethereum"), QStringLiteral("bitcoin")})));
    WidgetModel model(store(), shippedCoins);
    model.reload();
    const WidgetEntryContent content = model.content();
    QCOMPARE(content.updatedAt, std::optional(TestClock().now()));
    QCOMPARE(content.rows.size(), std::size_t(2));
    QCOMPARE(content.rows[0].symbol, QStringLiteral("ETH"));
    QCOMPARE(content.rows[1].name, QStringLiteral("Bitcoin"));
    QCOMPARE(content.rows[1].price, std::optional(67432.0));
}

void WidgetModelTest::followsTheFile()
{
    WidgetModel model(store(), shippedCoins);
    QSignalSpy changed(&model, &WidgetModel::contentChanged);
    write(documentOf(snapshotOf({QStringLiteral("bitcoin")}, 1)));
    model.reload();
    QCOMPARE(changed.size(), 1);
    model.reload();
    QCOMPARE(changed.size(), 1);
    write(documentOf(snapshotOf({QStringLiteral("bitcoin")}, 2)));
    model.reload();
    QCOMPARE(changed.size(), 2);
    QCOMPARE(model.content().rows.front().price, std::optional(2.0));
}

void WidgetModelTest::unusableFileLeavesTheLastContent_data()
{
    const QByteArray whole = documentOf(snapshotOf({QStringLiteral("bitcoin")}, 1));
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("half") << whole.left(whole.size() / 2);
    QTest::newRow("not JSON") << QByteArray("\x89PNG\r\n\x1a\n");
    QTest::newRow("foreign") << QByteArray("[1,2,3]");
    QTest::newRow("a missing key") << QByteArray(whole).replace("\"watchlist\"", "\"watched\"");
    QTest::newRow("another type") << QByteArray(whole).replace("\"colorByChange\":true", "\"colorByChange\":1");
    QTest::newRow("an unknown language") << QByteArray(whole).replace("\"system\"", "\"tlh\"");
    QTest::newRow("an unknown currency") << QByteArray(whole).replace("\"USD\"", "\"ZZZ\"");
    QTest::newRow("not a date") << QByteArray(whole).replace("2026-", "year ");
    QTest::newRow("deeply nested") << QByteArray(100000, '[');
    QTest::newRow("too large") << QByteArray(5 * 1024 * 1024, ' ') + whole;
}

void WidgetModelTest::unusableFileLeavesTheLastContent()
{
    QFETCH(QByteArray, bytes);
    const LogCapture log;
    write(documentOf(snapshotOf({QStringLiteral("bitcoin")}, 1)));
    WidgetModel model(store(), shippedCoins);
    model.reload();
    const WidgetEntryContent before = model.content();
    write(bytes);
    model.reload();
    QCOMPARE(model.content(), before);
    QCOMPARE(log.texts(widgetCategory).size(), 1);
    write(documentOf(snapshotOf({QStringLiteral("bitcoin")}, 2)));
    model.reload();
    QCOMPARE(model.content().rows.front().price, std::optional(2.0));
}

void WidgetModelTest::fileThatIsGoneLeavesTheLastContent()
{
    const LogCapture log;
    write(documentOf(snapshotOf({QStringLiteral("bitcoin")})));
    WidgetModel model(store(), shippedCoins);
    model.reload();
    const WidgetEntryContent before = model.content();
    QVERIFY(QFile::remove(*store().path()));
    model.reload();
    QCOMPARE(model.content(), before);
    QVERIFY(log.lines().empty());
}

void WidgetModelTest::failureIsLoggedOnce()
{
    const LogCapture log;
    WidgetModel model(store(), shippedCoins);
    write("{");
    model.reload();
    model.reload();
    QCOMPARE(log.texts(widgetCategory).size(), 1);
    QVERIFY(log.texts(widgetCategory).front().startsWith(QStringLiteral("Widget snapshot not read: ")));
    write("[]");
    model.reload();
    QCOMPARE(log.texts(widgetCategory).size(), 2);
}

void WidgetModelTest::unknownFieldsAreIgnored()
{
    QByteArray newer = documentOf(snapshotOf({QStringLiteral("bitcoin")}));
    newer.replace("{\"writtenAt\"", "{\"version\":7,\"writtenAt\"");
    write(newer);
    WidgetModel model(store(), shippedCoins);
    model.reload();
    QCOMPARE(model.content().rows.size(), std::size_t(1));
}

void WidgetModelTest::snapshotFromTheFuture()
{
    WidgetSnapshot future = snapshotOf({QStringLiteral("bitcoin")});
    future.writtenAt += std::chrono::hours(24 * 365);
    write(documentOf(future));
    WidgetModel model(store(), shippedCoins);
    model.reload();
    QCOMPARE(model.content().updatedAt, std::optional(future.writtenAt));
}

void WidgetModelTest::coinsAreLookedUpWhenTheWatchlistChanges()
{
    std::vector<std::vector<QString>> lookups;
    WidgetModel model(store(), [&](const std::vector<QString> &ids) {
        lookups.push_back(ids);
        return shippedCoins(ids);
    });
    write(documentOf(snapshotOf({QStringLiteral("bitcoin")}, 1)));
    model.reload();
    write(documentOf(snapshotOf({QStringLiteral("bitcoin")}, 2)));
    model.reload();
    QCOMPARE(lookups.size(), std::size_t(1));
    write(documentOf(snapshotOf({QStringLiteral("bitcoin"), QStringLiteral("no-such-coin")})));
    model.reload();
    QCOMPARE(lookups.size(), std::size_t(2));
    QCOMPARE(model.content().rows.size(), std::size_t(1));
}

void WidgetModelTest::longWatchlistIsCut()
{
    write(documentOf(snapshotOf(std::vector<QString>(1000, QStringLiteral("bitcoin")))));
    WidgetModel model(store(), shippedCoins);
    model.reload();
    QCOMPARE(model.content().rows.size(), std::size_t(10));
}

TICKWISE_TEST(WidgetModelTest)
#include "WidgetModelTest.moc"
