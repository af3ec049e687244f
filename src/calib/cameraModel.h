// The models of a camera, as numbered in arguments and in the data block.
#ifndef ZELM_CAMERA_MODEL_H
#define ZELM_CAMERA_MODEL_H

#include <cstdint>

namespace zelm {

enum CameraModel : std::int32_t {
    kPerspectiveModel = 0,
    kTiltedModel = 1,   // perspective; the angle theta between the image axes takes part in the distortion
    kParallelModel = 2  // parallel (affine) projection
};

constexpr bool isCameraModel(std::int32_t model) {
    return model >= kPerspectiveModel && model <= kParallelModel;
}

}  // namespace zelm

#endif
