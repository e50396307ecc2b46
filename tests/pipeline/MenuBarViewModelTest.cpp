#include "pipeline/MenuBarViewModel.h"

#include "doubles/Catalogs.h"
#include "doubles/PipelineDoubles.h"
#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"
#include "pipeline/TimeText.h"
#include "support/Localization.h"

#include <QSignalSpy>

using namespace tickwise;
using namespace tickwise::test;

namespace {

struct MenuBarViewModelWorld
{
    MemoryDefaults storage;
    SettingsViewModel settings{UserDefaultsSettingsStore(storage)};
    TestClock clock;
    FixedCatalog catalog{validCoins()};
    FakePriceFetching prices;
    RecordingNotifier notifier;
    CoinListViewModel coins{catalog, prices, notifier, settings, clock.clock()};
    MenuBarViewModel menuBar{clock.clock()};

    void answer(double btc)
    {
        if (!prices.isOpen())
            coins.fetchPrices();
        prices.answer({{QStringLiteral("BTC"), btc}});
    }
};

} // namespace

class MenuBarViewModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void logoUntilTheFirstPrice();
    void followsPricesAndSettings();
    void switchingThePillOffRemovesIt();
    void followsTheAppearance();
    void tellsOfChangesOnly();
    void publishedFieldsKeepTheirInitialValues();
    void itemThatWentIsLeftAlone();
    void failedPollShowsWhyAndWhenThePriceWasFetched();
};

void MenuBarViewModelTest::logoUntilTheFirstPrice()
{
    MenuBarViewModelWorld world;
    RecordingStatusItem item;
    world.menuBar.bind(&item, world.coins, world.settings);
    QCOMPARE(item.contents.size(), 1U);
    QVERIFY(item.contents.back().logo);
    world.answer(67432.4);
    QCOMPARE(item.contents.back().text, QStringLiteral("BTC 67,432"));
}

void MenuBarViewModelTest::followsPricesAndSettings()
{
    MenuBarViewModelWorld world;
    RecordingStatusItem item;
    world.menuBar.bind(&item, world.coins, world.settings);
    world.answer(100);
    world.answer(200);
    QCOMPARE(item.contents.back().text, QStringLiteral("BTC 200"));
    AppSettings settings = world.settings.settings();
    settings.menuBarContent = MenuBarContent::icon;
    world.settings.update(settings);
    QVERIFY(item.contents.back().logo);
}

void MenuBarViewModelTest::switchingThePillOffRemovesIt()
{
    MenuBarViewModelWorld world;
    RecordingStatusItem item;
    world.menuBar.bind(&item, world.coins, world.settings);
    world.answer(100);
    AppSettings settings = world.settings.settings();
    settings.showMenuBarBackground = true;
    world.settings.update(settings);
    QVERIFY(item.contents.back().pillColor.has_value());
    settings.showMenuBarBackground = false;
    world.settings.update(settings);
    QVERIFY(!item.contents.back().pillColor.has_value());
}

void MenuBarViewModelTest::followsTheAppearance()
{
    MenuBarViewModelWorld world;
    RecordingStatusItem item;
    world.menuBar.bind(&item, world.coins, world.settings);
    world.answer(100);
    AppSettings settings = world.settings.settings();
    settings.priceColorEnabled = false;
    settings.showMenuBarBackground = true;
    world.settings.update(settings);
    QCOMPARE(*item.contents.back().pillColor, QColor(Qt::black));
    item.setAppearance(PanelAppearance::light);
    QCOMPARE(*item.contents.back().pillColor, QColor(Qt::white));
}

void MenuBarViewModelTest::tellsOfChangesOnly()
{
    MenuBarViewModelWorld world;
    RecordingStatusItem item;
    world.menuBar.bind(&item, world.coins, world.settings);
    QSignalSpy changed(&world.menuBar, &MenuBarViewModel::contentChanged);
    world.answer(100);
    QCOMPARE(changed.size(), 1);
    world.menuBar.refresh();
    QCOMPARE(changed.size(), 1);
    world.answer(101);
    QCOMPARE(changed.size(), 2);
}

void MenuBarViewModelTest::publishedFieldsKeepTheirInitialValues()
{
    MenuBarViewModelWorld world;
    RecordingStatusItem item;
    world.menuBar.bind(&item, world.coins, world.settings);
    world.answer(100);
    QCOMPARE(world.menuBar.bindableStatusTitle().value(), QStringLiteral("BTC --"));
    QVERIFY(!world.menuBar.bindableStatusColor().value().has_value());
}

void MenuBarViewModelTest::itemThatWentIsLeftAlone()
{
    MenuBarViewModelWorld world;
    {
        RecordingStatusItem item;
        world.menuBar.bind(&item, world.coins, world.settings);
    }
    world.answer(100);
    QCOMPARE(world.coins.coins().front().currentPrice, std::optional(100.0));
}

void MenuBarViewModelTest::failedPollShowsWhyAndWhenThePriceWasFetched()
{
    MenuBarViewModelWorld world;
    RecordingStatusItem item;
    world.menuBar.bind(&item, world.coins, world.settings);
    world.answer(100);
    const QString fetchedAt =
        localized(QStringLiteral("tooltip.fetchedAt")).arg(clockText(world.clock.now(), world.clock.now()));
    for (const double seconds : {40.0, 120.0}) {
        world.clock.advance(seconds);
        world.coins.fetchPrices();
        world.prices.answer(failure(UrlLoadingError{UrlErrorCode::notConnectedToInternet}));
        QVERIFY(item.contents.back().toolTipBody.contains(localized(QStringLiteral("failure.offline"))));
        QVERIFY(item.contents.back().toolTipBody.contains(fetchedAt));
    }
    world.answer(101);
    QVERIFY(!item.contents.back().toolTipBody.contains(localized(QStringLiteral("failure.offline"))));
}

TICKWISE_TEST(MenuBarViewModelTest)
#include "MenuBarViewModelTest.moc"
