"""Reads the entries of a call table; their form is told in _coreTable.py."""

import re
from dataclasses import dataclass, field
from typing import List, Optional, Tuple

ARRAY_CODES = ("f8", "f4", "i4", "u4", "u1", "i8", "u2")
IMAGES = ("image", "planar", "argb")
SCALARS = ("int", "float", "camera")
HANDLES = ("Zelm2ViewCalib", "ZelmMeasureRig", "ZelmMeasureAdjustment", "ZelmMeasurePlan")


class TableError(Exception):
    """An entry that cannot be read."""


@dataclass
class Item:
    """An argument or a result."""

    name: str
    type: str = ""  # "" for a result that names an argument, or "return"
    dims: Tuple[str, ...] = ()
    optional: bool = False
    inOut: bool = False
    nan: bool = False
    failing: bool = False  # written on failure too
    default: Optional[str] = None
    limit: Optional[str] = None  # name of the count of entries that are given
    expression: Optional[str] = None  # of an argument that follows from others

    @property
    def isConstant(self) -> bool:
        """The default is a literal, which stands in the signature as it is."""
        return self.default is not None and re.match(r"-?[\d.]+$|None$", self.default) is not None


@dataclass
class Entry:
    arguments: List[Item] = field(default_factory=list)
    results: List[Item] = field(default_factory=list)
    checks: List[str] = field(default_factory=list)
    custom: bool = False

    def given(self) -> List[Item]:
        """The arguments as Python has them: those without a default first."""
        asked = [item for item in self.arguments if item.expression is None]
        return [i for i in asked if i.default is None] + [i for i in asked if i.default is not None]


def split(text: str, separator: str = " ") -> List[str]:
    """Splits at separators outside of brackets."""
    parts, depth, part = [], 0, ""
    for letter in " ".join(text.split()):
        depth += (letter in "([") - (letter in ")]")
        if letter == separator and depth == 0:
            parts.append(part.strip())
            part = ""
        else:
            part += letter
    parts.append(part.strip())
    return [part for part in parts if part]


def _item(text: str) -> Item:
    match = re.match(r"(\w+):(\w+)(?:\[(?!:)(.*?)\])?(?:\[:(\w+)\])?([?!~^]*)(?:=(.*))?$", text)
    if not match:
        follows = re.match(r"(\w+)=(.+)$", text)
        if follows:
            return Item(follows.group(1), expression=follows.group(2))
        if re.match(r"\w+$", text):
            return Item(text)
        raise TableError(text)
    name, kind, dims, limit, marks, default = match.groups()
    return Item(
        name=name,
        type=kind,
        dims=tuple(split(dims, ",")) if dims else (),
        optional="?" in marks,
        inOut="!" in marks,
        nan="~" in marks or "^" in marks,
        failing="^" in marks,
        default=default,
        limit=limit,
    )


def parse(text: str) -> Entry:
    """An entry of a table."""
    entry = Entry()
    calls, _, checks = " ".join(text.split()).partition(" | ")
    words = split(calls)
    if words[0] == "custom":
        entry.custom = True
        words = words[1:]
    arrow = words.index("->")
    entry.arguments = [_item(word) for word in words[:arrow]]
    entry.results = [_item(word) for word in words[arrow + 1 :]]
    entry.checks = split(checks, ",")
    return entry


def declaredNames(entry: Entry) -> List[str]:
    """All names of the C prototype that the entry speaks of."""
    names = [item.name for item in entry.arguments]
    for item in entry.results:
        if item.type and item.name not in names:
            names.append(item.name)
        if item.limit and item.limit not in ("return", *names):
            names.append(item.limit)
    for item in entry.arguments + entry.results:
        for dim in item.dims:
            if dim.isidentifier() and dim not in names:
                names.append(dim)
    return names
