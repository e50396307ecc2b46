// What the widget's snapshot costs: one write of 100 coins against the bare write of the same bytes, and the decision
// whether the widgets redraw.
#include "doubles/Catalogs.h"
#include "doubles/TestClock.h"
#include "widget/ReloadDecision.h"
#include "widget/WidgetSnapshotStore.h"

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cstdio>

using namespace tickwise;
using namespace tickwise::test;

namespace {

constexpr int coinCount = 100;

WidgetSnapshot snapshotOf(double price)
{
    AppSettings settings;
    settings.watchlistCoins.clear();
    std::vector<Coin> coins;
    for (const CoinMetadata &record : validCoins(coinCount)) {
        Coin &coin = coins.emplace_back();
        static_cast<CoinMetadata &>(coin) = record;
        coin.currentPrice = price;
        coin.priceChange24hPercent = -1.2345;
        settings.watchlistCoins.push_back({record.id});
    }
    return makeWidgetSnapshot(coins, settings, TestClock().now());
}

void writeSnapshot(benchmark::State &state)
{
    const QTemporaryDir directory;
    const WidgetSnapshotStore store{directory.path()};
    const WidgetSnapshot snapshot = snapshotOf(67432.125);
    for (auto _ : state)
        benchmark::DoNotOptimize(store.write(snapshot));
}
BENCHMARK(writeSnapshot);

void writeSameBytes(benchmark::State &state)
{
    const QTemporaryDir directory;
    const QByteArray temporary = QFile::encodeName(directory.filePath(QStringLiteral("floor.new")));
    const QByteArray final = QFile::encodeName(directory.filePath(QStringLiteral("floor")));
    const QByteArray bytes = encodeWidgetSnapshot(snapshotOf(67432.125)).value();
    for (auto _ : state) {
        QFile file(directory.filePath(QStringLiteral("floor.new")));
        file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered);
        file.write(bytes);
        file.close();
        benchmark::DoNotOptimize(std::rename(temporary.constData(), final.constData()));
    }
}
BENCHMARK(writeSameBytes);

void decideReload(benchmark::State &state)
{
    const WidgetSnapshot old = snapshotOf(100);
    const WidgetSnapshot next = snapshotOf(100.5); // every quote is looked at, none moved enough
    const std::optional<WidgetReload> last = WidgetReload{old, old.writtenAt};
    for (auto _ : state)
        benchmark::DoNotOptimize(needsWidgetReload(last, next));
}
BENCHMARK(decideReload);

} // namespace

BENCHMARK_MAIN();
