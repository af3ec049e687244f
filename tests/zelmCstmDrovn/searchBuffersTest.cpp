// The forms that take platform buffers: rows of any length, and what of the records they read.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "guardedBuffer.h"
#include "searchScene.h"

namespace {

using namespace zelmtest;

// Pixels in rows of their own length, with guard pages behind the last pixel of the last row.
class PaddedPlane {
public:
    PaddedPlane(const Bytes& pixels, int width, int height, int padding)
        : rowBytes(static_cast<std::size_t>(width + padding)),
          memory(rowBytes * static_cast<std::size_t>(height) - static_cast<std::size_t>(padding), Guard::atEnd) {
        std::memset(memory.data(), 0xA5, memory.size());
        for (int y = 0; y < height; ++y) {
            std::memcpy(memory.data() + static_cast<std::size_t>(y) * rowBytes, pixels.data() + y * width,
                        static_cast<std::size_t>(width));
        }
        buffer = {memory.data(), static_cast<std::size_t>(height), static_cast<std::size_t>(width), rowBytes};
    }
    vImage_Buffer buffer{};

private:
    std::size_t rowBytes;
    GuardedBuffer<std::uint8_t> memory;
};

// A record whose image fields would end the program if they were read.
ZelmCstmRefImg withoutImage(const ZelmCstmRefImg& ref) {
    ZelmCstmRefImg bare = ref;
    bare.width = -5;
    bare.height = -6;
    bare.pixels = bare.mask = reinterpret_cast<std::uint8_t*>(8);
    return bare;
}

ZelmCstmSearchPrm withoutImage(const ZelmCstmSearchPrm& prm) {
    ZelmCstmSearchPrm bare = prm;
    bare.width = -5;
    bare.height = -6;
    bare.pixels = bare.mask = reinterpret_cast<std::uint8_t*>(8);
    return bare;
}

TEST(SearchBuffers, StatisticsAreThoseOfTheDenseTemplate) {
    Random random(4);
    for (int round = 0; round < 40; ++round) {
        SearchScene scene(40, 40, 11, 9);
        scene.tmplPixels = randomTexture(random, 11, 9);
        if (round % 2 == 1) {
            scene.tmplMask = randomTexture(random, 11, 9);
            scene.tmplMask[0] = 1;
            scene.tmplMask[7] = 0;
        }
        ASSERT_EQ(scene.prepare(), ZELM_OK);
        const PaddedPlane tmpl(scene.tmplPixels, 11, 9, random.integer(0, 9));
        const PaddedPlane mask(round % 2 == 1 ? scene.tmplMask : scene.tmplPixels, 11, 9, random.integer(0, 9));
        ZelmCstmRefImg ref = withoutImage(scene.ref);
        std::memset(ref.mean, 0, sizeof ref.mean);
        std::memset(ref.sigma, 0, sizeof ref.sigma);
        ASSERT_EQ(zelmCstmDrovnCalcBasicStatisticsOfRefImg_vImagePlanar8(&tmpl.buffer,
                                                                         round % 2 == 1 ? &mask.buffer : nullptr, &ref),
                  ZELM_OK);
        EXPECT_EQ(std::memcmp(ref.mean, scene.ref.mean, sizeof ref.mean), 0);
        EXPECT_EQ(std::memcmp(ref.sigma, scene.ref.sigma, sizeof ref.sigma), 0);
        EXPECT_EQ(ref.width, -5);
    }
}

TEST(SearchBuffers, StatisticsRefuseBadBuffers) {
    SearchScene scene(40, 40, 11, 9);
    scene.prepare();
    const vImage_Buffer good{scene.tmplPixels.data(), 9, 11, 11};
    ZelmCstmRefImg ref = scene.ref;
    const auto call = [&](const vImage_Buffer* image, const vImage_Buffer* mask, ZelmCstmRefImg* out) {
        return zelmCstmDrovnCalcBasicStatisticsOfRefImg_vImagePlanar8(image, mask, out);
    };
    EXPECT_EQ(call(nullptr, nullptr, &ref), ZELM_ERR_PARAM);
    EXPECT_EQ(call(&good, nullptr, nullptr), ZELM_ERR_PARAM);
    vImage_Buffer bad = good;
    bad.data = nullptr;
    EXPECT_EQ(call(&bad, nullptr, &ref), ZELM_ERR_PARAM);
    EXPECT_EQ(call(&good, &bad, &ref), ZELM_ERR_PARAM);
    const auto tooLarge = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()) + 1;
    for (std::size_t vImage_Buffer::*field :
         {&vImage_Buffer::width, &vImage_Buffer::height, &vImage_Buffer::rowBytes}) {
        bad = good;
        bad.*field = tooLarge;
        EXPECT_EQ(call(&bad, nullptr, &ref), ZELM_ERR_PARAM);
    }
    for (std::size_t vImage_Buffer::*field : {&vImage_Buffer::width, &vImage_Buffer::height}) {
        bad = good;
        bad.*field -= 1;
        EXPECT_EQ(call(&good, &bad, &ref), ZELM_ERR_PARAM);
        bad.*field = 0;
        EXPECT_EQ(call(&bad, nullptr, &ref), ZELM_ERR_DEGENERATE);
    }
}

// Every combination of masks and modes, with four row lengths that differ. The search mask's rows may be longer or
// shorter than the image's; windows are found by each plane's own rows.
TEST(SearchBuffers, SearchFindsWhatTheDenseFormFinds) {
    Random random(6);
    int compared = 0;
    for (int round = 0; round < 240; ++round) {
        SearchScene scene = texturedScene(100 + static_cast<std::uint64_t>(round), 31, 28);
        const bool tmplMasked = (round & 1) != 0;
        const bool masked = (round & 2) != 0;
        scene.prm.mode = round / 4 % 3;
        const double angle = random.uniform(-1.6, 1.6);
        scene.prm.epiLine = {-std::sin(angle), std::cos(angle), 31.0 * std::sin(angle) - 28.0 * std::cos(angle)};
        scene.prm.minDistance = 5;
        if (tmplMasked) {
            scene.tmplMask = randomTexture(random, 15, 15);
            scene.tmplMask[9] = 0;
        }
        if (masked) {
            scene.mask = randomTexture(random, 80, 60);
            for (std::uint8_t& byte : scene.mask) {
                byte = byte < 200 ? byte : 0;
            }
        }
        ASSERT_EQ(scene.run(), ZELM_OK);
        const PaddedPlane tmpl(scene.tmplPixels, 15, 15, random.integer(0, 20));
        const PaddedPlane tmplMask(tmplMasked ? scene.tmplMask : scene.tmplPixels, 15, 15, random.integer(0, 20));
        const PaddedPlane image(scene.pixels, 80, 60, random.integer(0, 20));
        const PaddedPlane mask(masked ? scene.mask : scene.pixels, 80, 60, random.integer(0, 20));
        const ZelmCstmRefImg ref = withoutImage(scene.ref);
        const ZelmCstmSearchPrm prm = withoutImage(scene.prm);
        std::int32_t count = -1;
        std::vector<ZelmCstmMatch> matches(scene.matches.size(), {77.0, 77.0, 77.0});
        ASSERT_EQ(zelmCstmDrovnSearchOnEpiLine_vImagePlanar8(
                      &ref, &tmpl.buffer, tmplMasked ? &tmplMask.buffer : nullptr, &prm, &image.buffer,
                      masked ? &mask.buffer : nullptr, &count, matches.data()),
                  ZELM_OK);
        EXPECT_EQ(count, scene.count);
        EXPECT_EQ(std::memcmp(matches.data(), scene.matches.data(), matches.size() * sizeof matches[0]), 0);
        compared += count;
    }
    EXPECT_GT(compared, 240);
}

TEST(SearchBuffers, SearchRefusesBadBuffersAndRecords) {
    SearchScene scene = texturedScene(5, 31, 28);
    scene.prepare();
    const vImage_Buffer tmpl{scene.tmplPixels.data(), 15, 15, 15};
    const vImage_Buffer image{scene.pixels.data(), 60, 80, 80};
    ZelmCstmMatch match{77.0, 77.0, 77.0};
    std::int32_t count = -77;
    const auto call = [&](const ZelmCstmRefImg* ref, const vImage_Buffer* t, const vImage_Buffer* tMask,
                          const ZelmCstmSearchPrm* prm, const vImage_Buffer* i, const vImage_Buffer* iMask,
                          std::int32_t* n, ZelmCstmMatch* out) {
        return zelmCstmDrovnSearchOnEpiLine_vImagePlanar8(ref, t, tMask, prm, i, iMask, n, out);
    };
    const ZelmCstmRefImg& r = scene.ref;
    ZelmCstmSearchPrm p = scene.prm;
    p.maxResults = 1;
    EXPECT_EQ(call(nullptr, &tmpl, nullptr, &p, &image, nullptr, &count, &match), ZELM_ERR_PARAM);
    EXPECT_EQ(call(&r, nullptr, nullptr, &p, &image, nullptr, &count, &match), ZELM_ERR_PARAM);
    EXPECT_EQ(call(&r, &tmpl, nullptr, nullptr, &image, nullptr, &count, &match), ZELM_ERR_PARAM);
    EXPECT_EQ(call(&r, &tmpl, nullptr, &p, nullptr, nullptr, &count, &match), ZELM_ERR_PARAM);
    EXPECT_EQ(call(&r, &tmpl, nullptr, &p, &image, nullptr, nullptr, &match), ZELM_ERR_PARAM);
    EXPECT_EQ(call(&r, &tmpl, nullptr, &p, &image, nullptr, &count, nullptr), ZELM_ERR_PARAM);
    for (const vImage_Buffer* good : {&tmpl, &image}) {
        const bool isTmpl = good == &tmpl;
        for (std::size_t vImage_Buffer::*field : {&vImage_Buffer::width, &vImage_Buffer::height}) {
            vImage_Buffer otherSize = *good;
            otherSize.*field -= 1;
            EXPECT_EQ(call(&r, &tmpl, isTmpl ? &otherSize : nullptr, &p, &image, isTmpl ? nullptr : &otherSize, &count,
                           &match),
                      ZELM_ERR_PARAM);
            vImage_Buffer empty = *good;
            empty.*field = 0;
            EXPECT_EQ(call(&r, isTmpl ? &empty : &tmpl, nullptr, &p, isTmpl ? &image : &empty, nullptr, &count, &match),
                      ZELM_ERR_PARAM);
        }
        vImage_Buffer noData = *good;
        noData.data = nullptr;
        EXPECT_EQ(call(&r, isTmpl ? &noData : &tmpl, nullptr, &p, isTmpl ? &image : &noData, nullptr, &count, &match),
                  ZELM_ERR_PARAM);
        EXPECT_EQ(call(&r, &tmpl, isTmpl ? &noData : nullptr, &p, &image, isTmpl ? nullptr : &noData, &count, &match),
                  ZELM_ERR_PARAM);
    }
    ZelmCstmSearchPrm wide = p;
    wide.roiWidth = 81;  // beyond the buffer
    EXPECT_EQ(call(&r, &tmpl, nullptr, &wide, &image, nullptr, &count, &match), ZELM_ERR_PARAM);
    ZelmCstmRefImg outside = r;
    outside.anchorX = 15.0;
    EXPECT_EQ(call(&outside, &tmpl, nullptr, &p, &image, nullptr, &count, &match), ZELM_ERR_PARAM);
    EXPECT_EQ(count, -77);
    EXPECT_EQ(match.score, 77.0);
    EXPECT_EQ(call(&r, &tmpl, nullptr, &p, &image, nullptr, &count, &match), ZELM_OK);
    EXPECT_EQ(count, 1);
}

}  // namespace
