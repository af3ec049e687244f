"""Gray images from the bytes of image files, which have been hashed before."""

import io
from pathlib import Path

import numpy as np

from .._grayImages import grayImage, grayOfBytes
from .batchFault import BatchError


def grayOf(name: str, data: bytes) -> np.ndarray:
    """The gray image in the bytes of a file: of the formats that the package reads, or an array (.npy)."""
    try:
        if data[:6] == b"\x93NUMPY":
            return grayImage(np.load(io.BytesIO(data), allow_pickle=False), name)
        return grayOfBytes(Path(name), data)
    except ImportError as error:
        raise BatchError(str(error)) from None
    except (TypeError, ValueError, EOFError, MemoryError) as error:
        words = str(error)
        raise BatchError(words if words.startswith(name) else f"{name}: {words}") from None
