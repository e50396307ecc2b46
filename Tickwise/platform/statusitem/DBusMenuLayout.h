#pragma once

#include "pipeline/Menu.h"

#include <QDBusArgument>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <vector>

namespace tickwise {

/// One item of an exported menu: the root has id 0, the others count on from the base that the tree was made with.
struct DBusMenuNode
{
    int id = 0;
    QVariantMap properties; ///< as `com.canonical.dbusmenu` names them, defaults left out
    std::vector<DBusMenuNode> children;
    std::function<void()> activate;
};

/// What GetLayout answers, D-Bus type (ia{sv}av).
struct DBusMenuLayout
{
    int id = 0;
    QVariantMap properties;
    QList<DBusMenuLayout> children;
};

/// What GetGroupProperties answers for one item, D-Bus type (ia{sv}).
struct DBusMenuProperties
{
    int id = 0;
    QVariantMap properties;
};

/// One entry of EventGroup, D-Bus type (isvu).
struct DBusMenuEvent
{
    int id = 0;
    QString type;
    QDBusVariant data;
    uint timestamp = 0;
};

/// The menu as a tree with ids from `firstId` on, in reading order.
DBusMenuNode dbusMenuTree(const Menu &menu, int firstId);

/// The highest id in the tree.
int lastId(const DBusMenuNode &tree);

/// Whether two trees show the same, whatever their ids and actions.
bool showsTheSame(const DBusMenuNode &left, const DBusMenuNode &right);

/// The item with that id; null if the tree has none.
const DBusMenuNode *findNode(const DBusMenuNode &tree, int id);

/// Every item of the tree, in reading order.
std::vector<const DBusMenuNode *> allNodes(const DBusMenuNode &tree);

/// The item and its descendants down to `depth` levels below it (-1: all), with the named properties (none named: all).
DBusMenuLayout dbusMenuLayout(const DBusMenuNode &node, int depth, const QStringList &names);

/// The named properties (none named: all) of an item.
QVariantMap dbusMenuProperties(const DBusMenuNode &node, const QStringList &names);

/// Whether these entries are alternatives of which one is chosen.
bool areAlternatives(const Menu &menu);

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuLayout &layout);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuLayout &layout);
QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuProperties &item);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuProperties &item);
QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuEvent &event);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuEvent &event);

/// Makes the types above known to QtDBus; may be called again.
void registerDBusMenuTypes();

} // namespace tickwise

Q_DECLARE_METATYPE(tickwise::DBusMenuLayout)
Q_DECLARE_METATYPE(tickwise::DBusMenuProperties)
Q_DECLARE_METATYPE(tickwise::DBusMenuEvent)
