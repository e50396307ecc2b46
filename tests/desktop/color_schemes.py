"""The desktop's setting for light and dark windows: KDE's, which Qt reads, and the portal's."""

import os

_GROUPS = ("Window", "View", "Button", "Selection", "Tooltip")
_DARK = {"Window": ("42,46,50", "252,252,252"), "View": ("27,30,32", "252,252,252"), "Button": ("49,54,59", "252,252,252"),
         "Selection": ("61,174,233", "252,252,252"), "Tooltip": ("49,54,59", "252,252,252")}
_LIGHT = {"Window": ("239,240,241", "35,38,41"), "View": ("252,252,252", "35,38,41"), "Button": ("252,252,252", "35,38,41"),
          "Selection": ("61,174,233", "255,255,255"), "Tooltip": ("247,247,247", "35,38,41")}


_PORTAL = os.path.join(os.path.dirname(os.path.abspath(__file__)), "settings_portal.py")


def use_dark_portal(desktop):
    """Starts a settings portal that says dark. Returns the environment for programs, as `use_scheme` does."""
    desktop.start_process("settings-portal", ["/usr/bin/python3", "-B", _PORTAL])
    desktop.wait_for(lambda: desktop.bus.owner("org.freedesktop.portal.Desktop"), what="the settings portal")
    return {}


def use_scheme(desktop, scheme):
    """Writes the setting, "light" or "dark". Returns the environment for programs that are to follow it."""
    colors = {"light": _LIGHT, "dark": _DARK}[scheme]
    lines = []
    for group in _GROUPS:
        ground, text = colors[group]
        lines += [f"[Colors:{group}]", f"BackgroundNormal={ground}", f"BackgroundAlternate={ground}", f"ForegroundNormal={text}",
                  "ForegroundInactive=161,169,177", "ForegroundLink=29,153,243", "ForegroundVisited=155,89,182", ""]
    desktop.write_file(os.path.join(desktop.environment["XDG_CONFIG_HOME"], "kdeglobals"), "\n".join(lines))
    return {"XDG_CURRENT_DESKTOP": "KDE", "KDE_FULL_SESSION": "true", "KDE_SESSION_VERSION": "5"}
