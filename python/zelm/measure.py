"""The measuring library's functions under their C names.

As in `zelm.core`, counts follow from the arrays and results are returned. A failing call raises `zelm.ZelmError`, with
the library's own words. ``help(zelm.measure.zelmMeasureTriangulate)`` tells what a function does; docs/python.md, what
arguments may be. `zelm.Rig` is made of these.
"""

from typing import Any, List

from . import _library, _measureChecks
from ._errors import (
    MeasurementWarning,
    ZelmCancelledError,
    ZelmDataError,
    ZelmError,
    ZelmMemoryError,
    ZelmParamError,
    failMeasuring,
)
from ._family import Family, listed, recordsOf
from ._handles import Zelm2ViewCalib, ZelmMeasureAdjustment, ZelmMeasurePlan, ZelmMeasureRig
from ._measureTable import TABLE
from ._prototypes import MEASURE

library = _library.measure

_records_of_measure = recordsOf(lambda name: True)
globals().update(_records_of_measure)

__all__: List[str] = ["MeasurementWarning", "ZelmCancelledError", "ZelmDataError", "ZelmError", "ZelmMemoryError"]
__all__ += ["ZelmParamError", "Zelm2ViewCalib", "ZelmMeasureAdjustment", "ZelmMeasurePlan", "ZelmMeasureRig"]
__all__ += [*_records_of_measure, *TABLE, "library"]

_family = Family(
    __name__,
    TABLE,
    MEASURE,
    _library.measure,
    {"docs": "._measureDocs", "special": "._measureSpecial"},
    {"checks": _measureChecks, "fail": failMeasuring},
)


def __getattr__(name: str) -> Any:
    """Makes a function when it is first asked for."""
    return _family.get(name)


def __dir__() -> List[str]:
    return listed(__name__)
