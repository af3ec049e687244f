// The AVX2 tier of the remap kernels.
#include "avx2Stretch-inl.h"
#include "warpKernels.h"

namespace zelm {
namespace {

// Map entries between those in use and those asked for: some stretches' time is what memory needs.
constexpr std::ptrdiff_t kMapAhead = 4 * kStretch;

inline const float* mapRow(const float* map, std::int32_t strideBytes, std::int32_t y) {
    return reinterpret_cast<const float*>(reinterpret_cast<const char*>(map) +
                                          static_cast<std::ptrdiff_t>(y) * strideBytes);
}

// Asks for a stretch of a map further on, wherever the map ends: only its first pass reads the maps, and the
// processor's own prefetching rests while the others compute.
[[gnu::always_inline]] inline void prefetchMap(const float* map) {
    constexpr std::uintptr_t kCacheLine = 64;
    const std::uintptr_t first = reinterpret_cast<std::uintptr_t>(map) + kMapAhead * sizeof(float);
    for (std::uintptr_t at = 0; at < kStretch * sizeof(float); at += kCacheLine) {
        _mm_prefetch(reinterpret_cast<const char*>(first + at), _MM_HINT_T0);
    }
}

// The records are copied: stores of bytes to the destination could else change them, for all the compiler knows.
template <int channels>
void remap(const WarpSource source, const WarpTarget target, const WarpMaps maps, const WarpBox box) {
    // What lies behind the end of a long row is mostly the beginning of the next one.
    const bool rowsAreLong = box.x1 - box.x0 >= kMapAhead;
    for (std::int32_t y = box.y0; y <= box.y1; ++y) {
        const float* const mapX = mapRow(maps.x, maps.strideX, y);
        const float* const mapY = mapRow(maps.y, maps.strideY, y);
        std::uint8_t* const row = target.pixels + static_cast<std::ptrdiff_t>(y) * target.stride;
        for (std::int32_t x = box.x0; x <= box.x1; x += kStretch) {
            const float* const u = mapX + x;
            const float* const v = mapY + x;
            const std::int32_t left = box.x1 - x + 1;
            if (rowsAreLong) {
                prefetchMap(u);
                prefetchMap(v);
            }
            if (left > kStretch) {
                prefetchSources<channels>(source, u + kStretch, v + kStretch, smaller(kStretch, left - kStretch));
            } else if (y < box.y1) {
                prefetchSources<channels>(source, mapRow(maps.x, maps.strideX, y + 1) + box.x0,
                                          mapRow(maps.y, maps.strideY, y + 1) + box.x0,
                                          smaller(kStretch, box.x1 - box.x0 + 1));
            }
            sampleStretch<channels>(source, u, v, smaller(kStretch, left),
                                    row + static_cast<std::ptrdiff_t>(x) * channels);
        }
    }
}

}  // namespace

void remapAvx28uC1(const WarpSource& source, const WarpTarget& target, const WarpMaps& maps, const WarpBox& box) {
    remap<1>(source, target, maps, box);
}

void remapAvx28uC4(const WarpSource& source, const WarpTarget& target, const WarpMaps& maps, const WarpBox& box) {
    remap<4>(source, target, maps, box);
}

}  // namespace zelm
