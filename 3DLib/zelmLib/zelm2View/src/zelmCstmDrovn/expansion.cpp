// Images expanded by pure magnification.
//
// The sampling grid is separable: the column positions are computed once for a stretch of columns, and the two source
// rows around a destination row, mixed along x, serve all destination rows that fall between them. What is left a pixel
// is one blend. The range, the places and both mixes are those of sampleBilinearPlanar8 and sampleBilinearARGB8888.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "bufferSampling.h"
#include "calibObject.h"
#include "imageBuffer.h"
#include "transferHomography.h"
#include "zelm/cstmGeometry.h"

namespace zelm {
namespace {

// Columns whose positions are held at a time: long enough to vectorise, short enough to stay in the nearest cache.
constexpr std::int32_t kStretch = 256;

struct SourceRows {
    const std::uint8_t* pixels;
    std::ptrdiff_t stride;
    ImageSize size;
};

struct TargetRows {
    std::uint8_t* pixels;
    std::ptrdiff_t stride;
    ImageSize size;
};

// Where destination pixel i lies in the source: start + i * step.
struct Axis {
    double start;
    double step;

    [[nodiscard]] double at(std::int32_t i) const { return start + i * step; }
};

Axis axisOf(double reference, std::int32_t size, double m) {
    return {reference - static_cast<double>(size / 2) / m, 1.0 / m};
}

using Place = BilinearPlace<std::int32_t>;

struct Gray {
    static constexpr int kBytes = 1;
    static constexpr std::uint8_t kOutside[kBytes] = {0};

    static bool isInside(double position, std::int32_t size) { return isSampledPlanar8(position, size); }
    static void mix(const double* p, const double* q, double fraction, double* out) {
        out[0] = mixAlongRow(p[0], q[0], fraction);
    }
};

// Narrower than gray, nothing beyond the centre of the last column and row: docs/decisions.md#colour-border.
struct Argb {
    static constexpr int kBytes = 4;
    static constexpr std::uint8_t kOutside[kBytes] = {255, 0, 0, 0};

    static bool isInside(double position, std::int32_t size) { return isSampledARGB8888(position, size); }
    static void mix(const double* p, const double* q, double fraction, double* out) {
        for (int c = 0; c < kBytes; ++c) {
            out[c] = mixAlongRow(p[c], q[c], fraction);
        }
        out[0] = 255.0;  // alpha stays opaque through the blend
    }
};

template <class Pixel>
void fillOutside(std::uint8_t* out, std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i) {
        std::copy_n(Pixel::kOutside, Pixel::kBytes, out + static_cast<std::ptrdiff_t>(i) * Pixel::kBytes);
    }
}

// One stretch of columns: the positions inside the source, which follow one another, and two source rows mixed along x.
template <class Pixel>
class Stretch {
public:
    Stretch(const SourceRows& source, const Axis& columns, std::int32_t first, std::int32_t size)
        : rows(source), total(size) {
        for (std::int32_t i = 0; i < size; ++i) {
            const double x = columns.at(first + i);
            if (Pixel::isInside(x, source.size.width)) {
                before = count == 0 ? i : before;
                places[count] = Place(x, source.size.width);
                count += 1;
            }
        }
    }

    void write(double y, std::uint8_t* out) {
        if (count == 0 || !Pixel::isInside(y, rows.size.height)) {
            fillOutside<Pixel>(out, total);
            return;
        }
        const Place at(y, rows.size.height);
        hold(at);
        fillOutside<Pixel>(out, before);
        blend(at.fraction, out + static_cast<std::ptrdiff_t>(before) * Pixel::kBytes);
        const std::int32_t end = before + count;
        fillOutside<Pixel>(out + static_cast<std::ptrdiff_t>(end) * Pixel::kBytes, total - end);
    }

private:
    // Has the mixed rows of a place at hand; going down, the lower row of the last place is often its upper one.
    void hold(const Place& at) {
        if (upperRow != at.near) {
            if (lowerRow == at.near) {
                std::swap(upper, lower);
                std::swap(upperRow, lowerRow);
            } else {
                mixRow(at.near, upper);
                upperRow = at.near;
            }
        }
        if (lowerRow != at.far) {
            mixRow(at.far, lower);
            lowerRow = at.far;
        }
    }
    void mixRow(std::int32_t row, double* out) {
        const std::int32_t first = places[0].near;
        const std::int32_t bytes = (places[count - 1].far - first + 1) * Pixel::kBytes;
        const std::uint8_t* const from =
            rows.pixels + row * rows.stride + static_cast<std::ptrdiff_t>(first) * Pixel::kBytes;
        for (std::int32_t i = 0; i < bytes; ++i) {
            unpacked[i] = from[i];
        }
        for (std::int32_t i = 0; i < count; ++i) {
            const Place& at = places[i];
            Pixel::mix(unpacked + (at.near - first) * Pixel::kBytes, unpacked + (at.far - first) * Pixel::kBytes,
                       at.fraction, out + i * Pixel::kBytes);
        }
    }
    void blend(double fraction, std::uint8_t* out) const {
        const double* const a = upper;
        const double* const b = lower;
        const std::int32_t bytes = count * Pixel::kBytes;
        for (std::int32_t i = 0; i < bytes; ++i) {
            out[i] = static_cast<std::uint8_t>(static_cast<std::int32_t>(mixRows(a[i], b[i], fraction) + 0.5));
        }
    }

    SourceRows rows;
    std::int32_t total;
    std::int32_t before = 0;  // columns left of the source
    std::int32_t count = 0;   // columns inside it
    std::int32_t upperRow = -1;
    std::int32_t lowerRow = -1;
    Place places[kStretch];
    double unpacked[(kStretch + 2) * Pixel::kBytes];  // positions are at most one pixel apart
    double mixed[2][kStretch * Pixel::kBytes];
    double* upper = mixed[0];
    double* lower = mixed[1];
};

template <class Pixel>
void expand(const SourceRows& source, const ZelmCstmExpPrm& tExpPrm, const TargetRows& target) {
    const Axis columns = axisOf(tExpPrm.dX, tExpPrm.iWidth, tExpPrm.dVal);
    const Axis rows = axisOf(tExpPrm.dY, tExpPrm.iHeight, tExpPrm.dVal);
    for (std::int32_t first = 0; first < target.size.width; first += std::min(kStretch, target.size.width - first)) {
        Stretch<Pixel> stretch(source, columns, first, std::min(kStretch, target.size.width - first));
        std::uint8_t* const out = target.pixels + static_cast<std::ptrdiff_t>(first) * Pixel::kBytes;
        for (std::int32_t r = 0; r < target.size.height; ++r) {
            stretch.write(rows.at(r), out + r * target.stride);
        }
    }
}

template <class Pixel>
std::int32_t expandBuffers(const Zelm2ViewCalib* tHandle, std::int32_t iCamera, const vImage_Buffer* tSrc,
                           const ZelmCstmExpPrm* tExpPrm, const vImage_Buffer* tDst) {
    Camera camera{};
    if (tExpPrm == nullptr || tHandle == nullptr || tSrc == nullptr || tDst == nullptr || !isExpansion(*tExpPrm) ||
        !selectCamera(iCamera, &camera)) {
        return ZELM_ERR_PARAM;
    }
    const ImageSize source = imageSizeOf(tHandle->data, camera);
    const ImageSize target{tExpPrm->iWidth, tExpPrm->iHeight};
    if (!isKernelBufferOf(*tSrc, source) || !isKernelBufferOf(*tDst, target)) {
        return ZELM_ERR_PARAM;
    }
    expand<Pixel>({static_cast<const std::uint8_t*>(tSrc->data), static_cast<std::ptrdiff_t>(tSrc->rowBytes), source},
                  *tExpPrm,
                  {static_cast<std::uint8_t*>(tDst->data), static_cast<std::ptrdiff_t>(tDst->rowBytes), target});
    return ZELM_OK;
}

}  // namespace
}  // namespace zelm

using namespace zelm;

std::int32_t zelmCstmDrovnExpandImage(const Zelm2ViewCalib* tHandle, std::int32_t iCamera, const unsigned char* ucSrc,
                                      const ZelmCstmExpPrm* tExpPrm, unsigned char* ucDst) {
    Camera camera{};
    if (tExpPrm == nullptr || tHandle == nullptr || ucSrc == nullptr || ucDst == nullptr || !isExpansion(*tExpPrm) ||
        !selectCamera(iCamera, &camera)) {
        return ZELM_ERR_PARAM;
    }
    const ImageSize source = imageSizeOf(tHandle->data, camera);
    expand<Gray>({ucSrc, source.width, source}, *tExpPrm,
                 {ucDst, tExpPrm->iWidth, {tExpPrm->iWidth, tExpPrm->iHeight}});
    return ZELM_OK;
}

std::int32_t zelmCstmDrovnExpandImage_vImagePlanar8(const Zelm2ViewCalib* tHandle, std::int32_t iCamera,
                                                    const vImage_Buffer* tSrc, const ZelmCstmExpPrm* tExpPrm,
                                                    const vImage_Buffer* tDst) {
    return expandBuffers<Gray>(tHandle, iCamera, tSrc, tExpPrm, tDst);
}

std::int32_t zelmCstmDrovnExpandImage_vImageARGB8888(const Zelm2ViewCalib* tHandle, std::int32_t iCamera,
                                                     const vImage_Buffer* tSrc, const ZelmCstmExpPrm* tExpPrm,
                                                     const vImage_Buffer* tDst) {
    return expandBuffers<Argb>(tHandle, iCamera, tSrc, tExpPrm, tDst);
}
