#!/usr/bin/python3
"""A window on the desktop of real window managers and compositors: below every window, click-through, on every workspace."""

import os
import re
import unittest

from application import BUILD
from desktop_session import SwaySession, X11Session

PROBE = os.path.join(BUILD, "tests", "surface_probe")
COLOR = (200, 40, 180)
ORDINARY = (40, 120, 200)
PASSIVE = {"_NET_WM_STATE_BELOW", "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER"}
RAISED = {"_NET_WM_STATE_ABOVE", "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER"}
EVERY_WORKSPACE = "4294967295"


class Probe:
    """surface_probe, commanded; see surface_probe.cpp."""

    def __init__(self, desktop, *arguments, env=None):
        self.desktop = desktop
        self.process = desktop.run(PROBE, arguments, env)
        self.wait_for(1, "ready")

    def tell(self, *words):
        self.process.write_line(" ".join(map(str, words)))

    def count(self, event):
        return len(re.findall(f"^{event}$", self.process.output(), re.MULTILINE))

    def wait_for(self, count, event):
        """Waits until a line that matches was printed so often."""
        self.desktop.wait_for(lambda: self.count(event) >= count, what=f"{count} x {event}")

    def ask(self, question):
        """The words of the answer."""
        before = self.count(f"{question} .*")
        self.tell(question)
        self.wait_for(before + 1, f"{question} .*")
        return re.findall(f"^{question} (.*)$", self.process.output(), re.MULTILINE)[-1].split()

    def frame(self):
        return tuple(map(int, self.ask("frame")[0].split(",")))

    def show(self, *frame):
        """Shows it and waits until it is on the screen."""
        self.tell("show", *frame)
        left, top, width, height = frame
        self.wait_for_color(left + width - 5, top + height - 5)

    def wait_for_color(self, x, y, color=COLOR):
        self.desktop.wait_for(lambda: self.desktop.picture().at(x, y) == color, what=f"the window at {x}, {y}")

    def click_until(self, x, y, event):
        """Clicks until the window has noticed it: managers take notice of a new window in their own time."""
        before = self.count(event)

        def clicked():
            self.desktop.click(x, y)
            return self.count(event) > before
        self.desktop.wait_for(clicked, what=event)


class SurfaceChecks:
    """What holds on every desktop."""

    def make_session(self):
        raise NotImplementedError

    def drag(self, desktop, start, end):
        raise NotImplementedError

    def check_clicks_pass_through(self):
        with self.make_session() as desktop:
            lower = Probe(desktop, "takes-input")
            lower.show(300, 200, 200, 100)
            lower.click_until(350, 250, "pressed 50 50")
            upper = Probe(desktop)
            upper.show(300, 200, 220, 120)
            lower.click_until(350, 250, "pressed 50 50")
            before = upper.count("pressed .*")  # clicks from before the window manager has noticed it
            lower.click_until(350, 250, "pressed 50 50")
            self.assertEqual(upper.count("pressed .*"), before)

    def check_is_below_windows(self):
        with self.make_session() as desktop:
            probe = Probe(desktop)
            probe.show(300, 200, 200, 100)
            ordinary = Probe(desktop, "ordinary")
            ordinary.tell("show", 250, 150, 400, 300)
            shared = (480, 290)
            ordinary.wait_for_color(*shared, ORDINARY)
            ordinary.click_until(350, 250, "pressed .*")
            probe.tell("interactive")
            probe.wait_for_color(*shared)
            probe.tell("passive")
            ordinary.wait_for_color(*shared, ORDINARY)
            ordinary.click_until(350, 250, "pressed .*")

    def check_interaction(self):
        with self.make_session() as desktop:
            probe = Probe(desktop)
            probe.show(300, 200, 200, 100)
            probe.tell("interactive")
            probe.click_until(350, 250, "pressed 50 50")

            def typed():
                desktop.type_text("x")
                return probe.count("key x") > 0
            desktop.wait_for(typed, what="the keyboard")
            self.drag(desktop, (350, 250), (450, 350))
            probe.wait_for_color(595, 395)
            self.assertEqual(probe.frame(), (400, 300, 200, 100))
            self.assertNotEqual(desktop.picture().at(305, 205), COLOR)
            below = Probe(desktop, "takes-input")
            below.show(400, 300, 200, 100)
            probe.tell("passive")
            below.click_until(450, 350, "pressed 50 50")
            desktop.type_text("y")
            below.click_until(450, 350, "pressed 50 50")
            self.assertEqual(probe.count("key y"), 0)

    def check_shows_again(self):
        with self.make_session() as desktop:
            probe = Probe(desktop)
            for round_ in range(3):
                probe.show(300 + 20 * round_, 200, 200, 100)
                probe.tell("place", 320, 260, 240, 60)
                probe.wait_for_color(555, 315)
                probe.tell("hide")
                desktop.wait_for(lambda: desktop.picture().at(555, 315) != COLOR, what="its end")


def drag_on_x11(desktop, start, end):
    """With the left button from one place to the other."""
    middle = [(a + b) // 2 for a, b in zip(start, end)]
    desktop.tool(["xdotool", "mousemove", *map(str, start), "mousedown", "1", "mousemove", *map(str, middle),
                  "mousemove", *map(str, end), "mouseup", "1"])


class X11Checks(SurfaceChecks):
    """What holds under every window manager."""

    def drag(self, desktop, start, end):
        drag_on_x11(desktop, start, end)

    def properties(self, desktop):
        """The states and the workspace of the probe's window, and its place among the windows from below."""
        windows = desktop.windows("surface_probe")
        if len(windows) != 1:
            return None
        text = desktop.tool(["xprop", "-id", str(windows[0]), "_NET_WM_STATE", "_NET_WM_DESKTOP"]).decode()
        return set(re.findall(r"_NET_WM_STATE_\w+", text)), text.rpartition("=")[2].strip()

    def check_hints(self):
        with self.make_session() as desktop:
            probe = Probe(desktop)
            probe.show(300, 200, 200, 100)
            for command, expected in ((None, PASSIVE), ("interactive", RAISED), ("passive", PASSIVE)):
                if command:
                    probe.tell(command)

                def has_hints():
                    states, workspace = self.properties(desktop) or (set(), "")
                    return expected <= states and workspace == EVERY_WORKSPACE
                desktop.wait_for(has_hints, what=f"{expected} of the window")
                self.assertEqual(desktop.window_geometry(desktop.windows("surface_probe")[0]), (300, 200, 200, 100))


class OpenboxTest(X11Checks, unittest.TestCase):
    def make_session(self):
        return X11Session(None, "openbox", notifications=None)

    def test_clicks_pass_through(self):
        self.check_clicks_pass_through()

    def test_is_below_windows(self):
        self.check_is_below_windows()

    def test_interaction(self):
        self.check_interaction()

    def test_shows_again(self):
        self.check_shows_again()

    def test_hints(self):
        self.check_hints()


class XfwmTest(X11Checks, unittest.TestCase):
    def make_session(self):
        return X11Session(None, "xfwm4", notifications=None)

    def test_clicks_pass_through(self):
        self.check_clicks_pass_through()

    def test_is_below_windows(self):
        self.check_is_below_windows()

    def test_interaction(self):
        self.check_interaction()

    def test_hints(self):
        self.check_hints()


class SwayTest(SurfaceChecks, unittest.TestCase):
    def make_session(self):
        return SwaySession("waybar", notifications=None)

    def drag(self, desktop, start, end):
        desktop.drag(start, end)

    def test_clicks_pass_through(self):
        self.check_clicks_pass_through()

    def test_is_below_windows(self):
        self.check_is_below_windows()

    def test_interaction(self):
        self.check_interaction()

    def test_shows_again(self):
        self.check_shows_again()

    def test_keeps_out_of_the_bar(self):
        with self.make_session() as desktop:
            probe = Probe(desktop)
            desktop.wait_for(lambda: probe.ask("screens") == ["800", "0,30,1280,770"], what="the bar")
            probe.show(0, 30, 100, 50)
            self.assertEqual(desktop.picture().at(0, 30), COLOR)
            self.assertNotEqual(desktop.picture().at(0, 29), COLOR)
            desktop.stop_panel()
            desktop.wait_for(lambda: probe.ask("screens") == ["800", "0,0,1280,800"], what="the end of the bar")
            self.assertEqual(probe.frame(), (0, 30, 100, 50))
            self.assertEqual(desktop.picture().at(0, 30), COLOR)

    def test_is_unavailable_through_xwayland(self):
        with self.make_session() as desktop:
            process = desktop.run(PROBE, env={"QT_QPA_PLATFORM": "xcb"})
            desktop.wait_for(lambda: "unavailable" in process.output(), what="the answer")
            self.assertEqual(process.wait(), 0)


if __name__ == "__main__":
    unittest.main()
