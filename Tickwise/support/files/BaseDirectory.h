#pragma once

#include <QStandardPaths>
#include <QString>

namespace tickwise {

/// The user's folder for data, settings or cached files (`GenericDataLocation`, `GenericConfigLocation`,
/// `GenericCacheLocation`): the one that `XDG_DATA_HOME`, `XDG_CONFIG_HOME` or `XDG_CACHE_HOME` names, or its default
/// when that is not an absolute path.
QString baseDirectory(QStandardPaths::StandardLocation location);

} // namespace tickwise
