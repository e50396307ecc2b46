#include "market/ProviderHealth.h"

namespace tickwise {

namespace {

QString key(const QString &provider, const QString &symbol)
{
    return provider + QLatin1Char('/') + symbol;
}

} // namespace

std::optional<ProviderFailure> ProviderHealth::rateLimit(const QString &provider, TimePoint now) const
{
    const auto limit = m_rateLimits.constFind(provider);
    if (limit == m_rateLimits.constEnd() || !limit->pause.holds(now))
        return std::nullopt;
    return ProviderFailure{provider, limit->reason, limit->pause.until};
}

void ProviderHealth::noteRateLimit(const QString &provider, std::optional<double> retryAfterSeconds,
                                   FailureReason reason, TimePoint now)
{
    m_rateLimits.insert(provider, {Pause::lasting(retryAfterSeconds.value_or(rateLimitPause), now), reason});
}

QStringList ProviderHealth::available(const QString &provider, const QStringList &symbols, TimePoint now) const
{
    QStringList available;
    for (const QString &symbol : symbols) {
        const auto pause = m_unavailable.constFind(key(provider, symbol));
        if (pause == m_unavailable.constEnd() || !pause->holds(now))
            available.append(symbol);
    }
    return available;
}

void ProviderHealth::noteAnswer(const QString &provider, const QStringList &asked,
                                const std::function<bool(const QString &)> &had, TimePoint now)
{
    for (const QString &symbol : asked) {
        if (had(symbol))
            m_unavailable.remove(key(provider, symbol));
        else
            m_unavailable.insert(key(provider, symbol), Pause::lasting(symbolPause, now));
    }
}

} // namespace tickwise
