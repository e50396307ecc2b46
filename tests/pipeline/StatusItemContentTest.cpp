#include "pipeline/StatusItemContent.h"

#include "doubles/Catalogs.h"
#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"
#include "pipeline/TimeText.h"
#include "support/Localization.h"

using namespace tickwise;
using namespace tickwise::test;

namespace {

const QColor green(QStringLiteral("#2CBD84"));
const QColor red(QStringLiteral("#F6465D"));

Coin coin(const QString &id, const QString &symbol, std::optional<double> price,
          std::optional<double> change = std::nullopt)
{
    Coin coin{coinRecord(id, symbol)};
    coin.currentPrice = price;
    coin.priceChange24hPercent = change;
    return coin;
}

std::vector<Coin> pricedCoins(std::optional<double> change = 1.5)
{
    return {coin(QStringLiteral("bitcoin"), QStringLiteral("BTC"), 67432.4, change),
            coin(QStringLiteral("ethereum"), QStringLiteral("ETH"), 2500, -1.0)};
}

StatusItemContent content(const AppSettings &settings, const std::vector<Coin> &coins,
                          PanelAppearance appearance = PanelAppearance::dark)
{
    return statusItemContent({coins, settings, appearance, TestClock().now(), std::nullopt});
}

} // namespace

class StatusItemContentTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emptyWatchlistShowsTheLogo();
    void noPriceYetShowsTheLogo();
    void iconModeShowsTheLogoDespitePrices();
    void displayedCoinOrTheFirst();
    void titleHasNoCurrency();
    void colors_data();
    void colors();
    void coinWithoutChangeIsNeutral();
    void aChangeOfZeroPointsUp();
    void pillAddsOneBlankOnEachSide();
    void toolTipTellsNameExactPriceChangeAndTime();
    void toolTipTellsWhyTheLastFetchFailed();
    void everyFailureHasItsOwnText();
    void age_data();
    void age();
};

void StatusItemContentTest::emptyWatchlistShowsTheLogo()
{
    const StatusItemContent shown = content(AppSettings(), {});
    QVERIFY(shown.logo);
    QCOMPARE(StatusItemContent::logoLength, 28.0);
    QVERIFY(shown.text.isEmpty());
    QVERIFY(!shown.pillColor);
    QCOMPARE(shown.title, QStringLiteral("Tickwise"));
}

void StatusItemContentTest::noPriceYetShowsTheLogo()
{
    const StatusItemContent shown =
        content(AppSettings(), {coin(QStringLiteral("bitcoin"), QStringLiteral("BTC"), std::nullopt)});
    QVERIFY(shown.logo);
    QCOMPARE(shown.toolTipTitle, QStringLiteral("BTC"));
    QCOMPARE(shown.toolTipBody, localized(QStringLiteral("tooltip.noPrice")));
}

void StatusItemContentTest::iconModeShowsTheLogoDespitePrices()
{
    AppSettings settings;
    settings.menuBarContent = MenuBarContent::icon;
    settings.showMenuBarBackground = true;
    const StatusItemContent shown = content(settings, pricedCoins());
    QVERIFY(shown.logo);
    QVERIFY(!shown.pillColor);
    QVERIFY(shown.text.isEmpty());
}

void StatusItemContentTest::displayedCoinOrTheFirst()
{
    AppSettings settings;
    settings.displayedCoinId = QStringLiteral("ethereum");
    QCOMPARE(content(settings, pricedCoins()).text, QStringLiteral("ETH 2,500"));
    settings.displayedCoinId = QStringLiteral("gone");
    QCOMPARE(content(settings, pricedCoins()).text, QStringLiteral("BTC 67,432"));
}

void StatusItemContentTest::titleHasNoCurrency()
{
    AppSettings settings;
    settings.baseCurrency = BaseCurrency::jpy;
    const StatusItemContent shown = content(settings, pricedCoins());
    QVERIFY(!shown.logo);
    QCOMPARE(shown.text, QStringLiteral("BTC 67,432"));
    QCOMPARE(shown.title, shown.text);
    QCOMPARE(shown.symbol, QStringLiteral("BTC"));
    QCOMPARE(shown.price, QStringLiteral("67,432"));
}

void StatusItemContentTest::colors_data()
{
    QTest::addColumn<bool>("colors");
    QTest::addColumn<bool>("pill");
    QTest::addColumn<int>("appearance");
    QTest::addColumn<double>("change");
    QTest::addColumn<QColor>("textColor");
    QTest::addColumn<QColor>("pillColor");
    const QColor none;
    const auto row = [](const char *name, bool colors, bool pill, PanelAppearance appearance, double change,
                        const QColor &text, const QColor &pillColor) {
        QTest::newRow(name) << colors << pill << static_cast<int>(appearance) << change << text << pillColor;
    };
    row("color up", true, false, PanelAppearance::dark, 1, green, none);
    row("color zero", true, false, PanelAppearance::dark, 0, green, none);
    row("color down", true, false, PanelAppearance::light, -1, red, none);
    row("pill up", true, true, PanelAppearance::dark, 1, Qt::white, green);
    row("pill down", true, true, PanelAppearance::light, -1, Qt::white, red);
    row("plain pill on dark", false, true, PanelAppearance::dark, 1, Qt::white, Qt::black);
    row("plain pill on light", false, true, PanelAppearance::light, 1, Qt::black, Qt::white);
    row("plain pill on unknown", false, true, PanelAppearance::unknown, 1, Qt::black, Qt::white);
    row("plain", false, false, PanelAppearance::dark, 1, none, none);
}

void StatusItemContentTest::colors()
{
    QFETCH(bool, colors);
    QFETCH(bool, pill);
    QFETCH(int, appearance);
    QFETCH(double, change);
    QFETCH(QColor, textColor);
    QFETCH(QColor, pillColor);
    AppSettings settings;
    settings.priceColorEnabled = colors;
    settings.showMenuBarBackground = pill;
    const StatusItemContent shown = content(settings, pricedCoins(change), static_cast<PanelAppearance>(appearance));
    QCOMPARE(shown.textColor.has_value(), textColor.isValid());
    if (shown.textColor)
        QCOMPARE(*shown.textColor, textColor);
    QCOMPARE(shown.pillColor.has_value(), pillColor.isValid());
    if (shown.pillColor)
        QCOMPARE(*shown.pillColor, pillColor);
}

void StatusItemContentTest::coinWithoutChangeIsNeutral()
{
    AppSettings settings;
    QVERIFY(!content(settings, pricedCoins(std::nullopt)).textColor);
    QVERIFY(content(settings, pricedCoins(std::nullopt)).trend == StatusTrend::none);
    settings.showMenuBarBackground = true;
    const StatusItemContent shown = content(settings, pricedCoins(std::nullopt));
    QCOMPARE(*shown.textColor, QColor(Qt::white));
    QVERIFY(shown.pillColor.has_value());
    QVERIFY(*shown.pillColor != green && *shown.pillColor != red);
}

void StatusItemContentTest::aChangeOfZeroPointsUp()
{
    QVERIFY(content(AppSettings(), pricedCoins(0)).trend == StatusTrend::up);
    QVERIFY(content(AppSettings(), pricedCoins(-0.01)).trend == StatusTrend::down);
}

void StatusItemContentTest::pillAddsOneBlankOnEachSide()
{
    AppSettings settings;
    settings.showMenuBarBackground = true;
    const StatusItemContent shown = content(settings, pricedCoins());
    QCOMPARE(shown.text, QStringLiteral(" BTC 67,432 "));
    QCOMPARE(shown.title, QStringLiteral("BTC 67,432"));
    settings.showMenuBarBackground = false;
    QVERIFY(!content(settings, pricedCoins()).pillColor);
}

void StatusItemContentTest::toolTipTellsNameExactPriceChangeAndTime()
{
    std::vector<Coin> coins = pricedCoins(-0.004);
    coins[0].name = QStringLiteral("Bitcoin");
    const TestClock clock;
    coins[0].lastUpdated = clock.now() - secondsDuration(30);
    AppSettings settings;
    settings.baseCurrency = BaseCurrency::eur;
    const StatusItemContent shown =
        statusItemContent({coins, settings, PanelAppearance::dark, clock.now(), std::nullopt});
    QCOMPARE(shown.toolTipTitle, QStringLiteral("Bitcoin"));
    QCOMPARE(shown.toolTipBody.split(QLatin1Char('\n')),
             (QStringList{
                 localized(QStringLiteral("tooltip.exactPrice")).arg(QStringLiteral("67,432.4"), QStringLiteral("EUR")),
                 localized(QStringLiteral("tooltip.change24h")).arg(QStringLiteral("-0.00%")),
                 localized(QStringLiteral("tooltip.fetchedAt")).arg(clockText(*coins[0].lastUpdated, clock.now()))}));
    QVERIFY(shown.toolTipBody.contains(QStringLiteral("67,432.4")));
    // Hours later, with no fetch since, the text still holds.
    const StatusItemContent later = statusItemContent(
        {coins, settings, PanelAppearance::dark, clock.now() + std::chrono::minutes(2), std::nullopt});
    QCOMPARE(later.toolTipBody, shown.toolTipBody);
}

void StatusItemContentTest::toolTipTellsWhyTheLastFetchFailed()
{
    const std::vector<Coin> coins = pricedCoins();
    const AppSettings settings;
    const ProviderFailure blocked{QStringLiteral("bybit"), FailureReason::regionBlocked, std::nullopt};
    const StatusItemContent shown =
        statusItemContent({coins, settings, PanelAppearance::dark, TestClock().now(), blocked});
    QVERIFY(shown.toolTipBody.contains(localized(QStringLiteral("failure.regionBlocked"))));
    QVERIFY(!content(settings, coins).toolTipBody.contains(localized(QStringLiteral("failure.regionBlocked"))));
}

void StatusItemContentTest::everyFailureHasItsOwnText()
{
    QStringList texts;
    for (int reason = 0; reason <= static_cast<int>(FailureReason::cancelled); ++reason) {
        const QString text = failureText({{}, static_cast<FailureReason>(reason), std::nullopt}, TestClock().now());
        QVERIFY(!text.isEmpty() && !text.startsWith(QStringLiteral("failure.")));
        texts.append(text);
    }
    QCOMPARE(texts.removeDuplicates(), 0);
    const TimePoint now = TestClock().now();
    const QString limited = failureText({{}, FailureReason::rateLimited, now}, now);
    QCOMPARE(limited, localized(QStringLiteral("failure.rateLimitedUntil")).arg(clockText(now, now)));
    QVERIFY(!texts.contains(limited));
    const TimePoint later = now + std::chrono::hours(72);
    QCOMPARE(failureText({{}, FailureReason::rateLimited, later}, now),
             localized(QStringLiteral("failure.rateLimitedUntil")).arg(clockText(later, now)));
}

void StatusItemContentTest::age_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("amount");
    QTest::newRow("now") << 0.0 << QStringLiteral("tooltip.age.now") << QString();
    QTest::newRow("clock went back") << -100.0 << QStringLiteral("tooltip.age.now") << QString();
    QTest::newRow("still now") << 4.9 << QStringLiteral("tooltip.age.now") << QString();
    QTest::newRow("first seconds") << 5.0 << QStringLiteral("tooltip.age.seconds") << QStringLiteral("5");
    QTest::newRow("last minute") << 3599.0 << QStringLiteral("tooltip.age.minutes") << QStringLiteral("59");
    QTest::newRow("first hour") << 3600.0 << QStringLiteral("tooltip.age.hours") << QStringLiteral("1");
    QTest::newRow("last hour") << 86399.0 << QStringLiteral("tooltip.age.hours") << QStringLiteral("23");
    QTest::newRow("first day") << 86400.0 << QStringLiteral("tooltip.age.days") << QStringLiteral("1");
    QTest::newRow("seconds") << 59.0 << QStringLiteral("tooltip.age.seconds") << QStringLiteral("59");
    QTest::newRow("minutes") << 60.0 << QStringLiteral("tooltip.age.minutes") << QStringLiteral("1");
    QTest::newRow("hours") << 7200.0 << QStringLiteral("tooltip.age.hours") << QStringLiteral("2");
    QTest::newRow("days") << 3 * 86400.0 << QStringLiteral("tooltip.age.days") << QStringLiteral("3");
}

void StatusItemContentTest::age()
{
    QFETCH(double, seconds);
    QFETCH(QString, key);
    QFETCH(QString, amount);
    const TestClock clock;
    const QString text = localized(key);
    const QString expected = amount.isEmpty() ? text : localized(QStringLiteral("tooltip.age")).arg(text.arg(amount));
    QCOMPARE(ageText(clock.now() - secondsDuration(seconds), clock.now()), expected);
}

TICKWISE_TEST(StatusItemContentTest)
#include "StatusItemContentTest.moc"
