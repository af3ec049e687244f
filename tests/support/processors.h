// Made-up processors: identification words with which the tests fill the cache, so that every kernel tier can be
// forced.
#ifndef ZELM_TEST_PROCESSORS_H
#define ZELM_TEST_PROCESSORS_H

#include <cstdint>
#include <cstring>

#include "cpuFeatures.h"

namespace zelmtest {

struct Processor {
    std::uint32_t basicMaximum = 13;
    std::uint32_t extendedMaximum = 0x80000008U;
    std::uint32_t leaf1Ecx = 1U << 12 | 1U << 19 | 1U << 22 | 1U << 28;  // FMA, SSE4.1, MOVBE, AVX
    std::uint32_t leaf7Ebx = 1U << 3 | 1U << 5 | 1U << 8;                // BMI1, AVX2, BMI2
    std::uint32_t extended1Ecx = 1U << 5;                                // LZCNT
};

// The processor that madeUpQuery answers for, and what it was asked.
inline Processor queriedProcessor;
inline int basicQueries = 0;
inline int extendedQueries = 0;

inline std::uint32_t madeUpQuery(std::uint32_t leaf, std::uint32_t, std::uint32_t out[4]) {
    const Processor& p = queriedProcessor;
    const bool extended = leaf >= 0x80000000U;
    (extended ? extendedQueries : basicQueries) += 1;
    // Words that no predicate reads carry the leaf's number, so that tests see what was stored where.
    out[0] = out[1] = out[2] = out[3] = leaf;
    if (leaf == 0) {
        out[0] = p.basicMaximum;
    } else if (leaf == 1) {
        out[2] = p.leaf1Ecx;
    } else if (leaf == 7) {
        out[1] = p.leaf7Ebx;
    } else if (leaf == 0x80000000U) {
        out[0] = p.extendedMaximum;
    } else if (leaf == 0x80000001U) {
        out[2] = p.extended1Ecx;
    }
    return out[0];
}

// Fills the cache with a made-up processor; the real one comes back at the end of the scope.
class ForcedProcessor {
public:
    explicit ForcedProcessor(const Processor& processor) {
        std::memset(&zelm::cpuFeatures, 0, sizeof zelm::cpuFeatures);
        queriedProcessor = processor;
        basicQueries = extendedQueries = 0;
        zelm::cpuFeaturesFill(madeUpQuery);
    }
    ForcedProcessor(const ForcedProcessor&) = delete;
    ForcedProcessor& operator=(const ForcedProcessor&) = delete;
    ~ForcedProcessor() { std::memset(&zelm::cpuFeatures, 0, sizeof zelm::cpuFeatures); }
};

inline Processor plainProcessor() {
    Processor p;
    p.leaf1Ecx = p.leaf7Ebx = p.extended1Ecx = 0;
    return p;
}

// SSE4.1 without the AVX2 set.
inline Processor sse41Processor() {
    Processor p = plainProcessor();
    p.leaf1Ecx = 1U << 19;
    return p;
}

// Whether this machine can run the SSE4.1 tier at all.
inline bool machineHasSse41Tier() {
    std::memset(&zelm::cpuFeatures, 0, sizeof zelm::cpuFeatures);
#if defined(__x86_64__) || defined(__i386__)
    return zelm::cpuHasSse41() != 0;
#else
    return false;
#endif
}

// Whether this machine can run the AVX2 tier at all.
inline bool machineHasAvx2Tier() {
    std::memset(&zelm::cpuFeatures, 0, sizeof zelm::cpuFeatures);
#if defined(__x86_64__)
    return zelm::cpuHasAvx2Set() != 0;
#else
    return false;
#endif
}

}  // namespace zelmtest

#endif
