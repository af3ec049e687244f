"""Writes numpy-style docstrings from the comments of the headers and the call table."""

import re
import textwrap
from typing import Dict, List, Tuple

from headerReader import Function, Headers
from _signature import Entry, Item, parse

WIDTH = 100
# Where the words of the header speak of what Python has no part in.
IN_PYTHON = {
    ("zelmBinBlob", "taBlobs"): "a record a blob, in the order of their labels, about that of their first rows",
    ("zelm2ViewCalibOpen", "tHandle"): "the object",
    ("zelm2ViewLoadCalibData", "tHandle"): "the object",
    ("zelmCalibRodrigues", "daOut"): "the matrix, 3 x 3, for direction 0; the vector for direction 1",
    ("zelmMatMallocVector", "daV"): "the vector; its `array` shows the memory",
    ("zelmMatMallocMatrix", "daM"): "the matrix; its `array` shows the memory",
}
DTYPES = {
    "f8": "float64",
    "f4": "float32",
    "i4": "int32",
    "u4": "uint32",
    "u1": "uint8",
    "i8": "int64",
    "u2": "uint16",
}
HANDLES = ("Zelm2ViewCalib", "ZelmMeasureRig", "ZelmMeasureAdjustment", "ZelmMeasurePlan")


def wrap(text: str, indent: str = "") -> List[str]:
    return textwrap.wrap(text, WIDTH, initial_indent=indent, subsequent_indent=indent, break_on_hyphens=False) or [""]


class Comment:
    """A function's comment, taken apart."""

    def __init__(self, lines: List[str]):
        self.paragraphs: List[List[str]] = [[]]
        self.parameters: Dict[str, str] = {}
        self.returns = ""
        self.notes: List[str] = []
        target = ""
        for line in lines:
            target = self._line(line, target)

    def _line(self, line: str, target: str) -> str:
        if line.startswith("@return"):
            self.returns = line[len("@return") :].strip()
            return "@return"
        if line.startswith("@param"):
            return self._parameter(line)
        if target and (line.startswith(" ") or line[:1].islower()):
            if target == "@return":
                self.returns += " " + line.strip()
            else:
                for name in target.split(","):
                    self.parameters[name] += " " + line.strip()
            return target
        if target:
            if line.strip():
                self.notes.append(line.strip())
            return target if not line.strip() else ""
        if self.notes:
            self.notes[-1] += " " + line.strip()
        elif not line.strip():
            self.paragraphs.append([])
        else:
            self.paragraphs[-1].append(line)
        return ""

    def _parameter(self, line: str) -> str:
        match = re.match(r"@param\s+((?:\w+,\s*)*\w+)\s*(?:\[[\w,/ ]+\])?\s*(.*)$", line)
        if not match:
            raise ValueError(line)
        names = [name.strip() for name in match.group(1).split(",")]
        for name in names:
            self.parameters[name] = match.group(2)
        return ",".join(names)

    def prose(self) -> str:
        """The paragraphs, wrapped; lists and tables stay as they are."""
        parts = []
        for paragraph in self.paragraphs:
            if paragraph and re.match(r" *(- |\d\. |\|)", paragraph[0]):
                parts.append("\n".join(paragraph))
            elif paragraph:
                parts.append("\n".join(wrap(" ".join(line.strip() for line in paragraph))))
        return "\n\n".join(parts)


def typeWords(item: Item) -> str:
    dims = f", shape ({', '.join(item.dims)}{',' if len(item.dims) == 1 else ''})" if item.dims else ""
    if item.type in DTYPES:
        return f"array of {DTYPES[item.type]}{dims}"
    words = {
        "image": "array of uint8, shape (height, width)",
        "planar": "array of uint8, shape (height, width)",
        "gray": "array of uint8, shape (height, width)",
        "bytes": "bytes",
        "argb": "array of uint8, shape (height, width, 4), in the order A, R, G, B",
        "camera": "'L' or 'R'",
        "views": "sequence of pairs of arrays, plane and image points, shape (n, 2) each",
        "images": "pair of arrays of uint8, shape (height, width) each, or None",
        "object": "sequence of bytes" if item.name == "files" else "None",
    }
    if item.type in words:
        return words[item.type]
    return f"array of {item.type}{dims}" if item.dims else item.type


def defaultWords(item: Item) -> str:
    """What a default comes to, for readers who do not know the table's helpers."""
    text = item.default or ""
    if text.startswith("whole("):
        return f"all of {text[6:-1]}"
    if text.startswith(("like(", "zeros(", "ofMap(")):
        return "a new black image"
    if text.startswith("newMap("):
        return "new maps"
    if text.startswith(("rooms(", "pointRooms(", "lengthRooms(")):
        return "a new one with all arrays"
    if text.startswith("matchDefaults("):
        return "those of zelmMeasureMatchDefaults()"
    if text.startswith("noPlaces("):
        return "none"
    if text == "()":
        return "none"
    return "a record of zeros" if text.endswith("()") else text.strip("()")


def _hanging(text: str) -> List[str]:
    return textwrap.wrap(text, WIDTH, initial_indent="    ", subsequent_indent="        ", break_on_hyphens=False)


def describe(function: Function, entry: Entry, words: Dict[str, str]) -> str:
    comment = Comment(function.doc)
    parts = [comment.prose()]
    lines = []
    for item in entry.given():
        extra = ", or None" if item.optional and item.type != "object" else ""
        extra += ", written in place" if item.inOut and item.type not in HANDLES else ""
        if item.default is not None:
            extra += f", default {defaultWords(item)}"
        lines += [f"{item.name} : {typeWords(item)}{extra}"]
        text = comment.parameters.get(item.name, "")
        lines += wrap(text, "    ") if text else []
    if lines:
        parts.append("Parameters\n----------\n" + "\n".join(lines))
    lines = []
    for item in entry.results:
        argument = next((a for a in entry.arguments if a.name == item.name), item)
        own = item.expression == "return"
        kind = ("float" if function.returns == "double" else "int") if own else typeWords(argument)
        if item.limit:
            kind += ", as many entries as there are"
        kind = "str, or None" if own and function.returns == "const char*" else kind
        lines += [f"{item.name} : {kind}"]
        text = comment.parameters.get(item.name, "")
        if own:
            text = re.split(r"(?:[;,.]| or)* ZELM_(?:MEASURE_)?ERR", comment.returns)[0]
        text = IN_PYTHON.get((function.name, item.name), text)
        lines += wrap(text, "    ") if text else []
    if lines:
        title = "Returns\n-------\n"
        if len(entry.results) > 1:
            title += f"{function.name}Result : named tuple of\n"
            lines = ["    " + line for line in lines]
        parts.append(title + "\n".join(lines))
    if words:
        lines = [line for name, text in words.items() for line in _hanging(f"{name}: {text}".rstrip(": "))]
        parts.append("Raises\n------\nZelmError\n" + "\n".join(lines))
    notes = [*comment.notes, "In C: " + prototype(function)]
    parts.append("Notes\n-----\n" + "\n\n".join("\n".join(wrap(note)) for note in notes))
    return "\n\n".join(part for part in parts if part)


def prototype(function: Function) -> str:
    return f"{function.returns} {function.name}({', '.join(f'{p.type} {p.name}' for p in function.parameters)})"


def clauses(text: str) -> Dict[str, str]:
    """What a @return text says of each error status."""
    starts = [m for m in re.finditer(r"(?:^|[;.:,] |\bor |\band )(ZELM_(?:(?:MEASURE_)?ERR_\w+|OK|MATCH_EXACT))", text)]
    found: Dict[str, str] = {}
    for index, match in enumerate(starts):
        end = starts[index + 1].start() if index + 1 < len(starts) else len(text)
        name = match.group(1)
        words = re.split(r"\. (?=[A-Z])", text[match.end() : end])[0].strip(" ;:,.")
        words = re.sub(r"(^|[;,]? )(or|and)$", "", words).strip(" ;:,.")
        if name.startswith(("ZELM_ERR", "ZELM_MEASURE_ERR")):
            found[name] = "; ".join(part for part in (found.get(name), words) if part)
    return found


def _merged(own: str, shared: str) -> str:
    """A function's own words, behind the shared ones where they say "also"."""
    return f"{shared}; {own}" if shared and own.startswith("also") else own or shared


def statusWords(headers: Headers) -> Dict[str, Dict[str, str]]:
    functions = {function.name: function for function in headers.functions}
    returns = {name: Comment(function.doc).returns for name, function in functions.items()}

    def of(name: str, seen: Tuple[str, ...]) -> Dict[str, str]:
        text = returns[name]
        found = clauses(text)
        if "all fits share" in text or "as of the other fits" in text:
            shared = Comment(headers.fileDocs["fit"]).returns
            for status, words in clauses(shared).items():
                found[status] = _merged(found.get(status, ""), words)
        for other in re.findall(r"as (?:of )?(zelm\w+)", text):
            if other in functions and other not in seen:
                for status, words in of(other, (*seen, other)).items():
                    found[status] = _merged(found.get(status, ""), words)
        return found

    return {name: of(name, (name,)) for name in functions}


def statusComments(headers: Headers) -> Dict[str, str]:
    """The first sentence of what base.h says of each status."""
    members = [m for enum in headers.enums if enum.members[0].name == "ZELM_OK" for m in enum.members]
    members += [constant for constant in headers.constants if constant.name.startswith("ZELM_MEASURE_ERR")]
    return {member.name: re.split(r"(?<=\.) ", member.doc)[0] for member in members}


def literal(text: str) -> str:
    """A string literal over several lines."""
    text = text.replace("\\", "\\\\").replace('"""', '\\"\\"\\"')
    return f'"""\\\n{text}\n"""' if "\n" in text or len(text) > 80 else repr(text).replace("'", '"')


def writeDocs(headers: Headers, table: Dict[str, str]) -> str:
    text = "# What each status means.\nSTATUSES = {\n"
    text += "".join(_entry(name, words) for name, words in statusComments(headers).items())
    text += "}\n\n# What each function says of its statuses.\nWORDS = {\n"
    for name, words in statusWords(headers).items():
        told = {status: text_ for status, text_ in words.items() if text_}
        if told:
            text += f'    "{name}": {{\n' + "".join(_entry(k, v, "        ") for k, v in told.items()) + "    },\n"
    text += "}\n\nDOCS = {\n"
    words_ = statusWords(headers)
    for function in headers.functions:
        doc = describe(function, parse(table[function.name]), words_[function.name])
        text += f'    "{function.name}": {literal(doc)},\n'
    return text + "}\n"


def _entry(name: str, words: str, indent: str = "    ") -> str:
    lines = textwrap.wrap(words, WIDTH - 8, break_on_hyphens=False)
    quoted = [_quoted(line + (" " if at + 1 < len(lines) else "")) for at, line in enumerate(lines)]
    if len(quoted) == 1:
        return f'{indent}"{name}": {quoted[0]},\n' if len(quoted[0]) + len(name) < 100 else (
            f'{indent}"{name}": (\n{indent}    {quoted[0]}\n{indent}),\n')
    return f'{indent}"{name}": (\n' + "".join(f"{indent}    {q}\n" for q in quoted) + f"{indent}),\n"


def _quoted(text: str) -> str:
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'
