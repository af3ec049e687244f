/// @file
/// Measuring with a calibrated pair: 3-D points, projections, epipolar lines, rectified and undistorted images, point
/// mappings.
///
/// All functions read only the calibration block, so opened (and calibrated) and loaded objects serve alike. The world
/// frame is the plate of view 0; 3-D coordinates are in plate units. Raw pixels are pixels of the image as taken
/// (distorted); undistorted pixels are those of the same camera without its lens distortion. A camera is named by 'L'
/// or 'R' in the low byte of an integer. Nothing in the object changes; all functions are reentrant.
#ifndef ZELM_TWO_VIEW_GEOMETRY_H
#define ZELM_TWO_VIEW_GEOMETRY_H

#include "zelm/base.h"
#include "zelm/twoView.h"

ZELM_BEGIN_DECLS

/// A line of an image and its visible segment.
typedef struct Zelm2ViewEpiLine {
    double a;   ///< a*x + b*y + c = 0 with a^2 + b^2 = 1, undistorted or rectified pixels
    double b;   ///< see a
    double c;   ///< see a
    double x0;  ///< first end point: where the line crosses the image inset by one pixel; all four are 0 when it misses
    double y0;  ///< see x0
    double x1;  ///< second end point; equal to the first when the line only touches the inset image
    double y1;  ///< see x1
} Zelm2ViewEpiLine;

/// Parameters of a rectification.
typedef struct Zelm2ViewHomParam {
    double px;  ///< reference pixel (undistorted): the rectified image is shifted so that it lands on the image centre
    double py;  ///< see px
    double s;   ///< depth term: s times column 3 of a camera's projection matrix is added to column 3 of its rectifying
                ///< matrix. In a pair with a parallel camera it moves the plane of view 0 to height s; between
                ///< perspective cameras it scales a column of both matrices alike and changes nothing
} Zelm2ViewHomParam;

/// The 3-D point of a raw pixel pair: the lens distortion is removed, the pair is moved to satisfy
/// the epipolar constraint by first-order optimal correction (Kanatani, Sugaya and Niitsuma, 2008; at most 20 rounds,
/// else the points are used as they are), and the point is found by linear least squares.
/// @param tHandle [in]  calibrated pair; at most one camera may have model 2
/// @param tLeft   [in]  raw pixel of the left image
/// @param tRight  [in]  its counterpart in the right image, raw
/// @param tOut    [out] point in the world frame, written on success
/// @return ZELM_OK; ZELM_ERR_PARAM for a NULL pointer or two model-2 cameras; ZELM_ERR_UNDISTORT when a pixel's
///         distortion cannot be removed; ZELM_ERR_DEGENERATE when the linear system cannot be solved; ZELM_ERR_MEMORY
ZELM_API int32_t zelm2ViewChange2Dto3D(const Zelm2ViewCalib* tHandle, const Point2d* tLeft, const Point2d* tRight,
                                       Point3d* tOut);

/// The raw pixel at which a camera sees a 3-D point.
/// @param tHandle [in]  calibrated pair
/// @param iCamera [in]  'L' or 'R'
/// @param tIn     [in]  point in the world frame
/// @param tOut    [out] raw pixel
/// @return ZELM_OK; ZELM_ERR_PARAM for a NULL pointer or another camera
ZELM_API int32_t zelm2ViewChange3Dto2D(const Zelm2ViewCalib* tHandle, int32_t iCamera, const Point3d* tIn,
                                       Point2d* tOut);

/// The epipolar line, in one image, of a raw pixel of the other one. It is a line of the undistorted image.
/// @param tHandle [in]  calibrated pair
/// @param iCamera [in]  the image in which the line is wanted, 'L' or 'R'
/// @param tPoint  [in]  raw pixel of the other image
/// @param tOut    [out] line and segment; the end points are set to 0 even when the camera is refused. The epipole
///                      itself gives a line that is not finite.
/// @return ZELM_OK; ZELM_ERR_PARAM for a NULL pointer or another camera; ZELM_ERR_UNDISTORT when the pixel's distortion
///         cannot be removed
ZELM_API int32_t zelm2ViewCalcEpiLine(const Zelm2ViewCalib* tHandle, int32_t iCamera, const Point2d* tPoint,
                                      Zelm2ViewEpiLine* tOut);

/// Carries a line of a camera's undistorted image into its rectified image.
/// @param tHandle [in]  calibrated pair
/// @param iCamera [in]  'L' or 'R'
/// @param tParams [in]  rectification
/// @param daLine  [in]  3 doubles a, b, c
/// @param tOut    [out] line and segment in the rectified image
/// @return ZELM_OK; ZELM_ERR_PARAM for a NULL pointer or another camera; ZELM_ERR_DEGENERATE when the rectifying
///         transform cannot be formed
ZELM_API int32_t zelm2ViewChangeHomEpiLine(const Zelm2ViewCalib* tHandle, int32_t iCamera,
                                           const Zelm2ViewHomParam* tParams, const double* daLine,
                                           Zelm2ViewEpiLine* tOut);

/// Renders a camera's raw gray image as the other camera would see it (rectified image): every rectified pixel is
/// mapped into the undistorted image, distorted with the camera model and sampled bilinearly; 0 where there is no
/// source.
/// @param tHandle [in]  calibrated pair
/// @param iCamera [in]  camera that took the image, 'L' or 'R'; W x H is its image size
/// @param ucSrc   [in]  raw image, H rows of W bytes
/// @param tParams [in]  rectification
/// @param ucDst   [out] rectified image, H rows of W bytes; must not overlap the source
/// @return ZELM_OK; ZELM_ERR_PARAM for a NULL pointer or another camera; ZELM_ERR_DEGENERATE when the rectifying
///         transform cannot be formed
ZELM_API int32_t zelm2ViewMakeHomImage(const Zelm2ViewCalib* tHandle, int32_t iCamera, const unsigned char* ucSrc,
                                       const Zelm2ViewHomParam* tParams, unsigned char* ucDst);

/// As zelm2ViewMakeHomImage for ARGB8888 buffers; all four bytes of a pixel are treated alike.
/// @param tHandle [in] calibrated pair, opened or loaded
/// @param iCamera [in] 'L' or 'R'
/// @param tSrc [in]  raw image of the camera's size
/// @param tParams [in] rectification
/// @param tDst [out] rectified image of the same size; its data is written
/// @return as zelm2ViewMakeHomImage; also ZELM_ERR_PARAM when a buffer has no data, a row longer than 2^31 - 1 bytes,
///         or another size than the camera's image
ZELM_API int32_t zelm2ViewMakeHomImage_vImageARGB8888(const Zelm2ViewCalib* tHandle, int32_t iCamera,
                                                      const vImage_Buffer* tSrc, const Zelm2ViewHomParam* tParams,
                                                      const vImage_Buffer* tDst);

/// Maps a raw pixel into the rectified image.
/// @param tHandle [in] calibrated pair, opened or loaded
/// @param iCamera [in] 'L' or 'R'
/// @param tIn  [in]  raw pixel
/// @param tParams [in] rectification
/// @param tOut [out] rectified pixel
/// @return ZELM_OK; ZELM_ERR_PARAM for a NULL pointer or another camera; ZELM_ERR_DEGENERATE when the rectifying
///         transform cannot be formed; ZELM_ERR_UNDISTORT when the pixel's distortion cannot be removed
ZELM_API int32_t zelm2ViewCalcHomImgPoint(const Zelm2ViewCalib* tHandle, int32_t iCamera, const Point2d* tIn,
                                          const Zelm2ViewHomParam* tParams, Point2d* tOut);

/// Maps a rectified pixel back to the raw image.
/// @param tHandle [in] calibrated pair, opened or loaded
/// @param iCamera [in] 'L' or 'R'
/// @param tIn  [in]  rectified pixel
/// @param tParams [in] rectification
/// @param tOut [out] raw pixel
/// @return ZELM_OK; ZELM_ERR_PARAM for a NULL pointer or another camera; ZELM_ERR_DEGENERATE when the rectifying
///         transform cannot be formed
ZELM_API int32_t zelm2ViewInvHomImgPoint(const Zelm2ViewCalib* tHandle, int32_t iCamera, const Point2d* tIn,
                                         const Zelm2ViewHomParam* tParams, Point2d* tOut);

/// Removes the lens distortion from a raw gray image of the camera's size W x H. Every pixel is the bilinear gray level
/// of the source at its distorted position, rounded half up; 0 outside the source.
/// @param tHandle [in] calibrated pair, opened or loaded
/// @param iCamera [in] 'L' or 'R'
/// @param ucSrc [in]  raw image, H rows of W bytes
/// @param ucDst [out] undistorted image, H rows of W bytes; must not overlap the source
/// @return ZELM_OK; ZELM_ERR_PARAM for a NULL pointer or another camera
ZELM_API int32_t zelm2ViewUnDistortImage(const Zelm2ViewCalib* tHandle, int32_t iCamera, const unsigned char* ucSrc,
                                         unsigned char* ucDst);

/// As zelm2ViewUnDistortImage for ARGB8888 buffers; alpha becomes 255 everywhere. A position beyond the centre of the
/// last column or row gives R = G = B = 0.
/// @param tHandle [in] calibrated pair, opened or loaded
/// @param iCamera [in] 'L' or 'R'
/// @param tSrc [in] raw image of the camera's size
/// @param tDst [out] undistorted image of the same size; its data is written
/// @return as zelm2ViewUnDistortImage; also ZELM_ERR_PARAM when a buffer has no data, a row longer than 2^31 - 1 bytes,
/// or another size than the camera's image
ZELM_API int32_t zelm2ViewUnDistortImage_vImageARGB8888(const Zelm2ViewCalib* tHandle, int32_t iCamera,
                                                        const vImage_Buffer* tSrc, const vImage_Buffer* tDst);

/// Applies a camera's lens distortion to an undistorted pixel.
/// @param tHandle [in] calibrated pair, opened or loaded
/// @param iCamera [in] 'L' or 'R'
/// @param tIn [in] undistorted pixel
/// @param tOut [out] raw pixel
/// @return ZELM_OK; ZELM_ERR_PARAM for a NULL pointer or another camera
ZELM_API int32_t zelm2ViewDistortPoint(const Zelm2ViewCalib* tHandle, int32_t iCamera, const Point2d* tIn,
                                       Point2d* tOut);

/// Removes a camera's lens distortion from a raw pixel.
/// @param tHandle [in] calibrated pair, opened or loaded
/// @param iCamera [in] 'L' or 'R'
/// @param tIn [in] raw pixel
/// @param tOut [out] undistorted pixel; on ZELM_ERR_UNDISTORT the latest estimate, as from zelmCalibUnDistortPoint()
/// @return ZELM_OK (never the count of Newton steps); ZELM_ERR_PARAM for a NULL pointer or another camera;
///         ZELM_ERR_UNDISTORT
ZELM_API int32_t zelm2ViewUnDistortPoint(const Zelm2ViewCalib* tHandle, int32_t iCamera, const Point2d* tIn,
                                         Point2d* tOut);

ZELM_END_DECLS

#endif
