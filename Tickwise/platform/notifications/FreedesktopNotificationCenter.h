#pragma once

#include "platform/notifications/NotificationText.h"

#include <QDBusAbstractInterface>
#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>

#include <chrono>
#include <deque>
#include <optional>
#include <vector>

namespace tickwise {

/// The signals of org.freedesktop.Notifications.
class FreedesktopNotifications : public QDBusAbstractInterface
{
    Q_OBJECT

public:
    FreedesktopNotifications(const QDBusConnection &bus, std::chrono::milliseconds timeout);

Q_SIGNALS:
    // The names and types of the wire.
    void ActionInvoked(uint id, const QString &actionKey);
    void ActivationToken(uint id, const QString &token);
    void NotificationClosed(uint id, uint reason);
};

/// Notifications through org.freedesktop.Notifications. Calls are asynchronous and end within the timeout; a service
/// that comes, goes or is replaced is asked anew what it can do.
class FreedesktopNotificationCenter : public UserNotificationCenter
{
    Q_OBJECT

public:
    static constexpr std::chrono::seconds callTimeout{5};

    /// `bus` may be unconnected: every operation fails then. `playSound` is called for a notification whose service
    /// plays no sound.
    FreedesktopNotificationCenter(const QDBusConnection &bus, NotificationIdentity identity,
                                  std::function<void()> playSound, std::chrono::milliseconds timeout = callTimeout,
                                  QObject *parent = nullptr);

    void requestAuthorization(Completion<void> done) override;
    void add(const UserNotification &notification, Completion<void> done) override;

private:
    using Capabilities = QStringList;
    struct Shown
    {
        uint id;
        QString identifier;
        QString activationToken;
    };

    void withCapabilities(std::function<void(const Result<Capabilities> &)> use);
    void askCapabilities();
    void receiveCapabilities(QDBusPendingCallWatcher *query);
    void send(const UserNotification &notification, const Capabilities &capabilities, const Completion<void> &done);
    void followService(const QString &newOwner);
    void remember(uint id, const QString &identifier);
    Shown *shown(uint id);
    void invoke(uint id, const QString &action);
    void forget(uint id);

    QDBusConnection m_bus;
    NotificationIdentity m_identity;
    std::function<void()> m_playSound;
    FreedesktopNotifications m_service;
    QDBusServiceWatcher m_serviceWatcher;
    QDBusPendingCallWatcher *m_query = nullptr; ///< the question under way that counts
    std::optional<Capabilities> m_capabilities;
    std::vector<std::function<void(const Result<Capabilities> &)>> m_waiting;
    std::deque<Shown> m_shown; ///< oldest first
};

} // namespace tickwise
