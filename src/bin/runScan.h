// Maximal runs of foreground pixels in one image row.
#ifndef ZELM_RUN_SCAN_H
#define ZELM_RUN_SCAN_H

#include <cstddef>
#include <cstdint>

#include "foregroundTest.h"

namespace zelm {

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
