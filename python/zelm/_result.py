"""What the program tells, as a dict whose fields are attributes too."""

from typing import Any, Dict, List, Sequence

import numpy as np

_TEXT_WIDTH = 100  # of a line of repr()


class Result(Dict[str, Any]):
    """A JSON object of the program: ``result["drift"]["found"]`` is also ``result.drift.found``.

    Lists of objects with the same fields become numpy arrays with fields by `table()`.
    """

    def __init__(self, fields: Dict[str, Any]) -> None:
        super().__init__((name, _wrapped(value)) for name, value in fields.items())

    def __getattr__(self, name: str) -> Any:
        try:
            return self[name]
        except KeyError:
            raise AttributeError(f"no field {name}: there are {', '.join(self)}") from None

    def __dir__(self) -> List[str]:
        return [*super().__dir__(), *(name for name in self if name.isidentifier())]

    def __repr__(self) -> str:
        return "\n".join(_lines(self, 0))

    def table(self, name: str) -> np.ndarray:
        """The list of that name as an array with fields: numbers, words, and short lists of numbers."""
        return table(self[name])


def resultOf(fields: Dict[str, Any]) -> Result:
    """Of a run that is done: without what says so."""
    return Result({name: value for name, value in fields.items() if name not in ("status", "warnings")})


def table(rows: Sequence[Dict[str, Any]]) -> np.ndarray:
    """Objects as an array with fields. Numbers that an object lacks are NaN, words are empty, truths false."""
    columns: Dict[str, List[Any]] = {}
    for row in rows:
        for name, value in _flat(row).items():
            columns.setdefault(name, [])
    flat = [_flat(row) for row in rows]
    for name, column in columns.items():
        column.extend(row.get(name) for row in flat)
    arrays = {name: _column(values) for name, values in columns.items()}
    result = np.empty(len(rows), [(name, array.dtype, array.shape[1:]) for name, array in arrays.items()])
    for name, array in arrays.items():
        result[name] = array
    return result


def _flat(row: Dict[str, Any], front: str = "") -> Dict[str, Any]:
    """Fields of inner objects by names such as left_dots."""
    flat: Dict[str, Any] = {}
    for name, value in row.items():
        if isinstance(value, dict):
            flat.update(_flat(value, f"{front}{name}_"))
        else:
            flat[front + name] = value
    return flat


def _column(values: List[Any]) -> np.ndarray:
    known = [value for value in values if value is not None]
    if all(isinstance(value, bool) for value in known):
        return np.array([bool(value) for value in values])
    if all(isinstance(value, int) for value in known) and len(known) == len(values):
        return np.array(values, dtype=np.int64)
    if all(isinstance(value, (int, float)) for value in known):
        return np.array([np.nan if value is None else value for value in values], dtype=float)
    if all(isinstance(value, str) for value in known):
        return np.array([value or "" for value in values])
    shapes = {np.shape(value) for value in known}
    if len(shapes) == 1 and all(np.asarray(value).dtype.kind in "if" for value in known):
        missing = np.full(shapes.pop(), np.nan)
        return np.array([missing if value is None else value for value in values], dtype=float)
    column = np.empty(len(values), dtype=object)
    column[:] = values
    return column


def _wrapped(value: Any) -> Any:
    if isinstance(value, dict):
        return Result(value)
    if isinstance(value, list):
        return [_wrapped(item) for item in value]
    return value


def _lines(fields: Dict[str, Any], depth: int) -> List[str]:
    lines = []
    for name, value in fields.items():
        front = "  " * depth + f"{name}: "
        if isinstance(value, dict):
            lines += [front.rstrip(), *_lines(value, depth + 1)]
        elif isinstance(value, list) and value and isinstance(value[0], dict):
            lines.append(f"{front}{len(value)} x {{{', '.join(value[0])}}}")
        else:
            text = _shown(value)
            room = _TEXT_WIDTH - len(front)
            lines.append(front + (text if len(text) <= room or isinstance(value, str) else text[: room - 3] + "..."))
    return lines


def _shown(value: Any) -> str:
    if isinstance(value, float):
        return f"{value:.9g}"
    if isinstance(value, list):
        return "[" + ", ".join(_shown(item) for item in value) + "]"
    return str(value)
