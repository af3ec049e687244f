// Four pixels at a time, in single precision, by the vectors that every compiler here makes of any processor's own.
#ifndef ZELM_MEASURE_DOT_LANES_H
#define ZELM_MEASURE_DOT_LANES_H

#include <bit>
#include <cstddef>
#include <cstdint>

namespace zelm::measure {

constexpr std::size_t kLanes = 4;
using Lanes = float __attribute__((vector_size(16)));
using LaneInts = std::int32_t __attribute__((vector_size(16)));

inline Lanes lanesOf(float x) {
    return Lanes{x, x, x, x};
}

inline Lanes smaller(Lanes a, Lanes b) {
    return a < b ? a : b;
}

inline Lanes larger(Lanes a, Lanes b) {
    return a < b ? b : a;
}

inline Lanes sizeOf(Lanes a) {
    return larger(a, -a);
}

inline double sumOf(Lanes a) {
    return (static_cast<double>(a[0]) + static_cast<double>(a[1])) +
           (static_cast<double>(a[2]) + static_cast<double>(a[3]));
}

// 1 / sqrt(x), to 3e-7 of it; large but finite for 0. The exponent is halved, and three of Newton's steps do the rest.
inline Lanes inverseRoot(Lanes x) {
    Lanes y = std::bit_cast<Lanes>(0x5f3759df - (std::bit_cast<LaneInts>(x) >> 1));
    for (int k = 0; k < 3; ++k) {
        y *= 1.5F - 0.5F * x * y * y;
    }
    return y;
}

// 2^x, to 4e-7 of it, for x from -126 to 127.
inline Lanes powerOfTwo(Lanes x) {
    constexpr float kRounder = 12582912.0F;  // 1.5 * 2^23: what is added to it loses its fraction
    const Lanes whole = (x + kRounder) - kRounder;
    const Lanes r = (x - whole) * 0.69314718F;
    const Lanes series =
        1.0F + r * (1.0F + r * (0.5F + r * (1.0F / 6 + r * (1.0F / 24 + r * (1.0F / 120 + r * (1.0F / 720))))));
    return series * std::bit_cast<Lanes>((__builtin_convertvector(whole, LaneInts) + 127) << 23);
}

}  // namespace zelm::measure

#endif
