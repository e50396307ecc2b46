#include "platform/notifications/PortalNotificationCenter.h"

#include "platform/dbus/DBusFailure.h"
#include "platform/notifications/FreedesktopNotificationCenter.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace tickwise {

namespace {

constexpr char portalInterface[] = "org.freedesktop.portal.Notification";

QString portalService()
{
    return QStringLiteral("org.freedesktop.portal.Desktop");
}

QString portalPath()
{
    return QStringLiteral("/org/freedesktop/portal/desktop");
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
    : QDBusAbstractInterface(portalService(), portalPath(), portalInterface, bus, nullptr)
{
    setTimeout(static_cast<int>(timeout.count()));
}

PortalNotificationCenter::PortalNotificationCenter(const QDBusConnection &bus, std::function<void()> playSound,
                                                   std::chrono::milliseconds timeout, QObject *parent)
    : UserNotificationCenter(parent)
    , m_bus(bus)
    , m_playSound(std::move(playSound))
    , m_timeout(timeout)
    , m_portal(bus, timeout)
{
    connect(&m_portal, &NotificationPortal::ActionInvoked, this,
            [this](const QString &id, const QString &action, const QVariantList &parameter) {
                if (action == openAction())
                    Q_EMIT activated(id, activationToken(parameter));
            });
}

void PortalNotificationCenter::requestAuthorization(Completion<void> done)
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        portalService(), portalPath(), QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question << QString::fromLatin1(portalInterface) << QStringLiteral("version");
    call(question, std::move(done));
}

void PortalNotificationCenter::add(const UserNotification &notification, Completion<void> done)
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        portalService(), portalPath(), QString::fromLatin1(portalInterface), QStringLiteral("AddNotification"));
    message << notification.identifier
            << QVariantMap{{QStringLiteral("title"), notificationLine(notification.title)},
                           {QStringLiteral("body"), notificationLine(notification.body)},
                           {QStringLiteral("priority"), QStringLiteral("normal")},
                           {QStringLiteral("default-action"), openAction()}};
    call(message, [this, done = std::move(done)](const Result<void> &result) {
        if (result)
            m_playSound();
        done(result);
    });
}

void PortalNotificationCenter::call(const QDBusMessage &message, Completion<void> done)
{
    if (!m_bus.isConnected()) {
        QMetaObject::invokeMethod(
            this, [done = std::move(done)] { done(failure(noMessageBus())); }, Qt::QueuedConnection);
        return;
    }
    auto *const watcher =
        new QDBusPendingCallWatcher(m_bus.asyncCall(message, static_cast<int>(m_timeout.count())), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [done = std::move(done)](QDBusPendingCallWatcher *finished) {
                finished->deleteLater();
                if (finished->isError())
                    done(failure(errorFromDBus(finished->error())));
                else
                    done({});
            });
}

std::unique_ptr<UserNotificationCenter> makeUserNotificationCenter(const QDBusConnection &bus, bool sandboxed,
                                                                   const NotificationIdentity &identity,
                                                                   const std::function<void()> &playSound)
{
    constexpr auto timeout = FreedesktopNotificationCenter::callTimeout;
    if (sandboxed)
        return std::make_unique<PortalNotificationCenter>(bus, playSound, timeout);
    return std::make_unique<FreedesktopNotificationCenter>(bus, identity, playSound, timeout);
}

} // namespace tickwise
