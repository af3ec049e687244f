/// @file
/// Expanded images: one camera's image carried into the other camera's image plane and magnified about a chosen point,
/// so that a small region fills a working image in which matches are looked for.
///
/// The camera that a function names by 'L' or 'R' (low byte of an integer) is the one whose own image is the source;
/// the expanded image lies in the other camera's image plane. Typical order: zelmCstmDrovnCalcHomImgMemSize, then
/// zelmCstmDrovnMakeHomImageExp (or zelmCstmDrovnMakeHomImageMap once and zelmCstmDrovnRemapImage a frame), then
/// zelmCstmDrovnChangeHomEpiLineExp, the search, and zelmCstmDrovnInvHomImgPointExp.
///
/// The transfer. Let M and P be a camera's rectifying matrix (zelm2ViewGetCamHomMat) and its 3x4 projection matrix of
/// view 0, and M' be M with d times the third column of P added to its third column. The forward homography of camera
/// 'L' is T * diag(m, m, 1) * M'_R * inverse(M'_L), that of camera 'R' the same with L and R exchanged: m is the
/// magnification, and the translation T takes the image of the reference point onto the centre (iWidth / 2,
/// iHeight / 2), integer halves. It acts on undistorted pixels of the source and is divided by its last element unless
/// that is within 1e-9 of 0.
///
/// What d means. In a pair with a parallel camera (model 2) the columns of M' are what a camera makes of the plane
/// Z = d of the world frame: the homography is the transfer by that plane, and a point on it lands, up to the one shift
/// T and the magnification, where the other camera sees it. Z grows away from the cameras, so planes above the plate
/// have negative d. Between two perspective cameras d scales the third columns of both matrices by 1 + d, which
/// cancels: the homography is the transfer by the plane at infinity (a turn of the camera about its own centre)
/// whatever d is, and d = -1 makes both matrices singular. There, objects at depth Z keep a displacement along the
/// epipolar lines that the search resolves.
///
/// All functions read only the calibration block, so opened (and calibrated) and loaded objects serve alike.
/// Nothing in the object changes and there is no state: all functions are reentrant. Raw pixels are pixels of an image
/// as taken (distorted). The geometry follows Hartley and Zisserman, Multiple View Geometry (2004), chapters 8 and 13.
#ifndef ZELM_CSTM_GEOMETRY_H
#define ZELM_CSTM_GEOMETRY_H

#include "zelm/base.h"
#include "zelm/misc.h"
#include "zelm/twoView.h"
#include "zelm/twoViewGeometry.h"

ZELM_BEGIN_DECLS

/// A record of two roles. As destination (tHomPrm): size of the expanded image, the point of the source camera's
/// undistorted image that lands on its centre, and d. As expansion (tExpPrm): the magnification in dVal; the transfers
/// use dVal alone, pure magnifications use all fields.
typedef struct ZelmCstmExpPrm {
    int32_t iWidth;   ///< width of the expanded image, >= 0
    int32_t iHeight;  ///< height of the expanded image, >= 0
    double dX;        ///< reference point, x
    double dY;        ///< reference point, y
    double dVal;      ///< expansion: magnification m, >= 1; destination: plane term d, see above
} ZelmCstmExpPrm;

/// Where the pixels of an expanded image come from. The caller owns the two planes of floats.
typedef struct ZelmCstmHomMap {
    int32_t iWidth;      ///< width of the maps, >= 0
    int32_t iHeight;     ///< height of the maps, >= 0
    float* mapX;         ///< source column of each pixel, -1 where there is no source
    int32_t mapXStride;  ///< bytes from one row of mapX to the next
    float* mapY;         ///< source row of each pixel, -1 where there is no source
    int32_t mapYStride;  ///< bytes from one row of mapY to the next
    int32_t minX;        ///< inclusive box of the pixels that have a source: (iWidth, iHeight, 0, 0) when none has
    int32_t minY;        ///< see minX
    int32_t maxX;        ///< see minX
    int32_t maxY;        ///< see minX
} ZelmCstmHomMap;

/// How many image pixels a unit of the plate's plane measures in each image, at a given height: the image length of the
/// segment from (0, 0, Z) to (X, 0, Z) of the world frame, seen by a camera's view-0 pose without lens distortion,
/// divided by |X|. The ratio of the two values tells how much larger one camera sees the object than the other, and so
/// which magnification makes their images alike.
///
/// Models 0 and 1 project with K * [R | t] (under model 1 the axis angle is part of K); for model 2 the depth is
/// dropped, so that the value does not depend on Z. X = 0 gives the limit, the scale at the foot (0, 0, Z). A length
/// that is not finite, or a segment that reaches the camera's own plane, gives a value that is not finite or is 0, and
/// ZELM_OK.
/// @param tHandle [in]  calibrated pair
/// @param dLengthA [in] 1000 Z: height of the segment in thousandths of the plate's unit (micrometres when the plate is
///                      described in millimetres); like Z, it grows away from the cameras
/// @param dLengthB [in] 1000 X: length of the segment in thousandths of the plate's unit
/// @param dOutL, dOutR [out] undistorted pixels of the left and of the right image per plate unit
/// @return ZELM_OK; ZELM_ERR_PARAM when the handle or an output is NULL
ZELM_API int32_t zelmCstmDrovnCalcMagnification(const Zelm2ViewCalib* tHandle, double dLengthA, double dLengthB,
                                                double* dOutL, double* dOutR);

/// The size of the expanded image that a region of the raw image needs, and where to centre it. The corners of the
/// region are undistorted and transferred with the region's middle as reference point; the box around them, rounded up
/// to multiples of 4, is the size.
/// @param tHandle [in]  calibrated pair
/// @param iCamera [in]  'L' or 'R'
/// @param tRoi    [in]  region of the raw image; x, y >= 0, width, height > 0; need not lie inside the image
/// @param tExpPrm [in]  expansion; dVal is used, and not tested
/// @param iWidth, iHeight [out] size, multiples of 4, >= 4
/// @param tCentre [out] undistorted source point in the middle of the box: as (dX, dY) of a destination record of that
///                      size it shows the region to a pixel. May be NULL
/// @param dD      [in]  plane term d
/// @return ZELM_OK; ZELM_ERR_PARAM for a NULL pointer, a bad region or another camera; ZELM_ERR_DEGENERATE when the
///         homography cannot be formed, a corner is carried to infinity or the size exceeds 32 bits;
///         ZELM_ERR_UNDISTORT when a corner's distortion cannot be removed
ZELM_API int32_t zelmCstmDrovnCalcHomImgMemSize(const Zelm2ViewCalib* tHandle, int32_t iCamera, const ZelmRect* tRoi,
                                                const ZelmCstmExpPrm* tExpPrm, int32_t* iWidth, int32_t* iHeight,
                                                Point2d* tCentre, double dD);

/// Maps a source point into a magnified image (zelmCstmDrovnExpandImage), without transfer:
/// (iWidth / 2 + (x - dX) * dVal, iHeight / 2 + (y - dY) * dVal), integer halves.
/// @param tExpPrm [in]  expansion; all fields
/// @param tIn     [in]  source point
/// @param tOut    [out] magnified point
/// @return ZELM_OK; ZELM_ERR_PARAM for a NULL pointer, a negative size or dVal not >= 1
ZELM_API int32_t zelmCstmDrovnChangeOrg2DtoExp2D(const ZelmCstmExpPrm* tExpPrm, const Point2d* tIn, Point2d* tOut);

/// Maps a raw pixel into the expanded image of magnification 1.
/// @param tHandle [in]  calibrated pair
/// @param iCamera [in]  'L' or 'R'
/// @param tHomPrm [in]  destination
/// @param tIn     [in]  raw pixel of the source image
/// @param tOut    [out] pixel of that image
/// @return ZELM_OK; ZELM_ERR_PARAM for a NULL pointer or another camera; ZELM_ERR_DEGENERATE when the homography cannot
///         be formed; ZELM_ERR_UNDISTORT when the pixel's distortion cannot be removed
ZELM_API int32_t zelmCstmDrovnChangeOrg2DtoHom2D(const Zelm2ViewCalib* tHandle, int32_t iCamera,
                                                 const ZelmCstmExpPrm* tHomPrm, const Point2d* tIn, Point2d* tOut);

/// Maps a raw pixel into the expanded image.
/// @param tHandle [in]  calibrated pair
/// @param iCamera [in]  'L' or 'R'
/// @param tHomPrm [in]  destination
/// @param tExpPrm [in]  expansion; dVal is used, and not tested
/// @param tIn [in]  raw pixel of the source image
/// @param tOut    [out] pixel of the expanded image
/// @return as zelmCstmDrovnChangeOrg2DtoHom2D
ZELM_API int32_t zelmCstmDrovnChangeOrg2DtoHom2DExp(const Zelm2ViewCalib* tHandle, int32_t iCamera,
                                                    const ZelmCstmExpPrm* tHomPrm, const ZelmCstmExpPrm* tExpPrm,
                                                    const Point2d* tIn, Point2d* tOut);

/// Maps a pixel of the expanded image back to the raw image.
/// @param tHandle [in]  calibrated pair
/// @param iCamera [in]  'L' or 'R'
/// @param tIn     [in]  pixel of the expanded image
/// @param tHomPrm [in]  destination
/// @param tExpPrm [in]  expansion; size >= 0 and dVal >= 1, of which dVal is used
/// @param tOut    [out] raw pixel of the source image
/// @return ZELM_OK; ZELM_ERR_PARAM for a NULL pointer, a bad expansion or another camera; ZELM_ERR_DEGENERATE when the
///         homography cannot be formed
ZELM_API int32_t zelmCstmDrovnInvHomImgPointExp(const Zelm2ViewCalib* tHandle, int32_t iCamera, const Point2d* tIn,
                                                const ZelmCstmExpPrm* tHomPrm, const ZelmCstmExpPrm* tExpPrm,
                                                Point2d* tOut);

/// Carries a line of the undistorted source image into the expanded image and clips it to that image inset by one pixel
/// on every side, so that sampling on it keeps its neighbours.
/// @param tHandle [in]  calibrated pair
/// @param iCamera [in]  'L' or 'R'
/// @param tHomPrm [in]  destination; its size bounds the segment
/// @param tExpPrm [in]  expansion; size >= 0 and dVal >= 1, of which dVal is used
/// @param tLine   [in]  line, any scale
/// @param tOut    [out] line (a^2 + b^2 = 1) and segment in the expanded image. The end points are 0 when the line
///                      misses the inset image, and equal when it touches it in one point
/// @return ZELM_OK, also when the line misses; ZELM_ERR_PARAM for a NULL pointer, a bad expansion or another camera;
///         ZELM_ERR_DEGENERATE when the homography cannot be formed
ZELM_API int32_t zelmCstmDrovnChangeHomEpiLineExp(const Zelm2ViewCalib* tHandle, int32_t iCamera,
                                                  const ZelmCstmExpPrm* tHomPrm, const ZelmCstmExpPrm* tExpPrm,
                                                  const Line2d* tLine, Zelm2ViewEpiLine* tOut);

/// Renders the expanded image of a raw gray image in one pass: every pixel is carried into the undistorted source,
/// distorted with the camera model and sampled bilinearly (perspectiveTransAndDistortImage_8uC1); 0 where there is no
/// source.
/// @param tHandle [in]  calibrated pair
/// @param iCamera [in]  camera that took the image, 'L' or 'R'; W x H is its image size
/// @param ucSrc   [in]  raw image, H rows of W bytes; not tested
/// @param tHomPrm [in]  destination
/// @param tExpPrm [in]  expansion; size >= 0 and dVal >= 1, of which dVal is used
/// @param ucDst   [out] expanded image, iHeight rows of iWidth bytes of the destination record; not tested, must not
///                      overlap the source
/// @return ZELM_OK; ZELM_ERR_PARAM for a NULL record or handle, a bad expansion or another camera; ZELM_ERR_DEGENERATE
///         when the homography cannot be formed
ZELM_API int32_t zelmCstmDrovnMakeHomImageExp(const Zelm2ViewCalib* tHandle, int32_t iCamera,
                                              const unsigned char* ucSrc, const ZelmCstmExpPrm* tHomPrm,
                                              const ZelmCstmExpPrm* tExpPrm, unsigned char* ucDst);

/// As zelmCstmDrovnMakeHomImageExp for Planar8 buffers.
/// @param tHandle [in]  calibrated pair
/// @param iCamera [in]  'L' or 'R'
/// @param tSrc [in]  raw image of the camera's size
/// @param tHomPrm [in]  destination
/// @param tExpPrm [in]  expansion; size >= 0 and dVal >= 1, of which dVal is used
/// @param tDst [out] expanded image of the destination record's size; its data is written
/// @return as zelmCstmDrovnMakeHomImageExp; then ZELM_ERR_PARAM when a buffer is NULL, has no data, a row longer than
///         2^31 - 1 bytes or another size
ZELM_API int32_t zelmCstmDrovnMakeHomImageExp_vImagePlanar8(const Zelm2ViewCalib* tHandle, int32_t iCamera,
                                                            const vImage_Buffer* tSrc, const ZelmCstmExpPrm* tHomPrm,
                                                            const ZelmCstmExpPrm* tExpPrm, const vImage_Buffer* tDst);

/// As zelmCstmDrovnMakeHomImageExp for ARGB8888 buffers; all four bytes of a pixel are treated alike.
/// @param tHandle [in]  calibrated pair
/// @param iCamera [in]  'L' or 'R'
/// @param tSrc [in]  raw image of the camera's size
/// @param tHomPrm [in]  destination
/// @param tExpPrm [in]  expansion; size >= 0 and dVal >= 1, of which dVal is used
/// @param tDst [out] expanded image of the destination record's size; its data is written
/// @return as zelmCstmDrovnMakeHomImageExp_vImagePlanar8
ZELM_API int32_t zelmCstmDrovnMakeHomImageExp_vImageARGB8888(const Zelm2ViewCalib* tHandle, int32_t iCamera,
                                                             const vImage_Buffer* tSrc, const ZelmCstmExpPrm* tHomPrm,
                                                             const ZelmCstmExpPrm* tExpPrm, const vImage_Buffer* tDst);

/// Computes the source position of every pixel of the expanded image once, for zelmCstmDrovnRemapImage on every frame.
/// @param tHandle [in]  calibrated pair
/// @param iCamera [in]  'L' or 'R'
/// @param tHomPrm [in]  destination; its size fixes the centre, not the extent of the maps
/// @param tExpPrm [in]  expansion; size >= 0 and dVal >= 1, of which dVal is used
/// @param tMap    [in,out] size, planes and strides are read; the planes' contents and the box are written
/// @return as zelmCstmDrovnMakeHomImageExp; then ZELM_ERR_PARAM when the map or one of its planes is NULL or its size
///         negative
ZELM_API int32_t zelmCstmDrovnMakeHomImageMap(const Zelm2ViewCalib* tHandle, int32_t iCamera,
                                              const ZelmCstmExpPrm* tHomPrm, const ZelmCstmExpPrm* tExpPrm,
                                              ZelmCstmHomMap* tMap);

/// Applies maps to a raw gray image. Pixels of the destination outside the map's box are left as they were: clear the
/// destination first.
/// @param tMap [in]  maps and box. An empty box, or maps of no size, write nothing
/// @param ucSrc [in]  source, iSrcHeight rows of iSrcWidth bytes; the size of the camera's image
/// @param iSrcWidth [in]  width of the source
/// @param iSrcHeight [in]  height of the source
/// @param ucDst [out] destination, iDstHeight rows of iDstWidth bytes; must not overlap the source
/// @param iDstWidth [in]  width of the destination
/// @param iDstHeight [in]  height of the destination
/// @return ZELM_OK; ZELM_ERR_PARAM when a pointer is NULL, a size is not positive, or the box is not empty and reaches
///         outside the maps or the destination
ZELM_API int32_t zelmCstmDrovnRemapImage(const ZelmCstmHomMap* tMap, const unsigned char* ucSrc, int32_t iSrcWidth,
                                         int32_t iSrcHeight, unsigned char* ucDst, int32_t iDstWidth,
                                         int32_t iDstHeight);

/// As zelmCstmDrovnRemapImage for Planar8 buffers.
/// @param tMap [in]  maps and box
/// @param tSrc [in]  source, of the size of the camera's image
/// @param tDst [out] destination; its data is written
/// @return as zelmCstmDrovnRemapImage; also ZELM_ERR_PARAM when a buffer has no data or a row or size beyond 2^31 - 1
ZELM_API int32_t zelmCstmDrovnRemapImage_vImagePlanar8(const ZelmCstmHomMap* tMap, const vImage_Buffer* tSrc,
                                                       const vImage_Buffer* tDst);

/// As zelmCstmDrovnRemapImage for ARGB8888 buffers; all four bytes of a pixel are treated alike.
/// @param tMap [in]  maps and box
/// @param tSrc [in]  source, of the size of the camera's image
/// @param tDst [out] destination; its data is written
/// @return as zelmCstmDrovnRemapImage_vImagePlanar8
ZELM_API int32_t zelmCstmDrovnRemapImage_vImageARGB8888(const ZelmCstmHomMap* tMap, const vImage_Buffer* tSrc,
                                                        const vImage_Buffer* tDst);

/// Magnifies a raw gray image about a point, without transfer: the image counterpart of
/// zelmCstmDrovnChangeOrg2DtoExp2D. Pixel (c, r) is the bilinear gray level (zelmMiscBilinearGrayLevel) of the source
/// at (dX - (iWidth / 2) / dVal + c / dVal, dY - (iHeight / 2) / dVal + r / dVal), integer halves, rounded half up; 0
/// outside the source.
/// @param tHandle [in]  calibrated pair; only the camera's image size is read
/// @param iCamera [in]  'L' or 'R'; W x H is its image size
/// @param ucSrc   [in]  raw image, H rows of W bytes
/// @param tExpPrm [in]  expansion; all fields
/// @param ucDst   [out] iHeight rows of iWidth bytes; must not overlap the source
/// @return ZELM_OK; ZELM_ERR_PARAM for a NULL pointer, a negative size, dVal not >= 1 or another camera
ZELM_API int32_t zelmCstmDrovnExpandImage(const Zelm2ViewCalib* tHandle, int32_t iCamera, const unsigned char* ucSrc,
                                          const ZelmCstmExpPrm* tExpPrm, unsigned char* ucDst);

/// As zelmCstmDrovnExpandImage for Planar8 buffers.
/// @param tHandle [in]  calibrated pair
/// @param iCamera [in]  'L' or 'R'
/// @param tSrc [in]  raw image of the camera's size
/// @param tExpPrm [in]  expansion; all fields
/// @param tDst [out] image of the expansion's size; its data is written
/// @return as zelmCstmDrovnExpandImage; also ZELM_ERR_PARAM when a buffer has no data, a row longer than 2^31 - 1 bytes
///         or another size
ZELM_API int32_t zelmCstmDrovnExpandImage_vImagePlanar8(const Zelm2ViewCalib* tHandle, int32_t iCamera,
                                                        const vImage_Buffer* tSrc, const ZelmCstmExpPrm* tExpPrm,
                                                        const vImage_Buffer* tDst);

/// As zelmCstmDrovnExpandImage for ARGB8888 buffers; alpha becomes 255 everywhere. A position beyond the centre of the
/// last column or row gives R = G = B = 0.
/// @param tHandle [in]  calibrated pair
/// @param iCamera [in]  'L' or 'R'
/// @param tSrc [in]  raw image of the camera's size
/// @param tExpPrm [in]  expansion; all fields
/// @param tDst [out] image of the expansion's size; its data is written
/// @return as zelmCstmDrovnExpandImage_vImagePlanar8
ZELM_API int32_t zelmCstmDrovnExpandImage_vImageARGB8888(const Zelm2ViewCalib* tHandle, int32_t iCamera,
                                                         const vImage_Buffer* tSrc, const ZelmCstmExpPrm* tExpPrm,
                                                         const vImage_Buffer* tDst);

/// The pixels of a line inside a rectangle, in order along the line: the lattice on which the search walks.
/// @param tRect    [in]  rectangle; x, y >= 0, width, height > 0
/// @param tLine    [in]  line, any scale
/// @param iCount   [out] number of pixels
/// @param taPoints [out] the pixels; room for max(width, height) of them always suffices
/// @return ZELM_OK; ZELM_ERR_PARAM for a NULL pointer, a bad rectangle or a line without direction; ZELM_ERR_DEGENERATE
///         when the line does not cross the rectangle in two points (also when it runs along a side), or crosses it
///         beyond 2^30
ZELM_API int32_t zelmCstmDrovnGetPixelOnEpiLine(const ZelmRect* tRect, const Line2d* tLine, int32_t* iCount,
                                                Point2i* taPoints);

ZELM_END_DECLS

#endif
