// What a block holds of the two cameras together, worked out from what it holds of each.
#ifndef ZELM_PAIR_COMPLETION_H
#define ZELM_PAIR_COMPLETION_H

#include <cstdint>

namespace zelm {

// Writes fundamental matrix and rectifying pairs of the two cameras in the block, from their models, intrinsics and
// poses of view 0. A failure is ZELM_ERR_STEREO_GEOMETRY, ZELM_ERR_CALIB_HOMOGRAPHY, ZELM_ERR_PARAM for a perspective
// left and a parallel right camera, or ZELM_ERR_MEMORY; the block then holds what was finished before.
std::int32_t completePair(unsigned char* data);

}  // namespace zelm

#endif
