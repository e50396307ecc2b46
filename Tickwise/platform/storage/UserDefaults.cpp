#include "platform/storage/UserDefaults.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryFile>

#include <algorithm>
#include <cstdio>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcDefaults, "com.pelmo.tickwise.UserDefaults")

// Every operation opens the database anew: the status of a QSettings object keeps its first error for ever.
class Database : public QSettings
{
public:
    explicit Database(const QString &path)
        : QSettings(path, QSettings::IniFormat)
    {
        setFallbacksEnabled(false);
    }
};

tl::unexpected<Error> fileFailure(const QString &path, const QString &text)
{
    return failure(FileError{path, text});
}

bool isTooLarge(const QString &path)
{
    const QFileInfo file(path);
    return file.isFile() && file.size() > UserDefaults::largestFile;
}

/// Whether each line of the file has the form that an INI file's has. QSettings tells only the first who opens a file.
bool isIni(const QByteArray &content)
{
    const QList<QByteArray> lines = content.split('\n');
    return std::all_of(lines.cbegin(), lines.cend(), [](const QByteArray &untrimmed) {
        const QByteArray line = untrimmed.trimmed();
        if (line.isEmpty() || line.startsWith(';'))
            return true;
        return line.startsWith('[') ? line.endsWith(']') : line.indexOf('=') > 0;
    });
}

bool isDamaged(const QString &path)
{
    if (isTooLarge(path))
        return true;
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && !isIni(file.readAll());
}

/// Whether a file that QSettings wrote ends where it should: every entry is one line.
bool isComplete(const QString &path, qsizetype entries)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QList<QByteArray> lines = file.readAll().split('\n');
    const auto written = std::count_if(lines.cbegin(), lines.cend(),
                                       [](const QByteArray &line) { return !line.isEmpty() && !line.startsWith('['); });
    return lines.last().isEmpty() && written == entries;
}

bool copyContent(const QString &from, QFile &to)
{
    QFile source(from);
    if (!source.exists())
        return true;
    if (!source.open(QIODevice::ReadOnly))
        return false;
    const QByteArray content = source.readAll();
    return to.write(content) == content.size() && to.flush();
}

bool writeEntry(const QString &path, const QString &key, const std::optional<QByteArray> &data)
{
    Database database(path);
    if (data)
        database.setValue(key, *data);
    else
        database.remove(key);
    database.sync();
    return database.status() == QSettings::NoError && isComplete(path, database.allKeys().size());
}

/// QSettings takes a file of the same size and time for the one it knows, so each version needs a time of its own.
bool makeNewer(QFile &file, const QString &than)
{
    const QDateTime previous = QFileInfo(than).lastModified();
    const QDateTime own = QFileInfo(file.fileName()).lastModified();
    if (!previous.isValid() || own > previous)
        return true;
    return file.setFileTime(previous.addMSecs(1), QFileDevice::FileModificationTime);
}

/// The file itself, where the path is a link to it.
QString resolved(const QString &path)
{
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return canonical.isEmpty() ? path : canonical;
}

bool replace(const QString &path, const QString &by)
{
    QFile file(by);
    if (!file.open(QIODevice::ReadWrite) || !makeNewer(file, path))
        return false;
    file.close();
    return std::rename(QFile::encodeName(by).constData(), QFile::encodeName(path).constData()) == 0;
}

/// QSettings of this Qt version replaces its file by a part of it when the disk fills up, so it works on a copy, which
/// takes the file's place only when it is whole.
bool store(const QString &path, const QString &key, const std::optional<QByteArray> &data)
{
    const QString target = resolved(path);
    QTemporaryFile copy(target + QStringLiteral(".XXXXXX"));
    if (!QDir().mkpath(QFileInfo(target).path()) || !copy.open() || !copyContent(target, copy))
        return false;
    const QString copyPath = copy.fileName();
    copy.close();
    return writeEntry(copyPath, key, data) && replace(target, copyPath);
}

} // namespace

UserDefaults::UserDefaults(const QString &organization, const QString &application)
    : m_path(
          QStringLiteral("%1/%2/%3.conf")
              .arg(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation), organization, application))
{
}

std::optional<QByteArray> UserDefaults::data(const QString &key) const
{
    if (isTooLarge(m_path))
        return std::nullopt;
    const QVariant value = Database(m_path).value(key);
    return value.isValid() ? std::optional(value.toByteArray()) : std::nullopt;
}

Result<void> UserDefaults::setAsideIfDamaged() const
{
    if (!isDamaged(m_path))
        return {};
    const QString aside = m_path + QStringLiteral(".broken");
    QFile::remove(aside);
    if (!QFile::rename(m_path, aside))
        return fileFailure(m_path, QStringLiteral("is damaged and could not be kept aside"));
    qCWarning(lcDefaults, "Damaged settings file kept as %s", qUtf8Printable(aside));
    return {};
}

Result<void> UserDefaults::setData(const QString &key, const std::optional<QByteArray> &data)
{
    if (Result<void> intact = setAsideIfDamaged(); !intact)
        return intact;
    if (!store(m_path, key, data))
        return fileFailure(m_path, QStringLiteral("cannot be written"));
    return {};
}

} // namespace tickwise
