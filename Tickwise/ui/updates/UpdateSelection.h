#pragma once

#include "support/Clock.h"
#include "ui/updates/AppcastItem.h"

#include <optional>
#include <vector>

namespace tickwise {

/// What a choice among the items of a feed depends on.
struct UpdateQuery
{
    QString runningVersion;
    QString
        systemVersion; ///< the VERSION_ID of os-release; anything but a version: unknown, as on rolling distributions
    QString skippedVersion; ///< the user does not want it, nor anything older; empty: none
    bool userInitiated = false;
};

/// Why there is an update, or why not.
enum class UpdateOutcome
{
    found,
    upToDate,
    skipped,
    noUpdateForSystem
};

/// The chosen item, present exactly when the outcome is `found`.
struct UpdateSelection
{
    UpdateOutcome outcome = UpdateOutcome::upToDate;
    std::optional<AppcastItem> item;
    bool operator==(const UpdateSelection &) const = default;
};

/// The newest item that is newer than the running version and whose minimum system version is met. A skipped one is
/// found only by a user-initiated check. An unknown system version meets every minimum.
UpdateSelection selectUpdate(const std::vector<AppcastItem> &items, const UpdateQuery &query);

/// The newest version among the items; empty for no items.
QString newestVersion(const std::vector<AppcastItem> &items);

/// The newest version that a feed ever named, and when it last did.
struct SeenVersion
{
    QString version;
    TimePoint at;
    bool operator==(const SeenVersion &) const = default;
};

/// Whether a feed went back: its newest version is older than one it named within the last 14 days. Later its word is
/// taken again, so that a release published by mistake does not end updates for good.
bool isRolledBack(const QString &newest, const std::optional<SeenVersion> &seen, TimePoint now);

} // namespace tickwise
