#include "targets.h"

#include "dots.h"
#include "numberText.h"

namespace zelm::tool {
namespace {

PointStatus statusOf(std::int32_t status) {
    switch (status) {
        case ZELM_MEASURE_CIRCLE_OK:
        case ZELM_MEASURE_CIRCLE_POINT_ALONE:
            return PointStatus::ok;
        case ZELM_MEASURE_CIRCLE_BEHIND:
            return PointStatus::behind;
        case ZELM_MEASURE_CIRCLE_DISTORTION:
            return PointStatus::distortion;
        case ZELM_MEASURE_CIRCLE_PARALLEL:
            return PointStatus::parallel;
        case ZELM_MEASURE_CIRCLE_MISMATCH:
            return PointStatus::mismatch;
        case ZELM_MEASURE_CIRCLE_HIDDEN:
            return PointStatus::hidden;
        default:
            return PointStatus::noDot;
    }
}

}  // namespace

std::vector<SpacePoint> measureTargets(const LoadedRig& rig, const std::string& file, const Picture& left,
                                       const Picture& right, const std::vector<PixelPair>& pairs, bool areBright,
                                       const PointLimits& limits) {
    const PairArrays seeds(pairs);
    const std::size_t count = pairs.size();
    std::vector<std::int32_t> statuses(count);
    std::vector<double> centres(3 * count);
    std::vector<double> normals(3 * count);
    std::vector<double> radii(count);
    std::vector<double> covariances(9 * count);
    std::vector<double> errors(2 * count);
    std::vector<double> angles(count);
    std::vector<double> ellipses(4 * count);
    std::vector<double> shares(2 * count, -1.0);  // where no dot is found, none is written
    const ZelmMeasureTargets out{sizeof(out),        0,
                                 statuses.data(),    centres.data(),
                                 normals.data(),     radii.data(),
                                 covariances.data(), errors.data(),
                                 angles.data(),      ellipses.data(),
                                 shares.data(),      limits.maxError,
                                 limits.minShare};
    const ZelmMeasureImage leftImage = imageOf(left);
    const ZelmMeasureImage rightImage = imageOf(right);
    rig.require(zelmMeasureCircles(rig.handle.get(), &leftImage, &rightImage, seeds.count, seeds.left.data(),
                                   seeds.right.data(), areBright ? 1 : 0, &out),
                file);
    std::vector<SpacePoint> points(count);
    for (std::size_t i = 0; i < count; ++i) {
        points[i] = {statusOf(statuses[i]),
                     {centres[3 * i], centres[3 * i + 1], centres[3 * i + 2]},
                     errors[2 * i],
                     errors[2 * i + 1],
                     angles[i] * kDegreesPerRadian,
                     {},
                     {}};
        for (std::size_t side = 0; side < 2; ++side) {
            if (const double share = shares[2 * i + side]; share >= 0.0) {
                const double* const centre = &ellipses[4 * i + 2 * side];
                points[i].dots[side] = SeenDot{{centre[0], centre[1]}, share};
            }
        }
        if (statuses[i] == ZELM_MEASURE_CIRCLE_OK) {
            const double* const C = &covariances[9 * i];
            points[i].disc = Disc{{normals[3 * i], normals[3 * i + 1], normals[3 * i + 2]},
                                  radii[i],
                                  {C[0], C[1], C[2], C[4], C[5], C[8]}};
        }
    }
    return points;
}

}  // namespace zelm::tool
