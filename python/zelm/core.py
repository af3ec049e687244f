"""The core's functions under their C names.

Counts follow from the arrays, results are returned: one value, or a named tuple of several. A failing call raises
`zelm.ZelmError`. ``help(zelm.core.zelmFitLine)`` tells what a function does. See docs/python.md for what arguments may
be.
"""

from typing import Any, List

from . import _coreChecks, _library
from ._coreTable import TABLE
from ._errors import ZelmError, ZelmMemoryError, ZelmParamError, fail
from ._family import Family, listed, recordsOf
from ._handles import Zelm2ViewCalib, ZelmMatrix, ZelmVector
from ._prototypes import CORE

library = _library.core

_records_of_core = recordsOf(lambda name: not name.startswith(("ZelmMeasure", "ZELM_MEASURE")))
globals().update(_records_of_core)

__all__: List[str] = ["ZelmError", "ZelmMemoryError", "ZelmParamError", "Zelm2ViewCalib", "ZelmMatrix", "ZelmVector"]
__all__ += [*_records_of_core, *TABLE, "library"]

_family = Family(
    __name__,
    TABLE,
    CORE,
    _library.core,
    {"docs": "._coreDocs", "special": "._coreSpecial"},
    {"checks": _coreChecks, "fail": fail},
)


def __getattr__(name: str) -> Any:
    """Makes a function when it is first asked for."""
    return _family.get(name)


def __dir__() -> List[str]:
    return listed(__name__)
