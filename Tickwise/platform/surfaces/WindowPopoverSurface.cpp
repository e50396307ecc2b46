#include "platform/surfaces/WindowPopoverSurface.h"

#include "platform/surfaces/X11Desktop.h"

#include <QAccessible>
#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

namespace tickwise {

namespace {

std::vector<PopoverScreen> currentScreens()
{
    std::vector<PopoverScreen> screens;
    for (const QScreen *const screen : QGuiApplication::screens())
        screens.push_back({screen->geometry(), screen->availableGeometry()});
    return screens;
}

bool isOnAScreen(const std::vector<PopoverScreen> &screens, QPoint point)
{
    return std::any_of(screens.begin(), screens.end(),
                       [point](const PopoverScreen &screen) { return screen.geometry.contains(point); });
}

} // namespace

WindowPopoverSurface::Environment WindowPopoverSurface::currentEnvironment()
{
    const bool isXWayland =
        QGuiApplication::platformName() == QStringLiteral("xcb") && qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
    const std::shared_ptr<X11Desktop> desktop = X11Desktop::open();
    const auto keepOutOfTaskBar = [desktop](QWidget &window) {
        if (desktop)
            desktop->writeStates(uint32_t(window.winId()),
                                 {X11Desktop::above, X11Desktop::skipTaskbar, X11Desktop::skipPager});
    };
    return {isXWayland, [desktop] { return desktop && desktop->hasCompositor(); }, [] { return QCursor::pos(); },
            currentScreens, keepOutOfTaskBar};
}

WindowPopoverSurface::WindowPopoverSurface(Environment environment)
    : m_environment(std::move(environment))
{
}

bool WindowPopoverSurface::show(QWidget &window, QSize popover, int margin, const PopoverAnchor &anchor)
{
    if (m_environment.screens().empty())
        return false;
    m_window = &window;
    m_isTranslucent = m_environment.isXWayland || m_environment.hasCompositor();
    m_margin = m_isTranslucent ? margin : 0;
    m_pointer = m_environment.pointer();
    // The item stays where it was clicked: a later request without a click opens there too.
    const PopoverAnchor last = std::exchange(m_anchor, anchor);
    if (anchor.cause == PopoverAnchor::Cause::request && anchor.hasStatusItem && !anchor.item && !anchor.position) {
        m_anchor.item = last.item;
        m_anchor.position = last.position;
    } else if (anchor.cause == PopoverAnchor::Cause::click && !m_environment.isXWayland) {
        m_anchor.position = m_pointer;
    }
    prepare(window, m_isTranslucent);
    apply(popover);
    if (window.windowType() != Qt::Popup)
        m_environment.keepOutOfTaskBar(window);
    window.show();
    window.raise();
    window.activateWindow();
    return window.isVisible();
}

void WindowPopoverSurface::prepare(QWidget &window, bool isTranslucent)
{
    // Clicks on Wayland's windows do not reach an X11 grab, and Qt hides popup windows from screen readers: such a
    // window closes when it loses the focus.
    const bool closesByFocus = m_environment.isXWayland || QAccessible::isActive();
    const Qt::WindowFlags kind = closesByFocus ? Qt::Tool | Qt::WindowStaysOnTopHint : Qt::WindowFlags(Qt::Popup);
    const Qt::WindowFlags flags = kind | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint;
    if (window.windowFlags() == flags && window.testAttribute(Qt::WA_TranslucentBackground) == isTranslucent)
        return;
    window.setAttribute(Qt::WA_TranslucentBackground, isTranslucent);
    window.setAttribute(Qt::WA_NoSystemBackground, isTranslucent);
    window.setParent(nullptr, flags);
}

QRect WindowPopoverSurface::place(QSize popover) const
{
    const std::vector<PopoverScreen> screens = m_environment.screens();
    if (!m_anchor.hasStatusItem)
        return popoverInMiddle(screenAt(screens, m_pointer), popover);
    if (m_anchor.item && isOnAScreen(screens, m_anchor.item->center()))
        return popoverBeside(screenAt(screens, m_anchor.item->center()), *m_anchor.item, popover);
    if (m_anchor.position && isOnAScreen(screens, *m_anchor.position))
        return popoverBeside(screenAt(screens, *m_anchor.position), QRect(*m_anchor.position, QSize(1, 1)), popover);
    return popoverInCorner(screenAt(screens, m_pointer), popover);
}

void WindowPopoverSurface::apply(QSize popover)
{
    const QRect panel = place(popover);
    QRect frame = panel.adjusted(-m_margin, -m_margin, m_margin, m_margin);
    // Window managers move a window that reaches over their panels, and the popover with it.
    if (m_window->windowType() != Qt::Popup)
        frame &= screenAt(m_environment.screens(), panel.center()).available;
    m_window->setGeometry(frame);
    if (onPlaced)
        onPlaced({panel.translated(-frame.topLeft()), m_isTranslucent, true});
}

void WindowPopoverSurface::resize(QSize popover)
{
    if (m_window)
        apply(popover);
}

void WindowPopoverSurface::hide()
{
    if (m_window)
        m_window->hide();
    m_window = nullptr;
}

} // namespace tickwise
