"""The description of a plate, from its JSON file."""

import json
import math
import os
from functools import lru_cache
from typing import Any, Dict, List, NamedTuple, Tuple

import numpy as np

from .._records import Zelm2ViewPatternDesc
from .batchFault import BatchError
from .pairProvenance import contentOf, digestOf

_LENGTHS = {
    "fieldWidth": "d0", "fieldHeight": "d1", "dotDiameter": "d2", "markerDiameter": "d3",
    "dotPitchX": "d4", "dotPitchY": "d5", "markerDistanceX": "d6", "markerDistanceY": "d7",
}
_WORDS = ("units", "name", "maker", "serial", "date", "certificate", "description", "comment")
_NUMBERS = {"markers": 3, "minDots": 0, "minDotArea": 20, "minEdgeStrength": 3.0}
_OTHERS = ("polarity", "positions", "expansion", "temperature")
_SHARE_OF_DOTS = 0.5  # of the field's, that an image must yield


class BatchPlate(NamedTuple):
    """A plate, with the measured places of its dots where they are known."""

    pattern: Zelm2ViewPatternDesc
    unit: str
    places: Dict[Tuple[int, int], np.ndarray]

    def distance(self, a: Any, b: Any) -> float:
        """Between the dots of two columns and rows."""
        return float(np.linalg.norm(self._place(a) - self._place(b)))

    def _place(self, index: Any) -> np.ndarray:
        key = (int(index[0]), int(index[1]))
        if key in self.places:
            return self.places[key]
        return np.array([key[0] * self.pattern.d4, key[1] * self.pattern.d5, 0.0])


def digestOfPlate(path: str) -> str:
    """Digest of the description, and of the file of positions that it names."""
    data = contentOf(path)
    positions = _fieldsOf(path, data)[0].get("positions")
    if isinstance(positions, str):
        data += contentOf(os.path.join(os.path.dirname(path), positions))
    return digestOf(data)


@lru_cache(maxsize=8)
def plateOf(path: str, digest: str) -> BatchPlate:
    """Reads the file that `zelm calibrate --plate` reads; the plate has its own temperature."""
    if digestOfPlate(path) != digest:
        raise BatchError(f"{path}: has changed since the job began: run the job again")
    fields, isShort = _fieldsOf(path, contentOf(path))
    if not isShort:
        _refuseUnknown(path, fields)
    return _plateOfFields(path, fields, isShort)


def _fieldsOf(path: str, data: bytes) -> Tuple[Dict[str, Any], bool]:
    """The fields, and whether they have the short names of the object "pattern"."""
    try:
        content = json.loads(data)
    except ValueError as error:
        raise BatchError(f"{path}: no JSON: {error}") from None
    isShort = isinstance(content, dict) and isinstance(content.get("pattern"), dict)
    fields = content["pattern"] if isShort else content
    if not isinstance(fields, dict):
        raise BatchError(f"{path}: no description of a plate: an object of lengths is wanted")
    return fields, isShort


def _refuseUnknown(path: str, fields: Dict[str, Any]) -> None:
    known = {*_LENGTHS, *_WORDS, *_NUMBERS, *_OTHERS}
    for name in fields:
        if name not in known:
            raise BatchError(f"{path}: {name}: unknown field; known are {', '.join(sorted(known))}")


def _plateOfFields(path: str, fields: Dict[str, Any], isShort: bool) -> BatchPlate:
    values: Dict[str, Any] = {}
    for name, member in _LENGTHS.items():
        field = member if isShort else name
        values[member] = _positive(path, field, fields.get(field))
    for name, usual in _NUMBERS.items():
        values[name] = _positive(path, name, fields[name]) if name in fields else usual
    if fields.get("polarity", 0) not in ("dark", "bright", 0, 1):
        raise BatchError(f'{path}: polarity: "dark" or "bright" is wanted')
    values["polarity"] = int(fields.get("polarity", 0) in ("bright", 1))
    for name in ("markers", "minDots", "minDotArea"):
        values[name] = int(values[name])
    values["minDots"] = values["minDots"] or _usualMinDots(values)
    places = {} if isShort else _placesOf(path, fields.get("positions"))
    return BatchPlate(Zelm2ViewPatternDesc(**values), str(fields.get("units", "mm")), places)


def _positive(path: str, name: str, value: Any) -> float:
    if isinstance(value, bool) or not isinstance(value, (int, float)) or not 0 < value < math.inf:
        raise BatchError(f"{path}: {name}: a number greater than 0 is wanted, not {json.dumps(value)}")
    return value


def _usualMinDots(values: Dict[str, Any]) -> int:
    columns = 2 * math.floor(0.5 * values["d0"] / values["d4"] + 1e-9) + 1
    rows = 2 * math.floor(0.5 * values["d1"] / values["d5"] + 1e-9) + 1
    return max(4, math.floor(_SHARE_OF_DOTS * columns * rows))


def _placesOf(path: str, positions: Any) -> Dict[Tuple[int, int], np.ndarray]:
    """Measured places, from rows in the file itself or in the CSV file that it names."""
    rows: List[Any] = positions if isinstance(positions, list) else []
    source = path
    if isinstance(positions, str):
        source = os.path.join(os.path.dirname(path), positions)
        try:
            with open(source, encoding="utf-8-sig") as file:
                lines = [line.strip() for line in file if line.strip() and line[0] not in "#"]
        except OSError as error:
            raise BatchError(f"{source}: cannot be read: {error.strerror}") from None
        rows = [line.replace(";", ",").replace("\t", ",").split(",") for line in lines if not line[0].isalpha()]
    places = {}
    for number, row in enumerate(rows, 1):
        try:
            column, line, *place = (float(value) for value in row)
            if len(place) not in (2, 3) or column % 1 or line % 1 or not all(map(math.isfinite, place)):
                raise ValueError
        except (TypeError, ValueError):
            raise BatchError(f"{source}: positions: row {number} is not column,row,x,y or column,row,x,y,z") from None
        places[int(column), int(line)] = np.array([*place, 0.0][:3])
    return places
