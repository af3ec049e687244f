"""A private temporary folder for a run of the program: arrays become image files there, results are read from it."""

import os
import shutil
import tempfile
from pathlib import Path
from types import TracebackType
from typing import Any, Dict, List, Optional, Sequence, Type, Union

import numpy as np

from . import _program

ImageLike = Union[str, "os.PathLike[str]", np.ndarray]
ImageSet = Union[ImageLike, Sequence[ImageLike]]


class Work:
    """The folder, to be used in a `with` block, at whose end it goes.

    `also` names further private folders, whose names mean nothing to people either.
    """

    def __init__(self, also: Sequence[Union[str, Path]] = (), progress: bool = False) -> None:
        self.folder = Path(tempfile.mkdtemp(prefix="zelm."))
        self.progress = progress
        self._private = [str(self.folder), *(str(folder) for folder in also)]

    def __enter__(self) -> "Work":
        return self

    def __exit__(
        self, kind: Optional[Type[BaseException]], error: Optional[BaseException], trace: Optional[TracebackType]
    ) -> None:
        shutil.rmtree(self.folder, ignore_errors=True)

    def run(self, command: str, *arguments: str) -> Dict[str, Any]:
        return _program.run(command, arguments, self._private, self.progress)

    def path(self, name: str) -> str:
        """The path of a file or folder to be."""
        return str(self.folder / name)

    def write(self, name: str, text: Union[str, bytes]) -> str:
        """Makes a file, and returns its path."""
        path = self.folder / name
        path.write_bytes(text.encode("utf-8", "surrogateescape") if isinstance(text, str) else text)
        return str(path)

    def image(self, image: ImageLike, name: str, maxLevel: Optional[int] = None) -> str:
        """The path of one image; an array is written as `name`, with the ending that its kind has."""
        if isinstance(image, (str, os.PathLike)):
            return asPath(image)
        gray = np.asarray(image).ndim == 2
        return self.write(f"{name}.{'pgm' if gray else 'ppm'}", pnmBytes(image, name, maxLevel))

    def images(self, images: ImageSet, name: str, maxLevel: Optional[int] = None) -> List[str]:
        """The paths of a set of images. Arrays are written as left_0003.pgm, say, for the fourth of `left`."""
        if isinstance(images, (str, os.PathLike)):
            return [asPath(images)]
        if isinstance(images, np.ndarray):
            images = _stack(images, name)
        paths = [self.image(image, f"{name}_{i:04d}", maxLevel) for i, image in enumerate(images)]
        if not paths:
            raise ValueError(f"{name}: no image: give paths or arrays, one a view")
        return paths


def asPath(path: Union[str, "os.PathLike[str]"]) -> str:
    """The path as a word that is no option."""
    text = os.fspath(path)
    return os.path.join(os.curdir, text) if text.startswith("-") else text


def _stack(images: np.ndarray, name: str) -> List[np.ndarray]:
    if images.ndim == 4 or (images.ndim == 3 and images.shape[-1] not in (3, 4)):
        return list(images)
    raise ValueError(f"{name}: an array of shape {images.shape} is one image: give a list, with an image a view")


def pnmBytes(image: Any, name: str, maxLevel: Optional[int] = None) -> bytes:
    """A PGM file of a gray array, a PPM file of a colour one (R, G, B, and alpha, which is ignored)."""
    array = np.asarray(image)
    if array.dtype not in (np.uint8, np.uint16):
        raise TypeError(f"{name}: an image is an array of uint8 or uint16, not of {array.dtype}")
    if not (array.ndim == 2 or (array.ndim == 3 and array.shape[2] in (3, 4))) or 0 in array.shape:
        raise ValueError(
            f"{name}: an image has the shape (height, width), or (height, width, 3) of R, G, B, not {array.shape}"
        )
    if isinstance(image, np.ma.MaskedArray):
        raise TypeError(f"{name}: the mask of a masked array would be lost")
    most = np.iinfo(array.dtype).max if maxLevel is None else int(maxLevel)
    if not 0 < most <= np.iinfo(array.dtype).max or (most < 256) != (array.dtype == np.uint8):
        raise ValueError(f"{name}: max_level {most} is no largest level of {array.dtype}")
    if maxLevel is not None and array.max() > most:
        raise ValueError(f"{name}: a level of {array.max()} is above max_level {most}")
    colours = array[..., :3] if array.ndim == 3 else array
    head = f"P{5 if array.ndim == 2 else 6}\n{array.shape[1]} {array.shape[0]}\n{most}\n"
    return head.encode() + colours.astype(">u2" if array.dtype == np.uint16 else np.uint8, copy=False).tobytes()
