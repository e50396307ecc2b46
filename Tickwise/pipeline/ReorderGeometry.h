#pragma once

#include <QStringList>

#include <optional>

namespace tickwise {

/// Where a row lands, how far it floats and when the list scrolls while a row of the watchlist is dragged. Lengths are
/// logical pixels; y grows downwards from the top edge of the visible part of the list.

inline constexpr double reorderRowHeight = 44; ///< points

/// What is visible of the list.
struct ReorderViewport
{
    double scrollOffset = 0; ///< of the content; 0 at the top, negative while the list bounces
    double height = 0;
    double rowHeight = reorderRowHeight; ///< at the desktop's text scale
    bool operator==(const ReorderViewport &) const = default;
};

enum class AutoScrollDirection
{
    up,
    down
};

enum class ViewportEdge
{
    top,
    bottom
};

/// One step of the scrolling at an edge: that row comes to lie against that edge.
struct AutoScrollStep
{
    int row = 0;
    ViewportEdge edge = ViewportEdge::top;
    bool operator==(const AutoScrollStep &) const = default;
};

/// The top edge of a row at its place.
double rowTop(int index, const ReorderViewport &viewport);

/// The top edge of the floating row, which never leaves the visible part of the list.
double floatingRowTop(double pointerY, double grabOffsetY, int rows, const ReorderViewport &viewport);

/// The slot that holds the middle of the floating row. `rows` is at least 1.
int insertionIndex(double floatingY, int rows, const ReorderViewport &viewport);

/// Where the list scrolls for a pointer at that height; none away from the edges and at the end of the list.
std::optional<AutoScrollDirection> autoScrollDirection(double pointerY, int rows, const ReorderViewport &viewport);

/// The next step in that direction; none at the end of the list.
std::optional<AutoScrollStep> autoScrollStep(AutoScrollDirection direction, int rows, const ReorderViewport &viewport);

/// The order after the row at `source` moved to `insertion`; unchanged when there is no such row.
QStringList reordered(const QStringList &ids, int source, int insertion);

} // namespace tickwise
