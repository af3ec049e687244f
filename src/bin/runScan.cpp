#include "runScan.h"

namespace zelm {
namespace {

constexpr int32_t kChunk = 32;  // pixels tested at once; a size that compilers turn into vector instructions

// Whether every pixel of a chunk is on the same side of the test as `wanted`.
bool chunkIs(const uint8_t* pixels, ForegroundTest isForeground, bool wanted) {
    int odd = 0;
    for (int32_t i = 0; i < kChunk; ++i) {
        odd |= static_cast<int>(isForeground(pixels[i]) != wanted);
    }
    return odd == 0;
}

// First column from x on that is foreground (or, with wanted false, background), or `to`.
int32_t find(const uint8_t* row, int32_t x, int32_t to, ForegroundTest isForeground, bool wanted) {
    while (to - x >= kChunk && chunkIs(row + x, isForeground, !wanted)) {
        x += kChunk;
    }
    while (x < to && isForeground(row[x]) != wanted) {
        ++x;
    }
    return x;
}

}  // namespace

size_t scanRuns(const uint8_t* row, int32_t from, int32_t to, ForegroundTest isForeground, Run* runs) {
    size_t count = 0;
    int32_t x = find(row, from, to, isForeground, true);
    while (x < to) {
        const int32_t end = find(row, x, to, isForeground, false);
        runs[count++] = {x, end - 1, 0};
        x = find(row, end, to, isForeground, true);
    }
    return count;
}

}  // namespace zelm
