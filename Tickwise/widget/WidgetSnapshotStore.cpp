#include "widget/WidgetSnapshotStore.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <cstdio>

namespace tickwise {

namespace {

tl::unexpected<Error> fileFailure(const QString &path, const QString &text)
{
    return failure(FileError{path, text});
}

tl::unexpected<Error> systemFailure(const QString &path)
{
    return fileFailure(path, qt_error_string(errno));
}

Result<void> writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        return fileFailure(path, file.errorString());
    if (file.write(bytes) != bytes.size())
        return fileFailure(path, file.errorString());
    return {};
}

/// Writes beside the file and renames, so that a reader finds a whole file. Nothing waits for the disk: this runs on
/// the main thread at every poll. A crash of the machine may lose the newest snapshot or leave an empty one, which the
/// reader refuses and the next poll replaces.
///
/// One fixed temporary name, so that a process killed in between leaves at most one stray file, which the next write
/// uses.
Result<void> replaceFile(const QString &path, const QByteArray &bytes)
{
    const QString temporary = path + QStringLiteral(".new");
    Result<void> written = writeFile(temporary, bytes);
    if (written && std::rename(QFile::encodeName(temporary).constData(), QFile::encodeName(path).constData()) != 0)
        written = systemFailure(path);
    if (!written)
        QFile::remove(temporary);
    return written;
}

} // namespace

std::optional<QString> WidgetSnapshotStore::path() const
{
    if (!directory)
        return std::nullopt;
    return *directory + QStringLiteral("/widget-snapshot.json");
}

Result<void> WidgetSnapshotStore::write(const WidgetSnapshot &snapshot) const
{
    const std::optional<QString> file = path();
    if (!file)
        return {};
    if (!QDir().mkpath(*directory))
        return fileFailure(*directory, QStringLiteral("the directory cannot be made"));
    return encodeWidgetSnapshot(snapshot).and_then([&](const QByteArray &bytes) { return replaceFile(*file, bytes); });
}

Result<WidgetSnapshot> WidgetSnapshotStore::read() const
{
    if (!directory)
        return fileFailure(QStringLiteral("widget snapshot"), QStringLiteral("there is no container"));
    QFile file(*path());
    if (!file.open(QIODevice::ReadOnly))
        return fileFailure(file.fileName(), file.errorString());
    return decodeWidgetSnapshot(file.readAll());
}

} // namespace tickwise
