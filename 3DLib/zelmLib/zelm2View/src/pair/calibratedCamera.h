// One camera of a calibrated pair, read from the data block.
#ifndef ZELM_CALIBRATED_CAMERA_H
#define ZELM_CALIBRATED_CAMERA_H

#include <cstdint>

#include "calibBlock.h"
#include "cameraModel.h"

namespace zelm {

// A calibrated camera: its model, intrinsics and pose in view 0.
struct CalibratedCamera {
    std::int32_t model;
    ZelmCameraIntrinsics intrinsics;
    ZelmCameraExtrinsics pose;
};

// Pixels.
struct ImageSize {
    std::int32_t width;
    std::int32_t height;
};

std::int32_t modelOf(const unsigned char* data, Camera camera);
ImageSize imageSizeOf(const unsigned char* data, Camera camera);
CalibratedCamera calibratedCamera(const unsigned char* data, Camera camera);

// The intrinsics as the array of 22 doubles that the image kernels read.
struct KernelCamera {
    double elements[22];
};
static_assert(sizeof(KernelCamera) == sizeof(ZelmCameraIntrinsics));

inline KernelCamera kernelCamera(const unsigned char* data, Camera camera) {
    return block::read<KernelCamera>(data, block::intrinsics(camera));
}

constexpr Camera otherOf(Camera camera) {
    return isLeft(camera) ? Camera::right : Camera::left;
}

}  // namespace zelm

#endif
