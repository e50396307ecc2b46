#include "catalog/ShippedImages.h"

#include <QFile>

namespace tickwise {

QString shippedImagePath(const QString &name)
{
    return QStringLiteral(":/logos/%1.svg").arg(name);
}

bool shippedImageExists(const QString &name)
{
    return QFile::exists(shippedImagePath(name));
}

} // namespace tickwise
