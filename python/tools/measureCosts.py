#!/usr/bin/env python3
"""Prints what calls cost: the best of many repetitions, as a table for docs/python.md."""

import timeit

import numpy as np

from zelm import core

SMALL = [
    ("numbers", "core.zelmMathCheckAngle(1.0, 1.0, 0.1)"),
    ("two records", "core.zelmClp2dDistanceTwoPoints(p, q)"),
    ("two tuples in place of records", "core.zelmClp2dDistanceTwoPoints((1, 2), (3, 5))"),
    ("an array of 10 points", "core.zelmFitLine(points)"),
    ("the same, read-only", "core.zelmFitLine(frozen)"),
    ("the same, every second of 20 points", "core.zelmFitLine(strided)"),
    ("a 3 x 3 matrix, and one returned", "core.zelmMatInvert(matrix)"),
    ("a 3 x 3 matrix, and three arrays returned", "core.zelmMatSVD(matrix)"),
    ("an image", "core.zelmMiscBilinearGrayLevel(image, 3.5, 3.5)"),
]
LARGE = [
    ("a million points, returned", "core.zelmMatCopy(big)"),
    ("numpy's own copy of them", "big.copy()"),
    ("a million points of float32, returned", "core.zelmMatCopy(single)"),
]


def main() -> None:
    rng = np.random.default_rng(1)
    names = dict(core=core, p=core.Point2d(1, 2), q=core.Point2d(3, 5), matrix=rng.normal(size=(3, 3)))
    names.update(points=rng.normal(size=(10, 2)), strided=rng.normal(size=(20, 2))[::2])
    names.update(frozen=names["points"].copy(), image=np.zeros((480, 640), np.uint8))
    names["frozen"].flags.writeable = False
    names.update(big=rng.normal(size=(1000000, 2)))
    names.update(single=names["big"].astype(np.float32))
    print("| arguments | call | time |\n|---|---|---:|")
    for what, call in SMALL:
        best = min(timeit.repeat(call, globals=names, number=100, repeat=500)) / 100
        print(f"| {what} | `{call}` | {best * 1e6:.1f} µs |")
    for what, call in LARGE:
        best = min(timeit.repeat(call, globals=names, number=1, repeat=20))
        print(f"| {what} | `{call}` | {best * 1e3:.1f} ms |")


if __name__ == "__main__":
    main()
