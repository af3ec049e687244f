"""Gray images from the bytes of image files."""

import io
import re

import numpy as np

from .batchFault import BatchError

_PGM = re.compile(rb"P5(?:\s|#[^\n]*\n)+?(\d+)(?:\s|#[^\n]*\n)+?(\d+)(?:\s|#[^\n]*\n)+?(\d+)\s")
_LEVELS_OF_A_BYTE = 257  # 65535 / 255
_ANY = "export or copy it again"


def grayOf(name: str, data: bytes) -> np.ndarray:
    """The gray image in the bytes of a file; 16 bits are rounded to 8, colours are the mean of red, green and blue.

    PGM and .npy need nothing but numpy, the others Pillow.
    """
    if data[:2] == b"P5":
        return _ofPgm(name, data)
    if data[:6] == b"\x93NUMPY":
        return _ofNumpy(name, data)
    return _ofPillow(name, data)


def _ofPgm(name: str, data: bytes) -> np.ndarray:
    header = _PGM.match(data)
    if not header:
        raise BatchError(f"{name}: not a complete PGM image: {_ANY}")
    width, height, largest = (int(number) for number in header.groups())
    kind = np.dtype(">u2" if largest > 255 else "u1")
    if not 0 < largest < 65536 or width * height == 0:
        raise BatchError(f"{name}: not a PGM image ({width} x {height} pixels of levels up to {largest}): {_ANY}")
    if len(data) - header.end() < width * height * kind.itemsize:
        raise BatchError(f"{name}: not a complete PGM image (it ends too early): {_ANY}")
    pixels = np.frombuffer(data, dtype=kind, count=width * height, offset=header.end()).reshape(height, width)
    if largest == 255:
        return pixels
    return ((pixels.astype(np.uint32) * 255 + largest // 2) // largest).clip(0, 255).astype(np.uint8)


def _ofNumpy(name: str, data: bytes) -> np.ndarray:
    try:
        pixels = np.load(io.BytesIO(data), allow_pickle=False)
    except (ValueError, EOFError) as error:
        raise BatchError(f"{name}: not a complete array: {error}") from None
    if pixels.ndim != 2 or pixels.size == 0 or pixels.dtype not in (np.uint8, np.uint16):
        raise BatchError(f"{name}: no gray image: an array of {pixels.shape} {pixels.dtype}, not two-dimensional uint8")
    return _toBytes(pixels)


def _ofPillow(name: str, data: bytes) -> np.ndarray:
    try:
        from PIL import Image
    except ImportError:
        raise BatchError(f"{name}: Pillow is wanted for this kind of image (python3-pil); PGM needs nothing") from None
    try:
        with Image.open(io.BytesIO(data)) as image:
            image.load()
            if image.mode in ("L", "I", "I;16", "I;16B", "I;16L"):
                return _toBytes(np.asarray(image))
            if image.mode == "LA":
                return np.ascontiguousarray(np.asarray(image)[:, :, 0])
            if image.mode == "1":
                return np.asarray(image.convert("L"))
            colours = np.asarray(image.convert("RGB"), dtype=np.uint16)
    except Exception as error:  # Pillow's readers raise of every kind for damaged files
        words = "no image" if type(error).__name__ == "UnidentifiedImageError" else str(error).splitlines()[0]
        raise BatchError(f"{name}: not a complete image ({words}): {_ANY}") from None
    return (colours.sum(axis=2) // 3).astype(np.uint8)


def _toBytes(pixels: np.ndarray) -> np.ndarray:
    if pixels.dtype == np.uint8:
        return np.ascontiguousarray(pixels)
    return ((pixels.astype(np.uint32) + _LEVELS_OF_A_BYTE // 2) // _LEVELS_OF_A_BYTE).clip(0, 255).astype(np.uint8)
