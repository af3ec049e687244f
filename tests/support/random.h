// Seeded random numbers that are the same on every platform and standard library.
#ifndef ZELM_TEST_RANDOM_H
#define ZELM_TEST_RANDOM_H

#include <cmath>
#include <cstdint>

namespace zelmtest {

// splitmix64 (Steele, Lea, Flood 2014) with Box-Muller normals.
class Random {
public:
    explicit Random(std::uint64_t seed) : state(seed) {}

    std::uint64_t bits() {
        std::uint64_t z = (state += 0x9E3779B97F4A7C15ULL);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return z ^ (z >> 31);
    }
    // In [0, 1).
    double uniform() { return static_cast<double>(bits() >> 11) * 0x1.0p-53; }
    double uniform(double low, double high) { return low + (high - low) * uniform(); }
    // In [low, high], both included.
    std::int32_t integer(std::int32_t low, std::int32_t high) {
        const auto span = static_cast<std::uint64_t>(static_cast<std::int64_t>(high) - low + 1);
        return static_cast<std::int32_t>(low + static_cast<std::int64_t>(bits() % span));
    }
    // Standard normal.
    double normal() {
        if (haveSpare) {
            haveSpare = false;
            return spare;
        }
        const double radius = std::sqrt(-2.0 * std::log(1.0 - uniform()));
        const double angle = 6.283185307179586 * uniform();
        spare = radius * std::sin(angle);
        haveSpare = true;
        return radius * std::cos(angle);
    }

private:
    std::uint64_t state;
    double spare = 0.0;
    bool haveSpare = false;
};

}  // namespace zelmtest

#endif
