"""The points of a result as CSV and PLY, for programs that do not read Zarr."""

import os
from typing import TYPE_CHECKING, Any, Dict, List, Tuple

import numpy as np
import zarr

from .pairList import PairRecord
from .pairWriter import patiently, writeFile

if TYPE_CHECKING:
    from .pairWork import Settings

_SUFFIXES = {2: ("_x", "_y"), 3: ("_X", "_Y", "_Z")}


def exportPair(record: PairRecord, settings: "Settings", anew: bool) -> None:
    """Writes what the job wants beside the store; files that are there already are kept unless the result is new."""
    for folder, suffix, make in ((settings.csv, ".csv", csvOf), (settings.ply, ".ply", plyOf)):
        path = os.path.join(folder, record.station, record.pair + suffix)
        if folder and (anew or not os.path.exists(path)):
            group = zarr.open_group(os.path.join(settings.store, record.station, record.pair), mode="r")
            arrays = {name: array[...] for name, array in sorted(group.arrays())}
            data = make(arrays)
            patiently(lambda: _write(path, data), settings.patience, path)


def _write(path: str, data: bytes) -> None:
    os.makedirs(os.path.dirname(path), exist_ok=True)
    writeFile(path, data)


def columnsOf(arrays: Dict[str, np.ndarray]) -> List[Tuple[str, np.ndarray]]:
    """The arrays that have an entry for each point, as named columns."""
    lengths = [len(values) for values in arrays.values() if values.ndim]
    count = len(arrays["statuses"]) if "statuses" in arrays else max(lengths, default=0)
    columns: List[Tuple[str, np.ndarray]] = []
    for name, values in arrays.items():
        if values.ndim == 1 and len(values) == count:
            columns.append((name, values))
        elif values.ndim == 2 and len(values) == count:
            endings = _SUFFIXES.get(values.shape[1], tuple(f"_{i}" for i in range(values.shape[1])))
            columns += [(name + ending, values[:, i]) for i, ending in enumerate(endings)]
    return columns


def csvOf(arrays: Dict[str, np.ndarray]) -> bytes:
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


def plyOf(arrays: Dict[str, np.ndarray]) -> bytes:
    """A binary point cloud of the points whose status is 0."""
    positions = arrays.get("positions", np.zeros((0, 3)))
    good = (arrays["statuses"] == 0) if "statuses" in arrays else np.ones(len(positions), dtype=bool)
    points = positions[good[: len(positions)]]
    header = ["ply", "format binary_little_endian 1.0", f"element vertex {len(points)}"]
    header += [f"property double {axis}" for axis in "xyz"] + ["end_header", ""]
    return "\n".join(header).encode() + np.ascontiguousarray(points, dtype="<f8").tobytes()
