#pragma once

#include "platform/dbus/VirtualObject.h"
#include "platform/statusitem/DBusMenu.h"
#include "platform/statusitem/HostTraits.h"
#include "platform/statusitem/StatusPixmap.h"

#include <QPoint>

#include <memory>
#include <optional>

namespace tickwise {

/// What a status notifier item shows.
struct StatusNotifierContent
{
    QString title;
    StatusToolTip toolTip;
    QList<StatusPixmap> pixmaps;
    std::optional<QString> label; ///< none: the label properties are absent
    QString labelGuide;           ///< the widest text that the label may take
    bool operator==(const StatusNotifierContent &) const = default;
};

/// An `org.kde.StatusNotifierItem` under a bus name of its own, with its menu. It leaves the bus when it is destroyed.
/// No call of it waits for the bus.
class StatusNotifierItem : public VirtualObject
{
    Q_OBJECT

public:
    explicit StatusNotifierItem(const QDBusConnection &bus);
    ~StatusNotifierItem() override;

    /// "org.kde.StatusNotifierItem-PID-N"; N counts the items of the process.
    const QString &service() const { return m_service; }

    /// Announces the item to the watcher, once the bus has decided about the item's name; again for each new watcher.
    /// An item whose name the bus refused is announced by its connection.
    void registerWithWatcher(ItemAnnouncement announcement);

    /// Tells the hosts what changed against the content before.
    void setContent(const StatusNotifierContent &content);
    /// Exports the menu; it is asked for at once and at each `refreshMenu`.
    void setMenu(std::function<Menu()> menu) { m_menu->setMenu(std::move(menu)); }
    void refreshMenu() { m_menu->refresh(); }

Q_SIGNALS:
    void activated(QPoint position);
    /// The host asks us to show the menu ourselves.
    void contextMenuRequested(QPoint position);

protected:
    QVariantMap properties() const override;

private:
    void addMethods();
    void addSignals();
    QVariantList runAfterReply(const std::function<void()> &action);
    void requestName();
    void announce();

    QDBusConnection m_bus;
    QString m_service;
    StatusNotifierContent m_content;
    std::unique_ptr<DBusMenu> m_menu;
    std::optional<bool> m_ownsName; ///< none: the bus has not answered yet
    std::optional<ItemAnnouncement> m_announcement;
};

} // namespace tickwise
