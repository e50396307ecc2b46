#include "market/exchanges/TickerResponse.h"

#include "doubles/TestProgram.h"
#include "market/FailureReason.h"
#include "market/Outcome.h"
#include "market/exchanges/ProviderFixture.h"

using namespace tickwise;
using namespace tickwise::test;
using Kind = TickerProviderError::Kind;

namespace {

HttpResponse response(int status, const QByteArray &retryAfter = {}, const QByteArray &body = {})
{
    HttpResponse response{status, {{"Content-Type", "application/json"}}, body};
    if (!retryAfter.isNull())
        response.headers.emplace_back("retry-after", retryAfter);
    return response;
}

} // namespace

class TickerResponseTest : public QObject
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
    void forbiddenBodies_data();
    void forbiddenBodies();
    void legalReasonsAreARegionBlock();
};

void TickerResponseTest::successIsTheBody_data()
{
    QTest::addColumn<int>("status");
    for (const int status : {200, 201, 204, 250, 299})
        QTest::addRow("%d", status) << status;
}

void TickerResponseTest::successIsTheBody()
{
    QFETCH(int, status);
    const Result<QByteArray> body = classifyTickerResponse(response(status, "30", "[]"));
    QVERIFY(body.has_value());
    QCOMPARE(*body, QByteArray("[]"));
}

void TickerResponseTest::backOffs_data()
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

void TickerResponseTest::backOffs()
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

void TickerResponseTest::badRequestIsRejected()
{
    const Result<QByteArray> result =
        classifyTickerResponse(response(400, "30", recordedAnswer("binance_error_1121_invalid_symbol.json")));
    QCOMPARE(test::refusalOf(result), TickerProviderError({Kind::requestRejected, std::nullopt, 400, false}));
}

void TickerResponseTest::otherStatuses_data()
{
    QTest::addColumn<int>("status");
    for (const int status :
         {0, 100, 199, 300, 301, 302, 304, 399, 401, 402, 404, 417, 419, 428, 430, 451, 500, 502, 503, 599})
        QTest::addRow("%d", status) << status;
}

void TickerResponseTest::otherStatuses()
{
    QFETCH(int, status);
    const Result<QByteArray> result = classifyTickerResponse(response(status, "30", "[]"));
    QCOMPARE(test::codeOf(result), UrlErrorCode::badServerResponse);
    QCOMPARE(std::get<UrlLoadingError>(result.error()).httpStatus, status);
}

void TickerResponseTest::forbiddenBodies_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<FailureReason>("reason");
    QTest::newRow("recorded notice") << recordedAnswer("bybit_http403_country_block.json")
                                     << FailureReason::regionBlocked;
    QTest::newRow("page") << QByteArray("\r\n <!DOCTYPE html><html><body>403 Forbidden</body></html>")
                          << FailureReason::regionBlocked;
    QTest::newRow("upper-case page") << QByteArray("<HTML><BODY>Forbidden") << FailureReason::regionBlocked;
    QTest::newRow("restricted location") << QByteArray(
                                                R"({"code":0,"msg":"Service unavailable from a restricted location"})")
                                         << FailureReason::regionBlocked;
    QTest::newRow("JSON") << recordedAnswer("binance_error_1003_http418_banned_old.json") << FailureReason::rateLimited;
    QTest::newRow("empty") << QByteArray() << FailureReason::rateLimited;
}

void TickerResponseTest::forbiddenBodies()
{
    QFETCH(QByteArray, body);
    QFETCH(FailureReason, reason);
    const Result<QByteArray> result = classifyTickerResponse(response(403, {}, body));
    QCOMPARE(failureReason(result.error()), reason);
    const auto refusal = test::refusalOf(result);
    QVERIFY(refusal);
    QCOMPARE(refusal->retryAfter, 600.0);
}

void TickerResponseTest::legalReasonsAreARegionBlock()
{
    const Result<QByteArray> result = classifyTickerResponse(response(451, {}, "<html>"));
    QCOMPARE(test::codeOf(result), UrlErrorCode::badServerResponse);
    QCOMPARE(failureReason(result.error()), FailureReason::regionBlocked);
}

TICKWISE_TEST(TickerResponseTest)
#include "TickerResponseTest.moc"
