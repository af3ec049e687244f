// Whether a number is one of ZelmCameraModel.
#ifndef ZELM_CAMERA_MODEL_H
#define ZELM_CAMERA_MODEL_H

#include <cstdint>

#include "zelm/calib.h"

namespace zelm {

constexpr bool isCameraModel(std::int32_t model) {
    return model >= ZELM_CAMERA_PERSPECTIVE && model <= ZELM_CAMERA_PARALLEL;
}

}  // namespace zelm

#endif
