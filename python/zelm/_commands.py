"""What the program does without a calibrated pair, or with several."""

import contextlib
import json
import os
from pathlib import Path
from typing import Any, Dict, Iterator, List, Mapping, Optional, Sequence, Tuple, Union

import numpy as np

from ._outputs import PathLike
from ._png import readPng
from ._result import Result, resultOf
from ._tables import Table, csvFile, options
from ._work import Work, asPath
from .plate import Plate, PlateLike, plateFile

_KINDS = ("point", "line", "plane", "circle", "sphere", "cylinder")
_SIDES = ("left", "right")
Description = Union[PathLike, Dict[str, Any]]


def import_rig(
    files: Union[PathLike, Sequence[PathLike]],
    format: str,
    *,
    size: Optional[Tuple[int, int]] = None,
    right_size: Optional[Tuple[int, int]] = None,
    unit: str = "mm",
    tolerance: Optional[float] = None,
) -> Any:
    """A rig of the files of "opencv", "ros", "kalibr", "matlab", "mrcal" or "numpy"; of two files the left one first.

    `size` and `right_size` tell (width, height) where the files do not. A lens with more terms than k1 and k2 is
    replaced by the closest one; more than `tolerance` pixels (0.05) are refused. What that left stands in
    `imported` of the rig.
    """
    from .rig import Rig

    paths = [files] if isinstance(files, (str, os.PathLike)) else list(files)
    given = {"--unit": unit, "--size": size, "--right-size": right_size, "--tolerance": tolerance}
    with Work() as work:
        out = work.folder / "imported"
        out.mkdir()
        words = [*map(asPath, paths), f"--from={format}", "-o", str(out / "rig.zcal"), *options(given)]
        done = work.run("import", *words)
        rig = Rig._from_folder(out)
    rig.imported = resultOf({name: value for name, value in done.items() if name != "rig"})
    return rig


def plan(
    description: Description,
    plate: PlateLike,
    *,
    rig: Any = None,
    tolerance: Optional[float] = None,
    views: Optional[int] = None,
    most: Optional[int] = None,
    length: Optional[float] = None,
    noise: Optional[float] = None,
    point_noise: Optional[float] = None,
    max_tilt: Optional[float] = None,
    criterion: Optional[str] = None,
    square_pixels: bool = False,
    no_skew: bool = False,
    folder: Optional[PathLike] = None,
    progress: bool = False,
) -> Result:
    """Plans which pictures of a plate to take, and tells how well a length is known then.

    Parameters
    ----------
    description : dict or path
        ``{"left": {...}, "baseline": ..., "volume": {...}}``, fields as of the tool's; with `rig` the volume alone.
    tolerance, views
        The U95 of a length to meet with few views, or the number of views to make the best of.
    rig : Rig, optional
        A calibration to go on from: its views count as taken.
    folder : path, optional
        Where to write `pictures.txt`, the list for people, and `plan.json`.

    Returns
    -------
    Result
        `u95`, `pictures` (each with words, pose and tilts), ...
    """
    given: Dict[str, Any] = {"--tolerance": tolerance, "--views": views, "--most": most, "--length": length}
    given.update({"--noise": noise, "--point-noise": point_noise, "--max-tilt": max_tilt, "--criterion": criterion})
    given.update({"--square-pixels": square_pixels, "--no-skew": no_skew})
    with rigPath(rig) as (path, private), Work(private, progress) as work:
        words = [_described(work, description, "station.json"), "--plate", plateFile(work, plate)]
        words += [] if path is None else ["--rig", path]
        words += [*options(given), *([] if folder is None else ["-o", asPath(folder)])]
        return resultOf(work.run("plan", *words))


class Simulation:
    """Rendered views: `left` and `right` are lists of gray images, `plate` is the plate, `truth` the dict of truth."""

    def __init__(self, left: List[np.ndarray], right: List[np.ndarray], plate: Plate, truth: Dict[str, Any]) -> None:
        self.left, self.right, self.plate, self.truth = left, right, plate, truth

    def __repr__(self) -> str:
        height, width = self.left[0].shape
        return f"<zelm.Simulation of {len(self.left)} views, {width} x {height}, {self.plate!r}>"


def simulate(
    description: Optional[Description] = None,
    *,
    views: Optional[int] = None,
    seed: Optional[int] = None,
    folder: Optional[PathLike] = None,
    format: str = "png",
    progress: bool = False,
) -> Any:
    """Renders views of a described plate and pair, with their truth.

    `description` is a dict or a path; `simulation_example()` is the one that stands for None. Without `folder` the
    images come back in a `Simulation`; with it they are written there, and the result names them.
    """
    with Work(progress=progress) as work:
        words = [] if description is None else [_described(work, description, "rig.json")]
        out = work.folder / "views" if folder is None else Path(asPath(folder))
        words += ["-o", str(out), *options({"--views": views, "--seed": seed, "--format": format})]
        done = work.run("simulate", *words)
        if folder is not None:
            return resultOf(done)
        if format not in ("png", "pgm"):
            raise ValueError(f"format {format}: images in memory take png or pgm, or give a folder")
        left, right = ([_read(path) for path in sorted(out.glob(f"{side}_*"), key=_number)] for side in _SIDES)
        truth = json.loads((out / "truth.json").read_text(encoding="utf-8"))
        return Simulation(left, right, Plate.load(out / "plate.json"), truth)


def simulation_example() -> Dict[str, Any]:
    """The complete description of what `simulate` renders when it is given none, to be changed."""
    from . import _program
    from .plate import _parsed

    return _parsed(_program.text("simulate", "--example"))


def fit_features(
    points: Table,
    features: Union[Mapping[str, Any], Sequence[Mapping[str, Any]], PathLike, None] = None,
    *,
    rig: Any = None,
    distances: Sequence[Tuple[str, str]] = (),
    angles: Sequence[Tuple[str, str]] = (),
    robust: bool = False,
    unweighted: bool = False,
    **by_kind: Mapping[str, Any],
) -> Result:
    """Fits lines, planes, circles, spheres and cylinders to points, and measures between them (command `measure`).

    Parameters
    ----------
    points : path, array (n, 3), array with fields or dict of columns
        X, Y, Z and id; the CSV of `triangulate_file(..., covariance=True)` brings covariances along.
    features : dict of the tool's features.json, list of features, or path, optional
    plane, line, circle, sphere, cylinder, point : dict
        Names and the ids of their points: ``plane={"top": ["t0", "t1-t7"]}``.
    distances, angles : list of (name, name)
        Between features, or points by their ids.
    rig : Rig, optional
        The calibration that the points come from: its part of the uncertainty.

    Returns
    -------
    Result
        `features` and `relations`, with U95.
    """
    unknown = [kind for kind in by_kind if kind not in _KINDS]
    if unknown:
        raise TypeError(f"fit_features: no kind of feature {', '.join(unknown)}: {', '.join(_KINDS)}")
    with rigPath(rig) as (path, private), Work(private) as work:
        columns = ["noise_XX", "noise_XY", "noise_XZ", "noise_YY", "noise_YZ", "noise_ZZ"]
        words = [_pointsFile(work, points, columns)]
        words += [] if path is None else ["--rig", path]
        description = _features(features, by_kind, distances, angles)
        words += ["--features", _described(work, description, "features.json")]
        return resultOf(work.run("measure", *words, *options({"--robust": robust, "--unweighted": unweighted})))


def compare(
    rig: Any,
    other: Any,
    *,
    points: Optional[PathLike] = None,
    within: Optional[float] = None,
    depths: Optional[Tuple[float, float]] = None,
) -> Result:
    """How far two calibrations differ, the second less the first, or how far one is from a truth.

    `rig` and `other` are rigs or paths of `rig.zcal`; `other` may be the path of a `truth.json` or `scene_truth.json`,
    with `points` the CSV of `match_files` to compare with the depths of the scene.
    """
    given = {"--points": points, "--within": within, "--depths": depths}
    with rigPath(rig) as (first, private), rigPath(other) as (second, more), Work([*private, *more]) as work:
        return resultOf(work.run("compare", str(first), str(second), *options(given)))


@contextlib.contextmanager
def rigPath(rig: Any) -> Iterator[Tuple[Optional[str], List[str]]]:
    """The path of a calibration, and the private folders that it is in."""
    if rig is None:
        yield None, []
    elif isinstance(rig, (str, os.PathLike)):
        yield asPath(rig), []
    else:
        with rig._folder() as folder:
            yield str(Path(folder) / "rig.zcal"), [str(folder)]


def _described(work: Work, description: Any, name: str) -> str:
    if isinstance(description, (str, os.PathLike)):
        return asPath(description)
    return work.write(name, json.dumps(description, indent=2, default=_number_of))


def _number_of(value: Any) -> Any:
    """Numpy's numbers and arrays for JSON."""
    if isinstance(value, (np.generic, np.ndarray)):
        return value.tolist()
    raise TypeError(f"{value!r} has no place in a description")


def _features(
    features: Any, byKind: Mapping[str, Mapping[str, Any]], distances: Sequence[Any], angles: Sequence[Any]
) -> Any:
    if isinstance(features, (str, os.PathLike)):
        if byKind or distances or angles:
            raise ValueError("fit_features: a file of features has its relations too: give them there")
        return asPath(features)
    whole: Dict[str, Any] = dict(features) if isinstance(features, Mapping) else {"features": list(features or [])}
    listed = [*whole.get("features", [])]
    for kind, named in byKind.items():
        for name, ids in named.items():
            listed.append({"name": name, "kind": kind, "points": [ids] if isinstance(ids, (str, int)) else list(ids)})
    relations = [*whole.get("relations", [])]
    for kind, pairs in (("distance", distances), ("angle", angles)):
        relations += [{"name": f"{kind} {a}:{b}", "kind": kind, "between": [a, b]} for a, b in pairs]
    return {"features": listed, **({"relations": relations} if relations else {})}


def _pointsFile(work: Work, points: Table, covariances: Sequence[str]) -> str:
    if isinstance(points, np.ndarray) and points.dtype.names is None and points.shape[-1:] == (3,):
        points = {"id": np.arange(1, len(points) + 1), **dict(zip("XYZ", np.asarray(points, float).T))}
    return csvFile(work, points, "points.csv", ("X", "Y", "Z"), ["id", *covariances])


def _read(path: Path) -> np.ndarray:
    if path.suffix == ".png":
        return readPng(path)
    content = path.read_bytes()
    _, size, _, pixels = content.split(b"\n", 3)
    width, height = map(int, size.split())
    return np.frombuffer(pixels, np.uint8).reshape(height, width)


def _number(path: Path) -> int:
    return int(path.stem.split("_")[-1])
