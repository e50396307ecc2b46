#pragma once

#include "market/Pause.h"
#include "support/Error.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace tickwise {

/// What the price service remembers of its providers, by provider name. In memory only.
class ProviderHealth
{
public:
    static constexpr double symbolPause = 1800;  ///< seconds that a provider is not asked for a symbol it lacked
    static constexpr double rateLimitPause = 60; ///< seconds, when an exchange does not say how long

    /// Index of the provider that answered last.
    std::size_t preferredProviderIndex = 0;

    /// Why and until when the provider must not be asked; none when it may be.
    std::optional<ProviderFailure> rateLimit(const QString &provider, TimePoint now) const;
    /// `reason` is what the refusal meant to the user: a rate limit, or a region that is blocked.
    void noteRateLimit(const QString &provider, std::optional<double> retryAfterSeconds, FailureReason reason,
                       TimePoint now);

    /// The symbols without those that the provider lacked a short while ago.
    QStringList available(const QString &provider, const QStringList &symbols, TimePoint now) const;
    /// Marks the asked symbols that the provider lacked, and clears the marks of those that it had.
    void noteAnswer(const QString &provider, const QStringList &asked, const std::function<bool(const QString &)> &had,
                    TimePoint now);

private:
    struct RateLimit
    {
        Pause pause;
        FailureReason reason;
    };
    QHash<QString, RateLimit> m_rateLimits; // by provider name
    QHash<QString, Pause> m_unavailable;    // by provider name, "/" and symbol
};

} // namespace tickwise
