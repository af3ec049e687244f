"""Reads the public C headers: enums, records, handles, callbacks, constants, functions, and the comments on them.

The headers are regular: one declaration a statement, one field or member a line, comments in `///` before or `///<`
behind what they describe. What does not fit these rules ends in HeaderError, never in a declaration that is left out.
"""

import re
from dataclasses import dataclass, field
from pathlib import Path
from typing import Dict, List, Optional, Tuple


class HeaderError(Exception):
    """A header has something that this reader does not know."""


@dataclass
class Member:
    name: str
    value: int
    doc: str


@dataclass
class Enum:
    name: str  # "" for an enum without a tag
    members: List[Member]
    doc: str


@dataclass
class Field:
    name: str
    type: str  # without qualifiers, "double*" for pointers
    dims: Tuple[int, ...]
    doc: str

    @property
    def isPointer(self) -> bool:
        return self.type.endswith("*")


@dataclass
class Record:
    name: str
    fields: List[Field]
    doc: str


@dataclass
class Parameter:
    name: str
    type: str  # as in the header, qualifiers too


@dataclass
class Function:
    name: str
    returns: str
    parameters: List[Parameter]
    doc: List[str]  # lines without the marks
    header: str


@dataclass
class Headers:
    enums: List[Enum] = field(default_factory=list)
    records: List[Record] = field(default_factory=list)
    handles: List[str] = field(default_factory=list)
    callbacks: List[str] = field(default_factory=list)
    constants: List[Member] = field(default_factory=list)
    functions: List[Function] = field(default_factory=list)
    fileDocs: Dict[str, List[str]] = field(default_factory=dict)  # header's stem: comment of the file


def readFolder(folder: Path) -> Headers:
    """All headers of a folder, in the order in which they include each other, else by name."""
    result = Headers()
    done: List[str] = []
    for path in sorted(folder.glob("*.h")):
        _readWithIncludes(path, folder, result, done)
    if not result.functions:
        raise HeaderError(f"no functions in the headers of {folder}")
    return result


def _readWithIncludes(path: Path, folder: Path, result: Headers, done: List[str]) -> None:
    if path.name in done:
        return
    done.append(path.name)
    text = path.read_text(encoding="utf-8")
    for name in re.findall(rf'#include "{folder.name}/(\w+\.h)"', text):
        _readWithIncludes(folder / name, folder, result, done)
    _Reader(path.stem, result).read(text)


def _comment(line: str) -> Optional[str]:
    match = re.match(r"\s*///(?!<)( ?)(.*)$", line)
    return match.group(2).rstrip() if match else None


class _Reader:
    def __init__(self, header: str, result: Headers):
        self.header = header
        self.result = result

    def read(self, text: str) -> None:
        doc: List[str] = []
        lines = text.split("\n")
        at = 0
        while at < len(lines):
            line = lines[at]
            at += 1
            comment = _comment(line)
            if comment is not None:
                doc.append(comment)
            elif not line.strip():
                self._endOfFileDoc(doc)
                doc = []
            elif line.startswith("#"):
                self._directive(line, doc)
                if "@file" in "".join(doc[:1]):
                    self._endOfFileDoc(doc)
                doc = []
            elif line.startswith("//") or line.strip() in ("ZELM_BEGIN_DECLS", "ZELM_END_DECLS"):
                doc = []
            else:
                end = self._endOfStatement(lines, at - 1)
                self._statement(lines[at - 1 : end], doc)
                at = end
                doc = []

    def _endOfFileDoc(self, doc: List[str]) -> None:
        if doc and self.header not in self.result.fileDocs:
            self.result.fileDocs[self.header] = [line for line in doc if line != "@file"]

    def _directive(self, line: str, doc: List[str]) -> None:
        match = re.match(r"#define (ZELM_\w+) \(?(-?\d+)\)?(?: *///< *(.*))?$", line)
        if match:
            self.result.constants.append(Member(match.group(1), int(match.group(2)), match.group(3) or _join(doc)))

    @staticmethod
    def _endOfStatement(lines: List[str], at: int) -> int:
        braces = re.match(r"(typedef struct \w+ \{|enum.*\{)", lines[at]) and "}" not in lines[at]
        for end in range(at, len(lines)):
            if lines[end].startswith("}") if braces else ";" in lines[end].split("//")[0]:
                return end + 1
        raise HeaderError(f"no end of {lines[at]}")

    def _statement(self, lines: List[str], doc: List[str]) -> None:
        first = lines[0]
        if first.startswith("typedef struct") and "{" in first:
            self._record(lines, doc)
        elif first.startswith("typedef struct"):
            name = re.match(r"typedef struct (\w+) \1;", first)
            if not name:
                raise HeaderError(first)
            if name.group(1) not in self.result.handles:
                self.result.handles.append(name.group(1))
        elif first.startswith("typedef int32_t (*"):
            self.result.callbacks.append(re.match(r"typedef int32_t \(\*(\w+)\)", first).group(1))  # type: ignore
        elif first.startswith("enum"):
            self._enum(lines, doc)
        elif first.startswith("ZELM_API"):
            self._function(" ".join(line.strip() for line in lines), doc)
        else:
            raise HeaderError(f"{self.header}: {first}")

    def _record(self, lines: List[str], doc: List[str]) -> None:
        name = re.match(r"typedef struct (\w+)", lines[0]).group(1)  # type: ignore
        fields: List[Field] = []
        code = ""
        for line in lines[1:-1]:
            text, _, comment = line.partition("///<")
            code += " " + text.strip()
            if ";" in code:
                fields.append(self._field(code.strip(), comment.strip()))
                code = ""
            elif comment and not code.strip() and fields:
                fields[-1].doc += " " + comment.strip()
        if code.strip() or not fields:
            raise HeaderError(f"{name}: {code}")
        self.result.records.append(Record(name, fields, _join(doc)))

    def _field(self, code: str, doc: str) -> Field:
        match = re.match(r"(?:const )?([\w ]+?)( ?\*)? ?(\w+)((?:\[\w+\])*);$", code)
        if not match:
            raise HeaderError(code)
        dims = tuple(self._number(n) for n in re.findall(r"\[(\w+)\]", match.group(4)))
        return Field(match.group(3), match.group(1).strip() + ("*" if match.group(2) else ""), dims, doc)

    def _number(self, text: str) -> int:
        if text.isdigit():
            return int(text)
        members = [m for enum in self.result.enums for m in enum.members] + self.result.constants
        for member in members:
            if member.name == text:
                return member.value
        raise HeaderError(f"unknown number {text}")

    def _enum(self, lines: List[str], doc: List[str]) -> None:
        name = re.match(r"enum ?(\w*)", lines[0]).group(1)  # type: ignore
        if "}" in lines[0]:
            lines = [lines[0], re.search(r"\{(.*)\}", lines[0]).group(1), ""]  # type: ignore
        members: List[Member] = []
        before: List[str] = []
        for line in lines[1:-1]:
            comment = _comment(line)
            text, _, behind = line.partition("///<")
            if comment is not None:
                before.append(comment)
            elif text.strip():
                match = re.match(r"(\w+)(?: = (-?\w+))?,?$", text.strip())
                if not match:
                    raise HeaderError(f"{self.header}: {line}")
                value = int(match.group(2), 0) if match.group(2) else members[-1].value + 1 if members else 0
                members.append(Member(match.group(1), value, _join(before) or behind.strip()))
                before = []
            elif members:
                members[-1].doc += " " + behind.strip()
        self.result.enums.append(Enum(name, members, _join(doc)))

    def _function(self, code: str, doc: List[str]) -> None:
        match = re.match(r"ZELM_API (.*?)(\w+)\((.*)\);$", code)
        if not match:
            raise HeaderError(code)
        parameters = []
        for part in re.split(r",\s*", match.group(3)):
            if part != "void":
                piece = re.match(r"(.*?)(\w+)(\[\d*\])?$", part)
                pointer = "*" if piece.group(3) else ""  # type: ignore
                parameters.append(Parameter(piece.group(2), piece.group(1).strip() + pointer))  # type: ignore
        self.result.functions.append(
            Function(match.group(2), match.group(1).strip(), parameters, list(doc), self.header)
        )


def _join(doc: List[str]) -> str:
    return " ".join(line for line in doc if line).strip()
