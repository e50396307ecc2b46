"""The settings window of the application on a desktop."""

from application import IDENTIFIER
from desktop_session import SessionError

OBJECT = "/" + IDENTIFIER.replace(".", "/")
_NARROWEST = 600  # pixels; the status item's window is narrower


def open_settings(desktop, action="settings"):
    """Asks for the window as a desktop file's action does: "settings" or "watchlist"."""
    desktop.bus.call(IDENTIFIER, OBJECT, "org.freedesktop.Application", "ActivateAction", "(sava{sv})", (action, [], {}))


def wait_for_settings_on_x11(desktop):
    """The window's id once it is active, which is when it has its limits."""
    def active():
        try:
            wide = [window for window in desktop.windows("app_probe") if desktop.window_geometry(window)[2] >= _NARROWEST]
            return wide and b"800 by 500" in desktop.tool(["xprop", "-id", str(wide[0]), "WM_NORMAL_HINTS"]) and wide[0]
        except SessionError:  # a window went meanwhile
            return None
    return desktop.wait_for(active, what="the settings window")
