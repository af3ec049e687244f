// The contract of the edge searches: arguments, statuses, untouched outputs, the record behind each entry point, and
// segments that are degenerate, not finite or far longer than the image.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "edgeScene.h"
#include "faultAlloc.h"

namespace {

using zelmtest::findEdge;
using zelmtest::Found;
using zelmtest::GrayScene;
using zelmtest::kUsual;

using Search = int32_t (*)(const ZelmImage*, const Point2d*, const Point2d*, int32_t, Point2d*, double*);

int32_t manual(const ZelmImage* image, const Point2d* p1, const Point2d* p2, int32_t sign, Point2d* point,
               double* strength) {
    return zelmEdge1dManual(image, p1, p2, sign, &kUsual, point, strength);
}

constexpr Search kSearches[] = {zelmEdge1dDiffMax,    zelmEdge1dGenDiffMax,  zelmEdge1dGenNearest,
                                zelmEdge1dGenGradMax, zelmEdge1dGenNearestC, manual};

// A step of 100 gray levels at x = 15.5.
GrayScene stepScene() {
    return GrayScene(32, 20, [](double x, double) { return x < 16.0 ? 50.0 : 150.0; });
}

// Expects a result that leaves the outputs alone.
void expectUntouched(Search search, const ZelmImage* image, const Point2d* p1, const Point2d* p2, int32_t sign,
                     int32_t expected) {
    Point2d point = {-7.0, -8.0};
    double strength = -9.0;
    EXPECT_EQ(search(image, p1, p2, sign, &point, &strength), expected);
    EXPECT_EQ(point.x, -7.0);
    EXPECT_EQ(point.y, -8.0);
    EXPECT_EQ(strength, -9.0);
}

class EdgeContract : public testing::Test {
protected:
    GrayScene scene = stepScene();
    Point2d p1 = {3.0, 10.0};
    Point2d p2 = {28.0, 10.0};
    Point2d out = {};
    double strength = 0.0;
};

TEST_F(EdgeContract, BadArgumentsAreRefusedByEverySearch) {
    ZelmImage noPixels = {nullptr, 32, 20};
    ZelmImage noWidth = {scene.image.pixels, 0, 20};
    ZelmImage noHeight = {scene.image.pixels, 32, 0};
    ZelmImage negative = {scene.image.pixels, -5, 20};
    for (const Search search : kSearches) {
        expectUntouched(search, nullptr, &p1, &p2, 1, ZELM_ERR_PARAM);
        for (const ZelmImage* image : {&noPixels, &noWidth, &noHeight, &negative}) {
            expectUntouched(search, image, &p1, &p2, 1, ZELM_ERR_PARAM);
        }
        expectUntouched(search, &scene.image, nullptr, &p2, 1, ZELM_ERR_PARAM);
        expectUntouched(search, &scene.image, &p1, nullptr, 1, ZELM_ERR_PARAM);
        EXPECT_EQ(search(&scene.image, &p1, &p2, 1, nullptr, &strength), ZELM_ERR_PARAM);
        EXPECT_EQ(search(&scene.image, &p1, &p2, 1, &out, nullptr), ZELM_ERR_PARAM);
    }
}

TEST_F(EdgeContract, ASignBeyondOneIsRefused) {
    for (const Search search : kSearches) {
        for (const int32_t sign : {2, -2, INT32_MAX, INT32_MIN}) {
            expectUntouched(search, &scene.image, &p1, &p2, sign, ZELM_ERR_PARAM);
        }
    }
}

TEST_F(EdgeContract, AMissingRecordOrAnUnknownSelectorIsRefused) {
    EXPECT_EQ(zelmEdge1dManual(&scene.image, &p1, &p2, 1, nullptr, &out, &strength), ZELM_ERR_PARAM);
    for (const int32_t selector : {-1, 5, INT32_MAX, INT32_MIN}) {
        ZelmEdge1dParam param = kUsual;
        param.selector = selector;
        EXPECT_EQ(findEdge(scene.image, p1, p2, 1, param).result, ZELM_ERR_PARAM);
    }
}

TEST_F(EdgeContract, AStepIsFoundInItsOwnSenseOnly) {
    for (const Search search : kSearches) {
        for (const int32_t sign : {1, 0}) {
            ASSERT_EQ(search(&scene.image, &p1, &p2, sign, &out, &strength), 1);
            EXPECT_NEAR(out.x, 15.5, 0.1);
            EXPECT_DOUBLE_EQ(out.y, 10.0);
        }
        expectUntouched(search, &scene.image, &p1, &p2, -1, 0);
        ASSERT_EQ(search(&scene.image, &p2, &p1, -1, &out, &strength), 1);
        EXPECT_NEAR(out.x, 15.5, 0.1);
        expectUntouched(search, &scene.image, &p2, &p1, 1, 0);
    }
}

TEST_F(EdgeContract, AFlatImageHasNoEdge) {
    const GrayScene flat(32, 20, [](double, double) { return 90.0; });
    for (const Search search : kSearches) {
        for (const int32_t sign : {-1, 0, 1}) {
            expectUntouched(search, &flat.image, &p1, &p2, sign, 0);
        }
    }
}

TEST_F(EdgeContract, EachEntryPointPassesTheUsualRecordWithItsSelector) {
    const GrayScene stairs(60, 12, [](double x, double y) {
        return 30.0 + 50.0 * zelmtest::blurredStep(x - 12.3, 0.6) + 90.0 * zelmtest::blurredStep(x - 27.4, 2.0) +
               70.0 * zelmtest::blurredStep(x - 45.1 - 0.1 * y, 0.5);
    });
    const Point2d from = {2.0, 5.0};
    const Point2d to = {56.0, 6.0};
    for (int32_t selector = 0; selector < 5; ++selector) {
        ZelmEdge1dParam param = kUsual;
        param.selector = selector;
        const Found expected = findEdge(stairs.image, from, to, 1, param);
        ASSERT_EQ(expected.result, 1);
        ASSERT_EQ(kSearches[selector](&stairs.image, &from, &to, 1, &out, &strength), 1);
        EXPECT_EQ(out.x, expected.point.x);
        EXPECT_EQ(out.y, expected.point.y);
        EXPECT_EQ(strength, expected.strength);
    }
}

TEST_F(EdgeContract, ASegmentOutsideTheImageIsDegenerate) {
    const Point2d cases[][2] = {{{-50.0, 5.0}, {-10.0, 5.0}}, {{40.0, 5.0}, {90.0, 9.0}},  {{3.0, -9.0}, {20.0, -2.0}},
                                {{3.0, 19.0}, {20.0, 19.0}},  {{31.0, 2.0}, {31.0, 18.0}}, {{-9.0, 8.0}, {8.0, -30.0}},
                                {{1e300, 5.0}, {1e300, 9.0}}, {{1e17, 0.0}, {1e17, 64.0}}, {{-0.5, 3.0}, {-0.5, 9.0}},
                                {{3.0, -1e-9}, {20.0, -1e-9}}};
    for (const auto& segment : cases) {
        expectUntouched(manual, &scene.image, &segment[0], &segment[1], 0, ZELM_ERR_DEGENERATE);
    }
}

TEST_F(EdgeContract, EqualPointsAreDegenerate) {
    for (const Point2d p : {Point2d{5.0, 5.0}, Point2d{-5.0, 1e300}, Point2d{0.0, 0.0}}) {
        expectUntouched(manual, &scene.image, &p, &p, 0, ZELM_ERR_DEGENERATE);
    }
}

TEST_F(EdgeContract, ASegmentShorterThanAPixelIsOneSampleWithoutAnEdge) {
    for (const double length : {0.999, 1e-3, 1e-300, 5e-324}) {
        const Point2d from = {0.0, 10.0};
        const Point2d to = {length, 10.0};
        expectUntouched(manual, &scene.image, &from, &to, 0, 0);
    }
}

TEST_F(EdgeContract, PointsThatAreNotFiniteAreRefused) {
    constexpr double kInf = std::numeric_limits<double>::infinity();
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    for (const double bad : {kInf, -kInf, kNan}) {
        for (const Point2d p : {Point2d{bad, 5.0}, Point2d{5.0, bad}, Point2d{bad, bad}}) {
            expectUntouched(manual, &scene.image, &p, &p2, 0, ZELM_ERR_PARAM);
            expectUntouched(manual, &scene.image, &p1, &p, 0, ZELM_ERR_PARAM);
            expectUntouched(manual, &scene.image, &p, &p, 0, ZELM_ERR_PARAM);
        }
    }
}

TEST_F(EdgeContract, ASegmentOfTwoToThe31PixelsIsRefused) {
    constexpr double kLimit = 2147483648.0;
    const Point2d from = {0.0, 10.0};
    for (const double end : {kLimit, 1e12, 1e18, 1e300, std::numeric_limits<double>::max()}) {
        const Point2d to = {end, 10.0};
        expectUntouched(manual, &scene.image, &from, &to, 1, ZELM_ERR_PARAM);
        expectUntouched(manual, &scene.image, &to, &from, 1, ZELM_ERR_PARAM);
    }
    const Point2d far1 = {-std::numeric_limits<double>::max(), 10.0};
    const Point2d far2 = {std::numeric_limits<double>::max(), 10.0};
    expectUntouched(manual, &scene.image, &far1, &far2, 1, ZELM_ERR_PARAM);
    const Point2d last = {std::nextafter(kLimit, 0.0), 10.0};
    EXPECT_EQ(manual(&scene.image, &from, &last, 1, &out, &strength), 1);
    EXPECT_NEAR(out.x, 15.5, 0.1);
}

TEST_F(EdgeContract, ALongSegmentGivesTheResultOfItsPartInTheImageInLittleMemory) {
    const Found near = findEdge(scene.image, {-40.0, 10.0}, {70.0, 10.0}, 1);
    ASSERT_EQ(near.result, 1);
    for (const double reach : {1e3, 1e6, 1e9}) {
        zelmtest::armAllocFault(0);
        const Found found = findEdge(scene.image, {-reach, 10.0}, {reach, 10.0}, 1);
        const std::size_t bytes = zelmtest::allocCounters().bytes;
        zelmtest::disarmAllocFault();
        ASSERT_EQ(found.result, 1);
        // A coordinate near 1e9 is rounded to 1e-7.
        EXPECT_NEAR(found.point.x, near.point.x, 1e-15 * reach + 1e-9);
        EXPECT_NEAR(found.strength, near.strength, 1e-6);
        EXPECT_LT(bytes, 4096U);
    }
}

TEST_F(EdgeContract, HostileRecordsEndInAResult) {
    constexpr int32_t kExtremes[] = {INT32_MIN, -1, 0, 1, 5, INT32_MAX};
    for (const int32_t value : kExtremes) {
        for (int field = 0; field < 6; ++field) {
            ZelmEdge1dParam param = kUsual;
            int32_t* const fields[] = {&param.halfWidth,     &param.contrastPercent, &param.minContrast,
                                       &param.flatTolerance, &param.minFlatRun,      &param.filterSize};
            *fields[field] = value;
            const int32_t result = findEdge(scene.image, p1, p2, 0, param).result;
            EXPECT_TRUE(result == 0 || result == 1 || result == ZELM_ERR_MEMORY) << field << " " << value;
        }
    }
}

TEST_F(EdgeContract, ImagesOfOneRowOrColumnHoldNoSample) {
    std::uint8_t pixels[8] = {0, 0, 0, 0, 200, 200, 200, 200};
    const ZelmImage row = {pixels, 8, 1};
    const ZelmImage column = {pixels, 1, 8};
    const ZelmImage pixel = {pixels, 1, 1};
    const Point2d origin = {0.0, 0.0};
    const Point2d across = {7.0, 0.0};
    const Point2d down = {0.0, 7.0};
    expectUntouched(manual, &row, &origin, &across, 0, ZELM_ERR_DEGENERATE);
    expectUntouched(manual, &column, &origin, &down, 0, ZELM_ERR_DEGENERATE);
    expectUntouched(manual, &pixel, &origin, &across, 0, ZELM_ERR_DEGENERATE);
}

}  // namespace
