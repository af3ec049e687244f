"""What failing calls raise."""

from typing import Any, Dict, NoReturn, Optional, Type

from ._records import ZelmStatus


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
    partial : dict
        By name, the results that this function writes on failure too, such as the latest estimate of an iteration;
        NaN where it did not come so far. Empty for most functions.
    """

    def __init__(
        self, message: str, status: int, name: str, function: str, partial: Optional[Dict[str, Any]] = None
    ) -> None:
        super().__init__(message)
        self.partial = partial or {}
        self.status = status
        self.name = name
        self.function = function

    def __reduce__(self):  # type: ignore[no-untyped-def]
        return self.__class__, (self.args[0], self.status, self.name, self.function, self.partial)


class ZelmParamError(ZelmError, ValueError):
    """An argument has a value, a size or a shape that is not allowed (ZELM_ERR_PARAM)."""


class ZelmMemoryError(ZelmError, MemoryError):
    """The library could not get memory (ZELM_ERR_MEMORY)."""


class MeasurementWarning(UserWarning):
    """A result is there, and something speaks against trusting it blindly: the words tell what, and what to do."""


_Classes: Dict[int, Type[ZelmError]] = {
    ZelmStatus.ERR_PARAM: ZelmParamError,
    ZelmStatus.ERR_MEMORY: ZelmMemoryError,
}


def fail(function: str, status: int, partial: Optional[Dict[str, Any]] = None) -> NoReturn:
    """Raises what stands for a negative status of a core function."""
    from ._coreDocs import STATUSES, WORDS  # large, and wanted on failure only

    name = f"ZELM_{ZelmStatus(status).name}" if status in ZelmStatus.__members__.values() else f"status {status}"
    message = f"{function}: {name} ({status}). {STATUSES.get(name, '')}".rstrip()
    own = WORDS.get(function, {}).get(name)
    if own:
        message += f" Here: {own}"
    raise _Classes.get(status, ZelmError)(message, status, name, function, partial)


def refuse(function: str, words: str) -> NoReturn:
    """Raises for an argument that is refused before the library is called."""
    raise ZelmParamError(f"{function}: {words}", int(ZelmStatus.ERR_PARAM), "ZELM_ERR_PARAM", function)
