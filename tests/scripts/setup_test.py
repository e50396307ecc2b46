#!/usr/bin/python3
"""scripts/setup lists every package that the build, the tests and the scripts need: a fresh machine has nothing else."""

import glob
import importlib.util
import json
import os
import re
import subprocess
import tempfile
import unittest

from debian_packages import Packages
from python_commands import PythonSources, Unknown
from shell_commands import functions, started_programs
from source_commands import programs_of_cmake, programs_of_cpp

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
BUILD = os.environ.get("TICKWISE_BUILD_DIR", os.path.join(ROOT, "build/debug"))

# What a test starts because it is not there, and what is used only where it is there.
NOT_NEEDED = {"no-such-program", "sudo"}
# Panels that only `scripts/pictures --all-desktops` starts, so that no machine needs to have them, and the listed package that
# brings each.
OTHER_DESKTOPS = {"mate-panel": "mate-panel", "lxqt-panel": "lxqt-panel", "gnome-shell": "gnome-shell", "kwin_x11": "kwin-x11",
                  "kwin_wayland": "kwin-wayland",
                  "plasmashell": "plasma-workspace", "kded5": "plasma-workspace", "org.kde.ActivityManager": "plasma-workspace"}


def read(path):
    with open(os.path.join(ROOT, path), encoding="utf-8", errors="replace") as file:
        return file.read()


def files(*patterns):
    return sorted(path for pattern in patterns for path in glob.glob(pattern, root_dir=ROOT, recursive=True))


def listed(*groups):
    done = subprocess.run([os.path.join(ROOT, "scripts", "setup"), "--list", *groups], capture_output=True, text=True, check=True)
    return set(done.stdout.split())


def shell_scripts():
    return [path for path in files("scripts/*", ".ci/*", "demo/tls/make-keys") if re.match(r"#!.*\b(ba)?sh\n", read(path))]


def groups_of_script(text):
    """The groups that the script installs before it starts anything else."""
    return {word for words in re.findall(r"\bscripts/setup((?: [a-z]+)+)", text) for word in words.split()} or {"build"}


def programs_of_script(path):
    text = read(path)
    sourced = [read(name) for name in re.findall(r"^\. (\S+)$", text, re.MULTILINE)]
    names = set().union(*map(started_programs, [text, *sourced])) - set().union(*map(functions, sourced))
    return {(name, path) for name in names if "/" not in name or name.startswith("/")}


def programs_of_cpp_file(path):
    header = os.path.splitext(path)[0] + ".h"
    return programs_of_cpp(path, read(path), read(header) if os.path.exists(os.path.join(ROOT, header)) else "")


def python_sources(paths):
    os.chdir(ROOT)
    return PythonSources(paths)


def interpreters(paths):
    """Pairs of a script's interpreter and the script."""
    lines = ((re.match(r"#! ?(?:/usr/bin/env )?(\S+)", read(path)), path) for path in paths)
    return {(match.group(1), path) for match, path in lines if match}


class Setup:
    """What scripts/setup brings, and what is missing from it."""

    def __init__(self, packages, names):
        self._packages = packages
        self._names = set(names)
        self._available = packages.available(names)

    def missing_programs(self, programs):
        """A line for each program whose package a fresh machine would lack."""
        return sorted(filter(None, (self._missing(name, place, self._packages.program_packages(name))
                                    for name, place in programs if name not in NOT_NEEDED)))

    def missing_files(self, paths):
        return sorted(f"{path} is of {' or '.join(sorted(owners))}" for path, owners in self._packages.owners(paths).items()
                      if owners and not owners & self._available)

    def _missing(self, name, place, owners):
        if owners is None and name in OTHER_DESKTOPS:
            return None if OTHER_DESKTOPS[name] in self._names else f"{place} starts {name}: list {OTHER_DESKTOPS[name]}"
        if owners is None:
            return f"{place} starts {name}, which is not installed here: list its package"
        if not owners & self._available:
            return f"{place} starts {name} of {' or '.join(sorted(owners)) or 'no package'}"
        return None


class SetupTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.packages = Packages()
        cls.python = python_sources(files("tests/**/*.py", "bench/*.py"))

    def setup(self, *groups):
        return Setup(self.packages, listed(*groups))

    def programs_of_tests(self):
        found = self.python.programs() | interpreters(files("tests/**/*.py", "bench/*.py"))
        for path in files("tests/**/*.cpp", "Tickwise/**/*.cpp", "demo/*.cpp", "bench/*.cpp"):
            found |= programs_of_cpp_file(path)
        for path in files("**/CMakeLists.txt", "cmake/*.cmake"):
            if not path.startswith("build/"):
                found |= programs_of_cmake(path, read(path))
        return found

    def test_tests_and_benchmarks(self):
        found = self.programs_of_tests()
        names = {name for name, _ in found}
        self.assertLessEqual({"Xvfb", "wtype", "xdotool", "dunst", "dunstctl", "xfce4-panel", "sway", "waybar", "grim", "import",
                              "convert", "curl", "dbus-daemon", "gio", "desktop-file-validate", "appstreamcli", "ld.lld"}, names)
        self.assertEqual(self.setup("build", "test", "desktops").missing_programs(found), [])

    def test_only_pictures_need_other_desktops(self):
        found = {pair for pair in self.programs_of_tests() if pair[0] not in OTHER_DESKTOPS and "gnome" not in pair[1]}
        self.assertEqual(self.setup("build", "test").missing_programs(found), [])

    def test_demo_on_a_private_desktop(self):
        paths = self.python.needed_by("tests/desktop/show_demo.py")
        self.assertIn("tests/desktop/x11_session.py", paths)
        found = {pair for pair in self.python.programs() if pair[1].rpartition(":")[0] in paths and pair[0] not in OTHER_DESKTOPS}
        self.assertEqual(self.setup("build", "desktop").missing_programs(found), [])

    def test_scripts(self):
        found = {}
        for path in shell_scripts():
            found[path] = programs_of_script(path) | interpreters([path])
            groups = ["build", "test"] if path.startswith("demo/") else groups_of_script(read(path))
            self.assertEqual(self.setup(*groups).missing_programs(found[path]), [])
        names = {name for programs in found.values() for name, _ in programs}
        self.assertLessEqual({"cmake", "ctest", "clang-tidy-14", "clang-format-14", "shellcheck", "pyflakes3", "openssl"}, names)

    def test_compilers_of_the_presets(self):
        presets = json.loads(read("CMakePresets.json"))["configurePresets"]
        compilers = {(preset["cacheVariables"]["CMAKE_CXX_COMPILER"], preset["name"]) for preset in presets
                     if "CMAKE_CXX_COMPILER" in preset.get("cacheVariables", {})}
        self.assertEqual({name for _, name in compilers}, {"asan", "fuzz"})
        self.assertEqual(self.setup("build", "test").missing_programs(compilers), [])

    def test_activated_services(self):
        services = self.python.services()
        self.assertIn("org.xfce.Xfconf", {name for name, _ in services})
        required = {f"/usr/share/dbus-1/services/{name}.service" for name, _ in services if name not in OTHER_DESKTOPS}
        self.assertEqual([path for path in required if not self.packages.owners([path])[path]], [])
        self.assertEqual(self.setup("build", "desktop").missing_files(required), [])

    def test_python_modules(self):
        modules = {name for name, _ in self.python.imported()}
        self.assertIn("gi", modules)
        paths = [importlib.util.find_spec(name).origin for name in modules]
        self.assertEqual(self.setup("build", "desktop").missing_files(paths), [])

    def test_headers_and_tools_of_the_build(self):
        with open(os.path.join(BUILD, "CMakeCache.txt"), encoding="utf-8") as file:
            used = set(re.findall(r"^(?:\w+_DIR:PATH|(?:CMAKE|TICKWISE|pkgcfg_lib)_\w+:FILEPATH)=(/usr/.*)$", file.read(), re.MULTILINE))
        done = subprocess.run(["ninja", "-C", BUILD, "-t", "deps"], capture_output=True, text=True, check=True)
        headers = set(re.findall(r"^    (/usr/.*)$", done.stdout, re.MULTILINE))
        self.assertGreater(len(headers), 500)
        self.assertEqual(self.setup("build").missing_files(headers), [])
        self.assertEqual(self.setup("build").missing_files(used), [])


class MissingPackageTest(unittest.TestCase):
    """What the tests above would say, were something missing."""

    @classmethod
    def setUpClass(cls):
        cls.packages = Packages()

    def test_program_that_is_not_listed(self):
        sources = python_sources(files("tests/desktop/*.py"))
        names = listed("build", "test", "desktops")
        for left_out, program in (("wtype", "wtype"), ("imagemagick", "import"), ("xdotool", "xdotool")):
            missing = Setup(self.packages, names - {left_out}).missing_programs(sources.programs())
            self.assertTrue(missing)
            for line in missing:
                self.assertRegex(line, rf"^tests/desktop/\w+\.py:\d+ starts ({program}|convert|display) of ")

    def test_program_that_is_not_installed(self):
        missing = Setup(self.packages, ["python3"]).missing_programs({("never-heard-of", "a.py:1")})
        self.assertEqual(missing, ["a.py:1 starts never-heard-of, which is not installed here: list its package"])

    def test_dependency_counts_and_a_recommendation_does_not(self):
        self.assertEqual(Setup(self.packages, ["imagemagick"]).missing_programs({("import", "a")}), [])
        self.assertEqual(Setup(self.packages, ["sway"]).missing_programs({("grep", "a"), ("sh", "a"), ("env", "a")}), [])
        self.assertEqual(Setup(self.packages, ["sway"]).missing_programs({("Xwayland", "a")}), ["a starts Xwayland of xwayland"])

    def test_header_that_is_not_listed(self):
        self.assertEqual(Setup(self.packages, []).missing_files(["/usr/include/zlib.h", "/no/file"]),
                         ["/usr/include/zlib.h is of zlib1g-dev"])


class SourceTextTest(unittest.TestCase):
    """Which programs a text starts."""

    def python_file(self, text):
        file = self.enterContext(tempfile.NamedTemporaryFile("w", suffix=".py"))
        file.write(text)
        file.flush()
        return file.name

    def test_python_that_starts_a_program(self):
        head = "import subprocess\nimport shutil\n"
        for text in ("subprocess.run(['%s', '-x'], check=True)", "command = ['%s']\ncommand += [1]\nsubprocess.Popen(command)",
                     "def tool(command):\n    subprocess.run(command)\ndef ask():\n    tool(['%s'])",
                     "class A:\n    def run(self, name):\n        path = shutil.which(name)\n        subprocess.run([path, 1])\na = A()\na.run('%s')",
                     "subprocess.call({'a': ['sh'], 'b': ['%s']}[x])", "subprocess.run('%s' if x else 'sh')"):
            path = self.python_file(head + text % "some-program")
            self.assertIn("some-program", {name for name, _ in PythonSources([path]).programs()}, text)

    def test_python_that_hides_what_it_starts(self):
        for text in ("import subprocess\nsubprocess.run(self.command)", "import os\nos.system('ls')",
                     "import subprocess\nfrom elsewhere import NAME\nsubprocess.run([NAME])"):
            with self.assertRaises(Unknown):
                PythonSources([self.python_file(text)]).programs()

    def test_shell_that_starts_a_program(self):
        for text in ("prog a", "FOO=1 prog a", "true && prog", "x=$(prog | sort)", 'echo "a $(prog "b c") d"', "if prog; then :; fi",
                     "find . | xargs -P \"$(nproc)\" -n 4 prog -p", "exec prog", 'while read -r x; do prog "$x"; done < <(cat y)',
                     "cat x | while read -r y; do :; done < <(prog)", "case $1 in a|b) prog ;; esac", '"${root[@]}" env A=b prog update',
                     "f() { prog; }", "(cd x && prog)", "[[ a == b ]] || prog", "! prog", "cat <<EOF\nnothing\nEOF\nprog",
                     "x=1 # nothing\nprog 2>/dev/null", 'a=(one "two")\nprog', "sudo -n prog", "nice -n 5 prog", 'x=$((1 + 2)); prog',
                     "case $1 in\n    a) one=1 ;;\n    *) prog >&2; exit 2 ;;\nesac"):
            self.assertIn("prog", started_programs(text), text)

    def test_shell_words_that_are_no_programs(self):
        for text in ("echo prog", "for prog in a b; do :; done", "case prog in prog) ;; esac", "# prog", "x='prog'", "a=(prog b)",
                     'cat <<"EOF"\nprog\nEOF\n', "prog() { :; }\nprog", '[[ prog == "prog" && prog ]]', "cat > prog", 'echo "prog; prog"',
                     'grep "$(cat x)" prog', '"$x" prog', "x=${y:-prog}", "cat <prog 2>prog", "cat \\\n  prog"):
            self.assertNotIn("prog", started_programs(text), text)

    def test_cpp_and_cmake(self):
        for text in ('QProcess p;\np.start(QStringLiteral("prog"), {});', 'QProcess::execute("prog", {});',
                     '#include <QProcess>\nQStandardPaths::findExecutable(u"prog"_s)'):
            self.assertEqual({name for name, _ in programs_of_cpp("a.cpp", text)}, {"prog"}, text)
        self.assertEqual(programs_of_cpp("a.cpp", "QProcess p;\nQElapsedTimer t;\nt.start();\np.start(OWN_HELPER, {});"), set())
        with self.assertRaisesRegex(ValueError, "a.cpp:2"):
            programs_of_cpp("a.cpp", "QProcess p;\np.start(name, {});")
        text = "add_executable(own a.cpp)\nadd_test(NAME a COMMAND prog x)\nadd_test(NAME b COMMAND own)\nfind_program(P tool)"
        self.assertEqual(programs_of_cmake("a", text), {("prog", "a:2"), ("tool", "a:4")})


if __name__ == "__main__":
    unittest.main()
