// Every exported function of the stereo pair with each of its allocations failing. Pictures and plates are small, so
// that a full reading and a full calibration can be repeated for every single allocation.
#include <cmath>
#include <cstring>
#include <vector>

#include "faultCase.h"
#include "patternReading.h"
#include "rigFixtures.h"

using namespace zelmtest;
using zelm::Camera;

namespace {

std::vector<unsigned char> blockOf(std::int32_t views) {
    std::vector<unsigned char> bytes(static_cast<std::size_t>(views) * 240 + 812);
    std::memcpy(bytes.data(), &views, sizeof(views));
    return bytes;
}

// A loaded object, made outside of the probe.
struct Loaded : Handle {
    std::vector<unsigned char> bytes = blockOf(3);
    Loaded() {
        EXPECT_EQ(zelm2ViewLoadCalibData(static_cast<std::int32_t>(bytes.size()), bytes.data(), &calib), ZELM_OK);
    }
};

// 3 x 3 dots, three of them markers, in 80 x 80 pixels.
render::Plate tinyPlate() {
    auto plate = smallPlate();
    plate.minX = plate.minY = 0;
    plate.maxX = plate.maxY = 2;
    return plate;
}

Zelm2ViewPatternDesc tinyPattern() {
    auto pattern = describe(tinyPlate());
    pattern.minDots = 9;
    return pattern;
}

const std::vector<unsigned char>& tinyImage() {
    static const std::vector<unsigned char> pixels = [] {
        auto camera = testCamera();
        camera.width = camera.height = 80;
        camera.cx = camera.cy = 39.5;
        auto aim = aimAt(camera, 1.5, 7.0);
        aim.point = {12.0, 12.0};
        return renderAt(tinyPlate(), camera, aim).image.pixels;
    }();
    return pixels;
}

// Every index of the plate once.
void expectTinyGrid(const Zelm2ViewPtnEntry& entry) {
    bool seen[9] = {};
    for (std::int32_t i = 0; i < entry.count; ++i) {
        const long index = std::lround(entry.plane[i].x / 12.0) + 3 * std::lround(entry.plane[i].y / 12.0);
        ASSERT_TRUE(index >= 0 && index < 9 && !seen[index]);
        seen[index] = true;
    }
}

// View 1 of a pair whose right camera is parallel: one image to read. The view has old dots, which a failure leaves
// whole or takes away.
struct TinyView {
    Reader reader{tinyPattern(), cameraPair(0, 2, 80, 80)};
    std::vector<Point2d> oldPoints = {{1, 2}, {3, 4}};

    TinyView() { fillEntry(reader.handle.calib, Camera::left, 1, oldPoints, oldPoints); }

    // The homography reports want of memory in its refinement as a refinement that did not converge; the grid is then
    // found the other way, and nothing is missing.
    void expectAfter(const FaultProbe& probe, std::int32_t status) const {
        const auto& entry = reader.entry('L', 1);
        if (status == ZELM_OK) {
            ASSERT_EQ(entry.count, 9);
            expectTinyGrid(entry);
            return;
        }
        ASSERT_TRUE(probe.failed());
        EXPECT_EQ(status, ZELM_ERR_MEMORY);
        if (entry.count == 0) {
            expectEmpty(entry);
        } else {
            ASSERT_EQ(entry.count, 2);
            EXPECT_EQ(std::memcmp(entry.image, oldPoints.data(), 2 * sizeof(Point2d)), 0);
        }
    }
};

void bufferCase(FaultProbe& probe, std::size_t bytesPerPixel, decltype(&zelm2ViewReadPtnImg_vImagePlanar8) read) {
    const TinyView view;
    const std::size_t rowBytes = 80 * bytesPerPixel + 4;
    std::vector<unsigned char> rows(rowBytes * 80);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const std::size_t x = i % rowBytes / bytesPerPixel;
        rows[i] = tinyImage()[i / rowBytes * 80 + (x < 80 ? x : 79)];
    }
    const vImage_Buffer buffer = {rows.data(), 80, 80, rowBytes};
    const auto status =
        probe.call([&] { return read(view.reader.handle.get(), 1, &buffer, nullptr, nullptr, nullptr); });
    view.expectAfter(probe, status);
}

}  // namespace

ZELM_FAULT_CASE(zelm2ViewCalibOpen) {
    const auto pattern = plainPattern();
    const auto cameras = cameraPair(0, 0);
    Handle handle;
    const auto status = probe.call([&] { return zelm2ViewCalibOpen(3, &pattern, &cameras, &handle.calib); });
    EXPECT_EQ(status, probe.failed() ? ZELM_ERR_MEMORY : ZELM_OK);
    EXPECT_EQ(handle.calib == nullptr, probe.failed());
}

ZELM_FAULT_CASE(zelm2ViewLoadCalibData) {
    const auto bytes = blockOf(3);
    Handle handle;
    const auto status = probe.call([&] { return zelm2ViewLoadCalibData(1532, bytes.data(), &handle.calib); });
    EXPECT_EQ(status, probe.failed() ? ZELM_ERR_MEMORY : ZELM_OK);
    EXPECT_EQ(handle.calib == nullptr, probe.failed());
}

ZELM_NO_ALLOCATION_CASE(zelm2ViewGetCalibDataSize) {
    const Loaded loaded;
    EXPECT_EQ(probe.call([&] { return zelm2ViewGetCalibDataSize(loaded.calib); }), 1532);
}

ZELM_NO_ALLOCATION_CASE(zelm2ViewSaveCalibData) {
    const Loaded loaded;
    std::vector<unsigned char> bytes(1532);
    EXPECT_EQ(probe.call([&] { return zelm2ViewSaveCalibData(loaded.calib, bytes.data()); }), ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelm2ViewCalibClose) {
    Loaded loaded;
    probe.call([&] {
        zelm2ViewCalibClose(&loaded.calib);
        return 0;
    });
    EXPECT_EQ(loaded.calib, nullptr);
}

ZELM_NO_ALLOCATION_CASE(zelm2ViewGetCamHomMat) {
    const Loaded loaded;
    double out[18];
    EXPECT_EQ(probe.call([&] { return zelm2ViewGetCamHomMat(loaded.calib, 'L', out); }), ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelm2ViewGetCamFndMat) {
    const Loaded loaded;
    double out[18];
    EXPECT_EQ(probe.call([&] { return zelm2ViewGetCamFndMat(loaded.calib, out); }), ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelm2ViewGetCamIntParam) {
    const Loaded loaded;
    ZelmCameraIntrinsics out;
    EXPECT_EQ(probe.call([&] { return zelm2ViewGetCamIntParam(loaded.calib, 'R', &out); }), ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelm2ViewGetCamExtParam) {
    const Loaded loaded;
    ZelmCameraExtrinsics out;
    EXPECT_EQ(probe.call([&] { return zelm2ViewGetCamExtParam(loaded.calib, 'R', 2, &out); }), ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelm2ViewGetPtnNum) {
    const TinyView view;
    std::int32_t count = 0;
    EXPECT_EQ(probe.call([&] { return zelm2ViewGetPtnNum(view.reader.handle.calib, 'L', 1, &count); }), ZELM_OK);
    EXPECT_EQ(count, 2);
}

ZELM_NO_ALLOCATION_CASE(zelm2ViewGetPattern) {
    const TinyView view;
    Point2d points[2];
    EXPECT_EQ(probe.call([&] { return zelm2ViewGetPattern(view.reader.handle.calib, 'L', 1, points); }), ZELM_OK);
    EXPECT_EQ(points[1].y, 4);
}

ZELM_FAULT_CASE(zelm2ViewReadPtnImg) {
    const TinyView view;
    const unsigned char* const images[] = {tinyImage().data(), nullptr};
    const auto status =
        probe.call([&] { return zelm2ViewReadPtnImg(view.reader.handle.get(), 1, images, nullptr, nullptr); });
    view.expectAfter(probe, status);
}

ZELM_FAULT_CASE(zelm2ViewReadPtnImg_vImagePlanar8) {
    bufferCase(probe, 1, zelm2ViewReadPtnImg_vImagePlanar8);
}

ZELM_FAULT_CASE(zelm2ViewReadPtnImg_vImageARGB8888) {
    bufferCase(probe, 4, zelm2ViewReadPtnImg_vImageARGB8888);
}

ZELM_FAULT_CASE(zelm2ViewCalibCameraParam) {
    static const auto rig = render::exampleRig();
    // Moderate turns: the closed form of a rotation vector, see below, is coarse near half a turn.
    render::ViewRange range;
    range.maxRollDegrees = 60.0;
    static const auto poses = render::makeViewPoses(tinyPlate(), rig, 3, 3, range);
    const auto pattern = tinyPattern();
    const auto cameras = cameraPair(0, 0, rig.left.width, rig.left.height);
    Handle handle;
    ASSERT_EQ(zelm2ViewCalibOpen(3, &pattern, &cameras, &handle.calib), ZELM_OK);
    for (std::int32_t view = 0; view < 3; ++view) {
        const auto& pose = poses[static_cast<std::size_t>(view)];
        fillView(handle.calib, Camera::left, view, tinyPlate(), rig.left, pose);
        fillView(handle.calib, Camera::right, view, tinyPlate(), rig.right, render::compose(rig.rightFromLeft, pose));
    }
    Zelm2ViewCalibResult result{};
    const auto status = probe.call([&] { return zelm2ViewCalibCameraParam(handle.calib, &result); });
    if (status != ZELM_OK) {
        ASSERT_TRUE(probe.failed());
        // The refinement of a homography does not tell want of memory from a singular system.
        EXPECT_TRUE(status == ZELM_ERR_MEMORY || status == ZELM_ERR_CALIB_HOMOGRAPHY) << status;
        return;
    }
    // Also when the decomposition behind a rotation vector failed, which has a closed form to fall back on.
    for (const char camera : {'L', 'R'}) {
        ZelmCameraIntrinsics found;
        ASSERT_EQ(zelm2ViewGetCamIntParam(handle.calib, camera, &found), ZELM_OK);
        EXPECT_NEAR(found.alpha, camera == 'L' ? rig.left.fx : rig.right.fx, 1e-3);
    }
}
