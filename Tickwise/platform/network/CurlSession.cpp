#include "platform/network/CurlSession.h"

#include <QSocketNotifier>
#include <QTimer>

#include <csignal>
#include <new>

#include <poll.h>

// libcurl brings GnuTLS for protocols that are not used here. It builds its tables at the start of every program unless
// the program has this function, which GnuTLS documents for programs that link it indirectly (GNUTLS_SKIP_GLOBAL_INIT).
extern "C" Q_DECL_EXPORT int _gnutls_global_init_skip() // NOLINT(bugprone-reserved-identifier): GnuTLS gives the name
{
    return 1;
}

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
    // Writing to a connection that the server closed must fail, not kill the process.
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
    QObject::connect(m_timer.get(), &QTimer::timeout, m_timer.get(), [this] { runLibcurl(CURL_SOCKET_TIMEOUT, 0); });
}

CurlSession::~CurlSession()
{
    while (!m_transfers.empty())
        remove(m_transfers.back().get());
    for (CURL *easy : m_spareHandles)
        curl_easy_cleanup(easy);
    curl_multi_cleanup(m_multi);
    for (const auto &[socket, watch] : m_watches)
        this->watch(socket, CURL_POLL_REMOVE);
    m_timer->disconnect();
    m_timer->stop();
    curl_global_cleanup();
}

CurlTransfer *CurlSession::start(const TransferRequest &request, TransferReceiver &receiver)
{
    CURL *easy = nullptr;
    if (m_spareHandles.empty()) {
        easy = curl_easy_init();
        if (!easy)
            throw std::bad_alloc();
    } else {
        easy = m_spareHandles.back();
        m_spareHandles.pop_back();
    }
    m_transfers.push_back(std::make_unique<CurlTransfer>(easy, request, receiver));
    CurlTransfer *const transfer = m_transfers.back().get();
    m_pending.push_back(transfer);
    if (!m_isInsideLibcurl)
        addPending();
    return transfer;
}

void CurlSession::addPending()
{
    for (CurlTransfer *transfer : std::exchange(m_pending, {})) {
        if (!transfer->isPrepared() || curl_multi_add_handle(m_multi, transfer->easy()) != CURLM_OK)
            m_refused.push_back(transfer);
    }
    if (m_refused.empty())
        return;
    // The end of a transfer comes from the event loop, as every end.
    const auto finishWorkLater = [session = weak_from_this()] {
        if (const auto self = session.lock())
            self->finishWork();
    };
    QMetaObject::invokeMethod(m_timer.get(), finishWorkLater, Qt::QueuedConnection);
}

void CurlSession::drop(CurlTransfer *transfer)
{
    transfer->forgetReceiver();
    if (!m_isInsideLibcurl)
        remove(transfer);
}

void CurlSession::remove(const CurlTransfer *transfer)
{
    CURL *const easy = transfer->easy();
    curl_multi_remove_handle(m_multi, easy);
    std::erase(m_pending, transfer);
    std::erase(m_refused, transfer);
    std::erase_if(m_transfers, [transfer](const auto &owned) { return owned.get() == transfer; });
    if (m_spareHandles.size() < keptHandles)
        m_spareHandles.push_back(easy);
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

// Notifiers are enabled and disabled, not recreated for each transfer; a disabled one may outlive its socket.
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
    QObject::connect(
        made.get(), &QSocketNotifier::activated, made.get(),
        [this, socket, events = forReading ? CURL_CSELECT_IN : CURL_CSELECT_OUT] { runLibcurl(socket, events); });
    return made;
}

void CurlSession::runLibcurl(curl_socket_t socket, int events)
{
    const std::shared_ptr<CurlSession> self = shared_from_this();
    m_isInsideLibcurl = true;
    int running = 0;
    curl_multi_socket_action(m_multi, socket, events, &running);
    // libcurl reads one TLS record at a time; a turn of the event loop for each would cost as much as the record.
    for (int more = recordsAtOnce; more > 0 && events == CURL_CSELECT_IN && isReadable(socket); --more)
        curl_multi_socket_action(m_multi, socket, events, &running);
    m_isInsideLibcurl = false;
    finishWork();
}

bool CurlSession::isReadable(curl_socket_t socket) const
{
    const auto watch = m_watches.find(socket);
    if (watch == m_watches.end() || !watch->second.read || !watch->second.read->isEnabled())
        return false;
    pollfd state{socket, POLLIN, 0};
    return poll(&state, 1, 0) == 1;
}

void CurlSession::finishWork()
{
    std::vector<const CurlTransfer *> dropped;
    for (const auto &transfer : m_transfers) {
        if (!transfer->receiver())
            dropped.push_back(transfer.get());
    }
    for (const CurlTransfer *transfer : dropped)
        remove(transfer);
    addPending();
    reportEnds();
}

void CurlSession::reportEnds()
{
    while (!m_refused.empty())
        end(m_refused.back()->easy(), CURLE_FAILED_INIT);
    int left = 0;
    while (const CURLMsg *message = curl_multi_info_read(m_multi, &left)) {
        if (message->msg == CURLMSG_DONE)
            end(message->easy_handle, message->data.result);
    }
}

void CurlSession::end(CURL *easy, CURLcode result)
{
    const CurlTransfer *const transfer = CurlTransfer::of(easy);
    TransferReceiver *const receiver = transfer->receiver();
    NetworkFailure failure = transfer->failure(result);
    remove(transfer);
    if (receiver)
        receiver->takeEnd(std::move(failure));
}

} // namespace tickwise
