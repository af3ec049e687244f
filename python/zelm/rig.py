"""A calibrated pair of cameras, to measure with."""

import contextlib
import json
import tempfile
import warnings
from pathlib import Path
from typing import Any, Callable, Dict, Iterator, Optional, Sequence, Tuple

import numpy as np

from . import _matching, _pixels, _rectified, _rigFiles, _spacePoints, measure
from ._errors import MeasurementWarning, ZelmDataError
from ._grayImages import ImageLike
from ._outputs import PathLike
from ._records import ZelmMeasureRelativePose
from ._rectified import AlignedRows, Rectified
from ._rigCommands import RigCommands
from ._rigHandles import RigHandles
from ._triangulation import Triangulation
from .cloud import Cloud
from .rigCamera import RigCamera


class Rig(RigCommands):
    """A calibrated pair of cameras.

    ``Rig.load("out/rig.zcal")`` reads one. Points of space are in the frame of the plate of view 0, in the unit of the
    plate (`unit`); pixels are raw ones unless said otherwise, the centre of the first one is (0, 0).

    Threads may share a rig: calls run side by side, with the interpreter's lock released.

    Parameters
    ----------
    block : bytes
        The calibration, as in rig.zcal.
    covariance : bytes, optional
        That of its parameters, as in rig.zcov.
    summary : dict, optional
        What rig.json says.

    Attributes
    ----------
    left, right : RigCamera
        The cameras.
    R, t : array of shape (3, 3) and (3,), or None
        X_right = R X_left + t; None with a parallel camera, which has no centre.
    baseline, convergence : float or None
        Distance of the centres of projection, and the angle between the optical axes in radians.
    F : array of shape (3, 3)
        The fundamental matrix: x_left' F x_right = 0 for undistorted pixels.
    """

    def __init__(
        self, block: bytes, covariance: Optional[bytes] = None, summary: Optional[Dict[str, Any]] = None
    ) -> None:
        self._block = bytes(block)
        self._covariance = None if covariance is None else bytes(covariance)
        self._handles = RigHandles(self._block, self._covariance)
        self._name = "rig.zcal"
        self._summaryBytes: Optional[bytes] = None
        with self._handles.borrow() as handle:
            self.views: int = measure.zelmMeasureRigViews(handle)
            self.left, self.right = (self._cameraOf(handle, side) for side in "LR")
            self.F: np.ndarray = measure.zelmMeasureRigFundamental(handle)
            self._relative = _relativeOf(handle)
            self._noise = None if covariance is None else measure.zelmMeasureRigCovariance(handle).noise
        self.summary = summary

    def _cameraOf(self, handle: Any, side: str) -> RigCamera:
        poses = [measure.zelmMeasureRigPose(handle, side, view) for view in range(self.views)]
        return RigCamera(self, side, measure.zelmMeasureRigCamera(handle, side), poses)

    @classmethod
    def load(cls, path: PathLike) -> "Rig":
        """Reads a calibration, and its covariance (.zcov) and summary (.json) that stand beside it.

        Parameters
        ----------
        path : path
            The calibration, or the folder that has it as rig.zcal.

        Raises
        ------
        ZelmDataError
            The file is no calibration, or is damaged, or its covariance is that of another one; the words name it.

        Warns
        -----
        MeasurementWarning
            The calibration was refused, and is not to be measured with.
        """
        rig = cls._read(_rigFiles.calibrationFile(path))
        if rig.verdict == "refused":
            name = Path(rig._name)
            words = f"{name}: {name.with_suffix('.json').name} says of this calibration: {rig.verdict_sentence}"
            warnings.warn(words, MeasurementWarning, stacklevel=2)
        return rig

    @classmethod
    def _read(cls, path: Path) -> "Rig":
        covariance = _rigFiles.bytesBeside(path, ".zcov")
        try:
            rig = cls(path.read_bytes())
        except ZelmDataError as error:
            raise _rigFiles.named(error, path) from None
        if covariance is not None:
            try:
                rig = cls(rig._block, covariance)
            except ZelmDataError as error:
                raise _rigFiles.named(error, path.with_suffix(".zcov")) from None
        content = _rigFiles.bytesBeside(path, ".json")
        summary = _rigFiles.summaryOf(content)
        if _rigFiles.isSummaryOf(summary, rig.left.intrinsics, rig.right.intrinsics):
            rig.summary, rig._summaryBytes = summary, content
        rig._name = str(path)
        return rig

    @classmethod
    def _from_folder(cls, path: PathLike) -> "Rig":
        return cls._read(_rigFiles.calibrationFile(path))

    @contextlib.contextmanager
    def _folder(self) -> Iterator[Path]:
        """A temporary folder with the files of this rig."""
        with tempfile.TemporaryDirectory(prefix="zelm-rig-") as folder:
            self.save(Path(folder) / "rig.zcal")
            page = getattr(self, "_page", None)
            if page is not None:
                (Path(folder) / "report.html").write_text(page, encoding="utf-8")
            yield Path(folder)

    def save(self, path: PathLike) -> Path:
        """Writes the calibration, and beside it the covariance (.zcov) and the summary (.json) where they are known.

        The files get their names when all are written.
        """
        path = Path(path)
        if path.is_dir():
            path = path / "rig.zcal"
        summary = self._summaryBytes
        if summary is None and self.summary is not None:
            summary = json.dumps(self.summary, indent=2).encode()
        return _rigFiles.writeRig(path, self._block, self._covariance, summary)[0]

    @property
    def block(self) -> bytes:
        """The calibration, as in rig.zcal."""
        return self._block

    @property
    def covariance_block(self) -> Optional[bytes]:
        """The covariance of the calibration, as in rig.zcov; None where it is not known."""
        return self._covariance

    @property
    def covariance(self) -> Optional[Any]:
        """The covariance as a record, with `noise`, `freedom` and `matrix` (26 x 26 numbers); None likewise."""
        if self._covariance is None:
            return None
        with self._handles.borrow() as handle:
            return measure.zelmMeasureRigCovariance(handle)

    @property
    def unit(self) -> str:
        """The unit of lengths, "mm" for example; "plate units" where no summary tells it."""
        return _rigFiles.textAt(self.summary, "units", "length") or _rigFiles.UNKNOWN_UNIT

    @property
    def verdict(self) -> Optional[str]:
        """What the calibration's checks found: "good", "doubtful" or "refused"; None where no summary tells it."""
        return _rigFiles.textAt(self.summary, "verdict", "status")

    @property
    def verdict_sentence(self) -> Optional[str]:
        """The same as a sentence."""
        return _rigFiles.textAt(self.summary, "verdict", "sentence")

    @property
    def R(self) -> Optional[np.ndarray]:
        return None if self._relative is None else self._relative.R.reshape(3, 3).copy()

    @property
    def t(self) -> Optional[np.ndarray]:
        return None if self._relative is None else self._relative.t.copy()

    @property
    def baseline(self) -> Optional[float]:
        return None if self._relative is None else self._relative.baseline

    @property
    def convergence(self) -> Optional[float]:
        return None if self._relative is None else self._relative.convergence

    def camera(self, side: str) -> RigCamera:
        """The left or the right camera, by 'L' or 'R', or "left" or "right"."""
        sides = {"L": self.left, "left": self.left, "R": self.right, "right": self.right}
        if side not in sides:
            raise ValueError(f"a side is 'L' or 'R', not {side!r}")
        return sides[side]

    def triangulate(
        self,
        left_xy: Any,
        right_xy: Any,
        *,
        max_error: Optional[float] = None,
        noise: Optional[float] = None,
        covariance: bool = True,
    ) -> Triangulation:
        """Points of space of pixel pairs, and how well they are known: ``points, cov = rig.triangulate(left, right)``.

        Parameters
        ----------
        left_xy, right_xy : array of shape (n, 2)
            Raw pixels that show the same points.
        max_error : float, optional
            Pixels that the rays of a pair may miss each other by; more is a mismatch. Default: six standard deviations
            of the noise or of rounding to whole pixels, 1.73.
        noise : float, optional
            Standard deviation of a pixel's coordinate. Default: that of the calibration's dots.
        covariance : bool
            False leaves the covariances out, which takes half the time.

        Returns
        -------
        Triangulation
            Points, shape (n, 3), and covariances, shape (n, 3, 3); NaN for a pair that gives no point. It has the
            attributes `status`, `error`, `angle`, `noise_cov` and `calibration_cov` too.

        Warns
        -----
        MeasurementWarning
            Pairs gave no point, how many and why; pairs miss each other by more than noise explains.
        """
        made = _spacePoints.triangulate(self, left_xy, right_xy, max_error, noise, covariance)
        for words in made.warnings(noise if noise is not None else self._noise):
            warnings.warn(words, MeasurementWarning, stacklevel=2)
        return made

    def lengths(self, left_xy: Any, right_xy: Any, ends: Any = None, *, noise: Optional[float] = None) -> np.ndarray:
        """Distances between points, with their uncertainty.

        Parameters
        ----------
        left_xy, right_xy : array of shape (n, 2)
            Raw pixels that show the same points.
        ends : array of shape (m, 2) of integers, optional
            The rows of the two ends of each length. Default: each point and the next one of a pair of rows, that is
            (0, 1), (2, 3), ...
        noise : float, optional
            Standard deviation of a pixel's coordinate. Default: that of the calibration's dots.

        Returns
        -------
        structured array of m
            `length`, `u95` (half the interval that holds the true length at 95 %), `sigma`, `noise_sigma`,
            `calibration_sigma` and `status`: "ok", "no_point", or "short", which has the length alone. What the
            covariance of the calibration tells is NaN without it.
        """
        return _spacePoints.lengths(self, left_xy, right_xy, ends, noise)

    def project(self, points: Any) -> Tuple[np.ndarray, np.ndarray]:
        """Raw pixels of both cameras, shape (n, 2) each, of points of shape (n, 3); NaN where there is no image."""
        return self.left.project(points), self.right.project(points)

    def epipolar_lines(self, xy: Any, side: str) -> np.ndarray:
        """Lines on which the counterparts of pixels lie.

        Parameters
        ----------
        xy : array of shape (n, 2)
            Raw pixels of the camera `side`.
        side : str
            'L': pixels of the left image, lines of the right one; 'R': the other way round.

        Returns
        -------
        array of shape (n, 3)
            a, b, c of the line a x + b y + c = 0 of undistorted pixels of the other image, a^2 + b^2 = 1. NaN where the
            lens distortion cannot be undone.
        """
        xy = _pixels.rowsOf(xy, 2, "epipolar_lines", "xy")
        with self._handles.borrow() as handle:
            return measure.zelmMeasureEpipolarLines(handle, self.camera(side).side, xy)

    def match(
        self,
        left: ImageLike,
        right: ImageLike,
        step: int = 4,
        *,
        points: Any = None,
        dense: bool = False,
        region: Optional[Sequence[int]] = None,
        depth: Optional[Tuple[float, float]] = None,
        progress: Optional[Callable[[str, int, int], Any]] = None,
        **settings: Any,
    ) -> Cloud:
        """Finds the counterparts of pixels of the left image in the right one, and makes points of space of them.

        Parameters
        ----------
        left, right : array or path
            The raw images: gray (height, width) or R, G, B (height, width, 3), of uint8 or uint16; or their files.
        step : int
            Look for the pixels of a grid with this step.
        points : array of shape (n, 2), optional
            Look for these raw pixels of the left image instead.
        dense : bool
            Look for every pixel with texture: of the whole image on the surfaces of a grid, as ``zelm match --dense``,
            of a region each for itself.
        region : (x, y, width, height), optional
            The part of the left image whose pixels are looked for.
        depth : (float, float), optional
            Distances along the left camera's axis between which points are looked for. Default: from half the distance
            of the nearest plate of the calibration to twice that of the farthest.
        progress : callable, optional
            Told the stage, the steps done and their number; what is true ends the work, with ZelmCancelledError.
        window, min_score, return_tolerance, precision, noise, threads : optional
            As of ``zelm match``: side of the window in pixels (21), smallest score (0.8), largest distance from the
            start at which the way back ends (1 pixel), standard deviation that the texture must promise (0.1 pixel),
            that of a gray level (default: estimated), number of threads (all). The result is the same for any number.

        Returns
        -------
        Cloud
            The points, the same as those of ``zelm match`` bit for bit.

        Warns
        -----
        MeasurementWarning
            Nothing was found, or so little that it may be chance.
        """
        return _matching.match(self, left, right, step, points, dense, region, depth, progress, settings)

    def rectify(
        self, left: ImageLike, right: ImageLike, *, reference: Optional[Sequence[float]] = None, depth: float = 0.0
    ) -> Rectified:
        """Undistorts each image and turns it into the view of the other camera, as ``zelm rectify`` does.

        Parameters
        ----------
        left, right : array or path
            The raw images.
        reference : (x, y) or (xL, yL, xR, yR), optional
            The undistorted pixels that are to lie on the image centres. Default: of the point that both cameras look
            at.
        depth : float
            With a parallel camera: the height of the plane on which the images agree.
        """
        return _rectified.rectify(self, left, right, reference, depth)

    def align_rows(
        self,
        left: Optional[ImageLike] = None,
        right: Optional[ImageLike] = None,
        *,
        size: Optional[Tuple[int, int]] = None,
        focal: Optional[float] = None,
        depths: Optional[Tuple[float, float]] = None,
        zero_at_infinity: bool = False,
    ) -> AlignedRows:
        """Turns both cameras until a point's images lie in the same row; images and maps as of ``zelm rectify --rows``.

        Parameters
        ----------
        left, right : array or path, optional
            The raw images that are resampled.
        size : (width, height), optional
            Of the aligned images. Default: the larger of the cameras'.
        focal : float, optional
            Pixels. Default: such that what the images show stays in them.
        depths : (nearest, farthest), optional
            Those that disparities are told of. Default: from half the distance of the nearest plate of the calibration
            to twice that of the farthest.
        zero_at_infinity : bool
            Disparity 0 is at infinity. Otherwise it is about where both cameras look.
        """
        options = _rectified.rowOptions(size, focal, depths, zero_at_infinity)
        return _rectified.alignRows(self, (left, right), options)

    def __reduce__(self) -> Any:
        return _restored, (type(self), self._block, self._covariance, self._summaryBytes, self.summary, self._name)

    def __repr__(self) -> str:
        pair = "" if self.baseline is None else f", baseline {self.baseline:.6g} {self.unit}, {self._degrees()} deg"
        verdict = "" if self.verdict is None else f", {self.verdict}"
        known = "" if self._covariance is not None else ", without covariance"
        sizes = " and ".join(f"{c.size[0]} x {c.size[1]}" for c in (self.left, self.right))
        return f"<Rig {Path(self._name).name}: {sizes} px, {self.views} views{pair}{known}{verdict}>"

    def _degrees(self) -> str:
        return f"convergence {np.degrees(self.convergence or 0.0):.4g}"


def _restored(cls: Any, block: bytes, covariance: Any, content: Any, summary: Any, name: str) -> Rig:
    rig = cls(block, covariance, summary)
    rig._summaryBytes, rig._name = content, name
    return rig


def _relativeOf(handle: Any) -> Optional[ZelmMeasureRelativePose]:
    try:
        return measure.zelmMeasureRigRelativePose(handle)
    except ZelmDataError:
        return None
