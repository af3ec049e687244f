// The sums of windows that follow one another in a row of the search image, in vectors, for the two vector tiers. A
// tier's file includes this after corrVectorSums-inl.h, with whose definitions it is written, and defines besides:
// loadQuarter (bytes widened to lanes), everyLane, subtract (lanes) and store.
//
// From one window to the next one column leaves and one joins, so that sum(I) and sum(II) need those columns alone.
// What is left, sum(IT), is computed for as many windows at once as a vector has lanes: the template is loaded and
// widened once for all of them.
#ifndef ZELM_CORR_VECTOR_RUN_INL_H
#define ZELM_CORR_VECTOR_RUN_INL_H

namespace zelm {
namespace {

constexpr std::int32_t kLanes = sizeof(Vector) / 4;

// So many columns left over at the right of half blocks take less time one by one, a window a lane, than as one more
// half block.
constexpr std::int32_t kFewColumns = 3;

// A template and as many windows as there are lanes, the first pixel of the first of them.
struct RunPlaces {
    const std::uint8_t* tmpl;
    const std::uint8_t* img;
    std::ptrdiff_t tmplStep;
    std::ptrdiff_t imgStep;
    std::ptrdiff_t rows;
};

// sum(IT), a window each. Of the template's words, those that kept is set for.
template <bool some>
ZELM_ALWAYS_INLINE void addHalfBlock(const std::uint8_t* tmpl, const std::uint8_t* img, Vector kept,
                                     Vector (&sums)[kLanes]) {
    const Vector t = some ? keep(kept, loadHalf(tmpl)) : loadHalf(tmpl);
    for (int k = 0; k < kLanes; ++k) {
        sums[k] = add(sums[k], multiplyAdd(t, loadHalf(img + k)));
    }
}

// sum(IT) of the windows over the columns of half blocks. Returns the first column that is left.
ZELM_ALWAYS_INLINE std::ptrdiff_t addHalfBlocks(RunPlaces at, std::ptrdiff_t w, std::uint32_t* it) {
    Vector sums[kLanes];
    for (int k = 0; k < kLanes; ++k) {
        sums[k] = everyWord(0);
    }
    const std::ptrdiff_t left = w % kHalf;
    const bool oneMore = left > kFewColumns;
    const Vector kept = lastWords(static_cast<std::int32_t>(left));
    for (; at.rows > 0; --at.rows) {
        for (std::ptrdiff_t column = 0; column < w - left; column += kHalf) {
            addHalfBlock<false>(at.tmpl + column, at.img + column, kept, sums);
        }
        if (oneMore) {
            addHalfBlock<true>(at.tmpl + w - kHalf, at.img + w - kHalf, kept, sums);
        }
        at.tmpl += at.tmplStep;
        at.img += at.imgStep;
    }
    for (int k = 0; k < kLanes; k += 4) {
        storeLaneSums(sums[k], sums[k + 1], sums[k + 2], sums[k + 3], it + k);
    }
    return oneMore ? w : w - left;
}

// sum(IT) of the windows over one column.
ZELM_ALWAYS_INLINE void addColumn(RunPlaces at, std::ptrdiff_t column, std::uint32_t* it) {
    Vector sum = everyWord(0);
    at.tmpl += column;
    at.img += column;
    for (; at.rows > 0; --at.rows) {
        sum = add(sum, multiplyAdd(everyLane(*at.tmpl), loadQuarter(at.img)));
        at.tmpl += at.tmplStep;
        at.img += at.imgStep;
    }
    std::uint32_t lanes[kLanes];
    store(sum, lanes);
    for (int k = 0; k < kLanes; ++k) {
        it[k] += lanes[k];
    }
}

// What the sums of every window have more than those of the window to its left.
struct RunSteps {
    std::uint32_t i[kLanes];
    std::uint32_t ii[kLanes];
};

ZELM_ALWAYS_INLINE void stepSums(const RunPlaces& at, std::ptrdiff_t w, RunSteps& steps) {
    Vector i = everyWord(0);
    Vector ii = i;
    const std::uint8_t* left = at.img - 1;
    for (std::ptrdiff_t row = 0; row < at.rows; ++row) {
        const Vector leaving = loadQuarter(left);
        const Vector joining = loadQuarter(left + w);
        const Vector difference = subtract(joining, leaving);
        i = add(i, difference);
        // The words above are 0 in one of the factors.
        ii = add(ii, multiplyAdd(difference, add(joining, leaving)));
        left += at.imgStep;
    }
    store(i, steps.i);
    store(ii, steps.ii);
}

// The sums of the windows that follow the one whose sums stand first.
void addGroup(const RunPlaces& at, std::int32_t w, CorrSums* sums) {
    std::uint32_t it[kLanes];
    for (std::ptrdiff_t column = addHalfBlocks(at, w, it); column < w; ++column) {
        addColumn(at, column, it);
    }
    RunSteps steps;
    stepSums(at, w, steps);
    for (int k = 0; k < kLanes; ++k) {
        sums[k + 1].i = sums[k].i + steps.i[k];
        sums[k + 1].ii = sums[k].ii + steps.ii[k];
        sums[k + 1].it = it[k];
    }
}

void vectorRun(const CorrWindows& windows, std::int32_t count, CorrSums* sums) {
    if (windows.w < kHalf && narrower.fullRun != nullptr) {
        narrower.fullRun(windows, count, sums);
        return;
    }
    const bool inGroups = windows.w >= kHalf && count > kLanes;
    CorrWindows window = windows;
    for (std::int32_t k = 0; k < (inGroups ? 1 : count); ++k) {
        vectorSums<kCorrFull, kCorrNoMask>(window, sums[k]);
        ++window.img.pixels;
    }
    if (!inGroups) {
        return;
    }
    // The last group ends with the run, though it may begin within the one before.
    for (std::int32_t done = 1; done < count;) {
        const std::int32_t from = done < count - kLanes ? done : count - kLanes;
        addGroup({windows.tmpl.pixels, windows.img.pixels + from, windows.tmpl.stride, windows.img.stride, windows.h},
                 windows.w, sums + from - 1);
        done = from + kLanes;
    }
}

constexpr CorrTier kVectorTier = {{{ZELM_CORR_VECTOR_MODES(kCorrFull)},
                                   // Every pixel for checker: docs/decisions.md#checker-vector.
                                   {ZELM_CORR_VECTOR_MODES(kCorrFull)},
                                   {ZELM_CORR_VECTOR_MODES(kCorrQuarter)}},
                                  vectorRun};

}  // namespace
}  // namespace zelm

#endif
