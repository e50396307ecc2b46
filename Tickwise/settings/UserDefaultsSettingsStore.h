#pragma once

#include "settings/AppSettings.h"
#include "support/Result.h"

#include <QByteArray>

#include <memory>
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
};

/// Reads and writes the settings record as one JSON blob under the key "appSettings".
class UserDefaultsSettingsStore
{
public:
    explicit UserDefaultsSettingsStore(SettingsDataStorage &defaults)
        : m_defaults(&defaults)
    {
    }

    /// None when nothing is stored; the default record, with one log line, when the blob does not decode.
    std::optional<AppSettings> load() const;

    /// A failure to encode or to store is one log line; the stored blob stays as it was.
    void save(const AppSettings &settings);

private:
    SettingsDataStorage *m_defaults;
};

} // namespace tickwise
