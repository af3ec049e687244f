"""The functions of one library, made from its call table when they are first asked for."""

import importlib
import sys
import threading
from typing import Any, Callable, Dict, List, Mapping, Sequence

from . import _build, _records
from ._record import Record
from ._signature import parse


class Family:
    """Makes the attributes of a module: the functions of a table, and the named tuples of their results."""

    def __init__(
        self,
        module: str,
        table: Mapping[str, str],
        prototypes: Mapping[str, Sequence[str]],
        library: Callable[[], Any],
        parts: Dict[str, str],
        words: Dict[str, Any],
    ) -> None:
        self._module = module
        self._table = table
        self._prototypes = prototypes
        self._library = library
        self._parts = parts  # modules that have the docstrings and the functions written by hand
        self._words = words  # of `_build.namespace`
        self._names: Dict[str, Any] = {}
        self._lock = threading.RLock()

    def get(self, name: str) -> Any:
        """What the module's `__getattr__` gives."""
        with self._lock:
            known = vars(sys.modules[self._module])
            if name in known:  # by another thread, meanwhile
                return known[name]
            base = name[: -len("Result")] if name.endswith("Result") else name
            if base in self._table:
                self._make(base, known)
            if name not in known:
                raise AttributeError(f"module {self._module!r} has no attribute {name!r}")
            return known[name]

    def _make(self, name: str, known: Dict[str, Any]) -> None:
        entry = parse(self._table[name])
        if not self._names:
            self._names.update(_build.namespace(self._module, **self._words))
        scope = dict(self._names)
        if len(entry.results) > 1:
            result = _build.resultClass(name, entry)
            result.__module__ = self._module
            known[result.__name__] = scope[result.__name__] = result
        call = getattr(self._library(), name)
        if entry.custom:
            function = getattr(self._part("special"), name)
        else:
            function = _build.build(name, entry, self._prototypes[name], call, scope)
        _build.attach(function, sys.modules[self._module], self._part("docs").DOCS[name])
        known[name] = function

    def _part(self, which: str) -> Any:
        return importlib.import_module(self._parts[which], __package__)


def recordsOf(isWanted: Callable[[str], bool]) -> Dict[str, Any]:
    """Records, enums and constants by name."""
    found = {}
    for name, value in vars(_records).items():
        kind = isinstance(value, type) and issubclass(value, (Record, int)) and value is not Record
        if not name.startswith("_") and isWanted(name) and (kind or isinstance(value, int)):
            found[name] = value
    return found


def listed(module: str) -> List[str]:
    """What the module's `__dir__` gives."""
    return sorted(vars(sys.modules[module])["__all__"])
