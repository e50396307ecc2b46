#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QTemporaryDir>

namespace tickwise::test {

/// A message bus of the test's own, without any service that it could start.
class PrivateBus
{
public:
    PrivateBus();
    ~PrivateBus();

    bool isRunning() const { return !m_address.isEmpty(); }

    /// A new connection each time.
    QDBusConnection connect();

    /// Makes the bus deaf, or lets it go on.
    void pause();
    void resume();

private:
    QTemporaryDir m_directory;
    QProcess m_daemon;
    QString m_address;
    QStringList m_connections;
};

} // namespace tickwise::test
