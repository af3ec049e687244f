// Which pixels are foreground.
#ifndef ZELM_FOREGROUND_TEST_H
#define ZELM_FOREGROUND_TEST_H

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

}  // namespace zelm

#endif
