"""Finds the programs that Python files start, by their text alone: the first word of each command that reaches subprocess,
followed back through variables, dictionaries, parameters and the functions that pass them on."""

import ast
import os
import sys

_SUBPROCESS = {"run", "Popen", "call", "check_call", "check_output"}
_NOT_UNDERSTOOD = {"os.system", "os.popen", "os.execv", "os.execvp", "os.execvpe", "os.posix_spawn", "os.posix_spawnp", "os.spawnvp"}
_SAME_PROGRAM = {"abspath", "which", "list", "str"}  # functions that give the program of their argument

OWN = object()  # a program of the build folder or the source tree


class Unknown(Exception):
    """The text does not tell what is started."""


class PythonSources:
    """Some files that may import each other."""

    def __init__(self, paths):
        self._modules = {}
        for path in paths:
            with open(path, encoding="utf-8") as file:
                name = os.path.splitext(os.path.basename(path))[0]
                self._modules[name] = _Module(path, ast.parse(file.read()))
        # Functions that start what their caller names: name -> position of that argument.
        self._starters = {}
        self._find_starters()

    def programs(self):
        """Pairs of a program's name and the place that starts it. Raises Unknown."""
        return {(value, place) for place, values in self._starts() for value in values if isinstance(value, str)}

    def services(self):
        """Pairs of a bus name that a private message bus is told to activate and the place."""
        found = set()
        for module in self._modules.values():
            for call, _ in module.calls():
                if _callee(call.func) == "allow_activation" and isinstance(call.args[0], ast.Constant):
                    found.add((call.args[0].value, module.place(call)))
        return found

    def imported(self):
        """Pairs of a top-level module that is neither Python's nor one of these files and the place."""
        found = set()
        for module in self._modules.values():
            for node in ast.walk(module.tree):
                if isinstance(node, ast.Import):
                    names = [alias.name for alias in node.names]
                elif isinstance(node, ast.ImportFrom) and node.module:
                    names = [node.module]
                else:
                    continue
                found |= {(name.partition(".")[0], module.place(node)) for name in names}
        return {pair for pair in found if pair[0] not in sys.stdlib_module_names and pair[0] not in self._modules}

    def needed_by(self, path):
        """The files that a file of these needs, itself included."""
        found, pending = [], [os.path.splitext(os.path.basename(path))[0]]
        while pending:
            module = self._modules.get(pending.pop())
            if module is not None and module.path not in found:
                found.append(module.path)
                pending += module.imports
        return found

    def _find_starters(self):
        while True:
            known = dict(self._starters)
            list(self._starts())
            if known == self._starters:
                return

    def _starts(self):
        """Each place that starts something, with what it starts; a parameter makes its function a starter."""
        for module in self._modules.values():
            for call, function in module.calls():
                argument = self._started_argument(module, call)
                if argument is None:
                    continue
                try:
                    values = self._resolve(module, function, argument)
                except Unknown as error:
                    raise Unknown(f"{module.place(call)}: {error}") from None
                for value in values:
                    if isinstance(value, int):
                        self._starters[function.name] = value
                yield module.place(call), values

    def _started_argument(self, module, call):
        name = _callee(call.func)
        dotted = ast.unparse(call.func)
        if dotted in _NOT_UNDERSTOOD:
            raise Unknown(f"{module.place(call)}: use subprocess instead of {dotted}")
        position = 0 if dotted.startswith("subprocess.") and name in _SUBPROCESS else self._starters.get(name)
        if position is None or dotted.startswith("self._popen") or len(call.args) <= position:
            return None
        return call.args[position]

    def _resolve(self, module, function, node):
        """The values of an expression that names a program or is a command: names, OWN, and positions of parameters."""
        resolve = lambda each: self._resolve(module, function, each)  # noqa: E731
        if isinstance(node, ast.Constant):
            return {OWN if "/" in node.value and not node.value.startswith("/") else node.value}
        if isinstance(node, (ast.List, ast.Tuple)):
            return resolve(node.elts[0])
        if isinstance(node, ast.Starred):
            return resolve(node.value)
        if isinstance(node, ast.BinOp):
            return resolve(node.left)
        if isinstance(node, ast.IfExp):
            return resolve(node.body) | resolve(node.orelse)
        if isinstance(node, ast.Subscript) and "sys.argv" not in ast.unparse(node):
            return resolve(node.value)
        if isinstance(node, ast.Dict):
            return set().union(*map(resolve, node.values))
        if isinstance(node, ast.Name):
            return self._resolve_name(module, function, node.id)
        if isinstance(node, ast.Call) and _callee(node.func) in _SAME_PROGRAM:
            return resolve(node.args[0])
        text = ast.unparse(node)
        if "sys.argv" in text or (text.startswith("os.path.join(") and not text.startswith("os.path.join('/")):
            return {OWN}
        raise Unknown(f"what is started is {ast.unparse(node)}")

    def _resolve_name(self, module, function, name):
        assigned = module.assignments(function, name)
        parameters = [argument.arg for argument in function.args.args] if function else []
        values = set()
        if name in parameters:
            values.add(parameters.index(name) - (parameters[0] == "self"))
        for value in assigned:
            if not (isinstance(value, ast.Name) and value.id == name):
                values |= self._resolve(module, function, value)
        if name in module.origins and not values:
            other, original = module.origins[name]
            if other not in self._modules:
                raise Unknown(f"{name} comes from {other}")
            values = self._resolve_name(self._modules[other], None, original)
        if not values:
            raise Unknown(f"nothing gives {name} a value")
        return values


class _Module:
    def __init__(self, path, tree):
        self.path = path
        self.tree = tree
        self.origins = {}
        self.imports = set()
        for node in ast.walk(tree):
            if isinstance(node, ast.ImportFrom):
                self.imports.add(node.module)
                self.origins.update({alias.asname or alias.name: (node.module, alias.name) for alias in node.names})
            elif isinstance(node, ast.Import):
                self.imports |= {alias.name for alias in node.names}

    def place(self, node):
        return f"{self.path}:{node.lineno}"

    def calls(self):
        """Every call with the function that it stands in."""
        return list(_calls(self.tree, None))

    def assignments(self, function, name):
        """What the name is assigned in the function, or in the module."""
        found = list(_assignments(function, name)) if function is not None else []
        return found or [value for statement in self.tree.body for value in _assignments(statement, name)
                         if not isinstance(statement, (ast.FunctionDef, ast.ClassDef))]


def _calls(node, function):
    for child in ast.iter_child_nodes(node):
        if isinstance(child, ast.Call):
            yield child, function
        yield from _calls(child, child if isinstance(child, ast.FunctionDef) else function)


def _assignments(tree, name):
    for node in ast.walk(tree):
        if isinstance(node, ast.Assign):
            for target in node.targets:
                targets = target.elts if isinstance(target, (ast.Tuple, ast.List)) else [target]
                if any(isinstance(each, ast.Name) and each.id == name for each in targets):
                    yield node.value


def _callee(function):
    return function.attr if isinstance(function, ast.Attribute) else getattr(function, "id", "")
