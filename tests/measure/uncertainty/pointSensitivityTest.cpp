// How pixels and parameters move a point, against what the triangulation itself does.
#include <gtest/gtest.h>

#include <cmath>

#include "calibrationDraws.h"
#include "pointSensitivity.h"

namespace zelmtest {
namespace {

using namespace zelm::measure;

struct PixelPair {
    Point2d left;
    Point2d right;
};

Vector3 triangulated(const std::vector<unsigned char>& block, const PixelPair& pair) {
    const Rig rig = rigOfBlock(block);
    Point3d X{};
    EXPECT_EQ(zelm2ViewChange2Dto3D(rig.calib.get(), &pair.left, &pair.right, &X), ZELM_OK);
    return {X.x, X.y, X.z};
}

// Half the difference of two triangulated points, by the step.
Vector3 slope(const Vector3& plus, const Vector3& minus, double step) {
    return {(plus[0] - minus[0]) / (2.0 * step), (plus[1] - minus[1]) / (2.0 * step),
            (plus[2] - minus[2]) / (2.0 * step)};
}

struct ModelCase {
    std::int32_t left;
    std::int32_t right;
};

class SensitivityOfModels : public testing::TestWithParam<ModelCase> {
protected:
    TruePair pair = makePair(GetParam().left, GetParam().right);
    std::vector<unsigned char> block = blockOf(pair);
    Rig rig = rigOfBlock(block);
    SensitivityModel model{rig};

    [[nodiscard]] PixelPair seen(const Point3d& X) const { return {pair.project('L', X), pair.project('R', X)}; }
};

// Central differences err by rounding, 1e-9 pixels of undistortion over steps of 0.1, and by the third derivatives, the
// square of a step that is up to 6e-4 of its parameter.
constexpr double kRelative = 5e-6;

void expectSlope(const Vector3& actual, const Vector3& expected, double scale) {
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(actual[i], expected[i], kRelative * scale);
    }
}

double lengthOf(const Vector3& v) {
    return std::sqrt(dot(v, v));
}

TEST_P(SensitivityOfModels, PixelsMoveThePoint) {
    constexpr double kStep = 0.3;
    Random random(11);
    for (int n = 0; n < 10; ++n) {
        const Point3d X = randomWorldPoint(random);
        const auto s = model.at(X);
        ASSERT_TRUE(s);
        for (std::size_t k = 0; k < 4; ++k) {
            PixelPair plus = seen(X);
            PixelPair minus = plus;
            double* const up[] = {&plus.left.x, &plus.left.y, &plus.right.x, &plus.right.y};
            double* const down[] = {&minus.left.x, &minus.left.y, &minus.right.x, &minus.right.y};
            *up[k] += kStep;
            *down[k] -= kStep;
            const Vector3 numeric = slope(triangulated(block, plus), triangulated(block, minus), kStep);
            // The model's is in the left camera's frame.
            const double* const R = rig.left.pose().R;
            Vector3 exact{};
            for (std::size_t i = 0; i < 3; ++i) {
                exact[i] = R[i] * s->byPixels[0][k] + R[3 + i] * s->byPixels[1][k] + R[6 + i] * s->byPixels[2][k];
            }
            SCOPED_TRACE(k);
            expectSlope(exact, numeric, lengthOf(numeric));
        }
    }
}

TEST_P(SensitivityOfModels, ParametersMoveThePoint) {
    const ParameterVector steps = smallSteps(pair);
    Random random(12);
    for (int n = 0; n < 5; ++n) {
        const Point3d X = randomWorldPoint(random);
        const PixelPair pixels = seen(X);
        const auto s = model.at(X);
        ASSERT_TRUE(s);
        const SensitivityModel::ByParameters B = model.inPlate(*s);
        for (std::size_t k = 0; k < kParameters; ++k) {
            SCOPED_TRACE(k);
            ParameterVector by{};
            by[k] = steps[k];
            const Vector3 plus = triangulated(blockOf(moved(pair, by)), pixels);
            by[k] = -steps[k];
            const Vector3 minus = triangulated(blockOf(moved(pair, by)), pixels);
            const Vector3 numeric = slope(plus, minus, steps[k]);
            // A step moves the point by tenths, which are known to 1e-7: rounding, and where the correction settles.
            expectSlope({B[0][k], B[1][k], B[2][k]}, numeric, lengthOf(numeric) + 0.1 / steps[k]);
        }
    }
}

TEST_P(SensitivityOfModels, PixelsThatMoveWithTheirProjectionsLeaveThePoint) {
    // What a change of the parameters moves, pixels that follow undo: B + G J_theta = 0, here along drawn directions.
    Random random(13);
    const Point3d X = randomWorldPoint(random);
    const auto s = model.at(X);
    ASSERT_TRUE(s);
    const ParameterVector steps = smallSteps(pair);
    const SensitivityModel::ByParameters B = model.inPlate(*s);
    for (std::size_t k = 0; k < kParameters; ++k) {
        ParameterVector by{};
        by[k] = steps[k];
        const TruePair changed = moved(pair, by);
        const PixelPair follows{changed.project('L', X), changed.project('R', X)};
        const Vector3 still = triangulated(blockOf(changed), follows);
        EXPECT_NEAR(still[0], X.x, 1e-7);
        EXPECT_NEAR(still[1], X.y, 1e-7);
        EXPECT_NEAR(still[2], X.z, 1e-7);
        EXPECT_TRUE(std::isfinite(B[0][k] + B[1][k] + B[2][k]));
    }
}

INSTANTIATE_TEST_SUITE_P(Models, SensitivityOfModels,
                         testing::Values(ModelCase{0, 0}, ModelCase{1, 0}, ModelCase{0, 1}, ModelCase{2, 0},
                                         ModelCase{2, 1}),
                         [](const auto& tested) {
                             return "left" + std::to_string(tested.param.left) + "right" +
                                    std::to_string(tested.param.right);
                         });

TEST(PointSensitivity, RaysThatAreParallelHaveNone) {
    // Two alike cameras side by side: far away the depth drowns in rounding.
    TruePair pair = makePair(0, 0);
    pair.right = pair.left;
    pair.right.pose.t[0] -= 100.0;
    const Rig rig = rigOfBlock(blockOf(pair));
    const SensitivityModel model(rig);
    EXPECT_TRUE(model.at({0.0, 0.0, 1000.0}));
    EXPECT_FALSE(model.at({0.0, 0.0, 1e9}));
    EXPECT_FALSE(model.at({0.0, 0.0, std::nan("")}));
    const ZelmCameraExtrinsics& pose = rig.left.pose();
    // In the plane of the camera, and at its centre.
    EXPECT_FALSE(model.at({-pose.R[0] * pose.t[0] - pose.R[3] * pose.t[1] - pose.R[6] * pose.t[2],
                           -pose.R[1] * pose.t[0] - pose.R[4] * pose.t[1] - pose.R[7] * pose.t[2],
                           -pose.R[2] * pose.t[0] - pose.R[5] * pose.t[1] - pose.R[8] * pose.t[2]}));
}

TEST(PointSensitivity, EqualNoiseGivesTheInverseOfTheNormalMatrix) {
    // Without a lens and with one sigma the covariance is sigma^2 (J'J)^-1, here of a pair whose numbers are few: two
    // cameras of focal length f at (+-b, 0, 0), a point on the axis between at z. J'J = 2 f^2/z^2 diag(1, 1, b^2/z^2).
    TruePair pair = makePair(0, 0);
    constexpr double f = 1000.0, b = 50.0, z = 400.0, sigma = 0.1;
    for (zelm::CalibratedCamera* c : {&pair.left, &pair.right}) {
        c->intrinsics = trueIntrinsics(f, f, 640.0, 480.0, 0.0, 0.0);
        c->pose = truePose(0.0, 0.0, 0.0, c == &pair.left ? b : -b, 0.0, 0.0);
    }
    const Rig rig = rigOfBlock(blockOf(pair));
    const SensitivityModel model(rig);
    const auto s = model.at({0.0, 0.0, z});
    ASSERT_TRUE(s);
    const Symmetric2 pixel{sigma * sigma, 0.0, sigma * sigma};
    const Symmetric3 c = model.inPlate(imageCovariance(*s, pixel, pixel));
    const double across = sigma * sigma * z * z / (2.0 * f * f);
    EXPECT_NEAR(c[0], across, 1e-12 * across);
    EXPECT_NEAR(c[3], across, 1e-12 * across);
    EXPECT_NEAR(c[5], across * z * z / (b * b), 1e-12 * c[5]);
    EXPECT_NEAR(c[1], 0.0, 1e-15);
    EXPECT_NEAR(c[2], 0.0, 1e-15);
    EXPECT_NEAR(c[4], 0.0, 1e-15);
    // Noise along x of the left pixel alone: half of it moves x, and z by z/b of that.
    const Symmetric3 one = model.inPlate(imageCovariance(*s, {sigma * sigma, 0.0, 0.0}, {0.0, 0.0, 0.0}));
    EXPECT_NEAR(one[0], 0.5 * across, 1e-12 * across);
    EXPECT_NEAR(one[3], 0.0, 1e-15);
    EXPECT_NEAR(one[5], 0.5 * c[5], 1e-12 * c[5]);
    EXPECT_NEAR(one[2] * one[2], one[0] * one[5], 1e-12 * one[0] * one[5]);
}

}  // namespace
}  // namespace zelmtest
