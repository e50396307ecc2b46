#include "market/ExchangeRateService.h"

#include "market/FailureReason.h"
#include "market/rates/ExchangeRateProviderList.h"
#include "market/rates/ExchangeRateResponse.h"
#include "support/LogCategories.h"

#include <utility>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcRates, "com.pelmo.tickwise.ExchangeRates")

} // namespace

/// One fetch of a table: attempts one provider after another. Its methods are the steps, in their order.
class ExchangeRateService::TableFetch
{
public:
    explicit TableFetch(ExchangeRateService &service)
        : m_service(service)
    {
        attempt(0);
    }

private:
    /// Asks the provider at a position of the list; fails past its end.
    void attempt(std::size_t position)
    {
        if (position == m_service.m_providers.size()) {
            return finishLater(UrlLoadingError{UrlErrorCode::cannotLoadFromNetwork,
                                               QStringLiteral("no rate service answered"), 0, m_causes});
        }
        const ExchangeRateProvider &provider = *m_service.m_providers[position];
        if (const auto limit = m_service.m_rateLimits.current(provider.urlString(), m_service.m_clock())) {
            m_causes.push_back(*limit);
            return attempt(position + 1);
        }
        ask(provider, [this, position](const Result<RateTable> &table) { receive(position, table); });
    }

    void ask(const ExchangeRateProvider &provider, const std::function<void(const Result<RateTable> &)> &answer)
    {
        HttpRequest request;
        request.url = QUrl(provider.urlString(), QUrl::StrictMode);
        if (!request.url.isValid() || request.url.host().isEmpty()) {
            m_request = deliverLater<RateTable>(failure(UrlLoadingError{UrlErrorCode::badURL}), answer);
            return;
        }
        m_request = m_service.m_client.send(request, [&provider, answer](const Result<HttpResponse> &response) {
            answer(response.and_then(classifyExchangeRateResponse).and_then([&](const QByteArray &body) {
                return provider.decode(body);
            }));
        });
    }

    void receive(std::size_t position, const Result<RateTable> &table)
    {
        const ExchangeRateProvider &provider = *m_service.m_providers[position];
        if (!table) {
            noteFailure(provider, table.error());
            return attempt(position + 1);
        }
        m_service.m_failures.clear(&provider);
        m_service.receiveTable(table);
    }

    void noteFailure(const ExchangeRateProvider &provider, const Error &error)
    {
        ProviderFailure cause{provider.urlString(), failureReason(error), std::nullopt};
        if (const auto *const limited = std::get_if<ExchangeRateProviderError>(&error)) {
            cause = m_service.m_rateLimits.start(provider.urlString(), limited->retryAfter, cause.reason,
                                                 m_service.m_clock());
        }
        m_causes.push_back(cause);
        m_service.log(provider, error);
    }

    /// Fails from the event loop, as the call that starts the fetch may come here.
    void finishLater(Error error)
    {
        m_request = deliverLater<RateTable>(failure(std::move(error)),
                                            [this](const Result<RateTable> &table) { m_service.receiveTable(table); });
    }

    ExchangeRateService &m_service;
    std::vector<ProviderFailure> m_causes;
    Subscription m_request;
};

/// One caller's request for a rate, which waits for the table that is being fetched.
class ExchangeRateService::RateRequest : public Operation
{
public:
    RateRequest(ExchangeRateService &service, BaseCurrency currency, std::optional<double> staleRate,
                Completion<double> done)
        : m_service(&service)
        , m_code(rawValue(currency))
        , m_staleRate(staleRate)
        , m_done(std::move(done))
    {
        service.join(*this);
    }
    ~RateRequest() override
    {
        if (m_service)
            m_service->leave(*this);
    }

    void receive(const Result<RateTable> &table)
    {
        Result<double> rate = table.and_then([this](const RateTable &rates) { return lookUp(rates); });
        if (!rate && m_staleRate)
            rate = *m_staleRate;
        finishLater(std::move(rate));
    }

    /// Fails because the service is being destroyed.
    void abandon() { finishLater(failure(UrlLoadingError{UrlErrorCode::cancelled})); }

private:
    /// Delivers from the event loop, as the completion may ask again or destroy the service.
    void finishLater(Result<double> rate)
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

    ExchangeRateService *m_service; // null once the outcome is known
    QString m_code;
    std::optional<double> m_staleRate;
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
    for (RateRequest *const request : m_requests)
        request->abandon();
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
    return Subscription(std::make_unique<RateRequest>(*this, currency, known, std::move(done)));
}

bool ExchangeRateService::isFresh() const
{
    if (!m_cacheTimestamp)
        return false;
    // A table from the future means that the clock was set back: its age is unknown.
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

void ExchangeRateService::join(RateRequest &request)
{
    m_requests.push_back(&request);
    if (!m_inFlight)
        m_inFlight = std::make_unique<TableFetch>(*this);
}

void ExchangeRateService::leave(RateRequest &request)
{
    std::erase(m_requests, &request);
    if (m_requests.empty())
        m_inFlight.reset();
}

void ExchangeRateService::receiveTable(const Result<RateTable> &table)
{
    const std::unique_ptr<TableFetch> finished = std::move(m_inFlight); // owns the table until the end of this call
    if (table)
        adopt(*table);
    for (RateRequest *const request : std::exchange(m_requests, {}))
        request->receive(table);
}

void ExchangeRateService::log(const ExchangeRateProvider &provider, const Error &error)
{
    const QString text = description(error);
    if (m_failures.isNew(&provider, text))
        qCInfo(lcRates).noquote() << provider.urlString() << "gives no rates:" << text;
}

void ExchangeRateService::adopt(const RateTable &table)
{
    m_cachedRates = table;
    m_cacheTimestamp = m_clock();
    // Without the cache file the next start only needs one request more.
    (void)m_cacheStore.save({table, *m_cacheTimestamp});
}

} // namespace tickwise
