#pragma once

#include "settings/AppSettings.h"
#include "widget/views/DesktopSurface.h"

#include <QRectF>
#include <QSizeF>

#include <optional>
#include <vector>

namespace tickwise {

/// Size and place of the desktop overlay, in points. Coordinates here grow to the right and upwards from the lower
/// left corner of the primary screen: a rectangle's `left` and `bottom` are its smallest values.
struct DesktopRect
{
    double left = 0;
    double bottom = 0;
    double width = 0;
    double height = 0;

    double right() const { return left + width; }
    double top() const { return bottom + height; }
    bool operator==(const DesktopRect &) const = default;
};

/// The overlay's size for that many rows; a list without rows has a size of its own.
QSizeF desktopOverlaySize(DesktopOverlayTextSize textSize, int rows);

/// The overlay's frame: at its saved top left corner, moved into the visible frame that it overlaps most, or that is
/// nearest to it; in the top right corner of the first one where nothing is saved. `visibleFrames` are the screens
/// without their panels, in the desktop's order. Without screens the frame stands at the origin.
DesktopRect desktopOverlayFrame(QSizeF size, const std::optional<DesktopOverlayOrigin> &savedTopLeft,
                                const std::vector<DesktopRect> &visibleFrames);

/// The same in the toolkit's coordinates, which grow downwards.
QRect desktopOverlayFrame(QSizeF size, const std::optional<DesktopOverlayOrigin> &savedTopLeft,
                          const DesktopScreens &screens);

/// The frame moved by that step of the toolkit's coordinates and kept on the screens. At an edge that stops it, it goes
/// over to the nearest screen that lies beyond.
QRect desktopOverlayNudged(const QRect &frame, QPoint step, const DesktopScreens &screens);

/// The top left corner of a frame in the toolkit's coordinates, as it is saved.
DesktopOverlayOrigin desktopOverlayOrigin(QPoint corner, const DesktopScreens &screens);

} // namespace tickwise
