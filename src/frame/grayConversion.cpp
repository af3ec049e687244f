// Weighted gray of a colour buffer.
#include <cstddef>
#include <cstdint>

#include "zelm/image.h"

namespace {

// Luma weights of ITU-R BT.601 in 1/256; they sum to 256.
constexpr unsigned kRed = 77;
constexpr unsigned kGreen = 150;
constexpr unsigned kBlue = 29;

}  // namespace

int32_t zelmConvertColorToGray_vImageARGB8888toPlanar8(const vImage_Buffer* tSrc, const vImage_Buffer* tDst) {
    if (tSrc == nullptr || tDst == nullptr || tSrc->width == 0 || tSrc->height == 0 || tSrc->data == nullptr ||
        tDst->data == nullptr || tDst->width != tSrc->width || tDst->height != tSrc->height) {
        return ZELM_ERR_PARAM;
    }
    for (std::size_t y = 0; y < tSrc->height; ++y) {
        const auto* const source = static_cast<const std::uint8_t*>(tSrc->data) + y * tSrc->rowBytes;
        auto* const gray = static_cast<std::uint8_t*>(tDst->data) + y * tDst->rowBytes;
        for (std::size_t x = 0; x < tSrc->width; ++x) {
            const std::uint8_t* const argb = source + 4 * x;
            gray[x] = static_cast<std::uint8_t>((kRed * argb[1] + kGreen * argb[2] + kBlue * argb[3]) >> 8);
        }
    }
    return ZELM_OK;
}
