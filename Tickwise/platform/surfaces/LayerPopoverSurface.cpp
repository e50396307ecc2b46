#include "platform/surfaces/LayerPopoverSurface.h"

#include "platform/surfaces/PopoverPlacement.h"

#include <QEnterEvent>
#include <QWindow>

#include <chrono>

namespace tickwise {

namespace {

constexpr char surfaceName[] = "tickwise-popover";
constexpr std::chrono::milliseconds pointerComes{100};
constexpr int panelDepth = 64; // no panel's items are farther from the screen's edge

bool isNearAnEdge(QSize screen, QPoint point)
{
    return !QRect(QPoint(), screen).adjusted(panelDepth, panelDepth, -panelDepth, -panelDepth).contains(point);
}

} // namespace

LayerPopoverSurface::LayerPopoverSurface(std::unique_ptr<LayerShell> shell)
    : m_shell(std::move(shell))
{
    m_pointerIsAway.setSingleShot(true);
    m_pointerIsAway.setInterval(pointerComes);
    connect(&m_pointerIsAway, &QTimer::timeout, this, &LayerPopoverSurface::place);
}

LayerPopoverSurface::~LayerPopoverSurface()
{
    hide();
}

bool LayerPopoverSurface::show(QWidget &window, QSize popover, int, const PopoverAnchor &anchor)
{
    hide();
    m_anchor = anchor;
    m_popover = popover;
    if (!attach(window))
        return false;
    m_window = &window;
    window.installEventFilter(this);
    window.resize(m_surface->size());
    window.show();
    if (anchor.cause == PopoverAnchor::Cause::click)
        m_pointerIsAway.start();
    else
        place();
    return true;
}

bool LayerPopoverSurface::attach(QWidget &window)
{
    const Qt::WindowFlags flags = Qt::Window | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint;
    if (window.windowFlags() != flags)
        window.setParent(nullptr, flags);
    window.setAttribute(Qt::WA_TranslucentBackground);
    window.winId();
    QWindow *const handle = window.windowHandle();
    handle->create();
    LayerSurfaceRequest request{.name = surfaceName, .takesKeyboard = true};
    m_surface = m_shell->makeSurface(*handle, request);
    if (!m_surface || !m_surface->configure()) {
        m_surface.reset();
        handle->destroy();
        return false;
    }
    m_usable = m_surface->size();
    m_surface->setExclusiveZone(LayerSurfaceRequest::overPanels);
    m_surface->configure();
    m_surface->onResized = [this](QSize screen) { follow(screen); };
    m_surface->onClosed = [this] {
        QTimer::singleShot(0, this, [this] {
            if (onTakenAway)
                onTakenAway();
        });
    };
    return true;
}

bool LayerPopoverSurface::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_window && event->type() == QEvent::Enter && m_pointerIsAway.isActive()) {
        const QPoint pointer = static_cast<QEnterEvent *>(event)->position().toPoint();
        if (isNearAnEdge(m_surface->size(), pointer))
            m_click = pointer;
        place();
    }
    return QObject::eventFilter(watched, event);
}

void LayerPopoverSurface::place()
{
    m_pointerIsAway.stop();
    if (!m_window || !m_surface)
        return;
    const QSize size = m_surface->size();
    const QPoint topRight(size.width(), 0);
    const PopoverScreen screen{QRect(QPoint(), size), availableArea(size, m_usable, m_click.value_or(topRight))};
    QRect panel;
    if (!m_anchor.hasStatusItem)
        panel = popoverInMiddle(screen, m_popover);
    else if (m_click)
        panel = popoverBeside(screen, QRect(*m_click, QSize(1, 1)), m_popover);
    else
        panel = popoverInCorner(screen, m_popover);
    if (onPlaced)
        onPlaced({panel, true, false});
}

void LayerPopoverSurface::follow(QSize screen)
{
    if (!m_window || m_window->size() == screen)
        return;
    m_usable = screen;
    m_click.reset();
    m_window->resize(screen);
    if (!m_pointerIsAway.isActive())
        place();
}

void LayerPopoverSurface::resize(QSize popover)
{
    m_popover = popover;
    if (!m_pointerIsAway.isActive())
        place();
}

void LayerPopoverSurface::hide()
{
    m_pointerIsAway.stop();
    m_surface.reset();
    if (!m_window)
        return;
    m_window->removeEventFilter(this);
    m_window->hide();
    if (m_window->windowHandle())
        m_window->windowHandle()->destroy();
    m_window = nullptr;
}

} // namespace tickwise
