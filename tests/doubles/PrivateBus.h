#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QTemporaryDir>

namespace tickwise::test {

/// A message bus of the test's own, with nothing on it and nothing that it could start but what it is told.
class PrivateBus
{
public:
    PrivateBus();
    /// A bus on which nobody may own these names.
    explicit PrivateBus(const QStringList &refusedNames);
    ~PrivateBus();
    PrivateBus(const PrivateBus &) = delete;
    PrivateBus &operator=(const PrivateBus &) = delete;

    /// Starts the bus at the same address as before; it runs after construction.
    void start();
    /// Ends the bus, as a crash of it does.
    void stop();
    /// The same for a bus that is paused, and without the signals of a bus that closes one connection after the other.
    void kill();

    /// Makes the bus deaf, and lets it go on.
    void pause();
    void resume();

    /// Lets the bus start the command when somebody calls the service.
    void addActivation(const QString &service, const QString &command);

    QString address() const;
    /// Each call opens another connection: one for the code under test, one for the service that it talks to.
    QDBusConnection connect();

    /// Waits until the bus has handled what the connection sent before, and the connection has what the bus sent it;
    /// false where the bus does not answer.
    static bool settle(const QDBusConnection &connection);

private:
    QTemporaryDir m_directory;
    QProcess m_daemon;
    QStringList m_connections;
};

} // namespace tickwise::test
