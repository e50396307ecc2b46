#include "platform/surfaces/PopoverPlacement.h"

#include <algorithm>

namespace tickwise {

namespace {

constexpr int gap = 4; // between the popover and whatever ends the free part
constexpr int usualPanelDepth = 44;

enum class Edge
{
    top,
    bottom,
    left,
    right
};

int distance(const QRect &area, QPoint point)
{
    const int x = std::max({area.left() - point.x(), 0, point.x() - area.right()});
    const int y = std::max({area.top() - point.y(), 0, point.y() - area.bottom()});
    return x + y;
}

/// The edge whose panel holds the point; without one, the nearer of top and bottom.
Edge edgeAt(const PopoverScreen &screen, QPoint point)
{
    if (point.y() < screen.available.top())
        return Edge::top;
    if (point.y() > screen.available.bottom())
        return Edge::bottom;
    if (point.x() < screen.available.left())
        return Edge::left;
    if (point.x() > screen.available.right())
        return Edge::right;
    return point.y() <= screen.geometry.center().y() ? Edge::top : Edge::bottom;
}

Edge edgeOfWidestPanel(const PopoverScreen &screen)
{
    const int top = screen.available.top() - screen.geometry.top();
    const int bottom = screen.geometry.bottom() - screen.available.bottom();
    const int left = screen.available.left() - screen.geometry.left();
    const int right = screen.geometry.right() - screen.available.right();
    const int widest = std::max({top, bottom, left, right});
    if (widest == top)
        return Edge::top;
    if (widest == bottom)
        return Edge::bottom;
    return widest == left ? Edge::left : Edge::right;
}

/// The rectangle moved into the area, and cut where it is larger.
QRect fittedInto(const QRect &area, const QRect &box)
{
    return movedInto(area, QRect(box.topLeft(), box.size().boundedTo(area.size())));
}

QRect room(const PopoverScreen &screen)
{
    return screen.available.adjusted(gap, gap, -gap, -gap);
}

} // namespace

QRect movedInto(const QRect &area, QRect box)
{
    box.moveLeft(std::max(area.left(), std::min(box.left(), area.right() - box.width() + 1)));
    box.moveTop(std::max(area.top(), std::min(box.top(), area.bottom() - box.height() + 1)));
    return box;
}

const PopoverScreen &screenAt(const std::vector<PopoverScreen> &screens, QPoint point)
{
    return *std::min_element(screens.begin(), screens.end(),
                             [point](const PopoverScreen &one, const PopoverScreen &other) {
                                 return distance(one.geometry, point) < distance(other.geometry, point);
                             });
}

QRect popoverBeside(const PopoverScreen &screen, const QRect &item, QSize size)
{
    QRect box(QPoint(), size);
    box.moveCenter(item.center());
    switch (edgeAt(screen, item.center())) {
    case Edge::top:
        box.moveTop(item.bottom() + 1 + gap);
        break;
    case Edge::bottom:
        box.moveBottom(item.top() - 1 - gap);
        break;
    case Edge::left:
        box.moveLeft(item.right() + 1 + gap);
        break;
    case Edge::right:
        box.moveRight(item.left() - 1 - gap);
        break;
    }
    return fittedInto(room(screen), box);
}

QRect popoverInCorner(const PopoverScreen &screen, QSize size)
{
    const QRect area = room(screen);
    QRect box(QPoint(), size);
    switch (edgeOfWidestPanel(screen)) {
    case Edge::top:
        box.moveTopRight(area.topRight());
        break;
    case Edge::bottom:
    case Edge::right:
        box.moveBottomRight(area.bottomRight());
        break;
    case Edge::left:
        box.moveBottomLeft(area.bottomLeft());
        break;
    }
    return fittedInto(area, box);
}

QRect popoverInMiddle(const PopoverScreen &screen, QSize size)
{
    QRect box(QPoint(), size);
    box.moveCenter(screen.available.center());
    return fittedInto(room(screen), box);
}

QRect availableArea(QSize screen, QSize usable, QPoint pointer)
{
    const QSize taken = (screen - usable).expandedTo(QSize(0, 0));
    QRect area(QPoint(), screen);
    if (pointer.y() * 2 <= screen.height())
        area.setTop(taken.height());
    else
        area.setHeight(screen.height() - taken.height());
    if (pointer.x() * 2 <= screen.width())
        area.setLeft(taken.width());
    else
        area.setWidth(screen.width() - taken.width());
    return area;
}

QSize usableBesideUnknownPanel(QSize screen, QPoint pointer)
{
    const int toTopOrBottom = std::min(pointer.y(), screen.height() - pointer.y());
    // In a corner it is more likely a panel along the longer edge.
    if (toTopOrBottom <= usualPanelDepth)
        return screen - QSize(0, usualPanelDepth);
    const int toSide = std::min(pointer.x(), screen.width() - pointer.x());
    return toSide <= usualPanelDepth ? screen - QSize(usualPanelDepth, 0) : screen;
}

} // namespace tickwise
