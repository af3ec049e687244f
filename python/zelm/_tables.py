"""Tables between numpy and the program's CSV files."""

import csv
import io
import os
from pathlib import Path
from typing import Any, Dict, List, Mapping, Optional, Sequence, Union

import numpy as np

from ._work import Work, asPath

Table = Union[str, "os.PathLike[str]", np.ndarray, Mapping[str, Any], Sequence[Any]]


def csvFile(
    work: Work, table: Table, name: str, columns: Sequence[str], optional: Sequence[str] = ()
) -> str:
    """The path of a CSV file: a path as it is; arrays with fields, dicts of columns and rows are written.

    Rows have the columns in their order, `optional` ones behind them, or before them if that is the id.
    """
    if isinstance(table, (str, os.PathLike)):
        return asPath(table)
    return work.write(name, csvText(columnsOf(table, name, columns, optional)))


def columnsOf(table: Any, name: str, columns: Sequence[str], optional: Sequence[str] = ()) -> Dict[str, Any]:
    """Columns by name, of the same length."""
    known = [*columns, *optional]
    if hasattr(table, "dtype") and table.dtype.names:
        found = {column: table[column] for column in known if column in table.dtype.names}
    elif isinstance(table, Mapping) or hasattr(table, "columns"):  # a dict, or a data frame
        found = {column: np.asarray(table[column]) for column in known if column in table}
    else:
        found = _ofRows(table, name, columns, optional)
    missing = [column for column in columns if column not in found]
    if missing:
        raise ValueError(f"{name}: no column {', '.join(missing)}: there have to be {', '.join(columns)}")
    if len({len(column) for column in found.values()}) != 1:
        raise ValueError(f"{name}: columns of different length")
    return found


def _ofRows(rows: Any, name: str, columns: Sequence[str], optional: Sequence[str]) -> Dict[str, Any]:
    rows = list(rows)
    widths = {len(row) for row in rows}
    if len(widths) > 1:
        raise ValueError(f"{name}: rows of different length")
    width = widths.pop() if widths else len(columns)
    names = [*columns, *optional]
    if list(optional) == ["id"] and width == len(names):
        names = ["id", *columns]
    if not len(columns) <= width <= len(names):
        more = f", perhaps {', '.join(optional)}" if optional else ""
        raise ValueError(f"{name}: rows of {width}: they have to be {', '.join(columns)}{more}")
    return {names[i]: [row[i] for row in rows] for i in range(width)}


def csvText(columns: Mapping[str, Any]) -> str:
    """With a header; numbers with as many digits as bring every bit back."""
    text = io.StringIO()
    writer = csv.writer(text, lineterminator="\n")
    writer.writerow(columns)
    writer.writerows(zip(*([_word(value) for value in column] for column in columns.values())))
    return text.getvalue()


def _word(value: Any) -> str:
    if isinstance(value, (np.generic,)):
        value = value.item()
    return repr(value) if isinstance(value, float) else str(value)


def readCsv(path: Union[str, Path], words: Sequence[str] = ()) -> np.ndarray:
    """A CSV file of the program as an array with fields. Columns of numbers are doubles, empty ones NaN.

    `words` are columns that stay words even if they look like numbers, such as ids.
    """
    with open(path, encoding="utf-8", newline="") as file:
        header, *rows = csv.reader(file)
    columns = {name: _numbers([row[i] for row in rows], name in words) for i, name in enumerate(header)}
    result = np.empty(len(rows), [(name, column.dtype) for name, column in columns.items()])
    for name, column in columns.items():
        result[name] = column
    return result


def _numbers(fields: List[str], isText: bool) -> np.ndarray:
    if not isText:
        try:
            return np.array([float(field) if field else np.nan for field in fields], dtype=float)
        except ValueError:
            pass
    return np.array(fields, dtype=str)


def options(given: Mapping[str, Optional[Any]]) -> List[str]:
    """Words of the command line: flags that are True, and all values but None and False."""
    words: List[str] = []
    for name, value in given.items():
        if value is None or value is False:
            continue
        words.append(name if value is True else f"{name}={optionText(value)}")
    return words


def optionText(value: Any) -> str:
    """One word or number, or several with commas between."""
    if isinstance(value, str):
        return value
    if isinstance(value, os.PathLike):
        return asPath(value)
    if isinstance(value, (tuple, list, np.ndarray)):
        return ",".join(optionText(item) for item in value)
    return _word(value)
