#include "platform/statusitem/StatusItemHostWatcher.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>

namespace tickwise {

namespace {

QString watcherName()
{
    return QStringLiteral("org.kde.StatusNotifierWatcher");
}

} // namespace

StatusItemHostWatcher::StatusItemHostWatcher(const QDBusConnection &bus, const QString &currentDesktop,
                                             ProcessLookup lookup)
    : m_bus(bus)
    , m_currentDesktop(currentDesktop)
    , m_lookup(std::move(lookup))
{
    if (!m_bus.isConnected()) {
        QMetaObject::invokeMethod(
            this, [this] { reportNone(); }, Qt::QueuedConnection);
        return;
    }
    auto *names = new QDBusServiceWatcher(watcherName(), m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(names, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) { ownerChanged(owner); });
    askForOwner();
}

QDBusPendingCallWatcher *StatusItemHostWatcher::askBus(const QString &method, const QString &argument)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                                       QStringLiteral("org.freedesktop.DBus"), method);
    call << argument;
    return new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
}

void StatusItemHostWatcher::askForOwner()
{
    connect(askBus(QStringLiteral("GetNameOwner"), watcherName()), &QDBusPendingCallWatcher::finished, this,
            [this](QDBusPendingCallWatcher *finished) {
                finished->deleteLater();
                const QDBusPendingReply<QString> owner = *finished;
                // A change of owner that came first is newer than this answer.
                if (m_owner.isEmpty())
                    ownerChanged(owner.isError() ? QString() : owner.value());
            });
}

void StatusItemHostWatcher::ownerChanged(const QString &owner)
{
    m_owner = owner;
    if (owner.isEmpty())
        reportNone();
    else
        askForProcess(owner);
}

void StatusItemHostWatcher::askForProcess(const QString &owner)
{
    connect(askBus(QStringLiteral("GetConnectionUnixProcessID"), owner), &QDBusPendingCallWatcher::finished, this,
            [this, owner](QDBusPendingCallWatcher *finished) {
                finished->deleteLater();
                if (m_owner != owner)
                    return;
                const QDBusPendingReply<uint> pid = *finished;
                const WatcherProcess process = pid.isError() ? WatcherProcess() : m_lookup(pid.value());
                Q_EMIT hostChanged(hostFor(process, m_currentDesktop), process);
            });
}

void StatusItemHostWatcher::reportNone()
{
    Q_EMIT hostChanged(StatusItemHost::none, {});
}

} // namespace tickwise
