#include "market/PriceService.h"

#include "market/FailureLog.h"
#include "market/FailureReason.h"
#include "market/ProviderHealth.h"
#include "market/exchanges/TickerProviderList.h"
#include "market/exchanges/TickerResponse.h"
#include "support/LogCategories.h"

#include <QSet>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcPrices, "com.pelmo.tickwise.Prices")

const auto tether = QStringLiteral("USDT");

QStringList normalized(const QStringList &symbols)
{
    QStringList list;
    for (const QString &symbol : symbols)
        list.append(symbol.toUpper());
    list.sort();
    list.removeDuplicates();
    return list;
}

} // namespace

/// The state that the fetches share.
struct PriceService::Core
{
    HttpClient &client;
    RateFetching &rates;
    std::vector<std::unique_ptr<TickerProvider>> providers;
    Clock clock;
    ProviderHealth health;
    std::vector<SnapshotFetch *> fetches; // those under way
    FailureLog failures;

    void log(const TickerProvider &provider, const Error &error)
    {
        const QString text = description(error);
        if (failures.isNew(&provider, text))
            qCInfo(lcPrices).noquote() << provider.providerName() << "gives no prices:" << text;
    }
};

/// One fetch: attempts one provider after another, then fills the gaps. Its methods are the steps, in their order.
class PriceService::SnapshotFetch : public Operation
{
public:
    SnapshotFetch(Core &core, const QStringList &symbols, BaseCurrency currency, Completion<PriceSnapshot> done)
        : m_core(&core)
        , m_wantsTether(symbols.contains(tether))
        , m_wanted(symbols)
        , m_done(std::move(done))
    {
        core.fetches.push_back(this);
        m_wanted.removeAll(tether);
        for (std::size_t i = 0; i < core.providers.size(); ++i)
            m_order.push_back((core.health.preferredProviderIndex + i) % core.providers.size());
        m_rateRequest = core.rates.rate(currency, [this](const Result<double> &rate) { receiveRate(rate); });
        if (m_wanted.isEmpty())
            m_quotesComplete = true;
        else
            attempt(0);
    }
    ~SnapshotFetch() override { leave(); }

    /// Fails because the service is being destroyed.
    void abandon() { finishLater(UrlLoadingError{UrlErrorCode::cancelled}); }

private:
    using Answer = std::function<void(const Result<TickerQuotes> &)>;

    /// A ticker request under way ends first: it may bring a back-off that the next fetch has to know.
    void receiveRate(const Result<double> &rate)
    {
        m_rate = rate;
        if (m_quotesComplete)
            deliver();
    }

    /// Asks the provider at a position of the order; fails past its end.
    void attempt(std::size_t position)
    {
        if (hasRateFailed())
            return finish(failure(m_rate->error()));
        if (position == m_order.size()) {
            return finishLater(UrlLoadingError{UrlErrorCode::cannotLoadFromNetwork,
                                               QStringLiteral("no exchange answered"), 0, m_causes});
        }
        const TickerProvider &provider = *m_core->providers[m_order[position]];
        const QStringList asked = askable(provider, m_wanted);
        if (asked.isEmpty())
            return attempt(position + 1);
        ask(provider, asked,
            [this, position, asked](const Result<TickerQuotes> &quotes) { receiveQuotes(position, asked, quotes); });
    }

    /// The symbols that the provider may be asked for now; none while it is rate-limited.
    QStringList askable(const TickerProvider &provider, const QStringList &symbols)
    {
        const TimePoint now = m_core->clock();
        const QString name = provider.providerName();
        if (const std::optional<ProviderFailure> limit = m_core->health.rateLimit(name, now)) {
            m_causes.push_back(*limit);
            return {};
        }
        QStringList available = m_core->health.available(name, symbols, now);
        if (available.isEmpty())
            m_causes.push_back({name, FailureReason::badAnswer, std::nullopt});
        return available;
    }

    bool hasRateFailed() const { return m_rate && !*m_rate; }

    void ask(const TickerProvider &provider, const QStringList &symbols, const Answer &answer)
    {
        const std::optional<HttpRequest> request = provider.makeRequest(symbols);
        if (!request) {
            m_tickerRequest = deliverLater<TickerQuotes>(failure(UrlLoadingError{UrlErrorCode::badURL}), answer);
            return;
        }
        m_tickerRequest =
            m_core->client.send(*request, [&provider, symbols, answer](const Result<HttpResponse> &response) {
                answer(response.and_then(classifyTickerResponse).and_then([&](const QByteArray &body) {
                    return provider.parseQuotes(body, symbols);
                }));
            });
    }

    void receiveQuotes(std::size_t position, const QStringList &asked, const Result<TickerQuotes> &quotes)
    {
        const TickerProvider &provider = *m_core->providers[m_order[position]];
        if (!quotes) {
            noteFailure(provider, quotes.error());
            return attempt(position + 1);
        }
        noteAnswer(provider, asked, *quotes);
        if (quotes->isEmpty()) {
            noteFailure(provider, UrlLoadingError{UrlErrorCode::zeroByteResource});
            return attempt(position + 1);
        }
        m_core->health.preferredProviderIndex = m_order[position];
        m_quotes = *quotes;
        collectGapProviders(provider);
        fillGap(0);
    }

    /// Collects the first provider of every other exchange, in the order of the list.
    void collectGapProviders(const TickerProvider &answered)
    {
        QSet<QString> names{answered.providerName()};
        for (const std::unique_ptr<TickerProvider> &provider : m_core->providers) {
            if (names.contains(provider->providerName()))
                continue;
            names.insert(provider->providerName());
            m_gapProviders.push_back(provider.get());
        }
    }

    void fillGap(std::size_t index)
    {
        const QStringList missing = missingSymbols();
        if (missing.isEmpty() || index == m_gapProviders.size() || hasRateFailed())
            return completeQuotes();
        const TickerProvider &provider = *m_gapProviders[index];
        const QStringList asked = askable(provider, missing);
        if (asked.isEmpty())
            return fillGap(index + 1);
        ask(provider, asked,
            [this, index, asked](const Result<TickerQuotes> &quotes) { receiveGapQuotes(index, asked, quotes); });
    }

    void receiveGapQuotes(std::size_t index, const QStringList &asked, const Result<TickerQuotes> &quotes)
    {
        const TickerProvider &provider = *m_gapProviders[index];
        if (quotes) {
            noteAnswer(provider, asked, *quotes);
            m_quotes.insert(*quotes);
        } else {
            noteFailure(provider, quotes.error());
        }
        fillGap(index + 1);
    }

    void completeQuotes()
    {
        m_quotesComplete = true;
        if (m_rate)
            deliver();
    }

    QStringList missingSymbols() const
    {
        QStringList missing;
        std::copy_if(m_wanted.begin(), m_wanted.end(), std::back_inserter(missing),
                     [this](const QString &symbol) { return !m_quotes.contains(symbol); });
        return missing;
    }

    void noteAnswer(const TickerProvider &provider, const QStringList &asked, const TickerQuotes &quotes)
    {
        m_core->health.noteAnswer(
            provider.providerName(), asked, [&](const QString &symbol) { return quotes.contains(symbol); },
            m_core->clock());
        if (!quotes.isEmpty())
            m_core->failures.clear(&provider);
    }

    void noteFailure(const TickerProvider &provider, const Error &error)
    {
        const QString name = provider.providerName();
        const TimePoint now = m_core->clock();
        ProviderFailure cause{name, failureReason(error), std::nullopt};
        const auto *const refused = std::get_if<TickerProviderError>(&error);
        if (refused && refused->kind == TickerProviderError::Kind::rateLimited)
            cause = m_core->health.noteRateLimit(name, refused->retryAfter, cause.reason, now);
        m_causes.push_back(cause);
        m_core->log(provider, error);
    }

    void deliver()
    {
        finish(m_rate->map([this](double rate) { return snapshot(rate); }));
    }

    PriceSnapshot snapshot(double rate)
    {
        PriceSnapshot snapshot;
        snapshot.usdToTargetRate = rate;
        if (m_wantsTether)
            m_quotes.insert(tether, {1.0, 0.0});
        for (auto quote = m_quotes.cbegin(); quote != m_quotes.cend(); ++quote) {
            const double price = quote->priceUsd * rate;
            if (!std::isfinite(price))
                continue;
            snapshot.prices.insert(quote.key(), price);
            if (quote->change24hPercent)
                snapshot.changes24h.insert(quote.key(), *quote->change24hPercent);
        }
        return snapshot;
    }

    /// Fails from the event loop, as the call that starts the fetch may come here.
    void finishLater(Error error)
    {
        leave();
        m_rateRequest.cancel();
        m_tickerRequest = deliverLater<PriceSnapshot>(failure(std::move(error)),
                                                      [this](const Result<PriceSnapshot> &result) { finish(result); });
    }

    void leave()
    {
        if (m_core)
            std::erase(m_core->fetches, this);
        m_core = nullptr;
    }

    /// Delivers. The completion may destroy this fetch and the service, so nothing follows it.
    void finish(Result<PriceSnapshot> result)
    {
        leave();
        m_rateRequest.cancel();
        m_tickerRequest.cancel();
        const Completion<PriceSnapshot> done = std::move(m_done);
        done(std::move(result));
    }

    Core *m_core; // null once the outcome is known
    bool m_wantsTether;
    QStringList m_wanted;
    Completion<PriceSnapshot> m_done;
    std::vector<std::size_t> m_order;
    std::vector<const TickerProvider *> m_gapProviders;
    std::vector<ProviderFailure> m_causes;
    TickerQuotes m_quotes;
    bool m_quotesComplete = false;
    std::optional<Result<double>> m_rate;
    Subscription m_rateRequest;
    Subscription m_tickerRequest;
};

PriceService::PriceService(HttpClient &client, RateFetching &exchangeRateService, const Endpoints &endpoints,
                           Clock clock)
    : m_core(std::make_unique<Core>(
          Core{client, exchangeRateService, makeTickerProviders(endpoints, clock), std::move(clock), {}, {}, {}}))
{
}

PriceService::~PriceService()
{
    for (SnapshotFetch *const fetch : std::exchange(m_core->fetches, {}))
        fetch->abandon();
}

Subscription PriceService::fetchSnapshot(const QStringList &symbols, BaseCurrency currency,
                                         Completion<PriceSnapshot> done)
{
    const QStringList wanted = normalized(symbols);
    if (wanted.isEmpty()) {
        return deliverLater<PriceSnapshot>(failure(UrlLoadingError{UrlErrorCode::badURL, QStringLiteral("no symbols")}),
                                           std::move(done));
    }
    return Subscription(std::make_unique<SnapshotFetch>(*m_core, wanted, currency, std::move(done)));
}

} // namespace tickwise
