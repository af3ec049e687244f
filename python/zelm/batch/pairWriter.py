"""Writes a pair's result once and whole: beside the store's groups first, to the disk, then under its name."""

import errno
import json
import os
import shutil
import socket
import time
from concurrent.futures import ThreadPoolExecutor
from functools import lru_cache
from typing import Any, Callable, Dict, List, Mapping, Tuple

import numpy as np

from .batchFault import BatchError, StoreFullError

TEMPORARY = ".tmp"  # folder of the store for results that are not whole yet
FULL = (errno.ENOSPC, errno.EDQUOT)
_WAITS = (0.25, 0.5, 1.0, 2.0, 4.0)  # seconds before the next attempt; the last one again and again
_FLUSHERS = 6  # files flushed side by side: a disk takes them together

try:
    from numcodecs import Zstd
    from zarr.storage import init_array, init_group
except ImportError as missing:
    raise ImportError(f"zelm.batch needs Zarr (python3-zarr, below version 3): {missing}") from None

_Compressor = Zstd(level=1)  # one thread, so that the same numbers are the same bytes


class PairArray:
    """An array of a result with what its numbers mean."""

    def __init__(self, values: Any, unit: str, meaning: str, axes: Tuple[str, ...]) -> None:
        self.values = np.ascontiguousarray(values)
        self.attributes = {"unit": unit, "meaning": meaning, "_ARRAY_DIMENSIONS": list(axes)}
        if len(axes) != self.values.ndim:
            raise ValueError(f"{meaning}: {len(axes)} axes named, {self.values.ndim} there")


def filesOf(arrays: Mapping[str, PairArray], attributes: Mapping[str, Any]) -> Dict[str, bytes]:
    """The files of a Zarr group, one chunk an array; the same bytes for the same content."""
    files = dict(_groupFiles())
    files[".zattrs"] = jsonBytes(attributes)
    for name, array in arrays.items():
        values = array.values
        files[f"{name}/.zarray"] = _arrayFile(values.shape, values.dtype.str)
        files[f"{name}/.zattrs"] = jsonBytes(array.attributes)
        if values.size:
            files[f"{name}/{'.'.join('0' * values.ndim) or '0'}"] = bytes(_Compressor.encode(values))
    return files


@lru_cache(maxsize=1)
def _groupFiles() -> Dict[str, bytes]:
    store: Dict[str, bytes] = {}
    init_group(store)
    return store


@lru_cache(maxsize=256)
def _arrayFile(shape: Tuple[int, ...], dtype: str) -> bytes:
    store: Dict[str, bytes] = {}
    chunks = tuple(max(1, length) for length in shape)
    init_array(store, shape=shape, chunks=chunks, dtype=dtype, compressor=_Compressor, fill_value=None)
    return bytes(store[".zarray"])


def jsonBytes(value: Any) -> bytes:
    """Attributes as Zarr writes them: the keys in order, no numbers that JSON does not know."""
    return json.dumps(value, indent=4, sort_keys=True, ensure_ascii=True, allow_nan=False).encode("ascii")


def writePair(root: str, station: str, pair: str, files: Mapping[str, bytes], patience: float) -> float:
    """Puts a group in its place, in place of an older one. A full disk is waited for, at most `patience` seconds.

    Returns the seconds that were waited.
    """
    return patiently(lambda: _writeOnce(root, station, pair, files), patience, os.path.join(root, station, pair))


def patiently(attempt: Callable[[], None], patience: float, what: str) -> float:
    """Tries again while the disk is full."""
    began, waits = time.monotonic(), iter(_WAITS)
    wait = 0.0
    while True:
        try:
            attempt()
            return time.monotonic() - began if wait else 0.0
        except OSError as error:
            if error.errno not in FULL:
                raise BatchError(f"{what}: cannot be written: {error.strerror}") from None
            wait = next(waits, _WAITS[-1])
            if time.monotonic() - began + wait > patience:
                raise StoreFullError(f"{what}: cannot be written: {error.strerror}") from None
            time.sleep(wait)


def _writeOnce(root: str, station: str, pair: str, files: Mapping[str, bytes]) -> None:
    temporary = temporaryName(root, f"{station}~{pair}")
    try:
        _writeTree(temporary, files)
        parent = stationFolder(root, station)
        _replace(temporary, os.path.join(parent, pair), temporaryName(root, f"{station}~{pair}~old"))
        flush(parent)
    finally:
        shutil.rmtree(temporary, ignore_errors=True)


def temporaryName(root: str, stem: str) -> str:
    """A name that no other process takes, in the store's own file system."""
    unique = f"{socket.gethostname()}.{os.getpid()}.{time.monotonic_ns()}"
    return os.path.join(root, TEMPORARY, f"{stem}~{unique}")


def _writeTree(folder: str, files: Mapping[str, bytes]) -> None:
    folders = sorted({os.path.dirname(os.path.join(folder, name)) for name in files})
    for name in folders:
        os.makedirs(name)
    paths: List[str] = []
    for name, data in files.items():
        path = os.path.join(folder, name)
        with open(path, "wb") as file:
            file.write(data)
        paths.append(path)
    paths += folders
    list(_flushers().map(_flushAll, [paths[first::_FLUSHERS] for first in range(_FLUSHERS)]))


@lru_cache(maxsize=1)
def _flushers() -> ThreadPoolExecutor:
    return ThreadPoolExecutor(_FLUSHERS, thread_name_prefix="zelm-flush")


def _flushAll(paths: List[str]) -> None:
    for path in paths:
        flush(path)


def flush(path: str) -> None:
    """Waits until a file or folder is on the disk."""
    handle = os.open(path, os.O_RDONLY)
    try:
        os.fsync(handle)
    finally:
        os.close(handle)


def stationFolder(root: str, station: str) -> str:
    """The group of a station, made if it is not there."""
    folder = os.path.join(root, station)
    if not os.path.exists(os.path.join(folder, ".zgroup")):
        os.makedirs(folder, exist_ok=True)
        writeFile(os.path.join(folder, ".zgroup"), _groupFiles()[".zgroup"], root)
        flush(root)
    return folder


def writeFile(path: str, data: bytes, root: str = "") -> None:
    """A single file, whole or not at all."""
    temporary = temporaryName(root, os.path.basename(path)) if root else f"{path}.{os.getpid()}.tmp"
    try:
        with open(temporary, "wb") as file:
            file.write(data)
            file.flush()
            os.fsync(file.fileno())
        os.replace(temporary, path)
        flush(os.path.dirname(path))
    finally:
        if os.path.exists(temporary):
            os.unlink(temporary)


def _replace(new: str, place: str, aside: str) -> None:
    """Renames a whole folder into place. What another worker has put there meanwhile is replaced, too."""
    try:
        os.rename(new, place)
    except OSError as error:
        if error.errno not in (errno.ENOTEMPTY, errno.EEXIST):
            raise
        os.rename(place, aside)
        os.rename(new, place)
        shutil.rmtree(aside, ignore_errors=True)
