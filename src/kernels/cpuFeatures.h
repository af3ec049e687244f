// The processor's identification words, cached once a process, and the feature tests that choose a kernel tier.
//
// The tests consult no operating-system state (OSXSAVE, XCR0): docs/decisions.md#no-os-state.
#ifndef ZELM_CPU_FEATURES_H
#define ZELM_CPU_FEATURES_H

#include <cstdint>

namespace zelm {

constexpr std::int32_t kMaxCachedLeaves = 16;

struct CpuFeatures {
    // Entry k: EAX, EBX, ECX, EDX of leaf k (of leaf 0x80000000 + k), sub-leaf 0.
    std::uint32_t basicLeaves[kMaxCachedLeaves + 1][4];
    std::uint32_t extendedLeaves[kMaxCachedLeaves + 1][4];
    std::int32_t basicCount;     // valid basic leaves above 0
    std::int32_t extendedCount;  // valid extended leaves above 0
    std::int32_t filled;         // 0 until cpuFeaturesInit has run
};

// The process-wide cache. Tests fill it with made-up processors; everyone else uses the predicates.
extern CpuFeatures cpuFeatures;

// One identification query: EAX, EBX, ECX, EDX to out; returns EAX. All zero on processors other than x86.
std::uint32_t cpuidQuery(std::uint32_t leaf, std::uint32_t subLeaf, std::uint32_t out[4]);

// Fills the cache from a source of identification words. Threads that race here write the same words with relaxed
// stores, the flag last.
using CpuidSource = std::uint32_t (*)(std::uint32_t leaf, std::uint32_t subLeaf, std::uint32_t out[4]);
void cpuFeaturesFill(CpuidSource query);

// Fills the cache from the processor.
void cpuFeaturesInit();

std::int32_t cpuHasSse41();
std::int32_t cpuHasAvx();
std::int32_t cpuHasAvx2();
// The gate of the AVX2 tier: FMA, BMI1, AVX2, BMI2, LZCNT and MOVBE.
std::int32_t cpuHasAvx2Set();

}  // namespace zelm

#endif
