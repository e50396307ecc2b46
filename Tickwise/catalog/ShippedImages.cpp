#include "catalog/ShippedImages.h"

#include <QDir>
#include <QSet>

namespace tickwise {

namespace {

constexpr QLatin1String folder(":/logos/");
constexpr QLatin1String assetSuffix(".svg");

/// The file names of the shipped images. A look-up of each catalog record in the resources would cost more than
/// decoding the catalog.
const QSet<QString> &shippedFiles()
{
    static const QStringList names = QDir(folder).entryList(QDir::Files);
    static const QSet<QString> files(names.begin(), names.end());
    return files;
}

} // namespace

QString shippedImagePath(const QString &name)
{
    return folder + name + assetSuffix;
}

bool shippedImageExists(const QString &name)
{
    return shippedFiles().contains(name + assetSuffix);
}

} // namespace tickwise
