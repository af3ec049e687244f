// Plane by total least squares (Pearson 1901).

#include <cmath>
#include <cstddef>

#include "principalAxes.h"
#include "robustDriver.h"
#include "zelm/fit.h"

namespace zelm {
namespace {

constexpr int32_t kMinPoints = 3;

// plane: a, b, c, d
int32_t fitPlaneSolve(int32_t n, const double* weights, const double* points, double* plane) {
    PrincipalAxes<3> p;
    if (const auto s = principalAxes<3>(n, weights, points, &p); s < 0) {
        return s;
    }
    const double* const normal = p.axes[2];
    plane[0] = normal[0];
    plane[1] = normal[1];
    plane[2] = normal[2];
    plane[3] = -(normal[0] * p.centroid[0] + normal[1] * p.centroid[1] + normal[2] * p.centroid[2]);
    return ZELM_OK;
}

void fitPlaneResidual(int32_t n, const double* points, const double* plane, double* residuals) {
    const double length = std::sqrt(plane[0] * plane[0] + plane[1] * plane[1] + plane[2] * plane[2]);
    for (size_t i = 0; i < static_cast<size_t>(n); ++i) {
        const double* const p = points + 3 * i;
        residuals[i] = std::fabs(plane[0] * p[0] + plane[1] * p[1] + plane[2] * p[2] + plane[3]) / length;
    }
}

}  // namespace
}  // namespace zelm

int32_t zelmFitPlane(int32_t iN, const Point3d* taPoints, int32_t iRobust, double dThreshold, double* daResult) {
    double plane[4];
    double t[3];
    double s;
    if (const auto status = zelm::innerFitRobust(3, zelm::kMinPoints, iN, reinterpret_cast<const double*>(taPoints),
                                                 iRobust, daResult != nullptr ? plane : nullptr, t, &s,
                                                 zelm::fitPlaneSolve, zelm::fitPlaneResidual, dThreshold);
        status < 0) {
        return status;
    }
    const double offset = plane[3] / s - plane[0] * t[0] - plane[1] * t[1] - plane[2] * t[2];
    daResult[0] = plane[0];
    daResult[1] = plane[1];
    daResult[2] = plane[2];
    daResult[3] = offset;
    return ZELM_OK;
}
