"""The whole application in a desktop session, over a market of its own."""

import json
import os
import re
import xml.etree.ElementTree

BUILD = os.environ.get("TICKWISE_BUILD_DIR", "build/debug")
PROBE = os.path.join(BUILD, "tests", "app_probe")
IDENTIFIER = "com.pelmo.tickwise.probe"
NEVER = 3600  # seconds: the tests poll when they want prices
_RESOURCES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "Tickwise", "resources")


def coin(identifier, kind="change", threshold=2.0):
    """An entry of the watchlist."""
    return {"coinId": identifier, "alertKind": kind, "notificationThreshold": threshold}


class Application:
    """app_probe, commanded; see app_probe.cpp.

    prices: pairs of symbol and US dollars, or triples with the 24-hour change. `settings` are fields of the settings record;
    with stored=True the application starts with what is stored."""

    def __init__(self, desktop, prices=(("BTC", 67432.4, 1.5),), commands=(), env=None, stored=False, arguments=(),
                 **settings):
        self.desktop = desktop
        self._settings = {"language": "en", "pollingInterval": NEVER, "addedCoins": [coin("bitcoin")], **settings}
        self.process = desktop.run(PROBE, arguments, env=env)
        for price in prices:
            self.tell("price", *price)
        if not stored:
            self.tell("settings", json.dumps(self._settings))
        for command in commands:
            self.tell(command)
        self.tell("start")

    def tell(self, *words):
        self.process.write_line(" ".join(map(str, words)))

    def change_settings(self, **settings):
        self._settings.update(settings)
        self.tell("settings", json.dumps(self._settings))

    def events(self, kind):
        """What was printed of that kind so far, without the word itself."""
        output = self.process.output()
        found = re.findall(rf"^{kind}\b ?(.*)$", output, re.MULTILINE)
        return found if output.endswith("\n") else found[:-1]

    def wait_for_event(self, kind, count, timeout=10):
        self.desktop.wait_for(lambda: len(self.events(kind)) >= count, timeout, f"{kind} number {count}")
        return self.events(kind)[count - 1]

    def wait_for_polls(self, count):
        return self.wait_for_event("polled", count)

    def poll(self):
        """Polls once and returns the reason why it failed, or an empty text."""
        before = len(self.events("polled"))
        self.tell("poll")
        return self.wait_for_polls(before + 1)

    def set_price(self, symbol, usd, change=0):
        """Sets a price and polls it."""
        self.tell("price", symbol, usd, change)
        return self.poll()

    def open_popover(self):
        """Asks for it as a second start does."""
        self.desktop.bus.call(IDENTIFIER, "/" + IDENTIFIER.replace(".", "/"), "org.freedesktop.Application", "Activate",
                              "(a{sv})", ({},))

    def content(self):
        """What the status item shows."""
        contents = self.events("content")
        return json.loads(contents[-1]) if contents else {}

    def wait_for_content(self, **fields):
        """Waits until the status item's content has these fields."""
        def matches():
            content = self.content()
            return content if {**content, **fields} == content else None
        return self.desktop.wait_for(matches, what=f"{fields} in the status item")

    def all_windows(self):
        """The open windows: dictionaries with title, texts, and the buttons' places on the screen by text."""
        before = len(self.events("windows"))
        self.tell("windows")
        return json.loads(self.wait_for_event("windows", before + 1))

    def windows(self):
        """The open windows that say something."""
        return [window for window in self.all_windows() if window["texts"]]

    def window_with_button(self, text):
        """The open window that has the button, or None."""
        return next((window for window in self.all_windows() if text in window["buttons"]), None)

    def wait_for_window_text(self, text):
        """The window that shows the text."""
        def shown():
            return next((window for window in self.windows() if text in window["texts"]), None)
        return self.desktop.wait_for(shown, what=f"a window with {text!r}")

    def log_lines(self, text):
        """The lines on its standard error that contain the text."""
        return [line for line in self.process.errors().splitlines() if text in line]

    def stop(self):
        """Asks it to end and returns its exit code."""
        return self.desktop.stop_process(self.process)


def settings_file(desktop):
    return os.path.join(desktop.environment["XDG_CONFIG_HOME"], IDENTIFIER, "appSettings.json")


def container(desktop):
    return os.path.join(desktop.environment["XDG_DATA_HOME"], "group.com.pelmo.tickwise.probe")


def read(path):
    """The text of a file, or None."""
    try:
        with open(path, encoding="utf-8") as file:
            return file.read()
    except FileNotFoundError:
        return None


def wait_for_saved(desktop, text):
    """Waits until the settings file contains the text: a change is shown first, then saved."""
    desktop.wait_for(lambda: text in (read(settings_file(desktop)) or ""), what=f"{text} in the settings file")


def keep_picture(desktop, name):
    """Leaves a picture of the screen for whoever wants to see what the tests saw."""
    folder = os.path.join(os.path.dirname(os.path.abspath(BUILD)), "pictures")
    os.makedirs(folder, exist_ok=True)
    return desktop.screenshot(os.path.join(folder, name))


class Texts:
    """The texts of one language, as its table has them."""

    def __init__(self, language):
        table = xml.etree.ElementTree.parse(os.path.join(_RESOURCES, f"{language}.lproj", "Localizable.ts"))
        self._texts = {message.get("id"): message.findtext("translation") for message in table.iter("message")}

    def text(self, key, *arguments):
        """The text with its places filled in."""
        filled = self._texts[key]
        for number, argument in enumerate(arguments, start=1):
            filled = filled.replace(f"%{number}", argument)
        return filled
