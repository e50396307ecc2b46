#!/usr/bin/python3
"""Runs the demo on a private virtual desktop, prints what the panel shows as prices move, opens the popover and the
watchlist, and leaves screenshots.

Usage: show_demo.py PROGRAM FOLDER"""
import os
import sys

from accessible_tree import AccessibleTree
from application import Texts
from furnished_session import FurnishedSession

SHOWN = 8
IDENTIFIER = "com.pelmo.tickwise.demo"
PROGRAM = "tickwise-demo"
TEXTS = Texts("en")


class Show:
    """The demo and what is done with it."""

    def __init__(self, desktop, tree, demo, folder):
        self._desktop = desktop
        self._tree = tree
        self._demo = demo
        self._folder = folder

    def prices(self):
        print("XFCE's panel on a virtual X server shows:", flush=True)
        for count in range(1, SHOWN + 1):
            lines = self._desktop.wait_for(lambda: self._lines(count), timeout=60, what=f"price {count} in the panel")
            print("   ", lines[count - 1], flush=True)
        self._keep("panel.png")

    def popover(self):
        self._call("Activate", "(a{sv})", ({},))
        self._tree.wait_for(PROGRAM, TEXTS.text("popover.watchlist"), "list")
        self._keep("popover.png")
        self._desktop.press_key("Escape")

    def drag(self):
        self._call("ActivateAction", "(sava{sv})", ("watchlist", [], {}))
        handle = self._tree.wait_for(PROGRAM, TEXTS.text("a11y.reorder", "Bitcoin"))
        self._keep("watchlist.png")
        x, y = handle.middle()
        self._desktop.drag(x, y, [(x, y + distance) for distance in (4, 20, 40, 60)])
        self._keep("drag.png")
        self._desktop.drop()

    def search(self):
        self._tree.wait_for(PROGRAM, TEXTS.text("watchlist.addCoin"), "push button").press()
        self._tree.wait_for(PROGRAM, TEXTS.text("watchlist.search.placeholder"), "text")
        self._desktop.type_text("bit")
        self._desktop.press_key("Down")
        self._keep("search.png")

    def _lines(self, count):
        """The lines that the demo has printed of its status item, once there are that many."""
        if not self._demo.is_running():
            sys.exit(f"the demo ended: {self._demo.log()}")
        lines = self._demo.output().splitlines()
        return lines if len(lines) >= count else None

    def _call(self, method, signature, arguments):
        path = "/" + IDENTIFIER.replace(".", "/")
        self._desktop.bus.call(IDENTIFIER, path, "org.freedesktop.Application", method, signature, arguments)

    def _keep(self, name):
        path = self._desktop.settled_screenshot(os.path.join(self._folder, name))
        print("    screenshot:", os.path.relpath(path), flush=True)


def main():
    program, folder = sys.argv[1:]
    os.makedirs(folder, exist_ok=True)
    with FurnishedSession() as desktop:
        tree = AccessibleTree(desktop)
        demo = desktop.run(program, env=tree.environment)
        show = Show(desktop, tree, demo, folder)
        for scene in (show.prices, show.popover, show.drag, show.search):
            scene()
        code = desktop.stop_process(demo)
    if code != 0:
        sys.exit(f"the demo ended with {code}")


if __name__ == "__main__":
    main()
