// Simulated calibrations, with flaws that their adjustment knows nothing of: two cameras of 1280 x 960 pixels, 120
// units apart, and plates of 13 x 11 dots at a pitch of 10, seen at the level of dot centres.
#ifndef ZELM_TEST_FLAWED_CALIBRATION_H
#define ZELM_TEST_FLAWED_CALIBRATION_H

#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "adjustCovariance.h"
#include "adjustStart.h"
#include "adjustmentChecks.h"
#include "camera.h"
#include "predictedDot.h"
#include "random.h"
#include "scene.h"

namespace zelmtest {

struct CalibrationFlaws {
    double noise = 0.01;                    // pixels
    double k3 = 0.0;                        // of the left lens
    double decentring = 0.0;                // p1 of the right lens
    double bow = 0.0;                       // plate units at the corners
    double pitchRatio = 1.0;                // along x over along y
    double diameter = 1.0;                  // times the stated one
    bool hasScales = false;                 // measured diameters
    bool isWide = false;                    // both lenses see twice the angle, from half the distance
    bool reachesCorners = false;            // the plates, which the images then do not show whole
    int movedView = -1;                     //
    std::array<double, 3> moved{};          // plate units
    std::array<double, 3> turnedDegrees{};  // about the plate's middle
};

struct SimulatedCalibration {
    zelm::measure::AdjustState state;
    std::vector<zelm::measure::AdjustView> views;
    zelm::measure::AdjustOptions options;
    zelm::measure::AdjustSummary summary;
    std::array<std::vector<double>, zelm::measure::kDotKinds> scales;

    // The checks take the first step to the solution themselves: from the truth that is enough.
    void takeTruth(double noise) { summary.noise = {noise, noise}; }
    void adjust() { summary = zelm::measure::adjust(state, views, options); }
    [[nodiscard]] std::vector<zelm::measure::Check> checks() const {
        return zelm::measure::checksOf({&state, &views, &options, &summary, &scales});
    }
};

inline zelm::measure::ProjectionCamera projectionCamera(const zelm::render::Camera& c) {
    return {c.projection == zelm::render::Projection::parallel, {c.fx, c.skew, c.fy, c.cx, c.cy, c.k1, c.k2}};
}

inline zelm::measure::MotionParameters motionOf(const zelm::render::Pose& pose) {
    const auto r = zelm::render::vectorFromRotation(pose.R);
    return {r[0], r[1], r[2], pose.t[0], pose.t[1], pose.t[2]};
}

// What the truth is beside what the adjustment is told.
inline Point2d flawedPixel(const zelm::measure::AdjustState& truth, zelm::measure::Side side, std::size_t view,
                           const zelm::measure::DotObservation& stated, const CalibrationFlaws& flaws) {
    using namespace zelm::measure;
    ImageParameters image = imageParameters(truth, side, view, stated.kind);
    MotionParameters pose = truth.poses[view];
    if (side != truth.base && static_cast<int>(view) == flaws.movedView) {
        constexpr double kRadians = 3.14159265358979323846 / 180.0;
        MotionParameters motion{};
        for (std::size_t i = 0; i < 3; ++i) {
            motion[i] = kRadians * flaws.turnedDegrees[i];
            motion[3 + i] = flaws.moved[i];
        }
        pose = composed(pose, motion);
    }
    image.pose = pose.data();
    const double stretch = std::sqrt(flaws.pitchRatio);
    const Vector3 place{stated.place[0] * stretch, stated.place[1] / stretch, stated.place[2]};
    const CircleInCamera circle = circleOf(image, place, stated.radius * flaws.diameter);
    Point2d pixel = dotOutline(image.camera, circle).centre;
    const double x = circle.centre[0] / circle.centre[2];
    const double y = circle.centre[1] / circle.centre[2];
    const double r2 = x * x + y * y;
    const auto& p = image.camera.p;
    if (side == kLeft) {
        pixel.x += p[kFx] * flaws.k3 * r2 * r2 * r2 * x;
        pixel.y += p[kFy] * flaws.k3 * r2 * r2 * r2 * y;
    } else {
        pixel.x += p[kFx] * flaws.decentring * 2.0 * x * y;
        pixel.y += p[kFy] * flaws.decentring * (r2 + 2.0 * y * y);
    }
    return pixel;
}

// Whole dots alone are measured.
inline bool isShown(const zelm::render::Camera& camera, const Point2d& pixel) {
    constexpr double kBorder = 20.0;  // pixels
    return pixel.x > kBorder && pixel.x < camera.width - kBorder && pixel.y > kBorder &&
           pixel.y < camera.height - kBorder;
}

// Not adjusted yet; it starts at the truth.
inline SimulatedCalibration simulate(const CalibrationFlaws& flaws, std::uint64_t seed, int viewCount = 12,
                                     const zelm::render::Plate& plate = {}) {
    using namespace zelm::measure;
    zelm::render::StereoRig rig = zelm::render::exampleRig();
    if (flaws.isWide) {
        for (zelm::render::Camera* camera : {&rig.left, &rig.right}) {
            camera->fx *= 0.5;
            camera->fy *= 0.5;
        }
        for (double& t : rig.rightFromLeft.t) {
            t *= 0.5;
        }
    }
    SimulatedCalibration simulated;
    AdjustState& state = simulated.state;
    state.cameras = {projectionCamera(rig.left), projectionCamera(rig.right)};
    state.relative = motionOf(rig.rightFromLeft);
    for (const auto& pose : zelm::render::makeViewPoses(plate, rig, viewCount, seed)) {
        state.poses.push_back(motionOf(pose));
    }
    const double halfX = 0.5 * (plate.maxX - plate.minX) * plate.pitchX;
    const double halfY = 0.5 * (plate.maxY - plate.minY) * plate.pitchY;
    state.bow.extent = std::hypot(halfX, halfY);
    if (flaws.reachesCorners) {
        for (std::size_t view = 0; view < state.poses.size(); ++view) {
            constexpr std::array<double, 5> kAlongX{0.0, 1.0, -1.0, 1.0, -1.0};
            constexpr std::array<double, 5> kAlongY{0.0, 1.0, 1.0, -1.0, -1.0};
            state.poses[view][3] += 75.0 * kAlongX[view % 5];
            state.poses[view][4] += 60.0 * kAlongY[view % 5];
        }
    }
    AdjustState truth = state;
    truth.bow.b = {flaws.bow, 0.0, flaws.bow};  // a sphere: b at half the diagonal

    Random random(seed * 1000003 + 17);
    simulated.views.resize(state.poses.size());
    for (std::size_t view = 0; view < state.poses.size(); ++view) {
        for (const Side side : {kLeft, kRight}) {
            for (const auto& printed : zelm::render::plateDots(plate)) {
                DotObservation dot;
                dot.index = {printed.index.x, printed.index.y};
                dot.kind = printed.marker ? kMarkerDot : kPlainDot;
                dot.place = {printed.centre.x, printed.centre.y, 0.0};
                dot.radius = printed.radius;
                dot.pixel = flawedPixel(truth, side, view, dot, flaws);
                if (!isShown(side == kLeft ? rig.left : rig.right, dot.pixel)) {
                    continue;
                }
                dot.pixel.x += flaws.noise * random.normal();
                dot.pixel.y += flaws.noise * random.normal();
                simulated.views[view].dots[side].push_back(dot);
                if (flaws.hasScales) {
                    simulated.scales[dot.kind].push_back(flaws.diameter + 0.01 * random.normal());
                }
            }
        }
    }
    return simulated;
}

inline bool alarms(const zelm::measure::Check& check) {
    using zelm::measure::CheckVerdict;
    return check.verdict == CheckVerdict::notable || check.verdict == CheckVerdict::wrong;
}

// The first check of a kind, of a side where one is named.
inline const zelm::measure::Check& checkOf(const std::vector<zelm::measure::Check>& checks,
                                           zelm::measure::CheckKind kind, int side = -1) {
    for (const auto& check : checks) {
        if (check.kind == kind && (side < 0 || check.side == side)) {
            return check;
        }
    }
    return checks.front();
}

}  // namespace zelmtest

#endif
