#include "widget/program/WidgetPreferences.h"

#include "doubles/LogCapture.h"
#include "doubles/MemoryDefaults.h"
#include "doubles/TestProgram.h"

#include <limits>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const QString key = QStringLiteral("widget");

} // namespace

class WidgetPreferencesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void mediumWithoutAPlaceAtFirst();
    void comeBack_data();
    void comeBack();
    void badFieldsFallBack_data();
    void badFieldsFallBack();
    void damagedDocumentIsKept();
    void failedSaveIsLogged();
    void placeThatIsNoNumberIsNotSaved();
};

void WidgetPreferencesTest::mediumWithoutAPlaceAtFirst()
{
    MemoryDefaults defaults;
    QCOMPARE(loadWidgetPreferences(defaults), (WidgetPreferences{WidgetSize::medium, std::nullopt}));
    QCOMPARE(defaults.writes, 0);
}

void WidgetPreferencesTest::comeBack_data()
{
    QTest::addColumn<int>("size");
    for (const WidgetSize size : allCases<WidgetSize>())
        QTest::newRow(qPrintable(rawValue(size))) << int(size);
}

void WidgetPreferencesTest::comeBack()
{
    QFETCH(int, size);
    MemoryDefaults defaults;
    const WidgetPreferences preferences{WidgetSize(size), DesktopOverlayOrigin{-12.5, 700}};
    saveWidgetPreferences(defaults, preferences);
    QCOMPARE(loadWidgetPreferences(defaults), preferences);
}

void WidgetPreferencesTest::badFieldsFallBack_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<bool>("isLarge");
    QTest::addColumn<bool>("hasPlace");
    QTest::newRow("other size") << QByteArray(R"({"size":"huge","topLeft":{"x":1,"y":2}})") << false << true;
    QTest::newRow("no size") << QByteArray(R"({"topLeft":{"x":1,"y":2}})") << false << true;
    QTest::newRow("half a place") << QByteArray(R"({"size":"large","topLeft":{"x":1}})") << true << false;
    QTest::newRow("text place") << QByteArray(R"({"size":"large","topLeft":{"x":"1","y":2}})") << true << false;
    QTest::newRow("array") << QByteArray("[]") << false << false;
}

void WidgetPreferencesTest::badFieldsFallBack()
{
    QFETCH(QByteArray, document);
    MemoryDefaults defaults;
    defaults.entries[key] = document;
    const WidgetPreferences preferences = loadWidgetPreferences(defaults);
    QTEST(preferences.size == WidgetSize::large, "isLarge");
    QTEST(preferences.topLeft.has_value(), "hasPlace");
}

void WidgetPreferencesTest::damagedDocumentIsKept()
{
    const LogCapture log;
    MemoryDefaults defaults;
    defaults.entries[key] = "{\"size\":";
    QCOMPARE(loadWidgetPreferences(defaults), WidgetPreferences());
    QCOMPARE(defaults.refusedKeys, QStringList{key});
    QCOMPARE(log.lines().size(), std::size_t(1));
}

void WidgetPreferencesTest::failedSaveIsLogged()
{
    const LogCapture log;
    MemoryDefaults defaults;
    defaults.fails = true;
    saveWidgetPreferences(defaults, {});
    QCOMPARE(log.texts(QStringLiteral("com.pelmo.tickwise.WidgetPreferences")).size(), 1);
}

void WidgetPreferencesTest::placeThatIsNoNumberIsNotSaved()
{
    const LogCapture log;
    MemoryDefaults defaults;
    saveWidgetPreferences(defaults,
                          {WidgetSize::small, DesktopOverlayOrigin{std::numeric_limits<double>::quiet_NaN(), 0}});
    QCOMPARE(defaults.writes, 0);
    QCOMPARE(log.lines().size(), std::size_t(1));
}

TICKWISE_TEST(WidgetPreferencesTest)
#include "WidgetPreferencesTest.moc"
