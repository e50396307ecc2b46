#pragma once

#include <QDBusConnection>
#include <QFutureWatcher>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <memory>

namespace tickwise {

class DisconnectionListener;

/// The process's own connection to the session bus, opened anew when the bus ends and comes back. A connection that has
/// ended stays dead, and with it its bus names, exported objects, signal connections and service watchers: who keeps
/// any of these drops them on `disconnected` and makes them again on `connected`. Main thread only.
class SessionBus : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds firstRetry{100};
    static constexpr std::chrono::seconds slowestRetry{60};
    /// A bus that takes a connection and does not answer for so long counts as none.
    static constexpr std::chrono::seconds longestSilence{1};

    /// How long to wait after a try that came `delay` after the one before.
    static std::chrono::milliseconds delayAfter(std::chrono::milliseconds delay);

    /// Opens the bus that the environment names. Blocks for `longestSilence` at most; no later try blocks.
    explicit SessionBus(QObject *parent = nullptr);
    /// Opens the bus at a D-Bus address.
    explicit SessionBus(const QString &address, QObject *parent = nullptr);
    /// Closes the connection.
    ~SessionBus() override;

    /// The current connection; an unconnected one while there is no bus. Do not keep it beyond `disconnected`.
    const QDBusConnection &connection() const { return m_connection; }

Q_SIGNALS:
    /// A new connection is in place. Not emitted for the one that the constructor opens.
    void connected();
    /// The bus has ended. It is tried again after `firstRetry`, then at doubled intervals up to `slowestRetry`.
    void disconnected();

private:
    void open();
    void connectionLost();
    void retry();
    void finishRetry(bool isDeaf);

    QString m_address;
    QDBusConnection m_connection;
    /// Goes before the connection: QtDBus's own thread visits the receivers that a connection has when it is released.
    std::unique_ptr<DisconnectionListener> m_listener;
    QTimer m_retry;
    QFutureWatcher<bool> m_probe; ///< whether the bus is deaf, found out on another thread
};

} // namespace tickwise
