#include "widget/program/WidgetWindow.h"

#include "support/drawing/TextScale.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace tickwise {

namespace {

constexpr double cornerRadius = 22; // points
constexpr float borderOpacity = 0.12F;

int scaled(double points)
{
    return int(std::lround(points * textScale()));
}

bool asksForMenu(const QKeyEvent &event)
{
    return event.key() == Qt::Key_F10 && event.modifiers() == Qt::ShiftModifier;
}

bool asksToOpen(const QKeyEvent &event)
{
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter || event.key() == Qt::Key_Space;
}

} // namespace

WidgetWindow::WidgetWindow(WidgetListView::LogoSource logos, PointerPosition pointerPosition, Clock clock)
    : m_list(std::move(logos), std::move(clock), this)
    , m_pointerPosition(std::move(pointerPosition))
{
    setWindowTitle(QGuiApplication::applicationDisplayName());
    setFocusPolicy(Qt::StrongFocus);
    m_list.setAttribute(Qt::WA_TransparentForMouseEvents);
}

QSize WidgetWindow::scaledSize(WidgetSize size)
{
    const QSize points = pointSize(size);
    return {scaled(points.width()), scaled(points.height())};
}

void WidgetWindow::setTranslucent(bool translucent)
{
    if (std::exchange(m_isTranslucent, translucent) != translucent)
        shape();
}

void WidgetWindow::shape()
{
    if (m_isTranslucent)
        return clearMask();
    QPainterPath outline;
    outline.addRoundedRect(rect(), scaled(cornerRadius), scaled(cornerRadius));
    setMask(QRegion(outline.toFillPolygon().toPolygon()));
}

void WidgetWindow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (!m_isTranslucent)
        painter.fillRect(rect(), palette().color(QPalette::Window)); // the cut corners show no half of it
    painter.setRenderHint(QPainter::Antialiasing);
    QColor border = palette().color(QPalette::WindowText);
    border.setAlphaF(borderOpacity);
    painter.setPen(border);
    painter.setBrush(palette().color(QPalette::Window));
    const double radius = scaled(cornerRadius);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

void WidgetWindow::resizeEvent(QResizeEvent *)
{
    m_list.setScale(textScale());
    const int padding = scaled(widgetPadding);
    m_list.setGeometry(rect().adjusted(padding, padding, -padding, -padding));
    shape();
}

void WidgetWindow::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    // The release of a drag may have been another window's to see.
    if (std::exchange(m_isDragged, false))
        Q_EMIT dropped();
    m_hold = m_pointerPosition(*event);
}

void WidgetWindow::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_hold)
        return;
    const QPoint way = m_pointerPosition(*event) - *m_hold;
    m_isDragged = m_isDragged || way.manhattanLength() >= QApplication::startDragDistance();
    if (m_isDragged)
        Q_EMIT dragged(way);
}

void WidgetWindow::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !std::exchange(m_hold, std::nullopt))
        return;
    if (std::exchange(m_isDragged, false))
        Q_EMIT dropped();
    else
        Q_EMIT opened();
}

void WidgetWindow::keyPressEvent(QKeyEvent *event)
{
    if (asksToOpen(*event))
        Q_EMIT opened();
    else if (asksForMenu(*event))
        Q_EMIT menuRequested(rect().center());
    else
        AccessibleWindow::keyPressEvent(event);
}

void WidgetWindow::contextMenuEvent(QContextMenuEvent *event)
{
    Q_EMIT menuRequested(event->pos());
}

} // namespace tickwise
