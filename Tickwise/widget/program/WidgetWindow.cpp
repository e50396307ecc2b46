#include "widget/program/WidgetWindow.h"

#include "support/drawing/TextScale.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMouseEvent>

#include <cmath>

namespace tickwise {

namespace {

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
    if (event.isAutoRepeat())
        return false;
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter || event.key() == Qt::Key_Space;
}

} // namespace

WidgetWindow::WidgetWindow(WidgetListView::LogoSource logos, PointerPosition pointerPosition, Clock clock)
    : m_backdrop(this)
    , m_list(std::move(logos), std::move(clock), this)
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
    m_isTranslucent = translucent;
    m_backdrop.setFillsCorners(!translucent);
    cut();
}

void WidgetWindow::cut()
{
    if (m_isTranslucent)
        return clearMask();
    setMask(m_backdrop.outline(rect()));
}

void WidgetWindow::resizeEvent(QResizeEvent *)
{
    m_list.setScale(textScale());
    const int padding = scaled(widgetPadding);
    m_list.setGeometry(rect().adjusted(padding, padding, -padding, -padding));
    m_backdrop.setRadius(scaled(desktopCornerRadius));
    m_backdrop.setGeometry(rect());
    cut();
}

void WidgetWindow::hideEvent(QHideEvent *)
{
    m_hold.reset();
    if (std::exchange(m_isDragged, false))
        Q_EMIT dragCancelled();
}

void WidgetWindow::mousePressEvent(QMouseEvent *event)
{
    // The release of a drag may have been another window's to see.
    if (std::exchange(m_isDragged, false))
        Q_EMIT dropped();
    m_hold.reset();
    if (event->button() == Qt::LeftButton)
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
