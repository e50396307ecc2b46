#include "market/HttpStatus.h"
#include "doubles/TestProgram.h"

#include "doubles/TestData.h"
#include "market/FailureReason.h"
#include "market/Outcome.h"

using namespace tickwise;
using Kind = TickerProviderError::Kind;

namespace {

HttpResponse response(int status, const QByteArray &retryAfter = {}, const QByteArray &body = {})
{
    HttpResponse response{status, {{"Content-Type", "application/json"}}, body};
    if (!retryAfter.isNull())
        response.headers.emplace_back("retry-after", retryAfter);
    return response;
}

QByteArray recorded(const char *name)
{
    return test::readData(QStringLiteral("exchange/") + QLatin1String(name));
}

} // namespace

class HttpStatusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void successIsTheBody_data();
    void successIsTheBody();
    void backOffs_data();
    void backOffs();
    void badRequestIsRejected();
    void otherStatuses_data();
    void otherStatuses();
    void retryAfterValue_data();
    void retryAfterValue();
    void retryAfterIsAbsentWithoutTheHeader();
    void forbiddenBodies_data();
    void forbiddenBodies();
    void legalReasonsAreARegionBlock();
};

void HttpStatusTest::successIsTheBody_data()
{
    QTest::addColumn<int>("status");
    for (const int status : {200, 201, 204, 250, 299})
        QTest::addRow("%d", status) << status;
}

void HttpStatusTest::successIsTheBody()
{
    QFETCH(int, status);
    const Result<QByteArray> body = classifyTickerResponse(response(status, "30", "[]"));
    QVERIFY(body.has_value());
    QCOMPARE(*body, QByteArray("[]"));
}

void HttpStatusTest::backOffs_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<double>("seconds"); // 0: none
    QTest::newRow("429 with 30") << 429 << QByteArray("30") << 30.0;
    QTest::newRow("429 with 0") << 429 << QByteArray("0") << 0.0;
    QTest::newRow("429 with a date") << 429 << QByteArray("Wed, 21 Oct 2026 07:28:00 GMT") << 0.0;
    QTest::newRow("429 without") << 429 << QByteArray() << 0.0;
    QTest::newRow("418 with 120.5") << 418 << QByteArray("120.5") << 120.5;
    QTest::newRow("418 without") << 418 << QByteArray() << 0.0;
    QTest::newRow("403 with 30") << 403 << QByteArray("30") << 30.0;
    QTest::newRow("403 with 1000") << 403 << QByteArray("1000") << 1000.0;
    QTest::newRow("403 without") << 403 << QByteArray() << 600.0;
    QTest::newRow("403 with 0") << 403 << QByteArray("0") << 600.0;
    QTest::newRow("403 with a date") << 403 << QByteArray("Wed, 21 Oct 2026 07:28:00 GMT") << 600.0;
}

void HttpStatusTest::backOffs()
{
    QFETCH(int, status);
    QFETCH(QByteArray, header);
    QFETCH(double, seconds);
    const auto refusal = test::refusalOf(classifyTickerResponse(response(status, header)));
    QVERIFY(refusal);
    QCOMPARE(refusal->kind, Kind::rateLimited);
    QCOMPARE(refusal->httpStatus, status);
    QCOMPARE(refusal->retryAfter, seconds > 0 ? std::optional(seconds) : std::nullopt);
}

void HttpStatusTest::badRequestIsRejected()
{
    const Result<QByteArray> result =
        classifyTickerResponse(response(400, "30", recorded("binance_error_1121_invalid_symbol.json")));
    QCOMPARE(test::refusalOf(result), TickerProviderError({Kind::requestRejected, std::nullopt, 400, false}));
}

void HttpStatusTest::otherStatuses_data()
{
    QTest::addColumn<int>("status");
    for (const int status :
         {0, 100, 199, 300, 301, 302, 304, 399, 401, 402, 404, 417, 419, 428, 430, 451, 500, 502, 503, 599})
        QTest::addRow("%d", status) << status;
}

void HttpStatusTest::otherStatuses()
{
    QFETCH(int, status);
    const Result<QByteArray> result = classifyTickerResponse(response(status, "30", "[]"));
    QCOMPARE(test::codeOf(result), UrlErrorCode::badServerResponse);
    QCOMPARE(std::get<UrlLoadingError>(result.error()).httpStatus, status);
}

void HttpStatusTest::retryAfterValue_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<double>("seconds"); // 0: none
    const auto row = [](const char *header, double seconds) {
        QTest::addRow("'%s'", header) << QByteArray(header) << seconds;
    };
    row("30", 30);
    row("0.5", 0.5);
    row("1e2", 100);
    row("1800", 1800);
    row(" 30", 0);
    row("\t30", 0);
    row("30 ", 0);
    row("30s", 0);
    row("30, 60", 0);
    row("", 0);
    row("0", 0);
    row("0.0", 0);
    row("-0", 0);
    row("-30", 0);
    row("nan", 0);
    row("inf", 0);
    row("infinity", 0);
    row("1e999", 0);
    row("0x1e", 0);
    row("1,5", 0);
    row("soon", 0);
    row("Wed, 21 Oct 2026 07:28:00 GMT", 0);
}

void HttpStatusTest::retryAfterValue()
{
    QFETCH(QByteArray, header);
    QFETCH(double, seconds);
    QCOMPARE(retryAfter(response(429, header)), seconds > 0 ? std::optional(seconds) : std::nullopt);
}

void HttpStatusTest::retryAfterIsAbsentWithoutTheHeader()
{
    QCOMPARE(retryAfter(response(429)), std::nullopt);
}

void HttpStatusTest::forbiddenBodies_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<FailureReason>("reason");
    QTest::newRow("recorded notice") << recorded("bybit_http403_country_block.json") << FailureReason::regionBlocked;
    QTest::newRow("page") << QByteArray("\r\n <!DOCTYPE html><html><body>403 Forbidden</body></html>")
                          << FailureReason::regionBlocked;
    QTest::newRow("upper-case page") << QByteArray("<HTML><BODY>Forbidden") << FailureReason::regionBlocked;
    QTest::newRow("restricted location") << QByteArray(
                                                R"({"code":0,"msg":"Service unavailable from a restricted location"})")
                                         << FailureReason::regionBlocked;
    QTest::newRow("JSON") << recorded("binance_error_1003_http418_banned_old.json") << FailureReason::rateLimited;
    QTest::newRow("empty") << QByteArray() << FailureReason::rateLimited;
}

void HttpStatusTest::forbiddenBodies()
{
    QFETCH(QByteArray, body);
    QFETCH(FailureReason, reason);
    const Result<QByteArray> result = classifyTickerResponse(response(403, {}, body));
    QCOMPARE(failureReason(result.error()), reason);
    const auto refusal = test::refusalOf(result);
    QVERIFY(refusal);
    QCOMPARE(refusal->retryAfter, 600.0);
}

void HttpStatusTest::legalReasonsAreARegionBlock()
{
    const Result<QByteArray> result = classifyTickerResponse(response(451, {}, "<html>"));
    QCOMPARE(test::codeOf(result), UrlErrorCode::badServerResponse);
    QCOMPARE(failureReason(result.error()), FailureReason::regionBlocked);
}

TICKWISE_TEST(HttpStatusTest)
#include "HttpStatusTest.moc"
