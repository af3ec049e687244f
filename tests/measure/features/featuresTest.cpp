// Features through the interface: closed forms, relations, robust fits, and what is refused.
#include <gtest/gtest.h>

#include <Eigen/Cholesky>
#include <numbers>

#include "featureScenes.h"

namespace zelmtest {
namespace {

constexpr double kRounding = 1e-8;  // of coordinates of some hundreds
constexpr std::int32_t kAllShapes[] = {ZELM_MEASURE_FEATURE_LINE, ZELM_MEASURE_FEATURE_PLANE,
                                       ZELM_MEASURE_FEATURE_CIRCLE, ZELM_MEASURE_FEATURE_SPHERE,
                                       ZELM_MEASURE_FEATURE_CYLINDER};

V3 locationOf(const ZelmMeasureFeatureResult& r) {
    return {r.values[0], r.values[1], r.values[2]};
}
V3 directionOf(const ZelmMeasureFeatureResult& r) {
    return {r.values[3], r.values[4], r.values[5]};
}

TEST(Features, ShapesWithoutNoiseAreFoundExactly) {
    const V3 axis = someRotation() * V3::UnitZ();
    const V3 middle(12.0, -7.0, 400.0);
    for (const std::int32_t kind : kAllShapes) {
        for (const bool robust : {false, true}) {
            const FeatureScene scene = shapePoints(kind, 25);
            const FeatureAnswer a = ask(scene, {{kind, scene.all(), robust}});
            ASSERT_EQ(a.status, ZELM_OK);
            const ZelmMeasureFeatureResult& r = a.features[0];
            ASSERT_EQ(r.status, ZELM_MEASURE_FEATURE_OK) << kind;
            EXPECT_EQ(r.used, 25);
            EXPECT_EQ(r.leftOut, 0);
            EXPECT_LT(r.rms, kRounding);
            EXPECT_LT(r.form, 10 * kRounding);
            const V3 off = locationOf(r) - middle;
            if (kind == ZELM_MEASURE_FEATURE_CIRCLE || kind == ZELM_MEASURE_FEATURE_SPHERE) {
                EXPECT_LT(off.norm(), kRounding) << kind;
            } else if (kind == ZELM_MEASURE_FEATURE_PLANE) {
                EXPECT_LT(std::fabs(off.dot(axis)), kRounding);
            } else {
                EXPECT_LT((off - off.dot(axis) * axis).norm(), kRounding) << kind;
            }
            if (kind != ZELM_MEASURE_FEATURE_SPHERE) {
                EXPECT_NEAR(std::fabs(directionOf(r).dot(axis)), 1.0, 1e-12) << kind;
            }
            const bool hasRadius = kind >= ZELM_MEASURE_FEATURE_CIRCLE;
            EXPECT_NEAR(r.values[6], hasRadius ? 25.0 : 0.0, kRounding) << kind;
        }
    }
}

// A square plate whose corners lie h above and below: the best plane is the middle one, all known in closed form.
TEST(Features, APlaneOfFourPointsInClosedForm) {
    FeatureScene scene;
    constexpr double a = 10.0;
    constexpr double h = 0.3;
    for (const auto& [x, y, z] : {std::array{a, a, h}, {-a, a, -h}, {-a, -a, h}, {a, -a, -h}}) {
        scene.add({x, y, z});
    }
    scene.state(0.05, 0.05);
    const FeatureAnswer answer = ask(scene, {{ZELM_MEASURE_FEATURE_PLANE, scene.all()}});
    const ZelmMeasureFeatureResult& r = answer.features[0];
    ASSERT_EQ(r.status, ZELM_MEASURE_FEATURE_OK);
    EXPECT_NEAR(r.values[5], 1.0, 1e-12);
    EXPECT_NEAR(r.values[2], 0.0, 1e-12);
    EXPECT_NEAR(r.form, 2 * h, 1e-12);
    EXPECT_NEAR(r.rms, h, 1e-12);
    EXPECT_NEAR(r.worst, h, 1e-12);
    EXPECT_EQ(r.freedom, 1.0);
    EXPECT_NEAR(r.misfit, 2.0 * h / 0.05, 1e-9);  // four residuals, one degree of freedom
    // Height: sigma / sqrt(n); tilt: sigma over the root of the sum of squared arms; the mean of x: sigma / sqrt(n).
    EXPECT_NEAR(r.noise[2], 0.05 / 2.0, 1e-12);
    EXPECT_NEAR(r.noise[3], 0.05 / (2.0 * a), 1e-12);
    EXPECT_NEAR(r.noise[0], 0.05 / 2.0, 1e-12);
    EXPECT_EQ(r.known, 1);
    EXPECT_NEAR(r.expanded[2], 1.959964 * r.deviations[2], 1e-6 * r.deviations[2]);
}

// Eight points evenly on a circle: the centre has sigma sqrt(2 / n), the radius sigma / sqrt(n).
TEST(Features, ACircleInClosedForm) {
    FeatureScene scene;
    for (int i = 0; i < 8; ++i) {
        const double angle = std::numbers::pi * i / 4.0;
        scene.add({5.0 * std::cos(angle), 5.0 * std::sin(angle), 0.0});
    }
    scene.state(0.02, 0.02);
    const ZelmMeasureFeatureResult r = ask(scene, {{ZELM_MEASURE_FEATURE_CIRCLE, scene.all()}}).features[0];
    ASSERT_EQ(r.status, ZELM_MEASURE_FEATURE_OK);
    EXPECT_NEAR(r.noise[0], 0.02 * std::sqrt(2.0 / 8.0), 1e-12);
    EXPECT_NEAR(r.noise[2], 0.02 / std::sqrt(8.0), 1e-12);
    EXPECT_NEAR(r.noise[6], 0.02 / std::sqrt(8.0), 1e-12);
    EXPECT_NEAR(r.noise[3], 0.02 * std::sqrt(2.0 / 8.0) / 5.0, 1e-12);
}

TEST(Features, RelationsOfKnownShapes) {
    FeatureScene scene;
    const std::vector<V3> points{{0, 0, 0},  {10, 0, 0},  {0, 10, 0}, {10, 10, 0},  // plane z = 0
                                 {0, 0, 5},  {10, 0, 5},  {0, 10, 5},               // plane z = 5
                                 {0, 3, 4},  {0, 3, 14},                            // line along z
                                 {2, 0, 7},  {12, 0, 7},                            // line along x, 3 away from it
                                 {0, 0, 20}, {10, 0, 30}, {0, 10, 20}};             // plane at 45 degrees
    for (const V3& p : points) {
        scene.add(p);
    }
    scene.state(0.01, 0.01);
    constexpr auto kPlane = ZELM_MEASURE_FEATURE_PLANE;
    constexpr auto kLine = ZELM_MEASURE_FEATURE_LINE;
    constexpr auto kDistance = ZELM_MEASURE_RELATION_DISTANCE;
    constexpr auto kAngle = ZELM_MEASURE_RELATION_ANGLE;
    const std::vector<AskedFeature> features{{kPlane, {0, 1, 2, 3}},
                                             {kPlane, {4, 5, 6}},
                                             {kLine, {7, 8}},
                                             {kLine, {9, 10}},
                                             {kPlane, {11, 12, 13}},
                                             {ZELM_MEASURE_FEATURE_POINT, {8}},
                                             {ZELM_MEASURE_FEATURE_POINT, {0}}};
    const FeatureAnswer a =
        ask(scene, features,
            {relationOfTwo(kDistance, 0, 1), relationOfTwo(kDistance, 2, 3), relationOfTwo(kAngle, 0, 4),
             relationOfTwo(kAngle, 2, 3), relationOfTwo(kAngle, 2, 4), relationOfTwo(kDistance, 5, 0),
             relationOfTwo(kDistance, 5, 6), relationOfTwo(kDistance, 3, 5), relationOfTwo(kAngle, 0, 1)});
    ASSERT_EQ(a.status, ZELM_OK);
    const double quarter = std::numbers::pi / 4.0;
    const double expected[] = {
        5.0, 3.0, quarter, 2.0 * quarter, quarter, 14.0, std::hypot(3.0, 14.0), std::hypot(3.0, 7.0), 0.0};
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        EXPECT_NEAR(a.relations[i].value, expected[i], 1e-12) << i;
    }
    EXPECT_EQ(a.relations[8].status, ZELM_MEASURE_FEATURE_SMALL);  // an angle of 0 has no first order
    EXPECT_EQ(a.relations[8].known, 0);
    // From a point to the plane z = 0 of four corners, at (0, 3) of their square: its own height and the plane's.
    const double plane = std::sqrt(1.0 / 4.0 + (5.0 * 5.0 + 2.0 * 2.0) / 100.0);
    EXPECT_NEAR(a.relations[5].noise, 0.01 * std::hypot(1.0, plane), 1e-10);
}

// What two features have in common is no error between them: the distance from a plane to one of its own points has the
// variance of that point's residual, sigma^2 (1 - leverage), not the sum of both.
TEST(Features, PointsThatTwoFeaturesShareCountOnce) {
    FeatureScene scene;
    for (const auto& [x, y, z] :
         {std::array{10.0, 10.0, 0.3}, {-10.0, 10.0, -0.3}, {-10.0, -10.0, 0.3}, {10.0, -10.0, -0.3}}) {
        scene.add({x, y, z});
    }
    scene.state(0.02, 0.02);
    const FeatureAnswer a = ask(scene, {{ZELM_MEASURE_FEATURE_PLANE, scene.all()}, {ZELM_MEASURE_FEATURE_POINT, {0}}},
                                {relationOfTwo(ZELM_MEASURE_RELATION_DISTANCE, 0, 1)});
    EXPECT_NEAR(a.relations[0].value, 0.3, 1e-12);
    EXPECT_NEAR(a.relations[0].noise, 0.02 * std::sqrt(1.0 - 3.0 / 4.0), 1e-6);  // leverage of each: 3 of 4
}

TEST(Features, ARobustFitLeavesWrongPointsOut) {
    for (const std::int32_t kind : kAllShapes) {
        Random random(static_cast<std::uint64_t>(kind));
        FeatureScene scene = shapePoints(kind, 30);
        scene.state(0.02, 0.05);
        scene = scene.disturbed(random);
        const FeatureAnswer sound = ask(scene, {{kind, scene.all(), true}});
        FeatureScene wrong = scene;
        for (const std::size_t i : {3U, 8U, 11U, 19U, 27U}) {
            for (std::size_t k = 0; k < 3; ++k) {
                wrong.points[3 * i + k] += random.uniform(2.0, 8.0);
            }
        }
        const FeatureAnswer a = ask(wrong, {{kind, wrong.all(), true}});
        ASSERT_EQ(a.features[0].status, ZELM_MEASURE_FEATURE_OK) << kind;
        int caught = 0;
        for (const std::size_t i : {3U, 8U, 11U, 19U, 27U}) {
            caught += 1 - a.uses[0][i];
        }
        // A point may have been moved along the shape.
        EXPECT_GE(caught, 4) << kind;
        EXPECT_LE(a.features[0].leftOut, 5 + sound.features[0].leftOut) << kind;
        for (std::size_t k = 0; k < 7; ++k) {
            // The location along a plane or line is the mean of what is left.
            const bool isMean = k < 3 && kind != ZELM_MEASURE_FEATURE_CIRCLE && kind != ZELM_MEASURE_FEATURE_SPHERE;
            if (!isMean) {
                EXPECT_NEAR(a.features[0].values[k], sound.features[0].values[k],
                            4.0 * a.features[0].deviations[k] + 1e-9)
                    << kind << " " << k;
            }
        }
        const ZelmMeasureFeatureResult all = ask(wrong, {{kind, wrong.all()}}).features[0];
        EXPECT_TRUE(all.status != ZELM_MEASURE_FEATURE_OK || all.misfitChance < 1e-6) << kind;
    }
}

TEST(Features, WithoutStatedNoiseTheResidualsTellIt) {
    Random random(5);
    FeatureScene scene = shapePoints(ZELM_MEASURE_FEATURE_PLANE, 400);
    scene.state(0.05, 0.05);
    const FeatureScene noisy = scene.disturbed(random);
    FeatureScene bare = noisy;
    bare.noise.clear();
    const ZelmMeasureFeatureResult known = ask(noisy, {{ZELM_MEASURE_FEATURE_PLANE, noisy.all()}}).features[0];
    const ZelmMeasureFeatureResult told = ask(bare, {{ZELM_MEASURE_FEATURE_PLANE, bare.all()}}).features[0];
    EXPECT_EQ(told.known, 1);
    EXPECT_EQ(told.misfit, 0.0);
    EXPECT_NEAR(told.deviations[2] / known.deviations[2], 1.0, 0.12);  // of 397 residuals: 3.5 % a deviation
    FeatureScene three = bare;
    three.points.resize(9);
    const ZelmMeasureFeatureResult exact = ask(three, {{ZELM_MEASURE_FEATURE_PLANE, three.all()}}).features[0];
    EXPECT_EQ(exact.status, ZELM_MEASURE_FEATURE_OK);
    EXPECT_EQ(exact.known, 0);
    EXPECT_EQ(exact.deviations[2], 0.0);
}

TEST(Features, PointsThatTellNoShapeAreSaidSo) {
    FeatureScene line = shapePoints(ZELM_MEASURE_FEATURE_LINE, 10);
    for (const std::int32_t kind : {ZELM_MEASURE_FEATURE_PLANE, ZELM_MEASURE_FEATURE_CIRCLE,
                                    ZELM_MEASURE_FEATURE_SPHERE, ZELM_MEASURE_FEATURE_CYLINDER}) {
        EXPECT_EQ(ask(line, {{kind, line.all()}}).features[0].status, ZELM_MEASURE_FEATURE_UNDETERMINED) << kind;
        EXPECT_EQ(ask(line, {{kind, {0, 1}}}).features[0].status, ZELM_MEASURE_FEATURE_FEW) << kind;
    }
    const FeatureScene flat = shapePoints(ZELM_MEASURE_FEATURE_PLANE, 10);
    EXPECT_EQ(ask(flat, {{ZELM_MEASURE_FEATURE_SPHERE, flat.all()}}).features[0].status,
              ZELM_MEASURE_FEATURE_UNDETERMINED);
    FeatureScene same;
    for (int i = 0; i < 6; ++i) {
        same.add({1.0, 2.0, 3.0});
    }
    for (const std::int32_t kind : kAllShapes) {
        EXPECT_EQ(ask(same, {{kind, same.all()}}).features[0].status, ZELM_MEASURE_FEATURE_UNDETERMINED) << kind;
    }
    const FeatureAnswer a = ask(line, {{ZELM_MEASURE_FEATURE_PLANE, line.all()}, {ZELM_MEASURE_FEATURE_POINT, {0}}},
                                {relationOfTwo(ZELM_MEASURE_RELATION_DISTANCE, 0, 1)});
    EXPECT_EQ(a.relations[0].status, ZELM_MEASURE_FEATURE_NO_PART);
}

TEST(Features, WhatCannotBeMeantIsRefused) {
    const FeatureScene scene = shapePoints(ZELM_MEASURE_FEATURE_PLANE, 8);
    constexpr auto kPlane = ZELM_MEASURE_FEATURE_PLANE;
    EXPECT_EQ(ask(scene, {{kPlane, {0, 1, 8}}}).status, ZELM_ERR_PARAM);
    EXPECT_EQ(ask(scene, {{kPlane, {0, 1, -1}}}).status, ZELM_ERR_PARAM);
    EXPECT_EQ(ask(scene, {{kPlane, {0, 1, 1}}}).status, ZELM_ERR_PARAM);
    EXPECT_EQ(ask(scene, {{6, {0, 1, 2}}}).status, ZELM_ERR_PARAM);
    EXPECT_EQ(ask(scene, {{-1, {0, 1, 2}}}).status, ZELM_ERR_PARAM);
    const std::vector<AskedFeature> two{{kPlane, {0, 1, 2}}, {ZELM_MEASURE_FEATURE_POINT, {3}}};
    EXPECT_EQ(ask(scene, two, {relationOfTwo(ZELM_MEASURE_RELATION_DISTANCE, 0, 0)}).status, ZELM_ERR_PARAM);
    EXPECT_EQ(ask(scene, two, {relationOfTwo(ZELM_MEASURE_RELATION_DISTANCE, 0, 2)}).status, ZELM_ERR_PARAM);
    EXPECT_EQ(ask(scene, two, {relationOfTwo(ZELM_MEASURE_RELATION_ANGLE, 0, 1)}).status, ZELM_ERR_PARAM);
    EXPECT_EQ(ask(scene, two, {relationOfTwo(3, 0, 1)}).status, ZELM_ERR_PARAM);
    FeatureScene wrong = scene;
    wrong.points[4] = std::nan("");
    EXPECT_EQ(ask(wrong, {{kPlane, {0, 2, 3}}}).status, ZELM_ERR_PARAM);
    wrong = scene;
    wrong.state(0.01, 0.01);
    wrong.noise[0] = -1.0;
    EXPECT_EQ(ask(wrong, {{kPlane, {0, 2, 3}}}).status, ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasureFeatures(nullptr, nullptr, 0, nullptr, nullptr, 0, nullptr, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(ask(scene, {}).status, ZELM_OK);
}

}  // namespace
}  // namespace zelmtest
