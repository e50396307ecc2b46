#pragma once

#include "settings/SettingsDataStorage.h"

#include <QString>

namespace tickwise {

/// The user's defaults database: `$XDG_CONFIG_HOME/<organization>/<application>.conf`, an INI file. Saves are
/// synchronous.
///
/// A file that is damaged, or larger than `largestFile`, is kept aside as `<application>.conf.broken` before it is
/// first overwritten; where that fails, nothing is written.
class UserDefaults : public SettingsDataStorage
{
public:
    /// In bytes; no file of ours comes near it.
    static constexpr qint64 largestFile = qint64{32} * 1024 * 1024;

    explicit UserDefaults(const QString &organization = QStringLiteral("com.pelmo"),
                          const QString &application = QStringLiteral("tickwise"));

    std::optional<QByteArray> data(const QString &key) const override;
    /// The error is a `FileError` with the path of the file; the stored data is then what it was.
    Result<void> setData(const QString &key, const std::optional<QByteArray> &data) override;

    /// The file that holds the database.
    const QString &path() const { return m_path; }

private:
    Result<void> setAsideIfDamaged() const;

    QString m_path;
};

} // namespace tickwise
