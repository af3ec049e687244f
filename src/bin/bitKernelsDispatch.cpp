#include "bitKernels.h"
#include "cpuFeatures.h"

#if defined(__AVX__)
#error "the dispatch must run on every processor: build this file without AVX flags"
#endif

namespace zelm {

const BitKernels& bitTierOfProcessor() {
#ifdef ZELM_AVX2_TIER
    if (cpuHasAvx2Set() != 0) {
        return kBitAvx2Tier;
    }
#endif
    return kBitPlainTier;
}

}  // namespace zelm
