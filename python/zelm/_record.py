"""What all records share: checked fields, arrays as numpy views, pointers that keep their arrays."""

import ctypes
import weakref
from typing import Any, ClassVar, Dict, Iterator, Tuple, Type, TypeVar

import numpy as np

_IntegerRanges: Dict[Any, Tuple[int, int]] = {
    ctypes.c_int32: (-(2**31), 2**31 - 1),
    ctypes.c_int64: (-(2**63), 2**63 - 1),
    ctypes.c_uint8: (0, 2**8 - 1),
    ctypes.c_uint32: (0, 2**32 - 1),
    ctypes.c_size_t: (0, 2 ** (8 * ctypes.sizeof(ctypes.c_size_t)) - 1),
}
_ArrayTypes: Dict[Any, Any] = {ctypes.c_double: np.float64, ctypes.c_int32: np.int32, ctypes.c_int64: np.int64}

RecordType = TypeVar("RecordType", bound="Type[Record]")


class Record(ctypes.Structure):
    """Base of the library's records.

    Fields are given in order or by name; what is left out is zero, and a field ``size`` of the record's own size is
    set. A field that is an array is read as a numpy array that shares the record's memory. A field that is a pointer
    takes a numpy array, which the record keeps alive, or None.
    """

    _names_: ClassVar[Tuple[str, ...]] = ()  # of all fields, without underscores
    _ranges_: ClassVar[Dict[str, Tuple[int, int]]] = {}
    _pointers_: ClassVar[Dict[str, str]] = {}  # dtype that each pointer's array has
    _arrays_: ClassVar[Dict[str, Any]] = {}  # numpy dtype of each array field
    _callbacks_: ClassVar[Dict[str, Any]] = {}  # type of each field that the library calls
    _flat_: ClassVar[bool] = False  # True: nothing but numbers
    _sized_: ClassVar[bool] = False
    __hash__ = None  # type: ignore[assignment]

    def __init__(self, *values: Any, **named: Any) -> None:
        super().__init__()
        cls = self.__class__
        if cls._sized_:
            ctypes.Structure.__setattr__(self, "size", ctypes.sizeof(cls))
        names = cls._names_[1:] if cls._sized_ else cls._names_
        if len(values) > len(names):
            raise TypeError(f"{cls.__name__} has {len(names)} fields, {len(values)} given")
        for name, value in zip(names, values):
            if name in named:
                raise TypeError(f"{cls.__name__}: {name} given twice")
            setattr(self, name, value)
        for name, value in named.items():
            setattr(self, name, value)

    def __setattr__(self, name: str, value: Any) -> None:
        cls = self.__class__
        limits = cls._ranges_.get(name)
        if limits is not None:
            value = _index(value, f"{cls.__name__}.{name}")
            if not limits[0] <= value <= limits[1]:
                raise ValueError(f"{cls.__name__}.{name} is {value}, outside {limits[0]}..{limits[1]}")
        elif name in cls._callbacks_ and value is None:
            value = cls._callbacks_[name]()
        elif name in cls._callbacks_ and not isinstance(value, ctypes._CFuncPtr):  # type: ignore
            value = _telling(self, cls._callbacks_[name], value, f"{cls.__name__}.{name}")
        elif name not in cls._names_ and name[:1] != "_":
            raise AttributeError(f"{cls.__name__} has no field {name}; it has {', '.join(cls._names_)}")
        try:
            super().__setattr__(name, value)
        except TypeError as error:
            raise TypeError(f"{cls.__name__}.{name}: {error}") from None

    def __iter__(self) -> Iterator[Any]:
        return (getattr(self, name) for name in self._names_)

    def __len__(self) -> int:
        return len(self._names_)

    def __getitem__(self, index: int) -> Any:
        return getattr(self, self._names_[index])

    def __eq__(self, other: Any) -> Any:
        if other.__class__ is not self.__class__:
            return NotImplemented
        return all(np.array_equal(a, b) for a, b in zip(self, other))

    def __repr__(self) -> str:
        return f"{self.__class__.__name__}({', '.join(f'{n}={_short(getattr(self, n))}' for n in self._names_)})"

    def toArray(self) -> np.ndarray:
        """The fields of a record that holds nothing but doubles, in their order."""
        if not self._flat_:
            raise TypeError(f"{self.__class__.__name__} holds more than numbers")
        return np.array(list(self), dtype=np.float64)


def _index(value: Any, where: str) -> int:
    try:
        return value.__index__()
    except AttributeError:
        raise TypeError(f"{where}: an integer is wanted, not {type(value).__name__}") from None


def _short(value: Any) -> str:
    if isinstance(value, np.ndarray):
        return np.array2string(value, threshold=24) if value.ndim < 2 else f"<{value.shape} {value.dtype}>"
    return repr(value)


def record(cls: RecordType) -> RecordType:
    """Completes a generated class: ranges of its integers, properties for its arrays and pointers."""
    names, ranges, arrays, callbacks, flat = [], {}, {}, {}, True
    for name, kind in list[Any](cls._fields_):
        plain = name.lstrip("_")
        names.append(plain)
        if kind in _IntegerRanges:
            ranges[plain] = _IntegerRanges[kind]
        elif plain in cls._pointers_:
            setattr(cls, plain, _pointerProperty(plain, cls._pointers_[plain]))
        elif issubclass(kind, ctypes._CFuncPtr):  # type: ignore[attr-defined]
            callbacks[plain] = kind
        elif name != plain:
            arrays[plain] = np.dtype(_ArrayTypes[kind._type_])
            setattr(cls, plain, _arrayProperty(name, arrays[plain]))
        flat = flat and kind in (ctypes.c_double, ctypes.c_int32)
    cls._names_, cls._ranges_, cls._arrays_, cls._flat_ = tuple(names), ranges, arrays, flat
    cls._callbacks_ = callbacks
    cls._sized_ = names[0] == "size"
    return cls


def _telling(owner: Record, kind: Any, function: Any, where: str) -> Any:
    """A C function that tells a Python one of progress. What it raises ends the work, and is raised by the call."""
    if not callable(function):
        raise TypeError(f"{where}: a function is wanted, not {type(function).__name__}")
    keeper = weakref.ref(owner)

    def tell(_: Any, stage: bytes, done: int, total: int) -> int:
        try:
            return 1 if function((stage or b"").decode("utf-8", "replace"), done, total) else 0
        except BaseException as error:
            kept = keeper()
            if kept is not None:
                kept._raised = error
            return 1

    return kind(tell)


def _arrayProperty(raw: str, dtype: np.dtype) -> property:
    def read(self: Record) -> np.ndarray:
        return np.frombuffer(getattr(self, raw), dtype=dtype)

    def write(self: Record, value: Any) -> None:
        view = read(self)
        given = np.asarray(value)
        if given.dtype.kind not in "fiu" or (dtype.kind == "i" and given.dtype.kind == "f"):
            raise TypeError(f"{type(self).__name__}.{raw[1:]}: numbers of {dtype} are wanted, not {given.dtype}")
        if given.size != view.size:
            raise ValueError(f"{type(self).__name__}.{raw[1:]} has {view.size} numbers, {given.size} given")
        view[:] = given.ravel()

    return property(read, write, doc=f"{raw[1:]}, as a view of the record's memory")


def _pointerProperty(name: str, code: str) -> property:
    raw, kept = "_" + name, "_kept_" + name

    def read(self: Record) -> Any:
        return self.__dict__.get(kept)

    def write(self: Record, value: Any) -> None:
        if isinstance(value, Record) and not code:
            self.__dict__[kept] = value
            setattr(self, raw, ctypes.addressof(value))
            return
        if value is not None:
            if not isinstance(value, np.ndarray) or (code and value.dtype != np.dtype(code)):
                raise TypeError(f"{type(self).__name__}.{name}: a numpy array of {np.dtype(code or 'u1')} is wanted")
            if not value.flags.c_contiguous or not value.flags.aligned:
                raise ValueError(f"{type(self).__name__}.{name}: the array must be C-contiguous")
        self.__dict__[kept] = value
        setattr(self, raw, None if value is None else value.ctypes.data)

    return property(read, write, doc=f"The array that {name} points to, or None")


def _formatOf(kind: Any) -> Any:
    if issubclass(kind, Record):
        return dtypeOf(kind)
    if issubclass(kind, ctypes.Array) and kind._type_ is not ctypes.c_char:
        return _formatOf(kind._type_), (kind._length_,)
    if issubclass(kind, ctypes._CFuncPtr):  # type: ignore[attr-defined]
        return np.dtype(np.uintp)
    return np.dtype(f"S{kind._length_}") if issubclass(kind, ctypes.Array) else np.dtype(kind)


def dtypeOf(cls: Type[Record]) -> np.dtype:
    """The numpy dtype of an array of records, with the names of the record's fields."""
    names, formats, offsets = [], [], []
    for name, kind in cls._fields_:  # type: ignore[misc]
        names.append(name.lstrip("_"))
        formats.append(_formatOf(kind))
        offsets.append(getattr(cls, name).offset)
    return np.dtype({"names": names, "formats": formats, "offsets": offsets, "itemsize": ctypes.sizeof(cls)})
