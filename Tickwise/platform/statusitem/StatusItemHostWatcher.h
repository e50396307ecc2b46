#pragma once

#include "platform/statusitem/StatusItemHost.h"

#include <QDBusConnection>
#include <QObject>

#include <functional>

class QDBusPendingCallWatcher;

namespace tickwise {

/// Follows the owner of `org.kde.StatusNotifierWatcher` and tells which host it is. It never waits for the bus.
class StatusItemHostWatcher : public QObject
{
    Q_OBJECT

public:
    using ProcessLookup = std::function<WatcherProcess(qint64 pid)>;

    StatusItemHostWatcher(const QDBusConnection &bus, const QString &currentDesktop,
                          ProcessLookup lookup = watcherProcess);

Q_SIGNALS:
    /// A host has come, once for each new owner of the name, or (`none`) there is no owner, or no bus.
    void hostChanged(tickwise::StatusItemHost host, const tickwise::WatcherProcess &process);

private:
    void askForOwner();
    void ownerChanged(const QString &owner);
    void askForProcess(const QString &owner);
    void reportNone();
    QDBusPendingCallWatcher *askBus(const QString &method, const QString &argument);

    QDBusConnection m_bus;
    QString m_currentDesktop;
    ProcessLookup m_lookup;
    QString m_owner;
};

} // namespace tickwise
