#pragma once

#include <QPoint>
#include <QRect>

#include <vector>

namespace tickwise {

/// A screen and the part of it that panels leave free.
struct PopoverScreen
{
    QRect geometry;
    QRect available;
};

/// The rectangle moved into the area; to its left or upper edge where it is larger.
QRect movedInto(const QRect &area, QRect box);

/// The screen that holds the point, else the nearest; there has to be one.
const PopoverScreen &screenAt(const std::vector<PopoverScreen> &screens, QPoint point);

/// A popover of that size, centered on the item along the panel that the item is in, and fully inside the screen's free
/// part; smaller where the screen is.
QRect popoverBeside(const PopoverScreen &screen, const QRect &item, QSize size);

/// The same in the corner where panels keep their status items: at the end of the widest panel, of the top edge
/// without one.
QRect popoverInCorner(const PopoverScreen &screen, QSize size);

QRect popoverInMiddle(const PopoverScreen &screen, QSize size);

/// The screen's free part where only its size is known: panels are taken to be on the sides that the pointer is near.
QRect availableArea(QSize screen, QSize usable, QPoint pointer);

/// The size of the free part beside a panel that does not tell its depth but has the pointer over it.
QSize usableBesideUnknownPanel(QSize screen, QPoint pointer);

} // namespace tickwise
