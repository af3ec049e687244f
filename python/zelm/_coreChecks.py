"""What the entries of the core's table call: sizes, defaults, and preconditions that the C functions leave to callers.

A precondition takes the name of the function first, and raises when it is not met.
"""

import ctypes
from typing import Any, Optional

import numpy as np

from . import _library
from ._errors import fail, refuse
from ._handles import Zelm2ViewCalib
from ._records import Point2i, ZelmCstmHomMap, ZelmRect


def height(handle: Zelm2ViewCalib, camera: int) -> int:
    """Rows of a camera's images."""
    return _size(handle, camera)[0]


def width(handle: Zelm2ViewCalib, camera: int) -> int:
    """Columns of a camera's images."""
    return _size(handle, camera)[1]


def _size(handle: Zelm2ViewCalib, camera: int) -> Any:
    found = handle._sizes.get(camera & 255)
    return found if found else refuse("zelm", f"there is no camera {camera!r}, 'L' and 'R' are the cameras")


def dots(handle: Zelm2ViewCalib, camera: int, view: int) -> int:
    """How many dots were read of a view."""
    count = ctypes.c_int32()
    status = _library.core().zelm2ViewGetPtnNum(handle._pointer, camera, view, ctypes.byref(count))
    return fail("zelm2ViewGetPattern", status) if status < 0 else count.value


def pixelsOfLine(p0: Point2i, p1: Point2i) -> int:
    """Pixels of a line from one pixel to another."""
    if max(abs(p0.x), abs(p0.y), abs(p1.x), abs(p1.y)) > 2**30:
        refuse("zelmMiscPlotPointsOfLine", "a coordinate is beyond 2^30")
    return max(abs(p1.x - p0.x), abs(p1.y - p0.y)) + 1


def whole(image: np.ndarray) -> ZelmRect:
    """The region that is all of an image."""
    return ZelmRect(0, 0, image.shape[1], image.shape[0])


def like(image: np.ndarray) -> np.ndarray:
    """A black image of the same size."""
    return np.zeros(image.shape, np.uint8)


def zeros(*shape: int) -> np.ndarray:
    return np.zeros(shape, np.uint8)


def newMap(params: Any) -> ZelmCstmHomMap:
    """Maps with room for an expanded image."""
    shape = max(params.iHeight, 0), max(params.iWidth, 0)
    return ZelmCstmHomMap(
        iWidth=params.iWidth,
        iHeight=params.iHeight,
        mapX=np.full(shape, -1, np.float32),
        mapXStride=4 * shape[1],
        mapY=np.full(shape, -1, np.float32),
        mapYStride=4 * shape[1],
    )


def ofMap(maps: ZelmCstmHomMap, channels: Optional[int] = None) -> np.ndarray:
    """A black image of the size of maps."""
    shape = max(maps.iHeight, 0), max(maps.iWidth, 0)
    return np.zeros(shape + (channels,) if channels else shape, np.uint8)


def inside(function: str, region: ZelmRect, image: np.ndarray) -> None:
    """A region that has pixels lies inside the image."""
    rows, columns = image.shape[:2]
    x, y, w, h = region.x, region.y, region.width, region.height
    if w > 0 and h > 0 and not (x >= 0 and y >= 0 and x + w <= columns and y + h <= rows):
        refuse(function, f"{region} leaves the image of {columns} x {rows} pixels")


def apart(function: str, source: np.ndarray, destination: np.ndarray) -> None:
    """Two images share no memory."""
    if np.may_share_memory(source, destination):
        refuse(function, "source and destination must not share memory")


def box(function: str, x0: int, y0: int, x1: int, y1: int, image: np.ndarray) -> None:
    """A rectangle by inclusive corners is empty or lies inside the image."""
    rows, columns = image.shape[:2]
    if x0 <= x1 and y0 <= y1 and not (x0 >= 0 and y0 >= 0 and x1 < columns and y1 < rows):
        refuse(function, f"the rectangle {x0, y0} to {x1, y1} leaves the destination of {columns} x {rows} pixels")


def holdsPixels(function: str, record: Any) -> None:
    """The arrays of a template or a search are as large as the record says."""
    for name in ("pixels", "mask"):
        array = getattr(record, name)
        if array is None and name == "pixels":
            refuse(function, f"{type(record).__name__} has no pixels")
        if array is not None and array.shape != (record.height, record.width):
            refuse(
                function,
                f"{type(record).__name__}.{name} has the shape {array.shape}, "
                f"(height, width) = {record.height, record.width} is wanted",
            )


def holdsMap(function: str, maps: ZelmCstmHomMap) -> None:
    """The planes of maps are as large as the record says."""
    for name in ("mapX", "mapY"):
        array = getattr(maps, name)
        if array is None or not array.flags.writeable:
            refuse(function, f"{name} has no array that can be written")
        if array.shape != (maps.iHeight, maps.iWidth) or getattr(maps, name + "Stride") != 4 * maps.iWidth:
            refuse(
                function,
                f"{name} has the shape {array.shape}; (iHeight, iWidth) = {maps.iHeight, maps.iWidth} and a stride of "
                f"{4 * maps.iWidth} are wanted",
            )
