// Points and lines between raw images and expanded images.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>

#include "expandedFixtures.h"

namespace {

using namespace zelmtest;

constexpr char kNames[] = {'L', 'R'};

TEST(CstmOrg2DtoExp2D, ItMagnifiesAboutTheReferencePoint) {
    const ZelmCstmExpPrm expansion{100, 60, 30.25, 20.5, 4.0};
    const Point2d p{31.25, 18.0};
    Point2d q{};
    ASSERT_EQ(zelmCstmDrovnChangeOrg2DtoExp2D(&expansion, &p, &q), ZELM_OK);
    EXPECT_EQ(q.x, 54.0);
    EXPECT_EQ(q.y, 20.0);
}

TEST(CstmOrg2DtoExp2D, HalvesAreRoundedTowardsZero) {
    const ZelmCstmExpPrm expansion{5, 3, 10.0, 20.0, 1.0};
    const Point2d p{10.0, 20.0};
    Point2d q{};
    ASSERT_EQ(zelmCstmDrovnChangeOrg2DtoExp2D(&expansion, &p, &q), ZELM_OK);
    EXPECT_EQ(q.x, 2.0);
    EXPECT_EQ(q.y, 1.0);
}

TEST(CstmOrg2DtoExp2D, BadArgumentsAreRefused) {
    const ZelmCstmExpPrm expansion{5, 3, 10.0, 20.0, 1.0};
    const Point2d p{10.0, 20.0};
    Point2d q{7.0, 8.0};
    EXPECT_EQ(zelmCstmDrovnChangeOrg2DtoExp2D(nullptr, &p, &q), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCstmDrovnChangeOrg2DtoExp2D(&expansion, nullptr, &q), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCstmDrovnChangeOrg2DtoExp2D(&expansion, &p, nullptr), ZELM_ERR_PARAM);
    for (const ZelmCstmExpPrm& bad : badExpansions()) {
        EXPECT_EQ(zelmCstmDrovnChangeOrg2DtoExp2D(&bad, &p, &q), ZELM_ERR_PARAM);
    }
    EXPECT_EQ(q.x, 7.0);
}

TEST(CstmHomPoints, ForwardAndBackReturnsTheRawPixel) {
    Random random(221);
    double worst = 0.0;
    const std::int32_t models[][2] = {{0, 0}, {1, 0}, {2, 0}, {2, 2}};
    for (const auto& model : models) {
        for (int rig = 0; rig < 20; ++rig) {
            Handle handle;
            loadPair(makePair(model[0], model[1], &random), &handle);
            const ZelmCstmExpPrm target{random.integer(1, 800), random.integer(1, 800), random.uniform(300.0, 900.0),
                                        random.uniform(200.0, 700.0), random.uniform(-0.5, 0.5)};
            const ZelmCstmExpPrm expansion = magnification(random.uniform(1.0, 10.0));
            for (int i = 0; i < 50; ++i) {
                const Point2d raw{random.uniform(0.0, 1279.0), random.uniform(0.0, 959.0)};
                for (const char name : kNames) {
                    Point2d expanded{};
                    Point2d back{};
                    ASSERT_EQ(
                        zelmCstmDrovnChangeOrg2DtoHom2DExp(handle.get(), name, &target, &expansion, &raw, &expanded),
                        ZELM_OK);
                    ASSERT_EQ(zelmCstmDrovnInvHomImgPointExp(handle.get(), name, &expanded, &target, &expansion, &back),
                              ZELM_OK);
                    worst = std::max(worst, std::hypot(back.x - raw.x, back.y - raw.y));
                }
            }
        }
    }
    std::printf("worst return: %.2g px\n", worst);
    EXPECT_LT(worst, 1e-4);  // pixels: where removing the distortion stops
}

TEST(CstmHomPoints, TheReferencePointLandsOnTheCentre) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const ZelmCstmExpPrm target{101, 67, 500.0, 400.0, 0.02};
    const ZelmCstmExpPrm expansion = magnification(3.5);
    for (const char name : kNames) {
        const Point2d reference{target.dX, target.dY};
        Point2d raw{};
        Point2d expanded{};
        Point2d back{};
        ASSERT_EQ(zelm2ViewDistortPoint(handle.get(), name, &reference, &raw), ZELM_OK);
        ASSERT_EQ(zelmCstmDrovnChangeOrg2DtoHom2DExp(handle.get(), name, &target, &expansion, &raw, &expanded),
                  ZELM_OK);
        EXPECT_NEAR(expanded.x, 50.0, 1e-7);  // distortion removed to 1e-9 px or so, magnified
        EXPECT_NEAR(expanded.y, 33.0, 1e-7);
        const Point2d centre{50.0, 33.0};
        ASSERT_EQ(zelmCstmDrovnInvHomImgPointExp(handle.get(), name, &centre, &target, &expansion, &back), ZELM_OK);
        EXPECT_NEAR(back.x, raw.x, 1e-8);
        EXPECT_NEAR(back.y, raw.y, 1e-8);
    }
}

TEST(CstmHomPoints, WithoutExpansionTheMagnificationIsOne) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const ZelmCstmExpPrm target{100, 80, 500.0, 400.0, 0.0};
    const ZelmCstmExpPrm one = magnification(1.0);
    const Point2d raw{321.0, 654.0};
    Point2d a{};
    Point2d b{};
    ASSERT_EQ(zelmCstmDrovnChangeOrg2DtoHom2D(handle.get(), 'R', &target, &raw, &a), ZELM_OK);
    ASSERT_EQ(zelmCstmDrovnChangeOrg2DtoHom2DExp(handle.get(), 'R', &target, &one, &raw, &b), ZELM_OK);
    EXPECT_EQ(a.x, b.x);
    EXPECT_EQ(a.y, b.y);
}

TEST(CstmHomPoints, TheMagnificationScalesAboutTheCentre) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const ZelmCstmExpPrm target{100, 80, 500.0, 400.0, 0.0};
    const ZelmCstmExpPrm three = magnification(3.0);
    const Point2d raw{321.0, 654.0};
    Point2d plain{};
    Point2d magnified{};
    ASSERT_EQ(zelmCstmDrovnChangeOrg2DtoHom2D(handle.get(), 'L', &target, &raw, &plain), ZELM_OK);
    ASSERT_EQ(zelmCstmDrovnChangeOrg2DtoHom2DExp(handle.get(), 'L', &target, &three, &raw, &magnified), ZELM_OK);
    EXPECT_NEAR(magnified.x, 50.0 + 3.0 * (plain.x - 50.0), 1e-8);
    EXPECT_NEAR(magnified.y, 40.0 + 3.0 * (plain.y - 40.0), 1e-8);
}

// With a parallel camera in the pair, a point of the plane Z = d lands, up to the shift and the magnification, where
// the other camera sees it.
TEST(CstmHomPoints, APairWithAParallelCameraCarriesThePlaneAtHeightD) {
    Random random(222);
    const std::int32_t models[][2] = {{2, 0}, {2, 2}};
    for (const auto& model : models) {
        const TruePair pair = makePair(model[0], model[1]);
        Handle handle;
        loadPair(pair, &handle);
        const ZelmCstmExpPrm expansion = magnification(2.5);
        for (const double height : {0.0, 7.5, -20.0}) {
            for (const char name : kNames) {
                const Point2d reference = pair.projectIdeal(name, {3.0, -4.0, height});
                const ZelmCstmExpPrm target{400, 300, reference.x, reference.y, height};
                const Point2d centre = pair.projectIdeal(otherName(name), {3.0, -4.0, height});
                for (int i = 0; i < 30; ++i) {
                    const Point3d X{random.uniform(-60.0, 60.0), random.uniform(-45.0, 45.0), height};
                    const Point2d raw = pair.project(name, X);
                    const Point2d seen = pair.projectIdeal(otherName(name), X);
                    Point2d mapped{};
                    ASSERT_EQ(
                        zelmCstmDrovnChangeOrg2DtoHom2DExp(handle.get(), name, &target, &expansion, &raw, &mapped),
                        ZELM_OK);
                    ASSERT_NEAR(mapped.x, 200.0 + 2.5 * (seen.x - centre.x), 1e-5);  // distortion removed to 1e-6 px
                    ASSERT_NEAR(mapped.y, 150.0 + 2.5 * (seen.y - centre.y), 1e-5);
                }
            }
        }
    }
}

// Between perspective cameras the transfer is that of the plane at infinity, and d cancels.
TEST(CstmHomPoints, BetweenPerspectiveCamerasFarPointsAgreeWhateverDIs) {
    Random random(223);
    const TruePair pair = makePair(0, 1);
    Handle handle;
    loadPair(pair, &handle);
    const ZelmCstmExpPrm expansion = magnification(2.0);
    constexpr double kFar = 1e9;  // a baseline of 150 moves points by 1700 * 150 / 1e9 = 3e-4 px
    for (const double d : {0.0, 0.7, -25.0}) {
        for (const char name : kNames) {
            const Point2d reference = pair.projectIdeal(name, {0.0, 0.0, kFar});
            const Point2d centre = pair.projectIdeal(otherName(name), {0.0, 0.0, kFar});
            const ZelmCstmExpPrm target{400, 300, reference.x, reference.y, d};
            for (int i = 0; i < 50; ++i) {
                const Point3d X{random.uniform(-0.1, 0.1) * kFar, random.uniform(-0.1, 0.1) * kFar,
                                random.uniform(1.0, 2.0) * kFar};
                const Point2d raw = pair.project(name, X);
                const Point2d seen = pair.projectIdeal(otherName(name), X);
                Point2d mapped{};
                ASSERT_EQ(zelmCstmDrovnChangeOrg2DtoHom2DExp(handle.get(), name, &target, &expansion, &raw, &mapped),
                          ZELM_OK);
                ASSERT_NEAR(mapped.x, 200.0 + 2.0 * (seen.x - centre.x), 2e-3);
                ASSERT_NEAR(mapped.y, 150.0 + 2.0 * (seen.y - centre.y), 2e-3);
            }
        }
    }
}

constexpr ZelmCstmExpPrm kTarget{100, 80, 500.0, 400.0, 0.0};
constexpr ZelmCstmExpPrm kExpansion{0, 0, 0.0, 0.0, 2.0};

TEST(CstmHomPoints, BadArgumentsOfOrg2DtoHom2DAreRefused) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const Point2d p{1.0, 2.0};
    Point2d q{7.0, 8.0};
    EXPECT_EQ(zelmCstmDrovnChangeOrg2DtoHom2D(nullptr, 'L', &kTarget, &p, &q), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCstmDrovnChangeOrg2DtoHom2D(handle.get(), 'L', nullptr, &p, &q), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCstmDrovnChangeOrg2DtoHom2D(handle.get(), 'L', &kTarget, nullptr, &q), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCstmDrovnChangeOrg2DtoHom2D(handle.get(), 'L', &kTarget, &p, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCstmDrovnChangeOrg2DtoHom2D(handle.get(), 'r', &kTarget, &p, &q), ZELM_ERR_PARAM);
    EXPECT_EQ(q.x, 7.0);
}

TEST(CstmHomPoints, BadArgumentsOfOrg2DtoHom2DExpAreRefused) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const Point2d p{1.0, 2.0};
    Point2d q{7.0, 8.0};
    const auto call = [&](const Zelm2ViewCalib* calib, int camera, const ZelmCstmExpPrm* target,
                          const ZelmCstmExpPrm* expansion, const Point2d* in, Point2d* out) {
        return zelmCstmDrovnChangeOrg2DtoHom2DExp(calib, camera, target, expansion, in, out);
    };
    EXPECT_EQ(call(nullptr, 'L', &kTarget, &kExpansion, &p, &q), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', nullptr, &kExpansion, &p, &q), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', &kTarget, nullptr, &p, &q), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', &kTarget, &kExpansion, nullptr, &q), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', &kTarget, &kExpansion, &p, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'M', &kTarget, &kExpansion, &p, &q), ZELM_ERR_PARAM);
    EXPECT_EQ(q.x, 7.0);
}

// Deliberate: the forward mapping takes sizes and magnifications that the others refuse.
TEST(CstmHomPoints, Org2DtoHom2DExpDoesNotTestTheExpansion) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const Point2d raw{321.0, 654.0};
    const ZelmCstmExpPrm half{-1, -1, 0.0, 0.0, 0.5};
    Point2d plain{};
    Point2d shrunk{};
    ASSERT_EQ(zelmCstmDrovnChangeOrg2DtoHom2D(handle.get(), 'L', &kTarget, &raw, &plain), ZELM_OK);
    ASSERT_EQ(zelmCstmDrovnChangeOrg2DtoHom2DExp(handle.get(), 'L', &kTarget, &half, &raw, &shrunk), ZELM_OK);
    EXPECT_NEAR(shrunk.x, 50.0 + 0.5 * (plain.x - 50.0), 1e-8);
}

TEST(CstmHomPoints, BadArgumentsOfInvHomImgPointExpAreRefused) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const Point2d p{1.0, 2.0};
    Point2d q{7.0, 8.0};
    const auto call = [&](const Zelm2ViewCalib* calib, int camera, const Point2d* in, const ZelmCstmExpPrm* target,
                          const ZelmCstmExpPrm* expansion, Point2d* out) {
        return zelmCstmDrovnInvHomImgPointExp(calib, camera, in, target, expansion, out);
    };
    EXPECT_EQ(call(nullptr, 'L', &p, &kTarget, &kExpansion, &q), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', nullptr, &kTarget, &kExpansion, &q), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', &p, nullptr, &kExpansion, &q), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', &p, &kTarget, nullptr, &q), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', &p, &kTarget, &kExpansion, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 0, &p, &kTarget, &kExpansion, &q), ZELM_ERR_PARAM);
    for (const ZelmCstmExpPrm& bad : badExpansions()) {
        EXPECT_EQ(call(handle.get(), 'L', &p, &kTarget, &bad, &q), ZELM_ERR_PARAM);
    }
    EXPECT_EQ(q.x, 7.0);
}

TEST(CstmHomPoints, ASingularRectifyingMatrixIsDegenerate) {
    Handle handle;
    loadSingularPair(makePair(0, 0), &handle);
    const Point2d p{1.0, 2.0};
    Point2d q{7.0, 8.0};
    const Line2d line{0.0, 1.0, -400.0};
    Zelm2ViewEpiLine out{};
    for (const char name : kNames) {
        EXPECT_EQ(zelmCstmDrovnChangeOrg2DtoHom2D(handle.get(), name, &kTarget, &p, &q), ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmCstmDrovnChangeOrg2DtoHom2DExp(handle.get(), name, &kTarget, &kExpansion, &p, &q),
                  ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmCstmDrovnInvHomImgPointExp(handle.get(), name, &p, &kTarget, &kExpansion, &q),
                  ZELM_ERR_DEGENERATE);
        EXPECT_EQ(zelmCstmDrovnChangeHomEpiLineExp(handle.get(), name, &kTarget, &kExpansion, &line, &out),
                  ZELM_ERR_DEGENERATE);
    }
    EXPECT_EQ(q.x, 7.0);
}

TEST(CstmHomPoints, ADistortionThatCannotBeRemovedIsReported) {
    TruePair pair = makePair(0, 0);
    pair.left.intrinsics.k1 = 1e13;  // Newton shrinks the pixel by a third a step
    Handle handle;
    loadPair(pair, &handle);
    const Point2d p{1200.0, 900.0};
    Point2d q{7.0, 8.0};
    EXPECT_EQ(zelmCstmDrovnChangeOrg2DtoHom2D(handle.get(), 'L', &kTarget, &p, &q), ZELM_ERR_UNDISTORT);
    EXPECT_EQ(zelmCstmDrovnChangeOrg2DtoHom2DExp(handle.get(), 'L', &kTarget, &kExpansion, &p, &q), ZELM_ERR_UNDISTORT);
    EXPECT_EQ(q.x, 7.0);
}

// Opened and calibrated objects differ from loaded ones in their work block alone, which nothing here reads.
TEST(CstmHomPoints, ExtremeInputsStayDefined) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    for (const double v : {kNan, kInfinity, -kInfinity, 1e300, -1e300}) {
        const Point2d p{v, v};
        const ZelmCstmExpPrm target{std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max(),
                                    v, v, 0.0};
        const ZelmCstmExpPrm expansion{std::numeric_limits<std::int32_t>::max(), 0, v, v, 1e300};
        const Line2d line{v, 1.0, v};
        Point2d q{};
        Zelm2ViewEpiLine out{};
        EXPECT_EQ(zelmCstmDrovnChangeOrg2DtoExp2D(&expansion, &p, &q), ZELM_OK);
        const std::int32_t status = zelmCstmDrovnChangeOrg2DtoHom2DExp(handle.get(), 'L', &target, &expansion, &p, &q);
        EXPECT_TRUE(status == ZELM_OK || status == ZELM_ERR_UNDISTORT) << status;
        EXPECT_EQ(zelmCstmDrovnInvHomImgPointExp(handle.get(), 'L', &p, &target, &expansion, &q), ZELM_OK);
        EXPECT_EQ(zelmCstmDrovnChangeHomEpiLineExp(handle.get(), 'L', &target, &expansion, &line, &out), ZELM_OK);
    }
}

void expectNoSegment(const Zelm2ViewEpiLine& line) {
    EXPECT_EQ(line.x0, 0.0);
    EXPECT_EQ(line.y0, 0.0);
    EXPECT_EQ(line.x1, 0.0);
    EXPECT_EQ(line.y1, 0.0);
}

constexpr Zelm2ViewEpiLine kUntouched{1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0};

double offsetOf(const Zelm2ViewEpiLine& line, double x, double y) {
    return line.a * x + line.b * y + line.c;
}

TEST(CstmHomEpiLine, TheCarriedLinePassesThroughTheCarriedCorrespondence) {
    Random random(224);
    double worst = 0.0;
    const std::int32_t models[][2] = {{0, 0}, {1, 1}, {2, 0}, {2, 2}};
    for (const auto& model : models) {
        for (int rig = 0; rig < 20; ++rig) {
            const TruePair pair = makePair(model[0], model[1], &random);
            Handle handle;
            loadPair(pair, &handle);
            const ZelmCstmExpPrm expansion = magnification(random.uniform(1.0, 5.0));
            for (int i = 0; i < 30; ++i) {
                const Point3d X = randomWorldPoint(random);
                for (const char name : kNames) {
                    const Point2d seen = pair.project(otherName(name), X);
                    const Point2d own = pair.project(name, X);
                    const Point2d ideal = pair.projectIdeal(name, X);
                    const ZelmCstmExpPrm target{300, 200, ideal.x + 3.0, ideal.y - 5.0, random.uniform(-20.0, -1.5)};
                    Zelm2ViewEpiLine line{};
                    ASSERT_EQ(zelm2ViewCalcEpiLine(handle.get(), name, &seen, &line), ZELM_OK);
                    const Line2d source{5.0 * line.a, 5.0 * line.b, 5.0 * line.c};  // any scale
                    Zelm2ViewEpiLine carried{};
                    Point2d expanded{};
                    ASSERT_EQ(
                        zelmCstmDrovnChangeHomEpiLineExp(handle.get(), name, &target, &expansion, &source, &carried),
                        ZELM_OK);
                    ASSERT_EQ(
                        zelmCstmDrovnChangeOrg2DtoHom2DExp(handle.get(), name, &target, &expansion, &own, &expanded),
                        ZELM_OK);
                    ASSERT_NEAR(std::hypot(carried.a, carried.b), 1.0, 1e-14);
                    worst = std::max(worst, std::fabs(offsetOf(carried, expanded.x, expanded.y)));
                    ASSERT_NEAR(offsetOf(carried, carried.x0, carried.y0), 0.0, 1e-9);
                    ASSERT_NEAR(offsetOf(carried, carried.x1, carried.y1), 0.0, 1e-9);
                    for (const Point2d& end : {Point2d{carried.x0, carried.y0}, Point2d{carried.x1, carried.y1}}) {
                        const double border = std::min(std::min(std::fabs(end.x - 1.0), std::fabs(end.x - 298.0)),
                                                       std::min(std::fabs(end.y - 1.0), std::fabs(end.y - 198.0)));
                        ASSERT_LT(border, 1e-9);
                        ASSERT_TRUE(end.x > 1.0 - 1e-9 && end.x < 298.0 + 1e-9);
                        ASSERT_TRUE(end.y > 1.0 - 1e-9 && end.y < 198.0 + 1e-9);
                    }
                }
            }
        }
    }
    std::printf("offset of carried correspondences: worst %.2g px\n", worst);
    EXPECT_LT(worst, 1e-6);  // pixels: the last Newton step of 1e-4 leaves its square, times the magnification
}

TEST(CstmHomEpiLine, ALineThatMissesHasNoSegment) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const Line2d line{0.0, 1.0, -900.0};  // 500 px below the reference point
    Zelm2ViewEpiLine out = kUntouched;
    ASSERT_EQ(zelmCstmDrovnChangeHomEpiLineExp(handle.get(), 'L', &kTarget, &kExpansion, &line, &out), ZELM_OK);
    expectNoSegment(out);
    EXPECT_NEAR(std::hypot(out.a, out.b), 1.0, 1e-14);
}

// With identical cameras the transfer is the identity but for the shift, so that a line can be laid through a corner of
// the inset image.
TEST(CstmHomEpiLine, ALineThatTouchesInOnePointHasEqualEnds) {
    TruePair pair = makePair(0, 0);
    std::vector<unsigned char> data = blockOf(pair);
    const zelm::RectifyingPair identity{{1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0},
                                        {1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0}};
    zelm::block::write(data.data(), zelm::block::kLeftRectifying, identity);
    zelm::block::write(data.data(), zelm::block::kRightRectifying, identity);
    Handle handle;
    ASSERT_EQ(zelm2ViewLoadCalibData(static_cast<std::int32_t>(data.size()), data.data(), &handle.calib), ZELM_OK);
    const ZelmCstmExpPrm target{100, 80, 50.0, 40.0, 0.0};
    const ZelmCstmExpPrm one = magnification(1.0);
    const Line2d corner{1.0, 1.0, -2.0};  // through (1, 1) alone
    Zelm2ViewEpiLine out = kUntouched;
    ASSERT_EQ(zelmCstmDrovnChangeHomEpiLineExp(handle.get(), 'L', &target, &one, &corner, &out), ZELM_OK);
    EXPECT_NEAR(out.x0, 1.0, 1e-12);
    EXPECT_NEAR(out.y0, 1.0, 1e-12);
    EXPECT_EQ(out.x1, out.x0);
    EXPECT_EQ(out.y1, out.y0);
    // The inset is one pixel on every side: the row 1 runs along it and gives nothing, the row 2 crosses.
    const Line2d along{0.0, 1.0, -1.0};
    ASSERT_EQ(zelmCstmDrovnChangeHomEpiLineExp(handle.get(), 'L', &target, &one, &along, &out), ZELM_OK);
    expectNoSegment(out);
    const Line2d across{0.0, 1.0, -2.0};
    ASSERT_EQ(zelmCstmDrovnChangeHomEpiLineExp(handle.get(), 'L', &target, &one, &across, &out), ZELM_OK);
    EXPECT_EQ(std::min(out.x0, out.x1), 1.0);
    EXPECT_EQ(std::max(out.x0, out.x1), 98.0);
}

TEST(CstmHomEpiLine, BadArgumentsAreRefused) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const Line2d line{0.0, 1.0, -400.0};
    Zelm2ViewEpiLine out = kUntouched;
    const auto call = [&](const Zelm2ViewCalib* calib, int camera, const ZelmCstmExpPrm* target,
                          const ZelmCstmExpPrm* expansion, const Line2d* in, Zelm2ViewEpiLine* to) {
        return zelmCstmDrovnChangeHomEpiLineExp(calib, camera, target, expansion, in, to);
    };
    EXPECT_EQ(call(nullptr, 'L', &kTarget, &kExpansion, &line, &out), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', nullptr, &kExpansion, &line, &out), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', &kTarget, nullptr, &line, &out), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', &kTarget, &kExpansion, nullptr, &out), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'L', &kTarget, &kExpansion, &line, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(call(handle.get(), 'A', &kTarget, &kExpansion, &line, &out), ZELM_ERR_PARAM);
    for (const ZelmCstmExpPrm& bad : badExpansions()) {
        EXPECT_EQ(call(handle.get(), 'L', &kTarget, &bad, &line, &out), ZELM_ERR_PARAM);
    }
    EXPECT_EQ(out.a, 1.0);
    EXPECT_EQ(out.x0, 4.0);
}

}  // namespace
