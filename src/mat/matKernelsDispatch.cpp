#include "cpuFeatures.h"
#include "matKernels.h"

#if defined(__AVX__)
#error "the dispatch must run on every processor: build this file without AVX flags"
#endif

namespace zelm {

const MatKernels& matTierOfProcessor() {
#ifdef ZELM_AVX2_TIER
    if (cpuHasAvx2Set() != 0) {
        return kMatAvx2Tier;
    }
#endif
    return kMatPlainTier;
}

}  // namespace zelm
