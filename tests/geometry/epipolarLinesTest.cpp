// Epipolar lines and their way into rectified images: through true correspondences, clipped to the inset image.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>

#include "epipolarRounding.h"
#include "pairFixture.h"
#include "zelm/twoViewGeometry.h"

namespace {

using namespace zelmtest;

double offsetOf(const Zelm2ViewEpiLine& line, const Point2d& p) {
    return line.a * p.x + line.b * p.y + line.c;
}

void expectNoSegment(const Zelm2ViewEpiLine& line) {
    EXPECT_EQ(line.x0, 0.0);
    EXPECT_EQ(line.y0, 0.0);
    EXPECT_EQ(line.x1, 0.0);
    EXPECT_EQ(line.y1, 0.0);
}

constexpr Zelm2ViewEpiLine kUntouched{1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0};

TEST(TwoViewCalcEpiLine, BadArgumentsAreRefused) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const Point2d p{640.0, 480.0};
    Zelm2ViewEpiLine line = kUntouched;
    EXPECT_EQ(zelm2ViewCalcEpiLine(nullptr, 'L', &p, &line), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewCalcEpiLine(handle.get(), 'L', nullptr, &line), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewCalcEpiLine(handle.get(), 'L', &p, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(line.x0, 4.0);
}

TEST(TwoViewCalcEpiLine, ARefusedCameraStillClearsTheEndPoints) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const Point2d p{640.0, 480.0};
    Zelm2ViewEpiLine line = kUntouched;
    EXPECT_EQ(zelm2ViewCalcEpiLine(handle.get(), 'r', &p, &line), ZELM_ERR_PARAM);
    expectNoSegment(line);
    EXPECT_EQ(line.a, 1.0);
    EXPECT_EQ(line.c, 3.0);
}

double roundingOf(const Handle& handle, char name, const Point2d& point, const Point2d& other) {
    double F[18];
    EXPECT_EQ(zelm2ViewGetCamFndMat(handle.get(), F), ZELM_OK);
    return epipolarRounding(name == 'L' ? F : F + 9, point, other);
}

TEST(TwoViewCalcEpiLine, PassesThroughTheTrueCorrespondence) {
    Random random(91);
    double worst = 0.0;
    double squares = 0.0;
    int count = 0;
    const std::int32_t models[][2] = {{0, 0}, {1, 1}, {0, 1}, {2, 0}, {2, 2}};
    for (const auto& model : models) {
        for (int rig = 0; rig < 40; ++rig) {
            const TruePair pair = makePair(model[0], model[1], &random);
            Handle handle;
            loadPair(pair, &handle);
            for (int i = 0; i < 50; ++i) {
                const Point3d X = randomWorldPoint(random);
                for (const char name : {'L', 'R'}) {
                    const char other = name == 'L' ? 'R' : 'L';
                    const Point2d seen = pair.project(other, X);
                    const Point2d point = pair.projectIdeal(name, X);
                    Zelm2ViewEpiLine line{};
                    ASSERT_EQ(zelm2ViewCalcEpiLine(handle.get(), name, &seen, &line), ZELM_OK);
                    ASSERT_NEAR(std::hypot(line.a, line.b), 1.0, 1e-14);
                    const double offset = std::fabs(offsetOf(line, point));
                    ASSERT_LT(offset, roundingOf(handle, name, point, pair.projectIdeal(other, X)));
                    worst = std::max(worst, offset);
                    squares += offset * offset;
                    count += 1;
                }
            }
        }
    }
    std::printf("offset of true correspondences: worst %.2g px, RMS %.2g px\n", worst, std::sqrt(squares / count));
    EXPECT_LT(std::sqrt(squares / count), 2e-9);  // pixels
    EXPECT_LT(worst, 5e-8);
}

TEST(TwoViewCalcEpiLine, EndPointsLieOnTheLineAndOnTheInsetBorder) {
    Random random(92);
    const TruePair pair = makePair(0, 0);
    Handle handle;
    loadPair(pair, &handle);
    for (int i = 0; i < 500; ++i) {
        const Point2d seen = pair.project('L', randomWorldPoint(random));
        Zelm2ViewEpiLine line{};
        ASSERT_EQ(zelm2ViewCalcEpiLine(handle.get(), 'R', &seen, &line), ZELM_OK);
        const Point2d ends[2] = {{line.x0, line.y0}, {line.x1, line.y1}};
        for (const Point2d& p : ends) {
            ASSERT_NEAR(offsetOf(line, p), 0.0, 1e-9);
            const double toBorder =
                std::min({std::fabs(p.x - 1.0), std::fabs(p.x - 1278.0), std::fabs(p.y - 1.0), std::fabs(p.y - 958.0)});
            ASSERT_NEAR(toBorder, 0.0, 1e-9);
        }
        ASSERT_GT(std::hypot(line.x1 - line.x0, line.y1 - line.y0), 1.0);
    }
}

// A line l of the undistorted left image that comes from the right pixel (x, y) when F's columns are chosen for it.
void setFundamental(std::vector<unsigned char>* data, const double F[9]) {
    zelm::FundamentalPair pair{};
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            pair.F[3 * i + j] = F[3 * i + j];
            pair.Ft[3 * j + i] = F[3 * i + j];
        }
    }
    zelm::block::write(data->data(), zelm::block::kFundamental, pair);
}

Zelm2ViewEpiLine lineForF(const double F[9], const Point2d& seen) {
    TruePair pair = makePair(0, 0);
    pair.right.intrinsics.k1 = pair.right.intrinsics.k2 = 0.0;
    std::vector<unsigned char> data = blockOf(pair);
    setFundamental(&data, F);
    Handle handle;
    loadBlock(data, &handle);
    Zelm2ViewEpiLine line = kUntouched;
    EXPECT_EQ(zelm2ViewCalcEpiLine(handle.get(), 'L', &seen, &line), ZELM_OK);
    return line;
}

TEST(TwoViewCalcEpiLine, ALineThatMissesTheImageHasNoSegment) {
    const double rows[9] = {0.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, -1.0, 0.0};  // the line y = y'
    const Zelm2ViewEpiLine inside = lineForF(rows, {300.0, 200.0});
    EXPECT_EQ(inside.y0, 200.0);
    EXPECT_EQ(inside.y1, 200.0);
    const Zelm2ViewEpiLine outside = lineForF(rows, {300.0, 5000.0});
    EXPECT_EQ(outside.b, 1.0);
    EXPECT_EQ(outside.c, -5000.0);
    expectNoSegment(outside);
}

// Each image has its own size: 1280 x 960 on the left, 640 x 480 on the right.
TEST(TwoViewCalcEpiLine, EachImageIsInsetByOnePixel) {
    TruePair pair = makePair(0, 0);
    for (zelm::CalibratedCamera* camera : {&pair.left, &pair.right}) {
        camera->intrinsics.k1 = camera->intrinsics.k2 = 0.0;
    }
    std::vector<unsigned char> data = blockOf(pair);
    zelm::block::write(data.data(), zelm::block::kCameras, Zelm2ViewCameraDesc{0, 1280, 960, 0, 640, 480});
    const double rows[9] = {0.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, -1.0, 0.0};     // the line y = y'
    const double columns[9] = {0.0, 0.0, 1.0, 0.0, 0.0, 0.0, -1.0, 0.0, 0.0};  // the line x = x'
    const Point2d seen{300.0, 200.0};
    for (const char name : {'L', 'R'}) {
        const double right = name == 'L' ? 1278.0 : 638.0;
        const double bottom = name == 'L' ? 958.0 : 478.0;
        Zelm2ViewEpiLine line{};
        Handle along;
        setFundamental(&data, rows);
        loadBlock(data, &along);
        ASSERT_EQ(zelm2ViewCalcEpiLine(along.get(), name, &seen, &line), ZELM_OK);
        EXPECT_EQ(std::min(line.x0, line.x1), 1.0) << name;
        EXPECT_EQ(std::max(line.x0, line.x1), right) << name;
        Handle down;
        setFundamental(&data, columns);
        loadBlock(data, &down);
        ASSERT_EQ(zelm2ViewCalcEpiLine(down.get(), name, &seen, &line), ZELM_OK);
        EXPECT_EQ(std::min(line.y0, line.y1), 1.0) << name;
        EXPECT_EQ(std::max(line.y0, line.y1), bottom) << name;
    }
}

// Sizes that no image has, from a foreign block, must not overflow.
TEST(TwoViewCalcEpiLine, ImageSizesAtTheEndsOfTheRangeEndInAStatus) {
    std::vector<unsigned char> data = blockOf(makePair(0, 0));
    constexpr std::int32_t kMinInt = std::numeric_limits<std::int32_t>::min();
    zelm::block::write(data.data(), zelm::block::kCameras,
                       Zelm2ViewCameraDesc{0, kMinInt, kMinInt, 0, kMinInt, kMinInt});
    Handle handle;
    loadBlock(data, &handle);
    const Point2d seen{640.0, 480.0};
    Zelm2ViewEpiLine line{};
    EXPECT_EQ(zelm2ViewCalcEpiLine(handle.get(), 'L', &seen, &line), ZELM_OK);
    unsigned char pixel = 5;
    EXPECT_EQ(zelm2ViewUnDistortImage(handle.get(), 'L', &pixel, &pixel), ZELM_OK);
    EXPECT_EQ(pixel, 5);
}

TEST(TwoViewCalcEpiLine, ALineThroughOneCornerHasItTwice) {
    const double diagonal[9] = {0.0, 0.0, 1.0, 0.0, 0.0, 1.0, 0.0, 0.0, -2.0};  // x + y - 2 = 0 touches (1, 1)
    const Zelm2ViewEpiLine line = lineForF(diagonal, {300.0, 200.0});
    EXPECT_NEAR(line.x0, 1.0, 1e-12);
    EXPECT_NEAR(line.y0, 1.0, 1e-12);
    EXPECT_EQ(line.x0, line.x1);
    EXPECT_EQ(line.y0, line.y1);
}

TEST(TwoViewCalcEpiLine, TheEpipoleHasALineThatIsNotFinite) {
    const double rows[9] = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0};
    const Zelm2ViewEpiLine line = lineForF(rows, {300.0, 200.0});
    EXPECT_TRUE(std::isnan(line.a));
    expectNoSegment(line);
}

TEST(TwoViewCalcEpiLine, APixelWhoseDistortionCannotBeRemovedIsReported) {
    TruePair pair = makePair(0, 0);
    pair.left.intrinsics.k1 = 1e13;
    Handle handle;
    loadPair(pair, &handle);
    const Point2d corner{1270.0, 950.0};
    Zelm2ViewEpiLine line = kUntouched;
    EXPECT_EQ(zelm2ViewCalcEpiLine(handle.get(), 'R', &corner, &line), ZELM_ERR_UNDISTORT);
    EXPECT_EQ(zelm2ViewCalcEpiLine(handle.get(), 'L', &corner, &line), ZELM_OK) << "the right camera is sound";
}

TEST(TwoViewChangeHomEpiLine, BadArgumentsAreRefused) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const Zelm2ViewHomParam params{640.0, 480.0, 0.0};
    const double line[3] = {0.0, 1.0, -400.0};
    Zelm2ViewEpiLine out = kUntouched;
    EXPECT_EQ(zelm2ViewChangeHomEpiLine(nullptr, 'L', &params, line, &out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewChangeHomEpiLine(handle.get(), 'l', &params, line, &out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewChangeHomEpiLine(handle.get(), 'L', nullptr, line, &out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewChangeHomEpiLine(handle.get(), 'L', &params, nullptr, &out), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewChangeHomEpiLine(handle.get(), 'L', &params, line, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(out.x0, 4.0);
}

TEST(TwoViewChangeHomEpiLine, CarriesThePointsOfALineOntoTheRectifiedLine) {
    Random random(93);
    for (int round = 0; round < 200; ++round) {
        const TruePair pair = makePair(0, 0, &random);
        Handle handle;
        loadPair(pair, &handle);
        const Zelm2ViewHomParam params{random.uniform(400.0, 900.0), random.uniform(300.0, 700.0), 0.0};
        for (const char name : {'L', 'R'}) {
            const Point3d X = randomWorldPoint(random);
            const Point2d seen = pair.project(name == 'L' ? 'R' : 'L', X);
            Zelm2ViewEpiLine line{};
            Zelm2ViewEpiLine rectified{};
            ASSERT_EQ(zelm2ViewCalcEpiLine(handle.get(), name, &seen, &line), ZELM_OK);
            const double coefficients[3] = {line.a, line.b, line.c};
            ASSERT_EQ(zelm2ViewChangeHomEpiLine(handle.get(), name, &params, coefficients, &rectified), ZELM_OK);
            ASSERT_NEAR(std::hypot(rectified.a, rectified.b), 1.0, 1e-14);
            const Point2d raw = pair.project(name, X);
            Point2d mapped{};
            ASSERT_EQ(zelm2ViewCalcHomImgPoint(handle.get(), name, &raw, &params, &mapped), ZELM_OK);
            ASSERT_NEAR(offsetOf(rectified, mapped), 0.0, 1e-8);
        }
    }
}

TEST(TwoViewChangeHomEpiLine, ALineThatMissesTheRectifiedImageHasNoSegment) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const Zelm2ViewHomParam params{640.0, 480.0, 0.0};
    const double farBelow[3] = {0.0, 1.0, -50000.0};
    Zelm2ViewEpiLine out = kUntouched;
    EXPECT_EQ(zelm2ViewChangeHomEpiLine(handle.get(), 'L', &params, farBelow, &out), ZELM_OK);
    EXPECT_NEAR(std::hypot(out.a, out.b), 1.0, 1e-14);
    expectNoSegment(out);
}

TEST(TwoViewChangeHomEpiLine, ASingularRectifyingMatrixIsDegenerate) {
    const TruePair pair = makePair(0, 0);
    std::vector<unsigned char> data = blockOf(pair);
    zelm::block::write(data.data(), zelm::block::rectifying(zelm::Camera::right), zelm::RectifyingPair{});
    Handle handle;
    loadBlock(data, &handle);
    const Zelm2ViewHomParam params{640.0, 480.0, 0.0};
    const double line[3] = {0.0, 1.0, -400.0};
    Zelm2ViewEpiLine out{};
    EXPECT_EQ(zelm2ViewChangeHomEpiLine(handle.get(), 'L', &params, line, &out), ZELM_ERR_DEGENERATE);
    const Point2d p{640.0, 480.0};
    Point2d q{7.0, 8.0};
    EXPECT_EQ(zelm2ViewCalcHomImgPoint(handle.get(), 'R', &p, &params, &q), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(zelm2ViewInvHomImgPoint(handle.get(), 'R', &p, &params, &q), ZELM_ERR_DEGENERATE);
    EXPECT_EQ(q.x, 7.0);
    std::vector<unsigned char> image(1280 * 960);
    EXPECT_EQ(zelm2ViewMakeHomImage(handle.get(), 'L', image.data(), &params, image.data()), ZELM_ERR_DEGENERATE);
}

}  // namespace
