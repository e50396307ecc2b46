#include "support/files/BaseDirectory.h"

#include <QDir>

namespace tickwise {

namespace {

/// The default of the base directory specification, below the home folder.
QString defaultBelowHome(QStandardPaths::StandardLocation location)
{
    if (location == QStandardPaths::GenericDataLocation)
        return QStringLiteral(".local/share");
    return location == QStandardPaths::GenericConfigLocation ? QStringLiteral(".config") : QStringLiteral(".cache");
}

} // namespace

QString baseDirectory(QStandardPaths::StandardLocation location)
{
    const QString path = QStandardPaths::writableLocation(location);
    return QDir::isAbsolutePath(path) ? path : QDir::home().filePath(defaultBelowHome(location));
}

} // namespace tickwise
