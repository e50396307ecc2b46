#pragma once

#include <QString>

#include <optional>

namespace tickwise {

/// The path of the folder that the programs of one group share, `$XDG_DATA_HOME/<groupId>`, whether it is there or not.
/// None when the id is not a plain folder name.
std::optional<QString> appGroupContainerPath(const QString &groupId);

/// The same folder, made on first use for the user alone (mode 0700). None when it has no path or cannot be made or
/// used.
std::optional<QString> appGroupContainer(const QString &groupId);

} // namespace tickwise
