#include "grayHistogram.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>

#include "workBuffer.h"

namespace zelm {
namespace {

constexpr ptrdiff_t kLanes = 4;
constexpr size_t kPairs = static_cast<size_t>(kGrayLevels) * kGrayLevels;
constexpr int kPairBits = 16;
constexpr uint64_t kPairMask = kPairs - 1;
constexpr ptrdiff_t kPairsOfWord = 4;
constexpr ptrdiff_t kWordBytes = sizeof(uint64_t);
// Pixels from which on a table of pairs is worth the time to clear it and to add it up.
constexpr int64_t kMinPixelsOfPairs = int64_t{1} << 18;

using Levels = uint32_t[kGrayLevels];

// Several tables side by side: neighbouring pixels are mostly equal, and one table would wait for its own last store.
void addRow(const uint8_t* row, ptrdiff_t width, Levels (&tables)[kLanes]) {
    ptrdiff_t x = 0;
    for (; x + kLanes <= width; x += kLanes) {
        ++tables[0][row[x]];
        ++tables[1][row[x + 1]];
        ++tables[2][row[x + 2]];
        ++tables[3][row[x + 3]];
    }
    for (; x < width; ++x) {
        ++tables[0][row[x]];
    }
}

// The pixels in pairs: the processor is held up by the counting, which this halves. Four equal pairs, as on even
// ground, are counted at once, and do not wait for one another.
void addRowOfPairs(const uint8_t* row, ptrdiff_t width, uint32_t* pairs, Levels& levels) {
    ptrdiff_t x = 0;
    for (; x + kWordBytes <= width; x += kWordBytes) {
        uint64_t word;
        std::memcpy(&word, row + x, sizeof word);
        if (word == std::rotl(word, kPairBits)) {
            pairs[word & kPairMask] += kPairsOfWord;
            continue;
        }
        ++pairs[word & kPairMask];
        ++pairs[word >> kPairBits & kPairMask];
        ++pairs[word >> 2 * kPairBits & kPairMask];
        ++pairs[word >> 3 * kPairBits];
    }
    for (; x < width; ++x) {
        ++levels[row[x]];
    }
}

// Each pair counts for both of its levels.
void addPairs(const uint32_t* pairs, Levels& levels) {
    for (size_t second = 0; second < kGrayLevels; ++second) {
        const uint32_t* const row = pairs + second * kGrayLevels;
        uint32_t sum = 0;
        for (size_t first = 0; first < kGrayLevels; ++first) {
            levels[first] += row[first];
            sum += row[first];
        }
        levels[second] += sum;
    }
}

}  // namespace

void grayHistogram(const ZelmImage& image, const ZelmRect& region, uint32_t (&histogram)[kGrayLevels]) {
    std::fill_n(histogram, kGrayLevels, 0U);
    if (region.width < 1 || region.height < 1) {
        return;
    }
    const auto rowAt = [&](ptrdiff_t r) {
        return image.pixels + (region.y + r) * static_cast<ptrdiff_t>(image.width) + region.x;
    };
    if (int64_t{region.width} * region.height >= kMinPixelsOfPairs) {
        // Without memory for it the slower way is taken.
        if (WorkBuffer<uint32_t> pairs(kPairs); pairs.ok()) {
            std::fill_n(pairs.data(), kPairs, 0U);
            for (ptrdiff_t r = 0; r < region.height; ++r) {
                addRowOfPairs(rowAt(r), region.width, pairs.data(), histogram);
            }
            addPairs(pairs.data(), histogram);
            return;
        }
    }
    Levels tables[kLanes] = {};
    for (ptrdiff_t r = 0; r < region.height; ++r) {
        addRow(rowAt(r), region.width, tables);
    }
    for (size_t k = 0; k < kGrayLevels; ++k) {
        histogram[k] = tables[0][k] + tables[1][k] + tables[2][k] + tables[3][k];
    }
}

}  // namespace zelm
