#!/usr/bin/python3
"""Makes the pictures of docs/pictures: the application on private desktops, with prices that are always the same.

Usage: make_pictures.py FOLDER [PICTURE...]   (a host of HOSTS below, "widget", one of SINGLE or of POPOVERS)"""

import json
import os
import subprocess
import sys
import time

from application import IDENTIFIER, Application, Texts, coin
from color_schemes import use_scheme
from desktop_session import SwaySession, X11Session
from furnished_session import FurnishedSession
from gnome_session import GnomeSession
from kwin_session import KwinSession
from settings_window import open_settings, wait_for_settings_on_x11
from widget_test import Widget, write_snapshot

STRIP_WIDTH = 360
PRICES = (("BTC", 67432.4, 1.5), ("ETH", 3188, -2.1))
WATCHLIST = [coin("bitcoin"), coin("ethereum")]
# What a picture shows, one below the other.
LOOKS = (
    {"displayedCoinId": "bitcoin"},
    {"displayedCoinId": "ethereum", "showMenuBarBackground": True},
    {"displayedCoinId": "bitcoin", "showMenuBarBackground": False, "priceColorEnabled": False},
    {"menuBarContent": "icon"},
)


def x11(panel, window_manager="openbox", **options):
    return lambda: X11Session(panel, window_manager, notifications=None, **options)


# The desktop, and top and height of its panel; a negative top counts from the bottom.
HOSTS = {
    "xfce": (x11("xfce4-panel"), 0, 30),
    "xfce-light": (x11("xfce4-panel", dark_panel=False), 0, 30),
    "waybar": (lambda: SwaySession("waybar", notifications=None), 0, 30),
    "swaybar": (lambda: SwaySession("swaybar", notifications=None), 0, 23),
    "mate": (x11("mate-panel"), 0, 32),
    "lxqt": (x11("lxqt-panel"), 0, 32),
    "gnome": (GnomeSession, 0, 32),
    "plasma": (x11("plasma", "kwin_x11"), -50, 50),
}
# Desktops with the popover open, and the part of the screen that is kept.
POPOVERS = {
    "popover-xfce": (FurnishedSession, (560, 0, 720, 460)),
    "popover-waybar": (lambda: SwaySession("waybar", notifications=None), (800, 0, 480, 460)),
    "popover-gnome": (GnomeSession, (920, 0, 360, 460)),
    "popover-plasma": (x11("plasma", "kwin_x11"), (800, 340, 480, 460)),
    "popover-plasma-wayland": (KwinSession, (800, 340, 480, 460)),
}
POPOVER_PRICES = (*PRICES, ("SOL", 150.25, 0.4), ("DOGE", 0.1234, -0.5), ("XRP", 0.52, 0), ("ADA", 0.4512, 3.2))
POPOVER_COINS = [coin(name) for name in ("bitcoin", "ethereum", "solana", "dogecoin", "ripple", "cardano")]
OVERLAY_AREA = (0, 0, 1280, 460)
USUAL = ("xfce", "waybar", "alert", "popover-xfce", "popover-waybar", "overlay-xfce", "settings-xfce", "widget")

SETTINGS_HEIGHT = 740  # of the screen's 800 pixels
WIDGET_SIZES = {"small": (196, 166), "medium": (364, 166), "large": (364, 439)}
WIDGET_QUOTES = {"bitcoin": (67432.4, 1.52), "ethereum": (3188.07, -2.1), "solana": (150.25, 0.43), "binancecoin": (602.5, 0),
                 "ripple": (0.5213, -0.87), "dogecoin": (0.1234, 4.06), "tron": (0.1187, None), "cardano": (0.4471, 1.12),
                 "chainlink": (14.38, -3.4), "monero": (None, None)}
LANGUAGES = ("en", "zh-Hans", "zh-Hant")


def convert(*arguments, data=None):
    return subprocess.run(["convert", *arguments], input=data, capture_output=True, check=True).stdout


def crop(desktop, left, top, width, height):
    """A part of the screen as PNG."""
    path = desktop.screenshot(os.path.join(desktop.directory, "screen.png"))
    return convert(path, "-crop", f"{width}x{height}+{left}+{top}", "+repage", "-strip", "png:-")


def pixels(png):
    return convert("png:-", "rgb:-", data=png)


def settled_crop(desktop, area, unlike):
    """The part of the screen once it differs from the ones before and has stopped changing."""
    seen = []

    def settled():
        picture = crop(desktop, *area)
        seen.append(pixels(picture))
        return picture if seen[-2:] == [seen[-1]] * 2 and seen[-1] not in unlike else None
    picture = desktop.wait_for(settled, 30, "a picture that stays")
    unlike.append(seen[-1])
    return picture


def changed_crop(desktop, area, unlike):
    """The part of the screen as soon as it differs from the ones before: the popover tells the age of its prices."""
    desktop.wait_for(lambda: pixels(crop(desktop, *area)) not in unlike, what="a change of the screen")
    return crop(desktop, *area)


def picture_of_panel(path, host):
    make_session, top, height = HOSTS[host]
    with make_session() as desktop:
        area = (desktop.width - STRIP_WIDTH, top % desktop.height, STRIP_WIDTH, height)
        unlike = [pixels(crop(desktop, *area))]
        application = Application(desktop, PRICES, addedCoins=WATCHLIST)
        application.wait_for_content(text="BTC 67,432")
        rows = []
        for number, look in enumerate(LOOKS):
            application.change_settings(**look)
            row = os.path.join(desktop.directory, f"{number}.png")
            with open(row, "wb") as file:
                file.write(settled_crop(desktop, area, unlike))
            rows.append(row)
        convert(*rows, "-append", "-colors", "255", f"PNG8:{path}")


def picture_of_alert(path):
    with X11Session("xfce4-panel") as desktop:
        application = Application(desktop, [("BTC", 99500, -1.2)], addedCoins=[coin("bitcoin", "above", 100000)])
        application.wait_for_polls(1)
        area = (desktop.width - STRIP_WIDTH, desktop.height - 140, STRIP_WIDTH, 100)
        unlike = [pixels(crop(desktop, *area))]
        application.set_price("BTC", 100250, 0.4)
        with open(path, "wb") as file:
            file.write(settled_crop(desktop, area, unlike))


def picture_of_popover(path, name):
    make_session, area = POPOVERS[name]
    with make_session() as desktop:
        unlike = []
        settled_crop(desktop, area, unlike)
        application = Application(desktop, POPOVER_PRICES, addedCoins=POPOVER_COINS)
        application.wait_for_content(text="BTC 67,432")
        settled_crop(desktop, area, unlike)  # with the item
        desktop.bus.call(IDENTIFIER, "/" + IDENTIFIER.replace(".", "/"), "org.freedesktop.Application", "Activate",
                         "(a{sv})", ({},))
        application.wait_for_window_text(Texts("en").text("popover.watchlist"))
        with open(path, "wb") as file:
            picture = changed_crop(desktop, area, unlike)
            file.write(convert("png:-", "+dither", "-colors", "255", "PNG8:-", data=picture))


def widget_snapshot(language):
    quotes = {coin: {"price": price, "change24hPercent": change} for coin, (price, change) in WIDGET_QUOTES.items() if price}
    return {"writtenAt": time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime()), "language": language, "currency": "USD",
            "colorByChange": True, "upColorHex": "#2CBD84", "downColorHex": "#F6465D", "displayedCoinId": "bitcoin",
            "watchlist": list(WIDGET_QUOTES), "quotes": quotes}


def picture_of_widget(path, scheme):
    """Its three sizes side by side, the languages one below the other."""
    with SwaySession(None, notifications=None) as desktop:
        environment = use_scheme(desktop, scheme)
        desktop.move_pointer(desktop.width - 1, desktop.height - 1)
        rows = []
        for language in LANGUAGES:
            write_snapshot(desktop, widget_snapshot(language))
            rows.append(os.path.join(desktop.directory, f"{language}.png"))
            convert(*widget_sizes(desktop, environment, language), "-background", "#3f3f3f", "+append", rows[-1])
        convert(*rows, "-append", "-strip", "+dither", "-colors", "255", f"PNG8:{path}")


def widget_sizes(desktop, environment, language):
    """The files with the widget in each size."""
    unlike, files = [], []
    for size, (width, height) in WIDGET_SIZES.items():
        area = (20, 20, width + 40, height + 40)
        unlike.append(pixels(crop(desktop, *area)))
        place = json.dumps({"size": size, "topLeft": {"x": 40, "y": desktop.height - 40}})
        preferences = os.path.join(desktop.environment["XDG_CONFIG_HOME"], "com.pelmo.tickwise.widget", "widget.json")
        desktop.write_file(preferences, place)
        widget = Widget(desktop, change=None, env=environment)
        files.append(os.path.join(desktop.directory, f"{language}-{size}.png"))
        with open(files[-1], "wb") as file:
            file.write(settled_crop(desktop, area, unlike))
        widget.stop()
    return files


def picture_of_overlay(path):
    """On a desktop in use, half transparent."""
    with FurnishedSession() as desktop:
        for note in desktop.processes("note"):
            desktop.stop_process(note)
        unlike = []
        settled_crop(desktop, OVERLAY_AREA, unlike)
        place = {"x": 440, "y": desktop.height - 110}
        application = Application(desktop, POPOVER_PRICES, addedCoins=POPOVER_COINS, desktopOverlayEnabled=True,
                                  desktopOverlayBackgroundOpacity=0.85, desktopOverlayTopLeft=place)
        application.wait_for_content(text="BTC 67,432")
        with open(path, "wb") as file:
            picture = settled_crop(desktop, OVERLAY_AREA, unlike)
            file.write(convert("png:-", "+dither", "-colors", "255", "PNG8:-", data=picture))


def picture_of_settings(path):
    """The watchlist's tab, on a desktop in use."""
    with FurnishedSession() as desktop:
        for note in desktop.processes("note"):
            desktop.stop_process(note)
        alerts = [coin("bitcoin", "above", 100000), coin("ethereum", "change", 3), coin("solana", "below", 120)]
        application = Application(desktop, POPOVER_PRICES, addedCoins=[*alerts, *POPOVER_COINS[3:]])
        application.wait_for_content(text="BTC 67,432")
        open_settings(desktop, "watchlist")
        wait_for_settings_on_x11(desktop)
        picture = settled_crop(desktop, (0, 0, desktop.width, SETTINGS_HEIGHT), [])
        with open(path, "wb") as file:
            file.write(convert("png:-", "+dither", "-colors", "255", "PNG8:-", data=picture))


SINGLE = {"alert": picture_of_alert, "overlay-xfce": picture_of_overlay, "settings-xfce": picture_of_settings}


def main():
    folder, *names = sys.argv[1:]
    for name in names or USUAL:
        path = os.path.join(folder, f"{name}.png")
        if name in SINGLE:
            SINGLE[name](path)
        elif name in POPOVERS:
            picture_of_popover(path, name)
        elif name == "widget":
            for scheme in ("light", "dark"):
                picture_of_widget(os.path.join(folder, f"widget-{scheme}.png"), scheme)
        else:
            picture_of_panel(os.path.join(folder, f"panel-{name}.png"), name)
        print(name, flush=True)


if __name__ == "__main__":
    main()
