"""The core's functions under their C names.

Counts follow from the arrays, results are returned: one value, or a named tuple of several. A failing call raises
`zelm.ZelmError`. ``help(zelm.core.zelmFitLine)`` tells what a function does. See docs/python.md for what arguments may
be.
"""

import sys
import threading
from typing import Any, Dict, List

from . import _build, _coreSpecial, _library, _records
from ._coreTable import TABLE
from ._errors import ZelmError, ZelmMemoryError, ZelmParamError
from ._handles import Zelm2ViewCalib, ZelmMatrix, ZelmVector
from ._prototypes import CORE
from ._record import Record
from ._signature import parse

library = _library.core

_records_of_core = {
    name: value
    for name, value in vars(_records).items()
    if not name.startswith("_") and not name.startswith(("ZelmMeasure", "ZELM_MEASURE"))
    if isinstance(value, int) or (isinstance(value, type) and issubclass(value, (Record, int)) and value is not Record)
}
globals().update(_records_of_core)

__all__: List[str] = ["ZelmError", "ZelmMemoryError", "ZelmParamError", "Zelm2ViewCalib", "ZelmMatrix", "ZelmVector"]
__all__ += [*_records_of_core, *TABLE, "library"]

_names: Dict[str, Any] = {}
_lock = threading.RLock()


def __getattr__(name: str) -> Any:
    """Makes a function when it is first asked for."""
    with _lock:
        return _made(name)


def _made(name: str) -> Any:
    if name in globals():  # by another thread, meanwhile
        return globals()[name]
    base = name[: -len("Result")] if name.endswith("Result") else name
    if base not in TABLE:
        raise AttributeError(f"module {__name__!r} has no attribute {name!r}")
    _make(base)
    try:
        return globals()[name]
    except KeyError:
        raise AttributeError(f"module {__name__!r} has no attribute {name!r}") from None


def __dir__() -> List[str]:
    return sorted(__all__)


def _make(name: str) -> None:
    from ._coreDocs import DOCS

    module = sys.modules[__name__]
    entry = parse(TABLE[name])
    if not _names:
        _names.update(_build.namespace(__name__))
    if entry.custom:
        _library.core()
        function = getattr(_coreSpecial, name)
    else:
        scope = dict(_names)
        if len(entry.results) > 1:
            result = _build.resultClass(name, entry)
            result.__module__ = __name__
            globals()[result.__name__] = scope[result.__name__] = result
        function = _build.build(name, entry, CORE[name], getattr(_library.core(), name), scope)
    _build.attach(function, module, DOCS[name])
    globals()[name] = function
