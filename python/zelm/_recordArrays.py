"""Arrays of records as arguments and results, and other rows of things."""

import ctypes
from typing import Any, List

import numpy as np

from . import _arrays, _records
from ._errors import refuse
from ._record import Record, dtypeOf

_F8 = np.dtype("f8")


def arrayOfRecords(cls: Any, count: int) -> np.ndarray:
    """A numpy array with a record's fields."""
    made = np.zeros(count, dtypeOf(cls))
    if cls._sized_:
        made["size"] = ctypes.sizeof(cls)
    return made


def recordsOf(cls: Any, value: Any, function: str, name: str) -> np.ndarray:
    """Records in a row: of an array of that kind, or one by one."""
    if isinstance(value, np.ndarray) and value.dtype == dtypeOf(cls):
        made = np.require(value, None, ["C", "A"])
    else:
        items = [_arrays.toRecord(cls, item, function, f"{name}[{at}]") for at, item in enumerate(value)]
        made = np.frombuffer(b"".join(bytes(item) for item in items), dtypeOf(cls))
    if cls._sized_ and (made["size"] != ctypes.sizeof(cls)).any():
        refuse(function, f"{name} has a record whose size is not {ctypes.sizeof(cls)}, that of {cls.__name__}")
    return made


def string(text: Any) -> Any:
    """Words of the library; None where it has none."""
    return None if text is None else text.decode("utf-8", "replace")


class Views:
    """Views for zelmCalibCameraParam, with the arrays that they point to."""

    def __init__(self, entries: Any, arrays: List[np.ndarray]) -> None:
        self.entries = entries
        self.arrays = arrays
        self._as_parameter_ = ctypes.cast(entries, ctypes.c_void_p)

    def __len__(self) -> int:
        return len(self.entries)


def entriesOfViews(views: Any, function: str, name: str) -> Views:
    """Zelm2ViewPtnEntry of pairs of arrays, plane and image points."""
    arrays = []
    pairs = list(views)
    entries = (_records.Zelm2ViewPtnEntry * len(pairs))()
    for index, pair in enumerate(pairs):
        where = f"{name}[{index}]"
        if isinstance(pair, Record) or len(pair) != 2:
            raise TypeError(f"{function}: {where} must be a pair of arrays, plane and image points")
        plane = _arrays.toArray(pair[0], _F8, function, where + "[0]")
        _arrays.checkShape(plane, ("n", 2), function, where + "[0]")
        image = _arrays.toArray(pair[1], _F8, function, where + "[1]")
        _arrays.checkShape(image, (len(plane), 2), function, where + "[1]")
        entries[index].count, entries[index].plane, entries[index].image = len(plane), plane, image
        arrays += [plane, image]
    return Views(entries, arrays)
