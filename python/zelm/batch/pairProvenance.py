"""What a result was made from: digests of files, of the libraries and of the options."""

import hashlib
import json
from functools import lru_cache
from typing import Any, Dict

from .. import _library
from .batchFault import BatchError

FORMAT = 1  # of the store


def digestOf(data: bytes) -> str:
    """SHA-256, in hexadecimal."""
    return hashlib.sha256(data).hexdigest()


def contentOf(path: str) -> bytes:
    """The bytes of a file; told by its name where there are none."""
    try:
        with open(path, "rb") as file:
            return file.read()
    except OSError as error:
        raise BatchError(f"{path}: cannot be read: {error.strerror}") from None


def canonical(value: Any) -> bytes:
    """JSON that is the same bytes for the same value."""
    return json.dumps(value, sort_keys=True, separators=(",", ":"), allow_nan=False).encode()


@lru_cache(maxsize=None)
def libraries() -> Dict[str, str]:
    """The version of the package and the digests of the two libraries that this process calls."""
    from .. import __version__

    loaded = {"zelmLib": _library.core(), "zelmMeasure": _library.measure()}
    return {"version": __version__, **{name: digestOf(contentOf(_fileOf(lib))) for name, lib in loaded.items()}}


def _fileOf(library: Any) -> str:
    """Where a library was loaded from: its name, or what the process has mapped under it."""
    name = library._name
    if "/" in name:
        return str(name)
    with open("/proc/self/maps", encoding="utf-8", errors="surrogateescape") as maps:
        stem = name.split(".so")[0] + ".so"
        for line in maps:
            path = line.split(maxsplit=5)[-1].strip()
            if path.rsplit("/", 1)[-1].startswith(stem):
                return path
    raise BatchError(f"{name}: the file that it was loaded from is not known")


def jobRecord(kind: str, options: Dict[str, Any], plate: str = "") -> Dict[str, Any]:
    """What all results of a store have in common; `plate` is the digest of the plate's description."""
    record: Dict[str, Any] = {"kind": kind, "options": options, "library": libraries()}
    if plate:
        record["plate"] = plate
    return record


def firstDifference(old: Any, new: Any, name: str = "") -> str:
    """In words, where two records part; empty when they are alike."""
    if isinstance(old, dict) and isinstance(new, dict):
        for key in sorted(set(old) | set(new)):
            words = firstDifference(old.get(key), new.get(key), f"{name} {key}".strip())
            if words:
                return words
        return ""
    return "" if old == new else f"{name} {_short(old)}, not {_short(new)}"


def _short(value: Any) -> str:
    text = "none" if value is None else json.dumps(value) if not isinstance(value, str) else value
    return text if len(text) <= 40 else text[:12] + "..."
