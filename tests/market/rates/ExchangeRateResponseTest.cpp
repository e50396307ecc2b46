#include "market/rates/ExchangeRateResponse.h"

#include "doubles/TestProgram.h"
#include "market/Outcome.h"

using namespace tickwise;

class ExchangeRateResponseTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void successIsTheBody();
    void rateLimits_data();
    void rateLimits();
    void otherStatuses();
};

void ExchangeRateResponseTest::successIsTheBody()
{
    for (const int status : {200, 204, 299})
        QCOMPARE(classifyExchangeRateResponse({status, {}, "{}"}).value(), QByteArray("{}"));
}

void ExchangeRateResponseTest::rateLimits_data()
{
    QTest::addColumn<QByteArray>("retryAfter");
    QTest::addColumn<double>("seconds");
    QTest::newRow("30") << QByteArray("30") << 30.0;
    QTest::newRow("zero") << QByteArray("0") << 1200.0;
    QTest::newRow("a date") << QByteArray("Wed, 21 Oct 2026 07:28:00 GMT") << 1200.0;
}

void ExchangeRateResponseTest::rateLimits()
{
    QFETCH(QByteArray, retryAfter);
    QFETCH(double, seconds);
    const auto limited = classifyExchangeRateResponse({429, {{"Retry-After", retryAfter}}, {}});
    QVERIFY(limited.error() == Error(ExchangeRateProviderError{seconds, 429}));
    const auto without = classifyExchangeRateResponse({429, {}, {}});
    QVERIFY(without.error() == Error(ExchangeRateProviderError{1200, 429}));
}

void ExchangeRateResponseTest::otherStatuses()
{
    for (const int status : {0, 101, 199, 300, 302, 400, 403, 418, 428, 430, 500, 503}) {
        const auto result = classifyExchangeRateResponse({status, {{"Retry-After", "30"}}, "{}"});
        QCOMPARE(test::codeOf(result), UrlErrorCode::badServerResponse);
        QCOMPARE(std::get<UrlLoadingError>(result.error()).httpStatus, status);
    }
}

TICKWISE_TEST(ExchangeRateResponseTest)
#include "ExchangeRateResponseTest.moc"
