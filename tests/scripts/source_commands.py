"""Finds the programs that C++ sources and CMake lists start, by their text alone."""

import os
import re

_PROCESS = re.compile(r"\bQProcess\s+(\w+)\s*[;({]")
_SUBCLASS = re.compile(r":\s*public QProcess\b")
_START = re.compile(r"(?:\b(?P<object>\w+)(?:\.|->)|\bQProcess::|(?<![\w.:>]))"
                    r"(?P<method>start|startDetached|startCommand|setProgram|execute)\(\s*(?P<argument>[^,;]*)")
_FIND = re.compile(r"\bfindExecutable\(\s*(?P<argument>[^,;]*)")
_LITERAL = re.compile(r'(?:QStringLiteral\(|QLatin1String\(|u)?"([^"\s]+)')
_OWN = re.compile(r"applicationFilePath\(\)|\bm_ownProgram\b|\b[A-Z_]{5,}\b")

_COMMAND = re.compile(r"\bCOMMAND\s+\"?([A-Za-z0-9_./-]+)\"?[\s)]")
_FIND_PROGRAM = re.compile(r"\bfind_program\(\s*\w+\s+(?:NAMES\s+)?([A-Za-z0-9_.+-]+)")
_TARGET = re.compile(r"\badd_executable\(\s*([\w-]+)|\btickwise_add_\w+\(\s*(\w+)")


def programs_of_cpp(path, text, header=""):
    """Pairs of a program's name and its place; `header` is the text of the header of the same name."""
    if "QProcess" not in text + header and "findExecutable" not in text:
        return set()
    objects = set(_PROCESS.findall(text + header))
    is_subclass = bool(_SUBCLASS.search(text))
    found = set()
    for match in [*_START.finditer(text), *_FIND.finditer(text)]:
        parts = match.groupdict()
        owner, argument = parts.get("object"), parts["argument"]
        is_process = owner in objects if owner else is_subclass or "QProcess::" in match.group() or "findExecutable" in match.group()
        literal = _LITERAL.match(argument)
        place = f"{path}:{text.count(chr(10), 0, match.start()) + 1}"
        if not is_process or argument.startswith(")"):
            continue
        if literal:
            found.add((literal.group(1), place))
        elif not _OWN.search(argument):
            raise ValueError(f"{place}: what is started is {argument}")
    return found


def programs_of_cmake(path, text):
    """Pairs of a program's name and its place; targets and variables are left out."""
    text = re.sub(r"(?m)(^|\s)#.*$", lambda match: " " * 0 + match.group(1), text)
    targets = {name for names in _TARGET.findall(text) for name in names}
    found = set()
    for match in [*_COMMAND.finditer(text), *_FIND_PROGRAM.finditer(text)]:
        name = match.group(1)
        if name not in targets and not os.path.dirname(name) or name.startswith("/"):
            found.add((name, f"{path}:{text.count(chr(10), 0, match.start()) + 1}"))
    return found
