#pragma once

#include "platform/dbus/SessionBus.h"
#include "platform/statusitem/StatusItemHost.h"

#include <QDBusServiceWatcher>
#include <QObject>

#include <functional>
#include <memory>

namespace tickwise {

/// Follows the owner of `org.kde.StatusNotifierWatcher` and tells which host it is. It never waits for the bus.
class StatusItemHostWatcher : public QObject
{
    Q_OBJECT

public:
    using ProcessLookup = std::function<WatcherProcess(qint64 pid)>;

    /// The bus outlives the watcher.
    StatusItemHostWatcher(SessionBus &bus, const QString &currentDesktop, ProcessLookup lookup = watcherProcess);

Q_SIGNALS:
    /// A host has come, once for each new owner of the name, or (`none`) there is no owner, or no bus.
    void hostChanged(tickwise::StatusItemHost host, const tickwise::WatcherProcess &process);

private:
    void followBus();
    void busEnded();
    void askForOwner();
    void ownerChanged(const QString &owner);
    void askForProcess(const QString &owner);
    void reportNone();

    SessionBus &m_bus;
    QString m_currentDesktop;
    ProcessLookup m_lookup;
    QString m_owner;
    std::unique_ptr<QDBusServiceWatcher> m_names; ///< of the current connection; calls under way end with it
};

} // namespace tickwise
