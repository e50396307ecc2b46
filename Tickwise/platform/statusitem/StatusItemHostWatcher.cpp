#include "platform/statusitem/StatusItemHostWatcher.h"

#include "platform/dbus/BusCall.h"

namespace tickwise {

namespace {

QString watcherName()
{
    return QStringLiteral("org.kde.StatusNotifierWatcher");
}

} // namespace

StatusItemHostWatcher::StatusItemHostWatcher(SessionBus &bus, const QString &currentDesktop, ProcessLookup lookup)
    : m_bus(bus)
    , m_currentDesktop(currentDesktop)
    , m_lookup(std::move(lookup))
{
    connect(&bus, &SessionBus::connected, this, &StatusItemHostWatcher::followBus);
    connect(&bus, &SessionBus::disconnected, this, &StatusItemHostWatcher::busEnded);
    if (bus.connection().isConnected())
        followBus();
    else
        QMetaObject::invokeMethod(this, &StatusItemHostWatcher::reportNone, Qt::QueuedConnection);
}

void StatusItemHostWatcher::followBus()
{
    m_names = std::make_unique<QDBusServiceWatcher>(watcherName(), m_bus.connection(),
                                                    QDBusServiceWatcher::WatchForOwnerChange);
    connect(m_names.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) { ownerChanged(owner); });
    askForOwner();
}

void StatusItemHostWatcher::busEnded()
{
    m_names.reset();
    ownerChanged(QString());
}

void StatusItemHostWatcher::askForOwner()
{
    sendCall<QString>(m_bus.connection(), busCall(QStringLiteral("GetNameOwner"), {watcherName()}), m_names.get(),
                      [this](const Result<QString> &owner) {
                          // A change of owner that came first is newer than this answer.
                          if (m_owner.isEmpty())
                              ownerChanged(owner.value_or(QString()));
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
    sendCall<uint>(m_bus.connection(), busCall(QStringLiteral("GetConnectionUnixProcessID"), {owner}), m_names.get(),
                   [this, owner](const Result<uint> &pid) {
                       if (m_owner != owner)
                           return;
                       const WatcherProcess process = pid ? m_lookup(*pid) : WatcherProcess();
                       Q_EMIT hostChanged(hostFor(process, m_currentDesktop), process);
                   });
}

void StatusItemHostWatcher::reportNone()
{
    Q_EMIT hostChanged(StatusItemHost::none, {});
}

} // namespace tickwise
