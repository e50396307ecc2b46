#pragma once

#include <QPainterPath>

namespace tickwise {

/// A rectangle with round corners whose curvature grows gradually from the edges. In its middle a corner is as far cut
/// as a circle of that radius cuts it.
QPainterPath continuousRect(const QRectF &rect, double radius);

} // namespace tickwise
