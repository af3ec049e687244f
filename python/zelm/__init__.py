"""Measurement-grade stereo vision: the libraries zelmLib and zelmMeasure from Python.

`zelm.core` has the core's functions under their C names.
"""

from . import _records as records
from . import core
from ._errors import MeasurementWarning, ZelmError, ZelmMemoryError, ZelmParamError
from ._library import LibraryError

__version__ = "1.0.0"
__all__ = ["LibraryError", "MeasurementWarning", "ZelmError", "ZelmMemoryError", "ZelmParamError", "core", "records"]
