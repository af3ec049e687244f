// Allocation faults of the geometric operations of a pair.
#include "faultCase.h"
#include "pairFixture.h"
#include "zelm/twoViewGeometry.h"

namespace {

using namespace zelmtest;

const Zelm2ViewHomParam kParams{20.0, 15.0, 0.0};
const Point2d kPixel{640.0, 480.0};

TruePair smallPair() {
    TruePair pair = makePair(0, 0);
    pair.width = 40;
    pair.height = 30;
    return pair;
}

constexpr std::size_t kPixels = 40 * 30;

// An operation that needs the rectifying transform: degenerate when its memory fails.
void expectTransformStatus(const FaultProbe& probe, std::int32_t status) {
    EXPECT_EQ(status, probe.failed() ? ZELM_ERR_DEGENERATE : ZELM_OK);
}

}  // namespace

ZELM_FAULT_CASE(zelm2ViewChange2Dto3D) {
    const TruePair pair = makePair(0, 0);
    Handle handle;
    loadPair(pair, &handle);
    const Point2d left = pair.project('L', {10.0, 5.0, 2.0});
    const Point2d right = pair.project('R', {10.0, 5.0, 2.0});
    Point3d out{77.0, 77.0, 77.0};
    const std::int32_t status = probe.call([&] { return zelm2ViewChange2Dto3D(handle.get(), &left, &right, &out); });
    EXPECT_EQ(status, probe.failed() ? ZELM_ERR_MEMORY : ZELM_OK);
    EXPECT_NEAR(out.x, probe.failed() ? 77.0 : 10.0, 1e-6);
}

ZELM_NO_ALLOCATION_CASE(zelm2ViewChange3Dto2D) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const Point3d X{10.0, 5.0, 2.0};
    Point2d out{};
    EXPECT_EQ(probe.call([&] { return zelm2ViewChange3Dto2D(handle.get(), 'L', &X, &out); }), ZELM_OK);
}

// A clipping whose memory fails finds no end points; the line itself stands.
ZELM_NO_ALLOCATION_CASE(zelm2ViewCalcEpiLine) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    Zelm2ViewEpiLine out{};
    EXPECT_EQ(probe.call([&] { return zelm2ViewCalcEpiLine(handle.get(), 'L', &kPixel, &out); }), ZELM_OK);
    EXPECT_NEAR(std::hypot(out.a, out.b), 1.0, 1e-14);
    EXPECT_EQ(out.x0 != 0.0, !probe.failed());
}

ZELM_NO_ALLOCATION_CASE(zelm2ViewChangeHomEpiLine) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    const double line[3] = {0.0, 1.0, -480.0};
    Zelm2ViewEpiLine out{};
    const std::int32_t status =
        probe.call([&] { return zelm2ViewChangeHomEpiLine(handle.get(), 'L', &kParams, line, &out); });
    EXPECT_TRUE(status == ZELM_OK || (probe.failed() && status == ZELM_ERR_DEGENERATE)) << status;
}

ZELM_NO_ALLOCATION_CASE(zelm2ViewMakeHomImage) {
    Handle handle;
    loadPair(smallPair(), &handle);
    std::vector<unsigned char> src(kPixels, 5);
    std::vector<unsigned char> dst(kPixels, 77);
    const std::int32_t status =
        probe.call([&] { return zelm2ViewMakeHomImage(handle.get(), 'L', src.data(), &kParams, dst.data()); });
    expectTransformStatus(probe, status);
    EXPECT_TRUE(!probe.failed() || dst[0] == 77);
}

ZELM_NO_ALLOCATION_CASE(zelm2ViewMakeHomImage_vImageARGB8888) {
    Handle handle;
    loadPair(smallPair(), &handle);
    std::vector<unsigned char> src(4 * kPixels, 5);
    std::vector<unsigned char> dst(4 * kPixels, 77);
    const vImage_Buffer from{src.data(), 30, 40, 160};
    const vImage_Buffer to{dst.data(), 30, 40, 160};
    const std::int32_t status =
        probe.call([&] { return zelm2ViewMakeHomImage_vImageARGB8888(handle.get(), 'L', &from, &kParams, &to); });
    expectTransformStatus(probe, status);
    EXPECT_TRUE(!probe.failed() || dst[0] == 77);
}

ZELM_NO_ALLOCATION_CASE(zelm2ViewCalcHomImgPoint) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    Point2d out{77.0, 77.0};
    const std::int32_t status =
        probe.call([&] { return zelm2ViewCalcHomImgPoint(handle.get(), 'L', &kPixel, &kParams, &out); });
    expectTransformStatus(probe, status);
    EXPECT_EQ(out.x == 77.0, probe.failed());
}

ZELM_NO_ALLOCATION_CASE(zelm2ViewInvHomImgPoint) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    Point2d out{77.0, 77.0};
    const std::int32_t status =
        probe.call([&] { return zelm2ViewInvHomImgPoint(handle.get(), 'L', &kPixel, &kParams, &out); });
    expectTransformStatus(probe, status);
    EXPECT_EQ(out.x == 77.0, probe.failed());
}

ZELM_NO_ALLOCATION_CASE(zelm2ViewUnDistortImage) {
    Handle handle;
    loadPair(smallPair(), &handle);
    std::vector<unsigned char> src(kPixels, 5);
    std::vector<unsigned char> dst(kPixels);
    EXPECT_EQ(probe.call([&] { return zelm2ViewUnDistortImage(handle.get(), 'L', src.data(), dst.data()); }), ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelm2ViewUnDistortImage_vImageARGB8888) {
    Handle handle;
    loadPair(smallPair(), &handle);
    std::vector<unsigned char> src(4 * kPixels, 5);
    std::vector<unsigned char> dst(4 * kPixels);
    const vImage_Buffer from{src.data(), 30, 40, 160};
    const vImage_Buffer to{dst.data(), 30, 40, 160};
    EXPECT_EQ(probe.call([&] { return zelm2ViewUnDistortImage_vImageARGB8888(handle.get(), 'L', &from, &to); }),
              ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelm2ViewDistortPoint) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    Point2d out{};
    EXPECT_EQ(probe.call([&] { return zelm2ViewDistortPoint(handle.get(), 'L', &kPixel, &out); }), ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelm2ViewUnDistortPoint) {
    Handle handle;
    loadPair(makePair(0, 0), &handle);
    Point2d out{};
    EXPECT_EQ(probe.call([&] { return zelm2ViewUnDistortPoint(handle.get(), 'L', &kPixel, &out); }), ZELM_OK);
}
