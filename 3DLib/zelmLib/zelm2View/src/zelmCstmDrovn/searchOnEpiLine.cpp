// The exported forms of the search: their arguments are checked here, in the documented order.
#include <cstdint>

#include "searchEngine.h"
#include "zelm/cstmSearch.h"

namespace zelm {
namespace {

bool isTemplateUsable(const MaskedPlane& plane, const ZelmCstmRefImg& ref) {
    return plane.pixels != nullptr && plane.width >= 1 && plane.height >= 1 && ref.anchorX >= 0.0 &&
           ref.anchorX < plane.width && ref.anchorY >= 0.0 && ref.anchorY < plane.height;
}

bool isSearchUsable(const MaskedPlane& plane, const ZelmCstmSearchPrm& prm) {
    return plane.pixels != nullptr && plane.width >= 1 && plane.height >= 1 && prm.roiX >= 0 && prm.roiY >= 0 &&
           prm.roiWidth >= 1 && prm.roiWidth <= plane.width && prm.roiHeight >= 1 && prm.roiHeight <= plane.height &&
           prm.maxResults >= 1 && static_cast<std::uint32_t>(prm.mode) <= ZELM_CSTM_FULL;
}

// Written so that a statistic that is not a number is refused too.
bool areStatisticsUsable(const ZelmCstmRefImg& ref) {
    for (int p = 0; p < 3; ++p) {
        if (!(ref.mean[p] >= 0.0 && ref.sigma[p] >= 0.0)) {
            return false;
        }
    }
    return true;
}

std::int32_t searchPlanes(const ZelmCstmRefImg& ref, const MaskedPlane& tmpl, const ZelmCstmSearchPrm& prm,
                          const MaskedPlane& image, std::int32_t* count, ZelmCstmMatch* matches) {
    const bool usable = isTemplateUsable(tmpl, ref) && isSearchUsable(image, prm) &&
                        (image.mask != nullptr || areStatisticsUsable(ref));
    if (!usable) {
        return ZELM_ERR_PARAM;
    }
    return innerSearchOnEpiLine({tmpl, ref.mean, ref.sigma, ref.anchorX, ref.anchorY}, image, prm, count, matches);
}

}  // namespace
}  // namespace zelm

int32_t zelmCstmDrovnSearchOnEpiLine(const ZelmCstmRefImg* tRef, const ZelmCstmSearchPrm* tPrm, int32_t* iCount,
                                     ZelmCstmMatch* taMatches) {
    if (tRef == nullptr || tPrm == nullptr || iCount == nullptr || taMatches == nullptr) {
        return ZELM_ERR_PARAM;
    }
    return zelm::searchPlanes(*tRef, zelm::densePlane(tRef->width, tRef->height, tRef->pixels, tRef->mask), *tPrm,
                              zelm::densePlane(tPrm->width, tPrm->height, tPrm->pixels, tPrm->mask), iCount, taMatches);
}

int32_t zelmCstmDrovnSearchOnEpiLine_vImagePlanar8(const ZelmCstmRefImg* tRef, const vImage_Buffer* tRefImage,
                                                   const vImage_Buffer* tRefMask, const ZelmCstmSearchPrm* tPrm,
                                                   const vImage_Buffer* tImage, const vImage_Buffer* tMask,
                                                   int32_t* iCount, ZelmCstmMatch* taMatches) {
    zelm::MaskedPlane tmpl{};
    zelm::MaskedPlane image{};
    if (tRef == nullptr || tRefImage == nullptr || tPrm == nullptr || tImage == nullptr || iCount == nullptr ||
        taMatches == nullptr || !zelm::planeOfBuffers(*tRefImage, tRefMask, &tmpl) ||
        !zelm::planeOfBuffers(*tImage, tMask, &image)) {
        return ZELM_ERR_PARAM;
    }
    return zelm::searchPlanes(*tRef, tmpl, *tPrm, image, iCount, taMatches);
}
