"""Writes core.pyi: the types of what zelm.core makes at run time."""

from typing import Dict, List

from headerReader import Headers
from _signature import Item, parse

ARRAYS = {"f8": "float64", "f4": "float32", "i4": "int32", "u4": "uint32", "u1": "uint8", "i8": "int64"}
ARRAYS["u2"] = "uint16"
HANDLES = ("Zelm2ViewCalib", "ZelmVector", "ZelmMatrix", "ZelmMeasureRig", "ZelmMeasureAdjustment", "ZelmMeasurePlan")

HEAD = '''"""Types of zelm.{module}.

Written by tools/makeRecords.py from the call table and the C headers: change those, then run it.
"""

import ctypes
from typing import Any, List, NamedTuple, Optional, Sequence, Tuple, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

{imports}from ._records import *

_Numbers = Union[Sequence[float], NDArray[Any]]
_Image = NDArray[np.uint8]
_Camera = Union[str, int]

def library() -> ctypes.CDLL: ...
'''
IMPORTS = {
    "core": {
        "_errors": ("ZelmError", "ZelmMemoryError", "ZelmParamError"),
        "_handles": ("Zelm2ViewCalib", "ZelmMatrix", "ZelmVector"),
    },
    "measure": {
        "_errors": (
            "MeasurementWarning",
            "ZelmCancelledError",
            "ZelmDataError",
            "ZelmError",
            "ZelmMemoryError",
            "ZelmParamError",
        ),
        "_handles": ("Zelm2ViewCalib", "ZelmMeasureAdjustment", "ZelmMeasurePlan", "ZelmMeasureRig"),
    },
}
# What functions that are written by hand return.
LISTS = ("results", "relationResults", "views", "causes")


def argumentType(item: Item) -> str:
    kinds = {
        "int": "int",
        "float": "float",
        "camera": "_Camera",
        "image": "_Image",
        "planar": "_Image",
        "argb": "_Image",
        "gray": "_Image",
        "u1": "_Image",
        "views": "Sequence[Tuple[ArrayLike, ArrayLike]]",
        "images": "Tuple[Optional[_Image], Optional[_Image]]",
        "bytes": "Union[bytes, bytearray, memoryview]",
        "object": "Sequence[bytes]" if item.name == "files" else "None",
    }
    if item.type in kinds:
        kind = kinds[item.type]
    elif item.type in ARRAYS:
        kind = f"NDArray[np.{ARRAYS[item.type]}]" if item.inOut else "ArrayLike"
    elif item.dims:
        kind = f"Union[Sequence[{item.type}], NDArray[np.void]]"
    elif item.inOut or item.type in HANDLES:
        kind = item.type
    else:
        kind = f"Union[{item.type}, _Numbers]"
    return f"Optional[{kind}]" if item.optional or (item.default and not item.isConstant) else kind


def resultType(item: Item, arguments: List[Item], returns: str) -> str:
    if item.expression == "return":
        return {"double": "float", "const char*": "Optional[str]"}.get(returns, "int")
    for argument in arguments:
        if argument.name == item.name:
            item = argument
    if item.type in ("int", "float", "bytes"):
        return item.type
    if item.type in ("image", "planar", "argb", "u1"):
        return "_Image"
    if item.type in ARRAYS:
        return f"NDArray[np.{ARRAYS[item.type]}]"
    if item.dims and item.name in LISTS:
        return f"List[{item.type}]"
    return "NDArray[np.void]" if item.dims else item.type


def writeStub(module: str, headers: Headers, table: Dict[str, str]) -> str:
    lines = [f"from .{file} import {n} as {n}\n" for file, names in IMPORTS[module].items() for n in names]
    text = HEAD.format(module=module, imports="".join(lines))
    for function in headers.functions:
        entry = parse(table[function.name])
        results = [resultType(item, entry.arguments, function.returns) for item in entry.results]
        kind = results[0] if results else "None"
        if len(results) > 1:
            kind = function.name + "Result"
            text += f"\nclass {kind}(NamedTuple):\n"
            text += "".join(f"    {item.name}: {result}\n" for item, result in zip(entry.results, results))
        lines = []
        for item in entry.given():
            default = "" if item.default is None else f" = {item.default if item.isConstant else 'None'}"
            lines.append(f"    {item.name}: {argumentType(item)}{default},\n")
        text += f"\ndef {function.name}(\n{''.join(lines)}) -> {kind}: ...\n" if lines else (
            f"\ndef {function.name}() -> {kind}: ...\n")
    return text
