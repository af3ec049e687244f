// The analytic derivatives of the projection, and the normal equations made of them, against central differences.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "cameraData.h"
#include "cameraNormalEq.h"
#include "cameraProjection.h"
#include "random.h"
#include "settled.h"

namespace {

using zelm::DotProjector;
using zelm::kIntrinsics;
using zelm::kPose;
using zelm::ViewFrame;
using zelmtest::Random;

constexpr std::size_t kJoint = kIntrinsics + kPose;

// Central differences at h = 1e-5 of numbers of the order of 10: truncation h^2 f''' / 6, some 1e-9, and rounding
// 1e-15 / h, some 1e-10.
constexpr double kStep = 1e-5;
constexpr double kTolerance = 1e-8;

struct Point {
    double parameters[kJoint];
    bool parallel;

    [[nodiscard]] Point2d project(Point2d dot) const {
        return DotProjector{parameters, parallel}.project(ViewFrame(parameters + kIntrinsics), dot);
    }
};

void expectDerivatives(const Point& at, Point2d dot) {
    double du[kJoint];
    double dv[kJoint];
    const Point2d p =
        DotProjector{at.parameters, at.parallel}.project(ViewFrame(at.parameters + kIntrinsics), dot, du, dv);
    EXPECT_EQ(p.x, at.project(dot).x);
    EXPECT_EQ(p.y, at.project(dot).y);
    for (std::size_t k = 0; k < kJoint; ++k) {
        Point low = at;
        Point high = at;
        low.parameters[k] -= kStep;
        high.parameters[k] += kStep;
        const double u = (high.project(dot).x - low.project(dot).x) / (2.0 * kStep);
        const double v = (high.project(dot).y - low.project(dot).y) / (2.0 * kStep);
        EXPECT_NEAR(du[k], u, kTolerance * (1.0 + std::fabs(u))) << "parameter " << k;
        EXPECT_NEAR(dv[k], v, kTolerance * (1.0 + std::fabs(v))) << "parameter " << k;
    }
}

Point somePoint(Random& random, bool parallel, double angle) {
    Point at{};
    const double scale = parallel ? 1.0 : 8.0;
    const double intrinsics[kIntrinsics] = {scale * random.uniform(0.9, 1.1), scale * random.uniform(0.9, 1.1),
                                            random.uniform(-0.1, 0.1),        random.uniform(-0.3, 0.3),
                                            random.uniform(-0.3, 0.3),        random.uniform(-0.1, 0.1),
                                            random.uniform(-0.02, 0.02)};
    std::copy_n(intrinsics, kIntrinsics, at.parameters);
    double axis[3] = {random.normal(), random.normal(), random.normal()};
    const double length = std::hypot(axis[0], axis[1], axis[2]);
    for (std::size_t i = 0; i < 3; ++i) {
        at.parameters[kIntrinsics + i] = angle * axis[i] / length;
    }
    at.parameters[kIntrinsics + 3] = random.uniform(-0.5, 0.5);
    at.parameters[kIntrinsics + 4] = random.uniform(-0.5, 0.5);
    at.parameters[kIntrinsics + 5] = random.uniform(7.0, 9.0);
    at.parallel = parallel;
    return at;
}

TEST(CameraDerivatives, AgreeWithCentralDifferencesAtEveryAngle) {
    Random random(1);
    const double pi = 3.141592653589793;
    for (const bool parallel : {false, true}) {
        for (const double angle :
             {0.0, 1e-16, 1e-12, 1e-8, 1e-4, 0.0199, 0.0201, 0.3, 1.5, 3.0, pi - 1e-8, pi, pi + 1e-8, pi + 0.2}) {
            SCOPED_TRACE(angle);
            for (int trial = 0; trial < 10; ++trial) {
                const Point at = somePoint(random, parallel, angle);
                expectDerivatives(at, {random.uniform(-2.0, 2.0), random.uniform(-2.0, 2.0)});
            }
        }
    }
}

TEST(CameraDerivatives, OfTheRotationAreContinuousWhereTheSeriesTakesOver) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
        double below[kPose] = {1e-3, 2e-3, -1e-3, 0, 0, 0};
        double above[kPose];
        below[axis] = 0.0;
        below[axis] = std::sqrt(0.02 * 0.02 - below[0] * below[0] - below[1] * below[1] - below[2] * below[2]);
        std::copy_n(below, kPose, above);
        below[axis] *= 1.0 - 1e-15;
        above[axis] *= 1.0 + 1e-15;
        const ViewFrame low(below);
        const ViewFrame high(above);
        for (std::size_t i = 0; i < 9; ++i) {
            EXPECT_NEAR(low.omega[i], high.omega[i], 1e-14);  // (1 - sin(q) / q) / q^2 cancels some 4 digits there
        }
    }
}

// Two views of a few dots with residuals of size spread.
struct Problem {
    zelm::CameraData data;
    double poses[2 * kPose];
    zelm::CameraUnknowns unknowns;

    Problem(bool parallel, double spread, std::uint64_t seed) {
        Random random(seed);
        const std::size_t views = parallel ? 1 : 2;
        const std::size_t perView = 40;
        data.first = zelm::WorkBuffer<std::size_t>(views + 1);
        data.plane = zelm::WorkBuffer<Point2d>(views * perView);
        data.image = zelm::WorkBuffer<Point2d>(views * perView);
        data.parallel = parallel;
        data.first[0] = 0;
        const Point shared = somePoint(random, parallel, 0.5);
        std::copy_n(shared.parameters, kIntrinsics, unknowns.intrinsics);
        unknowns.poses = poses;
        for (std::size_t v = 0; v < views; ++v) {
            const Point at = somePoint(random, parallel, 0.4);
            std::copy_n(at.parameters + kIntrinsics, kPose, poses + v * kPose);
            data.first[v + 1] = (v + 1) * perView;
            const ViewFrame frame(poses + v * kPose);
            for (std::size_t i = data.first[v]; i < data.first[v + 1]; ++i) {
                data.plane[i] = {random.uniform(-2.0, 2.0), random.uniform(-2.0, 2.0)};
                data.image[i] = DotProjector{unknowns.intrinsics, parallel}.project(frame, data.plane[i]);
                data.image[i].x += spread * random.normal();
                data.image[i].y += spread * random.normal();
            }
        }
    }
};

// Cost at the cut-off of another evaluation, or the plain sum of squares.
double costAt(const Problem& problem, double cutOff2) {
    std::vector<double> squares(problem.data.dots());
    zelm::CameraNormalEq::View views[2];
    zelm::CameraNormalEq equations{};
    equations.views = views;
    EXPECT_TRUE(zelm::innerCalcCameraNormalEq(problem.data, problem.unknowns, cutOff2 > 0.0 ? 3.5 : -1.0,
                                              squares.data(), &equations));
    return cutOff2 > 0.0 ? zelm::tukeyCost(squares.data(), squares.size(), cutOff2) : equations.cost;
}

void expectGradient(Problem& problem, double threshold) {
    std::vector<double> squares(problem.data.dots());
    zelm::CameraNormalEq::View views[2];
    zelm::CameraNormalEq equations{};
    equations.views = views;
    ASSERT_TRUE(zelm::innerCalcCameraNormalEq(problem.data, problem.unknowns, threshold, squares.data(), &equations));
    const double cutOff2 = threshold > 0.0 ? equations.cutOff2 : 0.0;
    const auto slope = [&](double* parameter) {
        const double kept = *parameter;
        *parameter = kept + kStep;
        const double high = costAt(problem, cutOff2);
        *parameter = kept - kStep;
        const double low = costAt(problem, cutOff2);
        *parameter = kept;
        return (high - low) / (2.0 * kStep);
    };
    // The tolerance is truncation and rounding of the differences of a sum of 40 to 80 squares.
    for (std::size_t k = 0; k < kIntrinsics; ++k) {
        const double expected = -0.5 * slope(problem.unknowns.intrinsics + k);
        EXPECT_NEAR(equations.g[k], expected, 1e-6 * (1.0 + std::fabs(expected))) << k;
    }
    for (std::size_t k = 0; k < problem.data.views() * kPose; ++k) {
        const double expected = -0.5 * slope(problem.poses + k);
        EXPECT_NEAR(views[k / kPose].g[k % kPose], expected, 1e-6 * (1.0 + std::fabs(expected))) << k;
    }
}

TEST(CameraNormalEquations, GradientIsThatOfTheSumOfSquares) {
    Problem problem(false, 0.05, 2);
    expectGradient(problem, -1.0);
}

TEST(CameraNormalEquations, GradientIsThatOfTukeysLossAtTheCutOff) {
    for (const double threshold : {3.5, 1.0}) {
        Problem problem(false, 0.05, 3);
        expectGradient(problem, threshold);
    }
}

TEST(CameraNormalEquations, MatrixIsTheSumOfProductsOfDerivatives) {
    Problem problem(false, 0.05, 4);
    zelm::CameraNormalEq::View views[2];
    zelm::CameraNormalEq equations{};
    equations.views = views;
    ASSERT_TRUE(zelm::innerCalcCameraNormalEq(problem.data, problem.unknowns, -1.0, nullptr, &equations));
    for (std::size_t v = 0; v < 2; ++v) {
        double expected[kJoint][kJoint] = {};
        for (std::size_t i = problem.data.first[v]; i < problem.data.first[v + 1]; ++i) {
            double du[kJoint];
            double dv[kJoint];
            DotProjector{problem.unknowns.intrinsics, false}.project(ViewFrame(problem.poses + v * kPose),
                                                                     problem.data.plane[i], du, dv);
            for (std::size_t a = 0; a < kJoint; ++a) {
                for (std::size_t b = 0; b < kJoint; ++b) {
                    expected[a][b] += du[a] * du[b] + dv[a] * dv[b];
                }
            }
        }
        for (std::size_t a = 0; a < kPose; ++a) {
            for (std::size_t b = 0; b < kPose; ++b) {
                const double whole = expected[kIntrinsics + a][kIntrinsics + b];
                EXPECT_NEAR(views[v].N[a * kPose + b], whole, 1e-13 * (1.0 + std::fabs(whole)));
            }
            for (std::size_t b = 0; b < kIntrinsics; ++b) {
                const double whole = expected[b][kIntrinsics + a];
                EXPECT_NEAR(views[v].cross[b * kPose + a], whole, 1e-13 * (1.0 + std::fabs(whole)));
            }
        }
    }
}

TEST(CameraNormalEquations, HoldWhatAParallelViewCannotTell) {
    Problem problem(true, 0.01, 5);
    zelm::CameraNormalEq::View view;
    zelm::CameraNormalEq equations{};
    equations.views = &view;
    ASSERT_TRUE(zelm::innerCalcCameraNormalEq(problem.data, problem.unknowns, -1.0, nullptr, &equations));
    for (const std::size_t held : {zelm::kCx, zelm::kCy}) {
        EXPECT_EQ(equations.g[held], 0.0);
        for (std::size_t k = 0; k < kIntrinsics; ++k) {
            EXPECT_EQ(equations.N[held * kIntrinsics + k], k == held ? 1.0 : 0.0);
        }
    }
    for (const std::size_t held : {0U, 1U, 5U}) {
        EXPECT_EQ(view.g[held], 0.0);
        for (std::size_t k = 0; k < kPose; ++k) {
            EXPECT_EQ(view.N[held * kPose + k], k == held ? 1.0 : 0.0);
        }
        for (std::size_t k = 0; k < kIntrinsics; ++k) {
            EXPECT_EQ(view.cross[k * kPose + held], 0.0);
        }
    }
}

TEST(CameraNormalEquations, FailWhenAProjectionIsNotFinite) {
    Problem problem(false, 0.01, 6);
    problem.poses[5] = std::nan("");
    std::vector<double> squares(problem.data.dots());
    zelm::CameraNormalEq::View views[2];
    zelm::CameraNormalEq equations{};
    equations.views = views;
    for (const double threshold : {-1.0, 3.5}) {
        EXPECT_FALSE(
            zelm::innerCalcCameraNormalEq(problem.data, problem.unknowns, threshold, squares.data(), &equations));
    }
}

TEST(TukeyCost, TendsToTheSumOfSquaresAndSaturatesBeyondTheCutOff) {
    const double squares[3] = {0.0, 1.0, 4.0};
    EXPECT_EQ(zelm::tukeyCost(squares, 3, INFINITY), 5.0);
    EXPECT_NEAR(zelm::tukeyCost(squares, 3, 1e12), 5.0, 2e-11);
    EXPECT_DOUBLE_EQ(zelm::tukeyCost(squares + 2, 1, 3.0), 1.0);
    EXPECT_DOUBLE_EQ(zelm::tukeyCost(squares + 2, 1, 4.0), 4.0 / 3.0);
}

TEST(Settled, NegativeParametersPassByTheAbsoluteTestAlone) {
    const double positive = 10.0;
    const double positiveMoved = 10.0009;
    EXPECT_TRUE(zelm::parametersSettled(1, &positive, &positiveMoved));
    const double negative = -10.0;
    const double negativeMoved = -10.0009;
    EXPECT_FALSE(zelm::parametersSettled(1, &negative, &negativeMoved));
    const double negativeNear = -10.0000009;
    EXPECT_TRUE(zelm::parametersSettled(1, &negative, &negativeNear));
    const double notANumber = std::nan("");
    EXPECT_FALSE(zelm::parametersSettled(1, &positive, &notANumber));
}

TEST(Settled, CostsPassByTheirRelativeChange) {
    EXPECT_TRUE(zelm::costSettled(1.0, 1.0 - 0.9e-8));
    EXPECT_TRUE(zelm::costSettled(1.0, 1.0 + 0.9e-8));
    EXPECT_FALSE(zelm::costSettled(1.0, 1.0 - 1.1e-8));
    EXPECT_TRUE(zelm::costSettled(0.0, 0.0));
    EXPECT_FALSE(zelm::costSettled(1.0, INFINITY));
}

}  // namespace
