#include "platform/statusitem/DBusMenuLayout.h"

#include "doubles/TestProgram.h"
#include "platform/dbus/VirtualObject.h"
#include "platform/statusitem/LocalMenu.h"

#include <QImage>
#include <QMenu>

using namespace tickwise;

namespace {

MenuEntry action(const QString &text, std::optional<bool> checked = {})
{
    MenuEntry entry;
    entry.text = text;
    entry.checked = checked;
    return entry;
}

MenuEntry submenu(const QString &text, Menu children)
{
    MenuEntry entry;
    entry.kind = MenuEntry::Kind::submenu;
    entry.text = text;
    entry.children = std::move(children);
    return entry;
}

MenuEntry separator()
{
    MenuEntry entry;
    entry.kind = MenuEntry::Kind::separator;
    return entry;
}

Menu sample()
{
    return {
        submenu(QStringLiteral("Change"), {action(QStringLiteral("BTC"), true), action(QStringLiteral("ETH"), false)}),
        separator(), action(QStringLiteral("Quit"))};
}

QVariant valueOf(const DBusMenuNode &node, const char *name)
{
    return node.properties.value(QString::fromLatin1(name));
}

} // namespace

class DBusMenuLayoutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void idsCountInReadingOrder();
    void propertiesSayWhatAnEntryIs();
    void anIconIsAPngOfTheSymbol();
    void anUnderscoreIsNoMnemonic();
    void alternativesAreRadioEntries();
    void independentEntriesAreCheckmarks();
    void depthIsHonoured_data();
    void depthIsHonoured();
    void onlyNamedPropertiesAreGiven();
    void findsAnyNode();
    void idsDoNotMakeADifference();
    void whatIsShownMakesADifference();
    void splitsSignatures_data();
    void splitsSignatures();
    void localMenuShowsTheSame();
    void localMenuRunsActionsAfterwards();
};

void DBusMenuLayoutTest::idsCountInReadingOrder()
{
    const DBusMenuNode tree = dbusMenuTree(sample(), 10);
    QCOMPARE(tree.id, 0);
    QCOMPARE(tree.children[0].id, 10);
    QCOMPARE(tree.children[0].children[0].id, 11);
    QCOMPARE(tree.children[0].children[1].id, 12);
    QCOMPARE(tree.children[1].id, 13);
    QCOMPARE(tree.children[2].id, 14);
    QCOMPARE(lastId(tree), 14);
    QCOMPARE(lastId(dbusMenuTree({}, 5)), 0);
}

void DBusMenuLayoutTest::propertiesSayWhatAnEntryIs()
{
    Menu menu = sample();
    menu[2].enabled = false;
    const DBusMenuNode tree = dbusMenuTree(menu, 1);
    QCOMPARE(valueOf(tree, "children-display"), QVariant(QStringLiteral("submenu")));
    QCOMPARE(valueOf(tree.children[0], "children-display"), QVariant(QStringLiteral("submenu")));
    QCOMPARE(valueOf(tree.children[0], "label"), QVariant(QStringLiteral("Change")));
    QCOMPARE(tree.children[1].properties, (QVariantMap{{QStringLiteral("type"), QStringLiteral("separator")}}));
    QCOMPARE(valueOf(tree.children[2], "enabled"), QVariant(false));
    QVERIFY(!valueOf(tree.children[0], "enabled").isValid());
    QVERIFY(!valueOf(tree.children[2], "toggle-type").isValid());
}

void DBusMenuLayoutTest::anIconIsAPngOfTheSymbol()
{
    MenuEntry entry = action(QStringLiteral("Settings"));
    entry.iconName = QStringLiteral("gearshape");
    const QByteArray icon = valueOf(dbusMenuTree({entry}, 1).children.front(), "icon-data").toByteArray();
    QCOMPARE(QImage::fromData(icon, "PNG").size(), QSize(32, 32));
    entry.iconName = QStringLiteral("no such symbol");
    QVERIFY(!dbusMenuTree({entry}, 1).children.front().properties.contains(QStringLiteral("icon-data")));
}

void DBusMenuLayoutTest::anUnderscoreIsNoMnemonic()
{
    const DBusMenuNode tree = dbusMenuTree({action(QStringLiteral("A_B__C"))}, 1);
    QCOMPARE(valueOf(tree.children[0], "label"), QVariant(QStringLiteral("A__B____C")));
}

void DBusMenuLayoutTest::alternativesAreRadioEntries()
{
    const DBusMenuNode tree = dbusMenuTree(sample(), 1);
    const DBusMenuNode &chosen = tree.children[0].children[0];
    const DBusMenuNode &other = tree.children[0].children[1];
    QCOMPARE(valueOf(chosen, "toggle-type"), QVariant(QStringLiteral("radio")));
    QCOMPARE(valueOf(chosen, "toggle-state"), QVariant(1));
    QCOMPARE(valueOf(other, "toggle-state"), QVariant(0));
}

void DBusMenuLayoutTest::independentEntriesAreCheckmarks()
{
    const auto typeOf = [](const Menu &menu) { return valueOf(dbusMenuTree(menu, 1).children[0], "toggle-type"); };
    const QString text = QStringLiteral("a");
    QCOMPARE(typeOf({action(text, true)}), QVariant(QStringLiteral("checkmark")));
    QCOMPARE(typeOf({action(text, true), action(text, true)}), QVariant(QStringLiteral("checkmark")));
    QCOMPARE(typeOf({action(text, false), action(text, false)}), QVariant(QStringLiteral("radio")));
}

void DBusMenuLayoutTest::depthIsHonoured_data()
{
    QTest::addColumn<int>("depth");
    QTest::addColumn<int>("children");
    QTest::addColumn<int>("grandchildren");
    QTest::newRow("all") << -1 << 3 << 2;
    QTest::newRow("itself") << 0 << 0 << 0;
    QTest::newRow("its children") << 1 << 3 << 0;
    QTest::newRow("their children") << 2 << 3 << 2;
}

void DBusMenuLayoutTest::depthIsHonoured()
{
    QFETCH(int, depth);
    const DBusMenuLayout layout = dbusMenuLayout(dbusMenuTree(sample(), 1), depth, {});
    QTEST(int(layout.children.size()), "children");
    QTEST(layout.children.isEmpty() ? 0 : int(layout.children[0].children.size()), "grandchildren");
}

void DBusMenuLayoutTest::onlyNamedPropertiesAreGiven()
{
    const DBusMenuLayout layout =
        dbusMenuLayout(dbusMenuTree(sample(), 1), -1, {QStringLiteral("label"), QStringLiteral("visible")});
    QCOMPARE(layout.properties, QVariantMap());
    QCOMPARE(layout.children[0].properties, (QVariantMap{{QStringLiteral("label"), QStringLiteral("Change")}}));
    QCOMPARE(layout.children[0].children[0].properties,
             (QVariantMap{{QStringLiteral("label"), QStringLiteral("BTC")}}));
}

void DBusMenuLayoutTest::findsAnyNode()
{
    const DBusMenuNode tree = dbusMenuTree(sample(), 1);
    QCOMPARE(findNode(tree, 0), &tree);
    QCOMPARE(findNode(tree, 3), &tree.children[0].children[1]);
    QCOMPARE(findNode(tree, 99), nullptr);
    QCOMPARE(allNodes(tree).size(), 6U);
}

void DBusMenuLayoutTest::idsDoNotMakeADifference()
{
    QVERIFY(showsTheSame(dbusMenuTree(sample(), 1), dbusMenuTree(sample(), 50)));
}

void DBusMenuLayoutTest::whatIsShownMakesADifference()
{
    const DBusMenuNode tree = dbusMenuTree(sample(), 1);
    Menu checked = sample();
    checked[0].children[1].checked = true;
    checked[0].children[0].checked = false;
    QVERIFY(!showsTheSame(tree, dbusMenuTree(checked, 1)));
    Menu longer = sample();
    longer.push_back(action(QStringLiteral("More")));
    QVERIFY(!showsTheSame(tree, dbusMenuTree(longer, 1)));
    QVERIFY(!showsTheSame(dbusMenuTree(longer, 1), tree));
}

void DBusMenuLayoutTest::splitsSignatures_data()
{
    QTest::addColumn<QString>("signature");
    QTest::addColumn<QStringList>("types");
    QTest::newRow("none") << QString() << QStringList();
    QTest::newRow("plain") << QStringLiteral("iis")
                           << QStringList{QStringLiteral("i"), QStringLiteral("i"), QStringLiteral("s")};
    QTest::newRow("arrays") << QStringLiteral("aiaas") << QStringList{QStringLiteral("ai"), QStringLiteral("aas")};
    QTest::newRow("nested") << QStringLiteral("u(ia{sv}av)")
                            << QStringList{QStringLiteral("u"), QStringLiteral("(ia{sv}av)")};
    QTest::newRow("two") << QStringLiteral("a(ia{sv})a(ias)")
                         << QStringList{QStringLiteral("a(ia{sv})"), QStringLiteral("a(ias)")};
}

void DBusMenuLayoutTest::splitsSignatures()
{
    QFETCH(QString, signature);
    QTEST(completeTypes(signature), "types");
}

void DBusMenuLayoutTest::localMenuShowsTheSame()
{
    Menu entries = sample();
    entries[2].text = QStringLiteral("Quit & go");
    entries[2].enabled = false;
    const std::unique_ptr<QMenu> menu = localMenu(entries);
    const QList<QAction *> actions = menu->actions();
    QCOMPARE(actions.size(), 3);
    QCOMPARE(actions[0]->menu()->actions().size(), 2);
    QVERIFY(actions[0]->menu()->actions()[0]->isChecked());
    QVERIFY(actions[0]->menu()->actions()[0]->actionGroup());
    QVERIFY(!actions[0]->menu()->actions()[1]->isChecked());
    QVERIFY(actions[1]->isSeparator());
    QCOMPARE(actions[2]->text(), QStringLiteral("Quit && go"));
    QVERIFY(!actions[2]->isEnabled());
}

void DBusMenuLayoutTest::localMenuRunsActionsAfterwards()
{
    int runs = 0;
    MenuEntry entry = action(QStringLiteral("Run"));
    entry.activate = [&runs] { ++runs; };
    std::unique_ptr<QMenu> menu = localMenu({entry});
    menu->actions()[0]->trigger();
    QCOMPARE(runs, 0);
    menu.reset();
    QTRY_COMPARE(runs, 1);
}

TICKWISE_WIDGET_TEST(DBusMenuLayoutTest)
#include "DBusMenuLayoutTest.moc"
