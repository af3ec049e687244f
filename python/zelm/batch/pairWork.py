"""One pair, from its files to its place in the store: what a worker does."""

import importlib
import os
import threading
from functools import lru_cache
from typing import Any, Callable, Dict, NamedTuple, Optional, Tuple

import numpy as np

from .batchFault import BatchError, StoreFullError
from .pairExports import exportPair
from .pairImage import grayOf
from .pairList import PairRecord
from .pairProvenance import canonical, contentOf, digestOf, libraries
from .pairStore import readAttributes
from .pairWriter import PairArray, filesOf, writePair

MADE, KEPT, FAILED, STOPPED = "made", "kept", "failed", "stopped"
_working = threading.Lock()  # of two threads of a worker one works while the other one writes
KINDS = ("match", "triangulate", "verify", "detect")


class Settings(NamedTuple):
    """What all pairs of a job share; sent to every worker."""

    kind: str  # one of KINDS, or module:function
    options: Dict[str, Any]
    store: str
    job: str  # digest of the store's job record
    loaded: Dict[str, str]  # version and digests of the libraries that make the results
    calibrations: Dict[str, Tuple[str, str]]  # path and digest by station
    plate: Tuple[str, str] = ("", "")  # path and digest of the plate's description
    csv: str = ""  # folders of exports
    ply: str = ""
    patience: float = 60.0  # seconds to wait for room on the disk


class PairInputs:
    """The files of a pair, read once. What works on a pair takes everything from here, so that all is on record."""

    def __init__(self, record: PairRecord, settings: Settings) -> None:
        self.record = record
        self.options = settings.options
        self.settings = settings
        self._data = {side: contentOf(path) for side, path in self.paths().items()}

    def paths(self) -> Dict[str, str]:
        """The files that the pair has, by left, right and points."""
        return {side: path for side in ("left", "right", "points") for path in [getattr(self.record, side)] if path}

    def digests(self) -> Dict[str, str]:
        """SHA-256 of each file."""
        return {side: digestOf(data) for side, data in self._data.items()}

    def image(self, side: str) -> np.ndarray:
        """The gray image of a side, "left" or "right"."""
        return grayOf(getattr(self.record, side), self.bytesOf(side))

    def bytesOf(self, side: str) -> bytes:
        """The content of a file of the pair."""
        if side not in self._data:
            raise BatchError(f"{self.record.label()}: no {side} is named, which {self.settings.kind} needs")
        return self._data[side]

    def calibration(self) -> str:
        """The path of the station's calibration, whose content is as it was when the job began."""
        path, digest = self.settings.calibrations[self.record.station]
        if _digestOfFile(path, _stamp(path)) != digest:
            raise BatchError(f"{path}: has changed since the job began: run the job again")
        return path


class PairResult(NamedTuple):
    """What work on a pair gives."""

    arrays: Dict[str, PairArray]
    figures: Dict[str, Any]  # numbers about the whole pair, for attributes


class Report(NamedTuple):
    """What became of a pair."""

    record: PairRecord
    outcome: str  # MADE, KEPT, FAILED or STOPPED
    reason: str = ""
    waited: float = 0.0  # seconds, for room on the disk


def perform(record: PairRecord, settings: Settings) -> Report:
    """Does one pair. Never raises for what is wrong with it."""
    if record.trouble:
        return Report(record, FAILED, record.trouble)
    try:
        return _perform(record, settings)
    except StoreFullError as error:
        return Report(record, STOPPED, str(error))
    except BatchError as error:
        return Report(record, FAILED, str(error))
    except MemoryError:
        return Report(record, FAILED, f"{record.label()}: not enough memory")
    except Exception as error:  # the pair is told; the others go on
        return Report(record, FAILED, f"{record.label()}: {type(error).__name__}: {error}".replace("\n", " "))


def _perform(record: PairRecord, settings: Settings) -> Report:
    if libraries() != settings.loaded:
        return Report(record, STOPPED, "a worker has other libraries than the job: install the same on all machines")
    inputs = PairInputs(record, settings)
    provenance = provenanceOf(inputs)
    place = os.path.join(settings.store, record.station, record.pair)
    old = readAttributes(place)
    if old is not None and old.get("provenance") == provenance and isWhole(place, old):
        exportPair(record, settings, anew=False)
        return Report(record, KEPT)
    with _working:
        result = workOf(settings.kind)(inputs)
    attributes = {"provenance": provenance, "figures": result.figures, "arrays": sorted(result.arrays)}
    files = filesOf(result.arrays, attributes)
    waited = writePair(settings.store, record.station, record.pair, files, settings.patience)
    exportPair(record, settings, anew=True)
    return Report(record, MADE, waited=waited)


def isWhole(place: str, attributes: Dict[str, Any]) -> bool:
    """Whether a result has all its arrays; one that somebody has damaged is made anew."""
    return all(os.path.exists(os.path.join(place, name, ".zarray")) for name in attributes.get("arrays", [""]))


def provenanceOf(inputs: PairInputs) -> Dict[str, Any]:
    """What the pair's result is made from. No clock, no machine: the same inputs give the same bytes."""
    record, settings = inputs.record, inputs.settings
    _, calibration = settings.calibrations.get(record.station, ("", ""))
    return {
        "kind": settings.kind,
        "options": settings.options,
        "job": settings.job,
        "library": settings.loaded["version"],
        "station": record.station,
        "pair": record.pair,
        "day": record.day,
        "time": record.time,
        "names": {side: os.path.basename(path) for side, path in inputs.paths().items()},
        "sha256": {**inputs.digests(), **({"calibration": calibration} if calibration else {})},
    }


@lru_cache(maxsize=8)
def workOf(kind: str) -> Callable[[PairInputs], PairResult]:
    """The function of a kind of work: from a pair's inputs to its arrays."""
    if kind in KINDS:
        from . import pairKinds

        return getattr(pairKinds, kind)  # type: ignore[no-any-return]
    module, _, name = kind.partition(":")
    try:
        return getattr(importlib.import_module(module), name)  # type: ignore[no-any-return]
    except (ImportError, AttributeError, ValueError) as error:
        raise BatchError(f"{kind}: no such work: one of {', '.join(KINDS)}, or module:function ({error})") from None


def digestOfCalibration(path: str) -> str:
    """Digest of a calibration, and of the covariance beside it, if there is one."""
    block = digestOf(contentOf(path))
    covariance = covarianceOf(path)
    return digestOf(canonical([block, digestOf(contentOf(covariance))])) if covariance else block


def covarianceOf(path: str) -> Optional[str]:
    """The file of the covariance beside a calibration, if there is one."""
    beside = os.path.splitext(path)[0] + ".zcov"
    return beside if os.path.exists(beside) else None


def _stamp(path: str) -> Tuple[Any, ...]:
    """Changes whenever the calibration's files do."""
    stamps = []
    for name in (path, covarianceOf(path)):
        try:
            stat = os.stat(name) if name else None
        except OSError as error:
            raise BatchError(f"{name}: cannot be read: {error.strerror}") from None
        stamps.append((stat.st_mtime_ns, stat.st_size, stat.st_ino) if stat else None)
    return tuple(stamps)


@lru_cache(maxsize=4096)
def _digestOfFile(path: str, stamp: Tuple[Any, ...]) -> str:
    return digestOfCalibration(path)
