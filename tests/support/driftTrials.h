// Pixel pairs of scattered points, as a rig sees them whose right camera has moved since the calibration.
#ifndef ZELM_TEST_DRIFT_TRIALS_H
#define ZELM_TEST_DRIFT_TRIALS_H

#include <array>
#include <cstddef>
#include <numbers>
#include <vector>

#include "measureRigs.h"
#include "random.h"

namespace zelmtest {

// Turn of the right camera about its own axes, radians, and shift of its centre in its own frame.
struct RightMove {
    std::array<double, 3> turn{};
    std::array<double, 3> shift{};
};

inline double radiansOf(double degrees) {
    return degrees * std::numbers::pi / 180.0;
}

// X' = exp(-turn) (X - shift) of what was X in the right camera's frame.
inline RigTruth moved(const RigTruth& rig, const RightMove& move) {
    RigTruth result = rig;
    const render::Pose turned = poseOfVectors({-move.turn[0], -move.turn[1], -move.turn[2]}, {0.0, 0.0, 0.0});
    const render::Pose shifted{{1, 0, 0, 0, 1, 0, 0, 0, 1}, {-move.shift[0], -move.shift[1], -move.shift[2]}};
    result.rightPose = render::compose(render::compose(turned, shifted), rig.rightPose);
    return result;
}

// Two cameras side by side, 120 apart and turned to each other by 17 degrees, some 430 units from the plate.
inline RigTruth sideBySideRig() {
    RigTruth rig = trueRig();
    rig.leftPose = poseOfVectors({0.02, 0.15, 0.01}, {-4.0, 2.0, 430.0});
    rig.rightPose = render::compose(poseOfVectors({0.006, -0.29, -0.01}, {119.0, 1.0, 14.0}), rig.leftPose);
    return rig;
}

struct DriftScene {
    std::size_t points = 200;
    double noise = 0.05;        // pixels, of each coordinate
    double wrong = 0.0;         // part of the pairs whose right pixel is anywhere
    double depthRange = 120.0;  // plate units, about the plate of view 0
    double halfWidth = 170.0;   // plate units; what both images show
    double halfHeight = 70.0;
};

struct DriftPairs {
    std::vector<double> left;
    std::vector<double> right;
    std::vector<bool> isWrong;
};

// Points that both cameras see. `rig` is the rig as it is now.
inline DriftPairs driftPairs(const RigTruth& rig, const DriftScene& scene, std::uint64_t seed) {
    Random random(seed);
    DriftPairs pairs;
    const auto isInside = [&](const Point2d& p) {
        return p.x >= 0.0 && p.y >= 0.0 && p.x <= rig.left.width - 1 && p.y <= rig.left.height - 1;
    };
    while (pairs.isWrong.size() < scene.points) {
        const Point3d X{random.uniform(-scene.halfWidth, scene.halfWidth),
                        random.uniform(-scene.halfHeight, scene.halfHeight),
                        random.uniform(-0.5, 0.5) * scene.depthRange};
        const Point2d l = rig.raw('L', X);
        Point2d r = rig.raw('R', X);
        if (!isInside(l) || !isInside(r)) {
            continue;
        }
        const bool isWrong = random.uniform() < scene.wrong;
        if (isWrong) {
            r = {random.uniform(0.0, rig.right.width - 1.0), random.uniform(0.0, rig.right.height - 1.0)};
        }
        pairs.isWrong.push_back(isWrong);
        const auto noisy = [&](double x) { return x + scene.noise * random.normal(); };
        pairs.left.insert(pairs.left.end(), {noisy(l.x), noisy(l.y)});
        pairs.right.insert(pairs.right.end(), {noisy(r.x), noisy(r.y)});
    }
    return pairs;
}

inline std::int32_t driftOf(const OpenedRig& rig, const DriftPairs& pairs, const ZelmMeasureDriftOptions* options,
                            ZelmMeasureDrift* drift) {
    *drift = emptyRecord<ZelmMeasureDrift>();
    return zelmMeasureDrift(rig.get(), static_cast<std::int64_t>(pairs.isWrong.size()), pairs.left.data(),
                            pairs.right.data(), options, nullptr, drift);
}

}  // namespace zelmtest

#endif
