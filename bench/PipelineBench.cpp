// The pipeline's own work: one poll's snapshot merged and published for watchlists of growing length, and the catalog's
// load.
#include "doubles/Catalogs.h"
#include "doubles/PipelineDoubles.h"
#include "doubles/TestClock.h"
#include "pipeline/CoinListViewModel.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

using namespace tickwise;
using namespace tickwise::test;

namespace {

AppSettings longWatchlist(const std::vector<CoinMetadata> &records)
{
    AppSettings settings;
    settings.pollingInterval = 86400;
    settings.watchlistCoins.clear();
    for (const CoinMetadata &record : records)
        settings.watchlistCoins.push_back({record.id, CoinAlertKind::change, 1e9});
    return settings;
}

PriceSnapshot snapshotOf(const std::vector<CoinMetadata> &records, double price)
{
    PriceSnapshot snapshot;
    for (const CoinMetadata &record : records) {
        snapshot.prices.insert(record.symbol, price);
        snapshot.changes24h.insert(record.symbol, 1.5);
    }
    return snapshot;
}

void applySnapshot(benchmark::State &state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    std::vector<CoinMetadata> records = validCoins(1000);
    records.resize(count);
    MemoryDefaults storage;
    SettingsViewModel settings{UserDefaultsSettingsStore(storage)};
    settings.update(longWatchlist(records));
    FixedCatalog catalog(records);
    FakePriceFetching prices;
    RecordingNotifier notifier;
    TestClock clock;
    CoinListViewModel model(catalog, prices, notifier, settings, clock.clock());
    prices.answer(snapshotOf(records, 1));
    const PriceSnapshot snapshots[] = {snapshotOf(records, 100), snapshotOf(records, 101)};
    std::size_t turn = 0;
    for (auto _ : state) {
        clock.advance(10);
        model.fetchPrices();
        prices.answer(snapshots[++turn % 2]);
    }
    state.counters["per coin"] = benchmark::Counter(
        static_cast<double>(count), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(applySnapshot)->Arg(10)->Arg(100)->Arg(1000);

void pollThatFiresAlerts(benchmark::State &state)
{
    std::vector<CoinMetadata> records = validCoins();
    records.resize(25);
    AppSettings watched = longWatchlist(records);
    for (WatchlistCoin &coin : watched.watchlistCoins)
        coin.notificationThreshold = 0;
    MemoryDefaults storage;
    SettingsViewModel settings{UserDefaultsSettingsStore(storage)};
    settings.update(watched);
    FixedCatalog catalog(records);
    FakePriceFetching prices;
    RecordingNotifier notifier;
    TestClock clock;
    CoinListViewModel model(catalog, prices, notifier, settings, clock.clock());
    prices.answer(snapshotOf(records, 100));
    for (auto _ : state) {
        notifier.alerts.clear();
        model.fetchPrices();
        prices.answer(snapshotOf(records, 100));
    }
    state.counters["alerts"] = static_cast<double>(notifier.alerts.size());
}
BENCHMARK(pollThatFiresAlerts);

void catalogLoad(benchmark::State &state)
{
    const QString path = QStringLiteral(TICKWISE_BENCH_CATALOG);
    for (auto _ : state) {
        const CoinCatalog catalog(path, noImages);
        if (catalog.coins().size() != 1000)
            state.SkipWithError("the catalog of 1000 records does not load");
    }
}
BENCHMARK(catalogLoad)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
