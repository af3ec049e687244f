"""Points of space of pixel pairs, and lengths between them, with how well they are known."""

from typing import TYPE_CHECKING, Any, Optional, Tuple

import numpy as np

from . import _arrays, _pixels, measure
from ._errors import refuse
from ._records import ZelmMeasurePixelNoise, ZelmMeasurePointCovariances, ZelmMeasurePoints
from ._triangulation import Triangulation, usualMaxError

if TYPE_CHECKING:
    from .rig import Rig


def triangulate(
    rig: "Rig", left_xy: Any, right_xy: Any, max_error: Optional[float], noise: Optional[float], covariance: bool
) -> Triangulation:
    left, right = _pairsOf(left_xy, right_xy, "triangulate")
    if noise is not None:
        noise = _noiseIn("triangulate", noise)
        if rig.covariance_block is None:
            refuse("triangulate", "noise makes no covariance of points without that of the calibration (rig.zcov)")
    known = rig._noise if noise is None else noise
    limit = usualMaxError(known) if max_error is None else _arrays.toFloat(max_error, "triangulate", "max_error")
    if not 0.0 < limit < np.inf:
        refuse("triangulate", f"max_error is {limit}, a number of pixels above 0 is wanted")
    with rig._handles.borrow() as handle:
        record = measure.zelmMeasureTriangulate(handle, left, right, _pointRooms(len(left), limit))
        isKnown = covariance and rig.covariance_block is not None
        parts = _partsOf(handle, left, right, noise) if isKnown else (None, None)
    return Triangulation._of(record, parts, limit)


def lengths(rig: "Rig", left_xy: Any, right_xy: Any, ends: Any, noise: Optional[float]) -> np.ndarray:
    left, right = _pairsOf(left_xy, right_xy, "lengths")
    if ends is None:
        if len(left) % 2:
            refuse("lengths", f"{len(left)} points are no pairs of ends: say with ends= between which to measure")
        ends = np.arange(len(left)).reshape(-1, 2)
    if noise is None and rig.covariance_block is None:
        refuse("lengths", "without a covariance nothing tells the noise of pixels: give noise=")
    told = ZelmMeasurePixelNoise(sigma=0.0 if noise is None else _noiseIn("lengths", noise))
    with rig._handles.borrow() as handle:
        record = measure.zelmMeasureLengths(handle, left, right, ends, told)
    return _tableOfLengths(record)


def _pairsOf(left_xy: Any, right_xy: Any, function: str) -> Tuple[np.ndarray, np.ndarray]:
    left = _pixels.rowsOf(left_xy, 2, function, "left_xy")
    right = _pixels.rowsOf(right_xy, 2, function, "right_xy")
    _arrays.checkShape(right, left.shape, function, "right_xy")
    return left, right


def _noiseIn(function: str, noise: Any) -> float:
    noise = _arrays.toFloat(noise, function, "noise")
    if not 0.0 < noise < np.inf:
        refuse(function, f"noise is {noise}, a number of pixels above 0 is wanted")
    return float(noise)


def _partsOf(handle: Any, left: np.ndarray, right: np.ndarray, noise: Optional[float]) -> Tuple[Any, Any]:
    """Covariances by the noise of the pixels and by the calibration."""
    rooms = ZelmMeasurePointCovariances(image=_nan(len(left), 6), calibration=_nan(len(left), 6))
    told = ZelmMeasurePixelNoise(sigma=0.0 if noise is None else noise)  # 0: that of the calibration's dots
    measure.zelmMeasurePointCovariance(handle, left, right, told, rooms)
    return rooms.image, rooms.calibration


def _nan(*shape: int) -> np.ndarray:
    return np.full(shape, np.nan)


def _pointRooms(count: int, limit: float) -> ZelmMeasurePoints:
    made = ZelmMeasurePoints(maxError=limit, outside=1)
    made.statuses = np.empty(count, np.int32)
    made.positions, made.errors, made.angles = _nan(count, 3), _nan(count, 2), _nan(count)
    return made


def _tableOfLengths(record: Any) -> np.ndarray:
    numbers = {
        "length": record.lengths,
        "u95": record.expanded,
        "sigma": record.deviations,
        "noise_sigma": record.image,
        "calibration_sigma": record.calibration,
    }
    words = np.array(["ok", "no_point", "short"])
    table = np.empty(len(record.statuses), [("status", words.dtype), *((name, "f8") for name in numbers)])
    table["status"] = words[record.statuses]
    for name, values in numbers.items():
        table[name] = np.nan if values is None else values
    return table
