"""Writes core.pyi: the types of what zelm.core makes at run time."""

from typing import List

from headerReader import Headers
from _coreTable import TABLE
from _signature import Item, parse

ARRAYS = {"f8": "float64", "f4": "float32", "i4": "int32", "u4": "uint32", "u1": "uint8"}

HEAD = '''"""Types of zelm.core.

Written by tools/makeRecords.py from the call table and the C headers: change those, then run it.
"""

import ctypes
from typing import Any, NamedTuple, Optional, Sequence, Tuple, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

from ._errors import ZelmError as ZelmError
from ._errors import ZelmMemoryError as ZelmMemoryError
from ._errors import ZelmParamError as ZelmParamError
from ._handles import Zelm2ViewCalib as Zelm2ViewCalib
from ._handles import ZelmMatrix as ZelmMatrix
from ._handles import ZelmVector as ZelmVector
from ._records import *

_Numbers = Union[Sequence[float], NDArray[Any]]
_Image = NDArray[np.uint8]
_Camera = Union[str, int]

def library() -> ctypes.CDLL: ...
'''


def argumentType(item: Item) -> str:
    kinds = {
        "int": "int",
        "float": "float",
        "camera": "_Camera",
        "image": "_Image",
        "planar": "_Image",
        "argb": "_Image",
        "u1": "_Image",
        "views": "Sequence[Tuple[ArrayLike, ArrayLike]]",
        "images": "Tuple[Optional[_Image], Optional[_Image]]",
        "bytes": "Union[bytes, bytearray, memoryview]",
        "object": "None",
    }
    if item.type in kinds:
        kind = kinds[item.type]
    elif item.type in ARRAYS:
        kind = f"NDArray[np.{ARRAYS[item.type]}]" if item.inOut else "ArrayLike"
    elif item.inOut or item.type in ("Zelm2ViewCalib", "ZelmVector", "ZelmMatrix"):
        kind = item.type
    else:
        kind = f"Union[{item.type}, _Numbers]"
    return f"Optional[{kind}]" if item.optional or (item.default and not item.isConstant) else kind


def resultType(item: Item, arguments: List[Item], returns: str) -> str:
    if item.expression == "return":
        return "float" if returns == "double" else "int"
    for argument in arguments:
        if argument.name == item.name:
            item = argument
    if item.type in ("int", "float", "bytes"):
        return item.type
    if item.type in ("image", "planar", "argb", "u1"):
        return "_Image"
    if item.type in ARRAYS:
        return f"NDArray[np.{ARRAYS[item.type]}]"
    return "NDArray[np.void]" if item.dims else item.type


def writeStub(headers: Headers) -> str:
    text = HEAD
    for function in headers.functions:
        entry = parse(TABLE[function.name])
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
