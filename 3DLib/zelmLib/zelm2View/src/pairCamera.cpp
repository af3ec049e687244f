#include "pairCamera.h"

namespace zelm {

PairCamera readPairCamera(const unsigned char* data, Camera camera) {
    const Zelm2ViewCameraDesc description = block::cameras(data);
    PairCamera result{};
    result.intrinsics = block::read<ZelmCameraIntrinsics>(data, block::intrinsics(camera));
    result.pose = block::read<ZelmCameraExtrinsics>(data, block::pose(block::views(data), camera, 0));
    result.model = isLeft(camera) ? description.leftModel : description.rightModel;
    result.width = isLeft(camera) ? description.leftWidth : description.rightWidth;
    result.height = isLeft(camera) ? description.leftHeight : description.rightHeight;
    return result;
}

}  // namespace zelm
