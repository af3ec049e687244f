"""Gray images from arrays and files, with the gray levels that the program `zelm` reads from the same files."""

import io
import os
from pathlib import Path
from typing import Any, List, Tuple, Union

import numpy as np

from . import core

ImageLike = Union[np.ndarray, str, "os.PathLike[str]"]
_LEVELS_OF_A_BYTE = 257  # 65535 / 255
_FORMATS = {b"\x89PNG": "PNG", b"II*\0": "TIFF", b"MM\0*": "TIFF", b"\xff\xd8\xff": "JPEG", b"BM": "BMP"}


def grayImage(image: ImageLike, name: str) -> np.ndarray:
    """An array of uint8, (height, width); one that is given so, with packed rows, is passed on without a copy.

    Levels of 16 bits are rounded to bytes, colours (R, G, B, and alpha, which is ignored) are weighed as the core does.
    """
    return _gray(_levelsOf(image, name))


def colourImage(image: ImageLike, name: str) -> np.ndarray:
    """An array of uint8: (height, width, 3) of R, G, B where a pixel has a colour, (height, width) otherwise."""
    levels = _levelsOf(image, name)
    if levels.ndim == 2:
        return _gray(levels)
    colours = levels[..., :3] if levels.dtype == np.uint8 else _nearestBytes(levels[..., :3])
    isGray = np.array_equal(colours[..., 0], colours[..., 1]) and np.array_equal(colours[..., 0], colours[..., 2])
    return np.ascontiguousarray(colours[..., 0]) if isGray else colours


def _levelsOf(image: ImageLike, name: str) -> np.ndarray:
    """Levels of 8 or 16 bits, gray or colours, as they are given."""
    if isinstance(image, (str, os.PathLike)):
        return _ofBytes(Path(image), Path(image).read_bytes())
    if isinstance(image, np.ma.MaskedArray) or not isinstance(image, np.ndarray):
        raise TypeError(f"{name}: an array of uint8 or uint16 or the path of an image is wanted, not {_kind(image)}")
    if image.dtype.kind != "u" or image.dtype.itemsize > 2:
        raise TypeError(f"{name}: an image is an array of uint8 or uint16, not of {image.dtype}")
    if not (image.ndim == 2 or (image.ndim == 3 and image.shape[2] in (3, 4))) or 0 in image.shape:
        raise ValueError(
            f"{name}: an image has the shape (height, width), or (height, width, 3) of R, G, B, not {image.shape}"
        )
    return image


def _gray(levels: np.ndarray) -> np.ndarray:
    bytes_ = levels if levels.dtype == np.uint8 else _nearestBytes(levels)
    if bytes_.ndim == 2:
        return bytes_
    argb = np.full(bytes_.shape[:2] + (4,), 255, np.uint8)
    argb[..., 1:] = bytes_[..., :3]
    return core.zelmConvertColorToGray_vImageARGB8888toPlanar8(argb)


def _nearestBytes(levels: np.ndarray) -> np.ndarray:
    rounded = levels.astype(np.uint32)
    rounded += _LEVELS_OF_A_BYTE // 2
    rounded //= _LEVELS_OF_A_BYTE
    return rounded.astype(np.uint8)


def _kind(value: Any) -> str:
    return "a masked array" if isinstance(value, np.ma.MaskedArray) else type(value).__name__


def grayOfBytes(path: Path, content: bytes) -> np.ndarray:
    """The gray image in the content of a file; the path is for words."""
    return _gray(_ofBytes(path, content))


def _ofBytes(path: Path, content: bytes) -> np.ndarray:
    if not content:
        raise ValueError(f"{path}: is empty: export or copy it again")
    if content[:2] in (b"P2", b"P3", b"P5", b"P6"):
        return _pnm(path, content)
    if not any(content.startswith(start) for start in _FORMATS):
        raise ValueError(f"{path}: not an image that can be read: PNG, TIFF, JPEG, BMP and PGM are")
    return _byPillow(path, content)


def _byPillow(path: Path, content: bytes) -> np.ndarray:
    try:
        from PIL import Image
    except ImportError:
        raise ImportError(
            f"{path}: image files are read with Pillow, which is not installed: install it (python3-pil, or pip "
            "install pillow), or give an array"
        ) from None
    try:
        with Image.open(io.BytesIO(content)) as image:
            _refuseRounding(path, image)
            image.load()
            return _levels(path, image)
    except (OSError, SyntaxError, ValueError, Image.DecompressionBombError) as error:
        if str(error).startswith(str(path)):
            raise
        raise ValueError(f"{path}: not a complete image ({error}): export or copy it again") from None


def _refuseRounding(path: Path, image: Any) -> None:
    """Pillow cuts colours of 16 bits to bytes, and does not turn levels whose 0 is white."""
    raw = str(image.tile[0][3]) if image.tile else ""
    if "16" in raw and image.mode not in ("I", "I;16", "I;16B", "I;16L"):
        raise ValueError(f"{path}: colours of 16 bits are not read exactly here: give an array of uint16")
    if image.format == "TIFF" and "16" in raw and image.tag_v2.get(262) == 0:
        raise ValueError(f"{path}: levels of 16 bits whose 0 is white are not read here: give an array, or save it so")


def _levels(path: Path, image: Any) -> np.ndarray:
    raw = str(image.mode)
    if raw in ("L", "RGB"):
        return np.asarray(image)
    if raw in ("1", "LA"):
        return np.asarray(image.convert("L"))
    if raw in ("P", "PA", "RGBA", "RGBX"):
        return np.asarray(image.convert("RGBA"))[..., :3]
    levels = np.asarray(image)
    if raw.startswith("I") and levels.ndim == 2 and levels.size and 0 <= levels.min() and levels.max() <= 65535:
        return levels.astype(np.uint16)
    raise ValueError(f"{path}: pixels of the kind {raw} are not read: save it with 8 or 16 bits, gray or R, G, B")


def _pnm(path: Path, content: bytes) -> np.ndarray:
    kind = content[1] - ord("0")
    numbers: List[int] = []
    at = 2
    while len(numbers) < 3:
        number, at = _number(path, content, at)
        numbers.append(number)
    width, height, largest = numbers
    if not (0 < width <= 32768 and 0 < height <= 32768 and 0 < largest <= 65535):
        _damaged(path, f"{width} x {height} pixels of levels up to {largest}")
    shape = (height, width, 3) if kind in (3, 6) else (height, width)
    isText = kind in (2, 3)
    levels = _textLevels(path, content[at:], shape) if isText else _binaryLevels(path, content, at + 1, shape, largest)
    if levels.max() > largest:
        _damaged(path, f"a level of {levels.max()}, but {largest} is the largest it states")
    if largest == 255:
        return levels.astype(np.uint8)
    return ((levels.astype(np.int64) * 65535 + largest // 2) // largest).astype(np.uint16)


def _number(path: Path, content: bytes, at: int) -> Tuple[int, int]:
    while at < len(content) and (content[at : at + 1].isspace() or content[at] == ord("#")):
        if content[at] == ord("#"):
            ends = [end for end in (content.find(b"\n", at), content.find(b"\r", at)) if end >= 0]
            at = min(ends, default=len(content))
        else:
            at += 1
    end = at
    while end < len(content) and content[end : end + 1].isdigit():
        end += 1
    if end == at:
        _damaged(path, "it ends too early" if at >= len(content) else f"no number at byte {at}")
    return int(content[at:end]), end


def _textLevels(path: Path, text: bytes, shape: Tuple[int, ...]) -> np.ndarray:
    lines = (line.partition(b"#")[0] for line in text.replace(b"\r", b"\n").split(b"\n"))
    try:
        levels = np.array(b" ".join(lines).split()[: int(np.prod(shape))], dtype=np.int64)
    except (ValueError, OverflowError):
        _damaged(path, "something that is no number")
    if levels.size < np.prod(shape):
        _damaged(path, "it ends too early")
    if levels.min() < 0:
        _damaged(path, "something that is no number")
    return levels.reshape(shape)


def _binaryLevels(path: Path, content: bytes, at: int, shape: Tuple[int, ...], largest: int) -> np.ndarray:
    dtype = np.dtype(">u2" if largest > 255 else "u1")
    if len(content) - at < int(np.prod(shape)) * dtype.itemsize:
        _damaged(path, "it ends too early")
    return np.frombuffer(content, dtype, int(np.prod(shape)), at).reshape(shape)


def _damaged(path: Path, why: str) -> None:
    raise ValueError(f"{path}: not a complete PNM image ({why}): export or copy it again")
