#include "pipeline/CoinRowContent.h"

#include "doubles/Catalogs.h"
#include "doubles/Languages.h"
#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"

#include <QTimeZone>

#include <cmath>
#include <limits>

using namespace tickwise;
using namespace tickwise::test;

namespace {

using Number = std::optional<double>;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

Coin bitcoin(Number price, Number change = std::nullopt)
{
    Coin coin{coinRecord(QStringLiteral("bitcoin"), QStringLiteral("BTC"))};
    coin.name = QStringLiteral("Bitcoin");
    coin.currentPrice = price;
    coin.priceChange24hPercent = change;
    return coin;
}

CoinRowContent content(const Coin &coin, const AppSettings &settings = {}, BaseCurrency currency = BaseCurrency::usd)
{
    return coinRowContent({coin, settings, currency, TestClock().now()});
}

QString toolTip(const Coin &coin, const AppSettings &settings = {}, BaseCurrency currency = BaseCurrency::usd)
{
    return coinRowToolTip({coin, settings, currency, TestClock().now()});
}

QString spoken(const Coin &coin)
{
    const AppSettings settings;
    return coinRowSpokenText({coin, settings, BaseCurrency::usd, TestClock().now()});
}

} // namespace

class CoinRowContentTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("TZ", "UTC"); }
    void cleanup() { useLanguage(AppLanguage::en); }
    void price_data();
    void price();
    void change_data();
    void change();
    void colors();
    void delistedCoinSaysSoInsteadOfItsChange();
    void toolTipTellsTheExactPriceItsCurrencyAndTime();
    void toolTipTellsTheDayOfAnOldPrice();
    void toolTipOfACoinWithoutPrice();
    void spokenText_data();
    void spokenText();
    void spokenTextFollowsTheLanguage();
    void oddNamesStayWhole();
};

void CoinRowContentTest::price_data()
{
    QTest::addColumn<Number>("value");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, Number value, const char *text) {
        QTest::newRow(name) << value << QString::fromLatin1(text);
    };
    row("large", 67432.4, "67,432");
    row("below 100", 9.5, "9.5");
    row("below 1", 0.123456, "0.1235");
    row("zero", 0, "0");
    row("tiny", 1e-9, "0");
    row("huge", 1e15, "1,000,000,000,000,000");
    row("none", std::nullopt, "--");
    row("not a number", notANumber, "--");
    row("infinite", infinity, "--");
}

void CoinRowContentTest::price()
{
    QFETCH(Number, value);
    QTEST(content(bitcoin(value)).price, "text");
    QCOMPARE(content(bitcoin(value)).hasPrice, value && std::isfinite(*value));
}

void CoinRowContentTest::change_data()
{
    QTest::addColumn<Number>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("up") << Number(1.234) << QStringLiteral("+1.23%");
    QTest::newRow("down") << Number(-0.5) << QStringLiteral("-0.50%");
    QTest::newRow("zero") << Number(0) << QStringLiteral("+0.00%");
    QTest::newRow("negative zero") << Number(-0.0) << QStringLiteral("+0.00%");
    QTest::newRow("a little down") << Number(-0.004) << QStringLiteral("-0.00%");
    QTest::newRow("none") << Number() << QString();
    QTest::newRow("not a number") << Number(notANumber) << QString();
}

void CoinRowContentTest::change()
{
    QFETCH(Number, value);
    QTEST(content(bitcoin(100, value)).change, "text");
}

void CoinRowContentTest::colors()
{
    AppSettings settings;
    QCOMPARE(content(bitcoin(1, 1.0), settings).priceColor, std::optional(QColor(QStringLiteral("#2CBD84"))));
    QCOMPARE(content(bitcoin(1, -1.0), settings).priceColor, std::optional(QColor(QStringLiteral("#F6465D"))));
    QVERIFY(!content(bitcoin(1), settings).priceColor);
    QVERIFY(!content(bitcoin(1, notANumber), settings).priceColor);
    QVERIFY(!content(bitcoin(std::nullopt, 1.0), settings).priceColor);
    settings.colorScheme = PriceColorScheme::redUpGreenDown;
    QCOMPARE(content(bitcoin(1, 1.0), settings).priceColor, std::optional(QColor(QStringLiteral("#F6465D"))));
    settings.priceColorEnabled = false;
    QVERIFY(!content(bitcoin(1, 1.0), settings).priceColor);
}

void CoinRowContentTest::delistedCoinSaysSoInsteadOfItsChange()
{
    Coin coin = bitcoin(5, 1.0);
    coin.status = CoinStatus::delisted;
    const CoinRowContent row = content(coin);
    QVERIFY(row.isDelisted);
    QCOMPARE(row.change, QStringLiteral("Delisted"));
    QCOMPARE(spoken(coin), QStringLiteral("Bitcoin, 5 USD, Delisted"));
    QVERIFY(toolTip(coin).contains(QStringLiteral("Delisted")));
}

void CoinRowContentTest::toolTipTellsTheExactPriceItsCurrencyAndTime()
{
    Coin coin = bitcoin(67432.45678);
    coin.lastUpdated = TestClock().now();
    AppSettings settings;
    settings.baseCurrency = BaseCurrency::usd;
    QCOMPARE(toolTip(coin, settings, BaseCurrency::eur),
             QStringLiteral("Bitcoin\n67,432.45678 EUR\nFetched at 8:15 AM"));
}

void CoinRowContentTest::toolTipTellsTheDayOfAnOldPrice()
{
    Coin coin = bitcoin(2);
    coin.lastUpdated = TestClock().now() - std::chrono::hours(24);
    const QString line = toolTip(coin).split(QLatin1Char('\n')).last();
    QVERIFY2(line.contains(QStringLiteral("30")) && line.endsWith(QStringLiteral("8:15 AM")), qPrintable(line));
}

void CoinRowContentTest::toolTipOfACoinWithoutPrice()
{
    QCOMPARE(toolTip(bitcoin(notANumber)), QStringLiteral("Bitcoin\nNo price yet"));
}

void CoinRowContentTest::spokenText_data()
{
    QTest::addColumn<Number>("price");
    QTest::addColumn<Number>("change");
    QTest::addColumn<QString>("text");
    QTest::newRow("up") << Number(67432.4) << Number(1.23) << QStringLiteral("Bitcoin, 67,432 USD, up 1.23 percent");
    QTest::newRow("down") << Number(9.5) << Number(-4) << QStringLiteral("Bitcoin, 9.5 USD, down 4.00 percent");
    QTest::newRow("no change") << Number(9.5) << Number() << QStringLiteral("Bitcoin, 9.5 USD");
    QTest::newRow("no price") << Number() << Number() << QStringLiteral("Bitcoin, No price yet");
}

void CoinRowContentTest::spokenText()
{
    QFETCH(Number, price);
    QFETCH(Number, change);
    QTEST(spoken(bitcoin(price, change)), "text");
}

void CoinRowContentTest::spokenTextFollowsTheLanguage()
{
    useLanguage(AppLanguage::zhHans);
    QCOMPARE(spoken(bitcoin(9.5, -4.0)), QStringLiteral("Bitcoin，9.5 USD，下跌百分之 4.00"));
    useLanguage(AppLanguage::zhHant);
    QCOMPARE(spoken(bitcoin(9.5, 4.0)), QStringLiteral("Bitcoin，9.5 USD，上漲百分之 4.00"));
}

void CoinRowContentTest::oddNamesStayWhole()
{
    Coin coin = bitcoin(1, 2.0);
    coin.name = QStringLiteral("%1 100%% <b>\u05d1\u05d9\u05d8 e\u0301</b>");
    QVERIFY(spoken(coin).startsWith(coin.name + QStringLiteral(", 1 USD, ")));
    QVERIFY(toolTip(coin).startsWith(coin.name + QLatin1Char('\n')));
}

TICKWISE_TEST(CoinRowContentTest)
#include "CoinRowContentTest.moc"
