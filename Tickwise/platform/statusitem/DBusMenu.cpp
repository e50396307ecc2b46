#include "platform/statusitem/DBusMenu.h"

#include <QDBusVariant>

namespace tickwise {

namespace {

constexpr uint protocolVersion = 3;
// Hosts have heard of every change before they open the menu.
constexpr bool needsUpdate = false;

QStringList names(const QVariant &argument)
{
    return argument.toStringList();
}

QList<int> ids(const QVariant &argument)
{
    return qdbus_cast<QList<int>>(argument);
}

} // namespace

DBusMenu::DBusMenu(const QDBusConnection &bus, const QString &path)
    : VirtualObject(bus, path, QStringLiteral("com.canonical.dbusmenu"))
    , m_tree(dbusMenuTree({}, m_firstId))
{
    registerDBusMenuTypes();
    addMethods();
    addSignal(QStringLiteral("LayoutUpdated"), QStringLiteral("ui"));
    addSignal(QStringLiteral("ItemsPropertiesUpdated"), QStringLiteral("a(ia{sv})a(ias)"));
    addSignal(QStringLiteral("ItemActivationRequested"), QStringLiteral("iu"));
}

void DBusMenu::addMethods()
{
    addMethod(QStringLiteral("GetLayout"), {QStringLiteral("iias"), QStringLiteral("u(ia{sv}av)")},
              [this](const QVariantList &arguments) {
                  return getLayout(arguments[0].toInt(), arguments[1].toInt(), names(arguments[2]));
              });
    addMethod(QStringLiteral("GetGroupProperties"), {QStringLiteral("aias"), QStringLiteral("a(ia{sv})")},
              [this](const QVariantList &arguments) {
                  return QVariantList{QVariant::fromValue(groupProperties(ids(arguments[0]), names(arguments[1])))};
              });
    addMethod(
        QStringLiteral("GetProperty"), {QStringLiteral("is"), QStringLiteral("v")},
        [this](const QVariantList &arguments) { return getProperty(arguments[0].toInt(), arguments[1].toString()); });
    addMethod(QStringLiteral("Event"), {QStringLiteral("isvu"), QStringLiteral("")},
              [this](const QVariantList &arguments) {
                  handleEvent(arguments[0].toInt(), arguments[1].toString());
                  return QVariantList();
              });
    addMethod(
        QStringLiteral("EventGroup"), {QStringLiteral("a(isvu)"), QStringLiteral("ai")},
        [this](const QVariantList &arguments) { return eventGroup(qdbus_cast<QList<DBusMenuEvent>>(arguments[0])); });
    addMethod(QStringLiteral("AboutToShow"), {QStringLiteral("i"), QStringLiteral("b")},
              [](const QVariantList &) { return QVariantList{needsUpdate}; });
    addMethod(QStringLiteral("AboutToShowGroup"), {QStringLiteral("ai"), QStringLiteral("aiai")},
              [this](const QVariantList &arguments) { return aboutToShowGroup(ids(arguments[0])); });
}

void DBusMenu::setMenu(std::function<Menu()> menu)
{
    m_menu = std::move(menu);
    refresh();
}

QVariantMap DBusMenu::properties() const
{
    return {{QStringLiteral("Version"), protocolVersion},
            {QStringLiteral("TextDirection"), QStringLiteral("ltr")},
            {QStringLiteral("Status"), QStringLiteral("normal")},
            {QStringLiteral("IconThemePath"), QStringList()}};
}

QVariantList DBusMenu::getLayout(int parentId, int depth, const QStringList &names) const
{
    const DBusMenuNode *node = findNode(m_tree, parentId);
    const DBusMenuLayout layout = node ? dbusMenuLayout(*node, depth, names) : DBusMenuLayout{parentId, {}, {}};
    return {m_revision, QVariant::fromValue(layout)};
}

QList<DBusMenuProperties> DBusMenu::groupProperties(const QList<int> &ids, const QStringList &names) const
{
    QList<DBusMenuProperties> found;
    for (const DBusMenuNode *node : allNodes(m_tree)) {
        if (ids.isEmpty() || ids.contains(node->id))
            found << DBusMenuProperties{node->id, dbusMenuProperties(*node, names)};
    }
    return found;
}

QVariantList DBusMenu::getProperty(int id, const QString &name) const
{
    const DBusMenuNode *node = findNode(m_tree, id);
    const QVariant value = node ? node->properties.value(name) : QVariant();
    return {QVariant::fromValue(QDBusVariant(value.isValid() ? value : QVariant(QString())))};
}

QVariantList DBusMenu::eventGroup(const QList<DBusMenuEvent> &events)
{
    QList<int> unknown;
    for (const DBusMenuEvent &event : events) {
        if (!handleEvent(event.id, event.type))
            unknown << event.id;
    }
    return {QVariant::fromValue(unknown)};
}

bool DBusMenu::handleEvent(int id, const QString &type)
{
    const DBusMenuNode *node = findNode(m_tree, id);
    if (!node)
        return false;
    // The answer goes out first: an action may take the menu, or the whole program, away.
    if (type == QLatin1StringView("clicked") && node->activate)
        QMetaObject::invokeMethod(this, node->activate, Qt::QueuedConnection);
    return true;
}

QVariantList DBusMenu::aboutToShowGroup(const QList<int> &ids) const
{
    QList<int> unknown;
    for (int id : ids) {
        if (!findNode(m_tree, id))
            unknown << id;
    }
    return {QVariant::fromValue(QList<int>()), QVariant::fromValue(unknown)};
}

/// A changed menu gets new ids, so that a click on what was shown before cannot mean another entry.
void DBusMenu::refresh()
{
    const Menu menu = m_menu ? m_menu() : Menu();
    DBusMenuNode tree = dbusMenuTree(menu, m_firstId);
    if (showsTheSame(tree, m_tree)) {
        m_tree = std::move(tree);
        return;
    }
    m_firstId = lastId(m_tree) + 1;
    m_tree = dbusMenuTree(menu, m_firstId);
    emitSignal(QStringLiteral("LayoutUpdated"), {++m_revision, 0});
}

} // namespace tickwise
