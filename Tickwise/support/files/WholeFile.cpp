#include "support/files/WholeFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <cerrno>
#include <cstdio>
#include <unistd.h>

namespace tickwise {

namespace {

tl::unexpected<Error> fileFailure(const QString &path, const QString &text)
{
    return failure(FileError{path, text});
}

/// The file itself, where the path is a link to it.
QString linkTarget(const QString &path)
{
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return canonical.isEmpty() ? path : canonical;
}

bool isFilled(QTemporaryFile &file, const QByteArray &bytes, QFileDevice::Permissions permissions)
{
    return file.open() && file.setPermissions(permissions) && file.write(bytes) == bytes.size() && file.flush();
}

} // namespace

Result<void> writeWholeFile(const QString &path, const QByteArray &bytes, Durability durability,
                            QFileDevice::Permissions permissions)
{
    const QString target = linkTarget(path);
    if (!makeFolder(QFileInfo(target).path()))
        return fileFailure(path, QStringLiteral("its folder cannot be made"));
    QTemporaryFile file(target + QStringLiteral(".XXXXXX"));
    if (!isFilled(file, bytes, permissions))
        return fileFailure(path, file.errorString());
    if (durability == Durability::synced && ::fdatasync(file.handle()) != 0)
        return fileFailure(path, qt_error_string(errno));
    // The file gets its name here, always the same: what a process leaves that is killed before the second rename is
    // removed by the next write.
    const QString named = target + QStringLiteral(".new");
    QFile::remove(named);
    if (!file.rename(named))
        return fileFailure(path, file.errorString());
    if (std::rename(QFile::encodeName(named).constData(), QFile::encodeName(target).constData()) != 0)
        return fileFailure(path, qt_error_string(errno));
    file.setAutoRemove(false);
    return {};
}

Result<QByteArray> readWholeFile(const QString &path, qint64 largest)
{
    QFile file(path);
    // Anything but a regular file could keep the reader waiting.
    if (file.exists() && !QFileInfo(path).isFile())
        return fileFailure(path, QStringLiteral("is not a regular file"));
    if (!file.open(QIODevice::ReadOnly))
        return fileFailure(path, file.errorString());
    const QByteArray bytes = file.read(largest + 1);
    if (file.error() != QFileDevice::NoError)
        return fileFailure(path, file.errorString());
    if (bytes.size() > largest)
        return fileFailure(path, QStringLiteral("is larger than %1 bytes").arg(largest));
    return bytes;
}

Result<void> makeFolder(const QString &path)
{
    if (QFileInfo(path).isDir())
        return {};
    const QString parent = QFileInfo(path).path();
    if (parent != path) {
        if (Result<void> made = makeFolder(parent); !made)
            return made;
    }
    // Another program may make it at the same moment, so what counts is whether it is there afterwards.
    if (!QDir().mkdir(path, ownerOnly | QFileDevice::ExeOwner) && !QFileInfo(path).isDir())
        return fileFailure(path, QStringLiteral("cannot be made"));
    return {};
}

} // namespace tickwise
