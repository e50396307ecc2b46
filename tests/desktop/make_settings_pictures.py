#!/usr/bin/python3
"""Makes the pictures of the settings window: each tab, light and dark, in every language beside one another.

Usage: make_settings_pictures.py FOLDER [STYLE]   (STYLE: a Qt style instead of the desktop's)"""

import os
import subprocess
import sys

from application import Application, coin
from color_schemes import use_scheme
from desktop_session import X11Session
from settings_window import open_settings, wait_for_settings_on_x11

LANGUAGES = ("en", "zh-Hans", "zh-Hant")
TABS = ("general", "watchlist", "about")
PRICES = (("BTC", 67432.4, 1.5), ("ETH", 3188, -2.1), ("SOL", 152.6, 0.4))
COINS = [coin("bitcoin", "above", 70000), coin("ethereum"), coin("solana", "notSet")]


def settled_picture(desktop):
    """The screen once it has stopped changing."""
    seen = [desktop.picture()]

    def settled():
        seen.append(desktop.picture())
        return len(seen) > 3 and seen[-1].same(seen[-2]) and seen[-2].same(seen[-3])
    desktop.wait_for(settled, what="a screen that stays")
    return desktop.screenshot(os.path.join(desktop.directory, "screen.png"))


def pictures_of_language(scheme, language, style):
    """The PNGs of the tabs, in their order."""
    with X11Session("xfce4-panel", notifications=None) as desktop:
        environment = {**use_scheme(desktop, scheme), "QT_STYLE_OVERRIDE": style}
        application = Application(desktop, PRICES, env=environment, language=language, addedCoins=COINS, colorScheme="custom",
                                  desktopOverlayEnabled=True)
        application.wait_for_content(text="BTC 67,432")
        open_settings(desktop)
        left, top, width, height = desktop.window_geometry(wait_for_settings_on_x11(desktop))
        pictures = []
        for _ in TABS:
            crop = ["convert", settled_picture(desktop), "-crop", f"{width}x{height}+{left}+{top}", "+repage", "png:-"]
            pictures.append(subprocess.run(crop, capture_output=True, check=True).stdout)
            desktop.press_key("ctrl+Tab")
        return pictures


def main():
    folder, *style = sys.argv[1:]
    for scheme in ("light", "dark"):
        languages = [pictures_of_language(scheme, language, style[0] if style else None) for language in LANGUAGES]
        for number, tab in enumerate(TABS):
            path = os.path.join(folder, f"settings-{tab}-{scheme}.png")
            parts = []
            for language, pictures in zip(LANGUAGES, languages):
                parts.append(os.path.join(folder, f".{language}.png"))
                with open(parts[-1], "wb") as file:
                    file.write(pictures[number])
            subprocess.run(["convert", *parts, "-background", "#808080", "-gravity", "center", "+smush", "12", "-strip",
                            "+dither", "-colors", "255", f"PNG8:{path}"], check=True)
            for part in parts:
                os.remove(part)
            print(path, flush=True)


if __name__ == "__main__":
    main()
