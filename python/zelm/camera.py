"""One camera that was calibrated alone."""

import json
from pathlib import Path
from typing import Any, Dict, Optional

import numpy as np

from ._outputs import PathLike, writeTogether, writeWhole
from .plate import Plate


class Camera:
    """What `zelm.calibrate` makes of the images of one camera; `summary` is the dict of `camera.json`.

    The pixels are those of `docs/conventions.md`: the middle of the first one is (0, 0).
    """

    def __init__(self, summary: Dict[str, Any], report: str) -> None:
        self.summary = summary
        self._report = report

    @classmethod
    def _from_folder(cls, folder: Path) -> "Camera":
        summary = json.loads((folder / "camera.json").read_text(encoding="utf-8"))
        return cls(summary, (folder / "report.html").read_text(encoding="utf-8"))

    @property
    def K(self) -> np.ndarray:
        """3 x 3: undistorted pixel = K (x, y, 1)."""
        return np.array(self.summary["camera"]["A"], dtype=float)

    @property
    def distortion(self) -> np.ndarray:
        """k1 and k2."""
        return np.array([self.summary["camera"]["k1"], self.summary["camera"]["k2"]])

    @property
    def size(self) -> "tuple[int, int]":
        """Width and height of the images."""
        return self.summary["camera"]["width"], self.summary["camera"]["height"]

    @property
    def poses(self) -> np.ndarray:
        """R and t of the plate of every view, (n, 3, 4): X_camera = R X_plate + t."""
        poses = self.summary["camera"]["poses"]
        return np.array([np.column_stack([pose["R"], pose["t"]]) for pose in poses], dtype=float)

    @property
    def model(self) -> str:
        """perspective, tilted or parallel."""
        return str(self.summary["camera"]["modelName"])

    @property
    def deviations(self) -> Dict[str, float]:
        """Standard deviations by the names of the parameters: fx, skew, fy, cx, cy, k1, k2."""
        return dict(self.summary["deviations"])

    @property
    def covariance(self) -> np.ndarray:
        """Of the parameters, in the order of `deviations`."""
        size = len(self.summary["covariance"]["parameters"])
        matrix = np.zeros((size, size))
        matrix[np.tril_indices(size)] = self.summary["covariance"]["lowerTriangle"]
        return matrix + np.tril(matrix, -1).T

    @property
    def verdict(self) -> str:
        """good, doubtful or refused."""
        return str(self.summary["verdict"]["status"])

    def save(self, path: PathLike) -> Path:
        """Writes `camera.json`, and the report beside it as an .html of the same name."""
        text = json.dumps(self.summary, indent=2, ensure_ascii=False) + "\n"
        pages = {path: text.encode(), Path(path).with_suffix(".html"): self._report.encode()}
        return writeTogether(pages)[0]

    def report(self, path: PathLike) -> Path:
        """Writes the report, a page for people."""
        return writeWhole(path, self._report.encode())

    def plot_residuals(self, ax: Any = None) -> Any:
        """Reprojection errors of each view: see `zelm.plots`, which needs matplotlib."""
        from . import plots

        return plots.plot_residuals(self.summary, ax)

    def plot_coverage(self, plate: Optional[Plate] = None, ax: Any = None) -> Any:
        """Where the dots of all views lie in the image."""
        from . import plots

        plate = plate or Plate._of(dict(self.summary["plate"]), "plate.json")
        return plots.plot_coverage({"camera": self}, plate, ax)

    def __repr__(self) -> str:
        camera = self.summary["camera"]
        rms = self.summary["reprojection"]["rms"]
        return (
            f"<zelm.Camera {camera['width']} x {camera['height']}, {camera['modelName']}, focal lengths "
            f"{camera['alpha']:.3f}, {camera['beta']:.3f} px, {len(camera['poses'])} views, reprojection RMS "
            f"{rms:.4f} px, {self.verdict}>"
        )
