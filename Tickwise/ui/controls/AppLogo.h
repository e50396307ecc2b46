#pragma once

#include <QPixmap>

namespace tickwise {

/// The application's logo, `side` points wide and high.
QPixmap appLogo(int side, qreal devicePixelRatio);

} // namespace tickwise
