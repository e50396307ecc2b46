#include "platform/storage/AppGroupContainer.h"

#include "support/files/BaseDirectory.h"
#include "support/files/WholeFile.h"

#include <QFileInfo>

namespace tickwise {

namespace {

bool isFolderName(const QString &name)
{
    return !name.isEmpty() && !name.contains(u'/') && name != QStringLiteral(".") && name != QStringLiteral("..");
}

bool isUsableFolder(const QString &path)
{
    const QFileInfo folder(path);
    return folder.isDir() && folder.isReadable() && folder.isWritable() && folder.isExecutable();
}

} // namespace

std::optional<QString> appGroupContainerPath(const QString &groupId)
{
    if (!isFolderName(groupId))
        return std::nullopt;
    return baseDirectory(QStandardPaths::GenericDataLocation) + u'/' + groupId;
}

std::optional<QString> appGroupContainer(const QString &groupId)
{
    const std::optional<QString> path = appGroupContainerPath(groupId);
    return path && makeFolder(*path) && isUsableFolder(*path) ? path : std::nullopt;
}

} // namespace tickwise
