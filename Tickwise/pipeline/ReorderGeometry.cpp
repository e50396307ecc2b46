#include "pipeline/ReorderGeometry.h"

#include <algorithm>
#include <cmath>

namespace tickwise {

namespace {

/// The list scrolls while the pointer is this close to an edge.
constexpr double scrollZone = 32;
/// An end of the list that is this close counts as reached.
constexpr double endTolerance = 1;

bool isAtTop(const ReorderViewport &viewport)
{
    return viewport.scrollOffset <= endTolerance;
}

bool isAtBottom(int rows, const ReorderViewport &viewport)
{
    return viewport.scrollOffset + viewport.height >= rows * reorderRowHeight - endTolerance;
}

} // namespace

double rowTop(int index, double scrollOffset)
{
    return index * reorderRowHeight - scrollOffset;
}

double floatingRowTop(double pointerY, double grabOffsetY, int rows, const ReorderViewport &viewport)
{
    const double lowest = viewport.scrollOffset <= 0 ? -viewport.scrollOffset : 0;
    const double listBottom = rows * reorderRowHeight - viewport.scrollOffset;
    const double highest = std::min(listBottom, viewport.height) - reorderRowHeight;
    if (!(lowest < highest))
        return lowest;
    return std::min(std::max(pointerY - grabOffsetY, lowest), highest);
}

int insertionIndex(double floatingY, int rows, double scrollOffset)
{
    const double middle = floatingY + reorderRowHeight / 2 + scrollOffset;
    const double slot = std::trunc(middle / reorderRowHeight);
    return static_cast<int>(std::clamp(slot, 0.0, static_cast<double>(rows - 1)));
}

std::optional<AutoScrollDirection> autoScrollDirection(double pointerY, int rows, const ReorderViewport &viewport)
{
    if (pointerY < scrollZone && !isAtTop(viewport))
        return AutoScrollDirection::up;
    if (pointerY > viewport.height - scrollZone && !isAtBottom(rows, viewport))
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
        const double above = std::floor(viewport.scrollOffset / reorderRowHeight) - 1;
        return AutoScrollStep{static_cast<int>(std::max(above, 0.0)), ViewportEdge::top};
    }
    if (isAtBottom(rows, viewport))
        return std::nullopt;
    const double below = std::ceil((viewport.scrollOffset + viewport.height) / reorderRowHeight);
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
