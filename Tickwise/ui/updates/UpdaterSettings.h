#pragma once

#include "settings/SettingsDataStorage.h"
#include "support/Clock.h"

#include <QString>

#include <optional>

namespace tickwise {

/// What the updater remembers from run to run.
struct UpdaterSettings
{
    bool automaticallyChecks = true;
    std::optional<TimePoint> lastCheck; ///< the last time the feed's server answered
    QString skippedVersion;             ///< empty: none
    bool operator==(const UpdaterSettings &) const = default;
};

/// Decodes field by field: what is missing or wrong is its default. What is no JSON object is an error.
Result<UpdaterSettings> decodeUpdaterSettings(const QByteArray &json);
Result<QByteArray> encodeUpdaterSettings(const UpdaterSettings &settings);

/// Keeps the record as one JSON document under the key "updater".
class UpdaterSettingsStore
{
public:
    /// Loads what is stored. The storage outlives the store.
    explicit UpdaterSettingsStore(SettingsDataStorage &storage);

    const UpdaterSettings &settings() const { return m_settings; }
    /// Saves at once; a failure is one log line.
    void update(const UpdaterSettings &settings);

private:
    SettingsDataStorage &m_storage;
    UpdaterSettings m_settings;
};

} // namespace tickwise
