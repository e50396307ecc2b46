#include "ui/updates/UpdaterSettings.h"

#include "doubles/LogCapture.h"
#include "doubles/MemoryDefaults.h"
#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"

using namespace tickwise;
using namespace tickwise::test;

class UpdaterSettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decodes_data();
    void decodes();
    void roundTrip();
    void storesUnderItsKey();
    void aFailureToStoreIsLogged();
    void aDocumentThatIsNoneIsKept_data();
    void aDocumentThatIsNoneIsKept();
};

void UpdaterSettingsTest::decodes_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<UpdaterSettings>("expected");
    const auto row = [](const char *name, const QByteArray &json, const UpdaterSettings &expected) {
        QTest::newRow(name) << json << expected;
    };
    const TimePoint instant(secondsDuration(1769847300.5));
    row("empty object", "{}", {});
    row("all", R"({"automaticallyChecks":false,"lastCheck":1769847300.5,"skippedVersion":"1.2"})",
        {false, instant, QStringLiteral("1.2")});
    row("wrong types", R"({"automaticallyChecks":1,"lastCheck":"x","skippedVersion":2})", {});
    row("one wrong field", R"({"automaticallyChecks":"no","skippedVersion":"1.2"})", {true, {}, QStringLiteral("1.2")});
    row("versions that are none", R"({"skippedVersion":"<b>"})", {});
    row("instant before 1970", R"({"lastCheck":-1})", {});
    row("instant out of range", R"({"lastCheck":1e300})", {});
    row("unknown field", R"({"more":true})", {});
}

void UpdaterSettingsTest::decodes()
{
    QFETCH(QByteArray, json);
    QFETCH(UpdaterSettings, expected);
    QVERIFY(decodeUpdaterSettings(json).value() == expected);
}

void UpdaterSettingsTest::roundTrip()
{
    const TimePoint now = TestClock().now();
    const UpdaterSettings full{false, now, QStringLiteral("1.2")};
    QVERIFY(decodeUpdaterSettings(encodeUpdaterSettings(full).value()).value() == full);
    QVERIFY(decodeUpdaterSettings(encodeUpdaterSettings({}).value()).value() == UpdaterSettings());
}

void UpdaterSettingsTest::storesUnderItsKey()
{
    MemoryDefaults defaults;
    UpdaterSettingsStore store(defaults);
    QVERIFY(store.settings() == UpdaterSettings());
    UpdaterSettings changed;
    changed.skippedVersion = QStringLiteral("1.2");
    store.update(changed);
    QVERIFY(store.settings() == changed);
    QVERIFY(defaults.data(QStringLiteral("updater")).has_value());
    QVERIFY(UpdaterSettingsStore(defaults).settings() == changed);
}

void UpdaterSettingsTest::aDocumentThatIsNoneIsKept_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::newRow("nothing") << QByteArray("");
    QTest::newRow("no JSON") << QByteArray("{");
    QTest::newRow("no object") << QByteArray("[1]");
}

void UpdaterSettingsTest::aDocumentThatIsNoneIsKept()
{
    QFETCH(QByteArray, document);
    MemoryDefaults defaults;
    defaults.entries[QStringLiteral("updater")] = document;
    const LogCapture log;
    const UpdaterSettingsStore store(defaults);
    QVERIFY(store.settings() == UpdaterSettings());
    QCOMPARE(defaults.refusedKeys, QStringList{QStringLiteral("updater")});
    QCOMPARE(log.texts(QStringLiteral("com.pelmo.tickwise.Updates")).size(), 1);
}

void UpdaterSettingsTest::aFailureToStoreIsLogged()
{
    MemoryDefaults defaults;
    UpdaterSettingsStore store(defaults);
    defaults.fails = true;
    const LogCapture log;
    store.update({});
    QCOMPARE(log.texts(QStringLiteral("com.pelmo.tickwise.Updates")).size(), 1);
    QCOMPARE(log.lines().front().type, QtWarningMsg);
}

TICKWISE_TEST(UpdaterSettingsTest)
#include "UpdaterSettingsTest.moc"
