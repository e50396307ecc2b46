#pragma once

#include <QByteArray>

#include <functional>

namespace tickwise {

/// What the environment says about the displays of this login.
struct DisplayEnvironment
{
    QByteArray chosenPlatform; ///< QT_QPA_PLATFORM as the user set it; empty: not set
    QByteArray sessionType;    ///< XDG_SESSION_TYPE
};

/// What a Wayland compositor says about itself.
struct CompositorAnswer
{
    bool isThere = false;       ///< it lists its globals
    bool hasLayerShell = false; ///< and zwlr_layer_shell_v1 is among them
};

/// The questions that a decision may need. Each is asked at most once.
struct DisplayProbes
{
    std::function<CompositorAnswer()> askCompositor;
    /// Asking may start XWayland, which then stays.
    std::function<bool()> askXServer;
};

/// How windows are made in this run.
enum class DisplayBackend
{
    chosenByUser, ///< as QT_QPA_PLATFORM says
    xcb,
    wayland,
    none, ///< there is no display: print `noDisplayMessage` and leave
};

/// The backend, and whether windows may be layer surfaces in it.
struct DisplayDecision
{
    DisplayBackend backend = DisplayBackend::none;
    bool layerShell = false;
    bool operator==(const DisplayDecision &) const = default;
};

/// One line for the standard error.
inline constexpr char noDisplayMessage[] =
    "tickwise: there is no display: neither DISPLAY nor WAYLAND_DISPLAY leads to one";

/// The user's own choice holds; an X11 session and a compositor without layer surfaces use X11, the latter through
/// XWayland, because only X11 lets a window choose its place there. Asks only what decides something.
DisplayDecision decideDisplay(const DisplayEnvironment &environment, const DisplayProbes &probes);

/// The probes of this login; each waits for at most two seconds.
DisplayProbes displayProbes();

/// Decides and sets the environment that the application object reads. To be called before it is constructed.
DisplayDecision prepareDisplay();

/// Takes back what that has set and the application object has read: programs that are started later choose a backend
/// for themselves.
void restoreEnvironment();

} // namespace tickwise
