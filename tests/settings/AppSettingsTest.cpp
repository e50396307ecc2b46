#include "settings/AppSettings.h"

#include "doubles/Languages.h"
#include "doubles/TestProgram.h"
#include "settings/SettingsViewModel.h"

using namespace tickwise;

namespace {

template<class Enum>
QStringList rawValues()
{
    QStringList raws;
    for (const Enum value : allCases<Enum>())
        raws.append(rawValue(value));
    return raws;
}

template<class Enum>
bool readsItsRawValues()
{
    return std::ranges::all_of(allCases<Enum>(),
                               [](Enum value) { return fromRawValue<Enum>(rawValue(value)) == value; });
}

template<class Enum>
QStringList titles()
{
    QStringList titles;
    for (const Enum value : allCases<Enum>())
        titles.append(title(value));
    return titles;
}

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(u' ');
}

} // namespace

class AppSettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaults();
    void rawValuesInPickerOrder();
    void casesReadTheirRawValues();
    void otherTextIsNoCase_data();
    void otherTextIsNoCase();
    void titlesFollowTheLanguage();
    void equalityCoversEveryField_data();
    void equalityCoversEveryField();
    void watchlistCoinIsHashable();
};

void AppSettingsTest::defaults()
{
    const AppSettings settings;
    QCOMPARE(settings.launchAtLogin, false);
    QCOMPARE(settings.language, AppLanguage::system);
    QCOMPARE(settings.baseCurrency, BaseCurrency::usd);
    QCOMPARE(settings.priceColorEnabled, true);
    QCOMPARE(settings.colorScheme, PriceColorScheme::greenUpRedDown);
    QCOMPARE(settings.customUpColorHex, QStringLiteral("#2CBD84"));
    QCOMPARE(settings.customDownColorHex, QStringLiteral("#F6465D"));
    QCOMPARE(settings.priceChangeNotificationEnabled, true);
    QCOMPARE(settings.pollingInterval, 10.0);
    QCOMPARE(settings.showMenuBarBackground, false);
    QCOMPARE(settings.menuBarContent, MenuBarContent::price);
    QCOMPARE(settings.desktopOverlayEnabled, false);
    QCOMPARE(settings.desktopOverlayBackgroundOpacity, 1.0);
    QCOMPARE(settings.desktopOverlayTextSize, DesktopOverlayTextSize::normal);
    QCOMPARE(settings.desktopOverlayTopLeft.has_value(), false);
    QCOMPARE(settings.displayedCoinId, QStringLiteral("bitcoin"));
    const std::vector<WatchlistCoin> coins{{QStringLiteral("bitcoin"), CoinAlertKind::change, 2.0},
                                           {QStringLiteral("ethereum"), CoinAlertKind::change, 2.0}};
    QVERIFY(settings.watchlistCoins == coins);
}

void AppSettingsTest::rawValuesInPickerOrder()
{
    QCOMPARE(rawValues<BaseCurrency>(), words("USD CNY KRW HKD JPY TWD SGD MYR AUD CAD EUR GBP"));
    QCOMPARE(rawValues<CoinAlertKind>(), words("above below change notSet"));
    QCOMPARE(rawValues<MenuBarContent>(), words("price icon"));
    QCOMPARE(rawValues<PriceColorScheme>(), words("greenUpRedDown redUpGreenDown custom"));
    QCOMPARE(rawValues<DesktopOverlayTextSize>(), words("normal large"));
    QCOMPARE(rawValues<AppLanguage>(), words("system en zh-Hans zh-Hant"));
    QCOMPARE(rawValues<SettingsTab>(), words("general watchlist about"));
}

void AppSettingsTest::casesReadTheirRawValues()
{
    QVERIFY(readsItsRawValues<BaseCurrency>());
    QVERIFY(readsItsRawValues<CoinAlertKind>());
    QVERIFY(readsItsRawValues<MenuBarContent>());
    QVERIFY(readsItsRawValues<PriceColorScheme>());
    QVERIFY(readsItsRawValues<DesktopOverlayTextSize>());
    QVERIFY(readsItsRawValues<AppLanguage>());
    QVERIFY(readsItsRawValues<SettingsTab>());
}

void AppSettingsTest::otherTextIsNoCase_data()
{
    QTest::addColumn<QString>("raw");
    for (const char *raw : {"", "usd", " USD", "CHF", "Above", "zhHans", "zh-hans", "PRICE", "General"})
        QTest::newRow(raw) << QString::fromLatin1(raw);
}

void AppSettingsTest::otherTextIsNoCase()
{
    QFETCH(QString, raw);
    QVERIFY(!fromRawValue<BaseCurrency>(raw));
    QVERIFY(!fromRawValue<CoinAlertKind>(raw));
    QVERIFY(!fromRawValue<MenuBarContent>(raw));
    QVERIFY(!fromRawValue<AppLanguage>(raw));
    QVERIFY(!fromRawValue<SettingsTab>(raw));
}

void AppSettingsTest::titlesFollowTheLanguage()
{
    test::useLanguage(AppLanguage::en);
    QCOMPARE(
        titles<CoinAlertKind>(),
        QStringList({localized(QStringLiteral("alertKind.above")), localized(QStringLiteral("alertKind.below")),
                     localized(QStringLiteral("alertKind.change")), localized(QStringLiteral("alertKind.notSet"))}));
    QCOMPARE(titles<MenuBarContent>(), words("Price Logo"));
    QCOMPARE(titles<DesktopOverlayTextSize>(), words("Normal Large"));
    test::useLanguage(AppLanguage::zhHant);
    QCOMPARE(titles<PriceColorScheme>(),
             QStringList({QStringLiteral("綠漲紅跌"), QStringLiteral("紅漲綠跌"), QStringLiteral("自訂顏色")}));
    QCOMPARE(titles<MenuBarContent>(), QStringList({QStringLiteral("價格"), QStringLiteral("圖示")}));
    test::useLanguage(AppLanguage::en);
}

void AppSettingsTest::equalityCoversEveryField_data()
{
    using SettingsChange = std::function<void(AppSettings &)>;
    QTest::addColumn<SettingsChange>("change");
    const auto row = [](const char *name, SettingsChange change) { QTest::newRow(name) << change; };
    row("launchAtLogin", [](AppSettings &s) { s.launchAtLogin = true; });
    row("language", [](AppSettings &s) { s.language = AppLanguage::en; });
    row("baseCurrency", [](AppSettings &s) { s.baseCurrency = BaseCurrency::gbp; });
    row("priceColorEnabled", [](AppSettings &s) { s.priceColorEnabled = false; });
    row("colorScheme", [](AppSettings &s) { s.colorScheme = PriceColorScheme::custom; });
    row("customUpColorHex", [](AppSettings &s) { s.customUpColorHex.clear(); });
    row("customDownColorHex", [](AppSettings &s) { s.customDownColorHex.clear(); });
    row("priceChangeNotificationEnabled", [](AppSettings &s) { s.priceChangeNotificationEnabled = false; });
    row("pollingInterval", [](AppSettings &s) { s.pollingInterval = 11; });
    row("showMenuBarBackground", [](AppSettings &s) { s.showMenuBarBackground = true; });
    row("menuBarContent", [](AppSettings &s) { s.menuBarContent = MenuBarContent::icon; });
    row("desktopOverlayEnabled", [](AppSettings &s) { s.desktopOverlayEnabled = true; });
    row("desktopOverlayBackgroundOpacity", [](AppSettings &s) { s.desktopOverlayBackgroundOpacity = 0.5; });
    row("desktopOverlayTextSize", [](AppSettings &s) { s.desktopOverlayTextSize = DesktopOverlayTextSize::large; });
    row("desktopOverlayTopLeft", [](AppSettings &s) { s.desktopOverlayTopLeft = DesktopOverlayOrigin{}; });
    row("displayedCoinId", [](AppSettings &s) { s.displayedCoinId = QStringLiteral("solana"); });
    row("watchlist order", [](AppSettings &s) { std::swap(s.watchlistCoins[0], s.watchlistCoins[1]); });
    row("alert kind", [](AppSettings &s) { s.watchlistCoins[0].alertKind = CoinAlertKind::below; });
    row("threshold", [](AppSettings &s) { s.watchlistCoins[1].notificationThreshold = 3; });
}

void AppSettingsTest::equalityCoversEveryField()
{
    QFETCH(std::function<void(AppSettings &)>, change);
    AppSettings settings;
    QVERIFY(settings == AppSettings());
    change(settings);
    QVERIFY(!(settings == AppSettings()));
}

void AppSettingsTest::watchlistCoinIsHashable()
{
    const WatchlistCoin coin{QStringLiteral("bitcoin"), CoinAlertKind::above, 3};
    const WatchlistCoin copy = coin;
    WatchlistCoin otherId = coin;
    otherId.coinId = QStringLiteral("ethereum");
    WatchlistCoin otherKind = coin;
    otherKind.alertKind = CoinAlertKind::below;
    WatchlistCoin otherThreshold = coin;
    otherThreshold.notificationThreshold = 4;
    QCOMPARE(QSet<WatchlistCoin>({coin, copy, otherId, otherKind, otherThreshold}).size(), 4);
    QCOMPARE(qHash(copy, 7), qHash(coin, 7));
    for (const WatchlistCoin &other : {otherId, otherKind, otherThreshold})
        QVERIFY(qHash(other, 7) != qHash(coin, 7));
}

TICKWISE_TEST(AppSettingsTest)
#include "AppSettingsTest.moc"
