#pragma once

#include <QString>

class QPainter;
class QRectF;

namespace tickwise {

/// Draws the SVG file into the box, on whole pixels; false when it cannot be read. The pictures last drawn are kept, so
/// that one that is painted again costs one lookup. Main thread only.
bool paintSvg(QPainter &painter, const QRectF &box, const QString &path);

} // namespace tickwise
