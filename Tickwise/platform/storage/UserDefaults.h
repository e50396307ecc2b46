#pragma once

#include "settings/SettingsDataStorage.h"

#include <QSet>
#include <QString>

namespace tickwise {

/// The user's defaults: a folder `$XDG_CONFIG_HOME/<identifier>` (mode 0700) with one file `<key>.json` (mode 0600) for
/// each key, which holds the value's bytes as they are. Saves are synchronous and replace a file as a whole.
///
/// A value that nobody could read, or that its reader refuses, is copied to `<key>.json.broken` before it is first
/// overwritten; where that fails, nothing is written.
class UserDefaults : public SettingsDataStorage
{
public:
    /// In bytes; a larger file is not read.
    static constexpr qint64 largestFile = qint64{32} * 1024 * 1024;

    /// `identifier` is the application's, such as "com.pelmo.tickwise".
    explicit UserDefaults(const QString &identifier);

    /// None, with one log line, when the file cannot be read.
    std::optional<QByteArray> data(const QString &key) const override;
    /// The error is a `FileError` with the path of the file; the stored data is then what it was.
    Result<void> setData(const QString &key, const std::optional<QByteArray> &data) override;
    void keepBeforeOverwriting(const QString &key) override;

    /// The file that holds the value of a key.
    QString path(const QString &key) const;

private:
    Result<void> keepAside(const QString &key);

    QString m_folder;
    mutable QSet<QString> m_unusable; ///< keys whose value is copied before it is overwritten
};

} // namespace tickwise
