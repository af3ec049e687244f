"""What the program does with a calibrated pair; the base of `Rig`."""

import contextlib
from pathlib import Path
from typing import Any, ContextManager, Dict, Iterator, List, Optional, Sequence, Tuple, Union

import numpy as np

from ._calibrate import Region, keptPictures
from ._commands import compare, plan
from ._outputs import PathLike, copyWhole, writeWhole
from ._program import ToolError, warn
from ._result import Result, resultOf
from ._rows import Rows, rowsOf
from ._tables import Table, csvFile, options, readCsv
from ._work import ImageLike, ImageSet, Work, asPath
from .plate import Plate, PlateLike, plateFile

_PAIR_COLUMNS = ("xL", "yL", "xR", "yR")
_VERDICTS = ("tolerance", "drift")  # causes of a failing verify whose figures are there


class Verification(Result):
    """The figures of `verify`, fields as of ``zelm verify --json``; `passed` and `words` are the verdict.

    `table` of ``"lengths"`` has a row for each length: view, ends, nominal and measured length, error, place.
    """

    def __init__(self, fields: Dict[str, Any], words: str, lengths: Optional[np.ndarray]) -> None:
        super().__init__(fields)
        self["passed"] = not words
        self["words"] = words
        self._lengths = lengths

    def __getattr__(self, name: str) -> Any:
        if name.startswith("_"):
            raise AttributeError(name)
        return super().__getattr__(name)

    def table(self, name: str = "lengths") -> np.ndarray:
        if name == "lengths":
            if self._lengths is None:
                raise KeyError("no lengths were measured")
            return self._lengths
        return super().table(name)


class RigCommands:
    """Commands of the program on this calibration. Results are those of the same command in a shell, bit for bit."""

    _page: Optional[str] = None
    imported: Optional[Result] = None  # what `zelm.import_rig` told of a rig of another program's files

    def _folder(self) -> ContextManager[Union[str, Path]]:
        """A folder with rig.zcal, and rig.zcov and rig.json where they are known."""
        raise NotImplementedError

    @contextlib.contextmanager
    def _work(self, progress: bool = False) -> Iterator[Tuple[Work, str]]:
        """A private folder, and the path of the calibration."""
        with self._folder() as folder, Work([folder], progress) as work:
            yield work, str(Path(folder) / "rig.zcal")

    def _keepReport(self, page: str) -> None:
        self._page = page

    def report(self, path: PathLike) -> Path:
        """Writes the report of the calibration, a page for people that needs no other file."""
        if self._page is None:
            raise ValueError("only a rig that was calibrated in this program has its report: calibrate wrote it")
        return writeWhole(path, self._page.encode())

    def verify(
        self,
        plate: Optional[PlateLike] = None,
        left: Optional[ImageSet] = None,
        right: Optional[ImageSet] = None,
        *,
        pairs: Optional[Table] = None,
        lengths: Optional[Table] = None,
        tolerance: Optional[float] = None,
        noise: Optional[float] = None,
        dots: str = "refined",
        calibration_error: Optional[float] = None,
        temperature: Optional[float] = None,
        left_region: Optional[Region] = None,
        right_region: Optional[Region] = None,
        max_level: Optional[int] = None,
        failed: Optional[PathLike] = None,
        progress: bool = False,
    ) -> Verification:
        """Checks the calibration with known lengths, and tells whether the cameras have moved since.

        New images of a plate are given as to `calibrate`; or `pairs` of raw pixels, (n, 4) or with fields xL, yL, xR,
        yR and id, with known `lengths` between them, rows of from, to, length. A verdict against the rig, a length
        beyond `tolerance` or cameras that have moved, is no exception: `passed` is False then, and a warning says why.
        """
        given = {
            "--tolerance": tolerance,
            "--noise": noise,
            "--dots": None if dots == "refined" else dots,
            "--calibration-error": calibration_error,
            "--temperature": temperature,
            "--left-region": left_region,
            "--right-region": right_region,
        }
        with self._work(progress) as (work, rig):
            words = [rig] + ([] if plate is None else ["--plate", plateFile(work, plate)])
            words += [] if left is None else ["--left", *work.images(left, "left", max_level)]
            words += [] if right is None else ["--right", *work.images(right, "right", max_level)]
            words += [] if pairs is None else ["--pairs", _pairsFile(work, pairs)]
            if lengths is not None:
                words += ["--lengths", csvFile(work, lengths, "lengths.csv", ("from", "to", "length"))]
            out = work.folder / "verified"
            out.mkdir()
            csv = out / "measured.csv"
            measures = left is not None or lengths is not None
            words += [*options(given), *(["-o", str(csv)] if measures else [])]
            fields, verdict = _verdictOf(lambda: work.run("verify", *words), out, failed)
            rows = readCsv(csv, ("view", "from", "to", "region")) if csv.exists() else None
            fields.pop("csv", None)
        return Verification(fields, verdict, rows)

    def length(
        self,
        pairs: Table,
        between: Optional[Sequence[Tuple[Any, Any]]] = None,
        *,
        dots: Optional[Tuple[ImageLike, ImageLike]] = None,
        polarity: str = "dark",
        max_error: Optional[float] = None,
        noise: Optional[float] = None,
    ) -> np.ndarray:
        """Measures distances between points, with their uncertainty.

        `pairs` of raw pixels are (n, 4), or have fields xL, yL, xR, yR and id. `between` names the ends by their ids, a
        tuple each; without it all distances are measured. `dots` are the left and the right image of round targets in
        whose dots the pixels lie. Returns an array with the fields from, to, status, length, U95, sigma, noiseSigma
        and calibrationSigma; numbers are NaN where there is no length.
        """
        with self._work() as (work, rig):
            words = [rig, _pairsFile(work, pairs)]
            if between is not None:
                words += ["--lengths", csvFile(work, list(between), "between.csv", ("from", "to"))]
            done = work.run("length", *words, *_targetOptions(work, dots, polarity, max_error, noise))
        return resultOf(done).table("lengths")

    def triangulate_file(
        self,
        pairs: Table,
        path: PathLike,
        *,
        ply: Optional[PathLike] = None,
        ply_binary: bool = False,
        page: Optional[PathLike] = None,
        dots: Optional[Tuple[ImageLike, ImageLike]] = None,
        polarity: str = "dark",
        max_error: Optional[float] = None,
        noise: Optional[float] = None,
        covariance: bool = False,
    ) -> Result:
        """Makes 3-D points of pixel pairs, and writes them as CSV, as a PLY cloud and as a page that shows them.

        `pairs` and `dots` are those of `length`. The result's ``table("list")`` has the points.
        """
        given = {"--ply": ply, "--ply-binary": ply_binary, "--page": page, "--covariance": covariance}
        with self._work() as (work, rig):
            words = [rig, _pairsFile(work, pairs), "-o", asPath(path), *options(given)]
            done = work.run("triangulate", *words, *_targetOptions(work, dots, polarity, max_error, noise))
        return resultOf(done)

    def match_files(
        self,
        left: ImageLike,
        right: ImageLike,
        path: PathLike,
        *,
        ply: Optional[PathLike] = None,
        ply_text: bool = False,
        picture: Optional[PathLike] = None,
        page: Optional[PathLike] = None,
        points: Optional[Table] = None,
        grid: Optional[int] = None,
        dense: bool = False,
        window: Optional[int] = None,
        depth: Optional[Tuple[float, float]] = None,
        precision: Optional[float] = None,
        noise: Optional[float] = None,
        min_score: Optional[float] = None,
        return_tolerance: Optional[float] = None,
        jobs: Optional[int] = None,
        progress: bool = False,
    ) -> Result:
        """Finds the counterparts of many pixels, and writes the points as CSV, PLY, picture of depths and page.

        It looks for `points` of the left image, (n, 2) or with fields x, y and id, for a `grid` of so many pixels, or
        for every pixel with texture (`dense`).
        """
        given: Dict[str, Any] = {"--ply": ply, "--ply-text": ply_text, "--picture": picture, "--page": page}
        given.update({"--grid": grid, "--dense": dense, "--window": window, "--depth": depth, "--precision": precision})
        given.update({"--noise": noise, "--min-score": min_score, "--return-tolerance": return_tolerance})
        with self._work(progress) as (work, rig):
            words = [rig, work.image(left, "left"), work.image(right, "right"), "-o", asPath(path)]
            if points is not None:
                words += ["--points", csvFile(work, points, "points.csv", ("x", "y"), ["id"])]
            done = work.run("match", *words, *options({**given, "--jobs": jobs}))
        return resultOf(done)

    def undistort_files(
        self, images: ImageSet, folder: PathLike, camera: Optional[str] = None, progress: bool = False
    ) -> List[Path]:
        """Removes the distortion of the lens from image files, or arrays, and writes PNG files into a folder.

        The camera of a file is told from a name that begins with left or right, or by `camera`.
        """
        with self._work(progress) as (work, rig):
            words = [rig, *work.images(images, camera or "image"), "-o", asPath(folder), *options({"--camera": camera})]
            done = work.run("undistort", *words)
        return [Path(image["undistorted"]) for image in done["images"]]

    def rectify_files(
        self,
        left: ImageLike,
        right: ImageLike,
        folder: PathLike,
        *,
        reference: Optional[Sequence[float]] = None,
        depth: Optional[float] = None,
        lines: Optional[int] = None,
        pairs: Optional[Table] = None,
    ) -> Result:
        """Turns each image into what the other camera would see; writes both, and a picture with epipolar lines."""
        with self._work() as (work, rig):
            words = [rig, work.image(left, "left"), work.image(right, "right"), "-o", asPath(folder)]
            words += options({"--reference": reference, "--depth": depth, "--lines": lines})
            words += [] if pairs is None else ["--pairs", _pairsFile(work, pairs)]
            return resultOf(work.run("rectify", *words))

    def rectify_rows(
        self,
        left: ImageLike,
        right: ImageLike,
        folder: Optional[PathLike] = None,
        *,
        size: Optional[Tuple[int, int]] = None,
        focal: Optional[float] = None,
        zero_at_infinity: bool = False,
        depths: Optional[Tuple[float, float]] = None,
    ) -> Rows:
        """Turns both images until every point lies in one row, as matchers of whole rows want it.

        Returns the images, the matrices R1, R2, P1, P2 and Q with the meaning of OpenCV's stereoRectify, the
        disparities and the maps. With `folder` the tool's files are written there as well.
        """
        given = {"--rows": True, "--maps": True, "--size": size, "--focal": focal, "--depths": depths}
        with self._work() as (work, rig):
            out = work.path("rows") if folder is None else asPath(folder)
            words = [rig, work.image(left, "left"), work.image(right, "right"), "-o", out]
            done = work.run("rectify", *words, *options({**given, "--zero-at-infinity": zero_at_infinity}))
            return rowsOf(done, Path(out))

    def epilines(
        self,
        points: Union[np.ndarray, Sequence[Sequence[float]]],
        camera: str,
        image: Optional[ImageLike] = None,
        picture: Optional[PathLike] = None,
    ) -> np.ndarray:
        """Lines of the other undistorted image on which raw pixels of one camera's image have their counterparts.

        With the other raw `image` the lines are drawn into a `picture` (.png) of it. Returns an array with the fields
        point, a, b, c (a x + b y + c = 0), visible, from and to.
        """
        with self._work() as (work, rig):
            words = [rig, f"--in={camera}"]
            for point in np.atleast_2d(np.asarray(points, dtype=float)):
                words += ["--point", ",".join(repr(float(number)) for number in point)]
            words += [] if image is None else ["--image", work.image(image, "image")]
            words += [] if picture is None else ["-o", asPath(picture)]
            done = work.run("epiline", *words)
        return resultOf(done).table("lines")

    def export(self, to: str, path: PathLike, unit: Optional[str] = None) -> List[Path]:
        """Writes the calibration for "opencv", "ros", "kalibr", "matlab", "mrcal" or "numpy".

        `path` is a folder; or, of a program that takes one file, the file. A warning tells what is lost.
        """
        with self._work() as (work, rig):
            target = Path(path)
            isFile = target.suffix != "" and not target.is_dir()
            out = work.path("exported") if isFile else asPath(path)
            done = work.run("export", rig, f"--to={to}", "-o", out, *options({"--unit": unit}))
            if not isFile:
                return [Path(out) / Path(name).name for name in done["files"]]
            names = [Path(name).name for name in done["files"]]
            if len(names) != 1:
                raise ValueError(f"{path}: {to} takes the files {', '.join(names)}: give a folder")
            return [copyWhole(Path(out) / names[0], target)]

    def compare(self, other: Any, **others: Any) -> Result:
        """How far another rig, or the truth of rendered images, is from this one: see `zelm.compare`."""
        return compare(self, other, **others)

    def plan(self, volume: Any, plate: PlateLike, **others: Any) -> Result:
        """Which pictures to take beside those of this calibration: see `zelm.plan`."""
        return plan(volume, plate, rig=self, **others)

    def plot_residuals(self, ax: Any = None) -> Any:
        """Reprojection errors of each view: see `zelm.plots`, which needs matplotlib."""
        return _plots().plot_residuals(self._figures(), ax)

    def plot_coverage(self, plate: Optional[Plate] = None, ax: Any = None) -> Any:
        """Where the dots of all views lie in both images; `plate` where the calibration does not tell it."""
        cameras = {"left": getattr(self, "left"), "right": getattr(self, "right")}
        return _plots().plot_coverage(cameras, self._plate() if plate is None else plate, ax)

    def plot_rig(self, plate: Optional[Plate] = None, ax: Any = None) -> Any:
        """Both cameras and the plates of all views in 3-D."""
        if plate is None and "plate" in (getattr(self, "summary", None) or {}):
            plate = self._plate()
        return _plots().plot_rig(self, plate, ax)

    def plot_uncertainty(self, depth: Optional[float] = None, noise: Optional[float] = None, ax: Any = None) -> Any:
        """Standard deviation of the depth of points in a plane before the left camera, over its image."""
        return _plots().plot_uncertainty(self, depth, noise, ax)

    def _figures(self) -> Dict[str, Any]:
        summary: Optional[Dict[str, Any]] = getattr(self, "summary", None)
        if not summary or "views" not in summary:
            raise ValueError("nothing is known of the views of this rig: rig.json is not beside its rig.zcal")
        return summary

    def _plate(self) -> Plate:
        if "plate" not in self._figures():
            raise ValueError("the calibration does not tell its plate: give plate=")
        return Plate._of(dict(self._figures()["plate"]), "plate.json")


def _plots() -> Any:
    from . import plots

    return plots


def _pairsFile(work: Work, pairs: Table) -> str:
    return csvFile(work, pairs, "pairs.csv", _PAIR_COLUMNS, ["id"])


def _targetOptions(
    work: Work,
    dots: Optional[Tuple[ImageLike, ImageLike]],
    polarity: str,
    maxError: Optional[float],
    noise: Optional[float],
) -> List[str]:
    words = options({"--max-error": maxError, "--noise": noise})
    if dots is not None:
        left, right = dots
        words += ["--dots", work.image(left, "left"), work.image(right, "right"), f"--polarity={polarity}"]
    return words


def _verdictOf(run: Any, out: Path, failed: Optional[PathLike]) -> Tuple[Dict[str, Any], str]:
    """The figures, and the words of a verdict against the rig, which are a warning too."""
    try:
        return dict(resultOf(keptPictures(run, out, failed))), ""
    except ToolError as error:
        if error.cause not in _VERDICTS or not ({"lengths", "drift"} & set(error.result)):
            raise
        warn(str(error))
        private = ("status", "exitCode", "message", "cause", "images", "warnings")
        return {name: value for name, value in error.result.items() if name not in private}, str(error)
