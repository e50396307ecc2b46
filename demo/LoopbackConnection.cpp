#include "demo/LoopbackConnection.h"

#include <sys/socket.h>

namespace tickwise {

namespace {

constexpr qsizetype longestHead = 64LL * 1024;
constexpr qint64 pieceBytes = 16LL * 1024;

LoopbackAnswer refusal(int status)
{
    LoopbackAnswer answer;
    answer.status = status;
    answer.framing = LoopbackAnswer::Framing::untilClose;
    return answer;
}

} // namespace

LoopbackConnection::LoopbackConnection(qintptr descriptor, const QSslConfiguration *tls, int number, Clock clock,
                                       Handler handler)
    : m_number(number)
    , m_clock(std::move(clock))
    , m_handler(std::move(handler))
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, [this] { m_sending ? pump() : begin(); });
    connect(&m_socket, &QIODevice::readyRead, this, &LoopbackConnection::read);
    connect(&m_socket, &QIODevice::bytesWritten, this, &LoopbackConnection::pump);
    connect(&m_socket, &QSslSocket::encryptedBytesWritten, this, &LoopbackConnection::pump);
    connect(&m_socket, &QAbstractSocket::disconnected, this, &LoopbackConnection::closed);
    m_socket.setSocketDescriptor(descriptor);
    // Head and body go out as separate writes: without this each answer would wait for a delayed acknowledgement.
    m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    if (tls) {
        m_socket.setSslConfiguration(*tls);
        m_socket.startServerEncryption();
    }
}

LoopbackConnection::~LoopbackConnection()
{
    m_socket.disconnect(this);
}

void LoopbackConnection::read()
{
    m_unread += m_socket.readAll();
    if (m_unread.size() > longestHead)
        m_socket.abort();
    if (m_answering)
        return;
    if (const auto request = takeRequest())
        answer(*request);
}

std::optional<LoopbackRequest> LoopbackConnection::takeRequest()
{
    const qsizetype end = m_unread.indexOf("\r\n\r\n");
    if (end < 0)
        return std::nullopt;
    const QList<QByteArray> lines = m_unread.left(end).split('\n');
    m_unread.remove(0, end + 4);
    const QList<QByteArray> words = lines.first().trimmed().split(' ');
    LoopbackRequest request;
    request.method = words.value(0);
    request.target = words.value(1);
    request.connection = m_number;
    request.time = m_clock();
    for (const QByteArray &line : lines.mid(1)) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0)
            request.headers.emplace_back(line.left(colon).trimmed(), line.mid(colon + 1).trimmed());
    }
    return request;
}

void LoopbackConnection::answer(const LoopbackRequest &request)
{
    m_answering = true;
    m_sending = false;
    m_sent = 0;
    m_answer = request.method == "GET" ? m_handler(request) : refusal(405);
    m_timer.start(m_answer.delay);
}

void LoopbackConnection::begin()
{
    if (m_answer.raw) {
        m_socket.write(*m_answer.raw);
        m_socket.disconnectFromHost();
        return;
    }
    m_sending = true;
    if (m_answer.withHead)
        m_socket.write(head());
    pump();
}

QByteArray LoopbackConnection::head() const
{
    QByteArray text = "HTTP/1.1 " + QByteArray::number(m_answer.status) + " Status\r\n";
    const auto add = [&text](const QByteArray &name, const QByteArray &value) { text += name + ": " + value + "\r\n"; };
    add("Content-Type", m_answer.contentType);
    for (const auto &[name, value] : m_answer.headers)
        add(name, value);
    switch (m_answer.framing) {
    case LoopbackAnswer::Framing::contentLength:
        add("Content-Length", QByteArray::number(m_answer.announcedLength.value_or(bodyLength())));
        break;
    case LoopbackAnswer::Framing::chunked:
        add("Transfer-Encoding", "chunked");
        break;
    case LoopbackAnswer::Framing::untilClose:
        add("Connection", "close");
        break;
    }
    return text + "\r\n";
}

qint64 LoopbackConnection::bodyLength() const
{
    return m_answer.body.size() + m_answer.filler;
}

qint64 LoopbackConnection::sendLength() const
{
    return m_answer.ending == LoopbackAnswer::Ending::whole ? bodyLength() : std::min(m_answer.endAfter, bodyLength());
}

QByteArray LoopbackConnection::piece(qint64 most) const
{
    const qint64 count = std::min(most, sendLength() - m_sent);
    const QByteArray part = m_answer.body.mid(m_sent, count);
    return part + QByteArray(count - part.size(), ' ');
}

// Bytes wait in the kernel's buffers and, at most a few pieces, here: a client that stops reading stops this side too.
bool LoopbackConnection::isBacklogged() const
{
    return m_socket.bytesToWrite() + m_socket.encryptedBytesToWrite() > 4 * pieceBytes;
}

void LoopbackConnection::pump()
{
    if (!m_answering || !m_sending || m_timer.isActive())
        return;
    while (m_sent < sendLength() && !isBacklogged()) {
        sendBody(piece(m_answer.dripBytes > 0 ? m_answer.dripBytes : pieceBytes));
        if (m_answer.dripBytes > 0 && m_sent < sendLength()) {
            m_timer.start(m_answer.dripEvery);
            return;
        }
    }
    if (m_sent >= sendLength())
        end();
}

void LoopbackConnection::sendBody(const QByteArray &bytes)
{
    m_sent += bytes.size();
    m_sentInAll += bytes.size();
    if (m_answer.framing == LoopbackAnswer::Framing::chunked)
        m_socket.write(QByteArray::number(bytes.size(), 16) + "\r\n" + bytes + "\r\n");
    else
        m_socket.write(bytes);
}

void LoopbackConnection::end()
{
    m_sending = false;
    switch (m_answer.ending) {
    case LoopbackAnswer::Ending::stall:
        return;
    case LoopbackAnswer::Ending::reset:
        resetConnection();
        return;
    case LoopbackAnswer::Ending::close:
        m_socket.disconnectFromHost();
        return;
    case LoopbackAnswer::Ending::whole:
        break;
    }
    if (m_answer.framing == LoopbackAnswer::Framing::chunked)
        m_socket.write("0\r\n\r\n");
    if (m_answer.framing == LoopbackAnswer::Framing::untilClose) {
        m_socket.disconnectFromHost();
        return;
    }
    m_answering = false;
    // What a client sent ahead is answered now.
    QMetaObject::invokeMethod(this, &LoopbackConnection::read, Qt::QueuedConnection);
}

void LoopbackConnection::resetConnection()
{
    m_socket.flush();
    const linger noLinger{1, 0};
    setsockopt(static_cast<int>(m_socket.socketDescriptor()), SOL_SOCKET, SO_LINGER, &noLinger, sizeof noLinger);
    m_socket.abort();
}

} // namespace tickwise
