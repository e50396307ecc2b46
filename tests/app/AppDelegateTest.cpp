#include "app/AppDelegate.h"

#include "app/DelegateDoubles.h"
#include "catalog/logos/CoinLogoStore.h"
#include "doubles/Catalogs.h"
#include "doubles/Languages.h"
#include "doubles/TestProgram.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
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

/// An updater that is told by the test whether it can check.
class UpdaterBackendDouble : public UpdaterBackend
{
public:
    void checkForUpdates() override { ++checks; }
    void setAutomaticallyChecksForUpdates(bool enabled) override { automatic = enabled; }
    QBindable<bool> bindableCanCheckForUpdates() override { return &canCheck; }
    QBindable<bool> bindableAutomaticallyChecksForUpdates() override { return &automatic; }

    QProperty<bool> canCheck{false};
    QProperty<bool> automatic{true};
    int checks = 0;
};

/// A delegate among doubles.
struct AppDelegateWorld : DelegateDoubles
{
    AppDelegateWorld()
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
        AppEnvironment all = doubles();
        all.attachUpdater = attachUpdater;
        all.isSecondCopy = [this] { return secondCopy; };
        all.catalogPath = catalogPath;
        all.environment = processEnvironment;
        all.suspendedTime = [this] { return suspendedTime; };
        return all;
    }

    void change(const std::function<void(AppSettings &)> &edit) { changeSettings(*delegate, edit); }

    std::chrono::nanoseconds suspendedTime{0};
    bool secondCopy = false;
    QString catalogPath = QStringLiteral(":/coins.json");
    std::function<void(UpdateController &)> attachUpdater;
    QProcessEnvironment processEnvironment{QProcessEnvironment::InheritFromParent};
    std::unique_ptr<AppDelegate> delegate;
    std::unique_ptr<QSignalSpy> quit;
};

constexpr int longerThanTheDebounce = 700;
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
    void eachReloadSettingRestartsPolling();
    void otherSettingsDoNotRestartPolling();
    void languageIsAppliedAtStartAndLive();
    void loginItemFollowsTheSetting();
    void authorizationIsRequestedOnce();
    void menuListsTheWatchlistAndQuits();
    void menuChecksForUpdates();
    void menuOpensTheSettings();
    void menuHasNoEntryForAnUnknownCoin();
    void menuIsBuiltAnewEachTime();
    void menuChangesAreAnnouncedAtOnce();
    void changeCoinPublishesAndSaves();
    void navigationAsksForTheTab_data();
    void navigationAsksForTheTab();
    void navigationIsObservedAfterTheStart();
    void sleepDropsQuotesUnderWay();
    void nothingIsFetchedBetweenSleepAndWake();
    void wakingFetchesAtOnce();
    void networkThatReturnsFetchesAtOnce();
    void networkThatReturnsLetsLogosTryAgain();
    void answerFromBeforeSleepIsDropped();
    void settingsChangedOverSeveralTurnsReloadOnce();
    void editedIntervalBecomesThePeriod();
    void reloadComesFiveHundredMillisecondsAfterTheLastChange();
    void aLaterChangePutsTheReloadOff();
    void currencyChangeKeepsTheLabelUntilTheReload();
    void snapshotNeverMixesTwoCurrencies();
    void watchlistEditsShowAtOnce();
    void logosFollowTheWatchlist();
    void logosOfTheStartsWatchlist();
    void withoutACatalog_data();
    void withoutACatalog();
    void opensOwnAddresses_data();
    void opensOwnAddresses();
    void performsActionsOfTheDesktopFile();
    void clickOnANotificationActivates();
};

void AppDelegateTest::cleanup()
{
    test::useLanguage(AppLanguage::en);
}

void AppDelegateTest::showsThePriceAfterStartUp()
{
    AppDelegateWorld world;
    world.launch();
    QVERIFY(world.item->contents.front().logo);
    QTRY_COMPARE(world.item->contents.back().text, QStringLiteral("BTC 67,432"));
    QCOMPARE(world.polls(), 1);
    QCOMPARE(world.quit->count(), 0);
}

void AppDelegateTest::firstLaunchWritesNothing()
{
    AppDelegateWorld world;
    world.launch();
    QTRY_VERIFY(!world.item->contents.back().logo);
    QCOMPARE(world.storage.writes, 0);
}

void AppDelegateTest::testHostDoesNothingMore()
{
    AppDelegateWorld world;
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
    AppDelegateWorld world;
    world.secondCopy = true;
    world.launch();
    QCOMPARE(world.quit->count(), 1);
    QVERIFY(world.item.isNull());
    QVERIFY(world.http.requests().empty());
}

void AppDelegateTest::threeIntervalChangesRestartPollingOnce()
{
    AppDelegateWorld world;
    world.launch();
    QTRY_VERIFY(!world.item->contents.back().logo);
    for (const double interval : {3600., 1800., 7200.})
        world.change([interval](AppSettings &settings) { settings.pollingInterval = interval; });
    QCOMPARE(world.polls(), 1);
    QTRY_COMPARE(world.polls(), 2);
    QTest::qWait(longerThanTheDebounce); // nothing may follow
    QCOMPARE(world.polls(), 2);
}

void AppDelegateTest::eachReloadSettingRestartsPolling()
{
    AppDelegateWorld world;
    world.launch();
    QTRY_VERIFY(!world.item->contents.back().logo);
    world.change([](AppSettings &settings) { settings.priceChangeNotificationEnabled = false; });
    QTRY_COMPARE(world.polls(), 2);
    world.change([](AppSettings &settings) { settings.language = AppLanguage::zhHans; });
    QTRY_COMPARE(world.polls(), 3);
}

void AppDelegateTest::otherSettingsDoNotRestartPolling()
{
    AppDelegateWorld world;
    world.launch();
    QTRY_VERIFY(!world.item->contents.back().logo);
    world.change([](AppSettings &settings) { settings.showMenuBarBackground = true; });
    QTest::qWait(longerThanTheDebounce);
    QCOMPARE(world.polls(), 1);
    QVERIFY(world.item->contents.back().pillColor.has_value());
}

void AppDelegateTest::languageIsAppliedAtStartAndLive()
{
    AppDelegateWorld world;
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
    AppDelegateWorld world;
    world.launch();
    QCOMPARE(world.loginItem.requests, std::vector<bool>{false});
    world.change([](AppSettings &settings) { settings.launchAtLogin = true; });
    world.change([](AppSettings &settings) { settings.showMenuBarBackground = true; });
    world.change([](AppSettings &settings) { settings.launchAtLogin = false; });
    QCOMPARE(world.loginItem.requests, (std::vector<bool>{false, true, false}));
}

void AppDelegateTest::authorizationIsRequestedOnce()
{
    AppDelegateWorld world;
    world.launch();
    QTRY_VERIFY(!world.item->contents.back().logo);
    QCOMPARE(world.notifications.authorizationRequests, 1);
}

void AppDelegateTest::menuListsTheWatchlistAndQuits()
{
    AppDelegateWorld world;
    world.launch();
    const Menu menu = world.item->menu();
    QCOMPARE(texts(menu),
             (QStringList{localized(QStringLiteral("menu.change")), QStringLiteral("-"),
                          localized(QStringLiteral("menu.setting")), localized(QStringLiteral("menu.about")),
                          localized(QStringLiteral("menu.checkForUpdates")), QStringLiteral("-"),
                          localized(QStringLiteral("menu.quit"))}));
    QCOMPARE(texts(menu.front().children),
             (QStringList{QStringLiteral("BTC - Bitcoin"), QStringLiteral("ETH - Ethereum")}));
    QCOMPARE(menu.front().children[0].checked, std::optional(true));
    QCOMPARE(menu.front().children[1].checked, std::optional(false));
    QVERIFY(!menu[4].enabled);
    QVERIFY(!menu.back().iconName.isEmpty());
    menu.back().activate();
    QCOMPARE(world.quit->count(), 1);
}

void AppDelegateTest::menuOpensTheSettings()
{
    AppDelegateWorld world;
    world.launch();
    std::vector<SettingsTab> tabs;
    connect(world.delegate.get(), &AppDelegate::settingsWindowRequested, this,
            [&](SettingsTab tab) { tabs.push_back(tab); });
    const Menu menu = world.item->menu();
    menu[2].activate();
    menu[3].activate();
    QVERIFY(tabs == (std::vector{SettingsTab::general, SettingsTab::about}));
}

void AppDelegateTest::menuChecksForUpdates()
{
    AppDelegateWorld world;
    auto backend = std::make_unique<UpdaterBackendDouble>();
    UpdaterBackendDouble &updater = *backend;
    world.attachUpdater = [&](UpdateController &controller) { controller.attach(std::move(backend)); };
    world.launch();
    QVERIFY(!world.item->menu()[4].enabled);
    updater.canCheck = true;
    const MenuEntry entry = world.item->menu()[4];
    QVERIFY(entry.enabled);
    QCOMPARE(updater.checks, 0);
    entry.activate();
    QCOMPARE(updater.checks, 1);
    updater.canCheck = false;
    QVERIFY(!world.item->menu()[4].enabled);
}

void AppDelegateTest::menuHasNoEntryForAnUnknownCoin()
{
    AppDelegateWorld world;
    world.launch();
    world.change([](AppSettings &settings) { settings.watchlistCoins.push_back({QStringLiteral("unheard-of")}); });
    QCOMPARE(world.item->menu().front().children.size(), 2U);
}

void AppDelegateTest::menuIsBuiltAnewEachTime()
{
    AppDelegateWorld world;
    world.launch();
    world.change([](AppSettings &settings) { settings.watchlistCoins.push_back({QStringLiteral("solana")}); });
    QCOMPARE(texts(world.item->menu().front().children).back(), QStringLiteral("SOL - Solana"));
}

void AppDelegateTest::menuChangesAreAnnouncedAtOnce()
{
    AppDelegateWorld world;
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
    AppDelegateWorld world;
    world.launch();
    QTRY_VERIFY(!world.item->contents.back().logo);
    world.item->menu().front().children[1].activate();
    QCOMPARE(world.item->contents.back().text, QStringLiteral("ETH 2,500"));
    QCOMPARE(UserDefaultsSettingsStore(world.storage).load()->displayedCoinId, QStringLiteral("ethereum"));
    QCOMPARE(world.item->menu().front().children[1].checked, std::optional(true));
}

void AppDelegateTest::navigationAsksForTheTab_data()
{
    QTest::addColumn<QVariantMap>("userInfo");
    QTest::addColumn<int>("tab");
    const auto row = [](const char *name, const QVariantMap &userInfo, SettingsTab tab) {
        QTest::newRow(name) << userInfo << static_cast<int>(tab);
    };
    const QString key = NotificationCenter::tabKey;
    row("general", {{key, QStringLiteral("general")}}, SettingsTab::general);
    row("watchlist", {{key, QStringLiteral("watchlist")}}, SettingsTab::watchlist);
    row("about", {{key, QStringLiteral("about")}}, SettingsTab::about);
    row("no tab", {}, SettingsTab::general);
    row("unknown tab", {{key, QStringLiteral("alerts")}}, SettingsTab::general);
    row("another case", {{key, QStringLiteral("About")}}, SettingsTab::general);
    row("a number", {{key, 3}}, SettingsTab::general);
    row("bytes", {{key, QByteArray("about")}}, SettingsTab::general);
}

void AppDelegateTest::navigationAsksForTheTab()
{
    QFETCH(QVariantMap, userInfo);
    AppDelegateWorld world;
    world.launch();
    std::vector<SettingsTab> tabs;
    connect(world.delegate.get(), &AppDelegate::settingsWindowRequested, this,
            [&tabs](SettingsTab tab) { tabs.push_back(tab); });
    world.delegate->notificationCenter().post(NotificationCenter::adjustDesktopOverlay, userInfo);
    QVERIFY(tabs.empty());
    world.delegate->notificationCenter().post(QStringLiteral("tickwise.navigate"), userInfo);
    QCOMPARE(tabs.size(), 1U);
    QTEST(static_cast<int>(tabs.front()), "tab");
}

void AppDelegateTest::navigationIsObservedAfterTheStart()
{
    AppDelegateWorld world;
    world.secondCopy = true;
    world.launch();
    QSignalSpy requested(world.delegate.get(), &AppDelegate::settingsWindowRequested);
    world.delegate->notificationCenter().post(NotificationCenter::navigate);
    QCOMPARE(requested.count(), 0);
}

void AppDelegateTest::sleepDropsQuotesUnderWay()
{
    AppDelegateWorld world;
    world.http.clear(Endpoints().binanceMain);
    world.http.hold(Endpoints().binanceMain);
    world.launch();
    QCOMPARE(world.http.open(), 1);
    world.delegate->machineWillSleep();
    QCOMPARE(world.http.open(), 0);
    QVERIFY(!world.delegate->coinListViewModel().isLoading());
}

void AppDelegateTest::nothingIsFetchedBetweenSleepAndWake()
{
    AppDelegateWorld world;
    world.launch();
    QTRY_VERIFY(!world.item->contents.back().logo);
    world.delegate->machineWillSleep();
    world.delegate->networkReturned();
    world.change([](AppSettings &settings) { settings.pollingInterval = 3600; });
    QTest::qWait(longerThanTheDebounce);
    QCOMPARE(world.polls(), 1);
    world.delegate->machineDidWake();
    QCOMPARE(world.polls(), 2);
}

void AppDelegateTest::wakingFetchesAtOnce()
{
    AppDelegateWorld world;
    world.launch();
    QTRY_VERIFY(!world.item->contents.back().logo);
    world.delegate->machineDidWake();
    QCOMPARE(world.polls(), 2);
}

void AppDelegateTest::networkThatReturnsFetchesAtOnce()
{
    AppDelegateWorld world;
    world.launch();
    QTRY_VERIFY(!world.item->contents.back().logo);
    world.delegate->networkReturned();
    QCOMPARE(world.polls(), 2);
}

void AppDelegateTest::networkThatReturnsLetsLogosTryAgain()
{
    AppDelegateWorld world;
    world.launch();
    CoinMetadata coin = coinRecord(QStringLiteral("seen"), QStringLiteral("SEEN"));
    coin.logoURL = QStringLiteral("https://assets.coingecko.com/seen.png");
    world.http.fail(*coin.logoURL, UrlLoadingError{UrlErrorCode::notConnectedToInternet});
    CoinLogoStore &logos = world.delegate->logoStore();
    for (int i = 0; i < 2; ++i) {
        logos.ensureSeenLogo(coin);
        QTRY_COMPARE(world.http.open(), 0);
    }
    QCOMPARE(world.http.urls(*coin.logoURL).size(), std::size_t(1));
    world.delegate->networkReturned();
    logos.ensureSeenLogo(coin);
    QCOMPARE(world.http.urls(*coin.logoURL).size(), std::size_t(2));
}

void AppDelegateTest::answerFromBeforeSleepIsDropped()
{
    AppDelegateWorld world;
    world.http.clear(Endpoints().binanceMain);
    for (const double price : {1., 2.}) {
        world.http.answer(Endpoints().binanceMain, 200,
                          binanceBody({{QStringLiteral("BTC"), price}, {QStringLiteral("ETH"), 1}}, world.clock.now()));
    }
    world.launch();
    world.suspendedTime += std::chrono::hours(1);
    QTRY_VERIFY(!world.item->contents.back().logo);
    for (const StatusItemContent &content : world.item->contents)
        QVERIFY(content.text != QStringLiteral("BTC 1"));
    QCOMPARE(world.item->contents.back().text, QStringLiteral("BTC 2"));
    QCOMPARE(world.polls(), 2);
}

void AppDelegateTest::settingsChangedOverSeveralTurnsReloadOnce()
{
    AppDelegateWorld world;
    world.launch();
    QTRY_VERIFY(!world.item->contents.back().logo);
    // Timers fire in the order of their times also when the machine is late: those that are older than the debounce
    // and shorter come before it.
    for (const int milliseconds : {50, 100, 150}) {
        QTimer::singleShot(milliseconds, Qt::PreciseTimer, this, [&world, milliseconds] {
            world.change([milliseconds](AppSettings &settings) { settings.pollingInterval = 3600 + milliseconds; });
        });
    }
    world.change([](AppSettings &settings) { settings.pollingInterval = 3600; });
    QTRY_COMPARE(world.polls(), 2);
    QTest::qWait(longerThanTheDebounce);
    QCOMPARE(world.polls(), 2);
}

void AppDelegateTest::editedIntervalBecomesThePeriod()
{
    AppDelegateWorld world;
    AppSettings stored;
    stored.pollingInterval = 3600;
    UserDefaultsSettingsStore(world.storage).save(stored);
    world.launch();
    QTRY_VERIFY(!world.item->contents.back().logo);
    world.change([](AppSettings &settings) { settings.pollingInterval = 0.05; });
    QTRY_VERIFY(world.polls() > 4);
    world.change([](AppSettings &settings) { settings.pollingInterval = 3600; });
    // The old period lasts until the reload; the wait is four times as long.
    QVERIFY(QTest::qWaitFor([&world] {
        const int polls = world.polls();
        QTest::qWait(200);
        return world.polls() == polls;
    }));
}

void AppDelegateTest::aLaterChangePutsTheReloadOff()
{
    AppDelegateWorld world;
    world.launch();
    QTRY_VERIFY(!world.item->contents.back().logo);
    // Timers fire in the order of their times also when the machine is late.
    std::optional<int> afterTheFirstTime;
    QTimer::singleShot(std::chrono::milliseconds(600), Qt::PreciseTimer, this,
                       [&] { afterTheFirstTime = world.polls(); });
    QTimer::singleShot(std::chrono::milliseconds(300), Qt::PreciseTimer, this,
                       [&] { world.change([](AppSettings &settings) { settings.pollingInterval = 1800; }); });
    world.change([](AppSettings &settings) { settings.pollingInterval = 3600; });
    QTRY_COMPARE(world.polls(), 2);
    QCOMPARE(afterTheFirstTime, std::optional(1));
}

void AppDelegateTest::reloadComesFiveHundredMillisecondsAfterTheLastChange()
{
    AppDelegateWorld world;
    world.launch();
    QTRY_VERIFY(!world.item->contents.back().logo);
    // Timers fire in the order of their times also when the machine is late.
    std::optional<int> shortlyBefore;
    std::optional<int> shortlyAfter;
    QTimer::singleShot(std::chrono::milliseconds(490), Qt::PreciseTimer, this, [&] { shortlyBefore = world.polls(); });
    world.change([](AppSettings &settings) { settings.pollingInterval = 3600; });
    QTimer::singleShot(std::chrono::milliseconds(520), Qt::PreciseTimer, this, [&] { shortlyAfter = world.polls(); });
    QTRY_VERIFY(shortlyAfter.has_value());
    QCOMPARE(shortlyBefore, std::optional(1));
    QCOMPARE(shortlyAfter, std::optional(2));
}

void AppDelegateTest::currencyChangeKeepsTheLabelUntilTheReload()
{
    AppDelegateWorld world;
    world.http.answer(Endpoints().exchangeRateApi, 200,
                      R"({"result":"success","base_code":"USD","rates":{"USD":1,"EUR":0.5}})");
    world.launch();
    QTRY_VERIFY(!world.item->contents.back().logo);
    world.change([](AppSettings &settings) { settings.baseCurrency = BaseCurrency::eur; });
    world.delegate->coinListViewModel().fetchPrices();
    world.delegate->networkReturned();
    QCOMPARE(world.polls(), 1);
    QVERIFY(!world.item->contents.back().logo);
    QVERIFY(world.item->contents.back().toolTipBody.contains(QStringLiteral("USD")));
    QVERIFY(!world.item->contents.back().toolTipBody.contains(QStringLiteral("EUR")));
    QTRY_COMPARE(world.item->contents.back().text, QStringLiteral("BTC 33,716"));
    QVERIFY(world.item->contents.back().toolTipBody.contains(QStringLiteral("EUR")));
    QCOMPARE(world.polls(), 2);
}

void AppDelegateTest::snapshotNeverMixesTwoCurrencies()
{
    AppDelegateWorld world;
    const auto snapshot = [&world] {
        QFile file(world.container.filePath(QStringLiteral("widget-snapshot.json")));
        return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object() : QJsonObject();
    };
    const auto hasQuotes = [&] { return !snapshot().value(QStringLiteral("quotes")).toObject().isEmpty(); };
    world.launch();
    QTRY_VERIFY(hasQuotes());
    world.http.clear(Endpoints().binanceMain);
    world.http.hold(Endpoints().binanceMain);
    world.change([](AppSettings &settings) { settings.baseCurrency = BaseCurrency::eur; });
    QTRY_COMPARE(snapshot().value(QStringLiteral("currency")).toString(), QStringLiteral("EUR"));
    QVERIFY(!hasQuotes());
}

void AppDelegateTest::watchlistEditsShowAtOnce()
{
    AppDelegateWorld world;
    world.launch();
    QTRY_VERIFY(!world.item->contents.back().logo);
    const auto shownIds = [&world] {
        QStringList ids;
        for (const Coin &coin : world.delegate->coinListViewModel().coins())
            ids.append(coin.id);
        return ids;
    };
    const int polls = world.polls();
    world.change([](AppSettings &settings) { settings.watchlistCoins.push_back({QStringLiteral("solana")}); });
    QCOMPARE(shownIds().back(), QStringLiteral("solana"));
    QVERIFY(world.delegate->coinListViewModel().isLoading());
    QTRY_COMPARE(world.polls(), polls + 1);
    world.change([](AppSettings &settings) { std::ranges::reverse(settings.watchlistCoins); });
    QCOMPARE(shownIds().front(), QStringLiteral("solana"));
    world.change([](AppSettings &settings) { settings.watchlistCoins[0].notificationThreshold = 9; });
    QTRY_COMPARE(world.polls(), polls + 2);
}

void AppDelegateTest::logosFollowTheWatchlist()
{
    AppDelegateWorld world;
    world.launch();
    const auto askedFor = [&world](const QString &id) {
        const std::optional<QString> address = world.delegate->catalog().byID().value(id)->logoURL;
        return address && !world.http.urls(*address).empty();
    };
    // Neither has a shipped logo.
    const QString first = QStringLiteral("stellar");
    const QString second = QStringLiteral("uniswap");
    QVERIFY(!askedFor(first));
    world.change([&](AppSettings &settings) { settings.watchlistCoins.push_back({first}); });
    QTRY_VERIFY(askedFor(first));
    QVERIFY(!askedFor(second));
    world.change([&](AppSettings &settings) { settings.watchlistCoins.push_back({second}); });
    QTRY_VERIFY(askedFor(second));
}

void AppDelegateTest::logosOfTheStartsWatchlist()
{
    AppDelegateWorld world;
    AppSettings stored;
    stored.watchlistCoins.push_back({QStringLiteral("stellar")});
    UserDefaultsSettingsStore(world.storage).save(stored);
    world.launch();
    QTRY_VERIFY(!world.http.urls(*world.delegate->catalog().byID().value(QStringLiteral("stellar"))->logoURL).empty());
}

void AppDelegateTest::withoutACatalog_data()
{
    QTest::addColumn<QByteArray>("catalog");
    QTest::newRow("missing") << QByteArray();
    QTest::newRow("empty") << QByteArray(R"({"schemaVersion":1,"coins":[]})");
    QTest::newRow("damaged") << QByteArray(R"({"schemaVersion":1,"coins":[)");
}

void AppDelegateTest::withoutACatalog()
{
    QFETCH(QByteArray, catalog);
    AppDelegateWorld world;
    world.catalogPath = world.container.filePath(QStringLiteral("coins.json"));
    if (!catalog.isEmpty()) {
        QFile file(world.catalogPath);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(catalog);
    }
    AppSettings stored;
    stored.displayedCoinId = QStringLiteral("ethereum");
    UserDefaultsSettingsStore(world.storage).save(stored);
    const auto before = world.storage.entries;
    world.launch();
    QTest::qWait(50);
    QVERIFY(world.item->contents.back().logo);
    QCOMPARE(world.item->contents.back().title, QStringLiteral("Tickwise"));
    QVERIFY(world.item->menu().front().children.empty());
    QVERIFY(world.http.requests().empty());
    QVERIFY(!world.delegate->coinListViewModel().isLoading());
    QCOMPARE(world.quit->count(), 0);
    QVERIFY(world.storage.entries == before);
    QCOMPARE(world.delegate->settingsViewModel().settings().watchlistCoins.size(), 2U);
}

void AppDelegateTest::opensOwnAddresses_data()
{
    QTest::addColumn<QStringList>("addresses");
    QTest::addColumn<bool>("opens");
    const QString own = QStringLiteral("tickwise://popover");
    const QString foreign = QStringLiteral("https://example.org/tickwise://popover");
    QTest::newRow("own") << QStringList{own} << true;
    QTest::newRow("own without slashes") << QStringList{QStringLiteral("tickwise:popover")} << true;
    QTest::newRow("foreign") << QStringList{foreign} << false;
    QTest::newRow("mixed") << QStringList{foreign, own} << true;
    QTest::newRow("two of ours") << QStringList{own, own} << true;
    QTest::newRow("upper case") << QStringList{QStringLiteral("TICKWISE://popover")} << false;
    QTest::newRow("mixed case") << QStringList{QStringLiteral("Tickwise://popover")} << false;
    QTest::newRow("longer scheme") << QStringList{QStringLiteral("tickwisely://popover")} << false;
    QTest::newRow("shorter scheme") << QStringList{QStringLiteral("tick://popover")} << false;
    QTest::newRow("no scheme") << QStringList{QStringLiteral("tickwise")} << false;
    QTest::newRow("no address") << QStringList{QStringLiteral("tickwise://[broken")} << false;
    QTest::newRow("none") << QStringList() << false;
}

void AppDelegateTest::opensOwnAddresses()
{
    QFETCH(QStringList, addresses);
    QFETCH(bool, opens);
    AppDelegateWorld world;
    world.launch();
    QSignalSpy activated(world.delegate.get(), &AppDelegate::activationRequested);
    world.delegate->openUrls(addresses, QStringLiteral("token-1"));
    QCOMPARE(activated.count(), opens ? 1 : 0);
    if (opens)
        QCOMPARE(activated.front().front().toString(), QStringLiteral("token-1"));
}

void AppDelegateTest::performsActionsOfTheDesktopFile()
{
    AppDelegateWorld world;
    world.launch();
    QSignalSpy activated(world.delegate.get(), &AppDelegate::activationRequested);
    std::vector<std::pair<SettingsTab, QString>> requested;
    connect(world.delegate.get(), &AppDelegate::settingsWindowRequested, this,
            [&](SettingsTab tab, const QString &token) { requested.emplace_back(tab, token); });
    world.delegate->performAction(QStringLiteral("watchlist"), QStringLiteral("w"));
    world.delegate->performAction(QStringLiteral("settings"), QStringLiteral("s"));
    const std::vector<std::pair<SettingsTab, QString>> expected{{SettingsTab::watchlist, QStringLiteral("w")},
                                                                {SettingsTab::general, QStringLiteral("s")}};
    QCOMPARE(requested, expected);
    QCOMPARE(activated.count() + world.quit->count(), 0);
    world.delegate->performAction(QStringLiteral("quit"), {});
    QCOMPARE(world.quit->count(), 1);
    world.delegate->performAction(QStringLiteral("unheard-of"), QStringLiteral("u"));
    QCOMPARE(activated.count(), 1);
    QCOMPARE(activated.front().front().toString(), QStringLiteral("u"));
    QCOMPARE(requested, expected);
}

void AppDelegateTest::clickOnANotificationActivates()
{
    AppDelegateWorld world;
    world.launch();
    QSignalSpy activated(world.delegate.get(), &AppDelegate::activationRequested);
    Q_EMIT world.notifications.activated(QStringLiteral("alert-1"), QStringLiteral("token-1"));
    QCOMPARE(activated.count(), 1);
    QCOMPARE(activated.front().front().toString(), QStringLiteral("token-1"));
}

TICKWISE_TEST(AppDelegateTest)
#include "AppDelegateTest.moc"
