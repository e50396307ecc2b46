#pragma once

#include "platform/dbus/SessionBus.h"
#include "platform/notifications/NotificationText.h"

#include <QDBusAbstractInterface>
#include <QDBusServiceWatcher>

#include <chrono>
#include <deque>
#include <memory>
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

    /// While the bus is not connected every operation fails. The bus outlives the center. `playSound` is called for a
    /// notification whose service plays no sound.
    FreedesktopNotificationCenter(SessionBus &bus, NotificationIdentity identity, std::function<void()> playSound,
                                  std::chrono::milliseconds timeout = callTimeout, QObject *parent = nullptr);

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

    /// The service on one connection of the bus.
    struct Link
    {
        Link(const QDBusConnection &bus, std::chrono::milliseconds timeout);
        FreedesktopNotifications service;
        QDBusServiceWatcher owner;
    };

    void openLink();
    void closeLink();
    void withCapabilities(std::function<void(const Result<Capabilities> &)> use);
    void askCapabilities();
    void receiveCapabilities(int query, const Result<Capabilities> &capabilities);
    QDBusMessage serviceCall(const QString &method, const QVariantList &arguments) const;
    void send(const UserNotification &notification, const Capabilities &capabilities, const Completion<void> &done);
    void followService(const QString &newOwner);
    void remember(uint id, const QString &identifier);
    Shown *shown(uint id);
    void invoke(uint id, const QString &action);
    void forget(uint id);

    SessionBus &m_bus;
    NotificationIdentity m_identity;
    std::function<void()> m_playSound;
    std::chrono::milliseconds m_timeout;
    std::unique_ptr<Link> m_link; ///< none: the bus is not connected
    int m_queries = 0;            ///< asked so far; the answer to the newest counts
    bool m_isAsking = false;
    std::optional<Capabilities> m_capabilities;
    std::vector<std::function<void(const Result<Capabilities> &)>> m_waiting;
    std::deque<Shown> m_shown; ///< oldest first
};

} // namespace tickwise
