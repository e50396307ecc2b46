#include "market/ProviderHealth.h"

namespace tickwise {

namespace {

QString key(const QString &provider, const QString &symbol)
{
    return provider + QLatin1Char('/') + symbol;
}

} // namespace

std::optional<TimePoint> ProviderHealth::rateLimitedUntil(const QString &provider, TimePoint now) const
{
    const auto pause = m_rateLimits.constFind(provider);
    return pause != m_rateLimits.constEnd() && pause->holds(now) ? std::optional(pause->until) : std::nullopt;
}

void ProviderHealth::noteRateLimit(const QString &provider, std::optional<double> retryAfterSeconds, TimePoint now)
{
    m_rateLimits.insert(provider, Pause::lasting(retryAfterSeconds.value_or(rateLimitPause), now));
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
