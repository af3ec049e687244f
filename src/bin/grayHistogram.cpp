#include "grayHistogram.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>

namespace zelm {
namespace {

constexpr size_t kTables = 4;
constexpr ptrdiff_t kWordBytes = sizeof(uint64_t);
constexpr int kByteBits = 8;
constexpr uint64_t kByteMask = 0xff;

using Tables = uint32_t[kTables][kGrayLevels];

// Several tables side by side: neighbouring pixels are mostly equal, and one table would wait for its own last store.
// Eight pixels are read at a time; where all are equal, as on even ground, they are counted at once.
void addRow(const uint8_t* row, ptrdiff_t width, Tables& tables) {
    ptrdiff_t x = 0;
    for (; x + kWordBytes <= width; x += kWordBytes) {
        uint64_t word;
        std::memcpy(&word, row + x, sizeof word);
        if (word == std::rotl(word, kByteBits)) {
            tables[0][word & kByteMask] += static_cast<uint32_t>(kWordBytes);
            continue;
        }
        for (size_t k = 0; k < static_cast<size_t>(kWordBytes); ++k) {
            ++tables[k % kTables][word >> (kByteBits * k) & kByteMask];
        }
    }
    for (; x < width; ++x) {
        ++tables[0][row[x]];
    }
}

}  // namespace

void grayHistogram(const ZelmImage& image, const ZelmRect& region, uint32_t (&histogram)[kGrayLevels]) {
    Tables tables = {};
    for (ptrdiff_t r = 0; r < region.height && region.width > 0; ++r) {
        addRow(image.pixels + (region.y + r) * static_cast<ptrdiff_t>(image.width) + region.x, region.width, tables);
    }
    for (size_t k = 0; k < kGrayLevels; ++k) {
        histogram[k] = tables[0][k] + tables[1][k] + tables[2][k] + tables[3][k];
    }
}

}  // namespace zelm
