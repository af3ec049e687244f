// The refinement's step counts, which callers may rely on, against a plain reading of its rules; and the rule that a
// negative parameter passes the test of convergence by its absolute change alone.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "cameraScene.h"
#include "homographyNormalEq.h"
#include "random.h"
#include "zelm/calib.h"
#include "zelm/mat.h"

namespace {

using zelmtest::Random;

using Points = std::vector<Point2d>;
using Nine = std::array<double, 9>;

enum class RelativeTest { ofSignedValue, ofMagnitude };

Points normalised(const Points& points) {
    Points result(points.size());
    zelmCalibNormalizeData(2, static_cast<int32_t>(points.size()), &points[0].x, &result[0].x, nullptr, nullptr);
    return result;
}

Nine linearEstimate(const Points& src, const Points& dst) {
    std::vector<double> rows;
    for (std::size_t i = 0; i < src.size(); ++i) {
        const auto [x, y] = src[i];
        const auto [u, v] = dst[i];
        for (const double entry : {x, y, 1.0, 0.0, 0.0, 0.0, -u * x, -u * y, -u}) {
            rows.push_back(entry);
        }
        for (const double entry : {0.0, 0.0, 0.0, x, y, 1.0, -v * x, -v * y, -v}) {
            rows.push_back(entry);
        }
    }
    double AtA[81];
    double vectors[81];
    zelmMatMulTransposed(1, static_cast<int32_t>(rows.size() / 9), 9, rows.data(), AtA);
    EXPECT_EQ(zelmMatJacobiEigen(9, AtA, nullptr, vectors), ZELM_OK);
    Nine h;
    std::copy_n(vectors + 72, 9, h.begin());
    return h;
}

int32_t plainCount(const Points& source, const Points& destination, double robustK, RelativeTest relativeTest) {
    const Points src = normalised(source);
    const Points dst = normalised(destination);
    const auto n = static_cast<int32_t>(src.size());
    Nine h = linearEstimate(src, dst);
    double N[81];
    double g[9];
    double cost = 0.0;
    zelm::innerCalcHomographyNormalEq(n, src.data(), dst.data(), h.data(), &cost, N, g, robustK);
    double lambda = 0.001;
    int32_t counter = 1;
    for (int step = 0; step < 100; ++step) {
        double damped[81];
        std::copy_n(N, 81, damped);
        for (std::size_t i = 0; i < 9; ++i) {
            damped[10 * i] = damped[10 * i] * (1 + lambda);
        }
        Nine delta;
        if (zelmMatSolveLU(9, damped, g, delta.data()) < 0) {
            return ZELM_ERR_CALIB_NOT_CONVERGED;
        }
        const Nine old = h;
        for (std::size_t i = 0; i < 9; ++i) {
            h[i] = h[i] + delta[i];
        }
        double newN[81];
        double newG[9];
        double newCost = 0.0;
        zelm::innerCalcHomographyNormalEq(n, src.data(), dst.data(), h.data(), &newCost, newN, newG, robustK);
        bool converged = std::fabs(cost - newCost) <= 1e-8 * cost;
        if (!converged) {
            converged = true;
            for (std::size_t i = 0; i < 9; ++i) {
                const double change = std::fabs(old[i] - h[i]);
                const double value = relativeTest == RelativeTest::ofSignedValue ? old[i] : std::fabs(old[i]);
                converged = converged && (change <= value * 0.0001 || change <= 1e-6);
            }
        }
        if (newCost < cost) {
            lambda = lambda * 0.1;
            cost = newCost;
            std::copy_n(newN, 81, N);
            std::copy_n(newG, 9, g);
        } else {
            lambda = lambda * 10.0;
            h = old;
        }
        ++counter;
        if (converged) {
            return counter;
        }
    }
    return ZELM_ERR_CALIB_NOT_CONVERGED;
}

TEST(CalibHomographySteps, CountsAreThoseOfThePlainRulesAndTheRelativeTestIsSigned) {
    Random random(61);
    int magnitudeWouldDiffer = 0;
    for (int trial = 0; trial < 400; ++trial) {
        const zelmtest::CameraScene scene = [&] {
            const ZelmCameraIntrinsics camera = zelmtest::perspectiveCamera(1600, 1600, 0, 640, 480, 0, 0, 0);
            zelmtest::CameraScene view = zelmtest::perspectiveScene(camera, 0, 1, random.bits());
            view.addNoise(random.uniform(0.01, 3.0), random);
            return view;
        }();
        const std::size_t n = trial % 2 == 0 ? 143 : 30;
        const Points src(scene.planes[0].begin(), scene.planes[0].begin() + static_cast<std::ptrdiff_t>(n));
        const Points dst(scene.images[0].begin(), scene.images[0].begin() + static_cast<std::ptrdiff_t>(n));
        for (const double robustK : {-1.0, 3.5}) {
            double H[9];
            const int32_t count = zelmCalibCalcHomography(static_cast<int32_t>(n), src.data(), dst.data(), robustK, H);
            EXPECT_EQ(count, plainCount(src, dst, robustK, RelativeTest::ofSignedValue)) << trial;
            magnitudeWouldDiffer += count != plainCount(src, dst, robustK, RelativeTest::ofMagnitude) ? 1 : 0;
        }
    }
    EXPECT_GT(magnitudeWouldDiffer, 0);
}

}  // namespace
