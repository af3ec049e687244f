"""One camera of a calibrated pair."""

from typing import TYPE_CHECKING, Any, List, Tuple

import numpy as np

from . import measure
from ._pixels import rowsOf
from ._records import ZelmCameraExtrinsics, ZelmCameraIntrinsics, ZelmMeasureCamera

if TYPE_CHECKING:
    from .rig import Rig

MODELS = ("perspective", "tilted", "parallel")


class RigCamera:
    """A camera of a rig: ``rig.left`` or ``rig.right``.

    Pixel centres are whole numbers, the first one's is (0, 0); x to the right, y down. A raw pixel is one of an image
    as taken, an undistorted one has the lens distortion taken out.

    Attributes
    ----------
    side : str
        'L' or 'R'.
    model : str
        "perspective", "tilted" or "parallel".
    size : (int, int)
        Width and height of its images, pixels.
    K : array of shape (3, 3)
        Undistorted pixel = K (x, y, 1), with (x, y) = (X/Z, Y/Z); (X, Y) of a parallel camera.
    distortion : array of shape (2,)
        k1 and k2: a raw pixel lies (1 + k1 r^2 + k2 r^4) times as far from the principal point as an undistorted one.
    R, t : array of shape (3, 3) and (3,)
        X_camera = R X + t, with X in the frame of the plate of view 0: the frame of all points.
    intrinsics : ZelmCameraIntrinsics
        The core's record.
    """

    def __init__(self, rig: "Rig", side: str, record: ZelmMeasureCamera, poses: List[ZelmCameraExtrinsics]) -> None:
        self._rig = rig
        self._records = poses
        self.side = side
        self.model = MODELS[record.model]
        self.size: Tuple[int, int] = (record.width, record.height)
        self.intrinsics: ZelmCameraIntrinsics = record.intrinsics

    @property
    def K(self) -> np.ndarray:
        return self.intrinsics.A.reshape(3, 3).copy()

    @property
    def distortion(self) -> np.ndarray:
        return np.array([self.intrinsics.k1, self.intrinsics.k2])

    @property
    def R(self) -> np.ndarray:
        return self._records[0].R.reshape(3, 3).copy()

    @property
    def t(self) -> np.ndarray:
        return self._records[0].t.copy()

    @property
    def centre(self) -> np.ndarray:
        """The centre of projection, in the frame of the plate of view 0. A parallel camera has none: NaN."""
        return np.full(3, np.nan) if self.is_parallel else -self.R.T @ self.t

    @property
    def is_parallel(self) -> bool:
        return self.model == "parallel"

    @property
    def poses(self) -> np.ndarray:
        """R and t of each view's plate, shape (views, 3, 4): X_camera = R X_plate + t."""
        return np.array([np.column_stack([pose.R.reshape(3, 3), pose.t]) for pose in self._records])

    def project(self, points: Any) -> np.ndarray:
        """Raw pixels, shape (n, 2), of points in the frame of the plate of view 0, shape (n, 3).

        They may lie outside the image. Points behind the camera, and where its lens folds the image, give NaN.
        """
        points = rowsOf(points, 3, "project", "points")
        with self._rig._handles.borrow() as handle:
            return measure.zelmMeasureProject(handle, self.side, points)

    def undistort(self, pixels: Any) -> np.ndarray:
        """Undistorted pixels of raw ones, shape (n, 2). NaN where the lens distortion cannot be undone."""
        pixels = rowsOf(pixels, 2, "undistort", "pixels")
        with self._rig._handles.borrow() as handle:
            return measure.zelmMeasureUndistort(handle, self.side, pixels)

    def distort(self, pixels: Any) -> np.ndarray:
        """Raw pixels of undistorted ones, shape (n, 2). NaN where no raw pixel shows them."""
        pixels = rowsOf(pixels, 2, "distort", "pixels")
        with self._rig._handles.borrow() as handle:
            return measure.zelmMeasureDistort(handle, self.side, pixels)

    def __repr__(self) -> str:
        K, (k1, k2) = self.K, self.distortion
        name = "left" if self.side == "L" else "right"
        return (
            f"<{name} camera, {self.model}, {self.size[0]} x {self.size[1]} px, focal lengths {K[0, 0]:.2f} and "
            f"{K[1, 1]:.2f}, principal point ({K[0, 2]:.2f}, {K[1, 2]:.2f}), k1 {k1:.5f}, k2 {k2:.5f}>"
        )
