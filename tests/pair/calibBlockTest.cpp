// The calibration data block and the work block, byte by byte. The offsets are written out here once more, on purpose:
// saved files must stay readable.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <vector>

#include "calibBlock.h"
#include "calibObject.h"
#include "stereoFixtures.h"

namespace zelmtest {
namespace {

template <class T>
T at(const unsigned char* bytes, std::size_t offset) {
    T value;
    std::memcpy(&value, bytes + offset, sizeof(T));
    return value;
}

TEST(CalibBlock, OffsetsAreThoseOfTheFile) {
    namespace block = zelm::block;
    using zelm::Camera;
    EXPECT_EQ(block::kViews, 0U);
    EXPECT_EQ(block::kCameras, 4U);
    EXPECT_EQ(block::rectifying(Camera::left), 28U);
    EXPECT_EQ(block::rectifying(Camera::right), 172U);
    EXPECT_EQ(block::kFundamental, 316U);
    EXPECT_EQ(block::kFundamental + offsetof(zelm::FundamentalPair, Ft), 388U);
    EXPECT_EQ(block::intrinsics(Camera::left), 460U);
    EXPECT_EQ(block::intrinsics(Camera::right), 636U);
    for (const std::int32_t n : {3, 12}) {
        const auto views = static_cast<std::size_t>(n);
        EXPECT_EQ(block::pose(n, Camera::left, 0), 812U);
        EXPECT_EQ(block::pose(n, Camera::left, 2), 812U + 240U);
        EXPECT_EQ(block::pose(n, Camera::right, 0), 812U + views * 120U);
        EXPECT_EQ(block::pose(n, Camera::right, n - 1) + 120U, static_cast<std::size_t>(block::size(n)));
        EXPECT_EQ(block::size(n), n * 240 + 812);
    }
}

TEST(CalibBlock, NumbersAreLittleEndianAndPacked) {
    unsigned char bytes[16] = {};
    zelm::block::write(bytes, 3, std::int32_t{0x01020304});
    const unsigned char expected[] = {0, 0, 0, 4, 3, 2, 1, 0};
    EXPECT_EQ(std::memcmp(bytes, expected, sizeof(expected)), 0);
    EXPECT_EQ(zelm::block::read<std::int32_t>(bytes, 3), 0x01020304);
    zelm::block::write(bytes, 5, 1.0);  // 0x3FF0000000000000
    EXPECT_EQ(bytes[12], 0x3F);
    EXPECT_EQ(bytes[11], 0xF0);
    EXPECT_EQ(zelm::block::read<double>(bytes, 5), 1.0);
}

TEST(CalibBlock, OpenWritesViewsAndCamerasIntoTheFirst28Bytes) {
    const auto pattern = plainPattern();
    const Zelm2ViewCameraDesc cameras = {1, 1280, 960, 2, 640, 480};
    Handle handle;
    ASSERT_EQ(zelm2ViewCalibOpen(5, &pattern, &cameras, &handle.calib), ZELM_OK);
    std::vector<unsigned char> saved(static_cast<std::size_t>(zelm2ViewGetCalibDataSize(handle.calib)));
    ASSERT_EQ(zelm2ViewSaveCalibData(handle.calib, saved.data()), ZELM_OK);
    const std::int32_t expected[] = {5, 1, 1280, 960, 2, 640, 480};
    for (std::size_t i = 0; i < 7; ++i) {
        EXPECT_EQ(at<std::int32_t>(saved.data(), 4 * i), expected[i]) << i;
    }
}

TEST(CalibWork, HoldsFlagViewsPatternAndEmptyEntries) {
    auto pattern = plainPattern();
    pattern.d4 = 9.0;
    pattern.d5 = 10.5;
    pattern.reserved76 = 76;
    pattern.reserved92 = 92;
    const auto cameras = cameraPair(0, 0);
    Handle handle;
    ASSERT_EQ(zelm2ViewCalibOpen(4, &pattern, &cameras, &handle.calib), ZELM_OK);
    const unsigned char* const work = handle.calib->work;
    EXPECT_EQ(at<std::int32_t>(work, 0), 0);
    EXPECT_EQ(at<std::int32_t>(work, 4), 4);
    auto expected = pattern;
    expected.d0 = 120.0 + 9.0 / 3.0;
    expected.d1 = 100.0 + 10.5 / 3.0;
    EXPECT_EQ(std::memcmp(work + 8, &expected, 96), 0);
    for (std::size_t i = 0; i < 8; ++i) {
        const auto entry = at<Zelm2ViewPtnEntry>(work, 104 + i * sizeof(Zelm2ViewPtnEntry));
        EXPECT_EQ(entry.count, 0);
        EXPECT_EQ(entry.plane, nullptr);
        EXPECT_EQ(entry.image, nullptr);
    }
}

TEST(CalibWork, ExtentsGrowInTheCopyAlone) {
    auto pattern = plainPattern();
    pattern.d0 = 101.7;
    pattern.d1 = 88.3;
    pattern.d4 = 7.0;
    pattern.d5 = 11.0;
    const auto original = pattern;
    const auto cameras = cameraPair(0, 0);
    Handle handle;
    ASSERT_EQ(zelm2ViewCalibOpen(3, &pattern, &cameras, &handle.calib), ZELM_OK);
    EXPECT_EQ(std::memcmp(&pattern, &original, sizeof(pattern)), 0);
    EXPECT_EQ(at<double>(handle.calib->work, 8), 101.7 + 7.0 / 3.0);
    EXPECT_EQ(at<double>(handle.calib->work, 16), 88.3 + 11.0 / 3.0);
}

TEST(CalibWork, LeftEntriesComeFirst) {
    const auto pattern = plainPattern();
    const auto cameras = cameraPair(0, 0);
    Handle handle;
    ASSERT_EQ(zelm2ViewCalibOpen(4, &pattern, &cameras, &handle.calib), ZELM_OK);
    zelm::Zelm2ViewWork* const work = zelm::openedWork(*handle.calib);
    auto* const first = reinterpret_cast<unsigned char*>(zelm::entriesOf(work, zelm::Camera::left));
    auto* const right = reinterpret_cast<unsigned char*>(zelm::entriesOf(work, zelm::Camera::right));
    EXPECT_EQ(first, handle.calib->work + 104);
    EXPECT_EQ(right, first + 4 * sizeof(Zelm2ViewPtnEntry));
}

TEST(CalibWork, OfALoadedObjectIsASingleOne) {
    std::vector<unsigned char> bytes(1532);
    Handle handle;
    ASSERT_EQ(zelm2ViewLoadCalibData(1532, bytes.data(), &handle.calib), ZELM_OK);
    EXPECT_EQ(at<std::int32_t>(handle.calib->work, 0), 1);
    EXPECT_EQ(zelm::openedWork(*handle.calib), nullptr);
}

}  // namespace
}  // namespace zelmtest
