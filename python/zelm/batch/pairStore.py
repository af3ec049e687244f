"""The directory of a batch: a Zarr hierarchy of stations and pairs, and one job that all of it belongs to."""

import fcntl
import json
import os
import shutil
from typing import Any, Dict, Iterator, Optional, Tuple

from .batchFault import BatchError
from .pairProvenance import FORMAT, firstDifference
from .pairWriter import TEMPORARY, flush, jsonBytes, writeFile

LOCK = ".lock"


class PairStore:
    """A store that a job writes. One job at a time: a lock is held until close()."""

    def __init__(self, path: str, job: Dict[str, Any], calibrations: Dict[str, str]) -> None:
        """Opens the store, or makes it.

        Parameters
        ----------
        path : folder
        job : what all results have in common, of jobRecord()
        calibrations : digest of each station's calibration
        """
        self.path = os.path.abspath(path)
        self._lock: Optional[int] = None
        try:
            self._open(job, calibrations)
        except OSError as error:
            self.close()
            raise BatchError(f"{path}: cannot be written: {error.strerror}") from None
        except BatchError:
            self.close()
            raise

    def _open(self, job: Dict[str, Any], calibrations: Dict[str, str]) -> None:
        attributes = rootAttributes(self.path) if os.path.isdir(self.path) and os.listdir(self.path) else None
        os.makedirs(os.path.join(self.path, TEMPORARY), exist_ok=True)
        self._takeLock()
        shutil.rmtree(os.path.join(self.path, TEMPORARY), ignore_errors=True)  # what a stopped job has left
        os.makedirs(os.path.join(self.path, TEMPORARY), exist_ok=True)
        if attributes and not any(_foldersOf(self.path)):
            attributes = None  # nothing in it that another job would spoil
        known = self._agreed(attributes, job, calibrations) if attributes else {}
        calibrations = {**known, **calibrations}
        if not attributes or known != calibrations:
            content = {"zelmBatch": {"format": FORMAT, "job": job, "calibrations": calibrations}}
            writeFile(os.path.join(self.path, ".zattrs"), jsonBytes(content), self.path)
            writeFile(os.path.join(self.path, ".zgroup"), jsonBytes({"zarr_format": 2}), self.path)
            flush(os.path.dirname(self.path))

    def _agreed(self, old: Dict[str, Any], job: Dict[str, Any], calibrations: Dict[str, str]) -> Dict[str, str]:
        words = firstDifference(old["job"], job)
        if words:
            raise BatchError(f"{self.path}: its results were made with {words}: name another store, or the same job")
        for station, digest in sorted(calibrations.items()):
            if old["calibrations"].get(station, digest) != digest:
                raise BatchError(
                    f"{self.path}: its results were made with another calibration of {station}: name another store, "
                    "or the old calibration"
                )
        return dict(old["calibrations"])

    def _takeLock(self) -> None:
        self._lock = os.open(os.path.join(self.path, LOCK), os.O_RDWR | os.O_CREAT, 0o666)
        try:
            fcntl.flock(self._lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except OSError:
            raise BatchError(f"{self.path}: another job writes to this store: wait for it, or stop it") from None

    def close(self) -> None:
        """Gives up the lock, and the folder for results that are not whole."""
        if self._lock is not None:
            shutil.rmtree(os.path.join(self.path, TEMPORARY), ignore_errors=True)
            os.close(self._lock)
            self._lock = None

    def __enter__(self) -> "PairStore":
        return self

    def __exit__(self, *_: Any) -> None:
        self.close()


def rootAttributes(path: str) -> Dict[str, Any]:
    """What a store says of itself: format, job, calibrations. Refuses a folder that is none."""
    if not os.path.isdir(path):
        raise BatchError(f"{path}: no such store")
    others = sorted(set(os.listdir(path)) - {LOCK, TEMPORARY})
    content = readAttributes(path)
    if content is None and not others:
        return {}
    if content is None or "zelmBatch" not in content:
        raise BatchError(f"{path}: not a store of results, and not empty ({others[0]}): name another folder")
    found: Dict[str, Any] = content["zelmBatch"]
    if found.get("format") != FORMAT:
        raise BatchError(f"{path}: of format {found.get('format')}, not {FORMAT}: take the version that made it")
    return found


def readAttributes(folder: str) -> Optional[Dict[str, Any]]:
    """The attributes of a group; None where there is no whole group."""
    try:
        with open(os.path.join(folder, ".zattrs"), encoding="utf-8") as file:
            content = json.load(file)
    except (OSError, ValueError):
        return None
    return content if isinstance(content, dict) else None


def pairsOfStore(path: str) -> Iterator[Tuple[str, str, Dict[str, Any]]]:
    """Station, name and attributes of each result, in order."""
    rootAttributes(path)
    for station in _foldersOf(path):
        for pair in _foldersOf(os.path.join(path, station)):
            attributes = readAttributes(os.path.join(path, station, pair))
            if attributes is None:
                raise BatchError(f"{path}/{station}/{pair}: damaged: remove this folder and run the job again")
            yield station, pair, attributes


def _foldersOf(path: str) -> Iterator[str]:
    with os.scandir(path) as entries:
        names = [entry.name for entry in entries if not entry.name.startswith(".") and entry.is_dir()]
    yield from sorted(names)
