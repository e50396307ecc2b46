#pragma once

#include "platform/network/CurlTransfer.h"

#include <QHash>

class QSocketNotifier;
class QTimer;

namespace tickwise {

/// Runs exchanges in the main thread and keeps their connections for later ones, at most ten of them, none of them
/// used after two minutes. Without an exchange under way nothing wakes the process.
///
/// Owned by a `std::shared_ptr`: it stays until the function of a receiver that let go of it has returned.
class CurlSession : public std::enable_shared_from_this<CurlSession>
{
public:
    CurlSession();
    ~CurlSession();
    CurlSession(const CurlSession &) = delete;
    CurlSession &operator=(const CurlSession &) = delete;

    /// Starts an exchange. It lives until its end was told or it is dropped.
    CurlTransfer *start(const CurlRequest &request, ExchangeReceiver &receiver);
    /// Breaks an exchange off and tells its receiver nothing more.
    void drop(CurlTransfer *exchange);

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
    void act(curl_socket_t socket, int events);
    bool hasMore(curl_socket_t socket) const;
    void beginNew();
    void settle();
    void tellEnds();
    void end(CURL *easy, CURLcode result);
    void remove(const CurlTransfer *exchange);

    CURLM *m_multi;
    std::unique_ptr<QTimer, LaterDeletion> m_timer;
    std::unordered_map<curl_socket_t, Watch> m_watches;
    std::vector<std::unique_ptr<CurlTransfer>> m_exchanges;
    std::vector<CURL *> m_spare;             ///< handles for exchanges to come
    std::vector<CurlTransfer *> m_new;       ///< started while libcurl was working
    std::vector<CurlTransfer *> m_stillborn; ///< not taken by libcurl; their ends are to be told
    bool m_acting = false;                   ///< libcurl is working and takes no exchanges in or out
};

} // namespace tickwise
