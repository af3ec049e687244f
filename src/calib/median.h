// The median of a list.
#ifndef ZELM_MEDIAN_H
#define ZELM_MEDIAN_H

#include <cstdint>

namespace zelm {

// The middle one of n >= 1 values in ascending order, or the mean of the two middle ones for an even count. Reorders
// the values. Values that are not numbers count as larger than all others.
double innerMedian(std::int32_t n, double* values);

}  // namespace zelm

#endif
