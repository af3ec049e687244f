#include "targetCamera.h"

#include <algorithm>

namespace zelm::measure {
namespace {

// Whether the lens still moves points outwards that lie farther out.
bool isBeforeFold(const ProjectionCamera& lens, const Vector3& c) {
    const double depth = lens.isParallel ? 1.0 : c[2];
    const double r2 = (c[0] * c[0] + c[1] * c[1]) / (depth * depth);
    return 1.0 + (3.0 * lens.p[kK1] + 5.0 * lens.p[kK2] * r2) * r2 > 0.0;
}

}  // namespace

TargetCamera::TargetCamera(const RigCamera& camera) : lens(projectionOf(camera)) {
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
    if ((!lens.isParallel && !(c[2] > 0.0)) || !isBeforeFold(lens, c)) {
        return std::nullopt;
    }
    const Projection seen = measure::project(lens, c);
    return TargetPixel{seen.pixel, timesTransposed(R, seen.byPoint[0]), timesTransposed(R, seen.byPoint[1])};
}

Vector3 TargetCamera::towards(const Vector3& X) const {
    if (lens.isParallel) {
        return {-R[6], -R[7], -R[8]};
    }
    return unit({centre[0] - X[0], centre[1] - X[1], centre[2] - X[2]});
}

}  // namespace zelm::measure
