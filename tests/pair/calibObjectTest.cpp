// The stereo calibration object: opening, saving, loading, closing and the accessors. The blocks' contents are checked
// byte by byte in calibBlockTest.cpp; what reading and calibration put into them in patternReaderTest.cpp and
// stereoCalibTest.cpp.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "calibObject.h"
#include "faultAlloc.h"
#include "random.h"
#include "stereoFixtures.h"

namespace zelmtest {
namespace {

std::int32_t open(Handle* handle, std::int32_t views = 3) {
    const auto pattern = plainPattern();
    const auto cameras = cameraPair(0, 0);
    return zelm2ViewCalibOpen(views, &pattern, &cameras, &handle->calib);
}

// A block of n views whose every byte is random, apart from n itself.
std::vector<unsigned char> randomBlock(std::int32_t n, std::uint64_t seed) {
    Random random(seed);
    std::vector<unsigned char> bytes(static_cast<std::size_t>(n) * 240 + 812);
    for (auto& byte : bytes) {
        byte = static_cast<unsigned char>(random.bits());
    }
    std::memcpy(bytes.data(), &n, sizeof(n));
    return bytes;
}

TEST(CalibOpen, TwoViewsAreRefused) {
    Handle handle;
    EXPECT_EQ(open(&handle, 2), ZELM_ERR_PARAM);
    EXPECT_EQ(open(&handle, -1), ZELM_ERR_PARAM);
    EXPECT_EQ(handle.calib, nullptr);
}

TEST(CalibOpen, NullArgumentsAreRefused) {
    const auto pattern = plainPattern();
    const auto cameras = cameraPair(0, 0);
    Handle handle;
    EXPECT_EQ(zelm2ViewCalibOpen(3, nullptr, &cameras, &handle.calib), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewCalibOpen(3, &pattern, nullptr, &handle.calib), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewCalibOpen(3, &pattern, &cameras, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(handle.calib, nullptr);
}

TEST(CalibOpen, LiveHandleIsRefusedUntilItIsClosed) {
    Handle handle;
    ASSERT_EQ(open(&handle), ZELM_OK);
    Zelm2ViewCalib* const first = handle.calib;
    EXPECT_EQ(open(&handle), ZELM_ERR_PARAM);
    EXPECT_EQ(handle.calib, first);
    zelm2ViewCalibClose(&handle.calib);
    EXPECT_EQ(open(&handle), ZELM_OK);
}

TEST(CalibOpen, RefusalAllocatesNothing) {
    armAllocFault(0);
    Handle handle;
    EXPECT_EQ(open(&handle, 2), ZELM_ERR_PARAM);
    auto pattern = plainPattern();
    pattern.polarity = 2;
    const auto cameras = cameraPair(0, 0);
    EXPECT_EQ(zelm2ViewCalibOpen(3, &pattern, &cameras, &handle.calib), ZELM_ERR_PARAM);
    EXPECT_EQ(allocCounters().requests, 0);
    disarmAllocFault();
}

TEST(CalibOpen, EachPatternLengthMustBePositive) {
    const auto cameras = cameraPair(0, 0);
    double Zelm2ViewPatternDesc::*const lengths[] = {
        &Zelm2ViewPatternDesc::d0, &Zelm2ViewPatternDesc::d1, &Zelm2ViewPatternDesc::d2, &Zelm2ViewPatternDesc::d3,
        &Zelm2ViewPatternDesc::d4, &Zelm2ViewPatternDesc::d5, &Zelm2ViewPatternDesc::d6, &Zelm2ViewPatternDesc::d7};
    for (const auto length : lengths) {
        for (const double bad : {0.0, -0.0, -1.0, -HUGE_VAL}) {
            auto pattern = plainPattern();
            pattern.*length = bad;
            Handle handle;
            EXPECT_EQ(zelm2ViewCalibOpen(3, &pattern, &cameras, &handle.calib), ZELM_ERR_PARAM) << bad;
        }
    }
}

TEST(CalibOpen, NanLengthsPassDeliberately) {
    const auto cameras = cameraPair(0, 0);
    auto pattern = plainPattern();
    pattern.d0 = pattern.d1 = pattern.d2 = pattern.d3 = std::numeric_limits<double>::quiet_NaN();
    pattern.d4 = pattern.d5 = pattern.d6 = pattern.d7 = std::numeric_limits<double>::quiet_NaN();
    Handle handle;
    EXPECT_EQ(zelm2ViewCalibOpen(3, &pattern, &cameras, &handle.calib), ZELM_OK);
}

TEST(CalibOpen, MarkerCountAndPolarityAreChecked) {
    const auto cameras = cameraPair(0, 0);
    const auto status = [&](std::int32_t markers, std::int32_t polarity) {
        auto pattern = plainPattern();
        pattern.markers = markers;
        pattern.polarity = polarity;
        Handle handle;
        return zelm2ViewCalibOpen(3, &pattern, &cameras, &handle.calib);
    };
    EXPECT_EQ(status(0, 0), ZELM_ERR_PARAM);
    EXPECT_EQ(status(-3, 0), ZELM_ERR_PARAM);
    EXPECT_EQ(status(3, 2), ZELM_ERR_PARAM);
    EXPECT_EQ(status(3, -1), ZELM_ERR_PARAM);
    EXPECT_EQ(status(1, 1), ZELM_OK);
    EXPECT_EQ(status(3, 0), ZELM_OK);
}

TEST(CalibOpen, FieldsWithoutARuleMayHoldAnything) {
    const auto cameras = cameraPair(0, 0);
    auto pattern = plainPattern();
    pattern.minDotArea = std::numeric_limits<std::int32_t>::min();
    pattern.minDots = -7;
    pattern.minEdgeStrength = std::numeric_limits<double>::quiet_NaN();
    pattern.reserved76 = -1;
    pattern.reserved92 = -1;
    Handle handle;
    EXPECT_EQ(zelm2ViewCalibOpen(3, &pattern, &cameras, &handle.calib), ZELM_OK);
}

TEST(CalibOpen, CameraSizesAndModelsAreChecked) {
    const auto pattern = plainPattern();
    const auto status = [&](const Zelm2ViewCameraDesc& cameras) {
        Handle handle;
        return zelm2ViewCalibOpen(3, &pattern, &cameras, &handle.calib);
    };
    for (std::int32_t Zelm2ViewCameraDesc::*size :
         {&Zelm2ViewCameraDesc::leftWidth, &Zelm2ViewCameraDesc::leftHeight, &Zelm2ViewCameraDesc::rightWidth,
          &Zelm2ViewCameraDesc::rightHeight}) {
        for (const std::int32_t bad : {0, -1}) {
            auto cameras = cameraPair(0, 0);
            cameras.*size = bad;
            EXPECT_EQ(status(cameras), ZELM_ERR_PARAM);
        }
    }
    for (const std::int32_t bad : {3, -1, std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_EQ(status(cameraPair(bad, 0)), ZELM_ERR_PARAM) << bad;
        EXPECT_EQ(status(cameraPair(0, bad)), ZELM_ERR_PARAM) << bad;
    }
    for (std::int32_t model = 0; model <= 2; ++model) {
        EXPECT_EQ(status(cameraPair(model, 2 - model)), ZELM_OK);
    }
}

TEST(CalibOpen, ThreeViewsTakeBlocksOf1532And248Bytes) {
    armAllocFault(0);
    Handle handle;
    ASSERT_EQ(open(&handle), ZELM_OK);
    disarmAllocFault();
    EXPECT_EQ(zelm2ViewGetCalibDataSize(handle.calib), 1532);
    // 104 bytes and six entries, whose pointers make 248 bytes of it on a 64-bit processor.
    const std::size_t workBytes = 104 + 6 * sizeof(Zelm2ViewPtnEntry);
    EXPECT_EQ(sizeof(void*) == 8 ? workBytes : 248U, 248U);
    EXPECT_EQ(allocCounters().bytes, 2 * sizeof(void*) + 1532 + workBytes);
}

TEST(CalibOpen, MoreViewsThanTheSizeCanCountAreAMemoryFailure) {
    Handle handle;
    EXPECT_EQ(open(&handle, std::numeric_limits<std::int32_t>::max()), ZELM_ERR_MEMORY);
    EXPECT_EQ(handle.calib, nullptr);
}

TEST(CalibDataSize, NullHandleIsRefused) {
    EXPECT_EQ(zelm2ViewGetCalibDataSize(nullptr), ZELM_ERR_PARAM);
}

TEST(CalibDataSize, IsTwoHundredFortyBytesAViewPlus812) {
    for (const std::int32_t views : {3, 4, 12, 300}) {
        Handle handle;
        ASSERT_EQ(open(&handle, views), ZELM_OK);
        EXPECT_EQ(zelm2ViewGetCalibDataSize(handle.calib), views * 240 + 812);
    }
}

TEST(CalibDataSize, ViewCountOfAForeignBlockThatFitsNoSizeIsRefused) {
    auto bytes = randomBlock(3, 1);
    for (const std::int32_t n : {std::numeric_limits<std::int32_t>::max(), -4}) {
        std::memcpy(bytes.data(), &n, sizeof(n));
        Handle handle;
        ASSERT_EQ(zelm2ViewLoadCalibData(static_cast<std::int32_t>(bytes.size()), bytes.data(), &handle.calib),
                  ZELM_OK);
        unsigned char untouched = 7;
        EXPECT_EQ(zelm2ViewGetCalibDataSize(handle.calib), ZELM_ERR_PARAM);
        EXPECT_EQ(zelm2ViewSaveCalibData(handle.calib, &untouched), ZELM_ERR_PARAM);
        EXPECT_EQ(untouched, 7);
    }
}

TEST(CalibSave, NullArgumentsAreRefused) {
    Handle handle;
    ASSERT_EQ(open(&handle), ZELM_OK);
    std::vector<unsigned char> bytes(1532);
    EXPECT_EQ(zelm2ViewSaveCalibData(nullptr, bytes.data()), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewSaveCalibData(handle.calib, nullptr), ZELM_ERR_PARAM);
}

TEST(CalibSave, LoadedBlockComesBackByteForByte) {
    for (const std::int32_t n : {3, 5, 40}) {
        const auto bytes = randomBlock(n, static_cast<std::uint64_t>(n));
        Handle handle;
        ASSERT_EQ(zelm2ViewLoadCalibData(static_cast<std::int32_t>(bytes.size()), bytes.data(), &handle.calib),
                  ZELM_OK);
        ASSERT_EQ(zelm2ViewGetCalibDataSize(handle.calib), n * 240 + 812);
        std::vector<unsigned char> saved(bytes.size() + 8, 0xA5);
        ASSERT_EQ(zelm2ViewSaveCalibData(handle.calib, saved.data()), ZELM_OK);
        EXPECT_EQ(std::memcmp(saved.data(), bytes.data(), bytes.size()), 0);
        for (std::size_t i = bytes.size(); i < saved.size(); ++i) {
            EXPECT_EQ(saved[i], 0xA5);
        }
    }
}

TEST(CalibSave, UncalibratedBlockHoldsNoStrayMemory) {
    Handle handle;
    ASSERT_EQ(open(&handle), ZELM_OK);
    std::vector<unsigned char> saved(1532, 0xA5);
    ASSERT_EQ(zelm2ViewSaveCalibData(handle.calib, saved.data()), ZELM_OK);
    for (std::size_t i = 28; i < saved.size(); ++i) {
        ASSERT_EQ(saved[i], 0) << i;
    }
}

TEST(CalibLoad, BadArgumentsAreRefused) {
    const auto bytes = randomBlock(3, 2);
    Handle handle;
    EXPECT_EQ(zelm2ViewLoadCalibData(0, bytes.data(), &handle.calib), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewLoadCalibData(-1532, bytes.data(), &handle.calib), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewLoadCalibData(1532, nullptr, &handle.calib), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewLoadCalibData(1532, bytes.data(), nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(handle.calib, nullptr);
    ASSERT_EQ(zelm2ViewLoadCalibData(1532, bytes.data(), &handle.calib), ZELM_OK);
    Zelm2ViewCalib* const first = handle.calib;
    EXPECT_EQ(zelm2ViewLoadCalibData(1532, bytes.data(), &handle.calib), ZELM_ERR_PARAM);
    EXPECT_EQ(handle.calib, first);
}

TEST(CalibLoad, SizeIsTakenAtItsWordDeliberately) {
    const auto bytes = randomBlock(3, 3);
    for (const std::int32_t size : {1, 28, 1531, 1532}) {
        armAllocFault(0);
        Handle handle;
        EXPECT_EQ(zelm2ViewLoadCalibData(size, bytes.data(), &handle.calib), ZELM_OK);
        EXPECT_EQ(allocCounters().bytes, 2 * sizeof(void*) + static_cast<std::size_t>(size) + 4);
        disarmAllocFault();
        EXPECT_EQ(std::memcmp(handle.calib->data, bytes.data(), static_cast<std::size_t>(size)), 0);
    }
}

TEST(CalibLoad, LoadedObjectServesDataButNoPattern) {
    const std::int32_t n = 4;
    const auto bytes = randomBlock(n, 4);
    Handle handle;
    ASSERT_EQ(zelm2ViewLoadCalibData(static_cast<std::int32_t>(bytes.size()), bytes.data(), &handle.calib), ZELM_OK);
    double fundamental[18];
    ASSERT_EQ(zelm2ViewGetCamFndMat(handle.calib, fundamental), ZELM_OK);
    EXPECT_EQ(std::memcmp(fundamental, &bytes[316], 144), 0);
    for (const char camera : {'L', 'R'}) {
        const bool isLeft = camera == 'L';
        double rectifying[18];
        ASSERT_EQ(zelm2ViewGetCamHomMat(handle.calib, camera, rectifying), ZELM_OK);
        EXPECT_EQ(std::memcmp(rectifying, &bytes[isLeft ? 28 : 172], 144), 0);
        ZelmCameraIntrinsics intrinsics;
        ASSERT_EQ(zelm2ViewGetCamIntParam(handle.calib, camera, &intrinsics), ZELM_OK);
        EXPECT_EQ(std::memcmp(&intrinsics, &bytes[isLeft ? 460 : 636], 176), 0);
        for (std::int32_t view = 0; view < n; ++view) {
            ZelmCameraExtrinsics pose;
            ASSERT_EQ(zelm2ViewGetCamExtParam(handle.calib, camera, view, &pose), ZELM_OK);
            const auto offset = static_cast<std::size_t>(812 + ((isLeft ? 0 : n) + view) * 120);
            EXPECT_EQ(std::memcmp(&pose, &bytes[offset], 120), 0);
        }
        std::int32_t count = -5;
        Point2d point = {1, 2};
        EXPECT_EQ(zelm2ViewGetPtnNum(handle.calib, camera, 0, &count), ZELM_ERR_PARAM);
        EXPECT_EQ(zelm2ViewGetPattern(handle.calib, camera, 0, &point), ZELM_ERR_PARAM);
        EXPECT_EQ(count, -5);
        EXPECT_EQ(point.x, 1);
    }
}

TEST(CalibClose, NullHandleVariableDoesNothing) {
    zelm2ViewCalibClose(nullptr);
    Zelm2ViewCalib* calib = nullptr;
    zelm2ViewCalibClose(&calib);
    EXPECT_EQ(calib, nullptr);
}

TEST(CalibClose, SetsTheVariableToNullAndLeavesNothingAllocated) {
    const long before = allocCounters().live;
    Handle handle;
    ASSERT_EQ(open(&handle, 7), ZELM_OK);
    zelm2ViewCalibClose(&handle.calib);
    EXPECT_EQ(handle.calib, nullptr);
    const auto bytes = randomBlock(3, 5);
    ASSERT_EQ(zelm2ViewLoadCalibData(1532, bytes.data(), &handle.calib), ZELM_OK);
    zelm2ViewCalibClose(&handle.calib);
    EXPECT_EQ(handle.calib, nullptr);
    EXPECT_EQ(allocCounters().live, before);
}

TEST(CalibAccessors, OnlyTheLowByteNamesTheCamera) {
    const auto bytes = randomBlock(3, 6);
    Handle handle;
    ASSERT_EQ(zelm2ViewLoadCalibData(1532, bytes.data(), &handle.calib), ZELM_OK);
    double left[18];
    double out[18];
    ASSERT_EQ(zelm2ViewGetCamHomMat(handle.calib, 'L', left), ZELM_OK);
    for (const std::int32_t high : {0x100, 0x7FFFFF00, -256}) {
        ASSERT_EQ(zelm2ViewGetCamHomMat(handle.calib, high | 'L', out), ZELM_OK);
        EXPECT_EQ(std::memcmp(out, left, sizeof(out)), 0);
        EXPECT_EQ(zelm2ViewGetCamHomMat(handle.calib, high | 'R', out), ZELM_OK);
    }
}

TEST(CalibAccessors, OtherLettersAreRefused) {
    Handle handle;
    ASSERT_EQ(open(&handle), ZELM_OK);
    for (const std::int32_t camera : {int{'l'}, int{'r'}, int{'M'}, 0, -1, 'L' << 8}) {
        double matrices[18] = {3};
        ZelmCameraIntrinsics intrinsics = {};
        intrinsics.alpha = 3;
        ZelmCameraExtrinsics pose = {};
        pose.t[0] = 3;
        std::int32_t count = 3;
        Point2d point = {3, 3};
        EXPECT_EQ(zelm2ViewGetCamHomMat(handle.calib, camera, matrices), ZELM_ERR_PARAM);
        EXPECT_EQ(zelm2ViewGetCamIntParam(handle.calib, camera, &intrinsics), ZELM_ERR_PARAM);
        EXPECT_EQ(zelm2ViewGetCamExtParam(handle.calib, camera, 0, &pose), ZELM_ERR_PARAM);
        EXPECT_EQ(zelm2ViewGetPtnNum(handle.calib, camera, 0, &count), ZELM_ERR_PARAM);
        EXPECT_EQ(zelm2ViewGetPattern(handle.calib, camera, 0, &point), ZELM_ERR_PARAM);
        EXPECT_TRUE(matrices[0] == 3 && intrinsics.alpha == 3 && pose.t[0] == 3 && count == 3 && point.x == 3);
    }
}

TEST(CalibAccessors, ViewsOutsideTheObjectAreRefused) {
    Handle handle;
    ASSERT_EQ(open(&handle), ZELM_OK);
    for (const std::int32_t view : {3, -1, std::numeric_limits<std::int32_t>::max()}) {
        ZelmCameraExtrinsics pose;
        std::int32_t count = 3;
        Point2d point;
        EXPECT_EQ(zelm2ViewGetCamExtParam(handle.calib, 'L', view, &pose), ZELM_ERR_PARAM);
        EXPECT_EQ(zelm2ViewGetPtnNum(handle.calib, 'R', view, &count), ZELM_ERR_PARAM);
        EXPECT_EQ(zelm2ViewGetPattern(handle.calib, 'L', view, &point), ZELM_ERR_PARAM);
    }
}

TEST(CalibAccessors, NullArgumentsAreRefused) {
    Handle handle;
    ASSERT_EQ(open(&handle), ZELM_OK);
    double matrices[18];
    ZelmCameraIntrinsics intrinsics;
    ZelmCameraExtrinsics pose;
    std::int32_t count = 0;
    Point2d point;
    EXPECT_EQ(zelm2ViewGetCamHomMat(nullptr, 'L', matrices), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewGetCamHomMat(handle.calib, 'L', nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewGetCamFndMat(nullptr, matrices), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewGetCamFndMat(handle.calib, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewGetCamIntParam(nullptr, 'L', &intrinsics), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewGetCamIntParam(handle.calib, 'L', nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewGetCamExtParam(nullptr, 'L', 0, &pose), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewGetCamExtParam(handle.calib, 'L', 0, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewGetPtnNum(nullptr, 'L', 0, &count), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewGetPtnNum(handle.calib, 'L', 0, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewGetPattern(nullptr, 'L', 0, &point), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewGetPattern(handle.calib, 'L', 0, nullptr), ZELM_ERR_PARAM);
}

TEST(CalibAccessors, NothingIsCountedBeforeReading) {
    Handle handle;
    ASSERT_EQ(open(&handle), ZELM_OK);
    for (std::int32_t view = 0; view < 3; ++view) {
        for (const char camera : {'L', 'R'}) {
            std::int32_t count = -1;
            Point2d untouched = {5, 6};
            EXPECT_EQ(zelm2ViewGetPtnNum(handle.calib, camera, view, &count), ZELM_OK);
            EXPECT_EQ(count, 0);
            EXPECT_EQ(zelm2ViewGetPattern(handle.calib, camera, view, &untouched), ZELM_OK);
            EXPECT_EQ(untouched.x, 5);
        }
    }
}

TEST(CalibOpen, EachFailingAllocationLeavesNothing) {
    const auto bytes = randomBlock(3, 7);
    const long before = allocCounters().live;
    for (long k = 1; k <= 3; ++k) {
        Handle handle;
        armAllocFault(k);
        EXPECT_EQ(open(&handle), ZELM_ERR_MEMORY);
        EXPECT_EQ(handle.calib, nullptr);
        armAllocFault(k);
        EXPECT_EQ(zelm2ViewLoadCalibData(1532, bytes.data(), &handle.calib), ZELM_ERR_MEMORY);
        EXPECT_EQ(handle.calib, nullptr);
        disarmAllocFault();
        EXPECT_EQ(allocCounters().live, before);
    }
}

}  // namespace
}  // namespace zelmtest
