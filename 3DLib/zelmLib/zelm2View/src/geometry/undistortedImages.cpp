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

// The distorted positions of neighbouring pixels of a row.
struct Stretch {
    double x[kStretch];
    double y[kStretch];
};

// Calls visit(first, count, stretch) for each stretch of a row.
template <class Visit>
void forEachStretch(const LensDistortion lens, std::int32_t row, std::int32_t width, Visit visit) {
    Stretch at;
    for (std::int32_t first = 0; first < width; first += kStretch) {
        const std::int32_t count = std::min(kStretch, width - first);
        for (std::int32_t i = 0; i < count; ++i) {
            const Point2d distorted = lens.distort({static_cast<double>(first + i), static_cast<double>(row)});
            at.x[i] = distorted.x;
            at.y[i] = distorted.y;
        }
        visit(first, count, at);
    }
}

// The gray levels as doubles: a load is cheaper than a conversion, of which a pixel would take four.
struct GrayLevels {
    double of[256];
    GrayLevels() {
        for (int i = 0; i < 256; ++i) {
            of[i] = i;
        }
    }
};

// Gray levels at positions of an image, rounded half up, as zelmMiscBilinearGrayLevel has them. Inside the last column
// and row the four neighbours exist, which spares its border tests.
class GraySampler {
public:
    explicit GraySampler(const ZelmImage& picture)
        : image(picture),
          lastX(static_cast<double>(picture.width) - 1.0),
          lastY(static_cast<double>(picture.height) - 1.0) {}

    void sample(const Stretch& at, std::int32_t count, std::uint8_t* gray) {
        // In passes, so that the compiler does neighbouring positions side by side.
        for (std::int32_t i = 0; i < count; ++i) {
            const bool isInside = at.x[i] >= 0.0 && at.x[i] < lastX && at.y[i] >= 0.0 && at.y[i] < lastY;
            inside[i] = isInside ? 1 : 0;
            column[i] = static_cast<std::int32_t>(isInside ? at.x[i] : 0.0);
            row[i] = static_cast<std::int32_t>(isInside ? at.y[i] : 0.0);
        }
        for (std::int32_t i = 0; i < count; ++i) {
            gray[i] = inside[i] != 0 ? blend(at, i) : general(at, i);
        }
    }

private:
    [[nodiscard]] std::uint8_t blend(const Stretch& at, std::int32_t i) const {
        const double fx = at.x[i] - column[i];
        const double fy = at.y[i] - row[i];
        const std::uint8_t* const p = image.pixels + static_cast<std::ptrdiff_t>(row[i]) * image.width + column[i];
        const std::uint8_t* const q = p + image.width;
        const double upper = mixAlongRow(levels.of[p[0]], levels.of[p[1]], fx);
        const double lower = mixAlongRow(levels.of[q[0]], levels.of[q[1]], fx);
        return static_cast<std::uint8_t>(mixRows(upper, lower, fy) + 0.5);
    }
    [[nodiscard]] std::uint8_t general(const Stretch& at, std::int32_t i) const {
        return static_cast<std::uint8_t>(zelmMiscBilinearGrayLevel(&image, at.x[i], at.y[i]) + 0.5);
    }

    ZelmImage image;
    double lastX, lastY;
    GrayLevels levels;
    std::int32_t inside[kStretch];
    std::int32_t column[kStretch];
    std::int32_t row[kStretch];
};

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
    GraySampler sampler({const_cast<unsigned char*>(ucSrc), size.width, size.height});
    for (std::int32_t y = 0; y < size.height; ++y) {
        unsigned char* const row = ucDst + static_cast<std::ptrdiff_t>(y) * size.width;
        forEachStretch(lens, y, size.width, [&](std::int32_t first, std::int32_t count, const Stretch& at) {
            sampler.sample(at, count, row + first);
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
        forEachStretch(lens, y, size.width, [&](std::int32_t first, std::int32_t count, const Stretch& at) {
            for (std::int32_t i = 0; i < count; ++i) {
                std::uint8_t* const pixel = row + static_cast<std::ptrdiff_t>(first + i) * 4;
                pixel[0] = 255;
                sampleBilinearARGB8888(*tSrc, at.x[i], at.y[i], pixel[1], pixel[2], pixel[3]);
            }
        });
    }
    return ZELM_OK;
}
