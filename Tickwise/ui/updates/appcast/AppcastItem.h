#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

namespace tickwise {

/// One release that an update feed names.
struct AppcastItem
{
    QString version;              ///< what versions are compared by
    QString shortVersion;         ///< what the user reads: at most 64 printable characters; empty: `version`
    QString minimumSystemVersion; ///< empty: any system
    QUrl url;                     ///< the package, always https
    qint64 length = 0;            ///< the package's bytes; 0: the feed does not give it
    QByteArray signature;         ///< base64 of the Ed25519 signature over the package; empty: not signed
    QString releaseNotes;         ///< plain text
    bool operator==(const AppcastItem &) const = default;
};

/// The version as the user reads it.
inline QString displayVersion(const AppcastItem &item)
{
    return item.shortVersion.isEmpty() ? item.version : item.shortVersion;
}

} // namespace tickwise
