#pragma once

#include <QPixmap>

namespace tickwise {

/// The application's logo, `side` logical pixels wide and high.
QPixmap appLogo(int side, qreal devicePixelRatio);

} // namespace tickwise
