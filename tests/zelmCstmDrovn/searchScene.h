// A template, an image and a search, with the memory that their records point into.
#ifndef ZELM_TEST_SEARCH_SCENE_H
#define ZELM_TEST_SEARCH_SCENE_H

#include <cmath>
#include <cstdint>
#include <vector>

#include "random.h"
#include "zelm/cstmSearch.h"

namespace zelmtest {

using Bytes = std::vector<std::uint8_t>;

// Gray values without structure, or smoothed by repeated means of 2 x 2 pixels.
inline Bytes randomTexture(Random& random, int width, int height, int smoothings = 0) {
    std::vector<double> values;
    for (int i = 0; i < width * height; ++i) {
        values.push_back(random.uniform(0.0, 255.0));
    }
    for (int pass = 0; pass < smoothings; ++pass) {
        const std::vector<double> from = values;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const auto at = [&](int c, int r) {
                    return from[static_cast<std::size_t>((r % height) * width + c % width)];
                };
                values[static_cast<std::size_t>(y * width + x)] =
                    0.25 * (at(x, y) + at(x + 1, y) + at(x, y + 1) + at(x + 1, y + 1));
            }
        }
    }
    Bytes texture;
    const double gain = 1.0 + smoothings;
    for (const double value : values) {
        texture.push_back(static_cast<std::uint8_t>(std::fmin(255.0, std::fmax(0.0, 128.0 + gain * (value - 128.0)))));
    }
    return texture;
}

struct SearchScene {
    int width;
    int height;
    int tmplWidth;
    int tmplHeight;
    Bytes pixels;
    Bytes mask;  // empty: none
    Bytes tmplPixels;
    Bytes tmplMask;  // empty: none
    ZelmCstmRefImg ref{};
    ZelmCstmSearchPrm prm{};
    std::int32_t count = -77;
    std::vector<ZelmCstmMatch> matches;

    SearchScene(int w, int h, int tw, int th) : width(w), height(h), tmplWidth(tw), tmplHeight(th) {
        pixels.assign(static_cast<std::size_t>(w * h), 0);
        tmplPixels.assign(static_cast<std::size_t>(tw * th), 0);
        ref.anchorX = tw / 2;
        ref.anchorY = th / 2;
        prm.roiWidth = w;
        prm.roiHeight = h;
        prm.epiLine = {0.0, 1.0, -static_cast<double>(h / 2)};
        prm.maxResults = 8;
        prm.mode = ZELM_CSTM_FULL;
    }
    [[nodiscard]] std::uint8_t& pixel(int x, int y) { return pixels[static_cast<std::size_t>(y * width + x)]; }
    // Cuts the template from the image, its anchor at (x, y).
    void cutTemplate(int x, int y) {
        for (int r = 0; r < tmplHeight; ++r) {
            for (int c = 0; c < tmplWidth; ++c) {
                tmplPixels[static_cast<std::size_t>(r * tmplWidth + c)] =
                    pixel(x - tmplWidth / 2 + c, y - tmplHeight / 2 + r);
            }
        }
    }
    // Lays the template into the image, its anchor at (x, y).
    void pasteTemplate(int x, int y) {
        for (int r = 0; r < tmplHeight; ++r) {
            for (int c = 0; c < tmplWidth; ++c) {
                pixel(x - tmplWidth / 2 + c, y - tmplHeight / 2 + r) =
                    tmplPixels[static_cast<std::size_t>(r * tmplWidth + c)];
            }
        }
    }
    // Lets the records point at the memory and computes the template's statistics.
    std::int32_t prepare() {
        ref.width = tmplWidth;
        ref.height = tmplHeight;
        ref.pixels = tmplPixels.data();
        ref.mask = tmplMask.empty() ? nullptr : tmplMask.data();
        prm.width = width;
        prm.height = height;
        prm.pixels = pixels.data();
        prm.mask = mask.empty() ? nullptr : mask.data();
        return zelmCstmDrovnCalcBasicStatisticsOfRefImg(&ref);
    }
    // matches: what is written, and one entry more to see that it is left alone.
    std::int32_t search() {
        count = -77;
        matches.assign(static_cast<std::size_t>(prm.maxResults > 0 ? prm.maxResults : 0) + 1, {77.0, 77.0, 77.0});
        return zelmCstmDrovnSearchOnEpiLine(&ref, &prm, &count, matches.data());
    }
    std::int32_t run() {
        prepare();
        return search();
    }
};

// A smooth texture, the template cut from it at (x, y).
inline SearchScene texturedScene(std::uint64_t seed, int x, int y, int smoothings = 2) {
    SearchScene scene(80, 60, 15, 15);
    Random random(seed);
    scene.pixels = randomTexture(random, 80, 60, smoothings);
    scene.cutTemplate(x, y);
    scene.prm.epiLine = {0.0, 1.0, -static_cast<double>(y)};
    return scene;
}

}  // namespace zelmtest

#endif
