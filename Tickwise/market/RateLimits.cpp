#include "market/RateLimits.h"

namespace tickwise {

std::optional<ProviderFailure> RateLimits::current(const QString &provider, TimePoint now) const
{
    const auto limit = m_limits.constFind(provider);
    if (limit == m_limits.constEnd() || !limit->cooldown.holds(now))
        return std::nullopt;
    return ProviderFailure{provider, limit->reason, limit->cooldown.until};
}

ProviderFailure RateLimits::start(const QString &provider, double seconds, FailureReason reason, TimePoint now)
{
    const Cooldown cooldown = Cooldown::lasting(seconds, now);
    m_limits.insert(provider, {cooldown, reason});
    return {provider, reason, cooldown.until};
}

} // namespace tickwise
