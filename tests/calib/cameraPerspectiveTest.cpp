// zelmCalibCameraParam under models 0 and 1: recovery of known cameras, agreement of the records, robust weighting,
// cost in views. The spread under noise against the Cramer-Rao bound: cameraMonteCarloTest.cpp.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <vector>

#include "cameraData.h"
#include "cameraRefine.h"
#include "cameraScene.h"
#include "faultAlloc.h"
#include "random.h"
#include "viewPose.h"
#include "zelm/calib.h"
#include "zhangClosedForm.h"

namespace {

using zelmtest::CameraEstimate;
using zelmtest::CameraScene;
using zelmtest::estimateCamera;
using zelmtest::meanDistance;
using zelmtest::perspectiveCamera;
using zelmtest::perspectiveScene;
using zelmtest::Random;

// Noiseless data: what the library promises of each parameter.
constexpr double kNoiseless = 1e-6;

void expectCamera(const ZelmCameraIntrinsics& expected, const ZelmCameraIntrinsics& actual) {
    const auto near = [](double a, double b, const char* name) {
        EXPECT_NEAR(a, b, kNoiseless * std::fmax(std::fabs(b), 0.01)) << name;  // 0.01: parameters that are 0
    };
    for (std::size_t i = 0; i < 9; ++i) {
        near(actual.A[i], expected.A[i], "entry of A");
    }
    near(actual.alpha, expected.alpha, "alpha");
    near(actual.beta, expected.beta, "beta");
    near(actual.gamma, expected.gamma, "gamma");
    near(actual.cx, expected.cx, "cx");
    near(actual.cy, expected.cy, "cy");
    near(actual.theta, expected.theta, "theta");
    near(actual.k1, expected.k1, "k1");
    near(actual.k2, expected.k2, "k2");
}

void expectPoses(const CameraScene& scene, const CameraEstimate& result) {
    for (std::size_t v = 0; v < scene.poses.size(); ++v) {
        for (std::size_t i = 0; i < 9; ++i) {
            EXPECT_NEAR(result.poses[v].R[i], scene.poses[v].R[i], kNoiseless);
        }
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_NEAR(result.poses[v].t[i], scene.poses[v].t[i], kNoiseless * std::fabs(scene.poses[v].t[2]));
        }
        double R[9];
        double r[3];
        std::copy_n(result.poses[v].r, 3, r);
        zelmCalibRodrigues(0, r, R);
        EXPECT_EQ(std::memcmp(R, result.poses[v].R, sizeof R), 0);
    }
}

struct Lens {
    const char* name;
    double k1;
    double k2;
};
constexpr Lens kLenses[] = {{"none", 0.0, 0.0},
                            {"barrel", -0.2, 0.1},
                            {"pincushion", 0.15, -0.05},
                            {"strong barrel", -0.35, 0.15},
                            {"both positive", 0.05, 0.3}};

TEST(CameraParam, NoiselessViewsGiveEveryParameterBack) {
    for (const int32_t model : {0, 1}) {
        for (const Lens& lens : kLenses) {
            for (const std::uint64_t seed : {1U, 2U, 3U}) {
                SCOPED_TRACE(testing::Message() << lens.name << " lens, model " << model);
                const double tilt = model == 1 ? 0.02 : 0.0005;
                CameraScene scene = perspectiveScene(
                    perspectiveCamera(1800, 1790, tilt, 655, 490, lens.k1, lens.k2, model), model, 10, seed);
                const CameraEstimate result = estimateCamera(scene);
                ASSERT_EQ(result.status, ZELM_OK);
                expectCamera(scene.camera, result.camera);
                expectPoses(scene, result);
                EXPECT_LT(result.error, 1e-7);
            }
        }
    }
}

TEST(CameraParam, ThreeViewsAreEnough) {
    for (const std::uint64_t seed : {4U, 5U, 6U}) {
        CameraScene scene = perspectiveScene(perspectiveCamera(1800, 1790, 0, 655, 490, -0.2, 0.1, 0), 0, 3, seed);
        const CameraEstimate result = estimateCamera(scene);
        ASSERT_EQ(result.status, ZELM_OK);
        expectCamera(scene.camera, result.camera);
    }
}

TEST(CameraParam, PerfectDataSucceedWithAndWithoutWeighting) {
    for (const double threshold : {-1.0, 0.0, 3.5}) {
        CameraScene scene = perspectiveScene(perspectiveCamera(1800, 1790, 0, 655, 490, 0, 0, 0), 0, 4, 7);
        const CameraEstimate result = estimateCamera(scene, threshold);
        ASSERT_EQ(result.status, ZELM_OK);
        EXPECT_LT(result.error, 1e-10);
    }
}

TEST(CameraParam, TheUnitOfThePlateDoesNotMatter) {
    // From micrometres to kilometres. Powers of two, so that nothing but the exponents differs.
    const CameraScene base = perspectiveScene(perspectiveCamera(1800, 1790, 0, 655, 490, -0.2, 0.1, 0), 0, 5, 8);
    CameraScene reference = base;
    Random random(8);
    reference.addNoise(0.05, random);
    const CameraEstimate expected = estimateCamera(reference);
    for (const int exponent : {-20, -10, 10}) {
        CameraScene scaled = reference;
        for (auto& plane : scaled.planes) {
            for (Point2d& dot : plane) {
                dot = {std::ldexp(dot.x, exponent), std::ldexp(dot.y, exponent)};
            }
        }
        const CameraEstimate result = estimateCamera(scaled);
        ASSERT_EQ(result.status, ZELM_OK);
        EXPECT_EQ(std::memcmp(&result.camera, &expected.camera, sizeof result.camera), 0);
        EXPECT_EQ(result.poses[0].t[2], std::ldexp(expected.poses[0].t[2], exponent));
    }
}

TEST(CameraParam, PlatesAtAnyRollStayBeforeTheCamera) {
    for (int degrees = 0; degrees < 360; degrees += 30) {
        CameraScene scene;
        scene.camera = perspectiveCamera(1800, 1790, 0, 655, 490, -0.2, 0.1, 0);
        const double roll = degrees * 0.017453292519943295;
        for (int v = 0; v < 5; ++v) {
            scene.addView(
                zelmtest::plateDots(10, 10, v % 2 == 0),
                zelmtest::tiltedPose(roll, 0.5, 1.3 * v, {5.0, -8.0, 300.0}, v % 2 == 0 ? 0 : 60, v % 2 == 0 ? 0 : 50));
        }
        const CameraEstimate result = estimateCamera(scene);
        ASSERT_EQ(result.status, ZELM_OK) << degrees;
        expectCamera(scene.camera, result.camera);
        for (const ZelmCameraExtrinsics& pose : result.poses) {
            EXPECT_GT(pose.t[2], 0.0);
        }
        expectPoses(scene, result);
    }
}

TEST(CameraParam, ViewsMayHaveDifferentDots) {
    CameraScene scene = perspectiveScene(perspectiveCamera(1800, 1790, 0, 655, 490, -0.2, 0.1, 0), 0, 6, 9);
    Random random(9);
    for (std::size_t v = 0; v < scene.planes.size(); ++v) {
        for (int drop = 0; drop < 20 * static_cast<int>(v); ++drop) {
            const auto i = random.integer(0, static_cast<int32_t>(scene.planes[v].size()) - 1);
            scene.planes[v].erase(scene.planes[v].begin() + i);
            scene.images[v].erase(scene.images[v].begin() + i);
        }
    }
    const CameraEstimate result = estimateCamera(scene);
    ASSERT_EQ(result.status, ZELM_OK);
    expectCamera(scene.camera, result.camera);
    expectPoses(scene, result);
}

TEST(CameraParam, RecordsReproduceTheResidualsOfTheRefinement) {
    // The error figure is taken inside, in normalised units, from the refinement's own projection. Here it is measured
    // from outside with the records. Both carry rounding of pixel coordinates of some 1000, a few 1e-13.
    for (const int32_t model : {0, 1}) {
        for (const double threshold : {-1.0, 3.5}) {
            CameraScene scene = perspectiveScene(
                perspectiveCamera(1800, 1700, model == 1 ? 0.03 : 0.001, 655, 490, -0.25, 0.1, model), model, 6, 10);
            Random random(10);
            scene.addNoise(0.2, random);
            const CameraEstimate result = estimateCamera(scene, threshold);
            ASSERT_EQ(result.status, ZELM_OK);
            EXPECT_NEAR(result.error, meanDistance(scene, result), 1e-11);
            // Mean length of noise of 0.2 px in x and y: 0.2 * sqrt(pi / 2), over 858 dots to 5 standard errors.
            EXPECT_NEAR(result.error, 0.2507, 5.0 * 0.131 / std::sqrt(858.0));
        }
    }
}

TEST(CameraParam, TheErrorFigureCountsEveryDotAlsoThoseWithoutWeight) {
    CameraScene scene = perspectiveScene(perspectiveCamera(1800, 1790, 0, 655, 490, 0, 0, 0), 0, 4, 11);
    Random random(11);
    scene.addNoise(0.01, random);
    scene.images[1][5].x += 57.2;
    const CameraEstimate result = estimateCamera(scene, 3.5);
    ASSERT_EQ(result.status, ZELM_OK);
    EXPECT_NEAR(result.error, 57.2 / 572.0 + 0.01253, 0.002);  // 4 * 143 dots, one 57.2 px off
}

TEST(CameraParam, ThetaIsTheAngleOfTheShearedAxes) {
    for (const double tilt : {-0.1, -0.01, 0.0, 0.005, 0.05, 0.2}) {
        for (const double k1 : {0.0, -0.3}) {
            SCOPED_TRACE(tilt);
            CameraScene scene = perspectiveScene(perspectiveCamera(1800, 1700, tilt, 655, 490, k1, 0, 1), 1, 6, 12);
            const CameraEstimate result = estimateCamera(scene);
            ASSERT_EQ(result.status, ZELM_OK);
            expectCamera(scene.camera, result.camera);
            EXPECT_NEAR(result.camera.theta, tilt, 1e-8);
            EXPECT_NEAR(result.camera.A[1] / result.camera.A[4], std::tan(result.camera.theta), 1e-14);
            EXPECT_NEAR(result.camera.gamma / result.camera.beta, std::tan(result.camera.theta), 1e-14);
            EXPECT_NEAR(result.camera.A[4], result.camera.beta / std::cos(result.camera.theta), 1e-10);
        }
    }
}

TEST(CameraParam, ModelsZeroAndOneDescribeTheSameCamera) {
    CameraScene scene = perspectiveScene(perspectiveCamera(1800, 1700, 0.05, 655, 490, -0.2, 0.1, 1), 1, 6, 13);
    Random random(13);
    scene.addNoise(0.05, random);
    const CameraEstimate one = estimateCamera(scene);
    scene.model = 0;
    const CameraEstimate zero = estimateCamera(scene);
    ASSERT_EQ(zero.status, ZELM_OK);
    EXPECT_EQ(zero.camera.theta, 0.0);
    EXPECT_EQ(zero.camera.beta, zero.camera.A[4]);
    EXPECT_EQ(zero.camera.gamma, zero.camera.A[1]);
    EXPECT_EQ(std::memcmp(one.camera.A, zero.camera.A, sizeof one.camera.A), 0);
    EXPECT_EQ(one.error, zero.error);
}

TEST(CameraParam, AThresholdOfZeroOrLessIsPlainLeastSquares) {
    CameraScene scene = perspectiveScene(perspectiveCamera(1800, 1790, 0, 655, 490, -0.2, 0.1, 0), 0, 6, 14);
    Random random(14);
    scene.addNoise(0.05, random);
    const CameraEstimate negative = estimateCamera(scene, -1.0);
    const CameraEstimate zero = estimateCamera(scene, 0.0);
    const CameraEstimate huge = estimateCamera(scene, 1e9);  // every weight 1 but for 1e-18
    EXPECT_EQ(std::memcmp(&negative.camera, &zero.camera, sizeof zero.camera), 0);
    EXPECT_NEAR(huge.camera.alpha, zero.camera.alpha, 1e-8 * zero.camera.alpha);
    EXPECT_NEAR(huge.camera.k1, zero.camera.k1, 1e-8);
}

TEST(CameraParam, IsAtAMinimumOfTheSumOfSquares) {
    // The records' own parameters, moved one at a time by what the data can tell, never lower the sum of squares.
    CameraScene scene = perspectiveScene(perspectiveCamera(1800, 1790, 0, 655, 490, -0.2, 0.1, 0), 0, 6, 15);
    Random random(15);
    scene.addNoise(0.1, random);
    const CameraEstimate result = estimateCamera(scene);
    ASSERT_EQ(result.status, ZELM_OK);
    const auto squares = [&](const CameraEstimate& at) {
        double sum = 0.0;
        zelmtest::forEachDistance(scene, at, [&](double distance) { sum += distance * distance; });
        return sum;
    };
    const double least = squares(result);
    for (const double sign : {-1.0, 1.0}) {
        for (int which = 0; which < 7; ++which) {
            CameraEstimate moved = result;
            ZelmCameraIntrinsics& c = moved.camera;
            const double step = sign * 1e-3;
            switch (which) {
                case 0:
                    c.alpha += step;
                    c.A[0] += step;
                    break;
                case 1:
                    c.beta += step;
                    c.A[4] += step;
                    break;
                case 2:
                    c.gamma += step;
                    c.A[1] += step;
                    break;
                case 3:
                    c.cx += step;
                    c.A[2] += step;
                    break;
                case 4:
                    c.cy += step;
                    c.A[5] += step;
                    break;
                case 5:
                    c.k1 += sign * 1e-4;
                    break;
                default:
                    moved.poses[0].t[0] += step;
                    break;
            }
            EXPECT_GT(squares(moved), least) << which;
        }
    }
}

TEST(CameraParam, WeightingKeepsOutliersFromTheResult) {
    CameraScene clean = perspectiveScene(perspectiveCamera(1800, 1790, 0, 655, 490, -0.2, 0.1, 0), 0, 10, 16);
    Random random(16);
    clean.addNoise(0.05, random);
    CameraScene spoiled = clean;
    for (auto& view : spoiled.images) {
        for (Point2d& p : view) {
            if (random.uniform() < 0.05) {
                const double angle = random.uniform(0.0, 6.283185307179586);
                const double length = random.uniform(2.0, 10.0);
                p = {p.x + length * std::cos(angle), p.y + length * std::sin(angle)};
            }
        }
    }
    const CameraEstimate expected = estimateCamera(clean, 3.5);
    const CameraEstimate weighted = estimateCamera(spoiled, 3.5);
    const CameraEstimate plain = estimateCamera(spoiled, -1.0);
    ASSERT_EQ(weighted.status, ZELM_OK);
    ASSERT_EQ(plain.status, ZELM_OK);
    // alpha's spread is some 0.2 px with these views and this noise; losing 5 % of the dots moves it by a fraction.
    EXPECT_NEAR(weighted.camera.alpha, expected.camera.alpha, 0.2);
    EXPECT_NEAR(weighted.camera.cx, expected.camera.cx, 0.2);
    EXPECT_GT(std::fabs(plain.camera.alpha - expected.camera.alpha) + std::fabs(plain.camera.cx - expected.camera.cx) +
                  std::fabs(plain.camera.cy - expected.camera.cy),
              1.0);
}

TEST(CameraParam, ManySpoiledSetsConvergeUnderWeighting) {
    for (std::uint64_t seed = 0; seed < 60; ++seed) {
        CameraScene scene = perspectiveScene(perspectiveCamera(1800, 1790, 0, 655, 490, -0.2, 0.1, 0), 0,
                                             static_cast<std::size_t>(3 + seed % 5), 100 + seed);
        Random random(seed);
        scene.addNoise(random.uniform(0.0, 0.5), random);
        const double share = random.uniform(0.0, 0.25);
        for (auto& view : scene.images) {
            for (Point2d& p : view) {
                if (random.uniform() < share) {
                    p.x += random.uniform(-20.0, 20.0);
                }
            }
        }
        EXPECT_EQ(estimateCamera(scene, seed % 2 == 0 ? 3.5 : 2.0).status, ZELM_OK) << seed;
    }
}

TEST(ZhangClosedForm, IsExactOnExactHomographies) {
    const double intrinsics[zelm::kIntrinsics] = {9.0, 8.5, 0.1, 0.2, -0.3, 0.0, 0.0};
    double A[9];
    zelm::writeCameraMatrix(intrinsics, A);
    double homographies[4 * 9];
    for (std::size_t v = 0; v < 4; ++v) {
        const auto pose = zelmtest::tiltedPose(0.2, 0.5, 1.6 * static_cast<double>(v), {0.1, 0.2, 8.0});
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t j = 0; j < 3; ++j) {
                double sum = 0.0;
                for (std::size_t k = 0; k < 3; ++k) {
                    sum += A[3 * i + k] * (j == 2 ? pose.t[k] : pose.R[3 * k + j]);
                }
                homographies[9 * v + 3 * i + j] = -sum;  // a homography has no sign of its own
            }
        }
    }
    double found[zelm::kIntrinsics] = {};
    ASSERT_EQ(zelm::zhangIntrinsics(4, homographies, found), ZELM_OK);
    for (std::size_t k = 0; k < zelm::kK1; ++k) {
        EXPECT_NEAR(found[k], intrinsics[k], 1e-10) << k;  // V^T V squares a condition number of some 1e2
    }
    double Ainv[9];
    const double inverse[9] = {1.0 / A[0],
                               -A[1] / (A[0] * A[4]),
                               (A[1] * A[5] - A[2] * A[4]) / (A[0] * A[4]),
                               0.0,
                               1.0 / A[4],
                               -A[5] / A[4],
                               0.0,
                               0.0,
                               1.0};
    std::copy_n(inverse, 9, Ainv);
    double pose[zelm::kPose];
    ASSERT_EQ(zelm::poseFromHomography(Ainv, homographies, pose), ZELM_OK);
    EXPECT_NEAR(pose[5], 8.0, 1e-12);
}

// What a refinement asks of the allocator: a dense system would ask for bytes that grow with the square of the views, a
// view visited more than once a step for more blocks than steps x views.
struct RefinementCost {
    long requests;
    std::size_t bytes;
};

// Repeats the views of a small set, so that the refinement takes the same steps whatever the number of views.
RefinementCost refinementCost(std::size_t repeats) {
    CameraScene scene = perspectiveScene(perspectiveCamera(8.0, 8.1, 0, 0.1, -0.1, -0.1, 0.02, 0), 0, 30, 17);
    const std::size_t perView = scene.planes[0].size();
    const std::size_t views = 30 * repeats;
    zelm::CameraData data;
    data.first = zelm::WorkBuffer<std::size_t>(views + 1);
    data.plane = zelm::WorkBuffer<Point2d>(views * perView);
    data.image = zelm::WorkBuffer<Point2d>(views * perView);
    data.parallel = false;
    zelm::WorkBuffer<double> start(views, zelm::kPose);
    zelm::WorkBuffer<double> poses(views, zelm::kPose);
    Random random(17);
    scene.addNoise(0.001, random);
    for (std::size_t v = 0; v < views; ++v) {
        data.first[v] = v * perView;
        std::copy_n(scene.planes[v % 30].data(), perView, data.plane.data() + v * perView);
        std::copy_n(scene.images[v % 30].data(), perView, data.image.data() + v * perView);
        std::copy_n(scene.poses[v % 30].r, 3, start.data() + v * zelm::kPose);
        std::copy_n(scene.poses[v % 30].t, 3, start.data() + v * zelm::kPose + 3);
    }
    data.first[views] = views * perView;
    zelm::CameraUnknowns unknowns;
    const double intrinsics[zelm::kIntrinsics] = {8.2, 8.0, 0.0, 0.0, 0.0, 0.0, 0.0};
    std::copy_n(intrinsics, zelm::kIntrinsics, unknowns.intrinsics);
    std::copy_n(start.data(), views * zelm::kPose, poses.data());
    unknowns.poses = poses.data();
    zelmtest::armAllocFault(0);
    EXPECT_EQ(zelm::refineCamera(data, 3.5, &unknowns), ZELM_OK);
    zelmtest::disarmAllocFault();
    return {zelmtest::allocCounters().requests, zelmtest::allocCounters().bytes};
}

// The time is shown by the benchmark of the calibration.
TEST(CameraRefinement, TenTimesTheViewsCostAtMostTwelveTimesAsMuch) {
    const RefinementCost few = refinementCost(1);
    const RefinementCost many = refinementCost(10);
    // A matrix of the unknowns of all views would take a hundred times the bytes.
    EXPECT_GE(few.bytes, 30 * zelm::kPose * zelm::kPose * sizeof(double)) << "each view has a block of its own";
    EXPECT_LE(many.requests, 12 * few.requests);
    EXPECT_LE(many.bytes, 12 * few.bytes);
}

}  // namespace
