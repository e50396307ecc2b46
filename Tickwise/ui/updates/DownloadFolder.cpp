#include "ui/updates/DownloadFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>

namespace tickwise {

namespace {

constexpr qsizetype maximumNameLength = 120;

tl::unexpected<Error> folderFailure(const QString &path, const char *text)
{
    return failure(FileError{path, QString::fromLatin1(text)});
}

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
        return folderFailure(m_path, "is a symbolic link");
    clear();
    const auto ownerOnly = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    if (!QDir().mkpath(m_path) || !QFile::setPermissions(m_path, ownerOnly))
        return folderFailure(m_path, "cannot be created for the user alone");
    return {};
}

Result<void> DownloadFolder::recordPackage(const QString &name) const
{
    QSaveFile record(recordPath());
    const QByteArray text = name.toUtf8();
    if (!record.open(QIODevice::WriteOnly) || record.write(text) != text.size() || !record.commit())
        return failure(FileError{recordPath(), record.errorString()});
    return {};
}

void DownloadFolder::clear() const
{
    if (QFileInfo(m_path).isSymLink())
        return;
    QFile record(recordPath());
    if (record.open(QIODevice::ReadOnly)) {
        const QString name = QString::fromUtf8(record.read(maximumNameLength + 1));
        if (isPackageFileName(name))
            QFile::remove(packagePath(name));
        record.remove();
    }
    QFile::remove(partialPath());
    QDir().rmdir(m_path);
}

} // namespace tickwise
