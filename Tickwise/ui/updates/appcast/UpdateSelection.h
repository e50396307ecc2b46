#pragma once

#include "ui/updates/appcast/AppcastItem.h"

#include <optional>
#include <vector>

namespace tickwise {

/// What a choice among the items of a feed depends on.
struct UpdateQuery
{
    QString runningVersion;
    QString systemVersion;  ///< of the distribution; anything but a version: unknown, as on rolling distributions
    QString skippedVersion; ///< the user does not want it, nor anything older; empty: none
    bool userInitiated = false;
};

/// Why there is an update, or why not.
enum class UpdateOutcome
{
    found,
    upToDate,
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
/// found only by a user-initiated check. An unknown system version meets every minimum, and no system meets a minimum
/// that is no version.
UpdateSelection selectUpdate(const std::vector<AppcastItem> &items, const UpdateQuery &query);

} // namespace tickwise
