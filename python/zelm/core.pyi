"""Types of zelm.core.

Written by tools/makeRecords.py from the call table and the C headers: change those, then run it.
"""

import ctypes
from typing import Any, List, NamedTuple, Optional, Sequence, Tuple, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

from ._errors import ZelmError as ZelmError
from ._errors import ZelmMemoryError as ZelmMemoryError
from ._errors import ZelmParamError as ZelmParamError
from ._handles import Zelm2ViewCalib as Zelm2ViewCalib
from ._handles import ZelmMatrix as ZelmMatrix
from ._handles import ZelmVector as ZelmVector
from ._records import *

_Numbers = Union[Sequence[float], NDArray[Any]]
_Image = NDArray[np.uint8]
_Camera = Union[str, int]

def library() -> ctypes.CDLL: ...

def zelmBinOtsuThresholdHistogram(
    uaHistogram: ArrayLike,
) -> int: ...

def zelmBinOtsuThresholdImage(
    tImage: _Image,
    tRegion: Optional[Union[ZelmRect, _Numbers]] = None,
) -> int: ...

def zelmBinOtsuThresholdGray(
    daValues: ArrayLike,
) -> int: ...

def zelmBinBinaryImage(
    tSrc: _Image,
    iThreshold: int,
    tRegion: Optional[Union[ZelmRect, _Numbers]] = None,
    tDst: Optional[_Image] = None,
) -> _Image: ...

def zelmBinDilation(
    tSrc: _Image,
    iThreshold: int,
    tRegion: Optional[Union[ZelmRect, _Numbers]] = None,
    iIterations: int = 1,
    tDst: Optional[_Image] = None,
) -> _Image: ...

def zelmBinErosion(
    tSrc: _Image,
    iThreshold: int,
    tRegion: Optional[Union[ZelmRect, _Numbers]] = None,
    iIterations: int = 1,
    tDst: Optional[_Image] = None,
) -> _Image: ...

def zelmBinOpening(
    tSrc: _Image,
    iThreshold: int,
    tRegion: Optional[Union[ZelmRect, _Numbers]] = None,
    iIterations: int = 1,
    tDst: Optional[_Image] = None,
) -> _Image: ...

def zelmBinClosing(
    tSrc: _Image,
    iThreshold: int,
    tRegion: Optional[Union[ZelmRect, _Numbers]] = None,
    iIterations: int = 1,
    tDst: Optional[_Image] = None,
) -> _Image: ...

def zelmBinBlob(
    tImage: _Image,
    iThreshold: int,
    tRegion: Optional[Union[ZelmRect, _Numbers]] = None,
    iPolarity: int = 1,
    iClearEdge: int = 0,
    iMinArea: int = 1,
) -> NDArray[np.void]: ...

def zelmBinFree(
    taBlobs: Optional[None] = None,
) -> None: ...

class zelmCalibNormalizeDataResult(NamedTuple):
    daDst: NDArray[np.float64]
    daT: NDArray[np.float64]
    daTinv: NDArray[np.float64]

def zelmCalibNormalizeData(
    daSrc: ArrayLike,
) -> zelmCalibNormalizeDataResult: ...

def zelmCalibCalcHomography(
    taSrc: ArrayLike,
    taDst: ArrayLike,
    dRobustK: float = 0,
) -> NDArray[np.float64]: ...

def zelmCalibCameraMatrix(
    daA: ArrayLike,
    tExt: Union[ZelmCameraExtrinsics, _Numbers],
    iModel: int = 0,
) -> NDArray[np.float64]: ...

def zelmCalibChange3Dto2D(
    tX: Union[Point3d, _Numbers],
    tCam: Union[ZelmCameraIntrinsics, _Numbers],
    tExt: Union[ZelmCameraExtrinsics, _Numbers],
    iModel: int = 0,
) -> Point2d: ...

class zelmCalibDistortPointResult(NamedTuple):
    dXd: float
    dYd: float

def zelmCalibDistortPoint(
    tCam: Union[ZelmCameraIntrinsics, _Numbers],
    dX: float,
    dY: float,
) -> zelmCalibDistortPointResult: ...

class zelmCalibUnDistortPointResult(NamedTuple):
    dX: float
    dY: float

def zelmCalibUnDistortPoint(
    tCam: Union[ZelmCameraIntrinsics, _Numbers],
    dXd: float,
    dYd: float,
) -> zelmCalibUnDistortPointResult: ...

def zelmCalibRodrigues(
    iDirection: int,
    daRvec: Optional[ArrayLike] = None,
    daRmat: Optional[ArrayLike] = None,
) -> NDArray[np.float64]: ...

class zelmCalibCameraParamResult(NamedTuple):
    tIntrinsics: ZelmCameraIntrinsics
    taExtrinsics: NDArray[np.void]
    dError: float

def zelmCalibCameraParam(
    taViews: Sequence[Tuple[ArrayLike, ArrayLike]],
    dRobustThreshold: float = 0,
    tIntrinsics: Optional[ZelmCameraIntrinsics] = None,
    iModel: int = 0,
) -> zelmCalibCameraParamResult: ...

def zelmCgSortByArgument(
    taPoints: ArrayLike,
) -> NDArray[np.float64]: ...

def zelmCgConvexHull(
    taPoints: ArrayLike,
) -> NDArray[np.float64]: ...

class zelmCgSmallestEnclosingCircleResult(NamedTuple):
    tCentre: Point2d
    dRadius: float

def zelmCgSmallestEnclosingCircle(
    taPoints: ArrayLike,
) -> zelmCgSmallestEnclosingCircleResult: ...

class zelmCgIntersectionOfTwoSegmentsResult(NamedTuple):
    iKind: int
    tPoint: Point2d

def zelmCgIntersectionOfTwoSegments(
    tA1: Union[Point2d, _Numbers],
    tA2: Union[Point2d, _Numbers],
    tB1: Union[Point2d, _Numbers],
    tB2: Union[Point2d, _Numbers],
) -> zelmCgIntersectionOfTwoSegmentsResult: ...

def zelmCgPointInConvexPolygon(
    taPolygon: ArrayLike,
    tP: Union[Point2d, _Numbers],
) -> int: ...

def zelmCgIntersectionLineAndConvexPolygon(
    taPolygon: ArrayLike,
    tLine: Union[Line2d, _Numbers],
) -> NDArray[np.float64]: ...

def zelmCgIntersectionSegmentAndConvexPolygon(
    taPolygon: ArrayLike,
    tS1: Union[Point2d, _Numbers],
    tS2: Union[Point2d, _Numbers],
) -> NDArray[np.float64]: ...

def zelmClp2dDistanceTwoPoints(
    tP1: Union[Point2d, _Numbers],
    tP2: Union[Point2d, _Numbers],
) -> float: ...

def zelmClp2dCenterTwoPoints(
    tP1: Union[Point2d, _Numbers],
    tP2: Union[Point2d, _Numbers],
) -> Point2d: ...

def zelmClp2dLineTwoPoints(
    tP1: Union[Point2d, _Numbers],
    tP2: Union[Point2d, _Numbers],
) -> Line2d: ...

def zelmClp2dMidperpendicularTwoPoints(
    tP1: Union[Point2d, _Numbers],
    tP2: Union[Point2d, _Numbers],
) -> Line2d: ...

def zelmClp2dVerticalLinePointAndLine(
    tP: Union[Point2d, _Numbers],
    tLine: Union[Line2d, _Numbers],
) -> Line2d: ...

def zelmClp2dLinePointAndSlope(
    tP: Union[Point2d, _Numbers],
    dAngle: float,
) -> Line2d: ...

def zelmClp2dIntersectionTwoLines(
    tLine1: Union[Line2d, _Numbers],
    tLine2: Union[Line2d, _Numbers],
) -> Point2d: ...

def zelmClp2dAngleTwoLines(
    tLine1: Union[Line2d, _Numbers],
    tLine2: Union[Line2d, _Numbers],
) -> float: ...

def zelmClp2dCenterLineOfTwoLines(
    tLine1: Union[Line2d, _Numbers],
    tLine2: Union[Line2d, _Numbers],
) -> Line2d: ...

def zelmClp2dDistancePointToLine(
    tP: Union[Point2d, _Numbers],
    tLine: Union[Line2d, _Numbers],
) -> float: ...

def zelmClp2dFootOfPerpendicularToLine(
    tP: Union[Point2d, _Numbers],
    tLine: Union[Line2d, _Numbers],
) -> Point2d: ...

def zelmClp2dTranslationOfLine(
    tLine: Union[Line2d, _Numbers],
    tShift: Union[Point2d, _Numbers],
) -> Line2d: ...

def zelmClp2dAreaTriangle(
    tP1: Union[Point2d, _Numbers],
    tP2: Union[Point2d, _Numbers],
    tP3: Union[Point2d, _Numbers],
) -> float: ...

def zelmClp2dSignAreaTriangle(
    tP1: Union[Point2d, _Numbers],
    tP2: Union[Point2d, _Numbers],
    tP3: Union[Point2d, _Numbers],
) -> float: ...

def zelmClp2dCircleThreePoints(
    tP1: Union[Point2d, _Numbers],
    tP2: Union[Point2d, _Numbers],
    tP3: Union[Point2d, _Numbers],
) -> Circle2d: ...

def zelmClp2dCircleTwoPoints(
    tP1: Union[Point2d, _Numbers],
    tP2: Union[Point2d, _Numbers],
) -> Circle2d: ...

class zelmClp2dIntersectionLineAndCircleResult(NamedTuple):
    tQ1: Point2d
    tQ2: Point2d

def zelmClp2dIntersectionLineAndCircle(
    tLine: Union[Line2d, _Numbers],
    tCircle: Union[Circle2d, _Numbers],
) -> zelmClp2dIntersectionLineAndCircleResult: ...

class zelmClp2dTangentPointToCircleResult(NamedTuple):
    tLine1: Line2d
    tPoint1: Point2d
    tLine2: Line2d
    tPoint2: Point2d

def zelmClp2dTangentPointToCircle(
    tP: Union[Point2d, _Numbers],
    tCircle: Union[Circle2d, _Numbers],
) -> zelmClp2dTangentPointToCircleResult: ...

class zelmClp2dClosestToCircleResult(NamedTuple):
    tPoint: Point2d
    dDistance: float

def zelmClp2dClosestToCircle(
    tP: Union[Point2d, _Numbers],
    tCircle: Union[Circle2d, _Numbers],
) -> zelmClp2dClosestToCircleResult: ...

def zelmClp3dDistanceTwoPoints(
    tP1: Union[Point3d, _Numbers],
    tP2: Union[Point3d, _Numbers],
) -> float: ...

def zelmClp3dCenterTwoPoints(
    tP1: Union[Point3d, _Numbers],
    tP2: Union[Point3d, _Numbers],
) -> Point3d: ...

def zelmClp3dLineTwoPoints(
    tP1: Union[Point3d, _Numbers],
    tP2: Union[Point3d, _Numbers],
) -> Line3d: ...

def zelmClp3dFootOfPerpendicularToLine(
    tP: Union[Point3d, _Numbers],
    tLine: Union[Line3d, _Numbers],
) -> Point3d: ...

def zelmClp3dVerticalLinePointAndLine(
    tP: Union[Point3d, _Numbers],
    tLine: Union[Line3d, _Numbers],
) -> Line3d: ...

def zelmClp3dDistancePointToLine(
    tP: Union[Point3d, _Numbers],
    tLine: Union[Line3d, _Numbers],
) -> float: ...

def zelmClp3dDistanceTwoLines(
    tLine1: Union[Line3d, _Numbers],
    tLine2: Union[Line3d, _Numbers],
) -> float: ...

def zelmClp3dPlaneThreePoints(
    tP1: Union[Point3d, _Numbers],
    tP2: Union[Point3d, _Numbers],
    tP3: Union[Point3d, _Numbers],
) -> Plane3d: ...

def zelmClp3dVerticalPlanePointAndVector(
    tP: Union[Point3d, _Numbers],
    tVector: Union[Point3d, _Numbers],
) -> Plane3d: ...

def zelmClp3dVerticalLinePointAndPlane(
    tP: Union[Point3d, _Numbers],
    tPlane: Union[Plane3d, _Numbers],
) -> Line3d: ...

def zelmClp3dDistancePointToPlane(
    tP: Union[Point3d, _Numbers],
    tPlane: Union[Plane3d, _Numbers],
) -> float: ...

def zelmClp3dIntersectionLineAndPlane(
    tLine: Union[Line3d, _Numbers],
    tPlane: Union[Plane3d, _Numbers],
) -> Point3d: ...

def zelmClp3dFootOfPerpendicularToPlane(
    tP: Union[Point3d, _Numbers],
    tPlane: Union[Plane3d, _Numbers],
) -> Point3d: ...

def zelmClp3dAngleLineAndPlane(
    tLine: Union[Line3d, _Numbers],
    tPlane: Union[Plane3d, _Numbers],
) -> float: ...

def zelmClp3dIntersectionTwoPlanes(
    tPlane1: Union[Plane3d, _Numbers],
    tPlane2: Union[Plane3d, _Numbers],
) -> Line3d: ...

def zelmClp3dAngleTwoPlanes(
    tPlane1: Union[Plane3d, _Numbers],
    tPlane2: Union[Plane3d, _Numbers],
) -> float: ...

def zelmMiscChangeRectToRect2(
    tRect: Union[ZelmRect, _Numbers],
) -> ZelmRect2: ...

def zelmMiscChangeRect2ToRect(
    tRect2: Union[ZelmRect2, _Numbers],
) -> ZelmRect: ...

def zelmMiscBilinearGrayLevel(
    tImage: _Image,
    dX: float,
    dY: float,
) -> float: ...

def zelmMiscPlotPointsOfLine(
    tP0: Union[Point2i, _Numbers],
    tP1: Union[Point2i, _Numbers],
) -> NDArray[np.int32]: ...

def zelm2ViewCalibOpen(
    iViews: int,
    tPattern: Union[Zelm2ViewPatternDesc, _Numbers],
    tCameras: Union[Zelm2ViewCameraDesc, _Numbers],
) -> Zelm2ViewCalib: ...

def zelm2ViewGetCalibDataSize(
    tHandle: Zelm2ViewCalib,
) -> int: ...

def zelm2ViewSaveCalibData(
    tHandle: Zelm2ViewCalib,
) -> bytes: ...

def zelm2ViewLoadCalibData(
    ucBuffer: Union[bytes, bytearray, memoryview],
) -> Zelm2ViewCalib: ...

def zelm2ViewCalibClose(
    tHandle: Optional[Zelm2ViewCalib],
) -> None: ...

def zelm2ViewGetCamHomMat(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
) -> NDArray[np.float64]: ...

def zelm2ViewGetCamFndMat(
    tHandle: Zelm2ViewCalib,
) -> NDArray[np.float64]: ...

def zelm2ViewGetCamIntParam(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
) -> ZelmCameraIntrinsics: ...

def zelm2ViewGetCamExtParam(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    iView: int,
) -> ZelmCameraExtrinsics: ...

def zelm2ViewGetPtnNum(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    iView: int,
) -> int: ...

def zelm2ViewGetPattern(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    iView: int,
) -> NDArray[np.float64]: ...

def zelm2ViewReadPtnImg(
    tHandle: Zelm2ViewCalib,
    iView: int,
    ucaImages: Tuple[Optional[_Image], Optional[_Image]],
    tRegionLeft: Optional[Union[ZelmRect, _Numbers]] = None,
    tRegionRight: Optional[Union[ZelmRect, _Numbers]] = None,
) -> None: ...

def zelm2ViewReadPtnImg_vImagePlanar8(
    tHandle: Zelm2ViewCalib,
    iView: int,
    tLeft: Optional[_Image],
    tRight: Optional[_Image],
    tRegionLeft: Optional[Union[ZelmRect, _Numbers]] = None,
    tRegionRight: Optional[Union[ZelmRect, _Numbers]] = None,
) -> None: ...

def zelm2ViewReadPtnImg_vImageARGB8888(
    tHandle: Zelm2ViewCalib,
    iView: int,
    tLeft: Optional[_Image],
    tRight: Optional[_Image],
    tRegionLeft: Optional[Union[ZelmRect, _Numbers]] = None,
    tRegionRight: Optional[Union[ZelmRect, _Numbers]] = None,
) -> None: ...

def zelm2ViewCalibCameraParam(
    tHandle: Zelm2ViewCalib,
) -> Zelm2ViewCalibResult: ...

def zelm2ViewChange2Dto3D(
    tHandle: Zelm2ViewCalib,
    tLeft: Union[Point2d, _Numbers],
    tRight: Union[Point2d, _Numbers],
) -> Point3d: ...

def zelm2ViewChange3Dto2D(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    tIn: Union[Point3d, _Numbers],
) -> Point2d: ...

def zelm2ViewCalcEpiLine(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    tPoint: Union[Point2d, _Numbers],
) -> Zelm2ViewEpiLine: ...

def zelm2ViewChangeHomEpiLine(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    tParams: Union[Zelm2ViewHomParam, _Numbers],
    daLine: ArrayLike,
) -> Zelm2ViewEpiLine: ...

def zelm2ViewMakeHomImage(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    ucSrc: _Image,
    tParams: Union[Zelm2ViewHomParam, _Numbers],
) -> _Image: ...

def zelm2ViewMakeHomImage_vImageARGB8888(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    tSrc: _Image,
    tParams: Union[Zelm2ViewHomParam, _Numbers],
) -> _Image: ...

def zelm2ViewCalcHomImgPoint(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    tIn: Union[Point2d, _Numbers],
    tParams: Union[Zelm2ViewHomParam, _Numbers],
) -> Point2d: ...

def zelm2ViewInvHomImgPoint(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    tIn: Union[Point2d, _Numbers],
    tParams: Union[Zelm2ViewHomParam, _Numbers],
) -> Point2d: ...

def zelm2ViewUnDistortImage(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    ucSrc: _Image,
) -> _Image: ...

def zelm2ViewUnDistortImage_vImageARGB8888(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    tSrc: _Image,
) -> _Image: ...

def zelm2ViewDistortPoint(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    tIn: Union[Point2d, _Numbers],
) -> Point2d: ...

def zelm2ViewUnDistortPoint(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    tIn: Union[Point2d, _Numbers],
) -> Point2d: ...

class zelmCstmDrovnCalcMagnificationResult(NamedTuple):
    dOutL: float
    dOutR: float

def zelmCstmDrovnCalcMagnification(
    tHandle: Zelm2ViewCalib,
    dLengthA: float,
    dLengthB: float,
) -> zelmCstmDrovnCalcMagnificationResult: ...

class zelmCstmDrovnCalcHomImgMemSizeResult(NamedTuple):
    iWidth: int
    iHeight: int
    tCentre: Point2d

def zelmCstmDrovnCalcHomImgMemSize(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    tRoi: Union[ZelmRect, _Numbers],
    tExpPrm: Union[ZelmCstmExpPrm, _Numbers],
    dD: float = 0,
) -> zelmCstmDrovnCalcHomImgMemSizeResult: ...

def zelmCstmDrovnChangeOrg2DtoExp2D(
    tExpPrm: Union[ZelmCstmExpPrm, _Numbers],
    tIn: Union[Point2d, _Numbers],
) -> Point2d: ...

def zelmCstmDrovnChangeOrg2DtoHom2D(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    tHomPrm: Union[ZelmCstmExpPrm, _Numbers],
    tIn: Union[Point2d, _Numbers],
) -> Point2d: ...

def zelmCstmDrovnChangeOrg2DtoHom2DExp(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    tHomPrm: Union[ZelmCstmExpPrm, _Numbers],
    tExpPrm: Union[ZelmCstmExpPrm, _Numbers],
    tIn: Union[Point2d, _Numbers],
) -> Point2d: ...

def zelmCstmDrovnInvHomImgPointExp(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    tIn: Union[Point2d, _Numbers],
    tHomPrm: Union[ZelmCstmExpPrm, _Numbers],
    tExpPrm: Union[ZelmCstmExpPrm, _Numbers],
) -> Point2d: ...

def zelmCstmDrovnChangeHomEpiLineExp(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    tHomPrm: Union[ZelmCstmExpPrm, _Numbers],
    tExpPrm: Union[ZelmCstmExpPrm, _Numbers],
    tLine: Union[Line2d, _Numbers],
) -> Zelm2ViewEpiLine: ...

def zelmCstmDrovnMakeHomImageExp(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    ucSrc: _Image,
    tHomPrm: Union[ZelmCstmExpPrm, _Numbers],
    tExpPrm: Union[ZelmCstmExpPrm, _Numbers],
) -> _Image: ...

def zelmCstmDrovnMakeHomImageExp_vImagePlanar8(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    tSrc: _Image,
    tHomPrm: Union[ZelmCstmExpPrm, _Numbers],
    tExpPrm: Union[ZelmCstmExpPrm, _Numbers],
) -> _Image: ...

def zelmCstmDrovnMakeHomImageExp_vImageARGB8888(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    tSrc: _Image,
    tHomPrm: Union[ZelmCstmExpPrm, _Numbers],
    tExpPrm: Union[ZelmCstmExpPrm, _Numbers],
) -> _Image: ...

def zelmCstmDrovnMakeHomImageMap(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    tHomPrm: Union[ZelmCstmExpPrm, _Numbers],
    tExpPrm: Union[ZelmCstmExpPrm, _Numbers],
    tMap: Optional[ZelmCstmHomMap] = None,
) -> ZelmCstmHomMap: ...

def zelmCstmDrovnRemapImage(
    tMap: Union[ZelmCstmHomMap, _Numbers],
    ucSrc: _Image,
    ucDst: Optional[_Image] = None,
) -> _Image: ...

def zelmCstmDrovnRemapImage_vImagePlanar8(
    tMap: Union[ZelmCstmHomMap, _Numbers],
    tSrc: _Image,
    tDst: Optional[_Image] = None,
) -> _Image: ...

def zelmCstmDrovnRemapImage_vImageARGB8888(
    tMap: Union[ZelmCstmHomMap, _Numbers],
    tSrc: _Image,
    tDst: Optional[_Image] = None,
) -> _Image: ...

def zelmCstmDrovnExpandImage(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    ucSrc: _Image,
    tExpPrm: Union[ZelmCstmExpPrm, _Numbers],
) -> _Image: ...

def zelmCstmDrovnExpandImage_vImagePlanar8(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    tSrc: _Image,
    tExpPrm: Union[ZelmCstmExpPrm, _Numbers],
) -> _Image: ...

def zelmCstmDrovnExpandImage_vImageARGB8888(
    tHandle: Zelm2ViewCalib,
    iCamera: _Camera,
    tSrc: _Image,
    tExpPrm: Union[ZelmCstmExpPrm, _Numbers],
) -> _Image: ...

def zelmCstmDrovnGetPixelOnEpiLine(
    tRect: Union[ZelmRect, _Numbers],
    tLine: Union[Line2d, _Numbers],
) -> NDArray[np.int32]: ...

def zelmCstmDrovnCalcBasicStatisticsOfRefImg(
    tRef: ZelmCstmRefImg,
) -> ZelmCstmRefImg: ...

def zelmCstmDrovnCalcBasicStatisticsOfRefImg_vImagePlanar8(
    tImage: _Image,
    tMask: Optional[_Image] = None,
    tRef: Optional[ZelmCstmRefImg] = None,
) -> ZelmCstmRefImg: ...

def zelmCstmDrovnSearchOnEpiLine(
    tRef: Union[ZelmCstmRefImg, _Numbers],
    tPrm: Union[ZelmCstmSearchPrm, _Numbers],
) -> NDArray[np.void]: ...

def zelmCstmDrovnSearchOnEpiLine_vImagePlanar8(
    tRef: Union[ZelmCstmRefImg, _Numbers],
    tRefImage: _Image,
    tPrm: Union[ZelmCstmSearchPrm, _Numbers],
    tImage: _Image,
    tRefMask: Optional[_Image] = None,
    tMask: Optional[_Image] = None,
) -> NDArray[np.void]: ...

class zelmEdge1dDiffMaxResult(NamedTuple):
    iFound: int
    tEdgePoint: Point2d
    dStrength: float

def zelmEdge1dDiffMax(
    tImage: _Image,
    tP1: Union[Point2d, _Numbers],
    tP2: Union[Point2d, _Numbers],
    iSign: int = 0,
) -> zelmEdge1dDiffMaxResult: ...

class zelmEdge1dGenDiffMaxResult(NamedTuple):
    iFound: int
    tEdgePoint: Point2d
    dStrength: float

def zelmEdge1dGenDiffMax(
    tImage: _Image,
    tP1: Union[Point2d, _Numbers],
    tP2: Union[Point2d, _Numbers],
    iSign: int = 0,
) -> zelmEdge1dGenDiffMaxResult: ...

class zelmEdge1dGenNearestResult(NamedTuple):
    iFound: int
    tEdgePoint: Point2d
    dStrength: float

def zelmEdge1dGenNearest(
    tImage: _Image,
    tP1: Union[Point2d, _Numbers],
    tP2: Union[Point2d, _Numbers],
    iSign: int = 0,
) -> zelmEdge1dGenNearestResult: ...

class zelmEdge1dGenGradMaxResult(NamedTuple):
    iFound: int
    tEdgePoint: Point2d
    dStrength: float

def zelmEdge1dGenGradMax(
    tImage: _Image,
    tP1: Union[Point2d, _Numbers],
    tP2: Union[Point2d, _Numbers],
    iSign: int = 0,
) -> zelmEdge1dGenGradMaxResult: ...

class zelmEdge1dGenNearestCResult(NamedTuple):
    iFound: int
    tEdgePoint: Point2d
    dStrength: float

def zelmEdge1dGenNearestC(
    tImage: _Image,
    tP1: Union[Point2d, _Numbers],
    tP2: Union[Point2d, _Numbers],
    iSign: int = 0,
) -> zelmEdge1dGenNearestCResult: ...

class zelmEdge1dManualResult(NamedTuple):
    iFound: int
    tEdgePoint: Point2d
    dStrength: float

def zelmEdge1dManual(
    tImage: _Image,
    tP1: Union[Point2d, _Numbers],
    tP2: Union[Point2d, _Numbers],
    iSign: int,
    tParam: Union[ZelmEdge1dParam, _Numbers],
) -> zelmEdge1dManualResult: ...

def zelmFitMean1dim(
    daPoints: ArrayLike,
    iRobust: int = 0,
    dThreshold: float = 3.5,
) -> float: ...

def zelmFitMean2dim(
    taPoints: ArrayLike,
    iRobust: int = 0,
    dThreshold: float = 3.5,
) -> Point2d: ...

def zelmFitMean3dim(
    taPoints: ArrayLike,
    iRobust: int = 0,
    dThreshold: float = 3.5,
) -> Point3d: ...

def zelmFitLine(
    taPoints: ArrayLike,
    iRobust: int = 0,
    dThreshold: float = 3.5,
) -> Line2d: ...

def zelmFitLineIn3d(
    taPoints: ArrayLike,
    iRobust: int = 0,
    dThreshold: float = 3.5,
) -> NDArray[np.float64]: ...

def zelmFitPlane(
    taPoints: ArrayLike,
    iRobust: int = 0,
    dThreshold: float = 3.5,
) -> NDArray[np.float64]: ...

def zelmFitEllipse(
    taPoints: ArrayLike,
    iRobust: int = 0,
    dThreshold: float = 3.5,
) -> Ellipse2d: ...

def zelmFitEllipseC(
    taPoints: ArrayLike,
    iRobust: int = 0,
    dThreshold: float = 3.5,
) -> NDArray[np.float64]: ...

def zelmFitConics(
    taPoints: ArrayLike,
    iRobust: int = 0,
    dThreshold: float = 3.5,
) -> NDArray[np.float64]: ...

def zelmFitCircle(
    taPoints: ArrayLike,
    iRobust: int = 0,
    dThreshold: float = 3.5,
) -> Circle2d: ...

def zelmFitEllipsoid(
    taPoints: ArrayLike,
    iRobust: int = 0,
    dThreshold: float = 3.5,
) -> Ellipsoid3d: ...

def zelmFitCone(
    taPoints: ArrayLike,
    iRobust: int = 0,
    dThreshold: float = 3.5,
) -> NDArray[np.float64]: ...

def zelmConvertColorToGray_vImageARGB8888toPlanar8(
    tSrc: _Image,
) -> _Image: ...

def perspectiveTransAndDistortImage_8uC1(
    daHom: ArrayLike,
    daCamera: Union[ZelmCameraIntrinsics, _Numbers],
    ucSrc: _Image,
    iDstWidth: int,
    iDstHeight: int,
) -> _Image: ...

def perspectiveTransAndDistortImage_8uC4(
    daHom: ArrayLike,
    daCamera: Union[ZelmCameraIntrinsics, _Numbers],
    ucSrc: _Image,
    iDstWidth: int,
    iDstHeight: int,
) -> _Image: ...

def remapImage_8uC1(
    ucSrc: _Image,
    faMapX: ArrayLike,
    faMapY: ArrayLike,
    ucDst: Optional[_Image] = None,
    iX0: int = 0,
    iY0: int = 0,
    iX1: Optional[int] = None,
    iY1: Optional[int] = None,
) -> _Image: ...

def remapImage_8uC4(
    ucSrc: _Image,
    faMapX: ArrayLike,
    faMapY: ArrayLike,
    ucDst: Optional[_Image] = None,
    iX0: int = 0,
    iY0: int = 0,
    iX1: Optional[int] = None,
    iY1: Optional[int] = None,
) -> _Image: ...

def zelmMatMallocVector(
    iN: int,
) -> ZelmVector: ...

def zelmMatFreeVector(
    daV: Optional[ZelmVector],
) -> None: ...

def zelmMatMallocMatrix(
    iRows: int,
    iCols: int,
) -> ZelmMatrix: ...

def zelmMatFreeMatrix(
    daM: Optional[ZelmMatrix],
) -> None: ...

def zelmMatZero(
    iRows: int,
    iCols: int,
) -> NDArray[np.float64]: ...

def zelmMatDiagonal(
    dValue: float,
    iN: int,
) -> NDArray[np.float64]: ...

def zelmMatCopy(
    daSrc: ArrayLike,
) -> NDArray[np.float64]: ...

def zelmMatAdd(
    daA: ArrayLike,
    daB: ArrayLike,
) -> NDArray[np.float64]: ...

def zelmMatSub(
    daA: ArrayLike,
    daB: ArrayLike,
) -> NDArray[np.float64]: ...

def zelmMatMulScalar(
    dS: float,
    daA: ArrayLike,
) -> NDArray[np.float64]: ...

def zelmMatTranspose(
    daA: ArrayLike,
) -> NDArray[np.float64]: ...

def zelmMatTrace(
    daA: ArrayLike,
) -> float: ...

def zelmMatMul(
    daA: ArrayLike,
    daB: ArrayLike,
) -> NDArray[np.float64]: ...

def zelmMatGenMul(
    dAlpha: float,
    daA: ArrayLike,
    daB: ArrayLike,
    dBeta: float,
    daC: ArrayLike,
) -> NDArray[np.float64]: ...

def zelmMatMulTransposed(
    iFlag: int,
    daA: ArrayLike,
) -> NDArray[np.float64]: ...

def zelmMatMulTransposed2(
    iFlag: int,
    daA: ArrayLike,
    daB: ArrayLike,
) -> NDArray[np.float64]: ...

def zelmMatInvert(
    daA: ArrayLike,
) -> NDArray[np.float64]: ...

def zelmMatSolveLU(
    daA: ArrayLike,
    daB: ArrayLike,
) -> NDArray[np.float64]: ...

def zelmMatCholeskyDecomp(
    daA: ArrayLike,
) -> NDArray[np.float64]: ...

class zelmMatSVDResult(NamedTuple):
    daU: NDArray[np.float64]
    daW: NDArray[np.float64]
    daV: NDArray[np.float64]

def zelmMatSVD(
    daA: ArrayLike,
) -> zelmMatSVDResult: ...

def zelmMatSolveSVD(
    daA: ArrayLike,
    daB: ArrayLike,
) -> NDArray[np.float64]: ...

class zelmMatJacobiEigenResult(NamedTuple):
    daValues: NDArray[np.float64]
    daVectors: NDArray[np.float64]

def zelmMatJacobiEigen(
    daA: ArrayLike,
) -> zelmMatJacobiEigenResult: ...

def zelmMatchBasic(
    taRef: ArrayLike,
    taModel: ArrayLike,
    tModelPose: Optional[Union[ZelmMatchPose, _Numbers]] = None,
    iMode: int = 0,
    dThreshold: float = 4,
) -> ZelmMatchPose: ...

class zelmMatchPointsResult(NamedTuple):
    taMoved: NDArray[np.float64]
    daDistance: NDArray[np.float64]

def zelmMatchPoints(
    taRef: ArrayLike,
    taModel: ArrayLike,
    tModelPose: Union[ZelmMatchPose, _Numbers],
    tResult: Union[ZelmMatchPose, _Numbers],
) -> zelmMatchPointsResult: ...

class zelmMatchDeltaResult(NamedTuple):
    dDx: float
    dDy: float
    dAngle: float
    dScale: float

def zelmMatchDelta(
    tA: Union[ZelmMatchPose, _Numbers],
    tB: Union[ZelmMatchPose, _Numbers],
) -> zelmMatchDeltaResult: ...

def zelmMathCalcInnerProduct(
    daU: ArrayLike,
    daV: ArrayLike,
) -> float: ...

def zelmMathCalcOuterProduct(
    daU: ArrayLike,
    daV: ArrayLike,
) -> NDArray[np.float64]: ...

def zelmMathCalcNorm(
    daV: ArrayLike,
) -> float: ...

def zelmMathCalcArgument(
    tP: Union[Point2d, _Numbers],
) -> float: ...

def zelmMathNormalization(
    daV: NDArray[np.float64],
) -> NDArray[np.float64]: ...

def zelmMathCalcAngle(
    daU: ArrayLike,
    daV: ArrayLike,
) -> float: ...

class zelmMathStatResult(NamedTuple):
    dMean: float
    dVariance: float
    dDeviation: float

def zelmMathStat(
    daData: ArrayLike,
) -> zelmMathStatResult: ...

def zelmMathAreaTriangle(
    dX1: float,
    dY1: float,
    dX2: float,
    dY2: float,
    dX3: float,
    dY3: float,
) -> float: ...

def zelmMathSignAreaTriangle(
    dX1: float,
    dY1: float,
    dX2: float,
    dY2: float,
    dX3: float,
    dY3: float,
) -> float: ...

def zelmMathInvMatrixOfSyn3X3(
    daM: ArrayLike,
) -> NDArray[np.float64]: ...

class zelmMathRotatePointResult(NamedTuple):
    dXOut: float
    dYOut: float

def zelmMathRotatePoint(
    dCx: float,
    dCy: float,
    dTheta: float,
    dX: float,
    dY: float,
) -> zelmMathRotatePointResult: ...

class zelmMathCreateTransParamResult(NamedTuple):
    dOx: float
    dOy: float
    dTheta: float

def zelmMathCreateTransParam(
    iMode: int,
    dX1: float,
    dY1: float,
    dX2: float,
    dY2: float,
) -> zelmMathCreateTransParamResult: ...

class zelmMathTransCoordOfPointResult(NamedTuple):
    dXOut: float
    dYOut: float

def zelmMathTransCoordOfPoint(
    dOx: float,
    dOy: float,
    dTheta: float,
    dX: float,
    dY: float,
) -> zelmMathTransCoordOfPointResult: ...

class zelmMathTransCoordResult(NamedTuple):
    dXOut: float
    dYOut: float

def zelmMathTransCoord(
    dOx: float,
    dOy: float,
    dTheta: float,
    dX: float,
    dY: float,
) -> zelmMathTransCoordResult: ...

class zelmMathInvTransCoordOfPointResult(NamedTuple):
    dXOut: float
    dYOut: float

def zelmMathInvTransCoordOfPoint(
    dOx: float,
    dOy: float,
    dTheta: float,
    dX: float,
    dY: float,
) -> zelmMathInvTransCoordOfPointResult: ...

class zelmMathInvCoordResult(NamedTuple):
    dOxOut: float
    dOyOut: float
    dThetaOut: float

def zelmMathInvCoord(
    dOx: float,
    dOy: float,
    dTheta: float,
) -> zelmMathInvCoordResult: ...

class zelmMathComposeCoordResult(NamedTuple):
    dOx: float
    dOy: float
    dTheta: float

def zelmMathComposeCoord(
    dOx1: float,
    dOy1: float,
    dTheta1: float,
    dOx2: float,
    dOy2: float,
    dTheta2: float,
) -> zelmMathComposeCoordResult: ...

def zelmMathAddAngle(
    iFull: int,
    iDegrees: int,
    dA: float,
    dB: float,
) -> float: ...

def zelmMathPrimeAngle(
    iFull: int,
    iDegrees: int,
    dA: float,
) -> float: ...

def zelmMathCheckAngle(
    dA: float,
    dB: float,
    dTolerance: float,
) -> int: ...

def zelmMathCrossAngle(
    dA1: float,
    dB1: float,
    dC1: float,
    dA2: float,
    dB2: float,
    dC2: float,
) -> float: ...

def zelmMathGetDistFromPointToPoint(
    dX1: float,
    dY1: float,
    dX2: float,
    dY2: float,
) -> float: ...

def zelmMathGetDistFromPointToLine(
    dA: float,
    dB: float,
    dC: float,
    dX: float,
    dY: float,
) -> float: ...

class zelmMathGetDistAndCrossPointFromPointToLineResult(NamedTuple):
    dDistance: float
    dFx: float
    dFy: float

def zelmMathGetDistAndCrossPointFromPointToLine(
    dA: float,
    dB: float,
    dC: float,
    dX: float,
    dY: float,
) -> zelmMathGetDistAndCrossPointFromPointToLineResult: ...

class zelmMathCrossPointResult(NamedTuple):
    dX: float
    dY: float

def zelmMathCrossPoint(
    dA1: float,
    dB1: float,
    dC1: float,
    dA2: float,
    dB2: float,
    dC2: float,
) -> zelmMathCrossPointResult: ...

class zelmMathGetLineFrom2PointsResult(NamedTuple):
    dA: float
    dB: float
    dC: float

def zelmMathGetLineFrom2Points(
    dX1: float,
    dY1: float,
    dX2: float,
    dY2: float,
) -> zelmMathGetLineFrom2PointsResult: ...

class zelmMathGetOrthogonalLineFromLineAndPointResult(NamedTuple):
    dAOut: float
    dBOut: float
    dCOut: float

def zelmMathGetOrthogonalLineFromLineAndPoint(
    dA: float,
    dB: float,
    dC: float,
    dX: float,
    dY: float,
) -> zelmMathGetOrthogonalLineFromLineAndPointResult: ...

class zelmMathTransAbcToRqResult(NamedTuple):
    dR: float
    dQ: float

def zelmMathTransAbcToRq(
    dA: float,
    dB: float,
    dC: float,
) -> zelmMathTransAbcToRqResult: ...

class zelmMathGetDistFromPointToCircleResult(NamedTuple):
    dDistance: float
    dPx: float
    dPy: float

def zelmMathGetDistFromPointToCircle(
    dCx: float,
    dCy: float,
    dR: float,
    dX: float,
    dY: float,
) -> zelmMathGetDistFromPointToCircleResult: ...

class zelmMathExtremumOfQuadraticCurvesResult(NamedTuple):
    dValue: float
    dX: float

def zelmMathExtremumOfQuadraticCurves(
    dA: float,
    dB: float,
    dC: float,
) -> zelmMathExtremumOfQuadraticCurvesResult: ...

class zelmMathExtremumOfQuadraticSurfaceResult(NamedTuple):
    dValue: float
    dX: float
    dY: float

def zelmMathExtremumOfQuadraticSurface(
    dA: float,
    dB: float,
    dC: float,
    dD: float,
    dE: float,
    dF: float,
) -> zelmMathExtremumOfQuadraticSurfaceResult: ...

def zelmMathCrossCorrelation(
    daU: ArrayLike,
    daV: ArrayLike,
) -> float: ...

def zelmMathNormCorrelation(
    daU: ArrayLike,
    daV: ArrayLike,
) -> float: ...

def zelmMathAutoCorrelation(
    daData: ArrayLike,
    iM: int,
) -> NDArray[np.float64]: ...

def zelmMathNormAutoCorrelation(
    daData: ArrayLike,
    iM: int,
) -> NDArray[np.float64]: ...

class zelmMathSearchOf1DWithNormCorrelationResult(NamedTuple):
    iIndex: int
    dScore: float

def zelmMathSearchOf1DWithNormCorrelation(
    daSignal: ArrayLike,
    daTemplate: ArrayLike,
) -> zelmMathSearchOf1DWithNormCorrelationResult: ...

def zelmMathOtsuThreshold1d(
    daData: ArrayLike,
) -> float: ...

def zelmMathQuadraticRoots(
    daCoef: ArrayLike,
) -> NDArray[np.float64]: ...

def zelmMathCubicRoots(
    daCoef: ArrayLike,
) -> NDArray[np.float64]: ...

def zelmMathQuarticRoots(
    daCoef: ArrayLike,
) -> NDArray[np.float64]: ...

class zelmMathGetDistFromPointToEllipseResult(NamedTuple):
    dX: float
    dY: float
    dDistance: float

def zelmMathGetDistFromPointToEllipse(
    dCx: float,
    dCy: float,
    dA: float,
    dB: float,
    dTheta: float,
    dPx: float,
    dPy: float,
) -> zelmMathGetDistFromPointToEllipseResult: ...
