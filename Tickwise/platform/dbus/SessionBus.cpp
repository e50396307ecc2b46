#include "platform/dbus/SessionBus.h"

#include <QUuid>

#include <algorithm>

namespace tickwise {

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
    // QtDBus never reopens a connection under its name.
    const QString name = QUuid::createUuid().toString();
    m_connection = m_address.isEmpty() ? QDBusConnection::connectToBus(QDBusConnection::SessionBus, name)
                                       : QDBusConnection::connectToBus(m_address, name);
    if (!m_connection.isConnected()) {
        QDBusConnection::disconnectFromBus(name);
        return;
    }
    m_connection.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                         QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                         SLOT(connectionLost()));
}

void SessionBus::connectionLost()
{
    Q_EMIT disconnected();
    QDBusConnection::disconnectFromBus(m_connection.name());
    m_retry.start(firstRetry);
}

void SessionBus::retry()
{
    open();
    if (m_connection.isConnected()) {
        Q_EMIT connected();
        return;
    }
    m_retry.start(delayAfter(m_retry.intervalAsDuration()));
}

} // namespace tickwise

// Here, and not among the library's others, so that a small program takes no more of the library than it uses.
#include "moc_SessionBus.cpp" // NOLINT(bugprone-suspicious-include)
