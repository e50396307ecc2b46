#pragma once

#include "support/Result.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace tickwise {

/// Where the settings document is kept: the user defaults, or a double.
class SettingsDataStorage
{
public:
    virtual ~SettingsDataStorage() = default;
    /// The data under the key; none when nothing is stored.
    virtual std::optional<QByteArray> data(const QString &key) const = 0;
    /// Stores the data, or removes the entry when given none. The result is what reached the disk.
    virtual Result<void> setData(const QString &key, const std::optional<QByteArray> &data) = 0;
    /// Called by a reader that refuses the data under the key: a copy is kept before it is first overwritten.
    virtual void keepBeforeOverwriting(const QString &key) = 0;
};

} // namespace tickwise
