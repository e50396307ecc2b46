#pragma once

#include <QRect>

#include <functional>
#include <vector>

class QMouseEvent;
class QWidget;

namespace tickwise {

/// The screens as a window on the desktop sees them, in the toolkit's coordinates.
struct DesktopScreens
{
    std::vector<QRect> visibleFrames; ///< the screens without their panels, the primary one first
    QPoint origin;                    ///< the primary screen's lower left corner, which saved places count from
    bool operator==(const DesktopScreens &) const = default;
};

/// Puts one frameless window on the desktop: above the wallpaper, below every other window, on every workspace, and in
/// no task bar. The window outlives its showing, and lives as long as the surface.
class DesktopSurface
{
public:
    DesktopSurface() = default;
    virtual ~DesktopSurface() = default;
    DesktopSurface(const DesktopSurface &) = delete;
    DesktopSurface &operator=(const DesktopSurface &) = delete;

    /// Shows the window there, on the desktop and without the focus. It may appear later than the return. A shown
    /// window is placed.
    virtual void show(QWidget &window, const QRect &frame) = 0;
    virtual void hide() = 0;
    virtual bool isShown() const = 0;

    /// Moves and resizes the shown window.
    virtual void place(const QRect &frame) = 0;
    /// Where the window is, or was last placed.
    virtual QRect frame() const = 0;
    /// Where the pointer is on the screen while the window handles a mouse event: what to place the window by while it
    /// is dragged. On Wayland, events tell only places within the window.
    virtual QPoint pointerPosition(const QMouseEvent &event) const = 0;

    /// Raises the shown window above all others, with pointer and keyboard, or puts it back on the desktop. Raising it
    /// again gives it the keyboard again.
    virtual void setInteractive(bool interactive) = 0;

    virtual DesktopScreens screens() const = 0;
    /// Whether what the window does not paint shows the desktop.
    virtual bool isTranslucent() const = 0;

    std::function<void()>
        onScreensChanged; ///< `screens` or the text scale may be others, and the window may have been moved
    std::function<void()> onTranslucencyChanged;
};

} // namespace tickwise
