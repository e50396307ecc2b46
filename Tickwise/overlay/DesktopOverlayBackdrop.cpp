#include "overlay/DesktopOverlayBackdrop.h"

#include "overlay/ContinuousRect.h"

#include <QPainter>

#include <utility>

namespace tickwise {

namespace {

constexpr float backdropBorderOpacity = 0.12F;

} // namespace

DesktopOverlayBackdrop::DesktopOverlayBackdrop(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
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

void DesktopOverlayBackdrop::paintEvent(QPaintEvent *)
{
    if (m_opacity <= 0)
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(m_opacity);
    QColor border = palette().color(QPalette::WindowText);
    border.setAlphaF(backdropBorderOpacity);
    const QColor ground = palette().color(QPalette::Window);
    if (m_fillsCorners)
        painter.fillRect(rect(), ground);
    else
        painter.fillPath(continuousRect(rect(), radius), ground);
    painter.strokePath(continuousRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius - 0.5), QPen(border, 1));
}

} // namespace tickwise
