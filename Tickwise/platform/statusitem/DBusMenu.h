#pragma once

#include "platform/dbus/VirtualObject.h"
#include "platform/statusitem/DBusMenuLayout.h"

namespace tickwise {

/// A menu that the panel shows: `com.canonical.dbusmenu`, version 3.
class DBusMenu : public VirtualObject
{
public:
    DBusMenu(const QDBusConnection &bus, const QString &path);

    /// The menu is asked for at once, and anew at each `refresh`.
    void setMenu(std::function<Menu()> menu);

    /// Tells the hosts of a menu that differs from the one before. They size a menu when they open it, so a change must
    /// reach them earlier.
    void refresh();

protected:
    QVariantMap properties() const override;

private:
    QVariantList getLayout(int parentId, int depth, const QStringList &names) const;
    QList<DBusMenuProperties> groupProperties(const QList<int> &ids, const QStringList &names) const;
    QVariantList getProperty(int id, const QString &name) const;
    QVariantList eventGroup(const QList<DBusMenuEvent> &events);
    QVariantList aboutToShowGroup(const QList<int> &ids) const;
    bool handleEvent(int id, const QString &type);
    void addMethods();

    std::function<Menu()> m_menu;
    int m_firstId = 1;
    DBusMenuNode m_tree;
    uint m_revision = 1;
};

} // namespace tickwise
