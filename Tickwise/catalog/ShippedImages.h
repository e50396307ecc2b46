#pragma once

#include <QString>

namespace tickwise {

/// Where the shipped logo image of that name is, such as ":/logos/coin-bitcoin.svg".
QString shippedImagePath(const QString &name);

/// Whether the application ships a logo image of that name.
bool shippedImageExists(const QString &name);

} // namespace tickwise
