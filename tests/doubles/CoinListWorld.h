#pragma once

#include "doubles/Catalogs.h"
#include "doubles/PipelineDoubles.h"
#include "doubles/TestClock.h"
#include "pipeline/CoinListViewModel.h"

namespace tickwise::test {

/// A coin list among doubles: as many coins as wanted on the watchlist, prices when the test answers.
struct CoinListWorld
{
    explicit CoinListWorld(int coins = 2)
        : CoinListWorld(validCoins(std::max(coins, 200)), coins)
    {
    }

    CoinListWorld(std::vector<CoinMetadata> records, int watched)
        : catalog(std::move(records))
    {
        watch(watched);
        coinList = std::make_unique<CoinListViewModel>(catalog, prices, notifier, settings, clock.clock());
    }

    /// Puts the catalog's first coins on the watchlist.
    void watch(int coins)
    {
        AppSettings changed = settings.settings();
        changed.pollingInterval = 86400;
        changed.watchlistCoins.clear();
        for (int i = 0; i < coins; ++i)
            changed.watchlistCoins.push_back({catalog.coins()[std::size_t(i)].id});
        settings.update(changed);
        if (coinList)
            coinList->rebuildCoins();
    }

    void change(const std::function<void(AppSettings &)> &edit)
    {
        AppSettings changed = settings.settings();
        edit(changed);
        settings.update(changed);
    }

    /// Gives every coin that price and that 24-hour change.
    void price(double value, double change = 1.0)
    {
        PriceSnapshot snapshot;
        for (const CoinMetadata &coin : catalog.coins()) {
            snapshot.prices.insert(coin.symbol, value);
            snapshot.changes24h.insert(coin.symbol, change);
        }
        answer(snapshot);
    }

    void answer(const Result<PriceSnapshot> &result)
    {
        if (!prices.isOpen())
            coinList->fetchPrices();
        prices.answer(result);
    }

    MemoryDefaults storage;
    SettingsViewModel settings{UserDefaultsSettingsStore(storage)};
    TestClock clock;
    FixedCatalog catalog;
    FakePriceFetching prices;
    RecordingNotifier notifier;
    std::unique_ptr<CoinListViewModel> coinList;
};

} // namespace tickwise::test
