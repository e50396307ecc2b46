#pragma once

#include "demo/LoopbackConnection.h"

#include <QSslConfiguration>
#include <QTcpServer>
#include <QTcpSocket>

#include <memory>

namespace tickwise {

/// A small HTTP/1.1 server on 127.0.0.1, at a port of its own, that can misbehave down to the byte.
class LoopbackHttpServer : public QTcpServer
{
    Q_OBJECT

public:
    /// Speaks TLS when `tls` is given. `handler` makes the answers.
    LoopbackHttpServer(std::optional<QSslConfiguration> tls, Clock clock, LoopbackConnection::Handler handler);
    ~LoopbackHttpServer() override;

    /// Without a trailing slash.
    QString baseUrl() const;
    int openConnections() const { return static_cast<int>(m_connections.size()); }
    int connectionsSoFar() const { return m_accepted; }
    /// Bytes of bodies handed to sockets since the start.
    qint64 bodyBytesSent() const;
    /// Closes the open connections and goes on taking others.
    void closeConnections();
    /// Takes no connections any more and closes the open ones. Nobody else gets the port.
    void shutDown();

Q_SIGNALS:
    void connectionClosed(int connection);

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    void remove(const LoopbackConnection *connection, int number);

    std::optional<QSslConfiguration> m_tls;
    Clock m_clock;
    LoopbackConnection::Handler m_handler;
    std::vector<std::unique_ptr<LoopbackConnection>> m_connections;
    QTcpSocket m_placeholder; ///< at the port after the end; it refuses connections
    int m_accepted = 0;
    qint64 m_sentBefore = 0;
};

} // namespace tickwise
