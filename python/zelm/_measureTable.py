"""How each function of the measuring library is called from Python: one entry a function, in the order of the headers.

The form is that of _coreTable.py, with these kinds more:

``tI:gray[h,w]``      a gray image, uint8 (height, width), whose rows may be apart
``block:bytes``       bytes, or anything that shows its memory
``aX:i8[n]``          int64, and ``u2`` uint16
``tP:Record[n]``      as an argument: records one by one, or an array of them
``rig:ZelmMeasureRig``  as a result: a new object. An object of the measuring library serves one call at a time
``text=return``       the function's own result, words

Records of arrays, ``ZelmMeasurePoints`` and the like, are results: where none is given the call makes one with all
arrays. One that is given says by its arrays what is wanted, and by its numbers how.
"""

TABLE = {
    # measureAdjust.h
    "zelmMeasureAdjustOpen": """rig:ZelmMeasureRig! pattern:Zelm2ViewPatternDesc options:ZelmMeasureAdjustOptions?=None
        -> adjustment:ZelmMeasureAdjustment | holdsPlaces(options)""",
    "zelmMeasureAdjustClose": "custom adjustment:ZelmMeasureAdjustment?=None ->",
    "zelmMeasureAdjustError": "adjustment:ZelmMeasureAdjustment! -> text=return",
    "zelmMeasureAdjustSolve": "adjustment:ZelmMeasureAdjustment! ->",
    "zelmMeasureAdjustRefine": """adjustment:ZelmMeasureAdjustment! side:camera view:int image:gray[h,w]
        -> refined:ZelmMeasureRefined""",
    "zelmMeasureAdjustAddView": """adjustment:ZelmMeasureAdjustment! left:gray[h,w] right:gray[h2,w2]
        -> leftDots:int rightDots:int""",
    "zelmMeasureAdjustSummary": "adjustment:ZelmMeasureAdjustment! -> summary:ZelmMeasureAdjustSummary",
    "zelmMeasureAdjustView": "adjustment:ZelmMeasureAdjustment! view:int -> words=return",
    "zelmMeasureAdjustDots": """custom adjustment:ZelmMeasureAdjustment! side:camera view:int
        -> dots:ZelmMeasureAdjustedDots""",
    "zelmMeasureAdjustRig": "adjustment:ZelmMeasureAdjustment! -> rig:ZelmMeasureRig",
    # measureChecks.h
    "zelmMeasureAdjustChecks": """adjustment:ZelmMeasureAdjustment! capacity=checksOf(adjustment)
        -> checks:ZelmMeasureCheck[capacity][:count]""",
    # measureCompare.h
    "zelmMeasureCompare": """first:ZelmMeasureRig! second:ZelmMeasureRig! options:ZelmMeasureCompareOptions?=None
        -> comparison:ZelmMeasureComparison""",
    "zelmMeasureCompareImage": """first:ZelmMeasureRig! second:ZelmMeasureRig! side:camera pixels:f8[count,2]
        -> differences:f8[count,2]""",
    # measureDiagnosis.h
    "zelmMeasureSharpness": "image:gray[h,w] seeds:f8[count,2] polarity:int=0 -> sharpness:ZelmMeasureSharpness",
    "zelmMeasureDiagnoseImage": """custom image:gray[h,w] pattern:Zelm2ViewPatternDesc region:ZelmRect?=None
        -> diagnosis:ZelmMeasureImageDiagnosis spots:ZelmMeasureSpots""",
    "zelmMeasureImageCauseName": "cause:int -> word=return",
    # measureDots.h
    "zelmMeasureFigures": "distances:f8[count] -> figures:ZelmMeasureFigures",
    "zelmMeasureRigDots": """custom rig:ZelmMeasureRig! pattern:Zelm2ViewPatternDesc side:camera view:int
        -> dots:ZelmMeasureDots found:int""",
    "zelmMeasureRigEpipolar": """rig:ZelmMeasureRig! pattern:Zelm2ViewPatternDesc view:int
        capacity=distancesOfRig(rig,pattern,view) -> distances:f8[capacity][:count]""",
    "zelmMeasurePlateDots": """custom image:gray[h,w] pattern:Zelm2ViewPatternDesc region:ZelmRect?=None
        -> dots:ZelmMeasureDots found:int""",
    "zelmMeasurePlateTraits": "image:gray[h,w] pattern:Zelm2ViewPatternDesc -> traits:ZelmMeasurePlateTraits",
    "zelmMeasureDotCentres": """image:gray[h,w] seeds:f8[count,2] polarity:int=0
        -> centres:f8[count,2]~ statuses:i4[count]""",
    "zelmMeasureRefineDots": """image:gray[h,w] shapes:f8[count,6] neighbours:f8[count]?=None polarity:int=0
        dots:ZelmMeasureRefinedDots!=rooms(ZelmMeasureRefinedDots,count) -> dots | holds(dots,count)""",
    # measureFeatures.h
    "zelmMeasureFeatures": """custom points:ZelmMeasureFeaturePoints rig:ZelmMeasureRig?=None
        features:ZelmMeasureFeature[featureCount] relations:ZelmMeasureRelation[relationCount]=()
        -> results:ZelmMeasureFeatureResult[featureCount] relationResults:ZelmMeasureRelationResult[relationCount]""",
    # measureFiles.h
    "zelmMeasureExport": "custom rig:ZelmMeasureRig! options:ZelmMeasureExportOptions side:camera=0 -> bytes:bytes",
    "zelmMeasureExportLoss": "rig:ZelmMeasureRig! options:ZelmMeasureExportOptions -> loss:ZelmMeasureExportLoss",
    "zelmMeasureImport": """custom options:ZelmMeasureImportOptions files:object
        -> rig:ZelmMeasureRig imported:ZelmMeasureImported""",
    # measureMatch.h
    "zelmMeasureMatchDefaults": "rig:ZelmMeasureRig!?=None -> options:ZelmMeasureMatchOptions",
    "zelmMeasureNoise": "image:gray[h,w] -> noise:float",
    "zelmMeasureOverlap": """rig:ZelmMeasureRig! options:ZelmMeasureMatchOptions=matchDefaults(rig) pixels:f8[count,2]
        -> any:int""",
    "zelmMeasureMatch": """rig:ZelmMeasureRig! left:gray[h,w] right:gray[h2,w2]
        options:ZelmMeasureMatchOptions=matchDefaults(rig) pixels:f8[count,2]
        matches:ZelmMeasureMatches!=rooms(ZelmMeasureMatches,count) -> matches | holds(matches,count)""",
    "zelmMeasureMatchDense": """rig:ZelmMeasureRig! left:gray[h,w] right:gray[h2,w2]
        options:ZelmMeasureMatchOptions=matchDefaults(rig)
        matches:ZelmMeasureMatches!=rooms(ZelmMeasureMatches,leftHeight(rig)*leftWidth(rig)) -> matches
        | holds(matches,leftHeight(rig)*leftWidth(rig))""",
    # measurePairing.h
    "zelmMeasureReadDots": "custom calib:Zelm2ViewCalib side:camera view:int -> dots:ZelmMeasureDots",
    "zelmMeasurePairImages": """custom images:ZelmMeasureImageSet
        -> views:ZelmMeasurePairedView[n] causes:ZelmMeasureSetCause[n] pairing:ZelmMeasurePairing""",
    # measurePitch.h
    "zelmMeasurePitchRatio": "calib:Zelm2ViewCalib side:camera -> ratio:ZelmMeasurePitchRatio",
    # measurePixels.h
    "zelmMeasureProject": "rig:ZelmMeasureRig! side:camera points:f8[count,3] -> pixels:f8[count,2]",
    "zelmMeasureUndistort": "rig:ZelmMeasureRig! side:camera raw:f8[count,2] -> undistorted:f8[count,2]",
    "zelmMeasureDistort": "rig:ZelmMeasureRig! side:camera undistorted:f8[count,2] -> raw:f8[count,2]",
    "zelmMeasureEpipolarLines": "rig:ZelmMeasureRig! side:camera raw:f8[count,2] -> lines:f8[count,3]",
    # measureRig.h
    "zelmMeasureRigOpen": "block:bytes size=len(block) -> rig:ZelmMeasureRig",
    "zelmMeasureRigOfCalib": "calib:Zelm2ViewCalib -> rig:ZelmMeasureRig",
    "zelmMeasureRigClose": "custom rig:ZelmMeasureRig?=None ->",
    "zelmMeasureRigError": "rig:ZelmMeasureRig! -> text=return",
    "zelmMeasureRigCalib": "custom rig:ZelmMeasureRig -> calib:Zelm2ViewCalib",
    "zelmMeasureRigViews": "rig:ZelmMeasureRig! -> views:int",
    "zelmMeasureRigCamera": "rig:ZelmMeasureRig! side:camera -> camera:ZelmMeasureCamera",
    "zelmMeasureRigPose": "rig:ZelmMeasureRig! side:camera view:int -> pose:ZelmCameraExtrinsics",
    "zelmMeasureRigFundamental": "rig:ZelmMeasureRig! -> F:f8[3,3]",
    "zelmMeasureRigRelativePose": "rig:ZelmMeasureRig! -> pose:ZelmMeasureRelativePose",
    "zelmMeasureRigTilt": "rig:ZelmMeasureRig! side:camera -> tilt:float",
    "zelmMeasureRigCentre": "rig:ZelmMeasureRig! -> left:f8[2] right:f8[2] origin:int",
    # measurePlan.h
    "zelmMeasurePlanOpen": """left:ZelmMeasureCamera right:ZelmMeasureCamera relative:ZelmMeasureRelativePose
        plate:Zelm2ViewPatternDesc options:ZelmMeasurePlanOptions -> plan:ZelmMeasurePlan""",
    "zelmMeasurePlanOfRig": """rig:ZelmMeasureRig! plate:Zelm2ViewPatternDesc options:ZelmMeasurePlanOptions
        -> plan:ZelmMeasurePlan""",
    "zelmMeasurePlanClose": "custom plan:ZelmMeasurePlan?=None ->",
    "zelmMeasurePlanError": "plan:ZelmMeasurePlan! -> text=return",
    "zelmMeasurePlanTake": "plan:ZelmMeasurePlan! poses:ZelmCameraExtrinsics[count] ->",
    "zelmMeasurePlanNext": "plan:ZelmMeasurePlan! -> view:ZelmMeasurePlanView",
    "zelmMeasurePlanFewest": "plan:ZelmMeasurePlan! tolerance:float most:int ->",
    "zelmMeasurePlanViews": "plan:ZelmMeasurePlan! -> views:int",
    "zelmMeasurePlanView": "plan:ZelmMeasurePlan! index:int -> view:ZelmMeasurePlanView",
    "zelmMeasurePlanFigures": "plan:ZelmMeasurePlan! -> figures:ZelmMeasurePlanFigures",
    # measurePlate.h
    "zelmMeasurePlateDesign": """plate:Zelm2ViewPatternDesc cameras:ZelmMeasureCamera[cameraCount]=() nearest:float=0
        farthest:float=0 capacity=flawsOf(plate,cameras,nearest,farthest)
        -> findings:ZelmMeasurePlateFinding[capacity][:count]""",
    "zelmMeasurePlateExpanded": """plate:Zelm2ViewPatternDesc expansion:float difference:float
        places:f8[placeCount,3]=noPlaces()
        -> expanded:Zelm2ViewPatternDesc expandedPlaces:f8[placeCount,3] factor:float""",
    # measurePointTargets.h
    "zelmMeasurePointViews": "points:ZelmMeasureTargetPoints -> statuses:i4[points.views] | holdsTarget(points)",
    "zelmMeasureAdjustOpenPoints": """points:ZelmMeasureTargetPoints pattern:Zelm2ViewPatternDesc?=None
        options:ZelmMeasureAdjustOptions?=None -> adjustment:ZelmMeasureAdjustment
        | holdsTarget(points), holdsPlaces(options)""",
    "zelmMeasureAdjustStartRig": "adjustment:ZelmMeasureAdjustment! -> rig:ZelmMeasureRig",
    "zelmMeasureAdjustCamera": """adjustment:ZelmMeasureAdjustment! side:camera
        -> camera:ZelmMeasureAdjustedCamera""",
    "zelmMeasureAdjustPose": "adjustment:ZelmMeasureAdjustment! side:camera view:int -> pose:ZelmCameraExtrinsics",
    "zelmMeasureAdjustEpipolar": """adjustment:ZelmMeasureAdjustment! view:int
        capacity=distancesOfAdjustment(adjustment,view) -> distances:f8[capacity][:count]""",
    # measurePoints.h
    "zelmMeasureTriangulate": """rig:ZelmMeasureRig! left:f8[count,2] right:f8[count,2]
        points:ZelmMeasurePoints!=rooms(ZelmMeasurePoints,count) -> points | holds(points,count)""",
    "zelmMeasureTrueDepths": """rig:ZelmMeasureRig! map:u2[leftHeight(rig),leftWidth(rig)] unit:float
        pixels:f8[count,2] -> depths:f8[count] seenByBoth:i4[count]""",
    # measureRows.h
    "zelmMeasureAlignRows": "rig:ZelmMeasureRig! options:ZelmMeasureRowOptions?=None -> rows:ZelmMeasureRows",
    "zelmMeasureAlignRowsMap": """rig:ZelmMeasureRig! options:ZelmMeasureRowOptions?=None side:camera
        -> map:f4[rowsHeight(rig,options),rowsWidth(rig,options),2]""",
    "zelmMeasureAlignRowsPoints": """rig:ZelmMeasureRig! options:ZelmMeasureRowOptions?=None side:camera
        raw:f8[count,2] -> aligned:f8[count,2]""",
    # measureTargets.h
    "zelmMeasureCircles": """rig:ZelmMeasureRig! left:gray[h,w] right:gray[h2,w2] leftSeeds:f8[count,2]
        rightSeeds:f8[count,2] polarity:int=0 targets:ZelmMeasureTargets!=rooms(ZelmMeasureTargets,count) -> targets
        | holds(targets,count)""",
    # measureUncertainty.h
    "zelmMeasureRigCovariance": "rig:ZelmMeasureRig! -> covariance:ZelmMeasureCovariance",
    "zelmMeasureRigSetCovariance": "rig:ZelmMeasureRig! covariance:ZelmMeasureCovariance? ->",
    "zelmMeasurePointCovariance": """rig:ZelmMeasureRig! left:f8[count,2] right:f8[count,2]
        noise:ZelmMeasurePixelNoise?=None
        covariances:ZelmMeasurePointCovariances!=pointRooms(rig,count)
        -> covariances | holdsNoise(noise,count), holds(covariances,count)""",
    "zelmMeasureLengths": """rig:ZelmMeasureRig! left:f8[count,2] right:f8[count,2] noise:ZelmMeasurePixelNoise?=None
        ends:i8[lengthCount,2]
        lengths:ZelmMeasureLengths!=lengthRooms(rig,lengthCount)
        -> lengths | holdsNoise(noise,count), holds(lengths,lengthCount)""",
    "zelmMeasureCovarianceSize": "rig:ZelmMeasureRig! -> size:int",
    "zelmMeasureCovarianceSave": "custom rig:ZelmMeasureRig! -> bytes:bytes",
    "zelmMeasureCovarianceLoad": "rig:ZelmMeasureRig! bytes:bytes size=len(bytes) ->",
    # measureVerify.h
    "zelmMeasureRefinePlate": """rig:ZelmMeasureRig! pattern:Zelm2ViewPatternDesc leftImage:gray[h,w]
        rightImage:gray[h2,w2] grid:i4[count,2] left:f8[count,2]! right:f8[count,2]!
        -> left right statuses:i4[count]""",
    "zelmMeasurePlatePoints": """rig:ZelmMeasureRig! pattern:Zelm2ViewPatternDesc grid:i4[count,2] left:f8[count,2]
        right:f8[count,2] points:ZelmMeasurePlatePoints!=rooms(ZelmMeasurePlatePoints,count)
        -> points fit:ZelmMeasurePlateFit | holds(points,count)""",
    "zelmMeasurePlateLengths": """pattern:Zelm2ViewPatternDesc grid:i4[count,2] capacity=lengthsOf(pattern,grid)
        -> ends:i8[capacity,2][:chosen] nominal:f8[capacity][:chosen]""",
    "zelmMeasureLengthErrors": """rig:ZelmMeasureRig! positions:f8[pointCount,3] ends:i8[count,2] nominal:f8[count]
        lengths:ZelmMeasureLengthErrors!=rooms(ZelmMeasureLengthErrors,count)
        -> lengths summary:ZelmMeasureLengthSummary | holds(lengths,count)""",
    "zelmMeasureDrift": """rig:ZelmMeasureRig! left:f8[count,2] right:f8[count,2]
        options:ZelmMeasureDriftOptions?=None -> statuses:i4[count] drift:ZelmMeasureDrift""",
}
