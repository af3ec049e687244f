#include "pairCompletion.h"

#include <initializer_list>

#include "calibBlock.h"
#include "calibratedCamera.h"
#include "stereoGeometry.h"

namespace zelm {
namespace {

std::int32_t translateFundamental(std::int32_t status) {
    const bool isGeometry =
        status == ZELM_ERR_SVD_FAILED || status == ZELM_ERR_SINGULAR || status == ZELM_ERR_DEGENERATE;
    return isGeometry ? ZELM_ERR_STEREO_GEOMETRY : status;
}

std::int32_t translateRectifying(std::int32_t status) {
    const bool isHomography =
        status == ZELM_ERR_CALIB_NOT_CONVERGED || status == ZELM_ERR_EIGEN_NOT_CONVERGED || status == ZELM_ERR_SINGULAR;
    return isHomography ? ZELM_ERR_CALIB_HOMOGRAPHY : status;
}

}  // namespace

std::int32_t completePair(unsigned char* data) {
    const CalibratedCamera left = calibratedCamera(data, Camera::left);
    const CalibratedCamera right = calibratedCamera(data, Camera::right);
    FundamentalPair fundamental{};
    if (const auto s = innerFundamentalPair(left, right, &fundamental); s < 0) {
        return translateFundamental(s);
    }
    block::write(data, block::kFundamental, fundamental);

    const bool isPairWithParallel = left.model == ZELM_CAMERA_PARALLEL || right.model == ZELM_CAMERA_PARALLEL;
    for (const Camera camera : {Camera::left, Camera::right}) {
        RectifyingPair pair{};
        if (const auto s = innerRectifyingPair(isLeft(camera) ? left : right, isPairWithParallel, &pair); s < 0) {
            return translateRectifying(s);
        }
        block::write(data, block::rectifying(camera), pair);
    }
    return ZELM_OK;
}

}  // namespace zelm
