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

std::int32_t headOnPose(const double* H, const double* intrinsics, double* pose) {
    const double sx = intrinsics[kAlpha];
    const double sy = intrinsics[kBeta];
    if (!isUsable(sx) || !isUsable(sy)) {
        return ZELM_ERR_CALIB_ESTIMATE;
    }
    const double r1[3] = {H[0] / H[8] / sx, H[3] / H[8] / sy, 0.0};
    const double r2[3] = {H[1] / H[8] / sx, H[4] / H[8] / sy, 0.0};
    const double t[3] = {(H[2] / H[8] - intrinsics[kCx]) / sx, (H[5] / H[8] - intrinsics[kCy]) / sy, 0.0};
    return poseFromAxes(r1, r2, t, pose);
}

std::int32_t shearToTilt(double* intrinsics, double* pose) {
    const ViewFrame frame(pose);
    const double* const R = frame.R;
    const double* const t = frame.t;
    // M = (alpha, gamma; 0, beta) times the first two rows and columns of R.
    const double alpha = intrinsics[kAlpha];
    const double beta = intrinsics[kBeta];
    const double gamma = intrinsics[kGamma];
    const double M[4] = {alpha * R[0] + gamma * R[3], alpha * R[1] + gamma * R[4], beta * R[3], beta * R[4]};
    const double m[2] = {alpha * t[0] + gamma * t[1], beta * t[1]};
    const double sx = std::copysign(std::hypot(M[0], M[1]), alpha);
    const double sy = std::copysign(std::hypot(M[2], M[3]), beta);
    // The plate's axes as the camera sees them, up to a common factor. Their depths z1, z2 make them perpendicular
    // and of one length: (z1 + i z2)^2 = |e2|^2 - |e1|^2 - 2 i e1 e2.
    const double e1[2] = {M[0] / sx, M[2] / sy};
    const double e2[2] = {M[1] / sx, M[3] / sy};
    const double real = (e2[0] * e2[0] + e2[1] * e2[1]) - (e1[0] * e1[0] + e1[1] * e1[1]);
    const double imaginary = -2.0 * (e1[0] * e2[0] + e1[1] * e2[1]);
    const double size = std::hypot(real, imaginary);
    const double z1 = std::sqrt(std::fmax(0.0, 0.5 * (size + real)));
    const double z2 = std::copysign(std::sqrt(std::fmax(0.0, 0.5 * (size - real))), imaginary);
    const double length = std::sqrt(e1[0] * e1[0] + e1[1] * e1[1] + z1 * z1);
    intrinsics[kAlpha] = sx * length;
    intrinsics[kBeta] = sy * length;
    intrinsics[kGamma] = 0.0;
    const double r1[3] = {e1[0] / length, e1[1] / length, z1 / length};
    const double r2[3] = {e2[0] / length, e2[1] / length, z2 / length};
    const double moved[3] = {m[0] / intrinsics[kAlpha], m[1] / intrinsics[kBeta], t[2]};
    return poseFromAxes(r1, r2, moved, pose);
}

}  // namespace zelm
