#include "platform/notifications/PortalNotificationCenter.h"

#include "platform/dbus/BusCall.h"
#include "platform/notifications/FreedesktopNotificationCenter.h"

#include <QDBusArgument>

namespace tickwise {

namespace {

constexpr char notificationPortal[] = "org.freedesktop.portal.Notification";

QString notificationInterface()
{
    return QString::fromLatin1(notificationPortal);
}

QString openAction()
{
    return QStringLiteral("open");
}

/// Newer portals hand the token over among the action's parameters.
QString activationToken(const QVariantList &parameter)
{
    for (const QVariant &value : parameter) {
        const auto data = qdbus_cast<QVariantMap>(value);
        QString token = data.value(QStringLiteral("activation-token")).toString();
        if (!token.isEmpty())
            return token;
    }
    return {};
}

} // namespace

NotificationPortal::NotificationPortal(const QDBusConnection &bus, std::chrono::milliseconds timeout)
    : QDBusAbstractInterface(portalService(), portalPath(), notificationPortal, bus, nullptr)
{
    setTimeout(static_cast<int>(timeout.count()));
}

PortalNotificationCenter::PortalNotificationCenter(SessionBus &bus, std::function<void()> playSound,
                                                   std::chrono::milliseconds timeout, QObject *parent)
    : UserNotificationCenter(parent)
    , m_bus(bus)
    , m_playSound(std::move(playSound))
    , m_timeout(timeout)
{
    connect(&bus, &SessionBus::connected, this, &PortalNotificationCenter::openPortal);
    connect(&bus, &SessionBus::disconnected, this, [this] { m_portal.reset(); });
    if (bus.connection().isConnected())
        openPortal();
}

void PortalNotificationCenter::openPortal()
{
    m_portal = std::make_unique<NotificationPortal>(m_bus.connection(), m_timeout);
    connect(m_portal.get(), &NotificationPortal::ActionInvoked, this,
            [this](const QString &id, const QString &action, const QVariantList &parameter) {
                if (action == openAction())
                    Q_EMIT activated(id, activationToken(parameter));
            });
}

void PortalNotificationCenter::requestAuthorization(Completion<void> done)
{
    send(propertyQuestion(portalService(), portalPath(), notificationInterface(), QStringLiteral("version")),
         std::move(done));
}

void PortalNotificationCenter::add(const UserNotification &notification, Completion<void> done)
{
    const QVariantMap content{{QStringLiteral("title"), notificationLine(notification.title)},
                              {QStringLiteral("body"), notificationLine(notification.body)},
                              {QStringLiteral("priority"), QStringLiteral("normal")},
                              {QStringLiteral("default-action"), openAction()}};
    const QDBusMessage call =
        portalCall(notificationInterface(), QStringLiteral("AddNotification"), {notification.identifier, content});
    send(call, [this, done = std::move(done)](const Result<void> &result) {
        if (result)
            m_playSound();
        done(result);
    });
}

void PortalNotificationCenter::send(const QDBusMessage &call, Completion<void> done)
{
    sendCall<void>(m_bus.connection(), call, this, std::move(done), m_timeout);
}

std::unique_ptr<UserNotificationCenter> makeUserNotificationCenter(SessionBus &bus, bool sandboxed,
                                                                   const NotificationIdentity &identity,
                                                                   const std::function<void()> &playSound)
{
    constexpr auto timeout = FreedesktopNotificationCenter::callTimeout;
    if (sandboxed)
        return std::make_unique<PortalNotificationCenter>(bus, playSound, timeout);
    return std::make_unique<FreedesktopNotificationCenter>(bus, identity, playSound, timeout);
}

} // namespace tickwise
