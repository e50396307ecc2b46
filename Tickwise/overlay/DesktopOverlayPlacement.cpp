#include "overlay/DesktopOverlayPlacement.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tickwise {

namespace {

constexpr double screenMargin = 24;
constexpr double separatorHeight = 1;
constexpr double emptyHeight = 170;

struct OverlayMetrics
{
    double width;
    double header;
    double row;
};

OverlayMetrics overlayMetricsFor(DesktopOverlayTextSize textSize)
{
    return textSize == DesktopOverlayTextSize::large ? OverlayMetrics{400, 51, 42} : OverlayMetrics{364, 50, 38};
}

double overlap(const DesktopRect &a, const DesktopRect &b)
{
    const double width = std::min(a.right(), b.right()) - std::max(a.left, b.left);
    const double height = std::min(a.top(), b.top()) - std::max(a.bottom, b.bottom);
    return width > 0 && height > 0 ? width * height : 0;
}

double centerDistance(const DesktopRect &a, const DesktopRect &b)
{
    return std::hypot(a.left + a.width / 2 - b.left - b.width / 2, a.bottom + a.height / 2 - b.bottom - b.height / 2);
}

/// The frame with the largest overlap, else the nearest one; the earlier of equals.
const DesktopRect &frameFor(const DesktopRect &proposed, const std::vector<DesktopRect> &frames)
{
    const auto most = std::max_element(frames.begin(), frames.end(), [&](const DesktopRect &a, const DesktopRect &b) {
        return overlap(a, proposed) < overlap(b, proposed);
    });
    if (overlap(*most, proposed) > 0)
        return *most;
    return *std::min_element(frames.begin(), frames.end(), [&](const DesktopRect &a, const DesktopRect &b) {
        return centerDistance(a, proposed) < centerDistance(b, proposed);
    });
}

/// The start of a length inside the limits; one that is too long starts at the lower limit.
double clampedStart(double start, double length, double low, double high)
{
    return std::min(std::max(start, low), std::max(high - length, low));
}

DesktopRect desktopRect(const QRect &rect, QPoint origin)
{
    const QRect moved = rect.translated(-origin);
    return {double(moved.x()), double(-moved.y() - moved.height()), double(moved.width()), double(moved.height())};
}

QRect toolkitRect(const DesktopRect &rect, QPoint origin)
{
    return QRectF(rect.left, -rect.top(), rect.width, rect.height).translated(origin).toRect();
}

/// Whether the place lies in the direction of the step, and not wholly to the side of it.
bool liesBeyond(const QRect &place, const QRect &frame, QPoint step)
{
    const QRect lane = step.x() != 0 ? QRect(place.x(), frame.y(), place.width(), frame.height())
                                     : QRect(frame.x(), place.y(), frame.width(), place.height());
    return QPoint::dotProduct(place.topLeft() - frame.topLeft(), step) > 0 && lane.intersects(place);
}

bool isUsable(const std::optional<DesktopOverlayOrigin> &origin)
{
    return origin && std::isfinite(origin->x) && std::isfinite(origin->y);
}

} // namespace

QSizeF desktopOverlaySize(DesktopOverlayTextSize textSize, int rows)
{
    const OverlayMetrics metrics = overlayMetricsFor(textSize);
    if (rows < 1)
        return {metrics.width, emptyHeight};
    return {metrics.width, metrics.header + metrics.row * rows + separatorHeight * (rows - 1)};
}

DesktopRect desktopOverlayFrame(QSizeF size, const std::optional<DesktopOverlayOrigin> &savedTopLeft,
                                const std::vector<DesktopRect> &visibleFrames)
{
    DesktopRect frame{0, 0, size.width(), size.height()};
    if (visibleFrames.empty())
        return frame;
    if (!isUsable(savedTopLeft)) {
        const DesktopRect &first = visibleFrames.front();
        frame.left = first.right() - frame.width - screenMargin;
        frame.bottom = first.top() - screenMargin - frame.height;
        return frame;
    }
    frame.left = savedTopLeft->x;
    frame.bottom = savedTopLeft->y - frame.height;
    const DesktopRect &screen = frameFor(frame, visibleFrames);
    frame.left = clampedStart(frame.left, frame.width, screen.left, screen.right());
    frame.bottom = clampedStart(frame.bottom, frame.height, screen.bottom, screen.top());
    return frame;
}

QRect desktopOverlayFrame(QSizeF size, const std::optional<DesktopOverlayOrigin> &savedTopLeft,
                          const DesktopScreens &screens)
{
    std::vector<DesktopRect> visibleFrames;
    for (const QRect &frame : screens.visibleFrames)
        visibleFrames.push_back(desktopRect(frame, screens.origin));
    return toolkitRect(desktopOverlayFrame(size, savedTopLeft, visibleFrames), screens.origin);
}

QRect desktopOverlayNudged(const QRect &frame, QPoint step, const DesktopScreens &screens)
{
    const auto kept = [&](QPoint corner, const DesktopScreens &where) {
        return desktopOverlayFrame(frame.size(), desktopOverlayOrigin(corner, screens), where);
    };
    const QRect moved = kept(frame.topLeft() + step, screens);
    if (moved != frame)
        return moved;
    QRect nearest = frame;
    int least = std::numeric_limits<int>::max();
    for (const QRect &visible : screens.visibleFrames) {
        const QRect there = kept(frame.topLeft(), {{visible}, screens.origin});
        const int way = (there.topLeft() - frame.topLeft()).manhattanLength();
        if (liesBeyond(there, frame, step) && way < least) {
            least = way;
            nearest = there;
        }
    }
    return nearest;
}

DesktopOverlayOrigin desktopOverlayOrigin(QPoint corner, const DesktopScreens &screens)
{
    return {double(corner.x() - screens.origin.x()), double(screens.origin.y() - corner.y())};
}

} // namespace tickwise
