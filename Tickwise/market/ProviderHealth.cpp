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
    return m_rateLimits.current(provider, now);
}

ProviderFailure ProviderHealth::noteRateLimit(const QString &provider, std::optional<double> retryAfterSeconds,
                                              FailureReason reason, TimePoint now)
{
    return m_rateLimits.start(provider, retryAfterSeconds.value_or(rateLimitCooldown), reason, now);
}

QStringList ProviderHealth::available(const QString &provider, const QStringList &symbols, TimePoint now) const
{
    QStringList available;
    for (const QString &symbol : symbols) {
        const auto cooldown = m_unavailable.constFind(key(provider, symbol));
        if (cooldown == m_unavailable.constEnd() || !cooldown->holds(now))
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
            m_unavailable.insert(key(provider, symbol), Cooldown::lasting(symbolCooldown, now));
    }
}

} // namespace tickwise
