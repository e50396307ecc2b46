#pragma once

#include "support/Subscription.h"

#include <QByteArray>
#include <QUrl>

#include <chrono>
#include <thread>
#include <unordered_map>
#include <vector>

namespace tickwise {

/// Whether the host is this machine, by its name or address.
bool isLoopback(const QString &host);

/// The first proxy that can be used, as libcurl takes it, from answers such as "http://proxy:3128" or "direct://".
/// Empty: none, or none that is understood. SOCKS proxies look up the host themselves.
QByteArray usableProxy(const std::vector<QByteArray> &answers);

/// Asks the system, that is the environment or, by libproxy's plugins, the desktop's settings, by which proxy a host is
/// reached. Looking that up may take a while, and happens on a thread of its own, one host after another.
class SystemProxies
{
public:
    /// Answers for a URL, on that thread, in the order of preference.
    using Lookup = std::function<std::vector<QByteArray>(const QByteArray &url)>;
    using Done = std::function<void(const QByteArray &proxy)>;

    /// Without `lookup` the system is asked. While one lookup takes longer than `longestLookup` the answer to all
    /// others is: no proxy.
    explicit SystemProxies(Lookup lookup = {}, std::chrono::milliseconds longestLookup = std::chrono::seconds(10));
    /// Leaves a lookup behind that does not end.
    ~SystemProxies();
    SystemProxies(const SystemProxies &) = delete;
    SystemProxies &operator=(const SystemProxies &) = delete;

    /// Tells the proxy for `url` later, on this thread, as `usableProxy` names it. Dropping the handle tells nothing;
    /// it must go before this object does.
    Subscription find(const QUrl &url, Done done);
    /// Leaves a lookup behind that takes too long: on another network its script may be had.
    void startAnew();

private:
    struct Worker;
    class Query;

    void makeWorker();
    void forget(quint64 query);
    void deliver(quint64 query, const QByteArray &proxy);

    Lookup m_lookup;
    std::chrono::milliseconds m_longestLookup;
    std::shared_ptr<Worker> m_worker;
    std::thread m_thread; ///< runs from the first question on
    std::unordered_map<quint64, Done> m_waiting;
    quint64 m_lastQuery = 0;
    QObject m_context;
};

} // namespace tickwise
