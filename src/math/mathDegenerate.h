// When a length, determinant or squared length of this family is fit to divide by.
#ifndef ZELM_MATH_DEGENERATE_H
#define ZELM_MATH_DEGENERATE_H

#include <limits>

namespace zelm {

constexpr double kMathDegenerate = 1e-9;  // in the caller's units; what does not exceed it is degenerate

// False also for values that are infinite or not a number.
constexpr bool isDivisor(double magnitude) {
    return magnitude > kMathDegenerate && magnitude <= std::numeric_limits<double>::max();
}

}  // namespace zelm

#endif
