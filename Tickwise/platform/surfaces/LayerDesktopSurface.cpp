#include "platform/surfaces/LayerDesktopSurface.h"

#include "platform/surfaces/PopoverPlacement.h"

#include <QEvent>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <vector>

namespace tickwise {

namespace {

int area(const QRect &rect)
{
    return rect.isEmpty() ? 0 : rect.width() * rect.height();
}

bool isPress(const QEvent &event)
{
    return event.type() == QEvent::MouseButtonPress || event.type() == QEvent::MouseButtonDblClick;
}

/// Compositors have no primary screen, and the toolkit takes the one that came first. The one where the arrangement
/// begins stays the same when others come back in another order.
const QScreen *primaryScreen()
{
    const QScreen *const first = QGuiApplication::screenAt(QPoint());
    return first ? first : QGuiApplication::primaryScreen();
}

/// The screens that windows can be on, the primary one first.
std::vector<QScreen *> usableScreens()
{
    std::vector<QScreen *> screens;
    for (QScreen *const screen : QGuiApplication::screens()) {
        if (hasOutput(*screen))
            screens.push_back(screen);
    }
    std::stable_partition(screens.begin(), screens.end(),
                          [primary = primaryScreen()](const QScreen *screen) { return screen == primary; });
    return screens;
}

} // namespace

LayerDesktopSurface::LayerDesktopSurface(std::unique_ptr<LayerShell> shell, DesktopSurfaceOptions options)
    : m_shell(std::move(shell))
    , m_options(std::move(options))
    , m_usableArea(*m_shell, [this] { m_screenWatch.touch(); })
    , m_screenWatch([this] { screensMayDiffer(); })
{
    for (QTimer *const timer : {&m_reattach, &m_appear}) {
        timer->setSingleShot(true);
        timer->setInterval(0);
    }
    connect(&m_reattach, &QTimer::timeout, this, &LayerDesktopSurface::reattach);
    connect(&m_appear, &QTimer::timeout, this, &LayerDesktopSurface::appear);
}

LayerDesktopSurface::~LayerDesktopSurface()
{
    hide();
}

QRect LayerDesktopSurface::visibleFrame(const QScreen &screen) const
{
    QRect frame(QPoint(), m_usableArea.sizeOf(screen));
    frame.moveBottomLeft(screen.geometry().bottomLeft());
    return frame;
}

DesktopScreens LayerDesktopSurface::screens() const
{
    DesktopScreens screens;
    for (const QScreen *const screen : usableScreens())
        screens.visibleFrames.push_back(visibleFrame(*screen));
    if (const QScreen *const primary = primaryScreen())
        screens.origin = primary->geometry().bottomLeft() + QPoint(0, 1);
    return screens;
}

/// The screen that shows most of the frame; the primary one where none does.
QScreen *LayerDesktopSurface::screenFor(const QRect &frame) const
{
    QScreen *best = nullptr;
    int most = -1;
    for (QScreen *const screen : usableScreens()) {
        const int shown = area(screen->geometry() & frame);
        if (shown > most) {
            most = shown;
            best = screen;
        }
    }
    return best;
}

QMargins LayerDesktopSurface::margins() const
{
    const QRect visible = visibleFrame(*m_screen);
    return {m_frame.left() - visible.left(), 0, 0, visible.bottom() - m_frame.bottom()};
}

bool LayerDesktopSurface::takesPointer() const
{
    return m_isInteractive || m_options.pointer == DesktopSurfaceOptions::Pointer::isTaken;
}

void LayerDesktopSurface::show(QWidget &window, const QRect &frame)
{
    if (m_window == &window)
        return place(frame);
    hide();
    m_window = &window;
    m_frame = frame;
    window.installEventFilter(this);
    attach();
}

void LayerDesktopSurface::attach()
{
    m_screen = screenFor(m_frame);
    if (!m_screen)
        return;
    // The screen that showed it may have gone.
    if (!m_screen->geometry().intersects(m_frame))
        m_frame = movedInto(visibleFrame(*m_screen), m_frame);
    const Qt::WindowFlags flags = Qt::Window | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint;
    if (m_window->windowFlags() != flags)
        m_window->setParent(nullptr, flags);
    m_window->setAttribute(Qt::WA_TranslucentBackground);
    m_window->setGeometry(m_frame);
    m_window->winId();
    QWindow *const handle = m_window->windowHandle();
    handle->setScreen(m_screen);
    handle->create();
    m_sentMargins = margins();
    const LayerSurfaceRequest request{.name = m_options.name.constData(),
                                      .layer =
                                          m_isInteractive ? LayerSurfaceRequest::overlay : LayerSurfaceRequest::bottom,
                                      .anchors = LayerSurfaceRequest::bottomEdge | LayerSurfaceRequest::leftEdge,
                                      .takesKeyboard = m_isInteractive,
                                      .screen = m_screen,
                                      .size = m_frame.size(),
                                      .margins = m_sentMargins};
    m_surface = m_shell->makeSurface(*handle, request);
    if (!m_surface)
        return;
    m_applied = m_frame.topLeft();
    followPointer();
    // Not within the answer's handler, because showing speaks to the compositor, too.
    m_surface->onResized = [this](QSize) { m_appear.start(); };
    m_surface->onClosed = [this] { m_reattach.start(); };
    m_surface->commit();
}

/// The compositor has given the surface a place: the window may draw from now on.
void LayerDesktopSurface::appear()
{
    if (!m_window || !m_surface || (m_window->isVisible() && m_window->size() == m_surface->size()))
        return;
    m_window->resize(m_surface->size());
    m_window->show();
    m_surface->setTakesPointer(takesPointer());
    m_surface->commit();
}

void LayerDesktopSurface::detach()
{
    m_appear.stop();
    m_reattach.stop();
    m_isPlacing = false;
    m_isPlaceOld = false;
    m_pointer.reset();
    m_surface.reset();
    m_window->hide();
    if (m_window->windowHandle())
        m_window->windowHandle()->destroy();
}

void LayerDesktopSurface::reattach()
{
    if (!m_window)
        return;
    detach();
    attach();
}

void LayerDesktopSurface::hide()
{
    if (m_window) {
        m_window->removeEventFilter(this);
        detach();
    }
    m_window = nullptr;
    m_isInteractive = false;
}

void LayerDesktopSurface::place(const QRect &frame)
{
    if (std::exchange(m_frame, frame) == frame || !m_window)
        return;
    if (!m_surface || !m_screen)
        return reattach();
    // A surface stays on its screen while it is dragged: another one would lose the pointer.
    const bool isDragged = QGuiApplication::mouseButtons() != Qt::NoButton;
    if (!isDragged && screenFor(m_frame) != m_screen)
        return reattach();
    if (m_isPlacing)
        m_isPlaceOld = true;
    else
        sendPlace();
}

void LayerDesktopSurface::sendPlace()
{
    m_isPlacing = true;
    m_isPlaceOld = false;
    m_sentMargins = margins();
    m_surface->setPlace(m_frame.size(), m_sentMargins);
    m_surface->commit([this, position = m_frame.topLeft()] {
        m_isPlacing = false;
        m_applied = position;
        if (m_isPlaceOld && m_screen)
            sendPlace();
    });
}

void LayerDesktopSurface::followPointer()
{
    m_pointer.reset();
    m_knowsPress = false;
    if (takesPointer())
        m_pointer = std::make_unique<LayerPointer>(*m_shell, *m_window->windowHandle(), [this] { return m_applied; });
}

void LayerDesktopSurface::notePress()
{
    m_pressOrigin = m_applied;
    const bool knowsPress = m_pointer && m_pointer->takePress();
    // The compositor has another pointing device, or the first.
    if (!knowsPress)
        followPointer();
    m_knowsPress = knowsPress;
}

QPoint LayerDesktopSurface::pointerPosition(const QMouseEvent &event) const
{
    // Compositors that count from where the window is let it fall behind then, but none lets it run ahead.
    if (!m_knowsPress)
        return m_pressOrigin + event.position().toPoint();
    // The pointer may have moved on before the press is handled.
    return (isPress(event) ? m_pointer->pressPosition() : m_pointer->position()).toPoint();
}

bool LayerDesktopSurface::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_window && isPress(*event))
        notePress();
    else if (watched == m_window && event->type() == QEvent::MouseButtonRelease && screenFor(m_frame) != m_screen)
        m_reattach.start();
    return QObject::eventFilter(watched, event);
}

void LayerDesktopSurface::setInteractive(bool interactive)
{
    if (!m_window || std::exchange(m_isInteractive, interactive) == interactive)
        return;
    // Compositors take the keyboard from a surface that goes, but not from one that asks for it no longer.
    if (!interactive || !m_surface || !m_surface->setLayer(LayerSurfaceRequest::overlay))
        return reattach();
    m_surface->setTakesKeyboard(true);
    m_surface->setTakesPointer(true);
    followPointer();
    m_surface->commit();
}

void LayerDesktopSurface::screensMayDiffer()
{
    m_usableArea.refresh();
    // The compositor has moved a window whose margins are old. Some do not redraw one that is moved back.
    if (m_window && (!m_surface || !m_screen || margins() != m_sentMargins))
        reattach();
    if (onScreensChanged)
        onScreensChanged();
}

} // namespace tickwise
