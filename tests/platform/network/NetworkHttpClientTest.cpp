#include "platform/network/NetworkHttpClient.h"

#include "demo/LoopbackMarket.h"
#include "doubles/TestProgram.h"
#include "platform/network/HttpRequestOperation.h"
#include "platform/network/NetworkFailure.h"
#include "platform/network/ProxyEnvironment.h"

#include <QBuffer>
#include <QFile>
#include <QSignalSpy>
#include <QThread>

using namespace tickwise;
using namespace std::chrono_literals;
using enum MarketEndpoint;
using Transport = LoopbackMarket::Transport;
using Repeat = LoopbackMarket::Repeat;

namespace {

/// Collects what a completion gets.
struct Outcome
{
    std::vector<Result<HttpResponse>> results;

    Completion<HttpResponse> completion()
    {
        return [this](Result<HttpResponse> result) { results.push_back(std::move(result)); };
    }
    bool isOver() const { return !results.empty(); }
    UrlErrorCode code() const { return std::get<UrlLoadingError>(results.at(0).error()).code; }
};

HttpRequest to(const QUrl &url)
{
    HttpRequest request;
    request.url = url;
    return request;
}

/// The largest size that the process had in memory, in kibibytes, since `forgetPeakMemory`.
qint64 peakMemory()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        qFatal("No /proc");
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong();
    }
    qFatal("No VmHWM");
}

void forgetPeakMemory()
{
    QFile refs(QStringLiteral("/proc/self/clear_refs"));
    if (!refs.open(QIODevice::WriteOnly | QIODevice::Unbuffered) || refs.write("5") != 1)
        qFatal("The peak of the memory cannot be reset");
}

QByteArray numbered(int lines)
{
    QByteArray text;
    for (int i = 0; i < lines; ++i)
        text += "line " + QByteArray::number(i) + '\n';
    return text;
}

} // namespace

class NetworkHttpClientTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void failureCodes_data();
    void failureCodes();
    void faultsOverPlainAndTls_data();
    void faultsOverPlainAndTls();
    void bodiesArriveWhole_data();
    void bodiesArriveWhole();
    void statusesAreResponses_data();
    void statusesAreResponses();
    void headersAreFoundWithoutCase();
    void sendsAPlainGet();
    void keepsNoCookies();
    void badUrls_data();
    void badUrls();
    void answersLaterAndOnce();
    void reusesItsConnection_data();
    void reusesItsConnection();
    void droppingAborts_data();
    void droppingAborts();
    void droppingInTheCompletion();
    void droppingInTheProgress();
    void destroyingTheClientInTheCompletion();
    void destroyingTheClientEndsWithCancelled();
    void timesOutWithoutAnAnswer_data();
    void timesOutWithoutAnAnswer();
    void anAnswerThatKeepsComingOutlivesTheTimeout();
    void deadlineEndsASlowDrip();
    void deadlinePassesDuringARedirect();
    void announcedOversizeIsNotRead();
    void endlessBodyStopsAtTheLimit();
    void bodyOfExactlyTheLimit();
    void bombStopsWhileInflating();
    void redirectRule_data();
    void redirectRule();
    void followsRedirectsToTheSamePlace_data();
    void followsRedirectsToTheSamePlace();
    void refusesRedirectsElsewhere();
    void asksWhereRedirectsMayGo();
    void followsFiveRedirectsAndNoMore();
    void certificates_data();
    void certificates();
    void plainServerBehindTls();
    void refusedConnection();
    void unknownHost();
    void reportsProgress();
    void writesToTheSink();
    void sinkTakesOnlyGoodAnswers();
    void sinkThatTakesNothing();

private:
    void start(Transport transport, LoopbackCertificate certificate = LoopbackCertificate::valid);
    QUrl okxUrl() const { return m_market->url(okx, QStringLiteral("/api/v5/market/tickers?instType=SPOT")); }
    QUrl fileUrl(const QString &path) const { return m_market->url(files, path); }

    std::unique_ptr<LoopbackMarket> m_market;
    std::unique_ptr<NetworkHttpClient> m_client;
};

void NetworkHttpClientTest::init()
{
    test::clearProxyEnvironment();
    start(Transport::plain);
}

void NetworkHttpClientTest::cleanup()
{
    m_client.reset();
    m_market.reset();
}

void NetworkHttpClientTest::start(Transport transport, LoopbackCertificate certificate)
{
    LoopbackMarket::Options options;
    options.transport = transport;
    options.certificate = certificate;
    m_client = std::make_unique<NetworkHttpClient>(LoopbackMarket::authorities(), [] { return true; });
    m_market = std::make_unique<LoopbackMarket>(options);
    m_market->setPrice(QStringLiteral("BTC"), 67432.1, 2.5);
    m_market->addFile(QStringLiteral("/a.txt"), "the file", "text/plain");
}

void NetworkHttpClientTest::failureCodes_data()
{
    QTest::addColumn<NetworkFailure>("failure");
    QTest::addColumn<UrlErrorCode>("code");
    const auto row = [](const char *name, NetworkFailure failure, UrlErrorCode code) {
        QTest::newRow(name) << failure << code;
    };
    const auto connect = [](int osError, bool hasNetwork = true) {
        return NetworkFailure{.result = CURLE_COULDNT_CONNECT, .osError = osError, .hasNetwork = hasNetwork};
    };
    const auto certificate = [](long verdict) {
        return NetworkFailure{.result = CURLE_PEER_FAILED_VERIFICATION, .verifyResult = verdict};
    };
    row("refused", connect(ECONNREFUSED), UrlErrorCode::cannotConnectToHost);
    row("refused, no network", connect(ECONNREFUSED, false), UrlErrorCode::cannotConnectToHost);
    row("nothing known", connect(0), UrlErrorCode::cannotConnectToHost);
    row("network unreachable", connect(ENETUNREACH), UrlErrorCode::cannotConnectToHost);
    row("network unreachable, no network", connect(ENETUNREACH, false), UrlErrorCode::notConnectedToInternet);
    row("network down", connect(ENETDOWN), UrlErrorCode::cannotConnectToHost);
    row("network down, no network", connect(ENETDOWN, false), UrlErrorCode::notConnectedToInternet);
    row("host unreachable", connect(EHOSTUNREACH), UrlErrorCode::cannotConnectToHost);
    row("host unreachable, no network", connect(EHOSTUNREACH, false), UrlErrorCode::notConnectedToInternet);
    row("socket time-out", connect(ETIMEDOUT), UrlErrorCode::timedOut);
    row("host", {CURLE_COULDNT_RESOLVE_HOST}, UrlErrorCode::cannotFindHost);
    row("host, no network", {.result = CURLE_COULDNT_RESOLVE_HOST, .hasNetwork = false},
        UrlErrorCode::notConnectedToInternet);
    row("time-out", {CURLE_OPERATION_TIMEDOUT}, UrlErrorCode::timedOut);
    row("reset", {CURLE_RECV_ERROR}, UrlErrorCode::networkConnectionLost);
    row("reset while sending", {CURLE_SEND_ERROR}, UrlErrorCode::networkConnectionLost);
    row("closed", {CURLE_GOT_NOTHING}, UrlErrorCode::networkConnectionLost);
    row("cut", {.result = CURLE_PARTIAL_FILE, .status = 200}, UrlErrorCode::networkConnectionLost);
    row("broken in the body", {.result = CURLE_RECV_ERROR, .status = 200, .hasNetwork = false},
        UrlErrorCode::networkConnectionLost);
    row("broken in the body, behind a proxy", {.result = CURLE_RECV_ERROR, .proxyStatus = 200, .status = 200},
        UrlErrorCode::networkConnectionLost);
    row("broken in the body, after a proxy asked for a password",
        {.result = CURLE_RECV_ERROR, .proxyStatus = 407, .status = 200}, UrlErrorCode::networkConnectionLost);
    row("handshake", {CURLE_SSL_CONNECT_ERROR}, UrlErrorCode::secureConnectionFailed);
    row("closed in the handshake",
        {CURLE_SSL_CONNECT_ERROR, QStringLiteral("error:0A000126:SSL routines::unexpected eof while reading")},
        UrlErrorCode::networkConnectionLost);
    row("reset in the handshake", {CURLE_SSL_CONNECT_ERROR, QStringLiteral("Recv failure: Connection reset by peer")},
        UrlErrorCode::networkConnectionLost);
    row("written to what is closed", {CURLE_SSL_CONNECT_ERROR, QStringLiteral("Send failure: Broken pipe")},
        UrlErrorCode::networkConnectionLost);
    row("broken in the handshake",
        {CURLE_SSL_CONNECT_ERROR, QStringLiteral("OpenSSL SSL_connect: Connection reset by peer in connection to a:1")},
        UrlErrorCode::networkConnectionLost);
    row("other protocol",
        {CURLE_SSL_CONNECT_ERROR, QStringLiteral("error:0A00010B:SSL routines::wrong version number")},
        UrlErrorCode::secureConnectionFailed);
    row("no cipher", {CURLE_SSL_CIPHER}, UrlErrorCode::secureConnectionFailed);
    row("no authorities", {CURLE_SSL_CACERT_BADFILE}, UrlErrorCode::secureConnectionFailed);
    row("early", certificate(9), UrlErrorCode::serverCertificateHasBadDate);
    row("expired", certificate(10), UrlErrorCode::serverCertificateHasBadDate);
    row("self-signed", certificate(18), UrlErrorCode::serverCertificateUntrusted);
    row("unknown issuer", certificate(20), UrlErrorCode::serverCertificateUntrusted);
    row("revoked", certificate(23), UrlErrorCode::serverCertificateUntrusted);
    row("other name", certificate(0), UrlErrorCode::serverCertificateUntrusted);
    row("proxy refuses", {.result = CURLE_RECV_ERROR, .proxyStatus = 502}, UrlErrorCode::cannotConnectToHost);
    row("proxy password", {.result = CURLE_RECV_ERROR, .proxyStatus = 407}, UrlErrorCode::cannotConnectToHost);
    row("proxy host", {CURLE_COULDNT_RESOLVE_PROXY}, UrlErrorCode::cannotFindHost);
    row("proxy", {CURLE_PROXY}, UrlErrorCode::cannotConnectToHost);
    row("URL", {CURLE_URL_MALFORMAT}, UrlErrorCode::badURL);
    row("no HTTP", {CURLE_UNSUPPORTED_PROTOCOL}, UrlErrorCode::badServerResponse);
    row("strange reply", {CURLE_WEIRD_SERVER_REPLY}, UrlErrorCode::badServerResponse);
    row("many headers", {CURLE_FILESIZE_EXCEEDED}, UrlErrorCode::dataLengthExceedsMaximum);
    row("a long header", {CURLE_OUT_OF_MEMORY}, UrlErrorCode::dataLengthExceedsMaximum);
}

void NetworkHttpClientTest::failureCodes()
{
    QFETCH(NetworkFailure, failure);
    QFETCH(UrlErrorCode, code);
    QCOMPARE(urlErrorCode(failure), code);
}

void NetworkHttpClientTest::faultsOverPlainAndTls_data()
{
    QTest::addColumn<Transport>("transport");
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<UrlErrorCode>("code");
    for (const Transport transport : {Transport::plain, Transport::tls}) {
        const auto row = [transport](const char *name, Fault fault, UrlErrorCode code) {
            QTest::addRow("%s, %s", name, transport == Transport::tls ? "TLS" : "plain") << transport << fault << code;
        };
        row("reset", faults::reset(), UrlErrorCode::networkConnectionLost);
        row("reset in the body", faults::resetAfter(100), UrlErrorCode::networkConnectionLost);
        row("cut before the body", faults::truncateAfter(0), UrlErrorCode::networkConnectionLost);
        row("cut after a byte", faults::truncateAfter(1), UrlErrorCode::networkConnectionLost);
        row("cut in the body", faults::truncateAfter(100), UrlErrorCode::networkConnectionLost);
        row("cut with an announced length",
            faults::together({[](LoopbackAnswer &a) { a.framing = LoopbackAnswer::Framing::contentLength; },
                              faults::truncateAfter(100)}),
            UrlErrorCode::networkConnectionLost);
        row("cut in a gzip stream", faults::together({faults::gzip(), faults::truncateAfter(60)}),
            UrlErrorCode::networkConnectionLost);
        row("hang", faults::hang(), UrlErrorCode::timedOut);
        row("stall after the head", faults::stallAfter(0), UrlErrorCode::timedOut);
        row("stall in the body", faults::stallAfter(100), UrlErrorCode::timedOut);
        row("late", faults::delay(5s), UrlErrorCode::timedOut);
        row("oversize, announced",
            faults::together(
                {faults::oversize(), [](LoopbackAnswer &a) { a.framing = LoopbackAnswer::Framing::contentLength; }}),
            UrlErrorCode::dataLengthExceedsMaximum);
        row("oversize, chunked", faults::together({faults::oversize(), faults::chunked()}),
            UrlErrorCode::dataLengthExceedsMaximum);
        row("gzip bomb", faults::gzipBomb(64), UrlErrorCode::dataLengthExceedsMaximum);
        row("damaged gzip",
            faults::together(
                {faults::body("\x1f\x8bnothing of the kind"), faults::headers({{"Content-Encoding", "gzip"}})}),
            UrlErrorCode::cannotParseResponse);
        row("not HTTP", faults::notHttp(), UrlErrorCode::badServerResponse);
        row("redirect elsewhere", faults::redirect(QUrl(QStringLiteral("https://www.example.invalid/"))),
            UrlErrorCode::redirectRefused);
    }
}

void NetworkHttpClientTest::faultsOverPlainAndTls()
{
    QFETCH(Transport, transport);
    QFETCH(Fault, fault);
    QFETCH(UrlErrorCode, code);
    start(transport);
    m_market->script(okx, fault, Repeat::always);
    HttpRequest request = to(okxUrl());
    request.timeout = code == UrlErrorCode::timedOut ? 400ms : 10000ms;
    Outcome outcome;
    const Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QVERIFY(!outcome.results[0]);
    QCOMPARE(outcome.code(), code);
    QVERIFY(!std::get<UrlLoadingError>(outcome.results[0].error()).detail.isEmpty());

    m_market->clearScript(okx);
    Outcome next;
    const Subscription after = m_client->send(to(okxUrl()), next.completion());
    QTRY_VERIFY(next.isOver());
    QVERIFY2(next.results[0].has_value(), "the client works on after the fault");
}

void NetworkHttpClientTest::bodiesArriveWhole_data()
{
    QTest::addColumn<Transport>("transport");
    QTest::addColumn<Fault>("form");
    QTest::addColumn<int>("lines");
    const auto untilClose = [](LoopbackAnswer &a) { a.framing = LoopbackAnswer::Framing::untilClose; };
    const std::vector<std::pair<const char *, Fault>> forms = {
        {"length", faults::headers({})}, {"chunked", faults::chunked()},
        {"gzip", faults::gzip()},        {"gzip, chunked", faults::together({faults::gzip(), faults::chunked()})},
        {"until close", untilClose},     {"slow", faults::drip(20000, 5ms)},
    };
    for (const Transport transport : {Transport::plain, Transport::tls}) {
        for (const auto &[name, form] : forms) {
            for (const int lines : {0, 1, 6000, 150000}) {
                QTest::addRow("%s, %d lines, %s", name, lines, transport == Transport::tls ? "TLS" : "plain")
                    << transport << form << (QByteArrayView(name) == "slow" ? lines / 10 : lines);
            }
        }
    }
}

void NetworkHttpClientTest::bodiesArriveWhole()
{
    QFETCH(Transport, transport);
    QFETCH(Fault, form);
    QFETCH(int, lines);
    start(transport);
    const QByteArray text = numbered(lines);
    m_market->addFile(QStringLiteral("/lines"), text, "text/plain");
    m_market->script(files, form);
    Outcome outcome;
    const Subscription subscription = m_client->send(to(fileUrl(QStringLiteral("/lines"))), outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QVERIFY2(outcome.results[0].has_value(),
             outcome.results[0] ? "" : qPrintable(description(outcome.results[0].error())));
    QCOMPARE(outcome.results[0]->body.size(), text.size());
    QVERIFY(outcome.results[0]->body == text);
}

void NetworkHttpClientTest::statusesAreResponses_data()
{
    QTest::addColumn<int>("status");
    for (const int status :
         {200, 204, 206, 300, 304, 400, 401, 403, 404, 405, 407, 409, 410, 418, 429, 451, 500, 501, 502, 503, 599})
        QTest::addRow("%d", status) << status;
}

void NetworkHttpClientTest::statusesAreResponses()
{
    QFETCH(int, status);
    const QByteArray body = status == 204 || status == 304 ? QByteArray() : QByteArray(R"({"code":-1003})");
    m_market->script(okx, faults::status(status, body, {{"Retry-After", "30"}}));
    Outcome outcome;
    const Subscription subscription = m_client->send(to(okxUrl()), outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QVERIFY2(outcome.results[0].has_value(),
             outcome.results[0] ? "" : qPrintable(description(outcome.results[0].error())));
    QCOMPARE(outcome.results[0]->status, status);
    QCOMPARE(outcome.results[0]->body, body);
    QCOMPARE(outcome.results[0]->header("Retry-After"), std::optional<QByteArray>("30"));
}

void NetworkHttpClientTest::headersAreFoundWithoutCase()
{
    m_market->script(okx, faults::headers({{"X-Mbx-Used-Weight-1m", "40"}, {"X-Second", " padded "}}));
    Outcome outcome;
    const Subscription subscription = m_client->send(to(okxUrl()), outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    const HttpResponse &response = outcome.results[0].value();
    QCOMPARE(response.header("x-mbx-used-weight-1M"), std::optional<QByteArray>("40"));
    QCOMPARE(response.header("content-type"), std::optional<QByteArray>("application/json"));
    QCOMPARE(response.header("x-second"), std::optional<QByteArray>("padded"));
    QVERIFY(!response.header("Retry-After"));
}

void NetworkHttpClientTest::sendsAPlainGet()
{
    Outcome outcome;
    const QUrl url = m_market->url(binanceMain, QStringLiteral("/ticker/24hr?symbols=%5B%22BTCUSDT%22%5D"));
    const Subscription subscription = m_client->send(to(url), outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(outcome.results[0]->status, 200);
    const LoopbackMarket::Request &request = m_market->requests().at(0);
    QCOMPARE(request.method, QByteArray("GET"));
    QCOMPARE(request.target, QByteArray("/api/v3/ticker/24hr?symbols=%5B%22BTCUSDT%22%5D"));
    for (const char *name : {"Authorization", "Cookie", "Referer", "If-None-Match", "If-Modified-Since", "Upgrade"})
        QVERIFY2(!request.header(name), name);
    QCOMPARE(request.header("Connection").value_or("").toLower(), QByteArray("keep-alive"));
}

void NetworkHttpClientTest::keepsNoCookies()
{
    m_market->script(okx, faults::headers({{"Set-Cookie", "id=1; Path=/"}}), Repeat::always);
    for (int i = 0; i < 2; ++i) {
        Outcome outcome;
        const Subscription subscription = m_client->send(to(okxUrl()), outcome.completion());
        QTRY_VERIFY(outcome.isOver());
    }
    QCOMPARE(m_market->requestCount(okx), 2);
    QVERIFY(!m_market->requests().at(1).header("Cookie"));
}

void NetworkHttpClientTest::badUrls_data()
{
    QTest::addColumn<QString>("url");
    for (const char *url :
         {"", "file:///etc/passwd", "data:,x", "ftp://127.0.0.1/", "http://", "api/v3", "http://[broken/"})
        QTest::newRow(url) << QString::fromLatin1(url);
}

void NetworkHttpClientTest::badUrls()
{
    QFETCH(QString, url);
    Outcome outcome;
    const Subscription subscription = m_client->send(to(QUrl(url)), outcome.completion());
    QVERIFY(!outcome.isOver());
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(outcome.code(), UrlErrorCode::badURL);
    Outcome next;
    const Subscription after = m_client->send(to(okxUrl()), next.completion());
    QTRY_VERIFY(next.isOver());
    QCOMPARE(outcome.results.size(), 1U);
}

void NetworkHttpClientTest::answersLaterAndOnce()
{
    Outcome outcome;
    const Subscription subscription = m_client->send(to(okxUrl()), outcome.completion());
    QVERIFY(!outcome.isOver());
    QTRY_VERIFY(outcome.isOver());
    Outcome second;
    const Subscription another = m_client->send(to(okxUrl()), second.completion());
    QTRY_VERIFY(second.isOver());
    QCOMPARE(outcome.results.size(), 1U);
}

void NetworkHttpClientTest::reusesItsConnection_data()
{
    QTest::addColumn<Transport>("transport");
    QTest::newRow("plain") << Transport::plain;
    QTest::newRow("TLS") << Transport::tls;
}

void NetworkHttpClientTest::reusesItsConnection()
{
    QFETCH(Transport, transport);
    start(transport);
    for (int i = 0; i < 10; ++i) {
        Outcome outcome;
        const Subscription subscription = m_client->send(to(okxUrl()), outcome.completion());
        QTRY_VERIFY(outcome.isOver());
        QCOMPARE(outcome.results[0]->status, 200);
    }
    QCOMPARE(m_market->requestCount(okx), 10);
    QCOMPARE(m_market->server(okx).connectionsSoFar(), 1);
}

void NetworkHttpClientTest::droppingAborts_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::newRow("before the head") << faults::hang();
    QTest::newRow("in the body") << faults::stallAfter(100);
    QTest::newRow("while bytes come") << faults::together({faults::oversize(1 << 30), faults::drip(10, 1ms)});
}

void NetworkHttpClientTest::droppingAborts()
{
    QFETCH(Fault, fault);
    m_market->script(okx, fault, Repeat::always);
    QSignalSpy closed(m_market.get(), &LoopbackMarket::connectionClosed);
    QSignalSpy requested(m_market.get(), &LoopbackMarket::requested);
    Outcome outcome;
    Subscription subscription = m_client->send(to(okxUrl()), outcome.completion());
    QVERIFY(requested.wait());
    QCOMPARE(closed.count(), 0);
    subscription.cancel();
    QTRY_VERIFY(closed.count() > 0);
    QTRY_COMPARE(m_market->server(okx).openConnections(), 0);
    QVERIFY(!outcome.isOver());
}

void NetworkHttpClientTest::droppingInTheCompletion()
{
    Subscription subscription;
    int calls = 0;
    subscription = m_client->send(to(okxUrl()), [&](const Result<HttpResponse> &result) {
        subscription.cancel();
        QVERIFY(result.has_value());
        ++calls;
    });
    QTRY_COMPARE(calls, 1);
}

void NetworkHttpClientTest::droppingInTheProgress()
{
    m_market->script(okx, faults::oversize(1024 * 1024));
    QSignalSpy closed(m_market.get(), &LoopbackMarket::connectionClosed);
    HttpRequest request = to(okxUrl());
    Subscription subscription;
    int steps = 0;
    request.progress = [&](qint64, qint64) {
        subscription.cancel();
        ++steps;
    };
    Outcome outcome;
    subscription = m_client->send(request, outcome.completion());
    QTRY_COMPARE(closed.count(), 1);
    QCOMPARE(steps, 1);
    QVERIFY(!outcome.isOver());
}

void NetworkHttpClientTest::destroyingTheClientInTheCompletion()
{
    int calls = 0;
    const Subscription subscription = m_client->send(to(okxUrl()), [&](const Result<HttpResponse> &result) {
        m_client.reset();
        QVERIFY(result.has_value());
        ++calls;
    });
    QTRY_COMPARE(calls, 1);
}

void NetworkHttpClientTest::destroyingTheClientEndsWithCancelled()
{
    m_market->script(okx, faults::hang(), Repeat::always);
    QSignalSpy requested(m_market.get(), &LoopbackMarket::requested);
    Outcome outcome;
    const Subscription subscription = m_client->send(to(okxUrl()), outcome.completion());
    QVERIFY(requested.wait());
    m_client.reset();
    QVERIFY(!outcome.isOver());
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(outcome.code(), UrlErrorCode::cancelled);
}

void NetworkHttpClientTest::timesOutWithoutAnAnswer_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::newRow("no head") << faults::hang();
    QTest::newRow("no body") << faults::stallAfter(0);
}

void NetworkHttpClientTest::timesOutWithoutAnAnswer()
{
    QFETCH(Fault, fault);
    m_market->script(okx, fault, Repeat::always);
    HttpRequest request = to(okxUrl());
    request.timeout = 300ms;
    QElapsedTimer time;
    time.start();
    Outcome outcome;
    const Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(outcome.code(), UrlErrorCode::timedOut);
    QVERIFY2(time.elapsed() >= 250, "not before its time");
    QTRY_COMPARE(m_market->server(okx).openConnections(), 0);
}

void NetworkHttpClientTest::anAnswerThatKeepsComingOutlivesTheTimeout()
{
    m_market->addFile(QStringLiteral("/slow"), QByteArray(20, 'x'), "text/plain");
    m_market->script(files, faults::drip(1, 100ms));
    HttpRequest request = to(fileUrl(QStringLiteral("/slow")));
    request.timeout = 1500ms;
    Outcome outcome;
    const Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(outcome.results[0].value().body, QByteArray(20, 'x'));
}

void NetworkHttpClientTest::deadlineEndsASlowDrip()
{
    m_market->script(okx, faults::together({faults::oversize(100000), faults::drip(1, 20ms)}), Repeat::always);
    HttpRequest request = to(okxUrl());
    request.timeout = 20s;
    request.deadline = 1500ms;
    Outcome outcome;
    const Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_VERIFY_WITH_TIMEOUT(outcome.isOver(), 10000);
    QCOMPARE(outcome.code(), UrlErrorCode::timedOut);
    QVERIFY(m_market->server(okx).bodyBytesSent() > 0);
    QTRY_COMPARE(m_market->server(okx).openConnections(), 0);
}

// The main thread stalls longer than the deadline just when the request is sent on.
void NetworkHttpClientTest::deadlinePassesDuringARedirect()
{
    m_market->script(files, faults::redirect(okxUrl()));
    HttpRequest request = to(fileUrl(QStringLiteral("/a.txt")));
    request.deadline = 500ms;
    request.mayRedirectTo = [](const QUrl &) {
        QThread::sleep(1);
        return true;
    };
    Outcome outcome;
    const Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(outcome.code(), UrlErrorCode::timedOut);
    QCOMPARE(m_market->requestCount(okx), 0);
}

void NetworkHttpClientTest::announcedOversizeIsNotRead()
{
    m_market->script(files, faults::oversize(1LL << 30));
    HttpRequest request = to(fileUrl(QStringLiteral("/a.txt")));
    int steps = 0;
    request.progress = [&](qint64, qint64) { ++steps; };
    Outcome outcome;
    const Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(outcome.code(), UrlErrorCode::dataLengthExceedsMaximum);
    QCOMPARE(steps, 0);
    QTRY_COMPARE(m_market->server(files).openConnections(), 0);
    // What the buffers of both kernels' ends took in.
    QVERIFY(m_market->server(files).bodyBytesSent() < 16 * 1024 * 1024);
}

void NetworkHttpClientTest::endlessBodyStopsAtTheLimit()
{
    m_market->script(files, faults::together({faults::oversize(1LL << 40), faults::chunked()}));
    HttpRequest request = to(fileUrl(QStringLiteral("/a.txt")));
    request.maximumBytes = 1024 * 1024;
    forgetPeakMemory();
    const qint64 before = peakMemory();
    Outcome outcome;
    const Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(outcome.code(), UrlErrorCode::dataLengthExceedsMaximum);
    QTRY_COMPARE(m_market->server(files).openConnections(), 0);
    QVERIFY(m_market->server(files).bodyBytesSent() < 16 * 1024 * 1024);
    const qint64 grown = peakMemory() - before;
    QVERIFY2(grown < 24 * 1024, qPrintable(QStringLiteral("%1 KiB more").arg(grown)));
}

void NetworkHttpClientTest::bodyOfExactlyTheLimit()
{
    m_market->addFile(QStringLiteral("/full"), QByteArray(70000, 'x'), "text/plain");
    for (const Fault &form : {faults::headers({}), faults::chunked(), faults::gzip()}) {
        for (const int limit : {70000, 69999}) {
            m_market->script(files, form);
            HttpRequest request = to(fileUrl(QStringLiteral("/full")));
            request.maximumBytes = limit;
            Outcome outcome;
            const Subscription subscription = m_client->send(request, outcome.completion());
            QTRY_VERIFY(outcome.isOver());
            QCOMPARE(outcome.results[0].has_value(), limit == 70000);
            if (!outcome.results[0])
                QCOMPARE(outcome.code(), UrlErrorCode::dataLengthExceedsMaximum);
        }
    }
}

void NetworkHttpClientTest::bombStopsWhileInflating()
{
    LoopbackAnswer bomb;
    faults::gzipBomb(512)(bomb);
    m_market->script(files, [&bomb](LoopbackAnswer &answer) { answer = bomb; });
    HttpRequest request = to(fileUrl(QStringLiteral("/a.txt")));
    forgetPeakMemory();
    const qint64 before = peakMemory();
    Outcome outcome;
    const Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(outcome.code(), UrlErrorCode::dataLengthExceedsMaximum);
    const qint64 grown = peakMemory() - before;
    QVERIFY2(grown < 64 * 1024, qPrintable(QStringLiteral("%1 KiB more").arg(grown)));
}

void NetworkHttpClientTest::redirectRule_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<bool>("allowed");
    QTest::addColumn<bool>("allowedByRule");
    const auto row = [](const char *name, const char *from, const char *to, bool allowed, bool byRule) {
        QTest::newRow(name) << QString::fromLatin1(from) << QString::fromLatin1(to) << allowed << byRule;
    };
    row("same place", "https://a.example/x", "https://a.example/y", true, false);
    row("same place, default port", "https://a.example/x", "https://a.example:443/y", true, false);
    row("same place, case of the host", "https://a.example/x", "https://A.EXAMPLE/y", true, false);
    row("other port", "https://a.example/x", "https://a.example:8443/x", false, false);
    row("other host", "https://a.example/x", "https://c.example/x", false, false);
    row("allowed host", "https://a.example/x", "https://b.example/x", false, true);
    row("to plain", "https://b.example/x", "http://b.example/x", false, false);
    row("to TLS", "http://a.example/x", "https://b.example/x", false, true);
    row("to TLS, same host", "http://a.example/x", "https://a.example/x", false, false);
    row("to a file", "https://b.example/x", "file:///etc/passwd", false, false);
    row("nowhere", "https://b.example/x", "", false, false);
}

void NetworkHttpClientTest::redirectRule()
{
    QFETCH(QString, from);
    QFETCH(QString, to);
    QFETCH(bool, allowed);
    QFETCH(bool, allowedByRule);
    HttpRequest request;
    QCOMPARE(mayRedirect(request, QUrl(from), QUrl(to)), allowed);
    request.mayRedirectTo = [](const QUrl &target) { return target.host() == QStringLiteral("b.example"); };
    QCOMPARE(mayRedirect(request, QUrl(from), QUrl(to)), allowedByRule);
}

void NetworkHttpClientTest::followsRedirectsToTheSamePlace_data()
{
    QTest::addColumn<int>("status");
    for (const int status : {301, 302, 303, 307, 308})
        QTest::addRow("%d", status) << status;
}

void NetworkHttpClientTest::followsRedirectsToTheSamePlace()
{
    QFETCH(int, status);
    m_market->script(files, faults::together({faults::redirect(QUrl(QStringLiteral("/a.txt")), status),
                                              faults::body("a page that says so", "text/html")}));
    QByteArray bytes;
    QBuffer sink(&bytes);
    QVERIFY(sink.open(QIODevice::WriteOnly));
    HttpRequest request = to(fileUrl(QStringLiteral("/moved")));
    request.sink = &sink;
    Outcome outcome;
    const Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(outcome.results[0].value().status, 200);
    QCOMPARE(bytes, QByteArray("the file"));
    QCOMPARE(m_market->requestCount(files), 2);
    QCOMPARE(m_market->requests().at(1).target, QByteArray("/a.txt"));
}

void NetworkHttpClientTest::refusesRedirectsElsewhere()
{
    m_market->script(files, faults::redirect(okxUrl()));
    Outcome outcome;
    const Subscription subscription = m_client->send(to(fileUrl(QStringLiteral("/a.txt"))), outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(outcome.code(), UrlErrorCode::redirectRefused);
    QCOMPARE(m_market->requestCount(okx), 0);
}

void NetworkHttpClientTest::asksWhereRedirectsMayGo()
{
    m_market->script(files, faults::redirect(okxUrl()), Repeat::always);
    HttpRequest request = to(fileUrl(QStringLiteral("/a.txt")));
    QList<QUrl> asked;
    bool allowed = true;
    request.mayRedirectTo = [&](const QUrl &target) {
        asked.append(target);
        return allowed;
    };
    Outcome outcome;
    const Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(outcome.results[0].value().status, 200);
    QCOMPARE(asked, QList{okxUrl()});
    QCOMPARE(m_market->requestCount(okx), 1);
    allowed = false;
    Outcome refused;
    const Subscription again = m_client->send(request, refused.completion());
    QTRY_VERIFY(refused.isOver());
    QCOMPARE(refused.code(), UrlErrorCode::redirectRefused);
    QCOMPARE(m_market->requestCount(okx), 1);
}

void NetworkHttpClientTest::followsFiveRedirectsAndNoMore()
{
    for (const int count : {5, 6}) {
        m_market->forgetRequests();
        m_market->clearScript(files);
        for (int i = 0; i < count; ++i)
            m_market->script(files, faults::redirect(QUrl(QStringLiteral("/a.txt?%1").arg(i))));
        Outcome outcome;
        const Subscription subscription = m_client->send(to(fileUrl(QStringLiteral("/a.txt"))), outcome.completion());
        QTRY_VERIFY(outcome.isOver());
        QCOMPARE(outcome.results[0].has_value(), count == 5);
        if (count == 6)
            QCOMPARE(outcome.code(), UrlErrorCode::redirectRefused);
        QCOMPARE(m_market->requestCount(files), 6);
    }
}

void NetworkHttpClientTest::certificates_data()
{
    QTest::addColumn<LoopbackCertificate>("certificate");
    QTest::addColumn<bool>("knowsAuthority");
    QTest::addColumn<UrlErrorCode>("code");
    QTest::newRow("expired") << LoopbackCertificate::expired << true << UrlErrorCode::serverCertificateHasBadDate;
    QTest::newRow("not yet valid") << LoopbackCertificate::notYetValid << true
                                   << UrlErrorCode::serverCertificateHasBadDate;
    QTest::newRow("from a stranger") << LoopbackCertificate::fromStranger << true
                                     << UrlErrorCode::serverCertificateUntrusted;
    QTest::newRow("unknown authority") << LoopbackCertificate::valid << false
                                       << UrlErrorCode::serverCertificateUntrusted;
    QTest::newRow("unknown authority, expired")
        << LoopbackCertificate::expired << false << UrlErrorCode::serverCertificateUntrusted;
}

void NetworkHttpClientTest::certificates()
{
    QFETCH(LoopbackCertificate, certificate);
    QFETCH(bool, knowsAuthority);
    QFETCH(UrlErrorCode, code);
    start(Transport::tls, certificate);
    if (!knowsAuthority)
        m_client = std::make_unique<NetworkHttpClient>();
    Outcome outcome;
    const Subscription subscription = m_client->send(to(okxUrl()), outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QVERIFY(!outcome.results[0]);
    QCOMPARE(outcome.code(), code);
    QCOMPARE(m_market->requestCount(okx), 0);
}

void NetworkHttpClientTest::plainServerBehindTls()
{
    QUrl url = okxUrl();
    url.setScheme(QStringLiteral("https"));
    HttpRequest request = to(url);
    request.timeout = 1s;
    Outcome outcome;
    const Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QVERIFY(!outcome.results[0]);
    // A server that does not know TLS waits for more of a request.
    QCOMPARE(outcome.code(), UrlErrorCode::timedOut);
}

void NetworkHttpClientTest::refusedConnection()
{
    const QUrl url = okxUrl();
    m_market->shutDown(okx);
    Outcome outcome;
    const Subscription subscription = m_client->send(to(url), outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(outcome.code(), UrlErrorCode::cannotConnectToHost);
}

void NetworkHttpClientTest::unknownHost()
{
    for (const bool hasNetwork : {true, false}) {
        NetworkHttpClient client({}, [hasNetwork] { return hasNetwork; });
        Outcome outcome;
        HttpRequest request = to(QUrl(QStringLiteral("http://no-such-host.invalid/")));
        request.timeout = 30s;
        const Subscription subscription = client.send(request, outcome.completion());
        QTRY_VERIFY_WITH_TIMEOUT(outcome.isOver(), 30000);
        QCOMPARE(outcome.code(), hasNetwork ? UrlErrorCode::cannotFindHost : UrlErrorCode::notConnectedToInternet);
    }
}

void NetworkHttpClientTest::reportsProgress()
{
    const qint64 size = 300000;
    m_market->addFile(QStringLiteral("/big"), QByteArray(size, 'x'), "application/octet-stream");
    for (const bool known : {true, false}) {
        if (!known)
            m_market->script(files, faults::gzip());
        HttpRequest request = to(fileUrl(QStringLiteral("/big")));
        std::vector<std::pair<qint64, qint64>> steps;
        request.progress = [&](qint64 received, qint64 total) { steps.emplace_back(received, total); };
        Outcome outcome;
        const Subscription subscription = m_client->send(request, outcome.completion());
        QTRY_VERIFY(outcome.isOver());
        QVERIFY(!steps.empty());
        QVERIFY(std::is_sorted(steps.begin(), steps.end()));
        QCOMPARE(steps.back(), std::make_pair(size, known ? size : -1));
    }
}

void NetworkHttpClientTest::writesToTheSink()
{
    const QByteArray text = numbered(100000);
    m_market->addFile(QStringLiteral("/big"), text, "application/octet-stream");
    QByteArray bytes;
    QBuffer sink(&bytes);
    QVERIFY(sink.open(QIODevice::WriteOnly));
    HttpRequest request = to(fileUrl(QStringLiteral("/big")));
    request.sink = &sink;
    Outcome outcome;
    const Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(outcome.results[0].value().body, QByteArray());
    QVERIFY(bytes == text);
}

void NetworkHttpClientTest::sinkTakesOnlyGoodAnswers()
{
    QByteArray bytes;
    QBuffer sink(&bytes);
    QVERIFY(sink.open(QIODevice::WriteOnly));
    HttpRequest request = to(fileUrl(QStringLiteral("/missing")));
    request.sink = &sink;
    Outcome outcome;
    const Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QCOMPARE(outcome.results[0].value().status, 404);
    QVERIFY(outcome.results[0]->body.contains("Not Found"));
    QCOMPARE(bytes, QByteArray());
}

void NetworkHttpClientTest::sinkThatTakesNothing()
{
    QFile full(QStringLiteral("/dev/full"));
    QVERIFY(full.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    HttpRequest request = to(fileUrl(QStringLiteral("/a.txt")));
    request.sink = &full;
    Outcome outcome;
    const Subscription subscription = m_client->send(request, outcome.completion());
    QTRY_VERIFY(outcome.isOver());
    QVERIFY(!outcome.results[0]);
    QCOMPARE(std::get<FileError>(outcome.results[0].error()).path, QStringLiteral("/dev/full"));
}

TICKWISE_TEST(NetworkHttpClientTest)
#include "NetworkHttpClientTest.moc"
