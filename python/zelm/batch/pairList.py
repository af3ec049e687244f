"""The pairs of a batch: from a manifest in CSV, or from patterns of file names."""

import csv
import glob
import os
import re
from datetime import date
from pathlib import Path
from typing import Dict, Iterable, List, NamedTuple, Tuple

from .batchFault import BatchError, BatchUsageError

DEFAULT_STATION = "rig"
IMAGE_SUFFIXES = (".png", ".pgm", ".ppm", ".tif", ".tiff", ".jpg", ".jpeg", ".bmp", ".npy")
_NAME = re.compile(r"[A-Za-z0-9][A-Za-z0-9._+=@~-]{0,199}")  # of a folder in the store
_WILD = re.compile(r"(\{station\}|\{day\}|\{time\}|\*|\?)")
_TIME = re.compile(r"([01]\d|2[0-3]):[0-5]\d(:[0-5]\d(\.\d+)?)?")


class PairRecord(NamedTuple):
    """One pair of the batch. Paths are absolute; what a pair does not have is empty."""

    station: str
    pair: str
    left: str = ""
    right: str = ""
    points: str = ""
    day: str = ""
    time: str = ""
    trouble: str = ""  # why it cannot be done, known before it is tried

    def label(self) -> str:
        """How messages name it."""
        return f"{self.station}/{self.pair}"


def pairsOfManifest(path: str) -> List[PairRecord]:
    """Reads a CSV file with the columns pair (or id) and of station, left, right, points, day, time those needed.

    Paths are looked for beside the manifest. Columns of other names are passed over.
    """
    try:
        with open(path, newline="", encoding="utf-8-sig") as file:
            text = file.read()
    except (OSError, UnicodeDecodeError) as error:
        raise BatchError(f"{path}: cannot be read as a manifest: {_why(error)}") from None
    header = text.split("\n", 1)[0]
    reader = csv.DictReader(text.splitlines(), delimiter=max(",;\t", key=header.count), strict=True)
    fields = {(name or "").strip().lower(): name for name in reader.fieldnames or []}
    if "pair" not in fields and "id" in fields:
        fields["pair"] = fields["id"]
    if "pair" not in fields:
        raise BatchError(f"{path}: no column pair or id: the first line must name the columns, as pair,left,right")
    folder = os.path.dirname(os.path.abspath(path))
    records = []
    try:
        for row in reader:
            cells = {name: (row.get(field) or "").strip() for name, field in fields.items()}
            if any(cells.values()):
                records.append(_recordOfRow(cells, folder, f"{path}:{reader.line_num}"))
    except csv.Error as error:
        raise BatchError(f"{path}:{reader.line_num}: {error}") from None
    if not records:
        raise BatchError(f"{path}: no pairs below the line of the columns")
    return _checked(records, path)


def _recordOfRow(cells: Dict[str, str], folder: str, where: str) -> PairRecord:
    paths = {name: os.path.join(folder, cells[name]) if cells.get(name) else "" for name in ("left", "right", "points")}
    day, time = cells.get("day", ""), cells.get("time", "")
    if day and not _isDay(day):
        raise BatchError(f"{where}: the day {day!r} is no day as 2025-03-31")
    if time and not _TIME.fullmatch(time):
        raise BatchError(f"{where}: the time {time!r} is no time as 14:05 or 14:05:30")
    return PairRecord(cells.get("station") or DEFAULT_STATION, cells["pair"], day=day, time=time, **paths)


def _isDay(text: str) -> bool:
    try:
        return bool(re.fullmatch(r"\d{4}-\d\d-\d\d", text)) and bool(date.fromisoformat(text))
    except ValueError:
        return False


def pairsOfPatterns(left: str, right: str, points: str = "") -> List[PairRecord]:
    """Pairs files whose names fit patterns, by what stands for the wildcards.

    A pattern has ``*`` and ``?`` and, in place of ``*``, ``{station}``, ``{day}`` and ``{time}``; or it is a folder,
    of which all images are taken, by their names without suffix. A file without its counterpart is a pair that cannot
    be done.
    """
    given = {"left": left, "right": right, "points": points}
    if left and os.path.abspath(left) == os.path.abspath(right or os.devnull):
        raise BatchUsageError(f"--left and --right are both {left}: they must name different images")
    found = {side: _filesOf(pattern) for side, pattern in given.items() if pattern}
    for side, files in found.items():
        if not files:
            raise BatchError(f"{given[side]}: no file fits (--{side}); put a pattern in quotes")
    records = []
    for key in sorted({key for files in found.values() for key in files}):
        station, day, time, pair = key
        paths = {side: files.get(key, "") for side, files in found.items()}
        missing = [side for side, path in paths.items() if not path]
        trouble = f"no file of {given[missing[0]]} goes with {next(filter(None, paths.values()))}" if missing else ""
        records.append(PairRecord(station, pair, day=day, time=time, trouble=trouble, **paths))
    return _checked(records, left or points)


def _filesOf(pattern: str) -> Dict[Tuple[str, str, str, str], str]:
    """The files that fit, by station, day, time and name of the pair."""
    if os.path.isdir(pattern):
        paths = [path for path in Path(pattern).iterdir() if path.suffix.lower() in IMAGE_SUFFIXES]
        return _unique([((DEFAULT_STATION, "", "", path.stem), str(path)) for path in paths], pattern)
    if "**" in pattern:
        raise BatchUsageError(f"{pattern}: ** is not understood; a * stands for one folder or a part of a name")
    pieces = _WILD.split(pattern)
    regex, names = "", []
    for place, piece in enumerate(pieces):
        if place % 2 == 0:
            regex += re.escape(piece)
        else:
            regex += "([^/])" if piece == "?" else "([^/]+?)" if piece != "*" else "([^/]*)"
            names.append(piece.strip("{}"))
    globbed = "".join(glob.escape(p) if i % 2 == 0 else "?" if p == "?" else "*" for i, p in enumerate(pieces))
    entries = []
    for path in glob.iglob(globbed):
        match = re.fullmatch(regex, path)
        if match and os.path.isfile(path):
            entries.append((_keyOf(list(zip(names, match.groups())), path), path))
    return _unique(entries, pattern)


def _keyOf(parts: List[Tuple[str, str]], path: str) -> Tuple[str, str, str, str]:
    named = {name: value for name, value in parts if name not in "*?"}
    day, time = named.get("day", ""), named.get("time", "")
    if day and not _isDay(day):
        raise BatchError(f"{path}: {day!r}, where the pattern has {{day}}, is no day as 2025-03-31")
    pair = "_".join(value for name, value in parts if name != "station" and value)
    return named.get("station", DEFAULT_STATION), day, time, pair or Path(path).stem


def _unique(entries: Iterable[Tuple[Tuple[str, str, str, str], str]], pattern: str) -> Dict:
    files: Dict[Tuple[str, str, str, str], str] = {}
    for key, path in entries:
        if key in files:
            raise BatchError(f"{pattern}: {files[key]} and {path} are both named {key[3]}")
        files[key] = os.path.abspath(path)
    return files


def _checked(records: List[PairRecord], source: str) -> List[PairRecord]:
    """Refuses names that are no folders, and two pairs of one name."""
    seen = set()
    for record in records:
        for what, name in (("pair", record.pair), ("station", record.station)):
            if not _NAME.fullmatch(name):
                raise BatchError(
                    f"{source}: the {what} {name!r} cannot name a folder of the store: take letters, digits and ._+=@~-"
                )
        key = (record.station, record.pair)
        if key in seen:
            raise BatchError(f"{source}: two pairs are named {record.label()}: give each its own name or station")
        seen.add(key)
    return records


def _why(error: Exception) -> str:
    return getattr(error, "strerror", None) or str(error)
