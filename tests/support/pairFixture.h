// Calibrated pairs with exact parameters: a calibration block written from known cameras and loaded, as a user reloads
// one.
#ifndef ZELM_TEST_PAIR_FIXTURE_H
#define ZELM_TEST_PAIR_FIXTURE_H

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "calibBlock.h"
#include "random.h"
#include "stereoFixtures.h"
#include "stereoGeometry.h"
#include "zelmLib.h"

namespace zelmtest {

struct TruePair {
    zelm::CalibratedCamera left{};
    zelm::CalibratedCamera right{};
    std::int32_t width = 1280;
    std::int32_t height = 960;

    [[nodiscard]] const zelm::CalibratedCamera& camera(char name) const { return name == 'L' ? left : right; }

    // Raw pixel of a world point.
    [[nodiscard]] Point2d project(char name, const Point3d& X) const {
        const zelm::CalibratedCamera& c = camera(name);
        Point2d p{};
        zelmCalibChange3Dto2D(&X, &c.intrinsics, &c.pose, &p, c.model);
        return p;
    }
    // Undistorted pixel of a world point.
    [[nodiscard]] Point2d projectIdeal(char name, const Point3d& X) const {
        zelm::CalibratedCamera c = camera(name);
        c.intrinsics.k1 = c.intrinsics.k2 = 0.0;
        Point2d p{};
        zelmCalibChange3Dto2D(&X, &c.intrinsics, &c.pose, &p, c.model);
        return p;
    }
};

inline ZelmCameraIntrinsics trueIntrinsics(double alpha, double beta, double cx, double cy, double k1, double k2) {
    return {{alpha, 0.0, cx, 0.0, beta, cy, 0.0, 0.0, 1.0}, alpha, beta, 0.0, cx, cy, 0.0, k1, k2, {}};
}

inline ZelmCameraExtrinsics truePose(double rx, double ry, double rz, double tx, double ty, double tz) {
    ZelmCameraExtrinsics pose{{}, {tx, ty, tz}, {rx, ry, rz}};
    zelmCalibRodrigues(0, pose.r, pose.R);
    return pose;
}

// Two converging cameras about 450 units from the plate, a baseline of about 150. A parallel camera (model 2) has 3
// pixels a unit.
inline TruePair makePair(std::int32_t leftModel, std::int32_t rightModel, Random* random = nullptr) {
    const auto jitter = [&](double scale) { return random != nullptr ? random->uniform(-scale, scale) : 0.0; };
    TruePair pair;
    pair.left.model = leftModel;
    pair.right.model = rightModel;
    pair.left.intrinsics = trueIntrinsics(1688.6 + jitter(50.0), 1686.9 + jitter(50.0), 642.3, 476.2, -0.12, 0.05);
    pair.right.intrinsics = trueIntrinsics(1694.3 + jitter(50.0), 1692.9 + jitter(50.0), 636.7, 484.4, -0.114, 0.043);
    pair.left.pose =
        truePose(0.05 + jitter(0.1), 0.18 + jitter(0.1), 0.03 + jitter(0.3), -8.0, 4.0, 455.0 + jitter(40.0));
    pair.right.pose =
        truePose(-0.04 + jitter(0.1), -0.17 + jitter(0.1), -0.02 + jitter(0.3), 7.0, -3.0, 448.0 + jitter(40.0));
    for (zelm::CalibratedCamera* c : {&pair.left, &pair.right}) {
        if (c->model == 1) {
            c->intrinsics.theta = 0.004;
            c->intrinsics.gamma = 0.004 * c->intrinsics.beta;
            c->intrinsics.A[1] = std::tan(0.004) * c->intrinsics.A[4];
        }
        if (c->model == 2) {
            c->intrinsics = trueIntrinsics(3.0, 3.0, c->intrinsics.cx, c->intrinsics.cy, -1e-9, 0.0);
        }
    }
    return pair;
}

// The block of a pair, as a calibration of three views would leave it; only view 0 matters to the geometry.
inline std::vector<unsigned char> blockOf(const TruePair& pair) {
    namespace block = zelm::block;
    constexpr std::int32_t kViews = 3;
    std::vector<unsigned char> data(static_cast<std::size_t>(block::size(kViews)));
    block::write(data.data(), block::kViews, kViews);
    block::write(
        data.data(), block::kCameras,
        Zelm2ViewCameraDesc{pair.left.model, pair.width, pair.height, pair.right.model, pair.width, pair.height});
    zelm::FundamentalPair fundamental{};
    EXPECT_EQ(zelm::innerFundamentalPair(pair.left, pair.right, &fundamental), ZELM_OK);
    block::write(data.data(), block::kFundamental, fundamental);
    const bool parallel = pair.left.model == ZELM_CAMERA_PARALLEL || pair.right.model == ZELM_CAMERA_PARALLEL;
    for (const zelm::Camera which : {zelm::Camera::left, zelm::Camera::right}) {
        const zelm::CalibratedCamera& c = zelm::isLeft(which) ? pair.left : pair.right;
        zelm::RectifyingPair rectifying{};
        EXPECT_EQ(zelm::innerRectifyingPair(c, parallel, &rectifying), ZELM_OK);
        block::write(data.data(), block::rectifying(which), rectifying);
        block::write(data.data(), block::intrinsics(which), c.intrinsics);
        block::write(data.data(), block::pose(kViews, which, 0), c.pose);
    }
    return data;
}

inline void loadBlock(const std::vector<unsigned char>& data, Handle* handle) {
    ASSERT_EQ(zelm2ViewLoadCalibData(static_cast<std::int32_t>(data.size()), data.data(), &handle->calib), ZELM_OK);
}

inline void loadPair(const TruePair& pair, Handle* handle) {
    loadBlock(blockOf(pair), handle);
}

// A world point near the plate that both cameras see well inside their images.
inline Point3d randomWorldPoint(Random& random) {
    return {random.uniform(-60.0, 60.0), random.uniform(-45.0, 45.0), random.uniform(-30.0, 30.0)};
}

}  // namespace zelmtest

#endif
