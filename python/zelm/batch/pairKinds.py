"""The kinds of work on a pair: from its files to arrays, by the measuring library."""

from functools import lru_cache
from typing import Any, Dict, List, Tuple

import numpy as np

from .. import measure
from .._records import ZelmMeasureDriftOptions, ZelmMeasureDriftPart, ZelmMeasureMatchStatus, ZelmMeasurePointStatus
from .batchFault import BatchError
from .batchPlate import BatchPlate, plateOf
from .pairPoints import pixelPairsOf
from .pairProvenance import contentOf
from .pairWork import PairInputs, PairResult, covarianceOf
from .pairWriter import PairArray

_REACH_WINDOWS, _REACH_STEPS = 2.0, 2.5  # as `zelm match`: how far points may tell of each other's surface
_MIN_DRIFT_PAIRS = 30  # below which zelmMeasureDrift() refuses
_MIN_PLATE_DOTS = 4  # that place the plate
_UNKNOWN_CALIBRATION_ERROR = 0.003  # pixels; what `zelm verify` takes for a calibration without covariance
_FRAME = "in the frame of the plate of view 0"


def match(inputs: PairInputs) -> PairResult:
    """Counterparts of the pixels of a grid, or of all pixels, and their points of space."""
    rig = rigOf(inputs)
    left, right = _imageOf(inputs, rig, "left"), _imageOf(inputs, rig, "right")
    options = _matchOptions(rig, inputs.options)
    if inputs.options.get("dense"):
        pixels = _gridOf(left.shape, 1)
        found = measure.zelmMeasureMatchDense(rig, left, right, options=options)
        useful = ~np.isin(found.statuses, (ZelmMeasureMatchStatus.OUTSIDE, ZelmMeasureMatchStatus.NO_TEXTURE))
    else:
        pixels = _gridOf(left.shape, int(inputs.options["grid"]))
        found = measure.zelmMeasureMatch(rig, left, right, options=options, pixels=pixels)
        useful = np.ones(len(pixels), dtype=bool)
    counts = _countsOf(found.statuses, ZelmMeasureMatchStatus)
    good = found.statuses == 0
    textured = int(good.sum()) + counts["no_match"] + counts["ambiguous"] + counts["inconsistent"]
    figures = {
        "statuses": counts,
        "found": float(good.sum() / textured) if textured else None,  # of the points with texture
        "score": _median(found.scores[good]),
        "depth": _median(found.depths[good]),
    }
    arrays = {
        "left": PairArray(pixels[useful], "pixel", "in the left image, raw", ("point", "axis")),
        "right": PairArray(found.pixels[useful], "pixel", "counterpart in the right image, raw", ("point", "axis")),
        "positions": PairArray(found.positions[useful], "plate unit", _FRAME, ("point", "space")),
        "depths": PairArray(found.depths[useful], "plate unit", "along the left camera's axis", ("point",)),
        "deviations": PairArray(found.deviations[useful], "plate unit", "standard deviation of depths", ("point",)),
        "scores": PairArray(found.scores[useful], "", "correlation of the windows", ("point",)),
        "statuses": _statuses(found.statuses[useful], ZelmMeasureMatchStatus),
    }
    return PairResult(arrays, figures)


def triangulate(inputs: PairInputs) -> PairResult:
    """Points of space of the pixel pairs in a CSV file."""
    rig = rigOf(inputs)
    ids, left, right = pixelPairsOf(inputs.record.points, inputs.bytesOf("points"))
    points = measure.ZelmMeasurePoints(
        statuses=np.full(len(left), -1, np.int32), positions=np.full((len(left), 3), np.nan),
        errors=np.full((len(left), 2), np.nan), angles=np.full(len(left), np.nan),
        maxError=float(inputs.options.get("maxError", 0.0)), outside=1,
    )
    measure.zelmMeasureTriangulate(rig, left, right, points)
    good = points.statuses == 0
    figures = {
        "statuses": _countsOf(points.statuses, ZelmMeasurePointStatus),
        "epipolar": _epipolar(np.hypot(points.errors[good, 0], points.errors[good, 1])),
        "drift": _driftOf(inputs, rig, left[good], right[good]),
    }
    arrays = {
        "ids": PairArray(ids, "", "names of the points", ("point",)),
        "left": PairArray(left, "pixel", "in the left image, raw", ("point", "axis")),
        "right": PairArray(right, "pixel", "in the right image, raw", ("point", "axis")),
        "positions": PairArray(points.positions, "plate unit", _FRAME, ("point", "space")),
        "errors": PairArray(points.errors, "pixel", "to the point's projections, left and right", ("point", "camera")),
        "angles": PairArray(points.angles, "radian", "between the two rays", ("point",)),
        "statuses": _statuses(points.statuses, ZelmMeasurePointStatus),
    }
    return PairResult(arrays, figures)


def verify(inputs: PairInputs) -> PairResult:
    """How well a calibration measures a plate that is known: its dots, lengths, epipolar distances and drift."""
    rig, plate = rigOf(inputs), _plateOf(inputs)
    left, right = _imageOf(inputs, rig, "left"), _imageOf(inputs, rig, "right")
    found = [_dotsOf(inputs, "left", left, plate), _dotsOf(inputs, "right", right, plate)]
    grid, leftDots, rightDots = _commonDots(*found)
    refined = measure.zelmMeasureRefinePlate(rig, plate.pattern, left, right, grid, leftDots, rightDots)
    kept = refined.statuses == 0
    if kept.sum() < _MIN_PLATE_DOTS:
        raise BatchError(
            f"{inputs.record.left}: of {len(kept)} dots that both images show their pixels confirm {kept.sum()}, and "
            f"{_MIN_PLATE_DOTS} are needed: are the images sharp and of this rig and plate?"
        )
    grid = np.ascontiguousarray(grid[kept])
    points, fit = measure.zelmMeasurePlatePoints(rig, plate.pattern, grid, refined.left[kept], refined.right[kept])
    good = points.statuses == 0
    ends, nominal = measure.zelmMeasurePlateLengths(plate.pattern, np.ascontiguousarray(grid[good]))
    if plate.places:
        nominal = np.array([plate.distance(*grid[good][pair]) for pair in ends])
    lengths, summary = measure.zelmMeasureLengthErrors(rig, points.positions[good], ends, nominal)
    pixels = (np.ascontiguousarray(points.left[good]), np.ascontiguousarray(points.right[good]))
    triangulated = measure.zelmMeasureTriangulate(rig, *pixels)
    errors = summary.all
    figures = {
        "dots": int(good.sum()),
        "dotsNotConfirmed": int((~kept).sum()),
        "lengths": {"count": len(nominal), "rms": errors.rms, "mean": errors.mean, "worst": errors.worst},
        "scale": {"value": summary.scale, "deviation": summary.scaleDeviation},
        "plate": {"rms": fit.rms, "flatness": fit.flatnessRms},
        "epipolar": _epipolar(np.hypot(triangulated.errors[:, 0], triangulated.errors[:, 1])),
        "drift": _driftOf(inputs, rig, *pixels),
    }
    arrays = {
        "grid": PairArray(grid[good], "", "column and row of a dot on the plate", ("point", "axis")),
        "left": PairArray(pixels[0], "pixel", "the dot's centre in the left image, raw", ("point", "axis")),
        "right": PairArray(pixels[1], "pixel", "the dot's centre in the right image, raw", ("point", "axis")),
        "positions": PairArray(points.positions[good], "plate unit", _FRAME, ("point", "space")),
        "ends": PairArray(ends, "", "the two dots of a length", ("length", "end")),
        "nominal": PairArray(nominal, "plate unit", "true length", ("length",)),
        "measured": PairArray(lengths.measured, "plate unit", "measured length", ("length",)),
    }
    return PairResult(arrays, figures)


def detect(inputs: PairInputs) -> PairResult:
    """The dots of a plate, in each image that the pair has."""
    plate = _plateOf(inputs)
    arrays, figures = {}, {}
    for side in ("left", "right"):
        if getattr(inputs.record, side):
            dots = _dotsOf(inputs, side, inputs.image(side), plate)
            axes = (f"{side}Dot", "axis")
            arrays[f"{side}Grid"] = PairArray(dots.grid, "", "column and row of a dot on the plate", axes)
            arrays[f"{side}Pixels"] = PairArray(dots.pixels, "pixel", f"a dot's centre in the {side} image, raw", axes)
            figures[side] = {"dots": len(dots.grid)}
    if not arrays:
        raise BatchError(f"{inputs.record.label()}: no image is named: a left or a right one is wanted")
    return PairResult(arrays, figures)


def rigOf(inputs: PairInputs) -> Any:
    """The station's rig with its covariance, if it has one; opened once by each worker."""
    path = inputs.calibration()
    return _openRig(path, inputs.settings.calibrations[inputs.record.station][1])


@lru_cache(maxsize=64)
def _openRig(path: str, digest: str) -> Any:
    try:
        rig = measure.zelmMeasureRigOpen(contentOf(path))
        covariance = covarianceOf(path)
        if covariance:
            measure.zelmMeasureCovarianceLoad(rig, contentOf(covariance))
    except measure.ZelmError as error:
        raise BatchError(f"{path}: {error}") from None
    return rig


def _plateOf(inputs: PairInputs) -> BatchPlate:
    path, digest = inputs.settings.plate
    return plateOf(path, digest)


def _imageOf(inputs: PairInputs, rig: Any, side: str) -> np.ndarray:
    image = inputs.image(side)
    camera = measure.zelmMeasureRigCamera(rig, side[0].upper())
    if image.shape != (camera.height, camera.width):
        raise BatchError(
            f"{getattr(inputs.record, side)}: {image.shape[1]} x {image.shape[0]} pixels, but the {side} camera was "
            f"calibrated with {camera.width} x {camera.height}: give raw images of this rig"
        )
    return image


def _matchOptions(rig: Any, given: Dict[str, Any]) -> Any:
    options = measure.zelmMeasureMatchDefaults(rig)
    for name in ("window", "minScore", "precision", "noise"):
        if name in given:
            setattr(options, name, given[name])
    options.threads = 1  # the workers share the processors
    options.reach = max(_REACH_WINDOWS * options.window, 0.0 if given.get("dense") else _REACH_STEPS * given["grid"])
    if "depth" in given:
        options.limits.leftMin, options.limits.leftMax = given["depth"]
    return options


def _gridOf(shape: Tuple[int, ...], step: int) -> np.ndarray:
    """Pixels of a grid, row by row, its first one half a step from the corner."""
    if not 1 <= step <= 10000:
        raise BatchError(f"a grid of {step} pixels: 1 to 10000 are wanted")
    y, x = np.mgrid[step // 2 : shape[0] : step, step // 2 : shape[1] : step]
    return np.stack([x.ravel(), y.ravel()], axis=1).astype(float)


def _dotsOf(inputs: PairInputs, side: str, image: np.ndarray, plate: BatchPlate) -> Any:
    try:
        return measure.zelmMeasurePlateDots(image, plate.pattern).dots
    except measure.ZelmError as error:
        raise BatchError(f"{getattr(inputs.record, side)}: the plate cannot be read: {error}") from None


def _commonDots(left: Any, right: Any) -> Tuple[np.ndarray, np.ndarray, np.ndarray]:
    places = {tuple(index): place for place, index in enumerate(right.grid.tolist())}
    both: List[Tuple[int, int]] = [
        (i, places[tuple(index)]) for i, index in enumerate(left.grid.tolist()) if tuple(index) in places
    ]
    both.sort(key=lambda pair: (left.grid[pair[0]][1], left.grid[pair[0]][0]))
    mine, theirs = [pair[0] for pair in both], [pair[1] for pair in both]
    return left.grid[mine], left.pixels[mine], right.pixels[theirs]


def _driftOf(inputs: PairInputs, rig: Any, left: np.ndarray, right: np.ndarray) -> Any:
    """What the pixel pairs tell of drift; None where they are too few, words where the library refuses."""
    if len(left) < _MIN_DRIFT_PAIRS:
        return None
    known = covarianceOf(inputs.calibration()) is not None
    options = ZelmMeasureDriftOptions(calibrationError=0.0 if known else _UNKNOWN_CALIBRATION_ERROR)
    try:
        drift = measure.zelmMeasureDrift(rig, left, right, options).drift
    except measure.ZelmError as error:
        return {"refused": str(error)}
    return {
        "found": bool(drift.found),
        "probability": drift.probability,
        "best": ZelmMeasureDriftPart(drift.best).name.lower(),
        "value": drift.singles[drift.best].value,
        "rms": drift.rms,
        "rmsAll": drift.rmsAll,
        "noise": drift.noise,
    }


def _epipolar(distances: np.ndarray) -> Dict[str, Any]:
    if not len(distances):
        return {"count": 0}
    return {"count": len(distances), "rms": float(np.sqrt(np.mean(distances**2))), "worst": float(distances.max())}


def _countsOf(statuses: np.ndarray, names: Any) -> Dict[str, int]:
    return {name.name.lower(): int((statuses == name).sum()) for name in names}


def _statuses(statuses: np.ndarray, names: Any) -> PairArray:
    meaning = ", ".join(f"{int(name)} {name.name.lower()}" for name in names)
    return PairArray(statuses.astype(np.int8), "", meaning, ("point",))


def _median(values: np.ndarray) -> Any:
    return float(np.median(values)) if len(values) else None
