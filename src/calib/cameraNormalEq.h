// Normal equations of the joint refinement of one camera's intrinsics and the poses of its views.
#ifndef ZELM_CAMERA_NORMAL_EQ_H
#define ZELM_CAMERA_NORMAL_EQ_H

#include <cstddef>

#include "cameraData.h"

namespace zelm {

// Gauss-Newton normal equations. No view shares a dot with another, so that a view's pose meets only the intrinsics
// and itself.
struct CameraNormalEq {
    struct View {
        double N[kPose * kPose];
        double cross[kIntrinsics * kPose];  // intrinsics by pose
        double g[kPose];
    };
    double N[kIntrinsics * kIntrinsics];
    double g[kIntrinsics];
    View* views;
    double cost;           // at cutOff2
    double cutOff2 = 0.0;  // squared cut-off of the weights; not used without weighting
};

// Evaluates the unknowns: the cost, N = sum w J^T J and g = sum w J^T (measured - projected). False, with nothing but
// the cost to rely on, when the cost is not finite.
//
// With robustThreshold > 0 dots are weighted by Tukey's biweight (Beaton and Tukey 1974), w = (1 - e^2 / c^2)^2 within
// the cut-off c = robustThreshold * 1.4826 * (root of the median squared residual), else 0. squares (a number a dot,
// else not touched) then holds the squared residuals, in no order.
//
// The cost is the sum of squared residuals, with weighting the sum of Tukey's loss whose gradient the weights give.
bool innerCalcCameraNormalEq(const CameraData& data, const CameraUnknowns& unknowns, double robustThreshold,
                             double* squares, CameraNormalEq* equations);

// The sum of Tukey's loss (c^2 / 3) (1 - (1 - e^2 / c^2)^3) over n squared residuals, at most c^2 / 3 each; it tends to
// the sum of squares as the cut-off grows.
double tukeyCost(const double* squares, std::size_t n, double cutOff2);

// Mean distance of measured and projected dots, normalised units.
double meanReprojectionDistance(const CameraData& data, const CameraUnknowns& unknowns);

}  // namespace zelm

#endif
