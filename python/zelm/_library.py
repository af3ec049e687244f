"""Finds, loads and checks the shared libraries."""

import ctypes
import os
import threading
from pathlib import Path
from typing import Dict, List, Tuple

from . import _prototypes, _records

FOLDER_VARIABLE = "ZELM_LIBRARY_PATH"
_SONAMES = {"core": "libzelmLib.so.1", "measure": "libzelmMeasure.so.1"}
_PROTOTYPES = {"core": _prototypes.CORE, "measure": _prototypes.MEASURE}
_RESULTS = {
    "void": None,
    "int32_t": ctypes.c_int32,
    "int64_t": ctypes.c_int64,
    "double": ctypes.c_double,
    "const char*": ctypes.c_char_p,
}
_loaded: Dict[str, ctypes.CDLL] = {}
_lock = threading.RLock()


class LibraryError(ImportError):
    """A shared library is missing, or is not the one that this package was made for."""


def core() -> ctypes.CDLL:
    """The library of zelmLib.h, with result and argument types set. Pointers are plain addresses."""
    return _load("core")


def measure() -> ctypes.CDLL:
    """The library of zelmMeasure.h, likewise."""
    core()  # it needs the core, from the same place
    return _load("measure")


def _load(which: str) -> ctypes.CDLL:
    library = _loaded.get(which)
    if library is None:
        with _lock:
            library = _loaded.get(which)
            if library is None:
                checkLayout()
                library = open_(_SONAMES[which])
                bind(library, _PROTOTYPES[which])
                _loaded[which] = library
    return library


def open_(soname: str) -> ctypes.CDLL:
    """Loads from the package's own folder, then from those of ZELM_LIBRARY_PATH, then as the system does.

    A folder that has the library is the end of the search: when it does not load from there, no other one is taken.
    """
    looked: List[str] = []
    folders = [Path(__file__).resolve().parent / "_libs"]
    folders += [Path(folder) for folder in os.environ.get(FOLDER_VARIABLE, "").split(os.pathsep) if folder]
    for folder in folders:
        path = folder / soname
        if path.exists():
            try:
                return ctypes.CDLL(str(path))
            except OSError as error:
                raise LibraryError(f"{path} does not load: {error}") from None
        looked.append(str(path))
    if not os.environ.get(FOLDER_VARIABLE):
        looked.append(f"the folder that the environment variable {FOLDER_VARIABLE} names, which is not set")
    try:
        return ctypes.CDLL(soname)
    except OSError as error:
        looked.append(f"the system's library path ({error})")
    raise LibraryError(
        f"{soname} was not found. Looked at: {'; '.join(looked)}. Install the library, or set {FOLDER_VARIABLE} to "
        "the folder that holds it."
    )


def checkLayout() -> None:
    """Compares every record with its layout in C."""
    if ctypes.sizeof(ctypes.c_void_p) != 8:
        raise LibraryError("zelm needs a 64-bit Python")
    for name, (size, *offsets) in _records.LAYOUT.items():
        cls = getattr(_records, name)
        found = [getattr(cls, field[0]).offset for field in cls._fields_]
        if ctypes.sizeof(cls) != size or found != offsets:
            raise LibraryError(f"the record {name} is laid out otherwise here than in C: {found}, not {offsets}")


def bind(library: ctypes.CDLL, prototypes: Dict[str, Tuple[str, ...]]) -> None:
    """Sets types of results and arguments; refuses a library that lacks a function."""
    missing = [name for name in prototypes if not hasattr(library, name)]
    if missing:
        raise LibraryError(
            f"{library._name} lacks {', '.join(missing[:5])}{' and more' if len(missing) > 5 else ''}: "
            "it is of another version than this package"
        )
    for name, (returns, *arguments) in prototypes.items():
        function = getattr(library, name)
        function.restype = _RESULTS[returns] if returns in _RESULTS else ctypes.c_void_p
        function.argtypes = [argumentType(argument) for argument in arguments]


def argumentType(argument: str) -> object:
    """The ctypes type of "int32_t iN" and the like; every pointer is an address."""
    kind = argument.rsplit(" ", 1)[0]
    if kind.endswith("*"):
        return ctypes.c_void_p
    if kind in _RESULTS:
        return _RESULTS[kind]
    return getattr(_records, kind)
