"""Measurement-grade stereo vision: the libraries zelmLib and zelmMeasure from Python.

`zelm.core` and `zelm.measure` have the functions of the two libraries under their C names.
"""

from . import _records as records
from . import core, measure
from ._errors import (
    MeasurementWarning,
    ZelmCancelledError,
    ZelmDataError,
    ZelmError,
    ZelmMemoryError,
    ZelmParamError,
)
from ._library import LibraryError

__version__ = "1.0.0"
__all__ = ["LibraryError", "MeasurementWarning", "ZelmCancelledError", "ZelmDataError", "ZelmError", "ZelmMemoryError"]
__all__ += ["ZelmParamError", "core", "measure", "records"]
