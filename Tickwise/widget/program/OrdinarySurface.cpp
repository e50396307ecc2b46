#include "widget/program/OrdinarySurface.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QScreen>

namespace tickwise {

void OrdinarySurface::show(QWidget &window, const QRect &frame)
{
    m_window = &window;
    window.setAttribute(Qt::WA_TranslucentBackground);
    window.setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
    place(frame);
    window.show();
}

void OrdinarySurface::hide()
{
    if (m_window)
        m_window->hide();
    m_window = nullptr;
}

void OrdinarySurface::place(const QRect &frame)
{
    if (!m_window)
        return;
    m_window->setFixedSize(frame.size());
    m_window->move(frame.topLeft());
}

QRect OrdinarySurface::frame() const
{
    return m_window ? m_window->geometry() : QRect();
}

QPoint OrdinarySurface::pointerPosition(const QMouseEvent &event) const
{
    return event.globalPosition().toPoint();
}

void OrdinarySurface::setInteractive(bool) {}

DesktopScreens OrdinarySurface::screens() const
{
    DesktopScreens screens;
    for (const QScreen *const screen : QGuiApplication::screens())
        screens.visibleFrames.push_back(screen->availableGeometry());
    if (const QScreen *const primary = QGuiApplication::primaryScreen())
        screens.origin = primary->geometry().bottomLeft() + QPoint(0, 1);
    return screens;
}

} // namespace tickwise
