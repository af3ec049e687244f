"""Calibrating a pair, or one camera, from images or points, by the program's own flow."""

import re
import shutil
from pathlib import Path
from typing import TYPE_CHECKING, Any, Callable, Dict, List, Optional, Sequence, Union

import numpy as np

from . import _program
from ._outputs import PathLike, writeTogether
from ._tables import Table, csvFile, options
from ._work import ImageSet, Work
from .camera import Camera
from .plate import PlateLike, plateFile

if TYPE_CHECKING:
    from .rig import Rig

_MODELS = {"perspective": 0, "tilted": 1, "parallel": 2}
_POINT_COLUMNS = ("view", "camera", "id", "x", "y", "X", "Y")
Region = Sequence[int]


def calibrate(
    plate: PlateLike,
    left: ImageSet,
    right: Optional[ImageSet] = None,
    *,
    reference: Optional[int] = None,
    adjust: bool = True,
    left_model: Union[str, int] = "perspective",
    right_model: Union[str, int] = "perspective",
    left_region: Optional[Region] = None,
    right_region: Optional[Region] = None,
    dots: str = "refined",
    skew: bool = True,
    square_pixels: bool = False,
    dot_diameters: bool = False,
    bow: bool = False,
    noise: Optional[float] = None,
    dot_positions: Optional[Table] = None,
    temperature: Optional[float] = None,
    min_dots: Optional[int] = None,
    min_area: Optional[int] = None,
    min_strength: Optional[float] = None,
    max_level: Optional[int] = None,
    overlays: Optional[PathLike] = None,
    failed: Optional[PathLike] = None,
    strict: bool = False,
    force: bool = False,
    progress: bool = False,
) -> Any:
    """Calibrates a pair of cameras, or one, from images of a plate.

    Parameters
    ----------
    plate : Plate, path or dict
        What the images show.
    left, right : list of images, or a path
        Paths or arrays, one a view, in the same order; or one path, glob, folder or list (.txt). Arrays are gray
        (height, width) or R, G, B (height, width, 3), of uint8 or uint16. Without `right` one camera is calibrated.
    reference : int, optional
        The view, counted from 0 as given, whose plate is the world frame.
    adjust : bool
        False keeps the calibration of the cameras one by one.
    left_model, right_model : "perspective", "tilted" or "parallel"
        The camera models.
    left_region, right_region : (x, y, width, height), optional
        Part of the images that holds the plate.
    dots : "refined" or "reader"
        Whether each dot is measured anew on its pixels once the cameras are known.
    skew, square_pixels, dot_diameters, bow
        What the adjustment estimates: a skew, one focal length for both axes, factors of the diameters, a bent plate.
    noise : float, optional
        Standard deviation of a dot's coordinate in pixels, where it is known.
    dot_positions : array (n, 4) or (n, 5), or path
        Measured positions of dots, column, row, x, y and perhaps z, before those of the plate.
    temperature : float, optional
        Degrees Celsius of the plate in the images.
    min_dots, min_area, min_strength
        Least dots of an image, area of a dot in pixels, strength of its edge, before those of the plate.
    max_level : int, optional
        The level of arrays that stands for white, such as 4095 of 12-bit images in uint16.
    overlays, failed : path, optional
        Folders for copies of the images with the dots drawn in, and for pictures of images that cannot be read.
    strict, force : bool
        Whether one image that cannot be read is an error; whether a refused calibration is returned all the same.
    progress : bool
        Shows progress on stderr.

    Returns
    -------
    Rig, or Camera without `right`

    Raises
    ------
    zelm.ToolError
        In the tool's words. Of a refused calibration `result` has the verdict with its causes.

    Warns
    -----
    zelm.MeasurementWarning
        What speaks against the result; the views that were skipped.
    """
    given = {
        "--reference": reference,
        "--no-adjust": not adjust,
        "--left-model": _model(left_model),
        "--right-model": None if right is None else _model(right_model),
        "--left-region": left_region,
        "--right-region": right_region,
        "--dots": None if dots == "refined" else dots,
        "--no-skew": not skew,
        "--square-pixels": square_pixels,
        "--dot-diameters": dot_diameters,
        "--bow": bow,
        "--noise": noise,
        "--temperature": temperature,
        "--min-dots": min_dots,
        "--min-area": min_area,
        "--min-strength": min_strength,
        "--overlays": overlays is not None,
        "--strict": strict,
        "--force": force,
    }
    with Work(progress=progress) as work:
        words = ["--plate", plateFile(work, plate), "--left", *work.images(left, "left", max_level)]
        words += [] if right is None else ["--right", *work.images(right, "right", max_level)]
        words += ["-o", work.path("out"), *options(given)]
        if dot_positions is not None:
            words += ["--dot-positions", _positionsFile(work, dot_positions)]
        return _result(work, words, right is not None, overlays, failed)


def calibrate_points(
    points: Table,
    *,
    left_size: Optional[Sequence[int]] = None,
    right_size: Optional[Sequence[int]] = None,
    unit: str = "mm",
    reference: Optional[int] = None,
    skew: bool = True,
    square_pixels: bool = False,
    bow: bool = False,
    noise: Optional[float] = None,
    strict: bool = False,
    force: bool = False,
    progress: bool = False,
) -> Any:
    """Calibrates from points of a flat target that another program found: corners of a chessboard, surveyed targets.

    Parameters
    ----------
    points : path, array with fields, dict of columns, data frame or rows
        ``view``, ``camera`` ("left" or "right"), ``id``, ``x``, ``y`` (raw pixels, the middle of the first one at 0, 0)
        and ``X``, ``Y``, perhaps ``Z``, where the point stands on the target. Views and ids are any words or numbers.
    left_size, right_size : (width, height)
        Of the images. Points that name one camera alone calibrate that one.
    unit : str
        The unit of X and Y.
    others
        As of `calibrate`.

    Returns
    -------
    Rig, or Camera where the points are those of one camera
    """
    given = {
        "--left-size": None if left_size is None else _by(left_size),
        "--right-size": None if right_size is None else _by(right_size),
        "--unit": unit,
        "--reference": reference,
        "--no-skew": not skew,
        "--square-pixels": square_pixels,
        "--bow": bow,
        "--noise": noise,
        "--strict": strict,
        "--force": force,
    }
    with Work(progress=progress) as work:
        path = csvFile(work, points, "points.csv", _POINT_COLUMNS, ["Z"])
        words = ["--points", path, "-o", work.path("out"), *options(given)]
        return _result(work, words, None, None, None)


def _model(model: Union[str, int]) -> Optional[int]:
    if isinstance(model, str):
        if model not in _MODELS:
            raise ValueError(f"{model!r} is no camera model: {', '.join(_MODELS)}")
        model = _MODELS[model]
    return model or None


def _by(size: Sequence[int]) -> str:
    width, height = size
    return f"{int(width)}x{int(height)}"


def _positionsFile(work: Work, positions: Table) -> str:
    if isinstance(positions, np.ndarray) and positions.dtype.names is None:
        positions = [[int(row[0]), int(row[1]), *row[2:]] if _isIndex(row[:2]) else list(row) for row in positions]
    return csvFile(work, positions, "dot_positions.csv", ("column", "row", "x", "y"), ["z"])


def _isIndex(numbers: Sequence[float]) -> bool:
    return all(float(number).is_integer() for number in numbers)


def _result(
    work: Work, words: List[str], isPair: Optional[bool], overlays: Optional[PathLike], failed: Optional[PathLike]
) -> Any:
    keptPictures(lambda: work.run("calibrate", *words), work.folder / "out", failed)
    folder = work.folder / "out"
    if overlays is not None:
        _copyPictures(folder / "overlays", overlays)
    for name in ("rig.json", "camera.json", "report.html"):
        if (folder / name).exists():
            _forgetFolder(folder / name, work.folder)
    if isPair is None:
        isPair = (folder / "rig.zcal").exists()
    return _rig(folder) if isPair else Camera._from_folder(folder)


def _rig(folder: Path) -> "Rig":
    from .rig import Rig

    rig = Rig._from_folder(folder)
    rig._keepReport((folder / "report.html").read_text(encoding="utf-8"))
    return rig


def _forgetFolder(path: Path, folder: Path) -> None:
    """Names of arrays' images stand in files without the folder that is gone by then."""
    path.write_bytes(path.read_bytes().replace(f"{folder}/".encode(), b""))


def keptPictures(run: Callable[[], Dict[str, Any]], out: Path, failed: Optional[PathLike]) -> Dict[str, Any]:
    """Runs what draws images that it cannot read, and keeps these pictures where they are wanted.

    What it says of them names the place where they are, or the way to have them.
    """
    try:
        return run()
    except _program.ToolError as error:
        place = None if failed is None else Path(failed)
        words = re.sub(
            rf"; (?:{re.escape(out.name)}/)?failed(?:/([^;]*))? shows what was found$",
            lambda found: _picturesWords(place, found.group(1)),
            str(error),
        )
        command = error.function.split()[-1]
        raise _program.ToolError(words, error.status, {**error.result, "message": words}, command) from None
    finally:
        if failed is not None and (out / "failed").is_dir():
            _copyPictures(out / "failed", failed)


def _picturesWords(place: Optional[Path], name: Optional[str]) -> str:
    if place is None:
        return "; failed=FOLDER keeps a picture of what was found"
    return f"; {place / name if name else place} shows what was found"


def _copyPictures(source: Path, folder: PathLike) -> None:
    made = not Path(folder).exists()
    Path(folder).mkdir(parents=True, exist_ok=True)
    try:
        writeTogether({Path(folder) / path.name: path.read_bytes() for path in sorted(source.iterdir())})
    except BaseException:
        if made:
            shutil.rmtree(folder, ignore_errors=True)
        raise
