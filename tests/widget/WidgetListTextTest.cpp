#include "widget/WidgetListText.h"

#include "doubles/TestProgram.h"

using namespace tickwise;
using namespace std::chrono_literals;

namespace {

constexpr TimePoint noon{std::chrono::sys_days{std::chrono::year{2026} / 3 / 14} + 15h + 5min};

WidgetEntryContent contentWith(std::vector<WidgetRow> rows)
{
    WidgetEntryContent content;
    content.rows = std::move(rows);
    content.updatedAt = noon;
    content.language = AppLanguage::en;
    content.upColorHex = QStringLiteral("#00FF00");
    content.downColorHex = QStringLiteral("#FF0000");
    return content;
}

WidgetRow bitcoinRow(std::optional<double> price, std::optional<double> change)
{
    return {QStringLiteral("bitcoin"), QStringLiteral("BTC"), QStringLiteral("Bitcoin"), {}, true, price, change};
}

WidgetListText textOf(const WidgetEntryContent &content, TimePoint now = noon)
{
    return widgetListText(content, now, QTimeZone::utc());
}

} // namespace

class WidgetListTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void change_data();
    void change();
    void withoutColorsTheChangeIsPlain();
    void aRowWithoutAQuoteIsDelisted();
    void aRowWithoutAPrice();
    void readsOut();
    void staleness_data();
    void staleness();
    void languages_data();
    void languages();
    void noTimeWithoutPrices();
};

void WidgetListTextTest::change_data()
{
    QTest::addColumn<double>("percent");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("color");
    const auto row = [](const char *name, double percent, const char16_t *text, const char *color) {
        QTest::newRow(name) << percent << QString::fromUtf16(text) << QString::fromLatin1(color);
    };
    row("rising", 1.234, u"▲ +1.23%", "#00FF00");
    row("falling", -0.5, u"▼ -0.50%", "#FF0000");
    row("zero rises", 0.0, u"▲ +0.00%", "#00FF00");
    row("negative zero rises", -0.0, u"▲ +0.00%", "#00FF00");
    row("a little below zero falls", -0.004, u"▼ -0.00%", "#FF0000");
    row("large", 1234.5, u"▲ +1234.50%", "#00FF00");
}

void WidgetListTextTest::change()
{
    QFETCH(double, percent);
    const WidgetRowText row = textOf(contentWith({bitcoinRow(1, percent)})).rows.front();
    QTEST(row.change, "text");
    QTEST(row.changeColorHex, "color");
}

void WidgetListTextTest::withoutColorsTheChangeIsPlain()
{
    WidgetEntryContent content = contentWith({bitcoinRow(1, 2)});
    content.colorByChange = false;
    QCOMPARE(textOf(content).rows.front().changeColorHex, QString());
}

void WidgetListTextTest::aRowWithoutAQuoteIsDelisted()
{
    WidgetRow row = bitcoinRow(5, 3);
    row.hasMarket = false;
    const WidgetRowText text = textOf(contentWith({row})).rows.front();
    QVERIFY(text.isDelisted);
    QCOMPARE(text.price, QString());
    QCOMPARE(text.change, QStringLiteral("Delisted"));
    QCOMPARE(text.changeColorHex, QString());
    QCOMPARE(text.accessibleText, QStringLiteral("Bitcoin, Delisted"));
}

void WidgetListTextTest::aRowWithoutAPrice()
{
    const WidgetRowText text = textOf(contentWith({bitcoinRow({}, {})})).rows.front();
    QCOMPARE(text.price, QStringLiteral("--"));
    QCOMPARE(text.change, QString());
    QCOMPARE(text.accessibleText, QStringLiteral("Bitcoin"));
}

void WidgetListTextTest::readsOut()
{
    QCOMPARE(textOf(contentWith({bitcoinRow(67432.2, 1.234)})).rows.front().accessibleText,
             QStringLiteral("Bitcoin, 67,432 USD, +1.23%"));
}

void WidgetListTextTest::staleness_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<bool>("stale");
    QTest::newRow("now") << 0 << false;
    QTest::newRow("29 minutes") << 1740 << false;
    QTest::newRow("30 minutes") << 1800 << false;
    QTest::newRow("a second more") << 1801 << true;
    QTest::newRow("31 minutes") << 1860 << true;
    QTest::newRow("in the future") << -3600 << false;
}

void WidgetListTextTest::staleness()
{
    QFETCH(int, seconds);
    QTEST(textOf(contentWith({}), noon + std::chrono::seconds(seconds)).isStale, "stale");
}

void WidgetListTextTest::languages_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("updated");
    QTest::newRow("en") << int(AppLanguage::en) << QStringLiteral("Watchlist") << QStringLiteral("3:05 PM");
    QTest::newRow("zh-Hans") << int(AppLanguage::zhHans) << QStringLiteral("自选") << QStringLiteral("15:05");
    QTest::newRow("zh-Hant") << int(AppLanguage::zhHant) << QStringLiteral("自選") << QStringLiteral("15:05");
}

void WidgetListTextTest::languages()
{
    QFETCH(int, language);
    WidgetEntryContent content = contentWith({});
    content.language = AppLanguage(language);
    const WidgetListText text = textOf(content);
    QTEST(text.title, "title");
    QTEST(text.updated, "updated");
    QVERIFY(!text.emptyText.isEmpty());
}

void WidgetListTextTest::noTimeWithoutPrices()
{
    WidgetEntryContent content = contentWith({});
    content.updatedAt.reset();
    const WidgetListText text = textOf(content);
    QCOMPARE(text.updated, QString());
    QVERIFY(!text.isStale);
}

TICKWISE_TEST(WidgetListTextTest)
#include "WidgetListTextTest.moc"
