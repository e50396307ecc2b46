#pragma once

#include "market/Cooldown.h"
#include "support/Error.h"

#include <QHash>
#include <QString>

#include <optional>

namespace tickwise {

/// Which providers asked for a back-off, and until when. In memory only.
class RateLimits
{
public:
    /// The provider's limit; none when it may be asked now.
    std::optional<ProviderFailure> current(const QString &provider, TimePoint now) const;

    /// Starts a limit of that many seconds in place of an earlier one and returns it. `reason` is what it means to the
    /// user: a rate limit, or a region that is blocked.
    ProviderFailure start(const QString &provider, double seconds, FailureReason reason, TimePoint now);

private:
    struct Limit
    {
        Cooldown cooldown;
        FailureReason reason;
    };
    QHash<QString, Limit> m_limits;
};

} // namespace tickwise
