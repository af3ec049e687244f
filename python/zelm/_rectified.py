"""Rectified and row-aligned images in memory."""

import math
from typing import TYPE_CHECKING, Any, Optional, Sequence, Tuple

import numpy as np

from . import _arrays, core, measure
from ._errors import refuse
from ._grayImages import ImageLike, colourImage
from ._records import Zelm2ViewHomParam, ZelmMeasureRowOptions

if TYPE_CHECKING:
    from .rig import Rig

_DISPARITY_STEP = 16  # block matchers take multiples of it


class Rectified:
    """The left image as the right camera would see it, and the right one as the left camera would.

    Attributes
    ----------
    left, right : array of uint8
        The images, of the size of the raw ones: gray, or R, G, B where the raw one has colours.
    left_reference, right_reference : (float, float)
        The undistorted pixels that lie on the image centres.
    """

    def __init__(self, images: Sequence[np.ndarray], references: Sequence[Tuple[float, float]]) -> None:
        self.left, self.right = images
        self.left_reference, self.right_reference = references

    def __repr__(self) -> str:
        height, width = self.left.shape[:2]
        return f"<Rectified {width} x {height}>"


class AlignedRows:
    """A pair of images with every point in one row, and what matchers need; names as of OpenCV's stereoRectify.

    Attributes
    ----------
    left, right : array of uint8, or None
        The images, where raw ones were given.
    R1, R2 : array (3, 3)
        X_aligned = R1 X_left, and the same for the right camera.
    P1, P2 : array (3, 4)
        From the aligned left frame to the pixels of the left and the right image.
    Q : array (4, 4)
        Takes (x, y, disparity, 1) to the point of the aligned left frame.
    left_map, right_map : array (height, width, 2) of float32
        x and y of the raw pixel of each aligned one, -1 where the camera does not see it. OpenCV's remap takes them.
    left_seen, right_seen : (x, y, width, height)
        The largest rectangles of pixels that each camera all sees.
    min_disparity, num_disparities : int
        Those of the depths; 0 where nothing tells depths.
    """

    def __init__(self, record: Any, maps: Sequence[np.ndarray], images: Sequence[Optional[np.ndarray]]) -> None:
        for name in ("R1", "R2", "P1", "P2", "Q"):
            numbers = getattr(record, name)
            setattr(self, name, numbers.reshape({9: (3, 3), 12: (3, 4), 16: (4, 4)}[numbers.size]).copy())
        self.left_map, self.right_map = maps
        self.left, self.right = images
        self.left_seen = tuple(record.leftSeen.tolist())
        self.right_seen = tuple(record.rightSeen.tolist())
        self.min_disparity, self.num_disparities = _disparitiesOf(record)

    def points(self, disparity: Any) -> np.ndarray:
        """Points of a disparity image, (height, width, 3), in the aligned left frame; NaN where there is none."""
        disparity = np.asarray(disparity, dtype=float)
        y, x = np.indices(disparity.shape, dtype=float)
        homogeneous = np.stack([x, y, disparity, np.ones_like(x)], axis=-1) @ self.Q.T  # type: ignore[attr-defined]
        with np.errstate(divide="ignore", invalid="ignore"):
            points = homogeneous[..., :3] / homogeneous[..., 3:]
        points[~np.isfinite(points).all(axis=-1)] = np.nan
        return points

    def __repr__(self) -> str:
        height, width = self.left_map.shape[:2]
        return f"<AlignedRows {width} x {height}, {self.num_disparities} disparities from {self.min_disparity} on>"


def rectify(
    rig: "Rig", left: ImageLike, right: ImageLike, reference: Optional[Sequence[float]], depth: float
) -> Rectified:
    images = [_rawImage(rig, image, side, "rectify") for image, side in ((left, "L"), (right, "R"))]
    with rig._handles.borrow() as handle:
        references = _referencesOf(handle, reference)
        calib = measure.zelmMeasureRigCalib(handle)
        made = []
        for image, side, (x, y) in zip(images, "LR", references):
            params = Zelm2ViewHomParam(px=x, py=y, s=_arrays.toFloat(depth, "rectify", "depth"))
            if image.ndim == 2:
                made.append(core.zelm2ViewMakeHomImage(calib, side, image, params))
            else:
                turned = core.zelm2ViewMakeHomImage_vImageARGB8888(calib, side, _argb(image), params)
                made.append(turned[..., 1:].copy())
    return Rectified(made, references)


def alignRows(
    rig: "Rig", images: Sequence[Optional[ImageLike]], options: ZelmMeasureRowOptions
) -> AlignedRows:
    raw = [
        None if image is None else _rawImage(rig, image, side, "align_rows") for image, side in zip(images, "LR")
    ]
    with rig._handles.borrow() as handle:
        record = measure.zelmMeasureAlignRows(handle, options)
        maps = [measure.zelmMeasureAlignRowsMap(handle, side, options) for side in "LR"]
    made = [None if image is None else _remapped(image, map_) for image, map_ in zip(raw, maps)]
    return AlignedRows(record, maps, made)


def rowOptions(
    size: Optional[Tuple[int, int]], focal: Optional[float], depths: Optional[Tuple[float, float]], atInfinity: bool
) -> ZelmMeasureRowOptions:
    options = ZelmMeasureRowOptions(zeroAtInfinity=int(bool(atInfinity)))
    if size is not None:
        options.width, options.height = size
        if min(size) < 1:
            refuse("align_rows", f"size is {tuple(size)}, numbers of pixels above 0 are wanted")
    if focal is not None:
        options.focal = focal
        if not 0.0 < focal < math.inf:
            refuse("align_rows", f"focal is {focal}, a number of pixels above 0 is wanted")
    if depths is not None:
        options.nearest, options.farthest = depths
        if not 0.0 < depths[0] < depths[1]:
            refuse("align_rows", f"depths is {tuple(depths)}, two rising numbers above 0 are wanted")
    return options


def _rawImage(rig: "Rig", image: ImageLike, side: str, function: str) -> np.ndarray:
    name = "left" if side == "L" else "right"
    array = colourImage(image, f"{function}: {name}")
    width, height = rig.camera(side).size
    if array.shape[:2] != (height, width):
        refuse(
            function,
            f"{name}: {array.shape[1]} x {array.shape[0]} pixels, but the {name} camera was calibrated with {width} x "
            f"{height}: give the raw image",
        )
    return array


def _referencesOf(handle: Any, given: Optional[Sequence[float]]) -> Sequence[Tuple[float, float]]:
    if given is None:
        centre = measure.zelmMeasureRigCentre(handle)
        return [(float(x), float(y)) for x, y in (centre.left, centre.right)]
    numbers = [_arrays.toFloat(number, "rectify", "reference") for number in given]
    if len(numbers) not in (2, 4):
        refuse("rectify", "reference must be (x, y) for both images or (xL, yL, xR, yR)")
    return [(numbers[0], numbers[1]), (numbers[-2], numbers[-1])]


def _remapped(image: np.ndarray, map_: np.ndarray) -> np.ndarray:
    x, y = np.ascontiguousarray(map_[..., 0]), np.ascontiguousarray(map_[..., 1])
    if image.ndim == 2:
        return core.remapImage_8uC1(image, x, y)
    return core.remapImage_8uC4(_argb(image), x, y)[..., 1:].copy()


def _argb(image: np.ndarray) -> np.ndarray:
    made = np.full(image.shape[:2] + (4,), 255, np.uint8)
    made[..., 1:] = image
    return made


def _disparitiesOf(record: Any) -> Tuple[int, int]:
    least, greatest = record.disparities
    if least == 0.0 and greatest == 0.0:
        return 0, 0
    first = math.floor(max(least, -float(record.width)))  # what is farther apart has no counterpart
    count = max(1, math.ceil(min(greatest, float(record.width))) - first + 1)
    return first, -(-count // _DISPARITY_STEP) * _DISPARITY_STEP
