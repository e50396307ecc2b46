#include "ui/updates/DownloadFolder.h"

#include "support/files/WholeFile.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace tickwise {

namespace {

constexpr qsizetype maximumNameLength = 120;

} // namespace

bool isPackageFileName(const QString &name)
{
    const auto isPlain = [](QChar character) {
        return character.unicode() < 0x80 &&
               (character.isLetterOrNumber() || QStringLiteral("._-+~").contains(character));
    };
    return !name.isEmpty() && name.size() <= maximumNameLength && !name.startsWith(u'.') && !name.startsWith(u'-') &&
           std::all_of(name.begin(), name.end(), isPlain);
}

Result<void> DownloadFolder::prepare() const
{
    if (QFileInfo(m_path).isSymLink())
        return failure(FileError{m_path, QStringLiteral("is a symbolic link")});
    clear();
    return makeFolder(m_path).and_then([this]() -> Result<void> {
        // It may have stayed, with files of others in it.
        if (QFile::setPermissions(m_path, ownerOnly | QFile::ExeOwner))
            return {};
        return failure(FileError{m_path, QStringLiteral("cannot be kept for the user alone")});
    });
}

Result<void> DownloadFolder::recordPackage(const QString &name) const
{
    return writeWholeFile(recordPath(), name.toUtf8());
}

void DownloadFolder::clear() const
{
    if (QFileInfo(m_path).isSymLink())
        return;
    const QString recorded = QString::fromUtf8(readWholeFile(recordPath(), maximumNameLength).value_or(QByteArray()));
    if (isPackageFileName(recorded))
        QFile::remove(packagePath(recorded));
    QFile::remove(recordPath());
    QFile::remove(partialPath());
    QDir().rmdir(m_path);
}

} // namespace tickwise
