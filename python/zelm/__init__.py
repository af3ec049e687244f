"""Measurement-grade stereo vision: the libraries zelmLib and zelmMeasure from Python.

`Rig` is a calibrated pair of cameras, to measure with. `zelm.core` and `zelm.measure` have the functions of the two
libraries under their C names.
"""

from . import _records as records
from . import core, measure
from ._detection import detect
from ._errors import (
    MeasurementWarning,
    ZelmCancelledError,
    ZelmDataError,
    ZelmError,
    ZelmMemoryError,
    ZelmParamError,
)
from ._library import LibraryError
from .cloud import Cloud
from .rig import Rig
from .rigCamera import RigCamera

__version__ = "1.0.0"
__all__ = [
    "Cloud",
    "LibraryError",
    "MeasurementWarning",
    "Rig",
    "RigCamera",
    "ZelmCancelledError",
    "ZelmDataError",
    "ZelmError",
    "ZelmMemoryError",
    "ZelmParamError",
    "core",
    "detect",
    "measure",
    "records",
]
