// The transfer homography and the preparation of the image-making functions.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "calibObject.h"
#include "expandedFixtures.h"
#include "rectifyingTransform.h"
#include "transferHomography.h"

namespace {

using namespace zelmtest;
using zelm::ExpDirection;
using zelm::innerCalcExpHomography;
using zelm::innerCalcHomTransParams;
using zelm::KernelCamera;

constexpr char kNames[] = {'L', 'R'};

void multiply(const double* a, const double* b, double* c) {
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            c[3 * i + j] = a[3 * i] * b[j] + a[3 * i + 1] * b[3 + j] + a[3 * i + 2] * b[6 + j];
        }
    }
}

// A block whose rectifying matrices are the given ones; d = 0 leaves them as they are.
std::vector<unsigned char> blockWith(const double left[9], const double right[9]) {
    std::vector<unsigned char> data = blockOf(makePair(0, 0));
    zelm::RectifyingPair pair{};
    std::copy_n(left, 9, pair.M);
    zelm::block::write(data.data(), zelm::block::rectifying(zelm::Camera::left), pair);
    std::copy_n(right, 9, pair.M);
    zelm::block::write(data.data(), zelm::block::rectifying(zelm::Camera::right), pair);
    return data;
}

constexpr double kIdentity[9] = {1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0};

TEST(ExpHomography, TowardsTheSourceIsTheInverse) {
    Random random(211);
    double worst = 0.0;
    const std::int32_t models[][2] = {{0, 0}, {1, 0}, {2, 0}, {2, 2}};
    for (const auto& model : models) {
        for (int rig = 0; rig < 40; ++rig) {
            const auto data = blockOf(makePair(model[0], model[1], &random));
            const ZelmCstmExpPrm target{random.integer(1, 800), random.integer(1, 800), random.uniform(300.0, 900.0),
                                        random.uniform(200.0, 700.0), random.uniform(-0.5, 0.5)};
            const double m = random.uniform(1.0, 20.0);
            for (const char name : kNames) {
                double forward[9];
                double backward[9];
                ASSERT_EQ(innerCalcExpHomography(data.data(), name, target, ExpDirection::toExpanded, forward, m),
                          ZELM_OK);
                ASSERT_EQ(innerCalcExpHomography(data.data(), name, target, ExpDirection::toSource, backward, m),
                          ZELM_OK);
                ASSERT_EQ(forward[8], 1.0);
                ASSERT_EQ(backward[8], 1.0);
                for (int i = 0; i < 20; ++i) {
                    const Point2d p{random.uniform(0.0, 1280.0), random.uniform(0.0, 960.0)};
                    const Point2d q = zelm::transformPoint(forward, p.x, p.y);
                    const Point2d back = zelm::transformPoint(backward, q.x, q.y);
                    worst = std::max(worst, std::hypot(back.x - p.x, back.y - p.y));
                }
            }
        }
    }
    std::printf("worst return: %.2g px\n", worst);
    // Positions of 1e3 px, rounded at 2e-16 and worsened by the matrices' condition of 1e3 or so (pixels beside 1).
    EXPECT_LT(worst, 1e-9);
}

TEST(ExpHomography, WithoutMagnificationAndPlaneTermItIsTheTransferOfTheRectifyingMatrices) {
    const TruePair pair = makePair(0, 0);
    const auto data = blockOf(pair);
    const ZelmCstmExpPrm target{301, 200, 600.0, 500.0, 0.0};
    double hom[9];
    ASSERT_EQ(innerCalcExpHomography(data.data(), 'L', target, ExpDirection::toExpanded, hom, 1.0), ZELM_OK);
    const auto left = zelm::block::read<zelm::RectifyingPair>(data.data(), zelm::block::kLeftRectifying);
    const auto right = zelm::block::read<zelm::RectifyingPair>(data.data(), zelm::block::kRightRectifying);
    double transfer[9];
    multiply(right.M, left.Minv, transfer);
    const Point2d reference = zelm::transformPoint(transfer, target.dX, target.dY);
    for (const Point2d& p : {Point2d{0.0, 0.0}, Point2d{1279.0, 0.0}, Point2d{600.0, 500.0}, Point2d{31.0, 870.0}}) {
        const Point2d plain = zelm::transformPoint(transfer, p.x, p.y);
        const Point2d moved = zelm::transformPoint(hom, p.x, p.y);
        EXPECT_NEAR(moved.x, plain.x - reference.x + 150.0, 1e-8);
        EXPECT_NEAR(moved.y, plain.y - reference.y + 100.0, 1e-8);
    }
}

TEST(ExpHomography, WithTheCamerasSizeItIsTheRectifyingTransform) {
    const auto data = blockOf(makePair(2, 0));
    const ZelmCstmExpPrm target{1280, 960, 600.0, 500.0, -7.0};
    for (const int direction : {0, 1}) {
        double hom[9];
        double T[9];
        ASSERT_EQ(innerCalcExpHomography(data.data(), 'L', target, static_cast<ExpDirection>(direction), hom, 1.0),
                  ZELM_OK);
        ASSERT_EQ(
            zelm::innerCalcHomMatrix(
                data.data(), zelm::Camera::left, {600.0, 500.0, -7.0},
                direction == 1 ? zelm::RectifyingDirection::toRectified : zelm::RectifyingDirection::toUnrectified, T),
            ZELM_OK);
        for (int i = 0; i < 9; ++i) {
            EXPECT_EQ(hom[i], T[i]) << i;
        }
    }
}

// A last element of 1e-9 is left alone, a larger one divides the matrix.
TEST(ExpHomography, ItIsNormalisedByALastElementAbove1e9) {
    const ZelmCstmExpPrm target{0, 0, 0.0, 0.5, 0.0};  // integer halves of 0: the reference lands on the origin
    for (const double last : {0.0, 1e-9, -1e-9, 1.5e-9, -1.5e-9}) {
        const double right[9] = {4.0, 0.0, 0.0, 0.0, 0.0, 3.0, 0.0, 2.0, last};
        const auto data = blockWith(kIdentity, right);
        double hom[9];
        ASSERT_EQ(innerCalcExpHomography(data.data(), 'L', target, ExpDirection::toExpanded, hom, 1.0), ZELM_OK);
        const bool normalised = std::fabs(last) > 1e-9;
        EXPECT_EQ(hom[8], normalised ? 1.0 : last);
        EXPECT_EQ(hom[0], normalised ? 4.0 / last : 4.0);
        EXPECT_EQ(hom[7], normalised ? 2.0 / last : 2.0);
    }
}

TEST(ExpHomography, AnotherCameraIsDegenerate) {
    const auto data = blockOf(makePair(0, 0));
    double hom[9] = {7.0};
    EXPECT_EQ(innerCalcExpHomography(data.data(), 'l', {10, 10, 0.0, 0.0, 0.0}, ExpDirection::toSource, hom, 1.0),
              ZELM_ERR_DEGENERATE);
    EXPECT_EQ(hom[0], 7.0);
}

TEST(ExpHomography, ACameraMatrixThatCannotBeBuiltIsDegenerate) {
    for (const std::size_t field : {std::size_t{0}, std::size_t{12}}) {  // the left and the right model
        auto data = blockOf(makePair(0, 0));
        zelm::block::write(data.data(), zelm::block::kCameras + field, std::int32_t{3});
        double hom[9];
        EXPECT_EQ(innerCalcExpHomography(data.data(), 'L', {10, 10, 0.0, 0.0, 0.0}, ExpDirection::toSource, hom, 1.0),
                  ZELM_ERR_DEGENERATE);
    }
}

TEST(ExpHomography, ASingularRectifyingMatrixIsDegenerate) {
    const double flat[9] = {1.0, 2.0, 3.0, 0.0, 0.0, 0.0, 4.0, 5.0, 6.0};
    double hom[9];
    for (const char name : kNames) {
        EXPECT_EQ(innerCalcExpHomography(blockWith(flat, kIdentity).data(), name, {10, 10, 0.0, 0.0, 0.0},
                                         ExpDirection::toExpanded, hom, 1.0),
                  ZELM_ERR_DEGENERATE);
        EXPECT_EQ(innerCalcExpHomography(blockWith(kIdentity, flat).data(), name, {10, 10, 0.0, 0.0, 0.0},
                                         ExpDirection::toExpanded, hom, 1.0),
                  ZELM_ERR_DEGENERATE);
    }
}

// Between perspective cameras the third column is scaled by 1 + d.
TEST(ExpHomography, APlaneTermOfMinusOneIsDegenerateBetweenPerspectiveCameras) {
    const auto data = blockOf(makePair(0, 0));
    double hom[9];
    EXPECT_EQ(innerCalcExpHomography(data.data(), 'L', {10, 10, 0.0, 0.0, -1.0}, ExpDirection::toExpanded, hom, 1.0),
              ZELM_ERR_DEGENERATE);
}

TEST(ExpHomography, APlaneTermThatIsNotFiniteIsDegenerate) {
    const auto data = blockOf(makePair(2, 0));
    double hom[9];
    for (const double d : {kNan, kInfinity, -kInfinity}) {
        EXPECT_EQ(innerCalcExpHomography(data.data(), 'L', {10, 10, 0.0, 0.0, d}, ExpDirection::toExpanded, hom, 1.0),
                  ZELM_ERR_DEGENERATE);
    }
}

constexpr ZelmCstmExpPrm kTarget{30, 20, 600.0, 500.0, 0.0};
constexpr ZelmCstmExpPrm kExpansion{7, 8, 1.0, 2.0, 3.0};

// The outputs of the preparation.
struct Prepared {
    double hom[9] = {77.0};
    KernelCamera camera{};
    std::int32_t srcWidth = 77;
    std::int32_t srcHeight = 77;
    std::int32_t dstWidth = 77;
    std::int32_t dstHeight = 77;

    std::int32_t prepare(const Zelm2ViewCalib* calib, std::int32_t iCamera, const ZelmCstmExpPrm* target = &kTarget,
                         const ZelmCstmExpPrm* expansion = &kExpansion) {
        return innerCalcHomTransParams(calib, iCamera, target, expansion, hom, &camera, &srcWidth, &srcHeight,
                                       &dstWidth, &dstHeight);
    }
};

TEST(HomTransParams, TheyAreTheNamedCamerasAndTheTargets) {
    TruePair pair = makePair(0, 0);
    auto data = blockOf(pair);
    zelm::block::write(data.data(), zelm::block::kCameras, Zelm2ViewCameraDesc{0, 1280, 960, 0, 1000, 700});
    Handle handle;
    ASSERT_EQ(zelm2ViewLoadCalibData(static_cast<std::int32_t>(data.size()), data.data(), &handle.calib), ZELM_OK);
    for (const char name : kNames) {
        Prepared p;
        ASSERT_EQ(p.prepare(handle.get(), 0x7F00 | name), ZELM_OK);  // only the low byte counts
        EXPECT_EQ(p.srcWidth, name == 'L' ? 1280 : 1000);
        EXPECT_EQ(p.srcHeight, name == 'L' ? 960 : 700);
        EXPECT_EQ(p.dstWidth, 30);
        EXPECT_EQ(p.dstHeight, 20);
        EXPECT_EQ(p.camera.elements[9], pair.camera(name).intrinsics.alpha);
        EXPECT_EQ(p.camera.elements[16], pair.camera(name).intrinsics.k2);
        double hom[9];
        ASSERT_EQ(innerCalcExpHomography(data.data(), name, kTarget, ExpDirection::toSource, hom, 3.0), ZELM_OK);
        for (int i = 0; i < 9; ++i) {
            EXPECT_EQ(p.hom[i], hom[i]);
        }
    }
}

TEST(HomTransParams, BadArgumentsAreRefused) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    Prepared p;
    EXPECT_EQ(p.prepare(nullptr, 'L'), ZELM_ERR_PARAM);
    EXPECT_EQ(p.prepare(handle.get(), 'L', nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(p.prepare(handle.get(), 'L', &kTarget, nullptr), ZELM_ERR_PARAM);
    for (const ZelmCstmExpPrm& bad : badExpansions()) {
        EXPECT_EQ(p.prepare(handle.get(), 'L', &kTarget, &bad), ZELM_ERR_PARAM);
    }
    for (const int camera : {int{'l'}, int{'X'}, 0, -1}) {
        EXPECT_EQ(p.prepare(handle.get(), camera), ZELM_ERR_PARAM);
    }
    EXPECT_EQ(p.hom[0], 77.0);
    EXPECT_EQ(p.srcWidth, 77);
    EXPECT_EQ(p.dstHeight, 77);
}

TEST(HomTransParams, TheOutputsAreAsserted) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    Prepared p;
    const auto call = [&](double* hom, KernelCamera* camera, std::int32_t* sw, std::int32_t* sh, std::int32_t* dw,
                          std::int32_t* dh) {
        innerCalcHomTransParams(handle.get(), 'L', &kTarget, &kExpansion, hom, camera, sw, sh, dw, dh);
    };
    constexpr char kWhere[] =
        "innerCalcHomTransParams \\(3DLib/zelmLib/zelm2View/src/zelmCstmDrovn/transferHomography.cpp\\): ";
    const auto text = [&](const char* name) { return kWhere + std::string(name) + "!=NULL"; };
    EXPECT_DEATH(call(nullptr, &p.camera, &p.srcWidth, &p.srcHeight, &p.dstWidth, &p.dstHeight), text("daHom"));
    EXPECT_DEATH(call(p.hom, nullptr, &p.srcWidth, &p.srcHeight, &p.dstWidth, &p.dstHeight), text("tPrmA"));
    EXPECT_DEATH(call(p.hom, &p.camera, nullptr, &p.srcHeight, &p.dstWidth, &p.dstHeight), text("iSrcWidth"));
    EXPECT_DEATH(call(p.hom, &p.camera, &p.srcWidth, nullptr, &p.dstWidth, &p.dstHeight), text("iSrcHeight"));
    EXPECT_DEATH(call(p.hom, &p.camera, &p.srcWidth, &p.srcHeight, nullptr, &p.dstHeight), text("iDstWidth"));
    EXPECT_DEATH(call(p.hom, &p.camera, &p.srcWidth, &p.srcHeight, &p.dstWidth, nullptr), text("iDstHeight"));
}

// The records are checked before the assertions, the camera after them.
TEST(HomTransParams, TheAssertionsStandBetweenTheRecordsAndTheCamera) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const auto call = [&](std::int32_t camera, const ZelmCstmExpPrm& expansion) {
        return innerCalcHomTransParams(handle.get(), camera, &kTarget, &expansion, nullptr, nullptr, nullptr, nullptr,
                                       nullptr, nullptr);
    };
    EXPECT_EQ(call('L', badExpansions()[0]), ZELM_ERR_PARAM);
    EXPECT_DEATH(call('X', kExpansion), "daHom!=NULL");
}

}  // namespace
