#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "bufferSampling.h"
#include "calibObject.h"
#include "calibratedCamera.h"
#include "distortion.h"
#include "imageBuffer.h"
#include "zelm/misc.h"
#include "zelm/twoViewGeometry.h"

namespace zelm {
namespace {

// Pixels of a row whose positions are computed together: long enough to vectorise, short enough to stay in cache.
constexpr std::int32_t kStretch = 256;

// Calls visit(x, xd, yd) for every pixel of a row.
template <class Visit>
void forEachPosition(const LensDistortion lens, std::int32_t row, std::int32_t width, Visit visit) {
    // Apart, so that the compiler computes neighbouring positions side by side.
    double xd[kStretch];
    double yd[kStretch];
    for (std::int32_t first = 0; first < width; first += kStretch) {
        const std::int32_t count = std::min(kStretch, width - first);
        for (std::int32_t i = 0; i < count; ++i) {
            const Point2d distorted = lens.distort({static_cast<double>(first + i), static_cast<double>(row)});
            xd[i] = distorted.x;
            yd[i] = distorted.y;
        }
        for (std::int32_t i = 0; i < count; ++i) {
            visit(first + i, xd[i], yd[i]);
        }
    }
}

// The gray level at a position rounded half up. Inside the last column and row the four neighbours exist, which spares
// the border tests of the general sampler; both give the same value.
inline std::uint8_t roundedGray(const ZelmImage image, double lastX, double lastY, double x, double y) {
    if (!(x >= 0.0 && y >= 0.0 && x < lastX && y < lastY)) {
        return static_cast<std::uint8_t>(zelmMiscBilinearGrayLevel(&image, x, y) + 0.5);
    }
    const auto ix = static_cast<std::int32_t>(x);
    const auto iy = static_cast<std::int32_t>(y);
    const double fx = x - ix;
    const double fy = y - iy;
    const std::uint8_t* const p = image.pixels + static_cast<std::ptrdiff_t>(iy) * image.width + ix;
    const std::uint8_t* const q = p + image.width;
    const double gray = ((1.0 - fx) * p[0] + fx * p[1]) * (1.0 - fy) + ((1.0 - fx) * q[0] + fx * q[1]) * fy;
    return static_cast<std::uint8_t>(gray + 0.5);
}

}  // namespace
}  // namespace zelm

using namespace zelm;

std::int32_t zelm2ViewUnDistortImage(const Zelm2ViewCalib* tHandle, std::int32_t iCamera, const unsigned char* ucSrc,
                                     unsigned char* ucDst) {
    Camera camera{};
    if (tHandle == nullptr || ucSrc == nullptr || ucDst == nullptr || !selectCamera(iCamera, &camera)) {
        return ZELM_ERR_PARAM;
    }
    const ImageSize size = imageSizeOf(tHandle->data, camera);
    const auto intrinsics = block::read<ZelmCameraIntrinsics>(tHandle->data, block::intrinsics(camera));
    const LensDistortion lens(intrinsics, intrinsics.theta);
    // The record has no const pixels; nothing writes through it here.
    const ZelmImage image{const_cast<unsigned char*>(ucSrc), size.width, size.height};
    const double lastX = static_cast<double>(size.width) - 1.0;
    const double lastY = static_cast<double>(size.height) - 1.0;
    for (std::int32_t y = 0; y < size.height; ++y) {
        unsigned char* const row = ucDst + static_cast<std::ptrdiff_t>(y) * size.width;
        forEachPosition(lens, y, size.width, [=](std::int32_t x, double xd, double yd) {
            row[x] = roundedGray(image, lastX, lastY, xd, yd);
        });
    }
    return ZELM_OK;
}

std::int32_t zelm2ViewUnDistortImage_vImageARGB8888(const Zelm2ViewCalib* tHandle, std::int32_t iCamera,
                                                    const vImage_Buffer* tSrc, const vImage_Buffer* tDst) {
    Camera camera{};
    if (!areBuffersOf(tHandle, iCamera, tSrc, tDst, &camera)) {
        return ZELM_ERR_PARAM;
    }
    const ImageSize size = imageSizeOf(tHandle->data, camera);
    const auto intrinsics = block::read<ZelmCameraIntrinsics>(tHandle->data, block::intrinsics(camera));
    const LensDistortion lens(intrinsics, intrinsics.theta);
    for (std::int32_t y = 0; y < size.height; ++y) {
        auto* const row = static_cast<std::uint8_t*>(tDst->data) + static_cast<std::size_t>(y) * tDst->rowBytes;
        forEachPosition(lens, y, size.width, [&](std::int32_t x, double xd, double yd) {
            std::uint8_t* const pixel = row + static_cast<std::ptrdiff_t>(x) * 4;
            pixel[0] = 255;
            sampleBilinearARGB8888(*tSrc, xd, yd, pixel[1], pixel[2], pixel[3]);
        });
    }
    return ZELM_OK;
}
