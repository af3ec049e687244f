#!/usr/bin/env python3
"""Prints what a million points in one call take, as a table for docs/python.md.

    measureSpeed.py RIG [COUNT]    of a calibration, rig.zcal

Each row stands beside the C function alone, without checks and allocations, and beside OpenCV's like where that is
installed, on one thread. Times are the processor's. The three take turns; shares are medians of the turns.
"""

import ctypes
import sys
import time
from typing import Any, Callable, Dict, List, Optional, Tuple

import numpy as np

import zelm
from zelm import _library, records

TURNS = 7
Call = Callable[[], Any]


def rowsOf(rig: zelm.Rig, count: int) -> List[Tuple[str, Call, Call, Optional[Call]]]:
    """Name, the package's call, the C function's, and OpenCV's."""
    rng = np.random.default_rng(1)
    points = np.column_stack([rng.uniform(-60, 60, count), rng.uniform(-50, 50, count), rng.uniform(-40, 60, count)])
    left, right = rig.project(points)
    flat = rig.left.undistort(left)
    library = _library.measure()
    with rig._handles.borrow() as handle:
        address = handle._pointer
    out2, out3, out6 = np.empty((count, 2)), np.empty((count, 3)), np.empty((count, 6))
    statuses, more = np.empty(count, np.int32), np.empty((count, 6))
    given: Dict[str, Any] = dict(statuses=statuses, positions=out3, errors=out2, angles=np.empty(count))
    record = records.ZelmMeasurePoints(maxError=2.0, outside=1, **given)
    covariances = records.ZelmMeasurePointCovariances(image=out6, calibration=more)
    noise = records.ZelmMeasurePixelNoise()

    def one(name: str, array: np.ndarray, out: np.ndarray) -> Call:
        function = getattr(library, name)
        return lambda: function(address, ord("L"), count, array.ctypes.data, out.ctypes.data)

    def triangulateC() -> None:
        library.zelmMeasureTriangulate(address, count, left.ctypes.data, right.ctypes.data, ctypes.byref(record))

    def covarianceC() -> None:
        triangulateC()
        library.zelmMeasurePointCovariance(
            address, count, left.ctypes.data, right.ctypes.data, ctypes.byref(noise), ctypes.byref(covariances)
        )

    cv = openCv(rig, points, left, right)
    plain = lambda: rig.triangulate(left, right, covariance=False)  # noqa: E731
    return [
        ("`rig.left.project`", lambda: rig.left.project(points), one("zelmMeasureProject", points, out2), cv[0]),
        ("`rig.left.undistort`", lambda: rig.left.undistort(left), one("zelmMeasureUndistort", left, out2), cv[1]),
        ("`rig.left.distort`", lambda: rig.left.distort(flat), one("zelmMeasureDistort", flat, out2), None),
        (
            "`rig.epipolar_lines`",
            lambda: rig.epipolar_lines(left, "L"),
            one("zelmMeasureEpipolarLines", left, out3),
            cv[2],
        ),
        ("`rig.triangulate`, without covariances", plain, triangulateC, cv[3]),
        ("`rig.triangulate`", lambda: rig.triangulate(left, right), covarianceC, None),
    ]


def openCv(rig: zelm.Rig, points: np.ndarray, left: np.ndarray, right: np.ndarray) -> List[Optional[Call]]:
    try:
        import cv2
    except ImportError:
        return [None] * 4
    cv2.setNumThreads(1)
    cameras = (rig.left, rig.right)
    lenses = [np.array([*camera.distortion, 0, 0]) for camera in cameras]
    K, R, t, lens = rig.left.K, rig.left.R, rig.left.t, lenses[0]
    projections = [camera.K @ np.column_stack([camera.R, camera.t]) for camera in cameras]

    def triangulate() -> np.ndarray:
        flat = [
            cv2.undistortPoints(pixels[:, None], camera.K, lens, P=camera.K)[:, 0]
            for pixels, camera, lens in zip((left, right), cameras, lenses)
        ]
        homogeneous = cv2.triangulatePoints(*projections, flat[0].T, flat[1].T)
        return (homogeneous[:3] / homogeneous[3]).T

    def lines() -> np.ndarray:
        flat = cv2.undistortPoints(left[:, None], K, lens, P=K)
        return cv2.computeCorrespondEpilines(flat, 1, rig.F.T)

    return [
        lambda: cv2.projectPoints(points, cv2.Rodrigues(R)[0], t, K, lens),
        lambda: cv2.undistortPoints(left[:, None], K, lens, P=K),
        lines,
        triangulate,
    ]


def seconds(call: Optional[Call]) -> float:
    if call is None:
        return float("nan")
    start = time.process_time()
    call()
    return time.process_time() - start


def main() -> None:
    rig = zelm.Rig.load(sys.argv[1])
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 1000000
    print("| call | time | share of the C function's speed | OpenCV's time over this |\n|---|---:|---:|---:|")
    for name, *calls in rowsOf(rig, count):
        turns = np.array([[seconds(call) for call in calls] for _ in range(TURNS)])
        own, plain, other = turns.T
        beside = "" if np.isnan(other).any() else f"{np.median(other / own):.1f}"
        print(f"| {name} | {own.min():.2f} s | {100 * np.median(plain / own):.0f} % | {beside} |", flush=True)


if __name__ == "__main__":
    main()
