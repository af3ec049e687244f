"""Where a C++ source can be changed by one token, and into what.

The sources are formatted, so a binary operator has a space on either side and a pointer, a reference or a template's
bracket has not: no parser is needed to tell them apart.
"""

import hashlib
import os
import re
from typing import Iterator, List, NamedTuple, Tuple

_BINARY = {
    "==": ("!=",), "!=": ("==",), "<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"),
    "+": ("-",), "-": ("+",), "*": ("/",), "/": ("*",), "%": ("+",), "&&": ("||",), "||": ("&&",),
    "+=": ("-=",), "-=": ("+=",), "*=": ("/=",), "/=": ("*=",), "|=": ("&=",), "&=": ("|=",),
    "<<": (">>",), ">>": ("<<",), "&": ("|",), "|": ("&",), "^": ("&",),
}
_WORDS = {
    "true": ("false",), "false": ("true",), "std::min": ("std::max",), "std::max": ("std::min",),
    "continue;": ("break;",), "break;": ("continue;",), "ZELM_OK": ("ZELM_ERR_PARAM",),
}
_TOKEN = re.compile(
    r"(?P<skip>//[^\n]*|/\*.*?\*/|\"(?:\\.|[^\"\\])*\"|'(?:\\.|[^'\\])+'|^[ \t]*\#(?:\\\n|[^\n])*)"
    r"|(?<= )(?P<binary>==|!=|<=|>=|&&|\|\||\+=|-=|\*=|/=|\|=|&=|<<|>>|[<>+\-*/%&|^])(?= )"
    r"|(?P<word>\b(?:true|false|std::min|std::max|ZELM_OK)\b|\b(?:continue|break);)"
    r"|(?P<step>\+\+|--)"
    r"|(?P<not>(?<=[ (])!(?=[A-Za-z(]))"
    r"|(?P<number>(?<![\w.])(?:\d+\.\d+(?:[eE][+-]?\d+)?|\d+)[uUlLfF]*(?![\w.]))",
    re.DOTALL | re.MULTILINE,
)


class Mutant(NamedTuple):
    """One changed token."""

    file: str
    offset: int  # in the file
    line: int  # from 1
    text: str  # the line that holds the token, without its indent
    column: int  # where the token stands in that text
    old: str
    new: str

    def name(self) -> str:
        """The same for the same change, wherever the line moves to."""
        key = "|".join((self.file, self.text, str(self.column), self.old, self.new))
        return hashlib.sha256(key.encode()).hexdigest()[:12]

    def applied_to(self, source: str) -> str:
        """The source with the token changed."""
        return source[: self.offset] + self.new + source[self.offset + len(self.old) :]


def mutants_of(file: str, source: str) -> Iterator[Mutant]:
    """Every mutant of a source."""
    for match in _TOKEN.finditer(source):
        kind = match.lastgroup
        if kind == "skip" or _is_declaration(source, match.start()):
            continue
        for new in _replacements(str(kind), match.group()):
            yield _mutant(file, source, match, new)


def _mutant(file: str, source: str, match: "re.Match[str]", new: str) -> Mutant:
    begin = source.rfind("\n", 0, match.start()) + 1
    end = source.find("\n", match.start())
    line = source[begin : end if end >= 0 else len(source)]
    indent = len(line) - len(line.lstrip())
    number = source.count("\n", 0, begin) + 1
    return Mutant(file, match.start(), number, line.strip(), match.start() - begin - indent, match.group(), new)


def _replacements(kind: str, token: str) -> Tuple[str, ...]:
    if kind == "binary":
        return _BINARY[token]
    if kind == "word":
        return _WORDS[token]
    if kind == "step":
        return ("--" if token == "++" else "++",)
    if kind == "not":
        return ("",)
    return _numbers(token)


def _numbers(token: str) -> Tuple[str, ...]:
    digits = re.match(r"[\d.eE+-]+", token)
    suffix = token[digits.end() :] if digits else ""
    body = token[: digits.end()] if digits else token
    if "." in body:
        value = float(body)
        return (f"{value * 2.0!r}{suffix}" if value else f"1.0{suffix}",)
    return (f"{int(body) + 1}{suffix}",)


def _is_declaration(source: str, offset: int) -> bool:
    """Lines that change no result: what is checked when it is compiled, and array sizes that are only roomier."""
    begin = source.rfind("\n", 0, offset) + 1
    line = source[begin : source.find("\n", offset)].lstrip()
    return line.startswith(("static_assert", "using ", "template", "namespace", "ZELM_ASSERT"))


def sources_of(root: str, folders: List[str]) -> List[str]:
    """The C++ sources below the folders, in order."""
    found = []
    for folder in folders:
        for path, _, names in os.walk(os.path.join(root, folder)):
            found += [os.path.join(path, name) for name in names if name.endswith((".cpp", ".h"))]
    return sorted(os.path.relpath(name, root) for name in found)
