#include "ui/popover/PopoverFrame.h"

#include "ui/controls/Look.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>

namespace tickwise {

namespace {

constexpr int shadowReach = 24;
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

/// How far the point lies outside a box with round corners; negative inside.
double distance(QPointF point, const QRectF &box, double radius)
{
    const QPointF from = point - box.center();
    const double x = std::abs(from.x()) - box.width() / 2 + radius;
    const double y = std::abs(from.y()) - box.height() / 2 + radius;
    const double corner = std::hypot(std::max(x, 0.0), std::max(y, 0.0));
    return corner + std::min(std::max(x, y), 0.0) - radius;
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
    const auto mixed = [alpha](double above, int under) {
        return int(std::lround(above * alpha + under * (1 - alpha)));
    };
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
    return look::scaled(shadowReach + shadowDrop);
}

void PopoverFrame::draw(const Style &style)
{
    m_style = style;
    const double unit = style.scale * style.devicePixelRatio;
    m_margin = style.hasShadow ? int(std::ceil((shadowReach + shadowDrop) * unit)) : 0;
    m_corner = m_margin + int(std::ceil((look::popoverRadius + shadowDrop) * unit));
    const int side = 2 * m_corner + 1;
    QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < side; ++y) {
        auto *const line = reinterpret_cast<QRgb *>(picture.scanLine(y));
        for (int x = 0; x <= m_corner; ++x)
            line[x] = line[side - 1 - x] = pixel({x + 0.5, y + 0.5});
    }
    m_picture = QPixmap::fromImage(std::move(picture));
}

/// The picture's color at that point, premultiplied.
QRgb PopoverFrame::pixel(QPointF point) const
{
    const double unit = m_style.scale * m_style.devicePixelRatio;
    const double length = 2 * (m_corner - m_margin) + 1;
    const QRectF panel(m_margin, m_margin, length, length);
    const double radius = look::popoverRadius * unit;
    const double fromEdge = distance(point, panel, radius);
    const double inside = coverage(fromEdge);
    const double insideBorder = coverage(fromEdge + m_style.devicePixelRatio);
    QRgb color = 0;
    if (m_style.hasShadow && inside < 1)
        color = over(color, Qt::black,
                     shadowAt(distance(point, panel.translated(0, shadowDrop * unit), radius), shadowReach * unit));
    if (inside > 0)
        color = over(color, m_style.ground, inside);
    return insideBorder < inside ? over(color, m_style.border, inside - insideBorder) : color;
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
