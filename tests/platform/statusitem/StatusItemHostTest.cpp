#include "platform/statusitem/StatusItemHost.h"
#include "doubles/TestProgram.h"

#include "platform/statusitem/SystemTraySelection.h"
#include "platform/statusitem/WaybarConfig.h"

#include <QCoreApplication>

using namespace tickwise;

Q_DECLARE_METATYPE(tickwise::StatusItemHost)
Q_DECLARE_METATYPE(tickwise::StatusItemPresentation)
Q_DECLARE_METATYPE(tickwise::PanelAppearance)

class StatusItemHostTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theProcessNamesTheHost_data();
    void theProcessNamesTheHost();
    void aHiddenProcessLeavesTheDesktopsName_data();
    void aHiddenProcessLeavesTheDesktopsName();
    void eachHostHasItsPresentation_data();
    void eachHostHasItsPresentation();
    void eachHostHasItsAppearance_data();
    void eachHostHasItsAppearance();
    void trayTextColourTellsTheAppearance();
    void onlySomeHostsTellWhereAClickWas();
    void gnomeIsToldTheConnection();
    void waybarGetsOnePixmapOfItsIconSize();
    void theUsersWaybarConfigurationIsFound();
    void swaybarReadsPremultipliedAlpha();
    void matePanelsOfAllUsualHeightsGetTheirOwnPixmap();
    void iconSizeOfAWaybarConfiguration_data();
    void iconSizeOfAWaybarConfiguration();
    void readsItsOwnProcess();
    void aProcessThatIsGoneIsEmpty();
};

void StatusItemHostTest::theProcessNamesTheHost_data()
{
    QTest::addColumn<QString>("executable");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<StatusItemHost>("host");
    const auto row = [](const char *executable, StatusItemHost host, const QStringList &arguments = {}) {
        QTest::addRow("%s", executable) << QString::fromLatin1(executable) << arguments << host;
    };
    row("waybar", StatusItemHost::waybar);
    row("mate-notification-area-applet", StatusItemHost::mate);
    row("notification-area-applet", StatusItemHost::mate);
    row("mate-notificati", StatusItemHost::mate);
    row("mate-panel", StatusItemHost::mate);
    row("xapp-sn-watcher", StatusItemHost::cinnamon);
    row("cinnamon", StatusItemHost::cinnamon);
    row("xfce4-panel", StatusItemHost::xfce);
    row("wrapper-2.0", StatusItemHost::xfce,
        {QStringLiteral("wrapper-2.0"), QStringLiteral("/usr/lib/xfce4/panel/plugins/libsystray.so")});
    row("wrapper-3.0", StatusItemHost::unknown, {QStringLiteral("wrapper-3.0")});
    row("gnome-shell", StatusItemHost::gnome);
    row("ayatana-indicator-application-service", StatusItemHost::ayatana);
    row("ayatana-indicat", StatusItemHost::ayatana);
    row("indicator-application-service", StatusItemHost::ayatana);
    row("kded5", StatusItemHost::plasma);
    row("kded6", StatusItemHost::plasma);
    row("plasmashell", StatusItemHost::plasma);
    row("lxqt-panel", StatusItemHost::lxqt);
    row("swaybar", StatusItemHost::swaybar);
    row("something-else", StatusItemHost::unknown);
    row("way", StatusItemHost::unknown);
}

void StatusItemHostTest::theProcessNamesTheHost()
{
    QFETCH(QString, executable);
    QFETCH(QStringList, arguments);
    QTEST(hostFor({executable, arguments}, QStringLiteral("GNOME")), "host");
}

void StatusItemHostTest::aHiddenProcessLeavesTheDesktopsName_data()
{
    QTest::addColumn<QString>("desktop");
    QTest::addColumn<StatusItemHost>("host");
    QTest::newRow("GNOME") << QStringLiteral("GNOME") << StatusItemHost::gnome;
    QTest::newRow("a vendor's GNOME") << QStringLiteral("ubuntu:GNOME") << StatusItemHost::gnome;
    QTest::newRow("KDE") << QStringLiteral("KDE") << StatusItemHost::plasma;
    QTest::newRow("XFCE") << QStringLiteral("XFCE") << StatusItemHost::xfce;
    QTest::newRow("MATE") << QStringLiteral("MATE") << StatusItemHost::mate;
    QTest::newRow("LXQt") << QStringLiteral("LXQt") << StatusItemHost::lxqt;
    QTest::newRow("Cinnamon") << QStringLiteral("X-Cinnamon") << StatusItemHost::cinnamon;
    QTest::newRow("sway, whose bar may be any") << QStringLiteral("sway") << StatusItemHost::unknown;
    QTest::newRow("none") << QString() << StatusItemHost::unknown;
}

void StatusItemHostTest::aHiddenProcessLeavesTheDesktopsName()
{
    QFETCH(QString, desktop);
    QTEST(hostFor({}, desktop), "host");
}

void StatusItemHostTest::eachHostHasItsPresentation_data()
{
    QTest::addColumn<StatusItemHost>("host");
    QTest::addColumn<StatusItemPresentation>("withTray");
    QTest::addColumn<StatusItemPresentation>("withoutTray");
    const auto row = [](const char *name, StatusItemHost host, StatusItemPresentation withTray,
                        StatusItemPresentation withoutTray) { QTest::newRow(name) << host << withTray << withoutTray; };
    const auto always = [&row](const char *name, StatusItemHost host, StatusItemPresentation presentation) {
        row(name, host, presentation, presentation);
    };
    row("none", StatusItemHost::none, StatusItemPresentation::xembedSquare, StatusItemPresentation::nothing);
    row("xfce", StatusItemHost::xfce, StatusItemPresentation::xembed, StatusItemPresentation::squareSni);
    always("waybar", StatusItemHost::waybar, StatusItemPresentation::wideSni);
    always("mate", StatusItemHost::mate, StatusItemPresentation::wideSni);
    always("cinnamon", StatusItemHost::cinnamon, StatusItemPresentation::wideSni);
    always("gnome", StatusItemHost::gnome, StatusItemPresentation::sniWithLabel);
    always("ayatana", StatusItemHost::ayatana, StatusItemPresentation::sniWithLabel);
    always("plasma", StatusItemHost::plasma, StatusItemPresentation::squareSni);
    always("lxqt", StatusItemHost::lxqt, StatusItemPresentation::squareSni);
    always("swaybar", StatusItemHost::swaybar, StatusItemPresentation::squareSni);
    always("unknown", StatusItemHost::unknown, StatusItemPresentation::squareSni);
}

void StatusItemHostTest::eachHostHasItsPresentation()
{
    QFETCH(StatusItemHost, host);
    QTEST(presentationFor(host, true), "withTray");
    QTEST(presentationFor(host, false), "withoutTray");
}

void StatusItemHostTest::eachHostHasItsAppearance_data()
{
    constexpr auto unknown = PanelAppearance::unknown;
    constexpr auto dark = PanelAppearance::dark;
    constexpr auto light = PanelAppearance::light;
    QTest::addColumn<StatusItemHost>("host");
    QTest::addColumn<PanelAppearance>("tray");
    QTest::addColumn<PanelAppearance>("scheme");
    QTest::addColumn<PanelAppearance>("palette");
    QTest::addColumn<PanelAppearance>("appearance");
    QTest::newRow("GNOME's bar is always dark") << StatusItemHost::gnome << unknown << light << light << dark;
    QTest::newRow("swaybar follows nothing") << StatusItemHost::swaybar << unknown << light << light << dark;
    QTest::newRow("waybar follows the scheme") << StatusItemHost::waybar << unknown << light << dark << light;
    QTest::newRow("waybar without a scheme") << StatusItemHost::waybar << unknown << unknown << light << dark;
    QTest::newRow("Cinnamon without a scheme") << StatusItemHost::cinnamon << unknown << unknown << light << dark;
    QTest::newRow("XFCE's tray knows best") << StatusItemHost::xfce << dark << light << light << dark;
    QTest::newRow("XFCE without colours") << StatusItemHost::xfce << unknown << light << dark << light;
    QTest::newRow("MATE's tray knows best") << StatusItemHost::mate << light << dark << dark << light;
    QTest::newRow("MATE without either") << StatusItemHost::mate << unknown << unknown << light << light;
    QTest::newRow("LXQt without colours") << StatusItemHost::lxqt << unknown << light << light << dark;
    QTest::newRow("LXQt with colours") << StatusItemHost::lxqt << light << dark << dark << light;
    QTest::newRow("an old tray") << StatusItemHost::none << dark << unknown << light << dark;
    QTest::newRow("Plasma follows the scheme") << StatusItemHost::plasma << dark << light << dark << light;
    QTest::newRow("Plasma without a scheme") << StatusItemHost::plasma << unknown << unknown << dark << dark;
    QTest::newRow("unknown follows the palette") << StatusItemHost::unknown << unknown << unknown << light << light;
}

void StatusItemHostTest::eachHostHasItsAppearance()
{
    QFETCH(StatusItemHost, host);
    QFETCH(PanelAppearance, tray);
    QFETCH(PanelAppearance, scheme);
    QFETCH(PanelAppearance, palette);
    QTEST(panelAppearance(host, tray, scheme, palette), "appearance");
}

void StatusItemHostTest::trayTextColourTellsTheAppearance()
{
    QCOMPARE(appearanceForText(61166, 61166, 60652), PanelAppearance::dark);
    QCOMPARE(appearanceForText(0x2e2e, 0x3434, 0x3636), PanelAppearance::light);
    QCOMPARE(appearanceForText(0, 0, 0), PanelAppearance::light);
    QCOMPARE(appearanceForText(65535, 65535, 65535), PanelAppearance::dark);
}

void StatusItemHostTest::onlySomeHostsTellWhereAClickWas()
{
    for (StatusItemHost host : {StatusItemHost::xfce, StatusItemHost::lxqt, StatusItemHost::plasma,
                                StatusItemHost::gnome, StatusItemHost::swaybar})
        QVERIFY(tellsClickPosition(host));
    for (StatusItemHost host :
         {StatusItemHost::waybar, StatusItemHost::mate, StatusItemHost::cinnamon, StatusItemHost::unknown})
        QVERIFY(!tellsClickPosition(host));
}

void StatusItemHostTest::gnomeIsToldTheConnection()
{
    QVERIFY(isAnnouncedByConnection(StatusItemHost::gnome));
    for (StatusItemHost host :
         {StatusItemHost::xfce, StatusItemHost::waybar, StatusItemHost::mate, StatusItemHost::lxqt,
          StatusItemHost::plasma, StatusItemHost::swaybar, StatusItemHost::unknown})
        QVERIFY(!isAnnouncedByConnection(host));
}

void StatusItemHostTest::waybarGetsOnePixmapOfItsIconSize()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write(R"({"tray": {"icon-size": 19}})");
    file.flush();
    const WatcherProcess process{QStringLiteral("waybar"),
                                 {QStringLiteral("waybar"), QStringLiteral("-c"), file.fileName()}};
    QCOMPARE(pixmapFormatFor(StatusItemHost::waybar, process), (PixmapFormat{{19}, false}));
}

void StatusItemHostTest::theUsersWaybarConfigurationIsFound()
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
    const QStringList commandLine{QStringLiteral("waybar")};
    QCOMPARE(waybarIconSize(commandLine), waybarDefaultIconSize);
    write(system, QStringLiteral("config.jsonc"), R"({"tray": {"icon-size": 30}})");
    QCOMPARE(waybarIconSize(commandLine), 30);
    write(home, QStringLiteral("config"), R"({"tray": {"icon-size": 20}})");
    QCOMPARE(waybarIconSize(commandLine), 20);
    formerHome.isNull() ? qunsetenv("XDG_CONFIG_HOME") : qputenv("XDG_CONFIG_HOME", formerHome);
    formerSystem.isNull() ? qunsetenv("XDG_CONFIG_DIRS") : qputenv("XDG_CONFIG_DIRS", formerSystem);
}

void StatusItemHostTest::swaybarReadsPremultipliedAlpha()
{
    QVERIFY(pixmapFormatFor(StatusItemHost::swaybar, {}).premultiplied);
    QVERIFY(!pixmapFormatFor(StatusItemHost::plasma, {}).premultiplied);
}

void StatusItemHostTest::matePanelsOfAllUsualHeightsGetTheirOwnPixmap()
{
    const QList<int> heights = pixmapFormatFor(StatusItemHost::mate, {}).heights;
    for (int height : {16, 22, 24, 27, 32, 48})
        QVERIFY2(heights.contains(height), qPrintable(QString::number(height)));
}

void StatusItemHostTest::iconSizeOfAWaybarConfiguration_data()
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
    QTest::newRow("beyond an int") << QByteArray(R"({"tray": {"icon-size": 99999999999999}})") << 8;
    QTest::newRow("text") << QByteArray(R"({"tray": {"icon-size": "big"}})") << waybarDefaultIconSize;
    QTest::newRow("empty") << QByteArray() << waybarDefaultIconSize;
    QTest::newRow("cut off") << QByteArray(R"({"tray": {"icon-si)") << waybarDefaultIconSize;
}

void StatusItemHostTest::iconSizeOfAWaybarConfiguration()
{
    QFETCH(QByteArray, configuration);
    QTEST(waybarIconSize(configuration), "size");
}

void StatusItemHostTest::readsItsOwnProcess()
{
    const WatcherProcess process = watcherProcess(QCoreApplication::applicationPid());
    QStringList arguments = QCoreApplication::arguments();
    arguments.insert(1, QStringLiteral("StatusItemHostTest"));
    QCOMPARE(process.executable, QStringLiteral("platform_tests"));
    QCOMPARE(process.arguments, arguments);
}

void StatusItemHostTest::aProcessThatIsGoneIsEmpty()
{
    const WatcherProcess process = watcherProcess(-1);
    QCOMPARE(process.executable, QString());
    QCOMPARE(process.arguments, QStringList());
}

TICKWISE_TEST(StatusItemHostTest)
#include "StatusItemHostTest.moc"
