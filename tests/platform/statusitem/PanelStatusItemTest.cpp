#include "platform/statusitem/PanelStatusItem.h"

#include "FakeStatusPanel.h"
#include "doubles/LogCapture.h"
#include "doubles/TestProgram.h"

#include <QDBusConnectionInterface>
#include <QElapsedTimer>
#include <QPointer>
#include <QSignalSpy>
#include <QWidget>

using namespace tickwise;
using namespace tickwise::test;

namespace {

StatusItemContent pricedText(const QString &text)
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

MenuEntry actionEntry(const QString &text, std::function<void()> activate = {})
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

/// The bus name of the process's item of that number.
QString itemName(int number)
{
    return QStringLiteral("org.kde.StatusNotifierItem-%1-%2").arg(QCoreApplication::applicationPid()).arg(number);
}

/// A tray that takes in what it is asked to when the test says so.
class FakeSystemTray : public SystemTray
{
public:
    bool hasOwner() const override { return m_hasOwner; }
    PanelAppearance appearance() const override { return PanelAppearance::dark; }
    void dock(WId docked) override
    {
        window = docked;
        m_area.reset();
        ++windows;
    }
    std::optional<QRect> dockedGeometry() override { return m_area; }

    void takeIn(const QRect &area)
    {
        m_area = area;
        Q_EMIT docked();
    }
    void setOwner(bool hasOwner)
    {
        m_hasOwner = hasOwner;
        Q_EMIT ownerChanged();
    }

    WId window = 0;
    int windows = 0; ///< that it was asked to dock

private:
    bool m_hasOwner = true;
    std::optional<QRect> m_area;
};

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
    void tellsWhetherAPanelShowsIt();
    void aRestartedPanelGetsTheItemAgain();
    void theItemStaysWhileAPanelRestarts();
    void anotherPanelGetsAWidthOfItsOwn();
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
    void menuChangesAreToldBeforeItOpens();
    void menuHasItsVersionAndSignals();
    void aClickOnAnOldMenuMeansNothing();
    void menuGroupCallsTellUnknownIds();
    void labelHostsOpenThePopoverFromTheMenu();
    void appearanceFollowsThePortal();
    void appearanceIsThatOfTheHost();
    void pixmapsArePaintedAnewForAnotherAppearance();
    void aRefusedNameLeavesTheConnection();
    void aTakenNameLeavesTheConnection();
    void aBusThatReturnsGetsTheItemAgain();
    void aBusThatReturnsIsAskedForItsColorScheme();
    void xfceDocksAWindowAndKnowsWhereItIs();
    void theTrayWindowGoesWithItsHost();
    void theTrayWindowGoesWithItsTray();
    void aTrayAloneGetsASquareWindow();

private:
    std::unique_ptr<PanelStatusItem> makeItem(const QString &host, const QString &currentDesktop = {});
    FakeSystemTray *useTray();
    bool hasItems(int count) const { return m_panel && m_panel->items().size() == count; }

    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<FakeStatusPanel> m_panel;
    std::unique_ptr<SessionBus> m_session;
    std::function<std::unique_ptr<SystemTray>()> m_openTray;
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
    m_session.reset();
    m_bus.reset();
    m_openTray = {};
}

std::unique_ptr<PanelStatusItem> PanelStatusItemTest::makeItem(const QString &host, const QString &currentDesktop)
{
    m_host = host;
    PanelStatusItem::Environment environment{currentDesktop};
    environment.process = [this](qint64) { return WatcherProcess{m_host, {}}; };
    environment.showMenu = [this](const Menu &menu, QPoint position) { m_shownMenus.emplace_back(menu, position); };
    environment.openTray = m_openTray;
    m_session = std::make_unique<SessionBus>(m_bus->address());
    auto item = std::make_unique<PanelStatusItem>(*m_session, environment);
    item->setContent(pricedText(QStringLiteral("BTC 67,432")));
    return item;
}

/// The tray that the next item opens; that item owns it.
FakeSystemTray *PanelStatusItemTest::useTray()
{
    auto tray = std::make_shared<std::unique_ptr<SystemTray>>(std::make_unique<FakeSystemTray>());
    m_openTray = [tray] { return std::move(*tray); };
    return static_cast<FakeSystemTray *>(tray->get());
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

void PanelStatusItemTest::tellsWhetherAPanelShowsIt()
{
    m_panel.reset();
    const auto item = makeItem(QStringLiteral("waybar"), QStringLiteral("sway"));
    QList<StatusItemAvailability> told;
    connect(item.get(), &StatusItem::availabilityChanged, item.get(),
            [&told](StatusItemAvailability availability) { told.append(availability); });
    QCOMPARE(item->availability(), StatusItemAvailability::unknown);
    QTRY_COMPARE(told, QList{StatusItemAvailability::needsTrayBar});
    QVERIFY(!item->isShown());
    m_panel = std::make_unique<FakeStatusPanel>(*m_bus);
    QTRY_COMPARE(told.size(), 2);
    QVERIFY(item->isShown());
    m_panel.reset();
    QTRY_COMPARE(told, (QList{StatusItemAvailability::needsTrayBar, StatusItemAvailability::shown,
                              StatusItemAvailability::needsTrayBar}));
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

void PanelStatusItemTest::theItemStaysWhileAPanelRestarts()
{
    LogCapture log;
    const auto item = makeItem(QStringLiteral("waybar"));
    QTRY_VERIFY(hasItems(1));
    const QString service = m_panel->items()[0];
    const QDBusConnection observer = m_bus->connect();
    m_panel.reset();
    QVERIFY2(!QTest::qWaitFor([&] { return !observer.interface()->isServiceRegistered(service).value(); }, 200),
             "the item left at once");
    m_panel = std::make_unique<FakeStatusPanel>(*m_bus);
    QTRY_VERIFY(hasItems(1));
    QCOMPARE(m_panel->items()[0], service);
    QCOMPARE(logLines(log), QStringList());
}

void PanelStatusItemTest::anotherPanelGetsAWidthOfItsOwn()
{
    const auto item = makeItem(QStringLiteral("mate-panel"));
    item->setContent(pricedText(QStringLiteral("WWWWWW 67,432")));
    QTRY_VERIFY(hasItems(1));
    const auto widthAt22 = [this] {
        for (const StatusPixmap &pixmap :
             qdbus_cast<QList<StatusPixmap>>(m_panel->itemProperties().value(QStringLiteral("IconPixmap")))) {
            if (pixmap.height == 22)
                return pixmap.width;
        }
        return 0;
    };
    const int wide = widthAt22();
    item->setContent(pricedText(QStringLiteral("IIIIII 67,432")));
    QCOMPARE(widthAt22(), wide);
    m_host = QStringLiteral("xapp-sn-watcher");
    m_panel.reset();
    m_panel = std::make_unique<FakeStatusPanel>(*m_bus);
    QTRY_VERIFY(hasItems(1));
    QVERIFY(widthAt22() < wide);
    QVERIFY(widthAt22() > 0);
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
    SessionBus session(QStringLiteral("unix:path=/nonexistent"));
    PanelStatusItem item(session, {});
    item.setMenu([] { return Menu(); });
    item.setContent(pricedText(QStringLiteral("BTC 1")));
    QTRY_COMPARE(logLines(log).size(), 1);
    item.setContent(pricedText(QStringLiteral("BTC 2")));
    QVERIFY(item.appearance() != PanelAppearance::unknown);
}

void PanelStatusItemTest::aDeafBusDoesNotHoldTheProgram()
{
    SessionBus session(m_bus->address());
    m_bus->pause();
    QElapsedTimer timer;
    timer.start();
    PanelStatusItem::Environment environment;
    environment.process = [](qint64) { return WatcherProcess{QStringLiteral("waybar"), {}}; };
    PanelStatusItem item(session, environment);
    item.setContent(pricedText(QStringLiteral("BTC 1")));
    const qint64 taken = timer.elapsed();
    m_bus->resume();
    QVERIFY2(taken < 5000, "a call that waits for the bus would take 25 s");
    QTRY_VERIFY(hasItems(1));
    m_bus->pause();
    timer.restart();
    item.setContent(pricedText(QStringLiteral("BTC 2")));
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
    QCOMPARE(toolTip, (StatusToolTip{QStringLiteral("Bitcoin"), QStringLiteral("a &lt; b\nsecond")}));
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
    item->setContent(pricedText(QStringLiteral("BTC 67,433")));
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
    item->setContent(pricedText(QStringLiteral("BTC 67,432")));
    m_panel->itemProperties();
    QCOMPARE(m_panel->takeSignals(), QStringList());
    item->setContent(pricedText(QStringLiteral("BTC 67,433")));
    m_panel->itemProperties();
    QCOMPARE(m_panel->takeSignals(), (QStringList{QStringLiteral("NewTitle"), QStringLiteral("NewIcon")}));
    StatusItemContent content = pricedText(QStringLiteral("BTC 67,433"));
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
    item->setMenu([] { return Menu{actionEntry(QStringLiteral("Quit"))}; });
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
    item->setMenu([] { return Menu{actionEntry(QStringLiteral("Settings")), actionEntry(QStringLiteral("Quit"))}; });
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
        return Menu{actionEntry(QStringLiteral("Settings")),
                    actionEntry(QStringLiteral("Quit"), [&quits] { ++quits; })};
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

void PanelStatusItemTest::menuChangesAreToldBeforeItOpens()
{
    QString text = QStringLiteral("one");
    const auto item = makeItem(QStringLiteral("waybar"));
    item->setMenu([&text] { return Menu{actionEntry(text)}; });
    QTRY_VERIFY(hasItems(1));
    const auto layout = [this] { return m_panel->callMenu(QStringLiteral("GetLayout"), {0, -1, QStringList()}); };
    const uint revision = layout().arguments().value(0).toUInt();
    m_panel->takeSignals();
    item->menuChanged();
    layout();
    QCOMPARE(m_panel->takeSignals(), QStringList()); // the same menu
    text = QStringLiteral("two");
    item->menuChanged();
    const QDBusMessage changed = layout();
    QCOMPARE(m_panel->takeSignals(), QStringList{QStringLiteral("LayoutUpdated(%1,0)").arg(revision + 1)});
    QCOMPARE(changed.arguments().value(0).toUInt(), revision + 1);
    const auto tree = qdbus_cast<DBusMenuLayout>(changed.arguments().value(1));
    QCOMPARE(tree.children[0].properties.value(QStringLiteral("label")).toString(), QStringLiteral("two"));

    text = QStringLiteral("three"); // not announced: nothing may change under an open menu
    QCOMPARE(m_panel->callMenu(QStringLiteral("AboutToShow"), {0}).arguments()[0].toBool(), false);
    m_panel->callMenu(QStringLiteral("Event"), {0, QStringLiteral("opened"),
                                                QVariant::fromValue(QDBusVariant(QString())), QVariant::fromValue(0U)});
    QCOMPARE(layout().arguments().value(0).toUInt(), revision + 1);
    QCOMPARE(m_panel->takeSignals(), QStringList());
}

void PanelStatusItemTest::menuHasItsVersionAndSignals()
{
    const auto item = makeItem(QStringLiteral("waybar"));
    QTRY_VERIFY(hasItems(1));
    const QString path = QStringLiteral("/MenuBar");
    const QDBusMessage reply = m_panel->call(path, QStringLiteral("org.freedesktop.DBus.Properties"),
                                             QStringLiteral("GetAll"), {QStringLiteral("com.canonical.dbusmenu")});
    const auto properties = qdbus_cast<QVariantMap>(reply.arguments().value(0));
    QCOMPARE(properties.value(QStringLiteral("Version")), QVariant(3U));
    QCOMPARE(properties.value(QStringLiteral("Status")), QVariant(QStringLiteral("normal")));
    QCOMPARE(properties.value(QStringLiteral("TextDirection")), QVariant(QStringLiteral("ltr")));
    QCOMPARE(properties.value(QStringLiteral("IconThemePath")).toStringList(), QStringList());
    const QString xml =
        m_panel->call(path, QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect"), {})
            .arguments()
            .value(0)
            .toString();
    for (const char *part : {"<property name=\"Version\" type=\"u\" access=\"read\"/>",
                             "<signal name=\"LayoutUpdated\"><arg type=\"u\"/><arg type=\"i\"/></signal>",
                             "<signal name=\"ItemsPropertiesUpdated\"><arg type=\"a(ia{sv})\"/><arg "
                             "type=\"a(ias)\"/></signal>",
                             "<signal name=\"ItemActivationRequested\"><arg type=\"i\"/><arg type=\"u\"/></signal>"})
        QVERIFY2(xml.contains(QLatin1StringView(part)), part);
}

void PanelStatusItemTest::aClickOnAnOldMenuMeansNothing()
{
    bool longer = false;
    int runs = 0;
    const auto item = makeItem(QStringLiteral("waybar"));
    item->setMenu([&] {
        Menu menu{actionEntry(QStringLiteral("Other"), [&runs] { ++runs; })};
        if (longer)
            menu.insert(menu.begin(), actionEntry(QStringLiteral("New"), [&runs] { ++runs; }));
        return menu;
    });
    QTRY_VERIFY(hasItems(1));
    const auto layout = qdbus_cast<DBusMenuLayout>(
        m_panel->callMenu(QStringLiteral("GetLayout"), {0, -1, QStringList()}).arguments().value(1));
    longer = true;
    item->menuChanged();
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
    item->setMenu([&runs] { return Menu{actionEntry(QStringLiteral("Run"), [&runs] { ++runs; })}; });
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
    const QDBusMessage all =
        m_panel->callMenu(QStringLiteral("GetGroupProperties"), {QVariant::fromValue(QList<int>()), QStringList()});
    QCOMPARE(qdbus_cast<QList<DBusMenuProperties>>(all.arguments().value(0)).size(), 2); // with the root
}

void PanelStatusItemTest::labelHostsOpenThePopoverFromTheMenu()
{
    const auto item = makeItem(QStringLiteral("gnome-shell"));
    item->setMenu([] { return Menu{actionEntry(QStringLiteral("Quit"))}; });
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

void PanelStatusItemTest::pixmapsArePaintedAnewForAnotherAppearance()
{
    FakeSettingsPortal portal(*m_bus, 1);
    const auto item = makeItem(QStringLiteral("waybar"));
    StatusItemContent plain = pricedText(QStringLiteral("BTC 67,432"));
    plain.textColor.reset();
    item->setContent(plain);
    QTRY_VERIFY(hasItems(1));
    const auto pixmaps = [this] {
        return qdbus_cast<QList<StatusPixmap>>(m_panel->itemProperties().value(QStringLiteral("IconPixmap")));
    };
    QCOMPARE(item->appearance(), PanelAppearance::dark);
    const QList<StatusPixmap> onDark = pixmaps();
    m_panel->takeSignals();
    portal.setScheme(2);
    QTRY_COMPARE(item->appearance(), PanelAppearance::light);
    QVERIFY(pixmaps() != onDark);
    QCOMPARE(m_panel->takeSignals(), QStringList{QStringLiteral("NewIcon")});
}

void PanelStatusItemTest::aRefusedNameLeavesTheConnection()
{
    QStringList names;
    for (int i = 1; i < 100; ++i)
        names << itemName(i);
    m_panel.reset();
    m_bus = std::make_unique<PrivateBus>(names);
    m_panel = std::make_unique<FakeStatusPanel>(*m_bus);
    const auto item = makeItem(QStringLiteral("waybar"));
    QTRY_VERIFY(hasItems(1));
    QCOMPARE(m_panel->items()[0], m_session->connection().baseService());
    QCOMPARE(m_panel->itemProperties().value(QStringLiteral("Title")).toString(), QStringLiteral("BTC 67,432"));
}

void PanelStatusItemTest::aTakenNameLeavesTheConnection()
{
    QDBusConnection other = m_bus->connect();
    for (int i = 1; i < 100; ++i)
        QVERIFY(other.registerService(itemName(i)));
    const auto item = makeItem(QStringLiteral("plasmashell"));
    QTRY_VERIFY(hasItems(1));
    QCOMPARE(m_panel->items()[0], m_session->connection().baseService());
}

void PanelStatusItemTest::aBusThatReturnsGetsTheItemAgain()
{
    const auto item = makeItem(QStringLiteral("waybar"));
    item->setMenu([] { return Menu{actionEntry(QStringLiteral("Quit"))}; });
    QTRY_VERIFY(hasItems(1));
    for (int i = 0; i < 2; ++i) {
        m_panel.reset();
        m_bus->stop();
        m_bus->start();
        m_panel = std::make_unique<FakeStatusPanel>(*m_bus);
        QTRY_VERIFY_WITH_TIMEOUT(hasItems(1), 10000);
        QCOMPARE(m_panel->itemProperties().value(QStringLiteral("Title")).toString(), QStringLiteral("BTC 67,432"));
        const auto layout = qdbus_cast<DBusMenuLayout>(
            m_panel->callMenu(QStringLiteral("GetLayout"), {0, -1, QStringList()}).arguments().value(1));
        QCOMPARE(layout.children.size(), 1);
    }
}

void PanelStatusItemTest::aBusThatReturnsIsAskedForItsColorScheme()
{
    auto portal = std::make_unique<FakeSettingsPortal>(*m_bus, 1);
    const auto item = makeItem(QStringLiteral("plasmashell"));
    QTRY_COMPARE(item->appearance(), PanelAppearance::dark);
    portal.reset();
    m_panel.reset();
    m_bus->stop();
    m_bus->start();
    portal = std::make_unique<FakeSettingsPortal>(*m_bus, 2);
    QTRY_COMPARE_WITH_TIMEOUT(item->appearance(), PanelAppearance::light, 10000);
    portal->setScheme(1);
    QTRY_COMPARE(item->appearance(), PanelAppearance::dark);
}

void PanelStatusItemTest::xfceDocksAWindowAndKnowsWhereItIs()
{
    FakeSystemTray *const tray = useTray();
    const auto item = makeItem(QStringLiteral("xfce4-panel"));
    QVERIFY(!item->geometry());
    QTRY_COMPARE(tray->windows, 1);
    QWidget *const window = QWidget::find(tray->window);
    QVERIFY(window && window->isHidden()); // until the tray has taken it in
    QVERIFY(!item->geometry());
    tray->takeIn(QRect(1000, 2, 90, 24));
    QVERIFY(window->isVisible());
    QVERIFY(window->width() > 2 * window->height());
    QCOMPARE(item->geometry(), QRect(1000, 2, 90, 24));
    QVERIFY(m_panel->items().isEmpty());
    Q_EMIT tray->undocked();
    QVERIFY(window->isHidden());
}

void PanelStatusItemTest::theTrayWindowGoesWithItsHost()
{
    FakeSystemTray *const tray = useTray();
    const auto item = makeItem(QStringLiteral("xfce4-panel"));
    QTRY_COMPARE(tray->windows, 1);
    tray->takeIn(QRect(1000, 2, 90, 24));
    const QPointer<QWidget> window = QWidget::find(tray->window);
    m_host = QStringLiteral("mate-panel");
    m_panel.reset();
    m_panel = std::make_unique<FakeStatusPanel>(*m_bus);
    QTRY_VERIFY(hasItems(1));
    QVERIFY(!window);
    QVERIFY(!item->geometry());
    QVERIFY(qdbus_cast<QList<StatusPixmap>>(m_panel->itemProperties().value(QStringLiteral("IconPixmap")))[0].width >
            40);
}

void PanelStatusItemTest::theTrayWindowGoesWithItsTray()
{
    FakeSystemTray *const tray = useTray();
    const auto item = makeItem(QStringLiteral("xfce4-panel"));
    QTRY_COMPARE(tray->windows, 1);
    const QPointer<QWidget> window = QWidget::find(tray->window);
    tray->setOwner(false);
    QVERIFY(!window);
    QTRY_VERIFY(hasItems(1)); // a square item instead
    tray->setOwner(true);
    QTRY_COMPARE(tray->windows, 2);
}

void PanelStatusItemTest::aTrayAloneGetsASquareWindow()
{
    m_panel.reset();
    FakeSystemTray *const tray = useTray();
    const auto item = makeItem(QStringLiteral("none"));
    QTRY_COMPARE(tray->windows, 1);
    const QWidget *const window = QWidget::find(tray->window);
    QCOMPARE(window->width(), window->height());
}

TICKWISE_WIDGET_TEST(PanelStatusItemTest)
#include "PanelStatusItemTest.moc"
