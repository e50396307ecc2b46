// What ends a fetch other than its answers: the handle is dropped, the service goes away.
#include "PriceServiceFixture.h"
#include "doubles/TestProgram.h"
#include "market/Symbols.h"

using namespace tickwise;
using namespace tickwise::test;

namespace {

} // namespace

class PriceServiceLifetimeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsDeliveredInsideTheCall();
    void deliversOnce();
    void droppedMidRequest();
    void droppedMidGapFill();
    void droppedWhileTheRateIsAwaited();
    void droppedBetweenAnswerAndDelivery();
    void droppedFetchOfNoSymbols();
    void droppedInsideTheCompletion();
    void newFetchInsideTheCompletion();
    void overlappingFetches();
    void serviceGoesMidRequest();
    void serviceGoesMidGapFill();
    void serviceGoesAndTheHandleIsDropped();
    void serviceGoesInsideTheCompletion();
};

void PriceServiceLifetimeTest::nothingIsDeliveredInsideTheCall()
{
    PriceServiceFixture f;
    Outcomes outcomes;
    // All four are skipped at once the second time.
    for (const QString &exchange : {f.main, f.okx, f.bybit})
        f.answer(exchange, 429);
    QVERIFY(!f.fetch({btc}));
    const Subscription subscription = f.start({btc}, outcomes);
    QVERIFY(outcomes.results.empty());
    QVERIFY(outcomes.arrived());
}

void PriceServiceLifetimeTest::deliversOnce()
{
    PriceServiceFixture f;
    f.mainHas({{"BTC", "1"}});
    Outcomes outcomes;
    const Subscription subscription = f.start({btc}, outcomes);
    QVERIFY(outcomes.arrived());
    letEverythingHappen();
    QCOMPARE(outcomes.results.size(), std::size_t(1));
}

void PriceServiceLifetimeTest::droppedMidRequest()
{
    PriceServiceFixture f;
    f.hold(f.main);
    f.rates.answer.reset();
    Outcomes outcomes;
    Subscription subscription = f.start({btc}, outcomes);
    letEverythingHappen();
    QCOMPARE(f.client.open(), 1);
    QCOMPARE(*f.rates.open, 1);
    subscription.cancel();
    QCOMPARE(f.client.open(), 0);
    QCOMPARE(*f.rates.open, 0);
    letEverythingHappen();
    QVERIFY(outcomes.results.empty());
    QCOMPARE(f.asked(), QStringLiteral("main"));
}

void PriceServiceLifetimeTest::droppedMidGapFill()
{
    PriceServiceFixture f;
    f.mainHas({{"BTC", "1"}});
    f.hold(f.okx);
    Outcomes outcomes;
    Subscription subscription = f.start({btc, eth}, outcomes);
    QTRY_COMPARE(f.asked(), QStringLiteral("main okx"));
    subscription.cancel();
    QCOMPARE(f.client.open(), 0);
    letEverythingHappen();
    QVERIFY(outcomes.results.empty());
    QCOMPARE(f.asked(), QStringLiteral("main okx"));
    // OKX was dropped, not found lacking.
    f.okxHas({{"ETH", "2"}});
    QCOMPARE(f.fetch({btc, eth})->prices.value(eth), 2.0);
}

void PriceServiceLifetimeTest::droppedWhileTheRateIsAwaited()
{
    PriceServiceFixture f;
    f.mainHas({{"BTC", "1"}});
    f.rates.answer.reset();
    Outcomes outcomes;
    Subscription subscription = f.start({btc}, outcomes);
    QTRY_COMPARE(f.client.open(), 0);
    letEverythingHappen();
    subscription.cancel();
    QCOMPARE(*f.rates.open, 0);
    letEverythingHappen();
    QVERIFY(outcomes.results.empty());
}

void PriceServiceLifetimeTest::droppedBetweenAnswerAndDelivery()
{
    PriceServiceFixture f;
    f.answer(f.main, 429);
    Outcomes outcomes;
    Subscription subscription = f.start({btc}, outcomes);
    subscription.cancel(); // the answer is queued already
    letEverythingHappen();
    QVERIFY(outcomes.results.empty());
    // The refusal was never seen, so Binance is asked again.
    f.mainHas({{"BTC", "1"}});
    QVERIFY(f.fetch({btc}).has_value());
    QCOMPARE(f.asked(), QStringLiteral("main"));
}

void PriceServiceLifetimeTest::droppedFetchOfNoSymbols()
{
    PriceServiceFixture f;
    Outcomes outcomes;
    Subscription subscription = f.start({}, outcomes);
    subscription.cancel();
    letEverythingHappen();
    QVERIFY(outcomes.results.empty());
}

void PriceServiceLifetimeTest::droppedInsideTheCompletion()
{
    PriceServiceFixture f;
    f.mainHas({{"BTC", "1"}});
    int calls = 0;
    Subscription subscription;
    const auto drop = [&](const Result<PriceSnapshot> &) {
        ++calls;
        subscription.cancel();
    };
    subscription = f.service->fetchSnapshot({btc}, BaseCurrency::usd, drop);
    QTRY_COMPARE(calls, 1);
    f.answer(f.main, 503);
    subscription = f.service->fetchSnapshot({btc}, BaseCurrency::usd, drop);
    QTRY_COMPARE(calls, 2);
    f.rates.answer = failure(UrlLoadingError{UrlErrorCode::timedOut});
    subscription = f.service->fetchSnapshot({btc}, BaseCurrency::usd, drop);
    QTRY_COMPARE(calls, 3);
    letEverythingHappen();
    QCOMPARE(calls, 3);
}

void PriceServiceLifetimeTest::newFetchInsideTheCompletion()
{
    PriceServiceFixture f;
    f.mainHas({{"BTC", "1"}});
    Outcomes second;
    Subscription subscription;
    subscription = f.service->fetchSnapshot(
        {btc}, BaseCurrency::usd, [&](const Result<PriceSnapshot> &) { subscription = f.start({btc}, second); });
    QVERIFY(second.arrived());
    QVERIFY(second.results.front().has_value());
}

void PriceServiceLifetimeTest::overlappingFetches()
{
    PriceServiceFixture f;
    f.client.hold(f.main);
    f.client.answer(f.main, 200, Bodies::binance({{"BTC", "1"}}, f.clock.now()));
    Outcomes first;
    Outcomes second;
    Subscription slow = f.start({btc}, first);
    const Subscription fast = f.start({btc}, second);
    QVERIFY(second.arrived());
    QVERIFY(first.results.empty());
    slow.cancel();
    QCOMPARE(f.client.open(), 0);
}

void PriceServiceLifetimeTest::serviceGoesMidRequest()
{
    PriceServiceFixture f;
    f.hold(f.main);
    Outcomes outcomes;
    const Subscription subscription = f.start({btc}, outcomes);
    letEverythingHappen();
    f.service.reset();
    QVERIFY(outcomes.results.empty());
    QCOMPARE(f.client.open(), 0);
    QVERIFY(outcomes.arrived());
    QVERIFY(outcomes.results.front().error() == Error(UrlLoadingError{UrlErrorCode::cancelled}));
    letEverythingHappen();
    QCOMPARE(outcomes.results.size(), std::size_t(1));
}

void PriceServiceLifetimeTest::serviceGoesMidGapFill()
{
    PriceServiceFixture f;
    f.mainHas({{"BTC", "1"}});
    f.hold(f.okx);
    Outcomes outcomes;
    const Subscription subscription = f.start({btc, eth}, outcomes);
    QTRY_COMPARE(f.asked(), QStringLiteral("main okx"));
    f.service.reset();
    QCOMPARE(f.client.open(), 0);
    QVERIFY(outcomes.arrived());
    QVERIFY(outcomes.results.front().error() == Error(UrlLoadingError{UrlErrorCode::cancelled}));
}

void PriceServiceLifetimeTest::serviceGoesAndTheHandleIsDropped()
{
    PriceServiceFixture f;
    f.hold(f.main);
    Outcomes outcomes;
    Subscription subscription = f.start({btc}, outcomes);
    f.service.reset();
    subscription.cancel();
    letEverythingHappen();
    QVERIFY(outcomes.results.empty());
}

void PriceServiceLifetimeTest::serviceGoesInsideTheCompletion()
{
    PriceServiceFixture f;
    f.client.answer(f.main, 200, Bodies::binance({{"BTC", "1"}}, f.clock.now()));
    f.client.hold(f.main);
    Outcomes other;
    int calls = 0;
    const Subscription subscription =
        f.service->fetchSnapshot({btc}, BaseCurrency::usd, [&](const Result<PriceSnapshot> &) {
            ++calls;
            f.service.reset();
        });
    const Subscription held = f.start({btc}, other);
    QTRY_COMPARE(calls, 1);
    QVERIFY(other.arrived());
    QVERIFY(other.results.front().error() == Error(UrlLoadingError{UrlErrorCode::cancelled}));
}

TICKWISE_TEST(PriceServiceLifetimeTest)
#include "PriceServiceLifetimeTest.moc"
