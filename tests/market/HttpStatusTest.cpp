#include "market/HttpStatus.h"
#include "support/TestData.h"

#include <QTest>

using namespace tickwise;

namespace {

HttpResponse response(int status, const QByteArray &body = {}, const std::optional<QByteArray> &retry = std::nullopt)
{
    HttpResponse response{status, {{"Content-Type", "application/json"}}, body};
    if (retry)
        response.headers.emplace_back("retry-after", *retry);
    return response;
}

} // namespace

class HttpStatusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void retryAfterText_data();
    void retryAfterText();
    void noRetryAfter();
    void success();
    void failures_data();
    void failures();
    void blockPages_data();
    void blockPages();
};

void HttpStatusTest::retryAfterText_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<double>("seconds"); // -1: none
    QTest::newRow("whole") << QByteArray("30") << 30.0;
    QTest::newRow("fraction") << QByteArray("1.5") << 1.5;
    QTest::newRow("exponent") << QByteArray("1e2") << 100.0;
    QTest::newRow("zero") << QByteArray("0") << -1.0;
    QTest::newRow("negative") << QByteArray("-5") << -1.0;
    QTest::newRow("empty") << QByteArray("") << -1.0;
    QTest::newRow("leading blank") << QByteArray(" 30") << -1.0;
    QTest::newRow("trailing blank") << QByteArray("30 ") << -1.0;
    QTest::newRow("unit") << QByteArray("30s") << -1.0;
    QTest::newRow("date") << QByteArray("Wed, 21 Oct 2026 07:28:00 GMT") << -1.0;
    QTest::newRow("infinite") << QByteArray("inf") << -1.0;
    QTest::newRow("no number") << QByteArray("soon") << -1.0;
}

void HttpStatusTest::retryAfterText()
{
    QFETCH(QByteArray, text);
    QTEST(retryAfter(response(429, {}, text)).value_or(-1.0), "seconds");
}

void HttpStatusTest::noRetryAfter()
{
    QVERIFY(!retryAfter(response(429)));
}

void HttpStatusTest::success()
{
    for (const int status : {200, 204, 299})
        QCOMPARE(classifyTickerResponse(response(status, "body")).value(), QByteArray("body"));
}

void HttpStatusTest::failures_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("retry"); // null: no header
    QTest::addColumn<QString>("expected");
    const auto row = [](const QByteArray &name, int status, const QByteArray &retry, const QByteArray &expected) {
        QTest::newRow(name.constData()) << status << retry << QString::fromLatin1(expected);
    };
    row("429 with 30", 429, "30", "rate limited (HTTP 429), retry after 30 s");
    row("429 with 0", 429, "0", "rate limited (HTTP 429)");
    row("429 with a date", 429, "Wed, 21 Oct 2026 07:28:00 GMT", "rate limited (HTTP 429)");
    row("429", 429, {}, "rate limited (HTTP 429)");
    row("418 with 120", 418, "120", "rate limited (HTTP 418), retry after 120 s");
    row("418", 418, {}, "rate limited (HTTP 418)");
    row("403", 403, {}, "rate limited (HTTP 403), retry after 600 s");
    row("403 with 10", 403, "10", "rate limited (HTTP 403), retry after 10 s");
    row("403 with 0", 403, "0", "rate limited (HTTP 403), retry after 600 s");
    row("400", 400, {}, "request rejected (HTTP 400)");
    row("503", 503, {}, "bad server response (HTTP 503)");
    row("503 with 30", 503, "30", "bad server response (HTTP 503)");
    row("no status", 0, {}, "bad server response");
    for (const int status : {100, 199, 300, 301, 304, 401, 404, 451, 500, 502, 599}) {
        const QByteArray name = QByteArray::number(status);
        const QByteArray expected = "bad server response (HTTP " + name + ")";
        row(name, status, {}, expected);
    }
}

void HttpStatusTest::failures()
{
    QFETCH(int, status);
    QFETCH(QByteArray, retry);
    const auto result =
        classifyTickerResponse(response(status, "{}", retry.isNull() ? std::nullopt : std::optional(retry)));
    QVERIFY(!result);
    QTEST(description(result.error()), "expected");
}

void HttpStatusTest::blockPages_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("blockPage");
    QTest::newRow("recorded block") << 403
                                    << test::readData(QStringLiteral("exchange/bybit_http403_country_block.json"))
                                    << true;
    QTest::newRow("page") << 403 << QByteArray("\r\n<!DOCTYPE html><html><h1>403 ERROR</h1></html>") << true;
    QTest::newRow("ban") << 403 << QByteArray(R"({"retCode":10010,"retMsg":"Unmatched IP"})") << false;
    QTest::newRow("recorded limit") << 403 << test::readData(QStringLiteral("exchange/binance_error_1003_http429.json"))
                                    << false;
    QTest::newRow("empty") << 403 << QByteArray() << false;
    QTest::newRow("page with 429") << 429 << QByteArray("<html></html>") << false;
}

void HttpStatusTest::blockPages()
{
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    const auto result = classifyTickerResponse(response(status, body));
    QVERIFY(!result);
    QTEST(std::get<TickerProviderError>(result.error()).blockPage, "blockPage");
}

QTEST_GUILESS_MAIN(HttpStatusTest)
#include "HttpStatusTest.moc"
