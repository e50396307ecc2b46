#include "platform/dbus/SessionBus.h"

#include "platform/dbus/DeafBus.h"
#include "support/DetachedWork.h"

#include <QUuid>

#include <algorithm>

namespace tickwise {

/// Hears that a connection has ended.
class DisconnectionListener : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void ended();
};

namespace {

/// The address of the bus that the environment names; empty where only QtDBus finds it.
QString environmentAddress()
{
    const QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return address.isEmpty() && !runtime.isEmpty() ? QStringLiteral("unix:path=%1/bus").arg(runtime) : address;
}

/// QtDBus waits for the answer of a bus that took its connection, and blocks all its other connections meanwhile.
bool isDeaf(const QString &address)
{
    return isDeafBus(address.isEmpty() ? environmentAddress() : address, SessionBus::longestSilence);
}

} // namespace

std::chrono::milliseconds SessionBus::delayAfter(std::chrono::milliseconds delay)
{
    return std::min<std::chrono::milliseconds>(delay * 2, slowestRetry);
}

SessionBus::SessionBus(QObject *parent)
    : SessionBus(QString(), parent)
{
}

SessionBus::SessionBus(const QString &address, QObject *parent)
    : QObject(parent)
    , m_address(address)
    , m_connection(QString())
{
    m_retry.setSingleShot(true);
    m_retry.setInterval(firstRetry);
    connect(&m_retry, &QTimer::timeout, this, &SessionBus::retry);
    connect(&m_probe, &QFutureWatcher<bool>::finished, this, [this] { finishRetry(m_probe.result()); });
    if (!isDeaf(m_address))
        open();
    if (!m_connection.isConnected())
        m_retry.start();
}

SessionBus::~SessionBus()
{
    QDBusConnection::disconnectFromBus(m_connection.name());
}

void SessionBus::open()
{
    m_listener = std::make_unique<DisconnectionListener>();
    connect(m_listener.get(), &DisconnectionListener::ended, this, &SessionBus::connectionLost);
    // QtDBus never reopens a connection under its name.
    const QString name = QUuid::createUuid().toString();
    m_connection = m_address.isEmpty() ? QDBusConnection::connectToBus(QDBusConnection::SessionBus, name)
                                       : QDBusConnection::connectToBus(m_address, name);
    if (!m_connection.isConnected()) {
        QDBusConnection::disconnectFromBus(name);
        return;
    }
    m_connection.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                         QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), m_listener.get(),
                         SIGNAL(ended()));
}

void SessionBus::connectionLost()
{
    Q_EMIT disconnected();
    QDBusConnection::disconnectFromBus(m_connection.name());
    m_retry.start(firstRetry);
}

void SessionBus::retry()
{
    m_probe.setFuture(runDetached([address = m_address] { return isDeaf(address); }));
}

void SessionBus::finishRetry(bool isDeaf)
{
    if (!isDeaf)
        open();
    if (m_connection.isConnected()) {
        Q_EMIT connected();
        return;
    }
    m_retry.start(delayAfter(m_retry.intervalAsDuration()));
}

} // namespace tickwise

#include "SessionBus.moc"
