#pragma once

#include <QRect>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

struct xcb_connection_t;

namespace tickwise {

/// What windows on the desktop ask of an X11 window manager, on Qt's own connection.
class X11Desktop
{
public:
    /// The states of a window, by their places in the table of atoms.
    enum State
    {
        below,
        above,
        sticky,
        skipTaskbar,
        skipPager
    };

    /// None where windows are not X11's.
    static std::unique_ptr<X11Desktop> open();

    /// False where a window manager runs that keeps no window below the others.
    bool keepsWindowsBelow() const;
    bool hasCompositor() const;
    /// The event number by which the server tells that a selection has another owner; 0: it does not.
    uint8_t selectionEvent() const { return m_selectionEvent; }

    /// Reduces each monitor to the part that panels leave free. All rectangles are in the X server's pixels.
    void takePanelsFrom(std::vector<QRect> &monitors) const;
    /// Whether the event, an xcb_generic_event_t, tells that panels may leave another part free.
    bool tellsOfPanels(const void *event) const;

    /// Writes the states of a window that is not mapped.
    void writeStates(uint32_t window, const std::vector<State> &states) const;
    /// The window is not mapped.
    void putOnEveryWorkspace(uint32_t window) const;
    /// Asks the window manager to change states of a mapped window.
    void requestStates(uint32_t window, const std::vector<State> &states) const;

private:
    explicit X11Desktop(xcb_connection_t *connection);
    uint32_t atom(const char *name) const;
    unsigned int ask(uint32_t window, uint32_t property, uint32_t type) const;
    std::vector<uint32_t> answer(unsigned int question, uint32_t type) const;

    xcb_connection_t *m_connection;
    uint32_t m_root = 0;
    uint32_t m_desktop = 0;
    uint32_t m_state = 0;
    uint32_t m_supported = 0;
    uint32_t m_compositor = 0;
    uint32_t m_clients = 0;
    uint32_t m_strut = 0;
    uint32_t m_workArea = 0;
    std::array<uint32_t, 5> m_states{};
    uint8_t m_selectionEvent = 0;
};

} // namespace tickwise
