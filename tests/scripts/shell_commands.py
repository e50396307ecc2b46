"""Finds the programs that a shell script starts, by the script's text alone."""

import re

_KEYWORDS = {"if", "then", "elif", "else", "fi", "do", "done", "while", "until", "!", "{", "}", "time", "esac"}
_BUILTINS = {":", ".", "[", "[[", "alias", "break", "cd", "command", "continue", "declare", "echo", "eval", "exec", "exit", "export",
             "false", "getopts", "hash", "kill", "local", "mapfile", "popd", "printf", "pushd", "pwd", "read", "readarray", "readonly",
             "return", "set", "shift", "shopt", "source", "test", "trap", "true", "type", "typeset", "ulimit", "umask", "unset", "wait"}
_NO_COMMAND = {"for", "case", "select", "function"}
# Programs that start what follows them, with those of their options that take a value.
_RUNNERS = {"command": {}, "env": {"-u"}, "exec": {"-a"}, "nice": {"-n"}, "nohup": {}, "sudo": {"-u"}, "timeout": {"-s", "-k"},
            "xargs": {"-P", "-n", "-L", "-I", "-d", "-a"}}
_ASSIGNMENT = re.compile(r"[A-Za-z_][A-Za-z0-9_]*(\[[^]]*\])?\+?=")
_FUNCTION = re.compile(r"^\s*([A-Za-z_][A-Za-z0-9_]*)\s*\(\)", re.MULTILINE)
_COMMENT = re.compile(r"(?<!\S)#[^\n]*")
_DOCUMENT = re.compile(r"<<-?\s*(['\"]?)(\w+)\1([^\n]*)\n(.*?\n)??\t*\2(?=\n|$)", re.DOTALL)
_VARIABLE = re.compile(r"\$([A-Za-z_]\w*|.)")
_REDIRECTION = re.compile(r"[0-9]*[<>][<>&|]*[ \t]*")

# Stand in a word for what is only known when the script runs: a value, or all values of an array.
_VALUE = "\0"
_ARRAY = "\1"


def functions(text):
    """The names of the functions that the script defines."""
    return set(_FUNCTION.findall(text))


def started_programs(text):
    """The names of the programs. Builtins, functions of the script and names that a variable holds are left out."""
    scanner = _Scanner(_DOCUMENT.sub(r"\3\n", text))
    scanner.scan_commands(None)
    own = functions(text) | _BUILTINS
    names = {name for words in scanner.commands for name in _programs(words)}
    return {name for name in names if name not in own and _VALUE not in name and not name.startswith("-")}


def _programs(words):
    """The program of one simple command; after one that starts another, that one too."""
    words = list(words)
    while words:
        word = words.pop(0)
        if word in _NO_COMMAND:
            return
        if word in _KEYWORDS or word == _ARRAY or _ASSIGNMENT.match(word):
            continue
        yield word
        if word == "find" and "-exec" in words:
            words = words[words.index("-exec") + 1:]
        elif word in _RUNNERS:
            words = _after_options(words, _RUNNERS[word])
        else:
            return


def _after_options(words, with_value):
    words = list(words)
    while words and (words[0].startswith("-") or _ASSIGNMENT.match(words[0]) or words[0].rstrip("smh").isdigit()):
        if words.pop(0) in with_value and words:
            words.pop(0)
    return words


class _Scanner:
    """Divides a script into simple commands, each a list of words without their quotes."""

    def __init__(self, text):
        self._text = text
        self._at = 0
        self._words = []
        self._word = None
        self._open_cases = 0
        self.commands = []

    def scan_commands(self, closer):
        """Reads commands up to the closing character, which it takes, or to the end."""
        outer = self._words, self._word
        self._words, self._word = [], None
        while self._at < len(self._text) and not (self._char() == closer and not self._is_test()):
            self._scan_piece()
        self._end_command()
        self._at += 1
        self._words, self._word = outer

    def _scan_piece(self):
        char = self._char()
        comment = _COMMENT.match(self._text, self._at) if self._word is None else None
        redirection = _REDIRECTION.match(self._text, self._at) if not self._is_test() and not self._word else None
        if comment:
            self._at = comment.end()
        elif self._text.startswith("((", self._at) and not self._words:
            self._skip_past("))")
        elif self._text.startswith(("<(", ">("), self._at):
            self._at += 2
            self._append(self._commands_inside())
        elif redirection:
            self._at = redirection.end()
            self._skip_word()
        elif char in " \t":
            self._at += 1
            self._end_word()
        elif char in ";|&\n()<>" and not self._is_test():
            self._scan_operator(char)
        elif char == "\n":
            self._at += 1
        else:
            self._append(self._scan_part())

    def _scan_operator(self, char):
        if char == "(" and self._word and self._word.endswith("="):
            self._at += 1
            self._append(self._commands_inside(is_array=True))
        elif char == "(" and self._text.startswith("()", self._at):
            self._at += 2
            self._words, self._word = [], None  # a function's definition
        elif char in "<>":
            self._end_word()
        else:
            self._end_command()
            is_branch = self._text.startswith(";;", self._at)
            self._at += 2 if is_branch else 1
            if is_branch and self._open_cases:
                self._skip_patterns()

    def _scan_part(self):
        """A part of a word: a quoted text, an expansion or one character."""
        char = self._char()
        self._at += 1
        if char == "\\":
            self._at += 1
            return "" if self._text[self._at - 1] == "\n" else self._text[self._at - 1]
        if char == "'":
            begin = self._at
            self._skip_past("'")
            return self._text[begin:self._at - 1]
        if char == '"':
            return self._quoted()
        if char == "$":
            return self._expansion()
        return char

    def _quoted(self):
        content = ""
        while self._char() != '"':
            if self._char() in "\\$":
                content += self._scan_part()
            else:
                content += self._char()
                self._at += 1
        self._at += 1
        return content

    def _expansion(self):
        if self._text.startswith("((", self._at):
            self._skip_past("))")
        elif self._char() == "(":
            self._at += 1
            return self._commands_inside()
        elif self._char() == "{":
            begin = self._at
            self._skip_braces()
            return _ARRAY if self._text[begin:self._at].endswith("[@]}") else _VALUE
        else:
            self._at = _VARIABLE.match(self._text, self._at - 1).end()
        return _VALUE

    def _commands_inside(self, is_array=False):
        before = len(self.commands)
        self.scan_commands(")")
        if is_array:
            del self.commands[before:]
        return _VALUE

    def _append(self, part):
        self._word = (self._word or "") + part

    def _end_word(self):
        if self._word is not None:
            self._words.append(self._word)
        self._word = None
        if self._words[-1:] == ["in"] and "case" in self._words:
            self._words.clear()
            self._open_cases += 1
            self._skip_patterns()
        elif self._words == ["esac"]:
            self._open_cases -= 1

    def _end_command(self):
        self._end_word()
        if self._words:
            self.commands.append(self._words)
        self._words = []

    def _is_test(self):
        """Inside [[ ]] parentheses and operators divide nothing."""
        return "[[" in self._words and self._word != "]]" and "]]" not in self._words

    def _skip_patterns(self):
        """The patterns of the next branch of a case; its end stays."""
        if not re.compile(r"\s*esac\b").match(self._text, self._at):
            self._skip_past(")")

    def _skip_braces(self):
        depth = 0
        while depth >= 0:
            self._at += 1
            depth += {"{": 1, "}": -1}.get(self._char(), 0)
        self._at += 1

    def _skip_word(self):
        if self._text.startswith(("<(", ">("), self._at):
            self._at += 2
            self._commands_inside()
        while self._at < len(self._text) and self._char() not in " \t\n;|&)":
            self._scan_part()

    def _skip_past(self, text):
        end = self._text.find(text, self._at)
        self._at = len(self._text) if end < 0 else end + len(text)

    def _char(self):
        return self._text[self._at:self._at + 1]
