#!/usr/bin/python3
"""Runs the demo on a private virtual desktop, prints what the panel shows as prices move, and leaves screenshots.

Usage: show_demo.py PROGRAM FOLDER"""
import os
import sys

from desktop_session import X11Session

SHOWN = 8


def main():
    program, folder = sys.argv[1:]
    os.makedirs(folder, exist_ok=True)
    with X11Session() as desktop:
        demo = desktop.run(program)
        print("XFCE's panel on a virtual X server shows:", flush=True)
        for count in range(1, SHOWN + 1):
            lines = desktop.wait_for(lambda: prices(demo, count), timeout=60, what=f"price {count} in the panel")
            print("   ", lines[count - 1], flush=True)
            if count in (1, SHOWN):
                path = desktop.screenshot(os.path.join(folder, f"panel-{'first' if count == 1 else 'last'}.png"))
                print("    screenshot:", os.path.relpath(path), flush=True)
        code = desktop.stop_process(demo)
    if code != 0:
        sys.exit(f"the demo ended with {code}")


def prices(demo, count):
    """The lines that the demo has printed of its status item, once there are that many."""
    if not demo.is_running():
        sys.exit(f"the demo ended: {demo.log()}")
    lines = demo.output().splitlines()
    return lines if len(lines) >= count else None


if __name__ == "__main__":
    main()
