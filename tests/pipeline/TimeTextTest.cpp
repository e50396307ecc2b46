#include "pipeline/TimeText.h"

#include "doubles/Languages.h"
#include "doubles/TestProgram.h"

#include <ctime>

using namespace tickwise;
using namespace std::chrono_literals;

namespace {

/// 21 November 2026, 17:05:30 in Coordinated Universal Time.
constexpr TimePoint moment{1795280730s};

} // namespace

class TimeTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void clock_data();
    void clock();
    void clockIsLocal();
    void localeOfTheInterface_data();
    void localeOfTheInterface();
    void withoutATableTheSystemsLocale();
};

void TimeTextTest::initTestCase()
{
    qputenv("TZ", "UTC");
    ::tzset();
}

void TimeTextTest::clock_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<int>("secondsAgo");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *locale, int secondsAgo, const char *text) {
        QTest::addRow("%s %d", locale, secondsAgo)
            << QString::fromLatin1(locale) << secondsAgo << QString::fromUtf8(text);
    };
    row("en_GB", 0, "17:05");
    row("en_US", 0, "5:05 PM");
    row("zh_CN", 0, "17:05");
    row("zh_TW", 0, "17:05");
    row("zh_HK", 0, "下午5:05");
    row("zh_TW", 7 * 3600, "2026/11/21 17:05");
    row("en_GB", 6 * 3600, "17:05");
    row("en_GB", 7 * 3600, "21/11/2026 17:05");
    row("en_GB", -18 * 3600, "21/11/2026 17:05");
    row("zh_CN", 7 * 3600, "2026/11/21 17:05");
}

void TimeTextTest::clock()
{
    QFETCH(QString, locale);
    QFETCH(int, secondsAgo);
    QTEST(clockText(moment, moment + std::chrono::seconds(secondsAgo), QLocale(locale)), "text");
}

void TimeTextTest::clockIsLocal()
{
    qputenv("TZ", "Asia/Shanghai");
    ::tzset();
    const QString text = clockText(moment, moment, QLocale(QStringLiteral("en_GB")));
    const QString dayBefore = clockText(moment - 3h, moment, QLocale(QStringLiteral("en_GB")));
    initTestCase();
    QCOMPARE(text, QStringLiteral("01:05"));
    QCOMPARE(dayBefore, QStringLiteral("21/11/2026 22:05"));
}

void TimeTextTest::localeOfTheInterface_data()
{
    QTest::addColumn<AppLanguage>("language");
    QTest::addColumn<QString>("system");
    QTest::addColumn<QString>("locale");
    const auto row = [](AppLanguage language, const char *system, const char *locale) {
        QTest::addRow("%s on %s", qPrintable(rawValue(language)), system)
            << language << QString::fromLatin1(system) << QString::fromLatin1(locale);
    };
    row(AppLanguage::en, "en_GB", "en_GB");
    row(AppLanguage::en, "de_DE", "en_US");
    row(AppLanguage::zhHans, "en_GB", "zh_CN");
    row(AppLanguage::zhHans, "zh_SG", "zh_SG");
    row(AppLanguage::zhHans, "zh_TW", "zh_CN");
    row(AppLanguage::zhHant, "zh_HK", "zh_HK");
    row(AppLanguage::zhHant, "zh_CN", "zh_TW");
}

void TimeTextTest::localeOfTheInterface()
{
    QFETCH(AppLanguage, language);
    QFETCH(QString, system);
    QFETCH(QString, locale);
    QCOMPARE(interfaceLocale(test::textsOf(language), QLocale(system)), QLocale(locale));
}

void TimeTextTest::withoutATableTheSystemsLocale()
{
    QCOMPARE(interfaceLocale(nullptr, QLocale(QStringLiteral("fr_FR"))), QLocale(QStringLiteral("fr_FR")));
}

TICKWISE_TEST(TimeTextTest)
#include "TimeTextTest.moc"
