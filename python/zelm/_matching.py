"""Points of a scene: counterparts of pixels over whole images."""

import warnings
from typing import TYPE_CHECKING, Any, Callable, Optional, Sequence, Tuple

import numpy as np

from . import _arrays, _pixels, measure
from ._errors import MeasurementWarning, ZelmDataError, refuse
from ._grayImages import ImageLike, grayImage
from ._records import ZELM_MEASURE_ERR_DATA, ZelmMeasureMatches, ZelmMeasureMatchOptions, ZelmMeasureMatchStatus
from ._records import ZelmMeasurePointCovariances, ZelmMeasurePointStatus
from .cloud import MATCH_WORDS, Cloud

if TYPE_CHECKING:
    from .rig import Rig

_REACH_WINDOWS = 2.0
_REACH_STEPS = 2.5  # of a grid
_MIN_POINTS = 50  # below which a share tells little
_MIN_SHARE = 0.2  # found, of the points with texture; of a scene it is half of them and more
_DEFAULTS = {"window": "window", "min_score": "minScore", "return_tolerance": "returnTolerance"}
_DEFAULTS.update(precision="precision", noise="noise", threads="threads")
Told = Callable[[str, int, int], Any]


def match(
    rig: "Rig",
    left: ImageLike,
    right: ImageLike,
    step: int,
    points: Any,
    dense: bool,
    region: Optional[Sequence[int]],
    depth: Optional[Tuple[float, float]],
    progress: Optional[Told],
    settings: "dict[str, Any]",
) -> Cloud:
    leftGray, rightGray = _imageOf(rig, left, "L"), _imageOf(rig, right, "R")
    if dense and points is not None:
        raise ValueError("match: dense looks for every pixel, points for a list: give one of them")
    step = 1 if dense else _arrays.toInt(step, "match", "step")
    if not 1 <= step <= 10000:
        refuse("match", f"step is {step}, a number of pixels from 1 to 10000 is wanted")
    pixels = _grid(leftGray.shape, step, region) if points is None else _pixels.rowsOf(points, 2, "match", "points")
    with rig._handles.borrow() as handle:
        options = _optionsOf(handle, (leftGray, rightGray), None if points is not None else step, depth, settings)
        _checkWindow(rig, options.window)
        _checkOverlap(handle, options, pixels)
        options.progress = _interruptible(progress)
        if dense and region is None:
            record = measure.zelmMeasureMatchDense(handle, leftGray, rightGray, options)
        else:
            record = measure.zelmMeasureMatch(handle, leftGray, rightGray, pixels, options)
        ids = np.arange(1, len(pixels) + 1)
        if dense:
            record, pixels, ids = _hopeful(record, pixels, ids)
        calibration = _byCalibration(rig, handle, pixels, record)
    cloud = Cloud(rig, leftGray, pixels, ids, record, options, calibration)
    _warnOfFew(cloud)
    return cloud


def _imageOf(rig: "Rig", image: ImageLike, side: str) -> np.ndarray:
    name = "left" if side == "L" else "right"
    gray = grayImage(image, f"match: {name}")
    width, height = rig.camera(side).size
    if gray.shape != (height, width):
        refuse(
            "match",
            f"{name}: {gray.shape[1]} x {gray.shape[0]} pixels, but the {name} camera was calibrated with {width} x "
            f"{height}: give the raw image",
        )
    return gray


def _grid(shape: Tuple[int, ...], step: int, region: Optional[Sequence[int]]) -> np.ndarray:
    """The pixels of a grid, row by row; of a region those that lie in it."""
    y, x = np.arange(step // 2, shape[0], step), np.arange(step // 2, shape[1], step)
    if region is not None:
        rx, ry, width, height = (_arrays.toInt(number, "match", "region") for number in region)
        if rx < 0 or ry < 0 or width < 1 or height < 1 or rx + width > shape[1] or ry + height > shape[0]:
            refuse("match", f"region {rx, ry, width, height} is not inside this {shape[1]} x {shape[0]} image")
        x, y = x[(x >= rx) & (x < rx + width)], y[(y >= ry) & (y < ry + height)]
    if not len(x) or not len(y):
        refuse("match", "no pixel of the grid lies in the region: give a smaller step")
    return np.stack(np.meshgrid(x, y), axis=-1).reshape(-1, 2).astype(np.float64)


def _optionsOf(
    handle: Any,
    images: Sequence[np.ndarray],
    step: Optional[int],
    depth: Optional[Tuple[float, float]],
    settings: "dict[str, Any]",
) -> ZelmMeasureMatchOptions:
    options = measure.zelmMeasureMatchDefaults(handle)
    for name, value in settings.items():
        if name not in _DEFAULTS:
            raise TypeError(f"match: there is no argument {name!r}; there are {', '.join(_DEFAULTS)}")
        if value is not None:
            setattr(options, _DEFAULTS[name], value)
    options.reach = max(_REACH_WINDOWS * options.window, _REACH_STEPS * step if step is not None else 0.0)
    if depth is not None:
        nearest, farthest = (_arrays.toFloat(number, "match", "depth") for number in depth)
        if not nearest < farthest:
            refuse("match", f"depth {nearest, farthest}: an empty range: the first must be less than the second")
        limits = measure.zelmMeasureMatchDefaults().limits
        limits.leftMin, limits.leftMax = nearest, farthest
        options.limits = limits
    if not options.noise > 0.0:
        options.noise = 0.5 * sum(measure.zelmMeasureNoise(image) for image in images)
    return options


def _checkWindow(rig: "Rig", window: int) -> None:
    if window % 2 == 0:
        refuse("match", f"window is {window}: it must be odd, so that the point is in its middle")
    for camera in (rig.left, rig.right):
        if window + 2 >= min(camera.size):
            refuse("match", f"window is {window}: larger than images of {camera.size[0]} x {camera.size[1]} pixels")


def _checkOverlap(handle: Any, options: ZelmMeasureMatchOptions, pixels: np.ndarray) -> None:
    if len(pixels) and not measure.zelmMeasureOverlap(handle, pixels, options):
        limits = options.limits
        raise ZelmDataError(
            f"no epipolar line of any of {len(pixels)} points crosses the right image at depths from "
            f"{limits.leftMin:.6g} to {limits.leftMax:.6g}: the cameras see nothing in common there; give another "
            "depth, or check the calibration and the points",
            int(ZELM_MEASURE_ERR_DATA),
            "ZELM_MEASURE_ERR_DATA",
            "match",
        )


def _interruptible(progress: Optional[Told]) -> Told:
    """Also without a function to tell: the interpreter sees Ctrl-C when it is told of progress."""
    return progress if progress is not None else lambda stage, done, total: 0


def _hopeful(record: Any, pixels: np.ndarray, ids: np.ndarray) -> Tuple[Any, np.ndarray, np.ndarray]:
    """Dense results leave out what has no texture and no place to look for."""
    hopeless = (ZelmMeasureMatchStatus.NO_TEXTURE, ZelmMeasureMatchStatus.OUTSIDE)
    at = np.flatnonzero(~np.isin(record.statuses, hopeless))
    return _taken(record, at), pixels[at], ids[at]


def _taken(record: Any, at: np.ndarray) -> ZelmMeasureMatches:
    return ZelmMeasureMatches(**{name: getattr(record, name)[at] for name in record._pointers_})


def _byCalibration(rig: "Rig", handle: Any, pixels: np.ndarray, record: Any) -> Optional[Any]:
    """What the calibration adds to the points that were found, where its covariance is known."""
    if rig.covariance_block is None:
        return None
    found = record.statuses == ZelmMeasureMatchStatus.OK
    count = int(found.sum())
    rooms = ZelmMeasurePointCovariances(
        statuses=np.empty(count, np.int32), calibration=np.full((count, 6), np.nan), depths=np.full((count, 2), np.nan)
    )
    measure.zelmMeasurePointCovariance(handle, pixels[found], record.pixels[found], None, rooms)
    known = np.isin(rooms.statuses, (ZelmMeasurePointStatus.OK, ZelmMeasurePointStatus.BEHIND))
    rooms.calibration[~known] = rooms.depths[~known] = np.nan
    return rooms


def _warnOfFew(cloud: Cloud) -> None:
    """Chance finds matches even in pictures that have nothing to do with each other."""
    counts = cloud.counts
    hopeful = [word for word in MATCH_WORDS.values() if word not in ("outside", "no_texture")]
    sought = sum(counts[word] for word in hopeful)
    told = ", ".join(f"{count} {word}" for word, count in counts.items() if count and word != "ok")
    if not counts["ok"]:
        words = f"none of {len(cloud.status)} points was found ({told}): do the images belong together, in this order, "
        warnings.warn(words + "and to this calibration?", MeasurementWarning, stacklevel=4)
    elif sought >= _MIN_POINTS and counts["ok"] < _MIN_SHARE * sought:
        words = (
            f"only {counts['ok']} of {sought} points with texture were found, and those may be chance: do the images "
            "belong together, in this order, and to this calibration?"
        )
        warnings.warn(words, MeasurementWarning, stacklevel=4)


