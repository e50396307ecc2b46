#pragma once

#include <QHash>
#include <QString>

namespace tickwise {

/// Remembers each provider's present failure, so that a failure that lasts is logged once and not at every poll.
class FailureLog
{
public:
    /// Notes the failure; false when the provider failed in the same way the last time.
    bool isNew(const void *provider, const QString &failure)
    {
        if (m_failures.value(provider) == failure)
            return false;
        m_failures.insert(provider, failure);
        return true;
    }

    /// Notes that the provider answered: its next failure is new.
    void clear(const void *provider) { m_failures.remove(provider); }

private:
    QHash<const void *, QString> m_failures;
};

} // namespace tickwise
