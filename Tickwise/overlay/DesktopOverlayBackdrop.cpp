#include "overlay/DesktopOverlayBackdrop.h"

#include "overlay/ContinuousRect.h"

#include <QPaintEvent>
#include <QPainter>

#include <cmath>
#include <utility>

namespace tickwise {

namespace {

constexpr float backdropBorderOpacity = 0.12F;
constexpr double cornerDepth = 0.3; ///< in radii: how far a corner reaches into the sheet, from both edges

/// Qt gives taller translucent areas to a pool of threads, whose waking costs more than filling them.
constexpr int tallestStrip = 64;

void fillInStrips(QPainter &painter, const QRect &area, const QColor &color)
{
    for (int top = area.top(); top <= area.bottom(); top += tallestStrip)
        painter.fillRect(QRect(area.left(), top, area.width(), tallestStrip) & area, color);
}

} // namespace

DesktopOverlayBackdrop::DesktopOverlayBackdrop(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void DesktopOverlayBackdrop::setRadius(double radius)
{
    if (std::exchange(m_radius, radius) != radius)
        update();
}

void DesktopOverlayBackdrop::setOpacity(double opacity)
{
    if (std::exchange(m_opacity, opacity) != opacity)
        update();
}

void DesktopOverlayBackdrop::setFillsCorners(bool fills)
{
    if (std::exchange(m_fillsCorners, fills) != fills)
        update();
}

QRegion DesktopOverlayBackdrop::outline(const QRect &sheet) const
{
    return QRegion(continuousRect(sheet, m_radius).toFillPolygon().toPolygon());
}

/// An area that neither the corners nor the border reach.
QRect DesktopOverlayBackdrop::inside() const
{
    const int margin = int(std::ceil(m_radius * cornerDepth)) + 2;
    return rect().adjusted(margin, margin, -margin, -margin);
}

void DesktopOverlayBackdrop::paintEvent(QPaintEvent *event)
{
    if (m_opacity <= 0)
        return;
    QPainter painter(this);
    painter.setOpacity(m_opacity);
    const QColor ground = palette().color(QPalette::Window);
    // The usual update needs no shapes.
    if (inside().contains(event->rect()))
        return fillInStrips(painter, event->rect(), ground);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor border = palette().color(QPalette::WindowText);
    border.setAlphaF(backdropBorderOpacity);
    if (m_fillsCorners)
        painter.fillRect(rect(), ground);
    else
        painter.fillPath(continuousRect(rect(), m_radius), ground);
    painter.strokePath(continuousRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), m_radius - 0.5), QPen(border, 1));
}

} // namespace tickwise
