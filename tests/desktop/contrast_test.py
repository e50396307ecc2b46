#!/usr/bin/python3
"""Every text of every window has enough contrast, in light and in dark."""

import os
import time
import unittest

from accessible_tree import AccessibleTree
from application import BUILD, Application, Texts, coin, keep_picture
from color_schemes import use_dark_portal, use_scheme
from contrast import ENOUGH, Area, contrast, text_contrasts
from desktop_session import X11Session
from panel_pixels import GREEN, middle, wait_for_box
from settings_window import open_settings
from widget_test import snapshot, write_snapshot

ENGLISH = Texts("en")
DELISTED = [f"fault {exchange} missing:SOL" for exchange in ("binanceMain", "binanceData", "okx", "bybit")]
WHEEL_DOWN = 5
SAME_CLICK = 0.3  # seconds


WIDGET = os.path.join(BUILD, "tickwise-widget")


class Scene:
    """The application on a desktop whose scheme `use` sets, and how each surface is shown there."""

    def __init__(self, desktop, use):
        self.desktop = desktop
        self._tree = AccessibleTree(desktop)
        self._program = "app_probe"
        self._environment = {**self._tree.environment, **use(desktop)}
        self._application = Application(desktop, (("BTC", 67432.4, 1.5), ("ETH", 3188, -2)), env=self._environment,
                                        commands=["updater", *DELISTED], colorScheme="custom",
                                        addedCoins=[coin("bitcoin"), coin("ethereum"), coin("solana")])
        self._application.wait_for_content(text="BTC 67,432")
        self._item = middle(wait_for_box(desktop, GREEN, lambda box: box[2] > 40))

    def status_menu(self):
        menu = self.desktop.open_popup("app_probe", lambda: self.desktop.click(*self._item, button=3))
        return Area("status menu", self.desktop.window_geometry(menu))

    def popover(self):
        """The overlay's rows would pass for the popover's."""
        self._application.change_settings(desktopOverlayEnabled=False)
        title = ENGLISH.text("widget.list.title")
        self.desktop.wait_for(lambda: not any(node.name == title for node, _ in self.nodes()), what="the overlay's end")
        self.desktop.press_key("Escape")
        time.sleep(SAME_CLICK)
        self.desktop.click(*self._item)

    def hovered_row(self):
        """The row that has secondary text."""
        row = next(node for node, _ in self.nodes() if node.name.startswith("Solana") and node.role == "list item")
        self.desktop.move_pointer(*row.middle())

    def general(self):
        self.desktop.press_key("Escape")
        open_settings(self.desktop)

    def general_below(self):
        left, top, width, height = self.node(ENGLISH.text("window.settings.title")).extents()
        for _ in range(20):
            self.desktop.click(left + width - 60, top + height // 2, button=WHEEL_DOWN)

    def watchlist(self):
        self.node(ENGLISH.text("settings.tab.watchlist"), "page tab").press()

    def search(self):
        self.node(ENGLISH.text("watchlist.addCoin"), "push button").press()

    def hovered_result(self):
        panel = ENGLISH.text("watchlist.addCoin")
        row = next(node for node, _ in self.shown_nodes(panel, "Bitcoin, BTC") if node.name.startswith("Bitcoin, BTC"))
        self.desktop.move_pointer(*row.middle())

    def about(self):
        self.desktop.press_key("Escape")
        panel = ENGLISH.text("watchlist.addCoin")
        self.desktop.wait_for(lambda: not any(panel in {each.name for each in ancestors} for _, ancestors in self.nodes()),
                              what="the end of the search")
        self.node(ENGLISH.text("settings.tab.about"), "page tab").press()

    def overlay(self):
        self.desktop.press_key("Escape")
        self._application.change_settings(desktopOverlayEnabled=True)
        return self._list_area()

    def adjusting(self):
        """What lies on the list then."""
        self._application.tell("adjustOverlay")
        return [(self.node(ENGLISH.text(key)), []) for key in ("desktop.adjust.hint", "desktop.adjust.done")]

    def widget(self):
        self._application.stop()
        written = snapshot(1.5)
        written["quotes"].pop("solana")
        write_snapshot(self.desktop, written)
        self.desktop.run(WIDGET, env=self._environment)
        self._program = "tickwise-widget"
        return self._list_area()

    def _list_area(self):
        """The list draws more texts than it has rows."""
        return Area("widget list", self.node(ENGLISH.text("widget.list.title"), "list").extents())

    def node(self, name, role=None):
        """The node of that name, once it is there."""
        def found():
            return next((node for node, _ in self.nodes() if node.name == name and role in (None, node.role)), None)
        return self.desktop.wait_for(found, what=name)

    def nodes(self):
        return self._tree.nodes_with_ancestors(self._program, only_shown=True)

    def shown_nodes(self, root, text):
        """What is below the node of the name `root`, once the text is among it and shown."""
        def below():
            nodes = [(node, ancestors) for node, ancestors in self.nodes() if root in {each.name for each in ancestors}]
            return nodes if any(text in node.name for node, _ in nodes) else None
        return self.desktop.wait_for(below, what=f"{text} in {root}")

    def settled_picture(self):
        """The screen once it has stopped changing; a text cursor may blink."""
        seen = []

        def settled():
            seen.append(self.desktop.picture())
            return seen[-1] if len(seen) > 2 and any(seen[-1].same(each) for each in seen[-3:-1]) else None
        return self.desktop.wait_for(settled, what="a screen that stays")


# How a surface is shown, the node that contains it, and one of its texts; in the order in which they are shown. One that the
# tree lacks is the area that showing it returns.
SURFACES = (
    (Scene.status_menu, None, None),
    (Scene.overlay, None, None),
    (Scene.popover, "Tickwise", "Bitcoin, 67,432"),
    (Scene.hovered_row, "Tickwise", "Bitcoin, 67,432"),
    (Scene.general, ENGLISH.text("window.settings.title"), ENGLISH.text("general.launch.atLogin")),
    (Scene.general_below, ENGLISH.text("window.settings.title"), ENGLISH.text("general.language.label")),
    (Scene.watchlist, ENGLISH.text("window.settings.title"), ENGLISH.text("watchlist.recommended")),
    (Scene.search, ENGLISH.text("watchlist.addCoin"), "Bitcoin, BTC"),
    (Scene.hovered_result, ENGLISH.text("watchlist.addCoin"), "Bitcoin, BTC"),
    (Scene.about, ENGLISH.text("window.settings.title"), ENGLISH.text("about.section.updates")),
    (Scene.widget, None, None),
)


def is_dark(picture, node):
    """Whether most of the node is."""
    counts = picture.colours(*node.extents())
    return sum(max(counts, key=counts.get)) < 3 * 128


class ContrastTest(unittest.TestCase):
    def check(self, scheme, use):
        with X11Session("xfce4-panel", notifications=None) as desktop:
            scene = Scene(desktop, use)
            for show, root, text in SURFACES:
                area = show(scene)
                nodes = [(area, [])] if area else scene.shown_nodes(root, text)
                picture = scene.settled_picture()
                keep_picture(desktop, f"contrast-{scheme}-{show.__name__}.png")
                measured = text_contrasts(picture, nodes)
                with self.subTest(surface=show.__name__):
                    self.assertEqual(is_dark(picture, nodes[0][0]), scheme != "light")
                    self.assertGreater(len(measured), 2, "there is hardly a text")
                    poor = sorted({(round(value, 2), name, role) for value, name, role in measured if value < ENOUGH})
                    self.assertEqual(poor, [])

    def test_light(self):
        self.check("light", lambda desktop: use_scheme(desktop, "light"))

    def test_dark(self):
        self.check("dark", lambda desktop: use_scheme(desktop, "dark"))

    def test_dark_by_the_portal(self):
        self.check("dark-portal", use_dark_portal)

    def test_adjusting(self):
        for scheme in ("light", "dark"):
            with X11Session("xfce4-panel", notifications=None) as desktop, self.subTest(scheme=scheme):
                scene = Scene(desktop, lambda desktop: use_scheme(desktop, scheme))
                scene.overlay()
                controls = scene.adjusting()
                picture = scene.settled_picture()
                keep_picture(desktop, f"contrast-{scheme}-adjusting.png")
                measured = text_contrasts(picture, controls)
                self.assertEqual({name for _, name, _ in measured}, {node.name for node, _ in controls})
                self.assertEqual([row for row in measured if row[0] < ENOUGH], [])

    def test_measure(self):
        self.assertAlmostEqual(contrast((255, 255, 255), (0, 0, 0)), 21)
        self.assertAlmostEqual(contrast((119, 119, 119), (255, 255, 255)), 4.48, places=2)


if __name__ == "__main__":
    unittest.main()
