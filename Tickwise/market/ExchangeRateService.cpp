#include "market/ExchangeRateService.h"

#include "market/FailureReason.h"
#include "market/HttpStatus.h"
#include "support/LogCategories.h"

#include <utility>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcRates, "com.pelmo.tickwise.ExchangeRates")

constexpr int tooManyRequests = 429;

Result<QByteArray> classify(const HttpResponse &response)
{
    if (response.status >= 200 && response.status <= 299)
        return response.body;
    if (response.status == tooManyRequests) {
        return failure(TickerProviderError{TickerProviderError::Kind::rateLimited,
                                           retryAfter(response).value_or(ExchangeRateService::rateLimitPause),
                                           response.status});
    }
    return failure(UrlLoadingError{UrlErrorCode::badServerResponse, {}, response.status});
}

} // namespace

/// One way through the providers to a table.
class ExchangeRateService::TableFetch
{
public:
    explicit TableFetch(ExchangeRateService &service)
        : m_service(service)
    {
        attempt(0);
    }

private:
    void attempt(std::size_t index)
    {
        if (index == m_service.m_providers.size())
            return fail();
        const ExchangeRateProvider &provider = *m_service.m_providers[index];
        const auto pause = m_service.m_rateLimits.constFind(provider.urlString());
        if (pause != m_service.m_rateLimits.constEnd() && pause->holds(m_service.m_clock())) {
            m_causes.push_back({provider.urlString(), FailureReason::rateLimited, pause->until});
            return attempt(index + 1);
        }
        HttpRequest request;
        request.url = QUrl(provider.urlString(), QUrl::StrictMode);
        if (!request.url.isValid() || request.url.host().isEmpty())
            return attemptFailed(index, UrlLoadingError{UrlErrorCode::badURL});
        m_step = m_service.m_client.send(
            request, [this, index](const Result<HttpResponse> &response) { receive(index, response); });
    }

    void receive(std::size_t index, const Result<HttpResponse> &response)
    {
        const ExchangeRateProvider &provider = *m_service.m_providers[index];
        const Result<RateTable> table =
            response.and_then(classify).and_then([&](const QByteArray &body) { return provider.decode(body); });
        if (!table)
            return attemptFailed(index, table.error());
        m_service.m_failing.forget(&provider);
        m_service.receiveTable(table);
    }

    void attemptFailed(std::size_t index, const Error &error)
    {
        const QString &provider = m_service.m_providers[index]->urlString();
        if (const QString text = description(error);
            m_service.m_failing.isNew(m_service.m_providers[index].get(), text))
            qCInfo(lcRates).noquote() << provider << "gives no rates:" << text;
        ProviderFailure cause{provider, failureReason(error), std::nullopt};
        if (const auto *const limited = std::get_if<TickerProviderError>(&error)) {
            const Pause pause = Pause::lasting(*limited->retryAfter, m_service.m_clock());
            m_service.m_rateLimits.insert(provider, pause);
            cause.until = pause.until;
        }
        m_causes.push_back(cause);
        attempt(index + 1);
    }

    void fail()
    {
        // From the event loop: every provider may have been skipped inside the call that started this fetch.
        m_step =
            deliverLater<RateTable>(failure(UrlLoadingError{UrlErrorCode::cannotLoadFromNetwork,
                                                            QStringLiteral("no rate service answered"), 0, m_causes}),
                                    [this](const Result<RateTable> &result) { m_service.receiveTable(result); });
    }

    ExchangeRateService &m_service;
    std::vector<ProviderFailure> m_causes;
    Subscription m_step;
};

/// Somebody who waits for the table that is being fetched.
class ExchangeRateService::Waiting : public Operation
{
public:
    Waiting(ExchangeRateService &service, BaseCurrency currency, std::optional<double> stale, Completion<double> done)
        : m_service(&service)
        , m_code(rawValue(currency))
        , m_stale(stale)
        , m_done(std::move(done))
    {
    }
    ~Waiting() override
    {
        if (m_service)
            m_service->leave(*this);
    }

    /// Delivers from the event loop, because a completion may ask again or drop this service.
    void finish(const Result<RateTable> &table)
    {
        Result<double> rate = table.and_then([this](const RateTable &rates) { return lookUp(rates); });
        if (!rate && m_stale)
            rate = *m_stale;
        deliver(std::move(rate));
    }

    /// The service goes away.
    void abandon() { deliver(failure(UrlLoadingError{UrlErrorCode::cancelled})); }

private:
    void deliver(Result<double> rate)
    {
        m_service = nullptr;
        m_delivery = deliverLater<double>(std::move(rate), std::move(m_done));
    }

    Result<double> lookUp(const RateTable &rates) const
    {
        const auto rate = rates.constFind(m_code);
        if (rate != rates.constEnd())
            return *rate;
        return failure(UrlLoadingError{UrlErrorCode::cannotParseResponse, QStringLiteral("no rate for ") + m_code});
    }

    ExchangeRateService *m_service;
    QString m_code;
    std::optional<double> m_stale;
    Completion<double> m_done;
    Subscription m_delivery;
};

ExchangeRateService::ExchangeRateService(HttpClient &client, const Endpoints &endpoints,
                                         ExchangeRateCacheStore cacheStore, Clock clock)
    : m_client(client)
    , m_providers(makeExchangeRateProviders(endpoints))
    , m_cacheStore(std::move(cacheStore))
    , m_clock(std::move(clock))
{
}

ExchangeRateService::~ExchangeRateService()
{
    m_inFlight.reset();
    for (Waiting *const waiting : m_waiting)
        waiting->abandon();
}

Subscription ExchangeRateService::rate(BaseCurrency currency, Completion<double> done)
{
    if (currency == BaseCurrency::usd)
        return deliverLater<double>(1.0, std::move(done));
    if (!isFresh())
        loadCacheFile();
    const auto cached = m_cachedRates.constFind(rawValue(currency));
    const std::optional<double> known = cached == m_cachedRates.constEnd() ? std::nullopt : std::optional(*cached);
    if (known && isFresh())
        return deliverLater<double>(*known, std::move(done));
    auto waiting = std::make_unique<Waiting>(*this, currency, known, std::move(done));
    wait(*waiting);
    return Subscription(std::move(waiting));
}

bool ExchangeRateService::isFresh() const
{
    if (!m_cacheTimestamp)
        return false;
    // A table from the future says that the clock went back: it is as good as an old one.
    const double age = secondsBetween(*m_cacheTimestamp, m_clock());
    return age >= 0 && age < lifetime;
}

void ExchangeRateService::loadCacheFile()
{
    const std::optional<ExchangeRateEntry> entry = m_cacheStore.load();
    if (!entry || (m_cacheTimestamp && entry->fetchedAt <= *m_cacheTimestamp))
        return;
    m_cachedRates = entry->rates;
    m_cacheTimestamp = entry->fetchedAt;
}

void ExchangeRateService::wait(Waiting &waiting)
{
    m_waiting.push_back(&waiting);
    if (!m_inFlight)
        m_inFlight = std::make_unique<TableFetch>(*this);
}

void ExchangeRateService::leave(Waiting &waiting)
{
    std::erase(m_waiting, &waiting);
    if (m_waiting.empty())
        m_inFlight.reset();
}

void ExchangeRateService::receiveTable(const Result<RateTable> &result)
{
    const std::unique_ptr<TableFetch> finished = std::move(m_inFlight); // it holds the result
    if (result)
        adopt(*result);
    for (Waiting *const waiting : std::exchange(m_waiting, {}))
        waiting->finish(result);
}

void ExchangeRateService::adopt(const RateTable &table)
{
    m_cachedRates = table;
    m_cacheTimestamp = m_clock();
    // A cache that cannot be written costs one request after the next start, no more.
    (void)m_cacheStore.save({table, *m_cacheTimestamp});
}

} // namespace tickwise
