#!/usr/bin/python3
"""Several outputs of one Wayland desktop: of different scale, and unplugged."""

import time
import unittest

from application import keep_picture
from desktop_session import NestedSwaySession, SwaySession
from overlay_test import HEIGHT, WIDTH, Overlay
from panel_pixels import GREEN, coloured
from popover_test import SAME_CLICK, popover, start, wait_for_its_end
from widget_test import Widget, is_green

SCALE = 2  # of the second output, which is as many points large as the first


class ScaleTest(unittest.TestCase):
    """HEADLESS-1 of usual and HEADLESS-2, at its right, of double scale."""

    def start_session(self):
        desktop = SwaySession("waybar", notifications=None, width=800, height=500).start()
        self.addCleanup(desktop.stop)
        desktop.add_output(f"mode {SCALE * desktop.width}x{SCALE * desktop.height}", f"scale {SCALE}")
        return desktop

    def check_is_sharp(self, desktop, box):
        """What is drawn with too few pixels is enlarged, so that every point is one color. The box is in points."""
        left, top, width, height = box[0] - desktop.width, *box[1:]
        picture = desktop.picture_of("HEADLESS-2")
        points = ((SCALE * x, SCALE * y) for y in range(top, top + height) for x in range(left, left + width))
        enlarged = all(picture.at(x, y) == picture.at(x + 1, y) == picture.at(x, y + 1) for x, y in points)
        self.assertFalse(enlarged, f"{box} is not sharp")

    def check_popover(self, desktop, application, left):
        """Clicks the item in the bar of the output that begins at `left`. Returns the popover's place."""
        right = left + desktop.width
        place = self.open_popover(desktop, application, left)
        self.assertEqual(place[2:], [320, 298])
        self.assertTrue(30 <= place[1] < 40 and right - 330 <= place[0] <= right - 320, place)
        prices = [SCALE * each for each in (place[0] + 160, place[1] + 52, 160, 52)]
        green = coloured(GREEN)
        desktop.wait_for(lambda: any(map(green, desktop.picture().colours(*prices))), what="the price at its place")
        return place

    def open_popover(self, desktop, application, left):
        """A compositor that is slow to tell which output was clicked has the popover on the focused one: one of three counts."""
        for _ in range(3):
            desktop.click(left + desktop.width - 30, 15)
            place = desktop.wait_for(lambda: popover(application), what="the popover")["place"]
            if left <= place[0] < left + desktop.width:
                break
            self.click_until_closed(desktop, application, (left + 300, 400))
            time.sleep(SAME_CLICK)
        return place

    def test_popover_opens_on_the_output_of_the_bar(self):
        desktop = self.start_session()
        application = start(desktop)
        for left, other in ((0, desktop.width), (desktop.width, 0)):
            desktop.wait_for(lambda left=left: self.shows_item(desktop, left), what="the item in the bar")
            time.sleep(SAME_CLICK)
            place = self.check_popover(desktop, application, left)
            keep_picture(desktop, f"outputs-popover-{left}.png")
            if left > 0:
                self.check_is_sharp(desktop, place)
            self.click_until_closed(desktop, application, (other + 300, 400))

    def shows_item(self, desktop, left):
        right = SCALE * (left + desktop.width)
        green = coloured(GREEN)
        return any(map(green, desktop.picture().colours(right - 200, 0, 200, SCALE * 30)))

    def click_until_closed(self, desktop, application, place):
        """The other outputs are watched from the time on when the popover knows its own."""
        def closed():
            desktop.click(*place)
            return popover(application) is None
        desktop.wait_for(closed, what="the popover's end")

    def test_overlay_is_sharp_where_it_is_dragged(self):
        desktop = self.start_session()
        overlay = Overlay(desktop, desktopOverlayTopLeft={"x": 300, "y": 300})
        overlay.wait_until_at(300, 200, scale=SCALE)
        overlay.begin_adjusting()
        overlay.move_until_at(lambda: desktop.drag((330, 212), (1030, 312)), (300, 200), (1000, 300), SCALE)
        desktop.press_key("Return")
        overlay.wait_until_saved(1000, 200)
        overlay.wait_until_left()
        overlay.wait_until_at(1000, 300, scale=SCALE)
        keep_picture(desktop, "outputs-overlay.png")
        self.check_is_sharp(desktop, (1000, 300, WIDTH, HEIGHT))

    def test_overlay_stays_where_it_is_when_its_output_grows(self):
        desktop = self.start_session()
        overlay = Overlay(desktop, desktopOverlayTopLeft={"x": 1000, "y": 300})
        overlay.wait_until_at(1000, 200, scale=SCALE)
        desktop.message("output HEADLESS-2 mode 1600x1200")
        desktop.wait_for(lambda: desktop.picture().height == 1200, what="the larger output")
        overlay.wait_until_at(1000, 200, scale=SCALE)


class UnpluggedTest(unittest.TestCase):
    def test_overlay_that_is_being_moved(self):
        with NestedSwaySession(notifications=None) as desktop:
            overlay = Overlay(desktop, desktopOverlayTopLeft={"x": 1500, "y": 500})
            overlay.wait_until_at(1500, 300)
            overlay.begin_adjusting()
            desktop.unplug("WL-2")
            at_the_edge = desktop.width - WIDTH
            overlay.wait_until_at(at_the_edge, 300)
            self.assertTrue(overlay.is_adjusting())
            overlay.move_until_at(lambda: desktop.press_key("shift+Left"), (at_the_edge, 300), (at_the_edge - 24, 300))
            desktop.press_key("Escape")
            overlay.wait_until_left()
            overlay.wait_until_at(at_the_edge, 300)
            self.assertEqual(overlay.saved(), (1500, 500))
            desktop.add_output()
            overlay.wait_until_at(1500, 300)
            self.assertEqual(overlay.application.stop(), 0)

    def test_the_only_output(self):
        with NestedSwaySession(notifications=None) as desktop:
            overlay = Overlay(desktop, desktopOverlayTopLeft={"x": 100, "y": 500})
            overlay.wait_until_at(100, 300)
            widget = Widget(desktop)
            widget.wait_for_color(is_green, desktop.width - 400, 0)
            for name in ("WL-2", "WL-1"):
                desktop.unplug(name)
            overlay.application.poll()
            desktop.add_output()
            overlay.wait_until_at(100, 300)
            widget.wait_for_color(is_green, desktop.width - 400, 0)
            self.assertEqual(overlay.application.stop(), 0)
            self.assertEqual(widget.stop(), 0)

    def test_popover_that_is_open(self):
        with NestedSwaySession(notifications=None) as desktop:
            application = start(desktop)
            desktop.message("focus output WL-2")
            application.open_popover()
            desktop.wait_for(lambda: popover(application), what="the popover")
            desktop.unplug("WL-2")
            wait_for_its_end(desktop, application)
            application.open_popover()
            desktop.wait_for(lambda: popover(application), what="the popover")
            self.assertEqual(application.stop(), 0)


if __name__ == "__main__":
    unittest.main()
