#include "pipeline/ReorderGeometry.h"

#include <algorithm>
#include <cmath>

namespace tickwise {

namespace {

/// The list scrolls while the pointer is this close to an edge, in points.
constexpr double scrollZone = 32;
/// An end of the list that is this close counts as reached.
constexpr double endTolerance = 1;

double scaledScrollZone(const ReorderViewport &viewport)
{
    return scrollZone * viewport.rowHeight / reorderRowHeight;
}

bool isAtTop(const ReorderViewport &viewport)
{
    return viewport.scrollOffset <= endTolerance;
}

bool isAtBottom(int rows, const ReorderViewport &viewport)
{
    return viewport.scrollOffset + viewport.height >= rows * viewport.rowHeight - endTolerance;
}

} // namespace

double rowTop(int index, const ReorderViewport &viewport)
{
    return index * viewport.rowHeight - viewport.scrollOffset;
}

double floatingRowTop(double pointerY, double grabOffsetY, int rows, const ReorderViewport &viewport)
{
    const double lowest = viewport.scrollOffset <= 0 ? -viewport.scrollOffset : 0;
    const double listBottom = rows * viewport.rowHeight - viewport.scrollOffset;
    const double highest = std::min(listBottom, viewport.height) - viewport.rowHeight;
    if (!(lowest < highest))
        return lowest;
    return std::min(std::max(pointerY - grabOffsetY, lowest), highest);
}

int insertionIndex(double floatingY, int rows, const ReorderViewport &viewport)
{
    const double middle = floatingY + viewport.rowHeight / 2 + viewport.scrollOffset;
    const double slot = std::trunc(middle / viewport.rowHeight);
    return static_cast<int>(std::clamp(slot, 0.0, static_cast<double>(rows - 1)));
}

std::optional<AutoScrollDirection> autoScrollDirection(double pointerY, int rows, const ReorderViewport &viewport)
{
    if (pointerY < scaledScrollZone(viewport) && !isAtTop(viewport))
        return AutoScrollDirection::up;
    if (pointerY > viewport.height - scaledScrollZone(viewport) && !isAtBottom(rows, viewport))
        return AutoScrollDirection::down;
    return std::nullopt;
}

std::optional<AutoScrollStep> autoScrollStep(AutoScrollDirection direction, int rows, const ReorderViewport &viewport)
{
    if (rows == 0)
        return std::nullopt;
    if (direction == AutoScrollDirection::up) {
        if (isAtTop(viewport))
            return std::nullopt;
        const double above = std::floor(viewport.scrollOffset / viewport.rowHeight) - 1;
        return AutoScrollStep{static_cast<int>(std::max(above, 0.0)), ViewportEdge::top};
    }
    if (isAtBottom(rows, viewport))
        return std::nullopt;
    const double below = std::ceil((viewport.scrollOffset + viewport.height) / viewport.rowHeight);
    return AutoScrollStep{static_cast<int>(std::min(below, rows - 1.0)), ViewportEdge::bottom};
}

QStringList reordered(const QStringList &ids, int source, int insertion)
{
    if (source < 0 || source >= ids.size())
        return ids;
    QStringList order = ids;
    const QString moved = order.takeAt(source);
    order.insert(std::clamp<qsizetype>(insertion, 0, order.size()), moved);
    return order;
}

} // namespace tickwise
