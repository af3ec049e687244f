"""What `Rig.triangulate` returns."""

from typing import Any, Dict, List, Optional, Tuple

import numpy as np

from ._records import ZelmMeasurePointStatus

POINT_WORDS = {status: status.name.lower() for status in ZelmMeasurePointStatus}
_SQUARE = [0, 1, 2, 1, 3, 4, 2, 4, 5]  # xx, xy, xz, yy, yz, zz as rows and columns
MAX_DEVIATIONS = 6.0  # none in a million of noise's errors is larger
_ROUNDING = 0.2887  # pixels: standard deviation of a coordinate that is rounded to whole ones
_MAX_OF_UNKNOWN = 5.0  # pixels: of pixels that were pointed at by hand


def namesOf(words: Dict[Any, str], codes: np.ndarray) -> np.ndarray:
    """Statuses as words."""
    return np.array([words[status] for status in sorted(words)])[codes]


def squareOf(six: np.ndarray) -> np.ndarray:
    """Covariances, (n, 3, 3), of their six numbers."""
    return six[:, _SQUARE].reshape(-1, 3, 3)


def usualMaxError(noise: Optional[float]) -> float:
    """Pixels: what the rays of a true pair miss each other by at most."""
    return max(MAX_DEVIATIONS * _ROUNDING, MAX_DEVIATIONS * (noise or 0.0))


class Triangulation(Tuple[np.ndarray, np.ndarray]):
    """Points and their covariances: ``points, cov = rig.triangulate(left, right)``.

    Attributes
    ----------
    points : array of shape (n, 3)
        In the frame of the plate of view 0, NaN for a pair that gives no point.
    cov : array of shape (n, 3, 3)
        Covariances by the noise of the pixels and by the calibration together; NaN where they are not known.
    noise_cov, calibration_cov : array of shape (n, 3, 3)
        The two parts.
    status : array of n words
        "ok", "behind", "distortion", "parallel", "mismatch" or "outside".
    error : array of shape (n, 2)
        Pixels from the left and the right pixel to the projections of the point. A mismatch has them too.
    angle : array of shape (n,)
        Between the two rays, radians.
    max_error : float
        What makes a mismatch, pixels.
    """

    codes: np.ndarray
    error: np.ndarray
    angle: np.ndarray
    noise_cov: np.ndarray
    calibration_cov: np.ndarray
    max_error: float

    @classmethod
    def _of(cls, record: Any, covariances: Any, maxError: float) -> "Triangulation":
        good = record.statuses == ZelmMeasurePointStatus.OK
        points = record.positions
        if not good.all():
            points[~good] = np.nan
        image, calibration = (squareOf(_knownAlone(part, good)) for part in covariances)
        made = cls((points, image + calibration))
        made.codes, made.error, made.angle, made.max_error = record.statuses, record.errors, record.angles, maxError
        made.noise_cov, made.calibration_cov = image, calibration
        return made

    @property
    def points(self) -> np.ndarray:
        return self[0]

    @property
    def cov(self) -> np.ndarray:
        return self[1]

    @property
    def status(self) -> np.ndarray:
        return namesOf(POINT_WORDS, self.codes)

    @property
    def ok(self) -> np.ndarray:
        """Which pairs gave a point."""
        return self.codes == ZelmMeasurePointStatus.OK

    @property
    def miss(self) -> np.ndarray:
        """Pixels that the two rays miss each other by: the root sum of squares of both errors."""
        return np.hypot(self.error[:, 0], self.error[:, 1])

    def warnings(self, noise: Optional[float]) -> List[str]:
        """What speaks against the points, in words."""
        return [words for words in (self._failures(), self._mismatches(), self._misses(noise)) if words]

    def _failures(self) -> str:
        counts = np.bincount(self.codes, minlength=len(POINT_WORDS))
        if counts[0] == len(self.codes):
            return ""
        told = ", ".join(f"{counts[code]} {word}" for code, word in POINT_WORDS.items() if code and counts[code])
        return f"{len(self.codes) - counts[0]} of {len(self.codes)} pixel pairs gave no point: {told}"

    def _mismatches(self) -> str:
        missed = self.codes == ZelmMeasurePointStatus.MISMATCH
        if missed.sum() <= self.ok.sum():
            return ""
        middle = np.sort(self.miss[missed])[missed.sum() // 2]
        return (
            f"the rays of {missed.sum()} of {missed.sum() + self.ok.sum()} pixel pairs miss each other by more than "
            f"{self.max_error:.3g} px, by {middle:.3g} px in the median: either the pairs are wrong (columns or rows "
            "exchanged, pixels of undistorted images, of other images than those of these cameras), or this is not "
            "the calibration of these cameras, or no good one"
        )

    def _misses(self, noise: Optional[float]) -> str:
        miss = np.where(self.ok, self.miss, 0.0)
        limit = _MAX_OF_UNKNOWN if noise is None else MAX_DEVIATIONS * noise
        count = int((miss > limit).sum())
        if not count:
            return ""
        stated = "more than a pixel read by hand is wrong by" if noise is None else (
            f"more than noise of {noise:.2g} px explains, so that they are less well known than stated"
        )
        return (
            f"the rays of {count} of {self.ok.sum()} pixel pairs pass each other, by {miss.max():.3g} px at most (row "
            f"{int(miss.argmax())}): {stated}: correct the pairs (are columns or rows exchanged?), use the calibration "
            "of these cameras, or say with noise= how exact pixels are"
        )

    def __repr__(self) -> str:
        good = int(self.ok.sum())
        return f"<{good} points of {len(self.codes)} pixel pairs, RMS error {_rms(self.error[self.ok]):.3g} px>"


def _knownAlone(six: Optional[np.ndarray], good: np.ndarray) -> np.ndarray:
    if six is None:
        return np.full((len(good), 6), np.nan)
    if not good.all():
        six[~good] = np.nan
    return six


def _rms(values: np.ndarray) -> float:
    return float(np.sqrt((values**2).mean())) if values.size else float("nan")
