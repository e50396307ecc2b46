#include "platform/statusitem/HostTraits.h"

#include "doubles/TestProgram.h"
#include "platform/statusitem/SystemTraySelection.h"

#include <QTemporaryFile>

using namespace tickwise;

class HostTraitsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyHostHasARow();
    void eachHostHasItsPresentation_data();
    void eachHostHasItsPresentation();
    void desktopsLackAHost_data();
    void desktopsLackAHost();
    void eachHostHasItsAppearance_data();
    void eachHostHasItsAppearance();
    void trayTextColorTellsTheAppearance();
    void onlySomeHostsTellWhereAClickWas();
    void gnomeIsToldTheConnection();
    void waybarGetsOnePixmapOfItsIconSize();
    void swaybarReadsPremultipliedAlpha();
    void matePanelsOfAllUsualHeightsGetTheirOwnPixmap();
    void pixmapHeightsOfTheOthers();
    void devicePixelsBecomePoints();
};

void HostTraitsTest::everyHostHasARow()
{
    for (int host = int(StatusItemHost::none); host <= int(StatusItemHost::swaybar); ++host)
        QCOMPARE(hostTraits(StatusItemHost(host)).host, StatusItemHost(host));
}

void HostTraitsTest::eachHostHasItsPresentation_data()
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

void HostTraitsTest::eachHostHasItsPresentation()
{
    QFETCH(StatusItemHost, host);
    QTEST(presentationFor(host, true), "withTray");
    QTEST(presentationFor(host, false), "withoutTray");
}

void HostTraitsTest::desktopsLackAHost_data()
{
    QTest::addColumn<QString>("desktop");
    QTest::addColumn<StatusItemAvailability>("lacks");
    const auto row = [](const char *desktop, StatusItemAvailability lacks) {
        QTest::newRow(desktop) << QString::fromLatin1(desktop) << lacks;
    };
    row("GNOME", StatusItemAvailability::needsExtension);
    row("ubuntu:GNOME", StatusItemAvailability::needsExtension);
    row("gnome", StatusItemAvailability::needsExtension);
    row("sway", StatusItemAvailability::needsTrayBar);
    row("Hyprland", StatusItemAvailability::needsTrayBar);
    row("labwc:wlroots", StatusItemAvailability::needsTrayBar);
    row("XFCE", StatusItemAvailability::needsPanel);
    row("X-GNOMEish", StatusItemAvailability::needsPanel);
    row("", StatusItemAvailability::needsPanel);
}

void HostTraitsTest::desktopsLackAHost()
{
    QFETCH(QString, desktop);
    QTEST(missingHost(desktop), "lacks");
}

void HostTraitsTest::eachHostHasItsAppearance_data()
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
    QTest::newRow("XFCE without colors") << StatusItemHost::xfce << unknown << light << dark << light;
    QTest::newRow("MATE's tray knows best") << StatusItemHost::mate << light << dark << dark << light;
    QTest::newRow("MATE without either") << StatusItemHost::mate << unknown << unknown << light << light;
    QTest::newRow("LXQt without colors") << StatusItemHost::lxqt << unknown << light << light << dark;
    QTest::newRow("LXQt with colors") << StatusItemHost::lxqt << light << dark << dark << light;
    QTest::newRow("an old tray") << StatusItemHost::none << dark << unknown << light << dark;
    QTest::newRow("Plasma follows the scheme") << StatusItemHost::plasma << dark << light << dark << light;
    QTest::newRow("Plasma without a scheme") << StatusItemHost::plasma << unknown << unknown << dark << dark;
    QTest::newRow("Ayatana has the tray's colors") << StatusItemHost::ayatana << light << dark << dark << light;
    QTest::newRow("unknown follows the palette") << StatusItemHost::unknown << unknown << unknown << light << light;
}

void HostTraitsTest::eachHostHasItsAppearance()
{
    QFETCH(StatusItemHost, host);
    QFETCH(PanelAppearance, tray);
    QFETCH(PanelAppearance, scheme);
    QFETCH(PanelAppearance, palette);
    QTEST(panelAppearance(host, tray, scheme, palette), "appearance");
}

void HostTraitsTest::trayTextColorTellsTheAppearance()
{
    QCOMPARE(appearanceForText(61166, 61166, 60652), PanelAppearance::dark);
    QCOMPARE(appearanceForText(0x2e2e, 0x3434, 0x3636), PanelAppearance::light);
    QCOMPARE(appearanceForText(0, 0, 0), PanelAppearance::light);
    QCOMPARE(appearanceForText(65535, 65535, 65535), PanelAppearance::dark);
}

void HostTraitsTest::onlySomeHostsTellWhereAClickWas()
{
    for (StatusItemHost host : {StatusItemHost::xfce, StatusItemHost::lxqt, StatusItemHost::plasma,
                                StatusItemHost::gnome, StatusItemHost::swaybar})
        QVERIFY(hostTraits(host).sendsScreenPosition);
    for (StatusItemHost host : {StatusItemHost::waybar, StatusItemHost::mate, StatusItemHost::cinnamon,
                                StatusItemHost::ayatana, StatusItemHost::none, StatusItemHost::unknown})
        QVERIFY(!hostTraits(host).sendsScreenPosition);
}

void HostTraitsTest::gnomeIsToldTheConnection()
{
    QCOMPARE(hostTraits(StatusItemHost::gnome).announcement, ItemAnnouncement::byConnection);
    for (StatusItemHost host :
         {StatusItemHost::xfce, StatusItemHost::waybar, StatusItemHost::mate, StatusItemHost::lxqt,
          StatusItemHost::plasma, StatusItemHost::swaybar, StatusItemHost::unknown})
        QCOMPARE(hostTraits(host).announcement, ItemAnnouncement::byName);
}

void HostTraitsTest::waybarGetsOnePixmapOfItsIconSize()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write(R"({"tray": {"icon-size": 19}})");
    file.flush();
    const WatcherProcess process{
        QStringLiteral("waybar"), {QStringLiteral("waybar"), QStringLiteral("-c"), file.fileName()}, {}};
    QCOMPARE(itemFormatFor(StatusItemHost::waybar, process), (ItemFormat{{19}, false, LineBreak::newline}));
}

void HostTraitsTest::swaybarReadsPremultipliedAlpha()
{
    QVERIFY(itemFormatFor(StatusItemHost::swaybar, {}).premultiplied);
    QVERIFY(!itemFormatFor(StatusItemHost::plasma, {}).premultiplied);
}

void HostTraitsTest::matePanelsOfAllUsualHeightsGetTheirOwnPixmap()
{
    const QList<int> heights = itemFormatFor(StatusItemHost::mate, {}).heights;
    for (int height : {16, 22, 24, 27, 32, 48})
        QVERIFY2(heights.contains(height), qPrintable(QString::number(height)));
}

void HostTraitsTest::pixmapHeightsOfTheOthers()
{
    const QList<int> usual{16, 22, 24, 32, 48, 64};
    for (StatusItemHost host :
         {StatusItemHost::none, StatusItemHost::unknown, StatusItemHost::xfce, StatusItemHost::gnome,
          StatusItemHost::ayatana, StatusItemHost::plasma, StatusItemHost::lxqt})
        QCOMPARE(itemFormatFor(host, {}), (ItemFormat{usual, false}));
    QCOMPARE(itemFormatFor(StatusItemHost::cinnamon, {}), (ItemFormat{{22}, false}));
    QCOMPARE(itemFormatFor(StatusItemHost::swaybar, {}).heights, (QList<int>{16, 18, 20, 22, 24, 32, 48}));
}

void HostTraitsTest::devicePixelsBecomePoints()
{
    QCOMPARE(fromDevicePixels(QRect(1000, 4, 120, 22), QPoint(), 1), QRect(1000, 4, 120, 22));
    QCOMPARE(fromDevicePixels(QRect(2120, 8, 240, 44), QPoint(1920, 0), 2), QRect(2020, 4, 120, 22));
}

TICKWISE_WIDGET_TEST(HostTraitsTest)
#include "HostTraitsTest.moc"
