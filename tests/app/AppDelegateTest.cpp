#include "app/AppDelegate.h"
#include "doubles/Languages.h"
#include "doubles/TestProgram.h"

#include "doubles/AppDoubles.h"
#include "doubles/PipelineDoubles.h"
#include "doubles/ScriptedHttpClient.h"
#include "doubles/TestClock.h"

#include <QPointer>
#include <QSignalSpy>

using namespace tickwise;
using namespace tickwise::test;

namespace {

/// A quote list as the main exchange sends it, closed at the test clock's time.
QByteArray binanceBody(const std::map<QString, double> &prices, TimePoint now)
{
    QStringList records;
    const auto closeTime = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count();
    for (const auto &[symbol, price] : prices) {
        records.append(
            QStringLiteral(R"({"symbol":"%1USDT","lastPrice":"%2","priceChangePercent":"1.5","closeTime":%3})")
                .arg(symbol)
                .arg(price)
                .arg(closeTime));
    }
    return QStringLiteral("[%1]").arg(records.join(QLatin1Char(','))).toUtf8();
}

/// A delegate among doubles.
struct World
{
    World()
    {
        http.answer(Endpoints().binanceMain, 200,
                    binanceBody({{QStringLiteral("BTC"), 67432.4}, {QStringLiteral("ETH"), 2500}}, clock.now()));
    }

    AppDelegate &launch()
    {
        delegate = std::make_unique<AppDelegate>(environment());
        quit = std::make_unique<QSignalSpy>(delegate.get(), &AppDelegate::quitRequested);
        delegate->applicationDidFinishLaunching();
        return *delegate;
    }

    AppEnvironment environment()
    {
        AppEnvironment result{.defaults = storage,
                              .httpClient = http,
                              .notificationCenter = notifications,
                              .loginItem = loginItem,
                              .makeStatusItem =
                                  [this] {
                                      auto made = std::make_unique<RecordingStatusItem>();
                                      item = made.get();
                                      return made;
                                  },
                              .reloadWidgets = [] {},
                              .isSecondCopy = [this] { return secondCopy; },
                              .environment = processEnvironment,
                              .clock = clock.clock()};
        return result;
    }

    void change(const std::function<void(AppSettings &)> &edit)
    {
        AppSettings settings = delegate->settingsViewModel().settings();
        edit(settings);
        delegate->settingsViewModel().update(settings);
    }
    int polls() const { return static_cast<int>(http.urls(Endpoints().binanceMain).size()); }

    TestClock clock;
    MemoryDefaults storage;
    ScriptedHttpClient http;
    RecordingNotificationCenter notifications;
    RecordingLoginItem loginItem;
    bool secondCopy = false;
    QProcessEnvironment processEnvironment{QProcessEnvironment::InheritFromParent};
    QPointer<RecordingStatusItem> item;
    std::unique_ptr<AppDelegate> delegate;
    std::unique_ptr<QSignalSpy> quit;
};

/// An updater that can check when the test says so.
class CheckableBackend : public UpdaterBackend
{
public:
    void checkForUpdates() override {}
    void setAutomaticallyChecksForUpdates(bool) override {}
    QBindable<bool> bindableCanCheckForUpdates() override { return &canCheck; }
    QBindable<bool> bindableAutomaticallyChecksForUpdates() override { return &m_automatic; }

    QProperty<bool> canCheck{false};

private:
    QProperty<bool> m_automatic{false};
};

QStringList texts(const Menu &menu)
{
    QStringList texts;
    for (const MenuEntry &entry : menu)
        texts.append(entry.kind == MenuEntry::Kind::separator ? QStringLiteral("-") : entry.text);
    return texts;
}

} // namespace

class AppDelegateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void showsThePriceAfterStartUp();
    void firstLaunchWritesNothing();
    void testHostDoesNothingMore();
    void secondCopyQuitsAtOnce();
    void threeIntervalChangesRestartPollingOnce();
    void otherSettingsDoNotRestartPolling();
    void languageIsAppliedAtStartAndLive();
    void loginItemFollowsTheSetting();
    void authorizationIsRequestedOnce();
    void menuListsTheWatchlistAndQuits();
    void menuHasNoEntryForAnUnknownCoin();
    void menuIsBuiltAnewEachTime();
    void menuChangesAreAnnouncedAtOnce();
    void changeCoinPublishesAndSaves();
    void sleepDropsQuotesUnderWay();
    void wakingFetchesAtOnce();
};

void AppDelegateTest::cleanup()
{
    test::useLanguage(AppLanguage::en);
}

void AppDelegateTest::showsThePriceAfterStartUp()
{
    World world;
    world.launch();
    QVERIFY(world.item->contents.front().logo);
    QTRY_COMPARE(world.item->contents.back().text, QStringLiteral("BTC 67,432"));
    QCOMPARE(world.polls(), 1);
    QCOMPARE(world.quit->count(), 0);
}

void AppDelegateTest::firstLaunchWritesNothing()
{
    World world;
    world.launch();
    QTRY_VERIFY(!world.item->contents.back().logo);
    QCOMPARE(world.storage.writes, 0);
}

void AppDelegateTest::testHostDoesNothingMore()
{
    World world;
    world.processEnvironment = QProcessEnvironment::systemEnvironment();
    world.processEnvironment.insert(QStringLiteral("XCTestConfigurationFilePath"), QString());
    world.secondCopy = true;
    world.launch();
    QVERIFY(world.item.isNull());
    QVERIFY(world.http.requests().empty());
    QCOMPARE(world.quit->count(), 0);
}

void AppDelegateTest::secondCopyQuitsAtOnce()
{
    World world;
    world.secondCopy = true;
    world.launch();
    QCOMPARE(world.quit->count(), 1);
    QVERIFY(world.item.isNull());
    QVERIFY(world.http.requests().empty());
}

void AppDelegateTest::threeIntervalChangesRestartPollingOnce()
{
    World world;
    world.launch();
    QTRY_VERIFY(!world.item->contents.back().logo);
    for (const double interval : {3600., 1800., 7200.})
        world.change([interval](AppSettings &settings) { settings.pollingInterval = interval; });
    QCOMPARE(world.polls(), 1);
    QTRY_COMPARE(world.polls(), 2);
    QTest::qWait(700); // one debounce more: nothing may follow
    QCOMPARE(world.polls(), 2);
}

void AppDelegateTest::otherSettingsDoNotRestartPolling()
{
    World world;
    world.launch();
    QTRY_VERIFY(!world.item->contents.back().logo);
    world.change([](AppSettings &settings) { settings.showMenuBarBackground = true; });
    QTest::qWait(700); // longer than the debounce
    QCOMPARE(world.polls(), 1);
    QVERIFY(world.item->contents.back().pillColor.has_value());
}

void AppDelegateTest::languageIsAppliedAtStartAndLive()
{
    World world;
    AppSettings stored;
    stored.language = AppLanguage::zhHans;
    UserDefaultsSettingsStore(world.storage).save(stored);
    world.launch();
    const QString hans = localized(QStringLiteral("menu.quit"));
    world.change([](AppSettings &settings) { settings.language = AppLanguage::zhHant; });
    const QString hant = localized(QStringLiteral("menu.quit"));
    world.change([](AppSettings &settings) { settings.language = AppLanguage::en; });
    const QString english = localized(QStringLiteral("menu.quit"));
    QCOMPARE(english, localized(QStringLiteral("menu.quit"), test::textsOf(AppLanguage::en)));
    QCOMPARE(hans, localized(QStringLiteral("menu.quit"), test::textsOf(AppLanguage::zhHans)));
    QCOMPARE(hant, localized(QStringLiteral("menu.quit"), test::textsOf(AppLanguage::zhHant)));
    QVERIFY(hans != english);
    // The tooltip speaks the new language too, without waiting for a poll.
    QTRY_VERIFY(!world.item->contents.back().logo);
    world.change([](AppSettings &settings) { settings.language = AppLanguage::zhHans; });
    const QString fetchedAt = localized(QStringLiteral("tooltip.fetchedAt"), test::textsOf(AppLanguage::zhHans));
    QVERIFY(world.item->contents.back().toolTipBody.contains(fetchedAt.section(QStringLiteral("%1"), 0, 0)));
}

void AppDelegateTest::loginItemFollowsTheSetting()
{
    World world;
    world.launch();
    QCOMPARE(world.loginItem.requests, std::vector<bool>{false});
    world.change([](AppSettings &settings) { settings.launchAtLogin = true; });
    world.change([](AppSettings &settings) { settings.showMenuBarBackground = true; });
    world.change([](AppSettings &settings) { settings.launchAtLogin = false; });
    QCOMPARE(world.loginItem.requests, (std::vector<bool>{false, true, false}));
}

void AppDelegateTest::authorizationIsRequestedOnce()
{
    World world;
    world.launch();
    QTRY_VERIFY(!world.item->contents.back().logo);
    QCOMPARE(world.notifications.authorizationRequests, 1);
}

void AppDelegateTest::menuListsTheWatchlistAndQuits()
{
    World world;
    world.launch();
    const Menu menu = world.item->menu();
    QCOMPARE(texts(menu), (QStringList{localized(QStringLiteral("menu.change")), QStringLiteral("-"),
                                       localized(QStringLiteral("menu.checkForUpdates")), QStringLiteral("-"),
                                       localized(QStringLiteral("menu.quit"))}));
    QCOMPARE(texts(menu.front().children),
             (QStringList{QStringLiteral("BTC - Bitcoin"), QStringLiteral("ETH - Ethereum")}));
    QCOMPARE(menu.front().children[0].checked, std::optional(true));
    QCOMPARE(menu.front().children[1].checked, std::optional(false));
    QVERIFY(!menu[2].enabled);
    QVERIFY(!menu.back().iconName.isEmpty());
    menu.back().activate();
    QCOMPARE(world.quit->count(), 1);
}

void AppDelegateTest::menuHasNoEntryForAnUnknownCoin()
{
    World world;
    world.launch();
    world.change([](AppSettings &settings) { settings.watchlistCoins.push_back({QStringLiteral("unheard-of")}); });
    QCOMPARE(world.item->menu().front().children.size(), 2U);
}

void AppDelegateTest::menuIsBuiltAnewEachTime()
{
    World world;
    world.launch();
    world.change([](AppSettings &settings) { settings.watchlistCoins.push_back({QStringLiteral("solana")}); });
    QCOMPARE(texts(world.item->menu().front().children).back(), QStringLiteral("SOL - Solana"));
}

void AppDelegateTest::menuChangesAreAnnouncedAtOnce()
{
    World world;
    world.launch();
    const auto announced = [&world] { return std::exchange(world.item->shownMenus, {}); };
    announced();
    world.change([](AppSettings &settings) { settings.watchlistCoins.push_back({QStringLiteral("solana")}); });
    std::vector<Menu> menus = announced();
    QCOMPARE(menus.size(), 1U);
    QCOMPARE(texts(menus.back().front().children).back(), QStringLiteral("SOL - Solana"));
    world.change([](AppSettings &settings) { settings.displayedCoinId = QStringLiteral("ethereum"); });
    QCOMPARE(announced().back().front().children[1].checked, std::optional(true));
    world.change([](AppSettings &settings) { settings.showMenuBarBackground = true; });
    QVERIFY(announced().empty());
    world.change([](AppSettings &settings) { settings.language = AppLanguage::zhHans; });
    QCOMPARE(announced().back().back().text,
             localized(QStringLiteral("menu.quit"), test::textsOf(AppLanguage::zhHans)));

    auto backend = std::make_unique<CheckableBackend>();
    CheckableBackend &updater = *backend;
    world.delegate->updateController().attach(std::move(backend));
    announced();
    updater.canCheck = true;
    menus = announced();
    QCOMPARE(menus.size(), 1U);
    QVERIFY(menus.back()[2].enabled);
}

void AppDelegateTest::changeCoinPublishesAndSaves()
{
    World world;
    world.launch();
    QTRY_VERIFY(!world.item->contents.back().logo);
    world.item->menu().front().children[1].activate();
    QCOMPARE(world.item->contents.back().text, QStringLiteral("ETH 2,500"));
    QCOMPARE(UserDefaultsSettingsStore(world.storage).load()->displayedCoinId, QStringLiteral("ethereum"));
    QCOMPARE(world.item->menu().front().children[1].checked, std::optional(true));
}

void AppDelegateTest::sleepDropsQuotesUnderWay()
{
    World world;
    world.http.clear(Endpoints().binanceMain);
    world.http.hold(Endpoints().binanceMain);
    world.launch();
    QCOMPARE(world.http.open(), 1);
    world.delegate->machineWillSleep();
    QCOMPARE(world.http.open(), 0);
    QVERIFY(!world.delegate->coinListViewModel().isLoading());
}

void AppDelegateTest::wakingFetchesAtOnce()
{
    World world;
    world.launch();
    QTRY_VERIFY(!world.item->contents.back().logo);
    world.delegate->freshPricesNeeded();
    QCOMPARE(world.polls(), 2);
}

TICKWISE_TEST(AppDelegateTest)
#include "AppDelegateTest.moc"
