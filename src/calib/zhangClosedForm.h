// Closed-form intrinsics of a perspective camera from plate homographies.
#ifndef ZELM_ZHANG_CLOSED_FORM_H
#define ZELM_ZHANG_CLOSED_FORM_H

#include <cstddef>
#include <cstdint>

namespace zelm {

// Zhang (2000), appendix B. homographies holds 9 numbers a view. Writes alpha, beta, gamma, cx and cy in
// their order. Returns ZELM_OK, ZELM_ERR_MEMORY, or ZELM_ERR_CALIB_ESTIMATE when the views do not determine
// a camera.
std::int32_t zhangIntrinsics(std::size_t views, const double* homographies, double* intrinsics);

}  // namespace zelm

#endif
