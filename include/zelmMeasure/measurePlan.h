/// @file
/// Plans of calibrations: how well a length will be known after views of a plate that are yet to be taken, and which
/// views these should be.
///
/// The normal equations of the adjustment of all views are set up at the stated parameters, without any image: they
/// depend on where the dots will lie, not on what will be seen (Fraser 1984, network design for close-range
/// photogrammetry). Each view's own pose is eliminated (Schur complement), so that a view is one 20 x 20 matrix of what
/// it tells of both cameras and their relative pose, and a plan is the sum of its views' matrices.
#ifndef ZELM_MEASURE_API_PLAN_H
#define ZELM_MEASURE_API_PLAN_H

#include "zelmMeasure/measureBase.h"
#include "zelmMeasure/measureRig.h"

ZELM_BEGIN_DECLS

/// A pair, a volume to measure in, a plate, and the views of it that were taken or are planned.
typedef struct ZelmMeasurePlan ZelmMeasurePlan;

/// What a plan makes small.
enum ZelmMeasurePlanCriterion {
    ZELM_MEASURE_PLAN_WORST = 0,  ///< the U95 of the worst test length
    ZELM_MEASURE_PLAN_RMS = 1     ///< the root mean square of the test lengths' U95
};

/// What a plan is asked for. The volume is a box in the frame of the pair: its origin is midway between the centres of
/// projection, z is the mean of the optical axes, x lies along the mean of the images' x axes, y points down.
typedef struct ZelmMeasurePlanOptions {
    int32_t size;          ///< of this record, bytes
    int32_t criterion;     ///< ZelmMeasurePlanCriterion
    double centre[3];      ///< of the volume, plate units; its z is the distance from the pair
    double extent[3];      ///< of the volume along x, y and z, plate units; 0 along z: a plane
    double length;         ///< of the test lengths, plate units; 0: 30 % of the volume's diagonal
    double noise;          ///< standard deviation of a coordinate of a plate's dot, pixels; 0: 0.02
    double pointNoise;     ///< the same of the points that will be measured; 0: as `noise`
    double focusNear;      ///< least depth before either camera that is sharp, plate units; 0: no limit
    double focusFar;       ///< greatest depth that is sharp; 0: no limit
    double maxTilt;        ///< of the plate against either camera's line of sight, radians; 0: 50 degrees
    int32_t holdSkew;      ///< 1: the adjustment will not estimate the skews; 0: it will
    int32_t squarePixels;  ///< 1: the adjustment will estimate one focal length a camera; 0: two
} ZelmMeasurePlanOptions;

/// One view of a plan.
typedef struct ZelmMeasurePlanView {
    int32_t size;               ///< of this record, bytes
    int32_t taken;              ///< 1: taken before; 0: planned
    double position[3];         ///< of the plate's corner marker, the middle of its field, in the frame of the pair
    double tilt;                ///< of the plate against the pair's z axis, radians
    double azimuth;             ///< of the direction to which the plate's face is tilted, from x towards y, radians
    double roll;                ///< of the plate's x axis, as seen by the pair, from x towards y, radians
    double tilts[2];            ///< against the lines of sight of the left and the right camera, radians
    double fill[2];             ///< share of the left and of the right image that the plate's field takes
    int32_t dots[2];            ///< of the field in the left and in the right image
    ZelmCameraExtrinsics pose;  ///< X_left = R X_plate + t
    double worst;               ///< predicted U95 of the worst length after this view and all before; 0: not determined
    double rms;                 ///< root mean square of the lengths' U95, likewise
} ZelmMeasurePlanView;

/// What a plan's views give. U95 is half of the interval that holds 95 % of the errors of a length, plate units.
typedef struct ZelmMeasurePlanFigures {
    int32_t size;       ///< of this record, bytes
    int32_t views;      ///< taken and planned
    int32_t taken;      ///< of them
    int32_t lengths;    ///< test lengths: both ends lie in the volume and are seen by both cameras
    double length;      ///< of each, plate units
    double seen;        ///< share of the volume that both cameras see
    double worst;       ///< U95 of the worst length
    double rms;         ///< root mean square of the lengths' U95
    double worstImage;  ///< what a perfect calibration would leave of `worst`: the noise of the measured points
    double rmsImage;    ///< and of `rms`
} ZelmMeasurePlanFigures;

/// Opens a plan without views. Works out what each of some thousand poses of the plate in the volume would tell, which
/// takes about a second; the rest is quick.
/// @param left [in] the left camera as it is expected to be; perspective or tilted
/// @param right [in] the right camera
/// @param relative [in] how the right camera stands to the left one: R and t, in plate units; the rest is not read
/// @param plate [in] lengths in plate units; minDots is the number of dots that each image has to show, half of the
///     field's where it is 0
/// @param options [in] the volume, the noise, the limits
/// @param plan [out] the handle, to be closed by zelmMeasurePlanClose(); must be NULL before. Also when the data do not
///     allow a plan: such a handle holds the error text alone, and every other function refuses it
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA: numbers that cannot be meant, a parallel
///     camera, a volume of which both cameras see less than half, a plate that nowhere shows enough dots to both
ZELM_API int32_t zelmMeasurePlanOpen(const ZelmMeasureCamera* left, const ZelmMeasureCamera* right,
                                     const ZelmMeasureRelativePose* relative, const Zelm2ViewPatternDesc* plate,
                                     const ZelmMeasurePlanOptions* options, ZelmMeasurePlan** plan);

/// Opens a plan that goes on from a calibrated rig: the views that it was calibrated from are taken, of each all dots
/// that lie in the images.
/// @param rig [in] of two perspective or tilted cameras
/// @param plate [in] as of zelmMeasurePlanOpen()
/// @param options [in] as of zelmMeasurePlanOpen()
/// @param plan [out] as of zelmMeasurePlanOpen()
/// @return as zelmMeasurePlanOpen()
ZELM_API int32_t zelmMeasurePlanOfRig(const ZelmMeasureRig* rig, const Zelm2ViewPatternDesc* plate,
                                      const ZelmMeasurePlanOptions* options, ZelmMeasurePlan** plan);

/// Ends a plan and sets the caller's handle to NULL; nothing for NULL.
/// @param plan [in,out] the caller's handle
ZELM_API void zelmMeasurePlanClose(ZelmMeasurePlan** plan);

/// What was wrong with the last call on the plan that failed, in English, without a line break; empty when none did.
/// @param plan [in] a plan, also a refused one
/// @return the text; it belongs to the plan and holds until the next call
ZELM_API const char* zelmMeasurePlanError(const ZelmMeasurePlan* plan);

/// Adds views that were taken; planned ones are dropped.
/// @param plan [in] the plan
/// @param count [in] of views
/// @param poses [in] X_left = R X_plate + t of each; r is not read
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA: R is no rotation, or neither camera sees a
///     dot; then none is added
ZELM_API int32_t zelmMeasurePlanTake(ZelmMeasurePlan* plan, int64_t count, const ZelmCameraExtrinsics* poses);

/// The view that makes the criterion least when it is added to those of the plan. The plan stays as it is; hand the
/// pose that was taken, this one or nearly, to zelmMeasurePlanTake(). Some 10 ms, however many views there are.
/// @param plan [in] the plan
/// @param view [out] the view; where three views or fewer do not determine a calibration, worst and rms are 0
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA: every pose is in the plan
ZELM_API int32_t zelmMeasurePlanNext(ZelmMeasurePlan* plan, ZelmMeasurePlanView* view);

/// Plans anew: adds views to the taken ones, one after the other the best, then exchanges single views for better ones
/// (Fedorov 1972; Mitchell 1974), until the tolerance is met with as few views as this finds. Some 10 ms a view added
/// and 10 to 40 ms a view exchanged.
/// @param plan [in] the plan; stays as it is where this fails
/// @param tolerance [in] that the criterion has to meet, plate units; 0: `most` views, as good as can be
/// @param most [in] views, taken ones included; 3 to 1000
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA: the tolerance cannot be met, and what would
///     help
ZELM_API int32_t zelmMeasurePlanFewest(ZelmMeasurePlan* plan, double tolerance, int32_t most);

/// The number of views, the taken ones first.
/// @param plan [in] the plan
/// @param views [out] their number
/// @return ZELM_OK, ZELM_ERR_PARAM
ZELM_API int32_t zelmMeasurePlanViews(const ZelmMeasurePlan* plan, int32_t* views);

/// A view of the plan.
/// @param plan [in] the plan
/// @param index [in] from 0
/// @param view [out] the view
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
ZELM_API int32_t zelmMeasurePlanView(ZelmMeasurePlan* plan, int32_t index, ZelmMeasurePlanView* view);

/// What the plan's views give.
/// @param plan [in] the plan
/// @param figures [out] the figures
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA: the views do not determine a calibration,
///     and which parameter they leave open
ZELM_API int32_t zelmMeasurePlanFigures(ZelmMeasurePlan* plan, ZelmMeasurePlanFigures* figures);

ZELM_END_DECLS

#endif
