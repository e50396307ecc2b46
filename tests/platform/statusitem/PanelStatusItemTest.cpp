#include "platform/statusitem/PanelStatusItem.h"
#include "doubles/TestProgram.h"

#include "FakeStatusPanel.h"
#include "doubles/LogCapture.h"

#include <QDBusConnectionInterface>
#include <QElapsedTimer>
#include <QSignalSpy>

using namespace tickwise;
using namespace tickwise::test;

namespace {

StatusItemContent priced(const QString &text)
{
    StatusItemContent content;
    content.logo = false;
    content.text = text;
    content.symbol = text.section(u' ', 0, 0);
    content.price = text.section(u' ', 1);
    content.textColor = QColor(0x2c, 0xbd, 0x84);
    content.title = text;
    content.toolTipTitle = QStringLiteral("Bitcoin");
    content.toolTipBody = QStringLiteral("a < b\nsecond");
    return content;
}

MenuEntry action(const QString &text, std::function<void()> activate = {})
{
    MenuEntry entry;
    entry.text = text;
    entry.activate = std::move(activate);
    return entry;
}

QStringList propertyNames(const QVariantMap &properties)
{
    return properties.keys();
}

QStringList logLines(const LogCapture &log)
{
    return log.texts(QStringLiteral("com.pelmo.tickwise.StatusItem"));
}

} // namespace

/// The item against a panel of the test's own, over a real bus.
class PanelStatusItemTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void registersUnderItsOwnName();
    void aLatePanelGetsTheItemAfterOneLogLine();
    void aRestartedPanelGetsTheItemAgain();
    void aPanelOfAnotherKindGetsAnotherItem();
    void isAnnouncedByNameOrConnection();
    void withoutABusItSaysSoOnceAndGoesOn();
    void aDeafBusDoesNotHoldTheProgram();
    void leavesTheBusWhenItEnds();
    void getAllHasEveryProperty();
    void labelIsAbsentForMate();
    void labelHostsGetTheText();
    void unknownPropertiesAndMethodsAreErrors();
    void introspectionListsWhatIsThere();
    void signalsOnlyWhatChanged();
    void activateIsAClick();
    void aPositionWithinTheItemIsNotPassedOn();
    void contextMenuIsShownByOurselves();
    void otherClicksDoNothing();
    void menuIsExported();
    void menuEntryRunsItsAction();
    void menuIsAskedAnewBeforeItShows();
    void aClickOnAnOldMenuMeansNothing();
    void menuGroupCallsTellUnknownIds();
    void labelHostsOpenThePopoverFromTheMenu();
    void appearanceFollowsThePortal();
    void appearanceIsThatOfTheHost();

private:
    std::unique_ptr<PanelStatusItem> makeItem(const QString &host);
    bool hasItems(int count) const { return m_panel && m_panel->items().size() == count; }

    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<FakeStatusPanel> m_panel;
    QString m_host;
    std::vector<std::pair<Menu, QPoint>> m_shownMenus;
};

void PanelStatusItemTest::init()
{
    m_bus = std::make_unique<PrivateBus>();
    m_panel = std::make_unique<FakeStatusPanel>(*m_bus);
    m_shownMenus.clear();
}

void PanelStatusItemTest::cleanup()
{
    m_panel.reset();
    m_bus.reset();
}

std::unique_ptr<PanelStatusItem> PanelStatusItemTest::makeItem(const QString &host)
{
    m_host = host;
    PanelStatusItem::Environment environment;
    environment.process = [this](qint64) { return WatcherProcess{m_host, {}}; };
    environment.showMenu = [this](const Menu &menu, QPoint position) { m_shownMenus.emplace_back(menu, position); };
    auto item = std::make_unique<PanelStatusItem>(m_bus->connect(), environment);
    item->setContent(priced(QStringLiteral("BTC 67,432")));
    return item;
}

void PanelStatusItemTest::registersUnderItsOwnName()
{
    const auto item = makeItem(QStringLiteral("plasmashell"));
    QTRY_VERIFY(hasItems(1));
    QVERIFY(m_panel->items()[0].startsWith(
        QStringLiteral("org.kde.StatusNotifierItem-%1-").arg(QCoreApplication::applicationPid())));
    QCOMPARE(m_panel->itemProperties().value(QStringLiteral("Id")).toString(), QStringLiteral("com.pelmo.tickwise"));
}

void PanelStatusItemTest::aLatePanelGetsTheItemAfterOneLogLine()
{
    m_panel.reset();
    LogCapture log;
    const auto item = makeItem(QStringLiteral("waybar"));
    QTRY_COMPARE(logLines(log).size(), 1);
    QCOMPARE(log.lines()[0].type, QtInfoMsg);
    for (int i = 0; i < 2; ++i) {
        m_panel = std::make_unique<FakeStatusPanel>(*m_bus);
        QTRY_VERIFY(hasItems(1));
        m_panel.reset();
        QSignalSpy gone(item.get(), &QObject::destroyed);
        QVERIFY(!gone.wait(1300));
    }
    QCOMPARE(logLines(log).size(), 1);
}

void PanelStatusItemTest::aRestartedPanelGetsTheItemAgain()
{
    const auto item = makeItem(QStringLiteral("waybar"));
    QTRY_VERIFY(hasItems(1));
    const QString service = m_panel->items()[0];
    m_panel.reset();
    m_panel = std::make_unique<FakeStatusPanel>(*m_bus);
    QTRY_VERIFY(hasItems(1));
    QCOMPARE(m_panel->items()[0], service);
    QCOMPARE(m_panel->itemProperties().value(QStringLiteral("Title")).toString(), QStringLiteral("BTC 67,432"));
}

void PanelStatusItemTest::aPanelOfAnotherKindGetsAnotherItem()
{
    const auto item = makeItem(QStringLiteral("mate-panel"));
    QTRY_VERIFY(hasItems(1));
    const QString service = m_panel->items()[0];
    QVERIFY(!m_panel->itemProperties().contains(QStringLiteral("XAyatanaLabel")));
    m_host = QStringLiteral("gnome-shell");
    m_panel.reset();
    m_panel = std::make_unique<FakeStatusPanel>(*m_bus);
    QTRY_VERIFY(hasItems(1));
    QVERIFY(m_panel->items()[0] != service);
    QVERIFY(m_panel->itemProperties().contains(QStringLiteral("XAyatanaLabel")));
}

void PanelStatusItemTest::isAnnouncedByNameOrConnection()
{
    const auto item = makeItem(QStringLiteral("waybar"));
    QTRY_VERIFY(hasItems(1));
    QVERIFY(m_panel->items()[0].startsWith(QStringLiteral("org.kde.StatusNotifierItem-")));
    m_host = QStringLiteral("gnome-shell");
    m_panel.reset();
    m_panel = std::make_unique<FakeStatusPanel>(*m_bus);
    QTRY_VERIFY(hasItems(1));
    QVERIFY(m_panel->items()[0].startsWith(u':'));
    QCOMPARE(m_panel->itemProperties().value(QStringLiteral("Status")).toString(), QStringLiteral("Active"));
}

void PanelStatusItemTest::withoutABusItSaysSoOnceAndGoesOn()
{
    LogCapture log;
    PanelStatusItem::Environment environment;
    PanelStatusItem item(QDBusConnection(QStringLiteral("no such connection")), environment);
    item.setMenu([] { return Menu(); });
    item.setContent(priced(QStringLiteral("BTC 1")));
    QTRY_COMPARE(logLines(log).size(), 1);
    item.setContent(priced(QStringLiteral("BTC 2")));
    QVERIFY(item.appearance() != PanelAppearance::unknown);
}

void PanelStatusItemTest::aDeafBusDoesNotHoldTheProgram()
{
    const QDBusConnection connection = m_bus->connect();
    m_bus->pause();
    QElapsedTimer timer;
    timer.start();
    PanelStatusItem::Environment environment;
    environment.process = [](qint64) { return WatcherProcess{QStringLiteral("waybar"), {}}; };
    PanelStatusItem item(connection, environment);
    item.setContent(priced(QStringLiteral("BTC 1")));
    const qint64 taken = timer.elapsed();
    m_bus->resume();
    QVERIFY2(taken < 5000, "a call that waits for the bus would take 25 s");
    QTRY_VERIFY(hasItems(1));
    m_bus->pause();
    timer.restart();
    item.setContent(priced(QStringLiteral("BTC 2")));
    QVERIFY(timer.elapsed() < 5000);
    m_bus->resume();
}

void PanelStatusItemTest::leavesTheBusWhenItEnds()
{
    auto item = makeItem(QStringLiteral("waybar"));
    QTRY_VERIFY(hasItems(1));
    QDBusConnection observer = m_bus->connect();
    QVERIFY(observer.interface()->isServiceRegistered(m_panel->items()[0]));
    item.reset();
    QTRY_VERIFY(!observer.interface()->isServiceRegistered(m_panel->items()[0]).value());
}

void PanelStatusItemTest::getAllHasEveryProperty()
{
    const auto item = makeItem(QStringLiteral("waybar"));
    QTRY_VERIFY(hasItems(1));
    const QVariantMap properties = m_panel->itemProperties();
    for (const char *name : {"Category", "Id", "Title", "Status", "WindowId", "IconName", "IconThemePath", "IconPixmap",
                             "OverlayIconName", "OverlayIconPixmap", "AttentionIconName", "AttentionIconPixmap",
                             "AttentionMovieName", "ToolTip", "ItemIsMenu", "Menu"})
        QVERIFY2(properties.contains(QString::fromLatin1(name)), name);
    QCOMPARE(properties.value(QStringLiteral("Category")).toString(), QStringLiteral("ApplicationStatus"));
    QCOMPARE(properties.value(QStringLiteral("Status")).toString(), QStringLiteral("Active"));
    QCOMPARE(properties.value(QStringLiteral("ItemIsMenu")).toBool(), false);
    const auto pixmaps = qdbus_cast<QList<StatusPixmap>>(properties.value(QStringLiteral("IconPixmap")));
    QCOMPARE(pixmaps.size(), 1);
    QVERIFY(pixmaps[0].width > 2 * pixmaps[0].height);
    QCOMPARE(pixmaps[0].bytes.size(), pixmaps[0].width * pixmaps[0].height * 4);
    const auto toolTip = qdbus_cast<StatusToolTip>(properties.value(QStringLiteral("ToolTip")));
    QCOMPARE(toolTip, (StatusToolTip{QStringLiteral("Bitcoin"), QStringLiteral("a &lt; b<br/>second")}));
}

void PanelStatusItemTest::labelIsAbsentForMate()
{
    const auto item = makeItem(QStringLiteral("mate-notification-area-applet"));
    QTRY_VERIFY(hasItems(1));
    QCOMPARE(propertyNames(m_panel->itemProperties()).filter(QStringLiteral("Ayatana")), QStringList());
    const QDBusMessage reply = m_panel->call(
        QStringLiteral("/StatusNotifierItem"), QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
        {QStringLiteral("org.kde.StatusNotifierItem"), QStringLiteral("XAyatanaLabel")});
    QCOMPARE(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.UnknownProperty"));
}

void PanelStatusItemTest::labelHostsGetTheText()
{
    const auto item = makeItem(QStringLiteral("gnome-shell"));
    QTRY_VERIFY(hasItems(1));
    const QVariantMap properties = m_panel->itemProperties();
    QCOMPARE(properties.value(QStringLiteral("XAyatanaLabel")).toString(), QStringLiteral("BTC 67,432"));
    for (const StatusPixmap &pixmap : qdbus_cast<QList<StatusPixmap>>(properties.value(QStringLiteral("IconPixmap"))))
        QCOMPARE(pixmap.width, pixmap.height);
    m_panel->takeSignals();
    item->setContent(priced(QStringLiteral("BTC 67,433")));
    m_panel->itemProperties();
    QVERIFY(m_panel->takeSignals().contains(QStringLiteral("XAyatanaNewLabel(BTC 67,433,BTC 88,888)")));
}

void PanelStatusItemTest::unknownPropertiesAndMethodsAreErrors()
{
    const auto item = makeItem(QStringLiteral("waybar"));
    QTRY_VERIFY(hasItems(1));
    QCOMPARE(m_panel->callItem(QStringLiteral("Explode")).errorName(),
             QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod"));
    QCOMPARE(m_panel->callItem(QStringLiteral("Activate"), {QStringLiteral("here")}).errorName(),
             QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"));
    QCOMPARE(m_panel->callMenu(QStringLiteral("GetLayout")).errorName(),
             QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"));
    const auto properties = [this](const QString &method, const QVariantList &arguments) {
        return m_panel->call(QStringLiteral("/StatusNotifierItem"), QStringLiteral("org.freedesktop.DBus.Properties"),
                             method, arguments);
    };
    const QString interface = QStringLiteral("org.kde.StatusNotifierItem");
    QCOMPARE(properties(QStringLiteral("Get"), {interface, QStringLiteral("Nothing")}).errorName(),
             QStringLiteral("org.freedesktop.DBus.Error.UnknownProperty"));
    QCOMPARE(
        properties(QStringLiteral("Set"), {interface, QStringLiteral("Title"), QVariant::fromValue(QDBusVariant(1))})
            .errorName(),
        QStringLiteral("org.freedesktop.DBus.Error.PropertyReadOnly"));
    QCOMPARE(properties(QStringLiteral("Get"), {interface, QStringLiteral("Id")})
                 .arguments()[0]
                 .value<QDBusVariant>()
                 .variant(),
             QVariant(QStringLiteral("com.pelmo.tickwise")));
}

void PanelStatusItemTest::introspectionListsWhatIsThere()
{
    const auto item = makeItem(QStringLiteral("waybar"));
    QTRY_VERIFY(hasItems(1));
    const auto introspected = [this](const QString &path) {
        return m_panel
            ->call(path, QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect"), {})
            .arguments()
            .value(0)
            .toString();
    };
    const QString itemXml = introspected(QStringLiteral("/StatusNotifierItem"));
    QVERIFY(itemXml.contains(QStringLiteral("<property name=\"IconPixmap\" type=\"a(iiay)\" access=\"read\"/>")));
    QVERIFY(itemXml.contains(QStringLiteral("<property name=\"ToolTip\" type=\"(sa(iiay)ss)\" access=\"read\"/>")));
    QVERIFY(itemXml.contains(QStringLiteral(
        "<method name=\"Scroll\"><arg type=\"i\" direction=\"in\"/><arg type=\"s\" direction=\"in\"/></method>")));
    QVERIFY(!itemXml.contains(QStringLiteral("XAyatanaLabel\"")));
    const QString menuXml = introspected(QStringLiteral("/MenuBar"));
    QVERIFY(menuXml.contains(
        QStringLiteral("<arg type=\"u\" direction=\"out\"/><arg type=\"(ia{sv}av)\" direction=\"out\"/>")));
}

void PanelStatusItemTest::signalsOnlyWhatChanged()
{
    const auto item = makeItem(QStringLiteral("waybar"));
    QTRY_VERIFY(hasItems(1));
    m_panel->itemProperties();
    m_panel->takeSignals();
    item->setContent(priced(QStringLiteral("BTC 67,432")));
    m_panel->itemProperties();
    QCOMPARE(m_panel->takeSignals(), QStringList());
    item->setContent(priced(QStringLiteral("BTC 67,433")));
    m_panel->itemProperties();
    QCOMPARE(m_panel->takeSignals(), (QStringList{QStringLiteral("NewTitle"), QStringLiteral("NewIcon")}));
    StatusItemContent content = priced(QStringLiteral("BTC 67,433"));
    content.toolTipBody = QStringLiteral("later");
    item->setContent(content);
    m_panel->itemProperties();
    QCOMPARE(m_panel->takeSignals(), QStringList{QStringLiteral("NewToolTip")});
}

void PanelStatusItemTest::activateIsAClick()
{
    const auto item = makeItem(QStringLiteral("plasmashell"));
    QSignalSpy clicked(item.get(), &StatusItem::clicked);
    QTRY_VERIFY(hasItems(1));
    m_panel->callItem(QStringLiteral("ProvideXdgActivationToken"), {QStringLiteral("token")});
    m_panel->callItem(QStringLiteral("Activate"), {120, 7});
    QTRY_COMPARE(clicked.size(), 1);
    QCOMPARE(clicked[0][0].value<std::optional<QPoint>>(), QPoint(120, 7));
}

void PanelStatusItemTest::aPositionWithinTheItemIsNotPassedOn()
{
    const auto item = makeItem(QStringLiteral("waybar"));
    QSignalSpy clicked(item.get(), &StatusItem::clicked);
    QTRY_VERIFY(hasItems(1));
    m_panel->callItem(QStringLiteral("Activate"), {12, 7});
    QTRY_COMPARE(clicked.size(), 1);
    QVERIFY(!clicked[0][0].value<std::optional<QPoint>>());
}

void PanelStatusItemTest::contextMenuIsShownByOurselves()
{
    const auto item = makeItem(QStringLiteral("swaybar"));
    item->setMenu([] { return Menu{action(QStringLiteral("Quit"))}; });
    QTRY_VERIFY(hasItems(1));
    m_panel->callItem(QStringLiteral("ContextMenu"), {5, 6});
    QTRY_COMPARE(m_shownMenus.size(), 1U);
    QCOMPARE(m_shownMenus[0].second, QPoint(5, 6));
    QCOMPARE(m_shownMenus[0].first.at(0).text, QStringLiteral("Quit"));
}

void PanelStatusItemTest::otherClicksDoNothing()
{
    const auto item = makeItem(QStringLiteral("waybar"));
    QSignalSpy clicked(item.get(), &StatusItem::clicked);
    QTRY_VERIFY(hasItems(1));
    QCOMPARE(m_panel->callItem(QStringLiteral("SecondaryActivate"), {1, 1}).type(), QDBusMessage::ReplyMessage);
    QCOMPARE(m_panel->callItem(QStringLiteral("Scroll"), {120, QStringLiteral("vertical")}).type(),
             QDBusMessage::ReplyMessage);
    QCOMPARE(m_panel->callItem(QStringLiteral("XAyatanaSecondaryActivate"), {1U}).type(), QDBusMessage::ReplyMessage);
    QCOMPARE(clicked.size(), 0);
    QCOMPARE(m_shownMenus.size(), 0U);
}

void PanelStatusItemTest::menuIsExported()
{
    const auto item = makeItem(QStringLiteral("waybar"));
    item->setMenu([] { return Menu{action(QStringLiteral("Settings")), action(QStringLiteral("Quit"))}; });
    QTRY_VERIFY(hasItems(1));
    const QDBusMessage reply = m_panel->callMenu(QStringLiteral("GetLayout"), {0, -1, QStringList()});
    const auto layout = qdbus_cast<DBusMenuLayout>(reply.arguments().value(1));
    QCOMPARE(layout.id, 0);
    QCOMPARE(layout.children.size(), 2);
    QCOMPARE(layout.children[1].properties.value(QStringLiteral("label")).toString(), QStringLiteral("Quit"));
    const QDBusMessage property =
        m_panel->callMenu(QStringLiteral("GetProperty"), {layout.children[0].id, QStringLiteral("label")});
    QCOMPARE(property.arguments()[0].value<QDBusVariant>().variant().toString(), QStringLiteral("Settings"));
    const QDBusMessage unknown = m_panel->callMenu(QStringLiteral("GetLayout"), {999, -1, QStringList()});
    QCOMPARE(qdbus_cast<DBusMenuLayout>(unknown.arguments().value(1)).children.size(), 0);
}

void PanelStatusItemTest::menuEntryRunsItsAction()
{
    int quits = 0;
    const auto item = makeItem(QStringLiteral("waybar"));
    item->setMenu([&quits] {
        return Menu{action(QStringLiteral("Settings")), action(QStringLiteral("Quit"), [&quits] { ++quits; })};
    });
    QTRY_VERIFY(hasItems(1));
    const auto layout = qdbus_cast<DBusMenuLayout>(
        m_panel->callMenu(QStringLiteral("GetLayout"), {0, -1, QStringList()}).arguments().value(1));
    const auto event = [&](const QString &type) {
        m_panel->callMenu(
            QStringLiteral("Event"),
            {layout.children[1].id, type, QVariant::fromValue(QDBusVariant(QString())), QVariant::fromValue(0U)});
    };
    event(QStringLiteral("hovered"));
    QCOMPARE(quits, 0);
    event(QStringLiteral("clicked"));
    QTRY_COMPARE(quits, 1);
}

void PanelStatusItemTest::menuIsAskedAnewBeforeItShows()
{
    QString text = QStringLiteral("one");
    const auto item = makeItem(QStringLiteral("waybar"));
    item->setMenu([&text] { return Menu{action(text)}; });
    QTRY_VERIFY(hasItems(1));
    QCOMPARE(m_panel->callMenu(QStringLiteral("AboutToShow"), {0}).arguments()[0].toBool(), false);
    m_panel->takeSignals();
    text = QStringLiteral("two");
    QCOMPARE(m_panel->callMenu(QStringLiteral("AboutToShow"), {0}).arguments()[0].toBool(), true);
    QCOMPARE(m_panel->takeSignals().filter(QStringLiteral("LayoutUpdated")).size(), 1);
    const auto layout = qdbus_cast<DBusMenuLayout>(
        m_panel->callMenu(QStringLiteral("GetLayout"), {0, -1, QStringList()}).arguments().value(1));
    QCOMPARE(layout.children[0].properties.value(QStringLiteral("label")).toString(), QStringLiteral("two"));
}

void PanelStatusItemTest::aClickOnAnOldMenuMeansNothing()
{
    bool longer = false;
    int runs = 0;
    const auto item = makeItem(QStringLiteral("waybar"));
    item->setMenu([&] {
        Menu menu{action(QStringLiteral("Other"), [&runs] { ++runs; })};
        if (longer)
            menu.insert(menu.begin(), action(QStringLiteral("New"), [&runs] { ++runs; }));
        return menu;
    });
    QTRY_VERIFY(hasItems(1));
    const auto layout = qdbus_cast<DBusMenuLayout>(
        m_panel->callMenu(QStringLiteral("GetLayout"), {0, -1, QStringList()}).arguments().value(1));
    longer = true;
    m_panel->callMenu(QStringLiteral("AboutToShow"), {0});
    const QVariant data = QVariant::fromValue(QDBusVariant(QString()));
    m_panel->callMenu(QStringLiteral("Event"),
                      {layout.children[0].id, QStringLiteral("clicked"), data, QVariant::fromValue(0U)});
    m_panel->itemProperties();
    QCOMPARE(runs, 0);
}

void PanelStatusItemTest::menuGroupCallsTellUnknownIds()
{
    int runs = 0;
    const auto item = makeItem(QStringLiteral("waybar"));
    item->setMenu([&runs] { return Menu{action(QStringLiteral("Run"), [&runs] { ++runs; })}; });
    QTRY_VERIFY(hasItems(1));
    const auto layout = qdbus_cast<DBusMenuLayout>(
        m_panel->callMenu(QStringLiteral("GetLayout"), {0, -1, QStringList()}).arguments().value(1));
    const int id = layout.children[0].id;
    const DBusMenuEvent known{id, QStringLiteral("clicked"), QDBusVariant(0), 0};
    const DBusMenuEvent unknown{999, QStringLiteral("clicked"), QDBusVariant(0), 0};
    const QDBusMessage events =
        m_panel->callMenu(QStringLiteral("EventGroup"), {QVariant::fromValue(QList<DBusMenuEvent>{known, unknown})});
    QCOMPARE(qdbus_cast<QList<int>>(events.arguments().value(0)), QList<int>{999});
    QTRY_COMPARE(runs, 1);
    const QDBusMessage shown =
        m_panel->callMenu(QStringLiteral("AboutToShowGroup"), {QVariant::fromValue(QList<int>{0, 999})});
    QCOMPARE(qdbus_cast<QList<int>>(shown.arguments().value(0)), QList<int>());
    QCOMPARE(qdbus_cast<QList<int>>(shown.arguments().value(1)), QList<int>{999});
    const QDBusMessage group =
        m_panel->callMenu(QStringLiteral("GetGroupProperties"),
                          {QVariant::fromValue(QList<int>{id, 999}), QStringList{QStringLiteral("label")}});
    const auto properties = qdbus_cast<QList<DBusMenuProperties>>(group.arguments().value(0));
    QCOMPARE(properties.size(), 1);
    QCOMPARE(properties[0].properties.value(QStringLiteral("label")).toString(), QStringLiteral("Run"));
}

void PanelStatusItemTest::labelHostsOpenThePopoverFromTheMenu()
{
    const auto item = makeItem(QStringLiteral("gnome-shell"));
    item->setMenu([] { return Menu{action(QStringLiteral("Quit"))}; });
    QSignalSpy clicked(item.get(), &StatusItem::clicked);
    QTRY_VERIFY(hasItems(1));
    const auto layout = qdbus_cast<DBusMenuLayout>(
        m_panel->callMenu(QStringLiteral("GetLayout"), {0, -1, QStringList()}).arguments().value(1));
    QCOMPARE(layout.children.size(), 2);
    const QVariant data = QVariant::fromValue(QDBusVariant(QString()));
    m_panel->callMenu(QStringLiteral("Event"),
                      {layout.children[0].id, QStringLiteral("clicked"), data, QVariant::fromValue(0U)});
    QTRY_COMPARE(clicked.size(), 1);
    QVERIFY(!clicked[0][0].value<std::optional<QPoint>>());
}

void PanelStatusItemTest::appearanceFollowsThePortal()
{
    FakeSettingsPortal portal(*m_bus, 2);
    const auto item = makeItem(QStringLiteral("plasmashell"));
    QTRY_VERIFY(hasItems(1));
    QTRY_COMPARE(item->appearance(), PanelAppearance::light);
    QSignalSpy changed(item.get(), &StatusItem::appearanceChanged);
    portal.announce(QStringLiteral("org.gnome.desktop.interface"), QStringLiteral("color-scheme"), 1U);
    portal.setScheme(1);
    QTRY_COMPARE(changed.size(), 1);
    QCOMPARE(item->appearance(), PanelAppearance::dark);
    portal.setScheme(1);
    portal.setScheme(2);
    QTRY_COMPARE(changed.size(), 2);
    QCOMPARE(item->appearance(), PanelAppearance::light);
}

void PanelStatusItemTest::appearanceIsThatOfTheHost()
{
    FakeSettingsPortal portal(*m_bus, 2);
    const auto item = makeItem(QStringLiteral("gnome-shell"));
    QTRY_VERIFY(hasItems(1));
    QCOMPARE(item->appearance(), PanelAppearance::dark);
}

TICKWISE_WIDGET_TEST(PanelStatusItemTest)
#include "PanelStatusItemTest.moc"
