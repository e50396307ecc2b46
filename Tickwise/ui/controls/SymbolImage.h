#pragma once

#include <QPixmap>

class QColor;
class QString;

namespace tickwise {

/// The interface symbol of that name in one color; `side` in logical pixels. A null pixmap where there is no such
/// symbol. The pixmaps last drawn are kept.
QPixmap symbolPixmap(const QString &name, const QColor &color, int side, qreal devicePixelRatio);

} // namespace tickwise
