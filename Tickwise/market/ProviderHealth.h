#pragma once

#include "market/RateLimits.h"

#include <QStringList>

#include <functional>

namespace tickwise {

/// What the price service remembers of its providers, by provider name. In memory only.
class ProviderHealth
{
public:
    static constexpr double symbolCooldown = 1800;  ///< seconds that a provider is not asked for a symbol it lacked
    static constexpr double rateLimitCooldown = 60; ///< seconds, when an exchange does not say how long

    /// Index of the provider that answered last.
    std::size_t preferredProviderIndex = 0;

    /// The provider's rate limit; none when it may be asked.
    std::optional<ProviderFailure> rateLimit(const QString &provider, TimePoint now) const;
    /// Starts a rate limit and returns it. `reason` is what the refusal means to the user.
    ProviderFailure noteRateLimit(const QString &provider, std::optional<double> retryAfterSeconds,
                                  FailureReason reason, TimePoint now);

    /// The symbols without those whose cooldown at the provider holds.
    QStringList available(const QString &provider, const QStringList &symbols, TimePoint now) const;
    /// Starts the cooldowns of the asked symbols that the provider lacked and ends those of the ones that it had.
    void noteAnswer(const QString &provider, const QStringList &asked, const std::function<bool(const QString &)> &had,
                    TimePoint now);

private:
    RateLimits m_rateLimits;
    QHash<QString, Cooldown> m_unavailable; // by provider name, "/" and symbol
};

} // namespace tickwise
