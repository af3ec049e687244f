#include "targetCamera.h"

#include <algorithm>

namespace zelm::measure {

TargetCamera::TargetCamera(const RigCamera& camera)
    : parallel(camera.isParallel()),
      fx(camera.intrinsics.A[0]),
      skew(camera.intrinsics.A[1]),
      fy(camera.intrinsics.A[4]),
      cx(camera.intrinsics.A[2]),
      cy(camera.intrinsics.A[5]),
      k1(camera.intrinsics.k1),
      k2(camera.intrinsics.k2) {
    std::copy_n(camera.pose().R, 9, R.begin());
    std::copy_n(camera.pose().t, 3, t.begin());
    const Vector3 turned = timesTransposed(R, t);
    centre = {-turned[0], -turned[1], -turned[2]};
}

std::optional<TargetPixel> TargetCamera::project(const Vector3& X) const {
    Vector3 c = times(R, X);
    for (std::size_t i = 0; i < 3; ++i) {
        c[i] += t[i];
    }
    if (!parallel && !(c[2] > 0.0)) {
        return std::nullopt;
    }
    // Normalised coordinates and their derivatives by the camera's.
    const double inverse = parallel ? 1.0 : 1.0 / c[2];
    const double x = c[0] * inverse;
    const double y = c[1] * inverse;
    const double depthSlope = parallel ? 0.0 : -inverse;
    const double r2 = x * x + y * y;
    const double gain = 1.0 + (k1 + k2 * r2) * r2;
    const double gainSlope = 2.0 * (k1 + 2.0 * k2 * r2);  // by x is this times x
    if (!(gain + gainSlope * r2 > 0.0)) {
        return std::nullopt;
    }
    const double u = fx * x + skew * y;
    const double v = fy * y;
    const double ux = gain * fx + u * gainSlope * x;
    const double uy = gain * skew + u * gainSlope * y;
    const double vx = v * gainSlope * x;
    const double vy = gain * fy + v * gainSlope * y;
    TargetPixel seen;
    seen.pixel = {cx + gain * u, cy + gain * v};
    seen.dx = timesTransposed(R, {ux * inverse, uy * inverse, (ux * x + uy * y) * depthSlope});
    seen.dy = timesTransposed(R, {vx * inverse, vy * inverse, (vx * x + vy * y) * depthSlope});
    return seen;
}

Vector3 TargetCamera::towards(const Vector3& X) const {
    if (parallel) {
        return {-R[6], -R[7], -R[8]};
    }
    return unit({centre[0] - X[0], centre[1] - X[1], centre[2] - X[2]});
}

}  // namespace zelm::measure
