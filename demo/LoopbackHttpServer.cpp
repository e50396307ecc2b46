#include "demo/LoopbackHttpServer.h"

#include <QHostAddress>
#include <QNetworkProxy>

namespace tickwise {

LoopbackHttpServer::LoopbackHttpServer(std::optional<QSslConfiguration> tls, Clock clock,
                                       LoopbackConnection::Handler handler)
    : m_tls(std::move(tls))
    , m_clock(std::move(clock))
    , m_handler(std::move(handler))
{
    setProxy(QNetworkProxy::NoProxy);
    if (!listen(QHostAddress::LocalHost))
        qFatal("No port on 127.0.0.1: %s", qUtf8Printable(errorString()));
}

LoopbackHttpServer::~LoopbackHttpServer()
{
    for (const auto &connection : m_connections)
        disconnect(connection.get(), nullptr, this, nullptr);
}

QString LoopbackHttpServer::baseUrl() const
{
    return QStringLiteral("%1://127.0.0.1:%2")
        .arg(m_tls ? QStringLiteral("https") : QStringLiteral("http"))
        .arg(serverPort());
}

qint64 LoopbackHttpServer::bodyBytesSent() const
{
    qint64 sum = m_sentBefore;
    for (const auto &connection : m_connections)
        sum += connection->bodyBytesSent();
    return sum;
}

void LoopbackHttpServer::shutDown()
{
    const quint16 port = serverPort();
    close();
    closeConnections();
    m_placeholder.setProxy(QNetworkProxy::NoProxy);
    if (!m_placeholder.bind(QHostAddress::LocalHost, port, QAbstractSocket::ReuseAddressHint))
        qFatal("Port %d is gone: %s", port, qUtf8Printable(m_placeholder.errorString()));
}

void LoopbackHttpServer::closeConnections()
{
    while (!m_connections.empty()) {
        LoopbackConnection *const connection = m_connections.front().get();
        connection->close();
        remove(connection, 0);
    }
}

void LoopbackHttpServer::incomingConnection(qintptr descriptor)
{
    const int number = ++m_accepted;
    auto connection =
        std::make_unique<LoopbackConnection>(descriptor, m_tls ? &*m_tls : nullptr, number, m_clock, m_handler);
    connect(connection.get(), &LoopbackConnection::closed, this,
            [this, number, raw = connection.get()] { remove(raw, number); });
    m_connections.push_back(std::move(connection));
}

void LoopbackHttpServer::remove(const LoopbackConnection *connection, int number)
{
    const auto at = std::find_if(m_connections.begin(), m_connections.end(),
                                 [connection](const auto &owned) { return owned.get() == connection; });
    if (at == m_connections.end())
        return;
    m_sentBefore += connection->bodyBytesSent();
    // It is still in its own signal.
    at->release()->deleteLater();
    m_connections.erase(at);
    Q_EMIT connectionClosed(number);
}

} // namespace tickwise
