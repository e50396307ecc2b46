#include "overlay/ContinuousRect.h"

#include <algorithm>

namespace tickwise {

namespace {

// In radii: where a corner's curve leaves the edges, and how far its control points are from the corner.
constexpr double reach = 1.45;
constexpr double control = 0.298;

} // namespace

QPainterPath continuousRect(const QRectF &rect, double radius)
{
    const double e = std::min({radius * reach, rect.width() / 2, rect.height() / 2});
    const double c = e * control / reach;
    const double left = rect.left();
    const double top = rect.top();
    const double right = rect.right();
    const double bottom = rect.bottom();
    QPainterPath path(QPointF(left, top + e));
    path.cubicTo(left, top + c, left + c, top, left + e, top);
    path.lineTo(right - e, top);
    path.cubicTo(right - c, top, right, top + c, right, top + e);
    path.lineTo(right, bottom - e);
    path.cubicTo(right, bottom - c, right - c, bottom, right - e, bottom);
    path.lineTo(left + e, bottom);
    path.cubicTo(left + c, bottom, left, bottom - c, left, bottom - e);
    path.closeSubpath();
    return path;
}

} // namespace tickwise
