#include "platform/network/SystemProxies.h"

#include <array>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include <arpa/inet.h>
#include <proxy.h>

namespace tickwise {

namespace {

using Lookup = SystemProxies::Lookup;
using Instant = std::chrono::steady_clock::time_point;

constexpr std::chrono::milliseconds patience{100};

Lookup systemLookup()
{
    const std::shared_ptr<pxProxyFactory> factory(px_proxy_factory_new(), px_proxy_factory_free);
    return [factory](const QByteArray &url) {
        std::vector<QByteArray> answers;
        char **const found = px_proxy_factory_get_proxies(factory.get(), url.constData());
        for (char **answer = found; answer && *answer; ++answer)
            answers.emplace_back(*answer);
        if (found)
            px_proxy_factory_free_proxies(found);
        return answers;
    };
}

struct ProxyScheme
{
    const char *name;
    const char *forCurl;
    int port;
};

constexpr std::array proxySchemes{
    ProxyScheme{"http", "http", 80},         ProxyScheme{"https", "https", 443},
    ProxyScheme{"socks", "socks5h", 1080},   ProxyScheme{"socks5", "socks5h", 1080},
    ProxyScheme{"socks5h", "socks5h", 1080}, ProxyScheme{"socks4", "socks4a", 1080},
    ProxyScheme{"socks4a", "socks4a", 1080},
};

std::optional<QByteArray> forCurl(QUrl proxy)
{
    const auto at = std::find_if(proxySchemes.begin(), proxySchemes.end(), [&proxy](const ProxyScheme &known) {
        return proxy.scheme() == QLatin1String(known.name);
    });
    if (at == proxySchemes.end() || proxy.host().isEmpty())
        return std::nullopt;
    proxy.setScheme(QString::fromLatin1(at->forCurl));
    proxy.setPort(proxy.port(at->port));
    return proxy.toEncoded(QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment);
}

bool isLoopbackAddress(const in_addr &address)
{
    return (ntohl(address.s_addr) >> 24) == IN_LOOPBACKNET;
}

bool isLoopbackAddress(const in6_addr &address)
{
    if (!IN6_IS_ADDR_V4MAPPED(&address))
        return IN6_IS_ADDR_LOOPBACK(&address);
    in_addr mapped{};
    std::copy_n(address.s6_addr + 12, 4, reinterpret_cast<unsigned char *>(&mapped));
    return isLoopbackAddress(mapped);
}

} // namespace

bool isLoopback(const QString &host)
{
    const QByteArray text = host.toLatin1();
    in_addr address{};
    in6_addr longAddress{};
    if (inet_pton(AF_INET, text.constData(), &address) == 1)
        return isLoopbackAddress(address);
    if (inet_pton(AF_INET6, text.constData(), &longAddress) == 1)
        return isLoopbackAddress(longAddress);
    return host == QStringLiteral("localhost");
}

QByteArray usableProxy(const std::vector<QByteArray> &answers)
{
    for (const QByteArray &answer : answers) {
        const QUrl proxy = QUrl::fromEncoded(answer.trimmed());
        if (proxy.scheme() == QStringLiteral("direct"))
            return {};
        if (const auto usable = forCurl(proxy))
            return *usable;
    }
    return {};
}

/// What the thread and its owner share.
struct SystemProxies::Worker
{
    struct Question
    {
        quint64 query;
        QByteArray url;
    };

    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Question> questions;
    std::optional<Instant> busySince; ///< none: no lookup is under way
    std::chrono::milliseconds longestLookup{};
    SystemProxies *owner = nullptr; ///< none: the thread is to end
    bool hasEnded = false;

    bool isStuck() const { return busySince && std::chrono::steady_clock::now() - *busySince > longestLookup; }
    void run(Lookup lookup);
    void answer(std::unique_lock<std::mutex> &lock, const Lookup &lookup);
};

void SystemProxies::Worker::run(Lookup lookup)
{
    if (!lookup)
        lookup = systemLookup();
    std::unique_lock lock(mutex);
    while (owner) {
        if (questions.empty())
            changed.wait(lock);
        else
            answer(lock, lookup);
    }
    lock.unlock();
    lookup = {};
    lock.lock();
    hasEnded = true;
    changed.notify_all();
}

void SystemProxies::Worker::answer(std::unique_lock<std::mutex> &lock, const Lookup &lookup)
{
    const Question question = questions.front();
    questions.pop_front();
    busySince = std::chrono::steady_clock::now();
    lock.unlock();
    const QByteArray proxy = usableProxy(lookup(question.url));
    lock.lock();
    busySince.reset();
    if (owner)
        QMetaObject::invokeMethod(
            &owner->m_context, [owner = owner, query = question.query, proxy] { owner->deliver(query, proxy); },
            Qt::QueuedConnection);
}

class SystemProxies::Query : public Operation
{
public:
    Query(SystemProxies &proxies, quint64 number, Done done)
        : m_proxies(proxies)
        , m_number(number)
    {
        m_proxies.m_waiting.emplace(number, std::move(done));
    }
    ~Query() override { m_proxies.forget(m_number); }

private:
    SystemProxies &m_proxies;
    quint64 m_number;
};

SystemProxies::SystemProxies(Lookup lookup, std::chrono::milliseconds longestLookup)
    : m_lookup(std::move(lookup))
    , m_longestLookup(longestLookup)
{
    makeWorker();
}

void SystemProxies::makeWorker()
{
    m_worker = std::make_shared<Worker>();
    m_worker->owner = this;
    m_worker->longestLookup = m_longestLookup;
}

SystemProxies::~SystemProxies()
{
    if (!m_thread.joinable())
        return;
    std::unique_lock lock(m_worker->mutex);
    m_worker->owner = nullptr;
    m_worker->changed.notify_all();
    const bool hasEnded = m_worker->changed.wait_for(lock, patience, [this] { return m_worker->hasEnded; });
    lock.unlock();
    if (hasEnded)
        m_thread.join();
    else
        m_thread.detach();
}

void SystemProxies::startAnew()
{
    const std::shared_ptr<Worker> current = m_worker;
    const std::scoped_lock lock(current->mutex);
    if (!current->isStuck())
        return;
    current->owner = nullptr;
    m_thread.detach();
    m_thread = {};
    makeWorker();
}

Subscription SystemProxies::find(const QUrl &url, Done done)
{
    if (!m_thread.joinable())
        m_thread = std::thread([worker = m_worker, lookup = m_lookup] { worker->run(lookup); });
    const quint64 number = ++m_lastQuery;
    const QUrl::FormattingOptions server = QUrl::RemoveUserInfo | QUrl::RemovePath | QUrl::RemoveQuery;
    auto query = std::make_unique<Query>(*this, number, std::move(done));
    const std::scoped_lock lock(m_worker->mutex);
    if (m_worker->isStuck()) {
        QMetaObject::invokeMethod(
            &m_context, [this, number] { deliver(number, {}); }, Qt::QueuedConnection);
        return Subscription(std::move(query));
    }
    m_worker->questions.push_back({number, url.toEncoded(server | QUrl::RemoveFragment) + '/'});
    m_worker->changed.notify_all();
    return Subscription(std::move(query));
}

void SystemProxies::forget(quint64 query)
{
    m_waiting.erase(query);
    const std::scoped_lock lock(m_worker->mutex);
    std::erase_if(m_worker->questions, [query](const Worker::Question &asked) { return asked.query == query; });
}

void SystemProxies::deliver(quint64 query, const QByteArray &proxy)
{
    const auto at = m_waiting.find(query);
    if (at == m_waiting.end())
        return;
    // It may drop the handle, and with it the function that it is.
    const Done done = std::move(at->second);
    m_waiting.erase(at);
    done(proxy);
}

} // namespace tickwise
