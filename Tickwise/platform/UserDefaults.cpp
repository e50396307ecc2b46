#include "platform/UserDefaults.h"

#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QSettings>
#include <QStandardPaths>

#include <algorithm>

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

/// Whether each line of the file has the form that an INI file's has. QSettings itself tells only the first who opens a
/// file.
bool isIni(const QByteArray &content)
{
    const QList<QByteArray> lines = content.split('\n');
    return std::all_of(lines.cbegin(), lines.cend(), [](const QByteArray &untrimmed) {
        const QByteArray line = untrimmed.trimmed();
        if (line.isEmpty() || line.startsWith(';'))
            return true;
        return line.startsWith('[') ? line.endsWith(']') : line.contains('=');
    });
}

bool isDamaged(const QString &path)
{
    if (isTooLarge(path))
        return true;
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && !isIni(file.readAll());
}

std::optional<QByteArray> bytes(const QVariant &value)
{
    if (!value.isValid())
        return std::nullopt;
    return value.toByteArray();
}

void assign(QSettings &database, const QString &key, const std::optional<QByteArray> &data)
{
    if (data)
        database.setValue(key, *data);
    else
        database.remove(key);
}

/// Too large a file is moved, because what it holds is not ours; any other is copied, because its readable rest stays.
bool keepAside(const QString &path, const QString &aside)
{
    QFile::remove(aside);
    return isTooLarge(path) ? QFile::rename(path, aside) : QFile::copy(path, aside);
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
    return bytes(Database(m_path).value(key));
}

Result<void> UserDefaults::setAsideIfDamaged() const
{
    if (!isDamaged(m_path))
        return {};
    const QString aside = m_path + QStringLiteral(".broken");
    if (!keepAside(m_path, aside))
        return fileFailure(m_path, QStringLiteral("is damaged and could not be kept aside"));
    qCWarning(lcDefaults, "Damaged settings file kept as %s", qUtf8Printable(aside));
    return {};
}

Result<void> UserDefaults::setData(const QString &key, const std::optional<QByteArray> &data)
{
    if (const Result<void> intact = setAsideIfDamaged(); !intact)
        return intact;
    Database database(m_path);
    const std::optional<QByteArray> before = bytes(database.value(key));
    assign(database, key, data);
    database.sync();
    if (database.status() != QSettings::AccessError)
        return {};
    // Otherwise later reads in this process would see what never reached the disk.
    assign(database, key, before);
    return fileFailure(m_path, QStringLiteral("cannot be written"));
}

} // namespace tickwise
