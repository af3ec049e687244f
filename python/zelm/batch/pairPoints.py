"""Pixel pairs from CSV, as `zelm triangulate` reads them."""

import csv
import math
from typing import Dict, List, Optional, Tuple

import numpy as np

from .batchFault import BatchError

_PIXELS = ("xl", "yl", "xr", "yr")


def pixelPairsOf(name: str, data: bytes) -> Tuple[np.ndarray, np.ndarray, np.ndarray]:
    """Names, left and right pixels of the rows ``xL,yL,xR,yR`` or ``id,xL,yL,xR,yR``.

    A first line may name the columns in any order, and others beside them.
    """
    try:
        lines = data.decode("utf-8-sig").splitlines()
    except UnicodeDecodeError:
        raise BatchError(f"{name}: no text: a CSV of pixel pairs is wanted") from None
    rows = [(number, line) for number, line in enumerate(lines, 1) if line.strip() and not line.startswith("#")]
    if not rows:
        raise BatchError(f"{name}: no pixel pairs: rows xL,yL,xR,yR are wanted")
    delimiter = max(",;\t", key=rows[0][1].count)
    cells = [(number, _cellsOf(line, delimiter)) for number, line in rows]
    columns = _columnsOf(cells[0][1])
    if columns is not None:
        cells = cells[1:]
    ids: List[str] = []
    pixels: List[List[float]] = []
    for place, (number, row) in enumerate(cells, 1):
        named = columns or {"id": 0, **{key: i + 1 for i, key in enumerate(_PIXELS)}}
        if columns is None and len(row) == len(_PIXELS):
            named = {key: i for i, key in enumerate(_PIXELS)}
        pixels.append(_pixelsOf(row, named, f"{name}:{number}"))
        ids.append(row[named["id"]] if "id" in named and named["id"] < len(row) else str(place))
    if not pixels:
        raise BatchError(f"{name}: no pixel pairs below the line of the columns")
    both = np.array(pixels)
    return np.array(ids), np.ascontiguousarray(both[:, :2]), np.ascontiguousarray(both[:, 2:])


def _cellsOf(line: str, delimiter: str) -> List[str]:
    return [cell.strip() for cell in next(csv.reader([line], delimiter=delimiter))]


def _columnsOf(cells: List[str]) -> Optional[Dict[str, int]]:
    """Places of the columns where the cells name them."""
    names = {cell.lower(): place for place, cell in enumerate(cells)}
    return names if all(pixel in names for pixel in _PIXELS) else None


def _pixelsOf(row: List[str], columns: Dict[str, int], where: str) -> List[float]:
    try:
        values = [float(row[columns[pixel]]) for pixel in _PIXELS]
    except (ValueError, IndexError):
        raise BatchError(f"{where}: four pixel coordinates xL,yL,xR,yR are wanted, not {','.join(row)!r}") from None
    if not all(map(math.isfinite, values)):
        raise BatchError(f"{where}: a coordinate is not finite")
    return values
