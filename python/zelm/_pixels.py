"""Arrays of pixels and points as arguments."""

from typing import Any

import numpy as np

from . import _arrays

_F8 = np.dtype("f8")


def rowsOf(value: Any, columns: int, function: str, name: str) -> np.ndarray:
    """An array of shape (n, columns)."""
    array = _arrays.toArray(value, _F8, function, name)
    _arrays.checkShape(array, ("n", columns), function, name)
    return array
