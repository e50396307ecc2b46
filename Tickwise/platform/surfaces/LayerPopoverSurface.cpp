#include "platform/surfaces/LayerPopoverSurface.h"

#include "platform/surfaces/PopoverPlacement.h"

#include <QEnterEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include <chrono>

namespace tickwise {

namespace {

constexpr char popoverSurfaceName[] = "tickwise-popover";
constexpr std::chrono::milliseconds pointerWait{100};
constexpr std::chrono::milliseconds anyScreenPointerWait{500};
constexpr std::chrono::milliseconds screenSettleTime{200};
constexpr int panelDepth = 64; // no panel's items are farther from the screen's edge

bool isNearAnEdge(QSize screen, QPoint point)
{
    return !QRect(QPoint(), screen).adjusted(panelDepth, panelDepth, -panelDepth, -panelDepth).contains(point);
}

/// Where panels have their items: Plasma's at the bottom, those of other desktops with layers mostly at the top.
QPoint usualItemPlace(QSize screen)
{
    return {screen.width(),
            qEnvironmentVariable("XDG_CURRENT_DESKTOP").contains(QStringLiteral("KDE")) ? screen.height() : 0};
}

bool hasSeveralScreens()
{
    return QGuiApplication::screens().size() > 1;
}

} // namespace

LayerPopoverSurface::LayerPopoverSurface(std::unique_ptr<LayerShell> shell)
    : m_shell(std::move(shell))
{
    m_pointerIsAway.setSingleShot(true);
    connect(&m_pointerIsAway, &QTimer::timeout, this, &LayerPopoverSurface::pointerIsAway);
    m_isOnItsScreen.setSingleShot(true);
    m_isOnItsScreen.setInterval(screenSettleTime);
    connect(&m_isOnItsScreen, &QTimer::timeout, this, &LayerPopoverSurface::coverScreens);
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
    m_window = &window;
    const bool wasClicked = anchor.cause == PopoverAnchor::Cause::click;
    if (wasClicked && hasSeveralScreens()) {
        coverScreens();
        m_pointerIsAway.start(anyScreenPointerWait);
        return true;
    }
    if (!attach(nullptr)) {
        hide();
        return false;
    }
    if (wasClicked)
        m_pointerIsAway.start(pointerWait);
    else
        place();
    return true;
}

/// Shows the window on that screen; null: the compositor chooses.
bool LayerPopoverSurface::attach(QScreen *screen)
{
    const Qt::WindowFlags flags = Qt::Window | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint;
    if (m_window->windowFlags() != flags)
        m_window->setParent(nullptr, flags);
    m_window->setAttribute(Qt::WA_TranslucentBackground);
    m_window->winId();
    QWindow *const handle = m_window->windowHandle();
    if (screen)
        handle->setScreen(screen);
    handle->create();
    connect(handle, &QWindow::screenChanged, this, &LayerPopoverSurface::findItsScreen, Qt::UniqueConnection);
    m_surface = m_shell->makeSurface(
        *handle, LayerSurfaceRequest{.name = popoverSurfaceName, .takesKeyboard = true, .screen = screen});
    if (!m_surface || !m_surface->configure())
        return false;
    m_usable = m_surface->size();
    m_surface->setExclusiveZone(LayerSurfaceRequest::overPanels);
    m_surface->configure();
    m_surface->onResized = [this](QSize size) { follow(size); };
    m_surface->onClosed = [this] { takeAwayLater(); };
    m_window->installEventFilter(this);
    m_window->resize(m_surface->size());
    m_window->show();
    findItsScreen();
    return true;
}

void LayerPopoverSurface::takeAwayLater()
{
    QTimer::singleShot(0, this, [this] {
        if (onTakenAway)
            onTakenAway();
    });
}

/// The compositor may have chosen the screen: it tells which when it has drawn the window.
void LayerPopoverSurface::findItsScreen()
{
    m_covers.clear();
    if (m_surface && hasSeveralScreens())
        m_isOnItsScreen.start();
}

void LayerPopoverSurface::coverScreens()
{
    if (!m_window)
        return;
    const QScreen *const own = m_surface ? m_window->windowHandle()->screen() : nullptr;
    const QList<QScreen *> all = QGuiApplication::screens();
    // One may go while a cover waits for the compositor.
    const QList<QPointer<QScreen>> screens(all.cbegin(), all.cend());
    for (const QPointer<QScreen> &screen : screens) {
        if (!screen || screen.data() == own || !hasOutput(*screen))
            continue;
        const auto entered = [this, screen](QPoint position) {
            QTimer::singleShot(0, this, [this, screen, position] {
                if (screen && m_pointerIsAway.isActive())
                    openAt(screen, position);
            });
        };
        m_covers.push_back(std::make_unique<LayerClickCatcher>(
            *m_shell, *screen, LayerClickCatcher::Events{entered, [this] { takeAwayLater(); }}));
    }
}

void LayerPopoverSurface::pointerIsAway()
{
    if (m_surface)
        place();
    else
        openAt(nullptr, std::nullopt);
}

void LayerPopoverSurface::openAt(QScreen *screen, std::optional<QPoint> pointer)
{
    m_pointerIsAway.stop();
    m_covers.clear();
    if (!m_window || !attach(screen))
        return takeAwayLater();
    if (pointer)
        noteClick(*pointer);
    place();
}

void LayerPopoverSurface::noteClick(QPoint pointer)
{
    if (isNearAnEdge(m_surface->size(), pointer))
        m_click = pointer;
}

bool LayerPopoverSurface::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_window && event->type() == QEvent::Enter && m_pointerIsAway.isActive()) {
        noteClick(static_cast<QEnterEvent *>(event)->position().toPoint());
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
    const QPoint item = m_click.value_or(usualItemPlace(size));
    // Plasma's panels are no layer surfaces: nothing is taken from the screen for them.
    const QSize usable = m_anchor.hasStatusItem && m_usable == size ? usableBesideUnknownPanel(size, item) : m_usable;
    const PopoverScreen screen{QRect(QPoint(), size), availableArea(size, usable, item)};
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
    m_isOnItsScreen.stop();
    m_covers.clear();
    m_surface.reset();
    if (m_window)
        detach();
    m_window = nullptr;
}

void LayerPopoverSurface::detach()
{
    m_window->removeEventFilter(this);
    m_window->hide();
    if (m_window->windowHandle())
        m_window->windowHandle()->destroy();
}

} // namespace tickwise
