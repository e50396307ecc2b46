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

constexpr std::chrono::milliseconds longestShutdown{100};

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

/// The state that the thread and its owner share.
struct SystemProxies::Worker
{
    struct Question
    {
        QByteArray server;
        quint64 generation = 0;
    };

    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Question> questions;
    std::optional<Question> current; ///< none: no lookup is under way
    Instant currentSince;
    SystemProxies *owner = nullptr; ///< null: the thread is to end
    bool hasEnded = false;

    void run(Lookup lookup);
    void answer(std::unique_lock<std::mutex> &lock, const Lookup &lookup);
    bool isAsked(const QByteArray &server) const;
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
    current = question;
    currentSince = std::chrono::steady_clock::now();
    lock.unlock();
    const QByteArray proxy = usableProxy(lookup(question.server));
    lock.lock();
    current.reset();
    if (!owner)
        return;
    const auto deliver = [owner = owner, question, proxy] {
        owner->receive(question.server, proxy, question.generation);
    };
    QMetaObject::invokeMethod(&owner->m_context, deliver, Qt::QueuedConnection);
}

bool SystemProxies::Worker::isAsked(const QByteArray &server) const
{
    const auto asksFor = [&server](const Question &question) { return question.server == server; };
    return (current && asksFor(*current)) || std::any_of(questions.begin(), questions.end(), asksFor);
}

class SystemProxies::Query : public Operation
{
public:
    Query(SystemProxies &proxies, quint64 number)
        : m_proxies(proxies)
        , m_number(number)
    {
    }
    ~Query() override { m_proxies.forget(m_number); }

private:
    SystemProxies &m_proxies;
    quint64 m_number;
};

SystemProxies::SystemProxies(Lookup lookup)
    : SystemProxies(std::move(lookup), Times{})
{
}

SystemProxies::SystemProxies(Lookup lookup, Times times)
    : m_lookup(std::move(lookup))
    , m_times(times)
{
    m_overdueTimer.setSingleShot(true);
    QObject::connect(&m_overdueTimer, &QTimer::timeout, &m_context, [this] { answerOverdue(); });
    makeWorker();
}

void SystemProxies::makeWorker()
{
    m_worker = std::make_shared<Worker>();
    m_worker->owner = this;
}

SystemProxies::~SystemProxies()
{
    if (!m_thread.joinable())
        return;
    std::unique_lock lock(m_worker->mutex);
    m_worker->owner = nullptr;
    m_worker->changed.notify_all();
    const bool hasEnded = m_worker->changed.wait_for(lock, longestShutdown, [this] { return m_worker->hasEnded; });
    lock.unlock();
    if (hasEnded)
        m_thread.join();
    else
        m_thread.detach();
}

bool SystemProxies::isStuck() const
{
    const std::scoped_lock lock(m_worker->mutex);
    return m_worker->current && std::chrono::steady_clock::now() - m_worker->currentSince >= m_times.longestLookup;
}

void SystemProxies::reset()
{
    m_answers.clear();
    ++m_generation;
    if (!isStuck())
        return;
    {
        const std::scoped_lock lock(m_worker->mutex);
        m_worker->owner = nullptr;
    }
    m_thread.detach();
    m_thread = {};
    makeWorker();
    for (const auto &[query, waiting] : m_waiting)
        deliverLater(query, {});
}

Subscription SystemProxies::find(const QUrl &url, Done done)
{
    const QUrl::FormattingOptions removed =
        QUrl::RemoveUserInfo | QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment;
    const QByteArray server = url.toEncoded(removed) + '/';
    const quint64 number = ++m_lastQuery;
    m_waiting.emplace(number, Waiting{server, std::chrono::steady_clock::now(), std::move(done)});
    auto query = std::make_unique<Query>(*this, number);
    if (const std::optional<QByteArray> known = knownAnswer(server))
        deliverLater(number, *known);
    else if (isStuck())
        deliverLater(number, {});
    else
        ask(server);
    return Subscription(std::move(query));
}

std::optional<QByteArray> SystemProxies::knownAnswer(const QByteArray &server) const
{
    const auto answer = m_answers.find(server);
    const Instant now = std::chrono::steady_clock::now();
    if (answer == m_answers.end() || now - answer->second.time >= m_times.answerLifetime)
        return std::nullopt;
    return answer->second.proxy;
}

void SystemProxies::ask(const QByteArray &server)
{
    if (!m_thread.joinable())
        m_thread = std::thread([worker = m_worker, lookup = m_lookup] { worker->run(lookup); });
    if (!m_overdueTimer.isActive())
        m_overdueTimer.start(m_times.longestLookup);
    const std::scoped_lock lock(m_worker->mutex);
    if (m_worker->isAsked(server))
        return;
    m_worker->questions.push_back({server, m_generation});
    m_worker->changed.notify_all();
}

void SystemProxies::forget(quint64 query)
{
    const auto at = m_waiting.find(query);
    if (at == m_waiting.end())
        return;
    const QByteArray server = at->second.server;
    m_waiting.erase(at);
    const auto waitsForIt = [&server](const auto &other) { return other.second.server == server; };
    if (std::any_of(m_waiting.begin(), m_waiting.end(), waitsForIt))
        return;
    const std::scoped_lock lock(m_worker->mutex);
    std::erase_if(m_worker->questions, [&server](const Worker::Question &asked) { return asked.server == server; });
}

void SystemProxies::receive(const QByteArray &server, const QByteArray &proxy, quint64 generation)
{
    if (generation == m_generation)
        m_answers[server] = {proxy, std::chrono::steady_clock::now()};
    for (const auto &[query, waiting] : m_waiting) {
        if (waiting.server == server)
            deliverLater(query, proxy);
    }
}

// The queries are in the order in which they began to wait.
void SystemProxies::answerOverdue()
{
    const Instant now = std::chrono::steady_clock::now();
    for (const auto &[query, waiting] : m_waiting) {
        const Instant end = waiting.since + m_times.longestLookup;
        if (end > now) {
            m_overdueTimer.start(std::chrono::ceil<std::chrono::milliseconds>(end - now));
            return;
        }
        deliverLater(query, {});
    }
}

void SystemProxies::deliverLater(quint64 query, const QByteArray &proxy)
{
    QMetaObject::invokeMethod(
        &m_context, [this, query, proxy] { deliver(query, proxy); }, Qt::QueuedConnection);
}

void SystemProxies::deliver(quint64 query, const QByteArray &proxy)
{
    const auto at = m_waiting.find(query);
    if (at == m_waiting.end())
        return;
    // It may drop the handle.
    const Done done = std::move(at->second.done);
    m_waiting.erase(at);
    done(proxy);
}

} // namespace tickwise
