#pragma once

#include <QObject>
#include <QStringList>

namespace tickwise {

class SessionBus;

/// Keeps a second copy from running, by a lock file and by a name on the session bus, and receives what launchers and
/// second copies ask of the first through `org.freedesktop.Application`. Takes its name again on a bus that returns.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    enum class Role
    {
        first,
        alreadyRunning, ///< another copy runs; this one should end
    };

    /// `applicationId` is the bus name; `lockDirectory` is where the lock file goes (see `defaultLockDirectory`).
    /// `bus` has to outlive it.
    SingleInstance(QString applicationId, SessionBus &bus, QString lockDirectory, QObject *parent = nullptr);
    ~SingleInstance() override;

    /// Decides, within two seconds also when another copy hangs. A copy that has the name on this bus gets `addresses`
    /// and `activationToken`: without addresses it is asked to show itself. One that has only the lock, because it is
    /// on another bus or on none, is told nothing.
    Role claim(const QStringList &addresses, const QString &activationToken);

    /// $XDG_RUNTIME_DIR, or a folder of this user alone below the temporary folder; empty when neither can be had.
    static QString defaultLockDirectory(const QString &applicationId);

Q_SIGNALS:
    /// Somebody started the application again; `token` is empty where the desktop gave none.
    void activated(const QString &token);
    /// Addresses, as they were written, were opened with the application.
    void urlsOpened(const QStringList &addresses, const QString &token);
    /// An action of the desktop file was chosen.
    void actionActivated(const QString &action, const QString &token);

private:
    enum class NameRequest
    {
        granted,
        taken,
        noBus
    };

    NameRequest requestName();
    void forward(const QStringList &addresses, const QString &activationToken);
    bool takeLock();
    void requestNameAgain();

    QString m_applicationId;
    QString m_objectPath;
    SessionBus &m_bus;
    QString m_lockDirectory;
    int m_lockFile = -1;
};

} // namespace tickwise
