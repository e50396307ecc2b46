#include "platform/storage/UserDefaults.h"

#include "support/files/BaseDirectory.h"
#include "support/files/WholeFile.h"

#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcDefaults, "com.pelmo.tickwise.UserDefaults")

Result<void> removeFile(const QString &path)
{
    QFile file(path);
    if (file.remove() || !file.exists())
        return {};
    return failure(FileError{path, file.errorString()});
}

} // namespace

UserDefaults::UserDefaults(const QString &identifier)
    : m_folder(baseDirectory(QStandardPaths::GenericConfigLocation) + u'/' + identifier)
{
}

QString UserDefaults::path(const QString &key) const
{
    return m_folder + u'/' + key + QStringLiteral(".json");
}

std::optional<QByteArray> UserDefaults::data(const QString &key) const
{
    if (!QFileInfo::exists(path(key)))
        return std::nullopt;
    Result<QByteArray> bytes = readWholeFile(path(key), largestFile);
    if (bytes)
        return *std::move(bytes);
    if (!m_unusable.contains(key))
        qCWarning(lcDefaults, "Failed to read stored data: %s", qUtf8Printable(description(bytes.error())));
    m_unusable.insert(key);
    return std::nullopt;
}

void UserDefaults::keepBeforeOverwriting(const QString &key)
{
    m_unusable.insert(key);
}

Result<void> UserDefaults::keepAside(const QString &key)
{
    const QFileInfo file(path(key));
    const QString aside = file.filePath() + QStringLiteral(".broken");
    if (file.exists()) {
        QFile::remove(aside);
        const bool canBeCopied = file.isFile() && file.isReadable();
        const bool kept = canBeCopied ? QFile::copy(file.filePath(), aside) : QFile::rename(file.filePath(), aside);
        if (!kept)
            return failure(FileError{file.filePath(), QStringLiteral("is unusable and could not be kept aside")});
        qCWarning(lcDefaults, "Unusable data kept as %s", qUtf8Printable(aside));
    }
    m_unusable.remove(key);
    return {};
}

Result<void> UserDefaults::setData(const QString &key, const std::optional<QByteArray> &data)
{
    if (m_unusable.contains(key)) {
        if (Result<void> kept = keepAside(key); !kept)
            return kept;
    }
    return data ? writeWholeFile(path(key), *data) : removeFile(path(key));
}

} // namespace tickwise
