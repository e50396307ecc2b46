#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

#include <functional>
#include <optional>

class QWidget;

namespace tickwise {

/// Where on the screen a popover was asked for.
struct PopoverAnchor
{
    enum class Cause
    {
        click,  ///< on the status item: the pointer is there
        request ///< by an address, a second start, a notification: the pointer can be anywhere
    };

    Cause cause = Cause::request;
    std::optional<QRect> item;      ///< the status item, where its place is known
    std::optional<QPoint> position; ///< the click, where the panel tells it
    bool hasStatusItem = true;      ///< false: no panel shows the item
    bool operator==(const PopoverAnchor &) const = default;
};

/// What a popover got.
struct PopoverPlace
{
    QRect panel;                 ///< the popover itself, in the window's coordinates
    bool isTranslucent = false;  ///< what is not painted shows what is below; there is room for a shadow
    bool hasChildWindows = true; ///< tooltips may be windows of their own
};

/// Puts a popover's window on the screen: where, and on which of the desktop's layers. One window at a time, which
/// outlives its showing.
class PopoverSurface
{
public:
    PopoverSurface() = default;
    virtual ~PopoverSurface() = default;
    PopoverSurface(const PopoverSurface &) = delete;
    PopoverSurface &operator=(const PopoverSurface &) = delete;

    /// Shows the window with room for a popover of that size, and for a shadow of `margin` around it where one can be
    /// cast. False when the desktop does not let it. `onPlaced` may come later than the return.
    virtual bool show(QWidget &window, QSize popover, int margin, const PopoverAnchor &anchor) = 0;
    /// Gives the shown popover another size at the same anchor.
    virtual void resize(QSize popover) = 0;
    virtual void hide() = 0;

    std::function<void(const PopoverPlace &place)> onPlaced;
    /// Its screen has gone, the user has clicked on another, or it cannot be shown after all.
    std::function<void()> onTakenAway;
};

} // namespace tickwise
