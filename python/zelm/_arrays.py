"""Arguments from Python to C: numbers, records, arrays and images, checked."""

import ctypes
from typing import Any, Optional, Tuple, Type

import numpy as np

from ._errors import refuse
from ._record import Record, dtypeOf

INT32 = 2**31 - 1
_fromBuffer: Any = ctypes.c_char.from_buffer
_byref = ctypes.byref
_initialise = ctypes.Structure.__init__


class RawImage(ctypes.Structure):
    """ZelmImage with bare fields."""

    _fields_ = [("pixels", ctypes.c_void_p), ("width", ctypes.c_int32), ("height", ctypes.c_int32)]


class RawGray(ctypes.Structure):
    """ZelmMeasureImage with bare fields."""

    _fields_ = [
        ("pixels", ctypes.c_void_p),
        ("width", ctypes.c_int32),
        ("height", ctypes.c_int32),
        ("stride", ctypes.c_int64),
    ]


class RawBuffer(ctypes.Structure):
    """vImage_Buffer with bare fields."""

    _fields_ = [
        ("data", ctypes.c_void_p),
        ("height", ctypes.c_size_t),
        ("width", ctypes.c_size_t),
        ("rowBytes", ctypes.c_size_t),
    ]


def pointer(array: np.ndarray) -> Any:
    """The address of an array, for a call: the quick way, or the way for those that are empty or read-only."""
    try:
        return _byref(_fromBuffer(array))
    except (TypeError, ValueError, BufferError):
        return array.ctypes.data


def address(array: np.ndarray) -> int:
    """The address of an array, for a record."""
    try:
        return ctypes.addressof(_fromBuffer(array))
    except (TypeError, ValueError, BufferError):
        return array.ctypes.data


def toInt(value: Any, function: str, name: str, bits: int = 32) -> int:
    try:
        number = value.__index__()
    except (AttributeError, TypeError):
        raise TypeError(f"{function}: {name} is {_kind(value)}, an integer is wanted") from None
    if not -(1 << (bits - 1)) <= number < 1 << (bits - 1):
        refuse(function, f"{name} is {number}, beyond {bits} bits")
    return number


def toBytes(value: Any, function: str, name: str) -> bytes:
    try:
        return bytes(memoryview(value))
    except TypeError:
        raise TypeError(f"{function}: {name} is {_kind(value)}, bytes are wanted") from None


def toCamera(value: Any, function: str, name: str) -> int:
    if isinstance(value, str):
        if value not in ("L", "R"):
            refuse(function, f"{name} is {value!r}, 'L' or 'R' is wanted")
        return ord(value)
    return toInt(value, function, name)


def toFloat(value: Any, function: str, name: str) -> float:
    if value.__class__ is int and -(2**53) <= value <= 2**53:
        return float(value)
    if isinstance(value, (str, bytes, bytearray, complex, np.complexfloating)) or getattr(value, "ndim", None):
        raise TypeError(f"{function}: {name} is {_kind(value)}, a number is wanted")
    try:
        number = float(value)
    except (TypeError, ValueError):
        raise TypeError(f"{function}: {name} is {_kind(value)}, a number is wanted") from None
    except OverflowError:
        return refuse(function, f"{name} is beyond the range of a double")
    if isinstance(value, (int, np.integer)) and int(number) != value:
        refuse(function, f"{name} is {value}, which a double would round")
    return number


def toRecord(cls: Type[Record], value: Any, function: str, name: str) -> Record:
    """A record as it is, or made of as many numbers as it has fields, or of an entry of an array of records."""
    if isinstance(value, cls):
        return value
    if isinstance(value, np.void) and value.dtype == dtypeOf(cls):
        return cls.from_buffer_copy(value.tobytes())
    if isinstance(value, (str, bytes, Record)) or not cls._flat_:
        raise TypeError(f"{function}: {name} is {_kind(value)}, {cls.__name__} is wanted")
    try:
        numbers = list(value)
    except TypeError:
        raise TypeError(
            f"{function}: {name} is {_kind(value)}, {cls.__name__} or {len(cls._names_)} numbers are wanted"
        ) from None
    if len(numbers) != len(cls._names_):
        refuse(function, f"{name} has {len(numbers)} numbers, {cls.__name__} has {len(cls._names_)}")
    for at, number in enumerate(numbers):
        if number.__class__ is not float or cls._ranges_:
            convert: Any = toInt if cls._names_[at] in cls._ranges_ else toFloat
            numbers[at] = convert(number, function, f"{name}.{cls._names_[at]}")
    made = cls.__new__(cls)
    _initialise(made, *numbers)
    return made


def toArray(value: Any, dtype: np.dtype, function: str, name: str) -> np.ndarray:
    """The same numbers as a C-contiguous array of a type. Passed as it is when it is one; refused when they change."""
    if isinstance(value, np.ma.MaskedArray):
        raise TypeError(f"{function}: {name} is a masked array, whose mask would be lost")
    if isinstance(value, Record):
        value = value.toArray()
    elif isinstance(value, (list, tuple)) and any(isinstance(entry, Record) for entry in value):
        value = [entry.toArray() if isinstance(entry, Record) else entry for entry in value]
    try:
        given = np.asarray(value)
    except ValueError:  # ragged
        refuse(function, f"{name} has rows of different lengths")
    if given.dtype == dtype:
        return np.require(given, dtype, ["C", "A"])
    if given.size == 0 and not isinstance(value, np.ndarray):
        return np.zeros(given.shape, dtype)
    if given.dtype.kind not in ("iu" if dtype.kind in "iu" else "biuf"):
        raise TypeError(f"{function}: {name} holds {given.dtype}, {dtype} is wanted")
    if np.can_cast(given.dtype, dtype, "safe") and given.dtype.kind + dtype.kind not in ("if", "uf"):
        return np.require(given, dtype, ["C", "A"])
    if given.dtype.kind == "f":
        raise TypeError(f"{function}: {name} holds {given.dtype}, which {dtype} would round: convert it yourself")
    return _exact(given, dtype, function, name)


def _exact(given: np.ndarray, dtype: np.dtype, function: str, name: str) -> np.ndarray:
    if dtype.kind in "iu":
        limits = np.iinfo(dtype)
        if given.size and (int(given.min()) < limits.min or int(given.max()) > limits.max):
            refuse(function, f"{name} has numbers that {dtype} cannot hold")
        return np.require(given, dtype, ["C", "A"])
    largest = 2 ** (np.finfo(dtype).nmant + 1)
    if given.size and (int(given.max()) > largest or int(given.min()) < -largest):
        refuse(function, f"{name} has integers beyond 2^{np.finfo(dtype).nmant + 1}, which {dtype} may round")
    return np.require(given, dtype, ["C", "A"])


def toPixels(value: Any, function: str, name: str, strided: bool = False) -> np.ndarray:
    """An array of bytes, of no other type; rows may be apart where the record that is passed tells their distance."""
    if isinstance(value, np.ma.MaskedArray) or not isinstance(value, np.ndarray) or value.dtype != np.uint8:
        raise TypeError(f"{function}: {name} is {_kind(value)}, a numpy array of uint8 is wanted")
    if strided and value.ndim >= 2 and _rowsArePacked(value):
        return value
    return np.require(value, None, ["C"])


def _rowsArePacked(value: np.ndarray) -> bool:
    inner = value.strides[1:]
    packed = (1,) if value.ndim == 2 else (value.shape[2], 1)
    row = value.shape[1] * (1 if value.ndim == 2 else value.shape[2])
    return value.size > 0 and inner == packed and value.strides[0] >= row


def inOut(value: Any, dtype: np.dtype, function: str, name: str, strided: bool = False) -> np.ndarray:
    """An array that the library writes: passed as it is or refused."""
    if not isinstance(value, np.ndarray) or isinstance(value, np.ma.MaskedArray) or value.dtype != dtype:
        raise TypeError(f"{function}: {name} is {_kind(value)}; it is written, so a numpy array of {dtype} is wanted")
    if not value.flags.writeable:
        refuse(function, f"{name} is written, but the array is read-only")
    if not value.flags.aligned or not (value.flags.c_contiguous or (strided and _rowsArePacked(value))):
        refuse(function, f"{name} is written, so it must be C-contiguous")
    return value


def checkShape(array: np.ndarray, wanted: Tuple[Any, ...], function: str, name: str) -> None:
    """Refuses an array whose shape is not the wanted one; names stand for dimensions of any size."""
    shape = array.shape
    if len(shape) == len(wanted):
        if all(isinstance(w, str) or w == s for w, s in zip(wanted, shape)):
            if not shape or max(shape) <= INT32:
                return
            refuse(function, f"{name} has the shape {shape}, beyond 32 bits")
    form = ", ".join(map(str, wanted)) + ("," if len(wanted) == 1 else "")
    refuse(function, f"{name} has the shape {shape}, ({form}) is wanted")


def wrongType(value: Any, wanted: str, function: str, name: str) -> None:
    """Refuses an argument that is of another class."""
    raise TypeError(f"{function}: {name} is {_kind(value)}, {wanted} is wanted")


def wrongSize(record: Record, function: str, name: str) -> None:
    """Refuses a record whose field `size` is not its own."""
    own = ctypes.sizeof(record)
    refuse(function, f"{name}.size is {record.size}, {type(record).__name__} has {own} bytes")  # type: ignore


def size(number: int, function: str, name: str) -> int:
    """A dimension of a result."""
    if not 0 <= number <= INT32:
        refuse(function, f"{name} cannot have {number} entries")
    return number


def imageOf(array: np.ndarray) -> Any:
    """ZelmImage of an array."""
    height, width = array.shape
    return RawImage(address(array), width, height)


def grayOf(array: np.ndarray) -> Any:
    """ZelmMeasureImage of an array."""
    height, width = array.shape
    return _byref(RawGray(address(array), width, height, array.strides[0] if array.size else width))


def bufferOf(array: Optional[np.ndarray]) -> Any:
    """vImage_Buffer of an array, or NULL."""
    if array is None:
        return None
    row = array.strides[0] if array.size else array.shape[1] * (array.shape[2] if array.ndim == 3 else 1)
    return _byref(RawBuffer(address(array), array.shape[0], array.shape[1], row))


def _kind(value: Any) -> str:
    if isinstance(value, np.ndarray):
        return f"{'a masked' if isinstance(value, np.ma.MaskedArray) else 'an'} array of {value.dtype}"
    return f"of type {type(value).__name__}"
