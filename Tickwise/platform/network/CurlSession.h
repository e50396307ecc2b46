#pragma once

#include "platform/network/CurlTransfer.h"

#include <QHash>

class QSocketNotifier;
class QTimer;

namespace tickwise {

/// Runs transfers in the main thread and keeps their connections for later ones: at most ten, each for two minutes.
/// Without a transfer under way nothing wakes the process.
///
/// Owned by a `std::shared_ptr`: a receiver that is called may release it, and it is destroyed after that call.
class CurlSession : public std::enable_shared_from_this<CurlSession>
{
public:
    CurlSession();
    ~CurlSession();
    CurlSession(const CurlSession &) = delete;
    CurlSession &operator=(const CurlSession &) = delete;

    /// Starts a transfer. It lives until its receiver got its end or it is dropped.
    CurlTransfer *start(const TransferRequest &request, TransferReceiver &receiver);
    /// Aborts a transfer and calls its receiver no more.
    void drop(CurlTransfer *transfer);

private:
    struct LaterDeletion
    {
        void operator()(QObject *object) const { object->deleteLater(); }
    };
    struct Watch
    {
        std::unique_ptr<QSocketNotifier, LaterDeletion> read;
        std::unique_ptr<QSocketNotifier, LaterDeletion> write;
    };

    static int onSocket(CURL *easy, curl_socket_t socket, int what, void *session, void *watch);
    static int onTimer(CURLM *multi, long milliseconds, void *session);
    void watch(curl_socket_t socket, int what);
    std::unique_ptr<QSocketNotifier, LaterDeletion> notifier(curl_socket_t socket, bool forReading);
    void runLibcurl(curl_socket_t socket, int events);
    bool isReadable(curl_socket_t socket) const;
    void addPending();
    void finishWork();
    void reportEnds();
    void end(CURL *easy, CURLcode result);
    void remove(const CurlTransfer *transfer);

    CURLM *m_multi;
    std::unique_ptr<QTimer, LaterDeletion> m_timer;
    std::unordered_map<curl_socket_t, Watch> m_watches;
    std::vector<std::unique_ptr<CurlTransfer>> m_transfers;
    std::vector<CURL *> m_spareHandles;    ///< for later transfers
    std::vector<CurlTransfer *> m_pending; ///< started, not yet handed to libcurl
    std::vector<CurlTransfer *> m_refused; ///< not taken by libcurl; their ends are not reported yet
    bool m_isInsideLibcurl = false;        ///< libcurl is working and takes no transfers in or out
};

} // namespace tickwise
