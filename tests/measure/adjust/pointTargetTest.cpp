// Calibration from points of any flat target: a pair, one camera alone, and what is refused.
#include <gtest/gtest.h>
#include <zelmMeasure.h>

#include <Eigen/Cholesky>
#include <Eigen/Core>
#include <array>
#include <cmath>
#include <memory>
#include <vector>

#include "adjustScene.h"
#include "predictedDot.h"
#include "rig.h"

namespace zelmtest {
namespace {

using namespace zelm::measure;

struct Close {
    void operator()(ZelmMeasureAdjustment* a) const { zelmMeasureAdjustClose(&a); }
    void operator()(ZelmMeasureRig* r) const { zelmMeasureRigClose(&r); }
};
using OpenAdjustment = std::unique_ptr<ZelmMeasureAdjustment, Close>;
using OpenRig = std::unique_ptr<ZelmMeasureRig, Close>;

// The dots of a scene as points: pixels are those of their places, whatever their size.
struct ScenePoints {
    std::vector<std::int32_t> view, side, grid;
    std::vector<double> places, pixels;
    std::int32_t views = 0;
    bool hasLeft = true, hasRight = true;

    ScenePoints(const AdjustScene& scene, double sigma, std::uint64_t seed) {
        Random random(seed);
        views = static_cast<std::int32_t>(scene.views.size());
        for (std::size_t v = 0; v < scene.views.size(); ++v) {
            for (const Side s : {kLeft, kRight}) {
                for (const DotObservation& dot : scene.views[v].dots[s]) {
                    const ImageParameters image = imageParameters(scene.truth, s, v, dot.kind);
                    const Point2d seen = pixelOf(image.camera, circleOf(image, dot.place, 0.0).centre);
                    add(static_cast<std::int32_t>(v), s == kLeft ? 'L' : 'R', dot.index, dot.place,
                        {seen.x + sigma * random.normal(), seen.y + sigma * random.normal()});
                }
            }
        }
    }

    void add(std::int32_t v, std::int32_t s, GridIndex index, const Vector3& place, Point2d pixel) {
        view.push_back(v);
        side.push_back(s);
        grid.insert(grid.end(), {index.x, index.y});
        places.insert(places.end(), place.begin(), place.end());
        pixels.insert(pixels.end(), {pixel.x, pixel.y});
    }

    // Only the points that pass.
    template <class Passes>
    void keep(Passes passes) {
        ScenePoints kept = *this;
        kept.view.clear();
        kept.side.clear();
        kept.grid.clear();
        kept.places.clear();
        kept.pixels.clear();
        for (std::size_t i = 0; i < view.size(); ++i) {
            if (passes(i)) {
                kept.add(view[i], side[i], {grid[2 * i], grid[2 * i + 1]},
                         {places[3 * i], places[3 * i + 1], places[3 * i + 2]}, {pixels[2 * i], pixels[2 * i + 1]});
            }
        }
        *this = kept;
    }

    [[nodiscard]] ZelmMeasureTargetPoints record() const {
        const ZelmMeasurePointCamera camera{0, kSceneWidth, kSceneHeight, 0};
        return {sizeof(ZelmMeasureTargetPoints),
                views,
                static_cast<std::int64_t>(view.size()),
                view.data(),
                side.data(),
                grid.data(),
                places.data(),
                pixels.data(),
                hasLeft ? camera : ZelmMeasurePointCamera{},
                hasRight ? camera : ZelmMeasurePointCamera{}};
    }
};

AdjustScene sceneOf(std::uint64_t seed = 1, int views = 8) {
    AdjustSceneOptions options;
    options.views = views;
    options.seed = seed;
    options.skewed = true;
    return makeAdjustScene(options);
}

OpenAdjustment opened(const ScenePoints& points, std::int32_t expected = ZELM_OK,
                      const Zelm2ViewPatternDesc* pattern = nullptr) {
    const ZelmMeasureTargetPoints record = points.record();
    ZelmMeasureAdjustment* handle = nullptr;
    EXPECT_EQ(zelmMeasureAdjustOpenPoints(&record, pattern, nullptr, &handle), expected)
        << zelmMeasureAdjustError(handle);
    return OpenAdjustment(handle);
}

OpenAdjustment solved(const ScenePoints& points, const Zelm2ViewPatternDesc* pattern = nullptr) {
    OpenAdjustment a = opened(points, ZELM_OK, pattern);
    EXPECT_EQ(zelmMeasureAdjustSolve(a.get()), ZELM_OK) << zelmMeasureAdjustError(a.get());
    return a;
}

ZelmMeasureAdjustedCamera cameraOf(const OpenAdjustment& a, std::int32_t side) {
    ZelmMeasureAdjustedCamera camera{};
    camera.size = sizeof(camera);
    EXPECT_EQ(zelmMeasureAdjustCamera(a.get(), side, &camera), ZELM_OK) << zelmMeasureAdjustError(a.get());
    return camera;
}

std::array<double, 7> parametersOfRecord(const ZelmCameraIntrinsics& k) {
    return {k.A[0], k.A[1], k.A[4], k.A[2], k.A[5], k.k1, k.k2};
}

TEST(PointTarget, PointsWithoutNoiseGiveThePair) {
    const AdjustScene scene = sceneOf();
    const OpenAdjustment a = solved(ScenePoints(scene, 0.0, 1));
    ZelmMeasureRig* handle = nullptr;
    ASSERT_EQ(zelmMeasureAdjustRig(a.get(), &handle), ZELM_OK);
    const OpenRig rig(handle);
    const auto errors = rigErrors(rigOfState(scene, scene.truth), rig->rig);
    for (std::size_t i = 0; i < errors.size(); ++i) {
        EXPECT_NEAR(errors[i], 0.0, 1e-6) << i;  // pixels of 1e-9 over focal lengths and distances of hundreds
    }
    std::int64_t count = 0;
    ASSERT_EQ(zelmMeasureAdjustEpipolar(a.get(), 3, 0, nullptr, &count), ZELM_OK);
    ASSERT_GT(count, 100);
    std::vector<double> distances(static_cast<std::size_t>(count));
    ASSERT_EQ(zelmMeasureAdjustEpipolar(a.get(), 3, count, distances.data(), &count), ZELM_OK);
    for (const double distance : distances) {
        EXPECT_LT(distance, 1e-6);
    }
}

TEST(PointTarget, OneCameraAloneGivesItsParametersAndPoses) {
    const AdjustScene scene = sceneOf();
    for (const Side side : {kLeft, kRight}) {
        ScenePoints points(scene, 0.0, 1);
        const std::int32_t letter = side == kLeft ? 'L' : 'R';
        points.keep([&](std::size_t i) { return points.side[i] == letter; });
        points.hasLeft = side == kLeft;
        points.hasRight = side == kRight;
        const OpenAdjustment a = solved(points);
        const ZelmMeasureAdjustedCamera camera = cameraOf(a, letter);
        const auto found = parametersOfRecord(camera.intrinsics);
        for (std::size_t i = 0; i < found.size(); ++i) {
            EXPECT_NEAR(found[i], scene.truth.cameras[side].p[i], 1e-6) << i;
            EXPECT_GT(camera.covariance[8 * i], 0.0) << i;
        }
        ZelmCameraExtrinsics pose{};
        ASSERT_EQ(zelmMeasureAdjustPose(a.get(), letter, 2, &pose), ZELM_OK);
        const MotionParameters truth = poseOf(scene.truth, side, 2);
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_NEAR(pose.r[i], truth[i], 1e-8);
            EXPECT_NEAR(pose.t[i], truth[3 + i], 1e-5);
        }
        ZelmMeasureRig* none = nullptr;
        EXPECT_EQ(zelmMeasureAdjustRig(a.get(), &none), ZELM_MEASURE_ERR_DATA);
        EXPECT_EQ(zelmMeasureAdjustStartRig(a.get(), &none), ZELM_MEASURE_ERR_DATA);
        EXPECT_EQ(none, nullptr);
        ZelmMeasureAdjustedCamera other{};
        other.size = sizeof(other);
        EXPECT_EQ(zelmMeasureAdjustCamera(a.get(), side == kLeft ? 'R' : 'L', &other), ZELM_ERR_PARAM);
        std::int64_t checks = 0;
        ASSERT_EQ(zelmMeasureAdjustChecks(a.get(), nullptr, 0, &checks), ZELM_OK);
        EXPECT_EQ(checks, 4);  // halves, lens, bow, pitch
    }
}

// The covariance is that of the errors: of 20 draws the mean squared Mahalanobis distance over its 7 parameters lies
// within three standard deviations, 3 sqrt(2 / (7 * 20)), of 1.
TEST(PointTarget, TheCovarianceOfOneCameraIsThatOfItsErrors) {
    constexpr int kDraws = 20;
    double sum = 0.0;
    for (int draw = 0; draw < kDraws; ++draw) {
        const AdjustScene scene = sceneOf(static_cast<std::uint64_t>(draw + 1), 7);
        ScenePoints points(scene, 0.05, static_cast<std::uint64_t>(draw + 100));
        points.keep([&](std::size_t i) { return points.side[i] == 'L' && i % 2 == 0; });
        points.hasRight = false;
        const ZelmMeasureAdjustedCamera camera = cameraOf(solved(points), 'L');
        EXPECT_NEAR(camera.noise, 0.05, 0.01);
        Eigen::Matrix<double, 7, 7> C;
        Eigen::Matrix<double, 7, 1> e;
        const auto found = parametersOfRecord(camera.intrinsics);
        for (Eigen::Index i = 0; i < 7; ++i) {
            const auto at = static_cast<std::size_t>(i);
            e[i] = found[at] - scene.truth.cameras[kLeft].p[at];
            for (Eigen::Index j = 0; j < 7; ++j) {
                C(i, j) = camera.covariance[7 * at + static_cast<std::size_t>(j)];
            }
        }
        // Scaled, since focal lengths and distortions differ by orders of magnitude.
        const Eigen::Matrix<double, 7, 1> s = C.diagonal().cwiseSqrt();
        const Eigen::Matrix<double, 7, 7> scaled = s.cwiseInverse().asDiagonal() * C * s.cwiseInverse().asDiagonal();
        const Eigen::Matrix<double, 7, 1> z = e.cwiseQuotient(s);
        sum += z.dot(scaled.ldlt().solve(z)) / 7.0;
    }
    EXPECT_NEAR(sum / kDraws, 1.0, 3.0 * std::sqrt(2.0 / (7.0 * kDraws)));
}

TEST(PointTarget, ViewsThatOneCameraSeesTakePart) {
    const AdjustScene scene = sceneOf();
    ScenePoints points(scene, 0.0, 1);
    // Views 0 and 1 are the left camera's, 2 and 3 the right one's, 4 has few points on the left.
    points.keep([&](std::size_t i) {
        const std::int32_t v = points.view[i];
        const bool isLeft = points.side[i] == 'L';
        return v >= 4 ? !(v == 4 && isLeft && i % 40 != 0) : (v < 2) == isLeft;
    });
    const OpenAdjustment a = solved(points);
    ZelmMeasureRig* handle = nullptr;
    ASSERT_EQ(zelmMeasureAdjustRig(a.get(), &handle), ZELM_OK) << zelmMeasureAdjustError(a.get());
    const OpenRig rig(handle);
    EXPECT_EQ(rig->rig.views(), scene.views.size());
    const auto errors = rigErrors(rigOfState(scene, scene.truth), rig->rig);
    for (const double error : errors) {
        EXPECT_NEAR(error, 0.0, 1e-6);
    }
}

TEST(PointTarget, DotsOfAPlateAreDotsAgain) {
    const AdjustScene scene = sceneOf();
    ScenePoints points(scene, 0.0, 1);
    std::size_t i = 0;
    for (std::size_t v = 0; v < scene.views.size(); ++v) {
        for (const Side s : {kLeft, kRight}) {
            for (const DotObservation& dot : scene.views[v].dots[s]) {
                points.pixels[2 * i] = dot.pixel.x;  // the centre of the ellipse
                points.pixels[2 * i + 1] = dot.pixel.y;
                ++i;
            }
        }
    }
    const ZelmMeasureAdjustedCamera asDots = cameraOf(solved(points, &scene.plate), 'L');
    EXPECT_NEAR(asDots.intrinsics.A[0], scene.truth.cameras[kLeft].p[kFx], 1e-6);
    // The centres of ellipses are no images of points: taken so, they move the camera.
    const ZelmMeasureAdjustedCamera asPoints = cameraOf(solved(points), 'L');
    EXPECT_GT(std::fabs(asPoints.intrinsics.A[0] - scene.truth.cameras[kLeft].p[kFx]), 1e-3);
}

TEST(PointTarget, ViewsThatTellNoPlaceAreNamed) {
    const AdjustScene scene = sceneOf();
    ScenePoints points(scene, 0.0, 1);
    std::vector<int> kept(scene.views.size());
    points.keep([&](std::size_t i) {
        const auto v = static_cast<std::size_t>(points.view[i]);
        return v == 1 ? kept[v]++ < 5 : v == 2 ? points.grid[2 * i + 1] == 0 : true;
    });
    std::vector<std::int32_t> statuses(scene.views.size(), -1);
    const ZelmMeasureTargetPoints record = points.record();
    ASSERT_EQ(zelmMeasurePointViews(&record, statuses.data()), ZELM_OK);
    for (std::size_t v = 0; v < statuses.size(); ++v) {
        EXPECT_EQ(statuses[v], v == 1   ? ZELM_MEASURE_POINT_VIEW_FEW
                               : v == 2 ? ZELM_MEASURE_POINT_VIEW_LINE
                                        : ZELM_MEASURE_POINT_VIEW_OK);
    }
    const OpenAdjustment refused = opened(points, ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(std::string(zelmMeasureAdjustError(refused.get())).find("view 1"), std::string::npos);
}

TEST(PointTarget, WhatCannotBeMeantIsRefused) {
    const AdjustScene scene = sceneOf();
    const ScenePoints sound(scene, 0.0, 1);
    const auto expectParam = [](const ScenePoints& points) { opened(points, ZELM_ERR_PARAM); };
    const auto expectData = [](const ScenePoints& points, const char* word) {
        const OpenAdjustment a = opened(points, ZELM_MEASURE_ERR_DATA);
        EXPECT_NE(std::string(zelmMeasureAdjustError(a.get())).find(word), std::string::npos)
            << zelmMeasureAdjustError(a.get());
    };
    ScenePoints wrong = sound;
    wrong.view[5] = wrong.views;
    expectParam(wrong);
    wrong = sound;
    wrong.side[5] = 'X';
    expectParam(wrong);
    wrong = sound;
    wrong.pixels[7] = std::nan("");
    expectParam(wrong);
    wrong = sound;
    wrong.hasRight = false;
    expectParam(wrong);
    wrong = sound;
    wrong.grid[2] = wrong.grid[0];  // a point twice in an image
    wrong.grid[3] = wrong.grid[1];
    expectParam(wrong);
    wrong = sound;
    wrong.places[2] = 40.0;
    expectData(wrong, "not flat");
    wrong = sound;
    wrong.keep([&](std::size_t i) { return (sound.view[i] < 4) == (sound.side[i] == 'L'); });
    expectData(wrong, "both cameras");
    ZelmMeasureAdjustment* none = nullptr;
    EXPECT_EQ(zelmMeasureAdjustOpenPoints(nullptr, nullptr, nullptr, &none), ZELM_ERR_PARAM);
    const ZelmMeasureTargetPoints record = sound.record();
    EXPECT_EQ(zelmMeasureAdjustOpenPoints(&record, nullptr, nullptr, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasurePointViews(&record, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasurePointViews(nullptr, nullptr), ZELM_ERR_PARAM);
    auto options = ZelmMeasureAdjustOptions{};
    options.size = sizeof(options);
    options.estimateDiameters = 1;  // of points
    EXPECT_EQ(zelmMeasureAdjustOpenPoints(&record, nullptr, &options, &none), ZELM_ERR_PARAM);
}

TEST(PointTarget, PointsAreNotMeasuredAnew) {
    const AdjustScene scene = sceneOf();
    const OpenAdjustment a = solved(ScenePoints(scene, 0.0, 1));
    const std::vector<unsigned char> gray(static_cast<std::size_t>(kSceneWidth) * kSceneHeight, 128);
    ZelmMeasureImage image{};
    image.width = kSceneWidth;
    image.height = kSceneHeight;
    image.stride = kSceneWidth;
    image.pixels = gray.data();
    EXPECT_EQ(zelmMeasureAdjustRefine(a.get(), 'L', 0, &image, nullptr), ZELM_MEASURE_ERR_DATA);
    EXPECT_NE(std::string(zelmMeasureAdjustError(a.get())).find("points"), std::string::npos);
}

}  // namespace
}  // namespace zelmtest
