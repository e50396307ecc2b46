#!/usr/bin/python3
"""Measures the whole application on a private desktop, next to floors measured in the same run. Prints a table.

Usage: whole_process.py DIRECTORY-WITH-THE-BENCH-PROGRAMS
"""
import json
import os
import re
import resource
import statistics
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(ROOT, "tests", "desktop"))
from desktop_session import X11Session  # noqa: E402

OKX_LIST = os.path.join(ROOT, "tests", "data", "exchange", "generated", "okx_tickers_spot_full_synthetic.json")
CATALOG = os.path.join(ROOT, "Tickwise", "resources", "coins.json")
AUTHORITY = os.path.join(ROOT, "demo", "tls", "loopback-only-authority.pem")
WATCHLIST_LENGTH = 25
IDENTIFIER = "com.pelmo.tickwise.bench"
NO_POLLS = 3600  # seconds between polls: none but those that are asked for
STARTS = 15
POLLS = 200
ROUNDS = 7
IDLE_SECONDS = 20
SETTLE_SECONDS = 8  # until the application has trimmed its heap after the start
LIBRARIES = 15  # rows of the list of what each mapped file costs


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def watchlist():
    """Catalog coins that the list has: a poll is then one request."""
    listed = {ticker["instId"] for ticker in json.loads(read(OKX_LIST))["data"]}
    coins = [coin["id"] for coin in json.loads(read(CATALOG))["coins"]
             if coin["status"] == "active" and f"{coin['symbol']}-USDT" in listed]
    return coins[:WATCHLIST_LENGTH]


def wait_for_line(desktop, process, word, count=1):
    """The fields after the word in the count-th line that starts with it."""
    def fields():
        lines = re.findall(rf"^{word} (.+)\n", process.output(), re.MULTILINE)
        return len(lines) >= count and lines[count - 1].split()
    return desktop.wait_for(fields, 60, f"a line {word}")


class Memory:
    """What a process holds, in kilobytes: anonymous pages, which only it has, and its proportional share of all its pages."""

    def __init__(self, pid):
        rollup = read(f"/proc/{pid}/smaps_rollup")
        self.anonymous = _kilobytes("Anonymous", rollup)
        self.pss = _kilobytes("Pss", rollup)
        self.pss_of_files = {}
        file = None
        for line in read(f"/proc/{pid}/smaps").splitlines():
            fields = line.split()
            if not fields[0].endswith(":"):
                file = os.path.basename(fields[5]) if len(fields) > 5 and fields[5].startswith("/") else None
            elif file and fields[0] == "Pss:":
                self.pss_of_files[file] = self.pss_of_files.get(file, 0) + int(fields[1])

    def largest_files(self, count):
        """Pairs of a mapped file's name and its kilobytes of PSS, largest first."""
        return sorted(self.pss_of_files.items(), key=lambda item: -item[1])[:count]


def _kilobytes(field, text):
    return int(re.search(rf"^{field}: +([0-9]+)", text, re.MULTILINE).group(1))


def wakeups(pid):
    total = 0
    for thread in os.listdir(f"/proc/{pid}/task"):
        status = read(f"/proc/{pid}/task/{thread}/status")
        total += int(re.search(r"^voluntary_ctxt_switches:\s+([0-9]+)", status, re.MULTILINE).group(1))
    return total


class Market:
    """The market's process and its endpoints."""

    def __init__(self, desktop, programs, *arguments):
        self._process = desktop.run(os.path.join(programs, "market_server"), arguments)
        desktop.wait_for(lambda: "\n" in self._process.output(), what="the market's endpoints")
        self.endpoints = json.loads(self._process.output())
        self.okx_url = self.endpoints["okx"] + "/api/v5/market/tickers?instType=SPOT"

    def stop(self):
        self._process.close_input()
        self._process.wait()


def start_application(desktop, programs, endpoints):
    """The process and when it was started (seconds of the monotonic clock)."""
    begin = time.monotonic()
    process = desktop.run(os.path.join(programs, "bench_application"))
    line = {"endpoints": endpoints, "authorities": read(AUTHORITY), "coins": watchlist(), "pollingInterval": NO_POLLS}
    process.write_line(json.dumps(line))
    return process, begin


def start_empty(desktop, programs):
    begin = time.monotonic()
    return desktop.run(os.path.join(programs, "empty_tray")), begin


def seconds_to_line(desktop, start, word):
    """From one start to the line."""
    process, begin = start()
    seconds = float(wait_for_line(desktop, process, word)[0]) - begin
    time.sleep(0.3)
    desktop.stop_process(process)
    return seconds


def run_curl(url, count):
    """CPU seconds of one curl that fetches the address so many times on one connection, and seconds of its first fetch."""
    command = ["curl", "--silent", "--http1.1", "--compressed", "--cacert", AUTHORITY,
               "--write-out", "%{num_connects} %{time_total}\n"]
    command += ["--output", "/dev/null", url] * count
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    done = subprocess.run(command, capture_output=True, text=True, check=True)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    lines = [line.split() for line in done.stdout.splitlines()]
    if len(lines) != count or sum(int(connects) for connects, _ in lines) != 1:
        raise RuntimeError("curl did not keep its connection")
    cpu = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    return cpu, float(lines[0][1])


def curl_seconds_per_fetch(url):
    few, many = 20, 20 + POLLS * 2
    return (run_curl(url, many)[0] - run_curl(url, few)[0]) / (many - few)


def json_seconds(programs):
    return float(subprocess.run([os.path.join(programs, "json_floor"), OKX_LIST, "2000"], capture_output=True, text=True,
                                check=True).stdout)


def poll_seconds(desktop, process):
    """CPU of the application a poll."""
    already = len(re.findall(r"^polls ", process.output(), re.MULTILINE))
    process.write_line(f"polls {POLLS}")
    return float(wait_for_line(desktop, process, "polls", already + 1)[1]) / POLLS


def count_wakeups(process):
    before = wakeups(process.pid)
    time.sleep(IDLE_SECONDS)
    return wakeups(process.pid) - before


def run_polls(desktop, process, count):
    process.write_line(f"polls {count}")
    wait_for_line(desktop, process, "polls")
    time.sleep(1)


def measure_poll(desktop, programs, *form):
    """Seconds of CPU: a poll, curl's fetch of the same list, simdjson's parse of it. Each the best of rounds in which
    they take turns, as other work on the machine only adds."""
    market = Market(desktop, programs, OKX_LIST, *form)
    process, _ = start_application(desktop, programs, market.endpoints)
    wait_for_line(desktop, process, "content")
    rounds = [(poll_seconds(desktop, process), curl_seconds_per_fetch(market.okx_url), json_seconds(programs))
              for _ in range(ROUNDS)]
    desktop.stop_process(process)
    market.stop()
    return [min(samples) for samples in zip(*rounds)]


def measure_start(desktop, programs):
    """Seconds: from start to the first price, the empty program's start, the first round trip with its TLS handshake.
    Medians of starts that take turns."""
    market = Market(desktop, programs)
    rounds = [(seconds_to_line(desktop, lambda: start_application(desktop, programs, market.endpoints), "content"),
               seconds_to_line(desktop, lambda: start_empty(desktop, programs), "ready"),
               run_curl(market.okx_url, 1)[1])
              for _ in range(STARTS + 1)]
    market.stop()
    return [statistics.median(samples) for samples in zip(*rounds[1:])]  # the first warms the caches


def measure_idle(desktop, programs):
    """Wake-ups and memory after ten polls. The market ends first, which shares libraries with the application."""
    market = Market(desktop, programs, OKX_LIST)
    process, _ = start_application(desktop, programs, market.endpoints)
    wait_for_line(desktop, process, "content")
    time.sleep(SETTLE_SECONDS)
    run_polls(desktop, process, 10)
    count = count_wakeups(process)
    market.stop()
    time.sleep(1)
    memory = Memory(process.pid)
    desktop.stop_process(process)
    return count, memory


def call_application(desktop, method, signature, arguments):
    path = "/" + IDENTIFIER.replace(".", "/")
    desktop.bus.call(IDENTIFIER, path, "org.freedesktop.Application", method, signature, arguments)


def measure_surface(desktop, programs, show, hide):
    """Memory before the surface was shown for the first time, while it is shown, and after it was hidden."""
    market = Market(desktop, programs, OKX_LIST)
    process, _ = start_application(desktop, programs, market.endpoints)
    wait_for_line(desktop, process, "content")
    time.sleep(SETTLE_SECONDS)
    run_polls(desktop, process, 10)
    market.stop()
    time.sleep(1)
    memories = [Memory(process.pid)]
    show(process)
    time.sleep(2)
    memories.append(Memory(process.pid))
    hide(process)
    time.sleep(SETTLE_SECONDS)
    memories.append(Memory(process.pid))
    desktop.stop_process(process)
    return memories


def measure_popover(desktop, programs):
    return measure_surface(desktop, programs, lambda _: call_application(desktop, "Activate", "(a{sv})", ({},)),
                           lambda _: desktop.press_key("Escape"))


def measure_overlay(desktop, programs):
    return measure_surface(desktop, programs, lambda process: process.write_line("overlay 1"),
                           lambda process: process.write_line("overlay 0"))


def measure_empty(desktop, programs):
    process, _ = start_empty(desktop, programs)
    wait_for_line(desktop, process, "ready")
    time.sleep(3)
    memory = Memory(process.pid)
    desktop.stop_process(process)
    return memory


def print_row(name, value, floor, budget, detail=""):
    limit = f"{budget:8.2f}" if budget else " " * 8
    print(f"{name:34}{value:10.2f}{floor:10.2f}{value / floor:8.2f}{limit}  {detail}", flush=True)


def print_memory(memory, floor):
    print_row("anonymous memory, MB", memory.anonymous / 1024, floor.anonymous / 1024, 2.8, "empty program, after ten polls")
    print_row("PSS, MB", memory.pss / 1024, floor.pss / 1024, None, "empty program, after ten polls")
    for name, kilobytes in memory.largest_files(LIBRARIES):
        print(f"  {name:32}{kilobytes / 1024:10.2f}{floor.pss_of_files.get(name, 0) / 1024:10.2f}")


def print_surface(surface, memories):
    for moment, memory in zip(("never opened", "open", "closed"), memories):
        print(f"{f'{surface} {moment}: anonymous, PSS, MB':44}{memory.anonymous / 1024:10.2f}{memory.pss / 1024:10.2f}", flush=True)


def measure(desktop, programs):
    print(f"{'':34}{'measured':>10}{'floor':>10}{'ratio':>8}{'budget':>8}  floor's parts")
    for name, form in (("CPU of a poll, ms", ()), ("CPU of a poll, compressed, ms", ("gzip",))):
        poll, fetch, parse = measure_poll(desktop, programs, *form)
        print_row(name, poll * 1000, (fetch + parse) * 1000, 2.0, f"curl {fetch * 1000:.3f}, simdjson {parse * 1000:.3f}")
    content, ready, trip = measure_start(desktop, programs)
    print_row("start to the first price, ms", content * 1000, (ready + trip) * 1000, 1.5,
              f"empty program {ready * 1000:.1f}, first round trip {trip * 1000:.1f}")
    count, memory = measure_idle(desktop, programs)
    print_memory(memory, measure_empty(desktop, programs))
    print_surface("popover", measure_popover(desktop, programs))
    print_surface("overlay", measure_overlay(desktop, programs))
    print(f"{f'wake-ups in {IDLE_SECONDS} idle seconds':34}{count:10}{0:10}")


def main():
    with X11Session(panel="xfce4-panel") as desktop:
        measure(desktop, os.path.abspath(sys.argv[1]))


if __name__ == "__main__":
    main()
