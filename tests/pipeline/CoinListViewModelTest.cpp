#include "pipeline/CoinListViewModel.h"

#include "doubles/Catalogs.h"
#include "doubles/PipelineDoubles.h"
#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"

#include <QSignalSpy>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const Error offline = UrlLoadingError{UrlErrorCode::notConnectedToInternet};

/// The model with doubles around it; the poll timer is far away unless the settings say otherwise.
struct CoinListViewModelWorld
{
    explicit CoinListViewModelWorld(const AppSettings &settings = quietSettings(),
                                    std::vector<CoinMetadata> records = validCoins())
        : catalog(std::move(records))
    {
        settingsViewModel.update(settings);
        model = std::make_unique<CoinListViewModel>(catalog, prices, notifier, settingsViewModel, clock.clock(),
                                                    [this] { return suspendedTime; });
    }

    static AppSettings quietSettings()
    {
        AppSettings settings;
        settings.pollingInterval = 86400;
        return settings;
    }

    void change(const std::function<void(AppSettings &)> &edit)
    {
        AppSettings settings = settingsViewModel.settings();
        edit(settings);
        settingsViewModel.update(settings);
    }
    void poll(const std::map<QString, double> &answer, double rate = 1.0)
    {
        if (!prices.isOpen())
            model->fetchPrices();
        prices.answer(answer, rate);
    }
    const Coin &coin(std::size_t index) const { return model->coins().at(index); }

    MemoryDefaults storage;
    SettingsViewModel settingsViewModel{UserDefaultsSettingsStore(storage)};
    TestClock clock;
    std::chrono::nanoseconds suspendedTime{0};
    FixedCatalog catalog;
    FakePriceFetching prices;
    RecordingNotifier notifier;
    std::unique_ptr<CoinListViewModel> model;
};

const QString btcSymbol = QStringLiteral("BTC");
const QString eth = QStringLiteral("ETH");

} // namespace

class CoinListViewModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsWithTheWatchlistAndOneFetch();
    void emptyWatchlistFetchesNothing();
    void delistedCoinsAreNotAskedFor();
    void unknownCoinsAreSkippedAndKept();
    void invalidDisplayedCoinBecomesTheFirst();
    void emptyWatchlistKeepsTheDisplayedCoin();
    void migratedCoinsAreReconciledAndSaved();
    void snapshotFillsTheCoins();
    void missingTickerKeepsOlderValues();
    void changeThatTheExchangeDroppedIsCleared();
    void fetchesNeverOverlap();
    void failedFetchKeepsValuesAndTellsWhy();
    void timerPolls();
    void periodIsTheInterval();
    void changedIntervalRestartsTheTimerAndFetches();
    void intervalOfZeroOrLessStillReturnsToTheLoop();
    void restartDropsTheFetchInFlight();
    void sleepStopsPollingUntilItResumes();
    void nothingIsFetchedWhileAsleep();
    void answerFromBeforeSleepIsDroppedAndAskedForAgain();
    void failureFromBeforeSleepIsNotShown();
    void subscriberMayRestartPollingDuringASnapshot();
    void emptiedWatchlistForgetsTheFailure();
    void coinRemovedWhileAFetchIsOpen();
    void entryRemovedWhileAFetchIsOpenFiresNoAlert();
    void noFetchBetweenCurrencyChangeAndRebuild();
    void pricesKeepTheCurrencyTheyWereFetchedIn();
    void levelsAtARateBelowOne();
    void snapshotInAnOldCurrencyIsDropped();
    void newCurrencyClearsPricesAndBaselines();
    void aboveAlertFiresPerCrossing();
    void changeAlertReportsTheMove();
    void alertsOffOnlySetBaselines();
    void firstOfTwoEntriesCounts();
    void restartOfTheProgramNeverFiresOnTheFirstPrice();
    void symbolChangeDropsTheHeldPrice();
    void rebuildKeepsHeldPricesAndFollowsTheOrder();
    void catalogChangeRebuildsAndFetches();
    void catalogThatBecomesEmptyStopsPrices();
};

void CoinListViewModelTest::startsWithTheWatchlistAndOneFetch()
{
    const CoinListViewModelWorld world;
    QCOMPARE(world.model->coins().size(), 2U);
    QCOMPARE(world.coin(0).id, QStringLiteral("bitcoin"));
    QVERIFY(!world.coin(0).currentPrice);
    QVERIFY(world.model->isLoading());
    QCOMPARE(world.model->lastUsdToTargetExchangeRate(), 1.0);
    QCOMPARE(world.prices.requests.size(), 1U);
    QCOMPARE(world.prices.requests.front().symbols, (QStringList{btcSymbol, eth}));
}

void CoinListViewModelTest::emptyWatchlistFetchesNothing()
{
    AppSettings settings = CoinListViewModelWorld::quietSettings();
    settings.watchlistCoins.clear();
    const CoinListViewModelWorld world(settings);
    QVERIFY(world.prices.requests.empty());
    QVERIFY(!world.model->isLoading());
    QVERIFY(world.model->coins().empty());
}

void CoinListViewModelTest::delistedCoinsAreNotAskedFor()
{
    std::vector<CoinMetadata> records = validCoins();
    records[1].status = CoinStatus::delisted;
    const CoinListViewModelWorld world(CoinListViewModelWorld::quietSettings(), records);
    QCOMPARE(world.model->coins().size(), 2U);
    QCOMPARE(world.prices.requests.front().symbols, QStringList{btcSymbol});
}

void CoinListViewModelTest::unknownCoinsAreSkippedAndKept()
{
    AppSettings settings = CoinListViewModelWorld::quietSettings();
    settings.watchlistCoins.insert(settings.watchlistCoins.begin(), {QStringLiteral("unheard-of")});
    settings.displayedCoinId = QStringLiteral("ethereum");
    const CoinListViewModelWorld world(settings);
    QCOMPARE(world.model->coins().size(), 2U);
    QCOMPARE(world.settingsViewModel.settings().watchlistCoins.size(), 3U);
}

void CoinListViewModelTest::invalidDisplayedCoinBecomesTheFirst()
{
    AppSettings settings = CoinListViewModelWorld::quietSettings();
    settings.watchlistCoins = {{QStringLiteral("ethereum")}, {QStringLiteral("coin-3")}, {QStringLiteral("coin-4")}};
    const CoinListViewModelWorld world(settings);
    QCOMPARE(world.settingsViewModel.settings().displayedCoinId, QStringLiteral("ethereum"));
    QCOMPARE(UserDefaultsSettingsStore(const_cast<MemoryDefaults &>(world.storage)).load()->displayedCoinId,
             QStringLiteral("ethereum"));
}

void CoinListViewModelTest::emptyWatchlistKeepsTheDisplayedCoin()
{
    AppSettings settings = CoinListViewModelWorld::quietSettings();
    settings.watchlistCoins.clear();
    settings.displayedCoinId = QStringLiteral("solana");
    const CoinListViewModelWorld world(settings);
    QCOMPARE(world.settingsViewModel.settings().displayedCoinId, QStringLiteral("solana"));
}

void CoinListViewModelTest::migratedCoinsAreReconciledAndSaved()
{
    std::vector<CoinMetadata> records = validCoins();
    CoinMetadata old = coinRecord(QStringLiteral("old"), QStringLiteral("OLD"));
    old.listed = false;
    old.status = CoinStatus::migrated;
    old.migratedTo = QStringLiteral("coin-9");
    records.push_back(old);
    AppSettings settings = CoinListViewModelWorld::quietSettings();
    settings.watchlistCoins = {{QStringLiteral("old")}};
    settings.displayedCoinId = QStringLiteral("old");
    CoinListViewModelWorld world(settings, records);
    QCOMPARE(world.coin(0).id, QStringLiteral("coin-9"));
    QCOMPARE(UserDefaultsSettingsStore(world.storage).load()->displayedCoinId, QStringLiteral("coin-9"));
}

void CoinListViewModelTest::snapshotFillsTheCoins()
{
    CoinListViewModelWorld world;
    PriceSnapshot snapshot;
    snapshot.prices = {{btcSymbol, 67432.7}, {eth, 2500}};
    snapshot.changes24h = {{btcSymbol, 1.25}};
    snapshot.usdToTargetRate = 0.9;
    world.prices.answer(snapshot);
    QVERIFY(!world.model->isLoading());
    QCOMPARE(world.coin(0).currentPrice, std::optional(67432.7));
    QCOMPARE(world.coin(0).priceChange24hPercent, std::optional(1.25));
    QCOMPARE(world.coin(0).referencePrice, std::optional(67432.7));
    QCOMPARE(world.coin(0).lastUpdated, std::optional(world.clock.now()));
    QVERIFY(!world.coin(1).priceChange24hPercent);
    QCOMPARE(world.model->lastUsdToTargetExchangeRate(), 0.9);
    QVERIFY(!world.model->lastFetchFailure());
}

void CoinListViewModelTest::missingTickerKeepsOlderValues()
{
    CoinListViewModelWorld world;
    world.poll({{btcSymbol, 100}, {eth, 50}});
    const TimePoint first = world.clock.now();
    world.clock.advance(10);
    world.poll({{btcSymbol, 101}});
    QCOMPARE(world.coin(0).currentPrice, std::optional(101.0));
    QCOMPARE(world.coin(1).currentPrice, std::optional(50.0));
    QCOMPARE(world.coin(1).lastUpdated, std::optional(first));
    world.poll({});
    QCOMPARE(world.coin(0).currentPrice, std::optional(101.0));
}

void CoinListViewModelTest::changeThatTheExchangeDroppedIsCleared()
{
    CoinListViewModelWorld world;
    PriceSnapshot snapshot;
    snapshot.prices = {{btcSymbol, 100}};
    snapshot.changes24h = {{btcSymbol, 1.25}};
    world.prices.answer(snapshot);
    world.poll({{btcSymbol, 100}});
    QVERIFY(!world.coin(0).priceChange24hPercent);
}

void CoinListViewModelTest::fetchesNeverOverlap()
{
    CoinListViewModelWorld world;
    world.model->fetchPrices();
    QCOMPARE(world.prices.requests.size(), 1U);
    world.prices.answer(std::map<QString, double>{{btcSymbol, 1}});
    world.model->fetchPrices();
    QCOMPARE(world.prices.requests.size(), 2U);
}

void CoinListViewModelTest::failedFetchKeepsValuesAndTellsWhy()
{
    CoinListViewModelWorld world;
    world.poll({{btcSymbol, 100}});
    world.model->fetchPrices();
    world.prices.answer(failure(offline));
    QVERIFY(!world.model->isLoading());
    QCOMPARE(world.coin(0).currentPrice, std::optional(100.0));
    QVERIFY(world.model->lastFetchFailure().has_value());
    QVERIFY(world.model->lastFetchFailure()->reason == FailureReason::offline);
    world.poll({{btcSymbol, 101}});
    QVERIFY(!world.model->lastFetchFailure());
}

void CoinListViewModelTest::timerPolls()
{
    AppSettings settings = CoinListViewModelWorld::quietSettings();
    settings.pollingInterval = 0.02;
    CoinListViewModelWorld world(settings);
    for (std::size_t polls = 1; polls < 4; ++polls) {
        QCOMPARE(world.prices.requests.size(), polls);
        world.prices.answer(std::map<QString, double>{{btcSymbol, 1}});
        QTRY_COMPARE(world.prices.requests.size(), polls + 1);
    }
}

void CoinListViewModelTest::periodIsTheInterval()
{
    AppSettings settings = CoinListViewModelWorld::quietSettings();
    settings.pollingInterval = 0.4;
    // Timers fire in the order of their times also when the machine is late.
    std::optional<CoinListViewModelWorld> world;
    std::optional<std::size_t> shortlyBefore;
    std::optional<std::size_t> shortlyAfter;
    const auto note = [&world](std::optional<std::size_t> &count) {
        return [&world, &count] { count = world->prices.requests.size(); };
    };
    QTimer::singleShot(std::chrono::milliseconds(390), Qt::PreciseTimer, this, note(shortlyBefore));
    world.emplace(settings);
    QTimer::singleShot(std::chrono::milliseconds(415), Qt::PreciseTimer, this, note(shortlyAfter));
    world->prices.answer(std::map<QString, double>{{btcSymbol, 1}});
    QTRY_VERIFY(shortlyAfter.has_value());
    QVERIFY(shortlyBefore == 1U);
    QVERIFY(shortlyAfter == 2U);
}

void CoinListViewModelTest::changedIntervalRestartsTheTimerAndFetches()
{
    CoinListViewModelWorld world;
    world.poll({{btcSymbol, 1}});
    world.change([](AppSettings &settings) { settings.pollingInterval = 0.02; });
    world.model->restartPolling();
    QCOMPARE(world.prices.requests.size(), 2U);
    world.prices.answer(std::map<QString, double>{{btcSymbol, 1}});
    QTRY_COMPARE(world.prices.requests.size(), 3U);
}

void CoinListViewModelTest::intervalOfZeroOrLessStillReturnsToTheLoop()
{
    for (const double interval : {0.0, -5.0, std::numeric_limits<double>::quiet_NaN(), 1e300}) {
        AppSettings settings = CoinListViewModelWorld::quietSettings();
        settings.pollingInterval = interval;
        CoinListViewModelWorld world(settings);
        world.prices.answer(std::map<QString, double>{{btcSymbol, 1}});
        if (interval < 1)
            QTRY_VERIFY(world.prices.requests.size() > 1U);
    }
}

void CoinListViewModelTest::restartDropsTheFetchInFlight()
{
    CoinListViewModelWorld world;
    QSignalSpy loading(world.model.get(), &CoinListViewModel::isLoadingChanged);
    world.model->restartPolling();
    QCOMPARE(world.prices.requests.size(), 2U);
    QCOMPARE(loading.count(), 2);
    world.prices.answer(std::map<QString, double>{{btcSymbol, 7}});
    QCOMPARE(world.coin(0).currentPrice, std::optional(7.0));
}

void CoinListViewModelTest::sleepStopsPollingUntilItResumes()
{
    AppSettings settings = CoinListViewModelWorld::quietSettings();
    settings.pollingInterval = 0.02;
    settings.watchlistCoins[0] = {QStringLiteral("bitcoin"), CoinAlertKind::above, 100};
    CoinListViewModelWorld world(settings);
    world.poll({{btcSymbol, 90}});
    QTRY_VERIFY(world.prices.isOpen());
    world.model->suspendPolling();
    QVERIFY(!world.prices.isOpen());
    QVERIFY(!world.model->isLoading());
    const std::size_t before = world.prices.requests.size();
    QTest::qWait(100); // five periods
    QCOMPARE(world.prices.requests.size(), before);
    QVERIFY(world.notifier.alerts.empty());
    QCOMPARE(world.coin(0).currentPrice, std::optional(90.0));
    world.model->resumePolling();
    QCOMPARE(world.prices.requests.size(), before + 1);
    world.prices.answer(std::map<QString, double>{{btcSymbol, 91}});
    QTRY_COMPARE(world.prices.requests.size(), before + 2);
}

void CoinListViewModelTest::nothingIsFetchedWhileAsleep()
{
    AppSettings settings = CoinListViewModelWorld::quietSettings();
    settings.pollingInterval = 0.02;
    CoinListViewModelWorld world(settings);
    world.poll({{btcSymbol, 90}});
    world.model->suspendPolling();
    const std::size_t before = world.prices.requests.size();
    world.model->fetchPrices();
    world.model->restartPolling();
    world.change([](AppSettings &changed) { changed.baseCurrency = BaseCurrency::eur; });
    world.model->rebuildCoins();
    world.model->restartPolling();
    world.catalog.publish(validCoins(), noImages);
    QTest::qWait(100); // five periods
    QCOMPARE(world.prices.requests.size(), before);
    QVERIFY(!world.model->isLoading());
    world.model->resumePolling();
    QCOMPARE(world.prices.requests.size(), before + 1);
    QVERIFY(world.prices.requests.back().currency == BaseCurrency::eur);
}

void CoinListViewModelTest::answerFromBeforeSleepIsDroppedAndAskedForAgain()
{
    CoinListViewModelWorld world;
    world.change([](AppSettings &settings) {
        settings.watchlistCoins[0] = {QStringLiteral("bitcoin"), CoinAlertKind::above, 100};
    });
    world.poll({{btcSymbol, 90}});
    world.clock.advance(10);
    world.model->fetchPrices();
    world.suspendedTime += std::chrono::hours(8);
    world.prices.answer({{btcSymbol, 110}}, 0.9);
    QVERIFY(world.notifier.alerts.empty());
    QCOMPARE(world.coin(0).currentPrice, std::optional(90.0));
    QVERIFY(world.coin(0).lastUpdated < world.clock.now());
    QCOMPARE(world.model->lastUsdToTargetExchangeRate(), 1.0);
    QCOMPARE(world.prices.requests.size(), 3U);
    QVERIFY(world.model->isLoading());
    world.prices.answer(std::map<QString, double>{{btcSymbol, 111}});
    QCOMPARE(world.coin(0).currentPrice, std::optional(111.0));
    QCOMPARE(world.notifier.alerts.size(), 1U);
    QVERIFY(!world.model->isLoading());
}

void CoinListViewModelTest::failureFromBeforeSleepIsNotShown()
{
    CoinListViewModelWorld world;
    world.suspendedTime += std::chrono::seconds(1);
    world.prices.answer(failure(offline));
    QVERIFY(!world.model->lastFetchFailure());
    QVERIFY(world.prices.isOpen());
}

void CoinListViewModelTest::subscriberMayRestartPollingDuringASnapshot()
{
    CoinListViewModelWorld world;
    bool restarted = false;
    const QPropertyNotifier notifier = world.model->bindableCoins().addNotifier([&] {
        if (!std::exchange(restarted, true))
            world.model->restartPolling();
    });
    world.prices.answer(std::map<QString, double>{{btcSymbol, 1}});
    QCOMPARE(world.prices.requests.size(), 2U);
    QVERIFY(world.prices.isOpen());
    QVERIFY(world.model->isLoading());
    world.prices.answer(std::map<QString, double>{{btcSymbol, 2}});
    QCOMPARE(world.coin(0).currentPrice, std::optional(2.0));
    QVERIFY(!world.model->isLoading());
}

void CoinListViewModelTest::emptiedWatchlistForgetsTheFailure()
{
    CoinListViewModelWorld world;
    world.prices.answer(failure(offline));
    QVERIFY(world.model->lastFetchFailure().has_value());
    world.change([](AppSettings &settings) { settings.watchlistCoins = {{QStringLiteral("ethereum")}}; });
    world.model->rebuildCoins();
    QVERIFY(world.model->lastFetchFailure().has_value());
    world.change([](AppSettings &settings) { settings.watchlistCoins.clear(); });
    // Whoever draws the new list must not find the failure any more.
    std::optional<bool> failedWhileDrawing;
    const QPropertyNotifier notifier = world.model->bindableCoins().addNotifier(
        [&] { failedWhileDrawing = world.model->lastFetchFailure().has_value(); });
    world.model->rebuildCoins();
    QCOMPARE(failedWhileDrawing, std::optional(false));
}

void CoinListViewModelTest::coinRemovedWhileAFetchIsOpen()
{
    CoinListViewModelWorld world;
    world.change([](AppSettings &settings) { settings.watchlistCoins.erase(settings.watchlistCoins.begin()); });
    world.model->rebuildCoins();
    world.prices.answer(std::map<QString, double>{{btcSymbol, 100}, {eth, 50}});
    QCOMPARE(world.model->coins().size(), 1U);
    QCOMPARE(world.coin(0).id, QStringLiteral("ethereum"));
    QCOMPARE(world.coin(0).currentPrice, std::optional(50.0));
    world.model->fetchPrices();
    QCOMPARE(world.prices.requests.back().symbols, QStringList{eth});
}

void CoinListViewModelTest::entryRemovedWhileAFetchIsOpenFiresNoAlert()
{
    CoinListViewModelWorld world;
    world.poll({{btcSymbol, 100}});
    world.model->fetchPrices();
    world.change([](AppSettings &settings) { settings.watchlistCoins.erase(settings.watchlistCoins.begin()); });
    world.prices.answer(std::map<QString, double>{{btcSymbol, 200}});
    QVERIFY(world.notifier.alerts.empty());
    QCOMPARE(world.coin(0).currentPrice, std::optional(200.0));
    QCOMPARE(world.coin(0).referencePrice, std::optional(100.0));
}

void CoinListViewModelTest::noFetchBetweenCurrencyChangeAndRebuild()
{
    AppSettings settings = CoinListViewModelWorld::quietSettings();
    settings.pollingInterval = 0.02;
    CoinListViewModelWorld world(settings);
    world.poll({{btcSymbol, 100}, {eth, 50}});
    QTRY_VERIFY(world.prices.isOpen());
    const std::size_t before = world.prices.requests.size();
    world.change([](AppSettings &changed) { changed.baseCurrency = BaseCurrency::cny; });
    world.prices.answer(std::map<QString, double>{{btcSymbol, 101}});
    QTest::qWait(100); // five periods
    world.model->fetchPrices();
    world.model->restartPolling(); // as after a return of the network
    QCOMPARE(world.prices.requests.size(), before);
    QVERIFY(!world.model->isLoading());
    QCOMPARE(world.coin(0).currentPrice, std::optional(100.0));
    world.model->rebuildCoins();
    world.model->restartPolling();
    QCOMPARE(world.prices.requests.size(), before + 1);
    world.prices.answer({{btcSymbol, 710}}, 7);
    QCOMPARE(world.coin(0).currentPrice, std::optional(710.0));
    QVERIFY(!world.coin(1).currentPrice);
}

void CoinListViewModelTest::pricesKeepTheCurrencyTheyWereFetchedIn()
{
    CoinListViewModelWorld world;
    QVERIFY(!world.model->priceDataCurrency());
    world.poll({{btcSymbol, 100}});
    world.change([](AppSettings &settings) { settings.baseCurrency = BaseCurrency::eur; });
    QVERIFY(world.model->priceDataCurrency() == BaseCurrency::usd);
    // The currency is the new one already when the new prices are published.
    std::optional<BaseCurrency> drawn;
    world.model->rebuildCoins();
    const QPropertyNotifier notifier =
        world.model->bindableCoins().addNotifier([&] { drawn = world.model->priceDataCurrency(); });
    world.poll({{btcSymbol, 90}}, 0.9);
    QVERIFY(drawn == BaseCurrency::eur);
}

void CoinListViewModelTest::levelsAtARateBelowOne()
{
    AppSettings settings = CoinListViewModelWorld::quietSettings();
    settings.baseCurrency = BaseCurrency::eur;
    settings.watchlistCoins[0] = {QStringLiteral("bitcoin"), CoinAlertKind::above, 100};
    CoinListViewModelWorld world(settings);
    world.poll({{btcSymbol, 89}}, 0.9);
    world.poll({{btcSymbol, 90}}, 0.9);
    QCOMPARE(world.notifier.alerts.size(), 1U);
    QCOMPARE(world.notifier.alerts.front().rate, 0.9);
    QVERIFY(world.notifier.alerts.front().currency == BaseCurrency::eur);
}

void CoinListViewModelTest::snapshotInAnOldCurrencyIsDropped()
{
    CoinListViewModelWorld world;
    world.change([](AppSettings &settings) { settings.baseCurrency = BaseCurrency::eur; });
    world.prices.answer({{btcSymbol, 100}}, 2);
    QVERIFY(!world.coin(0).currentPrice);
    QVERIFY(!world.model->isLoading());
    QVERIFY(!world.model->priceDataCurrency());
    QCOMPARE(world.model->lastUsdToTargetExchangeRate(), 1.0);
    world.model->rebuildCoins();
    world.model->fetchPrices();
    QVERIFY(world.prices.requests.back().currency == BaseCurrency::eur);
    world.prices.answer({{btcSymbol, 90}}, 0.9);
    QCOMPARE(world.coin(0).currentPrice, std::optional(90.0));
}

void CoinListViewModelTest::newCurrencyClearsPricesAndBaselines()
{
    CoinListViewModelWorld world;
    world.change([](AppSettings &settings) {
        settings.watchlistCoins[0] = {QStringLiteral("bitcoin"), CoinAlertKind::above, 100};
    });
    world.poll({{btcSymbol, 99}, {eth, 5}});
    world.change([](AppSettings &settings) { settings.baseCurrency = BaseCurrency::cny; });
    world.model->rebuildCoins();
    QVERIFY(!world.coin(0).currentPrice);
    QVERIFY(!world.coin(0).referencePrice);
    QVERIFY(!world.coin(0).lastUpdated);
    world.poll({{btcSymbol, 710}}, 7);
    QVERIFY(world.notifier.alerts.empty());
    QCOMPARE(world.coin(0).referencePrice, std::optional(710.0));
    QVERIFY(!world.coin(1).referencePrice);
}

void CoinListViewModelTest::aboveAlertFiresPerCrossing()
{
    CoinListViewModelWorld world;
    world.change([](AppSettings &settings) {
        settings.watchlistCoins[0] = {QStringLiteral("bitcoin"), CoinAlertKind::above, 100};
    });
    QList<double> fired;
    for (const double price : {90., 95., 101., 102., 99., 100.}) {
        const std::size_t before = world.notifier.alerts.size();
        world.poll({{btcSymbol, price}});
        if (world.notifier.alerts.size() > before)
            fired.append(price);
    }
    QCOMPARE(fired, (QList<double>{101, 100}));
    const RecordingNotifier::Alert &alert = world.notifier.alerts.front();
    QCOMPARE(alert.coin.currentPrice, std::optional(101.0));
    QVERIFY(alert.kind == CoinAlertKind::above);
    QVERIFY(alert.currency == BaseCurrency::usd);
    QCOMPARE(alert.threshold, 100.0);
    QCOMPARE(alert.rate, 1.0);
    QCOMPARE(world.coin(0).referencePrice, std::optional(100.0));
}

void CoinListViewModelTest::changeAlertReportsTheMove()
{
    CoinListViewModelWorld world;
    world.poll({{btcSymbol, 100}});
    world.poll({{btcSymbol, 101.9}});
    QVERIFY(world.notifier.alerts.empty());
    world.poll({{btcSymbol, 98}});
    QCOMPARE(world.notifier.alerts.size(), 1U);
    QCOMPARE(world.notifier.alerts.front().changePercent, -2.0);
    QCOMPARE(world.coin(0).referencePrice, std::optional(98.0));
}

void CoinListViewModelTest::alertsOffOnlySetBaselines()
{
    CoinListViewModelWorld world;
    world.change([](AppSettings &settings) { settings.priceChangeNotificationEnabled = false; });
    world.poll({{btcSymbol, 100}});
    world.poll({{btcSymbol, 200}});
    QVERIFY(world.notifier.alerts.empty());
    QCOMPARE(world.coin(0).referencePrice, std::optional(100.0));
    QCOMPARE(world.coin(0).currentPrice, std::optional(200.0));
}

void CoinListViewModelTest::firstOfTwoEntriesCounts()
{
    CoinListViewModelWorld world;
    world.change([](AppSettings &settings) {
        settings.watchlistCoins = {{QStringLiteral("bitcoin"), CoinAlertKind::notSet, 2},
                                   {QStringLiteral("bitcoin"), CoinAlertKind::change, 2}};
    });
    world.poll({{btcSymbol, 100}});
    world.poll({{btcSymbol, 200}});
    QVERIFY(world.notifier.alerts.empty());
}

void CoinListViewModelTest::restartOfTheProgramNeverFiresOnTheFirstPrice()
{
    AppSettings settings = CoinListViewModelWorld::quietSettings();
    settings.watchlistCoins = {{QStringLiteral("bitcoin"), CoinAlertKind::above, 100}};
    {
        CoinListViewModelWorld before(settings);
        before.poll({{btcSymbol, 90}});
    }
    CoinListViewModelWorld after(settings);
    after.poll({{btcSymbol, 150}});
    QVERIFY(after.notifier.alerts.empty());
    after.poll({{btcSymbol, 90}});
    after.poll({{btcSymbol, 150}});
    QCOMPARE(after.notifier.alerts.size(), 1U);
}

void CoinListViewModelTest::symbolChangeDropsTheHeldPrice()
{
    CoinListViewModelWorld world;
    world.poll({{btcSymbol, 100}, {eth, 50}});
    std::vector<CoinMetadata> records = validCoins();
    records[0].symbol = QStringLiteral("XBT");
    world.catalog.publish(records, noImages);
    QVERIFY(!world.coin(0).currentPrice);
    QVERIFY(!world.coin(0).referencePrice);
    QCOMPARE(world.coin(1).currentPrice, std::optional(50.0));
}

void CoinListViewModelTest::rebuildKeepsHeldPricesAndFollowsTheOrder()
{
    CoinListViewModelWorld world;
    PriceSnapshot snapshot;
    snapshot.prices = {{btcSymbol, 100}, {eth, 50}};
    snapshot.changes24h = {{btcSymbol, 1.25}};
    world.prices.answer(snapshot);
    const TimePoint fetched = world.clock.now();
    world.clock.advance(10);
    world.change([](AppSettings &settings) {
        settings.watchlistCoins = {
            {QStringLiteral("ethereum")}, {QStringLiteral("coin-3")}, {QStringLiteral("bitcoin")}};
    });
    world.model->rebuildCoins();
    QCOMPARE(world.model->coins().size(), 3U);
    QCOMPARE(world.coin(0).currentPrice, std::optional(50.0));
    QCOMPARE(world.coin(0).lastUpdated, std::optional(fetched));
    QVERIFY(!world.coin(1).currentPrice);
    QVERIFY(!world.coin(1).lastUpdated);
    QCOMPARE(world.coin(2).referencePrice, std::optional(100.0));
    QCOMPARE(world.coin(2).priceChange24hPercent, std::optional(1.25));
}

void CoinListViewModelTest::catalogChangeRebuildsAndFetches()
{
    CoinListViewModelWorld world;
    world.poll({{btcSymbol, 100}});
    std::vector<CoinMetadata> records = validCoins();
    records[0].name = QStringLiteral("Renamed");
    world.catalog.publish(records, noImages);
    QCOMPARE(world.coin(0).name, QStringLiteral("Renamed"));
    QCOMPARE(world.coin(0).currentPrice, std::optional(100.0));
    QCOMPARE(world.prices.requests.size(), 2U);
}

void CoinListViewModelTest::catalogThatBecomesEmptyStopsPrices()
{
    CoinListViewModelWorld world;
    world.catalog.publish({}, noImages);
    QVERIFY(world.model->coins().empty());
    QVERIFY(!world.model->isLoading());
    QVERIFY(!world.prices.isOpen());
    QCOMPARE(world.settingsViewModel.settings().watchlistCoins.size(), 2U);
}

TICKWISE_TEST(CoinListViewModelTest)
#include "CoinListViewModelTest.moc"
