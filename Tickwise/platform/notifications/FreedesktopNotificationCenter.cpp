#include "platform/notifications/FreedesktopNotificationCenter.h"

#include "platform/dbus/BusCall.h"

#include <algorithm>

namespace tickwise {

namespace {

constexpr std::size_t mostShown = 64; ///< remembered for their clicks

QString serviceName()
{
    return QStringLiteral("org.freedesktop.Notifications");
}

QString objectPath()
{
    return QStringLiteral("/org/freedesktop/Notifications");
}

} // namespace

FreedesktopNotifications::FreedesktopNotifications(const QDBusConnection &bus, std::chrono::milliseconds timeout)
    : QDBusAbstractInterface(serviceName(), objectPath(), "org.freedesktop.Notifications", bus, nullptr)
{
    setTimeout(static_cast<int>(timeout.count()));
}

FreedesktopNotificationCenter::Link::Link(const QDBusConnection &bus, std::chrono::milliseconds timeout)
    : service(bus, timeout)
    , owner(serviceName(), bus, QDBusServiceWatcher::WatchForOwnerChange)
{
}

FreedesktopNotificationCenter::FreedesktopNotificationCenter(SessionBus &bus, NotificationIdentity identity,
                                                             std::function<void()> playSound,
                                                             std::chrono::milliseconds timeout, QObject *parent)
    : UserNotificationCenter(parent)
    , m_bus(bus)
    , m_identity(std::move(identity))
    , m_playSound(std::move(playSound))
    , m_timeout(timeout)
{
    connect(&bus, &SessionBus::connected, this, &FreedesktopNotificationCenter::openLink);
    connect(&bus, &SessionBus::disconnected, this, &FreedesktopNotificationCenter::closeLink);
    if (bus.connection().isConnected())
        openLink();
}

void FreedesktopNotificationCenter::openLink()
{
    m_link = std::make_unique<Link>(m_bus.connection(), m_timeout);
    connect(&m_link->owner, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &newOwner) { followService(newOwner); });
    const FreedesktopNotifications *const service = &m_link->service;
    connect(service, &FreedesktopNotifications::ActionInvoked, this, &FreedesktopNotificationCenter::invoke);
    connect(service, &FreedesktopNotifications::NotificationClosed, this, &FreedesktopNotificationCenter::forget);
    connect(service, &FreedesktopNotifications::ActivationToken, this, [this](uint id, const QString &token) {
        if (Shown *const notification = shown(id))
            notification->activationToken = token;
    });
}

void FreedesktopNotificationCenter::closeLink()
{
    m_link.reset();
    followService(QString());
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
    if (!m_link)
        known = failure(noMessageBus());
    else if (m_capabilities)
        known = *m_capabilities;
    if (known) {
        QMetaObject::invokeMethod(
            this, [known = std::move(*known), use = std::move(use)] { use(known); }, Qt::QueuedConnection);
        return;
    }
    m_waiting.push_back(std::move(use));
    if (!m_isAsking)
        askCapabilities();
}

void FreedesktopNotificationCenter::askCapabilities()
{
    m_isAsking = true;
    sendCall<Capabilities>(
        m_bus.connection(), serviceCall(QStringLiteral("GetCapabilities"), {}), this,
        [this, query = ++m_queries](const Result<Capabilities> &answer) { receiveCapabilities(query, answer); },
        m_timeout);
}

void FreedesktopNotificationCenter::receiveCapabilities(int query, const Result<Capabilities> &capabilities)
{
    if (query != m_queries)
        return;
    m_isAsking = false;
    if (capabilities)
        m_capabilities = *capabilities;
    for (const auto &use : std::exchange(m_waiting, {}))
        use(capabilities);
}

void FreedesktopNotificationCenter::send(const UserNotification &notification, const Capabilities &capabilities,
                                         const Completion<void> &done)
{
    const bool playsSound = capabilities.contains(QStringLiteral("sound"));
    const QDBusMessage call =
        serviceCall(QStringLiteral("Notify"), notifyArguments(notification, m_identity, capabilities));
    sendCall<uint>(
        m_bus.connection(), call, this,
        [this, playsSound, done, identifier = notification.identifier](const Result<uint> &id) {
            if (!id) {
                done(tl::unexpected(id.error()));
                return;
            }
            remember(*id, identifier);
            if (!playsSound)
                m_playSound();
            done({});
        },
        m_timeout);
}

QDBusMessage FreedesktopNotificationCenter::serviceCall(const QString &method, const QVariantList &arguments) const
{
    QDBusMessage call = QDBusMessage::createMethodCall(serviceName(), objectPath(), serviceName(), method);
    call.setArguments(arguments);
    return call;
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
