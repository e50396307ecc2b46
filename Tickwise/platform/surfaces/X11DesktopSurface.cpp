#include "platform/surfaces/X11DesktopSurface.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QScreen>
#include <QWindow>

#include <qpa/qplatformscreen.h>

#include <xcb/xcb.h>

namespace tickwise {

namespace {

constexpr uint8_t sentEventBit = 0x80;

Qt::WindowFlags windowFlags(bool interactive)
{
    const Qt::WindowFlags flags = Qt::Window | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint;
    return flags |
           (interactive ? Qt::WindowStaysOnTopHint : Qt::WindowStaysOnBottomHint | Qt::WindowDoesNotAcceptFocus);
}

/// Qt knows the panels only where there is one screen. They are told in the X server's pixels.
std::vector<QRect> visibleFrames(const X11Desktop &desktop)
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    if (screens.size() == 1)
        return {screens.front()->availableGeometry()};
    std::vector<QRect> frames;
    for (const QScreen *const screen : screens)
        frames.push_back(screen->handle()->geometry());
    desktop.takePanelsFrom(frames);
    for (qsizetype i = 0; i < screens.size(); ++i) {
        const QScreen &screen = *screens[i];
        QRect &frame = frames[std::size_t(i)];
        const double ratio = screen.devicePixelRatio();
        const QPoint inside = frame.topLeft() - screen.handle()->geometry().topLeft();
        frame = {screen.geometry().topLeft() + inside / ratio, frame.size() / ratio};
    }
    return frames;
}

} // namespace

X11DesktopSurface::X11DesktopSurface(std::unique_ptr<X11Desktop> desktop, const DesktopSurfaceOptions &options)
    : m_desktop(std::move(desktop))
    , m_takesPointer(options.pointer == DesktopSurfaceOptions::Pointer::isTaken)
    , m_screenWatch([this] { screensMayDiffer(); })
    , m_isTranslucent(m_desktop->hasCompositor())
{
    for (QTimer *const timer : {&m_wasMapped, &m_compositorChanged}) {
        timer->setSingleShot(true);
        timer->setInterval(0);
    }
    connect(&m_wasMapped, &QTimer::timeout, this, &X11DesktopSurface::settle);
    connect(&m_compositorChanged, &QTimer::timeout, this, &X11DesktopSurface::readTranslucency);
    qGuiApp->installNativeEventFilter(this);
}

X11DesktopSurface::~X11DesktopSurface()
{
    qGuiApp->removeNativeEventFilter(this);
    hide();
}

std::vector<X11Desktop::State> X11DesktopSurface::states() const
{
    return {m_isInteractive ? X11Desktop::above : X11Desktop::below, X11Desktop::sticky, X11Desktop::skipTaskbar,
            X11Desktop::skipPager};
}

void X11DesktopSurface::show(QWidget &window, const QRect &frame)
{
    if (m_window == &window)
        return place(frame);
    hide();
    m_window = &window;
    m_frame = frame;
    map();
}

void X11DesktopSurface::map()
{
    m_window->setAttribute(Qt::WA_TranslucentBackground);
    m_window->setAttribute(Qt::WA_ShowWithoutActivating, !m_isInteractive);
    const Qt::WindowFlags flags = windowFlags(m_isInteractive);
    if (m_window->windowFlags() != flags)
        m_window->setParent(nullptr, flags);
    m_window->setGeometry(m_frame);
    m_desktop->writeStates(uint32_t(m_window->winId()), states());
    m_desktop->putOnEveryWorkspace(uint32_t(m_window->winId()));
    m_window->show();
    m_ratio = m_window->devicePixelRatioF();
    if (m_isInteractive)
        takeKeyboard();
}

void X11DesktopSurface::screensMayDiffer()
{
    // Qt leaves a window its size in pixels when the scale changes.
    if (m_window && m_window->devicePixelRatioF() != m_ratio) {
        unmap();
        map();
    }
    if (onScreensChanged)
        onScreensChanged();
}

void X11DesktopSurface::takeKeyboard()
{
    m_window->raise();
    m_window->activateWindow();
}

/// The window manager forgets a window that is destroyed, and gives the focus back.
void X11DesktopSurface::unmap()
{
    m_wasMapped.stop();
    m_window->hide();
    if (m_window->windowHandle())
        m_window->windowHandle()->destroy();
}

/// The window manager has framed the window: it takes notice of changes now.
void X11DesktopSurface::settle()
{
    if (!m_window || !m_window->isVisible())
        return;
    m_desktop->requestStates(uint32_t(m_window->winId()), states());
    QWindow *const handle = m_window->windowHandle();
    handle->setFlag(Qt::WindowTransparentForInput, false);
    handle->setFlag(Qt::WindowTransparentForInput, !m_takesPointer && !m_isInteractive);
}

void X11DesktopSurface::hide()
{
    if (m_window)
        unmap();
    m_window = nullptr;
    m_isInteractive = false;
}

void X11DesktopSurface::place(const QRect &frame)
{
    m_frame = frame;
    if (m_window)
        m_window->setGeometry(frame);
}

QRect X11DesktopSurface::frame() const
{
    return m_window ? m_window->geometry() : m_frame;
}

QPoint X11DesktopSurface::pointerPosition(const QMouseEvent &event) const
{
    return event.globalPosition().toPoint();
}

void X11DesktopSurface::setInteractive(bool interactive)
{
    if (!m_window)
        return;
    if (m_isInteractive == interactive) {
        if (interactive)
            takeKeyboard();
        return;
    }
    m_frame = frame();
    unmap();
    m_isInteractive = interactive;
    map();
}

DesktopScreens X11DesktopSurface::screens() const
{
    DesktopScreens screens{.visibleFrames = visibleFrames(*m_desktop)};
    if (const QScreen *const primary = QGuiApplication::primaryScreen())
        screens.origin = primary->geometry().bottomLeft() + QPoint(0, 1);
    return screens;
}

void X11DesktopSurface::readTranslucency()
{
    if (std::exchange(m_isTranslucent, m_desktop->hasCompositor()) != m_isTranslucent && onTranslucencyChanged)
        onTranslucencyChanged();
}

bool X11DesktopSurface::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    const auto &event = *static_cast<const xcb_generic_event_t *>(message);
    const uint8_t type = event.response_type & uint8_t(~sentEventBit);
    // Both events have the window at the same place. A window manager that comes later frames the window anew.
    if (type == XCB_MAP_NOTIFY || type == XCB_REPARENT_NOTIFY) {
        const xcb_window_t window = static_cast<const xcb_map_notify_event_t *>(message)->window;
        if (m_window && m_window->internalWinId() == window)
            m_wasMapped.start();
    } else if (type == m_desktop->selectionEvent() && type != 0) {
        m_compositorChanged.start();
    } else if (m_desktop->tellsOfPanels(message)) {
        m_screenWatch.touch();
    }
    return false;
}

} // namespace tickwise
