#pragma once

#include "platform/dbus/SessionBus.h"
#include "platform/notifications/NotificationText.h"

#include <QDBusAbstractInterface>

#include <chrono>
#include <memory>

namespace tickwise {

/// The signals of org.freedesktop.portal.Notification.
class NotificationPortal : public QDBusAbstractInterface
{
    Q_OBJECT

public:
    NotificationPortal(const QDBusConnection &bus, std::chrono::milliseconds timeout);

Q_SIGNALS:
    // The name and types of the wire.
    void ActionInvoked(const QString &id, const QString &action, const QVariantList &parameter);
};

/// Notifications through the portal, for a sandboxed application: the portal knows who it is. Calls are asynchronous
/// and end within the timeout.
class PortalNotificationCenter : public UserNotificationCenter
{
    Q_OBJECT

public:
    /// While the bus is not connected every operation fails. The bus outlives the center. `playSound` is called for
    /// each notification shown.
    PortalNotificationCenter(SessionBus &bus, std::function<void()> playSound, std::chrono::milliseconds timeout,
                             QObject *parent = nullptr);

    void requestAuthorization(Completion<void> done) override;
    void add(const UserNotification &notification, Completion<void> done) override;

private:
    void openPortal();
    void send(const QDBusMessage &call, Completion<void> done);

    SessionBus &m_bus;
    std::function<void()> m_playSound;
    std::chrono::milliseconds m_timeout;
    std::unique_ptr<NotificationPortal> m_portal; ///< none: the bus is not connected
};

/// The center for where the application runs: the portal's inside a sandbox, else the desktop's own.
std::unique_ptr<UserNotificationCenter> makeUserNotificationCenter(SessionBus &bus, bool sandboxed,
                                                                   const NotificationIdentity &identity,
                                                                   const std::function<void()> &playSound);

} // namespace tickwise
