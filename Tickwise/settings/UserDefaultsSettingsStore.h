#pragma once

#include "settings/AppSettings.h"
#include "settings/SettingsDataStorage.h"

#include <optional>

namespace tickwise {

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
