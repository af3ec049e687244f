/// @file
/// Base of the public interface: the export macro, the status codes and the records that several families share.
///
/// Every function has C linkage. Functions that can fail return a signed 32-bit status; success is a result >= 0,
/// because a few iterative functions return a positive count instead of ZELM_OK.
#ifndef ZELM_BASE_H
#define ZELM_BASE_H

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define ZELM_API __attribute__((visibility("default")))
#else
#define ZELM_API
#endif

#ifdef __cplusplus
#define ZELM_BEGIN_DECLS extern "C" {
#define ZELM_END_DECLS }
#else
#define ZELM_BEGIN_DECLS
#define ZELM_END_DECLS
#endif

/// Status codes. The values are part of the binary interface and never change. What a code means for the outputs is
/// said with each function; unless it says otherwise, a failing function has written nothing.
enum {
    /// Success.
    ZELM_OK = 0,
    /// A working allocation failed. Nothing is leaked; the call may be repeated when memory is available.
    /// From every family that allocates: all but Math, Clp2d and Clp3d. The edge search returns it also where the
    /// window of its derivative filter would leave the profile.
    ZELM_ERR_MEMORY = -1,
    /// A required pointer is NULL, a size is zero or negative, two buffers disagree in size, or an option is out of
    /// range. From every function that takes images, objects or lists; the primitive families Mat, Math, Clp2d and
    /// Clp3d do not look at pointers and do not return it.
    ZELM_ERR_PARAM = -2,
    /// Degenerate geometry or data: points that coincide, a direction without length, parallel lines, no
    /// intersection; in the matrix products a mismatch of dimensions. Each family states its own threshold (Math 1e-9,
    /// Clp2d and Clp3d 1e-14, Cg 1e-13). The pair and search families return it also where the matrix toolkit
    /// reports ZELM_ERR_SINGULAR or ZELM_ERR_SVD_FAILED.
    ZELM_ERR_DEGENERATE = -100,
    /// LU factorisation found a row of zeros, an entry that is not finite, a zero pivot, or a product of pivots that
    /// is, or underflows to, exactly 0. From zelmMatInvert and zelmMatSolveLU.
    ZELM_ERR_SINGULAR = -110,
    /// The Jacobi eigen decomposition did not converge within 100 sweeps. From zelmMatJacobiEigen.
    ZELM_ERR_EIGEN_NOT_CONVERGED = -111,
    /// The singular value decomposition was asked for a matrix with fewer rows than columns, did not converge within
    /// 30 passes for one singular value, or met entries that are not finite. From zelmMatSVD and zelmMatSolveSVD.
    ZELM_ERR_SVD_FAILED = -112,
    /// A diagonal term of the Cholesky factorisation fell below 1e-11. From zelmMatCholeskyDecomp.
    ZELM_ERR_NOT_POSITIVE_DEFINITE = -113,
    /// Too few usable points for a fit, or the robust iteration rejected them. From the fits.
    ZELM_ERR_FIT_DATA = -130,
    /// No eigenvector of the conic fit describes an ellipse. From the ellipse fits.
    ZELM_ERR_FIT_NOT_ELLIPSE = -131,
    /// No eigenvector of the quadric fit describes an ellipsoid. From the ellipsoid fit.
    ZELM_ERR_FIT_NOT_ELLIPSOID = -132,
    /// The cone fit is degenerate: a determinant below 1e-12, or no apex. From the cone fit.
    ZELM_ERR_FIT_NOT_CONE = -133,
    /// The homography of one calibration view could not be estimated, or a rectifying pair of two cameras
    /// failed. From zelmCalibCameraParam and zelm2ViewCalibCameraParam.
    ZELM_ERR_CALIB_HOMOGRAPHY = -150,
    /// The closed-form estimate of the camera parameters failed: too few views, or views that do not determine the
    /// camera. From zelmCalibCameraParam.
    ZELM_ERR_CALIB_ESTIMATE = -151,
    /// A nonlinear refinement reached its iteration limit (100 for a homography, 200 for a camera), or the homography
    /// estimation could not start. From zelmCalibCalcHomography and zelmCalibCameraParam.
    ZELM_ERR_CALIB_NOT_CONVERGED = -152,
    /// Lens distortion could not be removed from a point: its 2 x 2 system was singular, or Newton's iteration did not
    /// converge within 20 steps. From zelmCalibUnDistortPoint and what builds on it.
    ZELM_ERR_UNDISTORT = -153,
    /// Too few dots were found in an image. From the plate readers.
    ZELM_ERR_PATTERN = -200,
    /// The markers of the plate could not be identified: wrong number, no right angle, or axes of very different
    /// length. From the plate readers.
    ZELM_ERR_PATTERN_MARKERS = -201,
    /// The marker frame or the grid homography is singular or could not be estimated. From the plate readers.
    ZELM_ERR_PATTERN_GRID = -202,
    /// The fundamental matrix of a pair could not be formed. From zelm2ViewCalibCameraParam.
    ZELM_ERR_STEREO_GEOMETRY = -210,
    /// No plate was found in the image. From the plate readers.
    ZELM_ERR_PATTERN_PLATE = -220
};

/// A point in the plane. Image points are in pixels, x to the right, y downwards; integer coordinates are pixel
/// centres.
typedef struct Point2d {
    double x;  ///< to the right
    double y;  ///< downwards
} Point2d;

/// A point with integer coordinates.
typedef struct Point2i {
    int32_t x;  ///< column
    int32_t y;  ///< row
} Point2i;

/// A point in space.
typedef struct Point3d {
    double x;  ///< along the frame's first axis
    double y;  ///< along its second axis
    double z;  ///< along its third axis
} Point3d;

/// The line a*x + b*y + c = 0, produced with a^2 + b^2 = 1. Functions that need the normal form make it themselves.
typedef struct Line2d {
    double a;  ///< normal along x
    double b;  ///< normal along y
    double c;  ///< signed distance of the origin, the normal being a unit vector
} Line2d;

/// A circle.
typedef struct Circle2d {
    double x;  ///< centre
    double y;  ///< centre
    double r;  ///< radius
} Circle2d;

/// An ellipse by its geometry.
typedef struct Ellipse2d {
    double x;      ///< centre
    double y;      ///< centre
    double a;      ///< semi-major axis, a >= b
    double b;      ///< semi-minor axis
    double angle;  ///< direction of the major axis in radians, in [-pi/2, pi/2]
} Ellipse2d;

/// An ellipsoid by its geometry.
typedef struct Ellipsoid3d {
    double x;          ///< centre
    double y;          ///< centre
    double z;          ///< centre
    double a;          ///< largest semi-axis, a >= b >= c
    double b;          ///< middle semi-axis
    double c;          ///< smallest semi-axis
    double azimuth;    ///< of the largest axis, radians in [-pi, pi]
    double elevation;  ///< of the largest axis, radians in [-pi/2, pi/2]
    double roll;       ///< of the smallest axis about the largest, radians in [-pi/2, pi/2]
} Ellipsoid3d;

/// A rectangle by its top-left corner and size in pixels.
typedef struct ZelmRect {
    int32_t x;       ///< leftmost column
    int32_t y;       ///< topmost row
    int32_t width;   ///< columns
    int32_t height;  ///< rows
} ZelmRect;

/// A rectangle by inclusive corners: x2 = x + width - 1, y2 = y + height - 1.
typedef struct ZelmRect2 {
    int32_t x1;  ///< leftmost column
    int32_t y1;  ///< topmost row
    int32_t x2;  ///< rightmost column
    int32_t y2;  ///< bottom row
} ZelmRect2;

/// An 8-bit gray image without padding: pixel (x, y) is pixels[y * width + x]. The caller owns the pixels; the library
/// never frees them.
typedef struct ZelmImage {
    uint8_t* pixels;  ///< width * height bytes
    int32_t width;    ///< pixels in a row, and bytes from one row to the next
    int32_t height;   ///< rows
} ZelmImage;

#ifdef __APPLE__
#include <Accelerate/Accelerate.h>
#else
/// A strided pixel buffer, laid out as the platform's record of the same name. Two layouts occur: Planar8 (one gray
/// byte a pixel) and ARGB8888 (four bytes a pixel in memory order A, R, G, B).
typedef struct vImage_Buffer {
    void* data;       ///< first row
    size_t height;    ///< rows
    size_t width;     ///< pixels in a row
    size_t rowBytes;  ///< bytes from one row to the next
} vImage_Buffer;
#endif

#endif
