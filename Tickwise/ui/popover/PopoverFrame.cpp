#include "ui/popover/PopoverFrame.h"

#include "ui/controls/Look.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>

namespace tickwise {

namespace {

constexpr int popoverShadowReach = 24;
constexpr int shadowDrop = 6;
constexpr double shadowOpacity = 0.2; // where it is darkest

/// A part of a length in the picture and where it goes on the screen.
struct Stretch
{
    int from;
    int fromLength;
    int to;
    int toLength;
};

/// Both ends as they are, and the one pixel between them over the rest.
std::array<Stretch, 3> stretches(int corner, int start, int length)
{
    const int middle = length - 2 * corner;
    return {{{0, corner, start, corner},
             {corner, 1, start + corner, middle},
             {corner + 1, corner, start + corner + middle, corner}}};
}

/// How far a point lies outside a shape whose corners are round by `radius`; negative inside. `x` and `y` tell how far
/// it is beyond the centers of the corners' circles.
double distance(double x, double y, double radius)
{
    const bool isAtCorner = x > 0 && y > 0;
    return (isAtCorner ? std::sqrt(x * x + y * y) : std::max(x, y)) - radius;
}

/// Of a pixel whose middle has that distance, in pixels, from the edge of a shape: how much of it the shape covers.
double coverage(double distance)
{
    return std::clamp(0.5 - distance, 0.0, 1.0);
}

/// Fades like light around an edge.
double shadowAt(double distance, double reach)
{
    const double nearness = std::clamp(1 - distance / reach, 0.0, 1.0);
    return shadowOpacity * nearness * nearness;
}

/// The color laid over a premultiplied pixel.
QRgb over(QRgb below, const QColor &color, double opacity)
{
    const double alpha = double(color.alphaF()) * opacity;
    const auto mixed = [alpha](int above, int under) { return int(std::lround(above * alpha + under * (1 - alpha))); };
    return qRgba(mixed(color.red(), qRed(below)), mixed(color.green(), qGreen(below)),
                 mixed(color.blue(), qBlue(below)), mixed(255, qAlpha(below)));
}

QRect inDevicePixels(const QRect &box, double ratio)
{
    const QPoint topLeft(int(std::lround(box.left() * ratio)), int(std::lround(box.top() * ratio)));
    const QSize size(int(std::lround(box.width() * ratio)), int(std::lround(box.height() * ratio)));
    return {topLeft, size};
}

} // namespace

int PopoverFrame::shadowMargin()
{
    return look::scaled(popoverShadowReach + shadowDrop);
}

QRegion PopoverFrame::shape(const QRect &panel)
{
    const int radius = look::scaled(look::popoverRadius);
    QRegion region(panel.adjusted(0, radius, 0, -radius));
    for (int row = 0; row < radius; ++row) {
        const double y = radius - row - 0.5; // from the line of the circles' centers
        const int inset = int(std::lround(radius - std::sqrt(radius * radius - y * y)));
        region += QRect(panel.left() + inset, panel.top() + row, panel.width() - 2 * inset, 1);
        region += QRect(panel.left() + inset, panel.bottom() - row, panel.width() - 2 * inset, 1);
    }
    return region;
}

void PopoverFrame::draw(const Style &style)
{
    m_style = style;
    const double unit = style.scale * style.devicePixelRatio;
    m_margin = style.hasShadow ? int(std::ceil((popoverShadowReach + shadowDrop) * unit)) : 0;
    m_corner = m_margin + int(std::ceil((look::popoverRadius + shadowDrop) * unit));
    const int side = 2 * m_corner + 1;
    const double middle = side / 2.0;
    const double radius = look::popoverRadius * unit;
    const double straight = middle - m_margin - radius; // from the middle to the centers of the corners
    QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
    for (int row = 0; row < side; ++row) {
        auto *const line = reinterpret_cast<QRgb *>(picture.scanLine(row));
        const double fromMiddle = row + 0.5 - middle;
        const double y = std::abs(fromMiddle) - straight;
        const double shadowY = std::abs(fromMiddle - shadowDrop * unit) - straight;
        for (int column = 0; column <= m_corner; ++column) {
            const double x = middle - column - 0.5 - straight;
            line[column] = line[side - 1 - column] = pixel(distance(x, y, radius), distance(x, shadowY, radius));
        }
    }
    m_picture = QPixmap::fromImage(std::move(picture));
}

/// The premultiplied color at those distances from the panel and from what casts the shadow.
QRgb PopoverFrame::pixel(double fromPanel, double fromShadow) const
{
    const double inside = coverage(fromPanel);
    const double insideBorder = coverage(fromPanel + m_style.devicePixelRatio);
    if (insideBorder >= 1)
        return m_style.ground.rgb();
    const double reach = popoverShadowReach * m_style.scale * m_style.devicePixelRatio;
    const QRgb shadow = m_style.hasShadow ? qRgba(0, 0, 0, int(255 * shadowAt(fromShadow, reach))) : 0;
    if (inside <= 0)
        return shadow;
    return over(over(shadow, m_style.ground, inside), m_style.border, inside - insideBorder);
}

void PopoverFrame::paint(QPainter &painter, const QRect &panel, const QRect &exposed, const Style &style)
{
    if (m_picture.isNull() || m_style != style)
        draw(style);
    const double ratio = style.devicePixelRatio;
    const QRect box = inDevicePixels(panel, ratio).adjusted(-m_margin, -m_margin, m_margin, m_margin);
    const QRect seen = inDevicePixels(exposed, ratio).adjusted(-1, -1, 1, 1);
    painter.save();
    painter.scale(1 / ratio, 1 / ratio);
    for (const Stretch &row : stretches(m_corner, box.top(), box.height())) {
        for (const Stretch &column : stretches(m_corner, box.left(), box.width())) {
            const QRect target(column.to, row.to, column.toLength, row.toLength);
            const QRect source(column.from, row.from, column.fromLength, row.fromLength);
            if (!target.intersects(seen))
                continue;
            if (source.size() == QSize(1, 1))
                painter.fillRect(target & seen, style.ground);
            else
                painter.drawPixmap(target, m_picture, source);
        }
    }
    painter.restore();
}

} // namespace tickwise
