"""Points of a scene, with what is known of each."""

from pathlib import Path
from typing import TYPE_CHECKING, Any, Dict, List, Optional, Tuple

import numpy as np

from ._outputs import PathLike, writeWhole
from ._records import ZelmMeasureMatchOptions, ZelmMeasureMatchStatus
from ._triangulation import namesOf, squareOf

if TYPE_CHECKING:
    from .rig import Rig

MATCH_WORDS = {status: status.name.lower() for status in ZelmMeasureMatchStatus}
_HEADER = "id,xL,yL,xR,yR,score,X,Y,Z,depth,depth_sigma,error_left_px,error_right_px"
_FIELDS = [("id", "i8"), ("xyz", "f8", 3), ("left", "f8", 2), ("right", "f8", 2), ("score", "f8"), ("depth", "f8")]
_FIELDS += [("depth_sigma", "f8"), ("depth_sigma_calibration", "f8"), ("error", "f8", 2), ("gray", "u1")]


class Cloud:
    """The points that `Rig.match` found, and what became of the pixels that it looked for.

    Attributes
    ----------
    xyz : array of shape (n, 3)
        Points found, in the frame of the plate of view 0, in `unit`.
    left, right : array of shape (n, 2)
        Their raw pixels.
    score : array of shape (n,)
        Correlation of the two windows.
    error : array of shape (n, 2)
        Pixels from both pixels to the projections of the point.
    depth, depth_sigma : array of shape (n,)
        Along the left camera's axis, and the standard deviation to expect of it by the noise of the images.
    depth_sigma_calibration : array of shape (n,), or None
        What the calibration adds, shared by neighbours; None without its covariance.
    calibration_cov : array of shape (n, 3, 3), or None
        Covariance of the points by the calibration, likewise.
    id : array of shape (n,)
        Number of the pixel among those that were looked for, from 1.
    pixels, status : array of shape (m, 2) and (m,)
        All that were looked for, and "ok", "outside", "no_texture", "no_match", "ambiguous" or "inconsistent". A dense
        result leaves out "outside" and "no_texture".
    options : ZelmMeasureMatchOptions
        How it was looked for: limits of depth, noise and so on.
    """

    def __init__(
        self,
        rig: "Rig",
        image: np.ndarray,
        pixels: np.ndarray,
        ids: np.ndarray,
        record: Any,
        options: ZelmMeasureMatchOptions,
        calibration: Optional[Any],
    ) -> None:
        self.unit = rig.unit
        self.options = options
        options.progress = None
        self.pixels = pixels
        self._ids = ids
        self._codes = record.statuses
        self._shape = image.shape
        self._found = found = record.statuses == ZelmMeasureMatchStatus.OK
        self.id, self.left, self.right = ids[found], pixels[found], record.pixels[found]
        self.xyz, self.score, self.error = record.positions[found], record.scores[found], record.errors[found]
        self.depth, self.depth_sigma = record.depths[found], record.deviations[found]
        self.depth_sigma_calibration = None if calibration is None else calibration.depths[:, 1]
        self.calibration_cov = None if calibration is None else squareOf(calibration.calibration)
        self.gray = _grayAt(image, self.left)

    @property
    def status(self) -> np.ndarray:
        return namesOf(MATCH_WORDS, self._codes)

    @property
    def counts(self) -> Dict[str, int]:
        """How many pixels came to each status."""
        numbers = np.bincount(self._codes, minlength=len(MATCH_WORDS))
        return {word: int(numbers[status]) for status, word in MATCH_WORDS.items()}

    def __len__(self) -> int:
        return len(self.xyz)

    def __repr__(self) -> str:
        told = f", depth {self.depth.min():.6g} to {self.depth.max():.6g} {self.unit}" if len(self) else ""
        return f"<Cloud of {len(self)} points of {len(self._codes)} pixels{told}>"

    def to_numpy(self) -> np.ndarray:
        """A structured array of the points found; what is not known is NaN."""
        table = np.empty(len(self), _FIELDS)
        for name in table.dtype.names or ():
            value = getattr(self, name)
            table[name] = np.nan if value is None else value
        return table

    def depth_map(self) -> np.ndarray:
        """Depths at the pixels of the left image, shape (height, width); NaN where there is none.

        A pixel list that falls between pixel centres is put to the nearest ones.
        """
        depths = np.full(self._shape, np.nan)
        column, row = np.floor(self.left + 0.5).astype(np.intp).T
        depths[row, column] = self.depth
        return depths

    def plot(self, image: Optional[np.ndarray] = None, ax: Any = None) -> Any:
        """Depths over the left image: see `zelm.plots`, which needs matplotlib."""
        from .plots import plot_cloud

        return plot_cloud(self, image, ax)

    def to_ply(self, path: PathLike, text: bool = False) -> Path:
        """Writes the points as a PLY cloud with gray levels and standard deviations of depths; `text`: not binary."""
        header = [
            f"ply\nformat {'ascii' if text else 'binary_little_endian'} 1.0\ncomment units {self.unit}\n",
            f"comment {len(self)} of {len(self._codes)} points; ",
            "depth_sigma: expected standard deviation of the depth\n",
            f"element vertex {len(self)}\nproperty float x\nproperty float y\nproperty float z\nproperty uchar red\n",
            "property uchar green\nproperty uchar blue\nproperty float depth_sigma\n",
            "" if self.depth_sigma_calibration is None else "property float depth_sigma_calibration\n",
            "end_header\n",
        ]
        vertices = self._textVertices() if text else self._vertices()
        return writeWhole(path, "".join(header).encode() + vertices)

    def _vertices(self) -> bytes:
        fields: List[Tuple[Any, ...]] = [("xyz", "<f4", 3), ("gray", "u1", 3), ("sigma", "<f4")]
        if self.depth_sigma_calibration is not None:
            fields.append(("calibration", "<f4"))
        rows = np.empty(len(self), fields)
        rows["xyz"], rows["gray"], rows["sigma"] = self.xyz, self.gray[:, None], self.depth_sigma
        if self.depth_sigma_calibration is not None:
            rows["calibration"] = _orMinusOne(self.depth_sigma_calibration)
        return rows.tobytes()

    def _textVertices(self) -> bytes:
        lines = []
        calibration = self.depth_sigma_calibration
        added = [""] * len(self) if calibration is None else [f" {s:.6g}" for s in _orMinusOne(calibration)]
        for (x, y, z), gray, sigma, more in zip(self.xyz, self.gray, self.depth_sigma, added):
            lines.append(f"{x:.9g} {y:.9g} {z:.9g} {gray} {gray} {gray} {sigma:.6g}{more}\n")
        return "".join(lines).encode()

    def to_csv(self, path: PathLike) -> Path:
        """Writes all pixels that were looked for, a line each, as `zelm match` does."""
        known = self.depth_sigma_calibration is not None
        lines = [_HEADER + (",depth_sigma_calibration" if known else "") + ",status\n"]
        fields = iter(zip(*self._foundFields(known)))
        nothing = ",,,,,,,,," + ("," if known else "")
        for number, (x, y), isFound, word in zip(self._ids, self.pixels, self._found, self.status):
            told = ",".join(next(fields)) if isFound else nothing
            lines.append(f"{number},{x:.10g},{y:.10g},{told},{word}\n")
        return writeWhole(path, "".join(lines).encode())

    def _foundFields(self, withCalibration: bool) -> List[List[str]]:
        x, y, z = self.xyz.T
        columns: List[Tuple[str, Any]] = [(".4f", self.right[:, 0]), (".4f", self.right[:, 1]), (".4f", self.score)]
        columns += [(".9g", numbers) for numbers in (x, y, z, self.depth)]
        columns += [(".3g", self.depth_sigma), (".6f", self.error[:, 0]), (".6f", self.error[:, 1])]
        if withCalibration:
            columns.append((".3g", self.depth_sigma_calibration))
        return [["" if n != n else format(n, form) for n in numbers.tolist()] for form, numbers in columns]


def _grayAt(image: np.ndarray, pixels: np.ndarray) -> np.ndarray:
    """Gray levels of the nearest pixels."""
    height, width = image.shape
    x = np.clip(pixels[:, 0] + 0.5, 0.0, width - 1.0).astype(np.intp)
    y = np.clip(pixels[:, 1] + 0.5, 0.0, height - 1.0).astype(np.intp)
    return image[y, x]


def _orMinusOne(values: np.ndarray) -> np.ndarray:
    return np.where(np.isnan(values), -1.0, values)
