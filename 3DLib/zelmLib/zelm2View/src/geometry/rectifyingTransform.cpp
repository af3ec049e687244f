#include "rectifyingTransform.h"

#include <algorithm>
#include <cmath>

#include "calibObject.h"
#include "calibratedCamera.h"
#include "matrix3.h"
#include "zelm/mat.h"

namespace zelm {
namespace {

constexpr double kNormalisable = 1e-9;  // last element of a transform that may be scaled to 1

}  // namespace

bool makeDepthMatrix(const unsigned char* data, Camera camera, double s, DepthMatrix* out) {
    const CalibratedCamera calibrated = calibratedCamera(data, camera);
    double P[12];
    if (zelmCalibCameraMatrix(calibrated.intrinsics.A, &calibrated.pose, P, calibrated.model) < 0) {
        return false;
    }
    const auto rectifying = block::read<RectifyingPair>(data, block::rectifying(camera));
    zelmMatCopy(3, 3, rectifying.M, out->A);
    for (int i = 0; i < 3; ++i) {
        out->A[3 * i + 2] += s * P[4 * i + 2];
    }
    return zelmMatInvert(3, out->A, out->Ainv) >= 0;
}

void normaliseTransform(double T[9]) {
    if (std::fabs(T[8]) > kNormalisable) {
        const double last = T[8];
        for (int i = 0; i < 9; ++i) {
            T[i] /= last;
        }
    }
}

Point2d transformPoint(const double T[9], double x, double y) {
    const double point[3] = {x, y, 1.0};
    double image[3];
    zelmMatMul(3, 3, T, 3, 1, point, image);
    return {image[0] / image[2], image[1] / image[2]};
}

Point2d centringOffset(const double T[9], const Point2d& reference, const ImageSize& size) {
    const Point2d w = transformPoint(T, reference.x, reference.y);
    return {w.x - size.width / 2, w.y - size.height / 2};
}

std::int32_t innerCalcHomMatrix(const unsigned char* data, Camera camera, const Zelm2ViewHomParam& params,
                                RectifyingDirection direction, double T[9]) {
    DepthMatrix left;
    DepthMatrix right;
    if (!makeDepthMatrix(data, Camera::left, params.s, &left) ||
        !makeDepthMatrix(data, Camera::right, params.s, &right)) {
        return ZELM_ERR_DEGENERATE;
    }
    const DepthMatrix& own = isLeft(camera) ? left : right;
    const DepthMatrix& other = isLeft(camera) ? right : left;
    double forward[9];
    multiply3(other.A, own.Ainv, forward);
    const Point2d offset = centringOffset(forward, {params.px, params.py}, imageSizeOf(data, camera));
    if (direction == RectifyingDirection::toRectified) {
        const double shift[9] = {1.0, 0.0, -offset.x, 0.0, 1.0, -offset.y, 0.0, 0.0, 1.0};
        multiply3(shift, forward, T);
    } else {
        const double shift[9] = {1.0, 0.0, offset.x, 0.0, 1.0, offset.y, 0.0, 0.0, 1.0};
        double backward[9];
        multiply3(own.A, other.Ainv, backward);
        multiply3(backward, shift, T);
    }
    normaliseTransform(T);
    return ZELM_OK;
}

std::int32_t beginRectification(const Zelm2ViewCalib* calib, std::int32_t selector, const Zelm2ViewHomParam* params,
                                std::initializer_list<const void*> pointers, RectifyingDirection direction,
                                Rectification* out) {
    if (calib == nullptr || params == nullptr ||
        std::find(pointers.begin(), pointers.end(), nullptr) != pointers.end() ||
        !selectCamera(selector, &out->camera)) {
        return ZELM_ERR_PARAM;
    }
    return innerCalcHomMatrix(calib->data, out->camera, *params, direction, out->T);
}

}  // namespace zelm
