"""How stations change over the days, from the results of a batch."""

import argparse
import json
import math
import os
from typing import Any, Callable, Dict, List, Optional, Tuple

from .batchFault import BatchError
from .pairStore import pairsOfStore
from .pairWriter import writeFile

COLUMNS = (
    "station",
    "day",
    "pairs",
    "points",
    "epipolar_rms_px",
    "epipolar_worst_px",
    "epipolar_ratio",
    "length_rms",
    "length_worst",
    "scale_ppm",
    "scale_sigma_ppm",
    "drift_pairs",
    "drift_least_p",
    "found_share",
    "score",
)
_MILLION = 1e6


class StationDay:
    """What the pairs of one station and day tell together."""

    def __init__(self, station: str, day: str) -> None:
        self.station, self.day = station, day
        self.pairs = 0
        self._squares = {"epipolar": 0.0, "lengths": 0.0}
        self._counts = {"epipolar": 0, "lengths": 0}
        self._worst: Dict[str, float] = {}
        self._weights = self._scales = 0.0  # inverse variances
        self.driftPairs: Optional[int] = None
        self.leastP: Optional[float] = None
        self._found: List[float] = []
        self._scores: List[float] = []

    def add(self, figures: Dict[str, Any]) -> None:
        """Takes in the figures of a pair."""
        self.pairs += 1
        for name in self._counts:
            part = figures.get(name) or {}
            if part.get("count"):
                self._counts[name] += part["count"]
                self._squares[name] += part["count"] * part["rms"] ** 2
                self._worst[name] = max(self._worst.get(name, 0.0), part["worst"], key=abs)
        scale = figures.get("scale") or {}
        if scale.get("deviation", 0.0) > 0.0:
            self._weights += scale["deviation"] ** -2
            self._scales += scale["value"] * scale["deviation"] ** -2
        drift = figures.get("drift") or {}
        if "found" in drift:
            self.driftPairs = (self.driftPairs or 0) + int(drift["found"])
            self.leastP = min(drift["probability"], 1.0 if self.leastP is None else self.leastP)
        for name, values in (("found", self._found), ("score", self._scores)):
            if isinstance(figures.get(name), float):
                values.append(figures[name])

    def rms(self, name: str) -> Optional[float]:
        """Root mean square of "epipolar" or "lengths" over all pairs."""
        count = self._counts[name]
        return math.sqrt(self._squares[name] / count) if count else None

    def row(self, first: Optional[float]) -> Dict[str, Any]:
        """The line of the table; `first` is the epipolar RMS of the station's first day."""
        epipolar = self.rms("epipolar")
        hasScale = self._weights > 0.0
        return {
            "station": self.station,
            "day": self.day,
            "pairs": self.pairs,
            "points": self._counts["epipolar"] or None,
            "epipolar_rms_px": epipolar,
            "epipolar_worst_px": self._worst.get("epipolar"),
            "epipolar_ratio": epipolar / first if epipolar is not None and first else None,
            "length_rms": self.rms("lengths"),
            "length_worst": self._worst.get("lengths"),
            "scale_ppm": _MILLION * self._scales / self._weights if hasScale else None,
            "scale_sigma_ppm": _MILLION * self._weights**-0.5 if hasScale else None,
            "drift_pairs": self.driftPairs,
            "drift_least_p": self.leastP,
            "found_share": sum(self._found) / len(self._found) if self._found else None,
            "score": sum(self._scores) / len(self._scores) if self._scores else None,
        }


def driftTable(store: str) -> List[Dict[str, Any]]:
    """A line for each station and day, in order.

    Epipolar distances, lengths and scale are those of all pairs together: RMS over all points, the scale weighted by
    its variances. `drift_pairs` of the pairs tell on their own that a camera has moved. Results of match have no
    epipolar distances, as the search follows the lines: a wrong calibration shows in `found_share` and `score`.
    """
    days: Dict[Tuple[str, str], StationDay] = {}
    for station, pair, attributes in pairsOfStore(store):
        try:
            day, figures = attributes["provenance"]["day"], attributes["figures"]
        except KeyError:
            raise BatchError(f"{store}/{station}/{pair}: damaged: remove this folder and run the job again") from None
        days.setdefault((station, day), StationDay(station, day)).add(figures)
    if not days:
        raise BatchError(f"{store}: no results in this store")
    first: Dict[str, float] = {}
    for (station, _), entry in sorted(days.items()):
        rms = entry.rms("epipolar")
        if rms is not None:
            first.setdefault(station, rms)
    return [entry.row(first.get(station)) for (station, _), entry in sorted(days.items())]


def driftCsv(rows: List[Dict[str, Any]]) -> str:
    """The table as CSV; what is not known is empty."""
    lines = [",".join(COLUMNS)] + [",".join(_cell(row[name]) for name in COLUMNS) for row in rows]
    return "\n".join(lines) + "\n"


def _cell(value: Any) -> str:
    if isinstance(value, float):
        return f"{value:.6g}"
    return "" if value is None else str(value)


def driftCommand(given: argparse.Namespace) -> int:
    """`python3 -m zelm.batch drift`."""
    rows = driftTable(given.store)
    text = json.dumps(rows, indent=2) + "\n" if given.json else driftCsv(rows)
    picture = None
    if given.plot:
        from .driftPlot import driftPicture

        picture = driftPicture(rows, given.plot)
    if given.output:
        _write(given.output, driftCsv(rows).encode())
    if picture is not None:
        _write(given.plot, picture)
    if given.json or not given.output:
        print(text, end="")
    return 0


def _write(path: str, data: bytes, write: Callable[[str, bytes], None] = writeFile) -> None:
    try:
        write(os.path.abspath(path), data)
    except OSError as error:
        raise BatchError(f"{path}: cannot be written: {error.strerror}") from None
