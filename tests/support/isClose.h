// Comparisons of doubles: to the bit, and to a tolerance that the test states.
#ifndef ZELM_TEST_IS_CLOSE_H
#define ZELM_TEST_IS_CLOSE_H

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>

namespace zelmtest {

// Equal bits; tells -0.0 from 0.0 and lets one NaN equal itself.
inline bool sameBits(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// |actual - expected| <= tolerance * max(1, |expected|); never for NaN.
inline ::testing::AssertionResult isClose(double actual, double expected, double tolerance) {
    const double error = std::fabs(actual - expected);
    if (actual == expected || error <= tolerance * std::fmax(1.0, std::fabs(expected))) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << actual << " is not close to " << expected << ": error " << error
                                         << ", tolerance " << tolerance;
}

inline ::testing::AssertionResult hasSameBits(double actual, double expected) {
    if (sameBits(actual, expected)) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << std::hexfloat << actual << " differs in its bits from " << expected;
}

}  // namespace zelmtest

#endif
