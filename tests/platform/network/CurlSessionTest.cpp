#include "platform/network/CurlSession.h"

#include "demo/LoopbackMarket.h"
#include "doubles/TestProgram.h"
#include "platform/network/NetworkHttpClient.h"
#include "platform/network/ProxyEnvironment.h"

#include <QAbstractEventDispatcher>
#include <QBuffer>
#include <QElapsedTimer>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <csignal>

#include <dlfcn.h>
#include <netdb.h>

using namespace tickwise;
using namespace std::chrono_literals;
using enum MarketEndpoint;

namespace {

QSemaphore lookupsBegun;
QSemaphore lookupsMayEnd;

using AddressLookup = int (*)(const char *, const char *, const addrinfo *, addrinfo **);

/// What a completion got.
struct SessionOutcome
{
    std::vector<Result<HttpResponse>> results;

    Completion<HttpResponse> completion()
    {
        return [this](Result<HttpResponse> result) { results.push_back(std::move(result)); };
    }
    bool isOver() const { return !results.empty(); }
};

/// Tells whoever listens of what it takes.
class TellingSink : public QIODevice
{
public:
    std::function<void()> tell;

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *, qint64 count) override
    {
        tell();
        return takes ? count : -1;
    }

public:
    bool takes = true;
};

} // namespace

// Looks up names in place of the system's function. Two names take until the test lets them end; of these
// "late.example" exists and is this machine.
extern "C" int getaddrinfo(const char *name, const char *service, const addrinfo *hints, addrinfo **result)
{
    static const auto system = reinterpret_cast<AddressLookup>(dlsym(RTLD_NEXT, "getaddrinfo"));
    const bool isLate = QByteArrayView(name) == "late.example";
    if (isLate || QByteArrayView(name) == "slow.example") {
        lookupsBegun.release();
        lookupsMayEnd.acquire();
    }
    return isLate ? system("127.0.0.1", service, hints, result) : EAI_NONAME;
}

class CurlSessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void opensAnotherConnectionAfterTheServerClosed_data();
    void opensAnotherConnectionAfterTheServerClosed();
    void sleepsWhileConnectionsAreKept();
    void closesItsConnectionsWithTheClient_data();
    void closesItsConnectionsWithTheClient();
    void forgetsItsConnections();
    void forgettingConnectionsLeavesRequestsAlone();
    void opensFewConnectionsToAHost();
    void droppingFromAnotherCompletion();
    void droppingFromAnotherProgress();
    void sendingFromTheProgress();
    void destroyingTheClientInTheProgress();
    void destroyingTheClientInTheRedirectRule();
    void droppingInTheRedirectRule();
    void droppingInTheSink_data();
    void droppingInTheSink();
    void droppingWhileTheHostIsLookedUp();
    void destroyingWhileTheHostIsLookedUp();
    void aSlowLookupIsNoSilence();
    void aLookupIsBounded_data();
    void aLookupIsBounded();
    void waitingForAConnectionIsNoSilence();
    void aQueuedRequestHasItsWholeDeadline();
    void aQueuedRequestTimesOutOnceItIsSent();
    void usesTheSystemsAuthorities_data();
    void usesTheSystemsAuthorities();
    void gzipOfNothingIsBounded_data();
    void gzipOfNothingIsBounded();
    void absurdLengths_data();
    void absurdLengths();
    void aChangeOfProtocolEndsAtOnce();
    void redirectsInErrorsAreExcerpts();
    void boundsTheHeaders_data();
    void boundsTheHeaders();
    void brokenHandshakes_data();
    void brokenHandshakes();
    void writingToAClosedConnectionKillsNobody();
    void leavesSpareCapacityAfterTheBody();
    void damagedGzipIsNoAnswer_data();
    void damagedGzipIsNoAnswer();
    void gzipMembersOneAfterAnother();
    void readsFoldedHeaders();
    void whatLibcurlDoesNotTakeFailsLater();
    void answersWithoutAHead_data();
    void answersWithoutAHead();
    void failuresInTheSameWords_data();
    void failuresInTheSameWords();
    void skipsAnnouncements();
    void ignoresTrailers();

private:
    HttpRequest to(MarketEndpoint endpoint) const;
    void answerWith(const QByteArray &raw);
    Result<HttpResponse> fetch(const HttpRequest &request);

    std::unique_ptr<LoopbackMarket> m_market;
    std::unique_ptr<NetworkHttpClient> m_client;
};

void CurlSessionTest::init()
{
    test::clearProxyEnvironment();
    m_client = std::make_unique<NetworkHttpClient>(LoopbackMarket::authorities(), [] { return true; });
    m_market = std::make_unique<LoopbackMarket>();
    m_market->addFile(QStringLiteral("/a"), "the file", "text/plain");
}

void CurlSessionTest::cleanup()
{
    m_client.reset();
    m_market.reset();
}

HttpRequest CurlSessionTest::to(MarketEndpoint endpoint) const
{
    HttpRequest request;
    request.url = m_market->url(endpoint, QStringLiteral("/a"));
    return request;
}

void CurlSessionTest::answerWith(const QByteArray &raw)
{
    m_market->script(files, [raw](LoopbackAnswer &answer) { answer.raw = raw; });
}

Result<HttpResponse> CurlSessionTest::fetch(const HttpRequest &request)
{
    SessionOutcome outcome;
    const Subscription subscription = m_client->send(request, outcome.completion());
    [&outcome] { QTRY_VERIFY(outcome.isOver()); }();
    return outcome.isOver() ? outcome.results.front() : failure(UrlLoadingError{UrlErrorCode::cancelled, {}, 0, {}});
}

void CurlSessionTest::opensAnotherConnectionAfterTheServerClosed_data()
{
    QTest::addColumn<LoopbackMarket::Transport>("transport");
    QTest::addColumn<bool>("byReset");
    QTest::newRow("plain, closed") << LoopbackMarket::Transport::plain << false;
    QTest::newRow("TLS, closed") << LoopbackMarket::Transport::tls << false;
    QTest::newRow("plain, with the next request") << LoopbackMarket::Transport::plain << true;
    QTest::newRow("TLS, with the next request") << LoopbackMarket::Transport::tls << true;
}

void CurlSessionTest::opensAnotherConnectionAfterTheServerClosed()
{
    QFETCH(LoopbackMarket::Transport, transport);
    QFETCH(bool, byReset);
    LoopbackMarket::Options options;
    options.transport = transport;
    m_market = std::make_unique<LoopbackMarket>(options);
    m_market->addFile(QStringLiteral("/a"), "the file", "text/plain");
    QCOMPARE(fetch(to(files))->body, QByteArray("the file"));
    if (byReset)
        m_market->script(files, faults::reset());
    else
        m_market->closeConnections(files);
    QTRY_COMPARE(m_market->server(files).openConnections(), byReset ? 1 : 0);
    QCOMPARE(fetch(to(files)).value().body, QByteArray("the file"));
    QCOMPARE(m_market->server(files).connectionsSoFar(), 2);
}

void CurlSessionTest::sleepsWhileConnectionsAreKept()
{
    QVERIFY(fetch(to(files)));
    QVERIFY(fetch(to(okx)));
    QTest::qWait(50); // what both sides still have to say
    int wakings = 0;
    QObject counter;
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, &counter,
                     [&wakings] { ++wakings; });
    QEventLoop loop;
    QTimer::singleShot(1500ms, &loop, &QEventLoop::quit);
    loop.exec();
    QVERIFY2(wakings <= 3, qPrintable(QString::number(wakings)));
    QCOMPARE(m_market->server(files).openConnections(), 1);
}

void CurlSessionTest::closesItsConnectionsWithTheClient_data()
{
    QTest::addColumn<bool>("underWay");
    QTest::newRow("kept") << false;
    QTest::newRow("under way") << true;
}

void CurlSessionTest::closesItsConnectionsWithTheClient()
{
    QFETCH(bool, underWay);
    QVERIFY(fetch(to(files)));
    SessionOutcome outcome;
    Subscription subscription;
    if (underWay) {
        QSignalSpy requested(m_market.get(), &LoopbackMarket::requested);
        m_market->script(okx, faults::hang());
        subscription = m_client->send(to(okx), outcome.completion());
        QVERIFY(requested.wait());
        QCOMPARE(m_market->server(okx).openConnections(), 1);
    }
    QCOMPARE(m_market->server(files).openConnections(), 1);
    m_client.reset();
    QTRY_COMPARE(m_market->server(files).openConnections(), 0);
    QTRY_COMPARE(m_market->server(okx).openConnections(), 0);
    QCOMPARE(outcome.isOver(), underWay);
}

void CurlSessionTest::forgetsItsConnections()
{
    QVERIFY(fetch(to(files)));
    QVERIFY(fetch(to(files)));
    QCOMPARE(m_market->server(files).connectionsSoFar(), 1);
    m_client->forgetConnections();
    QTRY_COMPARE(m_market->server(files).openConnections(), 0);
    QVERIFY(fetch(to(files)));
    QCOMPARE(m_market->server(files).connectionsSoFar(), 2);
}

void CurlSessionTest::forgettingConnectionsLeavesRequestsAlone()
{
    m_market->script(files, faults::drip(1, 5ms));
    SessionOutcome outcome;
    SessionOutcome dropped;
    HttpRequest request = to(files);
    // In the midst of libcurl's work, too.
    request.progress = [&](qint64 received, qint64) {
        if (received <= 3)
            m_client->forgetConnections();
    };
    const Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(outcome.results[0].value().body, QByteArray("the file"));
    // Nobody needs its connection any more.
    QVERIFY(fetch(to(files)));
    QTRY_COMPARE(m_market->server(files).openConnections(), 1);

    m_market->script(okx, faults::hang());
    const Subscription hanging = m_client->send(to(okx), dropped.completion());
    QTRY_COMPARE(m_market->requestCount(okx), 1);
    m_client->forgetConnections();
    m_client.reset();
    QTRY_VERIFY(dropped.isOver());
    QCOMPARE(std::get<UrlLoadingError>(dropped.results[0].error()).code, UrlErrorCode::cancelled);
    QTRY_COMPARE(m_market->server(okx).openConnections(), 0);
}

void CurlSessionTest::opensFewConnectionsToAHost()
{
    constexpr int requests = 20;
    std::vector<Subscription> subscriptions;
    int answers = 0;
    for (int i = 0; i < requests; ++i)
        subscriptions.push_back(m_client->send(to(files), [&](const Result<HttpResponse> &result) {
            QVERIFY(result);
            ++answers;
        }));
    QTRY_COMPARE(answers, requests);
    QVERIFY(m_market->server(files).connectionsSoFar() <= 6);
}

void CurlSessionTest::droppingFromAnotherCompletion()
{
    m_market->script(okx, faults::hang());
    QSignalSpy closed(m_market.get(), &LoopbackMarket::connectionClosed);
    SessionOutcome dropped;
    Subscription hanging = m_client->send(to(okx), dropped.completion());
    QTRY_COMPARE(m_market->requestCount(okx), 1);
    bool isDone = false;
    const Subscription subscription = m_client->send(to(files), [&](const Result<HttpResponse> &) {
        hanging.cancel();
        isDone = true;
    });
    QTRY_VERIFY(isDone);
    QTRY_COMPARE(closed.count(), 1);
    QVERIFY(!dropped.isOver());
    QVERIFY(fetch(to(files)));
}

void CurlSessionTest::droppingFromAnotherProgress()
{
    SessionOutcome first;
    SessionOutcome second;
    Subscription one;
    Subscription other;
    HttpRequest request = to(files);
    int steps = 0;
    // Whichever comes first drops the other, and itself.
    request.progress = [&](qint64, qint64) {
        ++steps;
        one.cancel();
        other.cancel();
    };
    QSignalSpy closed(m_market.get(), &LoopbackMarket::connectionClosed);
    m_market->script(files, faults::oversize(1 << 20), LoopbackMarket::Repeat::always);
    one = m_client->send(request, first.completion());
    other = m_client->send(request, second.completion());
    QTRY_COMPARE(steps, 1);
    QTRY_COMPARE(m_market->server(files).openConnections(), 0);
    QVERIFY(!first.isOver() && !second.isOver());
    m_market->clearScript(files);
    QVERIFY(fetch(to(files)));
}

void CurlSessionTest::sendingFromTheProgress()
{
    SessionOutcome first;
    SessionOutcome second;
    Subscription inner;
    HttpRequest request = to(files);
    request.progress = [&](qint64, qint64) { inner = m_client->send(to(files), second.completion()); };
    const Subscription outer = m_client->send(request, first.completion());
    QTRY_VERIFY(first.isOver() && second.isOver());
    QCOMPARE(first.results[0]->body, QByteArray("the file"));
    QCOMPARE(second.results[0]->body, QByteArray("the file"));
}

void CurlSessionTest::destroyingTheClientInTheProgress()
{
    m_market->script(files, faults::oversize(1 << 20));
    SessionOutcome outcome;
    HttpRequest request = to(files);
    request.progress = [&](qint64, qint64) { m_client.reset(); };
    const Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(std::get<UrlLoadingError>(outcome.results[0].error()).code, UrlErrorCode::cancelled);
    QTRY_COMPARE(m_market->server(files).openConnections(), 0);
    QCOMPARE(outcome.results.size(), 1U);
}

void CurlSessionTest::destroyingTheClientInTheRedirectRule()
{
    m_market->script(files, faults::redirect(QUrl(QStringLiteral("/b"))));
    SessionOutcome outcome;
    HttpRequest request = to(files);
    request.mayRedirectTo = [&](const QUrl &) {
        m_client.reset();
        return true;
    };
    const Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(std::get<UrlLoadingError>(outcome.results[0].error()).code, UrlErrorCode::cancelled);
    QCOMPARE(m_market->requestCount(files), 1);
}

void CurlSessionTest::droppingInTheRedirectRule()
{
    m_market->script(files, faults::redirect(QUrl(QStringLiteral("/a"))), LoopbackMarket::Repeat::always);
    SessionOutcome outcome;
    Subscription subscription;
    HttpRequest request = to(files);
    bool isAsked = false;
    request.mayRedirectTo = [&](const QUrl &) {
        subscription.cancel();
        isAsked = true;
        return true;
    };
    subscription = m_client->send(request, outcome.completion());
    QTRY_VERIFY(isAsked);
    m_market->clearScript(files);
    QVERIFY(fetch(to(files)));
    QVERIFY(!outcome.isOver());
    QCOMPARE(m_market->requestCount(files), 2);
}

void CurlSessionTest::droppingInTheSink_data()
{
    QTest::addColumn<bool>("takes");
    QTest::addColumn<bool>("zipped");
    QTest::newRow("takes the bytes") << true << false;
    QTest::newRow("takes nothing") << false << false;
    QTest::newRow("takes inflated bytes") << true << true;
    QTest::newRow("takes nothing inflated") << false << true;
}

void CurlSessionTest::droppingInTheSink()
{
    QFETCH(bool, takes);
    QFETCH(bool, zipped);
    m_market->addFile(QStringLiteral("/a"), QByteArray(1 << 20, 'x'), "text/plain");
    if (zipped)
        m_market->script(files, faults::gzip());
    SessionOutcome outcome;
    Subscription subscription;
    TellingSink sink;
    sink.takes = takes;
    int writes = 0;
    sink.tell = [&] {
        ++writes;
        subscription.cancel();
    };
    QVERIFY(sink.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    HttpRequest request = to(files);
    request.sink = &sink;
    subscription = m_client->send(request, outcome.completion());
    QTRY_COMPARE(writes, 1);
    QTRY_COMPARE(m_market->server(files).openConnections(), 0);
    QCOMPARE(writes, 1);
    QVERIFY(!outcome.isOver());
}

void CurlSessionTest::droppingWhileTheHostIsLookedUp()
{
    HttpRequest request;
    request.url = QUrl(QStringLiteral("http://slow.example/"));
    SessionOutcome outcome;
    Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_COMPARE(lookupsBegun.available(), 1);
    lookupsBegun.acquire();
    QElapsedTimer time;
    time.start();
    subscription.cancel();
    QVERIFY(fetch(to(files)));
    QVERIFY2(time.elapsed() < 20000, qPrintable(QString::number(time.elapsed())));
    lookupsMayEnd.release();
    QVERIFY(!outcome.isOver());
}

void CurlSessionTest::destroyingWhileTheHostIsLookedUp()
{
    HttpRequest request;
    request.url = QUrl(QStringLiteral("http://slow.example/"));
    SessionOutcome outcome;
    const Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_COMPARE(lookupsBegun.available(), 1);
    lookupsBegun.acquire();
    m_client.reset();
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(std::get<UrlLoadingError>(outcome.results[0].error()).code, UrlErrorCode::cancelled);
    lookupsMayEnd.release();
}

void CurlSessionTest::aSlowLookupIsNoSilence()
{
    HttpRequest request = to(files);
    request.url.setHost(QStringLiteral("late.example"));
    request.timeout = 1500ms;
    SessionOutcome outcome;
    const Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_COMPARE(lookupsBegun.available(), 1);
    lookupsBegun.acquire();
    QTest::qWait(1800); // longer than the server may be silent
    QVERIFY(!outcome.isOver());
    lookupsMayEnd.release();
    QTRY_VERIFY(outcome.isOver());
    QVERIFY2(outcome.results[0].has_value(), qPrintable(QString::number(outcome.results.size())));
    QCOMPARE(outcome.results[0]->body, QByteArray("the file"));
}

void CurlSessionTest::aLookupIsBounded_data()
{
    QTest::addColumn<bool>("hasNetwork");
    QTest::addColumn<UrlErrorCode>("code");
    QTest::newRow("with a network") << true << UrlErrorCode::cannotFindHost;
    QTest::newRow("without a network") << false << UrlErrorCode::notConnectedToInternet;
}

void CurlSessionTest::aLookupIsBounded()
{
    QFETCH(bool, hasNetwork);
    QCOMPARE(HttpRequest().lookupTimeout, 15s);
    m_client = std::make_unique<NetworkHttpClient>(QByteArray(), [hasNetwork] { return hasNetwork; });
    HttpRequest request;
    request.url = QUrl(QStringLiteral("http://slow.example/"));
    request.timeout = 50ms;
    request.lookupTimeout = 300ms;
    QElapsedTimer time;
    time.start();
    SessionOutcome outcome;
    const Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QVERIFY2(time.elapsed() >= 300, qPrintable(QString::number(time.elapsed())));
    lookupsBegun.acquire();
    lookupsMayEnd.release();
    QTEST(std::get<UrlLoadingError>(outcome.results[0].error()).code, "code");
}

void CurlSessionTest::waitingForAConnectionIsNoSilence()
{
    constexpr int requests = 20;
    m_market->script(files, faults::delay(500ms), LoopbackMarket::Repeat::always);
    HttpRequest request = to(files);
    request.timeout = 1400ms; // the last ones wait three times 500 ms for a connection
    std::vector<Subscription> subscriptions;
    std::vector<bool> answers;
    for (int i = 0; i < requests; ++i)
        subscriptions.push_back(m_client->send(
            request, [&](const Result<HttpResponse> &result) { answers.push_back(result.has_value()); }));
    QTRY_COMPARE(answers.size(), std::size_t(requests));
    QCOMPARE(std::count(answers.begin(), answers.end(), true), requests);
    QVERIFY(m_market->server(files).connectionsSoFar() <= 6);
}

void CurlSessionTest::aQueuedRequestHasItsWholeDeadline()
{
    m_market->script(files, faults::delay(500ms), LoopbackMarket::Repeat::always);
    HttpRequest request = to(files);
    request.deadline = 1400ms;
    std::vector<Subscription> subscriptions;
    int answers = 0;
    for (int i = 0; i < 20; ++i)
        subscriptions.push_back(m_client->send(request, [&](const Result<HttpResponse> &result) {
            QVERIFY(result);
            ++answers;
        }));
    QTRY_COMPARE(answers, 20);
}

void CurlSessionTest::aQueuedRequestTimesOutOnceItIsSent()
{
    m_market->script(files, faults::hang(), LoopbackMarket::Repeat::always);
    HttpRequest request = to(files);
    request.timeout = 1000ms;
    std::vector<Subscription> subscriptions;
    std::vector<UrlErrorCode> codes;
    for (int i = 0; i < 8; ++i)
        subscriptions.push_back(m_client->send(request, [&](const Result<HttpResponse> &result) {
            codes.push_back(std::get<UrlLoadingError>(result.error()).code);
        }));
    QTRY_COMPARE(codes.size(), std::size_t(8));
    QCOMPARE(codes, std::vector<UrlErrorCode>(8, UrlErrorCode::timedOut));
    QCOMPARE(m_market->requestCount(files), 8);
}

void CurlSessionTest::usesTheSystemsAuthorities_data()
{
    QTest::addColumn<bool>("inFolder");
    QTest::addColumn<bool>("strangerInFolder");
    QTest::addColumn<bool>("inBundle");
    QTest::addColumn<bool>("isTrusted");
    QTest::newRow("folder alone") << true << false << false << true;
    QTest::newRow("bundle alone") << false << false << true << true;
    QTest::newRow("both") << true << false << true << true;
    QTest::newRow("one unrelated authority in the folder") << false << true << true << true;
    QTest::newRow("nowhere") << false << true << false << false;
}

void CurlSessionTest::usesTheSystemsAuthorities()
{
    QFETCH(bool, inFolder);
    QFETCH(bool, strangerInFolder);
    QFETCH(bool, inBundle);
    QFETCH(bool, isTrusted);
    const QByteArray authority = LoopbackMarket::authorities();
    const QTemporaryDir folder;
    const auto write = [&folder](const QString &name, const QByteArray &bytes) {
        QFile file(folder.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    };
    if (inFolder)
        write(QStringLiteral("6a543d15.0"), authority);
    if (strangerInFolder)
        write(QStringLiteral("0badc0de.0"), authority);
    // A bundle has more than one authority, so that one hashed name cannot stand for it.
    write(QStringLiteral("bundle.pem"), inBundle ? authority + authority : QByteArray());
    m_client = std::make_unique<NetworkHttpClient>(
        QByteArray(), [] { return true; },
        AuthorityFiles{folder.path().toLocal8Bit(), folder.filePath(QStringLiteral("bundle.pem")).toLocal8Bit()});
    LoopbackMarket::Options options;
    options.transport = LoopbackMarket::Transport::tls;
    m_market = std::make_unique<LoopbackMarket>(options);
    m_market->addFile(QStringLiteral("/a"), "the file", "text/plain");
    const Result<HttpResponse> result = fetch(to(files));
    QVERIFY2(result.has_value() == isTrusted, result ? "" : qPrintable(description(result.error())));
    if (!isTrusted)
        QCOMPARE(std::get<UrlLoadingError>(result.error()).code, UrlErrorCode::serverCertificateUntrusted);
}

void CurlSessionTest::gzipOfNothingIsBounded_data()
{
    QTest::addColumn<QByteArray>("stream");
    QTest::newRow("empty members") << gzipped({}).repeated(1000);
    // A flag announces a file name, which ends with a byte of zero.
    QTest::newRow("header without end") << QByteArray("\x1f\x8b\x08\x08\0\0\0\0\0\x03", 10) + QByteArray(20000, 'n');
}

void CurlSessionTest::gzipOfNothingIsBounded()
{
    QFETCH(QByteArray, stream);
    m_market->script(files, faults::together({faults::body(stream), faults::headers({{"Content-Encoding", "gzip"}}),
                                              faults::chunked()}));
    HttpRequest request = to(files);
    request.maximumBytes = stream.size() - 1;
    const Result<HttpResponse> result = fetch(request);
    QVERIFY(!result);
    QCOMPARE(std::get<UrlLoadingError>(result.error()).code, UrlErrorCode::dataLengthExceedsMaximum);
}

void CurlSessionTest::absurdLengths_data()
{
    QTest::addColumn<QByteArray>("length");
    QTest::addColumn<UrlErrorCode>("code");
    QTest::newRow("one above the limit") << QByteArray::number(16 * 1024 * 1024 + 1)
                                         << UrlErrorCode::dataLengthExceedsMaximum;
    QTest::newRow("a terabyte") << QByteArray("1099511627776") << UrlErrorCode::dataLengthExceedsMaximum;
    QTest::newRow("63 bits") << QByteArray("9223372036854775807") << UrlErrorCode::dataLengthExceedsMaximum;
    QTest::newRow("65 bits") << QByteArray("36893488147419103232") << UrlErrorCode::dataLengthExceedsMaximum;
    QTest::newRow("negative") << QByteArray("-5") << UrlErrorCode::badServerResponse;
    QTest::newRow("no number") << QByteArray("many") << UrlErrorCode::badServerResponse;
}

void CurlSessionTest::absurdLengths()
{
    QFETCH(QByteArray, length);
    answerWith("HTTP/1.1 200 OK\r\nContent-Length: " + length + "\r\n\r\nok");
    const Result<HttpResponse> result = fetch(to(files));
    QVERIFY(!result);
    const auto error = std::get<UrlLoadingError>(result.error());
    QTEST(error.code, "code");
}

void CurlSessionTest::aChangeOfProtocolEndsAtOnce()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    connect(&server, &QTcpServer::newConnection, this, [&server] {
        QTcpSocket *const socket = server.nextPendingConnection();
        connect(socket, &QIODevice::readyRead, socket,
                [socket] { socket->write("HTTP/1.1 101 Switching Protocols\r\nUpgrade: other\r\n\r\n"); });
    });
    HttpRequest request;
    request.url = QUrl(QStringLiteral("http://127.0.0.1:%1/").arg(server.serverPort()));
    request.timeout = 60s;
    const Result<HttpResponse> result = fetch(request);
    QVERIFY(!result);
    const auto error = std::get<UrlLoadingError>(result.error());
    QCOMPARE(error.code, UrlErrorCode::badServerResponse);
    QVERIFY2(error.detail.contains(QStringLiteral("101")), qPrintable(error.detail));
}

void CurlSessionTest::redirectsInErrorsAreExcerpts()
{
    answerWith("HTTP/1.1 302 Found\r\nLocation: https://elsewhere.example/" + QByteArray(50000, 'x') +
               "\r\nContent-Length: 0\r\n\r\n");
    const Result<HttpResponse> result = fetch(to(files));
    const auto error = std::get<UrlLoadingError>(result.error());
    QCOMPARE(error.code, UrlErrorCode::redirectRefused);
    QVERIFY2(error.detail.size() < 300, qPrintable(error.detail));
}

void CurlSessionTest::boundsTheHeaders_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<bool>("isTaken");
    const QByteArray ok = "HTTP/1.1 200 OK\r\n";
    QTest::newRow("many") << ok + QByteArray("X-Line: value\r\n").repeated(16000) << true;
    QTest::newRow("too many") << ok + QByteArray("X-Line: value\r\n").repeated(20000) << false;
    QTest::newRow("a long one") << ok + "X-Long: " + QByteArray(60000, 'x') + "\r\n" << true;
    QTest::newRow("one too long") << ok + "X-Long: " + QByteArray(300000, 'x') + "\r\n" << false;
    QTest::newRow("announcements without end")
        << QByteArray("HTTP/1.1 100 Continue\r\n\r\n").repeated(20000) + ok << false;
}

void CurlSessionTest::boundsTheHeaders()
{
    QFETCH(QByteArray, head);
    QFETCH(bool, isTaken);
    answerWith(head + "Content-Length: 2\r\n\r\nok");
    const Result<HttpResponse> result = fetch(to(files));
    QCOMPARE(result.has_value(), isTaken);
    if (!isTaken) {
        const auto error = std::get<UrlLoadingError>(result.error());
        QVERIFY2(error.code == UrlErrorCode::dataLengthExceedsMaximum, qPrintable(error.detail));
    }
}

void CurlSessionTest::brokenHandshakes_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("byReset");
    QTest::addColumn<UrlErrorCode>("code");
    QTest::newRow("closed") << QByteArray() << false << UrlErrorCode::networkConnectionLost;
    QTest::newRow("reset") << QByteArray() << true << UrlErrorCode::networkConnectionLost;
    QTest::newRow("no TLS") << QByteArray("HTTP/1.1 400 Bad Request\r\n\r\n") << false
                            << UrlErrorCode::secureConnectionFailed;
    QTest::newRow("refused by TLS") << QByteArray("\x15\x03\x03\x00\x02\x02\x28", 7) << false
                                    << UrlErrorCode::secureConnectionFailed;
}

void CurlSessionTest::brokenHandshakes()
{
    QFETCH(QByteArray, answer);
    QFETCH(bool, byReset);
    QFETCH(UrlErrorCode, code);
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    connect(&server, &QTcpServer::newConnection, this, [&] {
        QTcpSocket *const socket = server.nextPendingConnection();
        connect(socket, &QIODevice::readyRead, this, [=] {
            // A socket that is closed with bytes unread resets its connection.
            if (!byReset)
                socket->readAll();
            socket->write(answer);
            socket->disconnectFromHost();
        });
        if (byReset)
            socket->setReadBufferSize(1);
    });
    HttpRequest request;
    request.url = QUrl(QStringLiteral("https://127.0.0.1:%1/").arg(server.serverPort()));
    const Result<HttpResponse> result = fetch(request);
    QVERIFY(!result);
    const auto error = std::get<UrlLoadingError>(result.error());
    QVERIFY2(error.code == code, qPrintable(error.detail));
}

void CurlSessionTest::writingToAClosedConnectionKillsNobody()
{
    std::signal(SIGPIPE, SIG_DFL);
    const NetworkHttpClient client;
    struct sigaction action
    {
    };
    QCOMPARE(sigaction(SIGPIPE, nullptr, &action), 0);
    QVERIFY(action.sa_handler == SIG_IGN);
}

void CurlSessionTest::leavesSpareCapacityAfterTheBody()
{
    m_market->addFile(QStringLiteral("/a"), QByteArray(100000, 'x'), "text/plain");
    const Result<HttpResponse> result = fetch(to(files));
    QCOMPARE(result->body.size(), 100000);
    QVERIFY(result->body.capacity() >= 100064);
    QVERIFY(result->body.capacity() < 110000);
}

void CurlSessionTest::damagedGzipIsNoAnswer_data()
{
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<UrlErrorCode>("code");
    const QByteArray good = gzipped("some text that is long enough to be damaged");
    QByteArray wrongSum = good;
    wrongSum[wrongSum.size() - 6] = static_cast<char>(wrongSum.at(wrongSum.size() - 6) ^ 1);
    const auto damaged = UrlErrorCode::cannotParseResponse;
    QTest::newRow("no gzip at all") << QByteArray("{\"code\":\"0\"}") << damaged;
    QTest::newRow("a zlib stream") << qCompress("text").mid(4) << damaged;
    QTest::newRow("damaged inside") << good.left(10) + QByteArray(20, '\xff') << damaged;
    QTest::newRow("wrong check sum") << wrongSum << damaged;
    QTest::newRow("something behind it") << good + "trailing" << damaged;
    QTest::newRow("ends early") << good.chopped(1) << UrlErrorCode::networkConnectionLost;
    QTest::newRow("ends very early") << good.left(5) << UrlErrorCode::networkConnectionLost;
}

void CurlSessionTest::damagedGzipIsNoAnswer()
{
    QFETCH(QByteArray, stream);
    QFETCH(UrlErrorCode, code);
    m_market->script(files, faults::together({faults::body(stream), faults::headers({{"Content-Encoding", "gzip"}})}));
    const Result<HttpResponse> result = fetch(to(files));
    QVERIFY(!result);
    QCOMPARE(std::get<UrlLoadingError>(result.error()).code, code);
}

void CurlSessionTest::gzipMembersOneAfterAnother()
{
    m_market->script(files, faults::together({faults::body(gzipped("one ") + gzipped("two")),
                                              faults::headers({{"Content-Encoding", "gzip"}})}));
    QCOMPARE(fetch(to(files))->body, QByteArray("one two"));
}

void CurlSessionTest::readsFoldedHeaders()
{
    answerWith("HTTP/1.1 200 OK\r\nX-Folded: one\r\n  two\r\nContent-Length: 2\r\n\r\nok");
    const Result<HttpResponse> result = fetch(to(files));
    QCOMPARE(result->header("X-Folded"), std::optional<QByteArray>("one two"));
    QCOMPARE(result->body, QByteArray("ok"));
}

void CurlSessionTest::skipsAnnouncements()
{
    answerWith("HTTP/1.1 103 Early Hints\r\nX-Early: yes\r\n\r\nHTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok");
    const Result<HttpResponse> result = fetch(to(files));
    QCOMPARE(result->status, 200);
    QVERIFY(!result->header("X-Early"));
    QCOMPARE(result->body, QByteArray("ok"));
}

void CurlSessionTest::ignoresTrailers()
{
    answerWith("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2\r\nok\r\n0\r\nX-Late: yes\r\n\r\n");
    const Result<HttpResponse> result = fetch(to(files));
    QCOMPARE(result->body, QByteArray("ok"));
    QVERIFY(!result->header("X-Late"));
}

void CurlSessionTest::whatLibcurlDoesNotTakeFailsLater()
{
    constexpr qsizetype longerThanLibcurlTakes = 8'000'001;
    HttpRequest request = to(files);
    request.url.setPath(u'/' + QString(longerThanLibcurlTakes, u'a'));
    SessionOutcome outcome;
    const Subscription subscription = m_client->send(request, outcome.completion());
    QVERIFY(!outcome.isOver());
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(std::get<UrlLoadingError>(outcome.results.front().error()).code, UrlErrorCode::cannotConnectToHost);
    QCOMPARE(m_market->requestCount(files), 0);
    Subscription dropped = m_client->send(request, outcome.completion());
    dropped.cancel();
    QCOMPARE(fetch(to(files)).value().body, QByteArray("the file"));
    QCOMPARE(outcome.results.size(), std::size_t(1));
}

void CurlSessionTest::answersWithoutAHead_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<UrlErrorCode>("code");
    QTest::newRow("nothing") << QByteArray() << UrlErrorCode::networkConnectionLost;
    QTest::newRow("cut in the head") << QByteArray("HTTP/1.1 200 OK\r\nContent-Le")
                                     << UrlErrorCode::networkConnectionLost;
    QTest::newRow("cut behind a header") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n")
                                         << UrlErrorCode::networkConnectionLost;
    QTest::newRow("another protocol") << QByteArray("HTTP/1.1 101 Switching Protocols\r\n\r\nhello")
                                      << UrlErrorCode::badServerResponse;
}

void CurlSessionTest::answersWithoutAHead()
{
    QFETCH(QByteArray, answer);
    QFETCH(UrlErrorCode, code);
    answerWith(answer);
    const Result<HttpResponse> result = fetch(to(files));
    QVERIFY(!result);
    QCOMPARE(std::get<UrlLoadingError>(result.error()).code, code);
}

// What a log tells once must not come in other words each time.
void CurlSessionTest::failuresInTheSameWords_data()
{
    QTest::addColumn<bool>("isRefused");
    QTest::addColumn<QString>("detail");
    QTest::newRow("refused") << true << QStringLiteral("Connection refused");
    QTest::newRow("cut body") << false << QString::fromUtf8(curl_easy_strerror(CURLE_PARTIAL_FILE));
}

void CurlSessionTest::failuresInTheSameWords()
{
    QFETCH(bool, isRefused);
    answerWith("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nok");
    HttpRequest request = to(files);
    if (isRefused)
        request.url = QUrl(QStringLiteral("http://127.0.0.1:1/"));
    const Result<HttpResponse> result = fetch(request);
    QVERIFY(!result);
    QTEST(std::get<UrlLoadingError>(result.error()).detail, "detail");
}

TICKWISE_TEST(CurlSessionTest)
#include "CurlSessionTest.moc"
