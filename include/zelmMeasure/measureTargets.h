/// @file
/// Round targets that both cameras see, measured as circles in space.
#ifndef ZELM_MEASURE_API_TARGETS_H
#define ZELM_MEASURE_API_TARGETS_H

#include "zelmMeasure/measureBase.h"

ZELM_BEGIN_DECLS

/// What became of a target.
enum ZelmMeasureCircleStatus {
    ZELM_MEASURE_CIRCLE_OK = 0,             ///< a circle
    ZELM_MEASURE_CIRCLE_POINT_ALONE = 1,    ///< no circle has both outlines (they are too small, half hidden, or not of
                                            ///< one round dot): the point that the centres of the two ellipses give
    ZELM_MEASURE_CIRCLE_MISSING_LEFT = 2,   ///< no dot at the pixel of the left image
    ZELM_MEASURE_CIRCLE_MISSING_RIGHT = 3,  ///< no dot at the pixel of the right image
    ZELM_MEASURE_CIRCLE_MISSING = 4,        ///< no dot at either
    ZELM_MEASURE_CIRCLE_BEHIND = 5,         ///< the rays to the two dots meet behind a camera: a wrong pair
    ZELM_MEASURE_CIRCLE_DISTORTION = 6,     ///< a dot is too far outside for the lens distortion to be removed
    ZELM_MEASURE_CIRCLE_PARALLEL = 7,       ///< the rays to the two dots do not meet: a wrong pair
    ZELM_MEASURE_CIRCLE_MISMATCH = 8,       ///< the dots, or their centres' rays, miss each other by more than
                                            ///< `maxError`: those of two targets; has the numbers of a point alone
    ZELM_MEASURE_CIRCLE_HIDDEN = 9,         ///< a point alone, with less of an outline seen than `minShare`: its
                                            ///< numbers may be wrong by tenths of a pixel
};

/// Targets, in arrays of the caller's with room for all of them.
typedef struct ZelmMeasureTargets {
    int32_t size;         ///< of this record, bytes
    int32_t reserved;     ///< 0
    int32_t* statuses;    ///< ZelmMeasureCircleStatus, one a target; or NULL
    double* centres;      ///< 3 a target: in the frame of the plate of view 0, plate units; or NULL. Those of rays that
                          ///< meet behind a camera, too
    double* normals;      ///< 3 a target: of unit length, towards the left camera; or NULL. Of circles alone
    double* radii;        ///< 1 a target: plate units; or NULL. Of circles alone
    double* covariances;  ///< 9 a target: of the centre, row-major, square plate units; or NULL. Of circles alone
    double* errors;       ///< 2 a target: RMS distance in pixels between outline and image of the circle, left and
                          ///< right; of others from the ellipses' centres to the point's projections; or NULL
    double* angles;       ///< 1 a target: between the two rays at the centre, radians; or NULL
    double* ellipses;     ///< 4 a target: centres of the outlines' ellipses, x and y of the left and of the right
                          ///< image, pixels; or NULL. Also of targets without a point, where the dot was found
    double* shares;       ///< 2 a target: the share of the outline that is seen, undisturbed to 3.5 pixels on either
                          ///< side, left and right, 0 to 1; or NULL. Written as `ellipses` are
    double maxError;      ///< pixels: more than this in the root sum of squares of both errors is a mismatch; 0: none
    double minShare;      ///< 0 to 1: a point alone of which either image shows less of the outline is hidden; 0: none
} ZelmMeasureTargets;

/// Measures round targets as the circles that they are. The centre of a dot's outline is not the image of the dot's
/// centre: perspective moves it by some r^2 sin(2 tilt) / (2 f) pixels for an outline of r pixels (Ahn, Warnecke and
/// Kotowski, 1999), and so a point triangulated from two of them is off, always to the same side. Here the outlines of
/// both images give one circle, with its centre, normal and radius: the one whose images, lens distortion included,
/// have the least squared distances from the outlines' points, each weighed by its own uncertainty; what Quan (1996)
/// solves in closed form for two conics, as orthogonal distance regression (Ahn, Rauh and Warnecke, 2001).
///
/// The covariance tells what the noise of the images leaves of the centre, scaled by how well the circle fits; the
/// calibration's own uncertainty comes on top. What a target without a number would have written is not.
/// @param rig [in] the rig, with one parallel camera at most
/// @param left [in] of the size of the left camera's images
/// @param right [in] of the size of the right camera's images
/// @param count [in] of targets
/// @param leftSeeds [in] pixels of the left image that the dots cover, 2 a target
/// @param rightSeeds [in] pixels of the right image, in the same order
/// @param polarity [in] 0: dark dots on a bright ground; 1: bright ones
/// @param targets [in] the arrays that are written
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA for two parallel cameras
/// Cost: some milliseconds a target.
ZELM_API int32_t zelmMeasureCircles(ZelmMeasureRig* rig, const ZelmMeasureImage* left, const ZelmMeasureImage* right,
                                    int64_t count, const double* leftSeeds, const double* rightSeeds, int32_t polarity,
                                    const ZelmMeasureTargets* targets);

ZELM_END_DECLS

#endif
