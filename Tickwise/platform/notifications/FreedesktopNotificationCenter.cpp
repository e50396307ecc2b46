#include "platform/notifications/FreedesktopNotificationCenter.h"

#include "platform/dbus/DBusFailure.h"

#include <QDBusPendingReply>

#include <algorithm>

namespace tickwise {

namespace {

constexpr std::size_t mostShown = 64; ///< remembered for their clicks

QString serviceName()
{
    return QStringLiteral("org.freedesktop.Notifications");
}

} // namespace

FreedesktopNotifications::FreedesktopNotifications(const QDBusConnection &bus, std::chrono::milliseconds timeout)
    : QDBusAbstractInterface(serviceName(), QStringLiteral("/org/freedesktop/Notifications"),
                             "org.freedesktop.Notifications", bus, nullptr)
{
    setTimeout(static_cast<int>(timeout.count()));
}

FreedesktopNotificationCenter::FreedesktopNotificationCenter(const QDBusConnection &bus, NotificationIdentity identity,
                                                             std::function<void()> playSound,
                                                             std::chrono::milliseconds timeout, QObject *parent)
    : UserNotificationCenter(parent)
    , m_bus(bus)
    , m_identity(std::move(identity))
    , m_playSound(std::move(playSound))
    , m_service(bus, timeout)
    , m_serviceWatcher(serviceName(), bus, QDBusServiceWatcher::WatchForOwnerChange)
{
    connect(&m_serviceWatcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &newOwner) { followService(newOwner); });
    connect(&m_service, &FreedesktopNotifications::ActionInvoked, this, &FreedesktopNotificationCenter::invoke);
    connect(&m_service, &FreedesktopNotifications::NotificationClosed, this, &FreedesktopNotificationCenter::forget);
    connect(&m_service, &FreedesktopNotifications::ActivationToken, this, [this](uint id, const QString &token) {
        if (Shown *const notification = shown(id))
            notification->activationToken = token;
    });
}

void FreedesktopNotificationCenter::requestAuthorization(Completion<void> done)
{
    withCapabilities([done = std::move(done)](const Result<Capabilities> &capabilities) {
        done(capabilities.map([](const Capabilities &) {}));
    });
}

void FreedesktopNotificationCenter::add(const UserNotification &notification, Completion<void> done)
{
    withCapabilities([this, notification, done = std::move(done)](const Result<Capabilities> &capabilities) {
        if (!capabilities) {
            done(tl::unexpected(capabilities.error()));
            return;
        }
        send(notification, *capabilities, done);
    });
}

void FreedesktopNotificationCenter::withCapabilities(std::function<void(const Result<Capabilities> &)> use)
{
    std::optional<Result<Capabilities>> known;
    if (!m_bus.isConnected())
        known = failure(noMessageBus());
    else if (m_capabilities)
        known = *m_capabilities;
    if (known) {
        QMetaObject::invokeMethod(
            this, [known = std::move(*known), use = std::move(use)] { use(known); }, Qt::QueuedConnection);
        return;
    }
    m_waiting.push_back(std::move(use));
    if (!m_query)
        askCapabilities();
}

void FreedesktopNotificationCenter::askCapabilities()
{
    m_query = new QDBusPendingCallWatcher(m_service.asyncCall(QStringLiteral("GetCapabilities")), this);
    connect(m_query, &QDBusPendingCallWatcher::finished, this, &FreedesktopNotificationCenter::receiveCapabilities);
}

void FreedesktopNotificationCenter::receiveCapabilities(QDBusPendingCallWatcher *query)
{
    query->deleteLater();
    if (query != m_query)
        return;
    m_query = nullptr;
    const QDBusPendingReply<QStringList> reply = *query;
    Result<Capabilities> result = failure(errorFromDBus(reply.error()));
    if (reply.isValid())
        result = m_capabilities.emplace(reply.value());
    for (const auto &use : std::exchange(m_waiting, {}))
        use(result);
}

void FreedesktopNotificationCenter::send(const UserNotification &notification, const Capabilities &capabilities,
                                         const Completion<void> &done)
{
    const bool playsSound = capabilities.contains(QStringLiteral("sound"));
    auto *const call = new QDBusPendingCallWatcher(
        m_service.asyncCallWithArgumentList(QStringLiteral("Notify"),
                                            notifyArguments(notification, m_identity, capabilities)),
        this);
    connect(call, &QDBusPendingCallWatcher::finished, this,
            [this, playsSound, done, identifier = notification.identifier](QDBusPendingCallWatcher *finished) {
                finished->deleteLater();
                const QDBusPendingReply<uint> reply = *finished;
                if (!reply.isValid()) {
                    done(failure(errorFromDBus(reply.error())));
                    return;
                }
                remember(reply.value(), identifier);
                if (!playsSound)
                    m_playSound();
                done({});
            });
}

void FreedesktopNotificationCenter::followService(const QString &newOwner)
{
    m_capabilities.reset();
    m_shown.clear();
    // Where it only went, the question under way ends by itself.
    if (!newOwner.isEmpty())
        askCapabilities();
}

void FreedesktopNotificationCenter::remember(uint id, const QString &identifier)
{
    forget(id);
    m_shown.push_back({id, identifier, {}});
    if (m_shown.size() > mostShown)
        m_shown.pop_front();
}

FreedesktopNotificationCenter::Shown *FreedesktopNotificationCenter::shown(uint id)
{
    const auto found = std::ranges::find(m_shown, id, &Shown::id);
    return found == m_shown.end() ? nullptr : &*found;
}

void FreedesktopNotificationCenter::invoke(uint id, const QString &action)
{
    const Shown *const notification = shown(id);
    if (notification && action == QStringLiteral("default"))
        Q_EMIT activated(QString(notification->identifier), QString(notification->activationToken));
}

void FreedesktopNotificationCenter::forget(uint id)
{
    std::erase_if(m_shown, [id](const Shown &notification) { return notification.id == id; });
}

} // namespace tickwise
