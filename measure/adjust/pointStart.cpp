// The start of an adjustment of points: each camera on its own, and what the two have in common.
#include <algorithm>
#include <cmath>
#include <optional>
#include <string>

#include "adjuster.h"
#include "coreStatus.h"
#include "fault.h"
#include "platePose.h"
#include "pointTarget.h"

namespace zelm::measure {
namespace {

constexpr double kRobust = 3.5;  // Tukey's cut-off, robust deviations, as of the core's own calibration
constexpr std::size_t kFewestViews = 3;

using OwnPoses = std::vector<std::optional<MotionParameters>>;

std::string nameOf(const PointTarget& target, Side side) {
    return target.isPair() ? side == kLeft ? "the left camera" : "the right camera" : "the camera";
}

[[noreturn]] void refuseEstimate(const std::string& camera, std::int32_t status) {
    switch (status) {
        case ZELM_ERR_CALIB_HOMOGRAPHY:
            refuse(camera +
                   " sees the points of a view not spread over a plane: leave out views that show the target "
                   "edge-on, and see that X and Y belong to their points");
        case ZELM_ERR_CALIB_ESTIMATE:
            refuse("the views do not determine " + camera +
                   ": tilt the target differently from view to view, by 20 degrees or more, and check X and Y");
        case ZELM_ERR_CALIB_NOT_CONVERGED:
            refuse("the estimation of " + camera +
                   " does not converge: check X and Y, and that all views have the same lens setting");
        default:
            refuse(camera + " cannot be calibrated from these points (status " + std::to_string(status) + ")");
    }
}

// The points of one view as the core takes them.
struct Entry {
    std::vector<Point2d> plane;
    std::vector<Point2d> image;

    explicit Entry(const std::vector<DotObservation>& dots) {
        plane.reserve(dots.size());
        image.reserve(dots.size());
        for (const DotObservation& dot : dots) {
            plane.push_back({dot.place[0], dot.place[1]});
            image.push_back(dot.pixel);
        }
    }
    Zelm2ViewPtnEntry record() { return {static_cast<std::int32_t>(plane.size()), plane.data(), image.data()}; }
};

MotionParameters motionOf(const ZelmCameraExtrinsics& pose) {
    Matrix3 R{};
    std::copy_n(pose.R, 9, R.begin());
    return motionParameters(R, {pose.t[0], pose.t[1], pose.t[2]});
}

// Calibrates a camera from the views that it sees well enough, and gives the poses of these.
OwnPoses calibrate(PointTarget& target, Side side) {
    std::vector<std::size_t> used;
    std::vector<Entry> entries;
    for (std::size_t view = 0; view < target.views.size(); ++view) {
        AdjustView one;
        one.dots[side] = target.views[view].dots[side];
        if (statusOf(one) == PointViewStatus::ok) {
            used.push_back(view);
            entries.emplace_back(one.dots[side]);
        }
    }
    const std::string name = nameOf(target, side);
    if (used.size() < kFewestViews) {
        refuse(name + " sees 6 points or more, not all on one line, in only " + std::to_string(used.size()) +
               " views: take at least " + std::to_string(kFewestViews));
    }
    std::vector<Zelm2ViewPtnEntry> records;
    records.reserve(entries.size());
    for (Entry& entry : entries) {
        records.push_back(entry.record());
    }
    RigCamera& camera = target.cameras[side];
    std::vector<ZelmCameraExtrinsics> poses(used.size());
    const std::int32_t status = statusOfCore(ZELM_ERR_CALIB_HOMOGRAPHY, [&] {
        return zelmCalibCameraParam(static_cast<std::int32_t>(used.size()), records.data(), kRobust, &camera.intrinsics,
                                    poses.data(), nullptr, camera.model);
    });
    if (status < 0) {
        refuseEstimate(name, status);
    }
    OwnPoses own(target.views.size());
    for (std::size_t i = 0; i < used.size(); ++i) {
        own[used[i]] = motionOf(poses[i]);
    }
    return own;
}

// How far apart two relative poses put what is about `distance` away.
double distanceBetween(const MotionParameters& a, const MotionParameters& b, double distance) {
    const MotionParameters d = composed(a, inverted(b));
    return distance * std::hypot(d[0], d[1], d[2]) + std::hypot(d[3], d[4], d[5]);
}

// Of the relative poses that the views tell, the one with the least sum of distances from all others.
MotionParameters relativePose(const OwnPoses& base, const OwnPoses& other) {
    std::vector<MotionParameters> candidates;
    std::vector<double> distances;
    for (std::size_t view = 0; view < base.size(); ++view) {
        if (base[view] && other[view]) {
            candidates.push_back(composed(*other[view], inverted(*base[view])));
            distances.push_back(std::fabs((*base[view])[5]));
        }
    }
    if (candidates.empty()) {
        refuse(
            "no view is seen well enough by both cameras, which tells how they stand to each other: 6 points or "
            "more in each, not all on one line");
    }
    const double distance = median(distances);
    std::size_t best = 0;
    double least = HUGE_VAL;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        double sum = 0.0;
        for (const MotionParameters& candidate : candidates) {
            sum += distanceBetween(candidates[i], candidate, distance);
        }
        if (sum < least) {
            least = sum;
            best = i;
        }
    }
    return candidates[best];
}

double extentOf(const std::vector<AdjustView>& views) {
    double greatest = 0.0;
    for (const AdjustView& view : views) {
        for (const auto& list : view.dots) {
            for (const DotObservation& dot : list) {
                greatest = std::max(greatest, std::hypot(dot.place[0], dot.place[1]));
            }
        }
    }
    return greatest;
}

}  // namespace

AdjustState startOf(PointTarget& target) {
    AdjustState state;
    state.base = target.only();
    state.bow.extent = extentOf(target.views);
    std::array<OwnPoses, kSides> own{OwnPoses(target.views.size()), OwnPoses(target.views.size())};
    for (const Side side : {kLeft, kRight}) {
        if (target.has(side)) {
            own[side] = calibrate(target, side);
            state.cameras[side] = projectionOf(target.cameras[side]);
        }
    }
    if (target.isPair()) {
        state.relative = relativePose(own[state.base], own[state.other()]);
    }
    state.poses.reserve(target.views.size());
    for (std::size_t i = 0; i < target.views.size(); ++i) {
        const AdjustView& view = target.views[i];
        const auto poseIn = [&](Side side) {
            return own[side][i] || !target.has(side) ? own[side][i] : posedPlate(state, side, view.dots[side]);
        };
        auto pose = poseIn(state.base);
        if (!pose && target.isPair()) {
            if (const auto seen = poseIn(state.other())) {
                pose = composed(inverted(state.relative), *seen);
            }
        }
        if (!pose) {
            refuse("the points of view " + std::to_string(i) + " do not tell where its target stands: leave it out");
        }
        state.poses.push_back(*pose);
    }
    return state;
}

}  // namespace zelm::measure
