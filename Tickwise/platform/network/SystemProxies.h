#pragma once

#include "support/Subscription.h"

#include <QByteArray>
#include <QTimer>
#include <QUrl>

#include <chrono>
#include <map>
#include <optional>
#include <thread>
#include <vector>

namespace tickwise {

/// Whether the name or address is this machine's own.
bool isLoopback(const QString &host);

/// The first proxy that can be used, as libcurl takes it, from answers such as "http://proxy:3128" or "direct://".
/// Empty: none, or none that is understood. SOCKS proxies look up the host themselves.
QByteArray usableProxy(const std::vector<QByteArray> &answers);

/// Asks the system (the environment or, through libproxy's plugins, the desktop's settings) through which proxy a host
/// is reached. A lookup may take long, so lookups run one after another on a thread of their own. Requests for the same
/// host share a lookup, and its answer is kept for a few minutes.
class SystemProxies
{
public:
    /// Answers for a URL, on that thread, in the order of preference.
    using Lookup = std::function<std::vector<QByteArray>(const QByteArray &url)>;
    using Done = std::function<void(const QByteArray &proxy)>;
    struct Times
    {
        std::chrono::milliseconds longestLookup{10000};
        std::chrono::milliseconds answerLifetime{300000};
    };

    /// Without `lookup` the system is asked. A question that waits for `longestLookup` is answered with no proxy; so
    /// is, at once, every question that comes while a lookup takes longer than that.
    explicit SystemProxies(Lookup lookup = {});
    SystemProxies(Lookup lookup, Times times);
    /// Abandons a lookup that does not end.
    ~SystemProxies();
    SystemProxies(const SystemProxies &) = delete;
    SystemProxies &operator=(const SystemProxies &) = delete;

    /// Delivers the proxy for `url` later, on this thread, as `usableProxy` names it. The handle must be dropped before
    /// this object is destroyed.
    Subscription find(const QUrl &url, Done done);
    /// Forgets the answers and abandons a lookup that takes too long: another network may have other proxies.
    void reset();

private:
    using Instant = std::chrono::steady_clock::time_point;
    struct Worker;
    class Query;
    struct Waiting
    {
        QByteArray server;
        Instant since;
        Done done;
    };
    struct Answer
    {
        QByteArray proxy;
        Instant time;
    };

    void makeWorker();
    bool isStuck() const;
    std::optional<QByteArray> knownAnswer(const QByteArray &server) const;
    void ask(const QByteArray &server);
    void forget(quint64 query);
    void receive(const QByteArray &server, const QByteArray &proxy, quint64 generation);
    void answerOverdue();
    void deliverLater(quint64 query, const QByteArray &proxy);
    void deliver(quint64 query, const QByteArray &proxy);

    Lookup m_lookup;
    Times m_times;
    std::shared_ptr<Worker> m_worker;
    std::thread m_thread; ///< runs from the first question on
    std::map<quint64, Waiting> m_waiting;
    std::map<QByteArray, Answer> m_answers; ///< by server
    quint64 m_lastQuery = 0;
    quint64 m_generation = 0; ///< counts the resets; a lookup from before one gives no answer to keep
    QTimer m_overdueTimer;
    QObject m_context;
};

} // namespace tickwise
