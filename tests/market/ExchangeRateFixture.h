#pragma once

#include "doubles/ScriptedHttpClient.h"
#include "doubles/TestClock.h"
#include "market/ExchangeRateService.h"
#include "market/Outcome.h"

#include <QTemporaryDir>
#include <QTest>

namespace tickwise::test {

inline const auto er = QStringLiteral("https://er.example");
inline const auto cdn = QStringLiteral("https://cdn.example/npm/set");
inline const auto fallback = QStringLiteral("https://fallback.example");
inline const auto eurCode = QStringLiteral("EUR");

inline QByteArray erBody(double eur)
{
    return R"({"result":"success","rates":{"EUR":)" + QByteArray::number(eur) + "}}";
}

inline QByteArray setBody(double eur)
{
    return R"({"usd":{"eur":)" + QByteArray::number(eur) + "}}";
}

using Rates = std::vector<Result<double>>;

inline Completion<double> into(Rates &rates)
{
    return [&rates](const Result<double> &rate) { rates.push_back(rate); };
}

/// A service over scripted rate services with a cache folder of its own.
struct ExchangeRateFixture
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

inline UrlErrorCode codeOf(const Result<double> &rate)
{
    return std::get<UrlLoadingError>(rate.error()).code;
}

} // namespace tickwise::test
