#pragma once

#include "platform/notifications/NotificationText.h"

#include <QDBusAbstractInterface>
#include <QDBusConnection>
#include <QDBusMessage>

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
    /// `bus` may be unconnected: every operation fails then. `playSound` is called for each notification shown.
    PortalNotificationCenter(const QDBusConnection &bus, std::function<void()> playSound,
                             std::chrono::milliseconds timeout, QObject *parent = nullptr);

    void requestAuthorization(Completion<void> done) override;
    void add(const UserNotification &notification, Completion<void> done) override;

private:
    void call(const QDBusMessage &message, Completion<void> done);

    QDBusConnection m_bus;
    std::function<void()> m_playSound;
    std::chrono::milliseconds m_timeout;
    NotificationPortal m_portal;
};

/// The center for where the application runs: the portal's inside a sandbox, else the desktop's own.
std::unique_ptr<UserNotificationCenter> makeUserNotificationCenter(const QDBusConnection &bus, bool sandboxed,
                                                                   const NotificationIdentity &identity,
                                                                   const std::function<void()> &playSound);

} // namespace tickwise
