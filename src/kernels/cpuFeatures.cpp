#include "cpuFeatures.h"

#include <atomic>

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#endif

#if defined(__AVX__)
#error "the processor tests must run on every processor: build this file without AVX flags"
#endif

namespace zelm {

CpuFeatures cpuFeatures;

namespace {

constexpr std::uint32_t kFirstExtendedLeaf = 0x80000000U;

enum Register { kEax, kEbx, kEcx, kEdx };

constexpr std::uint32_t kLeaf1EcxFma = 1U << 12;
constexpr std::uint32_t kLeaf1EcxSse41 = 1U << 19;
constexpr std::uint32_t kLeaf1EcxMovbe = 1U << 22;
constexpr std::uint32_t kLeaf1EcxAvx = 1U << 28;
constexpr std::uint32_t kLeaf7EbxBmi1 = 1U << 3;
constexpr std::uint32_t kLeaf7EbxAvx2 = 1U << 5;
constexpr std::uint32_t kLeaf7EbxBmi2 = 1U << 8;
constexpr std::uint32_t kExtended1EcxLzcnt = 1U << 5;

template <class T>
void publish(T& target, T value) {
    std::atomic_ref<T>(target).store(value, std::memory_order_relaxed);
}

template <class T>
T read(T& source) {
    return std::atomic_ref<T>(source).load(std::memory_order_relaxed);
}

void ensureFilled() {
    if (std::atomic_ref<std::int32_t>(cpuFeatures.filled).load(std::memory_order_acquire) == 0) {
        cpuFeaturesInit();
    }
}

bool basicBit(std::int32_t leaf, Register reg, std::uint32_t mask) {
    return (read(cpuFeatures.basicLeaves[leaf][reg]) & mask) == mask;
}

std::int32_t cappedCount(std::uint32_t reported) {
    const auto count = static_cast<std::int32_t>(reported);
    return count < kMaxCachedLeaves ? count : kMaxCachedLeaves;
}

void publishLeaf(std::uint32_t (&target)[4], CpuidSource query, std::uint32_t leaf) {
    std::uint32_t words[4];
    query(leaf, 0, words);
    for (int i = 0; i < 4; ++i) {
        publish(target[i], words[i]);
    }
}

}  // namespace

std::uint32_t cpuidQuery(std::uint32_t leaf, std::uint32_t subLeaf, std::uint32_t out[4]) {
#if defined(__x86_64__) || defined(__i386__)
    __cpuid_count(leaf, subLeaf, out[kEax], out[kEbx], out[kEcx], out[kEdx]);
#else
    static_cast<void>(leaf);
    static_cast<void>(subLeaf);
    out[kEax] = out[kEbx] = out[kEcx] = out[kEdx] = 0;
#endif
    return out[kEax];
}

void cpuFeaturesFill(CpuidSource query) {
    publishLeaf(cpuFeatures.basicLeaves[0], query, 0);
    const std::int32_t basicCount = cappedCount(read(cpuFeatures.basicLeaves[0][kEax]));
    publish(cpuFeatures.basicCount, basicCount);
    for (std::int32_t k = 1; k <= basicCount; ++k) {
        publishLeaf(cpuFeatures.basicLeaves[k], query, static_cast<std::uint32_t>(k));
    }
    publishLeaf(cpuFeatures.extendedLeaves[0], query, kFirstExtendedLeaf);
    publish(cpuFeatures.extendedCount, cappedCount(read(cpuFeatures.extendedLeaves[0][kEax]) ^ kFirstExtendedLeaf));
    // As many extended leaves as there are basic ones: docs/decisions.md#leaf-count.
    for (std::int32_t k = 1; k <= basicCount; ++k) {
        publishLeaf(cpuFeatures.extendedLeaves[k], query, kFirstExtendedLeaf + static_cast<std::uint32_t>(k));
    }
    std::atomic_ref<std::int32_t>(cpuFeatures.filled).store(1, std::memory_order_release);
}

void cpuFeaturesInit() {
    cpuFeaturesFill(cpuidQuery);
}

std::int32_t cpuHasSse41() {
    ensureFilled();
    return read(cpuFeatures.basicCount) >= 1 && basicBit(1, kEcx, kLeaf1EcxSse41) ? 1 : 0;
}

std::int32_t cpuHasAvx() {
    ensureFilled();
    return read(cpuFeatures.basicCount) >= 1 && basicBit(1, kEcx, kLeaf1EcxAvx) ? 1 : 0;
}

std::int32_t cpuHasAvx2() {
    ensureFilled();
    return read(cpuFeatures.basicCount) >= 7 && basicBit(7, kEbx, kLeaf7EbxAvx2) ? 1 : 0;
}

std::int32_t cpuHasAvx2Set() {
    ensureFilled();
    const std::int32_t basicCount = read(cpuFeatures.basicCount);
    if (basicCount < 1 || !basicBit(1, kEcx, kLeaf1EcxFma)) {
        return 0;
    }
    if (basicCount < 7 || !basicBit(7, kEbx, kLeaf7EbxBmi1 | kLeaf7EbxAvx2) || !basicBit(7, kEbx, kLeaf7EbxBmi2)) {
        return 0;
    }
    if (read(cpuFeatures.extendedCount) < 1 || (read(cpuFeatures.extendedLeaves[1][kEcx]) & kExtended1EcxLzcnt) == 0) {
        return 0;
    }
    return basicBit(1, kEcx, kLeaf1EcxMovbe) ? 1 : 0;
}

}  // namespace zelm
