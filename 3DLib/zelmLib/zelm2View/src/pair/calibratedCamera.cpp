#include "calibratedCamera.h"

namespace zelm {

std::int32_t modelOf(const unsigned char* data, Camera camera) {
    const Zelm2ViewCameraDesc desc = block::cameras(data);
    return isLeft(camera) ? desc.leftModel : desc.rightModel;
}

ImageSize imageSizeOf(const unsigned char* data, Camera camera) {
    const Zelm2ViewCameraDesc desc = block::cameras(data);
    return isLeft(camera) ? ImageSize{desc.leftWidth, desc.leftHeight} : ImageSize{desc.rightWidth, desc.rightHeight};
}

CalibratedCamera calibratedCamera(const unsigned char* data, Camera camera) {
    return {modelOf(data, camera), block::read<ZelmCameraIntrinsics>(data, block::intrinsics(camera)),
            block::read<ZelmCameraExtrinsics>(data, block::pose(block::views(data), camera, 0))};
}

}  // namespace zelm
