#include "ExchangeRateFixture.h"

#include "doubles/LogCapture.h"
#include "doubles/TestData.h"
#include "doubles/TestProgram.h"
#include "market/FailureReason.h"

using namespace tickwise;
using namespace tickwise::test;

class ExchangeRateFailoverTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void failsOver_data();
    void failsOver();
    void nobodyAnswers();
    void logsAFailureOnce();
    void staleRateOfAnyAge();
    void rateLimitDefault();
    void rateLimitWithRetryAfter_data();
    void rateLimitWithRetryAfter();
    void everyServiceIsRateLimited();
    void firstRateLimitTellsItsEnd();
    void otherStatusesStartNoCooldown_data();
    void otherStatusesStartNoCooldown();
    void requestsWaitFiveSeconds();
    void clockGoesBackBehindARateLimit();
    void unbuildableAddress();
};

void ExchangeRateFailoverTest::failsOver_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("429") << 429 << QByteArray();
    QTest::newRow("404") << 404 << readData(QStringLiteral("exchange/exchangerate_error_unsupported_code.json"));
    QTest::newRow("503") << 503 << QByteArray("<html>");
    QTest::newRow("301") << 301 << QByteArray();
    QTest::newRow("result is error") << 200
                                     << readData(QStringLiteral("exchange/exchangerate_error_unsupported_code.json"));
    QTest::newRow("empty table") << 200 << QByteArray(R"({"result":"success","rates":{}})");
    QTest::newRow("nonsense rate") << 200 << erBody(0);
    QTest::newRow("page") << 200 << QByteArray("<html>");
    QTest::newRow("empty body") << 200 << QByteArray();
    QTest::newRow("rates as text") << 200 << QByteArray(R"({"result":"success","rates":{"EUR":"0.5"}})");
}

void ExchangeRateFailoverTest::failsOver()
{
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    ExchangeRateFixture f;
    f.answer(er, status, body);
    f.answer(cdn, 500, {});
    f.answer(fallback, 200, setBody(0.25));
    QCOMPARE(f.rate().value(), 0.25);
    QCOMPARE(f.asked(), QStringLiteral("er cdn fallback"));
}

void ExchangeRateFailoverTest::nobodyAnswers()
{
    ExchangeRateFixture f;
    f.client.fail(er, UrlLoadingError{UrlErrorCode::timedOut});
    f.client.fail(cdn, UrlLoadingError{UrlErrorCode::serverCertificateHasBadDate});
    f.client.fail(fallback, UrlLoadingError{UrlErrorCode::cannotFindHost});
    const auto rate = f.rate();
    QVERIFY(!rate);
    QCOMPARE(codeOf(rate), UrlErrorCode::cannotLoadFromNetwork);
    QCOMPARE(std::get<UrlLoadingError>(rate.error()).causes.size(), std::size_t(3));
    QCOMPARE(failureReason(rate.error()), FailureReason::clockWrong);
    // The next question asks again.
    QVERIFY(!f.rate());
    QCOMPARE(f.asked(), QStringLiteral("er cdn fallback"));
}

void ExchangeRateFailoverTest::logsAFailureOnce()
{
    ExchangeRateFixture f;
    f.client.fail(er, UrlLoadingError{UrlErrorCode::timedOut});
    f.answer(cdn, 500, {});
    f.client.fail(fallback, UrlLoadingError{UrlErrorCode::cannotFindHost});
    const QString category = QStringLiteral("com.pelmo.tickwise.ExchangeRates");
    const LogCapture log;
    for (int question = 0; question < 3; ++question)
        QVERIFY(!f.rate());
    QCOMPARE(
        log.texts(category),
        QStringList({er + QStringLiteral("/v6/latest/USD gives no rates: timed out"),
                     cdn + QStringLiteral("/v1/currencies/usd.min.json gives no rates: bad server response (HTTP 500)"),
                     fallback + QStringLiteral("/v1/currencies/usd.min.json gives no rates: cannot find host")}));
    QCOMPARE(log.lines().front().type, QtInfoMsg);
}

void ExchangeRateFailoverTest::staleRateOfAnyAge()
{
    ExchangeRateFixture f;
    f.cache(0.5, 5 * 365 * 86400.0);
    QCOMPARE(f.rate().value(), 0.5);
    QCOMPARE(f.asked(), QStringLiteral("er cdn fallback"));
    // No old rate helps for another currency.
    QCOMPARE(codeOf(f.rate(BaseCurrency::gbp)), UrlErrorCode::cannotLoadFromNetwork);
}

void ExchangeRateFailoverTest::rateLimitDefault()
{
    ExchangeRateFixture f;
    f.answer(er, 429, {});
    f.answer(cdn, 200, setBody(0.25));
    QCOMPARE(f.rate().value(), 0.25);
    QCOMPARE(f.asked(), QStringLiteral("er cdn"));
    f.restart(); // the limits are not kept
    f.store = ExchangeRateCacheStore(std::nullopt);
    f.restart();
    f.answer(cdn, 500, {});
    QVERIFY(!f.rate());
    f.clock.advance(1199);
    QVERIFY(!f.rate());
    QCOMPARE(f.asked(), QStringLiteral("cdn fallback"));
    f.clock.advance(1);
    QVERIFY(!f.rate());
    QCOMPARE(f.asked(), QStringLiteral("er cdn fallback"));
}

void ExchangeRateFailoverTest::rateLimitWithRetryAfter_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<double>("cooldown");
    QTest::newRow("30") << QByteArray("30") << 30.0;
    QTest::newRow("0") << QByteArray("0") << 1200.0;
    QTest::newRow("date") << QByteArray("Wed, 21 Oct 2026 07:28:00 GMT") << 1200.0;
}

void ExchangeRateFailoverTest::rateLimitWithRetryAfter()
{
    QFETCH(QByteArray, text);
    QFETCH(double, cooldown);
    ExchangeRateFixture f;
    f.answer(er, 429, {}, {{"Retry-After", text}});
    QVERIFY(!f.rate());
    f.clock.advance(cooldown - 0.5);
    QVERIFY(!f.rate());
    QCOMPARE(f.asked(), QStringLiteral("cdn fallback"));
    f.clock.advance(0.5);
    QVERIFY(!f.rate());
    QCOMPARE(f.asked(), QStringLiteral("er cdn fallback"));
}

void ExchangeRateFailoverTest::everyServiceIsRateLimited()
{
    ExchangeRateFixture f;
    for (const QString &provider : {er, cdn, fallback})
        f.answer(provider, 429, {});
    QVERIFY(!f.rate());
    Rates rates;
    const Subscription subscription = f.service->rate(BaseCurrency::eur, into(rates));
    QVERIFY(rates.empty());
    QTRY_COMPARE(rates.size(), std::size_t(1));
    QCOMPARE(failureReason(rates.front().error()), FailureReason::rateLimited);
    QCOMPARE(f.client.requests().size(), std::size_t(3));
}

void ExchangeRateFailoverTest::firstRateLimitTellsItsEnd()
{
    ExchangeRateFixture f;
    const TimePoint start = f.clock.now();
    f.answer(er, 429, {}, {{"Retry-After", "30"}});
    f.answer(cdn, 429, {});
    f.answer(fallback, 500, {});
    const QString erAddress = er + QStringLiteral("/v6/latest/USD");
    const QString cdnAddress = cdn + QStringLiteral("/v1/currencies/usd.min.json");
    for (int question = 0; question < 2; ++question) {
        const auto causes = std::get<UrlLoadingError>(f.rate().error()).causes;
        QVERIFY(causes.at(0) == (ProviderFailure{erAddress, FailureReason::rateLimited, start + secondsDuration(30)}));
        QVERIFY(causes.at(1) ==
                (ProviderFailure{cdnAddress, FailureReason::rateLimited, start + secondsDuration(1200)}));
        QVERIFY(!causes.at(2).until);
        QVERIFY(summary(causes) == causes.at(0));
        f.clock.advance(10);
    }
}

void ExchangeRateFailoverTest::otherStatusesStartNoCooldown_data()
{
    QTest::addColumn<int>("status");
    for (const int status : {400, 403, 418, 428, 430, 503})
        QTest::addRow("%d", status) << status;
}

void ExchangeRateFailoverTest::otherStatusesStartNoCooldown()
{
    QFETCH(int, status);
    ExchangeRateFixture f;
    f.answer(er, status, "<html>", {{"Retry-After", "30"}});
    for (int question = 0; question < 2; ++question) {
        const auto rate = f.rate();
        QCOMPARE(f.asked(), QStringLiteral("er cdn fallback"));
        const auto causes = std::get<UrlLoadingError>(rate.error()).causes;
        QCOMPARE(causes.front().reason, FailureReason::badAnswer);
        QVERIFY(!causes.front().until);
    }
}

void ExchangeRateFailoverTest::requestsWaitFiveSeconds()
{
    ExchangeRateFixture f;
    QVERIFY(!f.rate());
    QCOMPARE(f.client.requests().size(), std::size_t(3));
    for (const HttpRequest &request : f.client.requests())
        QCOMPARE(request.timeout, std::chrono::milliseconds(5000));
}

void ExchangeRateFailoverTest::clockGoesBackBehindARateLimit()
{
    ExchangeRateFixture f;
    f.answer(er, 429, {});
    QVERIFY(!f.rate());
    f.clock.advance(-1);
    QVERIFY(!f.rate());
    QCOMPARE(f.asked(), QStringLiteral("er cdn fallback"));
}

void ExchangeRateFailoverTest::unbuildableAddress()
{
    ExchangeRateFixture f;
    f.service = std::make_unique<ExchangeRateService>(
        f.client, Endpoints{{}, {}, {}, {}, QStringLiteral("https://not a host"), {}, fallback}, f.store,
        f.clock.clock());
    f.answer(fallback, 200, setBody(0.25));
    QCOMPARE(f.rate().value(), 0.25);
    QCOMPARE(f.asked(), QStringLiteral("fallback"));
}

TICKWISE_TEST(ExchangeRateFailoverTest)
#include "ExchangeRateFailoverTest.moc"
