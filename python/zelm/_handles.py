"""Objects that the library allocates: freed when they are closed or forgotten, never while a call uses them."""

import ctypes
import threading
import weakref
from typing import Any, Callable, Dict, List, Optional, Tuple

import numpy as np

from . import _library
from ._errors import failMeasuring
from ._records import Zelm2ViewCameraDesc


class Handle:
    """Base of all handles: open until `close`, which ``with`` and garbage collection call too.

    Calls that read an object may run at the same time, in several threads. A call that changes it waits for them to
    end, and others wait for it. Closing while a call runs frees the object when that call ends.
    """

    def __init__(self, address: int, free: Callable[[int], None]) -> None:
        self._pointer = address
        self._state = threading.Condition(threading.Lock())
        self._readers = 0
        self._writing = False
        self._closed = False
        self._finalizer = weakref.finalize(self, free, address)

    def _enter(self) -> None:
        with self._state:
            while self._writing:
                self._state.wait()
            self._refuseClosed()
            self._readers += 1

    def _enterAlone(self) -> None:
        with self._state:
            while self._writing or self._readers:
                self._state.wait()
            self._refuseClosed()
            self._writing = True

    def _leave(self) -> None:
        with self._state:
            if self._writing:
                self._writing = False
            else:
                self._readers -= 1
            if not self._readers:
                if self._closed:
                    self._finalizer()
                self._state.notify_all()

    def _refuseClosed(self) -> None:
        if self._closed:
            raise ValueError(f"this {type(self).__name__} is closed")

    @property
    def closed(self) -> bool:
        """Whether the object was closed."""
        return self._closed

    def close(self) -> None:
        """Frees the object, at once or when the calls that use it have ended. Closing again does nothing."""
        with self._state:
            self._closed = True
            if not self._readers and not self._writing:
                self._finalizer()

    def __enter__(self) -> Any:
        self._refuseClosed()
        return self

    def __exit__(self, *_: Any) -> None:
        self.close()

    def __repr__(self) -> str:
        return f"<{type(self).__name__}{', closed' if self._closed else ''}>"

    def __reduce__(self) -> Any:
        raise TypeError(f"a {type(self).__name__} cannot be copied or pickled")


def enterAll(*handles: Tuple[Optional[Handle], bool]) -> List[Handle]:
    """Begins a call that uses several objects, each alone where that is told, in an order that cannot lock up."""
    wanted: Dict[int, Tuple[Handle, bool]] = {}
    for handle, alone in handles:
        if handle is not None:
            wanted[id(handle)] = (handle, alone or wanted.get(id(handle), (handle, False))[1])
    held: List[Handle] = []
    try:
        for _, (handle, alone) in sorted(wanted.items()):
            handle._enterAlone() if alone else handle._enter()
            held.append(handle)
    except BaseException:
        leaveAll(held)
        raise
    return held


def leaveAll(held: List[Handle]) -> None:
    """Ends a call that `enterAll` began."""
    for handle in held:
        handle._leave()


def _closePair(address: int) -> None:
    handle = ctypes.c_void_p(address)
    _library.core().zelm2ViewCalibClose(ctypes.byref(handle))


class Zelm2ViewCalib(Handle):
    """A calibration object, of `zelm2ViewCalibOpen` or `zelm2ViewLoadCalibData`.

    Attributes
    ----------
    views : int
        Number of views.
    cameras : Zelm2ViewCameraDesc
        Models and image sizes.
    """

    def __init__(self, address: int, views: int, cameras: Zelm2ViewCameraDesc) -> None:
        super().__init__(address, _closePair)
        self.views = views
        self.cameras = cameras
        self._sizes = {
            ord("L"): (cameras.leftHeight, cameras.leftWidth),
            ord("R"): (cameras.rightHeight, cameras.rightWidth),
        }


class _Block(Handle):
    """Doubles in the library's memory."""

    def __init__(self, address: int, data: int, shape: Tuple[int, ...], free: Callable[[int], None]) -> None:
        super().__init__(address, free)
        self.shape = shape
        self._data = data
        self._views: List[weakref.ref] = []

    @property
    def array(self) -> np.ndarray:
        """The numbers, as an array that shares the library's memory; uninitialised at first."""
        self._refuseClosed()
        count = int(np.prod(self.shape))
        memory: Any = (ctypes.c_double * count).from_address(self._data)
        memory._owner = self
        with self._state:
            self._views = [view for view in self._views if view() is not None] + [weakref.ref(memory)]
        return np.frombuffer(memory, dtype=np.float64).reshape(self.shape)

    def close(self) -> None:
        """Frees the memory. Refused with BufferError while arrays still show it."""
        if any(view() is not None for view in self._views):
            raise BufferError("arrays still show this memory: delete them first")
        super().close()


class ZelmVector(_Block):
    """A vector of `zelmMatMallocVector`."""

    def __init__(self, address: int, count: int) -> None:
        super().__init__(address, address, (count,), lambda p: _library.core().zelmMatFreeVector(p))


class ZelmMatrix(_Block):
    """A matrix of `zelmMatMallocMatrix`."""

    def __init__(self, address: int, rows: int, columns: int) -> None:
        data: Optional[int] = ctypes.c_void_p.from_address(address).value
        super().__init__(address, data or 0, (rows, columns), lambda p: _library.core().zelmMatFreeMatrix(p))


class _Measuring(Handle):
    """A handle of the measuring library, which keeps the words of its last failure."""

    _family = ""  # what the names of its C functions begin with

    def __init__(self, address: int) -> None:
        close = getattr(_library.measure(), self._family + "Close")

        def free(value: int) -> None:
            close(ctypes.byref(ctypes.c_void_p(value)))

        super().__init__(address, free)

    @classmethod
    def _opened(cls, function: str, status: int, address: ctypes.c_void_p, teller: Any = None) -> Any:
        """The object of a handle that was just opened. A refused one tells why, and is closed."""
        made = cls(address.value) if address.value else None
        if status >= 0 and made is not None:
            return made
        words = (made._words() if made is not None else "") or (teller._words() if teller is not None else "")
        if made is not None:
            made.close()
        return failMeasuring(function, status, words)

    def _words(self) -> str:
        told = getattr(_library.measure(), self._family + "Error")(self._pointer)
        return told.decode("utf-8", "replace") if told else ""


class ZelmMeasureRig(_Measuring):
    """A calibrated pair of cameras, of `zelmMeasureRigOpen` and others."""

    _family = "zelmMeasureRig"


class ZelmMeasureAdjustment(_Measuring):
    """An adjustment of a calibration, of `zelmMeasureAdjustOpen` or `zelmMeasureAdjustOpenPoints`."""

    _family = "zelmMeasureAdjust"


class ZelmMeasurePlan(_Measuring):
    """A plan of a calibration, of `zelmMeasurePlanOpen` or `zelmMeasurePlanOfRig`."""

    _family = "zelmMeasurePlan"


class CalibOfRig(Zelm2ViewCalib):
    """The calibration object that belongs to a rig: calls may read it while the rig is open."""

    def __init__(self, rig: ZelmMeasureRig, address: int, views: int, cameras: Zelm2ViewCameraDesc) -> None:
        super().__init__(address, views, cameras)
        self._finalizer.detach()  # the rig frees it
        self._rig = rig

    def _enter(self) -> None:
        self._rig._enter()
        try:
            super()._enter()
        except BaseException:
            self._rig._leave()
            raise

    def _enterAlone(self) -> None:
        raise ValueError("this Zelm2ViewCalib belongs to a rig and cannot be changed")

    def _leave(self) -> None:
        super()._leave()
        self._rig._leave()
