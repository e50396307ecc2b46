#pragma once

#include "demo/LoopbackHttp.h"

#include <QSslConfiguration>
#include <QSslSocket>
#include <QTimer>

namespace tickwise {

/// One connection of a loopback server: reads requests one after another and sends an answer to each.
class LoopbackConnection : public QObject
{
    Q_OBJECT

public:
    using Handler = std::function<LoopbackAnswer(const LoopbackRequest &)>;

    /// Takes over a socket of the system; speaks TLS when `tls` is given.
    LoopbackConnection(qintptr descriptor, const QSslConfiguration *tls, int number, Clock clock, Handler handler);
    ~LoopbackConnection() override;

    /// Closes the socket at once.
    void close() { m_socket.abort(); }
    /// Bytes of bodies handed to the socket.
    qint64 bodyBytesSent() const { return m_sentInAll; }

Q_SIGNALS:
    void closed();

private:
    void read();
    std::optional<LoopbackRequest> takeRequest();
    void answer(const LoopbackRequest &request);
    void begin();
    void pump();
    bool isBacklogged() const;
    qint64 bodyLength() const;
    qint64 sendLength() const;
    QByteArray piece(qint64 most) const;
    void sendBody(const QByteArray &bytes);
    void end();
    void resetConnection();
    QByteArray head() const;

    QSslSocket m_socket;
    int m_number;
    Clock m_clock;
    Handler m_handler;
    QByteArray m_unread;
    LoopbackAnswer m_answer;
    bool m_answering = false; ///< from the request until its answer is whole; for ever after a stall
    bool m_sending = false;   ///< the head is out
    qint64 m_sent = 0;
    qint64 m_sentInAll = 0;
    QTimer m_timer;
};

} // namespace tickwise
