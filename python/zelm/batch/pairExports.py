"""The points of a result as CSV and PLY, for programs that do not read Zarr."""

import os
from typing import TYPE_CHECKING, Any, Dict, List, Tuple

import numpy as np
import zarr

from .pairList import PairRecord
from .pairWriter import patiently, writeFile

Arrays = Dict[str, Tuple[np.ndarray, List[str]]]  # with the names of their axes

if TYPE_CHECKING:
    from .pairWork import Settings

_ENDINGS = {"axis": ("_x", "_y"), "space": ("_X", "_Y", "_Z"), "camera": ("_left", "_right")}
_FIRST = ("ids", "statuses", "grid", "left", "right", "positions")  # columns, the others follow by name


def exportPair(record: PairRecord, settings: "Settings", anew: bool) -> None:
    """Writes what the job wants beside the store; files that are there already are kept unless the result is new."""
    for folder, suffix, make in ((settings.csv, ".csv", csvOf), (settings.ply, ".ply", plyOf)):
        path = os.path.join(folder, record.station, record.pair + suffix)
        if folder and (anew or not os.path.exists(path)):
            group = zarr.open_group(os.path.join(settings.store, record.station, record.pair), mode="r")
            data = make({name: (array[...], array.attrs["_ARRAY_DIMENSIONS"]) for name, array in group.arrays()})
            patiently(lambda: _write(path, data), settings.patience, path)


def _write(path: str, data: bytes) -> None:
    os.makedirs(os.path.dirname(path), exist_ok=True)
    writeFile(path, data)


def columnsOf(arrays: Arrays) -> List[Tuple[str, np.ndarray]]:
    """The arrays that have an entry for each point, as named columns."""
    axes = [dimensions[0] for _, dimensions in arrays.values() if dimensions]
    point = "point" if "point" in axes else next(iter(axes), "")
    order = sorted(arrays, key=lambda name: (_FIRST.index(name) if name in _FIRST else len(_FIRST), name))
    columns: List[Tuple[str, np.ndarray]] = []
    for name in order:
        values, dimensions = arrays[name]
        if dimensions == [point]:
            columns.append((name, values))
        elif len(dimensions) == 2 and dimensions[0] == point:
            numbers = tuple(f"_{i}" for i in range(values.shape[1]))
            columns += [(name + end, values[:, i]) for i, end in enumerate(_ENDINGS.get(dimensions[1], numbers))]
    return columns


def csvOf(arrays: Arrays) -> bytes:
    """A line a point; a number that is not known is left empty."""
    columns = columnsOf(arrays)
    lines = [",".join(name for name, _ in columns)]
    for row in zip(*(values.tolist() for _, values in columns)):
        lines.append(",".join(_cell(value) for value in row))
    return ("\n".join(lines) + "\n").encode()


def _cell(value: Any) -> str:
    if isinstance(value, float):
        return "" if value != value else repr(value)
    text = str(value)
    return '"' + text.replace('"', '""') + '"' if any(c in text for c in ',"\n') else text


def plyOf(arrays: Arrays) -> bytes:
    """A binary point cloud of the points whose status is 0."""
    points = arrays["positions"][0] if "positions" in arrays else np.zeros((0, 3))
    if "statuses" in arrays:
        points = points[arrays["statuses"][0] == 0]
    header = ["ply", "format binary_little_endian 1.0", f"element vertex {len(points)}"]
    header += [f"property double {axis}" for axis in "xyz"] + ["end_header", ""]
    return "\n".join(header).encode() + np.ascontiguousarray(points, dtype="<f8").tobytes()
