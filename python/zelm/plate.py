"""The plate of dots that calibrates the cameras."""

import json
import re
from pathlib import Path
from typing import Any, Dict, Optional, Sequence, Tuple, Union

import numpy as np

from . import _records as records
from ._outputs import PathLike, copyWhole, writeWhole
from ._program import ToolError
from ._result import Result, resultOf
from ._work import Work, asPath

_LENGTHS = {
    "fieldWidth": "d0",
    "fieldHeight": "d1",
    "dotDiameter": "d2",
    "markerDiameter": "d3",
    "dotPitchX": "d4",
    "dotPitchY": "d5",
    "markerDistanceX": "d6",
    "markerDistanceY": "d7",
}
_COUNTS = {"markers": 3, "minDotArea": 20}
_MIN_EDGE_STRENGTH = 3.0
_WORDS = ("name", "maker", "serial", "date", "certificate", "description", "comment")
_THERMAL = ("expansion", "temperature")
_FORMATS = ("pdf", "svg", "png", "dxf")


class Plate:
    """A plate as `plate.json` describes it; fields have the same names and meaning, and are attributes.

    Parameters
    ----------
    fieldWidth, fieldHeight : float
        Extent from the first dot centre to the last, in any unit, that of all results.
    dotPitchX, dotPitchY : float
        Distance of neighbouring dots.
    dotDiameter, markerDiameter : float
        Diameters of ordinary dots and of the three markers.
    markerDistanceX, markerDistanceY : float
        From the corner marker to the marker on each axis.
    positions : array of shape (n, 4) or (n, 5), optional
        Measured places of dots: column, row, x, y and perhaps z.
    **others
        ``markers``, ``polarity`` ("dark" or "bright"), ``units``, ``minDots``, ``minDotArea``, ``minEdgeStrength``,
        ``expansion``, ``temperature``, ``name``, ``maker``, ``serial``, ``date``, ``certificate``, ``description``,
        ``comment``.

    Raises
    ------
    zelm.ToolError
        In the tool's words, for a description that cannot be that of a plate.
    """

    def __init__(self, **fields: Any) -> None:
        self._fileName = "plate.json"
        self._fields: Dict[str, Any] = {}
        given = {name: _plain(value) for name, value in fields.items() if value is not None}
        with Work() as work:
            _check(work, work.write(self._fileName, _text(given)))
        self._fields = _complete(given)

    @classmethod
    def load(cls, path: PathLike) -> "Plate":
        """Reads a `plate.json`, or the plate of a `truth.json`. Measured positions come along, from their file too."""
        with Work() as work:
            _check(work, asPath(path))
            fields = _parsed(Path(path).read_text(encoding="utf-8"))
            if isinstance(fields.get("positions"), str):
                fields["positions"] = _draw(work, asPath(path), "dxf", page="fit")["plate"]["positions"]
        return cls._of(fields, Path(path).name)

    @classmethod
    def design(
        cls,
        *,
        field: Optional[Tuple[float, float]] = None,
        pitch: Union[None, float, Tuple[float, float]] = None,
        dot: Optional[float] = None,
        marker: Optional[float] = None,
        markers_at: Optional[Tuple[float, float]] = None,
        polarity: Optional[str] = None,
        units: Optional[str] = None,
        page: Union[str, Tuple[float, float]] = "A4",
        **words: str,
    ) -> "Plate":
        """A plate to print, with the tool's choice of what is left out; `words` are name, maker and serial."""
        given = {"--field": field, "--pitch": pitch, "--polarity": polarity, "--units": units, "--dot": dot}
        options = [f"{option}={_size(value)}" for option, value in given.items() if value is not None]
        options += [f"--{name}={value}" for name, value in words.items()]
        options += [] if marker is None else [f"--marker={_size(marker)}"]
        options += [] if markers_at is None else [f"--markers-at={markers_at[0]!r},{markers_at[1]!r}"]
        with Work() as work:
            fields = _draw(work, "", "dxf", page, options)["plate"]
        return cls._of(fields, "plate.json")

    @classmethod
    def _of(cls, fields: Dict[str, Any], fileName: str) -> "Plate":
        plate = cls.__new__(cls)
        plate._fileName = fileName
        plate._fields = _complete(fields)
        return plate

    def save(self, path: PathLike) -> Path:
        """Writes the description as `plate.json`, positions included."""
        return writeWhole(path, _text(self._fields).encode())

    def draw(
        self,
        path: PathLike,
        *,
        page: Union[str, Tuple[float, float]] = "A4",
        orientation: str = "auto",
        dpi: int = 600,
        camera: Union[None, PathLike, Dict[str, Any]] = None,
    ) -> Result:
        """Draws the plate in true size: the ending of `path` is .pdf, .svg, .png or .dxf.

        `page` is A5 to A0, letter, legal, tabloid, "fit" or (width, height) in millimetres. With `camera`, a station's
        description as for `zelm.plan`, the plate is judged as that camera sees it. What makes it read less well is
        warned of, and stands in `findings` of the result.
        """
        ending = Path(path).suffix.lower().lstrip(".")
        if ending not in _FORMATS:
            raise ValueError(f"{path}: a plate is drawn as .pdf, .svg, .png or .dxf")
        with Work() as work:
            options = [f"--orientation={orientation}", f"--dpi={int(dpi)}"]
            if camera is not None:
                station = work.write("camera.json", json.dumps(camera)) if isinstance(camera, dict) else asPath(camera)
                options.append(f"--camera={station}")
            done = _draw(work, self._written(work), ending, page, options)
            copyWhole(work.folder / "drawn" / f"plate.{ending}", path)
        return resultOf({name: done[name] for name in ("units", "page", "dots", "findings")})

    def record(self) -> records.Zelm2ViewPatternDesc:
        """The core's record of the plate. Measured positions, which it has no room for, are `positions`."""
        lengths = {short: getattr(self, name) for name, short in _LENGTHS.items()}
        return records.Zelm2ViewPatternDesc(
            **lengths,
            markers=self.markers,
            polarity=int(self.polarity == "bright"),
            minDotArea=self.minDotArea,
            minEdgeStrength=self.minEdgeStrength,
            minDots=self.minDots,
        )

    @property
    def columns(self) -> int:
        """Number of dots in a row."""
        return 2 * _reach(self.fieldWidth, self.dotPitchX) + 1

    @property
    def rows(self) -> int:
        """Number of rows of dots."""
        return 2 * _reach(self.fieldHeight, self.dotPitchY) + 1

    @property
    def positions(self) -> Optional[np.ndarray]:
        """Measured places of dots, (n, 5): column, row, x, y, z; None where all dots stand on the grid."""
        rows = self._fields.get("positions")
        return None if rows is None else np.array([[*row, 0.0][:5] for row in rows], dtype=float)

    def dots(self) -> np.ndarray:
        """Column, row, x, y and z of every dot, (n, 5), row by row; measured places where they are known."""
        columns, rows = self.columns // 2, self.rows // 2
        i, j = np.meshgrid(np.arange(-columns, columns + 1), np.arange(-rows, rows + 1))
        grid = np.column_stack([i.ravel(), j.ravel()]).astype(float)
        places = np.column_stack([grid, grid * [self.dotPitchX, self.dotPitchY], np.zeros(len(grid))])
        known = self.positions
        measured = {} if known is None else {tuple(row[:2]): row for row in known}
        return np.array([measured.get(tuple(row[:2]), row) for row in places])

    def fields(self) -> Dict[str, Any]:
        """The description as a dict, as `save` writes it."""
        return json.loads(_text(self._fields))  # type: ignore[no-any-return]

    def _written(self, work: Work) -> str:
        """A file of the description in that folder, under the name that people know."""
        return work.write(self._fileName, _text(self._fields))

    def __getattr__(self, name: str) -> Any:
        if name.startswith("_"):
            raise AttributeError(name)
        if name in (*_WORDS, *_THERMAL):
            return self._fields.get(name)
        try:
            return self._fields[name]
        except KeyError:
            raise AttributeError(f"a plate has no field {name}") from None

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Plate) and self._fields == other._fields

    def __hash__(self) -> int:
        return hash(_text(self._fields))

    def __repr__(self) -> str:
        name = f"{self.name!r}, " if self.name else ""
        pitch = f"{self.dotPitchX:g}" + ("" if self.dotPitchX == self.dotPitchY else f" x {self.dotPitchY:g}")
        measured = "" if self.positions is None else f", {len(self.positions)} measured positions"
        return (
            f"<zelm.Plate {name}{self.columns} x {self.rows} {self.polarity} dots, field {self.fieldWidth:g} x "
            f"{self.fieldHeight:g} {self.units}, pitch {pitch}, diameter {self.dotDiameter:g}, markers "
            f"{self.markerDiameter:g} at {self.markerDistanceX:g} and {self.markerDistanceY:g}{measured}>"
        )


PlateLike = Union[Plate, PathLike, Dict[str, Any]]


def plateFile(work: Work, plate: PlateLike) -> str:
    """The path of a plate's description: a path as it is, all else written into the folder."""
    if isinstance(plate, Plate):
        return plate._written(work)
    if isinstance(plate, dict):
        return work.write("plate.json", _text(plate))
    return asPath(plate)


def _check(work: Work, path: str) -> None:
    """Lets the program read the description: it is read before an image, which is not there."""
    none = work.path("none.pgm")
    try:
        work.run("detect", none, "--plate", path, "-o", work.path("detected"))
    except ToolError as error:
        if not str(error).startswith("none.pgm: "):
            raise


def _draw(
    work: Work, path: str, ending: str, page: Union[str, Tuple[float, float]], options: Sequence[str] = ()
) -> Dict[str, Any]:
    files = [path] if path else []
    return work.run("plate", *files, f"--page={_size(page)}", f"--format={ending}", *options, "-o", work.path("drawn"))


def _size(value: Any) -> str:
    """A word, a number, or two with an x between."""
    if isinstance(value, str):
        return value
    return "x".join(repr(float(number)) for number in np.atleast_1d(value))


def _plain(value: Any) -> Any:
    """What JSON knows; the first two numbers of positions are whole ones."""
    if isinstance(value, np.generic):
        return value.item()
    if isinstance(value, np.ndarray):
        return [[int(x) if i < 2 and x == int(x) else x for i, x in enumerate(row)] for row in value.tolist()]
    return value


def _text(fields: Dict[str, Any]) -> str:
    return json.dumps(fields, indent=2, ensure_ascii=False) + "\n"


def _parsed(text: str) -> Dict[str, Any]:
    """The fields of a description, which the program has read before. It may hold comments."""
    plain = re.sub(r'("(?:\\.|[^"\\])*")|//[^\n]*|/\*.*?\*/', lambda found: found.group(1) or " ", text, flags=re.S)
    fields: Dict[str, Any] = json.loads(plain)
    if "pattern" in fields:
        long = {short: name for name, short in _LENGTHS.items()}
        fields = {long.get(name, name): value for name, value in fields["pattern"].items()}
    return fields


def _complete(given: Dict[str, Any]) -> Dict[str, Any]:
    """All fields in their order, with the defaults of those that were not given."""
    fields: Dict[str, Any] = {name: float(given[name]) for name in _LENGTHS}
    fields["markers"] = given.get("markers", _COUNTS["markers"])
    fields["polarity"] = "bright" if given.get("polarity") in ("bright", 1) else "dark"
    fields["units"] = given.get("units", "mm")
    fields["minDots"] = given.get("minDots", _usualMinDots(fields))
    fields["minDotArea"] = given.get("minDotArea", _COUNTS["minDotArea"])
    fields["minEdgeStrength"] = float(given.get("minEdgeStrength", _MIN_EDGE_STRENGTH))
    for name in _THERMAL:
        if name in given:
            fields[name] = float(given[name])
    for name in (*_WORDS, "positions"):
        if given.get(name) not in (None, ""):
            fields[name] = given[name]
    return fields


def _usualMinDots(fields: Dict[str, Any]) -> int:
    dots = 1
    for extent, pitch in (("fieldWidth", "dotPitchX"), ("fieldHeight", "dotPitchY")):
        dots *= 2 * _reach(fields[extent], fields[pitch]) + 1
    return max(4, dots // 2)


def _reach(extent: float, pitch: float) -> int:
    """Dots on either side of the corner marker."""
    return int(np.floor(0.5 * extent / pitch + 1e-9))
