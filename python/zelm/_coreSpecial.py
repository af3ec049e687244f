"""Functions of the core that the table cannot describe: those that make and free objects, and a few of odd shape."""

import ctypes
from typing import Any, Optional, Tuple, Type

import numpy as np

from . import _arrays, _library
from ._coreChecks import inside, whole
from ._errors import fail, refuse
from ._handles import Handle, Zelm2ViewCalib, ZelmMatrix, ZelmVector
from ._record import dtypeOf
from ._records import Zelm2ViewCameraDesc, Zelm2ViewPatternDesc, ZelmBlob, ZelmRect

_F8 = np.dtype("f8")
_BLOCK_HEADER, _BLOCK_PER_VIEW = 812, 240  # bytes of a calibration block


def zelmBinBlob(tImage, iThreshold, tRegion=None, iPolarity=1, iClearEdge=0, iMinArea=1):  # type: ignore
    name = "zelmBinBlob"
    tImage = _arrays.toPixels(tImage, name, "tImage")
    _arrays.checkShape(tImage, ("height", "width"), name, "tImage")
    tRegion = whole(tImage) if tRegion is None else _arrays.toRecord(ZelmRect, tRegion, name, "tRegion")
    inside(name, tRegion, tImage)
    options = [
        _arrays.toInt(value, name, label)
        for label, value in (
            ("iThreshold", iThreshold),
            ("iPolarity", iPolarity),
            ("iClearEdge", iClearEdge),
            ("iMinArea", iMinArea),
        )
    ]
    blobs, count = ctypes.c_void_p(), ctypes.c_int32()
    library = _library.core()
    try:
        status = library.zelmBinBlob(
            ctypes.byref(_arrays.imageOf(tImage)),
            ctypes.byref(tRegion),
            *options,
            ctypes.byref(blobs),
            ctypes.byref(count),
        )
        if status < 0:
            fail(name, status)
        return _copied(blobs, count.value)
    finally:
        library.zelmBinFree(ctypes.byref(blobs))


def _copied(blobs: ctypes.c_void_p, count: int) -> np.ndarray:
    size = count * ctypes.sizeof(ZelmBlob)
    data = ctypes.string_at(blobs, size) if count else b""
    return np.frombuffer(data, dtypeOf(ZelmBlob)).copy()


def zelmBinFree(taBlobs=None):  # type: ignore
    if taBlobs is not None:
        raise TypeError("zelmBinFree: zelmBinBlob frees what it allocates, and its result is numpy's: nothing to free")
    _library.core().zelmBinFree(ctypes.byref(ctypes.c_void_p()))


def zelmCalibRodrigues(iDirection, daRvec=None, daRmat=None):  # type: ignore
    name = "zelmCalibRodrigues"
    iDirection = _arrays.toInt(iDirection, name, "iDirection")
    if iDirection not in (0, 1):
        refuse(name, f"iDirection is {iDirection}, 0 (vector to matrix) or 1 (matrix to vector) is wanted")
    given, other, label = (daRvec, daRmat, "daRvec") if iDirection == 0 else (daRmat, daRvec, "daRmat")
    if given is None or other is not None:
        refuse(name, f"direction {iDirection} takes {label} alone")
    given = _arrays.toArray(given, _F8, name, label)
    _arrays.checkShape(given, (3,) if iDirection == 0 else (3, 3), name, label)
    result = np.empty((3, 3) if iDirection == 0 else 3)
    pair = (given, result) if iDirection == 0 else (result, given)
    status = _library.core().zelmCalibRodrigues(iDirection, *(_arrays.pointer(array) for array in pair))
    return fail(name, status) if status < 0 else result


def zelm2ViewCalibOpen(iViews, tPattern, tCameras):  # type: ignore
    name = "zelm2ViewCalibOpen"
    iViews = _arrays.toInt(iViews, name, "iViews")
    tPattern = _arrays.toRecord(Zelm2ViewPatternDesc, tPattern, name, "tPattern")
    tCameras = _arrays.toRecord(Zelm2ViewCameraDesc, tCameras, name, "tCameras")
    cameras = Zelm2ViewCameraDesc(*tCameras)
    handle = ctypes.c_void_p()
    status = _library.core().zelm2ViewCalibOpen(
        iViews, ctypes.byref(tPattern), ctypes.byref(cameras), ctypes.byref(handle)
    )
    if status < 0:
        fail(name, status)
    return Zelm2ViewCalib(handle.value or 0, iViews, cameras)


def zelm2ViewSaveCalibData(tHandle):  # type: ignore
    name = "zelm2ViewSaveCalibData"
    _isPair(tHandle, name)
    tHandle._enter()
    try:
        size = _library.core().zelm2ViewGetCalibDataSize(tHandle._pointer)
        if size < 0:
            fail(name, size)
        buffer = ctypes.create_string_buffer(size)
        status = _library.core().zelm2ViewSaveCalibData(tHandle._pointer, buffer)
        if status < 0:
            fail(name, status)
        return buffer.raw
    finally:
        tHandle._leave()


def zelm2ViewLoadCalibData(ucBuffer):  # type: ignore
    name = "zelm2ViewLoadCalibData"
    try:
        block = bytes(memoryview(ucBuffer))
    except TypeError:
        raise TypeError(f"{name}: ucBuffer is of type {type(ucBuffer).__name__}, bytes are wanted") from None
    views, cameras = _headOf(block)
    handle = ctypes.c_void_p()
    status = _library.core().zelm2ViewLoadCalibData(len(block), block, ctypes.byref(handle))
    if status < 0:
        fail(name, status)
    return Zelm2ViewCalib(handle.value or 0, views, cameras)


def _headOf(block: bytes) -> Tuple[int, Zelm2ViewCameraDesc]:
    """The library takes a block at its word, so its size and image sizes are checked here."""
    name = "zelm2ViewLoadCalibData"
    if len(block) < _BLOCK_HEADER + _BLOCK_PER_VIEW:
        refuse(name, f"a block of {len(block)} bytes is no calibration block, which has 1052 at least")
    head = np.frombuffer(block, "<i4", 7)
    views = int(head[0])
    if views < 1 or len(block) != _BLOCK_HEADER + _BLOCK_PER_VIEW * views:
        refuse(name, f"the block has {len(block)} bytes, but says {views} views: damaged, or no calibration block")
    cameras = Zelm2ViewCameraDesc(*(int(number) for number in head[1:]))
    if min(cameras.leftWidth, cameras.leftHeight, cameras.rightWidth, cameras.rightHeight) < 1:
        refuse(name, "the block has an image size below 1: damaged, or no calibration block")
    if not (0 <= cameras.leftModel <= 2 and 0 <= cameras.rightModel <= 2):
        refuse(name, "the block has a camera model other than 0, 1 and 2: damaged, or no calibration block")
    return views, cameras


def zelm2ViewCalibClose(tHandle):  # type: ignore
    if tHandle is not None:
        _isPair(tHandle, "zelm2ViewCalibClose")
        tHandle.close()


def zelm2ViewReadPtnImg(tHandle, iView, ucaImages, tRegionLeft=None, tRegionRight=None):  # type: ignore
    name = "zelm2ViewReadPtnImg"
    _isPair(tHandle, name)
    iView = _arrays.toInt(iView, name, "iView")
    if isinstance(ucaImages, np.ndarray) or len(ucaImages) != 2:
        raise TypeError(f"{name}: ucaImages must be a pair, the left and the right image")
    images = [_imageOfCamera(ucaImages[i], tHandle._sizes[ord("LR"[i])], f"ucaImages[{i}]") for i in (0, 1)]
    regions = [
        None if region is None else ctypes.byref(_arrays.toRecord(ZelmRect, region, name, label))
        for label, region in (("tRegionLeft", tRegionLeft), ("tRegionRight", tRegionRight))
    ]
    addresses = (ctypes.c_void_p * 2)(*(None if image is None else image.ctypes.data for image in images))
    tHandle._enterAlone()
    try:
        status = _library.core().zelm2ViewReadPtnImg(tHandle._pointer, iView, addresses, *regions)
    finally:
        tHandle._leave()
    if status < 0:
        fail(name, status)


def _imageOfCamera(image: Any, shape: Tuple[int, int], label: str) -> Optional[np.ndarray]:
    if image is None:
        return None
    image = _arrays.toPixels(image, "zelm2ViewReadPtnImg", label)
    _arrays.checkShape(image, shape, "zelm2ViewReadPtnImg", label)
    return image


def zelmMatMallocVector(iN):  # type: ignore
    iN = _arrays.toInt(iN, "zelmMatMallocVector", "iN")
    return ZelmVector(_allocated(_library.core().zelmMatMallocVector(iN), "zelmMatMallocVector", iN), iN)


def zelmMatFreeVector(daV):  # type: ignore
    _close(daV, ZelmVector, "zelmMatFreeVector", "daV")


def zelmMatMallocMatrix(iRows, iCols):  # type: ignore
    iRows = _arrays.toInt(iRows, "zelmMatMallocMatrix", "iRows")
    iCols = _arrays.toInt(iCols, "zelmMatMallocMatrix", "iCols")
    address = _library.core().zelmMatMallocMatrix(iRows, iCols)
    return ZelmMatrix(_allocated(address, "zelmMatMallocMatrix", min(iRows, iCols)), iRows, iCols)


def zelmMatFreeMatrix(daM):  # type: ignore
    _close(daM, ZelmMatrix, "zelmMatFreeMatrix", "daM")


def _allocated(address: Optional[int], function: str, least: int) -> int:
    """These two tell a count below 1 and lack of memory alike, by NULL."""
    if not address:
        fail(function, -2 if least < 1 else -1)
    return address


def _close(handle: Any, cls: Type[Handle], function: str, name: str) -> None:
    if handle is not None:
        if not isinstance(handle, cls):
            raise TypeError(f"{function}: {name} is of type {type(handle).__name__}, {cls.__name__} is wanted")
        handle.close()


def _isPair(handle: Any, function: str) -> None:
    if not isinstance(handle, Zelm2ViewCalib):
        raise TypeError(f"{function}: tHandle is of type {type(handle).__name__}, Zelm2ViewCalib is wanted")
