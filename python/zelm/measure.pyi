"""Types of zelm.measure.

Written by tools/makeRecords.py from the call table and the C headers: change those, then run it.
"""

import ctypes
from typing import Any, List, NamedTuple, Optional, Sequence, Tuple, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

from ._errors import MeasurementWarning as MeasurementWarning
from ._errors import ZelmCancelledError as ZelmCancelledError
from ._errors import ZelmDataError as ZelmDataError
from ._errors import ZelmError as ZelmError
from ._errors import ZelmMemoryError as ZelmMemoryError
from ._errors import ZelmParamError as ZelmParamError
from ._handles import Zelm2ViewCalib as Zelm2ViewCalib
from ._handles import ZelmMeasureAdjustment as ZelmMeasureAdjustment
from ._handles import ZelmMeasurePlan as ZelmMeasurePlan
from ._handles import ZelmMeasureRig as ZelmMeasureRig
from ._records import *

_Numbers = Union[Sequence[float], NDArray[Any]]
_Image = NDArray[np.uint8]
_Camera = Union[str, int]

def library() -> ctypes.CDLL: ...

def zelmMeasureAdjustOpen(
    rig: ZelmMeasureRig,
    pattern: Union[Zelm2ViewPatternDesc, _Numbers],
    options: Optional[Union[ZelmMeasureAdjustOptions, _Numbers]] = None,
) -> ZelmMeasureAdjustment: ...

def zelmMeasureAdjustClose(
    adjustment: Optional[ZelmMeasureAdjustment] = None,
) -> None: ...

def zelmMeasureAdjustError(
    adjustment: ZelmMeasureAdjustment,
) -> Optional[str]: ...

def zelmMeasureAdjustSolve(
    adjustment: ZelmMeasureAdjustment,
) -> None: ...

def zelmMeasureAdjustRefine(
    adjustment: ZelmMeasureAdjustment,
    side: _Camera,
    view: int,
    image: _Image,
) -> ZelmMeasureRefined: ...

class zelmMeasureAdjustAddViewResult(NamedTuple):
    leftDots: int
    rightDots: int

def zelmMeasureAdjustAddView(
    adjustment: ZelmMeasureAdjustment,
    left: _Image,
    right: _Image,
) -> zelmMeasureAdjustAddViewResult: ...

def zelmMeasureAdjustSummary(
    adjustment: ZelmMeasureAdjustment,
) -> ZelmMeasureAdjustSummary: ...

def zelmMeasureAdjustView(
    adjustment: ZelmMeasureAdjustment,
    view: int,
) -> Optional[str]: ...

def zelmMeasureAdjustDots(
    adjustment: ZelmMeasureAdjustment,
    side: _Camera,
    view: int,
) -> ZelmMeasureAdjustedDots: ...

def zelmMeasureAdjustRig(
    adjustment: ZelmMeasureAdjustment,
) -> ZelmMeasureRig: ...

def zelmMeasureAdjustChecks(
    adjustment: ZelmMeasureAdjustment,
) -> NDArray[np.void]: ...

def zelmMeasureCompare(
    first: ZelmMeasureRig,
    second: ZelmMeasureRig,
    options: Optional[Union[ZelmMeasureCompareOptions, _Numbers]] = None,
) -> ZelmMeasureComparison: ...

def zelmMeasureCompareImage(
    first: ZelmMeasureRig,
    second: ZelmMeasureRig,
    side: _Camera,
    pixels: ArrayLike,
) -> NDArray[np.float64]: ...

def zelmMeasureSharpness(
    image: _Image,
    seeds: ArrayLike,
    polarity: int = 0,
) -> ZelmMeasureSharpness: ...

class zelmMeasureDiagnoseImageResult(NamedTuple):
    diagnosis: ZelmMeasureImageDiagnosis
    spots: ZelmMeasureSpots

def zelmMeasureDiagnoseImage(
    image: _Image,
    pattern: Union[Zelm2ViewPatternDesc, _Numbers],
    region: Optional[Union[ZelmRect, _Numbers]] = None,
) -> zelmMeasureDiagnoseImageResult: ...

def zelmMeasureImageCauseName(
    cause: int,
) -> Optional[str]: ...

def zelmMeasureFigures(
    distances: ArrayLike,
) -> ZelmMeasureFigures: ...

class zelmMeasureRigDotsResult(NamedTuple):
    dots: ZelmMeasureDots
    found: int

def zelmMeasureRigDots(
    rig: ZelmMeasureRig,
    pattern: Union[Zelm2ViewPatternDesc, _Numbers],
    side: _Camera,
    view: int,
) -> zelmMeasureRigDotsResult: ...

def zelmMeasureRigEpipolar(
    rig: ZelmMeasureRig,
    pattern: Union[Zelm2ViewPatternDesc, _Numbers],
    view: int,
) -> NDArray[np.float64]: ...

class zelmMeasurePlateDotsResult(NamedTuple):
    dots: ZelmMeasureDots
    found: int

def zelmMeasurePlateDots(
    image: _Image,
    pattern: Union[Zelm2ViewPatternDesc, _Numbers],
    region: Optional[Union[ZelmRect, _Numbers]] = None,
) -> zelmMeasurePlateDotsResult: ...

def zelmMeasurePlateTraits(
    image: _Image,
    pattern: Union[Zelm2ViewPatternDesc, _Numbers],
) -> ZelmMeasurePlateTraits: ...

class zelmMeasureDotCentresResult(NamedTuple):
    centres: NDArray[np.float64]
    statuses: NDArray[np.int32]

def zelmMeasureDotCentres(
    image: _Image,
    seeds: ArrayLike,
    polarity: int = 0,
) -> zelmMeasureDotCentresResult: ...

def zelmMeasureRefineDots(
    image: _Image,
    shapes: ArrayLike,
    neighbours: Optional[ArrayLike] = None,
    polarity: int = 0,
    dots: Optional[ZelmMeasureRefinedDots] = None,
) -> ZelmMeasureRefinedDots: ...

class zelmMeasureFeaturesResult(NamedTuple):
    results: List[ZelmMeasureFeatureResult]
    relationResults: List[ZelmMeasureRelationResult]

def zelmMeasureFeatures(
    points: Union[ZelmMeasureFeaturePoints, _Numbers],
    features: Union[Sequence[ZelmMeasureFeature], NDArray[np.void]],
    rig: Optional[ZelmMeasureRig] = None,
    relations: Optional[Union[Sequence[ZelmMeasureRelation], NDArray[np.void]]] = None,
) -> zelmMeasureFeaturesResult: ...

def zelmMeasureExport(
    rig: ZelmMeasureRig,
    options: Union[ZelmMeasureExportOptions, _Numbers],
    side: _Camera = 0,
) -> bytes: ...

def zelmMeasureExportLoss(
    rig: ZelmMeasureRig,
    options: Union[ZelmMeasureExportOptions, _Numbers],
) -> ZelmMeasureExportLoss: ...

class zelmMeasureImportResult(NamedTuple):
    rig: ZelmMeasureRig
    imported: ZelmMeasureImported

def zelmMeasureImport(
    options: Union[ZelmMeasureImportOptions, _Numbers],
    files: Sequence[bytes],
) -> zelmMeasureImportResult: ...

def zelmMeasureMatchDefaults(
    rig: Optional[ZelmMeasureRig] = None,
) -> ZelmMeasureMatchOptions: ...

def zelmMeasureNoise(
    image: _Image,
) -> float: ...

def zelmMeasureOverlap(
    rig: ZelmMeasureRig,
    pixels: ArrayLike,
    options: Optional[Union[ZelmMeasureMatchOptions, _Numbers]] = None,
) -> int: ...

def zelmMeasureMatch(
    rig: ZelmMeasureRig,
    left: _Image,
    right: _Image,
    pixels: ArrayLike,
    options: Optional[Union[ZelmMeasureMatchOptions, _Numbers]] = None,
    matches: Optional[ZelmMeasureMatches] = None,
) -> ZelmMeasureMatches: ...

def zelmMeasureMatchDense(
    rig: ZelmMeasureRig,
    left: _Image,
    right: _Image,
    options: Optional[Union[ZelmMeasureMatchOptions, _Numbers]] = None,
    matches: Optional[ZelmMeasureMatches] = None,
) -> ZelmMeasureMatches: ...

def zelmMeasureReadDots(
    calib: Zelm2ViewCalib,
    side: _Camera,
    view: int,
) -> ZelmMeasureDots: ...

class zelmMeasurePairImagesResult(NamedTuple):
    views: List[ZelmMeasurePairedView]
    causes: List[ZelmMeasureSetCause]
    pairing: ZelmMeasurePairing

def zelmMeasurePairImages(
    images: Union[ZelmMeasureImageSet, _Numbers],
) -> zelmMeasurePairImagesResult: ...

def zelmMeasurePitchRatio(
    calib: Zelm2ViewCalib,
    side: _Camera,
) -> ZelmMeasurePitchRatio: ...

def zelmMeasureProject(
    rig: ZelmMeasureRig,
    side: _Camera,
    points: ArrayLike,
) -> NDArray[np.float64]: ...

def zelmMeasureUndistort(
    rig: ZelmMeasureRig,
    side: _Camera,
    raw: ArrayLike,
) -> NDArray[np.float64]: ...

def zelmMeasureDistort(
    rig: ZelmMeasureRig,
    side: _Camera,
    undistorted: ArrayLike,
) -> NDArray[np.float64]: ...

def zelmMeasureEpipolarLines(
    rig: ZelmMeasureRig,
    side: _Camera,
    raw: ArrayLike,
) -> NDArray[np.float64]: ...

def zelmMeasureRigOpen(
    block: Union[bytes, bytearray, memoryview],
) -> ZelmMeasureRig: ...

def zelmMeasureRigOfCalib(
    calib: Zelm2ViewCalib,
) -> ZelmMeasureRig: ...

def zelmMeasureRigClose(
    rig: Optional[ZelmMeasureRig] = None,
) -> None: ...

def zelmMeasureRigError(
    rig: ZelmMeasureRig,
) -> Optional[str]: ...

def zelmMeasureRigCalib(
    rig: ZelmMeasureRig,
) -> Zelm2ViewCalib: ...

def zelmMeasureRigViews(
    rig: ZelmMeasureRig,
) -> int: ...

def zelmMeasureRigCamera(
    rig: ZelmMeasureRig,
    side: _Camera,
) -> ZelmMeasureCamera: ...

def zelmMeasureRigPose(
    rig: ZelmMeasureRig,
    side: _Camera,
    view: int,
) -> ZelmCameraExtrinsics: ...

def zelmMeasureRigFundamental(
    rig: ZelmMeasureRig,
) -> NDArray[np.float64]: ...

def zelmMeasureRigRelativePose(
    rig: ZelmMeasureRig,
) -> ZelmMeasureRelativePose: ...

def zelmMeasureRigTilt(
    rig: ZelmMeasureRig,
    side: _Camera,
) -> float: ...

class zelmMeasureRigCentreResult(NamedTuple):
    left: NDArray[np.float64]
    right: NDArray[np.float64]
    origin: int

def zelmMeasureRigCentre(
    rig: ZelmMeasureRig,
) -> zelmMeasureRigCentreResult: ...

def zelmMeasurePlanOpen(
    left: Union[ZelmMeasureCamera, _Numbers],
    right: Union[ZelmMeasureCamera, _Numbers],
    relative: Union[ZelmMeasureRelativePose, _Numbers],
    plate: Union[Zelm2ViewPatternDesc, _Numbers],
    options: Union[ZelmMeasurePlanOptions, _Numbers],
) -> ZelmMeasurePlan: ...

def zelmMeasurePlanOfRig(
    rig: ZelmMeasureRig,
    plate: Union[Zelm2ViewPatternDesc, _Numbers],
    options: Union[ZelmMeasurePlanOptions, _Numbers],
) -> ZelmMeasurePlan: ...

def zelmMeasurePlanClose(
    plan: Optional[ZelmMeasurePlan] = None,
) -> None: ...

def zelmMeasurePlanError(
    plan: ZelmMeasurePlan,
) -> Optional[str]: ...

def zelmMeasurePlanTake(
    plan: ZelmMeasurePlan,
    poses: Union[Sequence[ZelmCameraExtrinsics], NDArray[np.void]],
) -> None: ...

def zelmMeasurePlanNext(
    plan: ZelmMeasurePlan,
) -> ZelmMeasurePlanView: ...

def zelmMeasurePlanFewest(
    plan: ZelmMeasurePlan,
    tolerance: float,
    most: int,
) -> None: ...

def zelmMeasurePlanViews(
    plan: ZelmMeasurePlan,
) -> int: ...

def zelmMeasurePlanView(
    plan: ZelmMeasurePlan,
    index: int,
) -> ZelmMeasurePlanView: ...

def zelmMeasurePlanFigures(
    plan: ZelmMeasurePlan,
) -> ZelmMeasurePlanFigures: ...

def zelmMeasurePlateDesign(
    plate: Union[Zelm2ViewPatternDesc, _Numbers],
    cameras: Optional[Union[Sequence[ZelmMeasureCamera], NDArray[np.void]]] = None,
    nearest: float = 0,
    farthest: float = 0,
) -> NDArray[np.void]: ...

class zelmMeasurePlateExpandedResult(NamedTuple):
    expanded: Zelm2ViewPatternDesc
    expandedPlaces: NDArray[np.float64]
    factor: float

def zelmMeasurePlateExpanded(
    plate: Union[Zelm2ViewPatternDesc, _Numbers],
    expansion: float,
    difference: float,
    places: Optional[ArrayLike] = None,
) -> zelmMeasurePlateExpandedResult: ...

def zelmMeasurePointViews(
    points: Union[ZelmMeasureTargetPoints, _Numbers],
) -> NDArray[np.int32]: ...

def zelmMeasureAdjustOpenPoints(
    points: Union[ZelmMeasureTargetPoints, _Numbers],
    pattern: Optional[Union[Zelm2ViewPatternDesc, _Numbers]] = None,
    options: Optional[Union[ZelmMeasureAdjustOptions, _Numbers]] = None,
) -> ZelmMeasureAdjustment: ...

def zelmMeasureAdjustStartRig(
    adjustment: ZelmMeasureAdjustment,
) -> ZelmMeasureRig: ...

def zelmMeasureAdjustCamera(
    adjustment: ZelmMeasureAdjustment,
    side: _Camera,
) -> ZelmMeasureAdjustedCamera: ...

def zelmMeasureAdjustPose(
    adjustment: ZelmMeasureAdjustment,
    side: _Camera,
    view: int,
) -> ZelmCameraExtrinsics: ...

def zelmMeasureAdjustEpipolar(
    adjustment: ZelmMeasureAdjustment,
    view: int,
) -> NDArray[np.float64]: ...

def zelmMeasureTriangulate(
    rig: ZelmMeasureRig,
    left: ArrayLike,
    right: ArrayLike,
    points: Optional[ZelmMeasurePoints] = None,
) -> ZelmMeasurePoints: ...

class zelmMeasureTrueDepthsResult(NamedTuple):
    depths: NDArray[np.float64]
    seenByBoth: NDArray[np.int32]

def zelmMeasureTrueDepths(
    rig: ZelmMeasureRig,
    map: ArrayLike,
    unit: float,
    pixels: ArrayLike,
) -> zelmMeasureTrueDepthsResult: ...

def zelmMeasureAlignRows(
    rig: ZelmMeasureRig,
    options: Optional[Union[ZelmMeasureRowOptions, _Numbers]] = None,
) -> ZelmMeasureRows: ...

def zelmMeasureAlignRowsMap(
    rig: ZelmMeasureRig,
    side: _Camera,
    options: Optional[Union[ZelmMeasureRowOptions, _Numbers]] = None,
) -> NDArray[np.float32]: ...

def zelmMeasureAlignRowsPoints(
    rig: ZelmMeasureRig,
    side: _Camera,
    raw: ArrayLike,
    options: Optional[Union[ZelmMeasureRowOptions, _Numbers]] = None,
) -> NDArray[np.float64]: ...

def zelmMeasureCircles(
    rig: ZelmMeasureRig,
    left: _Image,
    right: _Image,
    leftSeeds: ArrayLike,
    rightSeeds: ArrayLike,
    polarity: int = 0,
    targets: Optional[ZelmMeasureTargets] = None,
) -> ZelmMeasureTargets: ...

def zelmMeasureRigCovariance(
    rig: ZelmMeasureRig,
) -> ZelmMeasureCovariance: ...

def zelmMeasureRigSetCovariance(
    rig: ZelmMeasureRig,
    covariance: Optional[Union[ZelmMeasureCovariance, _Numbers]],
) -> None: ...

def zelmMeasurePointCovariance(
    rig: ZelmMeasureRig,
    left: ArrayLike,
    right: ArrayLike,
    noise: Optional[Union[ZelmMeasurePixelNoise, _Numbers]] = None,
    covariances: Optional[ZelmMeasurePointCovariances] = None,
) -> ZelmMeasurePointCovariances: ...

def zelmMeasureLengths(
    rig: ZelmMeasureRig,
    left: ArrayLike,
    right: ArrayLike,
    ends: ArrayLike,
    noise: Optional[Union[ZelmMeasurePixelNoise, _Numbers]] = None,
    lengths: Optional[ZelmMeasureLengths] = None,
) -> ZelmMeasureLengths: ...

def zelmMeasureCovarianceSize(
    rig: ZelmMeasureRig,
) -> int: ...

def zelmMeasureCovarianceSave(
    rig: ZelmMeasureRig,
) -> bytes: ...

def zelmMeasureCovarianceLoad(
    rig: ZelmMeasureRig,
    bytes: Union[bytes, bytearray, memoryview],
) -> None: ...

class zelmMeasureRefinePlateResult(NamedTuple):
    left: NDArray[np.float64]
    right: NDArray[np.float64]
    statuses: NDArray[np.int32]

def zelmMeasureRefinePlate(
    rig: ZelmMeasureRig,
    pattern: Union[Zelm2ViewPatternDesc, _Numbers],
    leftImage: _Image,
    rightImage: _Image,
    grid: ArrayLike,
    left: NDArray[np.float64],
    right: NDArray[np.float64],
) -> zelmMeasureRefinePlateResult: ...

class zelmMeasurePlatePointsResult(NamedTuple):
    points: ZelmMeasurePlatePoints
    fit: ZelmMeasurePlateFit

def zelmMeasurePlatePoints(
    rig: ZelmMeasureRig,
    pattern: Union[Zelm2ViewPatternDesc, _Numbers],
    grid: ArrayLike,
    left: ArrayLike,
    right: ArrayLike,
    points: Optional[ZelmMeasurePlatePoints] = None,
) -> zelmMeasurePlatePointsResult: ...

class zelmMeasurePlateLengthsResult(NamedTuple):
    ends: NDArray[np.int64]
    nominal: NDArray[np.float64]

def zelmMeasurePlateLengths(
    pattern: Union[Zelm2ViewPatternDesc, _Numbers],
    grid: ArrayLike,
) -> zelmMeasurePlateLengthsResult: ...

class zelmMeasureLengthErrorsResult(NamedTuple):
    lengths: ZelmMeasureLengthErrors
    summary: ZelmMeasureLengthSummary

def zelmMeasureLengthErrors(
    rig: ZelmMeasureRig,
    positions: ArrayLike,
    ends: ArrayLike,
    nominal: ArrayLike,
    lengths: Optional[ZelmMeasureLengthErrors] = None,
) -> zelmMeasureLengthErrorsResult: ...

class zelmMeasureDriftResult(NamedTuple):
    statuses: NDArray[np.int32]
    drift: ZelmMeasureDrift

def zelmMeasureDrift(
    rig: ZelmMeasureRig,
    left: ArrayLike,
    right: ArrayLike,
    options: Optional[Union[ZelmMeasureDriftOptions, _Numbers]] = None,
) -> zelmMeasureDriftResult: ...
