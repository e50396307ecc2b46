#pragma once

#include <QHash>
#include <QString>

namespace tickwise {

/// Why providers fail at present, for the log: a provider that stays away is one line, not one a poll.
class ProviderCauses
{
public:
    /// Whether the provider did not fail for this cause already.
    bool isNew(const void *provider, const QString &cause)
    {
        if (m_causes.value(provider) == cause)
            return false;
        m_causes.insert(provider, cause);
        return true;
    }

    /// The provider gives again.
    void forget(const void *provider) { m_causes.remove(provider); }

private:
    QHash<const void *, QString> m_causes;
};

} // namespace tickwise
