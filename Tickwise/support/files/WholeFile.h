#pragma once

#include "support/Result.h"

#include <QByteArray>
#include <QFileDevice>

namespace tickwise {

/// Whether a write waits until the bytes are on the disk.
enum class Durability
{
    synced,   ///< for what only we have: a power cut leaves the old content or the new one
    unsynced, ///< for what is fetched or written again soon: a power cut may leave less
};

inline constexpr QFileDevice::Permissions ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;

/// Replaces the file's content as a whole: a reader, or a process that is killed meanwhile, sees the old content or the
/// new one. Makes the folders that are missing for the user alone (mode 0700). A link is followed. The error is a
/// `FileError` with the path.
Result<void> writeWholeFile(const QString &path, const QByteArray &bytes, Durability durability = Durability::synced,
                            QFileDevice::Permissions permissions = ownerOnly);

/// The content of a regular file of at most `largest` bytes; the error is a `FileError` with the path.
Result<QByteArray> readWholeFile(const QString &path, qint64 largest);

/// Makes the folder, and those above it that are missing, for the user alone (mode 0700); one that exists stays as it
/// is. The error is a `FileError` with the path.
Result<void> makeFolder(const QString &path);

} // namespace tickwise
