#pragma once

#include <QColor>
#include <QImage>
#include <QString>

namespace tickwise {

/// The drawing in one color, in a square of `pixels` by `pixels`; a null image where there is no such drawing.
QImage tintedSvg(const QString &path, int pixels, const QColor &color);

/// The interface symbol of that name (:/symbols) in one color; a null image where there is none.
QImage tintedSymbol(const QString &name, int pixels, const QColor &color);

} // namespace tickwise
