#include "ExchangeRateFixture.h"

#include "doubles/TestData.h"
#include "doubles/TestProgram.h"

using namespace tickwise;
using namespace tickwise::test;

class ExchangeRateServiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void usdNeedsNothing();
    void requestsByAddress();
    void coalesces();
    void aTableServesEveryCurrencyForAnHour();
    void theCacheFileSurvivesARestart();
    void aFileOfTheSameTimeIsNotAdopted();
    void cacheAge_data();
    void cacheAge();
    void corruptCacheIsOverwritten();
    void withoutADirectory();
    void missingCurrency();
    void missingCurrencyFallsBackToTheOldRate();
    void lastGoodValuesStayWhenATableIsNonsense();
    void clockGoesBackBehindTheTable();
    void clockGoesForward();
    void theNewerOfFileAndMemoryCounts();
    void unwritableCacheIsIgnored();
};

void ExchangeRateServiceTest::usdNeedsNothing()
{
    ExchangeRateFixture f;
    Rates rates;
    const Subscription subscription = f.service->rate(BaseCurrency::usd, into(rates));
    QVERIFY(rates.empty());
    QTRY_COMPARE(rates.size(), std::size_t(1));
    QCOMPARE(rates.front().value(), 1.0);
    QVERIFY(f.client.requests().empty());
}

void ExchangeRateServiceTest::requestsByAddress()
{
    ExchangeRateFixture f;
    QVERIFY(!f.rate());
    QStringList addresses;
    for (const HttpRequest &request : f.client.requests()) {
        addresses.append(request.url.toString(QUrl::FullyEncoded));
        QCOMPARE(request.timeout, std::chrono::milliseconds(5000));
        QCOMPARE(request.maximumBytes, qint64(16 * 1024 * 1024));
    }
    QCOMPARE(addresses,
             QStringList({er + QStringLiteral("/v6/latest/USD"), cdn + QStringLiteral("/v1/currencies/usd.min.json"),
                          fallback + QStringLiteral("/v1/currencies/usd.min.json")}));
}

void ExchangeRateServiceTest::coalesces()
{
    ExchangeRateFixture f;
    f.answer(er, 200, R"({"result":"success","rates":{"EUR":0.5,"GBP":0.25}})");
    Rates first;
    Rates second;
    Rates third;
    const Subscription a = f.service->rate(BaseCurrency::eur, into(first));
    const Subscription b = f.service->rate(BaseCurrency::eur, into(second));
    const Subscription c = f.service->rate(BaseCurrency::gbp, into(third));
    QCOMPARE(f.client.requests().size(), std::size_t(1));
    QTRY_VERIFY(!first.empty() && !second.empty() && !third.empty());
    QCOMPARE(first.front().value(), 0.5);
    QCOMPARE(second.front().value(), 0.5);
    QCOMPARE(third.front().value(), 0.25);
    QCOMPARE(f.client.requests().size(), std::size_t(1));
}

void ExchangeRateServiceTest::aTableServesEveryCurrencyForAnHour()
{
    ExchangeRateFixture f;
    f.answer(er, 200, readData(QStringLiteral("exchange/exchangerate_latest_USD_2024-01-09.json")));
    QCOMPARE(f.rate().value(), 0.913083);
    QCOMPARE(f.asked(), QStringLiteral("er"));
    f.clock.advance(3599);
    QCOMPARE(f.rate(BaseCurrency::krw).value(), 1315.579762);
    QVERIFY(f.client.requests().empty());
    f.clock.advance(1);
    QVERIFY(f.rate(BaseCurrency::krw).has_value());
    QCOMPARE(f.asked(), QStringLiteral("er"));
}

void ExchangeRateServiceTest::aFileOfTheSameTimeIsNotAdopted()
{
    ExchangeRateFixture f;
    f.answer(er, 200, erBody(0.5));
    QCOMPARE(f.rate().value(), 0.5);
    f.cache(0.25, 0);
    f.answer(er, 500, {});
    f.clock.advance(ExchangeRateService::lifetime);
    QCOMPARE(f.rate().value(), 0.5);
    f.cache(0.25, ExchangeRateService::lifetime - 1);
    QCOMPARE(f.rate().value(), 0.25);
}

void ExchangeRateServiceTest::theCacheFileSurvivesARestart()
{
    ExchangeRateFixture f;
    f.answer(er, 200, erBody(0.5));
    QVERIFY(f.rate().has_value());
    QVERIFY(f.store.load() == (ExchangeRateEntry{{{eurCode, 0.5}}, f.clock.now()}));
    f.restart();
    QCOMPARE(f.rate().value(), 0.5);
    QVERIFY(f.client.requests().empty());
}

void ExchangeRateServiceTest::cacheAge_data()
{
    QTest::addColumn<double>("age");
    QTest::addColumn<QString>("asked");
    QTest::newRow("59 minutes") << 59 * 60.0 << QString();
    QTest::newRow("a second short of an hour") << 3599.0 << QString();
    QTest::newRow("60 minutes") << 60 * 60.0 << QStringLiteral("er cdn fallback");
    QTest::newRow("from the future") << -5.0 << QStringLiteral("er cdn fallback");
}

void ExchangeRateServiceTest::cacheAge()
{
    QFETCH(double, age);
    ExchangeRateFixture f;
    f.cache(0.5, age);
    QCOMPARE(f.rate().value(), 0.5);
    QTEST(f.asked(), "asked");
}

void ExchangeRateServiceTest::corruptCacheIsOverwritten()
{
    ExchangeRateFixture f;
    QFile file(f.directory.filePath(QStringLiteral("exchange-rates.json")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(R"({"rates":{"EUR":0.5},"fetchedAt":"yesterday"})");
    file.close();
    QVERIFY(!f.rate());
    f.answer(er, 200, erBody(0.75));
    QCOMPARE(f.rate().value(), 0.75);
    QVERIFY(f.store.load().has_value());
    QCOMPARE(f.store.load()->rates.value(eurCode), 0.75);
}

void ExchangeRateServiceTest::withoutADirectory()
{
    ExchangeRateFixture f;
    f.store = ExchangeRateCacheStore(std::nullopt);
    f.restart();
    f.answer(er, 200, erBody(0.5));
    QCOMPARE(f.rate().value(), 0.5);
    QCOMPARE(f.rate().value(), 0.5);
    QVERIFY(f.client.requests().empty());
}

void ExchangeRateServiceTest::missingCurrency()
{
    ExchangeRateFixture f;
    f.answer(er, 200, erBody(0.5));
    QCOMPARE(codeOf(f.rate(BaseCurrency::twd)), UrlErrorCode::cannotParseResponse);
}

void ExchangeRateServiceTest::missingCurrencyFallsBackToTheOldRate()
{
    ExchangeRateFixture f;
    f.cache(0.5, 7200);
    f.answer(er, 200, R"({"result":"success","rates":{"GBP":0.25}})");
    QCOMPARE(f.rate().value(), 0.5);
    QCOMPARE(f.rate(BaseCurrency::gbp).value(), 0.25);
    QVERIFY(f.client.requests().empty());
}

void ExchangeRateServiceTest::lastGoodValuesStayWhenATableIsNonsense()
{
    ExchangeRateFixture f;
    f.answer(er, 200, erBody(0.5));
    QVERIFY(f.rate().has_value());
    f.clock.advance(3600);
    f.answer(er, 200, erBody(-1));
    QCOMPARE(f.rate().value(), 0.5);
    QCOMPARE(f.asked(), QStringLiteral("er cdn fallback"));
    QCOMPARE(f.store.load()->rates.value(eurCode), 0.5);
}

void ExchangeRateServiceTest::clockGoesBackBehindTheTable()
{
    ExchangeRateFixture f;
    f.answer(er, 200, erBody(0.5));
    QVERIFY(f.rate().has_value());
    f.clock.advance(-86400);
    f.answer(er, 200, erBody(0.75));
    QCOMPARE(f.rate().value(), 0.75);
    QCOMPARE(f.rate().value(), 0.75);
    QVERIFY(f.client.requests().empty());
}

void ExchangeRateServiceTest::clockGoesForward()
{
    ExchangeRateFixture f;
    f.answer(er, 200, erBody(0.5));
    QVERIFY(f.rate().has_value());
    f.clock.advance(50.0 * 365 * 86400);
    f.answer(er, 200, erBody(0.75));
    QCOMPARE(f.rate().value(), 0.75);
}

void ExchangeRateServiceTest::theNewerOfFileAndMemoryCounts()
{
    ExchangeRateFixture f;
    f.answer(er, 200, erBody(0.5));
    QVERIFY(f.rate().has_value());
    f.clock.advance(3600);
    // The other program of this group wrote a newer table in the meantime.
    f.cache(0.75, 60);
    QCOMPARE(f.rate().value(), 0.75);
    QVERIFY(f.client.requests().empty());
    f.clock.advance(3600);
    f.cache(0.1, 4 * 3600);
    f.answer(er, 500, {});
    QCOMPARE(f.rate().value(), 0.75);
}

void ExchangeRateServiceTest::unwritableCacheIsIgnored()
{
    ExchangeRateFixture f;
    f.store = ExchangeRateCacheStore(QStringLiteral("/proc/nowhere"));
    f.restart();
    f.answer(er, 200, erBody(0.5));
    QCOMPARE(f.rate().value(), 0.5);
}

TICKWISE_TEST(ExchangeRateServiceTest)
#include "ExchangeRateServiceTest.moc"
