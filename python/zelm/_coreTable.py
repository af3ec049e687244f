"""How each function of the core is called from Python: one entry a function, in the order of the headers.

An entry reads ``arguments -> results | preconditions``. Names are those of the C prototype, and each of its names
appears exactly once:

``daA:f8[iM,iN]``     an array of doubles (``f8``), floats (``f4``), int32 (``i4``), uint32 (``u4``) or bytes (``u1``).
                      A dimension that is a name is taken from the first array that has it, demanded of all others, and
                      passed where the prototype has an argument of that name; other dimensions are expressions
``dX:float iK:int``   scalars; ``iCamera:camera`` takes 'L' and 'R' too
``tP:Point2d``        a record, or its numbers; ``taV:ZelmBlob[iN]`` an array of records
``tI:image[h,w]``     a gray image, uint8 (height, width); ``planar`` and ``argb`` are platform buffers of one
                      and of four bytes a pixel
``tHandle:Class``     a handle; with ``!`` the call changes the object, so no other call may use it meanwhile
``iA=expression``     an argument that follows from others
``name:type?``        may be None
``name:type!``        is read and written in place
``name:type=value``   has a default: a number, or an expression that is evaluated when nothing is given
``name:type~``        a result that is not always written: NaN then
``name:type^``        a result that is written on failure too: the error has it in ``partial``; NaN where it is not
``name:type[:iN]``    a result of which only the first iN entries are given; ``return`` is the function's own result
``name=return``       the function's own result is one of the results; a count of steps is not
``custom``            ahead of the entry: the function is written in _coreSpecial.py, the entry describes it

In Python arguments with defaults come after those without, otherwise the order is that of the prototype.
"""

TABLE = {
    # bin.h
    "zelmBinOtsuThresholdHistogram": "uaHistogram:u4[iBins] -> iThreshold=return",
    "zelmBinOtsuThresholdImage": """tImage:image[h,w] tRegion:ZelmRect=whole(tImage) -> iThreshold=return
        | inside(tRegion, tImage)""",
    "zelmBinOtsuThresholdGray": "daValues:f8[iCount] -> iThreshold=return",
    "zelmBinBinaryImage": """tSrc:image[h,w] tRegion:ZelmRect=whole(tSrc) iThreshold:int tDst:image[h2,w2]!=like(tSrc)
        -> tDst | inside(tRegion, tSrc), inside(tRegion, tDst)""",
    "zelmBinDilation": """tSrc:image[h,w] tRegion:ZelmRect=whole(tSrc) iThreshold:int iIterations:int=1
        tDst:image[h2,w2]!=like(tSrc) -> tDst | inside(tRegion, tSrc), inside(tRegion, tDst), apart(tSrc, tDst)""",
    "zelmBinErosion": """tSrc:image[h,w] tRegion:ZelmRect=whole(tSrc) iThreshold:int iIterations:int=1
        tDst:image[h2,w2]!=like(tSrc) -> tDst | inside(tRegion, tSrc), inside(tRegion, tDst), apart(tSrc, tDst)""",
    "zelmBinOpening": """tSrc:image[h,w] tRegion:ZelmRect=whole(tSrc) iThreshold:int iIterations:int=1
        tDst:image[h2,w2]!=like(tSrc) -> tDst | inside(tRegion, tSrc), inside(tRegion, tDst)""",
    "zelmBinClosing": """tSrc:image[h,w] tRegion:ZelmRect=whole(tSrc) iThreshold:int iIterations:int=1
        tDst:image[h2,w2]!=like(tSrc) -> tDst | inside(tRegion, tSrc), inside(tRegion, tDst)""",
    "zelmBinBlob": """custom tImage:image[h,w] tRegion:ZelmRect?=None iThreshold:int iPolarity:int=1 iClearEdge:int=0
        iMinArea:int=1 -> taBlobs:ZelmBlob[iCount]""",
    "zelmBinFree": "custom taBlobs:object?=None ->",
    # calib.h
    "zelmCalibNormalizeData": """daSrc:f8[iN,iDim]
        -> daDst:f8[iN,iDim] daT:f8[iDim+1,iDim+1] daTinv:f8[iDim+1,iDim+1]""",
    "zelmCalibCalcHomography": "taSrc:f8[iN,2] taDst:f8[iN,2] dRobustK:float=0 -> daH:f8[3,3]",
    "zelmCalibCameraMatrix": "daA:f8[3,3] tExt:ZelmCameraExtrinsics iModel:int=0 -> daP:f8[3,4]",
    "zelmCalibChange3Dto2D": """tX:Point3d tCam:ZelmCameraIntrinsics tExt:ZelmCameraExtrinsics iModel:int=0
        -> tP:Point2d""",
    "zelmCalibDistortPoint": "tCam:ZelmCameraIntrinsics dX:float dY:float -> dXd:float dYd:float",
    "zelmCalibUnDistortPoint": "tCam:ZelmCameraIntrinsics dXd:float dYd:float -> dX:float^ dY:float^",
    "zelmCalibRodrigues": "custom iDirection:int daRvec:f8[3]?=None daRmat:f8[3,3]?=None -> daOut:f8",
    "zelmCalibCameraParam": """taViews:views[iViews] dRobustThreshold:float=0
        tIntrinsics:ZelmCameraIntrinsics!=ZelmCameraIntrinsics() iModel:int=0
        -> tIntrinsics taExtrinsics:ZelmCameraExtrinsics[iViews] dError:float""",
    # cg.h
    "zelmCgSortByArgument": "taPoints:f8[iN,2] -> taSorted:f8[iN,2]",
    "zelmCgConvexHull": "taPoints:f8[iN,2] -> taHull:f8[iN,2][:iCount]",
    "zelmCgSmallestEnclosingCircle": "taPoints:f8[iN,2] -> tCentre:Point2d dRadius:float",
    "zelmCgIntersectionOfTwoSegments": """tA1:Point2d tA2:Point2d tB1:Point2d tB2:Point2d
        -> iKind:int tPoint:Point2d~""",
    "zelmCgPointInConvexPolygon": "taPolygon:f8[iN,2] tP:Point2d -> iResult:int",
    "zelmCgIntersectionLineAndConvexPolygon": "taPolygon:f8[iN,2] tLine:Line2d -> taPoints:f8[2,2][:return]",
    "zelmCgIntersectionSegmentAndConvexPolygon": """taPolygon:f8[iN,2] tS1:Point2d tS2:Point2d
        -> taPoints:f8[2,2][:return]""",
    # clp2d.h
    "zelmClp2dDistanceTwoPoints": "tP1:Point2d tP2:Point2d -> dDistance:float",
    "zelmClp2dCenterTwoPoints": "tP1:Point2d tP2:Point2d -> tCenter:Point2d",
    "zelmClp2dLineTwoPoints": "tP1:Point2d tP2:Point2d -> tLine:Line2d",
    "zelmClp2dMidperpendicularTwoPoints": "tP1:Point2d tP2:Point2d -> tLine:Line2d",
    "zelmClp2dVerticalLinePointAndLine": "tP:Point2d tLine:Line2d -> tOut:Line2d",
    "zelmClp2dLinePointAndSlope": "tP:Point2d dAngle:float -> tLine:Line2d",
    "zelmClp2dIntersectionTwoLines": "tLine1:Line2d tLine2:Line2d -> tPoint:Point2d",
    "zelmClp2dAngleTwoLines": "tLine1:Line2d tLine2:Line2d -> dAngle:float",
    "zelmClp2dCenterLineOfTwoLines": "tLine1:Line2d tLine2:Line2d -> tOut:Line2d",
    "zelmClp2dDistancePointToLine": "tP:Point2d tLine:Line2d -> dDistance:float",
    "zelmClp2dFootOfPerpendicularToLine": "tP:Point2d tLine:Line2d -> tFoot:Point2d",
    "zelmClp2dTranslationOfLine": "tLine:Line2d tShift:Point2d -> tOut:Line2d",
    "zelmClp2dAreaTriangle": "tP1:Point2d tP2:Point2d tP3:Point2d -> dArea:float",
    "zelmClp2dSignAreaTriangle": "tP1:Point2d tP2:Point2d tP3:Point2d -> dArea:float",
    "zelmClp2dCircleThreePoints": "tP1:Point2d tP2:Point2d tP3:Point2d -> tCircle:Circle2d",
    "zelmClp2dCircleTwoPoints": "tP1:Point2d tP2:Point2d -> tCircle:Circle2d",
    "zelmClp2dIntersectionLineAndCircle": "tLine:Line2d tCircle:Circle2d -> tQ1:Point2d tQ2:Point2d",
    "zelmClp2dTangentPointToCircle": """tP:Point2d tCircle:Circle2d
        -> tLine1:Line2d tPoint1:Point2d tLine2:Line2d tPoint2:Point2d""",
    "zelmClp2dClosestToCircle": "tP:Point2d tCircle:Circle2d -> tPoint:Point2d dDistance:float",
    # clp3d.h
    "zelmClp3dDistanceTwoPoints": "tP1:Point3d tP2:Point3d -> dDistance:float",
    "zelmClp3dCenterTwoPoints": "tP1:Point3d tP2:Point3d -> tCenter:Point3d",
    "zelmClp3dLineTwoPoints": "tP1:Point3d tP2:Point3d -> tLine:Line3d",
    "zelmClp3dFootOfPerpendicularToLine": "tP:Point3d tLine:Line3d -> tFoot:Point3d",
    "zelmClp3dVerticalLinePointAndLine": "tP:Point3d tLine:Line3d -> tOut:Line3d",
    "zelmClp3dDistancePointToLine": "tP:Point3d tLine:Line3d -> dDistance:float",
    "zelmClp3dDistanceTwoLines": "tLine1:Line3d tLine2:Line3d -> dDistance:float",
    "zelmClp3dPlaneThreePoints": "tP1:Point3d tP2:Point3d tP3:Point3d -> tPlane:Plane3d",
    "zelmClp3dVerticalPlanePointAndVector": "tP:Point3d tVector:Point3d -> tPlane:Plane3d",
    "zelmClp3dVerticalLinePointAndPlane": "tP:Point3d tPlane:Plane3d -> tLine:Line3d",
    "zelmClp3dDistancePointToPlane": "tP:Point3d tPlane:Plane3d -> dDistance:float",
    "zelmClp3dIntersectionLineAndPlane": "tLine:Line3d tPlane:Plane3d -> tPoint:Point3d",
    "zelmClp3dFootOfPerpendicularToPlane": "tP:Point3d tPlane:Plane3d -> tFoot:Point3d",
    "zelmClp3dAngleLineAndPlane": "tLine:Line3d tPlane:Plane3d -> dAngle:float",
    "zelmClp3dIntersectionTwoPlanes": "tPlane1:Plane3d tPlane2:Plane3d -> tLine:Line3d",
    "zelmClp3dAngleTwoPlanes": "tPlane1:Plane3d tPlane2:Plane3d -> dAngle:float",
    # misc.h
    "zelmMiscChangeRectToRect2": "tRect:ZelmRect -> tRect2:ZelmRect2",
    "zelmMiscChangeRect2ToRect": "tRect2:ZelmRect2 -> tRect:ZelmRect",
    "zelmMiscBilinearGrayLevel": "tImage:image[h,w] dX:float dY:float -> dLevel=return",
    "zelmMiscPlotPointsOfLine": "tP0:Point2i tP1:Point2i -> taPoints:i4[pixelsOfLine(tP0, tP1),2][:return]",
    # twoView.h
    "zelm2ViewCalibOpen": """custom iViews:int tPattern:Zelm2ViewPatternDesc tCameras:Zelm2ViewCameraDesc
        -> tHandle:Zelm2ViewCalib""",
    "zelm2ViewGetCalibDataSize": "tHandle:Zelm2ViewCalib -> iSize=return",
    "zelm2ViewSaveCalibData": "custom tHandle:Zelm2ViewCalib -> ucBuffer:bytes",
    "zelm2ViewLoadCalibData": "custom ucBuffer:bytes -> tHandle:Zelm2ViewCalib",
    "zelm2ViewCalibClose": "custom tHandle:Zelm2ViewCalib? ->",
    "zelm2ViewGetCamHomMat": "tHandle:Zelm2ViewCalib iCamera:camera -> daOut:f8[2,3,3]",
    "zelm2ViewGetCamFndMat": "tHandle:Zelm2ViewCalib -> daOut:f8[2,3,3]",
    "zelm2ViewGetCamIntParam": "tHandle:Zelm2ViewCalib iCamera:camera -> tOut:ZelmCameraIntrinsics",
    "zelm2ViewGetCamExtParam": "tHandle:Zelm2ViewCalib iCamera:camera iView:int -> tOut:ZelmCameraExtrinsics",
    "zelm2ViewGetPtnNum": "tHandle:Zelm2ViewCalib iCamera:camera iView:int -> iCount:int",
    "zelm2ViewGetPattern": """tHandle:Zelm2ViewCalib iCamera:camera iView:int
        -> taOut:f8[dots(tHandle, iCamera, iView),2]""",
    "zelm2ViewReadPtnImg": """custom tHandle:Zelm2ViewCalib! iView:int ucaImages:images tRegionLeft:ZelmRect?=None
        tRegionRight:ZelmRect?=None ->""",
    "zelm2ViewReadPtnImg_vImagePlanar8": """tHandle:Zelm2ViewCalib! iView:int tLeft:planar[h,w]? tRight:planar[h2,w2]?
        tRegionLeft:ZelmRect?=None tRegionRight:ZelmRect?=None ->""",
    "zelm2ViewReadPtnImg_vImageARGB8888": """tHandle:Zelm2ViewCalib! iView:int tLeft:argb[h,w]? tRight:argb[h2,w2]?
        tRegionLeft:ZelmRect?=None tRegionRight:ZelmRect?=None ->""",
    "zelm2ViewCalibCameraParam": "tHandle:Zelm2ViewCalib! -> tResult:Zelm2ViewCalibResult^",
    # twoViewGeometry.h
    "zelm2ViewChange2Dto3D": "tHandle:Zelm2ViewCalib tLeft:Point2d tRight:Point2d -> tOut:Point3d",
    "zelm2ViewChange3Dto2D": "tHandle:Zelm2ViewCalib iCamera:camera tIn:Point3d -> tOut:Point2d",
    "zelm2ViewCalcEpiLine": "tHandle:Zelm2ViewCalib iCamera:camera tPoint:Point2d -> tOut:Zelm2ViewEpiLine",
    "zelm2ViewChangeHomEpiLine": """tHandle:Zelm2ViewCalib iCamera:camera tParams:Zelm2ViewHomParam daLine:f8[3]
        -> tOut:Zelm2ViewEpiLine""",
    "zelm2ViewMakeHomImage": """tHandle:Zelm2ViewCalib iCamera:camera
        ucSrc:u1[height(tHandle, iCamera),width(tHandle, iCamera)] tParams:Zelm2ViewHomParam
        -> ucDst:u1[height(tHandle, iCamera),width(tHandle, iCamera)]""",
    "zelm2ViewMakeHomImage_vImageARGB8888": """tHandle:Zelm2ViewCalib iCamera:camera tSrc:argb[h,w]
        tParams:Zelm2ViewHomParam -> tDst:argb[height(tHandle, iCamera),width(tHandle, iCamera)]""",
    "zelm2ViewCalcHomImgPoint": """tHandle:Zelm2ViewCalib iCamera:camera tIn:Point2d tParams:Zelm2ViewHomParam
        -> tOut:Point2d""",
    "zelm2ViewInvHomImgPoint": """tHandle:Zelm2ViewCalib iCamera:camera tIn:Point2d tParams:Zelm2ViewHomParam
        -> tOut:Point2d""",
    "zelm2ViewUnDistortImage": """tHandle:Zelm2ViewCalib iCamera:camera
        ucSrc:u1[height(tHandle, iCamera),width(tHandle, iCamera)]
        -> ucDst:u1[height(tHandle, iCamera),width(tHandle, iCamera)]""",
    "zelm2ViewUnDistortImage_vImageARGB8888": """tHandle:Zelm2ViewCalib iCamera:camera tSrc:argb[h,w]
        -> tDst:argb[height(tHandle, iCamera),width(tHandle, iCamera)]""",
    "zelm2ViewDistortPoint": "tHandle:Zelm2ViewCalib iCamera:camera tIn:Point2d -> tOut:Point2d",
    "zelm2ViewUnDistortPoint": "tHandle:Zelm2ViewCalib iCamera:camera tIn:Point2d -> tOut:Point2d^",
    # cstmGeometry.h
    "zelmCstmDrovnCalcMagnification": """tHandle:Zelm2ViewCalib dLengthA:float dLengthB:float
        -> dOutL:float dOutR:float""",
    "zelmCstmDrovnCalcHomImgMemSize": """tHandle:Zelm2ViewCalib iCamera:camera tRoi:ZelmRect tExpPrm:ZelmCstmExpPrm
        dD:float=0 -> iWidth:int iHeight:int tCentre:Point2d""",
    "zelmCstmDrovnChangeOrg2DtoExp2D": "tExpPrm:ZelmCstmExpPrm tIn:Point2d -> tOut:Point2d",
    "zelmCstmDrovnChangeOrg2DtoHom2D": """tHandle:Zelm2ViewCalib iCamera:camera tHomPrm:ZelmCstmExpPrm tIn:Point2d
        -> tOut:Point2d""",
    "zelmCstmDrovnChangeOrg2DtoHom2DExp": """tHandle:Zelm2ViewCalib iCamera:camera tHomPrm:ZelmCstmExpPrm
        tExpPrm:ZelmCstmExpPrm tIn:Point2d -> tOut:Point2d""",
    "zelmCstmDrovnInvHomImgPointExp": """tHandle:Zelm2ViewCalib iCamera:camera tIn:Point2d tHomPrm:ZelmCstmExpPrm
        tExpPrm:ZelmCstmExpPrm -> tOut:Point2d""",
    "zelmCstmDrovnChangeHomEpiLineExp": """tHandle:Zelm2ViewCalib iCamera:camera tHomPrm:ZelmCstmExpPrm
        tExpPrm:ZelmCstmExpPrm tLine:Line2d -> tOut:Zelm2ViewEpiLine""",
    "zelmCstmDrovnMakeHomImageExp": """tHandle:Zelm2ViewCalib iCamera:camera
        ucSrc:u1[height(tHandle, iCamera),width(tHandle, iCamera)] tHomPrm:ZelmCstmExpPrm tExpPrm:ZelmCstmExpPrm
        -> ucDst:u1[tHomPrm.iHeight,tHomPrm.iWidth]""",
    "zelmCstmDrovnMakeHomImageExp_vImagePlanar8": """tHandle:Zelm2ViewCalib iCamera:camera tSrc:planar[h,w]
        tHomPrm:ZelmCstmExpPrm tExpPrm:ZelmCstmExpPrm -> tDst:planar[tHomPrm.iHeight,tHomPrm.iWidth]""",
    "zelmCstmDrovnMakeHomImageExp_vImageARGB8888": """tHandle:Zelm2ViewCalib iCamera:camera tSrc:argb[h,w]
        tHomPrm:ZelmCstmExpPrm tExpPrm:ZelmCstmExpPrm -> tDst:argb[tHomPrm.iHeight,tHomPrm.iWidth]""",
    "zelmCstmDrovnMakeHomImageMap": """tHandle:Zelm2ViewCalib iCamera:camera tHomPrm:ZelmCstmExpPrm
        tExpPrm:ZelmCstmExpPrm tMap:ZelmCstmHomMap!=newMap(tHomPrm) -> tMap | holdsMap(tMap)""",
    "zelmCstmDrovnRemapImage": """tMap:ZelmCstmHomMap ucSrc:u1[iSrcHeight,iSrcWidth]
        ucDst:u1[iDstHeight,iDstWidth]!=ofMap(tMap) -> ucDst | holdsMap(tMap), apart(ucSrc, ucDst)""",
    "zelmCstmDrovnRemapImage_vImagePlanar8": """tMap:ZelmCstmHomMap tSrc:planar[h,w] tDst:planar[h2,w2]!=ofMap(tMap)
        -> tDst | holdsMap(tMap), apart(tSrc, tDst)""",
    "zelmCstmDrovnRemapImage_vImageARGB8888": """tMap:ZelmCstmHomMap tSrc:argb[h,w] tDst:argb[h2,w2]!=ofMap(tMap, 4)
        -> tDst | holdsMap(tMap), apart(tSrc, tDst)""",
    "zelmCstmDrovnExpandImage": """tHandle:Zelm2ViewCalib iCamera:camera
        ucSrc:u1[height(tHandle, iCamera),width(tHandle, iCamera)] tExpPrm:ZelmCstmExpPrm
        -> ucDst:u1[tExpPrm.iHeight,tExpPrm.iWidth]""",
    "zelmCstmDrovnExpandImage_vImagePlanar8": """tHandle:Zelm2ViewCalib iCamera:camera tSrc:planar[h,w]
        tExpPrm:ZelmCstmExpPrm -> tDst:planar[tExpPrm.iHeight,tExpPrm.iWidth]""",
    "zelmCstmDrovnExpandImage_vImageARGB8888": """tHandle:Zelm2ViewCalib iCamera:camera tSrc:argb[h,w]
        tExpPrm:ZelmCstmExpPrm -> tDst:argb[tExpPrm.iHeight,tExpPrm.iWidth]""",
    "zelmCstmDrovnGetPixelOnEpiLine": """tRect:ZelmRect tLine:Line2d
        -> taPoints:i4[max(tRect.width, tRect.height, 1),2][:iCount]""",
    # cstmSearch.h
    "zelmCstmDrovnCalcBasicStatisticsOfRefImg": "tRef:ZelmCstmRefImg! -> tRef | holdsPixels(tRef)",
    "zelmCstmDrovnCalcBasicStatisticsOfRefImg_vImagePlanar8": """tImage:planar[h,w] tMask:planar[h2,w2]?=None
        tRef:ZelmCstmRefImg!=ZelmCstmRefImg() -> tRef""",
    "zelmCstmDrovnSearchOnEpiLine": """tRef:ZelmCstmRefImg tPrm:ZelmCstmSearchPrm
        -> taMatches:ZelmCstmMatch[tPrm.maxResults][:iCount] | holdsPixels(tRef), holdsPixels(tPrm)""",
    "zelmCstmDrovnSearchOnEpiLine_vImagePlanar8": """tRef:ZelmCstmRefImg tRefImage:planar[h,w]
        tRefMask:planar[h2,w2]?=None tPrm:ZelmCstmSearchPrm tImage:planar[h3,w3] tMask:planar[h4,w4]?=None
        -> taMatches:ZelmCstmMatch[tPrm.maxResults][:iCount]""",
    # edge1d.h
    "zelmEdge1dDiffMax": """tImage:image[h,w] tP1:Point2d tP2:Point2d iSign:int=0
        -> iFound=return tEdgePoint:Point2d~ dStrength:float~""",
    "zelmEdge1dGenDiffMax": """tImage:image[h,w] tP1:Point2d tP2:Point2d iSign:int=0
        -> iFound=return tEdgePoint:Point2d~ dStrength:float~""",
    "zelmEdge1dGenNearest": """tImage:image[h,w] tP1:Point2d tP2:Point2d iSign:int=0
        -> iFound=return tEdgePoint:Point2d~ dStrength:float~""",
    "zelmEdge1dGenGradMax": """tImage:image[h,w] tP1:Point2d tP2:Point2d iSign:int=0
        -> iFound=return tEdgePoint:Point2d~ dStrength:float~""",
    "zelmEdge1dGenNearestC": """tImage:image[h,w] tP1:Point2d tP2:Point2d iSign:int=0
        -> iFound=return tEdgePoint:Point2d~ dStrength:float~""",
    "zelmEdge1dManual": """tImage:image[h,w] tP1:Point2d tP2:Point2d iSign:int tParam:ZelmEdge1dParam
        -> iFound=return tEdgePoint:Point2d~ dStrength:float~""",
    # fit.h
    "zelmFitMean1dim": "daPoints:f8[iN] iRobust:int=0 dThreshold:float=3.5 -> dResult:float",
    "zelmFitMean2dim": "taPoints:f8[iN,2] iRobust:int=0 dThreshold:float=3.5 -> tResult:Point2d",
    "zelmFitMean3dim": "taPoints:f8[iN,3] iRobust:int=0 dThreshold:float=3.5 -> tResult:Point3d",
    "zelmFitLine": "taPoints:f8[iN,2] iRobust:int=0 dThreshold:float=3.5 -> tResult:Line2d",
    "zelmFitLineIn3d": "taPoints:f8[iN,3] iRobust:int=0 dThreshold:float=3.5 -> daResult:f8[2,3]",
    "zelmFitPlane": "taPoints:f8[iN,3] iRobust:int=0 dThreshold:float=3.5 -> daResult:f8[4]",
    "zelmFitEllipse": "taPoints:f8[iN,2] iRobust:int=0 dThreshold:float=3.5 -> tResult:Ellipse2d",
    "zelmFitEllipseC": "taPoints:f8[iN,2] iRobust:int=0 dThreshold:float=3.5 -> daResult:f8[6]",
    "zelmFitConics": "taPoints:f8[iN,2] iRobust:int=0 dThreshold:float=3.5 -> daResult:f8[6]",
    "zelmFitCircle": "taPoints:f8[iN,2] iRobust:int=0 dThreshold:float=3.5 -> tResult:Circle2d",
    "zelmFitEllipsoid": "taPoints:f8[iN,3] iRobust:int=0 dThreshold:float=3.5 -> tResult:Ellipsoid3d",
    "zelmFitCone": "taPoints:f8[iN,3] iRobust:int=0 dThreshold:float=3.5 -> daResult:f8[10]^",
    # image.h
    "zelmConvertColorToGray_vImageARGB8888toPlanar8": "tSrc:argb[h,w] -> tDst:planar[h,w]",
    # kernels.h
    "perspectiveTransAndDistortImage_8uC1": """daHom:f8[3,3] daCamera:ZelmCameraIntrinsics
        ucSrc:u1[iSrcHeight,iSrcWidth]
        iSrcStride=iSrcWidth iDstStride=iDstWidth iDstWidth:int iDstHeight:int -> ucDst:u1[iDstHeight,iDstWidth]""",
    "perspectiveTransAndDistortImage_8uC4": """daHom:f8[3,3] daCamera:ZelmCameraIntrinsics
        ucSrc:u1[iSrcHeight,iSrcWidth,4] iSrcStride=4*iSrcWidth iDstStride=4*iDstWidth iDstWidth:int iDstHeight:int
        -> ucDst:u1[iDstHeight,iDstWidth,4]""",
    "remapImage_8uC1": """ucSrc:u1[iSrcHeight,iSrcWidth] iSrcStride=iSrcWidth
        ucDst:u1[iDstHeight,iDstWidth]!=zeros(iDstHeight, iDstWidth) iDstStride=iDstWidth
        faMapX:f4[iDstHeight,iDstWidth] iMapXStride=4*iDstWidth faMapY:f4[iDstHeight,iDstWidth] iMapYStride=4*iDstWidth
        iX0:int=0 iY0:int=0 iX1:int=(iDstWidth-1) iY1:int=(iDstHeight-1)
        -> ucDst | box(iX0, iY0, iX1, iY1, ucDst), apart(ucSrc, ucDst)""",
    "remapImage_8uC4": """ucSrc:u1[iSrcHeight,iSrcWidth,4] iSrcStride=4*iSrcWidth
        ucDst:u1[iDstHeight,iDstWidth,4]!=zeros(iDstHeight, iDstWidth, 4) iDstStride=4*iDstWidth
        faMapX:f4[iDstHeight,iDstWidth] iMapXStride=4*iDstWidth faMapY:f4[iDstHeight,iDstWidth] iMapYStride=4*iDstWidth
        iX0:int=0 iY0:int=0 iX1:int=(iDstWidth-1) iY1:int=(iDstHeight-1)
        -> ucDst | box(iX0, iY0, iX1, iY1, ucDst), apart(ucSrc, ucDst)""",
    # mat.h
    "zelmMatMallocVector": "custom iN:int -> daV:ZelmVector",
    "zelmMatFreeVector": "custom daV:ZelmVector? ->",
    "zelmMatMallocMatrix": "custom iRows:int iCols:int -> daM:ZelmMatrix",
    "zelmMatFreeMatrix": "custom daM:ZelmMatrix? ->",
    "zelmMatZero": "iRows:int iCols:int -> daA:f8[iRows,iCols]",
    "zelmMatDiagonal": "dValue:float iN:int -> daA:f8[iN,iN]",
    "zelmMatCopy": "daSrc:f8[iRows,iCols] -> daDst:f8[iRows,iCols]",
    "zelmMatAdd": "daA:f8[iRows,iCols] daB:f8[iRows,iCols] -> daC:f8[iRows,iCols]",
    "zelmMatSub": "daA:f8[iRows,iCols] daB:f8[iRows,iCols] -> daC:f8[iRows,iCols]",
    "zelmMatMulScalar": "dS:float daA:f8[iRows,iCols] -> daB:f8[iRows,iCols]",
    "zelmMatTranspose": "daA:f8[iRows,iCols] -> daB:f8[iCols,iRows]",
    "zelmMatTrace": "daA:f8[iN,iN] -> dTrace=return",
    "zelmMatMul": "daA:f8[iM,iN] daB:f8[iNB,iP] -> daC:f8[iM,iP]",
    "zelmMatGenMul": """dAlpha:float daA:f8[iM,iN] daB:f8[iNB,iP] dBeta:float daC:f8[iM,iP]
        -> daD:f8[iM,iP]""",
    "zelmMatMulTransposed": """iFlag:int daA:f8[iM,iN]
        -> daC:f8[(iN if iFlag else iM),(iN if iFlag else iM)]""",
    "zelmMatMulTransposed2": """iFlag:int daA:f8[iM,iN] daB:f8[iP,iQ]
        -> daC:f8[(iN if iFlag else iM),(iQ if iFlag else iP)]""",
    "zelmMatInvert": "daA:f8[iN,iN] -> daAinv:f8[iN,iN]",
    "zelmMatSolveLU": "daA:f8[iN,iN] daB:f8[iN] -> daX:f8[iN]",
    "zelmMatCholeskyDecomp": "daA:f8[iN,iN] -> daU:f8[iN,iN]^",
    "zelmMatSVD": "daA:f8[iM,iN] -> daU:f8[iM,iN] daW:f8[iN] daV:f8[iN,iN]",
    "zelmMatSolveSVD": "daA:f8[iM,iN] daB:f8[iM] -> daX:f8[iN]",
    "zelmMatJacobiEigen": "daA:f8[iN,iN] -> daValues:f8[iN] daVectors:f8[iN,iN]^",
    # match.h
    "zelmMatchBasic": """taRef:f8[iN,2] taModel:f8[iN,2] tModelPose:ZelmMatchPose=ZelmMatchPose() iMode:int=0
        dThreshold:float=4 -> tResult:ZelmMatchPose^""",
    "zelmMatchPoints": """taRef:f8[iN,2] taModel:f8[iN,2] tModelPose:ZelmMatchPose tResult:ZelmMatchPose
        -> taMoved:f8[iN,2] daDistance:f8[iN]""",
    "zelmMatchDelta": "tA:ZelmMatchPose tB:ZelmMatchPose -> dDx:float dDy:float dAngle:float dScale:float",
    # math.h
    "zelmMathCalcInnerProduct": "daU:f8[iN] daV:f8[iN] -> dProduct=return",
    "zelmMathCalcOuterProduct": "daU:f8[3] daV:f8[3] -> daOut:f8[3]",
    "zelmMathCalcNorm": "daV:f8[iN] -> dNorm=return",
    "zelmMathCalcArgument": "tP:Point2d -> dAngle=return",
    "zelmMathNormalization": "daV:f8[iN]! -> daV",
    "zelmMathCalcAngle": "daU:f8[iN] daV:f8[iN] -> dAngle:float",
    "zelmMathStat": "daData:f8[iN] -> dMean:float dVariance:float dDeviation:float",
    "zelmMathAreaTriangle": "dX1:float dY1:float dX2:float dY2:float dX3:float dY3:float -> dArea=return",
    "zelmMathSignAreaTriangle": "dX1:float dY1:float dX2:float dY2:float dX3:float dY3:float -> dArea=return",
    "zelmMathInvMatrixOfSyn3X3": "daM:f8[3,3] -> daOut:f8[3,3]~",
    "zelmMathRotatePoint": """dCx:float dCy:float dTheta:float dX:float dY:float
        -> dXOut:float dYOut:float""",
    "zelmMathCreateTransParam": """iMode:int dX1:float dY1:float dX2:float dY2:float
        -> dOx:float dOy:float dTheta:float""",
    "zelmMathTransCoordOfPoint": """dOx:float dOy:float dTheta:float dX:float dY:float
        -> dXOut:float dYOut:float""",
    "zelmMathTransCoord": """dOx:float dOy:float dTheta:float dX:float dY:float
        -> dXOut:float dYOut:float""",
    "zelmMathInvTransCoordOfPoint": """dOx:float dOy:float dTheta:float dX:float dY:float
        -> dXOut:float dYOut:float""",
    "zelmMathInvCoord": """dOx:float dOy:float dTheta:float
        -> dOxOut:float dOyOut:float dThetaOut:float""",
    "zelmMathComposeCoord": """dOx1:float dOy1:float dTheta1:float dOx2:float dOy2:float dTheta2:float
        -> dOx:float dOy:float dTheta:float""",
    "zelmMathAddAngle": "iFull:int iDegrees:int dA:float dB:float -> dSum=return",
    "zelmMathPrimeAngle": "iFull:int iDegrees:int dA:float -> dAngle=return",
    "zelmMathCheckAngle": "dA:float dB:float dTolerance:float -> iSame=return",
    "zelmMathCrossAngle": """dA1:float dB1:float dC1:float dA2:float dB2:float dC2:float
        -> dAngle=return""",
    "zelmMathGetDistFromPointToPoint": "dX1:float dY1:float dX2:float dY2:float -> dDistance=return",
    "zelmMathGetDistFromPointToLine": """dA:float dB:float dC:float dX:float dY:float
        -> dDistance=return""",
    "zelmMathGetDistAndCrossPointFromPointToLine": """dA:float dB:float dC:float dX:float dY:float
        -> dDistance=return dFx:float~ dFy:float~""",
    "zelmMathCrossPoint": """dA1:float dB1:float dC1:float dA2:float dB2:float dC2:float
        -> dX:float dY:float""",
    "zelmMathGetLineFrom2Points": """dX1:float dY1:float dX2:float dY2:float
        -> dA:float dB:float dC:float""",
    "zelmMathGetOrthogonalLineFromLineAndPoint": """dA:float dB:float dC:float dX:float dY:float
        -> dAOut:float dBOut:float dCOut:float""",
    "zelmMathTransAbcToRq": "dA:float dB:float dC:float -> dR:float dQ:float",
    "zelmMathGetDistFromPointToCircle": """dCx:float dCy:float dR:float dX:float dY:float
        -> dDistance=return dPx:float dPy:float""",
    "zelmMathExtremumOfQuadraticCurves": "dA:float dB:float dC:float -> dValue=return dX:float",
    "zelmMathExtremumOfQuadraticSurface": """dA:float dB:float dC:float dD:float dE:float dF:float
        -> dValue=return dX:float dY:float""",
    # mathCorrelation.h
    "zelmMathCrossCorrelation": "daU:f8[iN] daV:f8[iN] -> dSum=return",
    "zelmMathNormCorrelation": "daU:f8[iN] daV:f8[iN] -> dCosine=return",
    "zelmMathAutoCorrelation": "daData:f8[iN] iM:int -> daOut:f8[iM]~",
    "zelmMathNormAutoCorrelation": "daData:f8[iN] iM:int -> daOut:f8[iM]~",
    "zelmMathSearchOf1DWithNormCorrelation": """daSignal:f8[iN] daTemplate:f8[iM]
        -> iIndex:int dScore:float""",
    "zelmMathOtsuThreshold1d": "daData:f8[iN] -> dThreshold:float",
    # mathRoots.h
    "zelmMathQuadraticRoots": "daCoef:f8[3] -> daRoots:f8[2][:return]",
    "zelmMathCubicRoots": "daCoef:f8[4] -> daRoots:f8[3][:return]",
    "zelmMathQuarticRoots": "daCoef:f8[5] -> daRoots:f8[4][:return]",
    "zelmMathGetDistFromPointToEllipse": """dCx:float dCy:float dA:float dB:float dTheta:float dPx:float dPy:float
        -> dX:float dY:float dDistance:float""",
}
