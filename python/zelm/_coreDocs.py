"""Docstrings of zelm.core.

Written by tools/makeRecords.py from the C headers: change those, then run it.
"""

# What each status means.
STATUSES = {
    "ZELM_OK": "Success.",
    "ZELM_ERR_MEMORY": "A working allocation failed.",
    "ZELM_ERR_PARAM": (
        "A required pointer is NULL, a size is zero or negative, two buffers disagree in size, or an "
        "option is out of range."
    ),
    "ZELM_ERR_DEGENERATE": (
        "Degenerate geometry or data: points that coincide, a direction without length, parallel "
        "lines, no intersection; in the matrix products a mismatch of dimensions."
    ),
    "ZELM_ERR_SINGULAR": (
        "LU factorisation found a row of zeros, an entry that is not finite, a zero pivot, or a "
        "product of pivots that is, or underflows to, exactly 0."
    ),
    "ZELM_ERR_EIGEN_NOT_CONVERGED": "The Jacobi eigen decomposition did not converge within 100 sweeps.",
    "ZELM_ERR_SVD_FAILED": (
        "The singular value decomposition was asked for a matrix with fewer rows than columns, did "
        "not converge within 30 passes for one singular value, or met entries that are not finite."
    ),
    "ZELM_ERR_NOT_POSITIVE_DEFINITE": "A diagonal term of the Cholesky factorisation fell below 1e-11.",
    "ZELM_ERR_FIT_DATA": "Too few usable points for a fit, or the robust iteration rejected them.",
    "ZELM_ERR_FIT_NOT_ELLIPSE": "No eigenvector of the conic fit describes an ellipse.",
    "ZELM_ERR_FIT_NOT_ELLIPSOID": "No eigenvector of the quadric fit describes an ellipsoid.",
    "ZELM_ERR_FIT_NOT_CONE": "The cone fit is degenerate: a determinant below 1e-12, or no apex.",
    "ZELM_ERR_CALIB_HOMOGRAPHY": (
        "The homography of one calibration view could not be estimated, or a rectifying pair of two "
        "cameras failed."
    ),
    "ZELM_ERR_CALIB_ESTIMATE": (
        "The closed-form estimate of the camera parameters failed: too few views, or views that do "
        "not determine the camera."
    ),
    "ZELM_ERR_CALIB_NOT_CONVERGED": (
        "A nonlinear refinement reached its iteration limit (100 for a homography, 200 for a camera), "
        "or the homography estimation could not start."
    ),
    "ZELM_ERR_UNDISTORT": (
        "Lens distortion could not be removed from a point: its 2 x 2 system was singular, or "
        "Newton's iteration did not converge within 20 steps."
    ),
    "ZELM_ERR_PATTERN": "Too few dots were found in an image.",
    "ZELM_ERR_PATTERN_MARKERS": (
        "The markers of the plate could not be identified: wrong number, no right angle, or axes of "
        "very different length."
    ),
    "ZELM_ERR_PATTERN_GRID": (
        "The marker frame or the grid homography is singular or could not be estimated."
    ),
    "ZELM_ERR_STEREO_GEOMETRY": "The fundamental matrix of a pair could not be formed.",
    "ZELM_ERR_PATTERN_PLATE": "No plate was found in the image.",
}

# What each function says of its statuses.
WORDS = {
    "zelmBinOtsuThresholdHistogram": {
        "ZELM_ERR_PARAM": "iBins < 1 or a NULL histogram",
    },
    "zelmBinOtsuThresholdImage": {
        "ZELM_ERR_PARAM": "a NULL pointer",
    },
    "zelmBinOtsuThresholdGray": {
        "ZELM_ERR_PARAM": "iCount < 1 or NULL values",
    },
    "zelmBinBinaryImage": {
        "ZELM_ERR_PARAM": (
            "with nothing written: a NULL pointer, a source width or height below 1, a negative region "
            "size, or a region that ends beyond the destination"
        ),
    },
    "zelmBinDilation": {
        "ZELM_ERR_PARAM": (
            "a NULL pointer, iIterations < 1, a source or a region that is not wider and higher than "
            "iIterations, or a region that ends beyond the destination"
        ),
        "ZELM_ERR_MEMORY": "(one plane of the region's size)",
    },
    "zelmBinErosion": {
        "ZELM_ERR_PARAM": (
            "a NULL pointer, iIterations < 1, a source or a region that is not wider and higher than "
            "iIterations, or a region that ends beyond the destination"
        ),
        "ZELM_ERR_MEMORY": "(one plane of the region's size)",
    },
    "zelmBinOpening": {
        "ZELM_ERR_PARAM": "as of zelmBinDilation() or a region not at the origin",
        "ZELM_ERR_MEMORY": "(two planes of the region's size)",
    },
    "zelmBinClosing": {
        "ZELM_ERR_PARAM": "as of zelmBinDilation() or a region not at the origin",
        "ZELM_ERR_MEMORY": "(two planes of the region's size)",
    },
    "zelmBinBlob": {
        "ZELM_ERR_PARAM": (
            "with nothing written: a NULL pointer, a size of image or region below 1, an option out of "
            "range, or *taBlobs not NULL"
        ),
        "ZELM_ERR_MEMORY": (
            "*taBlobs is then NULL or an array that the caller still releases with zelmBinFree()"
        ),
    },
    "zelmCalibNormalizeData": {
        "ZELM_ERR_PARAM": "when iDim is neither 2 nor 3, iN < 1, or daSrc or daDst is NULL, nothing written",
    },
    "zelmCalibCalcHomography": {
        "ZELM_ERR_PARAM": "iN < 4 or a NULL pointer",
        "ZELM_ERR_MEMORY": "no memory for the copies of the points or the linear system",
        "ZELM_ERR_EIGEN_NOT_CONVERGED": "the eigen-solver failed on the linear system",
        "ZELM_ERR_CALIB_NOT_CONVERGED": (
            "undetermined or identical points, points that are not finite, a singular step, no memory "
            "during the refinement, or 100 steps without convergence"
        ),
    },
    "zelmCalibCameraMatrix": {
        "ZELM_ERR_PARAM": "for another model or a NULL pointer, nothing written",
    },
    "zelmCalibChange3Dto2D": {
        "ZELM_ERR_PARAM": "for another model or a NULL pointer, nothing written",
    },
    "zelmCalibDistortPoint": {
        "ZELM_ERR_PARAM": "for a NULL pointer, nothing written",
    },
    "zelmCalibUnDistortPoint": {
        "ZELM_ERR_PARAM": "for a NULL pointer, nothing written",
        "ZELM_ERR_UNDISTORT": "when a step's equations are singular or 20 steps do not converge",
    },
    "zelmCalibRodrigues": {
        "ZELM_ERR_PARAM": "for another direction or a NULL pointer, nothing written",
    },
    "zelmCalibCameraParam": {
        "ZELM_ERR_PARAM": "for a bad model, count of views or pointer, checked in this order",
        "ZELM_ERR_CALIB_HOMOGRAPHY": (
            "when a view has fewer than 4 dots or NULL arrays, or its homography fails (dots on a line, "
            "values that are not finite)"
        ),
        "ZELM_ERR_CALIB_ESTIMATE": (
            "when the views do not determine a camera (all parallel, or too noisy for their tilts) or, "
            "for model 2, a reference dot is missing or the three coincide in the image"
        ),
        "ZELM_ERR_CALIB_NOT_CONVERGED": (
            "when the refinement takes more than 200 steps or a system of its is singular"
        ),
        "ZELM_ERR_MEMORY": (
            "(ZELM_ERR_CALIB_HOMOGRAPHY when memory runs out within the refinement of a homography)"
        ),
        "ZELM_ERR_SVD_FAILED": "from the start value of a pose",
    },
    "zelmCgSortByArgument": {
        "ZELM_ERR_PARAM": "when iN < 2 or a pointer is NULL",
    },
    "zelmCgConvexHull": {
        "ZELM_ERR_PARAM": "when iN < 1 or a pointer is NULL",
    },
    "zelmCgSmallestEnclosingCircle": {
        "ZELM_ERR_PARAM": "when iN < 1 or a pointer is NULL",
    },
    "zelmCgIntersectionOfTwoSegments": {
        "ZELM_ERR_PARAM": "when a pointer is NULL",
    },
    "zelmCgPointInConvexPolygon": {
        "ZELM_ERR_PARAM": "when iN < 3 or a pointer is NULL",
    },
    "zelmCgIntersectionLineAndConvexPolygon": {
        "ZELM_ERR_PARAM": (
            "when iN < 2, a polygon or output pointer is NULL or the line's normal is shorter than 1e-13"
        ),
    },
    "zelmCgIntersectionSegmentAndConvexPolygon": {
        "ZELM_ERR_PARAM": "when iN < 2 or a pointer is NULL",
    },
    "zelmClp2dLineTwoPoints": {
        "ZELM_ERR_DEGENERATE": "when the points are closer than 1e-14",
    },
    "zelmClp2dMidperpendicularTwoPoints": {
        "ZELM_ERR_DEGENERATE": "when the points are closer than 1e-14",
    },
    "zelmClp2dVerticalLinePointAndLine": {
        "ZELM_ERR_DEGENERATE": "when the line's normal is shorter than 1e-14",
    },
    "zelmClp2dIntersectionTwoLines": {
        "ZELM_ERR_DEGENERATE": (
            "when a normal is shorter than 1e-14, the lines are parallel, or the work memory of the "
            "linear solve could not be obtained"
        ),
    },
    "zelmClp2dAngleTwoLines": {
        "ZELM_ERR_DEGENERATE": (
            "when a normal is shorter than 1e-14 or the lines are parallel (angle below 1e-14) and more "
            "than 1e-14 apart"
        ),
    },
    "zelmClp2dCenterLineOfTwoLines": {
        "ZELM_ERR_DEGENERATE": "when a normal is shorter than 1e-14",
    },
    "zelmClp2dDistancePointToLine": {
        "ZELM_ERR_DEGENERATE": "when the line's normal is shorter than 1e-14",
    },
    "zelmClp2dFootOfPerpendicularToLine": {
        "ZELM_ERR_DEGENERATE": "when the line's normal is shorter than 1e-14 or the solve fails",
    },
    "zelmClp2dTranslationOfLine": {
        "ZELM_ERR_DEGENERATE": "when the line's normal is shorter than 1e-14",
    },
    "zelmClp2dCircleThreePoints": {
        "ZELM_ERR_DEGENERATE": "when the points are collinear or coincide, or the solve fails",
    },
    "zelmClp2dIntersectionLineAndCircle": {
        "ZELM_ERR_DEGENERATE": "when the normal or the radius is below 1e-14 or the line misses the circle",
    },
    "zelmClp2dTangentPointToCircle": {
        "ZELM_ERR_DEGENERATE": "when the radius is below 1e-14, P lies inside the circle, or a solve fails",
    },
    "zelmClp2dClosestToCircle": {
        "ZELM_ERR_DEGENERATE": "when the radius is below 1e-14",
    },
    "zelmClp3dLineTwoPoints": {
        "ZELM_ERR_DEGENERATE": "when the points are closer than 1e-14",
    },
    "zelmClp3dFootOfPerpendicularToLine": {
        "ZELM_ERR_DEGENERATE": "when the direction is shorter than 1e-14",
    },
    "zelmClp3dVerticalLinePointAndLine": {
        "ZELM_ERR_DEGENERATE": (
            "when the direction is shorter than 1e-14 or P is closer than 1e-14 to its foot, that is on "
            "the line"
        ),
    },
    "zelmClp3dDistancePointToLine": {
        "ZELM_ERR_DEGENERATE": "when the direction is shorter than 1e-14",
    },
    "zelmClp3dDistanceTwoLines": {
        "ZELM_ERR_DEGENERATE": "when a direction is shorter than 1e-14",
    },
    "zelmClp3dPlaneThreePoints": {
        "ZELM_ERR_DEGENERATE": (
            "when P2 or P3 is closer than 1e-14 to P1, or (P2 - P1) x (P3 - P1), twice the area of the "
            "triangle, is shorter than 1e-14"
        ),
    },
    "zelmClp3dVerticalPlanePointAndVector": {
        "ZELM_ERR_DEGENERATE": "when the normal is shorter than 1e-14",
    },
    "zelmClp3dVerticalLinePointAndPlane": {
        "ZELM_ERR_DEGENERATE": "when the normal is shorter than 1e-14",
    },
    "zelmClp3dDistancePointToPlane": {
        "ZELM_ERR_DEGENERATE": "when the normal is shorter than 1e-14",
    },
    "zelmClp3dIntersectionLineAndPlane": {
        "ZELM_ERR_DEGENERATE": (
            "when the direction or the normal is shorter than 1e-14, or their dot product as given is "
            "below 1e-14 in magnitude (line parallel to the plane or in it)"
        ),
    },
    "zelmClp3dFootOfPerpendicularToPlane": {
        "ZELM_ERR_DEGENERATE": (
            "when the normal is shorter than 1e-7, not 1e-14 (`docs/decisions.md#raw-normal-foot`)"
        ),
    },
    "zelmClp3dAngleLineAndPlane": {
        "ZELM_ERR_DEGENERATE": (
            "when the direction or the normal is shorter than 1e-14, or when direction . normal is below "
            "1e-14 and normal . point + d is above 1e-14"
        ),
    },
    "zelmClp3dIntersectionTwoPlanes": {
        "ZELM_ERR_DEGENERATE": (
            "when a normal, or the cross product of the normals as given (parallel planes), is shorter "
            "than 1e-14"
        ),
    },
    "zelmClp3dAngleTwoPlanes": {
        "ZELM_ERR_DEGENERATE": (
            "when a normal is shorter than 1e-14, or the planes are parallel (angle below 1e-14) and more "
            "than 1e-14 apart"
        ),
    },
    "zelmMiscChangeRectToRect2": {
        "ZELM_ERR_PARAM": "when a pointer is NULL",
    },
    "zelmMiscChangeRect2ToRect": {
        "ZELM_ERR_PARAM": "when a pointer is NULL",
    },
    "zelmMiscPlotPointsOfLine": {
        "ZELM_ERR_PARAM": "when a pointer is NULL",
    },
    "zelm2ViewCalibOpen": {
        "ZELM_ERR_PARAM": (
            "with nothing allocated: views below 3, a NULL pointer, a live handle, a length of the plate "
            "that is not positive, markers < 1, polarity other than 0 or 1, an image size < 1, a model "
            "other than 0, 1 or 2"
        ),
        "ZELM_ERR_MEMORY": "the object cannot be had, or its calibration block would exceed 2^31 - 1 bytes",
    },
    "zelm2ViewGetCalibDataSize": {
        "ZELM_ERR_PARAM": "NULL handle, or a loaded block whose n gives no size that an int32 can hold",
    },
    "zelm2ViewSaveCalibData": {
        "ZELM_ERR_PARAM": "a NULL pointer, or a block without a size",
    },
    "zelm2ViewLoadCalibData": {
        "ZELM_ERR_PARAM": "size < 1, a NULL pointer, a live handle",
    },
    "zelm2ViewGetCamHomMat": {
        "ZELM_ERR_PARAM": "a NULL pointer, another camera",
    },
    "zelm2ViewGetCamFndMat": {
        "ZELM_ERR_PARAM": "a NULL pointer",
    },
    "zelm2ViewGetCamIntParam": {
        "ZELM_ERR_PARAM": "a NULL pointer, another camera than 'L' or 'R'",
    },
    "zelm2ViewGetCamExtParam": {
        "ZELM_ERR_PARAM": "a NULL pointer, a view outside 0..n - 1, another camera than 'L' or 'R'",
    },
    "zelm2ViewGetPtnNum": {
        "ZELM_ERR_PARAM": "a NULL pointer, a loaded object, a view outside 0..n - 1, another camera",
    },
    "zelm2ViewGetPattern": {
        "ZELM_ERR_PARAM": "a NULL pointer, a loaded object, a view outside 0..n - 1, another camera",
    },
    "zelm2ViewReadPtnImg": {
        "ZELM_ERR_PARAM": (
            "(nothing is read): a NULL handle or image that is needed, a loaded object, a view outside "
            "0..n - 1, a region that is empty or leaves its image"
        ),
        "ZELM_ERR_PATTERN_PLATE": "no blob covers a twentieth of the image, or the image is of one gray level",
        "ZELM_ERR_PATTERN": (
            "fewer dots than minDots after labelling, after dropping outliers or on the grid, or fewer "
            "than 2 with an ellipse"
        ),
        "ZELM_ERR_PATTERN_MARKERS": (
            "no mean dot area, not the required number of dots of marker size, no right angle, axes that "
            "differ by more than 100 pixels"
        ),
        "ZELM_ERR_PATTERN_GRID": (
            "the frame or the homography is singular, has too few dots, or d6 / d4 or d7 / d5 is not a "
            "number or above a million"
        ),
    },
    "zelm2ViewReadPtnImg_vImagePlanar8": {
        "ZELM_ERR_PARAM": (
            "(nothing is read): a NULL handle or image that is needed, a loaded object, a view outside "
            "0..n - 1, a region that is empty or leaves its image; also for two NULL buffers, a buffer "
            "without data, of another size, or with rows shorter than its width"
        ),
        "ZELM_ERR_MEMORY": "also when a packed copy cannot be had",
        "ZELM_ERR_PATTERN_PLATE": "no blob covers a twentieth of the image, or the image is of one gray level",
        "ZELM_ERR_PATTERN": (
            "fewer dots than minDots after labelling, after dropping outliers or on the grid, or fewer "
            "than 2 with an ellipse"
        ),
        "ZELM_ERR_PATTERN_MARKERS": (
            "no mean dot area, not the required number of dots of marker size, no right angle, axes that "
            "differ by more than 100 pixels"
        ),
        "ZELM_ERR_PATTERN_GRID": (
            "the frame or the homography is singular, has too few dots, or d6 / d4 or d7 / d5 is not a "
            "number or above a million"
        ),
    },
    "zelm2ViewReadPtnImg_vImageARGB8888": {
        "ZELM_ERR_PARAM": (
            "(nothing is read): a NULL handle or image that is needed, a loaded object, a view outside "
            "0..n - 1, a region that is empty or leaves its image; also for two NULL buffers, a buffer "
            "without data, of another size, or with rows shorter than its width"
        ),
        "ZELM_ERR_MEMORY": "also when a packed copy cannot be had",
        "ZELM_ERR_PATTERN_PLATE": "no blob covers a twentieth of the image, or the image is of one gray level",
        "ZELM_ERR_PATTERN": (
            "fewer dots than minDots after labelling, after dropping outliers or on the grid, or fewer "
            "than 2 with an ellipse"
        ),
        "ZELM_ERR_PATTERN_MARKERS": (
            "no mean dot area, not the required number of dots of marker size, no right angle, axes that "
            "differ by more than 100 pixels"
        ),
        "ZELM_ERR_PATTERN_GRID": (
            "the frame or the homography is singular, has too few dots, or d6 / d4 or d7 / d5 is not a "
            "number or above a million"
        ),
    },
    "zelm2ViewCalibCameraParam": {
        "ZELM_ERR_PARAM": "a NULL pointer, a loaded object, left model not 2 with right model 2",
        "ZELM_ERR_STEREO_GEOMETRY": (
            "no fundamental matrix, as for two cameras in the same place or a parallel camera whose scale "
            "is below about 3e-5 pixels a plate unit"
        ),
        "ZELM_ERR_CALIB_HOMOGRAPHY": (
            "no rectifying pair; codes of zelmCalibCameraParam (left camera first) and of the matrix "
            "toolkit"
        ),
    },
    "zelm2ViewChange2Dto3D": {
        "ZELM_ERR_PARAM": "for a NULL pointer or two model-2 cameras",
        "ZELM_ERR_UNDISTORT": "when a pixel's distortion cannot be removed",
        "ZELM_ERR_DEGENERATE": "when the linear system cannot be solved",
    },
    "zelm2ViewChange3Dto2D": {
        "ZELM_ERR_PARAM": "for a NULL pointer or another camera",
    },
    "zelm2ViewCalcEpiLine": {
        "ZELM_ERR_PARAM": "for a NULL pointer or another camera",
        "ZELM_ERR_UNDISTORT": "when the pixel's distortion cannot be removed",
    },
    "zelm2ViewChangeHomEpiLine": {
        "ZELM_ERR_PARAM": "for a NULL pointer or another camera",
        "ZELM_ERR_DEGENERATE": "when the rectifying transform cannot be formed",
    },
    "zelm2ViewMakeHomImage": {
        "ZELM_ERR_PARAM": "for a NULL pointer or another camera",
        "ZELM_ERR_DEGENERATE": "when the rectifying transform cannot be formed",
    },
    "zelm2ViewMakeHomImage_vImageARGB8888": {
        "ZELM_ERR_PARAM": "for a NULL pointer or another camera",
        "ZELM_ERR_DEGENERATE": "when the rectifying transform cannot be formed",
    },
    "zelm2ViewCalcHomImgPoint": {
        "ZELM_ERR_PARAM": "for a NULL pointer or another camera",
        "ZELM_ERR_DEGENERATE": "when the rectifying transform cannot be formed",
        "ZELM_ERR_UNDISTORT": "when the pixel's distortion cannot be removed",
    },
    "zelm2ViewInvHomImgPoint": {
        "ZELM_ERR_PARAM": "for a NULL pointer or another camera",
        "ZELM_ERR_DEGENERATE": "when the rectifying transform cannot be formed",
    },
    "zelm2ViewUnDistortImage": {
        "ZELM_ERR_PARAM": "for a NULL pointer or another camera",
    },
    "zelm2ViewUnDistortImage_vImageARGB8888": {
        "ZELM_ERR_PARAM": "for a NULL pointer or another camera",
    },
    "zelm2ViewDistortPoint": {
        "ZELM_ERR_PARAM": "for a NULL pointer or another camera",
    },
    "zelm2ViewUnDistortPoint": {
        "ZELM_ERR_PARAM": "for a NULL pointer or another camera",
    },
    "zelmCstmDrovnCalcMagnification": {
        "ZELM_ERR_PARAM": "when the handle or an output is NULL",
    },
    "zelmCstmDrovnCalcHomImgMemSize": {
        "ZELM_ERR_PARAM": "for a NULL pointer, a bad region or another camera",
        "ZELM_ERR_DEGENERATE": (
            "when the homography cannot be formed, a corner is carried to infinity or the size exceeds 32 "
            "bits"
        ),
        "ZELM_ERR_UNDISTORT": "when a corner's distortion cannot be removed",
    },
    "zelmCstmDrovnChangeOrg2DtoExp2D": {
        "ZELM_ERR_PARAM": "for a NULL pointer, a negative size or dVal not >= 1",
    },
    "zelmCstmDrovnChangeOrg2DtoHom2D": {
        "ZELM_ERR_PARAM": "for a NULL pointer or another camera",
        "ZELM_ERR_DEGENERATE": "when the homography cannot be formed",
        "ZELM_ERR_UNDISTORT": "when the pixel's distortion cannot be removed",
    },
    "zelmCstmDrovnChangeOrg2DtoHom2DExp": {
        "ZELM_ERR_PARAM": "for a NULL pointer or another camera",
        "ZELM_ERR_DEGENERATE": "when the homography cannot be formed",
        "ZELM_ERR_UNDISTORT": "when the pixel's distortion cannot be removed",
    },
    "zelmCstmDrovnInvHomImgPointExp": {
        "ZELM_ERR_PARAM": "for a NULL pointer, a bad expansion or another camera",
        "ZELM_ERR_DEGENERATE": "when the homography cannot be formed",
    },
    "zelmCstmDrovnChangeHomEpiLineExp": {
        "ZELM_ERR_PARAM": "for a NULL pointer, a bad expansion or another camera",
        "ZELM_ERR_DEGENERATE": "when the homography cannot be formed",
    },
    "zelmCstmDrovnMakeHomImageExp": {
        "ZELM_ERR_PARAM": "for a NULL record or handle, a bad expansion or another camera",
        "ZELM_ERR_DEGENERATE": "when the homography cannot be formed",
    },
    "zelmCstmDrovnMakeHomImageExp_vImagePlanar8": {
        "ZELM_ERR_PARAM": "for a NULL record or handle, a bad expansion or another camera",
        "ZELM_ERR_DEGENERATE": "when the homography cannot be formed",
    },
    "zelmCstmDrovnMakeHomImageExp_vImageARGB8888": {
        "ZELM_ERR_PARAM": "for a NULL record or handle, a bad expansion or another camera",
        "ZELM_ERR_DEGENERATE": "when the homography cannot be formed",
    },
    "zelmCstmDrovnMakeHomImageMap": {
        "ZELM_ERR_PARAM": "for a NULL record or handle, a bad expansion or another camera",
        "ZELM_ERR_DEGENERATE": "when the homography cannot be formed",
    },
    "zelmCstmDrovnRemapImage": {
        "ZELM_ERR_PARAM": (
            "when a pointer is NULL, a size is not positive, or the box is not empty and reaches outside "
            "the maps or the destination"
        ),
    },
    "zelmCstmDrovnRemapImage_vImagePlanar8": {
        "ZELM_ERR_PARAM": (
            "when a pointer is NULL, a size is not positive, or the box is not empty and reaches outside "
            "the maps or the destination"
        ),
    },
    "zelmCstmDrovnRemapImage_vImageARGB8888": {
        "ZELM_ERR_PARAM": (
            "when a pointer is NULL, a size is not positive, or the box is not empty and reaches outside "
            "the maps or the destination"
        ),
    },
    "zelmCstmDrovnExpandImage": {
        "ZELM_ERR_PARAM": "for a NULL pointer, a negative size, dVal not >= 1 or another camera",
    },
    "zelmCstmDrovnExpandImage_vImagePlanar8": {
        "ZELM_ERR_PARAM": "for a NULL pointer, a negative size, dVal not >= 1 or another camera",
    },
    "zelmCstmDrovnExpandImage_vImageARGB8888": {
        "ZELM_ERR_PARAM": "for a NULL pointer, a negative size, dVal not >= 1 or another camera",
    },
    "zelmCstmDrovnGetPixelOnEpiLine": {
        "ZELM_ERR_PARAM": "for a NULL pointer, a bad rectangle or a line without direction",
        "ZELM_ERR_DEGENERATE": (
            "when the line does not cross the rectangle in two points (also when it runs along a side), "
            "or crosses it beyond 2^30"
        ),
    },
    "zelmCstmDrovnCalcBasicStatisticsOfRefImg": {
        "ZELM_ERR_PARAM": "when the record or its pixels are NULL",
        "ZELM_ERR_DEGENERATE": (
            "when width * height or height is below 1, or the mask leaves a pattern without pixels"
        ),
    },
    "zelmCstmDrovnCalcBasicStatisticsOfRefImg_vImagePlanar8": {
        "ZELM_ERR_PARAM": "when the record or its pixels are NULL",
        "ZELM_ERR_DEGENERATE": (
            "when width * height or height is below 1, or the mask leaves a pattern without pixels"
        ),
    },
    "zelmCstmDrovnSearchOnEpiLine": {
        "ZELM_ERR_PARAM": (
            "when a pointer is NULL, a size, the anchor, the region, maxResults or the mode is out of "
            "range, or without a search mask a mean or sigma is negative or not a number, or the line's "
            "normal is shorter than 1e-13"
        ),
        "ZELM_ERR_DEGENERATE": (
            "when the line misses the region, touches it in one point, runs along its border or is not "
            "finite, and when memory fails while it is clipped"
        ),
    },
    "zelmCstmDrovnSearchOnEpiLine_vImagePlanar8": {
        "ZELM_ERR_PARAM": (
            "when a pointer is NULL, a size, the anchor, the region, maxResults or the mode is out of "
            "range, or without a search mask a mean or sigma is negative or not a number, or the line's "
            "normal is shorter than 1e-13"
        ),
        "ZELM_ERR_DEGENERATE": (
            "when the line misses the region, touches it in one point, runs along its border or is not "
            "finite, and when memory fails while it is clipped"
        ),
    },
    "zelmEdge1dDiffMax": {
        "ZELM_ERR_PARAM": (
            "image, its pixels, a point or an output is NULL; width or height < 1; iSign outside -1..1; a "
            "point is not finite, or the segment is 2^31 pixels long or longer"
        ),
        "ZELM_ERR_DEGENERATE": "the two points are equal, or no sample of the segment lies inside the image",
        "ZELM_ERR_MEMORY": (
            "a work buffer could not be allocated, or the window of the filter leaves the profile (only "
            "with a filterSize other than 5 or 7)"
        ),
    },
    "zelmEdge1dGenDiffMax": {
        "ZELM_ERR_PARAM": (
            "image, its pixels, a point or an output is NULL; width or height < 1; iSign outside -1..1; a "
            "point is not finite, or the segment is 2^31 pixels long or longer"
        ),
        "ZELM_ERR_DEGENERATE": "the two points are equal, or no sample of the segment lies inside the image",
        "ZELM_ERR_MEMORY": (
            "a work buffer could not be allocated, or the window of the filter leaves the profile (only "
            "with a filterSize other than 5 or 7)"
        ),
    },
    "zelmEdge1dGenNearest": {
        "ZELM_ERR_PARAM": (
            "image, its pixels, a point or an output is NULL; width or height < 1; iSign outside -1..1; a "
            "point is not finite, or the segment is 2^31 pixels long or longer"
        ),
        "ZELM_ERR_DEGENERATE": "the two points are equal, or no sample of the segment lies inside the image",
        "ZELM_ERR_MEMORY": (
            "a work buffer could not be allocated, or the window of the filter leaves the profile (only "
            "with a filterSize other than 5 or 7)"
        ),
    },
    "zelmEdge1dGenGradMax": {
        "ZELM_ERR_PARAM": (
            "image, its pixels, a point or an output is NULL; width or height < 1; iSign outside -1..1; a "
            "point is not finite, or the segment is 2^31 pixels long or longer"
        ),
        "ZELM_ERR_DEGENERATE": "the two points are equal, or no sample of the segment lies inside the image",
        "ZELM_ERR_MEMORY": (
            "a work buffer could not be allocated, or the window of the filter leaves the profile (only "
            "with a filterSize other than 5 or 7)"
        ),
    },
    "zelmEdge1dGenNearestC": {
        "ZELM_ERR_PARAM": (
            "image, its pixels, a point or an output is NULL; width or height < 1; iSign outside -1..1; a "
            "point is not finite, or the segment is 2^31 pixels long or longer"
        ),
        "ZELM_ERR_DEGENERATE": "the two points are equal, or no sample of the segment lies inside the image",
        "ZELM_ERR_MEMORY": (
            "a work buffer could not be allocated, or the window of the filter leaves the profile (only "
            "with a filterSize other than 5 or 7)"
        ),
    },
    "zelmEdge1dManual": {
        "ZELM_ERR_PARAM": (
            "image, its pixels, a point or an output is NULL; width or height < 1; iSign outside -1..1; a "
            "point is not finite, or the segment is 2^31 pixels long or longer; also when tParam is NULL "
            "or its selector is outside 0..4"
        ),
        "ZELM_ERR_DEGENERATE": "the two points are equal, or no sample of the segment lies inside the image",
        "ZELM_ERR_MEMORY": (
            "a work buffer could not be allocated, or the window of the filter leaves the profile (only "
            "with a filterSize other than 5 or 7)"
        ),
    },
    "zelmFitMean1dim": {
        "ZELM_ERR_PARAM": (
            "(nothing allocated): fewer points than the least number, NULL points or result, iRobust "
            "other than 0 and 1, a robust fit with a threshold that is not > 0"
        ),
        "ZELM_ERR_FIT_DATA": "every point was rejected, or a robust fit met residuals that are not numbers",
        "ZELM_ERR_EIGEN_NOT_CONVERGED": (
            "(not of means and circles): points that are not finite; of lines and planes also points that "
            "all coincide, or of which only coinciding ones keep a weight"
        ),
    },
    "zelmFitMean2dim": {
        "ZELM_ERR_PARAM": (
            "(nothing allocated): fewer points than the least number, NULL points or result, iRobust "
            "other than 0 and 1, a robust fit with a threshold that is not > 0"
        ),
        "ZELM_ERR_FIT_DATA": "every point was rejected, or a robust fit met residuals that are not numbers",
        "ZELM_ERR_EIGEN_NOT_CONVERGED": (
            "(not of means and circles): points that are not finite; of lines and planes also points that "
            "all coincide, or of which only coinciding ones keep a weight"
        ),
    },
    "zelmFitMean3dim": {
        "ZELM_ERR_PARAM": (
            "(nothing allocated): fewer points than the least number, NULL points or result, iRobust "
            "other than 0 and 1, a robust fit with a threshold that is not > 0"
        ),
        "ZELM_ERR_FIT_DATA": "every point was rejected, or a robust fit met residuals that are not numbers",
        "ZELM_ERR_EIGEN_NOT_CONVERGED": (
            "(not of means and circles): points that are not finite; of lines and planes also points that "
            "all coincide, or of which only coinciding ones keep a weight"
        ),
    },
    "zelmFitLine": {
        "ZELM_ERR_PARAM": (
            "(nothing allocated): fewer points than the least number, NULL points or result, iRobust "
            "other than 0 and 1, a robust fit with a threshold that is not > 0"
        ),
        "ZELM_ERR_FIT_DATA": "every point was rejected, or a robust fit met residuals that are not numbers",
        "ZELM_ERR_EIGEN_NOT_CONVERGED": (
            "(not of means and circles): points that are not finite; of lines and planes also points that "
            "all coincide, or of which only coinciding ones keep a weight"
        ),
    },
    "zelmFitLineIn3d": {
        "ZELM_ERR_PARAM": (
            "(nothing allocated): fewer points than the least number, NULL points or result, iRobust "
            "other than 0 and 1, a robust fit with a threshold that is not > 0"
        ),
        "ZELM_ERR_FIT_DATA": "every point was rejected, or a robust fit met residuals that are not numbers",
        "ZELM_ERR_EIGEN_NOT_CONVERGED": (
            "(not of means and circles): points that are not finite; of lines and planes also points that "
            "all coincide, or of which only coinciding ones keep a weight"
        ),
    },
    "zelmFitPlane": {
        "ZELM_ERR_PARAM": (
            "(nothing allocated): fewer points than the least number, NULL points or result, iRobust "
            "other than 0 and 1, a robust fit with a threshold that is not > 0"
        ),
        "ZELM_ERR_FIT_DATA": "every point was rejected, or a robust fit met residuals that are not numbers",
        "ZELM_ERR_EIGEN_NOT_CONVERGED": (
            "(not of means and circles): points that are not finite; of lines and planes also points that "
            "all coincide, or of which only coinciding ones keep a weight"
        ),
    },
    "zelmFitEllipse": {
        "ZELM_ERR_FIT_DATA": (
            "every point was rejected, or a robust fit met residuals that are not numbers; also when a "
            "robust fit leaves fewer than 5 points with weight"
        ),
        "ZELM_ERR_FIT_NOT_ELLIPSE": "the best conic is no ellipse",
        "ZELM_ERR_SINGULAR": "degenerate points",
        "ZELM_ERR_PARAM": (
            "(nothing allocated): fewer points than the least number, NULL points or result, iRobust "
            "other than 0 and 1, a robust fit with a threshold that is not > 0"
        ),
        "ZELM_ERR_EIGEN_NOT_CONVERGED": (
            "(not of means and circles): points that are not finite; of lines and planes also points that "
            "all coincide, or of which only coinciding ones keep a weight"
        ),
    },
    "zelmFitEllipseC": {
        "ZELM_ERR_FIT_DATA": (
            "every point was rejected, or a robust fit met residuals that are not numbers; also when a "
            "robust fit leaves fewer than 5 points with weight"
        ),
        "ZELM_ERR_FIT_NOT_ELLIPSE": "the best conic is no ellipse",
        "ZELM_ERR_SINGULAR": "degenerate points",
        "ZELM_ERR_PARAM": (
            "(nothing allocated): fewer points than the least number, NULL points or result, iRobust "
            "other than 0 and 1, a robust fit with a threshold that is not > 0"
        ),
        "ZELM_ERR_EIGEN_NOT_CONVERGED": (
            "(not of means and circles): points that are not finite; of lines and planes also points that "
            "all coincide, or of which only coinciding ones keep a weight"
        ),
    },
    "zelmFitConics": {
        "ZELM_ERR_FIT_DATA": (
            "every point was rejected, or a robust fit met residuals that are not numbers; also when a "
            "robust fit leaves fewer than 5 points with weight"
        ),
        "ZELM_ERR_PARAM": (
            "(nothing allocated): fewer points than the least number, NULL points or result, iRobust "
            "other than 0 and 1, a robust fit with a threshold that is not > 0"
        ),
        "ZELM_ERR_EIGEN_NOT_CONVERGED": (
            "(not of means and circles): points that are not finite; of lines and planes also points that "
            "all coincide, or of which only coinciding ones keep a weight"
        ),
    },
    "zelmFitCircle": {
        "ZELM_ERR_PARAM": (
            "as of the other fits, and for points on one line or in one place, or that are not finite"
        ),
        "ZELM_ERR_FIT_DATA": (
            "fewer than 3 independent points kept weight, or memory ran out, in the robust loop"
        ),
        "ZELM_ERR_EIGEN_NOT_CONVERGED": (
            "(not of means and circles): points that are not finite; of lines and planes also points that "
            "all coincide, or of which only coinciding ones keep a weight"
        ),
    },
    "zelmFitEllipsoid": {
        "ZELM_ERR_FIT_DATA": (
            "every point was rejected, or a robust fit met residuals that are not numbers; also when a "
            "robust fit leaves fewer than 9 points with weight"
        ),
        "ZELM_ERR_FIT_NOT_ELLIPSOID": "the best quadric is no ellipsoid",
        "ZELM_ERR_SINGULAR": "degenerate points",
        "ZELM_ERR_PARAM": (
            "(nothing allocated): fewer points than the least number, NULL points or result, iRobust "
            "other than 0 and 1, a robust fit with a threshold that is not > 0"
        ),
        "ZELM_ERR_EIGEN_NOT_CONVERGED": (
            "(not of means and circles): points that are not finite; of lines and planes also points that "
            "all coincide, or of which only coinciding ones keep a weight"
        ),
    },
    "zelmFitCone": {
        "ZELM_ERR_FIT_DATA": (
            "every point was rejected, or a robust fit met residuals that are not numbers; also when a "
            "robust fit leaves fewer than 9 points with weight"
        ),
        "ZELM_ERR_FIT_NOT_CONE": (
            "the determinant of the quadratic part is below 1e-12 in the normalised frame (cylinders, "
            "planes), or its eigenvalues are all of one sign (ellipsoids)"
        ),
        "ZELM_ERR_PARAM": (
            "(nothing allocated): fewer points than the least number, NULL points or result, iRobust "
            "other than 0 and 1, a robust fit with a threshold that is not > 0"
        ),
        "ZELM_ERR_EIGEN_NOT_CONVERGED": (
            "(not of means and circles): points that are not finite; of lines and planes also points that "
            "all coincide, or of which only coinciding ones keep a weight"
        ),
    },
    "zelmConvertColorToGray_vImageARGB8888toPlanar8": {
        "ZELM_ERR_PARAM": (
            "nothing written, if a pointer is NULL, the source is empty, data is missing in either "
            "buffer, or the widths or heights differ"
        ),
    },
    "zelmMatMul": {
        "ZELM_ERR_DEGENERATE": "if iN != iNB",
    },
    "zelmMatGenMul": {
        "ZELM_ERR_DEGENERATE": "if iN != iNB",
    },
    "zelmMatMulTransposed2": {
        "ZELM_ERR_DEGENERATE": "if iN != iQ (flag 0) or iM != iP (otherwise)",
    },
    "zelmMatInvert": {
        "ZELM_ERR_SINGULAR": (
            "if a row holds only zeros, a pivot is exactly zero, the product of all pivots is exactly "
            "zero (deliberately also when it merely underflows, as for diag(1e-200, 1e-200)), or an entry "
            "of A is not finite"
        ),
    },
    "zelmMatCholeskyDecomp": {
        "ZELM_ERR_NOT_POSITIVE_DEFINITE": (
            "if a diagonal term A(k, k) - sum U(i, k)^2 is below 1e-11 or not a number"
        ),
    },
    "zelmMatSVD": {
        "ZELM_ERR_SVD_FAILED": (
            "with nothing written if iM < iN; with partly written outputs if a value needs more than 29 "
            "QR steps (`docs/decisions.md#svd-pass-30`), or if an entry of A or a value is not finite"
        ),
        "ZELM_ERR_MEMORY": (
            "the outputs then either untouched or, if only the sort lacked memory, holding the unsorted "
            "decomposition"
        ),
    },
    "zelmMatSolveSVD": {
        "ZELM_ERR_MEMORY": (
            "the outputs then either untouched or, if only the sort lacked memory, holding the unsorted "
            "decomposition"
        ),
        "ZELM_ERR_SVD_FAILED": "as zelmMatSVD",
    },
    "zelmMatJacobiEigen": {
        "ZELM_ERR_MEMORY": "nothing written",
        "ZELM_ERR_EIGEN_NOT_CONVERGED": (
            "after 100 sweeps (also of the zero matrix), or at once if S is not finite (entries that are "
            "not finite, or above about 1e154 unless the matrix is diagonal): values are not written, "
            "vectors hold the rotations made so far"
        ),
    },
    "zelmMatchBasic": {
        "ZELM_ERR_PARAM": (
            "an unknown mode, iN < 2, a NULL pointer, a robust mode with a threshold that is not > 0"
        ),
        "ZELM_ERR_DEGENERATE": (
            "a robust mode rejected every point, or a minimax mode met a circle that is not finite"
        ),
    },
    "zelmMatchPoints": {
        "ZELM_ERR_PARAM": "when iN < 2 or a pointer is NULL",
    },
    "zelmMatchDelta": {
        "ZELM_ERR_PARAM": "when a pointer is NULL",
    },
    "zelmMathNormalization": {
        "ZELM_ERR_DEGENERATE": "if the length is degenerate (or iN below 1)",
    },
    "zelmMathCalcAngle": {
        "ZELM_ERR_DEGENERATE": "if a length is degenerate",
    },
    "zelmMathStat": {
        "ZELM_ERR_DEGENERATE": "if iN is below 2",
    },
    "zelmMathCrossPoint": {
        "ZELM_ERR_DEGENERATE": "nothing written, if b1 a2 - a1 b2 is degenerate (parallel lines)",
    },
    "zelmMathGetLineFrom2Points": {
        "ZELM_ERR_DEGENERATE": "nothing written, if the distance is degenerate",
    },
    "zelmMathAutoCorrelation": {
        "ZELM_ERR_DEGENERATE": "if iN or iM is below 1 or iM above iN",
    },
    "zelmMathNormAutoCorrelation": {
        "ZELM_ERR_DEGENERATE": "if iN or iM is below 1 or iM above iN",
    },
    "zelmMathSearchOf1DWithNormCorrelation": {
        "ZELM_ERR_DEGENERATE": "if iN is below iM",
    },
    "zelmMathOtsuThreshold1d": {
        "ZELM_ERR_DEGENERATE": (
            "if iN is below 1, a pointer is NULL, or the work memory cannot be obtained "
            "(`docs/decisions.md#no-memory-status-math`)"
        ),
    },
    "zelmMathGetDistFromPointToEllipse": {
        "ZELM_ERR_DEGENERATE": (
            "when no nearest point is found: the quartic has fewer than 2 roots, or none of them gives a "
            "point nearer than 1e7"
        ),
    },
}

DOCS = {
    "zelmBinOtsuThresholdHistogram": """\
Threshold that splits a histogram into the two classes with the largest variance between them (Otsu,
IEEE Trans. SMC 9, 1979): the lowest level of the upper class, so that values at or above it are
foreground. Of equally good splits the lowest is taken. A histogram of one level, or of none, gives
1. Counts are summed in unsigned 32-bit arithmetic.

Parameters
----------
uaHistogram : array of uint32, shape (iBins,)
    iBins counts

Returns
-------
iThreshold : int
    the threshold, >= 1

Raises
------
ZelmError
    ZELM_ERR_PARAM: iBins < 1 or a NULL histogram

Notes
-----
In C: int32_t zelmBinOtsuThresholdHistogram(int32_t iBins, const uint32_t* uaHistogram)
""",
    "zelmBinOtsuThresholdImage": """\
Otsu threshold over the gray levels of a region.

Parameters
----------
tImage : array of uint8, shape (height, width)
    gray image
tRegion : ZelmRect, default all of tImage
    region, kept inside the image by the caller; without pixels (a size below 1) the result is 1

Returns
-------
iThreshold : int
    the threshold, 1 to 255

Raises
------
ZelmError
    ZELM_ERR_PARAM: a NULL pointer

Notes
-----
In C: int32_t zelmBinOtsuThresholdImage(const ZelmImage* tImage, const ZelmRect* tRegion)
""",
    "zelmBinOtsuThresholdGray": """\
Otsu threshold over a list of gray levels, each rounded half up to a level and clamped to 0..255.
Infinite and huge values are clamped like all others; values that are not numbers are left out.

Parameters
----------
daValues : array of float64, shape (iCount,)
    the values

Returns
-------
iThreshold : int
    the threshold, 1 to 255

Raises
------
ZelmError
    ZELM_ERR_PARAM: iCount < 1 or NULL values

Notes
-----
In C: int32_t zelmBinOtsuThresholdGray(int32_t iCount, const double* daValues)
""",
    "zelmBinBinaryImage": """\
Makes each pixel of a region 255 if it is at or above the threshold, else 0. Pixels outside the
region are left.

The region's far edges are checked against the destination alone, its near edges not at all
(`docs/decisions.md#region-one-sided`): the caller keeps it inside. May run in place.

Parameters
----------
tSrc : array of uint8, shape (height, width)
    gray image
iThreshold : int
    any value; 0 and below: all foreground, 256 and above: none
tRegion : ZelmRect, default all of tSrc
    region of both images; width and height may be 0
tDst : array of uint8, shape (height, width), written in place, default a new black image
    its pixels are written; its record is only read

Returns
-------
tDst : array of uint8, shape (height, width)
    its pixels are written; its record is only read

Raises
------
ZelmError
    ZELM_ERR_PARAM: with nothing written: a NULL pointer, a source width or height below 1, a
        negative region size, or a region that ends beyond the destination

Notes
-----
In C: int32_t zelmBinBinaryImage(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold,
ZelmImage* tDst)
""",
    "zelmBinDilation": """\
Dilates the foreground of a region with a 3 x 3 square, repeatedly: a pixel becomes 255 when any
pixel of its neighbourhood inside the region is foreground, else 0.

The region is checked as in zelmBinBinaryImage(). Source and destination regions must not overlap.

Parameters
----------
tSrc : array of uint8, shape (height, width)
    gray image
iThreshold : int
    clamped to 0..255
tRegion : ZelmRect, default all of tSrc
    region of both images, wider and higher than iIterations
iIterations : int, default 1
    number of dilations, >= 1
tDst : array of uint8, shape (height, width), written in place, default a new black image
    its pixels inside the region are written; its record is only read

Returns
-------
tDst : array of uint8, shape (height, width)
    its pixels inside the region are written; its record is only read

Raises
------
ZelmError
    ZELM_ERR_PARAM: a NULL pointer, iIterations < 1, a source or a region that is not wider and
        higher than iIterations, or a region that ends beyond the destination
    ZELM_ERR_MEMORY: (one plane of the region's size)

Notes
-----
In C: int32_t zelmBinDilation(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold,
int32_t iIterations, ZelmImage* tDst)
""",
    "zelmBinErosion": """\
Erodes the foreground of a region with a 3 x 3 square, repeatedly: a pixel stays 255 when all pixels
of its neighbourhood inside the region are foreground, so a region that is all foreground stays so
up to its border. Arguments and statuses as of zelmBinDilation().

Parameters
----------
tSrc : array of uint8, shape (height, width)
    gray image
iThreshold : int
    clamped to 0..255
tRegion : ZelmRect, default all of tSrc
    region of both images, wider and higher than iIterations
iIterations : int, default 1
    number of erosions, >= 1
tDst : array of uint8, shape (height, width), written in place, default a new black image
    its pixels inside the region are written; its record is only read

Returns
-------
tDst : array of uint8, shape (height, width)
    its pixels inside the region are written; its record is only read

Raises
------
ZelmError
    ZELM_ERR_PARAM: a NULL pointer, iIterations < 1, a source or a region that is not wider and
        higher than iIterations, or a region that ends beyond the destination
    ZELM_ERR_MEMORY: (one plane of the region's size)

Notes
-----
In C: int32_t zelmBinErosion(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold,
int32_t iIterations, ZelmImage* tDst)
""",
    "zelmBinOpening": """\
Erosions followed by as many dilations: removes what is narrower than 2 * iIterations + 1 pixels.

The region must start at x = 0, y = 0 (`docs/decisions.md#opening-origin`).

Parameters
----------
tSrc : array of uint8, shape (height, width)
    gray image
iThreshold : int
    clamped to 0..255
tRegion : ZelmRect, default all of tSrc
    region of both images at the origin, wider and higher than iIterations
iIterations : int, default 1
    number of erosions and of dilations, >= 1
tDst : array of uint8, shape (height, width), written in place, default a new black image
    its pixels inside the region are written; its record is only read; may be the source

Returns
-------
tDst : array of uint8, shape (height, width)
    its pixels inside the region are written; its record is only read; may be the source

Raises
------
ZelmError
    ZELM_ERR_PARAM: as of zelmBinDilation() or a region not at the origin
    ZELM_ERR_MEMORY: (two planes of the region's size)

Notes
-----
In C: int32_t zelmBinOpening(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold,
int32_t iIterations, ZelmImage* tDst)
""",
    "zelmBinClosing": """\
Dilations followed by as many erosions: fills what is narrower than 2 * iIterations + 1 pixels. The
region as in zelmBinOpening().

Parameters
----------
tSrc : array of uint8, shape (height, width)
    gray image
iThreshold : int
    clamped to 0..255
tRegion : ZelmRect, default all of tSrc
    region of both images at the origin, wider and higher than iIterations
iIterations : int, default 1
    number of dilations and of erosions, >= 1
tDst : array of uint8, shape (height, width), written in place, default a new black image
    its pixels inside the region are written; its record is only read; may be the source

Returns
-------
tDst : array of uint8, shape (height, width)
    its pixels inside the region are written; its record is only read; may be the source

Raises
------
ZelmError
    ZELM_ERR_PARAM: as of zelmBinDilation() or a region not at the origin
    ZELM_ERR_MEMORY: (two planes of the region's size)

Notes
-----
In C: int32_t zelmBinClosing(const ZelmImage* tSrc, const ZelmRect* tRegion, int32_t iThreshold,
int32_t iIterations, ZelmImage* tDst)
""",
    "zelmBinBlob": """\
Finds the connected regions (eight neighbours) of foreground pixels that do not touch the region's
edge, in one pass over the horizontal runs of each row.

A run takes the smallest label that the runs it touches in the row above stand for, which is looked
up one level deep (`docs/decisions.md#label-one-level`). Bodies without branches, such as dots with
ragged outlines, are always found whole; where three or more branches of a body join in a certain
order it may be reported in parts or short of pixels. In pure noise this befalls at most 5
components in 1000.

The terms of a run of n pixels from column x in row y are signed 32-bit and wrap around
(`docs/decisions.md#moments-wrap`): area and box are always right, the centroid while x * n + n^2 /
2 and y * n stay below 2^31, the angle while also x^2 * n + x * n^2, y^2 * n, y * (x * n + n^2 / 2)
and 2 * n^3 do (runs of up to 1000 pixels near the origin).

Parameters
----------
tImage : array of uint8, shape (height, width)
    gray image
iThreshold : int
    0 to 255
tRegion : ZelmRect, or None, default None
    region, kept inside the image by the caller
iPolarity : int, default 1
    1: foreground is at or above the threshold; 0: below it
iClearEdge : int, default 0
    1: the outer ring of the region counts as background, so that blobs on the edge are reported
    without their pixels there; 0: they are left out. With threshold 0 and polarity 1 the ring stays
    foreground
iMinArea : int, default 1
    blobs with fewer pixels are left out

Returns
-------
taBlobs : array of ZelmBlob, shape (iCount,)
    a record a blob, in the order of their labels, about that of their first rows

Raises
------
ZelmError
    ZELM_ERR_PARAM: with nothing written: a NULL pointer, a size of image or region below 1, an
        option out of range, or *taBlobs not NULL
    ZELM_ERR_MEMORY: *taBlobs is then NULL or an array that the caller still releases with
        zelmBinFree()

Notes
-----
Memory: 64 bytes a label, in steps of 1000, and 12 bytes a pixel of the region's width; the image is
not copied.

In C: int32_t zelmBinBlob(const ZelmImage* tImage, const ZelmRect* tRegion, int32_t iThreshold,
int32_t iPolarity, int32_t iClearEdge, int32_t iMinArea, ZelmBlob** taBlobs, int32_t* iCount)
""",
    "zelmBinFree": """\
Releases an array of zelmBinBlob() and sets the pointer to NULL.

Parameters
----------
taBlobs : None, default None
    not NULL; may point to NULL

Notes
-----
In C: void zelmBinFree(ZelmBlob** taBlobs)
""",
    "zelmCalibNormalizeData": """\
Centres points on their mean and scales them so that their mean distance from it is sqrt(2) (Hartley
1997). With m the mean and d the mean distance, s = sqrt(2) / d for points in space too
(`docs/decisions.md#mean-distance`), and T = [s I, -s m; 0, 1]. Identical points have d = 0: the
scale is infinite and the results are not finite.

Parameters
----------
daSrc : array of float64, shape (iN, iDim)
    iN points, iDim doubles each (Point2d or Point3d)

Returns
-------
zelmCalibNormalizeDataResult : named tuple of
    daDst : array of float64, shape (iN, iDim)
        the iN normalised points T * (p, 1); may be daSrc
    daT : array of float64, shape (iDim+1, iDim+1)
        (iDim + 1)^2 doubles, row-major; NULL when not wanted
    daTinv : array of float64, shape (iDim+1, iDim+1)
        the inverse transform [(1/s) I, m; 0, 1], likewise; NULL when not wanted

Raises
------
ZelmError
    ZELM_ERR_PARAM: when iDim is neither 2 nor 3, iN < 1, or daSrc or daDst is NULL, nothing written

Notes
-----
Cost O(iN). Allocates nothing.

In C: int32_t zelmCalibNormalizeData(int32_t iDim, int32_t iN, const double* daSrc, double* daDst,
double* daT, double* daTinv)
""",
    "zelmCalibCalcHomography": """\
Homography between two planes: (x, y) maps to (h0 x + h1 y + h2, h3 x + h4 y + h5) / (h6 x + h7 y +
h8). A linear estimate on normalised points (Hartley 1997) is refined by damped steps (Levenberg
1944, Marquardt 1963) on the distances in the destination plane. A step is taken only if it lowers
the mean squared distance; the right-hand side weights each pair by its distance once more than a
plain least-squares step would, so the steps lean towards the worst pairs, and at most 100 are made.
On noisy data the result stays within a few per cent of the least-squares optimum, which the linear
estimate all but reaches on its own; with five to eight pairs and noise above a thousandth of their
extent, up to one estimate in 30 does not settle within the 100 steps.

Exact data. Once the root mean squared distance is at most 1e-14 in normalised units (mean distance
from the centre sqrt(2)), rounding is all that is left, and the refinement ends with success: with
2, the least count, when the linear estimate is that good already. Undetermined data. When the
second least eigenvalue of the linear system is not above 1e-14 of its greatest one, several
homographies map the pairs alike (all source points on a line to within about 1e-7 of their extent,
or three of four pairs on lines), and the estimate is refused instead of picking one.

Parameters
----------
taSrc : array of float64, shape (iN, 2)
    iN source points
taDst : array of float64, shape (iN, 2)
    iN destination points, in the same order
dRobustK : float, default 0
    > 0: Tukey's biweight with the cut-off dRobustK * 1.4826 * (median distance), set anew at every
    step; 0 or negative: all pairs weigh the same. The linear estimate is never weighted, so
    outliers must leave it within reach of the solution

Returns
-------
daH : array of float64, shape (3, 3)
    9 doubles, row-major, divided by the last one when that exceeds 1e-9; written only on success

Raises
------
ZelmError
    ZELM_ERR_PARAM: iN < 4 or a NULL pointer
    ZELM_ERR_MEMORY: no memory for the copies of the points or the linear system
    ZELM_ERR_EIGEN_NOT_CONVERGED: the eigen-solver failed on the linear system
    ZELM_ERR_CALIB_NOT_CONVERGED: undetermined or identical points, points that are not finite, a
        singular step, no memory during the refinement, or 100 steps without convergence

Notes
-----
Cost O(iN) a step, O(iN log iN) at most when robust. Memory for 22 doubles a pair (23 when robust).

In C: int32_t zelmCalibCalcHomography(int32_t iN, const Point2d* taSrc, const Point2d* taDst, double
dRobustK, double* daH)
""",
    "zelmCalibCameraMatrix": """\
Projection matrix P = A S [R t; 0 0 0 1] of one camera and pose. S drops the fourth row of the pose
under models 0 and 1 (perspective) and its third, the depth, under model 2 (parallel projection).
When |P[2][3]| > 1e-9 all entries are divided by it.

Parameters
----------
daA : array of float64, shape (3, 3)
    3 x 3 camera matrix, row-major
tExt : ZelmCameraExtrinsics
    pose; R and t are read
iModel : int, default 0
    0, 1 or 2

Returns
-------
daP : array of float64, shape (3, 4)
    3 x 4, row-major

Raises
------
ZelmError
    ZELM_ERR_PARAM: for another model or a NULL pointer, nothing written

Notes
-----
Allocates nothing.

In C: int32_t zelmCalibCameraMatrix(const double* daA, const ZelmCameraExtrinsics* tExt, double*
daP, int32_t iModel)
""",
    "zelmCalibChange3Dto2D": """\
Projects a point in space into the distorted image: zelmCalibCameraMatrix, then the lens of
zelmCalibDistortPoint. Under models 0 and 2 the lens is taken with theta = 0, whatever the record
holds. A point in the camera's own plane (depth 0) gives coordinates that are not finite; points
behind the camera are projected like any other.

Parameters
----------
tX : Point3d
    world point
tCam : ZelmCameraIntrinsics
    camera; A is used for the projection, the other members for the distortion
tExt : ZelmCameraExtrinsics
    pose
iModel : int, default 0
    0, 1 or 2

Returns
-------
tP : Point2d
    pixel

Raises
------
ZelmError
    ZELM_ERR_PARAM: for another model or a NULL pointer, nothing written

Notes
-----
Allocates nothing.

In C: int32_t zelmCalibChange3Dto2D(const Point3d* tX, const ZelmCameraIntrinsics* tCam, const
ZelmCameraExtrinsics* tExt, Point2d* tP, int32_t iModel)
""",
    "zelmCalibDistortPoint": """\
Moves an undistorted pixel to where the lens images it. With (dx, dy) the offset from the principal
point in pixels, xn = (dx - (gamma / beta) dy) / alpha, yn = (dy / beta) cos(theta), r^2 = xn^2 +
yn^2 and D = (k2 r^2 + k1) r^2, the point moves by D * (dx, dy). The stored theta always takes part;
records of models 0 and 2 hold 0. A zero alpha or beta is not guarded.

Parameters
----------
tCam : ZelmCameraIntrinsics
    camera
dX : float
    undistorted pixel
dY : float
    undistorted pixel

Returns
-------
zelmCalibDistortPointResult : named tuple of
    dXd : float
        distorted pixel
    dYd : float
        distorted pixel

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer, nothing written

Notes
-----
Allocates nothing.

In C: int32_t zelmCalibDistortPoint(const ZelmCameraIntrinsics* tCam, double dX, double dY, double*
dXd, double* dYd)
""",
    "zelmCalibUnDistortPoint": """\
Removes the lens distortion from a pixel: Newton's method on zelmCalibDistortPoint, started at the
given pixel. It ends after a step of at most 0.0001 pixel in x and in y. The steps converge
quadratically, so the result is as a rule far closer: within 1e-9 pixel of the exact inverse for
lenses that move no pixel by more than a tenth of its radius. A pixel beyond the radius where the
lens folds the image (1 + 3 k1 r^2 + 5 k2 r^4 = 0) has no undistorted position on the near side of
the fold: the search fails or ends on its far side.

Parameters
----------
tCam : ZelmCameraIntrinsics
    camera
dXd : float
    distorted pixel
dYd : float
    distorted pixel

Returns
-------
zelmCalibUnDistortPointResult : named tuple of
    dX : float
        undistorted pixel; the latest estimate also on ZELM_ERR_UNDISTORT
    dY : float
        undistorted pixel; the latest estimate also on ZELM_ERR_UNDISTORT

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer, nothing written
    ZELM_ERR_UNDISTORT: when a step's equations are singular or 20 steps do not converge

Notes
-----
Allocates nothing.

In C: int32_t zelmCalibUnDistortPoint(const ZelmCameraIntrinsics* tCam, double dXd, double dYd,
double* dX, double* dY)
""",
    "zelmCalibRodrigues": """\
Converts between a rotation vector (axis * angle in radians) and a rotation matrix (Rodrigues 1840).
From vector to matrix: R = cos(a) I + (1 - cos(a)) u u^T + sin(a) [u]x; shorter vectors than 1e-15
give the identity. From matrix to vector: the axis is the null direction of R - I, found by singular
value decomposition; the angle atan2(u . w, trace(R) - 1) with w = (R21 - R12, R02 - R20, R10 - R01)
lies in [-pi, pi], its sign going with the axis. The vector is right to about 3e-15 radian at every
angle; at pi either sign may come (`docs/decisions.md#half-turn-sign`). A matrix that is not finite
gives a vector that means nothing.

Parameters
----------
iDirection : int
    0: vector to matrix; 1: matrix to vector
daRvec : array of float64, shape (3,), or None, default None
    3 doubles; [in] for direction 0, [out] for direction 1
daRmat : array of float64, shape (3, 3), or None, default None
    9 doubles, row-major; [in] for direction 1, [out] for direction 0

Returns
-------
daOut : array of float64
    the matrix, 3 x 3, for direction 0; the vector for direction 1

Raises
------
ZelmError
    ZELM_ERR_PARAM: for another direction or a NULL pointer, nothing written

Notes
-----
Allocates nothing.

In C: int32_t zelmCalibRodrigues(int32_t iDirection, double* daRvec, double* daRmat)
""",
    "zelmCalibCameraParam": """\
Estimates one camera's intrinsic parameters, its radial distortion and its pose in every view from
the dots of a flat plate.

Start values come from the homographies of the views: under models 0 and 1 in closed form (Z. Zhang,
A Flexible New Technique for Camera Calibration, 2000), under model 2 from three reference dots. All
parameters are then refined together by the damped least-squares method of Levenberg (1944) and
Marquardt (1963), with analytic derivatives and the poses eliminated by a Schur complement, so that
time and memory grow with the number of views, not its square. Both run on centred and scaled
points; nothing depends on the image size or on the unit of the plate, except where a length is
stated.

Records. The results agree with each other: zelmCalibChange3Dto2D with the written records, the same
model and the point (x, y, 0) gives the position of each dot that the refinement compared with the
measured one. In all models the normalised coordinates of the distortion are the camera's own, (Xc /
Zc, Yc / Zc), or (Xc, Yc) for model 2. - Model 0: A = (alpha, gamma, cx; 0, beta, cy; 0, 0, 1),
theta = 0. - Model 1: the image axes are sheared by the angle theta = atan2(A[0][1], A[1][1]). A =
(alpha, gamma / cos(theta), cx; 0, beta / cos(theta), cy; 0, 0, 1), gamma / beta = tan(theta): beta
is the focal length along the sheared axis. The same cameras can be described under models 0 and 1;
theta follows from A, it is not a parameter of its own which a view without distortion could leave
open. - Model 2: A as for model 0, alpha and beta being the image scales in pixels per plate unit,
so that k1 and k2 are per square and fourth power of the plate unit. gamma is what rounding and
noise leave of a shear, about 0. A mirrored image gives one negative scale.

Model 2 is estimated from its only view. Preset in tIntrinsics: alpha and beta, the plane distances
of two reference dots, which must be at (alpha, 0) and (0, beta) beside the one at (0, 0), to 1e-5
plate units; cx and cy, the principal point. What one view cannot tell stands in `docs/limits.md`,
Camera estimation.

With dRobustThreshold > 0 dots are weighted by Tukey's biweight, (1 - e^2 / c^2)^2 for distances e
within the cut-off c = dRobustThreshold * 1.4826 * median(e), else 0; plain least squares comes
first. Damping, stopping rules and the cut-off from step to step: `docs/limits.md`, Camera
estimation.

Parameters
----------
taViews : sequence of pairs of arrays, plane and image points, shape (n, 2) each
    iViews entries of at least 4 dots each, the plate coordinates in any unit, the image in pixels
dRobustThreshold : float, default 0
    0 or less (or not a number): plain least squares; else the cut-off, usually 3.5
tIntrinsics : ZelmCameraIntrinsics, written in place, default a record of zeros
    the camera; read under model 2 only; reserved is neither read nor written
iModel : int, default 0
    0 perspective, 1 tilted, 2 parallel

Returns
-------
zelmCalibCameraParamResult : named tuple of
    tIntrinsics : ZelmCameraIntrinsics
        the camera; read under model 2 only; reserved is neither read nor written
    taExtrinsics : array of ZelmCameraExtrinsics, shape (iViews,)
        iViews poses; every plate is before the camera (t_z > 0 at its centre)
    dError : float
        mean Euclidean distance in pixels between measured and projected dots, unweighted over all dots
        of all views, at the written parameters; may be NULL

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a bad model, count of views or pointer, checked in this order
    ZELM_ERR_CALIB_HOMOGRAPHY: when a view has fewer than 4 dots or NULL arrays, or its homography
        fails (dots on a line, values that are not finite)
    ZELM_ERR_CALIB_ESTIMATE: when the views do not determine a camera (all parallel, or too noisy
        for their tilts) or, for model 2, a reference dot is missing or the three coincide in the
        image
    ZELM_ERR_CALIB_NOT_CONVERGED: when the refinement takes more than 200 steps or a system of its
        is singular
    ZELM_ERR_MEMORY: (ZELM_ERR_CALIB_HOMOGRAPHY when memory runs out within the refinement of a
        homography)
    ZELM_ERR_SVD_FAILED: from the start value of a pose

Notes
-----
Memory: some 100 bytes a dot and 2000 a view, all released. Reentrant: yes.

In C: int32_t zelmCalibCameraParam(int32_t iViews, const Zelm2ViewPtnEntry* taViews, double
dRobustThreshold, ZelmCameraIntrinsics* tIntrinsics, ZelmCameraExtrinsics* taExtrinsics, double*
dError, int32_t iModel)
""",
    "zelmCgSortByArgument": """\
Sorts points by polar angle about the lowest one (smallest y, then smallest x), nearer first on a
ray; that pivot comes first. Heap sort, O(n log n), nothing allocated; the order of equal points is
fixed by the sort.

Parameters
----------
taPoints : array of float64, shape (iN, 2)
    iN points

Returns
-------
taSorted : array of float64, shape (iN, 2)
    iN points

Raises
------
ZelmError
    ZELM_ERR_PARAM: when iN < 2 or a pointer is NULL

Notes
-----
In C: int32_t zelmCgSortByArgument(int32_t iN, const Point2d* taPoints, Point2d* taSorted)
""",
    "zelmCgConvexHull": """\
Convex hull (Graham 1972), counter-clockwise in a y-up frame from the lowest point. O(n log n),
nothing allocated.

Parameters
----------
taPoints : array of float64, shape (iN, 2)
    iN points

Returns
-------
taHull : array of float64, shape (iN, 2), as many entries as there are
    room for iN points: the hull, then the other points in no defined order

Raises
------
ZelmError
    ZELM_ERR_PARAM: when iN < 1 or a pointer is NULL

Notes
-----
In C: int32_t zelmCgConvexHull(int32_t iN, const Point2d* taPoints, int32_t* iCount, Point2d*
taHull)
""",
    "zelmCgSmallestEnclosingCircle": """\
An approximation of the smallest enclosing circle: the centre walks towards the farthest hull vertex
with a step that is halved every five moves (in the manner of Badoiu and Clarkson, 2003). The radius
is measured from the centre before its last move.

Parameters
----------
taPoints : array of float64, shape (iN, 2)
    iN points

Returns
-------
zelmCgSmallestEnclosingCircleResult : named tuple of
    tCentre : Point2d
        centre
    dRadius : float
        radius; for 2 points the distance of the first from the centre

Raises
------
ZelmError
    ZELM_ERR_PARAM: when iN < 1 or a pointer is NULL
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelmCgSmallestEnclosingCircle(int32_t iN, const Point2d* taPoints, Point2d* tCentre,
double* dRadius)
""",
    "zelmCgIntersectionOfTwoSegments": """\
Classifies how the segments A = A1A2 and B = B1B2 meet.

Parameters
----------
tA1 : Point2d
    end points
tA2 : Point2d
    end points
tB1 : Point2d
    end points
tB2 : Point2d
    end points

Returns
-------
zelmCgIntersectionOfTwoSegmentsResult : named tuple of
    iKind : int
        ZELM_SEGMENTS_...
    tPoint : Point2d
        the common point; not written for kinds 0 and 5

Raises
------
ZelmError
    ZELM_ERR_PARAM: when a pointer is NULL

Notes
-----
In C: int32_t zelmCgIntersectionOfTwoSegments(const Point2d* tA1, const Point2d* tA2, const Point2d*
tB1, const Point2d* tB2, int32_t* iKind, Point2d* tPoint)
""",
    "zelmCgPointInConvexPolygon": """\
Where a point lies relative to a convex polygon. O(n).

Parameters
----------
taPolygon : array of float64, shape (iN, 2)
    iN vertices
tP : Point2d
    point

Returns
-------
iResult : int
    1 inside, 0 outside, 2 on the boundary

Raises
------
ZelmError
    ZELM_ERR_PARAM: when iN < 3 or a pointer is NULL

Notes
-----
In C: int32_t zelmCgPointInConvexPolygon(int32_t iN, const Point2d* taPolygon, const Point2d* tP,
int32_t* iResult)
""",
    "zelmCgIntersectionLineAndConvexPolygon": """\
Where a line crosses the boundary of a convex polygon. A line along an edge gives 0 points, even
when one was found before (`docs/decisions.md#edge-along-line`). O(n).

Parameters
----------
taPolygon : array of float64, shape (iN, 2)
    iN vertices
tLine : Line2d
    line, any scale; not NULL (not checked)

Returns
-------
taPoints : array of float64, shape (2, 2), as many entries as there are
    room for 2 points; as many are written as are found

Raises
------
ZelmError
    ZELM_ERR_PARAM: when iN < 2, a polygon or output pointer is NULL or the line's normal is shorter
        than 1e-13

Notes
-----
In C: int32_t zelmCgIntersectionLineAndConvexPolygon(int32_t iN, const Point2d* taPolygon, const
Line2d* tLine, Point2d* taPoints)
""",
    "zelmCgIntersectionSegmentAndConvexPolygon": """\
Where a segment crosses the boundary of a convex polygon. A segment along an edge gives 0 points.
O(n).

Parameters
----------
taPolygon : array of float64, shape (iN, 2)
    iN vertices
tS1 : Point2d
    end points of the segment
tS2 : Point2d
    end points of the segment

Returns
-------
taPoints : array of float64, shape (2, 2), as many entries as there are
    room for 2 points; as many are written as are found

Raises
------
ZelmError
    ZELM_ERR_PARAM: when iN < 2 or a pointer is NULL

Notes
-----
In C: int32_t zelmCgIntersectionSegmentAndConvexPolygon(int32_t iN, const Point2d* taPolygon, const
Point2d* tS1, const Point2d* tS2, Point2d* taPoints)
""",
    "zelmClp2dDistanceTwoPoints": """\
Distance of two points.

Parameters
----------
tP1 : Point2d
    points
tP2 : Point2d
    points

Returns
-------
dDistance : float
    Euclidean distance

Notes
-----
In C: void zelmClp2dDistanceTwoPoints(const Point2d* tP1, const Point2d* tP2, double* dDistance)
""",
    "zelmClp2dCenterTwoPoints": """\
Midpoint of two points.

Parameters
----------
tP1 : Point2d
    points
tP2 : Point2d
    points

Returns
-------
tCenter : Point2d
    (P1 + P2) / 2

Notes
-----
In C: void zelmClp2dCenterTwoPoints(const Point2d* tP1, const Point2d* tP2, Point2d* tCenter)
""",
    "zelmClp2dLineTwoPoints": """\
The line through two points, directed from the first to the second. With direction (dx, dy) the unit
normal is (-dy, dx) / length, the left-hand side in a y-up frame.

Parameters
----------
tP1 : Point2d
    points
tP2 : Point2d
    points

Returns
-------
tLine : Line2d
    line with a^2 + b^2 = 1

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when the points are closer than 1e-14

Notes
-----
In C: int32_t zelmClp2dLineTwoPoints(const Point2d* tP1, const Point2d* tP2, Line2d* tLine)
""",
    "zelmClp2dMidperpendicularTwoPoints": """\
The perpendicular bisector of two points; its normal points from the first to the second.

Parameters
----------
tP1 : Point2d
    points
tP2 : Point2d
    points

Returns
-------
tLine : Line2d
    line with a^2 + b^2 = 1

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when the points are closer than 1e-14

Notes
-----
In C: int32_t zelmClp2dMidperpendicularTwoPoints(const Point2d* tP1, const Point2d* tP2, Line2d*
tLine)
""",
    "zelmClp2dVerticalLinePointAndLine": """\
The line through a point perpendicular to a line; its normal is the given one turned by -90 degrees:
(b, -a).

Parameters
----------
tP : Point2d
    point
tLine : Line2d
    line, any scale

Returns
-------
tOut : Line2d
    line with a^2 + b^2 = 1

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when the line's normal is shorter than 1e-14

Notes
-----
In C: int32_t zelmClp2dVerticalLinePointAndLine(const Point2d* tP, const Line2d* tLine, Line2d*
tOut)
""",
    "zelmClp2dLinePointAndSlope": """\
The line through a point with a given direction.

Parameters
----------
tP : Point2d
    point
dAngle : float
    direction (cos, sin) of this angle in radians

Returns
-------
tLine : Line2d
    line with a^2 + b^2 = 1

Notes
-----
In C: void zelmClp2dLinePointAndSlope(const Point2d* tP, double dAngle, Line2d* tLine)
""",
    "zelmClp2dIntersectionTwoLines": """\
The intersection of two lines.

Parameters
----------
tLine1 : Line2d
    lines, any scale
tLine2 : Line2d
    lines, any scale

Returns
-------
tPoint : Point2d
    intersection

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when a normal is shorter than 1e-14, the lines are parallel, or the work
        memory of the linear solve could not be obtained

Notes
-----
In C: int32_t zelmClp2dIntersectionTwoLines(const Line2d* tLine1, const Line2d* tLine2, Point2d*
tPoint)
""",
    "zelmClp2dAngleTwoLines": """\
The acute angle between two lines.

Parameters
----------
tLine1 : Line2d
    lines, any scale
tLine2 : Line2d
    lines, any scale

Returns
-------
dAngle : float
    radians in [0, pi/2]

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when a normal is shorter than 1e-14 or the lines are parallel (angle below
        1e-14) and more than 1e-14 apart

Notes
-----
In C: int32_t zelmClp2dAngleTwoLines(const Line2d* tLine1, const Line2d* tLine2, double* dAngle)
""",
    "zelmClp2dCenterLineOfTwoLines": """\
The bisector of two lines whose normals are turned to one side first (the second line is negated
when its unit normal has a negative dot product with the first's); for parallel lines the middle
line.

Parameters
----------
tLine1 : Line2d
    lines, any scale
tLine2 : Line2d
    lines, any scale

Returns
-------
tOut : Line2d
    line with a^2 + b^2 = 1

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when a normal is shorter than 1e-14

Notes
-----
In C: int32_t zelmClp2dCenterLineOfTwoLines(const Line2d* tLine1, const Line2d* tLine2, Line2d*
tOut)
""",
    "zelmClp2dDistancePointToLine": """\
Distance of a point from a line.

Parameters
----------
tP : Point2d
    point
tLine : Line2d
    line, any scale

Returns
-------
dDistance : float
    distance, not negative

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when the line's normal is shorter than 1e-14

Notes
-----
In C: int32_t zelmClp2dDistancePointToLine(const Point2d* tP, const Line2d* tLine, double*
dDistance)
""",
    "zelmClp2dFootOfPerpendicularToLine": """\
The foot of the perpendicular from a point to a line.

Parameters
----------
tP : Point2d
    point
tLine : Line2d
    line, any scale

Returns
-------
tFoot : Point2d
    the point of the line closest to P

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when the line's normal is shorter than 1e-14 or the solve fails

Notes
-----
In C: int32_t zelmClp2dFootOfPerpendicularToLine(const Point2d* tP, const Line2d* tLine, Point2d*
tFoot)
""",
    "zelmClp2dTranslationOfLine": """\
A line moved by a vector; a and b are copied, not normalised.

Parameters
----------
tLine : Line2d
    line, any scale
tShift : Point2d
    translation

Returns
-------
tOut : Line2d
    moved line

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when the line's normal is shorter than 1e-14

Notes
-----
In C: int32_t zelmClp2dTranslationOfLine(const Line2d* tLine, const Point2d* tShift, Line2d* tOut)
""",
    "zelmClp2dAreaTriangle": """\
Area of a triangle.

Parameters
----------
tP1 : Point2d
    vertices
tP2 : Point2d
    vertices
tP3 : Point2d
    vertices

Returns
-------
dArea : float
    area, not negative

Notes
-----
In C: void zelmClp2dAreaTriangle(const Point2d* tP1, const Point2d* tP2, const Point2d* tP3, double*
dArea)
""",
    "zelmClp2dSignAreaTriangle": """\
Signed area of a triangle, positive when P1, P2, P3 turn counter-clockwise in a y-up frame
(clockwise as seen in an image, whose y points down).

Parameters
----------
tP1 : Point2d
    vertices
tP2 : Point2d
    vertices
tP3 : Point2d
    vertices

Returns
-------
dArea : float
    signed area

Notes
-----
In C: void zelmClp2dSignAreaTriangle(const Point2d* tP1, const Point2d* tP2, const Point2d* tP3,
double* dArea)
""",
    "zelmClp2dCircleThreePoints": """\
The circle through three points.

Parameters
----------
tP1 : Point2d
    points
tP2 : Point2d
    points
tP3 : Point2d
    points

Returns
-------
tCircle : Circle2d
    circle

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when the points are collinear or coincide, or the solve fails

Notes
-----
In C: int32_t zelmClp2dCircleThreePoints(const Point2d* tP1, const Point2d* tP2, const Point2d* tP3,
Circle2d* tCircle)
""",
    "zelmClp2dCircleTwoPoints": """\
The circle with two points as a diameter.

Parameters
----------
tP1 : Point2d
    points
tP2 : Point2d
    points

Returns
-------
tCircle : Circle2d
    circle

Notes
-----
In C: void zelmClp2dCircleTwoPoints(const Point2d* tP1, const Point2d* tP2, Circle2d* tCircle)
""",
    "zelmClp2dIntersectionLineAndCircle": """\
The intersections of a line and a circle. The line is taken as normalised, as every line of this
library is; another scale gives wrong points (`docs/decisions.md#circle-line-scale`).

Parameters
----------
tLine : Line2d
    line with a^2 + b^2 = 1
tCircle : Circle2d
    circle

Returns
-------
zelmClp2dIntersectionLineAndCircleResult : named tuple of
    tQ1 : Point2d
        intersections; Q1 lies along (-b, a) from the foot, Q2 opposite; equal when tangent (within
        1e-14)
    tQ2 : Point2d
        intersections; Q1 lies along (-b, a) from the foot, Q2 opposite; equal when tangent (within
        1e-14)

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when the normal or the radius is below 1e-14 or the line misses the circle

Notes
-----
In C: int32_t zelmClp2dIntersectionLineAndCircle(const Line2d* tLine, const Circle2d* tCircle,
Point2d* tQ1, Point2d* tQ2)
""",
    "zelmClp2dTangentPointToCircle": """\
The two tangents from a point to a circle.

Parameters
----------
tP : Point2d
    point outside the circle or on it
tCircle : Circle2d
    circle

Returns
-------
zelmClp2dTangentPointToCircleResult : named tuple of
    tLine1 : Line2d
        first tangent line through P, unit normal away from the centre
    tPoint1 : Point2d
        its point of contact
    tLine2 : Line2d
        second tangent line, likewise
    tPoint2 : Point2d
        its point of contact; the first one when P lies on the circle (within 1e-14)

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when the radius is below 1e-14, P lies inside the circle, or a solve fails

Notes
-----
In C: int32_t zelmClp2dTangentPointToCircle(const Point2d* tP, const Circle2d* tCircle, Line2d*
tLine1, Point2d* tPoint1, Line2d* tLine2, Point2d* tPoint2)
""",
    "zelmClp2dClosestToCircle": """\
The point of a circle closest to a given point. A point at the centre gives non-finite outputs; this
is not guarded.

Parameters
----------
tP : Point2d
    point
tCircle : Circle2d
    circle

Returns
-------
zelmClp2dClosestToCircleResult : named tuple of
    tPoint : Point2d
        closest point of the circle
    dDistance : float
        its distance from P

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when the radius is below 1e-14

Notes
-----
In C: int32_t zelmClp2dClosestToCircle(const Point2d* tP, const Circle2d* tCircle, Point2d* tPoint,
double* dDistance)
""",
    "zelmClp3dDistanceTwoPoints": """\
Distance of two points.

Parameters
----------
tP1 : Point3d
    points
tP2 : Point3d
    points

Returns
-------
dDistance : float
    Euclidean distance

Notes
-----
In C: void zelmClp3dDistanceTwoPoints(const Point3d* tP1, const Point3d* tP2, double* dDistance)
""",
    "zelmClp3dCenterTwoPoints": """\
Midpoint of two points.

Parameters
----------
tP1 : Point3d
    points
tP2 : Point3d
    points

Returns
-------
tCenter : Point3d
    (P1 + P2) / 2

Notes
-----
In C: void zelmClp3dCenterTwoPoints(const Point3d* tP1, const Point3d* tP2, Point3d* tCenter)
""",
    "zelmClp3dLineTwoPoints": """\
The line through two points.

Parameters
----------
tP1 : Point3d
    points
tP2 : Point3d
    points

Returns
-------
tLine : Line3d
    line at P1 with the unit direction from P1 to P2

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when the points are closer than 1e-14

Notes
-----
In C: int32_t zelmClp3dLineTwoPoints(const Point3d* tP1, const Point3d* tP2, Line3d* tLine)
""",
    "zelmClp3dFootOfPerpendicularToLine": """\
The foot of the perpendicular from a point to a line.

Parameters
----------
tP : Point3d
    point
tLine : Line3d
    line, direction of any length

Returns
-------
tFoot : Point3d
    the point of the line closest to P

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when the direction is shorter than 1e-14

Notes
-----
In C: int32_t zelmClp3dFootOfPerpendicularToLine(const Point3d* tP, const Line3d* tLine, Point3d*
tFoot)
""",
    "zelmClp3dVerticalLinePointAndLine": """\
The perpendicular from a point to a line, as a line.

Parameters
----------
tP : Point3d
    point
tLine : Line3d
    line, direction of any length

Returns
-------
tOut : Line3d
    line at P with the unit direction towards the foot

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when the direction is shorter than 1e-14 or P is closer than 1e-14 to its
        foot, that is on the line

Notes
-----
In C: int32_t zelmClp3dVerticalLinePointAndLine(const Point3d* tP, const Line3d* tLine, Line3d*
tOut)
""",
    "zelmClp3dDistancePointToLine": """\
Distance of a point from a line.

Parameters
----------
tP : Point3d
    point
tLine : Line3d
    line, direction of any length

Returns
-------
dDistance : float
    distance, not negative

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when the direction is shorter than 1e-14

Notes
-----
In C: int32_t zelmClp3dDistancePointToLine(const Point3d* tP, const Line3d* tLine, double*
dDistance)
""",
    "zelmClp3dDistanceTwoLines": """\
Distance of two lines.

Parameters
----------
tLine1 : Line3d
    lines, directions of any length
tLine2 : Line3d
    lines, directions of any length

Returns
-------
dDistance : float
    distance, not negative. Lines whose directions as given have a cross product shorter than 1e-14
    are taken as parallel: the distance of the first line's point from the second

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when a direction is shorter than 1e-14

Notes
-----
In C: int32_t zelmClp3dDistanceTwoLines(const Line3d* tLine1, const Line3d* tLine2, double*
dDistance)
""",
    "zelmClp3dPlaneThreePoints": """\
The plane through three points; its normal is that of the turn P1, P2, P3 by the right-hand rule.

Parameters
----------
tP1 : Point3d
    points
tP2 : Point3d
    points
tP3 : Point3d
    points

Returns
-------
tPlane : Plane3d
    plane with a unit normal

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when P2 or P3 is closer than 1e-14 to P1, or (P2 - P1) x (P3 - P1), twice
        the area of the triangle, is shorter than 1e-14

Notes
-----
In C: int32_t zelmClp3dPlaneThreePoints(const Point3d* tP1, const Point3d* tP2, const Point3d* tP3,
Plane3d* tPlane)
""",
    "zelmClp3dVerticalPlanePointAndVector": """\
The plane through a point with a given normal.

Parameters
----------
tP : Point3d
    point
tVector : Point3d
    normal, any length

Returns
-------
tPlane : Plane3d
    plane with a unit normal

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when the normal is shorter than 1e-14

Notes
-----
In C: int32_t zelmClp3dVerticalPlanePointAndVector(const Point3d* tP, const Point3d* tVector,
Plane3d* tPlane)
""",
    "zelmClp3dVerticalLinePointAndPlane": """\
The line through a point perpendicular to a plane.

Parameters
----------
tP : Point3d
    point
tPlane : Plane3d
    plane, normal of any length

Returns
-------
tLine : Line3d
    line at P with the plane's unit normal as direction

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when the normal is shorter than 1e-14

Notes
-----
In C: int32_t zelmClp3dVerticalLinePointAndPlane(const Point3d* tP, const Plane3d* tPlane, Line3d*
tLine)
""",
    "zelmClp3dDistancePointToPlane": """\
Distance of a point from a plane.

Parameters
----------
tP : Point3d
    point
tPlane : Plane3d
    plane, normal of any length

Returns
-------
dDistance : float
    distance, not negative

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when the normal is shorter than 1e-14

Notes
-----
In C: int32_t zelmClp3dDistancePointToPlane(const Point3d* tP, const Plane3d* tPlane, double*
dDistance)
""",
    "zelmClp3dIntersectionLineAndPlane": """\
The intersection of a line and a plane.

Parameters
----------
tLine : Line3d
    line, direction of any length
tPlane : Plane3d
    plane, normal of any length

Returns
-------
tPoint : Point3d
    intersection

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when the direction or the normal is shorter than 1e-14, or their dot
        product as given is below 1e-14 in magnitude (line parallel to the plane or in it)

Notes
-----
In C: int32_t zelmClp3dIntersectionLineAndPlane(const Line3d* tLine, const Plane3d* tPlane, Point3d*
tPoint)
""",
    "zelmClp3dFootOfPerpendicularToPlane": """\
The foot of the perpendicular from a point to a plane: where the line through P along the normal, as
it is given, meets the plane.

Parameters
----------
tP : Point3d
    point
tPlane : Plane3d
    plane

Returns
-------
tFoot : Point3d
    the point of the plane closest to P

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when the normal is shorter than 1e-7, not 1e-14
        (`docs/decisions.md#raw-normal-foot`)

Notes
-----
In C: int32_t zelmClp3dFootOfPerpendicularToPlane(const Point3d* tP, const Plane3d* tPlane, Point3d*
tFoot)
""",
    "zelmClp3dAngleLineAndPlane": """\
The angle between a line and a plane.

Parameters
----------
tLine : Line3d
    line, direction of any length
tPlane : Plane3d
    plane, normal of any length

Returns
-------
dAngle : float
    radians in [0, pi/2]: 0 for a line parallel to the plane. Near 0 its resolution is about 1e-8

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when the direction or the normal is shorter than 1e-14, or when direction .
        normal is below 1e-14 and normal . point + d is above 1e-14

Notes
-----
In C: int32_t zelmClp3dAngleLineAndPlane(const Line3d* tLine, const Plane3d* tPlane, double* dAngle)
""",
    "zelmClp3dIntersectionTwoPlanes": """\
The intersection of two planes.

Parameters
----------
tPlane1 : Plane3d
    planes, normals of any length
tPlane2 : Plane3d
    planes, normals of any length

Returns
-------
tLine : Line3d
    line at its point nearest to the origin, with unit direction normal1 x normal2

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when a normal, or the cross product of the normals as given (parallel
        planes), is shorter than 1e-14

Notes
-----
In C: int32_t zelmClp3dIntersectionTwoPlanes(const Plane3d* tPlane1, const Plane3d* tPlane2, Line3d*
tLine)
""",
    "zelmClp3dAngleTwoPlanes": """\
The acute angle between two planes.

Parameters
----------
tPlane1 : Plane3d
    planes, normals of any length
tPlane2 : Plane3d
    planes, normals of any length

Returns
-------
dAngle : float
    radians in [0, pi/2]. Near pi/2 its resolution is about 1e-8

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when a normal is shorter than 1e-14, or the planes are parallel (angle
        below 1e-14) and more than 1e-14 apart

Notes
-----
In C: int32_t zelmClp3dAngleTwoPlanes(const Plane3d* tPlane1, const Plane3d* tPlane2, double*
dAngle)
""",
    "zelmMiscChangeRectToRect2": """\
A rectangle by its inclusive corners.

Parameters
----------
tRect : ZelmRect
    rectangle by corner and size

Returns
-------
tRect2 : ZelmRect2
    (x, y, x + width - 1, y + height - 1), wrapping around at the ends of the 32-bit range

Raises
------
ZelmError
    ZELM_ERR_PARAM: when a pointer is NULL

Notes
-----
In C: int32_t zelmMiscChangeRectToRect2(const ZelmRect* tRect, ZelmRect2* tRect2)
""",
    "zelmMiscChangeRect2ToRect": """\
A rectangle by its corner and size.

Parameters
----------
tRect2 : ZelmRect2
    rectangle by inclusive corners

Returns
-------
tRect : ZelmRect
    (x1, y1, x2 + 1 - x1, y2 + 1 - y1), wrapping around at the ends of the 32-bit range

Raises
------
ZelmError
    ZELM_ERR_PARAM: when a pointer is NULL

Notes
-----
In C: int32_t zelmMiscChangeRect2ToRect(const ZelmRect2* tRect2, ZelmRect* tRect)
""",
    "zelmMiscBilinearGrayLevel": """\
Bilinear gray level at a real position. Between the last column (row) and the image's border the
edge pixel serves as its own neighbour.

Parameters
----------
tImage : array of uint8, shape (height, width)
    image; not NULL (not checked)
dX : float
    position in pixels
dY : float
    position in pixels

Returns
-------
dLevel : float
    the gray level, not rounded; 0.0 when x < 0, y < 0, x >= width, y >= height or a coordinate is
    not a number

Notes
-----
In C: double zelmMiscBilinearGrayLevel(const ZelmImage* tImage, double dX, double dY)
""",
    "zelmMiscPlotPointsOfLine": """\
The pixels of a straight line (Bresenham 1965, symmetric error term).

Parameters
----------
tP0 : Point2i
    end pixels; coordinates within +-2^30
tP1 : Point2i
    end pixels; coordinates within +-2^30

Returns
-------
taPoints : array of int32, shape (pixelsOfLine(tP0, tP1), 2), as many entries as there are
    room for max(|dx|, |dy|) + 1 pixels, from P0 to P1 inclusive

Raises
------
ZelmError
    ZELM_ERR_PARAM: when a pointer is NULL

Notes
-----
In C: int32_t zelmMiscPlotPointsOfLine(const Point2i* tP0, const Point2i* tP1, Point2i* taPoints)
""",
    "zelm2ViewCalibOpen": """\
Opens an object for a new calibration.

Parameters
----------
iViews : int
    number of views, >= 3
tPattern : Zelm2ViewPatternDesc
    the plate; copied. A NaN among d0 to d7 passes, because only a value known not to be positive is
    refused; such a plate is then not found in any image
tCameras : Zelm2ViewCameraDesc
    the cameras; copied

Returns
-------
tHandle : Zelm2ViewCalib
    the object

Raises
------
ZelmError
    ZELM_ERR_PARAM: with nothing allocated: views below 3, a NULL pointer, a live handle, a length
        of the plate that is not positive, markers < 1, polarity other than 0 or 1, an image size <
        1, a model other than 0, 1 or 2
    ZELM_ERR_MEMORY: the object cannot be had, or its calibration block would exceed 2^31 - 1 bytes

Notes
-----
The calibration block starts as zeros but for its first 28 bytes.

In C: int32_t zelm2ViewCalibOpen(int32_t iViews, const Zelm2ViewPatternDesc* tPattern, const
Zelm2ViewCameraDesc* tCameras, Zelm2ViewCalib** tHandle)
""",
    "zelm2ViewGetCalibDataSize": """\
Size of the calibration block in bytes.

Parameters
----------
tHandle : Zelm2ViewCalib
    an opened or loaded object

Returns
-------
iSize : int
    n * 240 + 812

Raises
------
ZelmError
    ZELM_ERR_PARAM: NULL handle, or a loaded block whose n gives no size that an int32 can hold

Notes
-----
In C: int32_t zelm2ViewGetCalibDataSize(const Zelm2ViewCalib* tHandle)
""",
    "zelm2ViewSaveCalibData": """\
Copies the calibration block out. The dots that were read are not part of it.

Parameters
----------
tHandle : Zelm2ViewCalib
    an opened or loaded object

Returns
-------
ucBuffer : bytes
    zelm2ViewGetCalibDataSize bytes

Raises
------
ZelmError
    ZELM_ERR_PARAM: a NULL pointer, or a block without a size

Notes
-----
In C: int32_t zelm2ViewSaveCalibData(const Zelm2ViewCalib* tHandle, unsigned char* ucBuffer)
""",
    "zelm2ViewLoadCalibData": """\
Makes an object from a saved calibration block. It serves everything that reads only the block;
reading, calibration, zelm2ViewGetPtnNum and zelm2ViewGetPattern refuse it.

Parameters
----------
ucBuffer : bytes
    the block; copied

Returns
-------
tHandle : Zelm2ViewCalib
    the object

Raises
------
ZelmError
    ZELM_ERR_PARAM: size < 1, a NULL pointer, a live handle
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelm2ViewLoadCalibData(int32_t iSize, const unsigned char* ucBuffer, Zelm2ViewCalib**
tHandle)
""",
    "zelm2ViewCalibClose": """\
Frees an object with all it holds and sets the handle to NULL. A NULL pointer or handle is accepted.

Parameters
----------
tHandle : Zelm2ViewCalib, or None
    the handle, set to NULL

Notes
-----
In C: void zelm2ViewCalibClose(Zelm2ViewCalib** tHandle)
""",
    "zelm2ViewGetCamHomMat": """\
The rectifying pair of a camera: M, row-major, then its inverse.

In a pair of perspective cameras M is the left 3x3 block (K * R) of the 3x4 projection matrix of
view 0. In a pair with a camera of model 2, whose left block has a zero third row and no inverse,
both M are the homographies from the plane of view 0 to the image: columns 1, 2 and 4 of the
projection matrix. Adding d times its column 3 to the last column moves that plane to height d.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair, opened or loaded
iCamera : 'L' or 'R'
    'L' or 'R'

Returns
-------
daOut : array of float64, shape (2, 3, 3)
    18 doubles

Raises
------
ZelmError
    ZELM_ERR_PARAM: a NULL pointer, another camera

Notes
-----
In C: int32_t zelm2ViewGetCamHomMat(const Zelm2ViewCalib* tHandle, int32_t iCamera, double* daOut)
""",
    "zelm2ViewGetCamFndMat": """\
The fundamental matrix F, row-major, then its transpose: xL' * F * xR = 0 for undistorted
homogeneous pixels.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair, opened or loaded

Returns
-------
daOut : array of float64, shape (2, 3, 3)
    18 doubles

Raises
------
ZelmError
    ZELM_ERR_PARAM: a NULL pointer

Notes
-----
In C: int32_t zelm2ViewGetCamFndMat(const Zelm2ViewCalib* tHandle, double* daOut)
""",
    "zelm2ViewGetCamIntParam": """\
The intrinsic parameters of a camera.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair, opened or loaded
iCamera : 'L' or 'R'
    'L' or 'R'

Returns
-------
tOut : ZelmCameraIntrinsics
    the parameters

Raises
------
ZelmError
    ZELM_ERR_PARAM: a NULL pointer, another camera than 'L' or 'R'

Notes
-----
In C: int32_t zelm2ViewGetCamIntParam(const Zelm2ViewCalib* tHandle, int32_t iCamera,
ZelmCameraIntrinsics* tOut)
""",
    "zelm2ViewGetCamExtParam": """\
The pose of a camera relative to the plate of a view; all zeros for a camera of model 2 in views
from 1 on.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair, opened or loaded
iCamera : 'L' or 'R'
    'L' or 'R'
iView : int
    0..n - 1

Returns
-------
tOut : ZelmCameraExtrinsics
    the pose

Raises
------
ZelmError
    ZELM_ERR_PARAM: a NULL pointer, a view outside 0..n - 1, another camera than 'L' or 'R'

Notes
-----
In C: int32_t zelm2ViewGetCamExtParam(const Zelm2ViewCalib* tHandle, int32_t iCamera, int32_t iView,
ZelmCameraExtrinsics* tOut)
""",
    "zelm2ViewGetPtnNum": """\
How many dots were read for a camera and view; 0 before reading.

Parameters
----------
tHandle : Zelm2ViewCalib
    an opened object
iCamera : 'L' or 'R'
    'L' or 'R'
iView : int
    0..n - 1

Returns
-------
iCount : int
    the number of dots

Raises
------
ZelmError
    ZELM_ERR_PARAM: a NULL pointer, a loaded object, a view outside 0..n - 1, another camera

Notes
-----
In C: int32_t zelm2ViewGetPtnNum(const Zelm2ViewCalib* tHandle, int32_t iCamera, int32_t iView,
int32_t* iCount)
""",
    "zelm2ViewGetPattern": """\
The image points (not the plane points) of the dots that were read, in the order in which they were
found.

Parameters
----------
tHandle : Zelm2ViewCalib
    an opened object
iCamera : 'L' or 'R'
    'L' or 'R'
iView : int
    0..n - 1

Returns
-------
taOut : array of float64, shape (dots(tHandle, iCamera, iView), 2)
    as many points as zelm2ViewGetPtnNum says

Raises
------
ZelmError
    ZELM_ERR_PARAM: a NULL pointer, a loaded object, a view outside 0..n - 1, another camera

Notes
-----
In C: int32_t zelm2ViewGetPattern(const Zelm2ViewCalib* tHandle, int32_t iCamera, int32_t iView,
Point2d* taOut)
""",
    "zelm2ViewReadPtnImg": """\
Finds the dots of the plate in the two images of a view and keeps them in the object, in place of
the dots that an earlier reading of the view found.

In each image: the plate is the largest blob, at Otsu's threshold, of the polarity opposite to the
dots' (unless a region is given); in its bounding box dots are blobs at the box's own threshold. 20
rays from a blob's centroid find its outline, and an ellipse through them gives the dot's centre.
Dots of odd shape or size are dropped, the markers found by their area, and every dot is given its
grid index through a homography fitted to the dots around the markers. Dots are kept in the order of
their blobs; dots cut by the edge of the region are not seen.

Orientation: the corner marker is the one at which the directions to the next two markers are
nearest to a right angle, within 20 degrees. The angle is judged on the plate: the mean
foreshortening of all dots' outlines is undone first, so that tilts to 45 degrees and unequal marker
distances do not matter. The axes are told apart by their sense: x axis cross y axis > 0 in pixels
with y downwards, so that the plate's z axis points away from the cameras; index (1, 0) lies towards
the x marker and (0, 1) towards the y marker. The axes may differ in length by 100 pixels.

Where the affine frame of three markers misplaces far dots, under strong perspective, so that the
homography leaves dots without a place, it is fitted once more, starting from the next neighbours of
the corner marker; that one is taken if it places more dots.

Parameters
----------
tHandle : Zelm2ViewCalib
    an opened object
iView : int
    0..n - 1
ucaImages : pair of arrays of uint8, shape (height, width) each, or None
    left and right gray image of the sizes given at open, stride = width. A camera of model 2 is
    read in view 0 alone; in later views its image and region are not looked at
tRegionLeft : ZelmRect, or None, default None
    where to look for dots in the left image, or NULL to look for the plate
tRegionRight : ZelmRect, or None, default None
    the same for the right image

Raises
------
ZelmError
    ZELM_ERR_PARAM: (nothing is read): a NULL handle or image that is needed, a loaded object, a
        view outside 0..n - 1, a region that is empty or leaves its image
    ZELM_ERR_PATTERN_PLATE: no blob covers a twentieth of the image, or the image is of one gray
        level
    ZELM_ERR_PATTERN: fewer dots than minDots after labelling, after dropping outliers or on the
        grid, or fewer than 2 with an ellipse
    ZELM_ERR_PATTERN_MARKERS: no mean dot area, not the required number of dots of marker size, no
        right angle, axes that differ by more than 100 pixels
    ZELM_ERR_PATTERN_GRID: the frame or the homography is singular, has too few dots, or d6 / d4 or
        d7 / d5 is not a number or above a million
    ZELM_ERR_MEMORY

Notes
-----
On failure: what the left image gave stays when the right one fails. The failing image keeps its old
dots when no plate was found or too few dots were labelled; else it is left without dots, or, when
too few lie on the grid, with those that do.

In C: int32_t zelm2ViewReadPtnImg(Zelm2ViewCalib* tHandle, int32_t iView, const unsigned char*
const* ucaImages, const ZelmRect* tRegionLeft, const ZelmRect* tRegionRight)
""",
    "zelm2ViewReadPtnImg_vImagePlanar8": """\
The same for gray platform buffers. Rows without padding are read in place, others are packed first.

Parameters
----------
tHandle : Zelm2ViewCalib
    an opened object
iView : int
    0..n - 1
tLeft : array of uint8, shape (height, width), or None
    Planar8 buffer of the size given at open; one of the two may be NULL where its image is not
    needed
tRight : array of uint8, shape (height, width), or None
    the same of the right camera
tRegionLeft : ZelmRect, or None, default None
    where to look for dots in the left image, or NULL
tRegionRight : ZelmRect, or None, default None
    the same for the right image

Raises
------
ZelmError
    ZELM_ERR_PARAM: (nothing is read): a NULL handle or image that is needed, a loaded object, a
        view outside 0..n - 1, a region that is empty or leaves its image; also for two NULL
        buffers, a buffer without data, of another size, or with rows shorter than its width
    ZELM_ERR_MEMORY: also when a packed copy cannot be had
    ZELM_ERR_PATTERN_PLATE: no blob covers a twentieth of the image, or the image is of one gray
        level
    ZELM_ERR_PATTERN: fewer dots than minDots after labelling, after dropping outliers or on the
        grid, or fewer than 2 with an ellipse
    ZELM_ERR_PATTERN_MARKERS: no mean dot area, not the required number of dots of marker size, no
        right angle, axes that differ by more than 100 pixels
    ZELM_ERR_PATTERN_GRID: the frame or the homography is singular, has too few dots, or d6 / d4 or
        d7 / d5 is not a number or above a million

Notes
-----
In C: int32_t zelm2ViewReadPtnImg_vImagePlanar8(Zelm2ViewCalib* tHandle, int32_t iView, const
vImage_Buffer* tLeft, const vImage_Buffer* tRight, const ZelmRect* tRegionLeft, const ZelmRect*
tRegionRight)
""",
    "zelm2ViewReadPtnImg_vImageARGB8888": """\
The same for colour platform buffers; a pixel's gray is the truncated mean of its R, G and B.

Parameters
----------
tHandle : Zelm2ViewCalib
    an opened object
iView : int
    0..n - 1
tLeft : array of uint8, shape (height, width, 4), in the order A, R, G, B, or None
    ARGB8888 buffer of the size given at open; one of the two may be NULL where its image is not
    needed
tRight : array of uint8, shape (height, width, 4), in the order A, R, G, B, or None
    the same of the right camera
tRegionLeft : ZelmRect, or None, default None
    where to look for dots in the left image, or NULL
tRegionRight : ZelmRect, or None, default None
    the same for the right image

Raises
------
ZelmError
    ZELM_ERR_PARAM: (nothing is read): a NULL handle or image that is needed, a loaded object, a
        view outside 0..n - 1, a region that is empty or leaves its image; also for two NULL
        buffers, a buffer without data, of another size, or with rows shorter than its width
    ZELM_ERR_MEMORY: also when a packed copy cannot be had
    ZELM_ERR_PATTERN_PLATE: no blob covers a twentieth of the image, or the image is of one gray
        level
    ZELM_ERR_PATTERN: fewer dots than minDots after labelling, after dropping outliers or on the
        grid, or fewer than 2 with an ellipse
    ZELM_ERR_PATTERN_MARKERS: no mean dot area, not the required number of dots of marker size, no
        right angle, axes that differ by more than 100 pixels
    ZELM_ERR_PATTERN_GRID: the frame or the homography is singular, has too few dots, or d6 / d4 or
        d7 / d5 is not a number or above a million

Notes
-----
In C: int32_t zelm2ViewReadPtnImg_vImageARGB8888(Zelm2ViewCalib* tHandle, int32_t iView, const
vImage_Buffer* tLeft, const vImage_Buffer* tRight, const ZelmRect* tRegionLeft, const ZelmRect*
tRegionRight)
""",
    "zelm2ViewCalibCameraParam": """\
Calibrates the pair from the dots that were read: each camera on its own (zelmCalibCameraParam,
robust threshold 3.5), then the fundamental matrix and the rectifying pairs. The two cameras are not
refined together.

Perspective cameras use all views; a camera of model 2 uses view 0, with alpha and beta preset to d6
and d7 and the principal point to the image's centre. The fundamental matrix is K_L^-T [t]x R K_R^-1
of the two poses of view 0 (Longuet-Higgins, 1981), or, for a left camera of model 2, (P_R P_L^+)'
[e]x (Hartley and Zisserman, 2004) turned to the same order; divided by its largest element and then
made of rank 2. Accepted pairs of models: 0 and 1 in any combination, 2 with 0, 1 or 2. A
perspective left with a model-2 right camera is refused after both cameras have been estimated and
written (`docs/decisions.md#right-parallel-refused`): swap the cameras.

One view of a plane does not tell the sign of a parallel camera's tilt: seen from the other side the
dots lie the same. The estimation takes one of the two poses, so in a pair with a camera of model 2
that is tilted against the plate of view 0 the fundamental matrix holds for points of that plane,
but for others perhaps that of the mirrored pose. Put the plate of view 0 head-on to such a camera,
where both poses are one.

Parameters
----------
tHandle : Zelm2ViewCalib
    an opened object, every view read that the models need

Returns
-------
tResult : Zelm2ViewCalibResult
    status and error of each camera; the statuses are set to 0 first, the others only when a camera
    has been estimated

Raises
------
ZelmError
    ZELM_ERR_PARAM: a NULL pointer, a loaded object, left model not 2 with right model 2
    ZELM_ERR_STEREO_GEOMETRY: no fundamental matrix, as for two cameras in the same place or a
        parallel camera whose scale is below about 3e-5 pixels a plate unit
    ZELM_ERR_CALIB_HOMOGRAPHY: no rectifying pair; codes of zelmCalibCameraParam (left camera first)
        and of the matrix toolkit
    ZELM_ERR_MEMORY

Notes
-----
On failure the calibration block holds what was finished before: left camera, right camera,
fundamental matrix, left and right rectifying pair, in this order.

In C: int32_t zelm2ViewCalibCameraParam(Zelm2ViewCalib* tHandle, Zelm2ViewCalibResult* tResult)
""",
    "zelm2ViewChange2Dto3D": """\
The 3-D point of a raw pixel pair: the lens distortion is removed, the pair is moved to satisfy the
epipolar constraint by first-order optimal correction (Kanatani, Sugaya and Niitsuma, 2008; at most
20 rounds, else the points are used as they are), and the point is found by linear least squares.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair; at most one camera may have model 2
tLeft : Point2d
    raw pixel of the left image
tRight : Point2d
    its counterpart in the right image, raw

Returns
-------
tOut : Point3d
    point in the world frame, written on success

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer or two model-2 cameras
    ZELM_ERR_UNDISTORT: when a pixel's distortion cannot be removed
    ZELM_ERR_DEGENERATE: when the linear system cannot be solved
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelm2ViewChange2Dto3D(const Zelm2ViewCalib* tHandle, const Point2d* tLeft, const
Point2d* tRight, Point3d* tOut)
""",
    "zelm2ViewChange3Dto2D": """\
The raw pixel at which a camera sees a 3-D point.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair
iCamera : 'L' or 'R'
    'L' or 'R'
tIn : Point3d
    point in the world frame

Returns
-------
tOut : Point2d
    raw pixel

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer or another camera

Notes
-----
In C: int32_t zelm2ViewChange3Dto2D(const Zelm2ViewCalib* tHandle, int32_t iCamera, const Point3d*
tIn, Point2d* tOut)
""",
    "zelm2ViewCalcEpiLine": """\
The epipolar line, in one image, of a raw pixel of the other one. It is a line of the undistorted
image.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair
iCamera : 'L' or 'R'
    the image in which the line is wanted, 'L' or 'R'
tPoint : Point2d
    raw pixel of the other image

Returns
-------
tOut : Zelm2ViewEpiLine
    line and segment; the end points are set to 0 even when the camera is refused. The epipole
    itself gives a line that is not finite.

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer or another camera
    ZELM_ERR_UNDISTORT: when the pixel's distortion cannot be removed

Notes
-----
In C: int32_t zelm2ViewCalcEpiLine(const Zelm2ViewCalib* tHandle, int32_t iCamera, const Point2d*
tPoint, Zelm2ViewEpiLine* tOut)
""",
    "zelm2ViewChangeHomEpiLine": """\
Carries a line of a camera's undistorted image into its rectified image.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair
iCamera : 'L' or 'R'
    'L' or 'R'
tParams : Zelm2ViewHomParam
    rectification
daLine : array of float64, shape (3,)
    3 doubles a, b, c

Returns
-------
tOut : Zelm2ViewEpiLine
    line and segment in the rectified image

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer or another camera
    ZELM_ERR_DEGENERATE: when the rectifying transform cannot be formed

Notes
-----
In C: int32_t zelm2ViewChangeHomEpiLine(const Zelm2ViewCalib* tHandle, int32_t iCamera, const
Zelm2ViewHomParam* tParams, const double* daLine, Zelm2ViewEpiLine* tOut)
""",
    "zelm2ViewMakeHomImage": """\
Renders a camera's raw gray image as the other camera would see it (rectified image): every
rectified pixel is mapped into the undistorted image, distorted with the camera model and sampled
bilinearly; 0 where there is no source.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair
iCamera : 'L' or 'R'
    camera that took the image, 'L' or 'R'; W x H is its image size
ucSrc : array of uint8, shape (height(tHandle, iCamera), width(tHandle, iCamera))
    raw image, H rows of W bytes
tParams : Zelm2ViewHomParam
    rectification

Returns
-------
ucDst : array of uint8, shape (height(tHandle, iCamera), width(tHandle, iCamera))
    rectified image, H rows of W bytes; must not overlap the source

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer or another camera
    ZELM_ERR_DEGENERATE: when the rectifying transform cannot be formed

Notes
-----
In C: int32_t zelm2ViewMakeHomImage(const Zelm2ViewCalib* tHandle, int32_t iCamera, const unsigned
char* ucSrc, const Zelm2ViewHomParam* tParams, unsigned char* ucDst)
""",
    "zelm2ViewMakeHomImage_vImageARGB8888": """\
As zelm2ViewMakeHomImage for ARGB8888 buffers; all four bytes of a pixel are treated alike.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair, opened or loaded
iCamera : 'L' or 'R'
    'L' or 'R'
tSrc : array of uint8, shape (height, width, 4), in the order A, R, G, B
    raw image of the camera's size
tParams : Zelm2ViewHomParam
    rectification

Returns
-------
tDst : array of uint8, shape (height, width, 4), in the order A, R, G, B
    rectified image of the same size; its data is written

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer or another camera
    ZELM_ERR_DEGENERATE: when the rectifying transform cannot be formed

Notes
-----
In C: int32_t zelm2ViewMakeHomImage_vImageARGB8888(const Zelm2ViewCalib* tHandle, int32_t iCamera,
const vImage_Buffer* tSrc, const Zelm2ViewHomParam* tParams, const vImage_Buffer* tDst)
""",
    "zelm2ViewCalcHomImgPoint": """\
Maps a raw pixel into the rectified image.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair, opened or loaded
iCamera : 'L' or 'R'
    'L' or 'R'
tIn : Point2d
    raw pixel
tParams : Zelm2ViewHomParam
    rectification

Returns
-------
tOut : Point2d
    rectified pixel

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer or another camera
    ZELM_ERR_DEGENERATE: when the rectifying transform cannot be formed
    ZELM_ERR_UNDISTORT: when the pixel's distortion cannot be removed

Notes
-----
In C: int32_t zelm2ViewCalcHomImgPoint(const Zelm2ViewCalib* tHandle, int32_t iCamera, const
Point2d* tIn, const Zelm2ViewHomParam* tParams, Point2d* tOut)
""",
    "zelm2ViewInvHomImgPoint": """\
Maps a rectified pixel back to the raw image.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair, opened or loaded
iCamera : 'L' or 'R'
    'L' or 'R'
tIn : Point2d
    rectified pixel
tParams : Zelm2ViewHomParam
    rectification

Returns
-------
tOut : Point2d
    raw pixel

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer or another camera
    ZELM_ERR_DEGENERATE: when the rectifying transform cannot be formed

Notes
-----
In C: int32_t zelm2ViewInvHomImgPoint(const Zelm2ViewCalib* tHandle, int32_t iCamera, const Point2d*
tIn, const Zelm2ViewHomParam* tParams, Point2d* tOut)
""",
    "zelm2ViewUnDistortImage": """\
Removes the lens distortion from a raw gray image of the camera's size W x H. Every pixel is the
bilinear gray level of the source at its distorted position, rounded half up; 0 outside the source.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair, opened or loaded
iCamera : 'L' or 'R'
    'L' or 'R'
ucSrc : array of uint8, shape (height(tHandle, iCamera), width(tHandle, iCamera))
    raw image, H rows of W bytes

Returns
-------
ucDst : array of uint8, shape (height(tHandle, iCamera), width(tHandle, iCamera))
    undistorted image, H rows of W bytes; must not overlap the source

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer or another camera

Notes
-----
In C: int32_t zelm2ViewUnDistortImage(const Zelm2ViewCalib* tHandle, int32_t iCamera, const unsigned
char* ucSrc, unsigned char* ucDst)
""",
    "zelm2ViewUnDistortImage_vImageARGB8888": """\
As zelm2ViewUnDistortImage for ARGB8888 buffers; alpha becomes 255 everywhere. A position beyond the
centre of the last column or row gives R = G = B = 0.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair, opened or loaded
iCamera : 'L' or 'R'
    'L' or 'R'
tSrc : array of uint8, shape (height, width, 4), in the order A, R, G, B
    raw image of the camera's size

Returns
-------
tDst : array of uint8, shape (height, width, 4), in the order A, R, G, B
    undistorted image of the same size; its data is written

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer or another camera

Notes
-----
In C: int32_t zelm2ViewUnDistortImage_vImageARGB8888(const Zelm2ViewCalib* tHandle, int32_t iCamera,
const vImage_Buffer* tSrc, const vImage_Buffer* tDst)
""",
    "zelm2ViewDistortPoint": """\
Applies a camera's lens distortion to an undistorted pixel.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair, opened or loaded
iCamera : 'L' or 'R'
    'L' or 'R'
tIn : Point2d
    undistorted pixel

Returns
-------
tOut : Point2d
    raw pixel

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer or another camera

Notes
-----
In C: int32_t zelm2ViewDistortPoint(const Zelm2ViewCalib* tHandle, int32_t iCamera, const Point2d*
tIn, Point2d* tOut)
""",
    "zelm2ViewUnDistortPoint": """\
Removes a camera's lens distortion from a raw pixel.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair, opened or loaded
iCamera : 'L' or 'R'
    'L' or 'R'
tIn : Point2d
    raw pixel

Returns
-------
tOut : Point2d
    undistorted pixel; on ZELM_ERR_UNDISTORT the latest estimate, as from zelmCalibUnDistortPoint()

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer or another camera
    ZELM_ERR_UNDISTORT

Notes
-----
In C: int32_t zelm2ViewUnDistortPoint(const Zelm2ViewCalib* tHandle, int32_t iCamera, const Point2d*
tIn, Point2d* tOut)
""",
    "zelmCstmDrovnCalcMagnification": """\
How many image pixels a unit of the plate's plane measures in each image, at a given height: the
image length of the segment from (0, 0, Z) to (X, 0, Z) of the world frame, seen by a camera's
view-0 pose without lens distortion, divided by |X|. The ratio of the two values tells how much
larger one camera sees the object than the other, and so which magnification makes their images
alike.

Models 0 and 1 project with K * [R | t] (under model 1 the axis angle is part of K); for model 2 the
depth is dropped, so that the value does not depend on Z. X = 0 gives the limit, the scale at the
foot (0, 0, Z). A length that is not finite, or a segment that reaches the camera's own plane, gives
a value that is not finite or is 0, and ZELM_OK.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair
dLengthA : float
    1000 Z: height of the segment in thousandths of the plate's unit (micrometres when the plate is
    described in millimetres); like Z, it grows away from the cameras
dLengthB : float
    1000 X: length of the segment in thousandths of the plate's unit

Returns
-------
zelmCstmDrovnCalcMagnificationResult : named tuple of
    dOutL : float
        undistorted pixels of the left and of the right image per plate unit
    dOutR : float
        undistorted pixels of the left and of the right image per plate unit

Raises
------
ZelmError
    ZELM_ERR_PARAM: when the handle or an output is NULL

Notes
-----
In C: int32_t zelmCstmDrovnCalcMagnification(const Zelm2ViewCalib* tHandle, double dLengthA, double
dLengthB, double* dOutL, double* dOutR)
""",
    "zelmCstmDrovnCalcHomImgMemSize": """\
The size of the expanded image that a region of the raw image needs, and where to centre it. The
corners of the region are undistorted and transferred with the region's middle as reference point;
the box around them, rounded up to multiples of 4, is the size.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair
iCamera : 'L' or 'R'
    'L' or 'R'
tRoi : ZelmRect
    region of the raw image; x, y >= 0, width, height > 0; need not lie inside the image
tExpPrm : ZelmCstmExpPrm
    expansion; dVal is used, and not tested
dD : float, default 0
    plane term d

Returns
-------
zelmCstmDrovnCalcHomImgMemSizeResult : named tuple of
    iWidth : int
        size, multiples of 4, >= 4
    iHeight : int
        size, multiples of 4, >= 4
    tCentre : Point2d
        undistorted source point in the middle of the box: as (dX, dY) of a destination record of that
        size it shows the region to a pixel. May be NULL

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer, a bad region or another camera
    ZELM_ERR_DEGENERATE: when the homography cannot be formed, a corner is carried to infinity or
        the size exceeds 32 bits
    ZELM_ERR_UNDISTORT: when a corner's distortion cannot be removed

Notes
-----
In C: int32_t zelmCstmDrovnCalcHomImgMemSize(const Zelm2ViewCalib* tHandle, int32_t iCamera, const
ZelmRect* tRoi, const ZelmCstmExpPrm* tExpPrm, int32_t* iWidth, int32_t* iHeight, Point2d* tCentre,
double dD)
""",
    "zelmCstmDrovnChangeOrg2DtoExp2D": """\
Maps a source point into a magnified image (zelmCstmDrovnExpandImage), without transfer: (iWidth / 2
+ (x - dX) * dVal, iHeight / 2 + (y - dY) * dVal), integer halves.

Parameters
----------
tExpPrm : ZelmCstmExpPrm
    expansion; all fields
tIn : Point2d
    source point

Returns
-------
tOut : Point2d
    magnified point

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer, a negative size or dVal not >= 1

Notes
-----
In C: int32_t zelmCstmDrovnChangeOrg2DtoExp2D(const ZelmCstmExpPrm* tExpPrm, const Point2d* tIn,
Point2d* tOut)
""",
    "zelmCstmDrovnChangeOrg2DtoHom2D": """\
Maps a raw pixel into the expanded image of magnification 1.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair
iCamera : 'L' or 'R'
    'L' or 'R'
tHomPrm : ZelmCstmExpPrm
    destination
tIn : Point2d
    raw pixel of the source image

Returns
-------
tOut : Point2d
    pixel of that image

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer or another camera
    ZELM_ERR_DEGENERATE: when the homography cannot be formed
    ZELM_ERR_UNDISTORT: when the pixel's distortion cannot be removed

Notes
-----
In C: int32_t zelmCstmDrovnChangeOrg2DtoHom2D(const Zelm2ViewCalib* tHandle, int32_t iCamera, const
ZelmCstmExpPrm* tHomPrm, const Point2d* tIn, Point2d* tOut)
""",
    "zelmCstmDrovnChangeOrg2DtoHom2DExp": """\
Maps a raw pixel into the expanded image.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair
iCamera : 'L' or 'R'
    'L' or 'R'
tHomPrm : ZelmCstmExpPrm
    destination
tExpPrm : ZelmCstmExpPrm
    expansion; dVal is used, and not tested
tIn : Point2d
    raw pixel of the source image

Returns
-------
tOut : Point2d
    pixel of the expanded image

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer or another camera
    ZELM_ERR_DEGENERATE: when the homography cannot be formed
    ZELM_ERR_UNDISTORT: when the pixel's distortion cannot be removed

Notes
-----
In C: int32_t zelmCstmDrovnChangeOrg2DtoHom2DExp(const Zelm2ViewCalib* tHandle, int32_t iCamera,
const ZelmCstmExpPrm* tHomPrm, const ZelmCstmExpPrm* tExpPrm, const Point2d* tIn, Point2d* tOut)
""",
    "zelmCstmDrovnInvHomImgPointExp": """\
Maps a pixel of the expanded image back to the raw image.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair
iCamera : 'L' or 'R'
    'L' or 'R'
tIn : Point2d
    pixel of the expanded image
tHomPrm : ZelmCstmExpPrm
    destination
tExpPrm : ZelmCstmExpPrm
    expansion; size >= 0 and dVal >= 1, of which dVal is used

Returns
-------
tOut : Point2d
    raw pixel of the source image

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer, a bad expansion or another camera
    ZELM_ERR_DEGENERATE: when the homography cannot be formed

Notes
-----
In C: int32_t zelmCstmDrovnInvHomImgPointExp(const Zelm2ViewCalib* tHandle, int32_t iCamera, const
Point2d* tIn, const ZelmCstmExpPrm* tHomPrm, const ZelmCstmExpPrm* tExpPrm, Point2d* tOut)
""",
    "zelmCstmDrovnChangeHomEpiLineExp": """\
Carries a line of the undistorted source image into the expanded image and clips it to that image
inset by one pixel on every side, so that sampling on it keeps its neighbours.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair
iCamera : 'L' or 'R'
    'L' or 'R'
tHomPrm : ZelmCstmExpPrm
    destination; its size bounds the segment
tExpPrm : ZelmCstmExpPrm
    expansion; size >= 0 and dVal >= 1, of which dVal is used
tLine : Line2d
    line, any scale

Returns
-------
tOut : Zelm2ViewEpiLine
    line (a^2 + b^2 = 1) and segment in the expanded image. The end points are 0 when the line
    misses the inset image, and equal when it touches it in one point

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer, a bad expansion or another camera
    ZELM_ERR_DEGENERATE: when the homography cannot be formed

Notes
-----
In C: int32_t zelmCstmDrovnChangeHomEpiLineExp(const Zelm2ViewCalib* tHandle, int32_t iCamera, const
ZelmCstmExpPrm* tHomPrm, const ZelmCstmExpPrm* tExpPrm, const Line2d* tLine, Zelm2ViewEpiLine* tOut)
""",
    "zelmCstmDrovnMakeHomImageExp": """\
Renders the expanded image of a raw gray image in one pass: every pixel is carried into the
undistorted source, distorted with the camera model and sampled bilinearly
(perspectiveTransAndDistortImage_8uC1); 0 where there is no source.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair
iCamera : 'L' or 'R'
    camera that took the image, 'L' or 'R'; W x H is its image size
ucSrc : array of uint8, shape (height(tHandle, iCamera), width(tHandle, iCamera))
    raw image, H rows of W bytes; not tested
tHomPrm : ZelmCstmExpPrm
    destination
tExpPrm : ZelmCstmExpPrm
    expansion; size >= 0 and dVal >= 1, of which dVal is used

Returns
-------
ucDst : array of uint8, shape (tHomPrm.iHeight, tHomPrm.iWidth)
    expanded image, iHeight rows of iWidth bytes of the destination record; not tested, must not
    overlap the source

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL record or handle, a bad expansion or another camera
    ZELM_ERR_DEGENERATE: when the homography cannot be formed

Notes
-----
In C: int32_t zelmCstmDrovnMakeHomImageExp(const Zelm2ViewCalib* tHandle, int32_t iCamera, const
unsigned char* ucSrc, const ZelmCstmExpPrm* tHomPrm, const ZelmCstmExpPrm* tExpPrm, unsigned char*
ucDst)
""",
    "zelmCstmDrovnMakeHomImageExp_vImagePlanar8": """\
As zelmCstmDrovnMakeHomImageExp for Planar8 buffers.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair
iCamera : 'L' or 'R'
    'L' or 'R'
tSrc : array of uint8, shape (height, width)
    raw image of the camera's size
tHomPrm : ZelmCstmExpPrm
    destination
tExpPrm : ZelmCstmExpPrm
    expansion; size >= 0 and dVal >= 1, of which dVal is used

Returns
-------
tDst : array of uint8, shape (height, width)
    expanded image of the destination record's size; its data is written

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL record or handle, a bad expansion or another camera
    ZELM_ERR_DEGENERATE: when the homography cannot be formed

Notes
-----
In C: int32_t zelmCstmDrovnMakeHomImageExp_vImagePlanar8(const Zelm2ViewCalib* tHandle, int32_t
iCamera, const vImage_Buffer* tSrc, const ZelmCstmExpPrm* tHomPrm, const ZelmCstmExpPrm* tExpPrm,
const vImage_Buffer* tDst)
""",
    "zelmCstmDrovnMakeHomImageExp_vImageARGB8888": """\
As zelmCstmDrovnMakeHomImageExp for ARGB8888 buffers; all four bytes of a pixel are treated alike.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair
iCamera : 'L' or 'R'
    'L' or 'R'
tSrc : array of uint8, shape (height, width, 4), in the order A, R, G, B
    raw image of the camera's size
tHomPrm : ZelmCstmExpPrm
    destination
tExpPrm : ZelmCstmExpPrm
    expansion; size >= 0 and dVal >= 1, of which dVal is used

Returns
-------
tDst : array of uint8, shape (height, width, 4), in the order A, R, G, B
    expanded image of the destination record's size; its data is written

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL record or handle, a bad expansion or another camera
    ZELM_ERR_DEGENERATE: when the homography cannot be formed

Notes
-----
In C: int32_t zelmCstmDrovnMakeHomImageExp_vImageARGB8888(const Zelm2ViewCalib* tHandle, int32_t
iCamera, const vImage_Buffer* tSrc, const ZelmCstmExpPrm* tHomPrm, const ZelmCstmExpPrm* tExpPrm,
const vImage_Buffer* tDst)
""",
    "zelmCstmDrovnMakeHomImageMap": """\
Computes the source position of every pixel of the expanded image once, for zelmCstmDrovnRemapImage
on every frame.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair
iCamera : 'L' or 'R'
    'L' or 'R'
tHomPrm : ZelmCstmExpPrm
    destination; its size fixes the centre, not the extent of the maps
tExpPrm : ZelmCstmExpPrm
    expansion; size >= 0 and dVal >= 1, of which dVal is used
tMap : ZelmCstmHomMap, written in place, default new maps
    size, planes and strides are read; the planes' contents and the box are written

Returns
-------
tMap : ZelmCstmHomMap
    size, planes and strides are read; the planes' contents and the box are written

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL record or handle, a bad expansion or another camera
    ZELM_ERR_DEGENERATE: when the homography cannot be formed

Notes
-----
In C: int32_t zelmCstmDrovnMakeHomImageMap(const Zelm2ViewCalib* tHandle, int32_t iCamera, const
ZelmCstmExpPrm* tHomPrm, const ZelmCstmExpPrm* tExpPrm, ZelmCstmHomMap* tMap)
""",
    "zelmCstmDrovnRemapImage": """\
Applies maps to a raw gray image. Pixels of the destination outside the map's box are left as they
were: clear the destination first.

Parameters
----------
tMap : ZelmCstmHomMap
    maps and box. An empty box, or maps of no size, write nothing
ucSrc : array of uint8, shape (iSrcHeight, iSrcWidth)
    source, iSrcHeight rows of iSrcWidth bytes; the size of the camera's image
ucDst : array of uint8, shape (iDstHeight, iDstWidth), written in place, default a new black image
    destination, iDstHeight rows of iDstWidth bytes; must not overlap the source

Returns
-------
ucDst : array of uint8, shape (iDstHeight, iDstWidth)
    destination, iDstHeight rows of iDstWidth bytes; must not overlap the source

Raises
------
ZelmError
    ZELM_ERR_PARAM: when a pointer is NULL, a size is not positive, or the box is not empty and
        reaches outside the maps or the destination

Notes
-----
In C: int32_t zelmCstmDrovnRemapImage(const ZelmCstmHomMap* tMap, const unsigned char* ucSrc,
int32_t iSrcWidth, int32_t iSrcHeight, unsigned char* ucDst, int32_t iDstWidth, int32_t iDstHeight)
""",
    "zelmCstmDrovnRemapImage_vImagePlanar8": """\
As zelmCstmDrovnRemapImage for Planar8 buffers.

Parameters
----------
tMap : ZelmCstmHomMap
    maps and box
tSrc : array of uint8, shape (height, width)
    source, of the size of the camera's image
tDst : array of uint8, shape (height, width), written in place, default a new black image
    destination; its data is written

Returns
-------
tDst : array of uint8, shape (height, width)
    destination; its data is written

Raises
------
ZelmError
    ZELM_ERR_PARAM: when a pointer is NULL, a size is not positive, or the box is not empty and
        reaches outside the maps or the destination

Notes
-----
In C: int32_t zelmCstmDrovnRemapImage_vImagePlanar8(const ZelmCstmHomMap* tMap, const vImage_Buffer*
tSrc, const vImage_Buffer* tDst)
""",
    "zelmCstmDrovnRemapImage_vImageARGB8888": """\
As zelmCstmDrovnRemapImage for ARGB8888 buffers; all four bytes of a pixel are treated alike.

Parameters
----------
tMap : ZelmCstmHomMap
    maps and box
tSrc : array of uint8, shape (height, width, 4), in the order A, R, G, B
    source, of the size of the camera's image
tDst : array of uint8, shape (height, width, 4), in the order A, R, G, B, written in place, default a new black image
    destination; its data is written

Returns
-------
tDst : array of uint8, shape (height, width, 4), in the order A, R, G, B
    destination; its data is written

Raises
------
ZelmError
    ZELM_ERR_PARAM: when a pointer is NULL, a size is not positive, or the box is not empty and
        reaches outside the maps or the destination

Notes
-----
In C: int32_t zelmCstmDrovnRemapImage_vImageARGB8888(const ZelmCstmHomMap* tMap, const
vImage_Buffer* tSrc, const vImage_Buffer* tDst)
""",
    "zelmCstmDrovnExpandImage": """\
Magnifies a raw gray image about a point, without transfer: the image counterpart of
zelmCstmDrovnChangeOrg2DtoExp2D. Pixel (c, r) is the bilinear gray level (zelmMiscBilinearGrayLevel)
of the source at (dX - (iWidth / 2) / dVal + c / dVal, dY - (iHeight / 2) / dVal + r / dVal),
integer halves, rounded half up; 0 outside the source.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair; only the camera's image size is read
iCamera : 'L' or 'R'
    'L' or 'R'; W x H is its image size
ucSrc : array of uint8, shape (height(tHandle, iCamera), width(tHandle, iCamera))
    raw image, H rows of W bytes
tExpPrm : ZelmCstmExpPrm
    expansion; all fields

Returns
-------
ucDst : array of uint8, shape (tExpPrm.iHeight, tExpPrm.iWidth)
    iHeight rows of iWidth bytes; must not overlap the source

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer, a negative size, dVal not >= 1 or another camera

Notes
-----
In C: int32_t zelmCstmDrovnExpandImage(const Zelm2ViewCalib* tHandle, int32_t iCamera, const
unsigned char* ucSrc, const ZelmCstmExpPrm* tExpPrm, unsigned char* ucDst)
""",
    "zelmCstmDrovnExpandImage_vImagePlanar8": """\
As zelmCstmDrovnExpandImage for Planar8 buffers.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair
iCamera : 'L' or 'R'
    'L' or 'R'
tSrc : array of uint8, shape (height, width)
    raw image of the camera's size
tExpPrm : ZelmCstmExpPrm
    expansion; all fields

Returns
-------
tDst : array of uint8, shape (height, width)
    image of the expansion's size; its data is written

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer, a negative size, dVal not >= 1 or another camera

Notes
-----
In C: int32_t zelmCstmDrovnExpandImage_vImagePlanar8(const Zelm2ViewCalib* tHandle, int32_t iCamera,
const vImage_Buffer* tSrc, const ZelmCstmExpPrm* tExpPrm, const vImage_Buffer* tDst)
""",
    "zelmCstmDrovnExpandImage_vImageARGB8888": """\
As zelmCstmDrovnExpandImage for ARGB8888 buffers; alpha becomes 255 everywhere. A position beyond
the centre of the last column or row gives R = G = B = 0.

Parameters
----------
tHandle : Zelm2ViewCalib
    calibrated pair
iCamera : 'L' or 'R'
    'L' or 'R'
tSrc : array of uint8, shape (height, width, 4), in the order A, R, G, B
    raw image of the camera's size
tExpPrm : ZelmCstmExpPrm
    expansion; all fields

Returns
-------
tDst : array of uint8, shape (height, width, 4), in the order A, R, G, B
    image of the expansion's size; its data is written

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer, a negative size, dVal not >= 1 or another camera

Notes
-----
In C: int32_t zelmCstmDrovnExpandImage_vImageARGB8888(const Zelm2ViewCalib* tHandle, int32_t
iCamera, const vImage_Buffer* tSrc, const ZelmCstmExpPrm* tExpPrm, const vImage_Buffer* tDst)
""",
    "zelmCstmDrovnGetPixelOnEpiLine": """\
The pixels of a line inside a rectangle, in order along the line: the lattice on which the search
walks.

Parameters
----------
tRect : ZelmRect
    rectangle; x, y >= 0, width, height > 0
tLine : Line2d
    line, any scale

Returns
-------
taPoints : array of int32, shape (max(tRect.width, tRect.height, 1), 2), as many entries as there are
    the pixels; room for max(width, height) of them always suffices

Raises
------
ZelmError
    ZELM_ERR_PARAM: for a NULL pointer, a bad rectangle or a line without direction
    ZELM_ERR_DEGENERATE: when the line does not cross the rectangle in two points (also when it runs
        along a side), or crosses it beyond 2^30

Notes
-----
In C: int32_t zelmCstmDrovnGetPixelOnEpiLine(const ZelmRect* tRect, const Line2d* tLine, int32_t*
iCount, Point2i* taPoints)
""",
    "zelmCstmDrovnCalcBasicStatisticsOfRefImg": """\
Mean and standard deviation of a template over each sampling pattern, and over its mask when it has
one. They are sums of 32-bit integers (mod 2^32) divided in doubles; O(width * height), nothing is
allocated.

Parameters
----------
tRef : ZelmCstmRefImg, written in place
    width, height, pixels and mask are read, mean and sigma written on success

Returns
-------
tRef : ZelmCstmRefImg
    width, height, pixels and mask are read, mean and sigma written on success

Raises
------
ZelmError
    ZELM_ERR_PARAM: when the record or its pixels are NULL
    ZELM_ERR_DEGENERATE: when width * height or height is below 1, or the mask leaves a pattern
        without pixels

Notes
-----
In C: int32_t zelmCstmDrovnCalcBasicStatisticsOfRefImg(ZelmCstmRefImg* tRef)
""",
    "zelmCstmDrovnCalcBasicStatisticsOfRefImg_vImagePlanar8": """\
As zelmCstmDrovnCalcBasicStatisticsOfRefImg for a template held in a Planar8 buffer.

Parameters
----------
tImage : array of uint8, shape (height, width)
    template
tMask : array of uint8, shape (height, width), or None, default None
    its mask, of the same width and height; NULL for none
tRef : ZelmCstmRefImg, written in place, default a record of zeros
    mean and sigma are written on success; nothing else is read or written

Returns
-------
tRef : ZelmCstmRefImg
    mean and sigma are written on success; nothing else is read or written

Raises
------
ZelmError
    ZELM_ERR_PARAM: when the record or its pixels are NULL
    ZELM_ERR_DEGENERATE: when width * height or height is below 1, or the mask leaves a pattern
        without pixels

Notes
-----
In C: int32_t zelmCstmDrovnCalcBasicStatisticsOfRefImg_vImagePlanar8(const vImage_Buffer* tImage,
const vImage_Buffer* tMask, ZelmCstmRefImg* tRef)
""",
    "zelmCstmDrovnSearchOnEpiLine": """\
The places on a line where a template matches.

1. The line is clipped to the rectangle through the centres of the region's outer pixels, and its pixels between the
   rounded end points are walked (Bresenham 1965).
2. Each pixel whose window lies in the image is scored with the sampling of the mode. With a search mask, pixels
   whose score is not positive are not scored.
3. A peak is a pixel that scores no less than both its neighbours, which must be scored; a plateau holds several. Of
   two or more peaks, those below max(0, minScore), less 0.2 unless the mode is 2, are dropped, and so is each one
   closer than minDistance - 4 (mode 2: minDistance - 2; below 2: none) to a better one. Equal peaks are taken in
   the order of the line.
4. From the best down, a peak is scored with all pixels. Unless the mode is 2 it climbs, at most twice, one pixel to
   its higher neighbour (of equal ones the earlier on the line), and is dropped where a window is not scored or no
   maximum is reached.
5. The extremum of the parabola through the logarithms of the scores of the peak and its neighbours, over the feet
   of their perpendiculars on the line, is the match (log-parabolic interpolation: exact for a Gaussian peak). It is
   dropped when it scores less than max(0, minScore), is no maximum or lies beyond the neighbours.
6. Matches are listed by score, best first (mode 2: as they were found), and one closer than minDistance to an
   earlier one is dropped. The search ends when maxResults are listed (`docs/decisions.md#results-stop`).

Accuracy: see docs/accuracy.md. A line parallel to an axis that passes through pixel centres is
matched best (to 0.006 pixel); other lines are left by the pixels walked by up to a pixel, because
the ends of the walk are rounded too, and are matched to about 0.06 pixel. Cost: one coarse score a
pixel of the line, 3 to 5 full scores a peak (mode 2: none).

Parameters
----------
tRef : ZelmCstmRefImg
    template; the statistics are not needed, nor tested, with a search mask
tPrm : ZelmCstmSearchPrm
    search

Returns
-------
taMatches : array of ZelmCstmMatch, shape (tPrm.maxResults,), as many entries as there are
    room for maxResults matches

Raises
------
ZelmError
    ZELM_ERR_PARAM: when a pointer is NULL, a size, the anchor, the region, maxResults or the mode
        is out of range, or without a search mask a mean or sigma is negative or not a number, or
        the line's normal is shorter than 1e-13
    ZELM_ERR_DEGENERATE: when the line misses the region, touches it in one point, runs along its
        border or is not finite, and when memory fails while it is clipped
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelmCstmDrovnSearchOnEpiLine(const ZelmCstmRefImg* tRef, const ZelmCstmSearchPrm*
tPrm, int32_t* iCount, ZelmCstmMatch* taMatches)
""",
    "zelmCstmDrovnSearchOnEpiLine_vImagePlanar8": """\
As zelmCstmDrovnSearchOnEpiLine for images held in Planar8 buffers; no image is copied. Each buffer
keeps its own row length.

Parameters
----------
tRef : ZelmCstmRefImg
    mean, sigma and anchor are read; width, height, pixels and mask are not
tRefImage : array of uint8, shape (height, width)
    template
tPrm : ZelmCstmSearchPrm
    search; width, height, pixels and mask are not read
tImage : array of uint8, shape (height, width)
    image to be searched
tRefMask : array of uint8, shape (height, width), or None, default None
    its mask, of the same width and height; NULL for none
tMask : array of uint8, shape (height, width), or None, default None
    its mask, of the same width and height; NULL for none

Returns
-------
taMatches : array of ZelmCstmMatch, shape (tPrm.maxResults,), as many entries as there are
    room for maxResults matches

Raises
------
ZelmError
    ZELM_ERR_PARAM: when a pointer is NULL, a size, the anchor, the region, maxResults or the mode
        is out of range, or without a search mask a mean or sigma is negative or not a number, or
        the line's normal is shorter than 1e-13
    ZELM_ERR_DEGENERATE: when the line misses the region, touches it in one point, runs along its
        border or is not finite, and when memory fails while it is clipped
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelmCstmDrovnSearchOnEpiLine_vImagePlanar8(const ZelmCstmRefImg* tRef, const
vImage_Buffer* tRefImage, const vImage_Buffer* tRefMask, const ZelmCstmSearchPrm* tPrm, const
vImage_Buffer* tImage, const vImage_Buffer* tMask, int32_t* iCount, ZelmCstmMatch* taMatches)
""",
    "zelmEdge1dDiffMax": """\
Finds the edge of the largest difference, by the gray values at the very ends of the two plateaus.

The parameters of this and the next four functions are the usual ones: halfWidth 1, contrastPercent
30, minContrast 5, flatTolerance 1, minFlatRun 2, filterSize 7. Among candidates that the rule holds
equal the first from p1 wins.

Parameters
----------
tImage : array of uint8, shape (height, width)
    gray image
tP1 : Point2d
    first point of the segment, pixels; it may lie outside the image
tP2 : Point2d
    second point
iSign : int, default 0
    +1: gray rises from p1 to p2; -1: it falls; 0: either

Returns
-------
zelmEdge1dDiffMaxResult : named tuple of
    iFound : int
        1: an edge was found. 0: no edge satisfies the rule, or its derivative has no clear maximum
    tEdgePoint : Point2d
        position on the segment's line; written only on result 1
    dStrength : float
        largest derivative along the segment, gray levels a pixel, positive; only on result 1

Raises
------
ZelmError
    ZELM_ERR_PARAM: image, its pixels, a point or an output is NULL; width or height < 1; iSign
        outside -1..1; a point is not finite, or the segment is 2^31 pixels long or longer
    ZELM_ERR_DEGENERATE: the two points are equal, or no sample of the segment lies inside the image
    ZELM_ERR_MEMORY: a work buffer could not be allocated, or the window of the filter leaves the
        profile (only with a filterSize other than 5 or 7)

Notes
-----
Memory: three work buffers, together 20 bytes a sample. They hold the samples within a pixel of the
image, at most minFlatRun + 11 more on each side, and 20 cells: what they take grows with the image,
not with the segment, however far that runs outside. The result is that of the whole segment.
Reentrant: yes.

In C: int32_t zelmEdge1dDiffMax(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2,
int32_t iSign, Point2d* tEdgePoint, double* dStrength)
""",
    "zelmEdge1dGenDiffMax": """\
Finds the edge of the largest difference between the levels of its plateaus. All else as
zelmEdge1dDiffMax.

Parameters
----------
tImage : array of uint8, shape (height, width)
    the image
tP1 : Point2d
    ends of the segment
tP2 : Point2d
    ends of the segment
iSign : int, default 0
    1, -1 or 0, as there

Returns
-------
zelmEdge1dGenDiffMaxResult : named tuple of
    iFound : int
        as zelmEdge1dDiffMax
    tEdgePoint : Point2d
        the edge
    dStrength : float
        its strength

Raises
------
ZelmError
    ZELM_ERR_PARAM: image, its pixels, a point or an output is NULL; width or height < 1; iSign
        outside -1..1; a point is not finite, or the segment is 2^31 pixels long or longer
    ZELM_ERR_DEGENERATE: the two points are equal, or no sample of the segment lies inside the image
    ZELM_ERR_MEMORY: a work buffer could not be allocated, or the window of the filter leaves the
        profile (only with a filterSize other than 5 or 7)

Notes
-----
In C: int32_t zelmEdge1dGenDiffMax(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2,
int32_t iSign, Point2d* tEdgePoint, double* dStrength)
""",
    "zelmEdge1dGenNearest": """\
Finds the first edge from p1. All else as zelmEdge1dDiffMax.

Parameters
----------
tImage : array of uint8, shape (height, width)
    the image
tP1 : Point2d
    ends of the segment
tP2 : Point2d
    ends of the segment
iSign : int, default 0
    1, -1 or 0, as there

Returns
-------
zelmEdge1dGenNearestResult : named tuple of
    iFound : int
        as zelmEdge1dDiffMax
    tEdgePoint : Point2d
        the edge
    dStrength : float
        its strength

Raises
------
ZelmError
    ZELM_ERR_PARAM: image, its pixels, a point or an output is NULL; width or height < 1; iSign
        outside -1..1; a point is not finite, or the segment is 2^31 pixels long or longer
    ZELM_ERR_DEGENERATE: the two points are equal, or no sample of the segment lies inside the image
    ZELM_ERR_MEMORY: a work buffer could not be allocated, or the window of the filter leaves the
        profile (only with a filterSize other than 5 or 7)

Notes
-----
In C: int32_t zelmEdge1dGenNearest(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2,
int32_t iSign, Point2d* tEdgePoint, double* dStrength)
""",
    "zelmEdge1dGenGradMax": """\
Finds the steepest edge: the largest difference of levels divided by the distance between the
plateaus. All else as zelmEdge1dDiffMax.

Parameters
----------
tImage : array of uint8, shape (height, width)
    the image
tP1 : Point2d
    ends of the segment
tP2 : Point2d
    ends of the segment
iSign : int, default 0
    1, -1 or 0, as there

Returns
-------
zelmEdge1dGenGradMaxResult : named tuple of
    iFound : int
        as zelmEdge1dDiffMax
    tEdgePoint : Point2d
        the edge
    dStrength : float
        its strength

Raises
------
ZelmError
    ZELM_ERR_PARAM: image, its pixels, a point or an output is NULL; width or height < 1; iSign
        outside -1..1; a point is not finite, or the segment is 2^31 pixels long or longer
    ZELM_ERR_DEGENERATE: the two points are equal, or no sample of the segment lies inside the image
    ZELM_ERR_MEMORY: a work buffer could not be allocated, or the window of the filter leaves the
        profile (only with a filterSize other than 5 or 7)

Notes
-----
In C: int32_t zelmEdge1dGenGradMax(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2,
int32_t iSign, Point2d* tEdgePoint, double* dStrength)
""",
    "zelmEdge1dGenNearestC": """\
Finds the edge whose middle lies closest to the middle of the segment. All else as
zelmEdge1dDiffMax.

Parameters
----------
tImage : array of uint8, shape (height, width)
    the image
tP1 : Point2d
    ends of the segment
tP2 : Point2d
    ends of the segment
iSign : int, default 0
    1, -1 or 0, as there

Returns
-------
zelmEdge1dGenNearestCResult : named tuple of
    iFound : int
        as zelmEdge1dDiffMax
    tEdgePoint : Point2d
        the edge
    dStrength : float
        its strength

Raises
------
ZelmError
    ZELM_ERR_PARAM: image, its pixels, a point or an output is NULL; width or height < 1; iSign
        outside -1..1; a point is not finite, or the segment is 2^31 pixels long or longer
    ZELM_ERR_DEGENERATE: the two points are equal, or no sample of the segment lies inside the image
    ZELM_ERR_MEMORY: a work buffer could not be allocated, or the window of the filter leaves the
        profile (only with a filterSize other than 5 or 7)

Notes
-----
In C: int32_t zelmEdge1dGenNearestC(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2,
int32_t iSign, Point2d* tEdgePoint, double* dStrength)
""",
    "zelmEdge1dManual": """\
Finds an edge by the caller's own parameters. Selectors 0 to 4 choose as zelmEdge1dDiffMax,
GenDiffMax, GenNearest, GenGradMax and GenNearestC do.

Parameters
----------
tImage : array of uint8, shape (height, width)
    the image
tP1 : Point2d
    ends of the segment
tP2 : Point2d
    ends of the segment
iSign : int
    1, -1 or 0, as there
tParam : ZelmEdge1dParam
    the parameters

Returns
-------
zelmEdge1dManualResult : named tuple of
    iFound : int
        as zelmEdge1dDiffMax
    tEdgePoint : Point2d
        the edge
    dStrength : float
        its strength

Raises
------
ZelmError
    ZELM_ERR_PARAM: image, its pixels, a point or an output is NULL; width or height < 1; iSign
        outside -1..1; a point is not finite, or the segment is 2^31 pixels long or longer; also
        when tParam is NULL or its selector is outside 0..4
    ZELM_ERR_DEGENERATE: the two points are equal, or no sample of the segment lies inside the image
    ZELM_ERR_MEMORY: a work buffer could not be allocated, or the window of the filter leaves the
        profile (only with a filterSize other than 5 or 7)

Notes
-----
In C: int32_t zelmEdge1dManual(const ZelmImage* tImage, const Point2d* tP1, const Point2d* tP2,
int32_t iSign, const ZelmEdge1dParam* tParam, Point2d* tEdgePoint, double* dStrength)
""",
    "zelmFitMean1dim": """\
Mean of numbers; residual |x - mean|. At least 2. Numbers that all coincide are their own mean.

Parameters
----------
daPoints : array of float64, shape (iN,)
    iN doubles
iRobust : int, default 0
    0 or 1, see above
dThreshold : float, default 3.5
    see above

Returns
-------
dResult : float
    the mean

Raises
------
ZelmError
    ZELM_ERR_PARAM: (nothing allocated): fewer points than the least number, NULL points or result,
        iRobust other than 0 and 1, a robust fit with a threshold that is not > 0
    ZELM_ERR_MEMORY
    ZELM_ERR_FIT_DATA: every point was rejected, or a robust fit met residuals that are not numbers
    ZELM_ERR_EIGEN_NOT_CONVERGED: (not of means and circles): points that are not finite; of lines
        and planes also points that all coincide, or of which only coinciding ones keep a weight

Notes
-----
In C: int32_t zelmFitMean1dim(int32_t iN, const double* daPoints, int32_t iRobust, double
dThreshold, double* dResult)
""",
    "zelmFitMean2dim": """\
Mean point in the plane; residual: distance from the mean. At least 2 points.

Parameters
----------
taPoints : array of float64, shape (iN, 2)
    iN points
iRobust : int, default 0
    0 or 1, see above
dThreshold : float, default 3.5
    see above

Returns
-------
tResult : Point2d
    the mean

Raises
------
ZelmError
    ZELM_ERR_PARAM: (nothing allocated): fewer points than the least number, NULL points or result,
        iRobust other than 0 and 1, a robust fit with a threshold that is not > 0
    ZELM_ERR_MEMORY
    ZELM_ERR_FIT_DATA: every point was rejected, or a robust fit met residuals that are not numbers
    ZELM_ERR_EIGEN_NOT_CONVERGED: (not of means and circles): points that are not finite; of lines
        and planes also points that all coincide, or of which only coinciding ones keep a weight

Notes
-----
In C: int32_t zelmFitMean2dim(int32_t iN, const Point2d* taPoints, int32_t iRobust, double
dThreshold, Point2d* tResult)
""",
    "zelmFitMean3dim": """\
Mean point in space; residual: distance from the mean. At least 2 points.

Parameters
----------
taPoints : array of float64, shape (iN, 3)
    iN points
iRobust : int, default 0
    0 or 1, see above
dThreshold : float, default 3.5
    see above

Returns
-------
tResult : Point3d
    the mean

Raises
------
ZelmError
    ZELM_ERR_PARAM: (nothing allocated): fewer points than the least number, NULL points or result,
        iRobust other than 0 and 1, a robust fit with a threshold that is not > 0
    ZELM_ERR_MEMORY
    ZELM_ERR_FIT_DATA: every point was rejected, or a robust fit met residuals that are not numbers
    ZELM_ERR_EIGEN_NOT_CONVERGED: (not of means and circles): points that are not finite; of lines
        and planes also points that all coincide, or of which only coinciding ones keep a weight

Notes
-----
In C: int32_t zelmFitMean3dim(int32_t iN, const Point3d* taPoints, int32_t iRobust, double
dThreshold, Point3d* tResult)
""",
    "zelmFitLine": """\
Line in the plane by total least squares (Pearson 1901): the perpendicular distances count, so no
slope is special. At least 2 points. A plain fit reaches the Cramér-Rao bound. Points that all
coincide have no direction and end in ZELM_ERR_EIGEN_NOT_CONVERGED; where the rounding of their mean
sets them apart from it, a line through them of arbitrary direction may come out.

Parameters
----------
taPoints : array of float64, shape (iN, 2)
    iN points
iRobust : int, default 0
    0 or 1, see above
dThreshold : float, default 3.5
    see above

Returns
-------
tResult : Line2d
    a*x + b*y + c = 0 with a^2 + b^2 = 1; which of the two signs is not defined

Raises
------
ZelmError
    ZELM_ERR_PARAM: (nothing allocated): fewer points than the least number, NULL points or result,
        iRobust other than 0 and 1, a robust fit with a threshold that is not > 0
    ZELM_ERR_MEMORY
    ZELM_ERR_FIT_DATA: every point was rejected, or a robust fit met residuals that are not numbers
    ZELM_ERR_EIGEN_NOT_CONVERGED: (not of means and circles): points that are not finite; of lines
        and planes also points that all coincide, or of which only coinciding ones keep a weight

Notes
-----
In C: int32_t zelmFitLine(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold,
Line2d* tResult)
""",
    "zelmFitLineIn3d": """\
Line in space by total least squares (Pearson 1901). At least 2 points; points that all coincide as
in zelmFitLine().

Parameters
----------
taPoints : array of float64, shape (iN, 3)
    iN points
iRobust : int, default 0
    0 or 1, see above
dThreshold : float, default 3.5
    see above

Returns
-------
daResult : array of float64, shape (2, 3)
    6 doubles: the weighted centroid of the points, then the unit direction, of either sign

Raises
------
ZelmError
    ZELM_ERR_PARAM: (nothing allocated): fewer points than the least number, NULL points or result,
        iRobust other than 0 and 1, a robust fit with a threshold that is not > 0
    ZELM_ERR_MEMORY
    ZELM_ERR_FIT_DATA: every point was rejected, or a robust fit met residuals that are not numbers
    ZELM_ERR_EIGEN_NOT_CONVERGED: (not of means and circles): points that are not finite; of lines
        and planes also points that all coincide, or of which only coinciding ones keep a weight

Notes
-----
In C: int32_t zelmFitLineIn3d(int32_t iN, const Point3d* taPoints, int32_t iRobust, double
dThreshold, double* daResult)
""",
    "zelmFitPlane": """\
Plane by total least squares (Pearson 1901). At least 3 points. Points on one line give a plane
through it, points that all coincide what they give in zelmFitLine().

Parameters
----------
taPoints : array of float64, shape (iN, 3)
    iN points
iRobust : int, default 0
    0 or 1, see above
dThreshold : float, default 3.5
    see above

Returns
-------
daResult : array of float64, shape (4,)
    4 doubles: a*x + b*y + c*z + d = 0 with (a, b, c) a unit vector of either sign

Raises
------
ZelmError
    ZELM_ERR_PARAM: (nothing allocated): fewer points than the least number, NULL points or result,
        iRobust other than 0 and 1, a robust fit with a threshold that is not > 0
    ZELM_ERR_MEMORY
    ZELM_ERR_FIT_DATA: every point was rejected, or a robust fit met residuals that are not numbers
    ZELM_ERR_EIGEN_NOT_CONVERGED: (not of means and circles): points that are not finite; of lines
        and planes also points that all coincide, or of which only coinciding ones keep a weight

Notes
-----
In C: int32_t zelmFitPlane(int32_t iN, const Point3d* taPoints, int32_t iRobust, double dThreshold,
double* daResult)
""",
    "zelmFitEllipse": """\
Ellipse by direct least squares with the constraint 4AC - B^2 > 0 (Fitzgibbon, Pilu and Fisher, IEEE
Trans. PAMI 21, 1999); residual: the algebraic distance. At least 5 points.

On the full outline of a dot the centre reaches the Cramér-Rao bound to a few percent without
significant bias. On a short arc ellipses come out too small, as of every fit by algebraic
distances. Five points, or more that lie exactly on a conic (an eigenvalue of the scatter matrix is
below 1e-12), give that conic if it is an ellipse. With noise some ellipse fits best, whatever the
points look like: only points that lie on a hyperbola to about a millionth of their extent are
refused. Points exactly on a parabola or on a line, or that coincide, end in a failure or in numbers
that mean nothing.

Parameters
----------
taPoints : array of float64, shape (iN, 2)
    iN points
iRobust : int, default 0
    0 or 1, see above
dThreshold : float, default 3.5
    see above

Returns
-------
tResult : Ellipse2d
    the ellipse, a >= b; the angle of a circle is arbitrary, and the sign of a quarter turn is that
    of the eigenvector

Raises
------
ZelmError
    ZELM_ERR_FIT_DATA: every point was rejected, or a robust fit met residuals that are not numbers;
        also when a robust fit leaves fewer than 5 points with weight
    ZELM_ERR_FIT_NOT_ELLIPSE: the best conic is no ellipse
    ZELM_ERR_SINGULAR: degenerate points
    ZELM_ERR_PARAM: (nothing allocated): fewer points than the least number, NULL points or result,
        iRobust other than 0 and 1, a robust fit with a threshold that is not > 0
    ZELM_ERR_MEMORY
    ZELM_ERR_EIGEN_NOT_CONVERGED: (not of means and circles): points that are not finite; of lines
        and planes also points that all coincide, or of which only coinciding ones keep a weight

Notes
-----
In C: int32_t zelmFitEllipse(int32_t iN, const Point2d* taPoints, int32_t iRobust, double
dThreshold, Ellipse2d* tResult)
""",
    "zelmFitEllipseC": """\
The ellipse of zelmFitEllipse() by its coefficients.

They are divided by the norm that they have in the normalised frame, so their own norm is in general
not 1 (`docs/decisions.md#conic-norm`).

Parameters
----------
taPoints : array of float64, shape (iN, 2)
    iN points
iRobust : int, default 0
    0 or 1, see above
dThreshold : float, default 3.5
    see above

Returns
-------
daResult : array of float64, shape (6,)
    6 doubles A, B, C, D, E, F: A*x^2 + B*x*y + C*y^2 + D*x + E*y + F = 0; either sign

Raises
------
ZelmError
    ZELM_ERR_FIT_DATA: every point was rejected, or a robust fit met residuals that are not numbers;
        also when a robust fit leaves fewer than 5 points with weight
    ZELM_ERR_FIT_NOT_ELLIPSE: the best conic is no ellipse
    ZELM_ERR_SINGULAR: degenerate points
    ZELM_ERR_PARAM: (nothing allocated): fewer points than the least number, NULL points or result,
        iRobust other than 0 and 1, a robust fit with a threshold that is not > 0
    ZELM_ERR_MEMORY
    ZELM_ERR_EIGEN_NOT_CONVERGED: (not of means and circles): points that are not finite; of lines
        and planes also points that all coincide, or of which only coinciding ones keep a weight

Notes
-----
In C: int32_t zelmFitEllipseC(int32_t iN, const Point2d* taPoints, int32_t iRobust, double
dThreshold, double* daResult)
""",
    "zelmFitConics": """\
Conic of any kind: the coefficients that have unit norm in the normalised frame and the least
algebraic distance there (Bookstein, Computer Graphics and Image Processing 9, 1979, compares such
norms). At least 5 points.

Parameters
----------
taPoints : array of float64, shape (iN, 2)
    iN points
iRobust : int, default 0
    0 or 1, see above
dThreshold : float, default 3.5
    see above

Returns
-------
daResult : array of float64, shape (6,)
    6 doubles, as of zelmFitEllipseC()

Raises
------
ZelmError
    ZELM_ERR_FIT_DATA: every point was rejected, or a robust fit met residuals that are not numbers;
        also when a robust fit leaves fewer than 5 points with weight
    ZELM_ERR_PARAM: (nothing allocated): fewer points than the least number, NULL points or result,
        iRobust other than 0 and 1, a robust fit with a threshold that is not > 0
    ZELM_ERR_MEMORY
    ZELM_ERR_EIGEN_NOT_CONVERGED: (not of means and circles): points that are not finite; of lines
        and planes also points that all coincide, or of which only coinciding ones keep a weight

Notes
-----
In C: int32_t zelmFitConics(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold,
double* daResult)
""",
    "zelmFitCircle": """\
Circle by its algebraic equation x^2 + y^2 = p0*x + p1*y + p2 (Kasa 1976), solved by pivoted QR with
iterative refinement. At least 3 points; 3 give the circle through them and are never re-weighted.

A robust fit differs from the others: weights |1 - (r / k)^2|, which enter the cost squared, and at
most 10 corrections. On a full outline the fit reaches the Cramér-Rao bound; on a short arc circles
come out too small.

Parameters
----------
taPoints : array of float64, shape (iN, 2)
    iN points
iRobust : int, default 0
    0 or 1, see above
dThreshold : float, default 3.5
    see above

Returns
-------
tResult : Circle2d
    the circle; the radius is not a number if the equation has no real circle

Raises
------
ZelmError
    ZELM_ERR_PARAM: as of the other fits, and for points on one line or in one place, or that are
        not finite
    ZELM_ERR_MEMORY
    ZELM_ERR_FIT_DATA: fewer than 3 independent points kept weight, or memory ran out, in the robust
        loop
    ZELM_ERR_EIGEN_NOT_CONVERGED: (not of means and circles): points that are not finite; of lines
        and planes also points that all coincide, or of which only coinciding ones keep a weight

Notes
-----
In C: int32_t zelmFitCircle(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold,
Circle2d* tResult)
""",
    "zelmFitEllipsoid": """\
Ellipsoid by direct least squares (as zelmFitEllipse(), with 10 coefficients): the sum of the
principal minors of the quadratic part is held positive, the constraint of Li and Griffiths, "Least
squares ellipsoid specific fitting" (Geometric Modeling and Processing 2004), without its term in
the trace; residual: the algebraic distance. At least 9 points.

The angles are defined in `docs/limits.md`, with what the fit reaches on full surfaces, caps and in
noise. On the full surface the parameters come within 1.05 (axes 10 : 8 : 6) to 1.7 (20 : 5 : 2) of
the Cramér-Rao bound; on a cap ellipsoids come out too small. Nine points, or more exactly on a
quadric, give that quadric if it is an ellipsoid.

Parameters
----------
taPoints : array of float64, shape (iN, 3)
    iN points
iRobust : int, default 0
    0 or 1, see above
dThreshold : float, default 3.5
    see above

Returns
-------
tResult : Ellipsoid3d
    the ellipsoid, a >= b >= c

Raises
------
ZelmError
    ZELM_ERR_FIT_DATA: every point was rejected, or a robust fit met residuals that are not numbers;
        also when a robust fit leaves fewer than 9 points with weight
    ZELM_ERR_FIT_NOT_ELLIPSOID: the best quadric is no ellipsoid
    ZELM_ERR_SINGULAR: degenerate points
    ZELM_ERR_PARAM: (nothing allocated): fewer points than the least number, NULL points or result,
        iRobust other than 0 and 1, a robust fit with a threshold that is not > 0
    ZELM_ERR_MEMORY
    ZELM_ERR_EIGEN_NOT_CONVERGED: (not of means and circles): points that are not finite; of lines
        and planes also points that all coincide, or of which only coinciding ones keep a weight

Notes
-----
In C: int32_t zelmFitEllipsoid(int32_t iN, const Point3d* taPoints, int32_t iRobust, double
dThreshold, Ellipsoid3d* tResult)
""",
    "zelmFitCone": """\
Cone of any cross section: the quadric of least algebraic distance among those whose coefficients
have unit norm in the normalised frame, if its quadratic part is that of a cone, that is indefinite
and not singular. At least 9 points.

Nothing forces the quadric to have an apex: with noise it is a slender hyperboloid, and hyperboloids
themselves pass, and some spheres (`docs/decisions.md#cone-radicand`). `docs/limits.md` has figures.

Parameters
----------
taPoints : array of float64, shape (iN, 3)
    iN points
iRobust : int, default 0
    0 or 1, see above
dThreshold : float, default 3.5
    see above

Returns
-------
daResult : array of float64, shape (10,)
    10 doubles p of p0*x^2 + p1*y^2 + p2*z^2 + p3*x*y + p4*x*z + p5*y*z + p6*x + p7*y + p8*z + p9 =
    0, of unit norm (that of the result, unlike zelmFitConics()) and either sign; with
    ZELM_ERR_FIT_NOT_CONE the quadric that was refused, in the normalised frame

Raises
------
ZelmError
    ZELM_ERR_FIT_DATA: every point was rejected, or a robust fit met residuals that are not numbers;
        also when a robust fit leaves fewer than 9 points with weight
    ZELM_ERR_FIT_NOT_CONE: the determinant of the quadratic part is below 1e-12 in the normalised
        frame (cylinders, planes), or its eigenvalues are all of one sign (ellipsoids)
    ZELM_ERR_PARAM: (nothing allocated): fewer points than the least number, NULL points or result,
        iRobust other than 0 and 1, a robust fit with a threshold that is not > 0
    ZELM_ERR_MEMORY
    ZELM_ERR_EIGEN_NOT_CONVERGED: (not of means and circles): points that are not finite; of lines
        and planes also points that all coincide, or of which only coinciding ones keep a weight

Notes
-----
In C: int32_t zelmFitCone(int32_t iN, const Point3d* taPoints, int32_t iRobust, double dThreshold,
double* daResult)
""",
    "zelmConvertColorToGray_vImageARGB8888toPlanar8": """\
Converts an ARGB8888 buffer to weighted gray.

gray = (77 R + 150 G + 29 B) >> 8 in integers, the luma weights of ITU-R BT.601 in 1/256, truncated;
alpha is ignored. White gives 255. The plate readers use another gray, the truncated mean of R, G
and B (`docs/decisions.md#two-grays`).

Parameters
----------
tSrc : array of uint8, shape (height, width, 4), in the order A, R, G, B
    ARGB8888 pixels (bytes A, R, G, B)

Returns
-------
tDst : array of uint8, shape (height, width)
    Planar8 buffer of the same width and height; its data, owned by the caller, receive the gray
    levels. Each buffer keeps its own rowBytes, which is not checked; padding is left as it is

Raises
------
ZelmError
    ZELM_ERR_PARAM: nothing written, if a pointer is NULL, the source is empty, data is missing in
        either buffer, or the widths or heights differ

Notes
-----
Memory: none. Reentrant: yes.

In C: int32_t zelmConvertColorToGray_vImageARGB8888toPlanar8(const vImage_Buffer* tSrc, const
vImage_Buffer* tDst)
""",
    "perspectiveTransAndDistortImage_8uC1": """\
Warps an 8-bit image: every destination pixel is carried by the homography to its undistorted source
position, pushed through the camera's radial distortion and sampled there bilinearly.

Parameters
----------
daHom : array of float64, shape (3, 3)
    3x3 homography, row-major: destination pixel (x, y, 1) to undistorted source position
daCamera : ZelmCameraIntrinsics
    22 doubles of the camera's ZelmCameraIntrinsics (alpha, beta, gamma, cx, cy, theta, k1, k2 are
    used)
ucSrc : array of uint8, shape (iSrcHeight, iSrcWidth)
    source, iSrcHeight rows of iSrcWidth bytes
iDstWidth : int
    size of the destination in pixels
iDstHeight : int
    size of the destination in pixels

Returns
-------
ucDst : array of uint8, shape (iDstHeight, iDstWidth)
    destination, iDstHeight rows of iDstWidth bytes

Notes
-----
In C: void perspectiveTransAndDistortImage_8uC1(const double* daHom, const double* daCamera, const
uint8_t* ucSrc, int32_t iSrcStride, int32_t iSrcWidth, int32_t iSrcHeight, uint8_t* ucDst, int32_t
iDstStride, int32_t iDstWidth, int32_t iDstHeight)
""",
    "perspectiveTransAndDistortImage_8uC4": """\
As perspectiveTransAndDistortImage_8uC1 with four interleaved channels, all treated alike; strides
>= 4 x width.

Parameters
----------
daHom : array of float64, shape (3, 3)
    as there
daCamera : ZelmCameraIntrinsics
    as there
ucSrc : array of uint8, shape (iSrcHeight, iSrcWidth, 4)
    source, four bytes a pixel
iDstWidth : int
    size of the destination in pixels
iDstHeight : int
    size of the destination in pixels

Returns
-------
ucDst : array of uint8, shape (iDstHeight, iDstWidth, 4)
    destination, four bytes a pixel

Notes
-----
In C: void perspectiveTransAndDistortImage_8uC4(const double* daHom, const double* daCamera, const
uint8_t* ucSrc, int32_t iSrcStride, int32_t iSrcWidth, int32_t iSrcHeight, uint8_t* ucDst, int32_t
iDstStride, int32_t iDstWidth, int32_t iDstHeight)
""",
    "remapImage_8uC1": """\
Samples an 8-bit image bilinearly at the positions held in two maps, inside a rectangle of the
destination.

Parameters
----------
ucSrc : array of uint8, shape (iSrcHeight, iSrcWidth)
    source, iSrcHeight rows of iSrcWidth bytes
faMapX : array of float32, shape (iDstHeight, iDstWidth)
    source column of each destination pixel; a pixel is valid by the rule above
faMapY : array of float32, shape (iDstHeight, iDstWidth)
    source row of each destination pixel
ucDst : array of uint8, shape (iDstHeight, iDstWidth), written in place, default a new black image
    destination; pixels outside the rectangle are not touched
iX0 : int, default 0
    rectangle, inclusive; empty when iX0 > iX1 or iY0 > iY1
iY0 : int, default 0
    rectangle, inclusive; empty when iX0 > iX1 or iY0 > iY1
iX1 : int, default iDstWidth-1
    rectangle, inclusive; empty when iX0 > iX1 or iY0 > iY1
iY1 : int, default iDstHeight-1
    rectangle, inclusive; empty when iX0 > iX1 or iY0 > iY1

Returns
-------
ucDst : array of uint8, shape (iDstHeight, iDstWidth)
    destination; pixels outside the rectangle are not touched

Notes
-----
In C: void remapImage_8uC1(const uint8_t* ucSrc, int32_t iSrcStride, int32_t iSrcWidth, int32_t
iSrcHeight, uint8_t* ucDst, int32_t iDstStride, int32_t iDstWidth, int32_t iDstHeight, const float*
faMapX, int32_t iMapXStride, const float* faMapY, int32_t iMapYStride, int32_t iX0, int32_t iY0,
int32_t iX1, int32_t iY1)
""",
    "remapImage_8uC4": """\
As remapImage_8uC1 with four interleaved channels.

Parameters
----------
ucSrc : array of uint8, shape (iSrcHeight, iSrcWidth, 4)
    source, four bytes a pixel
faMapX : array of float32, shape (iDstHeight, iDstWidth)
    source column of each destination pixel
faMapY : array of float32, shape (iDstHeight, iDstWidth)
    source row of each destination pixel
ucDst : array of uint8, shape (iDstHeight, iDstWidth, 4), written in place, default a new black image
    destination, four bytes a pixel
iX0 : int, default 0
    rectangle, inclusive
iY0 : int, default 0
    rectangle, inclusive
iX1 : int, default iDstWidth-1
    rectangle, inclusive
iY1 : int, default iDstHeight-1
    rectangle, inclusive

Returns
-------
ucDst : array of uint8, shape (iDstHeight, iDstWidth, 4)
    destination, four bytes a pixel

Notes
-----
In C: void remapImage_8uC4(const uint8_t* ucSrc, int32_t iSrcStride, int32_t iSrcWidth, int32_t
iSrcHeight, uint8_t* ucDst, int32_t iDstStride, int32_t iDstWidth, int32_t iDstHeight, const float*
faMapX, int32_t iMapXStride, const float* faMapY, int32_t iMapYStride, int32_t iX0, int32_t iY0,
int32_t iX1, int32_t iY1)
""",
    "zelmMatMallocVector": """\
Allocates a vector of iN doubles, uninitialised.

Parameters
----------
iN : int
    entries

Returns
-------
daV : ZelmVector
    the vector; its `array` shows the memory

Notes
-----
In C: double* zelmMatMallocVector(int32_t iN)
""",
    "zelmMatFreeVector": """\
Frees a vector of zelmMatMallocVector; NULL is allowed.

Parameters
----------
daV : ZelmVector, or None
    the vector, or NULL

Notes
-----
In C: void zelmMatFreeVector(double* daV)
""",
    "zelmMatMallocMatrix": """\
Allocates an iRows x iCols matrix, uninitialised, with an array of pointers to its rows.

The result M can be indexed as M[i][j], and M[0] is the flat block that every other function takes.

Parameters
----------
iRows : int
    rows
iCols : int
    columns

Returns
-------
daM : ZelmMatrix
    the matrix; its `array` shows the memory

Notes
-----
In C: double** zelmMatMallocMatrix(int32_t iRows, int32_t iCols)
""",
    "zelmMatFreeMatrix": """\
Frees a matrix of zelmMatMallocMatrix, the block that its first row pointer names and the pointers;
NULL is allowed.

Parameters
----------
daM : ZelmMatrix, or None
    the row pointers, or NULL

Notes
-----
In C: void zelmMatFreeMatrix(double** daM)
""",
    "zelmMatZero": """\
A = 0, iRows x iCols.

Parameters
----------
iRows : int
    rows
iCols : int
    columns

Returns
-------
daA : array of float64, shape (iRows, iCols)
    iRows x iCols

Notes
-----
In C: void zelmMatZero(int32_t iRows, int32_t iCols, double* daA)
""",
    "zelmMatDiagonal": """\
A = dValue * identity, iN x iN. Note that the scalar comes first.

Parameters
----------
dValue : float
    value of the diagonal
iN : int
    rows and columns

Returns
-------
daA : array of float64, shape (iN, iN)
    iN x iN

Notes
-----
In C: void zelmMatDiagonal(double dValue, int32_t iN, double* daA)
""",
    "zelmMatCopy": """\
Dst = Src, iRows x iCols.

Parameters
----------
daSrc : array of float64, shape (iRows, iCols)
    iRows x iCols

Returns
-------
daDst : array of float64, shape (iRows, iCols)
    iRows x iCols

Notes
-----
In C: void zelmMatCopy(int32_t iRows, int32_t iCols, const double* daSrc, double* daDst)
""",
    "zelmMatAdd": """\
C = A + B, iRows x iCols.

Parameters
----------
daA : array of float64, shape (iRows, iCols)
    iRows x iCols
daB : array of float64, shape (iRows, iCols)
    iRows x iCols

Returns
-------
daC : array of float64, shape (iRows, iCols)
    iRows x iCols; may be A or B

Notes
-----
In C: void zelmMatAdd(int32_t iRows, int32_t iCols, const double* daA, const double* daB, double*
daC)
""",
    "zelmMatSub": """\
C = A - B, iRows x iCols.

Parameters
----------
daA : array of float64, shape (iRows, iCols)
    iRows x iCols
daB : array of float64, shape (iRows, iCols)
    iRows x iCols

Returns
-------
daC : array of float64, shape (iRows, iCols)
    iRows x iCols; may be A or B

Notes
-----
In C: void zelmMatSub(int32_t iRows, int32_t iCols, const double* daA, const double* daB, double*
daC)
""",
    "zelmMatMulScalar": """\
B = dS * A, iRows x iCols. Note that the scalar comes first.

Parameters
----------
dS : float
    factor
daA : array of float64, shape (iRows, iCols)
    iRows x iCols

Returns
-------
daB : array of float64, shape (iRows, iCols)
    iRows x iCols; may be A

Notes
-----
In C: void zelmMatMulScalar(double dS, int32_t iRows, int32_t iCols, const double* daA, double* daB)
""",
    "zelmMatTranspose": """\
B (iCols x iRows) = transpose of A (iRows x iCols); they must not overlap.

Parameters
----------
daA : array of float64, shape (iRows, iCols)
    iRows x iCols

Returns
-------
daB : array of float64, shape (iCols, iRows)
    iCols x iRows

Notes
-----
In C: void zelmMatTranspose(int32_t iRows, int32_t iCols, const double* daA, double* daB)
""",
    "zelmMatTrace": """\
The sum of the diagonal of A (iN x iN), from 0.0 in increasing order; 0.0 for iN below 1.

Parameters
----------
daA : array of float64, shape (iN, iN)
    iN x iN

Returns
-------
dTrace : float
    the trace

Notes
-----
In C: double zelmMatTrace(int32_t iN, const double* daA)
""",
    "zelmMatMul": """\
C = A * B.

Parameters
----------
daA : array of float64, shape (iM, iN)
    iM x iN
daB : array of float64, shape (iNB, iP)
    iN x iP

Returns
-------
daC : array of float64, shape (iM, iP)
    iM x iP

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: if iN != iNB

Notes
-----
In C: int32_t zelmMatMul(int32_t iM, int32_t iN, const double* daA, int32_t iNB, int32_t iP, const
double* daB, double* daC)
""",
    "zelmMatGenMul": """\
D = alpha * (A * B) + beta * C, each entry as C * beta + (finished sum) * alpha.

Parameters
----------
dAlpha : float
    factor of the product
daA : array of float64, shape (iM, iN)
    iM x iN
daB : array of float64, shape (iNB, iP)
    iN x iP
dBeta : float
    factor of C
daC : array of float64, shape (iM, iP)
    iM x iP

Returns
-------
daD : array of float64, shape (iM, iP)
    iM x iP; may be the same block as C

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: if iN != iNB

Notes
-----
In C: int32_t zelmMatGenMul(double dAlpha, int32_t iM, int32_t iN, const double* daA, int32_t iNB,
int32_t iP, const double* daB, double dBeta, const double* daC, double* daD)
""",
    "zelmMatMulTransposed": """\
The product of A with its own transpose; with a flag, the normal matrix of a design matrix.

Parameters
----------
iFlag : int
    0: C = A * A^T; otherwise C = A^T * A
daA : array of float64, shape (iM, iN)
    iM x iN

Returns
-------
daC : array of float64, shape ((iN if iFlag else iM), (iN if iFlag else iM))
    iM x iM for flag 0, iN x iN otherwise; both triangles, equal to the bit

Notes
-----
In C: void zelmMatMulTransposed(int32_t iFlag, int32_t iM, int32_t iN, const double* daA, double*
daC)
""",
    "zelmMatMulTransposed2": """\
The product of one matrix with the transpose of another.

Parameters
----------
iFlag : int
    0: C = A * B^T; otherwise C = A^T * B
daA : array of float64, shape (iM, iN)
    iM x iN
daB : array of float64, shape (iP, iQ)
    iP x iQ

Returns
-------
daC : array of float64, shape ((iN if iFlag else iM), (iQ if iFlag else iP))
    iM x iP for flag 0, iN x iQ otherwise

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: if iN != iQ (flag 0) or iM != iP (otherwise)

Notes
-----
In C: int32_t zelmMatMulTransposed2(int32_t iFlag, int32_t iM, int32_t iN, const double* daA,
int32_t iP, int32_t iQ, const double* daB, double* daC)
""",
    "zelmMatInvert": """\
The inverse of a square matrix.

LU factorisation with implicitly scaled partial pivoting (Forsythe and Moler, 1967): a pivot
candidate is weighed by the largest magnitude of its row as given; the first of equals wins.
Substitution subtracts its products one by one in increasing order of the column. Backward error: a
few epsilon times the norm of A.

Parameters
----------
daA : array of float64, shape (iN, iN)
    iN x iN

Returns
-------
daAinv : array of float64, shape (iN, iN)
    iN x iN, written only on success; may be the same block as A

Raises
------
ZelmError
    ZELM_ERR_MEMORY
    ZELM_ERR_SINGULAR: if a row holds only zeros, a pivot is exactly zero, the product of all pivots
        is exactly zero (deliberately also when it merely underflows, as for diag(1e-200, 1e-200)),
        or an entry of A is not finite

Notes
-----
In C: int32_t zelmMatInvert(int32_t iN, const double* daA, double* daAinv)
""",
    "zelmMatSolveLU": """\
Solves A * x = b for a square A, by the factorisation of zelmMatInvert and with the same refusals.

Parameters
----------
daA : array of float64, shape (iN, iN)
    iN x iN
daB : array of float64, shape (iN,)
    iN; entries that are not finite reach the solution

Returns
-------
daX : array of float64, shape (iN,)
    iN, written only on success; must not overlap b

Raises
------
ZelmError
    ZELM_ERR_MEMORY
    ZELM_ERR_SINGULAR

Notes
-----
In C: int32_t zelmMatSolveLU(int32_t iN, const double* daA, const double* daB, double* daX)
""",
    "zelmMatCholeskyDecomp": """\
Factors a symmetric positive definite A into U^T * U with an upper triangular U (Cholesky, Crout's
order: row by row).

Parameters
----------
daA : array of float64, shape (iN, iN)
    iN x iN; only the upper triangle with the diagonal is read

Returns
-------
daU : array of float64, shape (iN, iN)
    iN x iN, zeros below the diagonal; may be the same block as A. On failure the lower part is
    zeroed, the rows above the failing one are final and the rest is as it was

Raises
------
ZelmError
    ZELM_ERR_NOT_POSITIVE_DEFINITE: if a diagonal term A(k, k) - sum U(i, k)^2 is below 1e-11 or not
        a number

Notes
-----
Memory: none.

In C: int32_t zelmMatCholeskyDecomp(int32_t iN, const double* daA, double* daU)
""",
    "zelmMatSVD": """\
The singular value decomposition A = U * diag(w) * V of a tall or square matrix.

Householder bidiagonalisation and implicitly shifted QR steps (Golub and Reinsch, 1970), whose
formulas also set the signs of the vectors. Relative residual and orthogonality stay below 1e-13, at
any scale from 2^-960 to 2^1000; `docs/limits.md`, Decompositions, says of which matrices. Time O(m
n^2).

Parameters
----------
daA : array of float64, shape (iM, iN)
    iM x iN, unchanged

Returns
-------
zelmMatSVDResult : named tuple of
    daU : array of float64, shape (iM, iN)
        iM x iN, column j is the left singular vector of value j; or NULL. Must not overlap A
    daW : array of float64, shape (iN,)
        iN singular values, none negative, descending; or NULL
    daV : array of float64, shape (iN, iN)
        iN x iN, row j is the right singular vector of value j (textbooks call this V^T); or NULL

Raises
------
ZelmError
    ZELM_ERR_SVD_FAILED: with nothing written if iM < iN; with partly written outputs if a value
        needs more than 29 QR steps (`docs/decisions.md#svd-pass-30`), or if an entry of A or a
        value is not finite
    ZELM_ERR_MEMORY: the outputs then either untouched or, if only the sort lacked memory, holding
        the unsorted decomposition

Notes
-----
In C: int32_t zelmMatSVD(int32_t iM, int32_t iN, const double* daA, double* daU, double* daW,
double* daV)
""",
    "zelmMatSolveSVD": """\
Solves A * x = b in the least-squares sense through zelmMatSVD; of all solutions the one of least
norm.

A singular value w[j] with iM * 2.220446049250313e-16 > w[j] / w[0] counts as zero. A matrix with
fewer rows than columns is extended by rows of zeros; iM in the threshold stays as given. A matrix
of zeros has the solution 0.

Parameters
----------
daA : array of float64, shape (iM, iN)
    iM x iN, unchanged
daB : array of float64, shape (iM,)
    iM, unchanged

Returns
-------
daX : array of float64, shape (iN,)
    iN, written only on success; may overlap b

Raises
------
ZelmError
    ZELM_ERR_MEMORY: the outputs then either untouched or, if only the sort lacked memory, holding
        the unsorted decomposition
    ZELM_ERR_SVD_FAILED: as zelmMatSVD

Notes
-----
In C: int32_t zelmMatSolveSVD(int32_t iM, int32_t iN, const double* daA, const double* daB, double*
daX)
""",
    "zelmMatJacobiEigen": """\
Eigenvalues and eigenvectors of a symmetric matrix, A = V^T * diag(values) * V.

Cyclic Jacobi rotations (Jacobi, 1846; rotation formulas of Rutishauser, 1966). With S the sum of
squares of the upper triangle, the diagonal's halved, sweeps end before a sweep when the
off-diagonal squares sum to less than 1e-32 * S, and after a sweep that started below 1e-16 * S. The
zero matrix meets neither and ends in ZELM_ERR_EIGEN_NOT_CONVERGED
(`docs/decisions.md#zero-matrix`). Every other diagonal matrix of a norm above 1e-145 is sorted as
it is. Rows of V are orthonormal to 1e-13, the relative residual is at most 1e-8 and as a rule below
1e-13; scale matrices of a norm below 1e-11 up first. `docs/limits.md`, Decompositions, has the
figures.

Parameters
----------
daA : array of float64, shape (iN, iN)
    iN x iN; only the upper triangle with the diagonal is read; unchanged

Returns
-------
zelmMatJacobiEigenResult : named tuple of
    daValues : array of float64, shape (iN,)
        iN eigenvalues, descending; or NULL
    daVectors : array of float64, shape (iN, iN)
        iN x iN, row k is the unit eigenvector of value k; or NULL. Must not overlap A

Raises
------
ZelmError
    ZELM_ERR_MEMORY: nothing written
    ZELM_ERR_EIGEN_NOT_CONVERGED: after 100 sweeps (also of the zero matrix), or at once if S is not
        finite (entries that are not finite, or above about 1e154 unless the matrix is diagonal):
        values are not written, vectors hold the rotations made so far

Notes
-----
In C: int32_t zelmMatJacobiEigen(int32_t iN, const double* daA, double* daValues, double* daVectors)
""",
    "zelmMatchBasic": """\
Estimates the motion of the model points onto the reference points.

All modes start with the closed form of least squares (planar case of Horn, J. Opt. Soc. Am. A 4,
1987; its scale is the one of Umeyama 1991). A model without extent (n * sum |m|^2 - |sum m|^2 below
1e-13) keeps the scale 1.

The robust modes re-weight by Tukey's biweight (Holland and Welsch 1977; Beaton and Tukey 1974) in
up to 20 passes: w = (1 - (e / k)^2)^2 for distances e below k = threshold * 1.4826 * median e, else
0. They end when the weights change by less than 0.02 of their sum; those are not used for another
solve (`docs/decisions.md#settled-weights`). With a threshold of 4, a fifth of the points off by
many times the noise does not pull the result, if the first solve still tells them apart.

The minimax modes minimise the radius of zelmCgSmallestEnclosingCircle() around the residual
vectors, over the angle (mode 4: downhill walk and golden sections) or over angle and scale (mode 5:
simplex). They assume one minimum near the least-squares estimate and never return a worse one; an
outlier counts in full. Mode 5 may end at a negative scale (a half turn): -s at the angle a is the
motion of scale s at a + pi. Rules and figures: `docs/limits.md`, Minimax registration.

Parameters
----------
taRef : array of float64, shape (iN, 2)
    iN reference points
taModel : array of float64, shape (iN, 2)
    iN model points
tModelPose : ZelmMatchPose, default a record of zeros
    the model points count relative to its position; its angle is added to that of the result
iMode : int, default 0
    ZELM_MATCH_...
dThreshold : float, default 4
    cut-off of the robust modes in standard deviations, > 0; else ignored

Returns
-------
tResult : ZelmMatchPose
    may be tModelPose; written unless ZELM_ERR_PARAM is returned, with the estimate reached so far
    (least squares in closed form, if nothing better); angle in (-pi, pi]; scale negative at times
    in mode 5

Raises
------
ZelmError
    ZELM_ERR_PARAM: an unknown mode, iN < 2, a NULL pointer, a robust mode with a threshold that is
        not > 0
    ZELM_ERR_MEMORY
    ZELM_ERR_DEGENERATE: a robust mode rejected every point, or a minimax mode met a circle that is
        not finite

Notes
-----
In C: int32_t zelmMatchBasic(int32_t iN, const Point2d* taRef, const Point2d* taModel, const
ZelmMatchPose* tModelPose, int32_t iMode, double dThreshold, ZelmMatchPose* tResult)
""",
    "zelmMatchPoints": """\
Applies a result of zelmMatchBasic() to the model points and measures what remains.

Parameters
----------
taRef : array of float64, shape (iN, 2)
    iN reference points
taModel : array of float64, shape (iN, 2)
    iN model points
tModelPose : ZelmMatchPose
    as given to zelmMatchBasic()
tResult : ZelmMatchPose
    as found by it

Returns
-------
zelmMatchPointsResult : named tuple of
    taMoved : array of float64, shape (iN, 2)
        iN moved model points; may be taModel or taRef
    daDistance : array of float64, shape (iN,)
        iN distances between moved and reference points

Raises
------
ZelmError
    ZELM_ERR_PARAM: when iN < 2 or a pointer is NULL

Notes
-----
In C: int32_t zelmMatchPoints(int32_t iN, const Point2d* taRef, const Point2d* taModel, const
ZelmMatchPose* tModelPose, const ZelmMatchPose* tResult, Point2d* taMoved, double* daDistance)
""",
    "zelmMatchDelta": """\
The difference of two poses.

Parameters
----------
tA : ZelmMatchPose
    poses
tB : ZelmMatchPose
    poses

Returns
-------
zelmMatchDeltaResult : named tuple of
    dDx : float
        position of tB less that of tA
    dDy : float
        position of tB less that of tA
    dAngle : float
        angle of tB less that of tA, not wrapped
    dScale : float
        scale of tB (not a ratio)

Raises
------
ZelmError
    ZELM_ERR_PARAM: when a pointer is NULL

Notes
-----
In C: int32_t zelmMatchDelta(const ZelmMatchPose* tA, const ZelmMatchPose* tB, double* dDx, double*
dDy, double* dAngle, double* dScale)
""",
    "zelmMathCalcInnerProduct": """\
The sum of u[i] * v[i], from 0.0 in increasing i; 0.0 for iN below 1.

Parameters
----------
daU : array of float64, shape (iN,)
    iN
daV : array of float64, shape (iN,)
    iN

Returns
-------
dProduct : float
    the inner product

Notes
-----
In C: double zelmMathCalcInnerProduct(int32_t iN, const double* daU, const double* daV)
""",
    "zelmMathCalcOuterProduct": """\
Out = u x v for vectors of 3; Out may be u or v.

Parameters
----------
daU : array of float64, shape (3,)
    3
daV : array of float64, shape (3,)
    3

Returns
-------
daOut : array of float64, shape (3,)
    3

Notes
-----
In C: void zelmMathCalcOuterProduct(const double* daU, const double* daV, double* daOut)
""",
    "zelmMathCalcNorm": """\
The Euclidean length of v; 0.0 for iN below 1. Squares of entries beyond 1e154 overflow.

Parameters
----------
daV : array of float64, shape (iN,)
    iN

Returns
-------
dNorm : float
    the length

Notes
-----
In C: double zelmMathCalcNorm(int32_t iN, const double* daV)
""",
    "zelmMathCalcArgument": """\
The direction of a point from the origin, atan2(y, x), in [-pi, pi].

Parameters
----------
tP : Point2d
    the point

Returns
-------
dAngle : float
    the direction in radians

Notes
-----
In C: double zelmMathCalcArgument(const Point2d* tP)
""",
    "zelmMathNormalization": """\
Divides a vector by its length.

Parameters
----------
daV : array of float64, shape (iN,), written in place
    iN, unchanged on failure

Returns
-------
daV : array of float64, shape (iN,)
    iN, unchanged on failure

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: if the length is degenerate (or iN below 1)

Notes
-----
In C: int32_t zelmMathNormalization(int32_t iN, double* daV)
""",
    "zelmMathCalcAngle": """\
The angle between two vectors.

Parameters
----------
daU : array of float64, shape (iN,)
    iN
daV : array of float64, shape (iN,)
    iN

Returns
-------
dAngle : float
    in [0, pi]: the arc cosine of u.v / (|u| |v|) clamped to [-1, 1]. Near 0 and pi its resolution
    is about 1e-8

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: if a length is degenerate

Notes
-----
In C: int32_t zelmMathCalcAngle(int32_t iN, const double* daU, const double* daV, double* dAngle)
""",
    "zelmMathStat": """\
Mean, variance and standard deviation of a sample, in two passes.

Parameters
----------
daData : array of float64, shape (iN,)
    iN

Returns
-------
zelmMathStatResult : named tuple of
    dMean : float
        sum / iN
    dVariance : float
        sum of (x - mean)^2 / iN (`docs/decisions.md#population-variance`)
    dDeviation : float
        square root of the variance

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: if iN is below 2

Notes
-----
In C: int32_t zelmMathStat(int32_t iN, const double* daData, double* dMean, double* dVariance,
double* dDeviation)
""",
    "zelmMathAreaTriangle": """\
The area of a triangle, never negative.

Parameters
----------
dX1 : float
    the corners
dY1 : float
    the corners
dX2 : float
    the corners
dY2 : float
    the corners
dX3 : float
    the corners
dY3 : float
    the corners

Returns
-------
dArea : float
    the area

Notes
-----
In C: double zelmMathAreaTriangle(double dX1, double dY1, double dX2, double dY2, double dX3, double
dY3)
""",
    "zelmMathSignAreaTriangle": """\
The signed area ((y3-y1)(x2-x1) - (x3-x1)(y2-y1)) / 2: positive when the corners run
counter-clockwise with y upwards, that is clockwise on the screen.

Parameters
----------
dX1 : float
    the corners
dY1 : float
    the corners
dX2 : float
    the corners
dY2 : float
    the corners
dX3 : float
    the corners
dY3 : float
    the corners

Returns
-------
dArea : float
    the signed area

Notes
-----
In C: double zelmMathSignAreaTriangle(double dX1, double dY1, double dX2, double dY2, double dX3,
double dY3)
""",
    "zelmMathInvMatrixOfSyn3X3": """\
The inverse of a 3 x 3 matrix by its adjugate. Despite its name it assumes no symmetry.

Parameters
----------
daM : array of float64, shape (3, 3)
    3 x 3, row-major

Returns
-------
daOut : array of float64, shape (3, 3)
    3 x 3, may be M. Left as it is, without any report, if the determinant is degenerate

Notes
-----
In C: void zelmMathInvMatrixOfSyn3X3(const double* daM, double* daOut)
""",
    "zelmMathRotatePoint": """\
Turns (x, y) about (cx, cy) by theta.

Parameters
----------
dCx : float
    the centre
dCy : float
    the centre
dTheta : float
    the angle in radians
dX : float
    the point
dY : float
    the point

Returns
-------
zelmMathRotatePointResult : named tuple of
    dXOut : float
        the turned point
    dYOut : float
        the turned point

Notes
-----
In C: void zelmMathRotatePoint(double dCx, double dCy, double dTheta, double dX, double dY, double*
dXOut, double* dYOut)
""",
    "zelmMathCreateTransParam": """\
The frame whose x axis points from (x1, y1) towards (x2, y2).

Parameters
----------
iMode : int
    0: the origin is the midpoint of the two; otherwise (x1, y1)
dX1 : float
    the first point
dY1 : float
    the first point
dX2 : float
    the second point
dY2 : float
    the second point

Returns
-------
zelmMathCreateTransParamResult : named tuple of
    dOx : float
        the origin
    dOy : float
        the origin
    dTheta : float
        the direction of the x axis in radians

Notes
-----
In C: void zelmMathCreateTransParam(int32_t iMode, double dX1, double dY1, double dX2, double dY2,
double* dOx, double* dOy, double* dTheta)
""",
    "zelmMathTransCoordOfPoint": """\
Local to global: (ox + x cos theta - y sin theta, oy + x sin theta + y cos theta).

Parameters
----------
dOx : float
    the frame
dOy : float
    the frame
dTheta : float
    the frame
dX : float
    the point in the frame
dY : float
    the point in the frame

Returns
-------
zelmMathTransCoordOfPointResult : named tuple of
    dXOut : float
        the point outside
    dYOut : float
        the point outside

Notes
-----
In C: void zelmMathTransCoordOfPoint(double dOx, double dOy, double dTheta, double dX, double dY,
double* dXOut, double* dYOut)
""",
    "zelmMathTransCoord": """\
The same as zelmMathTransCoordOfPoint.

Parameters
----------
dOx : float
    the frame
dOy : float
    the frame
dTheta : float
    the frame
dX : float
    the point in the frame
dY : float
    the point in the frame

Returns
-------
zelmMathTransCoordResult : named tuple of
    dXOut : float
        the point outside
    dYOut : float
        the point outside

Notes
-----
In C: void zelmMathTransCoord(double dOx, double dOy, double dTheta, double dX, double dY, double*
dXOut, double* dYOut)
""",
    "zelmMathInvTransCoordOfPoint": """\
Global to local, the inverse of zelmMathTransCoordOfPoint.

Parameters
----------
dOx : float
    the frame
dOy : float
    the frame
dTheta : float
    the frame
dX : float
    the point outside
dY : float
    the point outside

Returns
-------
zelmMathInvTransCoordOfPointResult : named tuple of
    dXOut : float
        the point in the frame
    dYOut : float
        the point in the frame

Notes
-----
In C: void zelmMathInvTransCoordOfPoint(double dOx, double dOy, double dTheta, double dX, double dY,
double* dXOut, double* dYOut)
""",
    "zelmMathInvCoord": """\
The inverse frame: its local-to-global transform undoes that of the given frame. Its angle is
-theta, not wrapped.

Parameters
----------
dOx : float
    the frame
dOy : float
    the frame
dTheta : float
    the frame

Returns
-------
zelmMathInvCoordResult : named tuple of
    dOxOut : float
        the inverse frame
    dOyOut : float
        the inverse frame
    dThetaOut : float
        the inverse frame

Notes
-----
In C: void zelmMathInvCoord(double dOx, double dOy, double dTheta, double* dOxOut, double* dOyOut,
double* dThetaOut)
""",
    "zelmMathComposeCoord": """\
Frame 2, given within frame 1, as a global frame. Its angle is zelmMathAddAngle(1, 0, theta1,
theta2).

Parameters
----------
dOx1 : float
    frame 1
dOy1 : float
    frame 1
dTheta1 : float
    frame 1
dOx2 : float
    frame 2 within frame 1
dOy2 : float
    frame 2 within frame 1
dTheta2 : float
    frame 2 within frame 1

Returns
-------
zelmMathComposeCoordResult : named tuple of
    dOx : float
        frame 2 as a global frame
    dOy : float
        frame 2 as a global frame
    dTheta : float
        frame 2 as a global frame

Notes
-----
In C: void zelmMathComposeCoord(double dOx1, double dOy1, double dTheta1, double dOx2, double dOy2,
double dTheta2, double* dOx, double* dOy, double* dTheta)
""",
    "zelmMathAddAngle": """\
The sum of two angles, wrapped.

The first operand is wrapped into (-h, h], the second into [-h, h], then their sum into [-h, h]. So
in degrees (-180, 0) gives 180, (0, -180) gives -180 (`docs/decisions.md#add-angle-end`).

Parameters
----------
iFull : int
    non-zero: period of a full turn; zero: of a half turn
iDegrees : int
    non-zero: degrees; zero: radians
dA : float
    the operands
dB : float
    the operands

Returns
-------
dSum : float
    the sum in [-h, h]; NaN if an operand is not finite

Notes
-----
In C: double zelmMathAddAngle(int32_t iFull, int32_t iDegrees, double dA, double dB)
""",
    "zelmMathPrimeAngle": """\
An angle wrapped into (-h, h]; NaN if it is not finite.

Parameters
----------
iFull : int
    non-zero: period of a full turn; zero: of a half turn
iDegrees : int
    non-zero: degrees; zero: radians
dA : float
    the angle

Returns
-------
dAngle : float
    the wrapped angle

Notes
-----
In C: double zelmMathPrimeAngle(int32_t iFull, int32_t iDegrees, double dA)
""",
    "zelmMathCheckAngle": """\
Whether two directions (radians, period 2 pi) differ by at most the tolerance.

Parameters
----------
dA : float
    the directions in radians
dB : float
    the directions in radians
dTolerance : float
    largest difference in radians

Returns
-------
iSame : int
    1 or 0; 0 if an argument is not a number or an angle not finite

Notes
-----
In C: int32_t zelmMathCheckAngle(double dA, double dB, double dTolerance)
""",
    "zelmMathCrossAngle": """\
The acute angle between two lines.

Taken between the feet of the perpendiculars from the origin, (r, q) of zelmMathTransAbcToRq; where
a foot is within 1e-9 of the origin, between the normals, which is the same angle.

Parameters
----------
dA1 : float
    the first line
dB1 : float
    the first line
dC1 : float
    the first line
dA2 : float
    the second line
dB2 : float
    the second line
dC2 : float
    the second line

Returns
-------
dAngle : float
    in [0, pi/2]; NaN if a line has a = b = 0 or a coefficient that is not a number

Notes
-----
In C: double zelmMathCrossAngle(double dA1, double dB1, double dC1, double dA2, double dB2, double
dC2)
""",
    "zelmMathGetDistFromPointToPoint": """\
The distance of two points.

Parameters
----------
dX1 : float
    the first point
dY1 : float
    the first point
dX2 : float
    the second point
dY2 : float
    the second point

Returns
-------
dDistance : float
    the distance

Notes
-----
In C: double zelmMathGetDistFromPointToPoint(double dX1, double dY1, double dX2, double dY2)
""",
    "zelmMathGetDistFromPointToLine": """\
The distance |a x + b y + c| / sqrt(a^2 + b^2) of a point from a line; not finite for a = b = 0.

Parameters
----------
dA : float
    the line
dB : float
    the line
dC : float
    the line
dX : float
    the point
dY : float
    the point

Returns
-------
dDistance : float
    the distance

Notes
-----
In C: double zelmMathGetDistFromPointToLine(double dA, double dB, double dC, double dX, double dY)
""",
    "zelmMathGetDistAndCrossPointFromPointToLine": """\
The distance of a point from a line, and the foot of its perpendicular.

Parameters
----------
dA : float
    the line
dB : float
    the line
dC : float
    the line
dX : float
    the point
dY : float
    the point

Returns
-------
zelmMathGetDistAndCrossPointFromPointToLineResult : named tuple of
    dDistance : float
        the distance; positive infinity if a^2 + b^2 is degenerate
    dFx : float
        the foot, x; not written if a^2 + b^2 is degenerate
    dFy : float
        the foot, y; likewise

Notes
-----
In C: double zelmMathGetDistAndCrossPointFromPointToLine(double dA, double dB, double dC, double dX,
double dY, double* dFx, double* dFy)
""",
    "zelmMathCrossPoint": """\
The point where two lines cross.

Parameters
----------
dA1 : float
    the first line
dB1 : float
    the first line
dC1 : float
    the first line
dA2 : float
    the second line
dB2 : float
    the second line
dC2 : float
    the second line

Returns
-------
zelmMathCrossPointResult : named tuple of
    dX : float
        the crossing
    dY : float
        the crossing

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: nothing written, if b1 a2 - a1 b2 is degenerate (parallel lines)

Notes
-----
In C: int32_t zelmMathCrossPoint(double dA1, double dB1, double dC1, double dA2, double dB2, double
dC2, double* dX, double* dY)
""",
    "zelmMathGetLineFrom2Points": """\
The normalised line through two points, its normal ((y2 - y1), (x1 - x2)) / distance: the opposite
of the normal that the Clp2d family gives (`docs/decisions.md#line-normals`).

Parameters
----------
dX1 : float
    the first point
dY1 : float
    the first point
dX2 : float
    the second point
dY2 : float
    the second point

Returns
-------
zelmMathGetLineFrom2PointsResult : named tuple of
    dA : float
        the line
    dB : float
        the line
    dC : float
        the line

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: nothing written, if the distance is degenerate

Notes
-----
In C: int32_t zelmMathGetLineFrom2Points(double dX1, double dY1, double dX2, double dY2, double* dA,
double* dB, double* dC)
""",
    "zelmMathGetOrthogonalLineFromLineAndPoint": """\
The line through a point at right angles to a line: (b, -a, a y - b x), not normalised. c is not
used.

Parameters
----------
dA : float
    the line
dB : float
    the line
dC : float
    the line
dX : float
    the point
dY : float
    the point

Returns
-------
zelmMathGetOrthogonalLineFromLineAndPointResult : named tuple of
    dAOut : float
        the line at right angles
    dBOut : float
        the line at right angles
    dCOut : float
        the line at right angles

Notes
-----
In C: void zelmMathGetOrthogonalLineFromLineAndPoint(double dA, double dB, double dC, double dX,
double dY, double* dAOut, double* dBOut, double* dCOut)
""",
    "zelmMathTransAbcToRq": """\
The line in the form (r, q): with m the larger of a and b in magnitude (a on a tie), sign kept, r =
-c / m and q the direction atan2(b / m, a / m) of the normal. r is the distance from the origin
times sqrt(a^2 + b^2) / |m|, with a sign. Not finite for a = b = 0.

Parameters
----------
dA : float
    the line
dB : float
    the line
dC : float
    the line

Returns
-------
zelmMathTransAbcToRqResult : named tuple of
    dR : float
        r
    dQ : float
        q in radians

Notes
-----
In C: void zelmMathTransAbcToRq(double dA, double dB, double dC, double* dR, double* dQ)
""",
    "zelmMathGetDistFromPointToCircle": """\
The distance of a point from a circle, and the circle's nearest point. From the centre that is the
point in the direction of the x axis.

Parameters
----------
dCx : float
    the centre
dCy : float
    the centre
dR : float
    the radius
dX : float
    the point
dY : float
    the point

Returns
-------
zelmMathGetDistFromPointToCircleResult : named tuple of
    dDistance : float
        the distance
    dPx : float
        the nearest point of the circle
    dPy : float
        the nearest point of the circle

Notes
-----
In C: double zelmMathGetDistFromPointToCircle(double dCx, double dCy, double dR, double dX, double
dY, double* dPx, double* dPy)
""",
    "zelmMathExtremumOfQuadraticCurves": """\
The extremum of a x^2 + b x + c.

Parameters
----------
dA : float
    the coefficients a, b, c
dB : float
    the coefficients a, b, c
dC : float
    the coefficients a, b, c

Returns
-------
zelmMathExtremumOfQuadraticCurvesResult : named tuple of
    dValue : float
        the value there
    dX : float
        its place b / (-2 a); not finite for a = 0

Notes
-----
In C: double zelmMathExtremumOfQuadraticCurves(double dA, double dB, double dC, double* dX)
""",
    "zelmMathExtremumOfQuadraticSurface": """\
The stationary point of a x^2 + b x y + c y^2 + d x + e y + f.

Parameters
----------
dA : float
    the coefficients a to f
dB : float
    the coefficients a to f
dC : float
    the coefficients a to f
dD : float
    the coefficients a to f
dE : float
    the coefficients a to f
dF : float
    the coefficients a to f

Returns
-------
zelmMathExtremumOfQuadraticSurfaceResult : named tuple of
    dValue : float
        the value there
    dX : float
        (2 c d - b e) / (b^2 - 4 a c); not finite for b^2 = 4 a c
    dY : float
        (2 a e - b d) / (b^2 - 4 a c); likewise

Notes
-----
In C: double zelmMathExtremumOfQuadraticSurface(double dA, double dB, double dC, double dD, double
dE, double dF, double* dX, double* dY)
""",
    "zelmMathCrossCorrelation": """\
The sum of u[i] * v[i]; 0.0 for iN below 1.

Parameters
----------
daU : array of float64, shape (iN,)
    iN
daV : array of float64, shape (iN,)
    iN

Returns
-------
dSum : float
    the sum

Notes
-----
In C: double zelmMathCrossCorrelation(int32_t iN, const double* daU, const double* daV)
""",
    "zelmMathNormCorrelation": """\
The cosine (u . v) / (|u| |v|) of two signals. Their means are not taken off.

Parameters
----------
daU : array of float64, shape (iN,)
    iN
daV : array of float64, shape (iN,)
    iN

Returns
-------
dCosine : float
    in [-1, 1] up to rounding; 0.0 where |u| |v| is below 1e-9, or iN below 1

Notes
-----
In C: double zelmMathNormCorrelation(int32_t iN, const double* daU, const double* daV)
""",
    "zelmMathAutoCorrelation": """\
The circular auto-correlation: out[k] = sum over i of data[i] * data[(i + k) mod iN]. Takes iN * iM
products.

Parameters
----------
daData : array of float64, shape (iN,)
    iN
iM : int
    lags, from 1 to iN

Returns
-------
daOut : array of float64, shape (iM,)
    iM; may be daData

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: if iN or iM is below 1 or iM above iN

Notes
-----
In C: int32_t zelmMathAutoCorrelation(int32_t iN, const double* daData, int32_t iM, double* daOut)
""",
    "zelmMathNormAutoCorrelation": """\
The circular auto-correlation as cosines: out[k] is zelmMathNormCorrelation of the signal and itself
shifted by k. Takes twice iN * iM products.

Parameters
----------
daData : array of float64, shape (iN,)
    iN
iM : int
    lags, from 1 to iN

Returns
-------
daOut : array of float64, shape (iM,)
    iM; may be daData

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: if iN or iM is below 1 or iM above iN

Notes
-----
In C: int32_t zelmMathNormAutoCorrelation(int32_t iN, const double* daData, int32_t iM, double*
daOut)
""",
    "zelmMathSearchOf1DWithNormCorrelation": """\
Where in a signal a template correlates best, by zelmMathNormCorrelation at every offset from 0 to
iN - iM. Takes about 2 iM (iN - iM + 1) products; allocates nothing.

Parameters
----------
daSignal : array of float64, shape (iN,)
    iN
daTemplate : array of float64, shape (iM,)
    iM

Returns
-------
zelmMathSearchOf1DWithNormCorrelationResult : named tuple of
    iIndex : int
        the first offset with the highest score; 0 if no score is above 0
    dScore : float
        that score; 0.0 likewise. Scores that are not numbers are passed over

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: if iN is below iM

Notes
-----
In C: int32_t zelmMathSearchOf1DWithNormCorrelation(int32_t iN, const double* daSignal, int32_t iM,
const double* daTemplate, int32_t* iIndex, double* dScore)
""",
    "zelmMathOtsuThreshold1d": """\
The threshold that parts a list of values in two classes of the greatest variance between them (Otsu
1979), taken over the values themselves rather than a histogram. Sorts a copy: O(n log n).

Parameters
----------
daData : array of float64, shape (iN,)
    iN, in any order

Returns
-------
dThreshold : float
    halfway between the largest value of the lower class and the smallest of the upper one; of
    splits of equal variance the lowest. A single value is its own threshold; values of which one is
    not a number give a threshold that is not a number

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: if iN is below 1, a pointer is NULL, or the work memory cannot be obtained
        (`docs/decisions.md#no-memory-status-math`)

Notes
-----
In C: int32_t zelmMathOtsuThreshold1d(int32_t iN, const double* daData, double* dThreshold)
""",
    "zelmMathQuadraticRoots": """\
The real roots of a x^2 + b x + c, without cancellation between b and the root of the discriminant.

Order of the roots: 0 and -b/a where c is 0 (0 alone where b is, too); otherwise q/a and c/q with q
= -(b + sign(b) sqrt(D)) / 2, the larger in magnitude first (sign(0) = +1). A double root (D exactly
0) is reported once. Where a is 0 (or not a number) the root of b x + c; where b is 0, too, none.

Roots closer to each other than about 1e-8 of their size may come out as one, as none, or apart by
as much. Coefficients beyond 1e154 overflow D; a D that is not a number means no roots. See
`docs/limits.md`.

Parameters
----------
daCoef : array of float64, shape (3,)
    a, b, c

Returns
-------
daRoots : array of float64, shape (2,), as many entries as there are
    2

Notes
-----
In C: int32_t zelmMathQuadraticRoots(const double* daCoef, double* daRoots)
""",
    "zelmMathCubicRoots": """\
The real roots of a x^3 + b x^2 + c x + d, by Cardano's and Viete's formulas.

With p = b/a, Q = (p^2 - 3 c/a) / 9 and R the usual cubic form: where R^2 <= Q^3 three roots -2
sqrt(Q) cos((phi + 2 pi k) / 3) - p/3 for k = 0, 1, 2 and phi = arccos(R / sqrt(Q^3)): the smallest,
the largest, the middle one. Roots that coincide are reported as often as they occur; where Q^3 is 0
in this case (a triple root), three times -p/3. Otherwise one root, and the other two entries are
set to 0.0.

|a| of 1e-9 or less, or not finite, means no roots: the polynomial is not reduced to a quadratic, nor is it scaled.

The value of the polynomial at a root is within 5e-14 |a| s^3 of 0, s being about the size of the
largest root, for s between 1e-45 and 1e50. Two roots closer than about 1e-7 s, or three closer than
about 1e-4 s, may come out as one or the other way round. See `docs/limits.md`.

Parameters
----------
daCoef : array of float64, shape (4,)
    a, b, c, d

Returns
-------
daRoots : array of float64, shape (3,), as many entries as there are
    3, all written unless the result is 0

Notes
-----
In C: int32_t zelmMathCubicRoots(const double* daCoef, double* daRoots)
""",
    "zelmMathQuarticRoots": """\
The real roots of a x^4 + b x^3 + c x^2 + d x + e, by Ferrari's method.

With y = x + b/(4a) the quartic is y^4 + p y^2 + q y + r. From the largest real root z of its
resolvent cubic z^3 - p z^2 - 4 r z + (4 p r - q^2) follow, with S = sqrt(z - p) and t = q/(2 S),
the factors y^2 - S y + (z/2 + t) and y^2 + S y + (z/2 - t). The roots of the first factor come
first, each pair in the order of zelmMathQuadraticRoots; a double root of one factor is reported
once.

|a| of 1e-9 or less, or not finite, means no roots. So does z <= p: where q is exactly 0 and r < 0, the two real
roots are not found, as of x^4 - 1 (`docs/decisions.md#quartic-even`).

Four real roots are good to 1e-14 |a| s^4 in the polynomial's value, s being about the size of the
largest root; two real roots beside a close complex pair, and roots close to each other, lose digits
or are missed. See `docs/limits.md`.

Parameters
----------
daCoef : array of float64, shape (5,)
    a, b, c, d, e

Returns
-------
daRoots : array of float64, shape (4,), as many entries as there are
    4

Notes
-----
In C: int32_t zelmMathQuarticRoots(const double* daCoef, double* daRoots)
""",
    "zelmMathGetDistFromPointToEllipse": """\
The distance from a point to an ellipse, and the ellipse's nearest point.

Let (X, Y) be the point in the ellipse's own frame and k = b^2 - a^2. The ellipse stands at right
angles to the line to the point where the sine of its parameter is a root of a quartic, solved by
zelmMathQuarticRoots; of the ellipse's points at these sines the nearest is taken, the first on a
tie.

The quartic's limits are those of this function: circles and nearly circular ellipses are refused
(use zelmMathGetDistFromPointToCircle), points on and close to an own axis lose digits or are
refused, far ones lose digits of the nearest point. `docs/limits.md` says where; elsewhere the
distance is right to a few roundings.

Parameters
----------
dCx : float
    centre
dCy : float
    centre
dA : float
    semi-axis along the own x axis; need not be the longer one
dB : float
    semi-axis along the own y axis
dTheta : float
    angle of the own x axis
dPx : float
    point
dPy : float
    point

Returns
-------
zelmMathGetDistFromPointToEllipseResult : named tuple of
    dX : float
        nearest point of the ellipse
    dY : float
        nearest point of the ellipse
    dDistance : float
        its distance from the point

Raises
------
ZelmError
    ZELM_ERR_DEGENERATE: when no nearest point is found: the quartic has fewer than 2 roots, or none
        of them gives a point nearer than 1e7

Notes
-----
In C: int32_t zelmMathGetDistFromPointToEllipse(double dCx, double dCy, double dA, double dB, double
dTheta, double dPx, double dPy, double* dX, double* dY, double* dDistance)
""",
}
