// The frame in which points are fitted: centred, and scaled to a mean distance of sqrt(2) from the centre.
#ifndef ZELM_NORMALIZE_FIT_DATA_H
#define ZELM_NORMALIZE_FIT_DATA_H

#include <cstdint>

namespace zelm {

// dst = (src - centre) * scale, coordinate by coordinate; src and dst hold n points of dim (1 to 3) doubles. centre
// receives dim doubles, the unweighted mean. The mean distance is sqrt(2) in every dimension
// (docs/decisions.md#mean-distance). Points that all coincide keep the scale 1.
void innerNormalizeFitData(std::int32_t dim, std::int32_t n, const double* src, double* dst, double* centre,
                           double* scale);

}  // namespace zelm

#endif
