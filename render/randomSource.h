// Seeded random numbers that are the same on every platform: splitmix64 (Steele, Lea, Flood 2014) and normal deviates
// by the polar method (Marsaglia, Bray 1964).
#ifndef ZELM_RENDER_RANDOM_SOURCE_H
#define ZELM_RENDER_RANDOM_SOURCE_H

#include <cmath>
#include <cstdint>

namespace zelm::render {

class RandomSource {
public:
    explicit RandomSource(std::uint64_t seed) : state(seed) {}

    // In [0, 1).
    double uniform() { return static_cast<double>(next() >> 11) * 0x1.0p-53; }
    double uniform(double low, double high) { return low + (high - low) * uniform(); }

    double normal() {
        if (haveSpare) {
            haveSpare = false;
            return spare;
        }
        double u = 0.0, v = 0.0, s = 0.0;
        do {
            u = 2.0 * uniform() - 1.0;
            v = 2.0 * uniform() - 1.0;
            s = u * u + v * v;
        } while (s >= 1.0 || s == 0.0);
        const double factor = std::sqrt(-2.0 * std::log(s) / s);
        spare = v * factor;
        haveSpare = true;
        return u * factor;
    }

private:
    std::uint64_t next() {
        std::uint64_t z = (state += 0x9E3779B97F4A7C15ULL);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return z ^ (z >> 31);
    }

    std::uint64_t state;
    double spare = 0.0;
    bool haveSpare = false;
};

}  // namespace zelm::render

#endif
