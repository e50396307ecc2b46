#pragma once

#include <QDBusConnection>
#include <QList>
#include <QObject>
#include <QUrl>

namespace tickwise {

/// Keeps a second copy from running, and hears what launchers and second copies ask of the first:
/// `org.freedesktop.Application` under the application's id, or a lock file where there is no session bus.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    enum class Role
    {
        first,
        alreadyRunning, ///< another copy runs and was asked to show itself; this one should end
    };

    /// `applicationId` is the bus name; `lockDirectory` is where the lock file goes (see `defaultLockDirectory`).
    SingleInstance(QString applicationId, QDBusConnection bus, QString lockDirectory, QObject *parent = nullptr);
    ~SingleInstance() override;

    /// Decides, within two seconds also when another copy hangs. The first copy gets `urls` and `activationToken`:
    /// without URLs it is asked to show itself.
    Role claim(const QList<QUrl> &urls, const QString &activationToken);

    /// $XDG_RUNTIME_DIR, or a folder of this user alone below the temporary folder; empty when neither can be had.
    static QString defaultLockDirectory(const QString &applicationId);

Q_SIGNALS:
    /// Somebody started the application again; `token` is empty where the desktop gave none.
    void activated(const QString &token);
    /// Addresses were opened with the application.
    void urlsOpened(const QList<QUrl> &urls, const QString &token);

private:
    enum class NameRequest
    {
        granted,
        taken,
        noBus
    };

    NameRequest requestName();
    void forward(const QList<QUrl> &urls, const QString &activationToken);
    Role claimLock();

    QString m_applicationId;
    QString m_objectPath;
    QDBusConnection m_bus;
    QString m_lockDirectory;
    int m_lockFile = -1;
};

} // namespace tickwise
