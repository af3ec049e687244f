#include "runScan.h"

#include <algorithm>
#include <bit>

#include "bitKernels.h"
#include "bitRows.h"

namespace zelm {
namespace {

constexpr ptrdiff_t kWordsAtOnce = 16;

// Collects the ends of runs, which follow one another as first and last columns.
class RunEnds {
public:
    explicit RunEnds(Run* target) : runs(target) {}

    // `edges` has a bit for each column from x on at which foreground begins or background does.
    void add(uint64_t edges, int32_t x) {
        for (; edges != 0; edges &= edges - 1) {
            const int32_t at = x + std::countr_zero(edges);
            if (open) {
                runs[count++].x1 = at - 1;
            } else {
                runs[count] = {at, at, 0};
            }
            open = !open;
        }
    }
    // Ends a run that reaches `to`, and returns the number of runs.
    size_t end(int32_t to) {
        if (open) {
            runs[count++].x1 = to - 1;
        }
        return count;
    }
    // As a bit before the first of a word.
    [[nodiscard]] uint64_t before() const { return open ? 1 : 0; }

private:
    Run* runs;
    size_t count = 0;
    bool open = false;
};

}  // namespace

size_t scanRuns(const uint8_t* row, int32_t from, int32_t to, ForegroundTest isForeground, Run* runs) {
    const BitKernels& tier = bitTierOfProcessor();
    RunEnds ends(runs);
    for (ptrdiff_t x = from; x < to; x += kWordsAtOnce * kWordPixels) {
        const ptrdiff_t width = std::min(kWordsAtOnce * kWordPixels, to - x);
        uint64_t words[kWordsAtOnce];
        packRow(tier, row + x, width, isForeground, words);
        for (ptrdiff_t i = 0; i < wordsOf(width); ++i) {
            const uint64_t edges = words[i] ^ (words[i] << 1 | ends.before());
            const bool isLast = (i + 1) * kWordPixels >= width;
            ends.add(isLast ? edges & lastWordMask(width) : edges, static_cast<int32_t>(x + i * kWordPixels));
        }
    }
    return ends.end(to);
}

}  // namespace zelm
