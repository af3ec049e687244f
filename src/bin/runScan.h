// Maximal runs of foreground pixels in one image row.
#ifndef ZELM_RUN_SCAN_H
#define ZELM_RUN_SCAN_H

#include <cstddef>
#include <cstdint>

namespace zelm {

// Both polarities as one comparison: a pixel is foreground when (pixel ^ flip) >= level.
struct ForegroundTest {
    uint8_t flip;
    int32_t level;  // 0 to 256

    // Polarity 1: pixel >= threshold; polarity 0: pixel < threshold. threshold in 0..255.
    static ForegroundTest of(int32_t threshold, int32_t polarity) {
        return polarity == 1 ? ForegroundTest{0, threshold} : ForegroundTest{255, 256 - threshold};
    }
    [[nodiscard]] bool operator()(uint8_t pixel) const { return (pixel ^ flip) >= level; }
};

// A run of pixels [x0, x1] and its label.
struct Run {
    int32_t x0;
    int32_t x1;
    int32_t label;
};

// Writes the runs of row[from..to] (columns, `to` exclusive), left to right, and returns their number: at most
// (to - from + 1) / 2. Labels are left 0.
size_t scanRuns(const uint8_t* row, int32_t from, int32_t to, ForegroundTest isForeground, Run* runs);

}  // namespace zelm

#endif
