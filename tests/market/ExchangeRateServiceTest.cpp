#include "market/ExchangeRateService.h"
#include "market/FailureReason.h"
#include "support/ScriptedHttpClient.h"
#include "support/TestClock.h"
#include "support/TestData.h"

#include <QTemporaryDir>
#include <QTest>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const auto er = QStringLiteral("https://er.example");
const auto cdn = QStringLiteral("https://cdn.example/npm/set");
const auto fallback = QStringLiteral("https://fallback.example");
const auto eurCode = QStringLiteral("EUR");

QByteArray erBody(double eur)
{
    return R"({"result":"success","rates":{"EUR":)" + QByteArray::number(eur) + "}}";
}

QByteArray setBody(double eur)
{
    return R"({"usd":{"eur":)" + QByteArray::number(eur) + "}}";
}

void letEverythingHappen()
{
    for (int i = 0; i < 20; ++i)
        QCoreApplication::processEvents();
}

using Rates = std::vector<Result<double>>;

Completion<double> into(Rates &rates)
{
    return [&rates](const Result<double> &rate) { rates.push_back(rate); };
}

/// A service over scripted rate services with a cache folder of its own.
struct Fixture
{
    ScriptedHttpClient client;
    TestClock clock;
    QTemporaryDir directory;
    ExchangeRateCacheStore store{directory.path()};
    std::unique_ptr<ExchangeRateService> service = make();

    std::unique_ptr<ExchangeRateService> make()
    {
        return std::make_unique<ExchangeRateService>(client, Endpoints{{}, {}, {}, {}, er, cdn, fallback}, store,
                                                     clock.clock());
    }
    void restart() { service = make(); }

    void cache(double eur, double ageSeconds)
    {
        QVERIFY(store.save({{{eurCode, eur}}, clock.now() - secondsDuration(ageSeconds)}).has_value());
    }

    void answer(const QString &provider, int status, const QByteArray &body,
                std::vector<std::pair<QByteArray, QByteArray>> headers = {})
    {
        client.clear(provider);
        client.answer(provider, status, body, std::move(headers));
    }

    Result<double> rate(BaseCurrency currency = BaseCurrency::eur)
    {
        client.forgetRequests();
        Rates rates;
        const Subscription subscription = service->rate(currency, into(rates));
        if (!QTest::qWaitFor([&] { return !rates.empty(); }))
            return failure(DecodingError{QStringLiteral("nothing was delivered")});
        letEverythingHappen();
        return rates.size() == 1 ? rates.front() : failure(DecodingError{QStringLiteral("delivered more than once")});
    }

    /// The services asked since the last question, in order: "er cdn".
    QString asked() const
    {
        QStringList names;
        for (const HttpRequest &request : client.requests())
            names.append(request.url.host().section(QLatin1Char('.'), 0, 0));
        return names.join(QLatin1Char(' '));
    }
};

UrlErrorCode codeOf(const Result<double> &rate)
{
    return std::get<UrlLoadingError>(rate.error()).code;
}

} // namespace

class ExchangeRateServiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void usdNeedsNothing();
    void requestsByAddress();
    void coalesces();
    void aTableServesEveryCurrencyForAnHour();
    void theCacheFileSurvivesARestart();
    void cacheAge_data();
    void cacheAge();
    void corruptCacheIsOverwritten();
    void withoutADirectory();
    void failsOver_data();
    void failsOver();
    void nobodyAnswers();
    void staleRateOfAnyAge();
    void rateLimitDefault();
    void rateLimitWithRetryAfter_data();
    void rateLimitWithRetryAfter();
    void everyServiceIsRateLimited();
    void missingCurrency();
    void missingCurrencyFallsBackToTheOldRate();
    void lastGoodValuesStayWhenATableIsNonsense();
    void clockGoesBackBehindTheTable();
    void clockGoesBackBehindARateLimit();
    void clockGoesForward();
    void theNewerOfFileAndMemoryCounts();
    void unwritableCacheIsIgnored();
    void unbuildableAddress();
};

void ExchangeRateServiceTest::usdNeedsNothing()
{
    Fixture f;
    Rates rates;
    const Subscription subscription = f.service->rate(BaseCurrency::usd, into(rates));
    QVERIFY(rates.empty());
    QTRY_COMPARE(rates.size(), std::size_t(1));
    QCOMPARE(rates.front().value(), 1.0);
    QVERIFY(f.client.requests().empty());
}

void ExchangeRateServiceTest::requestsByAddress()
{
    Fixture f;
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
    Fixture f;
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
    Fixture f;
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

void ExchangeRateServiceTest::theCacheFileSurvivesARestart()
{
    Fixture f;
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
    Fixture f;
    f.cache(0.5, age);
    QCOMPARE(f.rate().value(), 0.5);
    QTEST(f.asked(), "asked");
}

void ExchangeRateServiceTest::corruptCacheIsOverwritten()
{
    Fixture f;
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
    Fixture f;
    f.store = ExchangeRateCacheStore(std::nullopt);
    f.restart();
    f.answer(er, 200, erBody(0.5));
    QCOMPARE(f.rate().value(), 0.5);
    QCOMPARE(f.rate().value(), 0.5);
    QVERIFY(f.client.requests().empty());
}

void ExchangeRateServiceTest::failsOver_data()
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

void ExchangeRateServiceTest::failsOver()
{
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    Fixture f;
    f.answer(er, status, body);
    f.answer(cdn, 500, {});
    f.answer(fallback, 200, setBody(0.25));
    QCOMPARE(f.rate().value(), 0.25);
    QCOMPARE(f.asked(), QStringLiteral("er cdn fallback"));
}

void ExchangeRateServiceTest::nobodyAnswers()
{
    Fixture f;
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

void ExchangeRateServiceTest::staleRateOfAnyAge()
{
    Fixture f;
    f.cache(0.5, 5 * 365 * 86400.0);
    QCOMPARE(f.rate().value(), 0.5);
    QCOMPARE(f.asked(), QStringLiteral("er cdn fallback"));
    // No old rate helps for another currency.
    QCOMPARE(codeOf(f.rate(BaseCurrency::gbp)), UrlErrorCode::cannotLoadFromNetwork);
}

void ExchangeRateServiceTest::rateLimitDefault()
{
    Fixture f;
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

void ExchangeRateServiceTest::rateLimitWithRetryAfter_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<double>("pause");
    QTest::newRow("30") << QByteArray("30") << 30.0;
    QTest::newRow("0") << QByteArray("0") << 1200.0;
    QTest::newRow("date") << QByteArray("Wed, 21 Oct 2026 07:28:00 GMT") << 1200.0;
}

void ExchangeRateServiceTest::rateLimitWithRetryAfter()
{
    QFETCH(QByteArray, text);
    QFETCH(double, pause);
    Fixture f;
    f.answer(er, 429, {}, {{"Retry-After", text}});
    QVERIFY(!f.rate());
    f.clock.advance(pause - 0.5);
    QVERIFY(!f.rate());
    QCOMPARE(f.asked(), QStringLiteral("cdn fallback"));
    f.clock.advance(0.5);
    QVERIFY(!f.rate());
    QCOMPARE(f.asked(), QStringLiteral("er cdn fallback"));
}

void ExchangeRateServiceTest::everyServiceIsRateLimited()
{
    Fixture f;
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

void ExchangeRateServiceTest::missingCurrency()
{
    Fixture f;
    f.answer(er, 200, erBody(0.5));
    QCOMPARE(codeOf(f.rate(BaseCurrency::twd)), UrlErrorCode::cannotParseResponse);
}

void ExchangeRateServiceTest::missingCurrencyFallsBackToTheOldRate()
{
    Fixture f;
    f.cache(0.5, 7200);
    f.answer(er, 200, R"({"result":"success","rates":{"GBP":0.25}})");
    QCOMPARE(f.rate().value(), 0.5);
    QCOMPARE(f.rate(BaseCurrency::gbp).value(), 0.25);
    QVERIFY(f.client.requests().empty());
}

void ExchangeRateServiceTest::lastGoodValuesStayWhenATableIsNonsense()
{
    Fixture f;
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
    Fixture f;
    f.answer(er, 200, erBody(0.5));
    QVERIFY(f.rate().has_value());
    f.clock.advance(-86400);
    f.answer(er, 200, erBody(0.75));
    QCOMPARE(f.rate().value(), 0.75);
    QCOMPARE(f.rate().value(), 0.75);
    QVERIFY(f.client.requests().empty());
}

void ExchangeRateServiceTest::clockGoesBackBehindARateLimit()
{
    Fixture f;
    f.answer(er, 429, {});
    QVERIFY(!f.rate());
    f.clock.advance(-1);
    QVERIFY(!f.rate());
    QCOMPARE(f.asked(), QStringLiteral("er cdn fallback"));
}

void ExchangeRateServiceTest::clockGoesForward()
{
    Fixture f;
    f.answer(er, 200, erBody(0.5));
    QVERIFY(f.rate().has_value());
    f.clock.advance(50.0 * 365 * 86400);
    f.answer(er, 200, erBody(0.75));
    QCOMPARE(f.rate().value(), 0.75);
}

void ExchangeRateServiceTest::theNewerOfFileAndMemoryCounts()
{
    Fixture f;
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
    Fixture f;
    f.store = ExchangeRateCacheStore(QStringLiteral("/proc/nowhere"));
    f.restart();
    f.answer(er, 200, erBody(0.5));
    QCOMPARE(f.rate().value(), 0.5);
}

void ExchangeRateServiceTest::unbuildableAddress()
{
    Fixture f;
    f.service = std::make_unique<ExchangeRateService>(
        f.client, Endpoints{{}, {}, {}, {}, QStringLiteral("https://not a host"), {}, fallback}, f.store,
        f.clock.clock());
    f.answer(fallback, 200, setBody(0.25));
    QCOMPARE(f.rate().value(), 0.25);
    QCOMPARE(f.asked(), QStringLiteral("fallback"));
}

QTEST_GUILESS_MAIN(ExchangeRateServiceTest)
#include "ExchangeRateServiceTest.moc"
