// What an expanded image takes: its size for a region, and the scale of the images.
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "calibObject.h"
#include "rectifyingTransform.h"
#include "transferHomography.h"
#include "zelm/calib.h"
#include "zelm/cstmGeometry.h"
#include "zelm/mat.h"

namespace zelm {
namespace {

constexpr double kPerUnit = 1000.0;  // lengths are given in thousandths
constexpr std::int32_t kRowUnit = 4;

bool isFinite(const Point2d& p) {
    return std::isfinite(p.x) && std::isfinite(p.y);
}

// The box around transferred points.
struct Bounds {
    double minX = 1e10;
    double minY = 1e10;
    double maxX = -1e10;
    double maxY = -1e10;

    void include(const Point2d& p) {
        minX = std::min(minX, p.x);
        minY = std::min(minY, p.y);
        maxX = std::max(maxX, p.x);
        maxY = std::max(maxY, p.y);
    }
};

// The box around the corners of a raw region under hom.
std::int32_t boundCorners(const ZelmCameraIntrinsics& intrinsics, const double hom[9], const ZelmRect& roi,
                          Bounds* bounds) {
    const double right = roi.x + (roi.width - 1.0);
    const double bottom = roi.y + (roi.height - 1.0);
    const auto left = static_cast<double>(roi.x);
    const auto top = static_cast<double>(roi.y);
    const Point2d corners[4] = {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
    for (const Point2d& corner : corners) {
        Point2d ideal{};
        const std::int32_t status = zelmCalibUnDistortPoint(&intrinsics, corner.x, corner.y, &ideal.x, &ideal.y);
        if (status < 0) {
            return status;
        }
        const Point2d carried = transformPoint(hom, ideal.x, ideal.y);
        if (!isFinite(carried)) {
            return ZELM_ERR_DEGENERATE;
        }
        bounds->include(carried);
    }
    return ZELM_OK;
}

// trunc(extent) + 1 rounded up to a multiple of 4; false when 32 bits cannot hold it.
bool sizeOf(double extent, std::int32_t* size) {
    constexpr double kMaxSize = 2147483644.0;  // pixels: the largest multiple of 4
    if (!(extent >= 0.0 && extent < kMaxSize)) {
        return false;
    }
    const std::int32_t pixels = static_cast<std::int32_t>(extent) + 1;
    *size = (pixels + (kRowUnit - 1)) / kRowUnit * kRowUnit;
    return true;
}

// The region's middle (integer halves) as reference point of an image of the camera's size.
ZelmCstmExpPrm targetOf(const ImageSize& size, const ZelmRect& roi, double d) {
    return {size.width, size.height, static_cast<double>(roi.width / 2) + roi.x,
            static_cast<double>(roi.height / 2) + roi.y, d};
}

// K [R | t] of view 0. A parallel camera (model 2) drops the depth: its third row picks the homogeneous 1.
void projectionOf(const CalibratedCamera& camera, double P[12]) {
    const double* const R = camera.pose.R;
    const double* const t = camera.pose.t;
    double Rt[12] = {R[0], R[1], R[2], t[0], R[3], R[4], R[5], t[1], R[6], R[7], R[8], t[2]};
    if (camera.model == ZELM_CAMERA_PARALLEL) {
        Rt[8] = Rt[9] = Rt[10] = 0.0;
        Rt[11] = 1.0;
    }
    zelmMatMul(3, 3, camera.intrinsics.A, 3, 4, Rt, P);
}

// Image length of the segment from (0, 0, height) to (length, 0, height), divided by |length|. With q the image of the
// foot and e that of the x axis' point at infinity, the far end is q + length e and the difference of the two pixels
// length (e w - q e_w) / (w w'), so that the length cancels before anything is subtracted.
double scaleAlongX(const CalibratedCamera& camera, double height, double length) {
    double P[12];
    projectionOf(camera, P);
    const double foot[4] = {0.0, 0.0, height, 1.0};
    const double axis[4] = {1.0, 0.0, 0.0, 0.0};
    double q[3];
    double e[3];
    zelmMatMul(3, 4, P, 4, 1, foot, q);
    zelmMatMul(3, 4, P, 4, 1, axis, e);
    const double far = q[2] + length * e[2];
    const double dx = (e[0] - q[0] / q[2] * e[2]) / far;
    const double dy = (e[1] - q[1] / q[2] * e[2]) / far;
    return std::sqrt(dx * dx + dy * dy);
}

}  // namespace
}  // namespace zelm

using namespace zelm;

std::int32_t zelmCstmDrovnCalcMagnification(const Zelm2ViewCalib* tHandle, double dLengthA, double dLengthB,
                                            double* dOutL, double* dOutR) {
    if (tHandle == nullptr || dOutL == nullptr || dOutR == nullptr) {
        return ZELM_ERR_PARAM;
    }
    const double height = dLengthA / kPerUnit;
    const double length = dLengthB / kPerUnit;
    *dOutL = scaleAlongX(calibratedCamera(tHandle->data, Camera::left), height, length);
    *dOutR = scaleAlongX(calibratedCamera(tHandle->data, Camera::right), height, length);
    return ZELM_OK;
}

// The expansion's fields are not tested here: docs/decisions.md#expansion-not-tested.
std::int32_t zelmCstmDrovnCalcHomImgMemSize(const Zelm2ViewCalib* tHandle, std::int32_t iCamera, const ZelmRect* tRoi,
                                            const ZelmCstmExpPrm* tExpPrm, std::int32_t* iWidth, std::int32_t* iHeight,
                                            Point2d* tCentre, double dD) {
    Camera camera{};
    if (tHandle == nullptr || tRoi == nullptr || tExpPrm == nullptr || iWidth == nullptr || iHeight == nullptr ||
        tRoi->x < 0 || tRoi->y < 0 || tRoi->width <= 0 || tRoi->height <= 0 || !selectCamera(iCamera, &camera)) {
        return ZELM_ERR_PARAM;
    }
    const unsigned char* const data = tHandle->data;
    const ZelmCstmExpPrm target = targetOf(imageSizeOf(data, camera), *tRoi, dD);
    double forward[9];
    double backward[9];
    if (const auto s = innerCalcExpHomography(data, iCamera, target, ExpDirection::toExpanded, forward, tExpPrm->dVal);
        s < 0) {
        return s;
    }
    Bounds bounds;
    const auto intrinsics = block::read<ZelmCameraIntrinsics>(data, block::intrinsics(camera));
    if (const auto s = boundCorners(intrinsics, forward, *tRoi, &bounds); s < 0) {
        return s;
    }
    if (const auto s = innerCalcExpHomography(data, iCamera, target, ExpDirection::toSource, backward, tExpPrm->dVal);
        s < 0) {
        return s;
    }
    const Point2d centre =
        transformPoint(backward, (bounds.minX + bounds.maxX) / 2.0, (bounds.minY + bounds.maxY) / 2.0);
    std::int32_t width = 0;
    std::int32_t height = 0;
    if (!sizeOf(bounds.maxX - bounds.minX, &width) || !sizeOf(bounds.maxY - bounds.minY, &height) ||
        !isFinite(centre)) {
        return ZELM_ERR_DEGENERATE;
    }
    *iWidth = width;
    *iHeight = height;
    if (tCentre != nullptr) {
        *tCentre = centre;
    }
    return ZELM_OK;
}
