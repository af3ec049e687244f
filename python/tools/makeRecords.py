#!/usr/bin/env python3
"""Writes what the package takes from the C headers: records, enums, prototypes, docstrings and types.

    makeRecords.py [FOLDER]    into the package beside this folder, or into FOLDER

Sizes and offsets come from the C compiler (cc), not from rules of this program.
"""

import subprocess
import sys
import tempfile
from pathlib import Path
from typing import Dict, List, Tuple

sys.path.insert(0, str(Path(__file__).resolve().parent))
sys.path.insert(1, str(Path(__file__).resolve().parent.parent / "zelm"))  # its tables, which import nothing

import docWriter  # noqa: E402
import stubWriter  # noqa: E402
from _coreTable import TABLE as CORE  # noqa: E402
from _measureTable import TABLE as MEASURE  # noqa: E402
from headerReader import Enum, Field, Headers, Record, readFolder  # noqa: E402

ROOT = Path(__file__).resolve().parent.parent.parent
BANNER = '"""{}\n\nWritten by tools/makeRecords.py from the C headers: change those, then run it.\n"""\n\n'

NUMBERS = {
    "double": "c_double",
    "float": "c_float",
    "int32_t": "c_int32",
    "int64_t": "c_int64",
    "uint8_t": "c_uint8",
    "uint32_t": "c_uint32",
    "size_t": "c_size_t",
    "char": "c_char",
}
POINTEES = {"double": "f8", "float": "f4", "int32_t": "i4", "int64_t": "i8", "uint8_t": "u1", "Point2d": "f8"}


def layoutProgram(both: List[Headers]) -> str:
    """A C program that prints size and offsets of every record, and the value of every enumerator."""
    lines = ['#include <stdio.h>', '#include "zelmLib.h"', '#include "zelmMeasure.h"', "int main(void) {"]
    for headers in both:
        for record in headers.records:
            offsets = [f"(int)offsetof({record.name}, {f.name})" for f in record.fields]
            form = " ".join(["%d"] * (len(offsets) + 1))
            lines.append(f'printf("R {record.name} {form}\\n", (int)sizeof({record.name}), {", ".join(offsets)});')
        members = [member.name for enum in headers.enums for member in enum.members]
        for name in members + [constant.name for constant in headers.constants]:
            lines.append(f'printf("E {name} %d\\n", (int){name});')
    return "\n".join(lines + ["return 0; }", ""])


def runLayout(both: List[Headers]) -> Tuple[Dict[str, Tuple[int, ...]], Dict[str, int]]:
    """What that program prints: records (size, offsets...) and enumerators by name."""
    with tempfile.TemporaryDirectory() as folder:
        source, program = Path(folder) / "layout.c", Path(folder) / "layout"
        source.write_text(layoutProgram(both))
        subprocess.run(["cc", "-std=c99", f"-I{ROOT / 'include'}", "-o", str(program), str(source)], check=True)
        printed = subprocess.run([str(program)], check=True, capture_output=True, text=True).stdout
    records: Dict[str, Tuple[int, ...]] = {}
    values: Dict[str, int] = {}
    for line in printed.splitlines():
        kind, name, *numbers = line.split()
        if kind == "R":
            records[name] = tuple(int(n) for n in numbers)
        else:
            values[name] = int(numbers[0])
    return records, values


def wrapped(text: str, indent: str, first: str = "") -> str:
    return "\n".join(docWriter.wrap(first + text, indent))


def enumName(enum: Enum) -> str:
    """Enums without a tag are named after what their members share."""
    if enum.name:
        return enum.name
    if enum.members[0].name == "ZELM_OK":
        return "ZelmStatus"
    if len(enum.members) == 1:
        return ""
    parts = [member.name.split("_") for member in enum.members]
    shared = [words[0] for words in zip(*parts) if len(set(words)) == 1]
    return "".join(word.capitalize() for word in shared)


def memberPrefix(enum: Enum) -> str:
    if enum.members[0].name == "ZELM_OK":
        return "ZELM_"
    parts = [member.name.split("_") for member in enum.members]
    shared = 0
    while all(len(words) > shared + 1 and words[shared] == parts[0][shared] for words in parts):
        shared += 1
    prefix = "_".join(parts[0][:shared]) + "_"
    return prefix if all(m.name[len(prefix)].isalpha() for m in enum.members) else "ZELM_"


def writeEnum(enum: Enum) -> str:
    name = enumName(enum)
    if not name:
        return f"{enum.members[0].name} = {enum.members[0].value}\n\n\n"
    prefix = memberPrefix(enum)
    text = f"class {name}(IntEnum):\n" + wrapped((enum.doc or name) + '"""', "    ", '"""') + "\n\n"
    for member in enum.members:
        text += f"    {member.name[len(prefix):]} = {member.value}\n"
    text += "\n\n"
    for member in enum.members:
        text += f"{member.name} = {name}.{member.name[len(prefix):]}\n"
    return text + "\n\n"


def fieldType(field: Field, callbacks: List[str]) -> Tuple[str, str]:
    """Name and ctypes type of a field; arrays and pointers get an underscore, for the property in front of them."""
    if field.type in callbacks:
        return field.name, field.type
    if field.isPointer:
        return "_" + field.name, "c_void_p"
    kind = NUMBERS.get(field.type, field.type)
    if not field.dims:
        return field.name, kind
    for n in reversed(field.dims):
        kind += f" * {n}"
    plain = field.type == "char" or field.type not in NUMBERS  # bytes, and arrays of records
    return (field.name if plain else "_" + field.name), kind


def writeRecord(record: Record, callbacks: List[str]) -> str:
    text = f"@record\nclass {record.name}(Record):\n" + wrapped(record.doc or record.name, "    ", '"""')
    text += "\n\n    Attributes\n    ----------\n"
    for field in record.fields:
        dims = "".join(f"[{n}]" for n in field.dims)
        text += f"    {field.name} : {field.type}{dims}\n"
        if field.doc:
            text += wrapped(field.doc, "        ") + "\n"
    text += '    """\n\n    _fields_ = [\n'
    for field in record.fields:
        text += '        ("{}", {}),\n'.format(*fieldType(field, callbacks))
    text += "    ]\n"
    pointers = {f.name: POINTEES.get(f.type.rstrip("*"), "") for f in record.fields if f.isPointer}
    if pointers:
        text += "    _pointers_ = {\n" + "".join(f'        "{n}": "{c}",\n' for n, c in pointers.items()) + "    }\n"
    return text + "\n\n"


def writeRecords(both: List[Headers]) -> str:
    text = BANNER.format("Records and enums of the C interfaces.")
    names = sorted(set(NUMBERS.values()) - {"c_uint32"})
    text += f"from ctypes import CFUNCTYPE, {', '.join(names)}, c_char_p, c_void_p\nfrom enum import IntEnum\n\n"
    text = text.replace("c_char, ", "c_char, c_char_p, ", 1).replace(", c_char_p, c_void_p", ", c_void_p")
    text += "from ._record import Record, record\n\n"
    text += "ZelmMeasureProgress = CFUNCTYPE(c_int32, c_void_p, c_char_p, c_int64, c_int64)\n"
    for headers in both:
        for constant in headers.constants:
            text += f"{constant.name} = {constant.value}\n"
    text += "\n\n"
    for headers in both:
        text += "".join(writeEnum(enum) for enum in headers.enums)
    for headers in both:
        text += "".join(writeRecord(record, headers.callbacks) for record in headers.records)
    layout, _ = runLayout(both)
    text += "# Size and offsets of every record as the C compiler lays it out on 64-bit machines.\nLAYOUT = {\n"
    for name, numbers in layout.items():
        text += wrapped(f'"{name}": ({", ".join(map(str, numbers))}),', "    ") + "\n"
    return text + "}\n"


def writePrototypes(both: List[Headers]) -> str:
    text = BANNER.format("Prototypes of the C interfaces: result, then type and name of each argument.")
    for name, headers in zip(("CORE", "MEASURE"), both):
        text += f"{name} = {{\n"
        for function in headers.functions:
            text += f'    "{function.name}": (\n        "{function.returns}",\n'
            text += "".join(f'        "{p.type} {p.name}",\n' for p in function.parameters) + "    ),\n"
        text += "}\n"
    return text


def main() -> None:
    package = Path(sys.argv[1]) if len(sys.argv) > 1 else ROOT / "python" / "zelm"
    both = [readFolder(ROOT / "include" / "zelm"), readFolder(ROOT / "include" / "zelmMeasure")]
    (package / "_records.py").write_text(writeRecords(both))
    (package / "_prototypes.py").write_text(writePrototypes(both))
    for module, headers, table in zip(("core", "measure"), both, (CORE, MEASURE)):
        docs = docWriter.writeDocs(headers, table)
        (package / f"_{module}Docs.py").write_text(BANNER.format(f"Docstrings of zelm.{module}.") + docs)
        (package / f"{module}.pyi").write_text(stubWriter.writeStub(module, headers, table))


if __name__ == "__main__":
    main()
