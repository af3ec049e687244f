"""What the entries of the measuring library's table call: rooms for results, defaults and preconditions.

A precondition takes the name of the function first, and raises when it is not met.
"""

import ctypes
from typing import Any, Dict, Optional, Tuple

import numpy as np

from . import _library
from ._errors import failMeasuring, refuse
from ._handles import ZelmMeasureAdjustment, ZelmMeasureRig
from ._handles import enterAll as enterAll
from ._handles import leaveAll as leaveAll
from ._record import Record
from ._records import (
    ZelmMeasureAdjustSummary,
    ZelmMeasureCamera,
    ZelmMeasureLengths,
    ZelmMeasureMatchOptions,
    ZelmMeasurePointCovariances,
    ZelmMeasureRowOptions,
)

# Records of arrays: how many numbers an entry has in each of them.
ROOMS: Dict[str, Dict[str, int]] = {
    "ZelmMeasurePoints": {"statuses": 1, "positions": 3, "errors": 2, "angles": 1},
    "ZelmMeasureMatches": {
        "statuses": 1,
        "pixels": 2,
        "scores": 1,
        "positions": 3,
        "depths": 1,
        "deviations": 1,
        "errors": 2,
    },
    "ZelmMeasureDots": {"grid": 2, "plane": 2, "pixels": 2, "errors": 2},
    "ZelmMeasureAdjustedDots": {
        "grid": 2,
        "pixels": 2,
        "centres": 2,
        "residuals": 2,
        "covariances": 3,
        "statuses": 1,
    },
    "ZelmMeasureSpots": {"centres": 2, "axes": 3, "strengths": 1, "verdicts": 1},
    "ZelmMeasureRefinedDots": {
        "statuses": 1,
        "flags": 1,
        "centres": 2,
        "covariances": 3,
        "scales": 1,
        "blurs": 1,
        "noises": 1,
        "levels": 2,
    },
    "ZelmMeasureTargets": {
        "statuses": 1,
        "centres": 3,
        "normals": 3,
        "radii": 1,
        "covariances": 9,
        "errors": 2,
        "angles": 1,
        "ellipses": 4,
        "shares": 2,
    },
    "ZelmMeasurePointCovariances": {"statuses": 1, "positions": 3, "image": 6, "calibration": 6, "depths": 2},
    "ZelmMeasureLengths": {"statuses": 1, "lengths": 1, "image": 1, "calibration": 1, "deviations": 1, "expanded": 1},
    "ZelmMeasurePlatePoints": {"statuses": 1, "positions": 3, "left": 2, "right": 2},
    "ZelmMeasureLengthErrors": {"measured": 1, "middles": 3, "depths": 1, "regions": 1, "slabs": 1},
    "ZelmMeasurePixelNoise": {"left": 3, "right": 3, "points": 6},
    "ZelmMeasureFeaturePoints": {"points": 3, "noise": 6},
    "ZelmMeasureTargetPoints": {"view": 1, "side": 1, "grid": 2, "places": 3, "pixels": 2},
    "ZelmMeasureAdjustOptions": {"placeGrid": 2, "places": 3},
}


def rooms(cls: Any, count: int, *without: str) -> Any:
    """A record with arrays for a number of entries: NaN, and -1 in those of integers, until they are written."""
    made = cls()
    for name, each in ROOMS[cls.__name__].items():
        if name not in without:
            dtype = np.dtype(cls._pointers_[name])
            fill = np.nan if dtype.kind == "f" else -1
            setattr(made, name, np.full(count if each == 1 else (count, each), fill, dtype))
    return made


def trimmed(record: Any, count: int) -> Any:
    """A record of arrays with the entries alone that there are."""
    for name in ROOMS[type(record).__name__]:
        array = getattr(record, name)
        if array is not None and len(array) != count:
            setattr(record, name, array[:count].copy())
    return record


def holds(function: str, record: Record, count: int, *needed: str, written: bool = True) -> None:
    """The arrays of a record have an entry each for what they tell of."""
    kind = type(record).__name__
    for name, each in ROOMS[kind].items():
        array = getattr(record, name)
        if array is None:
            if name in needed and count:
                refuse(function, f"{kind} has no {name}")
            continue
        if array.size != each * count:
            wanted = f"({count},)" if each == 1 else f"({count}, {each})"
            refuse(function, f"{kind}.{name} has the shape {array.shape}, {wanted} is wanted")
        if written and not array.flags.writeable:
            refuse(function, f"{kind}.{name} is written, but the array is read-only")


def holdsNoise(function: str, noise: Optional[Record], count: int) -> None:
    """What is known of pixels is told of each of them."""
    if noise is not None:
        holds(function, noise, count, written=False)


def holdsPlaces(function: str, options: Optional[Record]) -> None:
    """The measured places of an adjustment are as many as its options say."""
    if options is not None:
        holds(function, options, max(options.placeCount, 0), "placeGrid", "places", written=False)  # type: ignore


def holdsTarget(function: str, points: Record) -> None:
    """The points of a target are as many as the record says."""
    if points.count < 0 or points.views < 0:  # type: ignore[attr-defined]
        refuse(function, "views and count must not be negative")
    holds(function, points, points.count, "view", "side", "grid", "pixels", written=False)  # type: ignore


def matchDefaults(rig: Optional[ZelmMeasureRig]) -> ZelmMeasureMatchOptions:
    """The options that hold where a user names none."""
    options = ZelmMeasureMatchOptions()
    name = "zelmMeasureMatchDefaults"
    status = getattr(_library.measure(), name)(rig._pointer if rig else None, ctypes.byref(options))
    return failMeasuring(name, status, rig) if status < 0 else options


def pointRooms(rig: ZelmMeasureRig, count: int) -> ZelmMeasurePointCovariances:
    """Rooms for what a rig can tell of points: of one without covariance not what its calibration makes of them."""
    return rooms(ZelmMeasurePointCovariances, count, *(() if _hasCovariance(rig) else ("calibration", "depths")))


def lengthRooms(rig: ZelmMeasureRig, count: int) -> ZelmMeasureLengths:
    """Rooms for what a rig can tell of lengths, likewise."""
    without = () if _hasCovariance(rig) else ("calibration", "deviations", "expanded")
    return rooms(ZelmMeasureLengths, count, *without)


def _hasCovariance(rig: ZelmMeasureRig) -> bool:
    size = ctypes.c_int64()
    return _library.measure().zelmMeasureCovarianceSize(rig._pointer, ctypes.byref(size)) >= 0


def sizeOf(rig: ZelmMeasureRig, side: str) -> Tuple[int, int]:
    """Width and height of a camera's images."""
    camera = ZelmMeasureCamera()
    _library.measure().zelmMeasureRigCamera(rig._pointer, ord(side), ctypes.byref(camera))
    return camera.width, camera.height


def rowsWidth(rig: ZelmMeasureRig, options: Optional[ZelmMeasureRowOptions]) -> int:
    """Columns of aligned images."""
    return _alignedSize(rig, options, 0, "width")


def rowsHeight(rig: ZelmMeasureRig, options: Optional[ZelmMeasureRowOptions]) -> int:
    """Rows of aligned images."""
    return _alignedSize(rig, options, 1, "height")


def _alignedSize(rig: ZelmMeasureRig, options: Optional[ZelmMeasureRowOptions], axis: int, field: str) -> int:
    given = getattr(options, field) if options is not None else 0
    if given > 32768:
        refuse("zelmMeasureAlignRowsMap", f"{field} is {given}, 32768 is the most")
    return given if given > 0 else max(sizeOf(rig, "L")[axis], sizeOf(rig, "R")[axis])


def leftWidth(rig: ZelmMeasureRig) -> int:
    """Columns of the left camera's images."""
    return sizeOf(rig, "L")[0]


def leftHeight(rig: ZelmMeasureRig) -> int:
    """Rows of the left camera's images."""
    return sizeOf(rig, "L")[1]


def noPlaces() -> np.ndarray:
    """No measured dots."""
    return np.empty((0, 3))


def counted(function: str, teller: Any, *arguments: Any) -> int:
    """How many entries a function would write: it is asked with no room, and tells it by its last argument."""
    count = ctypes.c_int64()
    status = getattr(_library.measure(), function)(*arguments, ctypes.byref(count))
    return failMeasuring(function, status, teller) if status < 0 else count.value


def distancesOfRig(rig: ZelmMeasureRig, pattern: Record, view: int) -> int:
    """How many epipolar distances a view has."""
    return counted("zelmMeasureRigEpipolar", rig, rig._pointer, ctypes.byref(pattern), view, 0, None)


def distancesOfAdjustment(adjustment: ZelmMeasureAdjustment, view: int) -> int:
    """How many epipolar distances a view has."""
    return counted("zelmMeasureAdjustEpipolar", adjustment, adjustment._pointer, view, 0, None)


def checksOf(adjustment: ZelmMeasureAdjustment) -> int:
    """The most checks that there can be: eight, and one for each further view."""
    summary = ZelmMeasureAdjustSummary()
    status = _library.measure().zelmMeasureAdjustSummary(adjustment._pointer, ctypes.byref(summary))
    if status < 0:
        failMeasuring("zelmMeasureAdjustChecks", status, adjustment)
    return 8 + summary.views


def flawsOf(plate: Record, cameras: np.ndarray, nearest: float, farthest: float) -> int:
    """How many findings a design has."""
    data = cameras.ctypes.data if len(cameras) else None
    plate_ = ctypes.byref(plate)
    return counted("zelmMeasurePlateDesign", None, plate_, len(cameras), data, nearest, farthest, None, 0)


def lengthsOf(pattern: Record, grid: np.ndarray) -> int:
    """How many lengths are chosen between dots."""
    return counted(
        "zelmMeasurePlateLengths", None, ctypes.byref(pattern), len(grid), grid.ctypes.data, 0, None, None
    )
