#include "platform/network/CurlSession.h"
#include "doubles/TestProgram.h"

#include "demo/LoopbackMarket.h"
#include "platform/network/NetworkHttpClient.h"
#include "platform/network/ProxyEnvironment.h"

#include <QAbstractEventDispatcher>
#include <QBuffer>
#include <QElapsedTimer>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>

#include <csignal>
#include <netdb.h>

using namespace tickwise;
using namespace std::chrono_literals;
using enum MarketEndpoint;

namespace {

QSemaphore lookupsBegun;
QSemaphore lookupsMayEnd;

/// What a completion got.
struct Outcome
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

// Looks up names in place of the system's function: none exists, and one takes long to tell.
extern "C" int getaddrinfo(const char *name, const char *, const addrinfo *, addrinfo **)
{
    if (QByteArrayView(name) == "slow.example") {
        lookupsBegun.release();
        lookupsMayEnd.acquire();
    }
    return EAI_NONAME;
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
    void boundsTheHeaders_data();
    void boundsTheHeaders();
    void brokenHandshakes_data();
    void brokenHandshakes();
    void writingToAClosedConnectionKillsNobody();
    void leavesRoomBehindTheBody();
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
    Outcome outcome;
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
    Outcome outcome;
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
    Outcome outcome;
    Outcome dropped;
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
    Outcome dropped;
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
    Outcome first;
    Outcome second;
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
    Outcome first;
    Outcome second;
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
    Outcome outcome;
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
    Outcome outcome;
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
    Outcome outcome;
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
    Outcome outcome;
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
    Outcome outcome;
    Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_COMPARE(lookupsBegun.available(), 1);
    lookupsBegun.acquire();
    QElapsedTimer time;
    time.start();
    subscription.cancel();
    QVERIFY(fetch(to(files)));
    QVERIFY2(time.elapsed() < 2000, qPrintable(QString::number(time.elapsed())));
    lookupsMayEnd.release();
    QVERIFY(!outcome.isOver());
}

void CurlSessionTest::destroyingWhileTheHostIsLookedUp()
{
    HttpRequest request;
    request.url = QUrl(QStringLiteral("http://slow.example/"));
    Outcome outcome;
    const Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_COMPARE(lookupsBegun.available(), 1);
    lookupsBegun.acquire();
    m_client.reset();
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(std::get<UrlLoadingError>(outcome.results[0].error()).code, UrlErrorCode::cancelled);
    lookupsMayEnd.release();
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

void CurlSessionTest::leavesRoomBehindTheBody()
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
    Outcome outcome;
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
