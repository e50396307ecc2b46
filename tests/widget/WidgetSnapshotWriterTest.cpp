#include "widget/WidgetSnapshotWriter.h"

#include "doubles/Catalogs.h"
#include "doubles/FullDisk.h"
#include "doubles/LogCapture.h"
#include "doubles/PipelineDoubles.h"
#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const QString bitcoinCoin = QStringLiteral("bitcoin");
const QString category = QStringLiteral("com.pelmo.tickwise.Widget");

/// A writer over the real coin list and settings, and what became of it.
struct World
{
    World()
    {
        AppSettings quiet;
        quiet.pollingInterval = 86400;
        settings.update(quiet);
        coins = std::make_unique<CoinListViewModel>(catalog, prices, notifier, settings, clock.clock());
        poll(100);
    }

    void start()
    {
        elapsed.start();
        writer = std::make_unique<WidgetSnapshotWriter>(
            store, *coins, settings,
            [this] {
                ++reloads;
                lastReloadAt = elapsed.elapsed();
            },
            [this] {
                ++writes;
                return clock.now();
            });
    }
    QTimer *debounce() const { return writer->findChild<QTimer *>(); }
    /// Ends the quiet second now.
    void endQuietTime()
    {
        QTimerEvent end(debounce()->timerId());
        QCoreApplication::sendEvent(debounce(), &end);
    }
    void poll(double price)
    {
        if (!prices.isOpen())
            coins->fetchPrices();
        prices.answer({{QStringLiteral("BTC"), price}});
    }
    void change(const std::function<void(AppSettings &)> &edit)
    {
        AppSettings changed = settings.settings();
        edit(changed);
        settings.update(changed);
    }
    /// The price in the file; negative when there is none.
    double writtenPrice() const
    {
        const Result<WidgetSnapshot> snapshot = store.read();
        if (!snapshot || !snapshot->quotes.contains(bitcoinCoin))
            return -1;
        return snapshot->quotes.at(bitcoinCoin).price;
    }

    QTemporaryDir directory;
    WidgetSnapshotStore store{directory.filePath(QStringLiteral("container"))};
    MemoryDefaults storage;
    SettingsViewModel settings{UserDefaultsSettingsStore(storage)};
    TestClock clock;
    FixedCatalog catalog{validCoins()};
    FakePriceFetching prices;
    RecordingNotifier notifier;
    std::unique_ptr<CoinListViewModel> coins;
    std::unique_ptr<WidgetSnapshotWriter> writer;
    QElapsedTimer elapsed;
    int writes = 0; ///< how often the writer asked for the time, which it does once a write
    int reloads = 0;
    qint64 lastReloadAt = 0;
};

} // namespace

class WidgetSnapshotWriterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstPairPassesTheDebounceAndReloads();
    void quietTimeIsOneSecondAfterEachChange();
    void burstIsOneWriteOfTheLastPair();
    void eachChangeRestartsTheQuietSecond();
    void quietChangesAreWrittenWithoutReload();
    void reloadAfterFiveMinutes();
    void swappedColorsReloadAtOnce();
    void failedWriteLogsOnceAndKeepsTheLastReload();
    void unavailableContainerIsSilent();
    void goneWriterDoesNothing();
};

void WidgetSnapshotWriterTest::firstPairPassesTheDebounceAndReloads()
{
    World world;
    world.start();
    QCoreApplication::processEvents();
    QCOMPARE(world.reloads, 0);
    QTRY_COMPARE(world.reloads, 1);
    QVERIFY(world.lastReloadAt >= 999);
    QCOMPARE(world.store.read().value(),
             makeWidgetSnapshot(world.coins->coins(), world.settings.settings(), world.clock.now()));
    QCOMPARE(world.writtenPrice(), 100.0);
}

void WidgetSnapshotWriterTest::quietTimeIsOneSecondAfterEachChange()
{
    World world;
    world.start();
    QTimer *const debounce = world.debounce();
    QCOMPARE(debounce->intervalAsDuration(), std::chrono::seconds(1));
    QCOMPARE(debounce->timerType(), Qt::PreciseTimer);
    QVERIFY(debounce->isActive());
    world.endQuietTime();
    QCOMPARE(world.writes, 1);
    QVERIFY(!debounce->isActive());
    world.poll(101);
    QVERIFY(debounce->isActive());
    world.endQuietTime();
    QVERIFY(!debounce->isActive());
    world.change([](AppSettings &settings) { settings.priceColorEnabled = false; });
    QVERIFY(debounce->isActive());
    QCOMPARE(debounce->intervalAsDuration(), std::chrono::seconds(1));
    QCOMPARE(world.writes, 2);
}

void WidgetSnapshotWriterTest::burstIsOneWriteOfTheLastPair()
{
    World world;
    world.start();
    for (int i = 1; i <= 5; ++i) {
        world.poll(100 + 10 * i);
        world.change([](AppSettings &settings) { settings.priceColorEnabled = !settings.priceColorEnabled; });
    }
    QCOMPARE(world.writes, 0);
    world.endQuietTime();
    QCOMPARE(world.writes, 1);
    QCOMPARE(world.reloads, 1);
    QCOMPARE(world.writtenPrice(), 150.0);
    QCOMPARE(world.store.read()->colorByChange, false);
    QCoreApplication::processEvents();
    QCOMPARE(world.writes, 1);
}

void WidgetSnapshotWriterTest::eachChangeRestartsTheQuietSecond()
{
    World world;
    const QObject context;
    qint64 polledAt = 0;
    // Timers fire in the order of their times also when the machine is late: this one is older than the quiet second.
    QTimer::singleShot(600, Qt::PreciseTimer, &context, [&] {
        polledAt = world.elapsed.elapsed();
        world.poll(120);
    });
    world.start();
    QTRY_COMPARE(world.reloads, 1);
    QVERIFY(world.lastReloadAt - polledAt >= 999);
    QCOMPARE(world.writtenPrice(), 120.0);
}

void WidgetSnapshotWriterTest::quietChangesAreWrittenWithoutReload()
{
    World world;
    world.start();
    world.endQuietTime();
    QCOMPARE(world.reloads, 1);
    world.clock.advance(299);
    world.poll(100.5);
    world.endQuietTime();
    QCOMPARE(world.writtenPrice(), 100.5);
    QCOMPARE(world.store.read()->writtenAt, world.clock.now());
    QCOMPARE(world.reloads, 1);
    // Judged against the last reload (100), not against the last write.
    world.poll(101.01);
    world.endQuietTime();
    QCOMPARE(world.reloads, 2);
}

void WidgetSnapshotWriterTest::reloadAfterFiveMinutes()
{
    World world;
    world.start();
    world.endQuietTime();
    QCOMPARE(world.reloads, 1);
    world.clock.advance(300);
    world.poll(100);
    world.endQuietTime();
    QCOMPARE(world.reloads, 2);
}

void WidgetSnapshotWriterTest::swappedColorsReloadAtOnce()
{
    World world;
    world.start();
    world.endQuietTime();
    QCOMPARE(world.reloads, 1);
    world.change([](AppSettings &settings) { settings.colorScheme = PriceColorScheme::redUpGreenDown; });
    world.endQuietTime();
    QCOMPARE(world.reloads, 2);
    QCOMPARE(world.store.read()->upColorHex, QStringLiteral("#F6465D"));
    QCOMPARE(world.store.read()->downColorHex, QStringLiteral("#2CBD84"));
}

void WidgetSnapshotWriterTest::failedWriteLogsOnceAndKeepsTheLastReload()
{
    World world;
    world.start();
    world.endQuietTime();
    QCOMPARE(world.reloads, 1);
    const LogCapture log;
    {
        const FullDisk full(10);
        world.poll(105);
        world.endQuietTime();
    }
    QCOMPARE(log.texts(category).size(), 1);
    QVERIFY(
        log.texts(category).front().startsWith(QStringLiteral("Widget snapshot not written: ") + *world.store.path()));
    QCOMPARE(log.lines().back().type, QtWarningMsg);
    QCOMPARE(world.writtenPrice(), 100.0);
    QCOMPARE(world.reloads, 1);

    world.poll(105.1); // little against the write that failed, much against the last reload
    world.endQuietTime();
    QCOMPARE(world.reloads, 2);
    QCOMPARE(log.texts(category).size(), 1);
}

void WidgetSnapshotWriterTest::unavailableContainerIsSilent()
{
    World world;
    const LogCapture log;
    int reloads = 0;
    const WidgetSnapshotWriter writer(
        WidgetSnapshotStore(), *world.coins, world.settings, [&] { ++reloads; }, world.clock.clock());
    world.start(); // its write comes after that of the other
    QTRY_COMPARE(world.reloads, 1);
    QCOMPARE(reloads, 0);
    QVERIFY(log.texts(category).isEmpty());
}

void WidgetSnapshotWriterTest::goneWriterDoesNothing()
{
    World world;
    int reloads = 0;
    const WidgetSnapshotStore other{world.directory.filePath(QStringLiteral("other"))};
    auto gone = std::make_unique<WidgetSnapshotWriter>(
        other, *world.coins, world.settings, [&] { ++reloads; }, world.clock.clock());
    world.start();
    gone.reset();
    world.poll(130);
    QTRY_COMPARE(world.reloads, 1);
    QCOMPARE(reloads, 0);
    QVERIFY(!QDir(*other.directory).exists());
}

TICKWISE_TEST(WidgetSnapshotWriterTest)
#include "WidgetSnapshotWriterTest.moc"
