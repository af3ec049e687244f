"""A pair of images with every point in one row."""

from pathlib import Path
from typing import Any, Dict, Tuple

import numpy as np

from ._png import readPng


class Rows:
    """Row-aligned images with what matchers and triangulation need; names as of OpenCV's stereoRectify.

    Attributes
    ----------
    left, right : array
        The images.
    R1, R2 : array (3, 3); P1, P2 : array (3, 4); Q : array (4, 4)
        X_aligned = R1 X_left; Q takes (x, y, disparity, 1) to the point in the aligned left frame.
    left_map, right_map : array (height, width, 2) of float32
        x and y of the raw pixel of each aligned one, -1 where the camera does not see it.
    left_seen, right_seen : (x, y, width, height)
        The largest rectangles of pixels that each camera all sees.
    min_disparity, num_disparities : int
        Those of the depths.
    """

    left: np.ndarray
    right: np.ndarray
    R1: np.ndarray
    R2: np.ndarray
    P1: np.ndarray
    P2: np.ndarray
    Q: np.ndarray
    left_map: np.ndarray
    right_map: np.ndarray
    left_seen: Tuple[int, int, int, int]
    right_seen: Tuple[int, int, int, int]
    min_disparity: int
    num_disparities: int
    units: str

    def points(self, disparity: np.ndarray) -> np.ndarray:
        """3-D points of a disparity image, (height, width, 3), in the aligned left camera's frame.

        Where the disparity is not finite, or the point at infinity, they are NaN.
        """
        disparity = np.asarray(disparity, dtype=float)
        y, x = np.indices(disparity.shape, dtype=float)
        homogeneous = np.stack([x, y, disparity, np.ones_like(x)], axis=-1) @ self.Q.T
        with np.errstate(divide="ignore", invalid="ignore"):
            points = homogeneous[..., :3] / homogeneous[..., 3:]
        points[~np.isfinite(points).all(axis=-1)] = np.nan
        return points

    def __repr__(self) -> str:
        height, width = self.left.shape[:2]
        return (
            f"<zelm rows {width} x {height}, focal length {self.P1[0, 0]:.3f} px, disparities: {self.num_disparities} "
            f"from {self.min_disparity} on, in {self.units}>"
        )


def rowsOf(done: Dict[str, Any], folder: Path) -> Rows:
    """What the program wrote to a folder, and told of it."""
    rows = Rows()
    for name in ("R1", "R2", "P1", "P2", "Q"):
        setattr(rows, name, np.array(done[name], dtype=float))
    rows.left, rows.right = readPng(folder / done["left"]), readPng(folder / done["right"])
    rows.left_map, rows.right_map = np.load(folder / "left_map.npy"), np.load(folder / "right_map.npy")
    for name in ("left", "right"):
        setattr(rows, f"{name}_seen", tuple(done[f"{name}Seen"]))
    rows.min_disparity, rows.num_disparities = done["minDisparity"], done["numDisparities"]
    rows.units = done["units"]
    return rows
