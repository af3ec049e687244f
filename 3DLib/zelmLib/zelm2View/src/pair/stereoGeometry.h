// The geometry of a calibrated pair: fundamental matrix and rectifying pairs.
#ifndef ZELM_STEREO_GEOMETRY_H
#define ZELM_STEREO_GEOMETRY_H

#include <cstdint>

#include "calibratedCamera.h"

namespace zelm {

// F with xL' F xR = 0 for undistorted pixels, its largest element about 1, of rank 2; and its transpose. Codes of the
// matrix toolkit are passed on. A pair of a perspective left and a parallel right camera is ZELM_ERR_PARAM.
std::int32_t innerFundamentalPair(const CalibratedCamera& left, const CalibratedCamera& right, FundamentalPair* pair);

// M is made of three columns of the camera's projection matrix: the first three, or, in a pair with a parallel camera,
// whose first three have no inverse, the first, second and fourth. Codes of the matrix toolkit are passed on.
std::int32_t innerRectifyingPair(const CalibratedCamera& camera, bool isPairWithParallel, RectifyingPair* pair);

}  // namespace zelm

#endif
