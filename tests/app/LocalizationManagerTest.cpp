#include "app/LocalizationManager.h"

#include "doubles/TestProgram.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>

using namespace tickwise;

namespace {

const char *const languageArgument = "--language";

const QString currency = QStringLiteral("general.display.currency");

QString text(AppLanguage language, const QString &preferred)
{
    return localized(currency, LocalizationManager::bundleFor(language, {preferred}));
}

} // namespace

class LocalizationManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void effectiveLanguages_data();
    void effectiveLanguages();
    void ownChoiceIgnoresTheSystem_data();
    void ownChoiceIgnoresTheSystem();
    void emptyPreferencesGiveEnglish();
    void onlyTheFirstPreferenceCounts();
    void startsWithTheMainBundle();
    void textsOfTheSystemLanguage();
    void switchesWhileRunning();
    void qtsOwnTextsFollow();
    void missingTableGivesTheMainBundle();
    void damagedTableGivesTheMainBundle();
    void missingKeyShowsTheKey_data();
    void missingKeyShowsTheKey();
    void endonymsAreTheSameEverywhere();
    void desktopLanguage_data();
    void desktopLanguage();
};

void LocalizationManagerTest::effectiveLanguages_data()
{
    QTest::addColumn<QString>("tag");
    QTest::addColumn<AppLanguage>("language");
    using enum AppLanguage;
    const auto row = [](const char *tag, AppLanguage language) {
        QTest::newRow(qPrintable(QStringLiteral("'%1'").arg(QLatin1String(tag))))
            << QString::fromLatin1(tag) << language;
    };
    row("zh-Hant", zhHant);
    row("zh-Hant-HK", zhHant);
    row("zh-Hant-CN", zhHant);
    row("zh-TW", zhHant);
    row("zh-HK", zhHant);
    row("zh-MO", zhHant);
    row("zh-TWX", zhHant);
    row("zh", zhHans);
    row("zh-CN", zhHans);
    row("zh_CN", zhHans);
    row("zh_TW", zhHans);
    row("zh_Hant_TW", zhHans);
    row("en_US", en);
    row("zh-SG", zhHans);
    row("zh-Hans-TW", zhHans);
    row("zh-hant", zhHans);
    row("zh-tw", zhHans);
    row("zha", zhHans);
    row("ZH-TW", en);
    row("fr-FR", en);
    row("en-US", en);
    row("yue-Hant-HK", en);
    row("xzh-TW", en);
    row(" zh-TW", en);
    row("C", en);
    row("", en);
}

void LocalizationManagerTest::effectiveLanguages()
{
    QFETCH(QString, tag);
    QFETCH(AppLanguage, language);
    QCOMPARE(effectiveLanguage(AppLanguage::system, {tag}), language);
}

void LocalizationManagerTest::ownChoiceIgnoresTheSystem_data()
{
    QTest::addColumn<AppLanguage>("language");
    for (const AppLanguage language : {AppLanguage::en, AppLanguage::zhHans, AppLanguage::zhHant})
        QTest::newRow(qPrintable(rawValue(language))) << language;
}

void LocalizationManagerTest::ownChoiceIgnoresTheSystem()
{
    QFETCH(AppLanguage, language);
    for (const char *tag : {"zh-TW", "zh-CN", "fr-FR"})
        QCOMPARE(effectiveLanguage(language, {QString::fromLatin1(tag)}), language);
    QCOMPARE(effectiveLanguage(language, {}), language);
}

void LocalizationManagerTest::emptyPreferencesGiveEnglish()
{
    QCOMPARE(effectiveLanguage(AppLanguage::system, {}), AppLanguage::en);
}

void LocalizationManagerTest::onlyTheFirstPreferenceCounts()
{
    QCOMPARE(effectiveLanguage(AppLanguage::system, {QStringLiteral("de"), QStringLiteral("zh-TW")}), AppLanguage::en);
    QCOMPARE(effectiveLanguage(AppLanguage::system, {QStringLiteral("zh-CN"), QStringLiteral("en")}),
             AppLanguage::zhHans);
}

void LocalizationManagerTest::startsWithTheMainBundle()
{
    QCOMPARE(localized(currency), QStringLiteral("Display currency"));
    QCOMPARE(&LocalizationManager::shared(), &LocalizationManager::shared());
}

void LocalizationManagerTest::textsOfTheSystemLanguage()
{
    QCOMPARE(text(AppLanguage::system, QStringLiteral("zh-TW")), QStringLiteral("計價貨幣"));
    QCOMPARE(text(AppLanguage::system, QStringLiteral("zh-SG")), QStringLiteral("计价货币"));
    QCOMPARE(text(AppLanguage::system, QStringLiteral("fr-FR")), QStringLiteral("Display currency"));
    QCOMPARE(text(AppLanguage::en, QStringLiteral("zh-TW")), QStringLiteral("Display currency"));
}

void LocalizationManagerTest::switchesWhileRunning()
{
    LocalizationManager &manager = LocalizationManager::shared();
    manager.apply(AppLanguage::zhHant);
    const LocalizationBundle kept = manager.bundle();
    QCOMPARE(localized(currency), QStringLiteral("計價貨幣"));
    manager.apply(AppLanguage::zhHans);
    QCOMPARE(localized(currency), QStringLiteral("计价货币"));
    // A bundle that someone holds keeps answering in its own language.
    QCOMPARE(localized(currency, kept), QStringLiteral("計價貨幣"));
    manager.apply(AppLanguage::en);
    QCOMPARE(localized(currency), QStringLiteral("Display currency"));
}

void LocalizationManagerTest::qtsOwnTextsFollow()
{
    const auto text = [] { return QCoreApplication::translate("QColorDialog", "&Pick Screen Color"); };
    LocalizationManager &manager = LocalizationManager::shared();
    manager.apply(AppLanguage::zhHans);
    const QString simplified = text();
    manager.apply(AppLanguage::zhHant);
    const QString traditional = text();
    manager.apply(AppLanguage::en);
    QCOMPARE(text(), QStringLiteral("&Pick Screen Color"));
    QVERIFY2(simplified.contains(u'屏'), qPrintable(simplified));
    QVERIFY2(traditional != simplified && traditional != text(), qPrintable(traditional));
}

void LocalizationManagerTest::missingTableGivesTheMainBundle()
{
    const QTemporaryDir empty;
    const LocalizationBundle bundle = LocalizationManager::bundleFor(AppLanguage::zhHant, {}, empty.path());
    QCOMPARE(localized(currency, bundle), QStringLiteral("Display currency"));
}

void LocalizationManagerTest::damagedTableGivesTheMainBundle()
{
    const QTemporaryDir resources;
    QVERIFY(QDir(resources.path()).mkpath(QStringLiteral("zh-Hant.lproj")));
    QFile table(resources.filePath(QStringLiteral("zh-Hant.lproj/Localizable.qm")));
    QVERIFY(table.open(QIODevice::WriteOnly));
    QVERIFY(table.write("no table") > 0);
    table.close();
    const LocalizationBundle bundle = LocalizationManager::bundleFor(AppLanguage::zhHant, {}, resources.path());
    QCOMPARE(localized(currency, bundle), QStringLiteral("Display currency"));
}

void LocalizationManagerTest::missingKeyShowsTheKey_data()
{
    QTest::addColumn<QString>("key");
    for (const char *key : {"no.such.key", "", "general", "general.display.currency ", "General.display.currency"})
        QTest::newRow(qPrintable(QStringLiteral("'%1'").arg(QLatin1String(key)))) << QString::fromLatin1(key);
    QTest::newRow("not ASCII") << QStringLiteral("鍵");
}

void LocalizationManagerTest::missingKeyShowsTheKey()
{
    QFETCH(QString, key);
    for (const AppLanguage language : allCases<AppLanguage>())
        QCOMPARE(localized(key, LocalizationManager::bundleFor(language)), key);
    QCOMPARE(localized(key, nullptr), key);
}

void LocalizationManagerTest::endonymsAreTheSameEverywhere()
{
    for (const AppLanguage language : allCases<AppLanguage>()) {
        const LocalizationBundle bundle = LocalizationManager::bundleFor(language);
        QCOMPARE(localized(QStringLiteral("lang.endonym.en"), bundle), QStringLiteral("English"));
        QCOMPARE(localized(QStringLiteral("lang.endonym.zh-Hans"), bundle), QStringLiteral("简体中文"));
        QCOMPARE(localized(QStringLiteral("lang.endonym.zh-Hant"), bundle), QStringLiteral("繁體中文"));
    }
}

void LocalizationManagerTest::desktopLanguage_data()
{
    QTest::addColumn<QString>("LANG");
    QTest::addColumn<QString>("LANGUAGE");
    QTest::addColumn<QByteArray>("language");
    const auto row = [](const char *lang, const char *languages, const char *language) {
        QTest::addRow("LANG=%s LANGUAGE=%s", lang, languages)
            << QString::fromLatin1(lang) << QString::fromLatin1(languages) << QByteArray(language);
    };
    row("zh_TW.UTF-8", "", "zh-Hant");
    row("zh_HK.UTF-8", "", "zh-Hant");
    row("zh_CN.UTF-8", "", "zh-Hans");
    row("zh_SG.UTF-8", "", "zh-Hans");
    row("zh_MO.UTF-8", "", "zh-Hant");
    row("zh_HK", "", "zh-Hant");
    row("de_DE.UTF-8", "", "en");
    row("C.UTF-8", "", "en");
    row("", "", "en");
    row("en_US.UTF-8", "zh_TW:en", "zh-Hant");
    row("en_US.UTF-8", "zh_Hant_HK:en", "zh-Hant");
    row("en_US.UTF-8", "zh_MO", "zh-Hant");
    row("en_US.UTF-8", "zh", "zh-Hans");
    row("en_US.UTF-8", "zh_CN:zh:en", "zh-Hans");
    row("zh_TW.UTF-8", "en:zh_TW", "en");
}

void LocalizationManagerTest::desktopLanguage()
{
    QFETCH(QString, LANG);
    QFETCH(QString, LANGUAGE);
    QFETCH(QByteArray, language);
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("LC_ALL"));
    environment.remove(QStringLiteral("LC_MESSAGES"));
    environment.insert(QStringLiteral("LANG"), LANG);
    environment.insert(QStringLiteral("LANGUAGE"), LANGUAGE);
    program.setProcessEnvironment(environment);
    program.start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(languageArgument)});
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.readAllStandardOutput(), language);
}

static const tickwise::testing::TestRoleRegistration languageRole(languageArgument, [] {
    std::fputs(qPrintable(rawValue(effectiveLanguage(AppLanguage::system, preferredLanguages()))), stdout);
    return 0;
});
TICKWISE_TEST(LocalizationManagerTest)
#include "LocalizationManagerTest.moc"
