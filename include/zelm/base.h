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

/// Status codes. The values are part of the binary interface and never change.
enum {
    ZELM_OK = 0,                            ///< success
    ZELM_ERR_MEMORY = -1,                   ///< a working allocation failed
    ZELM_ERR_PARAM = -2,                    ///< NULL pointer, bad size, sizes that disagree, option out of range
    ZELM_ERR_DEGENERATE = -100,             ///< degenerate geometry or data; dimension mismatch of a matrix product
    ZELM_ERR_SINGULAR = -110,               ///< LU: an all-zero row, a zero pivot or a product of pivots equal to 0
    ZELM_ERR_EIGEN_NOT_CONVERGED = -111,    ///< Jacobi eigen decomposition not converged within 100 sweeps
    ZELM_ERR_SVD_FAILED = -112,             ///< SVD: fewer rows than columns, or 30 passes without convergence
    ZELM_ERR_NOT_POSITIVE_DEFINITE = -113,  ///< Cholesky: a diagonal term below 1e-11
    ZELM_ERR_FIT_DATA = -130,               ///< too few usable points for a fit, or every point rejected
    ZELM_ERR_FIT_NOT_ELLIPSE = -131,        ///< no eigenvector of the conic fit describes an ellipse
    ZELM_ERR_FIT_NOT_ELLIPSOID = -132,      ///< no eigenvector of the quadric fit describes an ellipsoid
    ZELM_ERR_FIT_NOT_CONE = -133,           ///< the cone fit is degenerate
    ZELM_ERR_CALIB_HOMOGRAPHY = -150,       ///< the homography of a calibration view, or a rectifying pair, failed
    ZELM_ERR_CALIB_ESTIMATE = -151,         ///< the closed-form estimate of the camera parameters failed
    ZELM_ERR_CALIB_NOT_CONVERGED = -152,    ///< the nonlinear refinement did not converge or could not start
    ZELM_ERR_UNDISTORT = -153,              ///< removing lens distortion from a point failed
    ZELM_ERR_PATTERN = -200,                ///< fewer pattern dots than required
    ZELM_ERR_PATTERN_MARKERS = -201,        ///< the marker dots of the pattern could not be identified
    ZELM_ERR_PATTERN_GRID = -202,           ///< the marker frame or the grid homography is singular or failed
    ZELM_ERR_STEREO_GEOMETRY = -210,        ///< the fundamental matrix could not be formed
    ZELM_ERR_PATTERN_PLATE = -220           ///< no pattern plate was found in the image
};

/// A point in the plane. Image points are in pixels, x to the right, y downwards; integer coordinates are pixel
/// centres.
typedef struct Point2d {
    double x;
    double y;
} Point2d;

/// A point in space.
typedef struct Point3d {
    double x;
    double y;
    double z;
} Point3d;

/// The line a*x + b*y + c = 0, produced with a^2 + b^2 = 1.
typedef struct Line2d {
    double a;
    double b;
    double c;
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

/// A rectangle by its top-left corner and size in pixels.
typedef struct ZelmRect {
    int32_t x;
    int32_t y;
    int32_t width;
    int32_t height;
} ZelmRect;

/// A rectangle by inclusive corners: x2 = x + width - 1, y2 = y + height - 1.
typedef struct ZelmRect2 {
    int32_t x1;
    int32_t y1;
    int32_t x2;
    int32_t y2;
} ZelmRect2;

/// An 8-bit gray image without padding: pixel (x, y) is pixels[y * width + x]. The caller owns the pixels.
typedef struct ZelmImage {
    uint8_t* pixels;
    int32_t width;
    int32_t height;
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
