#!/usr/bin/python3
"""Makes the pictures of popover, search, overlay, and of the states of a list of prices: light and dark, with the languages
beside one another.

Usage: make_surface_pictures.py FOLDER"""

import os
import subprocess
import sys

from accessible_tree import AccessibleTree
from application import Application, Texts, coin
from color_schemes import use_scheme
from desktop_session import X11Session
from make_settings_pictures import settled_picture
from settings_window import open_settings, wait_for_settings_on_x11

LANGUAGES = ("en", "zh-Hans", "zh-Hant")
SCHEMES = ("light", "dark")
PRICES = (("BTC", 67432.4, 1.5), ("ETH", 3188, -2.1), ("SOL", 152.6, 0.4), ("DOGE", 0.1234, -0.5))
COINS = [coin("bitcoin"), coin("ethereum"), coin("solana"), coin("monero"), coin("dogecoin")]
OVERLAYS = ({"desktopOverlayBackgroundOpacity": 1}, {"desktopOverlayBackgroundOpacity": 0.5},
            {"desktopOverlayBackgroundOpacity": 0}, {"desktopOverlayBackgroundOpacity": 1})
OVERLAY_PLACE = (458, 300)
OVERLAY_AREA = (438, 280, 404, 206)
SHADOW = 20  # pixels around the popover
PANEL_HEIGHT = 30


class Stage:
    """The application in one scheme and language on a desktop with a wallpaper."""

    def __init__(self, scheme, language, folder, commands=(), coins=None, prices=PRICES):
        self._session = X11Session("xfce4-panel", "xfwm4", notifications=None, wallpaper=True)
        self._folder = folder
        self._name = f"{scheme}-{language}"
        self.texts = Texts(language)
        self._arguments = (scheme, language, commands, COINS if coins is None else coins, prices)
        self._count = 0

    def __enter__(self):
        scheme, language, commands, coins, prices = self._arguments
        self.desktop = self._session.start()
        self.tree = AccessibleTree(self.desktop)
        environment = {**self.tree.environment, **use_scheme(self.desktop, scheme)}
        self.application = Application(self.desktop, prices, env=environment, language=language, addedCoins=coins,
                                       commands=commands)
        self.desktop.wait_for(self._has_item, what="the item in the panel")
        self.desktop.move_pointer(0, self.desktop.height - 1)
        return self

    def _has_item(self):
        """Without it the popover would open in the middle of the screen."""
        places = [self.desktop.window_geometry(window) for window in self.desktop.windows("app_probe")]
        return any(left > 0 and top < PANEL_HEIGHT for left, top, _, _ in places)

    def __exit__(self, *problem):
        self._session.__exit__(*problem)

    def keep(self, left, top, width, height):
        """Writes that part of the screen; returns the file's path."""
        self._count += 1
        path = os.path.join(self._folder, f"{self._name}-{self._count}.png")
        subprocess.run(["convert", settled_picture(self.desktop), "-crop", f"{width}x{height}+{left}+{top}", "+repage", path],
                       check=True)
        return path

    def popover(self):
        self.application.open_popover()
        window = self.desktop.wait_for(self._open_popover, what="the popover")
        left, top, width, height = window["place"]
        right = self.desktop.width - left + SHADOW
        path = self.keep(left - SHADOW, PANEL_HEIGHT, right, height + top - PANEL_HEIGHT + SHADOW)
        self.desktop.press_key("Escape")
        return path

    def _open_popover(self):
        quits = self.texts.text("popover.quit.help")
        return next((window for window in self.application.all_windows() if quits in window["buttons"]), None)

    def search(self):
        open_settings(self.desktop, "watchlist")
        window = self.desktop.window_geometry(wait_for_settings_on_x11(self.desktop))
        self.tree.wait_for("app_probe", self.texts.text("watchlist.addCoin"), "push button").press()
        self.tree.wait_for("app_probe", self.texts.text("watchlist.search.placeholder"), "text")
        self.desktop.type_text("bit")
        self.desktop.press_key("Down")
        return self.keep(*window)

    def overlays(self):
        """One below the other: opaque, half transparent, transparent, and while it is moved."""
        paths = []
        for number, look in enumerate(OVERLAYS, start=1):
            place = {"x": OVERLAY_PLACE[0], "y": self.desktop.height - OVERLAY_PLACE[1]}
            self.application.change_settings(desktopOverlayEnabled=True, addedCoins=COINS[:3], desktopOverlayTopLeft=place, **look)
            if number == len(OVERLAYS):
                self.application.tell("adjustOverlay")
                self.application.wait_for_window_text(self.texts.text("desktop.adjust.hint"))
            paths.append(self.keep(*OVERLAY_AREA))
        return self._join(paths, "-append")

    def _join(self, paths, way):
        path = os.path.join(self._folder, f"{self._name}-joined.png")
        subprocess.run(["convert", *paths, way, path], check=True)
        return path


def states(scheme, language, folder):
    """The popover while it loads, with prices and a delisted coin, offline after that, and without coins."""
    unreachable = "fault exchanges hang"
    with Stage(scheme, language, os.path.join(folder, "loading"), [unreachable]) as stage:
        yield stage.popover()
    with Stage(scheme, language, os.path.join(folder, "offline")) as stage:
        stage.application.wait_for_polls(1)
        yield stage.popover()
        stage.application.tell("fault exchanges reset")
        stage.application.poll()
        yield stage.popover()
    with Stage(scheme, language, os.path.join(folder, "empty"), coins=[]) as stage:
        yield stage.popover()


def beside(paths, target, way="+smush"):
    subprocess.run(["convert", *paths, "-background", "#808080", "-gravity", "north", way, "12", "-strip", "+dither", "-colors",
                    "255", f"PNG8:{target}"], check=True)
    print(target, flush=True)


def pictures_of_scheme(scheme, folder, work):
    popovers, searches, overlays, all_states = [], [], [], []
    for language in LANGUAGES:
        with Stage(scheme, language, work) as stage:
            stage.application.wait_for_polls(1)
            popovers.append(stage.popover())
            overlays.append(stage.overlays())
        with Stage(scheme, language, os.path.join(work, "search")) as stage:
            stage.application.wait_for_polls(1)
            searches.append(stage.search())
        row = os.path.join(work, f"states-{scheme}-{language}.png")
        beside(list(states(scheme, language, work)), row)
        all_states.append(row)
    beside(popovers, os.path.join(folder, f"popover-{scheme}.png"))
    beside(searches, os.path.join(folder, f"search-{scheme}.png"))
    beside(overlays, os.path.join(folder, f"overlay-{scheme}.png"))
    beside(all_states, os.path.join(folder, f"states-{scheme}.png"), "-smush")


def main():
    folder = os.path.abspath(sys.argv[1])
    work = os.path.join(folder, ".work")
    for name in ("", "search", "loading", "offline", "empty"):
        os.makedirs(os.path.join(work, name), exist_ok=True)
    try:
        for scheme in SCHEMES:
            pictures_of_scheme(scheme, folder, work)
    finally:
        subprocess.run(["rm", "-r", work], check=True)


if __name__ == "__main__":
    main()
