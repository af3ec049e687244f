// Reading the pattern from platform buffers: the same dots as from the plain image, and the refusals.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>

#include "faultAlloc.h"
#include "patternReading.h"

namespace zelmtest {
namespace {

vImage_Buffer bufferOf(Pixels* pixels, std::size_t rowBytes) {
    return {pixels->data(), 480, 640, rowBytes};
}

// The image with rows of another length, the padding filled with a byte that would spoil any reading.
Pixels strided(const Pixels& pixels, std::size_t rowBytes) {
    Pixels rows(rowBytes * 480, 0x5A);
    for (std::size_t y = 0; y < 480; ++y) {
        std::copy_n(&pixels[y * 640], 640, &rows[y * rowBytes]);
    }
    return rows;
}

Pixels argb(const Pixels& pixels, std::size_t rowBytes) {
    Pixels rows(rowBytes * 480, 0x5A);
    for (std::size_t y = 0; y < 480; ++y) {
        for (std::size_t x = 0; x < 640; ++x) {
            unsigned char* const pixel = &rows[y * rowBytes + 4 * x];
            const int gray = pixels[y * 640 + x];
            const int spread = std::min({gray, 255 - gray, 30});
            pixel[0] = static_cast<unsigned char>(x);  // alpha is not read
            pixel[1] = static_cast<unsigned char>(gray + spread);
            pixel[2] = static_cast<unsigned char>(gray);
            pixel[3] = static_cast<unsigned char>(gray - spread);
        }
    }
    return rows;
}

class ReadBuffers : public ::testing::Test {
protected:
    render::RenderedView view = smallView(12.0, 20.0);
    Pixels& gray = view.image.pixels;
    Reader plain{describe(smallPlate())};
    Reader reader{describe(smallPlate())};

    void SetUp() override { ASSERT_EQ(plain.readBoth(gray), ZELM_OK); }
    void expectSameLists() {
        for (const char camera : {'L', 'R'}) {
            EXPECT_TRUE(Lists(reader.entry(camera)) == Lists(plain.entry(camera)));
        }
    }
};

TEST_F(ReadBuffers, Planar8ReadsAsThePlainImage) {
    for (const std::size_t rowBytes : {640U, 641U, 704U}) {
        Pixels rows = strided(gray, rowBytes);
        const auto buffer = bufferOf(&rows, rowBytes);
        ASSERT_EQ(zelm2ViewReadPtnImg_vImagePlanar8(reader.handle.calib, 0, &buffer, &buffer, nullptr, nullptr),
                  ZELM_OK);
        expectSameLists();
    }
}

TEST_F(ReadBuffers, DensePlanar8IsUsedInPlace) {
    const auto requests = [this](std::size_t rowBytes) {
        Pixels rows = strided(gray, rowBytes);
        const auto buffer = bufferOf(&rows, rowBytes);
        armAllocFault(0);
        EXPECT_EQ(zelm2ViewReadPtnImg_vImagePlanar8(reader.handle.calib, 0, &buffer, &buffer, nullptr, nullptr),
                  ZELM_OK);
        disarmAllocFault();
        return allocCounters().requests;
    };
    EXPECT_EQ(requests(656), requests(640) + 2);
}

TEST_F(ReadBuffers, Argb8888ReadsTheMeanOfItsChannels) {
    for (const std::size_t rowBytes : {2560U, 2577U}) {
        Pixels rows = argb(gray, rowBytes);
        const auto buffer = bufferOf(&rows, rowBytes);
        ASSERT_EQ(zelm2ViewReadPtnImg_vImageARGB8888(reader.handle.calib, 0, &buffer, &buffer, nullptr, nullptr),
                  ZELM_OK);
        expectSameLists();
    }
}

TEST_F(ReadBuffers, UnusableBuffersAreRefused) {
    Pixels rows = argb(gray, 2560);
    Zelm2ViewCalib* const calib = reader.handle.calib;
    const auto status = [&](const vImage_Buffer* left, const vImage_Buffer* right) {
        const auto planar = zelm2ViewReadPtnImg_vImagePlanar8(calib, 0, left, right, nullptr, nullptr);
        const auto color = zelm2ViewReadPtnImg_vImageARGB8888(calib, 0, left, right, nullptr, nullptr);
        EXPECT_EQ(planar, color);
        return planar;
    };
    const auto good = bufferOf(&rows, 2560);
    EXPECT_EQ(status(nullptr, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(status(&good, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(status(nullptr, &good), ZELM_ERR_PARAM);
    for (auto bad : {vImage_Buffer{nullptr, 480, 640, 2560}, vImage_Buffer{rows.data(), 479, 640, 2560},
                     vImage_Buffer{rows.data(), 480, 639, 2560}, vImage_Buffer{rows.data(), 480, 640, 639},
                     vImage_Buffer{rows.data(), 480, 640, 0}}) {
        EXPECT_EQ(status(&bad, &good), ZELM_ERR_PARAM);
        EXPECT_EQ(status(&good, &bad), ZELM_ERR_PARAM);
    }
    const vImage_Buffer narrow = {rows.data(), 480, 640, 2559};
    EXPECT_EQ(zelm2ViewReadPtnImg_vImageARGB8888(calib, 0, &narrow, &good, nullptr, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewReadPtnImg_vImagePlanar8(nullptr, 0, &good, &good, nullptr, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewReadPtnImg_vImageARGB8888(calib, 3, &good, &good, nullptr, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewReadPtnImg_vImagePlanar8(calib, -1, &good, &good, nullptr, nullptr), ZELM_ERR_PARAM);
    expectEmpty(reader.entry('L'));
    expectEmpty(reader.entry('R'));
}

TEST_F(ReadBuffers, AbsentBufferOfAParallelCameraIsAccepted) {
    Reader mixed(describe(smallPlate()), cameraPair(2, 0));
    const auto buffer = bufferOf(&gray, 640);
    EXPECT_EQ(zelm2ViewReadPtnImg_vImagePlanar8(mixed.handle.calib, 0, nullptr, &buffer, nullptr, nullptr),
              ZELM_ERR_PARAM);
    EXPECT_EQ(zelm2ViewReadPtnImg_vImagePlanar8(mixed.handle.calib, 1, nullptr, &buffer, nullptr, nullptr), ZELM_OK);
    EXPECT_EQ(mixed.entry('R', 1).count, kSmallPlateDots);
    expectEmpty(mixed.entry('L', 1));
}

TEST_F(ReadBuffers, RegionsReachTheReader) {
    const ZelmRect region = {140, 90, 380, 300};
    const auto head = smallView();
    Pixels rows = head.image.pixels;
    const auto buffer = bufferOf(&rows, 640);
    ASSERT_EQ(zelm2ViewReadPtnImg_vImagePlanar8(reader.handle.calib, 0, &buffer, &buffer, nullptr, &region), ZELM_OK);
    EXPECT_EQ(reader.entry('L').count, kSmallPlateDots);
    EXPECT_EQ(reader.entry('R').count, kSmallPlateDots - 5);
}

}  // namespace
}  // namespace zelmtest
