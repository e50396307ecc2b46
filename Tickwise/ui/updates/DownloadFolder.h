#pragma once

#include "support/Result.h"

#include <QString>

namespace tickwise {

/// The folder for the package of an update. Only files that this program put there are ever removed, and nothing is
/// done in a folder that is a symbolic link.
class DownloadFolder
{
public:
    explicit DownloadFolder(QString path)
        : m_path(std::move(path))
    {
    }

    /// Makes the folder, for the owner alone and without an earlier download.
    Result<void> prepare() const;

    /// The file of an unfinished download. Its name is never that of a package.
    QString partialPath() const { return filePath(QStringLiteral(".part")); }
    QString packagePath(const QString &name) const { return filePath(name); }

    /// Remembers, across runs, that the package of this name is ours.
    Result<void> recordPackage(const QString &name) const;

    /// Removes the downloads of this and earlier runs, and the folder when it is empty then.
    void clear() const;

private:
    QString filePath(const QString &name) const { return m_path + u'/' + name; }
    QString recordPath() const { return filePath(QStringLiteral(".package")); }

    QString m_path;
};

/// Whether a package may have this name: printable ASCII without blanks or slashes, not hidden, no option.
bool isPackageFileName(const QString &name);

} // namespace tickwise
