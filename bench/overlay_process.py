#!/usr/bin/python3
"""Measures what repainting the desktop overlay costs in ten minutes of price updates, next to an empty translucent window that
is repainted as often, and what a poll costs while the overlay, the widget and the popover show its prices. Prints tables.

Usage: overlay_process.py DIRECTORY-WITH-THE-BENCH-PROGRAMS
"""
import os
import re
import statistics
import subprocess
import sys
import time

from whole_process import (OKX_LIST, SETTLE_SECONDS, Market, X11Session, call_application, print_row, read,
                           start_application, wait_for_line)

ROUNDS = 9
SURFACE_ROUNDS = 3
COINS = (2, 8, 25)
BUDGET = 2.0
POLLS = 12
POLL_PAUSE = 1300  # milliseconds: the application writes the file of the widget a second after a poll
SURFACES_BUDGET = 3.0
GROUPS = ("group.com.pelmo.tickwise.bench", "group.com.pelmo.tickwise")  # the application's, the widget's


def tick_seconds(desktop, programs, subject, coins):
    """CPU seconds of ten minutes of ticks."""
    done = subprocess.run([os.path.join(programs, "overlay_ticks"), subject, str(coins)], env=desktop.environment,
                          capture_output=True, text=True, check=True)
    return float(done.stdout.split()[0])


def measure_ticks(desktop, programs):
    """Medians of rounds in which overlay and floor take turns."""
    for coins in COINS:
        subjects = ("empty", "backdrop", "halos")
        rounds = [[tick_seconds(desktop, programs, subject, coins) for subject in subjects] for _ in range(ROUNDS)]
        empty, backdrop, halos = (statistics.median(samples) * 1000 for samples in zip(*rounds))
        print_row(f"{coins} coins on the backdrop, ms", backdrop, empty, BUDGET)
        print_row(f"{coins} coins with halos, ms", halos, empty, BUDGET)


def share_the_container(desktop):
    """Lets the widget read what the application writes."""
    data = desktop.environment["XDG_DATA_HOME"]
    os.makedirs(os.path.join(data, GROUPS[0]), mode=0o700, exist_ok=True)
    os.symlink(GROUPS[0], os.path.join(data, GROUPS[1]))


def cpu_seconds(pid):
    """Of all threads that live."""
    threads = os.listdir(f"/proc/{pid}/task")
    return sum(int(read(f"/proc/{pid}/task/{thread}/schedstat").split()[0]) for thread in threads) / 1e9


class Polls:
    """Polls of the application, one after the other with a pause between them."""

    def __init__(self, desktop, programs, market):
        self._desktop = desktop
        self._programs = programs
        self.application, _ = start_application(desktop, programs, market.endpoints)
        wait_for_line(desktop, self.application, "content")
        time.sleep(SETTLE_SECONDS)
        self._widget = None

    def show(self):
        self.application.write_line("overlay 1")
        call_application(self._desktop, "Activate", "(a{sv})", ({},))
        self._widget = self._desktop.run(os.path.join(self._programs, "bench_widget"))
        wait_for_line(self._desktop, self._widget, "painted")
        self._desktop.wait_for(lambda: len(self._desktop.windows("[Tt]ickwise")) >= 3, what="the three surfaces")
        time.sleep(3)  # until all have painted, and the widget has trimmed its heap

    def hide(self):
        self.application.write_line("overlay 0")
        self._desktop.press_key("Escape")
        self._desktop.stop_process(self._widget)
        self._widget = None
        time.sleep(1)

    def measure(self):
        """CPU seconds a poll, of the application and of the widget."""
        already = len(re.findall(r"^polls ", self.application.output(), re.MULTILINE))
        before = cpu_seconds(self._widget.pid) if self._widget else 0
        self.application.write_line(f"polls {POLLS} {POLL_PAUSE}")
        seconds = float(wait_for_line(self._desktop, self.application, "polls", already + 1)[1])
        widget = cpu_seconds(self._widget.pid) - before if self._widget else 0
        return seconds / POLLS, widget / POLLS


def measure_surfaces(desktop, programs):
    share_the_container(desktop)
    market = Market(desktop, programs, OKX_LIST)
    polls = Polls(desktop, programs, market)
    rounds = []
    for _ in range(SURFACE_ROUNDS):
        none, _ = polls.measure()
        polls.show()
        rounds.append((none, *polls.measure()))
        polls.hide()
    none, application, widget = (statistics.median(samples) * 1000 for samples in zip(*rounds))
    print_row("a poll with all surfaces, ms", application + widget, none, SURFACES_BUDGET, "a poll with none")
    print_row("  the application's part", application, none, None)
    print_row("  the widget's part", widget, none, None)
    desktop.stop_process(polls.application)
    market.stop()


def main():
    programs = os.path.abspath(sys.argv[1])
    with X11Session(panel="xfce4-panel") as desktop:
        print(f"{'':34}{'measured':>10}{'floor':>10}{'ratio':>8}{'budget':>8}  floor: an empty window, ten minutes of ticks")
        measure_ticks(desktop, programs)
        measure_surfaces(desktop, programs)


if __name__ == "__main__":
    main()
