// Sampling of any number of neighbouring destination pixels, for the files of the AVX2 tier alone.
#ifndef ZELM_AVX2_STRETCH_INL_H
#define ZELM_AVX2_STRETCH_INL_H

#include "avx2SampleFour-inl.h"
#include "avx2SampleGray-inl.h"

namespace zelm {
namespace {

template <int channels>
void sampleGroups(const WarpSource& source, const float* u, const float* v, int groups, std::uint8_t* out) {
    if constexpr (channels == 1) {
        sampleGray(source, u, v, groups, out);
    } else {
        sampleFour(source, u, v, groups, out);
    }
}

// Groups that a sampler takes at a time.
template <int channels>
constexpr int kGroupsAtATime = channels == 1 ? kBlock : 1;

// Fewer pixels than that: the last position fills them up.
template <int channels>
void sampleTail(const WarpSource& source, const float* u, const float* v, std::int32_t count, std::uint8_t* out) {
    constexpr std::size_t kPixels = std::size_t{kGroupsAtATime<channels>} * kLanes;
    alignas(32) float allU[kPixels];
    alignas(32) float allV[kPixels];
    const auto given = static_cast<std::size_t>(count);
    std::memcpy(allU, u, given * sizeof(float));
    std::memcpy(allV, v, given * sizeof(float));
    for (std::size_t i = given; i < kPixels; ++i) {
        allU[i] = u[given - 1];
        allV[i] = v[given - 1];
    }
    alignas(32) std::uint8_t pixels[kPixels * channels];
    sampleGroups<channels>(source, allU, allV, kGroupsAtATime<channels>, pixels);
    std::memcpy(out, pixels, given * channels);
}

// Samples up to kStretch pixels; reads and writes nothing beyond.
template <int channels>
void sampleStretch(const WarpSource& source, const float* u, const float* v, std::int32_t count, std::uint8_t* out) {
    const std::int32_t whole = count - count % (kGroupsAtATime<channels> * kLanes);
    if (whole > 0) {
        sampleGroups<channels>(source, u, v, whole / kLanes, out);
    }
    if (whole < count) {
        sampleTail<channels>(source, u + whole, v + whole, count - whole,
                             out + static_cast<std::ptrdiff_t>(whole) * channels);
    }
}

// Asks for the source rows around a position; a rotated or scaled walk through the source is no pattern that the
// processor foresees. Not outside of it: looking for unmapped pages takes the processor long. Always inlined, for
// gcc deems a function that only prefetches free of effects and drops calls of it.
[[gnu::always_inline]] inline void prefetchSource(const WarpSource& source, float u, float v, int channels) {
    const std::int32_t x = _mm_cvttss_si32(_mm_set_ss(u));
    const std::int32_t y = _mm_cvttss_si32(_mm_set_ss(v));
    if (x < 0 || y < 0 || x >= source.width || y >= source.height - 2) {
        return;
    }
    const std::uint8_t* const address = pixelAt(source, x, y, channels);
    _mm_prefetch(reinterpret_cast<const char*>(address), _MM_HINT_T0);
    _mm_prefetch(reinterpret_cast<const char*>(address + std::ptrdiff_t{2} * source.stride), _MM_HINT_T0);
}

// The same for count positions: for every half cache line or so at scale 1, and for every row that a steep walk enters.
template <int channels>
[[gnu::always_inline]] inline void prefetchSources(const WarpSource& source, const float* u, const float* v,
                                                   std::int32_t count) {
    const float rows = v[count - 1] > v[0] ? v[count - 1] - v[0] : v[0] - v[count - 1];
    constexpr std::int32_t kMinStep = channels == 1 ? 8 : 2;
    std::int32_t step = channels == 1 ? 32 : 16;
    while (step > kMinStep && rows * static_cast<float>(step) > static_cast<float>(count)) {
        step /= 2;
    }
    for (std::int32_t i = 0; i < count; i += step) {
        prefetchSource(source, u[i], v[i], channels);
    }
}

}  // namespace
}  // namespace zelm

#endif
