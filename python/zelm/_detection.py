"""The dots of a plate in one image."""

import warnings
from typing import Any, Optional, Sequence, Tuple

import numpy as np

from . import _arrays, measure
from ._errors import MeasurementWarning, ZelmDataError, ZelmError, refuse
from ._grayImages import ImageLike, grayImage
from ._records import ZELM_MEASURE_ERR_DATA, Zelm2ViewPatternDesc, ZelmMeasureImageCause, ZelmRect

_ROUNDING = 0.001  # of a pitch
_MISREAD = (ZelmMeasureImageCause.MARKER_DISTANCE,)  # dots were put to places that are not theirs
FIELDS = [("grid", "i4", 2), ("plane", "f8", 2), ("pixel", "f8", 2)]


def recordOf(plate: Any, function: str) -> Zelm2ViewPatternDesc:
    """The core's record of a plate: of anything that has one to give, or the record itself."""
    if hasattr(plate, "record"):
        plate = plate.record()
    return _arrays.toRecord(Zelm2ViewPatternDesc, plate, function, "plate")  # type: ignore[return-value]


def detect(plate: Any, image: ImageLike, region: Optional[Sequence[int]] = None) -> np.ndarray:
    """Finds the dots of a plate in one image.

    Parameters
    ----------
    plate : Plate
        The plate, or its record Zelm2ViewPatternDesc.
    image : array or path
        The raw image: gray (height, width) or R, G, B (height, width, 3), of uint8 or uint16; or its file.
    region : (x, y, width, height), optional
        The part of the image that holds the plate. Default: it is looked for.

    Returns
    -------
    structured array
        A dot each, row by row: `grid`, column and row counted from the corner marker; `plane`, its place on the plate;
        `pixel`, its centre in the image.

    Raises
    ------
    ZelmError
        The plate cannot be read. `cause` of the error is why, as one word, such as "out-of-focus"; `diagnosis` has
        the figures, `ZelmMeasureImageDiagnosis`.

    Warns
    -----
    MeasurementWarning
        Dots of the described field are missing.
    """
    record = recordOf(plate, "detect")
    gray = grayImage(image, "detect: image")
    part = None if region is None else _partOf(gray, region)
    try:
        read = measure.zelmMeasurePlateDots(gray, record, part)
    except ZelmError as error:
        raise _withCause(error, gray, record, part) from None
    dots, described = _table(read.dots), _describedDots(record)
    lost = read.found - len(dots)
    if len(dots) < described:
        diagnosis = measure.zelmMeasureDiagnoseImage(gray, record, part).diagnosis
        if diagnosis.cause in _MISREAD:
            raise _failure(f"{len(dots)} of {described} dots were read, at places that contradict the plate", diagnosis)
        if diagnosis.cause != ZelmMeasureImageCause.FINE:
            words = f"{len(dots)} of {described} dots read: {measure.zelmMeasureImageCauseName(diagnosis.cause)}"
            warnings.warn(words, MeasurementWarning, stacklevel=2)
    if lost > 0:
        words = f"{lost} of {read.found} dots have no place on the grid: do pitch and marker distances fit the plate?"
        raise ZelmDataError(f"detect: {words}", int(ZELM_MEASURE_ERR_DATA), "ZELM_MEASURE_ERR_DATA", "detect")
    return dots[np.lexsort((dots["grid"][:, 0], dots["grid"][:, 1]))]


def _partOf(gray: np.ndarray, region: Sequence[int]) -> ZelmRect:
    part = _arrays.toRecord(ZelmRect, region, "detect", "region")
    x, y, width, height = part
    if x < 0 or y < 0 or width < 1 or height < 1 or x + width > gray.shape[1] or y + height > gray.shape[0]:
        refuse("detect", f"region {x, y, width, height} is not inside this {gray.shape[1]} x {gray.shape[0]} image")
    return part  # type: ignore[return-value]


def _table(dots: Any) -> np.ndarray:
    table = np.empty(len(dots.pixels), FIELDS)
    table["grid"], table["plane"], table["pixel"] = dots.grid, dots.plane, dots.pixels
    return table


def _describedDots(plate: Any) -> int:
    """Dots of the described field."""

    def count(extent: float, pitch: float) -> int:
        return 2 * int(min(extent / 2.0 / pitch + _ROUNDING, 1e4)) + 1

    return count(plate.d0, plate.d4) * count(plate.d1, plate.d5)


def _withCause(error: ZelmError, gray: np.ndarray, record: Any, part: Any) -> ZelmError:
    try:
        diagnosis = measure.zelmMeasureDiagnoseImage(gray, record, part).diagnosis
    except ZelmError:
        return error
    cause = measure.zelmMeasureImageCauseName(diagnosis.cause)
    told = type(error)(f"{error} The image shows: {cause}.", error.status, error.name, error.function)
    return _told(told, cause, diagnosis)


def _failure(words: str, diagnosis: Any) -> ZelmDataError:
    cause = measure.zelmMeasureImageCauseName(diagnosis.cause)
    error = ZelmDataError(
        f"detect: {words}: {cause}", int(ZELM_MEASURE_ERR_DATA), "ZELM_MEASURE_ERR_DATA", "detect"
    )
    return _told(error, cause, diagnosis)


def _told(error: Any, cause: Optional[str], diagnosis: Any) -> Any:
    error.cause, error.diagnosis = cause, diagnosis
    return error


def pixelsOf(dots: np.ndarray, others: np.ndarray) -> Tuple[np.ndarray, np.ndarray, np.ndarray]:
    """The dots that two images show alike: their places on the grid, and their pixels in both."""
    where = {tuple(place): at for at, place in enumerate(others["grid"].tolist())}
    pairs = [(at, where[tuple(g)]) for at, g in enumerate(dots["grid"].tolist()) if tuple(g) in where]
    first, second = np.array(pairs, dtype=np.intp).reshape(-1, 2).T
    return dots["grid"][first], dots["pixel"][first], others["pixel"][second]
