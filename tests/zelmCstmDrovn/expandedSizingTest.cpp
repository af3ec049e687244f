// The size of the expanded image that a region needs, and the scale of the images.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "expandedFixtures.h"

namespace {

using namespace zelmtest;

constexpr char kNames[] = {'L', 'R'};

struct Sizing {
    std::int32_t width = 77;
    std::int32_t height = 77;
    Point2d centre{77.0, 77.0};

    std::int32_t compute(const Zelm2ViewCalib* calib, int camera, const ZelmRect& roi, double m, double d = 0.0) {
        const ZelmCstmExpPrm expansion = magnification(m);
        return zelmCstmDrovnCalcHomImgMemSize(calib, camera, &roi, &expansion, &width, &height, &centre, d);
    }
    void expectUntouched() const {
        EXPECT_EQ(width, 77);
        EXPECT_EQ(height, 77);
        EXPECT_EQ(centre.x, 77.0);
        EXPECT_EQ(centre.y, 77.0);
    }
};

TEST(CstmHomImgMemSize, ASinglePixelNeedsFourByFour) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    for (const char name : kNames) {
        for (const double m : {1.0, 3.0, 100.0}) {
            Sizing sizing;
            ASSERT_EQ(sizing.compute(handle.get(), name, {400, 300, 1, 1}, m), ZELM_OK);
            EXPECT_EQ(sizing.width, 4);
            EXPECT_EQ(sizing.height, 4);
            // The centre is where the undistorted pixel lies.
            const Point2d raw{400.0, 300.0};
            Point2d ideal{};
            ASSERT_EQ(zelm2ViewUnDistortPoint(handle.get(), name, &raw, &ideal), ZELM_OK);
            EXPECT_NEAR(sizing.centre.x, ideal.x, 1e-8);
            EXPECT_NEAR(sizing.centre.y, ideal.y, 1e-8);
        }
    }
}

TEST(CstmHomImgMemSize, SizesAreTheExtentRoundedUpToMultiplesOfFour) {
    Random random(231);
    int seen[4] = {};
    const std::int32_t models[][2] = {{0, 0}, {2, 0}};
    for (const auto& model : models) {
        Handle handle;
        loadPair(makePair(model[0], model[1]), &handle);
        for (int i = 0; i < 300; ++i) {
            const ZelmRect roi{random.integer(0, 1000), random.integer(0, 700), random.integer(1, 200),
                               random.integer(1, 200)};
            const double m = random.uniform(1.0, 3.0);
            const double d = random.uniform(-10.0, -1.5);
            for (const char name : kNames) {
                Sizing sizing;
                ASSERT_EQ(sizing.compute(handle.get(), name, roi, m, d), ZELM_OK);
                // The corners as points of an image with any reference point: the extent does not depend on it.
                const ZelmCstmExpPrm target{0, 0, 640.0, 480.0, d};
                const ZelmCstmExpPrm expansion = magnification(m);
                double minX = 1e300;
                double minY = 1e300;
                double maxX = -1e300;
                double maxY = -1e300;
                for (int corner = 0; corner < 4; ++corner) {
                    const Point2d raw{roi.x + (corner % 2) * (roi.width - 1.0),
                                      roi.y + static_cast<double>(corner / 2) * (roi.height - 1.0)};
                    Point2d p{};
                    ASSERT_EQ(zelmCstmDrovnChangeOrg2DtoHom2DExp(handle.get(), name, &target, &expansion, &raw, &p),
                              ZELM_OK);
                    minX = std::min(minX, p.x);
                    minY = std::min(minY, p.y);
                    maxX = std::max(maxX, p.x);
                    maxY = std::max(maxY, p.y);
                }
                const double pixels[2] = {std::trunc(maxX - minX) + 1.0, std::trunc(maxY - minY) + 1.0};
                ASSERT_EQ(sizing.width, 4.0 * std::ceil(pixels[0] / 4.0));
                ASSERT_EQ(sizing.height, 4.0 * std::ceil(pixels[1] / 4.0));
                seen[static_cast<int>(pixels[0]) % 4] += 1;
            }
        }
    }
    for (const int count : seen) {
        EXPECT_GT(count, 50);  // every remainder occurs
    }
}

// With the centre as reference point of an image of that size the corners land inside.
TEST(CstmHomImgMemSize, TheImageAboutTheCentreHoldsTheRegion) {
    Random random(232);
    const std::int32_t models[][2] = {{0, 0}, {1, 0}, {2, 0}, {2, 2}};
    for (const auto& model : models) {
        for (int rig = 0; rig < 20; ++rig) {
            Handle handle;
            loadPair(makePair(model[0], model[1], &random), &handle);
            for (int i = 0; i < 10; ++i) {
                const ZelmRect roi{random.integer(0, 1000), random.integer(0, 700), random.integer(1, 250),
                                   random.integer(1, 250)};
                const double m = random.uniform(1.0, 6.0);
                const double d = random.uniform(-10.0, -1.5);
                const char name = kNames[i % 2];
                Sizing sizing;
                ASSERT_EQ(sizing.compute(handle.get(), name, roi, m, d), ZELM_OK);
                const ZelmCstmExpPrm target{sizing.width, sizing.height, sizing.centre.x, sizing.centre.y, d};
                const ZelmCstmExpPrm expansion = magnification(m);
                for (int corner = 0; corner < 4; ++corner) {
                    const Point2d raw{roi.x + (corner % 2) * (roi.width - 1.0),
                                      roi.y + static_cast<double>(corner / 2) * (roi.height - 1.0)};
                    Point2d p{};
                    ASSERT_EQ(zelmCstmDrovnChangeOrg2DtoHom2DExp(handle.get(), name, &target, &expansion, &raw, &p),
                              ZELM_OK);
                    ASSERT_TRUE(p.x > 0.0 && p.x < sizing.width) << p.x;
                    ASSERT_TRUE(p.y > 0.0 && p.y < sizing.height) << p.y;
                }
            }
        }
    }
}

TEST(CstmHomImgMemSize, TheCentreMayBeLeftOut) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const ZelmRect roi{400, 300, 50, 40};
    const ZelmCstmExpPrm expansion = magnification(2.0);
    Sizing sizing;
    ASSERT_EQ(sizing.compute(handle.get(), 'L', roi, 2.0), ZELM_OK);
    std::int32_t width = 0;
    std::int32_t height = 0;
    ASSERT_EQ(zelmCstmDrovnCalcHomImgMemSize(handle.get(), 'L', &roi, &expansion, &width, &height, nullptr, 0.0),
              ZELM_OK);
    EXPECT_EQ(width, sizing.width);
    EXPECT_EQ(height, sizing.height);
}

TEST(CstmHomImgMemSize, BadArgumentsAreRefused) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const ZelmRect roi{400, 300, 50, 40};
    const ZelmCstmExpPrm expansion = magnification(2.0);
    Sizing s;
    const auto call = [&](const Zelm2ViewCalib* calib, int camera, const ZelmRect* region, const ZelmCstmExpPrm* exp,
                          std::int32_t* width, std::int32_t* height) {
        return zelmCstmDrovnCalcHomImgMemSize(calib, camera, region, exp, width, height, &s.centre, 0.0);
    };
    EXPECT_EQ(call(nullptr, 'L', &roi, &expansion, &s.width, &s.height), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', nullptr, &expansion, &s.width, &s.height), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', &roi, nullptr, &s.width, &s.height), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', &roi, &expansion, nullptr, &s.height), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', &roi, &expansion, &s.width, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'Q', &roi, &expansion, &s.width, &s.height), ZELM_ERR_PARAM);
    for (const ZelmRect& bad :
         {ZelmRect{-1, 0, 1, 1}, ZelmRect{0, -1, 1, 1}, ZelmRect{0, 0, 0, 1}, ZelmRect{0, 0, 1, 0}}) {
        EXPECT_EQ(call(handle.get(), 'L', &bad, &expansion, &s.width, &s.height), ZELM_ERR_PARAM);
    }
    s.expectUntouched();
}

// Deliberate: sizes and magnifications that others refuse are taken.
TEST(CstmHomImgMemSize, TheExpansionIsNotTested) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    Sizing full;
    Sizing half;
    ASSERT_EQ(full.compute(handle.get(), 'L', {300, 300, 401, 401}, 1.0), ZELM_OK);
    ASSERT_EQ(half.compute(handle.get(), 'L', {300, 300, 401, 401}, 0.5), ZELM_OK);
    EXPECT_NEAR(half.width, full.width / 2.0, 4.0);
}

TEST(CstmHomImgMemSize, FailuresOfTheHomographyAndTheDistortionAreReported) {
    Handle singular;
    loadSingularPair(makePair(0, 0), &singular);
    Sizing sizing;
    EXPECT_EQ(sizing.compute(singular.get(), 'L', {400, 300, 5, 5}, 1.0), ZELM_ERR_DEGENERATE);
    TruePair pair = makePair(0, 0);
    pair.left.intrinsics.k1 = 1e13;  // Newton shrinks the pixel by a third a step
    Handle folded;
    loadPair(pair, &folded);
    EXPECT_EQ(sizing.compute(folded.get(), 'L', {1200, 900, 5, 5}, 1.0), ZELM_ERR_UNDISTORT);
    sizing.expectUntouched();
}

TEST(CstmHomImgMemSize, SizesBeyond32BitsAreDegenerate) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    Sizing sizing;
    for (const double m : {1e9, 1e300, kInfinity, kNan, 0.0}) {
        EXPECT_EQ(sizing.compute(handle.get(), 'L', {400, 300, 50, 40}, m), ZELM_ERR_DEGENERATE) << m;
    }
    sizing.expectUntouched();
}

TEST(CstmHomImgMemSize, HugeRegionsStayDefined) {
    Handle handle;
    TruePair pair = makePair(0, 0);
    pair.left.intrinsics.k1 = pair.left.intrinsics.k2 = 0.0;
    loadPair(pair, &handle);
    constexpr std::int32_t kMaxInt = std::numeric_limits<std::int32_t>::max();
    for (const ZelmRect& roi : {ZelmRect{kMaxInt, kMaxInt, kMaxInt, kMaxInt}, ZelmRect{0, 0, kMaxInt, 1}}) {
        for (const double d : {0.0, kNan, 1e300}) {
            Sizing sizing;
            const std::int32_t status = sizing.compute(handle.get(), 'L', roi, 1.0, d);
            EXPECT_TRUE(status == ZELM_OK || status == ZELM_ERR_DEGENERATE) << status;
            EXPECT_EQ(status == ZELM_OK, sizing.width != 77);
            EXPECT_TRUE(status != ZELM_OK || (sizing.width >= 4 && sizing.width % 4 == 0));
        }
    }
}

// Image length of the segment (0, 0, Z) to (X, 0, Z) over |X|, through the camera model.
double scaleOf(const TruePair& pair, char name, double Z, double X) {
    const Point2d foot = pair.projectIdeal(name, {0.0, 0.0, Z});
    const Point2d end = pair.projectIdeal(name, {X, 0.0, Z});
    return std::hypot(end.x - foot.x, end.y - foot.y) / std::fabs(X);
}

TEST(CstmMagnification, ItIsTheImageLengthOfTheReferenceSegmentPerUnit) {
    Random random(233);
    const std::int32_t models[][2] = {{0, 0}, {1, 1}, {1, 0}, {2, 0}, {2, 2}, {2, 1}};
    for (const auto& model : models) {
        for (int rig = 0; rig < 50; ++rig) {
            const TruePair pair = makePair(model[0], model[1], &random);
            Handle handle;
            loadPair(pair, &handle);
            const double Z = random.uniform(-40.0, 40.0);
            const double X = random.uniform(1.0, 60.0) * (rig % 2 == 0 ? 1.0 : -1.0);
            double left = 0.0;
            double right = 0.0;
            ASSERT_EQ(zelmCstmDrovnCalcMagnification(handle.get(), 1000.0 * Z, 1000.0 * X, &left, &right), ZELM_OK);
            // Pixels of about 1e3 are subtracted in the reference: 1e3 * 2e-16 * a few, over a length of 1 or more.
            ASSERT_NEAR(left, scaleOf(pair, 'L', Z, X), 1e-11);
            ASSERT_NEAR(right, scaleOf(pair, 'R', Z, X), 1e-11);
        }
    }
}

// A camera that looks straight down: focal length over distance, and nearer planes (negative Z) are larger.
TEST(CstmMagnification, ItIsFocalLengthOverDistanceForACameraThatLooksStraightDown) {
    TruePair pair = makePair(0, 0);
    pair.left.pose = truePose(0.0, 0.0, 0.0, -8.0, 4.0, 450.0);
    Handle handle;
    loadPair(pair, &handle);
    const double alpha = pair.left.intrinsics.A[0];
    double left = 0.0;
    double right = 0.0;
    ASSERT_EQ(zelmCstmDrovnCalcMagnification(handle.get(), 0.0, 10000.0, &left, &right), ZELM_OK);
    EXPECT_NEAR(left, alpha / 450.0, 1e-12);
    ASSERT_EQ(zelmCstmDrovnCalcMagnification(handle.get(), -50000.0, 10000.0, &left, &right), ZELM_OK);
    EXPECT_NEAR(left, alpha / 400.0, 1e-12);
}

TEST(CstmMagnification, AParallelCameraHasItsScaleAtEveryHeight) {
    TruePair pair = makePair(2, 0);
    pair.left.pose = truePose(0.0, 0.0, 0.3, -8.0, 4.0, 450.0);
    Handle handle;
    loadPair(pair, &handle);
    for (const double height : {0.0, -30000.0, 25000.0}) {
        double left = 0.0;
        double right = 0.0;
        ASSERT_EQ(zelmCstmDrovnCalcMagnification(handle.get(), height, 5000.0, &left, &right), ZELM_OK);
        EXPECT_NEAR(left, 3.0, 1e-12);  // pixels a unit
    }
}

TEST(CstmMagnification, ALengthOfZeroGivesTheScaleAtTheFoot) {
    const TruePair pair = makePair(0, 0);
    Handle handle;
    loadPair(pair, &handle);
    double left = 0.0;
    double right = 0.0;
    ASSERT_EQ(zelmCstmDrovnCalcMagnification(handle.get(), 5000.0, 0.0, &left, &right), ZELM_OK);
    // The scale changes by about 1e-3 a unit along the segment; subtracting pixels over 1e-4 units errs by 1e-8.
    EXPECT_NEAR(left, scaleOf(pair, 'L', 5.0, 1e-4), 1e-6);
    EXPECT_NEAR(right, scaleOf(pair, 'R', 5.0, 1e-4), 1e-6);
}

TEST(CstmMagnification, LengthsThatAreNotFiniteGiveNoScaleAndSucceed) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    for (const double v : {kNan, kInfinity, -kInfinity}) {
        for (const bool isHeight : {true, false}) {
            double left = 1.0;
            double right = 1.0;
            EXPECT_EQ(
                zelmCstmDrovnCalcMagnification(handle.get(), isHeight ? v : 0.0, isHeight ? 1000.0 : v, &left, &right),
                ZELM_OK);
            EXPECT_TRUE(!std::isfinite(left) || left == 0.0) << left;
            EXPECT_TRUE(!std::isfinite(right) || right == 0.0) << right;
        }
    }
}

TEST(CstmMagnification, BadArgumentsAreRefused) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    double left = 7.0;
    double right = 8.0;
    EXPECT_EQ(zelmCstmDrovnCalcMagnification(nullptr, 0.0, 1000.0, &left, &right), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCstmDrovnCalcMagnification(handle.get(), 0.0, 1000.0, nullptr, &right), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCstmDrovnCalcMagnification(handle.get(), 0.0, 1000.0, &left, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(left, 7.0);
    EXPECT_EQ(right, 8.0);
}

}  // namespace
