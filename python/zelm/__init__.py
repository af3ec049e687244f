"""Measurement-grade stereo vision: the libraries zelmLib and zelmMeasure, and the tool zelm, from Python.

`Plate`, `calibrate` and `Rig` lead from images to measurements. `zelm.core` and `zelm.measure` have the functions of
the two libraries under their C names.
"""

from . import _records as records
from . import core, measure
from ._calibrate import calibrate, calibrate_points
from ._commands import Simulation, compare, fit_features, import_rig, plan, simulate, simulation_example
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
from ._program import ToolError
from .camera import Camera
from .cloud import Cloud
from .plate import Plate
from .rig import Rig
from .rigCamera import RigCamera

__version__ = "1.0.0"
__all__ = [
    "Camera",
    "Cloud",
    "LibraryError",
    "MeasurementWarning",
    "Plate",
    "Rig",
    "RigCamera",
    "Simulation",
    "ToolError",
    "ZelmCancelledError",
    "ZelmDataError",
    "ZelmError",
    "ZelmMemoryError",
    "ZelmParamError",
    "calibrate",
    "calibrate_points",
    "compare",
    "core",
    "detect",
    "fit_features",
    "import_rig",
    "measure",
    "plan",
    "records",
    "simulate",
    "simulation_example",
]
