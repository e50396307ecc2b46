#include "platform/network/CurlSession.h"

#include <QSocketNotifier>
#include <QTimer>

#include <csignal>
#include <new>

#include <poll.h>

namespace tickwise {

namespace {

constexpr long keptConnections = 10;
constexpr long connectionsToAHost = 6;
constexpr std::size_t keptHandles = 2;
constexpr int recordsAtOnce = 16; // a quarter of a megabyte

} // namespace

CurlSession::CurlSession()
    : m_timer(new QTimer)
{
    // A server that closes its connection ends what is written to it, not the process.
    std::signal(SIGPIPE, SIG_IGN);
    if (curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK)
        throw std::bad_alloc();
    m_multi = curl_multi_init();
    if (!m_multi)
        throw std::bad_alloc();
    curl_multi_setopt(m_multi, CURLMOPT_SOCKETFUNCTION, &CurlSession::onSocket);
    curl_multi_setopt(m_multi, CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(m_multi, CURLMOPT_TIMERFUNCTION, &CurlSession::onTimer);
    curl_multi_setopt(m_multi, CURLMOPT_TIMERDATA, this);
    curl_multi_setopt(m_multi, CURLMOPT_MAXCONNECTS, keptConnections);
    curl_multi_setopt(m_multi, CURLMOPT_MAX_HOST_CONNECTIONS, connectionsToAHost);
    m_timer->setSingleShot(true);
    QObject::connect(m_timer.get(), &QTimer::timeout, m_timer.get(), [this] { act(CURL_SOCKET_TIMEOUT, 0); });
}

CurlSession::~CurlSession()
{
    while (!m_exchanges.empty())
        remove(m_exchanges.back().get());
    for (CURL *easy : m_spare)
        curl_easy_cleanup(easy);
    curl_multi_cleanup(m_multi);
    for (const auto &[socket, watch] : m_watches)
        this->watch(socket, CURL_POLL_REMOVE);
    m_timer->disconnect();
    m_timer->stop();
    curl_global_cleanup();
}

CurlTransfer *CurlSession::start(const CurlRequest &request, ExchangeReceiver &receiver)
{
    CURL *easy = nullptr;
    if (m_spare.empty()) {
        easy = curl_easy_init();
        if (!easy)
            throw std::bad_alloc();
    } else {
        easy = m_spare.back();
        m_spare.pop_back();
    }
    m_exchanges.push_back(std::make_unique<CurlTransfer>(easy, request, receiver));
    CurlTransfer *const exchange = m_exchanges.back().get();
    m_new.push_back(exchange);
    if (!m_acting)
        beginNew();
    return exchange;
}

void CurlSession::beginNew()
{
    for (CurlTransfer *exchange : std::exchange(m_new, {})) {
        if (!exchange->isPrepared() || curl_multi_add_handle(m_multi, exchange->easy()) != CURLM_OK)
            m_stillborn.push_back(exchange);
    }
    if (m_stillborn.empty())
        return;
    // Its end is told later, as every end.
    const auto settleLater = [session = weak_from_this()] {
        if (const auto self = session.lock())
            self->settle();
    };
    QMetaObject::invokeMethod(m_timer.get(), settleLater, Qt::QueuedConnection);
}

void CurlSession::drop(CurlTransfer *exchange)
{
    exchange->forgetReceiver();
    if (!m_acting)
        remove(exchange);
}

void CurlSession::remove(const CurlTransfer *exchange)
{
    CURL *const easy = exchange->easy();
    curl_multi_remove_handle(m_multi, easy);
    std::erase(m_new, exchange);
    std::erase(m_stillborn, exchange);
    std::erase_if(m_exchanges, [exchange](const auto &owned) { return owned.get() == exchange; });
    if (m_spare.size() < keptHandles)
        m_spare.push_back(easy);
    else
        curl_easy_cleanup(easy);
}

int CurlSession::onSocket(CURL *, curl_socket_t socket, int what, void *session, void *)
{
    static_cast<CurlSession *>(session)->watch(socket, what);
    return 0;
}

int CurlSession::onTimer(CURLM *, long milliseconds, void *session)
{
    const auto &timer = static_cast<CurlSession *>(session)->m_timer;
    if (milliseconds < 0)
        timer->stop();
    else
        timer->start(std::chrono::milliseconds(milliseconds));
    return 0;
}

// Notifiers are switched, not made anew for each exchange; one that is off may outlive its socket.
void CurlSession::watch(curl_socket_t socket, int what)
{
    Watch &watch = m_watches[socket];
    const auto update = [this, socket](auto &notifier, bool wanted, bool forReading) {
        if (wanted && !notifier)
            notifier = this->notifier(socket, forReading);
        if (notifier)
            notifier->setEnabled(wanted);
    };
    update(watch.read, what == CURL_POLL_IN || what == CURL_POLL_INOUT, true);
    update(watch.write, what == CURL_POLL_OUT || what == CURL_POLL_INOUT, false);
}

std::unique_ptr<QSocketNotifier, CurlSession::LaterDeletion> CurlSession::notifier(curl_socket_t socket,
                                                                                   bool forReading)
{
    std::unique_ptr<QSocketNotifier, LaterDeletion> made(
        new QSocketNotifier(socket, forReading ? QSocketNotifier::Read : QSocketNotifier::Write));
    QObject::connect(made.get(), &QSocketNotifier::activated, made.get(),
                     [this, socket, events = forReading ? CURL_CSELECT_IN : CURL_CSELECT_OUT] { act(socket, events); });
    return made;
}

void CurlSession::act(curl_socket_t socket, int events)
{
    const std::shared_ptr<CurlSession> self = shared_from_this();
    m_acting = true;
    int running = 0;
    curl_multi_socket_action(m_multi, socket, events, &running);
    // libcurl takes one TLS record at a time; going through the event loop for the next one costs as much as the
    // record.
    for (int more = recordsAtOnce; more > 0 && events == CURL_CSELECT_IN && hasMore(socket); --more)
        curl_multi_socket_action(m_multi, socket, events, &running);
    m_acting = false;
    settle();
}

bool CurlSession::hasMore(curl_socket_t socket) const
{
    const auto watch = m_watches.find(socket);
    if (watch == m_watches.end() || !watch->second.read || !watch->second.read->isEnabled())
        return false;
    pollfd state{socket, POLLIN, 0};
    return poll(&state, 1, 0) == 1;
}

void CurlSession::settle()
{
    std::vector<const CurlTransfer *> dropped;
    for (const auto &exchange : m_exchanges) {
        if (!exchange->receiver())
            dropped.push_back(exchange.get());
    }
    for (const CurlTransfer *exchange : dropped)
        remove(exchange);
    beginNew();
    tellEnds();
}

void CurlSession::tellEnds()
{
    while (!m_stillborn.empty())
        end(m_stillborn.back()->easy(), CURLE_FAILED_INIT);
    int left = 0;
    while (const CURLMsg *message = curl_multi_info_read(m_multi, &left)) {
        if (message->msg == CURLMSG_DONE)
            end(message->easy_handle, message->data.result);
    }
}

void CurlSession::end(CURL *easy, CURLcode result)
{
    const CurlTransfer *const exchange = CurlTransfer::of(easy);
    ExchangeReceiver *const receiver = exchange->receiver();
    NetworkFailure failure = exchange->failure(result);
    remove(exchange);
    if (receiver)
        receiver->takeEnd(std::move(failure));
}

} // namespace tickwise
