#include "platform/statusitem/DBusMenuLayout.h"

#include "support/drawing/TintedSvg.h"

#include <QBuffer>
#include <QDBusMetaType>

#include <algorithm>

namespace tickwise {

namespace {

constexpr int exportedIconPixels = 32;
// The menu's background is not known; this gray stands out from both black and white.
constexpr QRgb iconColor = qRgb(0x80, 0x80, 0x80);

QByteArray iconData(const QString &name)
{
    const QImage image = tintedSymbol(name, exportedIconPixels, QColor(iconColor));
    QByteArray bytes;
    if (!image.isNull()) {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
    }
    return bytes;
}

QString escapedLabel(const QString &text)
{
    return QString(text).replace(u'_', QStringLiteral("__"));
}

QVariantMap entryProperties(const MenuEntry &entry, bool alternative)
{
    if (entry.kind == MenuEntry::Kind::separator)
        return {{QStringLiteral("type"), QStringLiteral("separator")}};
    QVariantMap properties{{QStringLiteral("label"), escapedLabel(entry.text)}};
    if (!entry.enabled)
        properties.insert(QStringLiteral("enabled"), false);
    if (entry.kind == MenuEntry::Kind::submenu)
        properties.insert(QStringLiteral("children-display"), QStringLiteral("submenu"));
    if (entry.checked) {
        properties.insert(QStringLiteral("toggle-type"),
                          alternative ? QStringLiteral("radio") : QStringLiteral("checkmark"));
        properties.insert(QStringLiteral("toggle-state"), *entry.checked ? 1 : 0);
    }
    const QByteArray icon = iconData(entry.iconName);
    if (!icon.isEmpty())
        properties.insert(QStringLiteral("icon-data"), icon);
    return properties;
}

std::vector<DBusMenuNode> nodesOf(const Menu &menu, int &nextId)
{
    std::vector<DBusMenuNode> nodes;
    const bool alternatives = areAlternatives(menu);
    for (const MenuEntry &entry : menu) {
        DBusMenuNode node{nextId++, entryProperties(entry, alternatives), {}, entry.activate};
        node.children = nodesOf(entry.children, nextId);
        nodes.push_back(std::move(node));
    }
    return nodes;
}

void collect(const DBusMenuNode &node, std::vector<const DBusMenuNode *> &into)
{
    into.push_back(&node);
    for (const DBusMenuNode &child : node.children)
        collect(child, into);
}

} // namespace

bool areAlternatives(const Menu &menu)
{
    const auto checkable =
        std::count_if(menu.begin(), menu.end(), [](const MenuEntry &entry) { return entry.checked.has_value(); });
    const auto checked =
        std::count_if(menu.begin(), menu.end(), [](const MenuEntry &entry) { return entry.checked == true; });
    return checkable > 1 && checked <= 1;
}

DBusMenuNode dbusMenuTree(const Menu &menu, int firstId)
{
    DBusMenuNode root{0, {{QStringLiteral("children-display"), QStringLiteral("submenu")}}, {}, {}};
    root.children = nodesOf(menu, firstId);
    return root;
}

int lastId(const DBusMenuNode &tree)
{
    return allNodes(tree).back()->id;
}

bool showsTheSame(const DBusMenuNode &left, const DBusMenuNode &right)
{
    return left.properties == right.properties &&
           std::equal(left.children.begin(), left.children.end(), right.children.begin(), right.children.end(),
                      showsTheSame);
}

const DBusMenuNode *findNode(const DBusMenuNode &tree, int id)
{
    const std::vector<const DBusMenuNode *> nodes = allNodes(tree);
    const auto found =
        std::find_if(nodes.begin(), nodes.end(), [id](const DBusMenuNode *node) { return node->id == id; });
    return found == nodes.end() ? nullptr : *found;
}

std::vector<const DBusMenuNode *> allNodes(const DBusMenuNode &tree)
{
    std::vector<const DBusMenuNode *> nodes;
    collect(tree, nodes);
    return nodes;
}

QVariantMap dbusMenuProperties(const DBusMenuNode &node, const QStringList &names)
{
    if (names.isEmpty())
        return node.properties;
    QVariantMap chosen;
    for (const QString &name : names) {
        if (node.properties.contains(name))
            chosen.insert(name, node.properties.value(name));
    }
    return chosen;
}

DBusMenuLayout dbusMenuLayout(const DBusMenuNode &node, int depth, const QStringList &names)
{
    DBusMenuLayout layout{node.id, dbusMenuProperties(node, names), {}};
    if (depth == 0)
        return layout;
    for (const DBusMenuNode &child : node.children)
        layout.children << dbusMenuLayout(child, depth < 0 ? -1 : depth - 1, names);
    return layout;
}

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuLayout &layout)
{
    argument.beginStructure();
    argument << layout.id << layout.properties;
    argument.beginArray(QMetaType::fromType<QDBusVariant>());
    for (const DBusMenuLayout &child : layout.children)
        argument << QDBusVariant(QVariant::fromValue(child));
    argument.endArray();
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuLayout &layout)
{
    layout.children.clear();
    argument.beginStructure();
    argument >> layout.id >> layout.properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        layout.children << qdbus_cast<DBusMenuLayout>(child.variant());
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuProperties &item)
{
    argument.beginStructure();
    argument << item.id << item.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuProperties &item)
{
    argument.beginStructure();
    argument >> item.id >> item.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuEvent &event)
{
    argument.beginStructure();
    argument << event.id << event.type << event.data << event.timestamp;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuEvent &event)
{
    argument.beginStructure();
    argument >> event.id >> event.type >> event.data >> event.timestamp;
    argument.endStructure();
    return argument;
}

void registerDBusMenuTypes()
{
    qDBusRegisterMetaType<DBusMenuLayout>();
    qDBusRegisterMetaType<DBusMenuProperties>();
    qDBusRegisterMetaType<QList<DBusMenuProperties>>();
    qDBusRegisterMetaType<DBusMenuEvent>();
    qDBusRegisterMetaType<QList<DBusMenuEvent>>();
    qDBusRegisterMetaType<QList<int>>();
}

} // namespace tickwise
