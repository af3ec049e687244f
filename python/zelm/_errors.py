"""What failing calls raise."""

from typing import Any, Dict, NoReturn, Optional, Type

from ._records import ZELM_MEASURE_ERR_CANCELLED, ZELM_MEASURE_ERR_DATA, ZelmStatus


class ZelmError(Exception):
    """A function of the library failed.

    Attributes
    ----------
    status : int
        The negative status that the function returned.
    name : str
        Its name in the C headers, such as ``"ZELM_ERR_FIT_DATA"``.
    function : str
        The C function that failed.
    words : str
        What the measuring library says of this failure; empty where it keeps no words.
    partial : dict
        By name, the results that this function writes on failure too, such as the latest estimate of an iteration;
        NaN where it did not come so far. Empty for most functions.
    """

    def __init__(
        self, message: str, status: int, name: str, function: str, partial: Optional[Dict[str, Any]] = None
    ) -> None:
        super().__init__(message)
        self.partial = partial or {}
        self.words = ""
        self.status = status
        self.name = name
        self.function = function

    def __reduce__(self):  # type: ignore[no-untyped-def]
        return self.__class__, (self.args[0], self.status, self.name, self.function, self.partial)


class ZelmParamError(ZelmError, ValueError):
    """An argument has a value, a size or a shape that is not allowed (ZELM_ERR_PARAM)."""


class ZelmMemoryError(ZelmError, MemoryError):
    """The library could not get memory (ZELM_ERR_MEMORY)."""


class ZelmDataError(ZelmError):
    """The data do not allow what was asked (ZELM_MEASURE_ERR_DATA); the message says why."""


class ZelmCancelledError(ZelmError):
    """The function that is told of progress ended the work (ZELM_MEASURE_ERR_CANCELLED)."""


class MeasurementWarning(UserWarning):
    """A result is to be used with care: the message says which and why."""


_Classes: Dict[int, Type[ZelmError]] = {
    ZelmStatus.ERR_PARAM: ZelmParamError,
    ZelmStatus.ERR_MEMORY: ZelmMemoryError,
    ZELM_MEASURE_ERR_DATA: ZelmDataError,
    ZELM_MEASURE_ERR_CANCELLED: ZelmCancelledError,
}
_Measuring = {
    ZELM_MEASURE_ERR_DATA: "ZELM_MEASURE_ERR_DATA",
    ZELM_MEASURE_ERR_CANCELLED: "ZELM_MEASURE_ERR_CANCELLED",
}


def fail(function: str, status: int, partial: Optional[Dict[str, Any]] = None) -> NoReturn:
    """Raises what stands for a negative status of a core function."""
    from ._coreDocs import STATUSES, WORDS  # large, and wanted on failure only

    name = _nameOf(status)
    message = f"{function}: {name} ({status}). {STATUSES.get(name, '')}".rstrip()
    own = WORDS.get(function, {}).get(name)
    if own:
        message += f" Here: {own}"
    raise _Classes.get(status, ZelmError)(message, status, name, function, partial)


def failMeasuring(function: str, status: int, teller: Any = None, options: Any = None) -> NoReturn:
    """Raises what stands for a negative status of a function of the measuring library.

    `teller` is the handle that keeps the words of the failure, or the words; `options` may hold what a function that
    was told of progress has raised.
    """
    raised = getattr(options, "_raised", None)
    if raised is not None:
        options._raised = None
        raise raised
    from ._coreDocs import STATUSES as CORE
    from ._measureDocs import STATUSES, WORDS

    name = _nameOf(status)
    words = teller if isinstance(teller, str) else teller._words() if teller is not None else ""
    message = f"{function}: {name} ({status}). {STATUSES.get(name) or CORE.get(name, '')}".rstrip()
    message += f" {words[:1].upper()}{words[1:]}." if words else ""
    own = WORDS.get(function, {}).get(name)
    if own and not words:
        message += f" Here: {own}"
    error = _Classes.get(status, ZelmError)(message, status, name, function)
    error.words = words
    raise error


def _nameOf(status: int) -> str:
    if status in _Measuring:
        return _Measuring[status]
    return f"ZELM_{ZelmStatus(status).name}" if status in ZelmStatus.__members__.values() else f"status {status}"


def refuse(function: str, words: str) -> NoReturn:
    """Raises for an argument that is refused before the library is called."""
    raise ZelmParamError(f"{function}: {words}", int(ZelmStatus.ERR_PARAM), "ZELM_ERR_PARAM", function)
