/// @file
/// Homographies, the camera model and the estimation of one camera's parameters.
#ifndef ZELM_CALIB_H
#define ZELM_CALIB_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

/// The projection of a camera, and what of it is estimated.
enum ZelmCameraModel {
    ZELM_CAMERA_PERSPECTIVE = 0,  ///< perspective
    ZELM_CAMERA_TILTED = 1,       ///< perspective with a tilted sensor: the image axes are not orthogonal
    ZELM_CAMERA_PARALLEL = 2,     ///< parallel (telecentric)
};

/// Intrinsic parameters of a camera: 22 doubles.
typedef struct ZelmCameraIntrinsics {
    double A[9];         ///< 3x3 camera matrix, row-major; used for projection
    double alpha;        ///< horizontal focal length in pixels
    double beta;         ///< vertical focal length in pixels
    double gamma;        ///< skew between the image axes in pixels
    double cx;           ///< principal point, x, in pixels
    double cy;           ///< principal point, y, in pixels
    double theta;        ///< tilt of the image axes in radians; 0 for models 0 and 2
    double k1;           ///< radial distortion coefficient of r^2
    double k2;           ///< radial distortion coefficient of r^4
    double reserved[5];  ///< carried along, never read or written
} ZelmCameraIntrinsics;

/// Pose of a camera relative to a calibration view: X_camera = R * X_world + t. 15 doubles.
typedef struct ZelmCameraExtrinsics {
    double R[9];  ///< 3x3 rotation matrix, row-major
    double t[3];  ///< translation, plate units
    double r[3];  ///< rotation vector, axis * angle in radians
} ZelmCameraExtrinsics;

/// The dots of one calibration view as one camera sees them.
typedef struct Zelm2ViewPtnEntry {
    int32_t count;   ///< number of dots
    Point2d* plane;  ///< count plane coordinates (z = 0), plate units
    Point2d* image;  ///< count image coordinates in pixels, in the same order
} Zelm2ViewPtnEntry;

/// Centres points on their mean and scales them so that their mean distance from it is sqrt(2) (Hartley 1997). With m
/// the mean and d the mean distance, s = sqrt(2) / d for points in space too (`docs/decisions.md#mean-distance`), and
/// T = [s I, -s m; 0, 1]. Identical points have d = 0: the scale is infinite and the results are not finite.
/// @param iDim [in] coordinates of a point, 2 or 3
/// @param iN [in] number of points, at least 1
/// @param daSrc [in] iN points, iDim doubles each (Point2d or Point3d)
/// @param daDst [out] the iN normalised points T * (p, 1); may be daSrc
/// @param daT [out] (iDim + 1)^2 doubles, row-major; NULL when not wanted
/// @param daTinv [out] the inverse transform [(1/s) I, m; 0, 1], likewise; NULL when not wanted
/// @return ZELM_OK; ZELM_ERR_PARAM when iDim is neither 2 nor 3, iN < 1, or daSrc or daDst is NULL, nothing written
/// Cost O(iN). Allocates nothing.
ZELM_API int32_t zelmCalibNormalizeData(int32_t iDim, int32_t iN, const double* daSrc, double* daDst, double* daT,
                                        double* daTinv);

/// Homography between two planes: (x, y) maps to (h0 x + h1 y + h2, h3 x + h4 y + h5) / (h6 x + h7 y + h8).
/// A linear estimate on normalised points (Hartley 1997) is refined by damped steps (Levenberg 1944, Marquardt 1963) on
/// the distances in the destination plane. A step is taken only if it lowers the mean squared distance; the right-hand
/// side weights each pair by its distance once more than a plain least-squares step would, so the steps lean towards
/// the worst pairs, and at most 100 are made. On noisy data the result stays within a few per cent of the least-squares
/// optimum, which the linear estimate all but reaches on its own; with five to eight pairs and noise above a
/// thousandth of their extent, up to one estimate in 30 does not settle within the 100 steps.
///
/// Exact data. Once the root mean squared distance is at most 1e-14 in normalised units (mean distance from the centre
/// sqrt(2)), rounding is all that is left, and the refinement ends with success: with 2, the least count, when the
/// linear estimate is that good already. Undetermined data. When the second least eigenvalue of the linear system is
/// not above 1e-14 of its greatest one, several homographies map the pairs alike (all source points on a line to within
/// about 1e-7 of their extent, or three of four pairs on lines), and the estimate is refused instead of picking one.
/// @param iN [in] number of pairs, at least 4
/// @param taSrc [in] iN source points
/// @param taDst [in] iN destination points, in the same order
/// @param dRobustK [in] > 0: Tukey's biweight with the cut-off dRobustK * 1.4826 * (median distance), set anew at every
///                 step; 0 or negative: all pairs weigh the same. The linear estimate is never weighted, so outliers
///                 must leave it within reach of the solution
/// @param daH [out] 9 doubles, row-major, divided by the last one when that exceeds 1e-9; written only on success
/// @return a count >= 2, the refinement's steps plus one; or
///         ZELM_ERR_PARAM: iN < 4 or a NULL pointer;
///         ZELM_ERR_MEMORY: no memory for the copies of the points or the linear system;
///         ZELM_ERR_EIGEN_NOT_CONVERGED: the eigen-solver failed on the linear system;
///         ZELM_ERR_CALIB_NOT_CONVERGED: undetermined or identical points, points that are not finite, a singular step,
///         no memory during the refinement, or 100 steps without convergence
/// Cost O(iN) a step, O(iN log iN) at most when robust. Memory for 22 doubles a pair (23 when robust).
ZELM_API int32_t zelmCalibCalcHomography(int32_t iN, const Point2d* taSrc, const Point2d* taDst, double dRobustK,
                                         double* daH);

/// Projection matrix P = A S [R t; 0 0 0 1] of one camera and pose.
/// S drops the fourth row of the pose under models 0 and 1 (perspective) and its third, the depth, under model 2
/// (parallel projection). When |P[2][3]| > 1e-9 all entries are divided by it.
/// @param daA [in] 3 x 3 camera matrix, row-major
/// @param tExt [in] pose; R and t are read
/// @param daP [out] 3 x 4, row-major
/// @param iModel [in] 0, 1 or 2
/// @return ZELM_OK; ZELM_ERR_PARAM for another model or a NULL pointer, nothing written
/// Allocates nothing.
ZELM_API int32_t zelmCalibCameraMatrix(const double* daA, const ZelmCameraExtrinsics* tExt, double* daP,
                                       int32_t iModel);

/// Projects a point in space into the distorted image: zelmCalibCameraMatrix, then the lens of zelmCalibDistortPoint.
/// Under models 0 and 2 the lens is taken with theta = 0, whatever the record holds. A point in the camera's own plane
/// (depth 0) gives coordinates that are not finite; points behind the camera are projected like any other.
/// @param tX [in] world point
/// @param tCam [in] camera; A is used for the projection, the other members for the distortion
/// @param tExt [in] pose
/// @param tP [out] pixel
/// @param iModel [in] 0, 1 or 2
/// @return ZELM_OK; ZELM_ERR_PARAM for another model or a NULL pointer, nothing written
/// Allocates nothing.
ZELM_API int32_t zelmCalibChange3Dto2D(const Point3d* tX, const ZelmCameraIntrinsics* tCam,
                                       const ZelmCameraExtrinsics* tExt, Point2d* tP, int32_t iModel);

/// Moves an undistorted pixel to where the lens images it.
/// With (dx, dy) the offset from the principal point in pixels, xn = (dx - (gamma / beta) dy) / alpha,
/// yn = (dy / beta) cos(theta), r^2 = xn^2 + yn^2 and D = (k2 r^2 + k1) r^2, the point moves by D * (dx, dy). The
/// stored theta always takes part; records of models 0 and 2 hold 0. A zero alpha or beta is not guarded.
/// @param tCam [in] camera
/// @param dX, dY [in] undistorted pixel
/// @param dXd, dYd [out] distorted pixel
/// @return ZELM_OK; ZELM_ERR_PARAM for a NULL pointer, nothing written
/// Allocates nothing.
ZELM_API int32_t zelmCalibDistortPoint(const ZelmCameraIntrinsics* tCam, double dX, double dY, double* dXd,
                                       double* dYd);

/// Removes the lens distortion from a pixel: Newton's method on zelmCalibDistortPoint, started at the given pixel. It
/// ends after a step of at most 0.0001 pixel in x and in y. The steps converge quadratically, so the result is as a
/// rule far closer: within 1e-9 pixel of the exact inverse for lenses that move no pixel by more than a tenth of its
/// radius. A pixel beyond the radius where the lens folds the image (1 + 3 k1 r^2 + 5 k2 r^4 = 0) has no undistorted
/// position on the near side of the fold: the search fails or ends on its far side.
/// @param tCam [in] camera
/// @param dXd, dYd [in] distorted pixel
/// @param dX, dY [out] undistorted pixel; the latest estimate also on ZELM_ERR_UNDISTORT
/// @return the number of steps, 1 to 20; ZELM_ERR_PARAM for a NULL pointer, nothing written; ZELM_ERR_UNDISTORT when a
///         step's equations are singular or 20 steps do not converge
/// Allocates nothing.
ZELM_API int32_t zelmCalibUnDistortPoint(const ZelmCameraIntrinsics* tCam, double dXd, double dYd, double* dX,
                                         double* dY);

/// Converts between a rotation vector (axis * angle in radians) and a rotation matrix (Rodrigues 1840).
/// From vector to matrix: R = cos(a) I + (1 - cos(a)) u u^T + sin(a) [u]x; shorter vectors than 1e-15 give the
/// identity. From matrix to vector: the axis is the null direction of R - I, found by singular value decomposition; the
/// angle atan2(u . w, trace(R) - 1) with w = (R21 - R12, R02 - R20, R10 - R01) lies in [-pi, pi], its sign going with
/// the axis. The vector is right to about 3e-15 radian at every angle; at pi either sign may come
/// (`docs/decisions.md#half-turn-sign`). A matrix that is not finite gives a vector that means nothing.
/// @param iDirection [in] 0: vector to matrix; 1: matrix to vector
/// @param daRvec 3 doubles; [in] for direction 0, [out] for direction 1
/// @param daRmat 9 doubles, row-major; [in] for direction 1, [out] for direction 0
/// @return ZELM_OK; ZELM_ERR_PARAM for another direction or a NULL pointer, nothing written
/// Allocates nothing.
ZELM_API int32_t zelmCalibRodrigues(int32_t iDirection, double* daRvec, double* daRmat);

/// Estimates one camera's intrinsic parameters, its radial distortion and its pose in every view from the dots of a
/// flat plate.
///
/// Start values come from the homographies of the views: under models 0 and 1 in closed form (Z. Zhang, A Flexible New
/// Technique for Camera Calibration, 2000), under model 2 from three reference dots. All parameters are then refined
/// together by the damped least-squares method of Levenberg (1944) and Marquardt (1963), with analytic derivatives and
/// the poses eliminated by a Schur complement, so that time and memory grow with the number of views, not its square.
/// Both run on centred and scaled points; nothing depends on the image size or on the unit of the plate, except where
/// a length is stated.
///
/// Records. The results agree with each other: zelmCalibChange3Dto2D with the written records, the same model and the
/// point (x, y, 0) gives the position of each dot that the refinement compared with the measured one. In all models
/// the normalised coordinates of the distortion are the camera's own, (Xc / Zc, Yc / Zc), or (Xc, Yc) for model 2.
///  - Model 0: A = (alpha, gamma, cx; 0, beta, cy; 0, 0, 1), theta = 0.
///  - Model 1: the image axes are sheared by the angle theta = atan2(A[0][1], A[1][1]). A = (alpha, gamma / cos(theta),
///    cx; 0, beta / cos(theta), cy; 0, 0, 1), gamma / beta = tan(theta): beta is the focal length along the sheared
///    axis. The same cameras can be described under models 0 and 1; theta follows from A, it is not a parameter of its
///    own which a view without distortion could leave open.
///  - Model 2: A as for model 0, alpha and beta being the image scales in pixels per plate unit, so that k1 and k2 are
///    per square and fourth power of the plate unit. gamma is what rounding and noise leave of a shear, about 0. A
///    mirrored image gives one negative scale.
///
/// Model 2 is estimated from its only view. Preset in tIntrinsics: alpha and beta, the plane distances of two reference
/// dots, which must be at (alpha, 0) and (0, beta) beside the one at (0, 0), to 1e-5 plate units; cx and cy, the
/// principal point. What one view cannot tell stands in `docs/limits.md`, Camera estimation.
///
/// With dRobustThreshold > 0 dots are weighted by Tukey's biweight, (1 - e^2 / c^2)^2 for distances e within the
/// cut-off c = dRobustThreshold * 1.4826 * median(e), else 0; plain least squares comes first. Damping, stopping rules
/// and the cut-off from step to step: `docs/limits.md`, Camera estimation.
///
/// @param iViews [in] number of views: at least 3 for models 0 and 1, exactly 1 for model 2
/// @param taViews [in] iViews entries of at least 4 dots each, the plate coordinates in any unit, the image in pixels
/// @param dRobustThreshold [in] 0 or less (or not a number): plain least squares; else the cut-off, usually 3.5
/// @param tIntrinsics [in,out] the camera; read under model 2 only; reserved is neither read nor written
/// @param taExtrinsics [out] iViews poses; every plate is before the camera (t_z > 0 at its centre)
/// @param dError [out] mean Euclidean distance in pixels between measured and projected dots, unweighted over all dots
///   of all views, at the written parameters; may be NULL
/// @param iModel [in] 0 perspective, 1 tilted, 2 parallel
/// @return ZELM_OK; ZELM_ERR_PARAM for a bad model, count of views or pointer, checked in this order;
///   ZELM_ERR_CALIB_HOMOGRAPHY when a view has fewer than 4 dots or NULL arrays, or its homography fails (dots on a
///   line, values that are not finite); ZELM_ERR_CALIB_ESTIMATE when the views do not determine a camera (all parallel,
///   or too noisy for their tilts) or, for model 2, a reference dot is missing or the three coincide in the image;
///   ZELM_ERR_CALIB_NOT_CONVERGED when the refinement takes more than 200 steps or a system of its is singular;
///   ZELM_ERR_MEMORY (ZELM_ERR_CALIB_HOMOGRAPHY when memory runs out within the refinement of a homography);
///   ZELM_ERR_SVD_FAILED from the start value of a pose. Nothing is written on failure.
/// Memory: some 100 bytes a dot and 2000 a view, all released. Reentrant: yes.
ZELM_API int32_t zelmCalibCameraParam(int32_t iViews, const Zelm2ViewPtnEntry* taViews, double dRobustThreshold,
                                      ZelmCameraIntrinsics* tIntrinsics, ZelmCameraExtrinsics* taExtrinsics,
                                      double* dError, int32_t iModel);

ZELM_END_DECLS

#endif
