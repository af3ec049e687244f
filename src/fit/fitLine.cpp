// Line in the plane by total least squares (Pearson 1901).

#include <cmath>
#include <cstddef>

#include "principalAxes.h"
#include "robustDriver.h"
#include "zelm/fit.h"

namespace zelm {
namespace {

constexpr int32_t kMinPoints = 2;

// line: a, b, c
int32_t fitLineSolve(int32_t n, const double* weights, const double* points, double* line) {
    PrincipalAxes<2> p;
    if (const auto s = principalAxes<2>(n, weights, points, &p); s < 0) {
        return s;
    }
    const double* const normal = p.axes[1];
    line[0] = normal[0];
    line[1] = normal[1];
    line[2] = -(normal[0] * p.centroid[0] + normal[1] * p.centroid[1]);
    return ZELM_OK;
}

void fitLineResidual(int32_t n, const double* points, const double* line, double* residuals) {
    const double length = std::sqrt(line[0] * line[0] + line[1] * line[1]);
    for (size_t i = 0; i < static_cast<size_t>(n); ++i) {
        residuals[i] = std::fabs(line[0] * points[2 * i] + line[1] * points[2 * i + 1] + line[2]) / length;
    }
}

}  // namespace
}  // namespace zelm

int32_t zelmFitLine(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold, Line2d* tResult) {
    double line[3];
    double t[2];
    double s;
    if (const auto status = zelm::innerFitRobust(2, zelm::kMinPoints, iN, reinterpret_cast<const double*>(taPoints),
                                                 iRobust, tResult != nullptr ? line : nullptr, t, &s,
                                                 zelm::fitLineSolve, zelm::fitLineResidual, dThreshold);
        status < 0) {
        return status;
    }
    *tResult = {line[0], line[1], line[2] / s - line[0] * t[0] - line[1] * t[1]};
    return ZELM_OK;
}
