// Closed-form start values of a parallel-projection camera.
#include "telecentricClosedForm.h"

#include <cmath>

#include "cameraProjection.h"
#include "viewPose.h"

namespace zelm {
namespace {

constexpr double kPlaneTolerance = 1e-05;  // plane units
constexpr double kDegrees = 57.29577951308232;
constexpr double kSteepFrom = 45.0;  // degrees, of the image baseline of the x reference dot
constexpr double kSteepTo = 135.0;

bool isAt(const Point2d& p, double x, double y) {
    return std::fabs(p.x - x) < kPlaneTolerance && std::fabs(p.y - y) < kPlaneTolerance;
}

bool isUsable(double scale) {
    return std::isfinite(scale) && scale != 0.0;
}

}  // namespace

bool findReferenceDots(std::size_t n, const Point2d* plane, double xDistance, double yDistance, ReferenceDots* dots) {
    bool found[3] = {};
    for (std::size_t i = 0; i < n; ++i) {
        if (isAt(plane[i], 0.0, 0.0)) {
            dots->origin = i;
            found[0] = true;
        }
        if (isAt(plane[i], xDistance, 0.0)) {
            dots->onX = i;
            found[1] = true;
        }
        if (isAt(plane[i], 0.0, yDistance)) {
            dots->onY = i;
            found[2] = true;
        }
    }
    return found[0] && found[1] && found[2];
}

ImageScales scalesFromBaselines(Point2d toX, double xDistance, Point2d toY, double yDistance) {
    // A plate rolled by phi images (x, y) at (Sx (x cos phi - y sin phi), Sy (x sin phi + y cos phi)). Each scale is
    // read where the trigonometric factor is the greater one, so that neither is ever a quotient of small numbers.
    const double phi = std::atan2(toX.y, toX.x);
    const double c = std::cos(phi);
    const double s = std::sin(phi);
    const double degrees = std::fabs(phi) * kDegrees;
    if (degrees > kSteepFrom && degrees < kSteepTo) {
        return {toY.x / (yDistance * -s), toX.y / (xDistance * s)};
    }
    return {toX.x / (xDistance * c), toY.y / (yDistance * c)};
}

std::int32_t telecentricPose(const double* H, double* intrinsics, double* pose) {
    if (!isUsable(intrinsics[kAlpha]) || !isUsable(intrinsics[kBeta])) {
        return ZELM_ERR_CALIB_ESTIMATE;
    }
    // The plate's axes as the camera sees them, up to one common factor: columns of diag(alpha, beta)^-1 M.
    const double e1[2] = {H[0] / H[8] / intrinsics[kAlpha], H[3] / H[8] / intrinsics[kBeta]};
    const double e2[2] = {H[1] / H[8] / intrinsics[kAlpha], H[4] / H[8] / intrinsics[kBeta]};
    // Their depths z1, z2 make them perpendicular and of one length: (z1 + i z2)^2 = |e2|^2 - |e1|^2 - 2 i e1 e2.
    const double difference = (e2[0] * e2[0] + e2[1] * e2[1]) - (e1[0] * e1[0] + e1[1] * e1[1]);
    const double product = -2.0 * (e1[0] * e2[0] + e1[1] * e2[1]);
    const double size = std::hypot(difference, product);
    const double z1 = std::sqrt(0.5 * (size + std::fmax(difference, -size)));
    const double z2 = std::copysign(std::sqrt(0.5 * (size - std::fmin(difference, size))), product);
    const double length = std::sqrt(e1[0] * e1[0] + e1[1] * e1[1] + z1 * z1);
    intrinsics[kAlpha] *= length;
    intrinsics[kBeta] *= length;
    const double r1[3] = {e1[0] / length, e1[1] / length, z1 / length};
    const double r2[3] = {e2[0] / length, e2[1] / length, z2 / length};
    const double t[3] = {(H[2] / H[8] - intrinsics[kCx]) / intrinsics[kAlpha],
                         (H[5] / H[8] - intrinsics[kCy]) / intrinsics[kBeta], 0.0};
    return poseFromAxes(r1, r2, t, pose);
}

}  // namespace zelm
