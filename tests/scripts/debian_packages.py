"""What dpkg knows: which package a file belongs to, and what a set of packages brings along."""

import os
import re
import subprocess

PROGRAM_FOLDERS = ("/usr/bin", "/bin", "/usr/sbin", "/sbin", "/usr/games")


class Packages:
    """The installed packages of this machine."""

    def __init__(self):
        self._depends = {}
        self._base = set()
        self._owners = {}
        fields = "${Package}\t${db:Status-Status}\t${Essential}\t${Pre-Depends}\t${Depends}\n"
        for line in _dpkg_query("-W", f"-f={fields}").splitlines():
            name, status, essential, before, depends = line.split("\t")
            if status != "installed":
                continue
            self._depends[name] = _first_choices(before) | _first_choices(depends)
            if essential == "yes":
                self._base.add(name)
        self._base = self.closure(self._base | {"apt", "dpkg"})

    def closure(self, names):
        """The packages that an installation of these brings to every machine: themselves and what they depend on. Of
        alternatives only the first counts, which is what a machine without any of them gets."""
        found = set()
        pending = list(names)
        while pending:
            name = pending.pop()
            if name not in found:
                found.add(name)
                pending += self._depends.get(name, ())
        return found

    def available(self, listed):
        """What a machine has on which these packages were installed: them, their dependencies and the base system."""
        return self.closure(listed) | self._base

    def owners(self, paths):
        """The packages of each of these files, a dictionary of sets; a file that no package owns has an empty set."""
        wanted = {path: list(_spellings(path)) for path in paths}
        spellings = sorted({spelling for each in wanted.values() for spelling in each} - self._owners.keys())
        for begin in range(0, len(spellings), 2000):
            self._ask(spellings[begin:begin + 2000])
        return {path: set().union(*(self._owners[spelling] for spelling in each)) for path, each in wanted.items()}

    def program_packages(self, name):
        """The packages that have the program; None when it is not installed. A program's own folder wins over what stands in
        PATH, where the machine's user may have put something of that name."""
        path = name if os.path.isabs(name) else _find_program(name)
        if path is None or not os.path.exists(path):
            return None
        return self.owners([path])[path]

    def _ask(self, paths):
        for path in paths:
            self._owners.setdefault(path, set())
        for line in _dpkg_query("--search", *paths).splitlines():
            names, _, path = line.rpartition(": ")
            if path in self._owners and not names.startswith(("diversion", "local diversion")):
                self._owners[path] |= {name.partition(":")[0] for name in names.split(", ")}


def _find_program(name):
    for folder in PROGRAM_FOLDERS:
        path = os.path.join(folder, name)
        if os.access(path, os.X_OK):
            return path
    return None


def _spellings(path):
    """A path as packages may spell it: with and without the /usr that Debian merged, and the file that its links lead to."""
    for each in dict.fromkeys((os.path.normpath(path), os.path.realpath(path))):
        yield each
        yield each.removeprefix("/usr") if each.startswith("/usr/") else "/usr" + each


def _first_choices(relations):
    choices = (relation.split("|")[0] for relation in relations.split(",") if relation.strip())
    return {re.match(r"\s*([a-z0-9.+-]+)", choice).group(1) for choice in choices}


def _dpkg_query(*arguments):
    done = subprocess.run(["dpkg-query", *arguments], capture_output=True, text=True, check=False,
                          env={**os.environ, "LC_ALL": "C.UTF-8"})
    return done.stdout
