// Start values of a view's pose from its homography.
#ifndef ZELM_VIEW_POSE_H
#define ZELM_VIEW_POSE_H

#include <cstdint>

namespace zelm {

// The 3 x 3 camera matrix (alpha, gamma, cx; 0, beta, cy; 0, 0, 1) of the first intrinsics in that order.
void writeCameraMatrix(const double* intrinsics, double* A);

// The pose (kPose numbers) with the rotation nearest to the frame (r1, r2, r1 x r2), r1 and r2 of about unit length.
// Returns ZELM_OK or the status of the decomposition.
std::int32_t poseFromAxes(const double* r1, const double* r2, const double* t, double* pose);

// The pose behind H ~ A (r1, r2, t), for a plate before the camera (Zhang 2000, section 3.1).
std::int32_t poseFromHomography(const double* Ainv, const double* H, double* pose);

}  // namespace zelm

#endif
