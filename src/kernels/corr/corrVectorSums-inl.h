// The sums of the correlation kernels in vectors, for the two vector tiers. A tier's file defines its vector type and
// operations in an anonymous namespace, then includes this: everything here is local to that file too, so that the
// linker never sees two copies built with different flags.
//
// What the tier defines: Vector, whose bytes are a block of pixels and whose 16-bit words are half a block; load,
// loadHalf (bytes widened to words), add (32-bit lanes), multiplyAdd (pairs of words), sumBytes (to lanes that add can
// add), lowBytes, highBytes and evenBytes (widened), isZeroByte, isZeroWord, keep and keepWhereNot (by a mask), smaller
// (of bytes), everyWord, everySecondWord and lastWords (masks), addWord (to one lane), storeLaneSums (of four
// vectors), and narrower: the tier for windows narrower than half a block.
//
// A window is summed one column of blocks after the other, each in a loop over the rows. What is left at the right is
// summed in half blocks, the last of them ending at the window's right edge, with the pixels that were summed before
// blanked out: nothing beyond a row is read. A single column left over (widths are often odd) is summed pixel by pixel
// beside the blocks before it, by units of the processor that are idle then.

#define ZELM_ALWAYS_INLINE inline __attribute__((always_inline))
#ifndef ZELM_CORR_VECTOR_SUMS_INL_H
#define ZELM_CORR_VECTOR_SUMS_INL_H

namespace zelm {
namespace {

constexpr std::int32_t kBlock = sizeof(Vector);
constexpr std::int32_t kHalf = kBlock / 2;

template <CorrMode mode>
constexpr int kPlanes = mode == kCorrNoMask     ? 2
                        : mode == kCorrTwoMasks ? 4
                                                : 3;

template <CorrMode mode>
constexpr bool kOwnStatistics = mode == kCorrSharedMask || mode == kCorrTwoMasks;

enum { kTmpl, kImg, kMask, kImgMask };

// One place in each plane, and the way to the one below.
struct Places {
    const std::uint8_t* at[4];
    std::ptrdiff_t step[4];
};

// The pixels of the planes at one place, as bytes or as words.
struct Pixels {
    Vector in[4];
};

struct VectorSums {
    Vector i;
    Vector ii;
    Vector it;
    Vector count;
    Vector t;
    Vector tt;
};

template <CorrMode mode>
ZELM_ALWAYS_INLINE void goRight(Places& places, std::ptrdiff_t columns) {
    for (int p = 0; p < kPlanes<mode>; ++p) {
        places.at[p] += columns;
    }
}

template <CorrMode mode>
ZELM_ALWAYS_INLINE void goDown(Places& places, std::ptrdiff_t rows) {
    for (int p = 0; p < kPlanes<mode>; ++p) {
        places.at[p] += rows * places.step[p];
    }
}

template <CorrMode mode, Vector (*loadFrom)(const std::uint8_t*)>
ZELM_ALWAYS_INLINE Pixels loadAll(const Places& places, std::ptrdiff_t column) {
    Pixels pixels = {};
    for (int p = 0; p < kPlanes<mode>; ++p) {
        pixels.in[p] = loadFrom(places.at[p] + column);
    }
    return pixels;
}

template <CorrMode mode>
ZELM_ALWAYS_INLINE void addProducts(Vector t, Vector i, VectorSums& sums) {
    sums.it = add(sums.it, multiplyAdd(i, t));
    sums.ii = add(sums.ii, multiplyAdd(i, i));
    if constexpr (kOwnStatistics<mode>) {
        sums.tt = add(sums.tt, multiplyAdd(t, t));
    }
}

// Adds what is summed as bytes or as words alike, after clearing pixels where out is set. one: 1 for every pixel.
template <CorrMode mode>
ZELM_ALWAYS_INLINE void addPlainSums(Pixels& pixels, Vector out, Vector one, VectorSums& sums) {
    Vector& t = pixels.in[kTmpl];
    Vector& i = pixels.in[kImg];
    if constexpr (mode != kCorrNoMask) {
        i = keepWhereNot(out, i);
    }
    sums.i = add(sums.i, sumBytes(i));
    if constexpr (kOwnStatistics<mode>) {
        t = keepWhereNot(out, t);
        sums.t = add(sums.t, sumBytes(t));
        sums.count = add(sums.count, sumBytes(keepWhereNot(out, one)));
    }
}

template <CorrMode mode>
ZELM_ALWAYS_INLINE Vector maskOf(const Pixels& pixels) {
    return mode == kCorrTwoMasks ? smaller(pixels.in[kMask], pixels.in[kImgMask]) : pixels.in[kMask];
}

template <CorrMode mode>
ZELM_ALWAYS_INLINE void addWords(Pixels pixels, VectorSums& sums) {
    addPlainSums<mode>(pixels, isZeroWord(maskOf<mode>(pixels)), everyWord(1), sums);
    addProducts<mode>(pixels.in[kTmpl], pixels.in[kImg], sums);
}

// Adds the words that kept is set for.
template <CorrMode mode>
ZELM_ALWAYS_INLINE void addKeptWords(Pixels pixels, Vector kept, VectorSums& sums) {
    Vector& decisive = pixels.in[kOwnStatistics<mode> ? kMask : kImg];
    decisive = keep(kept, decisive);
    addWords<mode>(pixels, sums);
}

// Adds a block of the quarter pattern, or of every pixel.
template <CorrPattern pattern, CorrMode mode>
ZELM_ALWAYS_INLINE void addBlock(const Places& places, VectorSums& sums) {
    Pixels pixels = loadAll<mode, load>(places, 0);
    if constexpr (pattern == kCorrQuarter) {
        for (int p = 0; p < kPlanes<mode>; ++p) {
            pixels.in[p] = evenBytes(pixels.in[p]);
        }
        addWords<mode>(pixels, sums);
    } else {
        addPlainSums<mode>(pixels, isZeroByte(maskOf<mode>(pixels)), everyWord(0x101), sums);
        if constexpr (mode == kCorrNoMask) {
            // Widening loads take fewer instructions.
            const Pixels low = loadAll<mode, loadHalf>(places, 0);
            const Pixels high = loadAll<mode, loadHalf>(places, kHalf);
            addProducts<mode>(low.in[kTmpl], low.in[kImg], sums);
            addProducts<mode>(high.in[kTmpl], high.in[kImg], sums);
        } else {
            const Vector t = pixels.in[kTmpl];
            const Vector i = pixels.in[kImg];
            addProducts<mode>(lowBytes(t), lowBytes(i), sums);
            addProducts<mode>(highBytes(t), highBytes(i), sums);
        }
    }
}

// Adds a single pixel.
template <CorrMode mode>
ZELM_ALWAYS_INLINE void addPixel(const Places& places, std::ptrdiff_t column, CorrSums& sums) {
    const bool out = (mode != kCorrNoMask && places.at[kMask][column] == 0) ||
                     (mode == kCorrTwoMasks && places.at[kImgMask][column] == 0);
    const std::uint32_t kept = out ? 0 : ~0U;
    const std::uint32_t t = places.at[kTmpl][column];
    const std::uint32_t i = places.at[kImg][column] & kept;
    sums.i += i;
    sums.ii += i * i;
    sums.it += i * t;
    if constexpr (kOwnStatistics<mode>) {
        sums.count += kept & 1;
        sums.t += t & kept;
        sums.tt += t * (t & kept);
    }
}

// Sums so far: of blocks, and of single pixels.
struct AllSums {
    VectorSums blocks;
    CorrSums pixels;
};

// Adds a block or half a block of every row, and the pixel to the right of it. Two rows at once: the loop itself costs
// as much as a few pixels.
template <CorrMode mode, bool pixelToo, int columns, class AddHere>
ZELM_ALWAYS_INLINE AllSums addRows(Places places, std::ptrdiff_t rows, AllSums sums, const AddHere& addHere) {
    const auto addRow = [&](const Places& at) {
        addHere(at, sums.blocks);
        if constexpr (pixelToo) {
            addPixel<mode>(at, columns, sums.pixels);
        }
    };
    for (; rows >= 2; rows -= 2) {
        Places below = places;
        goDown<mode>(below, 1);
        addRow(places);
        addRow(below);
        goDown<mode>(places, 2);
    }
    if (rows > 0) {
        addRow(places);
    }
    return sums;
}

template <CorrPattern pattern, CorrMode mode, bool pixelToo>
ZELM_ALWAYS_INLINE AllSums addBlocks(const Places& places, std::ptrdiff_t rows, const AllSums& sums) {
    return addRows<mode, pixelToo, kBlock>(places, rows, sums,
                                           [](const Places& at, VectorSums& to) { addBlock<pattern, mode>(at, to); });
}

template <CorrMode mode, bool pixelToo>
ZELM_ALWAYS_INLINE AllSums addHalves(const Places& places, std::ptrdiff_t rows, Vector kept, const AllSums& sums) {
    return addRows<mode, pixelToo, kHalf>(places, rows, sums, [kept](const Places& at, VectorSums& to) {
        addKeptWords<mode>(loadAll<mode, loadHalf>(at, 0), kept, to);
    });
}

// A mask of the last columns of the half block that begins at column, those of the pattern.
template <CorrPattern pattern>
ZELM_ALWAYS_INLINE Vector keptColumns(std::int32_t column, std::int32_t last) {
    const Vector kept = lastWords(last);
    return pattern == kCorrQuarter ? keep(everySecondWord(column % 2), kept) : kept;
}

// Whether the pattern has one column among so many.
template <CorrPattern pattern>
ZELM_ALWAYS_INLINE bool isOneColumn(std::int32_t columns) {
    return columns == 1 || (pattern == kCorrQuarter && columns == 2);
}

template <CorrPattern pattern, CorrMode mode>
void vectorSums(const CorrWindows& windows, CorrSums& out) {
    std::int32_t left = windows.w;
    if (left < kHalf) {
        narrower.sums[pattern][mode](windows, out);
        return;
    }
    constexpr std::int32_t kRowStep = pattern == kCorrQuarter ? 2 : 1;
    const CorrPlane planes[4] = {windows.tmpl, windows.img, windows.mask, windows.imgMask};
    Places places;
    for (int p = 0; p < kPlanes<mode>; ++p) {
        places.at[p] = planes[p].pixels;
        places.step[p] = static_cast<std::ptrdiff_t>(planes[p].stride) * kRowStep;
    }
    const std::ptrdiff_t rows = windows.h / kRowStep + windows.h % kRowStep;
    const Vector none = everyWord(0);
    AllSums sums = {{none, none, none, none, none, none}, {}};
    while (left >= kBlock) {
        const bool pixelToo = isOneColumn<pattern>(left - kBlock);
        sums = pixelToo ? addBlocks<pattern, mode, true>(places, rows, sums)
                        : addBlocks<pattern, mode, false>(places, rows, sums);
        left -= pixelToo ? left : kBlock;
        goRight<mode>(places, kBlock);
    }
    if (left >= kHalf) {
        const bool pixelToo = isOneColumn<pattern>(left - kHalf);
        const Vector kept = keptColumns<pattern>(0, kHalf);
        sums = pixelToo ? addHalves<mode, true>(places, rows, kept, sums)
                        : addHalves<mode, false>(places, rows, kept, sums);
        left -= pixelToo ? left : kHalf;
        goRight<mode>(places, kHalf);
    }
    if (left > 0) {
        goRight<mode>(places, left - kHalf);
        sums = addHalves<mode, false>(places, rows, keptColumns<pattern>(windows.w - kHalf, left), sums);
    }
    const CorrSums& pixels = sums.pixels;
    const VectorSums& blocks = sums.blocks;
    storeLaneSums(addWord(blocks.i, pixels.i), addWord(blocks.ii, pixels.ii), addWord(blocks.it, pixels.it),
                  addWord(blocks.count, pixels.count), &out.i);
    if constexpr (kOwnStatistics<mode>) {
        storeLaneSums(addWord(blocks.t, pixels.t), addWord(blocks.tt, pixels.tt), none, none, &out.t);
    }
}

#define ZELM_CORR_VECTOR_MODES(pattern)                                                                        \
    vectorSums<pattern, kCorrNoMask>, vectorSums<pattern, kCorrRefMask>, vectorSums<pattern, kCorrSharedMask>, \
        vectorSums<pattern, kCorrTwoMasks>

}  // namespace
}  // namespace zelm

#endif
