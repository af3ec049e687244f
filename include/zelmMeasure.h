/// @file
/// What a measuring station does with a pair of cameras: dots of plates and targets, how well a calibration fits, 3-D
/// points with figures that tell how good they are, and correspondences over whole images. The library
/// `libzelmMeasure`, a plain C interface above zelmLib.h; valid C99 and C++17.
///
/// Conventions of all functions
/// - A status >= 0 is success. ZELM_ERR_PARAM: an argument cannot be meant; ZELM_ERR_MEMORY: memory ran out;
///   ZELM_MEASURE_ERR_DATA: the data do not allow it; ZELM_MEASURE_ERR_CANCELLED: the caller's progress function ended
///   it. Outputs are written on success alone, and untouched otherwise.
/// - A rig says what was wrong with the last call that failed: zelmMeasureRigError().
/// - Many points are one call: n points of an image are an array of 2 n doubles x0, y0, x1, y1, ...; n points of space
///   are 3 n doubles. What becomes of one point is told in an array of statuses, one of the enumerations below each.
/// - Records begin with `size`, in bytes: set it to sizeof the record as your compiler knows it. Newer libraries take
///   older, shorter records; fields that a record does not have are taken as 0, or are not written.
/// - Arrays of outputs may be NULL where the caller does not need them.
/// - Images are gray, a byte a pixel; nothing writes into them. Pixel centres are whole numbers, x to the right, y
///   down.
/// - Lengths are in the units of the plate, angles in radians, unless a name says otherwise.
/// - Different handles may be used by different threads at a time; one handle by one thread at a time.
#ifndef ZELM_MEASURE_H
#define ZELM_MEASURE_H

#include <stddef.h>
#include <stdint.h>

#include "zelmLib.h"

ZELM_BEGIN_DECLS

/// The data do not allow what was asked.
#define ZELM_MEASURE_ERR_DATA (-1000)
/// The caller's progress function ended the work.
#define ZELM_MEASURE_ERR_CANCELLED (-1001)

/// A calibrated pair of cameras, ready to measure with.
typedef struct ZelmMeasureRig ZelmMeasureRig;

/// A gray image in the caller's memory.
typedef struct ZelmMeasureImage {
    const uint8_t* pixels;  ///< of the pixel (0, 0)
    int32_t width;          ///< pixels
    int32_t height;         ///< pixels
    int64_t stride;         ///< bytes from a row to the next; at least the width
} ZelmMeasureImage;

/// @name Rigs
/// @{

/// One camera of a rig.
typedef struct ZelmMeasureCamera {
    int32_t size;                     ///< of this record, bytes
    int32_t model;                    ///< 0 perspective, 1 perspective with a tilted sensor, 2 parallel
    int32_t width;                    ///< of its images, pixels
    int32_t height;                   ///< of its images, pixels
    ZelmCameraIntrinsics intrinsics;  ///< camera matrix and lens distortion
} ZelmMeasureCamera;

/// How the right camera stands to the left one in view 0: X_right = R X_left + t.
typedef struct ZelmMeasureRelativePose {
    int32_t size;        ///< of this record, bytes
    int32_t reserved;    ///< 0
    double R[9];         ///< row-major
    double t[3];         ///< plate units
    double baseline;     ///< length of t, plate units
    double convergence;  ///< angle between the optical axes, radians
} ZelmMeasureRelativePose;

/// Opens a rig from a calibration block, the bytes that zelm2ViewSaveCalibData() gives, once they prove sound: the size
/// fits the number of views, models and image sizes can be meant, all numbers are finite, focal lengths are positive.
/// @param block [in] the bytes; copied
/// @param size [in] of the block, bytes
/// @param rig [out] the handle, to be closed by zelmMeasureRigClose(); must be NULL before. Also when the block is
///     refused: such a handle holds the error text alone, and every other function refuses it
/// @return ZELM_OK; ZELM_ERR_PARAM: NULL or a handle that is not NULL; ZELM_MEASURE_ERR_DATA: the block is refused;
///     ZELM_ERR_MEMORY
ZELM_API int32_t zelmMeasureRigOpen(const void* block, int64_t size, ZelmMeasureRig** rig);

/// Opens a rig from a calibrated object of zelmLib.h, with the dots that it was calibrated from.
/// @param calib [in] calibrated by zelm2ViewCalibCameraParam(), or loaded; copied
/// @param rig [out] as of zelmMeasureRigOpen()
/// @return as zelmMeasureRigOpen()
ZELM_API int32_t zelmMeasureRigOfCalib(const Zelm2ViewCalib* calib, ZelmMeasureRig** rig);

/// Ends a rig and sets the caller's handle to NULL; nothing for NULL.
/// @param rig [in,out] the caller's handle
ZELM_API void zelmMeasureRigClose(ZelmMeasureRig** rig);

/// What was wrong with the last call on the rig that failed, in English, without a line break; empty when none did.
/// @param rig [in] a rig, also a refused one
/// @return the text; it belongs to the rig and holds until the next call
ZELM_API const char* zelmMeasureRigError(const ZelmMeasureRig* rig);

/// The rig as an object of zelmLib.h, for the functions that only read its block.
/// @param rig [in] the rig
/// @return the object, which belongs to the rig and holds no dots; NULL for a refused rig
ZELM_API const Zelm2ViewCalib* zelmMeasureRigCalib(const ZelmMeasureRig* rig);

/// The number of views that the rig was calibrated from.
/// @param rig [in] the rig
/// @param views [out] their number
/// @return ZELM_OK, ZELM_ERR_PARAM
ZELM_API int32_t zelmMeasureRigViews(const ZelmMeasureRig* rig, int32_t* views);

/// A camera of the rig.
/// @param rig [in] the rig
/// @param side [in] 'L' or 'R'
/// @param camera [out] model, image size and intrinsic parameters
/// @return ZELM_OK, ZELM_ERR_PARAM
ZELM_API int32_t zelmMeasureRigCamera(const ZelmMeasureRig* rig, int32_t side, ZelmMeasureCamera* camera);

/// The pose of a view: X_camera = R X_plate + t. A view that a parallel camera was not calibrated from has zeros.
/// @param rig [in] the rig
/// @param side [in] 'L' or 'R'
/// @param view [in] from 0
/// @param pose [out] the pose
/// @return ZELM_OK, ZELM_ERR_PARAM
ZELM_API int32_t zelmMeasureRigPose(const ZelmMeasureRig* rig, int32_t side, int32_t view, ZelmCameraExtrinsics* pose);

/// The fundamental matrix: x_left' F x_right = 0 for undistorted pixels.
/// @param rig [in] the rig
/// @param F [out] 3 x 3, row-major
/// @return ZELM_OK, ZELM_ERR_PARAM
ZELM_API int32_t zelmMeasureRigFundamental(const ZelmMeasureRig* rig, double* F);

/// How the right camera stands to the left one.
/// @param rig [in] the rig
/// @param pose [out] rotation, translation, baseline and convergence angle
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_MEASURE_ERR_DATA for a rig with a parallel camera, which has no centre
ZELM_API int32_t zelmMeasureRigRelativePose(ZelmMeasureRig* rig, ZelmMeasureRelativePose* pose);

/// How far the plate of view 0 is turned against a parallel camera of square pixels. Such a camera shortens what is
/// tilted, so that a circle's axes are as one to the cosine; a calibration from a tilted plate has wrong scales.
/// @param rig [in] the rig
/// @param side [in] 'L' or 'R'
/// @param tilt [out] radians, 0 to pi / 2
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_MEASURE_ERR_DATA for a camera that is not parallel
ZELM_API int32_t zelmMeasureRigTilt(ZelmMeasureRig* rig, int32_t side, double* tilt);

/// The undistorted pixels of both cameras that a rectified pair is best centred on, so that the field of view that the
/// two share stays in sight: of the point that both cameras look at; where that is not seen by both, of the origin of
/// the plate of view 0; else the image centres.
/// @param rig [in] the rig
/// @param left [out] x, y
/// @param right [out] x, y
/// @param origin [out] which of the three it is: 0, 1 or 2; or NULL
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
ZELM_API int32_t zelmMeasureRigCentre(const ZelmMeasureRig* rig, double* left, double* right, int32_t* origin);
/// @}

/// @name How well a calibration fits
/// @{

/// Figures of distances.
typedef struct ZelmMeasureFigures {
    int32_t size;       ///< of this record, bytes
    int32_t reserved;   ///< 0
    int64_t count;      ///< of the distances
    double mean;        ///< of the distances
    double rms;         ///< root of the mean square
    double max;         ///< the largest
    double median;      ///< half of them are less
    double quantile95;  ///< 95 % are less
} ZelmMeasureFigures;

/// Figures of any distances; all 0 for none.
/// @param count [in] of the distances
/// @param distances [in] not negative; NaN counts as infinitely far
/// @param figures [out] their figures
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
/// Cost O(count log count).
ZELM_API int32_t zelmMeasureFigures(int64_t count, const double* distances, ZelmMeasureFigures* figures);

/// Dots of an image, with the places that they have on the plate. Arrays of the caller's, with room for `capacity`
/// dots.
typedef struct ZelmMeasureDots {
    int32_t size;      ///< of this record, bytes
    int32_t reserved;  ///< 0
    int64_t capacity;  ///< dots that every array has room for
    int32_t* grid;     ///< 2 a dot: column and row, counted from the corner marker; or NULL
    double* plane;     ///< 2 a dot: place on the plate, plate units; or NULL
    double* pixels;    ///< 2 a dot: centre in the image, as taken; or NULL
    double* errors;    ///< 2 a dot: centre less the projection of the place; or NULL. Of calibrated dots alone.
} ZelmMeasureDots;

/// The dots of one view from which a rig was calibrated, and how far they are from their projections.
/// @param rig [in] of zelmMeasureRigOfCalib()
/// @param pattern [in] the plate
/// @param side [in] 'L' or 'R'
/// @param view [in] from 0
/// @param dots [in] the arrays that are written; NULL: dots are only counted
/// @param placed [out] their number; dots beyond the capacity are not written
/// @param found [out] the number of dots read, of which all but damaged data have a place on the plate; or NULL
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
ZELM_API int32_t zelmMeasureRigDots(ZelmMeasureRig* rig, const Zelm2ViewPatternDesc* pattern, int32_t side,
                                    int32_t view, const ZelmMeasureDots* dots, int64_t* placed, int64_t* found);

/// Distances of the dot pairs of one view from each other's epipolar lines, undistorted pixels: two a dot that both
/// images show, in the left and in the right image in turn.
/// @param rig [in] of zelmMeasureRigOfCalib()
/// @param pattern [in] the plate
/// @param view [in] from 0
/// @param capacity [in] distances that there is room for
/// @param distances [out] pixels; NULL: they are only counted
/// @param count [out] their number; those beyond the capacity are not written
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
ZELM_API int32_t zelmMeasureRigEpipolar(ZelmMeasureRig* rig, const Zelm2ViewPatternDesc* pattern, int32_t view,
                                        int64_t capacity, double* distances, int64_t* count);
/// @}

/// @name Dots in images
/// @{

/// Reads the dots of a plate and puts them on its grid by the markers, which are told by their size.
/// @param image [in] any size
/// @param pattern [in] the plate
/// @param region [in] the part of the image that holds the plate; NULL: it is looked for
/// @param dots [in] the arrays that are written, in the order of the reader, all but `errors`; NULL: only counted
/// @param placed [out] number of dots with a place on the grid; those beyond the capacity are not written
/// @param found [out] number of dots found; or NULL
/// @return ZELM_OK; what zelm2ViewReadPtnImg() returns where it fails; ZELM_ERR_PARAM; ZELM_ERR_MEMORY
ZELM_API int32_t zelmMeasurePlateDots(const ZelmMeasureImage* image, const Zelm2ViewPatternDesc* pattern,
                                      const ZelmRect* region, const ZelmMeasureDots* dots, int64_t* placed,
                                      int64_t* found);

/// What an image of a plate that cannot be read shows.
typedef struct ZelmMeasurePlateTraits {
    int32_t size;          ///< of this record, bytes
    int32_t brightLevel;   ///< gray level that all but the brightest thousandth of the pixels stay within
    int32_t markerSized;   ///< spots of the size of a marker, beside dots of the usual size
    int32_t oppositeDots;  ///< dots that are read when dark and bright are exchanged; 0: none are
} ZelmMeasurePlateTraits;

/// Traits of an image that tell why its plate cannot be read.
/// @param image [in] any size
/// @param pattern [in] the plate
/// @param traits [out] what it shows
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
ZELM_API int32_t zelmMeasurePlateTraits(const ZelmMeasureImage* image, const Zelm2ViewPatternDesc* pattern,
                                        ZelmMeasurePlateTraits* traits);

/// What became of a dot that was looked for at a pixel.
enum ZelmMeasureDotStatus {
    ZELM_MEASURE_DOT_OK = 0,       ///< its centre is given
    ZELM_MEASURE_DOT_MISSING = 1,  ///< no outline there is an ellipse of some 4 to 120 pixels
};

/// The centres of single dots: of the ellipse through the outline of the dot that covers a pixel. A dot of which up to
/// 40 % of the outline is hidden is measured by the arc that is seen, less surely.
/// @param image [in] any size
/// @param count [in] of dots
/// @param seeds [in] pixels that the dots cover, 2 a dot
/// @param polarity [in] 0: dark dots on a bright ground; 1: bright ones
/// @param centres [out] 2 a dot; those of missing dots are not written. May be `seeds`
/// @param statuses [out] ZelmMeasureDotStatus, one a dot
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
ZELM_API int32_t zelmMeasureDotCentres(const ZelmMeasureImage* image, int64_t count, const double* seeds,
                                       int32_t polarity, double* centres, int32_t* statuses);
/// @}

/// @name Points of space
/// @{

/// What became of a pair of pixels.
enum ZelmMeasurePointStatus {
    ZELM_MEASURE_POINT_OK = 0,
    ZELM_MEASURE_POINT_BEHIND = 1,      ///< the rays meet behind a camera: a wrong pair. The only failure with numbers.
    ZELM_MEASURE_POINT_DISTORTION = 2,  ///< a pixel is too far outside for the lens distortion to be removed
    ZELM_MEASURE_POINT_PARALLEL = 3,    ///< the rays do not meet
};

/// Points of space, in arrays of the caller's with room for all pairs.
typedef struct ZelmMeasurePoints {
    int32_t size;       ///< of this record, bytes
    int32_t reserved;   ///< 0
    int32_t* statuses;  ///< ZelmMeasurePointStatus, one a pair; or NULL
    double* positions;  ///< 3 a pair: in the frame of the plate of view 0, plate units; or NULL
    double* errors;     ///< 2 a pair: pixels from the left and the right pixel to the point's projection; or NULL
    double* angles;     ///< 1 a pair: between the two rays at the point, radians; or NULL
} ZelmMeasurePoints;

/// Triangulates pairs of raw pixels, with the optimal correction of zelm2ViewChange2Dto3D(). What a pair without
/// numbers would have written is not.
/// @param rig [in] the rig
/// @param count [in] of pairs
/// @param left [in] raw pixels, 2 a pair
/// @param right [in] raw pixels, 2 a pair
/// @param points [in] the arrays that are written
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA for two parallel cameras, whose rays cannot
///     be brought together
ZELM_API int32_t zelmMeasureTriangulate(ZelmMeasureRig* rig, int64_t count, const double* left, const double* right,
                                        const ZelmMeasurePoints* points);

/// The true depths of the pixels of a rendered scene, and whether the right camera sees them too.
/// @param rig [in] of two perspective cameras
/// @param map [in] depths along the left camera's axis, a pixel each of its raw image, in `unit`s; 0: nothing there
/// @param unit [in] of the map, in plate units
/// @param count [in] of pixels
/// @param pixels [in] of the left image, 2 each
/// @param depths [out] plate units, mixed from the four pixels around; NaN where there is no surface, or an edge of one
/// @param seenByBoth [out] 1 or 0 each; or NULL
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA for a rig with a parallel camera
ZELM_API int32_t zelmMeasureTrueDepths(ZelmMeasureRig* rig, const uint16_t* map, double unit, int64_t count,
                                       const double* pixels, double* depths, int32_t* seenByBoth);
/// @}

/// @name Correspondences
/// @{

/// What became of a pixel whose counterpart was looked for.
enum ZelmMeasureMatchStatus {
    ZELM_MEASURE_MATCH_OK = 0,
    ZELM_MEASURE_MATCH_OUTSIDE = 1,  ///< no window, or no part of the epipolar line within the limits, is in its image
    ZELM_MEASURE_MATCH_NO_TEXTURE = 2,    ///< the surroundings do not promise the precision asked for
    ZELM_MEASURE_MATCH_NO_MATCH = 3,      ///< nothing similar enough on the line
    ZELM_MEASURE_MATCH_AMBIGUOUS = 4,     ///< two places are about as similar
    ZELM_MEASURE_MATCH_INCONSISTENT = 5,  ///< the way back leads elsewhere, or the neighbours agree on another surface
};

/// Tells how far the work is; called by the thread that called the library.
/// @param context the caller's
/// @param stage what is being done, in English
/// @param done,total steps of this stage
/// @return 0 to go on; anything else ends the work, which then returns ZELM_MEASURE_ERR_CANCELLED
typedef int32_t (*ZelmMeasureProgress)(void* context, const char* stage, int64_t done, int64_t total);

/// Distances along the axes of the cameras between which points are looked for, plate units.
typedef struct ZelmMeasureDepthLimits {
    double leftMin;   ///< along the left camera
    double leftMax;   ///< along the left camera
    double rightMin;  ///< along the right camera
    double rightMax;  ///< along the right camera
} ZelmMeasureDepthLimits;

/// How counterparts are looked for. zelmMeasureMatchDefaults() fills it.
typedef struct ZelmMeasureMatchOptions {
    int32_t size;            ///< of this record, bytes
    int32_t window;          ///< side of a window, pixels; odd, at least 5
    double minScore;         ///< correlation of a match, after its surface has been fitted, 0 to 1
    double returnTolerance;  ///< pixels by which the way back may miss the start
    double precision;        ///< pixels; the standard deviation that the texture near a pixel must promise
    double noise;            ///< standard deviation of a gray level; 0: as zelmMeasureNoise() tells of both images
    double reach;            ///< pixels from a point to those that may tell of its surface
    ZelmMeasureDepthLimits limits;  ///< between which points are looked for
    int32_t threads;                ///< 0: as many as the machine runs at a time. The results are the same for any.
    int32_t reserved;               ///< 0
    ZelmMeasureProgress progress;   ///< NULL: none
    void* context;                  ///< for `progress`
} ZelmMeasureMatchOptions;

/// Counterparts and their points of space, in arrays of the caller's with room for all points. A point that is not OK
/// has its status alone.
typedef struct ZelmMeasureMatches {
    int32_t size;        ///< of this record, bytes
    int32_t reserved;    ///< 0
    int32_t* statuses;   ///< ZelmMeasureMatchStatus, one a point; or NULL
    double* pixels;      ///< 2 a point: in the right image as taken; or NULL
    double* scores;      ///< 1 a point: correlation of the two windows over the pixels that take part; or NULL
    double* positions;   ///< 3 a point: in the frame of the plate of view 0, plate units; or NULL
    double* depths;      ///< 1 a point: along the left camera's axis, plate units; or NULL
    double* deviations;  ///< 1 a point: standard deviation to expect of the depth, plate units; or NULL
    double* errors;      ///< 2 a point: pixels from both pixels to the point's projections; or NULL
} ZelmMeasureMatches;

/// The options that hold where a user names none: a window of 21 pixels, a score of 0.8, and for each perspective
/// camera depths from half the distance of the nearest plate of the calibration to twice that of the farthest.
/// @param rig [in] the rig; NULL: the options of any rig, without limits of depth
/// @param options [out] the options
/// @return ZELM_OK, ZELM_ERR_PARAM
ZELM_API int32_t zelmMeasureMatchDefaults(const ZelmMeasureRig* rig, ZelmMeasureMatchOptions* options);

/// The standard deviation of the noise of an image, from what its smoothest parts show (Immerkaer, 1996).
/// @param image [in] any size
/// @param noise [out] gray levels; at least 0.3, which is what rounding makes
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
ZELM_API int32_t zelmMeasureNoise(const ZelmMeasureImage* image, double* noise);

/// Whether the epipolar line of any of the pixels crosses the other image within the limits.
/// @param rig [in] the rig
/// @param options [in] with the limits of depth
/// @param count [in] of pixels
/// @param pixels [in] of the left image, raw, 2 each
/// @param any [out] 1 or 0
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY, ZELM_MEASURE_ERR_DATA
ZELM_API int32_t zelmMeasureOverlap(ZelmMeasureRig* rig, const ZelmMeasureMatchOptions* options, int64_t count,
                                    const double* pixels, int32_t* any);

/// Finds the counterparts of pixels of the left image in the right one and triangulates them. Each pixel is looked for
/// along its whole epipolar line by correlation; the best places are refined by least-squares matching of a plane
/// (Gruen, 1985) and must lead back. Pixels not found are tried again where the surfaces of found neighbours lead;
/// small groups that nothing around agrees with are left out.
/// @param rig [in] the rig
/// @param left [in] raw image of the size that was calibrated
/// @param right [in] raw image of the size that was calibrated
/// @param options [in] how to look
/// @param count [in] of pixels
/// @param pixels [in] of the left image, raw, 2 each
/// @param matches [in] the arrays that are written
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA: the rig cannot triangulate;
///     ZELM_MEASURE_ERR_CANCELLED
ZELM_API int32_t zelmMeasureMatch(ZelmMeasureRig* rig, const ZelmMeasureImage* left, const ZelmMeasureImage* right,
                                  const ZelmMeasureMatchOptions* options, int64_t count, const double* pixels,
                                  const ZelmMeasureMatches* matches);

/// The same for every pixel of the left image, row by row: a grid of every fourth pixel as above, then the pixels
/// between on the surfaces found around them.
/// @param rig [in] the rig
/// @param left [in] raw image of the size that was calibrated
/// @param right [in] raw image of the size that was calibrated
/// @param options [in] how to look
/// @param matches [in] the arrays that are written, with room for width x height points
/// @return as zelmMeasureMatch()
ZELM_API int32_t zelmMeasureMatchDense(ZelmMeasureRig* rig, const ZelmMeasureImage* left, const ZelmMeasureImage* right,
                                       const ZelmMeasureMatchOptions* options, const ZelmMeasureMatches* matches);
/// @}

ZELM_END_DECLS

#endif
