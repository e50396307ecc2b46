#include "settings/SettingsViewModel.h"

#include "doubles/LogCapture.h"
#include "doubles/MemoryDefaults.h"
#include "doubles/TestProgram.h"
#include "settings/AppSettingsCoding.h"

#include <QSignalSpy>

#include <limits>

using namespace tickwise;
using tickwise::test::LogCapture;
using tickwise::test::MemoryDefaults;

namespace {

const QString key = QStringLiteral("appSettings");
const QString category = QStringLiteral("com.pelmo.tickwise.Settings");

AppSettings withInterval(double seconds)
{
    AppSettings settings;
    settings.pollingInterval = seconds;
    return settings;
}

QString name(const std::optional<QColor> &color)
{
    return color ? color->name().toUpper() : QStringLiteral("neutral");
}

} // namespace

class SettingsViewModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstLaunchWritesNothing();
    void loadsWhatIsStored();
    void badDocumentGivesDefaultsAndOneLine_data();
    void badDocumentGivesDefaultsAndOneLine();
    void firstChangeOverwritesABadDocument();
    void updatePublishesThenSaves();
    void everyUpdateSaves();
    void nestedUpdateSavesTheLast();
    void encodingFailureKeepsTheDocument();
    void failedWriteKeepsTheRunningValue();
    void settingsWindowTab();
    void priceColors_data();
    void priceColors();
};

void SettingsViewModelTest::firstLaunchWritesNothing()
{
    const LogCapture log;
    MemoryDefaults defaults;
    const SettingsViewModel model{UserDefaultsSettingsStore(defaults)};
    QVERIFY(model.settings() == AppSettings());
    QVERIFY(!UserDefaultsSettingsStore(defaults).load());
    QCOMPARE(defaults.writes, 0);
    QCOMPARE(log.lines().size(), 0U);
}

void SettingsViewModelTest::loadsWhatIsStored()
{
    MemoryDefaults defaults;
    defaults.entries[key] = R"({"baseCurrency": "EUR"})";
    const SettingsViewModel model{UserDefaultsSettingsStore(defaults)};
    QCOMPARE(model.settings().baseCurrency, BaseCurrency::eur);
    QCOMPARE(defaults.writes, 0);
}

void SettingsViewModelTest::badDocumentGivesDefaultsAndOneLine_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("reason");
    QTest::newRow("text") << QByteArray("not json") << QStringLiteral("not valid JSON at byte 2");
    QTest::newRow("array") << QByteArray("[1]") << QStringLiteral("not an object");
    QTest::newRow("empty") << QByteArray("") << QStringLiteral("not valid JSON at byte 1");
}

void SettingsViewModelTest::badDocumentGivesDefaultsAndOneLine()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, reason);
    const LogCapture log;
    MemoryDefaults defaults;
    defaults.entries[key] = document;
    const std::optional<AppSettings> settings = UserDefaultsSettingsStore(defaults).load();
    QVERIFY(settings == AppSettings());
    QCOMPARE(log.texts(category), QStringList(QStringLiteral("Failed to decode stored settings: ") + reason));
    QCOMPARE(log.lines().front().type, QtWarningMsg);
    QCOMPARE(defaults.entries[key], document);
    QCOMPARE(defaults.refusedKeys, QStringList(key));
}

void SettingsViewModelTest::firstChangeOverwritesABadDocument()
{
    const LogCapture log;
    MemoryDefaults defaults;
    defaults.entries[key] = "not json";
    SettingsViewModel model{UserDefaultsSettingsStore(defaults)};
    QCOMPARE(defaults.entries[key], QByteArray("not json"));
    model.update(withInterval(7));
    QCOMPARE(defaults.entries[key], encodeSettings(withInterval(7)).value());
}

void SettingsViewModelTest::updatePublishesThenSaves()
{
    MemoryDefaults defaults;
    SettingsViewModel model{UserDefaultsSettingsStore(defaults)};
    std::vector<std::pair<double, int>> seen;
    connect(&model, &SettingsViewModel::settingsChanged, this,
            [&] { seen.emplace_back(model.settings().pollingInterval, defaults.writes); });
    model.update(withInterval(3));
    QVERIFY((seen == std::vector<std::pair<double, int>>{{3.0, 0}}));
    QCOMPARE(defaults.writes, 1);
    QVERIFY(UserDefaultsSettingsStore(defaults).load() == withInterval(3));
}

void SettingsViewModelTest::everyUpdateSaves()
{
    MemoryDefaults defaults;
    SettingsViewModel model{UserDefaultsSettingsStore(defaults)};
    const QSignalSpy changes(&model, &SettingsViewModel::settingsChanged);
    model.update(model.settings());
    QCOMPARE(defaults.writes, 1);
    QCOMPARE(changes.count(), 0);
}

void SettingsViewModelTest::nestedUpdateSavesTheLast()
{
    MemoryDefaults defaults;
    SettingsViewModel model{UserDefaultsSettingsStore(defaults)};
    connect(&model, &SettingsViewModel::settingsChanged, this, [&] {
        if (model.settings().pollingInterval < 5)
            model.update(withInterval(5));
    });
    model.update(withInterval(1));
    QCOMPARE(model.settings().pollingInterval, 5.0);
    QVERIFY(UserDefaultsSettingsStore(defaults).load() == withInterval(5));
}

void SettingsViewModelTest::encodingFailureKeepsTheDocument()
{
    const LogCapture log;
    MemoryDefaults defaults;
    SettingsViewModel model{UserDefaultsSettingsStore(defaults)};
    model.update(withInterval(3));
    model.update(withInterval(std::numeric_limits<double>::infinity()));
    QCOMPARE(defaults.writes, 1);
    QVERIFY(UserDefaultsSettingsStore(defaults).load() == withInterval(3));
    QCOMPARE(log.texts(category),
             QStringList(QStringLiteral("Failed to encode settings: pollingInterval: not a finite number")));
    QCOMPARE(log.lines().front().type, QtWarningMsg);
}

void SettingsViewModelTest::failedWriteKeepsTheRunningValue()
{
    const LogCapture log;
    MemoryDefaults defaults;
    SettingsViewModel model{UserDefaultsSettingsStore(defaults)};
    model.update(withInterval(3));
    defaults.fails = true;
    model.update(withInterval(4));
    QCOMPARE(model.settings().pollingInterval, 4.0);
    QVERIFY(UserDefaultsSettingsStore(defaults).load() == withInterval(3));
    QCOMPARE(log.texts(category), QStringList(QStringLiteral("Failed to store settings: /defaults: disk full")));
}

void SettingsViewModelTest::settingsWindowTab()
{
    MemoryDefaults defaults;
    SettingsViewModel model{UserDefaultsSettingsStore(defaults)};
    const QSignalSpy changes(&model, &SettingsViewModel::settingsWindowTabChanged);
    QCOMPARE(model.settingsWindowTab(), SettingsTab::general);
    model.setSettingsWindowTab(SettingsTab::watchlist);
    model.setSettingsWindowTab(SettingsTab::watchlist);
    QCOMPARE(model.settingsWindowTab(), SettingsTab::watchlist);
    QCOMPARE(changes.count(), 1);
    QCOMPARE(defaults.writes, 0);
}

void SettingsViewModelTest::priceColors_data()
{
    QTest::addColumn<PriceColorScheme>("scheme");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<QString>("upHex");
    QTest::addColumn<QString>("downHex");
    QTest::addColumn<QString>("rise");
    QTest::addColumn<QString>("fall");
    using enum PriceColorScheme;
    const QString green = QStringLiteral("#2CBD84");
    const QString red = QStringLiteral("#F6465D");
    const QString blue = QStringLiteral("#0000FF");
    const QString gray = QStringLiteral("#777777");
    const QString neutral = QStringLiteral("neutral");
    QTest::newRow("green up") << greenUpRedDown << true << blue << gray << green << red;
    QTest::newRow("red up") << redUpGreenDown << true << blue << gray << red << green;
    QTest::newRow("custom") << custom << true << blue << gray << blue << gray;
    QTest::newRow("custom, five digits") << custom << true << QStringLiteral("#12345") << QStringLiteral("#12345")
                                         << green << red;
    QTest::newRow("custom, loosely written")
        << custom << true << QStringLiteral(" 0000ff \n") << QStringLiteral("777777") << blue << gray;
    QTest::newRow("custom, empty") << custom << true << QString() << QString() << green << red;
    QTest::newRow("off") << greenUpRedDown << false << blue << gray << neutral << neutral;
    QTest::newRow("custom, off") << custom << false << blue << gray << neutral << neutral;
}

void SettingsViewModelTest::priceColors()
{
    QFETCH(PriceColorScheme, scheme);
    QFETCH(bool, enabled);
    QFETCH(QString, upHex);
    QFETCH(QString, downHex);
    QFETCH(QString, rise);
    QFETCH(QString, fall);
    MemoryDefaults defaults;
    SettingsViewModel model{UserDefaultsSettingsStore(defaults)};
    AppSettings settings;
    settings.colorScheme = scheme;
    settings.priceColorEnabled = enabled;
    settings.customUpColorHex = upHex;
    settings.customDownColorHex = downHex;
    model.update(settings);
    QCOMPARE(name(model.priceColor(1.5)), rise);
    QCOMPARE(name(model.priceColor(0)), rise);
    QCOMPARE(name(model.priceColor(-0.0)), rise);
    QCOMPARE(name(model.priceColor(-0.004)), fall);
    QCOMPARE(name(model.priceColor(std::nullopt)), QStringLiteral("neutral"));
    QCOMPARE(name(model.priceColor(std::numeric_limits<double>::quiet_NaN())), QStringLiteral("neutral"));
}

TICKWISE_TEST(SettingsViewModelTest)
#include "SettingsViewModelTest.moc"
