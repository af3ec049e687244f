// One camera of a calibrated pair as the geometric operations see it: read from the data block, view-0 pose.
#ifndef ZELM_PAIR_CAMERA_H
#define ZELM_PAIR_CAMERA_H

#include <cstdint>

#include "calibBlock.h"
#include "stereoGeometry.h"

namespace zelm {

struct PairCamera {
    ZelmCameraIntrinsics intrinsics;
    ZelmCameraExtrinsics pose;  // view 0
    std::int32_t model;
    std::int32_t width;
    std::int32_t height;
};

PairCamera readPairCamera(const unsigned char* data, Camera camera);

constexpr Camera otherOf(Camera camera) {
    return isLeft(camera) ? Camera::right : Camera::left;
}

}  // namespace zelm

#endif
