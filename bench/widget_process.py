#!/usr/bin/python3
"""Measures tickwise-widget on a private desktop, next to a plain window that draws as many rows of text. Prints a table.

Usage: widget_process.py DIRECTORY-WITH-THE-BENCH-PROGRAMS
"""
import json
import os
import statistics
import sys
import time

from whole_process import Memory, X11Session, print_row, seconds_to_line, wait_for_line

STARTS = 15
SETTLE_SECONDS = 5  # until the widget has trimmed its heap after the start
ROWS = 10
BUDGET = 1.5
COINS = ("bitcoin", "ethereum", "solana", "ripple", "dogecoin", "tron", "cardano", "chainlink", "litecoin", "sui")


def write_files(desktop):
    """A snapshot of ten coins, and the largest size."""
    snapshot = {"writtenAt": time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime()), "language": "en", "currency": "USD",
                "colorByChange": True, "upColorHex": "#2CBD84", "downColorHex": "#F6465D", "displayedCoinId": COINS[0],
                "watchlist": COINS[:ROWS],
                "quotes": {coin: {"price": 67432.4 / (place + 1), "change24hPercent": 1.5 - place}
                           for place, coin in enumerate(COINS)}}
    group = os.path.join(desktop.environment["XDG_DATA_HOME"], "group.com.pelmo.tickwise")
    desktop.write_file(os.path.join(group, "widget-snapshot.json"), json.dumps(snapshot))
    own = os.path.join(desktop.environment["XDG_CONFIG_HOME"], "com.pelmo.tickwise.widget")
    desktop.write_file(os.path.join(own, "widget.json"), '{"size": "large"}')


def start(desktop, programs, name):
    begin = time.monotonic()
    return desktop.run(os.path.join(programs, name)), begin


def measure_start(desktop, programs):
    """Seconds from start to the first painting, of the widget and of the floor: medians of starts that take turns."""
    rounds = [[seconds_to_line(desktop, lambda: start(desktop, programs, name), "painted")
               for name in ("bench_widget", "plain_window")] for _ in range(STARTS + 1)]
    return [statistics.median(samples) for samples in zip(*rounds[1:])]  # the first warms the caches


def measure_memory(desktop, programs):
    """Of the widget and of the floor, which run at the same time: what they share counts half for each."""
    processes = [start(desktop, programs, name)[0] for name in ("bench_widget", "plain_window")]
    for process in processes:
        wait_for_line(desktop, process, "painted")
    time.sleep(SETTLE_SECONDS)
    memories = [Memory(process.pid) for process in processes]
    for process in processes:
        desktop.stop_process(process)
    return memories


def measure(desktop, programs):
    write_files(desktop)
    print(f"{'':34}{'measured':>10}{'floor':>10}{'ratio':>8}{'budget':>8}  floor: a plain window with {ROWS} rows of text")
    widget, plain = measure_start(desktop, programs)
    print_row("start to the first painting, ms", widget * 1000, plain * 1000, BUDGET)
    widget, plain = measure_memory(desktop, programs)
    print_row("anonymous memory, MB", widget.anonymous / 1024, plain.anonymous / 1024, BUDGET)
    print_row("PSS, MB", widget.pss / 1024, plain.pss / 1024, BUDGET)
    for name, kilobytes in widget.largest_files(15):
        print(f"  {name:32}{kilobytes / 1024:10.2f}{plain.pss_of_files.get(name, 0) / 1024:10.2f}")


def main():
    with X11Session(panel=None, notifications=None) as desktop:
        measure(desktop, os.path.abspath(sys.argv[1]))


if __name__ == "__main__":
    main()
