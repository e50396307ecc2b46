#pragma once

#include <QByteArray>

namespace tickwise {

/// What is known about the displays of this login before the application object exists.
struct DisplayFacts
{
    QByteArray chosenPlatform; ///< QT_QPA_PLATFORM as the user set it; empty: not set
    QByteArray sessionType;    ///< XDG_SESSION_TYPE
    bool x11 = false;          ///< an X server answers
    bool wayland = false;      ///< a Wayland compositor answers
    bool layerShell = false;   ///< and it advertises zwlr_layer_shell_v1
    bool operator==(const DisplayFacts &) const = default;
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
/// XWayland, because only X11 lets a window choose its place there.
DisplayDecision decideDisplay(const DisplayFacts &facts);

/// Asks the environment, the X server and the compositor; takes at most two seconds when one of them hangs.
DisplayFacts probeDisplay();

/// Probes, decides and sets the environment that the application object reads. To be called before it is constructed.
DisplayDecision prepareDisplay();

} // namespace tickwise
