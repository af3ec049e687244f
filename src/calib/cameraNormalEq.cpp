// Normal equations of the camera refinement.
#include "cameraNormalEq.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "robustStatistics.h"

namespace zelm {
namespace {

constexpr std::size_t kJoint = kIntrinsics + kPose;

// What one view under parallel projection cannot tell: the principal point from the translation, the tilt from the
// scales and the shear, the depth.
constexpr std::size_t kHeldIntrinsics[] = {kCx, kCy};
constexpr std::size_t kHeldPose[] = {kRotation, kRotation + 1, kTranslation + 2};

// Calls visit(view, dot index, frame of the view) for every dot.
template <class Visit>
void forEachDot(const CameraData& data, const CameraUnknowns& unknowns, Visit visit) {
    for (std::size_t v = 0; v < data.views(); ++v) {
        const ViewFrame frame(unknowns.poses + v * kPose);
        for (std::size_t i = data.first[v]; i < data.first[v + 1]; ++i) {
            visit(v, i, frame);
        }
    }
}

template <class Visit>
void forEachSquare(const CameraData& data, const CameraUnknowns& unknowns, Visit visit) {
    const DotProjector projector{unknowns.intrinsics, data.parallel};
    forEachDot(data, unknowns, [&](std::size_t, std::size_t i, const ViewFrame& frame) {
        const Point2d p = projector.project(frame, data.plane[i]);
        const double ru = data.image[i].x - p.x;
        const double rv = data.image[i].y - p.y;
        visit(i, ru * ru + rv * rv);
    });
}

// One dot's share: d holds the derivatives of u and v, r the residuals. Upper triangles only.
void accumulate(const double* du, const double* dv, const double* r, double w, CameraNormalEq* eq,
                CameraNormalEq::View* view) {
    for (std::size_t i = 0; i < kJoint; ++i) {
        const double wu = w * du[i];
        const double wv = w * dv[i];
        const double gradient = wu * r[0] + wv * r[1];
        if (i < kIntrinsics) {
            for (std::size_t j = i; j < kIntrinsics; ++j) {
                eq->N[i * kIntrinsics + j] += wu * du[j] + wv * dv[j];
            }
            for (std::size_t j = 0; j < kPose; ++j) {
                view->cross[i * kPose + j] += wu * du[kIntrinsics + j] + wv * dv[kIntrinsics + j];
            }
            eq->g[i] += gradient;
        } else {
            const std::size_t row = i - kIntrinsics;
            for (std::size_t j = row; j < kPose; ++j) {
                view->N[row * kPose + j] += wu * du[kIntrinsics + j] + wv * dv[kIntrinsics + j];
            }
            view->g[row] += gradient;
        }
    }
}

void mirrorUpperTriangle(std::size_t n, double* N) {
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            N[i * n + j] = N[j * n + i];
        }
    }
}

// Holding: no derivative, so that the gradient and all products vanish, then 1 on the diagonal; the step is then 0.
void clearHeld(double* derivatives) {
    for (const std::size_t held : kHeldIntrinsics) {
        derivatives[held] = 0.0;
    }
    for (const std::size_t held : kHeldPose) {
        derivatives[kIntrinsics + held] = 0.0;
    }
}

void hold(CameraNormalEq* eq) {
    for (const std::size_t held : kHeldIntrinsics) {
        eq->N[held * kIntrinsics + held] = 1.0;
    }
    for (const std::size_t held : kHeldPose) {
        eq->views[0].N[held * kPose + held] = 1.0;
    }
}

void clear(std::size_t views, CameraNormalEq* eq) {
    std::fill_n(eq->N, kIntrinsics * kIntrinsics, 0.0);
    std::fill_n(eq->g, kIntrinsics, 0.0);
    std::fill_n(eq->views, views, CameraNormalEq::View{});
    eq->cost = 0.0;
}

// The squared residuals, and the cut-off and the cost that follow from them.
void weigh(const CameraData& data, const CameraUnknowns& unknowns, double robustThreshold, double* squares,
           CameraNormalEq* eq) {
    double sum = 0.0;
    forEachSquare(data, unknowns, [&](std::size_t i, double e2) {
        squares[i] = e2;
        sum += e2;
    });
    if (!std::isfinite(sum)) {
        eq->cost = sum;
        return;
    }
    eq->cutOff2 = innerSquaredCutOff(static_cast<std::int32_t>(data.dots()), squares, robustThreshold);
    eq->cost = tukeyCost(squares, data.dots(), eq->cutOff2);
}

// Adds every dot's share; returns the plain sum of squares.
double accumulateDots(const CameraData& data, const CameraUnknowns& unknowns, bool robust, CameraNormalEq* eq) {
    const DotProjector projector{unknowns.intrinsics, data.parallel};
    double sum = 0.0;
    forEachDot(data, unknowns, [&](std::size_t v, std::size_t i, const ViewFrame& frame) {
        double du[kJoint];
        double dv[kJoint];
        const Point2d p = projector.project(frame, data.plane[i], du, dv);
        if (data.parallel) {
            clearHeld(du);
            clearHeld(dv);
        }
        const double r[2] = {data.image[i].x - p.x, data.image[i].y - p.y};
        const double e2 = r[0] * r[0] + r[1] * r[1];
        const double w = robust ? tukeyWeightOfSquare(e2, eq->cutOff2) : 1.0;
        if (w > 0.0) {
            accumulate(du, dv, r, w, eq, &eq->views[v]);
        }
        sum += e2;
    });
    return sum;
}

}  // namespace

double tukeyCost(const double* squares, std::size_t n, double cutOff2) {
    double cost = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        const double within = std::min(squares[i], cutOff2);
        const double share = within / cutOff2;
        cost += within * (1.0 - share + share * share / 3.0);  // (c^2 / 3) (1 - (1 - share)^3), without cancellation
    }
    return cost;
}

double meanReprojectionDistance(const CameraData& data, const CameraUnknowns& unknowns) {
    double sum = 0.0;
    forEachSquare(data, unknowns, [&](std::size_t, double e2) { sum += std::sqrt(e2); });
    return sum / static_cast<double>(data.dots());
}

bool innerCalcCameraNormalEq(const CameraData& data, const CameraUnknowns& unknowns, double robustThreshold,
                             double* squares, CameraNormalEq* equations) {
    clear(data.views(), equations);
    const bool robust = robustThreshold > 0.0;
    if (robust) {
        weigh(data, unknowns, robustThreshold, squares, equations);
        if (!std::isfinite(equations->cost)) {
            return false;
        }
    }
    const double sumOfSquares = accumulateDots(data, unknowns, robust, equations);
    if (!robust) {
        equations->cost = sumOfSquares;
    }
    mirrorUpperTriangle(kIntrinsics, equations->N);
    for (std::size_t v = 0; v < data.views(); ++v) {
        mirrorUpperTriangle(kPose, equations->views[v].N);
    }
    if (data.parallel) {
        hold(equations);
    }
    return std::isfinite(equations->cost);
}

}  // namespace zelm
