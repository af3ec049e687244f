// Lines in the plane and in space, and planes, by total least squares (Pearson 1901).

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "principalAxes.h"
#include "robustDriver.h"
#include "zelm/fit.h"

namespace zelm {
namespace {

constexpr int32_t kMinPointsOfLine = 2;
constexpr int32_t kMinPointsOfPlane = 3;

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

// line: a point, then the unit direction
int32_t fitLineIn3dSolve(int32_t n, const double* weights, const double* points, double* line) {
    PrincipalAxes<3> p;
    if (const auto s = principalAxes<3>(n, weights, points, &p); s < 0) {
        return s;
    }
    std::copy_n(p.centroid, 3, line);
    std::copy_n(p.axes[0], 3, line + 3);
    return ZELM_OK;
}

// |d x u| for the unit direction u: the same distance as sqrt(|d|^2 - (u d)^2), without its cancellation, which would
// leave 1e-8 of the extent for points on the line and re-weight them by rounding noise.
void fitLineIn3dResidual(int32_t n, const double* points, const double* line, double* residuals) {
    const double* const u = line + 3;
    const double length = std::sqrt(u[0] * u[0] + u[1] * u[1] + u[2] * u[2]);
    for (size_t i = 0; i < static_cast<size_t>(n); ++i) {
        const double d[3] = {points[3 * i] - line[0], points[3 * i + 1] - line[1], points[3 * i + 2] - line[2]};
        const double x = d[1] * u[2] - d[2] * u[1];
        const double y = d[2] * u[0] - d[0] * u[2];
        const double z = d[0] * u[1] - d[1] * u[0];
        residuals[i] = std::sqrt(x * x + y * y + z * z) / length;
    }
}

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

int32_t zelmFitLine(int32_t iN, const Point2d* taPoints, int32_t iRobust, double dThreshold, Line2d* tResult) {
    double line[3];
    double t[2];
    double s;
    if (const auto status = zelm::innerFitRobust(
            2, zelm::kMinPointsOfLine, iN, reinterpret_cast<const double*>(taPoints), iRobust,
            tResult != nullptr ? line : nullptr, t, &s, zelm::fitLineSolve, zelm::fitLineResidual, dThreshold);
        status < 0) {
        return status;
    }
    *tResult = {line[0], line[1], line[2] / s - line[0] * t[0] - line[1] * t[1]};
    return ZELM_OK;
}

int32_t zelmFitLineIn3d(int32_t iN, const Point3d* taPoints, int32_t iRobust, double dThreshold, double* daResult) {
    double line[6];
    double t[3];
    double s;
    if (const auto status = zelm::innerFitRobust(
            3, zelm::kMinPointsOfLine, iN, reinterpret_cast<const double*>(taPoints), iRobust,
            daResult != nullptr ? line : nullptr, t, &s, zelm::fitLineIn3dSolve, zelm::fitLineIn3dResidual, dThreshold);
        status < 0) {
        return status;
    }
    for (size_t c = 0; c < 3; ++c) {
        daResult[c] = line[c] / s + t[c];
        daResult[c + 3] = line[c + 3];
    }
    return ZELM_OK;
}

int32_t zelmFitPlane(int32_t iN, const Point3d* taPoints, int32_t iRobust, double dThreshold, double* daResult) {
    double plane[4];
    double t[3];
    double s;
    if (const auto status = zelm::innerFitRobust(
            3, zelm::kMinPointsOfPlane, iN, reinterpret_cast<const double*>(taPoints), iRobust,
            daResult != nullptr ? plane : nullptr, t, &s, zelm::fitPlaneSolve, zelm::fitPlaneResidual, dThreshold);
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
