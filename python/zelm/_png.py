"""Reads the PNG files that the program writes: 8 bits, gray or colour, not interlaced."""

import struct
import zlib
from pathlib import Path
from typing import Dict, Iterator, Tuple, Union

import numpy as np

_SIGNATURE = b"\x89PNG\r\n\x1a\n"
_CHANNELS: Dict[int, int] = {0: 1, 2: 3, 4: 2, 6: 4}  # of a pixel, by the kind of colour


def readPng(path: Union[str, Path]) -> np.ndarray:
    """(height, width) of gray images, (height, width, channels) of others."""
    content = Path(path).read_bytes()
    if not content.startswith(_SIGNATURE):
        raise ValueError(f"{path}: no PNG file")
    head, packed = b"", []
    for kind, body in _chunks(content):
        if kind == b"IHDR":
            head = body
        elif kind == b"IDAT":
            packed.append(body)
    width, height, bits, colour, _, _, interlaced = struct.unpack(">IIBBBBB", head)
    if bits != 8 or interlaced or colour not in _CHANNELS:
        raise ValueError(f"{path}: a PNG file of {bits} bits, colour {colour}, interlaced {interlaced} is not read")
    channels = _CHANNELS[colour]
    rows = np.frombuffer(zlib.decompress(b"".join(packed)), np.uint8).reshape(height, 1 + width * channels)
    pixels = _unfiltered(rows[:, 0], rows[:, 1:].reshape(height, width, channels))
    return pixels[..., 0] if channels == 1 else pixels


def _chunks(content: bytes) -> Iterator[Tuple[bytes, bytes]]:
    at = len(_SIGNATURE)
    while at + 12 <= len(content):
        (size,) = struct.unpack_from(">I", content, at)
        yield content[at + 4 : at + 8], content[at + 8 : at + 8 + size]
        at += 12 + size


def _unfiltered(filters: np.ndarray, rows: np.ndarray) -> np.ndarray:
    """The pixels of filtered rows (PNG, second edition, section 9).

    A pixel follows from those to the left, above and above to the left; so pixels of one diagonal, x + y, do not depend
    on each other and are worked out together. They lie side by side here: row d holds the pixels of x + y = d by y.
    """
    height, width, channels = rows.shape
    y, x = np.indices((height, width))
    skewed = np.zeros((height + width + 1, height + 1, channels), np.int16)
    skewed[x + y + 2, y + 1] = rows  # two rows and a column stand for pixels beyond the edges
    isLeft, isAbove, isMean, isPaeth = ((filters == kind).astype(np.int16)[:, None] for kind in (1, 2, 3, 4))
    for diagonal in range(height + width - 1):
        first, last = max(0, diagonal - width + 1), min(height, diagonal + 1)
        here, before = slice(first, last), slice(first + 1, last + 1)  # of a row, and in `skewed`
        left, above = skewed[diagonal + 1, before], skewed[diagonal + 1, here]
        corner = skewed[diagonal, here]
        guess = left * isLeft[here] + above * isAbove[here] + ((left + above) >> 1) * isMean[here]
        guess += _paeth(left, above, corner) * isPaeth[here]
        pixels = skewed[diagonal + 2, before]
        pixels += guess
        pixels &= 0xFF
    return skewed[x + y + 2, y + 1].astype(np.uint8)


def _paeth(left: np.ndarray, above: np.ndarray, corner: np.ndarray) -> np.ndarray:
    toLeft, toAbove, toCorner = abs(above - corner), abs(left - corner), abs(left + above - 2 * corner)
    isLeft = (toLeft <= toAbove) & (toLeft <= toCorner)
    return np.where(isLeft, left, np.where(toAbove <= toCorner, above, corner))
