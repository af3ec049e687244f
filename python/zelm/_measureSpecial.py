"""Functions of the measuring library that the table cannot describe.

They close objects, ask for a number of entries before there is room for them, or take records that point to others.
"""

import ctypes
from typing import Any, Callable, List, Optional, Sequence, Tuple, Type

import numpy as np

from . import _arrays, _library
from ._errors import failMeasuring, refuse
from ._handles import CalibOfRig, Handle, Zelm2ViewCalib, ZelmMeasureAdjustment, ZelmMeasurePlan, ZelmMeasureRig
from ._handles import enterAll, leaveAll
from ._measureChecks import holds, rooms, sizeOf, trimmed
from ._record import Record
from ._recordArrays import recordsOf
from ._records import (
    Zelm2ViewCameraDesc,
    Zelm2ViewPatternDesc,
    ZelmMeasureAdjustedDots,
    ZelmMeasureCamera,
    ZelmMeasureDots,
    ZelmMeasureExportOptions,
    ZelmMeasureFeature,
    ZelmMeasureFeaturePoints,
    ZelmMeasureFeatureResult,
    ZelmMeasureImageDiagnosis,
    ZelmMeasureImageSet,
    ZelmMeasureImported,
    ZelmMeasureImportOptions,
    ZelmMeasurePairedView,
    ZelmMeasurePairing,
    ZelmMeasureRelation,
    ZelmMeasureRelationResult,
    ZelmMeasureSetCause,
    ZelmMeasureSpots,
    ZelmRect,
)

_FIRST_ROOM = 4096  # entries: more than plates have, so that one call is enough


def zelmMeasureRigClose(rig=None):  # type: ignore
    _close(rig, ZelmMeasureRig, "zelmMeasureRigClose", "rig")


def zelmMeasureAdjustClose(adjustment=None):  # type: ignore
    _close(adjustment, ZelmMeasureAdjustment, "zelmMeasureAdjustClose", "adjustment")


def zelmMeasurePlanClose(plan=None):  # type: ignore
    _close(plan, ZelmMeasurePlan, "zelmMeasurePlanClose", "plan")


def zelmMeasureRigCalib(rig):  # type: ignore
    _isA(rig, ZelmMeasureRig, "zelmMeasureRigCalib", "rig")
    library = _library.measure()
    rig._enter()
    try:
        address = library.zelmMeasureRigCalib(rig._pointer)
        if not address:
            refuse("zelmMeasureRigCalib", "the rig was refused")
        views = ctypes.c_int32()
        library.zelmMeasureRigViews(rig._pointer, ctypes.byref(views))
        models = [ZelmMeasureCamera(), ZelmMeasureCamera()]
        for camera, side in zip(models, b"LR"):
            library.zelmMeasureRigCamera(rig._pointer, side, ctypes.byref(camera))
        cameras = [number for c in models for number in (c.model, c.width, c.height)]
        return CalibOfRig(rig, address, views.value, Zelm2ViewCameraDesc(*cameras))
    finally:
        rig._leave()


def zelmMeasureRigDots(rig, pattern, side, view):  # type: ignore
    name = "zelmMeasureRigDots"
    _isA(rig, ZelmMeasureRig, name, "rig")
    pattern = _arrays.toRecord(Zelm2ViewPatternDesc, pattern, name, "pattern")
    view, side = _arrays.toInt(view, name, "view"), _arrays.toCamera(side, name, "side")

    def call(dots: Any, *counts: Any) -> int:
        return _library.measure().zelmMeasureRigDots(
            rig._pointer, ctypes.byref(pattern), side, view, ctypes.byref(dots), *counts
        )

    return _result(name, *_roomy(name, ZelmMeasureDots, call, rig, counts=2))


def zelmMeasurePlateDots(image, pattern, region=None):  # type: ignore
    name = "zelmMeasurePlateDots"
    image, arguments, _kept = _imageOfPlate(name, image, pattern, region)

    def call(dots: Any, *counts: Any) -> int:
        return _library.measure().zelmMeasurePlateDots(*arguments, ctypes.byref(dots), *counts)

    dots, found = _roomy(name, ZelmMeasureDots, call, None, counts=2)
    dots.errors = None  # of calibrated dots alone
    return _result(name, dots, found)


def zelmMeasureReadDots(calib, side, view):  # type: ignore
    name = "zelmMeasureReadDots"
    _isA(calib, Zelm2ViewCalib, name, "calib")
    view, side = _arrays.toInt(view, name, "view"), _arrays.toCamera(side, name, "side")

    def call(dots: Any, *counts: Any) -> int:
        return _library.measure().zelmMeasureReadDots(calib._pointer, side, view, ctypes.byref(dots), *counts)

    calib._enter()
    try:
        dots = _filled(name, ZelmMeasureDots, call, None)[0]
    finally:
        calib._leave()
    dots.errors = None
    return dots


def zelmMeasureAdjustDots(adjustment, side, view):  # type: ignore
    name = "zelmMeasureAdjustDots"
    _isA(adjustment, ZelmMeasureAdjustment, name, "adjustment")
    view, side = _arrays.toInt(view, name, "view"), _arrays.toCamera(side, name, "side")

    def call(dots: Any, *counts: Any) -> int:
        return _library.measure().zelmMeasureAdjustDots(adjustment._pointer, side, view, ctypes.byref(dots), *counts)

    return _roomy(name, ZelmMeasureAdjustedDots, call, adjustment)[0]


def zelmMeasureDiagnoseImage(image, pattern, region=None):  # type: ignore
    name = "zelmMeasureDiagnoseImage"
    image, arguments, _kept = _imageOfPlate(name, image, pattern, region)
    diagnosis = ZelmMeasureImageDiagnosis()

    def call(spots: Any, count: Any) -> int:
        status = _library.measure().zelmMeasureDiagnoseImage(
            *arguments, ctypes.byref(diagnosis), ctypes.byref(spots)
        )
        count._obj.value = diagnosis.spots
        return status

    return _result(name, diagnosis, _filled(name, ZelmMeasureSpots, call, None)[0])


def _imageOfPlate(name: str, image: Any, pattern: Any, region: Any) -> Tuple[np.ndarray, Tuple[Any, ...], Any]:
    image = _arrays.toPixels(image, name, "image", True)
    _arrays.checkShape(image, ("h", "w"), name, "image")
    pattern = _arrays.toRecord(Zelm2ViewPatternDesc, pattern, name, "pattern")
    if region is not None:
        region = _arrays.toRecord(ZelmRect, region, name, "region")
    arguments = _arrays.grayOf(image), ctypes.byref(pattern), None if region is None else ctypes.byref(region)
    return image, arguments, (pattern, region)


def _roomy(name: str, cls: Any, call: Callable[..., int], handle: Any, counts: int = 1) -> Tuple[Any, ...]:
    handles = [] if handle is None else [(handle, True)]
    held = enterAll(*handles)
    try:
        return _filled(name, cls, call, handle, counts)
    finally:
        leaveAll(held)


def _filled(name: str, cls: Any, call: Callable[..., int], teller: Any, counts: int = 1) -> Tuple[Any, ...]:
    """A record of as many entries as there are: once more with a larger one where the first room is too small."""
    room = _FIRST_ROOM
    while True:
        record = rooms(cls, room)
        record.capacity = room
        numbers = [ctypes.c_int64() for _ in range(counts)]
        status = call(record, *(ctypes.byref(number) for number in numbers))
        if status < 0:
            failMeasuring(name, status, teller)
        count = numbers[0].value
        if count <= room:
            record = trimmed(record, count)
            record.capacity = count
            return (record, *(number.value for number in numbers[1:]))
        room = count


def zelmMeasureFeatures(points, features, rig=None, relations=()):  # type: ignore
    name = "zelmMeasureFeatures"
    points = _arrays.toRecord(ZelmMeasureFeaturePoints, points, name, "points")
    holds(name, points, max(points.count, 0), "points", written=False)
    if rig is not None:
        _isA(rig, ZelmMeasureRig, name, "rig")
    asked = (ZelmMeasureFeature * len(features))(*(_featureOf(f, name, at) for at, f in enumerate(features)))
    results = [_resultOf(feature) for feature in features]
    written = (ZelmMeasureFeatureResult * len(results))(*results)
    related = recordsOf(ZelmMeasureRelation, relations, name, "relations")
    outcomes = (ZelmMeasureRelationResult * len(related))(*(ZelmMeasureRelationResult() for _ in related))
    held = enterAll((rig, True))
    try:
        status = _library.measure().zelmMeasureFeatures(
            ctypes.byref(points),
            None if rig is None else rig._pointer,
            len(asked),
            ctypes.cast(asked, ctypes.c_void_p) if len(asked) else None,
            ctypes.cast(written, ctypes.c_void_p) if len(asked) else None,
            len(related),
            related.ctypes.data if len(related) else None,
            ctypes.cast(outcomes, ctypes.c_void_p) if len(related) else None,
        )
        if status < 0:
            failMeasuring(name, status, rig)
    finally:
        leaveAll(held)
    for result, raw in zip(results, written):  # the records that keep their arrays take over the numbers
        ctypes.memmove(ctypes.byref(result), ctypes.byref(raw), ctypes.sizeof(raw))
    return _result(name, results, list(outcomes))


def _featureOf(feature: Any, name: str, at: int) -> ZelmMeasureFeature:
    if not isinstance(feature, ZelmMeasureFeature):
        raise TypeError(f"{name}: features[{at}] is of type {type(feature).__name__}, ZelmMeasureFeature is wanted")
    if feature.points is None or feature.points.size != feature.count:
        refuse(name, f"features[{at}].points must have as many numbers as its count, {feature.count}")
    return feature


def _resultOf(feature: ZelmMeasureFeature) -> ZelmMeasureFeatureResult:
    distances = np.full(feature.count, np.nan)
    return ZelmMeasureFeatureResult(distances=distances, uses=np.full(feature.count, -1, np.int32))


def zelmMeasureExport(rig, options, side=0):  # type: ignore
    name = "zelmMeasureExport"
    _isA(rig, ZelmMeasureRig, name, "rig")
    options = _sound(ZelmMeasureExportOptions, options, name)
    side = _arrays.toCamera(side, name, "side")

    def call(capacity: int, room: Any, length: Any) -> int:
        return _library.measure().zelmMeasureExport(
            rig._pointer, ctypes.byref(options), side, capacity, room, ctypes.byref(length)
        )

    rig._enterAlone()
    try:
        length = ctypes.c_int64()
        status = call(0, None, length)
        if status >= 0:
            room = ctypes.create_string_buffer(length.value)
            status = call(length.value, room, length)
        if status < 0:
            failMeasuring(name, status, rig)
        return room.raw[: length.value]
    finally:
        rig._leave()


def zelmMeasureCovarianceSave(rig):  # type: ignore
    name = "zelmMeasureCovarianceSave"
    _isA(rig, ZelmMeasureRig, name, "rig")
    library = _library.measure()
    rig._enterAlone()
    try:
        size = ctypes.c_int64()
        status = library.zelmMeasureCovarianceSize(rig._pointer, ctypes.byref(size))
        if status >= 0:
            room = ctypes.create_string_buffer(size.value)
            status = library.zelmMeasureCovarianceSave(rig._pointer, size.value, room)
        if status < 0:
            failMeasuring(name, status, rig)
        return room.raw
    finally:
        rig._leave()


def zelmMeasureImport(options, files):  # type: ignore
    name = "zelmMeasureImport"
    options = _sound(ZelmMeasureImportOptions, options, name)
    if isinstance(files, (bytes, bytearray, memoryview)):
        files = [files]
    contents = [_arrays.toBytes(file, name, f"files[{at}]") for at, file in enumerate(files)]
    addresses = (ctypes.c_char_p * len(contents))(*contents)
    sizes = (ctypes.c_int64 * len(contents))(*map(len, contents))
    rig, imported = ctypes.c_void_p(), ZelmMeasureImported()
    status = _library.measure().zelmMeasureImport(
        ctypes.byref(options), len(contents), addresses, sizes, ctypes.byref(rig), ctypes.byref(imported)
    )
    return _result(name, ZelmMeasureRig._opened(name, status, rig), imported)


def zelmMeasurePairImages(images):  # type: ignore
    name = "zelmMeasurePairImages"
    images = _sound(ZelmMeasureImageSet, images, name, "images")
    _wholeSet(name, images)
    room = 64
    while True:
        views = (ZelmMeasurePairedView * max(images.views, 1))()
        causes = (ZelmMeasureSetCause * room)()
        views[0].size, causes[0].size = ctypes.sizeof(ZelmMeasurePairedView), ctypes.sizeof(ZelmMeasureSetCause)
        pairing = ZelmMeasurePairing()
        status = _library.measure().zelmMeasurePairImages(
            ctypes.byref(images), *(ctypes.cast(a, ctypes.c_void_p) for a in (views, causes)), room,
            ctypes.byref(pairing),
        )  # fmt: skip
        if status < 0:
            failMeasuring(name, status)
        if pairing.causes <= room:
            return _result(name, _copied(views, images.views), _copied(causes, pairing.causes), pairing)
        room = pairing.causes


def _wholeSet(name: str, images: ZelmMeasureImageSet) -> None:
    """The arrays of a set are as long as its counts say."""
    for side in ("left", "right"):
        counts = getattr(images, side + "Counts")
        if counts is None or counts.shape != (max(images.views, 0),) or (counts < 0).any():
            refuse(name, f"{side}Counts must have a number of dots, 0 or more, for each of the {images.views} views")
        dots = int(counts.sum())
        for field in ("Plane", "Pixels"):
            array = getattr(images, side + field)
            if dots and (array is None or array.size != 2 * dots):
                refuse(name, f"{side}{field} must have the shape ({dots}, 2), as {side}Counts has {dots} dots")
    for field, cls in (("pattern", Zelm2ViewPatternDesc), ("cameras", Zelm2ViewCameraDesc)):
        if not isinstance(getattr(images, field), cls):
            refuse(name, f"{field} must be a {cls.__name__}")


def _copied(records: Any, count: int) -> List[Any]:
    return [type(record).from_buffer_copy(record) for record in records[:count]]


def _sound(cls: Type[Record], value: Any, function: str, name: str = "options") -> Any:
    record = _arrays.toRecord(cls, value, function, name)
    if record.size != ctypes.sizeof(cls):  # type: ignore[attr-defined]
        _arrays.wrongSize(record, function, name)
    return record


def _result(function: str, *values: Any) -> Any:
    from . import measure

    return getattr(measure, function + "Result")(*values)


def _isA(handle: Any, cls: Type[Handle], function: str, name: str) -> None:
    if not isinstance(handle, cls):
        raise TypeError(f"{function}: {name} is of type {type(handle).__name__}, {cls.__name__} is wanted")


def _close(handle: Optional[Handle], cls: Type[Handle], function: str, name: str) -> None:
    if handle is not None:
        _isA(handle, cls, function, name)
        handle.close()
