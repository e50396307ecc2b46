// The shared fetch and those who wait for it: who may leave when.
#include "ExchangeRateFixture.h"
#include "doubles/TestProgram.h"

using namespace tickwise;
using namespace tickwise::test;

namespace {

const QByteArray rateBody = R"({"result":"success","rates":{"EUR":0.5}})";

struct Fixture
{
    ScriptedHttpClient client;
    TestClock clock;
    std::unique_ptr<ExchangeRateService> service = std::make_unique<ExchangeRateService>(
        client,
        Endpoints{
            {}, {}, {}, {}, er, QStringLiteral("https://cdn.example"), QStringLiteral("https://fallback.example")},
        ExchangeRateCacheStore(std::nullopt), clock.clock());

    Subscription rate(Rates &rates, BaseCurrency currency = BaseCurrency::eur)
    {
        return service->rate(currency, [&rates](const Result<double> &rate) { rates.push_back(rate); });
    }
};

const Error cancelledError = UrlLoadingError{UrlErrorCode::cancelled};

} // namespace

class ExchangeRateServiceLifetimeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneOfTwoLeaves();
    void theLastOneLeaves();
    void askedAgainAfterAllLeft();
    void leavesBetweenAnswerAndDelivery();
    void leavesInsideTheCompletion();
    void leavesAnotherOneInsideTheCompletion();
    void asksAgainInsideTheCompletionOfAFailure();
    void asksAgainInsideTheCompletionOfAMissingCurrency();
    void serviceGoesMidFetch();
    void serviceGoesInsideTheCompletion();
    void serviceGoesAndTheHandleIsDropped();
};

void ExchangeRateServiceLifetimeTest::oneOfTwoLeaves()
{
    Fixture f;
    f.client.answer(er, 200, rateBody);
    Rates first;
    Rates second;
    Subscription leaving = f.rate(first);
    const Subscription staying = f.rate(second);
    leaving.cancel();
    QCOMPARE(f.client.open(), 1);
    QTRY_COMPARE(second.size(), std::size_t(1));
    QCOMPARE(second.front().value(), 0.5);
    QVERIFY(first.empty());
}

void ExchangeRateServiceLifetimeTest::theLastOneLeaves()
{
    Fixture f;
    f.client.hold(er);
    Rates rates;
    Subscription first = f.rate(rates);
    Subscription second = f.rate(rates);
    letEverythingHappen();
    first.cancel();
    QCOMPARE(f.client.open(), 1);
    second.cancel();
    QCOMPARE(f.client.open(), 0);
    letEverythingHappen();
    QVERIFY(rates.empty());
    QCOMPARE(f.client.requests().size(), std::size_t(1));
}

void ExchangeRateServiceLifetimeTest::askedAgainAfterAllLeft()
{
    Fixture f;
    f.client.hold(er);
    f.client.answer(er, 200, rateBody);
    Rates rates;
    Subscription first = f.rate(rates);
    first.cancel();
    const Subscription second = f.rate(rates);
    QTRY_COMPARE(rates.size(), std::size_t(1));
    QCOMPARE(rates.front().value(), 0.5);
    QCOMPARE(f.client.requests().size(), std::size_t(2));
}

void ExchangeRateServiceLifetimeTest::leavesBetweenAnswerAndDelivery()
{
    Fixture f;
    f.client.answer(er, 429, {});
    Rates rates;
    Subscription subscription = f.rate(rates);
    subscription.cancel(); // the answer is queued already
    letEverythingHappen();
    QVERIFY(rates.empty());
    // The refusal was never seen, so the service is asked again.
    f.client.clear(er);
    f.client.answer(er, 200, rateBody);
    subscription = f.rate(rates);
    QTRY_COMPARE(rates.size(), std::size_t(1));
    QCOMPARE(f.client.requests().size(), std::size_t(2));
}

void ExchangeRateServiceLifetimeTest::leavesInsideTheCompletion()
{
    Fixture f;
    f.client.answer(er, 200, rateBody);
    int calls = 0;
    Subscription subscription;
    subscription = f.service->rate(BaseCurrency::eur, [&](const Result<double> &) {
        ++calls;
        subscription.cancel();
    });
    QTRY_COMPARE(calls, 1);
    letEverythingHappen();
    QCOMPARE(calls, 1);
}

void ExchangeRateServiceLifetimeTest::leavesAnotherOneInsideTheCompletion()
{
    Fixture f;
    f.client.answer(er, 200, rateBody);
    int calls = 0;
    Rates dropped;
    Subscription other;
    const Subscription subscription = f.service->rate(BaseCurrency::eur, [&](const Result<double> &) {
        ++calls;
        other.cancel();
    });
    other = f.rate(dropped);
    QTRY_COMPARE(calls, 1);
    letEverythingHappen();
    QVERIFY(dropped.empty());
}

void ExchangeRateServiceLifetimeTest::asksAgainInsideTheCompletionOfAFailure()
{
    Fixture f;
    f.client.answer(er, 500, {});
    f.client.answer(er, 200, rateBody);
    Rates again;
    Subscription subscription;
    subscription = f.service->rate(BaseCurrency::eur, [&](const Result<double> &rate) {
        QVERIFY(!rate);
        subscription = f.rate(again);
    });
    QTRY_COMPARE(again.size(), std::size_t(1));
    QCOMPARE(again.front().value(), 0.5);
}

void ExchangeRateServiceLifetimeTest::asksAgainInsideTheCompletionOfAMissingCurrency()
{
    Fixture f;
    f.client.answer(er, 200, rateBody);
    f.client.answer(er, 200, R"({"result":"success","rates":{"GBP":0.25}})");
    Rates again;
    Subscription subscription;
    subscription = f.service->rate(BaseCurrency::gbp, [&](const Result<double> &rate) {
        QVERIFY(!rate);
        subscription = f.rate(again, BaseCurrency::gbp);
        QVERIFY(again.empty());
    });
    QTRY_COMPARE(again.size(), std::size_t(1));
    QCOMPARE(again.front().value(), 0.25);
    QCOMPARE(f.client.requests().size(), std::size_t(2));
}

void ExchangeRateServiceLifetimeTest::serviceGoesMidFetch()
{
    Fixture f;
    f.client.hold(er);
    Rates first;
    Rates second;
    const Subscription a = f.rate(first);
    const Subscription b = f.rate(second);
    letEverythingHappen();
    f.service.reset();
    QCOMPARE(f.client.open(), 0);
    QVERIFY(first.empty());
    QTRY_VERIFY(!first.empty() && !second.empty());
    QVERIFY(first.front().error() == cancelledError);
    QVERIFY(second.front().error() == cancelledError);
    letEverythingHappen();
    QCOMPARE(first.size(), std::size_t(1));
}

void ExchangeRateServiceLifetimeTest::serviceGoesInsideTheCompletion()
{
    Fixture f;
    f.client.answer(er, 200, rateBody);
    int calls = 0;
    Rates other;
    const Subscription a = f.service->rate(BaseCurrency::eur, [&](const Result<double> &) {
        ++calls;
        f.service.reset();
    });
    const Subscription b = f.rate(other);
    QTRY_COMPARE(calls, 1);
    QTRY_COMPARE(other.size(), std::size_t(1));
    QCOMPARE(other.front().value(), 0.5); // it was fetched before the service went
}

void ExchangeRateServiceLifetimeTest::serviceGoesAndTheHandleIsDropped()
{
    Fixture f;
    f.client.hold(er);
    Rates rates;
    Subscription subscription = f.rate(rates);
    f.service.reset();
    subscription.cancel();
    letEverythingHappen();
    QVERIFY(rates.empty());
}

TICKWISE_TEST(ExchangeRateServiceLifetimeTest)
#include "ExchangeRateServiceLifetimeTest.moc"
