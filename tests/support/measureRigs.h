// Rigs of the measuring library with exact parameters, and what their cameras see by the cameras' equations alone.
#ifndef ZELM_TEST_MEASURE_RIGS_H
#define ZELM_TEST_MEASURE_RIGS_H

#include <gtest/gtest.h>
#include <zelmMeasure.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "pairFixture.h"
#include "rigFixtures.h"

namespace zelmtest {

// Closes its rig at the end of a test.
class OpenedRig {
public:
    explicit OpenedRig(const std::vector<unsigned char>& block) {
        EXPECT_EQ(zelmMeasureRigOpen(block.data(), static_cast<std::int64_t>(block.size()), &handle), ZELM_OK)
            << error();
    }
    explicit OpenedRig(const Zelm2ViewCalib* calib) {
        EXPECT_EQ(zelmMeasureRigOfCalib(calib, &handle), ZELM_OK) << error();
    }
    OpenedRig(const OpenedRig&) = delete;
    OpenedRig& operator=(const OpenedRig&) = delete;
    ~OpenedRig() { zelmMeasureRigClose(&handle); }

    [[nodiscard]] ZelmMeasureRig* get() const { return handle; }
    [[nodiscard]] std::string error() const { return zelmMeasureRigError(handle); }

private:
    ZelmMeasureRig* handle = nullptr;
};

// A record with its size set, all else 0.
template <class Record>
Record emptyRecord() {
    Record record{};
    record.size = static_cast<std::int32_t>(sizeof record);
    return record;
}

// In camera coordinates.
inline std::array<double, 3> inCamera(const render::Pose& pose, const Point3d& X) {
    const auto& R = pose.R;
    return {R[0] * X.x + R[1] * X.y + R[2] * X.z + pose.t[0], R[3] * X.x + R[4] * X.y + R[5] * X.z + pose.t[1],
            R[6] * X.x + R[7] * X.y + R[8] * X.z + pose.t[2]};
}

// In world coordinates.
inline Point3d inWorld(const render::Pose& pose, const std::array<double, 3>& c) {
    const auto& R = pose.R;
    const std::array<double, 3> d{c[0] - pose.t[0], c[1] - pose.t[1], c[2] - pose.t[2]};
    return {R[0] * d[0] + R[3] * d[1] + R[6] * d[2], R[1] * d[0] + R[4] * d[1] + R[7] * d[2],
            R[2] * d[0] + R[5] * d[1] + R[8] * d[2]};
}

// Two cameras with images of the same size. The world is the frame of the plate of view 0.
struct RigTruth {
    render::Camera left;
    render::Camera right;
    render::Pose leftPose;
    render::Pose rightPose;

    [[nodiscard]] const render::Camera& camera(char side) const { return side == 'L' ? left : right; }
    [[nodiscard]] const render::Pose& pose(char side) const { return side == 'L' ? leftPose : rightPose; }

    [[nodiscard]] double depth(char side, const Point3d& X) const { return inCamera(pose(side), X)[2]; }
    [[nodiscard]] Point2d ideal(char side, const Point3d& X) const { return idealPixel(camera(side), pose(side), X); }
    // As taken.
    [[nodiscard]] Point2d raw(char side, const Point3d& X) const {
        const render::Camera& c = camera(side);
        const auto x = inCamera(pose(side), X);
        const double depth = c.projection == render::Projection::parallel ? 1.0 : x[2];
        const double r2 = (x[0] * x[0] + x[1] * x[1]) / (depth * depth);
        const double gain = 1.0 + (c.k1 + c.k2 * r2) * r2;
        const Point2d p = ideal(side, X);
        return {c.cx + gain * (p.x - c.cx), c.cy + gain * (p.y - c.cy)};
    }
    [[nodiscard]] TruePair pair() const {
        TruePair pair;
        pair.left = calibrated(left, leftPose);
        pair.right = calibrated(right, rightPose);
        pair.width = left.width;
        pair.height = left.height;
        return pair;
    }
    [[nodiscard]] std::vector<unsigned char> block() const { return blockOf(pair()); }
};

inline render::Pose poseOfVectors(const std::array<double, 3>& r, const std::array<double, 3>& t) {
    return {render::rotationFromVector(r), t};
}

// Two converging cameras some 450 units from the plate with a baseline of about 150, and lenses; a parallel left camera
// has 3 pixels a unit.
inline RigTruth trueRig(int width = 1280, int height = 960,
                        render::Projection leftProjection = render::Projection::perspective) {
    RigTruth rig;
    rig.left.fx = 1688.6;
    rig.left.fy = 1686.9;
    rig.right.fx = 1694.3;
    rig.right.fy = 1692.9;
    rig.left.k1 = -0.12;
    rig.left.k2 = 0.05;
    rig.right.k1 = -0.114;
    rig.right.k2 = 0.043;
    rig.leftPose = poseOfVectors({0.05, 0.18, 0.03}, {-8.0, 4.0, 455.0});
    rig.rightPose = poseOfVectors({-0.04, -0.17, -0.02}, {7.0, -3.0, 448.0});
    if (leftProjection == render::Projection::parallel) {
        rig.left.projection = leftProjection;
        rig.left.fx = rig.left.fy = 3.0;
        rig.left.k1 = -1e-8;
        rig.left.k2 = 0.0;
    }
    for (render::Camera* camera : {&rig.left, &rig.right}) {
        camera->width = width;
        camera->height = height;
        camera->cx = 0.5 * width + 1.3;
        camera->cy = 0.5 * height - 1.4;
    }
    return rig;
}

// Two parallel cameras, which can be calibrated but not triangulate.
inline std::vector<unsigned char> parallelBlock() {
    return blockOf(makePair(2, 2));
}

}  // namespace zelmtest

#endif
