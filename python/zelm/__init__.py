"""Measurement-grade stereo vision: the libraries zelmLib and zelmMeasure from Python.

`zelm.core` has the core's functions under their C names.
"""

from . import _records as records
from . import core
from ._calibrate import calibrate, calibrate_points
from ._commands import Simulation, compare, fit_features, import_rig, plan, simulate, simulation_example
from ._errors import MeasurementWarning, ZelmError, ZelmMemoryError, ZelmParamError
from ._library import LibraryError
from ._program import ToolError
from .camera import Camera
from .plate import Plate

__version__ = "1.0.0"
__all__ = [
    "Camera",
    "LibraryError",
    "MeasurementWarning",
    "Plate",
    "Simulation",
    "ToolError",
    "ZelmError",
    "ZelmMemoryError",
    "ZelmParamError",
    "calibrate",
    "calibrate_points",
    "compare",
    "core",
    "fit_features",
    "import_rig",
    "plan",
    "records",
    "simulate",
    "simulation_example",
]
