/// @file
/// The pair of cameras: calibration object, plate reading and calibration.
///
/// One object describes a pair of cameras, left and right, that see a flat plate of dots together in several views.
/// Calling order: zelm2ViewCalibOpen, then zelm2ViewReadPtnImg (or a buffer variant) once per view, then
/// zelm2ViewCalibCameraParam, then the accessors; zelm2ViewGetCalibDataSize and zelm2ViewSaveCalibData to persist;
/// later zelm2ViewLoadCalibData; zelm2ViewCalibClose at the end in every case.
///
/// The world frame of a calibrated pair is the plate of view 0: origin in the corner marker, x towards the x marker,
/// y towards the y marker, z away from the cameras; the right-handed frame of an image with x to the right, y downwards
/// and depth forward. Lengths are in the unit of the plate's description, image points in pixels, pixel centres at
/// integer coordinates.
///
/// A camera is selected by an integer whose low byte is 'L' or 'R'; the other bytes are not looked at. Cameras of model
/// 0 (perspective) and 1 (tilted) are perspective, those of model 2 are parallel, as telecentric lenses see; parallel
/// ones are read and calibrated from view 0 alone (`docs/decisions.md#first-view-only`). Functions on different objects
/// may run at the same time; an object is for one thread at a time.
///
/// The calibration block, which Save hands out and Load takes, is a file format. All numbers are little-endian,
/// the fields packed without padding; n is the number of views, the size n * 240 + 812 bytes:
///
/// | offset | type | contents |
/// |---|---|---|
/// | 0 | int32 | n |
/// | 4 | 6 int32 | Zelm2ViewCameraDesc |
/// | 28 | 18 double | left rectifying pair: M, row-major, then its inverse |
/// | 172 | 18 double | right rectifying pair |
/// | 316 | 9 double | fundamental matrix F, row-major |
/// | 388 | 9 double | its transpose |
/// | 460 | 22 double | left ZelmCameraIntrinsics |
/// | 636 | 22 double | right ZelmCameraIntrinsics |
/// | 812 | n * 15 double | left ZelmCameraExtrinsics, view 0 first |
/// | 812 + n * 120 | n * 15 double | right ZelmCameraExtrinsics, view 0 first |
#ifndef ZELM_TWO_VIEW_H
#define ZELM_TWO_VIEW_H

#include "zelm/base.h"
#include "zelm/calib.h"

ZELM_BEGIN_DECLS

/// The calibration object of a pair, opened or loaded and closed by the functions below.
typedef struct Zelm2ViewCalib Zelm2ViewCalib;

/// Models and image sizes of the two cameras.
typedef struct Zelm2ViewCameraDesc {
    int32_t leftModel;    ///< 0 perspective, 1 tilted, 2 parallel
    int32_t leftWidth;    ///< pixels, > 0
    int32_t leftHeight;   ///< pixels, > 0
    int32_t rightModel;   ///< 0 perspective, 1 tilted, 2 parallel
    int32_t rightWidth;   ///< pixels, > 0
    int32_t rightHeight;  ///< pixels, > 0
} Zelm2ViewCameraDesc;

/// The plate: 96 bytes, fixed layout. Lengths are > 0 and in any one unit, the plate unit (for example millimetres).
///
/// A grid of round dots of one size, of which some larger ones, the markers, fix origin and axes: the corner marker at
/// the origin, one on the x axis and one on the y axis. The dot field is centred on the corner marker.
typedef struct Zelm2ViewPatternDesc {
    double d0;               ///< extent of the dot field along x: dots up to d0 / 2 from the corner marker are kept
    double d1;               ///< extent of the dot field along y
    double d2;               ///< dot diameter
    double d3;               ///< marker-dot diameter; markers are told from dots reliably from about 1.6 * d2 on
    double d4;               ///< dot pitch along x
    double d5;               ///< dot pitch along y
    double d6;               ///< distance from the corner marker to the marker on the x axis, a multiple of d4
    double d7;               ///< distance from the corner marker to the marker on the y axis, a multiple of d5
    int32_t markers;         ///< number of marker dots, > 0; 3 on every readable plate
    int32_t polarity;        ///< 1: dots brighter than the plate, 0: darker
    int32_t minDotArea;      ///< smallest dot area in pixels
    int32_t reserved76;      ///< carried along, not read
    double minEdgeStrength;  ///< smallest edge strength of the ray searches, gray levels a pixel
    int32_t minDots;         ///< smallest number of dots that an image must yield
    int32_t reserved92;      ///< carried along, not read
} Zelm2ViewPatternDesc;

/// What the calibration of a pair reports of each camera.
typedef struct Zelm2ViewCalibResult {
    int32_t statusL;  ///< status of the left camera's estimation
    double errorL;    ///< its mean reprojection error in pixels
    int32_t statusR;  ///< status of the right camera's estimation
    double errorR;    ///< its mean reprojection error in pixels
} Zelm2ViewCalibResult;

/// Opens an object for a new calibration.
/// @param iViews    [in]     number of views, >= 3
/// @param tPattern  [in]     the plate; copied. A NaN among d0 to d7 passes, because only a value known not to be
///                           positive is refused; such a plate is then not found in any image
/// @param tCameras  [in]     the cameras; copied
/// @param tHandle   [in/out] must hold NULL; receives the object
/// @return ZELM_OK; ZELM_ERR_PARAM, with nothing allocated: views below 3, a NULL pointer, a live handle, a length of
///         the plate that is not positive, markers < 1, polarity other than 0 or 1, an image size < 1, a model other
///         than 0, 1 or 2; ZELM_ERR_MEMORY: the object cannot be had, or its calibration block would exceed 2^31 - 1
///         bytes. On failure the handle stays NULL
/// The calibration block starts as zeros but for its first 28 bytes.
ZELM_API int32_t zelm2ViewCalibOpen(int32_t iViews, const Zelm2ViewPatternDesc* tPattern,
                                    const Zelm2ViewCameraDesc* tCameras, Zelm2ViewCalib** tHandle);

/// Size of the calibration block in bytes.
/// @param tHandle [in] an opened or loaded object
/// @return n * 240 + 812; ZELM_ERR_PARAM: NULL handle, or a loaded block whose n gives no size that an int32 can hold
ZELM_API int32_t zelm2ViewGetCalibDataSize(const Zelm2ViewCalib* tHandle);

/// Copies the calibration block out. The dots that were read are not part of it.
/// @param tHandle [in] an opened or loaded object
/// @param ucBuffer [out] zelm2ViewGetCalibDataSize bytes
/// @return ZELM_OK; ZELM_ERR_PARAM: a NULL pointer, or a block without a size
ZELM_API int32_t zelm2ViewSaveCalibData(const Zelm2ViewCalib* tHandle, unsigned char* ucBuffer);

/// Makes an object from a saved calibration block. It serves everything that reads only the block; reading,
/// calibration, zelm2ViewGetPtnNum and zelm2ViewGetPattern refuse it.
/// @param iSize    [in]     bytes in the buffer, >= 1. Taken at its word: it is not compared with the size that follows
///                          from the block's own view count, so check untrusted files before: a shorter buffer makes
///                          later calls read beyond the object
/// @param ucBuffer [in]     the block; copied
/// @param tHandle  [in/out] must hold NULL; receives the object
/// @return ZELM_OK; ZELM_ERR_PARAM: size < 1, a NULL pointer, a live handle; ZELM_ERR_MEMORY. On failure the handle
///         stays NULL
ZELM_API int32_t zelm2ViewLoadCalibData(int32_t iSize, const unsigned char* ucBuffer, Zelm2ViewCalib** tHandle);

/// Frees an object with all it holds and sets the handle to NULL. A NULL pointer or handle is accepted.
/// @param tHandle [in/out] the handle, set to NULL
ZELM_API void zelm2ViewCalibClose(Zelm2ViewCalib** tHandle);

/// The rectifying pair of a camera: M, row-major, then its inverse.
///
/// In a pair of perspective cameras M is the left 3x3 block (K * R) of the 3x4 projection matrix of view 0. In a pair
/// with a camera of model 2, whose left block has a zero third row and no inverse, both M are the homographies from the
/// plane of view 0 to the image: columns 1, 2 and 4 of the projection matrix. Adding d times its column 3 to the last
/// column moves that plane to height d.
/// @param tHandle [in] calibrated pair, opened or loaded
/// @param iCamera [in]  'L' or 'R'
/// @param daOut   [out] 18 doubles
/// @return ZELM_OK; ZELM_ERR_PARAM: a NULL pointer, another camera
ZELM_API int32_t zelm2ViewGetCamHomMat(const Zelm2ViewCalib* tHandle, int32_t iCamera, double* daOut);

/// The fundamental matrix F, row-major, then its transpose: xL' * F * xR = 0 for undistorted homogeneous pixels.
/// @param tHandle [in] calibrated pair, opened or loaded
/// @param daOut [out] 18 doubles
/// @return ZELM_OK; ZELM_ERR_PARAM: a NULL pointer
ZELM_API int32_t zelm2ViewGetCamFndMat(const Zelm2ViewCalib* tHandle, double* daOut);

/// The intrinsic parameters of a camera.
/// @param tHandle [in] calibrated pair, opened or loaded
/// @param iCamera [in] 'L' or 'R'
/// @param tOut [out] the parameters
/// @return ZELM_OK; ZELM_ERR_PARAM: a NULL pointer, another camera than 'L' or 'R'
ZELM_API int32_t zelm2ViewGetCamIntParam(const Zelm2ViewCalib* tHandle, int32_t iCamera, ZelmCameraIntrinsics* tOut);

/// The pose of a camera relative to the plate of a view; all zeros for a camera of model 2 in views from 1 on.
/// @param tHandle [in] calibrated pair, opened or loaded
/// @param iCamera [in] 'L' or 'R'
/// @param iView [in] 0..n - 1
/// @param tOut [out] the pose
/// @return ZELM_OK; ZELM_ERR_PARAM: a NULL pointer, a view outside 0..n - 1, another camera than 'L' or 'R'
ZELM_API int32_t zelm2ViewGetCamExtParam(const Zelm2ViewCalib* tHandle, int32_t iCamera, int32_t iView,
                                         ZelmCameraExtrinsics* tOut);

/// How many dots were read for a camera and view; 0 before reading.
/// @param tHandle [in] an opened object
/// @param iCamera [in] 'L' or 'R'
/// @param iView [in] 0..n - 1
/// @param iCount [out] the number of dots
/// @return ZELM_OK; ZELM_ERR_PARAM: a NULL pointer, a loaded object, a view outside 0..n - 1, another camera
ZELM_API int32_t zelm2ViewGetPtnNum(const Zelm2ViewCalib* tHandle, int32_t iCamera, int32_t iView, int32_t* iCount);

/// The image points (not the plane points) of the dots that were read, in the order in which they were found.
/// @param tHandle [in] an opened object
/// @param iCamera [in] 'L' or 'R'
/// @param iView [in] 0..n - 1
/// @param taOut [out] as many points as zelm2ViewGetPtnNum says
/// @return ZELM_OK; ZELM_ERR_PARAM: a NULL pointer, a loaded object, a view outside 0..n - 1, another camera
ZELM_API int32_t zelm2ViewGetPattern(const Zelm2ViewCalib* tHandle, int32_t iCamera, int32_t iView, Point2d* taOut);

/// Finds the dots of the plate in the two images of a view and keeps them in the object, in place of the dots that an
/// earlier reading of the view found.
///
/// In each image: the plate is the largest blob, at Otsu's threshold, of the polarity opposite to the dots' (unless a
/// region is given); in its bounding box dots are blobs at the box's own threshold. 20 rays from a blob's centroid find
/// its outline, and an ellipse through them gives the dot's centre. Dots of odd shape or size are dropped, the markers
/// found by their area, and every dot is given its grid index through a homography fitted to the dots around the
/// markers. Dots are kept in the order of their blobs; dots cut by the edge of the region are not seen.
///
/// Orientation: the corner marker is the one at which the directions to the next two markers are nearest to a right
/// angle, within 20 degrees. The angle is judged on the plate: the mean foreshortening of all dots' outlines is undone
/// first, so that tilts to 45 degrees and unequal marker distances do not matter. The axes are told apart by their
/// sense: x axis cross y axis > 0 in pixels with y downwards, so that the plate's z axis points away from the cameras;
/// index (1, 0) lies towards the x marker and (0, 1) towards the y marker. The axes may differ in length by 100 pixels.
///
/// Where the affine frame of three markers misplaces far dots, under strong perspective, so that the homography leaves
/// dots without a place, it is fitted once more, starting from the next neighbours of the corner marker; that one is
/// taken if it places more dots.
/// @param tHandle      [in/out] an opened object
/// @param iView        [in] 0..n - 1
/// @param ucaImages    [in] left and right gray image of the sizes given at open, stride = width. A camera of model 2
///                          is read in view 0 alone; in later views its image and region are not looked at
/// @param tRegionLeft  [in] where to look for dots in the left image, or NULL to look for the plate
/// @param tRegionRight [in] the same for the right image
/// @return ZELM_OK, or of the first image that fails, the left one being read first:
///         ZELM_ERR_PARAM (nothing is read): a NULL handle or image that is needed, a loaded object, a view outside
///         0..n - 1, a region that is empty or leaves its image;
///         ZELM_ERR_PATTERN_PLATE: no blob covers a twentieth of the image, or the image is of one gray level;
///         ZELM_ERR_PATTERN: fewer dots than minDots after labelling, after dropping outliers or on the grid, or fewer
///         than 2 with an ellipse;
///         ZELM_ERR_PATTERN_MARKERS: no mean dot area, not the required number of dots of marker size, no right angle,
///         axes that differ by more than 100 pixels;
///         ZELM_ERR_PATTERN_GRID: the frame or the homography is singular, has too few dots, or d6 / d4 or d7 / d5 is
///         not a number or above a million;
///         ZELM_ERR_MEMORY
/// On failure: what the left image gave stays when the right one fails. The failing image keeps its old dots when no
/// plate was found or too few dots were labelled; else it is left without dots, or, when too few lie on the grid, with
/// those that do.
ZELM_API int32_t zelm2ViewReadPtnImg(Zelm2ViewCalib* tHandle, int32_t iView, const unsigned char* const ucaImages[2],
                                     const ZelmRect* tRegionLeft, const ZelmRect* tRegionRight);

/// The same for gray platform buffers. Rows without padding are read in place, others are packed first.
/// @param tHandle [in/out] an opened object
/// @param iView [in] 0..n - 1
/// @param tLeft  [in] Planar8 buffer of the size given at open; one of the two may be NULL where its image is
///               not needed
/// @param tRight [in] the same of the right camera
/// @param tRegionLeft [in] where to look for dots in the left image, or NULL
/// @param tRegionRight [in] the same for the right image
/// @return as zelm2ViewReadPtnImg; ZELM_ERR_PARAM also for two NULL buffers, a buffer without data, of another size, or
///         with rows shorter than its width; ZELM_ERR_MEMORY also when a packed copy cannot be had
ZELM_API int32_t zelm2ViewReadPtnImg_vImagePlanar8(Zelm2ViewCalib* tHandle, int32_t iView, const vImage_Buffer* tLeft,
                                                   const vImage_Buffer* tRight, const ZelmRect* tRegionLeft,
                                                   const ZelmRect* tRegionRight);

/// The same for colour platform buffers; a pixel's gray is the truncated mean of its R, G and B.
/// @param tHandle [in/out] an opened object
/// @param iView [in] 0..n - 1
/// @param tLeft  [in] ARGB8888 buffer of the size given at open; one of the two may be NULL where its image is
///               not needed
/// @param tRight [in] the same of the right camera
/// @param tRegionLeft [in] where to look for dots in the left image, or NULL
/// @param tRegionRight [in] the same for the right image
/// @return as zelm2ViewReadPtnImg_vImagePlanar8
ZELM_API int32_t zelm2ViewReadPtnImg_vImageARGB8888(Zelm2ViewCalib* tHandle, int32_t iView, const vImage_Buffer* tLeft,
                                                    const vImage_Buffer* tRight, const ZelmRect* tRegionLeft,
                                                    const ZelmRect* tRegionRight);

/// Calibrates the pair from the dots that were read: each camera on its own (zelmCalibCameraParam, robust threshold
/// 3.5), then the fundamental matrix and the rectifying pairs. The two cameras are not refined together.
///
/// Perspective cameras use all views; a camera of model 2 uses view 0, with alpha and beta preset to d6 and d7 and the
/// principal point to the image's centre. The fundamental matrix is K_L^-T [t]x R K_R^-1 of the two poses of view 0
/// (Longuet-Higgins, 1981), or, for a left camera of model 2, (P_R P_L^+)' [e]x (Hartley and Zisserman, 2004) turned to
/// the same order; divided by its largest element and then made of rank 2. Accepted pairs of models: 0 and 1 in any
/// combination, 2 with 0, 1 or 2. A perspective left with a model-2 right camera is refused after both cameras have
/// been estimated and written (`docs/decisions.md#right-parallel-refused`): swap the cameras.
///
/// One view of a plane does not tell the sign of a parallel camera's tilt: seen from the other side the dots lie the
/// same. The estimation takes one of the two poses, so in a pair with a camera of model 2 that is tilted against the
/// plate of view 0 the fundamental matrix holds for points of that plane, but for others perhaps that of the mirrored
/// pose. Put the plate of view 0 head-on to such a camera, where both poses are one.
/// @param tHandle [in/out] an opened object, every view read that the models need
/// @param tResult [out] status and error of each camera; the statuses are set to 0 first, the others only when a camera
///                      has been estimated
/// @return ZELM_OK; ZELM_ERR_PARAM: a NULL pointer, a loaded object, left model not 2 with right model 2;
///         ZELM_ERR_STEREO_GEOMETRY: no fundamental matrix, as for two cameras in the same place or a parallel camera
///         whose scale is below about 3e-5 pixels a plate unit; ZELM_ERR_CALIB_HOMOGRAPHY: no rectifying pair; codes of
///         zelmCalibCameraParam (left camera first) and of the matrix toolkit; ZELM_ERR_MEMORY
/// On failure the calibration block holds what was finished before: left camera, right camera, fundamental matrix, left
/// and right rectifying pair, in this order.
ZELM_API int32_t zelm2ViewCalibCameraParam(Zelm2ViewCalib* tHandle, Zelm2ViewCalibResult* tResult);

ZELM_END_DECLS

#endif
