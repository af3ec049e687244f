#include "bitDilation.h"

#include <algorithm>
#include <utility>

#include "bitRows.h"

namespace zelm {
namespace {

// The steps by which a window of `rounds` to either side grows from none: unite(step) is called with distances that
// leave no gap, of which none is a multiple of kWordPixels.
template <class Unite>
void growWindow(ptrdiff_t rounds, Unite unite) {
    for (ptrdiff_t reached = 0; reached < rounds;) {
        ptrdiff_t step = std::min(2 * reached + 1, rounds - reached);
        step -= step % kWordPixels == 0 ? 1 : 0;
        unite(step);
        reached += step;
    }
}

// Words before and behind a plane in which its steps look for bits.
ptrdiff_t marginOf(ptrdiff_t rounds) {
    return rounds / kWordPixels + 1;
}

}  // namespace

BitPlane::BitPlane(const BitKernels& kernels, ptrdiff_t planeWidth, ptrdiff_t planeHeight, ptrdiff_t dilationRounds)
    : tier(kernels),
      width(planeWidth),
      height(planeHeight),
      rounds(dilationRounds),
      stride(wordsOf(planeWidth + dilationRounds)),
      memory(2 * static_cast<size_t>(planeHeight) + 6 * static_cast<size_t>(marginOf(dilationRounds)),
             static_cast<size_t>(stride)) {
    if (ok()) {
        const ptrdiff_t half = static_cast<ptrdiff_t>(memory.size()) / 2;
        const ptrdiff_t margin = marginOf(rounds);
        current = memory.data() + 2 * margin;
        other = current + half;
        for (uint64_t* const plane : {current, other}) {
            std::fill_n(plane - 2 * margin, 2 * margin, uint64_t{0});
            std::fill_n(plane + height * stride, margin, uint64_t{0});
        }
        for (ptrdiff_t r = 0; r < height; ++r) {
            std::fill(row(r) + wordsOf(width), row(r) + stride, uint64_t{0});
        }
    }
}

// What a step sets before a row the next one may see from within it. It lies in the zeros behind the row before, and
// before the first row in those of the margin, which are therefore dilated too, and cleared again for the next time.
void BitPlane::dilateRows() {
    const ptrdiff_t margin = marginOf(rounds);
    growWindow(rounds, [&](ptrdiff_t step) {
        tier.uniteBits(current - margin, height * stride + margin, step, other - margin);
        std::swap(current, other);
    });
    for (uint64_t* const plane : {current, other}) {
        std::fill_n(plane - margin, margin, uint64_t{0});
    }
}

// A row beyond the plane would have seen no more of it than the plane's first or last row, which stands in for it.
void BitPlane::dilateColumns() {
    growWindow(rounds, [&](ptrdiff_t step) {
        const ptrdiff_t first = std::min(step, height);
        const ptrdiff_t last = std::max(height - step, first);
        const auto uniteRow = [&](ptrdiff_t r, ptrdiff_t rows) {
            tier.uniteWords(row(std::max(r - step, ptrdiff_t{0})), row(r), row(std::min(r + step, height - 1)),
                            rows * stride, other + r * stride);
        };
        for (ptrdiff_t r = 0; r < first; ++r) {
            uniteRow(r, 1);
        }
        if (last > first) {
            uniteRow(first, last - first);
        }
        for (ptrdiff_t r = last; r < height; ++r) {
            uniteRow(r, 1);
        }
        std::swap(current, other);
    });
}

void BitPlane::dilate() {
    dilateRows();
    dilateColumns();
}

void BitPlane::invert() {
    const ptrdiff_t words = wordsOf(width);
    for (ptrdiff_t r = 0; r < height; ++r) {
        uint64_t* const bits = row(r);
        for (ptrdiff_t i = 0; i < words; ++i) {
            bits[i] = ~bits[i];
        }
        bits[words - 1] &= lastWordMask(width);
        std::fill(bits + words, bits + stride, uint64_t{0});
    }
}

}  // namespace zelm
