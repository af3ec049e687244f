// Calibration of the pair: from ideal dots against the truth, every pair of models, each failure with what it leaves
// behind, and once from rendered images. The geometry alone is tested in stereoGeometryTest.cpp, real images in
// deskRigTest.cpp.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

#include "calibBlock.h"
#include "rigFixtures.h"

namespace zelmtest {
namespace {

using zelm::Camera;

constexpr std::int32_t kViews = 6;

// Estimation stops when a step changes the cost by less than 1e-8 of it; on ideal data that leaves far less than this.
constexpr double kIdealRelative = 1e-6;
constexpr double kIdealPixels = 1e-4;

struct Rig {
    render::StereoRig cameras = render::exampleRig();
    render::Plate plate;
    std::vector<render::Pose> left;

    [[nodiscard]] const render::Camera& camera(Camera side) const {
        return side == Camera::left ? cameras.left : cameras.right;
    }
    [[nodiscard]] render::Pose pose(Camera side, std::size_t view) const {
        return side == Camera::left ? left[view] : render::compose(cameras.rightFromLeft, left[view]);
    }
};

Rig makeRig(std::uint64_t seed = 5) {
    Rig rig;
    rig.left = render::makeViewPoses(rig.plate, rig.cameras, kViews, seed);
    return rig;
}

render::Camera parallelCamera(double scale) {
    render::Camera camera;
    camera.projection = render::Projection::parallel;
    camera.fx = camera.fy = scale;
    camera.k1 = camera.k2 = 0.0;
    return camera;
}

// One side, or both, of parallel projection, a little tilted against the plate of view 0.
Rig makeMixedRig(bool isLeftParallel, bool isRightParallel) {
    Rig rig = makeRig();
    const auto head = [](double axis) {
        return render::aimedPose(parallelCamera(6.0), aimAt(parallelCamera(6.0), 6.0, 20.0, 12.0, axis));
    };
    if (isLeftParallel) {
        rig.cameras.left = parallelCamera(6.0);
        rig.left[0] = head(40.0);
    }
    if (isRightParallel) {
        rig.cameras.right = parallelCamera(6.0);
        rig.cameras.rightFromLeft = render::compose(head(120.0), render::inverse(rig.left[0]));
    } else if (isLeftParallel) {
        const auto right = render::aimedPose(rig.cameras.right, aimAt(rig.cameras.right, 5.0, -30.0, 25.0, 70.0));
        rig.cameras.rightFromLeft = render::compose(right, render::inverse(rig.left[0]));
    }
    return rig;
}

class Pair {
public:
    Handle handle;
    Zelm2ViewCalibResult result = {-9, -9.0, -9, -9.0};

    Pair(const Rig& rig, std::int32_t leftModel, std::int32_t rightModel) {
        const auto pattern = describe(rig.plate);
        const auto cameras = cameraPair(leftModel, rightModel, rig.cameras.left.width, rig.cameras.left.height);
        EXPECT_EQ(zelm2ViewCalibOpen(kViews, &pattern, &cameras, &handle.calib), ZELM_OK);
    }
    // A parallel camera sees view 0 alone; its later views stay empty.
    void fill(const Rig& rig, Camera side, double noise = 0.0, std::uint64_t seed = 1) {
        const bool isParallel = rig.camera(side).projection == render::Projection::parallel;
        for (std::size_t view = 0; view < (isParallel ? 1 : kViews); ++view) {
            fillView(handle.calib, side, static_cast<std::int32_t>(view), rig.plate, rig.camera(side),
                     rig.pose(side, view), noise, seed + view);
        }
    }
    void fillBoth(const Rig& rig, double noise = 0.0) {
        fill(rig, Camera::left, noise, 100);
        fill(rig, Camera::right, noise, 200);
    }
    std::int32_t calibrate() { return zelm2ViewCalibCameraParam(handle.calib, &result); }
    [[nodiscard]] std::vector<unsigned char> block() const {
        std::vector<unsigned char> bytes(static_cast<std::size_t>(zelm2ViewGetCalibDataSize(handle.calib)));
        EXPECT_EQ(zelm2ViewSaveCalibData(handle.calib, bytes.data()), ZELM_OK);
        return bytes;
    }
    [[nodiscard]] ZelmCameraIntrinsics intrinsics(char camera) const {
        ZelmCameraIntrinsics out{};
        EXPECT_EQ(zelm2ViewGetCamIntParam(handle.calib, camera, &out), ZELM_OK);
        return out;
    }
    [[nodiscard]] ZelmCameraExtrinsics pose(char camera, std::int32_t view) const {
        ZelmCameraExtrinsics out{};
        EXPECT_EQ(zelm2ViewGetCamExtParam(handle.calib, camera, view, &out), ZELM_OK);
        return out;
    }
};

bool isZero(const std::vector<unsigned char>& bytes, std::size_t from, std::size_t count) {
    for (std::size_t i = from; i < from + count; ++i) {
        if (bytes[i] != 0) {
            return false;
        }
    }
    return true;
}

// Distances of the dots of view 0 from the epipolar lines of the other camera's, both as the truth has them.
struct EpipolarDistances {
    double worst = 0.0;
    double rms = 0.0;
};

EpipolarDistances epipolarDistances(const Pair& pair, const Rig& rig) {
    double F[18];
    EXPECT_EQ(zelm2ViewGetCamFndMat(pair.handle.calib, F), ZELM_OK);
    EpipolarDistances result;
    const auto dots = render::plateDots(rig.plate);
    for (const auto& dot : dots) {
        const Point3d X = {dot.centre.x, dot.centre.y, 0.0};
        const auto left = idealPixel(rig.cameras.left, rig.pose(Camera::left, 0), X);
        const auto right = idealPixel(rig.cameras.right, rig.pose(Camera::right, 0), X);
        const double distance = epipolarDistance(F, left, right);
        result.worst = std::max(result.worst, distance);
        result.rms += distance * distance;
    }
    result.rms = std::sqrt(result.rms / static_cast<double>(dots.size()));
    return result;
}

void expectSoundFundamental(const Pair& pair) {
    double F[18];
    ASSERT_EQ(zelm2ViewGetCamFndMat(pair.handle.calib, F), ZELM_OK);
    EXPECT_LT(std::fabs(determinant(F)), 1e-15);  // rounding of products of elements up to 1
    EXPECT_NEAR(largestElement(F), 1.0, 1e-9);
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(F[9 + i], F[3 * (i % 3) + i / 3]);
    }
}

// The stored pair against the projection matrix of the stored camera, by the given columns.
void expectRectifyingPair(const Pair& pair, char camera, std::int32_t model,
                          const std::array<std::size_t, 3>& columns) {
    double stored[18];
    ASSERT_EQ(zelm2ViewGetCamHomMat(pair.handle.calib, camera, stored), ZELM_OK);
    const auto intrinsics = pair.intrinsics(camera);
    const auto pose = pair.pose(camera, 0);
    double P[12];
    ASSERT_EQ(zelmCalibCameraMatrix(intrinsics.A, &pose, P, model), ZELM_OK);
    double inverse[9];
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t j = 0; j < 3; ++j) {
            EXPECT_EQ(stored[3 * row + j], P[4 * row + columns[j]]);
        }
    }
    ASSERT_EQ(zelmMatInvert(3, stored, inverse), ZELM_OK);
    EXPECT_EQ(std::memcmp(stored + 9, inverse, sizeof(inverse)), 0);
}

// ---- arguments

TEST(StereoCalib, NullArgumentsAreRefused) {
    const auto rig = makeRig();
    Pair pair(rig, 0, 0);
    EXPECT_EQ(zelm2ViewCalibCameraParam(nullptr, &pair.result), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewCalibCameraParam(pair.handle.calib, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(pair.result.statusL, -9);
}

TEST(StereoCalib, LoadedObjectIsRefusedWithZeroStatuses) {
    const std::vector<unsigned char> bytes(1532);
    Handle handle;
    ASSERT_EQ(zelm2ViewLoadCalibData(1532, bytes.data(), &handle.calib), ZELM_OK);
    Zelm2ViewCalibResult result = {-9, -9.0, -9, -9.0};
    EXPECT_EQ(zelm2ViewCalibCameraParam(handle.calib, &result), ZELM_ERR_PARAM);
    EXPECT_EQ(result.statusL, 0);
    EXPECT_EQ(result.statusR, 0);
    EXPECT_EQ(result.errorL, -9.0);
}

// ---- perspective pairs

TEST(StereoCalib, IdealDotsGiveTheRigBack) {
    const auto rig = makeRig();
    Pair pair(rig, 0, 0);
    pair.fillBoth(rig);
    ASSERT_EQ(pair.calibrate(), ZELM_OK);
    EXPECT_GE(pair.result.statusL, 0);
    EXPECT_GE(pair.result.statusR, 0);
    EXPECT_LT(pair.result.errorL, kIdealPixels);
    EXPECT_LT(pair.result.errorR, kIdealPixels);
    for (const Camera side : {Camera::left, Camera::right}) {
        const char name = side == Camera::left ? 'L' : 'R';
        const auto expected = intrinsicsOf(rig.camera(side));
        const auto found = pair.intrinsics(name);
        EXPECT_NEAR(found.alpha, expected.alpha, kIdealRelative * expected.alpha);
        EXPECT_NEAR(found.beta, expected.beta, kIdealRelative * expected.beta);
        EXPECT_NEAR(found.cx, expected.cx, kIdealRelative * expected.alpha);
        EXPECT_NEAR(found.cy, expected.cy, kIdealRelative * expected.alpha);
        EXPECT_NEAR(found.k1, expected.k1, kIdealRelative);
        for (std::int32_t view = 0; view < kViews; ++view) {
            const auto pose = pair.pose(name, view);
            const auto truth = poseOf(rig.pose(side, static_cast<std::size_t>(view)));
            for (int i = 0; i < 9; ++i) {
                EXPECT_NEAR(pose.R[i], truth.R[i], kIdealRelative);
            }
            for (int i = 0; i < 3; ++i) {
                EXPECT_NEAR(pose.t[i], truth.t[i], kIdealRelative * truth.t[2]);
            }
        }
        expectRectifyingPair(pair, name, 0, {0, 1, 2});
    }
    EXPECT_LT(epipolarDistances(pair, rig).worst, kIdealPixels);
    expectSoundFundamental(pair);
}

TEST(StereoCalib, FundamentalMatrixIsThatOfTheTruth) {
    const auto rig = makeRig(6);
    Pair pair(rig, 0, 0);
    pair.fillBoth(rig);
    ASSERT_EQ(pair.calibrate(), ZELM_OK);
    zelm::FundamentalPair truth{};
    ASSERT_EQ(zelm::innerFundamentalPair(calibrated(rig.cameras.left, rig.pose(Camera::left, 0)),
                                         calibrated(rig.cameras.right, rig.pose(Camera::right, 0)), &truth),
              ZELM_OK);
    double F[18];
    ASSERT_EQ(zelm2ViewGetCamFndMat(pair.handle.calib, F), ZELM_OK);
    const double sign = F[8] * truth.F[8] < 0 ? -1.0 : 1.0;
    for (int i = 0; i < 9; ++i) {
        EXPECT_NEAR(sign * F[i], truth.F[i], 1e-5 * std::fabs(truth.F[i]) + 1e-9) << i;
    }
}

TEST(StereoCalib, TiltedImageAxesAreAcceptedOnEitherSide) {
    auto rig = makeRig();
    rig.cameras.left.theta = 0.004;
    for (const std::int32_t rightModel : {0, 1}) {
        Pair pair(rig, 1, rightModel);
        pair.fillBoth(rig);
        ASSERT_EQ(pair.calibrate(), ZELM_OK);
        EXPECT_NEAR(pair.intrinsics('L').theta, 0.004, kIdealRelative);
        EXPECT_LT(epipolarDistances(pair, rig).worst, kIdealPixels);
        expectSoundFundamental(pair);
        expectRectifyingPair(pair, 'L', 1, {0, 1, 2});
    }
}

TEST(StereoCalib, NoiseOfATwentiethOfAPixelStaysThere) {
    const auto rig = makeRig();
    Pair pair(rig, 0, 0);
    pair.fillBoth(rig, 0.05);
    ASSERT_EQ(pair.calibrate(), ZELM_OK);
    // Mean length of a two-dimensional Gaussian residual: 0.05 * sqrt(pi / 2) = 0.0627, less a few per cent for the
    // parameters; its spread over 6 * 143 dots is 0.0011.
    EXPECT_NEAR(pair.result.errorL, 0.0627, 0.005);
    EXPECT_NEAR(pair.result.errorR, 0.0627, 0.005);
    // Measured dots lie off their lines by 0.05 * sqrt(2) = 0.071; the lines themselves, from hundreds of dots, are
    // known to less than half of that.
    EXPECT_LT(epipolarDistances(pair, rig).rms, 0.035);
    expectSoundFundamental(pair);
}

// The lens moves the dots of the near view by far more than those of the others, which would make outliers of them all
// if the weighting were to judge the closed form, which knows no lens.
TEST(StereoCalib, NearViewAmongFarOnesIsNoOutlier) {
    auto rig = makeRig();
    for (std::size_t view = 1; view < kViews; ++view) {
        for (double& t : rig.left[view].t) {
            t *= 2.2;
        }
    }
    Pair pair(rig, 0, 0);
    pair.fillBoth(rig);
    ASSERT_EQ(pair.calibrate(), ZELM_OK);
    EXPECT_NEAR(pair.intrinsics('L').alpha, rig.cameras.left.fx, kIdealRelative * rig.cameras.left.fx);
    EXPECT_NEAR(pair.intrinsics('R').k1, rig.cameras.right.k1, kIdealRelative);
    EXPECT_LT(epipolarDistances(pair, rig).worst, kIdealPixels);
}

TEST(StereoCalib, CalibratingAgainRewritesTheBlock) {
    const auto first = makeRig(5);
    const auto second = makeRig(9);
    Pair pair(first, 0, 0);
    pair.fillBoth(first);
    ASSERT_EQ(pair.calibrate(), ZELM_OK);
    pair.fillBoth(second);
    ASSERT_EQ(pair.calibrate(), ZELM_OK);
    Pair fresh(second, 0, 0);
    fresh.fillBoth(second);
    ASSERT_EQ(fresh.calibrate(), ZELM_OK);
    EXPECT_EQ(pair.block(), fresh.block());
}

TEST(StereoCalib, BlockHoldsEverythingAtItsOffset) {
    const auto rig = makeRig();
    Pair pair(rig, 0, 0);
    pair.fillBoth(rig);
    ASSERT_EQ(pair.calibrate(), ZELM_OK);
    const auto bytes = pair.block();
    const auto same = [&bytes](std::size_t offset, const auto& record) {
        return std::memcmp(&bytes[offset], &record, sizeof(record)) == 0;
    };
    double matrices[18];
    ASSERT_EQ(zelm2ViewGetCamHomMat(pair.handle.calib, 'L', matrices), ZELM_OK);
    EXPECT_TRUE(same(28, matrices));
    ASSERT_EQ(zelm2ViewGetCamHomMat(pair.handle.calib, 'R', matrices), ZELM_OK);
    EXPECT_TRUE(same(172, matrices));
    ASSERT_EQ(zelm2ViewGetCamFndMat(pair.handle.calib, matrices), ZELM_OK);
    EXPECT_TRUE(same(316, matrices));
    EXPECT_TRUE(same(460, pair.intrinsics('L')));
    EXPECT_TRUE(same(636, pair.intrinsics('R')));
    for (std::int32_t view = 0; view < kViews; ++view) {
        EXPECT_TRUE(same(812 + 120 * static_cast<std::size_t>(view), pair.pose('L', view)));
        EXPECT_TRUE(same(812 + 120 * static_cast<std::size_t>(kViews + view), pair.pose('R', view)));
    }
    EXPECT_TRUE(isZero(bytes, 460 + 17 * 8, 40)) << "reserved doubles";
}

// ---- parallel cameras

TEST(StereoCalib, ParallelLeftCameraIsAcceptedWithPerspectiveAndParallelRight) {
    for (const std::int32_t rightModel : {0, 1, 2}) {
        SCOPED_TRACE(rightModel);
        const auto rig = makeMixedRig(true, rightModel == 2);
        Pair pair(rig, 2, rightModel);
        pair.fillBoth(rig);
        ASSERT_EQ(pair.calibrate(), ZELM_OK);
        // Of the dots of view 0, that is: one view of a plane does not tell the sign of a parallel camera's tilt, so
        // off that plane the epipolar lines of a tilted camera may be those of its mirror image.
        EXPECT_LT(pair.result.errorL, kIdealPixels);
        EXPECT_LT(pair.result.errorR, kIdealPixels);
        EXPECT_LT(epipolarDistances(pair, rig).worst, kIdealPixels);
        expectSoundFundamental(pair);
        expectRectifyingPair(pair, 'L', 2, {0, 1, 3});
        expectRectifyingPair(pair, 'R', rightModel, {0, 1, 3});
    }
}

TEST(StereoCalib, LaterPosesOfAParallelCameraAreZero) {
    const auto rig = makeMixedRig(true, false);
    Pair pair(rig, 2, 0);
    pair.fillBoth(rig);
    ASSERT_EQ(pair.calibrate(), ZELM_OK);
    const auto bytes = pair.block();
    EXPECT_FALSE(isZero(bytes, 812, 72));
    EXPECT_TRUE(isZero(bytes, 812 + 120, 120 * (kViews - 1)));
    EXPECT_FALSE(isZero(bytes, 812 + 120 * (2 * kViews - 1), 72));
}

TEST(StereoCalib, PlaneHomographyOfAParallelPairTakesDotsToTheirImages) {
    const auto rig = makeMixedRig(true, true);
    Pair pair(rig, 2, 2);
    pair.fillBoth(rig);
    ASSERT_EQ(pair.calibrate(), ZELM_OK);
    for (const Camera side : {Camera::left, Camera::right}) {
        double M[18];
        ASSERT_EQ(zelm2ViewGetCamHomMat(pair.handle.calib, side == Camera::left ? 'L' : 'R', M), ZELM_OK);
        for (const auto& dot : render::plateDots(rig.plate)) {
            const double w = M[6] * dot.centre.x + M[7] * dot.centre.y + M[8];
            const auto expected = idealPixel(rig.camera(side), rig.pose(side, 0), {dot.centre.x, dot.centre.y, 0.0});
            EXPECT_NEAR((M[0] * dot.centre.x + M[1] * dot.centre.y + M[2]) / w, expected.x, kIdealPixels);
            EXPECT_NEAR((M[3] * dot.centre.x + M[4] * dot.centre.y + M[5]) / w, expected.y, kIdealPixels);
        }
    }
}

TEST(StereoCalib, PerspectiveLeftWithParallelRightIsRefusedAfterBothWereEstimated) {
    for (const std::int32_t leftModel : {0, 1}) {
        const auto rig = makeMixedRig(false, true);
        Pair pair(rig, leftModel, 2);
        pair.fillBoth(rig);
        EXPECT_EQ(pair.calibrate(), ZELM_ERR_PARAM);
        EXPECT_GE(pair.result.statusL, 0);
        EXPECT_GE(pair.result.statusR, 0);
        EXPECT_GE(pair.result.errorR, 0.0);
        EXPECT_NEAR(pair.intrinsics('L').alpha, rig.cameras.left.fx, 1.0);
        EXPECT_GT(pair.intrinsics('R').alpha, 0.0);
        EXPECT_TRUE(isZero(pair.block(), 28, 432)) << "fundamental matrix and rectifying pairs";
    }
}

TEST(StereoCalib, ParallelCameraWhoseScaleVanishesHasNoGeometry) {
    // A plate described in picometres: 6e-9 pixels a unit.
    auto rig = makeMixedRig(true, true);
    Pair pair(rig, 2, 2);
    constexpr double kUnit = 1e9;
    auto* const work = zelm::openedWork(*pair.handle.calib);
    work->pattern.d6 *= kUnit;
    work->pattern.d7 *= kUnit;
    for (const Camera side : {Camera::left, Camera::right}) {
        std::vector<Point2d> plane;
        std::vector<Point2d> image;
        for (const auto& dot : render::plateDots(rig.plate)) {
            const auto p = render::project(rig.camera(side), rig.pose(side, 0), dot.centre).pixel;
            plane.push_back({dot.centre.x * kUnit, dot.centre.y * kUnit});
            image.push_back({p.x, p.y});
        }
        fillEntry(pair.handle.calib, side, 0, plane, image);
    }
    EXPECT_EQ(pair.calibrate(), ZELM_ERR_STEREO_GEOMETRY);
    EXPECT_TRUE(isZero(pair.block(), 28, 432));
}

// ---- failures of the estimation

TEST(StereoCalib, ViewThatWasNotReadFailsItsHomography) {
    const auto rig = makeRig();
    Pair pair(rig, 0, 0);
    EXPECT_EQ(pair.calibrate(), ZELM_ERR_CALIB_HOMOGRAPHY);
    EXPECT_EQ(pair.result.statusL, 0);
    EXPECT_EQ(pair.result.statusR, 0);
    EXPECT_EQ(pair.result.errorL, -9.0);
}

TEST(StereoCalib, LeftFailureDoesNotTouchTheRightCamera) {
    const auto rig = makeRig();
    Pair pair(rig, 0, 0);
    pair.fill(rig, Camera::right);
    EXPECT_LT(pair.calibrate(), 0);
    EXPECT_EQ(pair.result.errorR, -9.0);
    EXPECT_TRUE(isZero(pair.block(), 28, pair.block().size() - 28));
}

TEST(StereoCalib, RightFailureLeavesTheLeftCameraWritten) {
    const auto rig = makeRig();
    Pair pair(rig, 0, 0);
    pair.fill(rig, Camera::left);
    EXPECT_EQ(pair.calibrate(), ZELM_ERR_CALIB_HOMOGRAPHY);
    EXPECT_GE(pair.result.statusL, 0);
    EXPECT_LT(pair.result.errorL, kIdealPixels);
    EXPECT_EQ(pair.result.statusR, 0);
    EXPECT_EQ(pair.result.errorR, -9.0);
    const auto bytes = pair.block();
    EXPECT_NEAR(pair.intrinsics('L').alpha, rig.cameras.left.fx, 0.01);
    EXPECT_TRUE(isZero(bytes, 28, 432));
    EXPECT_TRUE(isZero(bytes, 636, 176));
    EXPECT_FALSE(isZero(bytes, 812, 72));
    EXPECT_TRUE(isZero(bytes, 812 + 120 * kViews, 120 * kViews));
}

TEST(StereoCalib, ViewWithDotsOnALineFailsItsHomography) {
    const auto rig = makeRig();
    Pair pair(rig, 0, 0);
    pair.fillBoth(rig);
    std::vector<Point2d> plane;
    std::vector<Point2d> image;
    for (int i = 0; i < 9; ++i) {
        plane.push_back({10.0 * i, 0.0});
        image.push_back({100.0 + 50.0 * i, 200.0 + 20.0 * i});
    }
    fillEntry(pair.handle.calib, Camera::right, 2, plane, image);
    EXPECT_EQ(pair.calibrate(), ZELM_ERR_CALIB_HOMOGRAPHY);
    EXPECT_EQ(pair.result.errorR, -9.0);
}

TEST(StereoCalib, ParallelCameraNeedsTheMarkersOfViewZero) {
    const auto rig = makeMixedRig(true, true);
    for (const Point2d marker : {Point2d{0, 0}, Point2d{30, 0}, Point2d{0, 30}}) {
        Pair pair(rig, 2, 2);
        pair.fillBoth(rig);
        std::vector<Point2d> plane;
        std::vector<Point2d> image;
        const auto& entry = zelm::entriesOf(zelm::openedWork(*pair.handle.calib), Camera::left)[0];
        for (std::int32_t i = 0; i < entry.count; ++i) {
            if (entry.plane[i].x != marker.x || entry.plane[i].y != marker.y) {
                plane.push_back(entry.plane[i]);
                image.push_back(entry.image[i]);
            }
        }
        fillEntry(pair.handle.calib, Camera::left, 0, plane, image);
        EXPECT_EQ(pair.calibrate(), ZELM_ERR_CALIB_ESTIMATE);
    }
}

// ---- from images

TEST(StereoCalib, RenderedViewsGiveTheRigBack) {
    const auto rig = makeRig(7);
    Pair pair(rig, 0, 0);
    render::Optics optics;
    optics.noiseSigma = 1.0;
    for (std::size_t view = 0; view < kViews; ++view) {
        const auto images = render::renderPair(rig.plate, rig.cameras, rig.left[view], optics, view);
        const unsigned char* const pixels[] = {images.left.image.pixels.data(), images.right.image.pixels.data()};
        ASSERT_EQ(zelm2ViewReadPtnImg(pair.handle.calib, static_cast<std::int32_t>(view), pixels, nullptr, nullptr),
                  ZELM_OK);
    }
    ASSERT_EQ(pair.calibrate(), ZELM_OK);
    std::printf("error %.4f px left, %.4f px right; true dots off their epipolar lines by up to %.4f px\n",
                pair.result.errorL, pair.result.errorR, epipolarDistances(pair, rig).worst);
    EXPECT_LT(pair.result.errorL, 0.03);
    EXPECT_LT(pair.result.errorR, 0.03);
    for (const Camera side : {Camera::left, Camera::right}) {
        const auto found = pair.intrinsics(side == Camera::left ? 'L' : 'R');
        // Six views with dot noise of about 0.01 pixels, and the bias of ellipse centres: half the views of the desk
        // rig, whose tolerances are 0.02 % and 0.4 pixels.
        EXPECT_NEAR(found.alpha, rig.camera(side).fx, 5e-4 * rig.camera(side).fx);
        EXPECT_NEAR(found.beta, rig.camera(side).fy, 5e-4 * rig.camera(side).fy);
        EXPECT_NEAR(found.cx, rig.camera(side).cx, 0.8);
        EXPECT_NEAR(found.cy, rig.camera(side).cy, 0.8);
    }
    EXPECT_LT(epipolarDistances(pair, rig).worst, 0.05);
    expectSoundFundamental(pair);
}

}  // namespace
}  // namespace zelmtest
