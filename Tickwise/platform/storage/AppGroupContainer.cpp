#include "platform/storage/AppGroupContainer.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

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

std::optional<QString> appGroupContainer(const QString &groupId)
{
    if (!isFolderName(groupId))
        return std::nullopt;
    const QString parent = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    const QString path = parent + u'/' + groupId;
    const auto onlyOwner = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    // Another program of the group may make it at the same moment, so what counts is whether it is there afterwards.
    if (!QFileInfo::exists(path) && QDir().mkpath(parent))
        QDir().mkdir(path, onlyOwner);
    return isUsableFolder(path) ? std::optional(path) : std::nullopt;
}

} // namespace tickwise
