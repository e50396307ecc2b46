#!/usr/bin/python3
"""What an installation gives: a program that the message bus starts, and the files that make it known to a desktop."""

import configparser
import os
import shutil
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree

from desktop_session import X11Session, is_alive

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
BUILD = os.environ.get("TICKWISE_BUILD_DIR", os.path.join(ROOT, "build/debug"))
IDENTIFIER = "com.pelmo.tickwise"
PROGRAM = "bin/tickwise"
SERVICE = f"share/dbus-1/services/{IDENTIFIER}.service"
DESKTOP_FILE = f"share/applications/{IDENTIFIER}.desktop"
WIDGET = "bin/tickwise-widget"
WIDGET_DESKTOP_FILE = f"share/applications/{IDENTIFIER}.widget.desktop"
METAINFO = f"share/metainfo/{IDENTIFIER}.metainfo.xml"
ICON = f"share/icons/hicolor/scalable/apps/{IDENTIFIER}.svg"
# A proxy that nobody runs: the program under test asks the real exchanges, and no byte of that may leave the machine.
NO_NETWORK = {f"{scheme}_proxy": "http://127.0.0.1:9" for scheme in ("http", "https", "all")}


def install(prefix, destination=None):
    environment = {**os.environ, "DESTDIR": destination} if destination else os.environ
    subprocess.run(["cmake", "--install", BUILD, "--prefix", prefix], env=environment, check=True, stdout=subprocess.DEVNULL)


def read_groups(path):
    parser = configparser.ConfigParser(interpolation=None)
    parser.optionxform = str
    parser.read(path, encoding="utf-8")
    return parser


class InstallTest(unittest.TestCase):
    def setUp(self):
        self.prefix = self.enterContext(tempfile.TemporaryDirectory(prefix="tickwise-prefix-"))
        os.chmod(self.prefix, 0o755)

    def path(self, name):
        return os.path.join(self.prefix, name)

    def test_files(self):
        install(self.prefix)
        found = {os.path.relpath(os.path.join(folder, name), self.prefix)
                 for folder, _, names in os.walk(self.prefix) for name in names}
        self.assertLessEqual({PROGRAM, SERVICE, DESKTOP_FILE, WIDGET, WIDGET_DESKTOP_FILE, METAINFO, ICON}, found)
        self.assertEqual({name for name in found if not name.startswith(("bin/tickwise", "share/"))}, set())
        service = read_groups(self.path(SERVICE))["D-BUS Service"]
        self.assertEqual((service["Name"], service["Exec"]), (IDENTIFIER, self.path(PROGRAM)))
        for program, desktop_file in ((PROGRAM, DESKTOP_FILE), (WIDGET, WIDGET_DESKTOP_FILE)):
            entry = read_groups(self.path(desktop_file))["Desktop Entry"]
            self.assertEqual(entry["Exec"].split()[0], os.path.basename(program))
            self.assertEqual(entry["Icon"], os.path.splitext(os.path.basename(ICON))[0])
        self.assertEqual(xml.etree.ElementTree.parse(self.path(METAINFO)).findtext("launchable"), os.path.basename(DESKTOP_FILE))

    def test_staged_installation_names_its_final_place(self):
        install("/usr", destination=self.prefix)
        self.assertTrue(os.access(self.path("usr/" + PROGRAM), os.X_OK))
        self.assertEqual(read_groups(self.path("usr/" + SERVICE))["D-BUS Service"]["Exec"], "/usr/" + PROGRAM)

    def test_rules_without_tests(self):
        """The same is installed where no test was built."""
        scratch = self.path("build")
        subprocess.run(["cmake", "-S", ROOT, "-B", scratch, "-G", "Ninja", "-DTICKWISE_TESTS=OFF"], check=True,
                       stdout=subprocess.DEVNULL)
        rules = {}
        for build in (BUILD, scratch):
            with open(os.path.join(build, "packaging", "cmake_install.cmake"), encoding="utf-8") as file:
                rules[build] = [line.replace(os.path.abspath(build), "BUILD") for line in file if "INSTALL" in line]
            rules[build] = [line for line in rules[build] if "CONFIG_NAME" not in line]
        self.assertIn("tickwise", "".join(rules[scratch]))
        self.assertEqual(rules[scratch], rules[BUILD])

    def test_addresses_are_opened_with_it(self):
        install(self.prefix)
        subprocess.run(["update-desktop-database", self.path("share/applications")], check=True)
        environment = {**os.environ, "XDG_CONFIG_HOME": self.path("none"), "XDG_CONFIG_DIRS": self.path("none"),
                       "XDG_DATA_HOME": self.path("none"), "XDG_DATA_DIRS": self.path("share")}
        done = subprocess.run(["xdg-mime", "query", "default", "x-scheme-handler/tickwise"], env=environment, capture_output=True,
                              text=True, check=True)
        self.assertEqual(done.stdout.strip(), os.path.basename(DESKTOP_FILE))

    def test_message_bus_starts_the_program(self):
        install(self.prefix)
        with X11Session("xfce4-panel", notifications=None) as desktop:
            shutil.copy(self.path(SERVICE), desktop.bus.services)
            desktop.bus.call_daemon("ReloadConfig")
            desktop.bus.call_daemon("UpdateActivationEnvironment", "(a{ss})", ({**desktop.environment, **NO_NETWORK},))
            desktop.bus.call_daemon("StartServiceByName", "(su)", (IDENTIFIER, 0))
            pid = desktop.bus.process_id(IDENTIFIER)
            self.assertEqual(os.readlink(f"/proc/{pid}/exe"), self.path(PROGRAM))
            desktop.wait_for(lambda: desktop.windows("tickwise"), what="its window in the panel")
            os.kill(pid, 15)
            desktop.wait_for(lambda: not is_alive(pid), what="the program's end")


if __name__ == "__main__":
    unittest.main()
