#include "platform/statusitem/WaybarConfig.h"

#include "doubles/TestProgram.h"
#include "platform/Files.h"

#include <QDir>
#include <QTemporaryDir>

#include <sys/stat.h>

using namespace tickwise;
using namespace tickwise::test;

namespace {

/// A waybar that was started with the configuration.
WatcherProcess configuredBy(const QString &path)
{
    return {QStringLiteral("waybar"), {QStringLiteral("waybar"), QStringLiteral("-c"), path}, {}};
}

} // namespace

class WaybarConfigTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theUsersWaybarConfigurationIsFound();
    void iconSizeOfAWaybarConfiguration_data();
    void iconSizeOfAWaybarConfiguration();
    void theCommandLineNamesTheConfiguration_data();
    void theCommandLineNamesTheConfiguration();
    void aPipeIsNoConfiguration();
    void anOverlongConfigurationIsNotRead();
};

void WaybarConfigTest::theUsersWaybarConfigurationIsFound()
{
    QTemporaryDir home;
    QTemporaryDir system;
    const auto write = [](const QTemporaryDir &folder, const QString &name, const QByteArray &text) {
        QDir(folder.path()).mkpath(QStringLiteral("waybar"));
        QFile file(folder.filePath(QStringLiteral("waybar/") + name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
    };
    const QByteArray formerHome = qgetenv("XDG_CONFIG_HOME");
    const QByteArray formerSystem = qgetenv("XDG_CONFIG_DIRS");
    qputenv("XDG_CONFIG_HOME", home.path().toUtf8());
    qputenv("XDG_CONFIG_DIRS", system.path().toUtf8());
    const WatcherProcess waybar{QStringLiteral("waybar"), {QStringLiteral("waybar")}, {}};
    QCOMPARE(waybarIconSize(waybar), waybarDefaultIconSize);
    write(system, QStringLiteral("config.jsonc"), R"({"tray": {"icon-size": 30}})");
    QCOMPARE(waybarIconSize(waybar), 30);
    write(home, QStringLiteral("config"), R"({"tray": {"icon-size": 20}})");
    QCOMPARE(waybarIconSize(waybar), 20);
    formerHome.isNull() ? qunsetenv("XDG_CONFIG_HOME") : qputenv("XDG_CONFIG_HOME", formerHome);
    formerSystem.isNull() ? qunsetenv("XDG_CONFIG_DIRS") : qputenv("XDG_CONFIG_DIRS", formerSystem);
}

void WaybarConfigTest::iconSizeOfAWaybarConfiguration_data()
{
    QTest::addColumn<QByteArray>("configuration");
    QTest::addColumn<int>("size");
    QTest::newRow("given") << QByteArray(R"({"tray": {"icon-size": 21, "spacing": 10}})") << 21;
    QTest::newRow("after another key") << QByteArray(R"({"tray": {"spacing": 10, "icon-size": 24}})") << 24;
    QTest::newRow("commented out") << QByteArray("{\"tray\": {\n// \"icon-size\": 21,\n\"spacing\": 10}}")
                                   << waybarDefaultIconSize;
    QTest::newRow("in a block comment") << QByteArray("{\"tray\": {/* \"icon-size\": 21, */ \"spacing\": 10}}")
                                        << waybarDefaultIconSize;
    QTest::newRow("of another module") << QByteArray(R"({"wlr/taskbar": {"icon-size": 30}, "tray": {"spacing": 1}})")
                                       << waybarDefaultIconSize;
    QTest::newRow("beside a URL") << QByteArray(R"({"a": "https://b", "tray": {"icon-size": 20}})") << 20;
    QTest::newRow("too large") << QByteArray(R"({"tray": {"icon-size": 4000}})") << 96;
    QTest::newRow("too small") << QByteArray(R"({"tray": {"icon-size": 0}})") << 8;
    QTest::newRow("beyond an int") << QByteArray(R"({"tray": {"icon-size": 99999999999999}})") << waybarDefaultIconSize;
    QTest::newRow("negative") << QByteArray(R"({"tray": {"icon-size": -20}})") << waybarDefaultIconSize;
    QTest::newRow("no whole number") << QByteArray(R"({"tray": {"icon-size": 20.5}})") << waybarDefaultIconSize;
    QTest::newRow("after a nested object")
        << QByteArray(R"({"tray": {"icons": {"blueman": "bluetooth"}, "icon-size": 23}})") << 23;
    QTest::newRow("of a nested object") << QByteArray(R"({"tray": {"icons": {"icon-size": 23}}})")
                                        << waybarDefaultIconSize;
    QTest::newRow("of the bar that has a tray")
        << QByteArray(R"([{"name": "a"}, {"tray": {"spacing": 1}}, {"tray": {"icon-size": 25}}])") << 25;
    QTest::newRow("commas after the last elements")
        << QByteArray("{\"modules-right\": [\"a\", \"tray\",\n], \"tray\": {\"icon-size\": 26,\n // last\n},}") << 26;
    QTest::newRow("a comma before a bracket in a text")
        << QByteArray(R"({"a": ",}", "b": ",]\"", "tray": {"icon-size": 27}})") << 27;
    QTest::newRow("text") << QByteArray(R"({"tray": {"icon-size": "big"}})") << waybarDefaultIconSize;
    QTest::newRow("empty") << QByteArray() << waybarDefaultIconSize;
    QTest::newRow("cut off") << QByteArray(R"({"tray": {"icon-si)") << waybarDefaultIconSize;
}

void WaybarConfigTest::iconSizeOfAWaybarConfiguration()
{
    QFETCH(QByteArray, configuration);
    QTEST(waybarIconSize(configuration), "size");
}

void WaybarConfigTest::theCommandLineNamesTheConfiguration_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::newRow("short") << QStringList{QStringLiteral("-c"), QStringLiteral("%1/mine")};
    QTest::newRow("long") << QStringList{QStringLiteral("--config"), QStringLiteral("%1/mine")};
    QTest::newRow("long with =") << QStringList{QStringLiteral("--config=%1/mine")};
    QTest::newRow("short with =") << QStringList{QStringLiteral("-c=%1/mine")};
    QTest::newRow("after another") << QStringList{QStringLiteral("-s"), QStringLiteral("style.css"),
                                                  QStringLiteral("-c"), QStringLiteral("%1/mine")};
    QTest::newRow("relative") << QStringList{QStringLiteral("-c"), QStringLiteral("mine")};
    QTest::newRow("relative with =") << QStringList{QStringLiteral("--config=./mine")};
    QTest::newRow("a name with =") << QStringList{QStringLiteral("--config=%1/a=b")};
}

void WaybarConfigTest::theCommandLineNamesTheConfiguration()
{
    QFETCH(QStringList, options);
    QTemporaryDir folder;
    put(folder.filePath(QStringLiteral("mine")), R"({"tray": {"icon-size": 29}})");
    put(folder.filePath(QStringLiteral("a=b")), R"({"tray": {"icon-size": 29}})");
    options.replaceInStrings(QStringLiteral("%1"), folder.path());
    options.prepend(QStringLiteral("waybar"));
    QCOMPARE(waybarIconSize(WatcherProcess{QStringLiteral("waybar"), options, folder.path()}), 29);
}

void WaybarConfigTest::aPipeIsNoConfiguration()
{
    QTemporaryDir folder;
    const QString pipe = folder.filePath(QStringLiteral("pipe"));
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QCOMPARE(waybarIconSize(configuredBy(pipe)), waybarDefaultIconSize);
}

void WaybarConfigTest::anOverlongConfigurationIsNotRead()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("long"));
    const QByteArray configuration = R"({"tray": {"icon-size": 29}})";
    constexpr qsizetype largest = 1024 * 1024;
    put(path, configuration.leftJustified(largest));
    QCOMPARE(waybarIconSize(configuredBy(path)), 29);
    put(path, configuration.leftJustified(largest + 1));
    QCOMPARE(waybarIconSize(configuredBy(path)), waybarDefaultIconSize);
}

TICKWISE_TEST(WaybarConfigTest)
#include "WaybarConfigTest.moc"
