"""Handles of one rig, as many as calls run at a time: a handle of the measuring library serves one call."""

import contextlib
import threading
from typing import Iterator, List, Optional

from . import measure
from ._handles import ZelmMeasureRig

_MOST_IDLE = 8  # handles that are kept for the next calls


class RigHandles:
    """Opens handles of a calibration when calls need them, and keeps them for the next ones."""

    def __init__(self, block: bytes, covariance: Optional[bytes]) -> None:
        self._block = block
        self._covariance = covariance
        self._lock = threading.Lock()
        self._idle: List[ZelmMeasureRig] = [self._open()]

    def _open(self) -> ZelmMeasureRig:
        handle = measure.zelmMeasureRigOpen(self._block)
        if self._covariance is not None:
            try:
                measure.zelmMeasureCovarianceLoad(handle, self._covariance)
            except BaseException:
                handle.close()
                raise
        return handle

    @contextlib.contextmanager
    def borrow(self) -> Iterator[ZelmMeasureRig]:
        """A handle that no other call uses."""
        with self._lock:
            handle = self._idle.pop() if self._idle else None
        if handle is None:
            handle = self._open()
        try:
            yield handle
        finally:
            with self._lock:
                isKept = len(self._idle) < _MOST_IDLE
                if isKept:
                    self._idle.append(handle)
            if not isKept:
                handle.close()
