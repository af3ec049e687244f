// Circles in space from points of both outlines: exact ones, and with noise that the covariance must tell.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>
#include <optional>
#include <vector>

#include "circleFit.h"
#include "circleStart.h"
#include "measureRigs.h"
#include "rigBlock.h"

namespace zelmtest {
namespace {

namespace measure = zelm::measure;
using measure::CircleFit;
using measure::OutlineEdge;
using measure::SpaceCircle;
using measure::TargetCamera;
using measure::Vector3;

using Edges = std::array<std::vector<OutlineEdge>, 2>;

struct Cameras {
    measure::Rig rig;
    std::array<TargetCamera, 2> both;

    explicit Cameras(const std::vector<unsigned char>& block)
        : rig(measure::rigOfBlock(block)), both{TargetCamera(rig.left), TargetCamera(rig.right)} {}
};

// A circle that faces both cameras of trueRig(), which look along z, tilted about an axis of its plane.
SpaceCircle circleAt(const Vector3& centre, double tiltDegrees, double axisDegrees, double radius) {
    const double tilt = tiltDegrees * std::numbers::pi / 180.0;
    const double axis = axisDegrees * std::numbers::pi / 180.0;
    return {centre, {std::sin(tilt) * std::cos(axis), std::sin(tilt) * std::sin(axis), -std::cos(tilt)}, radius};
}

Edges edgesOf(const Cameras& cameras, const SpaceCircle& circle, int count, double noise, Random& random) {
    const Vector3 u = measure::unit(measure::cross(circle.normal, {0.3, 0.9, 0.1}));
    const Vector3 v = measure::cross(circle.normal, u);
    Edges edges;
    for (std::size_t side = 0; side < 2; ++side) {
        for (int k = 0; k < count; ++k) {
            const double angle = 2.0 * std::numbers::pi * (k + 0.3) / count;
            Vector3 X{};
            for (std::size_t i = 0; i < 3; ++i) {
                X[i] = circle.centre[i] + circle.radius * (std::cos(angle) * u[i] + std::sin(angle) * v[i]);
            }
            const auto seen = cameras.both[side].project(X);
            EXPECT_TRUE(seen.has_value());
            edges[side].push_back({{seen->pixel.x + noise * random.normal(), seen->pixel.y + noise * random.normal()},
                                   noise > 0.0 ? noise : 0.01});
        }
    }
    return edges;
}

Ellipse2d ellipseOf(const std::vector<OutlineEdge>& edges) {
    std::vector<Point2d> points;
    for (const OutlineEdge& edge : edges) {
        points.push_back(edge.pixel);
    }
    Ellipse2d ellipse{};
    EXPECT_GE(zelmFitEllipse(static_cast<std::int32_t>(points.size()), points.data(), 0, 0.0, &ellipse), 0);
    return ellipse;
}

// From the start circles that measuring takes, about a centre that is off.
std::optional<CircleFit> bestFit(const Cameras& cameras, const Edges& edges, const Vector3& nearCentre) {
    std::optional<CircleFit> best;
    for (const SpaceCircle& start :
         measure::startCircles(cameras.both, {ellipseOf(edges[0]), ellipseOf(edges[1])}, nearCentre)) {
        const auto fit = measure::fitCircle(cameras.both, {edges[0], edges[1]}, start);
        if (fit && (!best || fit->cost < best->cost)) {
            best = fit;
        }
    }
    return best;
}

double normalAngle(const SpaceCircle& a, const SpaceCircle& b) {
    const double angle = measure::angleBetween(a.normal, b.normal);
    return std::min(angle, std::numbers::pi - angle);
}

TEST(MeasureCircleFit, ExactOutlinesGiveTheCircle) {
    Random random(3);
    for (const auto projection : {render::Projection::perspective, render::Projection::parallel}) {
        const Cameras cameras(trueRig(1280, 960, projection).block());
        for (const double tilt : {0.0, 10.0, 35.0, 60.0}) {
            for (const double axis : {0.0, 80.0, 200.0}) {
                SCOPED_TRACE(testing::Message() << static_cast<int>(projection) << ' ' << tilt << ' ' << axis);
                const Point3d X = randomWorldPoint(random);
                const SpaceCircle circle = circleAt({X.x, X.y, X.z}, tilt, axis, 3.0 + 4.0 * random.uniform(0.0, 1.0));
                const Edges edges = edgesOf(cameras, circle, 24, 0.0, random);
                const auto fit = bestFit(cameras, edges, {X.x + 0.05, X.y - 0.03, X.z + 0.1});
                ASSERT_TRUE(fit.has_value());
                // Steps end when the cost changes by less than 1e-9 of itself: near 0, at rounding of some 1e-12 pixel.
                for (std::size_t i = 0; i < 3; ++i) {
                    EXPECT_NEAR(fit->circle.centre[i], circle.centre[i], 1e-6);
                }
                EXPECT_NEAR(fit->circle.radius, circle.radius, 1e-6);
                EXPECT_LE(normalAngle(fit->circle, circle), 1e-5);
                EXPECT_LE(fit->rms[0], 1e-7);
                EXPECT_LE(fit->rms[1], 1e-7);
            }
        }
    }
}

TEST(MeasureCircleFit, CovarianceTellsTheErrors) {
    const Cameras cameras(trueRig().block());
    Random random(5);
    constexpr int kDraws = 200;
    double squares = 0.0;
    for (int draw = 0; draw < kDraws; ++draw) {
        const Point3d X = randomWorldPoint(random);
        const SpaceCircle circle =
            circleAt({X.x, X.y, X.z}, random.uniform(0.0, 55.0), random.uniform(0.0, 360.0), random.uniform(2.0, 8.0));
        const Edges edges = edgesOf(cameras, circle, 24, 0.02, random);
        const auto fit = bestFit(cameras, edges, circle.centre);
        ASSERT_TRUE(fit.has_value());
        const Vector3 error{fit->circle.centre[0] - X.x, fit->circle.centre[1] - X.y, fit->circle.centre[2] - X.z};
        const auto inverse = measure::inverse(fit->covariance);
        ASSERT_TRUE(inverse.has_value());
        squares += measure::dot(error, measure::times(*inverse, error)) / 3.0;
    }
    // F with 3 and 42 degrees of freedom: mean 42 / 40, variance 0.82; of 200 draws a deviation of 0.064. Four of them.
    EXPECT_NEAR(squares / kDraws, 42.0 / 40.0, 0.26);
}

TEST(MeasureCircleFit, CentresHaveNoBias) {
    // Always the same circle: what stays on average is bias. The ellipses' centres of its images are off by 0.05 units.
    const Cameras cameras(trueRig().block());
    const SpaceCircle circle = circleAt({20.0, -10.0, 5.0}, 40.0, 60.0, 10.0);
    Random random(6);
    constexpr int kDraws = 200;
    Vector3 sum{};
    double squares = 0.0;
    for (int draw = 0; draw < kDraws; ++draw) {
        const auto fit = bestFit(cameras, edgesOf(cameras, circle, 24, 0.03, random), circle.centre);
        ASSERT_TRUE(fit.has_value());
        for (std::size_t i = 0; i < 3; ++i) {
            const double error = fit->circle.centre[i] - circle.centre[i];
            sum[i] += error;
            squares += error * error;
        }
    }
    const double deviation = std::sqrt(squares / kDraws);
    for (const double s : sum) {
        EXPECT_LE(std::fabs(s / kDraws), 4.0 * deviation / std::sqrt(static_cast<double>(kDraws)));
    }
    EXPECT_LE(deviation, 0.02);
}

TEST(MeasureCircleFit, WhatIsNoCircleOrCannotBeSeenEnds) {
    const Cameras cameras(trueRig().block());
    Random random(7);
    const SpaceCircle circle = circleAt({0.0, 0.0, 0.0}, 20.0, 0.0, 5.0);
    const Edges edges = edgesOf(cameras, circle, 24, 0.01, random);
    const auto fit = [&](const SpaceCircle& start, const Edges& from) {
        return measure::fitCircle(cameras.both, {from[0], from[1]}, start);
    };
    ASSERT_TRUE(fit(circle, edges).has_value());
    EXPECT_FALSE(fit(circleAt({0.0, 0.0, -2000.0}, 0.0, 0.0, 5.0), edges).has_value());  // behind the cameras
    EXPECT_FALSE(fit(circleAt({0.0, 0.0, 0.0}, 0.0, 0.0, -5.0), edges).has_value());
    EXPECT_FALSE(fit(circleAt({std::nan(""), 0.0, 0.0}, 0.0, 0.0, 5.0), edges).has_value());
    EXPECT_FALSE(fit(circle, {}).has_value());
    Edges few = edges;
    few[0].resize(3);
    few[1].resize(3);
    EXPECT_FALSE(fit(circle, few).has_value());  // as many equations as unknowns
    Edges broken = edges;
    broken[0][3].pixel.x = std::nan("");
    EXPECT_FALSE(fit(circle, broken).has_value());
}

TEST(MeasureTargetCamera, SeesWhatTheCoreSees) {
    Random random(9);
    for (const auto& models : {std::array{0, 0}, std::array{1, 0}, std::array{2, 0}}) {
        TruePair truth = makePair(models[0], models[1]);
        // A record whose parts agree to rounding.
        truth.left.intrinsics = measure::intrinsicsRecord(models[0], measure::parametersOf(truth.left.intrinsics));
        const Cameras cameras(blockOf(truth));
        for (int k = 0; k < 20; ++k) {
            const Point3d X = randomWorldPoint(random);
            for (std::size_t side = 0; side < 2; ++side) {
                const Point2d expected = truth.project(side == 0 ? 'L' : 'R', X);
                const auto seen = cameras.both[side].project({X.x, X.y, X.z});
                ASSERT_TRUE(seen.has_value());
                EXPECT_NEAR(seen->pixel.x, expected.x, 1e-9);
                EXPECT_NEAR(seen->pixel.y, expected.y, 1e-9);
                constexpr double h = 1e-3;
                for (std::size_t i = 0; i < 3; ++i) {
                    Vector3 ahead{X.x, X.y, X.z};
                    Vector3 back = ahead;
                    ahead[i] += h;
                    back[i] -= h;
                    const auto a = cameras.both[side].project(ahead);
                    const auto b = cameras.both[side].project(back);
                    // Rounding of 1e-13 of 1000 pixels over h.
                    EXPECT_NEAR(seen->dx[i], (a->pixel.x - b->pixel.x) / (2.0 * h), 1e-7);
                    EXPECT_NEAR(seen->dy[i], (a->pixel.y - b->pixel.y) / (2.0 * h), 1e-7);
                }
            }
        }
    }
}

}  // namespace
}  // namespace zelmtest
