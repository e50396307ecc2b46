#include "support/files/BaseDirectory.h"

#include <QDir>

namespace tickwise {

namespace {

/// The default folder below the home folder, as the desktop standard for base directories has it.
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
