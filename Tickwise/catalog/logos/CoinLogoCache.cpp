#include "catalog/logos/CoinLogoCache.h"

#include "catalog/CoinId.h"
#include "support/files/WholeFile.h"

#include <QDir>
#include <QFile>

namespace tickwise {

namespace {

constexpr QLatin1String directoryName("CoinLogos");
constexpr QLatin1String cacheSuffix(".img");

} // namespace

CoinLogoCache CoinLogoCache::inContainer(const std::optional<QString> &container)
{
    if (!container)
        return {};
    return {QDir(*container).filePath(directoryName)};
}

QSet<QString> CoinLogoCache::cachedIDs() const
{
    QSet<QString> ids;
    if (!directory)
        return ids;
    // "System" lists symbolic links to nowhere, too.
    const QStringList names =
        QDir(*directory).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &name : names) {
        if (name.endsWith(cacheSuffix))
            ids.insert(name.chopped(cacheSuffix.size()));
    }
    return ids;
}

std::optional<QString> CoinLogoCache::path(const QString &id) const
{
    if (!directory || !isCoinId(id))
        return std::nullopt;
    return QDir(*directory).filePath(id + cacheSuffix);
}

std::optional<QByteArray> CoinLogoCache::read(const QString &id) const
{
    const std::optional<QString> name = path(id);
    if (!name)
        return std::nullopt;
    const Result<QByteArray> bytes = readWholeFile(*name, largestLogo);
    return bytes ? std::optional(*bytes) : std::nullopt;
}

Result<void> CoinLogoCache::write(const QString &id, const QByteArray &bytes) const
{
    const std::optional<QString> name = path(id);
    if (!name)
        return failure(FileError{directory.value_or(QString(directoryName)),
                                 directory ? QStringLiteral("not a coin id") : QStringLiteral("no container")});
    return writeWholeFile(*name, bytes);
}

void CoinLogoCache::remove(const QString &id) const
{
    if (directory && !id.contains(u'/'))
        QFile::remove(QDir(*directory).filePath(id + cacheSuffix));
}

} // namespace tickwise
