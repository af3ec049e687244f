// The whole chain on samples/desk-rig, path-traced images made outside this project: every dot of every image is read,
// the pair calibrated, saved and loaded, and the result compared with the truth of the sample.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "imageFile.h"
#include "rigFixtures.h"
#include "stereoFixtures.h"

namespace zelmtest {
namespace {

constexpr int kViews = 12;
constexpr int kDots = 143;

// What a measuring rig is expected to reach with 12 views of this plate at 1.5 gray levels of noise.
constexpr double kFocalTolerance = 2e-4;     // relative
constexpr double kCentreTolerance = 0.4;     // pixels
constexpr double kK1Tolerance = 1e-3;        //
constexpr double kMeanDistance = 0.03;       // pixels
constexpr double kBaselineTolerance = 5e-4;  // relative
// Epipolar distance of a pair of dot centres: the centres' noise of about 0.01 pixels in each image, and what an
// ellipse's centre misses of a dot's true centre, up to some 0.03 pixels, partly common to both.
constexpr double kEpipolarRms = 0.03;  // pixels

std::string samplePath(const std::string& file) {
    return std::string(ZELM_SOURCE_DIR) + "/samples/desk-rig/" + file;
}

const nlohmann::json& truth() {
    static const nlohmann::json json = nlohmann::json::parse(std::ifstream(samplePath("truth.json")));
    return json;
}

Zelm2ViewPatternDesc samplePattern() {
    const auto& p = truth().at("pattern");
    auto pattern = plainPattern();
    pattern.d0 = p.at("d0");
    pattern.d1 = p.at("d1");
    pattern.d2 = p.at("d2");
    pattern.d3 = p.at("d3");
    pattern.d4 = p.at("d4");
    pattern.d5 = p.at("d5");
    pattern.d6 = p.at("d6");
    pattern.d7 = p.at("d7");
    pattern.markers = p.at("markers");
    pattern.polarity = p.at("polarity");
    return pattern;
}

zelm::tool::Picture picture(const char* side, int view) {
    char name[32];
    std::snprintf(name, sizeof(name), "%s_%02d.png", side, view);
    return zelm::tool::readPicture(samplePath(name));
}

// X_right = R X_left + t of the calibrated pair, from the poses of one view.
std::array<double, 3> translationBetween(const ZelmCameraExtrinsics& left, const ZelmCameraExtrinsics& right) {
    std::array<double, 3> t{};
    for (std::size_t i = 0; i < 3; ++i) {
        t[i] = right.t[i];
        for (std::size_t j = 0; j < 3; ++j) {
            for (std::size_t k = 0; k < 3; ++k) {
                t[i] -= right.R[3 * i + k] * left.R[3 * j + k] * left.t[j];
            }
        }
    }
    return t;
}

double lengthOf(const std::array<double, 3>& v) {
    return std::hypot(v[0], v[1], v[2]);
}

// The calibrated sample, read once for all tests.
class DeskRig : public ::testing::Test {
protected:
    static inline Handle* handle = nullptr;
    static inline Zelm2ViewCalibResult result{};

    static void SetUpTestSuite() {
        const auto pattern = samplePattern();
        const Zelm2ViewCameraDesc cameras = {0, 1280, 960, 0, 1280, 960};
        handle = new Handle;
        ASSERT_EQ(zelm2ViewCalibOpen(kViews, &pattern, &cameras, &handle->calib), ZELM_OK);
        for (int view = 0; view < kViews; ++view) {
            const auto left = picture("left", view);
            const auto right = picture("right", view);
            const unsigned char* const images[] = {left.pixels.data(), right.pixels.data()};
            ASSERT_EQ(zelm2ViewReadPtnImg(handle->calib, view, images, nullptr, nullptr), ZELM_OK) << view;
        }
        ASSERT_EQ(zelm2ViewCalibCameraParam(handle->calib, &result), ZELM_OK);
    }
    static void TearDownTestSuite() {
        delete handle;
        handle = nullptr;
    }
};

TEST_F(DeskRig, EveryDotOfEveryImageIsRead) {
    for (int view = 0; view < kViews; ++view) {
        for (const char camera : {'L', 'R'}) {
            std::int32_t count = 0;
            ASSERT_EQ(zelm2ViewGetPtnNum(handle->calib, camera, view, &count), ZELM_OK);
            EXPECT_EQ(count, kDots) << camera << view;
        }
    }
}

TEST_F(DeskRig, IntrinsicsAreThoseOfTheTruth) {
    for (const char camera : {'L', 'R'}) {
        SCOPED_TRACE(camera);
        const auto& expected = truth().at("cameras").at(camera == 'L' ? "left" : "right");
        ZelmCameraIntrinsics found;
        ASSERT_EQ(zelm2ViewGetCamIntParam(handle->calib, camera, &found), ZELM_OK);
        const double fx = expected.at("fx");
        const double fy = expected.at("fy");
        EXPECT_NEAR(found.alpha, fx, kFocalTolerance * fx);
        EXPECT_NEAR(found.beta, fy, kFocalTolerance * fy);
        EXPECT_NEAR(found.cx, expected.at("cx").get<double>(), kCentreTolerance);
        EXPECT_NEAR(found.cy, expected.at("cy").get<double>(), kCentreTolerance);
        EXPECT_NEAR(found.k1, expected.at("k1").get<double>(), kK1Tolerance);
        std::printf("%c: alpha %+.4f %%, beta %+.4f %%, cx %+.3f px, cy %+.3f px, k1 %+.5f, k2 %+.5f\n", camera,
                    100.0 * (found.alpha / fx - 1.0), 100.0 * (found.beta / fy - 1.0),
                    found.cx - expected.at("cx").get<double>(), found.cy - expected.at("cy").get<double>(),
                    found.k1 - expected.at("k1").get<double>(), found.k2 - expected.at("k2").get<double>());
    }
}

TEST_F(DeskRig, ReprojectionIsWithinAFewHundredthsOfAPixel) {
    EXPECT_GE(result.statusL, 0);
    EXPECT_GE(result.statusR, 0);
    EXPECT_LE(result.errorL, kMeanDistance);
    EXPECT_LE(result.errorR, kMeanDistance);
    EXPECT_GT(result.errorL, 0.0);
    EXPECT_GT(result.errorR, 0.0);
    std::printf("mean reprojection error %.4f px left, %.4f px right\n", result.errorL, result.errorR);
}

TEST_F(DeskRig, BaselineHasItsLengthInEveryView) {
    std::array<double, 3> expected{};
    truth().at("right_from_left").at("t").get_to(expected);
    for (int view = 0; view < kViews; ++view) {
        ZelmCameraExtrinsics left;
        ZelmCameraExtrinsics right;
        ASSERT_EQ(zelm2ViewGetCamExtParam(handle->calib, 'L', view, &left), ZELM_OK);
        ASSERT_EQ(zelm2ViewGetCamExtParam(handle->calib, 'R', view, &right), ZELM_OK);
        const double error = lengthOf(translationBetween(left, right)) / lengthOf(expected) - 1.0;
        EXPECT_LE(std::fabs(error), kBaselineTolerance) << view;
        if (view == 0) {
            std::printf("baseline %+.4f %%\n", 100.0 * error);
        }
    }
}

TEST_F(DeskRig, DotPairsMeetTheirEpipolarLines) {
    double F[18];
    ASSERT_EQ(zelm2ViewGetCamFndMat(handle->calib, F), ZELM_OK);
    ZelmCameraIntrinsics cameras[2];
    ASSERT_EQ(zelm2ViewGetCamIntParam(handle->calib, 'L', &cameras[0]), ZELM_OK);
    ASSERT_EQ(zelm2ViewGetCamIntParam(handle->calib, 'R', &cameras[1]), ZELM_OK);
    zelm::Zelm2ViewWork* const work = zelm::openedWork(*handle->calib);
    double sum = 0.0;
    int pairs = 0;
    for (int view = 0; view < kViews; ++view) {
        const auto& left = zelm::entriesOf(work, zelm::Camera::left)[view];
        const auto& right = zelm::entriesOf(work, zelm::Camera::right)[view];
        for (std::int32_t i = 0; i < left.count; ++i) {
            const Point2d* const end = right.plane + right.count;
            const Point2d* const same =
                std::find_if(static_cast<const Point2d*>(right.plane), end,
                             [&](const Point2d& p) { return p.x == left.plane[i].x && p.y == left.plane[i].y; });
            ASSERT_NE(same, end);
            const Point2d seen[2] = {left.image[i], right.image[same - right.plane]};
            Point2d ideal[2];
            for (int c = 0; c < 2; ++c) {
                ASSERT_GE(zelmCalibUnDistortPoint(&cameras[c], seen[c].x, seen[c].y, &ideal[c].x, &ideal[c].y), 0);
            }
            const double distance = epipolarDistance(F, ideal[0], ideal[1]);
            sum += distance * distance;
            pairs += 1;
        }
    }
    EXPECT_EQ(pairs, kViews * kDots);
    EXPECT_LE(std::sqrt(sum / pairs), kEpipolarRms);
    std::printf("epipolar RMS distance %.4f px\n", std::sqrt(sum / pairs));
}

TEST_F(DeskRig, SavedAndLoadedBlockIsTheSame) {
    std::vector<unsigned char> saved(static_cast<std::size_t>(zelm2ViewGetCalibDataSize(handle->calib)));
    ASSERT_EQ(saved.size(), kViews * 240U + 812U);
    ASSERT_EQ(zelm2ViewSaveCalibData(handle->calib, saved.data()), ZELM_OK);
    Handle loaded;
    ASSERT_EQ(zelm2ViewLoadCalibData(static_cast<std::int32_t>(saved.size()), saved.data(), &loaded.calib), ZELM_OK);
    std::vector<unsigned char> again(saved.size());
    ASSERT_EQ(zelm2ViewSaveCalibData(loaded.calib, again.data()), ZELM_OK);
    EXPECT_EQ(again, saved);
    double F[2][18];
    ASSERT_EQ(zelm2ViewGetCamFndMat(handle->calib, F[0]), ZELM_OK);
    ASSERT_EQ(zelm2ViewGetCamFndMat(loaded.calib, F[1]), ZELM_OK);
    EXPECT_TRUE(std::equal(F[0], F[0] + 18, F[1]));
}

}  // namespace
}  // namespace zelmtest
