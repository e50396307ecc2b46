#pragma once

#include "widget/WidgetSnapshot.h"

#include <optional>

namespace tickwise {

/// Knows where the snapshot file lies. A reader finds the whole old file or the whole new one, never a mixture.
struct WidgetSnapshotStore
{
    std::optional<QString> directory; ///< the container shared with the widget; none when it is unavailable

    /// The file's path; none without a directory.
    std::optional<QString> path() const;

    /// Replaces the file, making the directory where it is missing; on failure the old file stays. Without a directory
    /// it does nothing and succeeds.
    Result<void> write(const WidgetSnapshot &snapshot) const;

    /// Reads the file back. Failure: no directory, no file, or a file that does not decode.
    Result<WidgetSnapshot> read() const;
};

} // namespace tickwise
