// Joint refinement of one camera's intrinsics and the poses of its views.
#ifndef ZELM_CAMERA_REFINE_H
#define ZELM_CAMERA_REFINE_H

#include <cstdint>

#include "cameraData.h"

namespace zelm {

// Minimises the reprojection error of all dots over all unknowns by the damped method of Levenberg (1944) and
// Marquardt (1963), the poses eliminated from each step (Schur complement). Time and memory grow with the number of
// views. Returns ZELM_OK, ZELM_ERR_MEMORY or ZELM_ERR_CALIB_NOT_CONVERGED.
std::int32_t refineCamera(const CameraData& data, double robustThreshold, CameraUnknowns* unknowns);

}  // namespace zelm

#endif
