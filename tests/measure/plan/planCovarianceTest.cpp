// What a plan predicts, against adjustments of simulated dots: the covariance of all parameters, and of lengths.
#include <gtest/gtest.h>

#include <Eigen/Cholesky>
#include <cmath>
#include <random>
#include <vector>

#include "adjustStart.h"
#include "adjuster.h"
#include "planFixtures.h"
#include "planner.h"
#include "predictedDot.h"

namespace zelm::measure {
namespace {

using zelmtest::PlanSetup;

constexpr double kNoise = 0.02;  // pixels
constexpr int kDraws = 40;
constexpr std::size_t kViews = 6;

struct Planned {
    PlanSetup setup;
    PlanPair pair;
    PlanPlate plate;
    Planner planner;

    static Motion motionOf(const PlanSetup& s) {
        Motion m;
        std::copy_n(s.relative.R, 9, m.R.begin());
        std::copy_n(s.relative.t, 3, m.t.begin());
        return m;
    }
    explicit Planned(const PlanSetup& s)
        : setup(s),
          pair(planPair(s.left, s.right, motionOf(s), {})),
          plate(planPlate(s.plate)),
          planner(pair, s.plate, s.options) {
        planner.fewest(0.0, kViews);
    }

    AdjustState truth() const {
        AdjustState state;
        state.cameras = {pair.cameras[kLeft].projection, pair.cameras[kRight].projection};
        state.relative = pair.relativeParameters;
        for (std::size_t i = 0; i < planner.views(); ++i) {
            const ZelmMeasurePlanView view = planner.view(i);
            Matrix3 R{};
            std::copy_n(view.pose.R, 9, R.begin());
            state.poses.push_back(motionParameters(R, {view.pose.t[0], view.pose.t[1], view.pose.t[2]}));
        }
        return state;
    }

    // The dots that the cameras see, with noise.
    std::vector<AdjustView> dots(const AdjustState& state, std::mt19937_64& random) const {
        std::normal_distribution<double> noise(0.0, kNoise);
        std::vector<AdjustView> views(state.poses.size());
        for (std::size_t view = 0; view < views.size(); ++view) {
            const Motion motion = measure::motionOf(state.poses[view]);
            for (const Side side : {kLeft, kRight}) {
                for (const Vector3& place : plate.dots) {
                    const Vector3 X = moved(motion, place);
                    if (!pair.seen(side, X, marginOf(pair, side, X, plate.radius))) {
                        continue;
                    }
                    DotObservation dot;
                    dot.place = place;
                    dot.radius = plate.radius;
                    dot.pixel = predictDot(imageParameters(state, side, view, kPlainDot), place, plate.radius,
                                           RotationDerivative::byTurn)
                                    .centre;
                    dot.pixel.x += noise(random);
                    dot.pixel.y += noise(random);
                    views[view].dots[side].push_back(dot);
                }
            }
        }
        return views;
    }
};

// In the order of SharedParameter; the relative rotation as a turn.
PlanVector errorOf(const AdjustState& found, const AdjustState& truth) {
    PlanVector error;
    for (std::size_t i = 0; i < kCameraParameters; ++i) {
        error[static_cast<int>(i)] = found.cameras[kLeft].p[i] - truth.cameras[kLeft].p[i];
        error[kPlanRight + static_cast<int>(i)] = found.cameras[kRight].p[i] - truth.cameras[kRight].p[i];
    }
    const MotionParameters& a = found.relative;
    const MotionParameters& b = truth.relative;
    const Matrix3 R = product(rotationOf({a[0], a[1], a[2]}), rotationOf({-b[0], -b[1], -b[2]}));
    const MotionParameters turn = motionParameters(R, {});
    for (int i = 0; i < 3; ++i) {
        error[kPlanRelative + i] = turn[static_cast<std::size_t>(i)];
        error[kPlanRelative + 3 + i] = a[static_cast<std::size_t>(3 + i)] - b[static_cast<std::size_t>(3 + i)];
    }
    return error;
}

// Where two rays meet, by Gauss and Newton on the four pixel coordinates; in the left camera's frame.
Vector3 meeting(const AdjustState& state, const std::array<Point2d, kSides>& pixels, Vector3 X) {
    const Matrix3 R = rotationOf({state.relative[0], state.relative[1], state.relative[2]});
    for (int round = 0; round < 5; ++round) {
        Eigen::Matrix<double, 4, 3> J;
        Eigen::Vector4d r;
        for (const Side side : {kLeft, kRight}) {
            Vector3 inside = X;
            if (side == kRight) {
                inside = times(R, X);
                for (std::size_t i = 0; i < 3; ++i) {
                    inside[i] += state.relative[3 + i];
                }
            }
            const Projection p = project(state.cameras[side], inside);
            for (std::size_t row = 0; row < 2; ++row) {
                const Vector3 g = side == kLeft ? p.byPoint[row] : timesTransposed(R, p.byPoint[row]);
                J.row(static_cast<int>(2 * side + row)) << g[0], g[1], g[2];
            }
            r[static_cast<int>(2 * side)] = pixels[side].x - p.pixel.x;
            r[static_cast<int>(2 * side + 1)] = pixels[side].y - p.pixel.y;
        }
        const Eigen::Vector3d d = (J.transpose() * J).ldlt().solve(J.transpose() * r);
        X = {X[0] + d[0], X[1] + d[1], X[2] + d[2]};
    }
    return X;
}

// The sum of k squares of normal deviates lies within 4 standard deviations of k, and a half for its skewness, 9999
// times in 10000.
void expectChiSquare(double sum, double k, const char* what) {
    EXPECT_NEAR(sum, k, 4.5 * std::sqrt(2.0 * k)) << what;
}

class PlanCovariance : public testing::TestWithParam<bool> {};

TEST_P(PlanCovariance, IsThatOfAdjustments) {
    PlanSetup setup;
    setup.options.noise = kNoise;
    setup.options.holdSkew = GetParam() ? 1 : 0;
    setup.options.squarePixels = GetParam() ? 1 : 0;
    if (GetParam()) {
        setup.left.intrinsics.A[4] = setup.left.intrinsics.A[0];
        setup.right.intrinsics.A[4] = setup.right.intrinsics.A[0];
    }
    const Planned planned(setup);
    const AdjustState truth = planned.truth();
    const PlanMatrix C = planned.planner.covariance();
    // What is held has rows of zeros: solved in the free parameters alone.
    std::vector<int> free;
    for (int i = 0; i < kPlanParameters; ++i) {
        const bool isHeld = GetParam() && (i % kPlanRight == kSkew || i % kPlanRight == kFy) && i < kPlanRelative;
        if (!isHeld) {
            free.push_back(i);
        }
    }
    const Eigen::MatrixXd covariance = C(free, free);
    const Eigen::LLT<Eigen::MatrixXd> factor(covariance);
    ASSERT_EQ(factor.info(), Eigen::Success);

    // A length across the volume.
    const Vector3 P = planned.pair.fromFrame({-30.0, -20.0, 320.0});
    const Vector3 Q = planned.pair.fromFrame({25.0, 15.0, 370.0});
    const auto seenAt = [&](const Vector3& X) {
        return std::array{pixelOf(truth.cameras[kLeft], X),
                          pixelOf(truth.cameras[kRight], planned.pair.inCamera(kRight, X))};
    };
    const auto lengthOf = [&](const AdjustState& state) {
        const Vector3 p = meeting(state, seenAt(P), P);
        const Vector3 q = meeting(state, seenAt(Q), Q);
        return std::sqrt((p[0] - q[0]) * (p[0] - q[0]) + (p[1] - q[1]) * (p[1] - q[1]) + (p[2] - q[2]) * (p[2] - q[2]));
    };
    const double length = lengthOf(truth);
    // By differences, so that the plan's own derivatives are not used.
    PlanVector gradient;
    for (int i = 0; i < kPlanParameters; ++i) {
        const double step = 1e-3 * std::sqrt(std::max(C(i, i), 1e-12));
        AdjustState there = truth;
        if (i < kPlanRelative) {
            const auto side = static_cast<std::size_t>(i / kPlanRight);
            there.cameras[side].p[static_cast<std::size_t>(i % kPlanRight)] += step;
        } else if (i < kPlanRelative + 3) {
            Vector3 turn{};
            turn[static_cast<std::size_t>(i - kPlanRelative)] = step;
            there.relative =
                motionParameters(product(rotationOf(turn), planned.pair.relative.R), planned.pair.relative.t);
        } else {
            there.relative[static_cast<std::size_t>(i - kPlanRelative)] += step;
        }
        gradient[i] = (lengthOf(there) - length) / step;
    }
    const double variance = gradient.dot(C * gradient);

    std::mt19937_64 random(20260722);
    double squares = 0.0;
    double lengthSquares = 0.0;
    for (int draw = 0; draw < kDraws; ++draw) {
        AdjustState state = truth;
        std::vector<AdjustView> views = planned.dots(truth, random);
        AdjustOptions options;
        options.knownNoise = kNoise;
        options.holdSkew = options.squarePixels = GetParam();
        const AdjustSummary summary = adjust(state, views, options);
        EXPECT_EQ(summary.viewsLeftOut, 0U);
        const Eigen::VectorXd error = errorOf(state, truth)(free);
        squares += error.dot(factor.solve(error));
        lengthSquares += std::pow(lengthOf(state) - length, 2) / variance;
    }
    expectChiSquare(squares, static_cast<double>(free.size()) * kDraws, "parameters");
    expectChiSquare(lengthSquares, kDraws, "lengths");
    RecordProperty("parameters", std::to_string(squares / static_cast<double>(free.size() * kDraws)));
    RecordProperty("lengths", std::to_string(lengthSquares / kDraws));
}

INSTANTIATE_TEST_SUITE_P(FreeAndHeld, PlanCovariance, testing::Bool());

// The derivatives of the test lengths, which the scores are made of, against adjusted differences.
TEST(PlanLengths, ScoreIsTheStatedQuadraticForm) {
    const Planned planned{PlanSetup{}};
    const PlanSetup& s = planned.setup;
    const PlanBasis basis(planned.pair, 345.0, false, false);
    const PlanVolume volume{{0.0, 0.0, 345.0}, {110.0, 80.0, 80.0}};
    const TestLengths lengths(planned.pair, volume, basis, s.options.length, kNoise);
    EXPECT_NEAR(lengths.length(), 0.3 * std::sqrt(110.0 * 110.0 + 2 * 80.0 * 80.0), 1e-9);
    const PlanMatrix information = PlanMatrix::Identity() * 1e4;
    double worst = 0.0;
    double sum = 0.0;
    for (int i = 0; i < lengths.count(); ++i) {
        const double variance = lengths.imageVarianceOf(i) + lengths.gradient(i).squaredNorm() * 1e-4;
        worst = std::max(worst, variance);
        sum += variance;
    }
    const auto score = lengths.score(information);
    const auto rms = lengths.rms(information);
    ASSERT_TRUE(score && rms);
    EXPECT_NEAR(score->worst, 1.959964 * std::sqrt(worst), 1e-9 * score->worst);
    EXPECT_NEAR(score->rms, 1.959964 * std::sqrt(sum / lengths.count()), 1e-9 * score->rms);
    EXPECT_NEAR(*rms, score->rms, 1e-9 * score->rms);
    EXPECT_FALSE(lengths.score(PlanMatrix::Zero()).has_value());
}

}  // namespace
}  // namespace zelm::measure
