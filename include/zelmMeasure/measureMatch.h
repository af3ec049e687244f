/// @file
/// Correspondences over whole images.
#ifndef ZELM_MEASURE_API_MATCH_H
#define ZELM_MEASURE_API_MATCH_H

#include "zelmMeasure/measureBase.h"

ZELM_BEGIN_DECLS

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

ZELM_END_DECLS

#endif
