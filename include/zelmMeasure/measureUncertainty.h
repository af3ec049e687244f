/// @file
/// How well points and lengths are known: by the noise of their pixels, and by the covariance of the calibration.
#ifndef ZELM_MEASURE_API_UNCERTAINTY_H
#define ZELM_MEASURE_API_UNCERTAINTY_H

#include "zelmMeasure/measureBase.h"

ZELM_BEGIN_DECLS

/// Places of the parameters of a rig in its covariance. A pixel is (fx x + skew y + cx, fy y + cy) of the distorted
/// normalised coordinates (x, y). The three of a rotation are a small rotation vector d in the camera's frame: the true
/// rotation is exp(d) R.
enum ZelmMeasureParameter {
    ZELM_MEASURE_LEFT_FX = 0,                ///< pixels; of a parallel camera pixels a plate unit
    ZELM_MEASURE_LEFT_SKEW = 1,              ///< as fx
    ZELM_MEASURE_LEFT_FY = 2,                ///< as fx
    ZELM_MEASURE_LEFT_CX = 3,                ///< pixels
    ZELM_MEASURE_LEFT_CY = 4,                ///< pixels
    ZELM_MEASURE_LEFT_K1 = 5,                ///< none; of a parallel camera 1 / plate unit^2
    ZELM_MEASURE_LEFT_K2 = 6,                ///< none; of a parallel camera 1 / plate unit^4
    ZELM_MEASURE_RIGHT_FX = 7,               ///< and six more in the same order
    ZELM_MEASURE_RELATIVE_ROTATION = 14,     ///< X_right = R X_left + t: three of R, radians
    ZELM_MEASURE_RELATIVE_TRANSLATION = 17,  ///< three of t, plate units
    ZELM_MEASURE_FRAME_ROTATION = 20,        ///< X_left = R X_plate + t in view 0: three of R, radians
    ZELM_MEASURE_FRAME_TRANSLATION = 23,     ///< three of t, plate units
    ZELM_MEASURE_PARAMETERS = 26             ///< their number
};

/// How well the parameters of a rig are known.
typedef struct ZelmMeasureCovariance {
    int32_t size;        ///< of this record, bytes
    int32_t reserved;    ///< 0
    double noise;        ///< standard deviation of a coordinate of the calibration's dots, pixels
    double freedom;      ///< degrees of freedom that the noise was estimated from, at least 1; 0: it was known
    double matrix[676];  ///< 26 x 26, row-major, order of ZelmMeasureParameter; rows of zeros: parameters that are held
} ZelmMeasureCovariance;

/// How well the pixels of points are known.
typedef struct ZelmMeasurePixelNoise {
    int32_t size;          ///< of this record, bytes
    int32_t reserved;      ///< 0
    double sigma;          ///< standard deviation of each coordinate, pixels; 0: that of the calibration's dots
    double freedom;        ///< degrees of freedom that it was estimated from, at least 1; 0: it is known. Of `sigma` 0
                           ///< not used
    const double* left;    ///< 3 a pair: covariance of the left pixel xx, xy, yy, pixels^2; or NULL: `sigma` holds
    const double* right;   ///< of the right pixel likewise
    const double* points;  ///< 6 a pair: covariance of the point by its images, where they tell it, as those of round
                           ///< targets do: xx, xy, xz, yy, yz, zz in the frame of the plate of view 0, plate units^2.
                           ///< Where the first number is NaN, and where this is NULL, the pixels tell it
} ZelmMeasurePixelNoise;

/// Covariances of points, in arrays of the caller's with room for all pairs. Six numbers of a covariance are xx, xy,
/// xz, yy, yz, zz. The parts are independent: their sum is the point's covariance.
typedef struct ZelmMeasurePointCovariances {
    int32_t size;         ///< of this record, bytes
    int32_t reserved;     ///< 0
    int32_t* statuses;    ///< ZelmMeasurePointStatus, one a pair; or NULL
    double* positions;    ///< 3 a pair: in the frame of the plate of view 0, plate units; or NULL
    double* image;        ///< 6 a pair: by the noise of the pixels, plate units^2; or NULL
    double* calibration;  ///< 6 a pair: by the calibration, plate units^2; or NULL
    double* depths;       ///< 2 a pair: standard deviations of the depth along the left camera's axis, by the noise of
                          ///< the pixels and by the calibration, plate units; or NULL
} ZelmMeasurePointCovariances;

/// What became of a length.
enum ZelmMeasureLengthStatus {
    ZELM_MEASURE_LENGTH_OK = 0,
    ZELM_MEASURE_LENGTH_NO_POINT = 1,  ///< the pixels of an end give no point in front of both cameras: no numbers
    ZELM_MEASURE_LENGTH_SHORT = 2,     ///< less than three times the noise of its ends, or 0: it has no direction along
                                       ///< which errors could be told. The length alone is given
};

/// Lengths, in arrays of the caller's with room for all of them.
typedef struct ZelmMeasureLengths {
    int32_t size;         ///< of this record, bytes
    int32_t reserved;     ///< 0
    int32_t* statuses;    ///< ZelmMeasureLengthStatus, one a length; or NULL
    double* lengths;      ///< plate units; or NULL
    double* image;        ///< standard deviations by the noise of the pixels, plate units; or NULL
    double* calibration;  ///< standard deviations by the calibration, plate units; or NULL
    double* deviations;   ///< standard deviations by both together, plate units; or NULL
    double* expanded;     ///< half widths of the intervals that hold the true length at 95 %, plate units; or NULL
} ZelmMeasureLengths;

/// The covariance of a rig's parameters.
/// @param rig [in] the rig
/// @param covariance [out] the covariance
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_MEASURE_ERR_DATA for a rig that has none
ZELM_API int32_t zelmMeasureRigCovariance(ZelmMeasureRig* rig, ZelmMeasureCovariance* covariance);

/// Gives a rig the covariance of its parameters, once it proves sound: finite, symmetric, and positive semi-definite to
/// rounding, which is 1e-9 of the standard deviations.
/// @param rig [in,out] the rig
/// @param covariance [in] copied; NULL takes the rig's away
/// @return ZELM_OK; ZELM_ERR_PARAM: a record whose size is not that of the whole; ZELM_MEASURE_ERR_DATA: the covariance
///     is refused, and the rig keeps what it had
ZELM_API int32_t zelmMeasureRigSetCovariance(ZelmMeasureRig* rig, const ZelmMeasureCovariance* covariance);

/// The covariances of the points of pixel pairs, to first order at the point that zelmMeasureTriangulate() gives: that
/// is the least-squares point of the undistorted pixels, all weighted alike, so that the implicit function theorem
/// tells how pixels and parameters move it (Haralick, 1996); the weights stay alike where covariances of pixels are
/// given. Points whose rays are so nearly parallel that the equations are singular to rounding are
/// ZELM_MEASURE_POINT_PARALLEL. What a pair without numbers would have written is not. About a microsecond a pair
/// beside triangulation.
/// @param rig [in] the rig; with a covariance unless `calibration` and `depths` are NULL
/// @param count [in] of pairs
/// @param left [in] raw pixels, 2 a pair
/// @param right [in] raw pixels, 2 a pair
/// @param noise [in] of the pixels; NULL: that of the calibration's dots
/// @param covariances [in] the arrays that are written
/// @return ZELM_OK; ZELM_ERR_PARAM: also noise that is negative or not finite, and covariances that are not positive
///     semi-definite; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA: the rig has no covariance, or two parallel
///     cameras
ZELM_API int32_t zelmMeasurePointCovariance(ZelmMeasureRig* rig, int64_t count, const double* left, const double* right,
                                            const ZelmMeasurePixelNoise* noise,
                                            const ZelmMeasurePointCovariances* covariances);

/// Distances of points with their uncertainty. The errors of pixels are independent from point to point; those of the
/// calibration move all points together, and what both ends share cancels. The expanded uncertainty is k times the
/// standard deviation with k = 1.96, or Student's t where variances were estimated: of the freedom of the calibration
/// when it gives the noise too, else of the effective degrees of freedom (Welch and Satterthwaite, 1946; JCGM 100:2008,
/// G.4). All to first order: it is no better than its variances where a length is not large against its uncertainty.
/// @param rig [in] the rig; with a covariance unless `calibration`, `deviations` and `expanded` are NULL
/// @param count [in] of pixel pairs, a point each
/// @param left [in] raw pixels, 2 a pair
/// @param right [in] raw pixels, 2 a pair
/// @param noise [in] of the pixels; NULL: that of the calibration's dots
/// @param lengthCount [in] of lengths
/// @param ends [in] 2 a length: the numbers of its points, from 0
/// @param lengths [in] the arrays that are written
/// @return as zelmMeasurePointCovariance(); ZELM_ERR_PARAM also for an end that is no point's number
ZELM_API int32_t zelmMeasureLengths(ZelmMeasureRig* rig, int64_t count, const double* left, const double* right,
                                    const ZelmMeasurePixelNoise* noise, int64_t lengthCount, const int64_t* ends,
                                    const ZelmMeasureLengths* lengths);

/// The size of what zelmMeasureCovarianceSave() writes.
/// @param rig [in] the rig
/// @param size [out] bytes
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_MEASURE_ERR_DATA for a rig without a covariance
ZELM_API int32_t zelmMeasureCovarianceSize(ZelmMeasureRig* rig, int64_t* size);

/// Writes a rig's covariance as bytes to be kept beside its calibration block, which they are tied to by a checksum of
/// it: little-endian `ZCOV`, the version 1, the size and the number of parameters (int32), the checksum of the
/// calibration block, noise and freedom, the lower triangle of the matrix row by row, and a checksum of all of it. Both
/// are CRC-64 of ECMA-182 (1992).
/// @param rig [in] the rig
/// @param capacity [in] room for bytes; at least the size
/// @param bytes [out] as many as zelmMeasureCovarianceSize() tells
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA for a rig without a covariance
ZELM_API int32_t zelmMeasureCovarianceSave(ZelmMeasureRig* rig, int64_t capacity, void* bytes);

/// Gives a rig the covariance that was saved from it. Bytes that are cut, foreign, changed or of another calibration
/// are refused, and what zelmMeasureRigSetCovariance() refuses.
/// @param rig [in,out] the rig; keeps what it had when the bytes are refused
/// @param bytes [in] the bytes
/// @param size [in] their number
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA: the bytes are refused
ZELM_API int32_t zelmMeasureCovarianceLoad(ZelmMeasureRig* rig, const void* bytes, int64_t size);

ZELM_END_DECLS

#endif
