"""Pixels and points of one camera, many in a call."""

from typing import TYPE_CHECKING, Any

import numpy as np

from . import _arrays, core, measure

if TYPE_CHECKING:
    from .rig import Rig

_F8 = np.dtype("f8")


def rowsOf(value: Any, columns: int, function: str, name: str) -> np.ndarray:
    """An array of shape (n, columns)."""
    array = _arrays.toArray(value, _F8, function, name)
    _arrays.checkShape(array, ("n", columns), function, name)
    return array


def project(rig: "Rig", side: str, points: Any) -> np.ndarray:
    points = rowsOf(points, 3, "project", "points")
    return _each(rig, core.zelm2ViewChange3Dto2D, side, points)


def undistort(rig: "Rig", side: str, pixels: Any) -> np.ndarray:
    return _each(rig, core.zelm2ViewUnDistortPoint, side, rowsOf(pixels, 2, "undistort", "pixels"))


def distort(rig: "Rig", side: str, pixels: Any) -> np.ndarray:
    return _each(rig, core.zelm2ViewDistortPoint, side, rowsOf(pixels, 2, "distort", "pixels"))


def _each(rig: "Rig", function: Any, side: str, rows: np.ndarray) -> np.ndarray:
    done = np.full((len(rows), 2), np.nan)
    with rig._handles.borrow() as handle:
        calib = measure.zelmMeasureRigCalib(handle)
        for at, row in enumerate(rows):
            try:
                done[at] = tuple(function(calib, side, row))
            except core.ZelmError:
                pass
    return done


def epipolarLines(rig: "Rig", side: str, pixels: Any) -> np.ndarray:
    rows = rowsOf(pixels, 2, "epipolar_lines", "xy")
    done = np.full((len(rows), 3), np.nan)
    other = "R" if side == "L" else "L"
    with rig._handles.borrow() as handle:
        calib = measure.zelmMeasureRigCalib(handle)
        for at, row in enumerate(rows):
            try:
                done[at] = tuple(core.zelm2ViewCalcEpiLine(calib, other, row))[:3]
            except core.ZelmError:
                pass
    return done
