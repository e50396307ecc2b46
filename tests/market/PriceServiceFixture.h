#pragma once

#include "doubles/ScriptedHttpClient.h"
#include "doubles/TestClock.h"
#include "market/Outcome.h"
#include "market/PriceService.h"

#include <QTest>

#include <map>

namespace tickwise::test {

/// Rates that the test sets; they arrive from the event loop, or never.
class FakeRates : public RateFetching
{
public:
    [[nodiscard]] Subscription rate(BaseCurrency currency, Completion<double> done) override
    {
        asked.push_back(currency);
        if (!answer)
            return Subscription(std::make_unique<Held>(open));
        return deliverLater<double>(*answer, std::move(done));
    }

    std::optional<Result<double>> answer = 1.0; ///< none: hold
    std::vector<BaseCurrency> asked;
    std::shared_ptr<int> open = std::make_shared<int>(0); ///< held requests that were not dropped

private:
    struct Held : Operation
    {
        explicit Held(std::shared_ptr<int> count)
            : m_count(std::move(count))
        {
            ++*m_count;
        }
        ~Held() override { --*m_count; }
        std::shared_ptr<int> m_count;
    };
};

/// The answers that were delivered to one completion.
struct Outcomes
{
    std::vector<Result<PriceSnapshot>> results;

    Completion<PriceSnapshot> completion()
    {
        return [this](const Result<PriceSnapshot> &result) { results.push_back(result); };
    }
    bool arrived() const
    {
        return QTest::qWaitFor([this] { return !results.empty(); });
    }
};

using Prices = std::map<QByteArray, QByteArray>;

/// The full lists of the exchanges with these prices, without a change in 24 hours.
struct Bodies
{
    static QByteArray binance(const Prices &prices, TimePoint closed)
    {
        const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(closed.time_since_epoch()).count();
        QByteArrayList tickers;
        for (const auto &[symbol, price] : prices) {
            tickers.append(R"({"symbol":")" + symbol + R"(USDT","priceChangePercent":"0","lastPrice":")" + price +
                           R"(","closeTime":)" + QByteArray::number(qint64(time)) + "}");
        }
        return "[" + tickers.join(',') + "]";
    }
    static QByteArray okx(const Prices &prices)
    {
        QByteArrayList tickers;
        for (const auto &[symbol, price] : prices)
            tickers.append(R"({"instId":")" + symbol + R"(-USDT","last":")" + price + R"(","open24h":"0"})");
        return R"({"code":"0","data":[)" + tickers.join(',') + "]}";
    }
    static QByteArray bybit(const Prices &prices)
    {
        QByteArrayList tickers;
        for (const auto &[symbol, price] : prices)
            tickers.append(R"({"symbol":")" + symbol + R"(USDT","lastPrice":")" + price + R"(","price24hPcnt":"0.5"})");
        return R"({"retCode":0,"result":{"list":[)" + tickers.join(',') + "]}}";
    }
};

/// A price service over a scripted world of exchanges named by short addresses.
class PriceServiceFixture
{
public:
    const QString main = QStringLiteral("https://main.example/api/v3");
    const QString data = QStringLiteral("https://data.example/api/v3");
    const QString okx = QStringLiteral("https://okx.example");
    const QString bybit = QStringLiteral("https://bybit.example");

    ScriptedHttpClient client;
    FakeRates rates;
    TestClock clock;
    std::unique_ptr<PriceService> service =
        std::make_unique<PriceService>(client, rates, Endpoints{main, data, okx, bybit, {}, {}, {}}, clock.clock());

    void mainHas(const Prices &prices) { replace(main, Bodies::binance(prices, clock.now())); }
    void dataHas(const Prices &prices) { replace(data, Bodies::binance(prices, clock.now())); }
    void okxHas(const Prices &prices) { replace(okx, Bodies::okx(prices)); }
    void bybitHas(const Prices &prices) { replace(bybit, Bodies::bybit(prices)); }

    /// From now on the exchange answers so.
    void answer(const QString &exchange, int status, const QByteArray &body = "{}",
                std::vector<std::pair<QByteArray, QByteArray>> headers = {})
    {
        client.clear(exchange);
        client.answer(exchange, status, body, std::move(headers));
    }
    void fail(const QString &exchange, UrlErrorCode code)
    {
        client.clear(exchange);
        client.fail(exchange, UrlLoadingError{code});
    }
    void hold(const QString &exchange)
    {
        client.clear(exchange);
        client.hold(exchange);
    }

    Subscription start(const QStringList &symbols, Outcomes &outcomes, BaseCurrency currency = BaseCurrency::usd)
    {
        return service->fetchSnapshot(symbols, currency, outcomes.completion());
    }

    /// One whole fetch.
    Result<PriceSnapshot> fetch(const QStringList &symbols, BaseCurrency currency = BaseCurrency::usd)
    {
        client.forgetRequests();
        Outcomes outcomes;
        const Subscription subscription = start(symbols, outcomes, currency);
        if (!outcomes.arrived())
            return failure(DecodingError{QStringLiteral("nothing was delivered")});
        QCoreApplication::processEvents();
        return outcomes.results.size() == 1 ? outcomes.results.front()
                                            : failure(DecodingError{QStringLiteral("delivered more than once")});
    }

    /// The exchanges asked since the last fetch began, in order: "main okx".
    QString asked() const
    {
        QStringList names;
        for (const HttpRequest &request : client.requests())
            names.append(request.url.host().section(QLatin1Char('.'), 0, 0));
        return names.join(QLatin1Char(' '));
    }

private:
    void replace(const QString &exchange, const QByteArray &body) { answer(exchange, 200, body); }
};

} // namespace tickwise::test
