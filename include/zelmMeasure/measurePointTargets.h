/// @file
/// Calibration from the points of any flat target, of a pair or of one camera alone: whatever found the points.
#ifndef ZELM_MEASURE_API_POINT_TARGETS_H
#define ZELM_MEASURE_API_POINT_TARGETS_H

#include "zelmMeasure/measureAdjust.h"

ZELM_BEGIN_DECLS

/// A camera that is to be calibrated.
typedef struct ZelmMeasurePointCamera {
    int32_t model;     ///< 0 perspective, 1 perspective with a tilted sensor
    int32_t width;     ///< of its images, pixels; 0: there is no such camera
    int32_t height;    ///< of its images, pixels
    int32_t reserved;  ///< 0
} ZelmMeasurePointCamera;

/// Points of a flat target, each as one camera sees it in one view.
typedef struct ZelmMeasureTargetPoints {
    int32_t size;                  ///< of this record, bytes
    int32_t views;                 ///< their number; view 0 gives the frame of the world
    int64_t count;                 ///< of the points
    const int32_t* view;           ///< of each point, from 0
    const int32_t* side;           ///< of each point: 'L' or 'R', the camera that sees it
    const int32_t* grid;           ///< 2 a point, which name it: the same in all views and both cameras. Of a plate of
                                   ///< dots: column and row, counted from the corner marker
    const double* places;          ///< 3 a point: its place on the target, plate units; NULL for a plate of dots
    const double* pixels;          ///< 2 a point: its raw pixel; of a dot the centre of its ellipse
    ZelmMeasurePointCamera left;   ///< the left camera
    ZelmMeasurePointCamera right;  ///< the right camera
} ZelmMeasureTargetPoints;

/// Whether a view tells where the target stands.
enum ZelmMeasurePointViewStatus {
    ZELM_MEASURE_POINT_VIEW_OK = 0,    ///< it does, in at least one of its images
    ZELM_MEASURE_POINT_VIEW_FEW = 1,   ///< both images have fewer than 6 points
    ZELM_MEASURE_POINT_VIEW_LINE = 2,  ///< its points are all on one line, or nearly
};

/// Which views can be used. zelmMeasureAdjustOpenPoints() refuses points of which a view cannot.
/// @param points [in] the points
/// @param statuses [out] ZelmMeasurePointViewStatus, one a view
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY
ZELM_API int32_t zelmMeasurePointViews(const ZelmMeasureTargetPoints* points, int32_t* statuses);

/// Opens an adjustment of points, which needs no rig: each camera is calibrated on its own first (Zhang, 2000), and the
/// cameras' relative pose is that of the view whose own agrees best with those of all others. Points are predicted
/// as points: what outlines of dots do to their centres is left out. Everything else is as of zelmMeasureAdjustOpen().
/// With one camera alone there is no rig: zelmMeasureAdjustCamera() and zelmMeasureAdjustPose() give the result.
/// @param points [in] of at least 3 views; not needed later
/// @param pattern [in] the plate whose dots the points are, which can then be refined; NULL: points of another target
/// @param options [in] what is estimated; NULL: the defaults. Diameters and measured places are of plates of dots alone
/// @param adjustment [out] the handle, to be closed by zelmMeasureAdjustClose(); must be NULL before. Also when the
///     points are refused: such a handle holds the error text alone, and every other function refuses it
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA: a camera sees the target in fewer than 3
///     views well enough, or no view is seen by both; the target is not flat; the views do not determine a camera
ZELM_API int32_t zelmMeasureAdjustOpenPoints(const ZelmMeasureTargetPoints* points, const Zelm2ViewPatternDesc* pattern,
                                             const ZelmMeasureAdjustOptions* options,
                                             ZelmMeasureAdjustment** adjustment);

/// The rig that an adjustment begins with.
/// @param adjustment [in] of two cameras
/// @param rig [out] the handle, without dots and covariance, to be closed by zelmMeasureRigClose(); must be NULL before
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA: one camera alone, or the two make no pair
ZELM_API int32_t zelmMeasureAdjustStartRig(ZelmMeasureAdjustment* adjustment, ZelmMeasureRig** rig);

/// A camera as an adjustment has it.
typedef struct ZelmMeasureAdjustedCamera {
    int32_t size;                     ///< of this record, bytes
    int32_t model;                    ///< ZelmCameraModel
    int32_t width;                    ///< of its images, pixels
    int32_t height;                   ///< of its images, pixels
    ZelmCameraIntrinsics intrinsics;  ///< adjusted
    ZelmCameraIntrinsics start;       ///< before
    double covariance[49];            ///< of fx, skew, fy, cx, cy, k1, k2: row-major; zeros for what is held
    double noise;                     ///< standard deviation of a point's coordinate, pixels
    double freedom;                   ///< degrees of freedom that it was estimated from; 0: it was known
} ZelmMeasureAdjustedCamera;

/// A camera and the covariance of its parameters.
/// @param adjustment [in] solved
/// @param side [in] 'L' or 'R'
/// @param camera [out] the camera
/// @return ZELM_OK; ZELM_ERR_PARAM: also for a camera that is not there; ZELM_MEASURE_ERR_DATA: not solved since the
///     dots were last changed
ZELM_API int32_t zelmMeasureAdjustCamera(ZelmMeasureAdjustment* adjustment, int32_t side,
                                         ZelmMeasureAdjustedCamera* camera);

/// Where the target of a view stands: X_camera = R X_target + t.
/// @param adjustment [in] solved
/// @param side [in] 'L' or 'R'
/// @param view [in] from 0
/// @param pose [out] the pose; of a view that takes no part the one that its own points tell
/// @return as zelmMeasureAdjustCamera()
ZELM_API int32_t zelmMeasureAdjustPose(ZelmMeasureAdjustment* adjustment, int32_t side, int32_t view,
                                       ZelmCameraExtrinsics* pose);

/// Distances of the points of one view from the epipolar lines of their counterparts, undistorted pixels: two a point
/// that takes part in both images, the left one first.
/// @param adjustment [in] solved, of two cameras
/// @param view [in] from 0
/// @param capacity [in] distances that there is room for
/// @param distances [out] pixels; NULL: they are only counted
/// @param count [out] their number; those beyond the capacity are not written
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA: one camera alone, or not solved since the
///     dots were last changed
ZELM_API int32_t zelmMeasureAdjustEpipolar(ZelmMeasureAdjustment* adjustment, int32_t view, int64_t capacity,
                                           double* distances, int64_t* count);

ZELM_END_DECLS

#endif
