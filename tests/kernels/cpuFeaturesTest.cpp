// The cache of identification words and the feature tests, on made-up processors and on this one.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "cpuFeatures.h"
#include "processors.h"

namespace {

using zelm::cpuFeatures;
using zelmtest::basicQueries;
using zelmtest::extendedQueries;
using zelmtest::ForcedProcessor;
using zelmtest::Processor;

struct GateCase {
    const char* name;
    void (*spoil)(Processor&);
};

constexpr GateCase kGateCases[] = {
    {"FMA", [](Processor& p) { p.leaf1Ecx &= ~(1U << 12); }},
    {"BMI1", [](Processor& p) { p.leaf7Ebx &= ~(1U << 3); }},
    {"AVX2", [](Processor& p) { p.leaf7Ebx &= ~(1U << 5); }},
    {"BMI2", [](Processor& p) { p.leaf7Ebx &= ~(1U << 8); }},
    {"LZCNT", [](Processor& p) { p.extended1Ecx = 0; }},
    {"MOVBE", [](Processor& p) { p.leaf1Ecx &= ~(1U << 22); }},
    {"leaf 7", [](Processor& p) { p.basicMaximum = 6; }},
    {"leaf 1", [](Processor& p) { p.basicMaximum = 0; }},
    {"extended leaves", [](Processor& p) { p.extendedMaximum = 0x80000000U; }},
    {"an extended range", [](Processor& p) { p.extendedMaximum = 0; }},
};

TEST(CpuFeatures, AProcessorWithTheWholeSetPassesTheAvx2Gate) {
    const ForcedProcessor forced{Processor{}};
    EXPECT_EQ(zelm::cpuHasAvx2Set(), 1);
    EXPECT_EQ(zelm::cpuHasSse41(), 1);
    EXPECT_EQ(zelm::cpuHasAvx(), 1);
    EXPECT_EQ(zelm::cpuHasAvx2(), 1);
}

TEST(CpuFeatures, EachMissingPieceClosesTheAvx2Gate) {
    for (const GateCase& gate : kGateCases) {
        Processor processor;
        gate.spoil(processor);
        const ForcedProcessor forced{processor};
        EXPECT_EQ(zelm::cpuHasAvx2Set(), 0) << "without " << gate.name;
    }
}

TEST(CpuFeatures, SixBasicLeavesHideLeafSevenButNotLeafOne) {
    Processor processor;
    processor.basicMaximum = 6;
    const ForcedProcessor forced{processor};
    EXPECT_EQ(zelm::cpuHasAvx2(), 0);
    EXPECT_EQ(zelm::cpuHasSse41(), 1);
    EXPECT_EQ(zelm::cpuHasAvx(), 1);
    EXPECT_EQ(cpuFeatures.basicLeaves[7][1], 0U);
}

// The counts decide, whatever the words beyond them hold.
TEST(CpuFeatures, LeavesBeyondTheCountAreNotConsulted) {
    const ForcedProcessor forced{Processor{}};
    cpuFeatures.basicCount = 6;
    EXPECT_EQ(zelm::cpuHasAvx2(), 0);
    EXPECT_EQ(zelm::cpuHasAvx2Set(), 0);
    EXPECT_EQ(zelm::cpuHasSse41(), 1);
    cpuFeatures.basicCount = 0;
    EXPECT_EQ(zelm::cpuHasSse41(), 0);
    EXPECT_EQ(zelm::cpuHasAvx(), 0);
    EXPECT_EQ(zelm::cpuHasAvx2Set(), 0);
    cpuFeatures.basicCount = 13;
    EXPECT_EQ(zelm::cpuHasAvx2Set(), 1);
    cpuFeatures.extendedCount = 0;
    EXPECT_EQ(zelm::cpuHasAvx2Set(), 0);
}

TEST(CpuFeatures, TwentyBasicLeavesAreCachedUpToSixteen) {
    Processor processor;
    processor.basicMaximum = 20;
    const ForcedProcessor forced{processor};
    EXPECT_EQ(cpuFeatures.basicCount, 16);
    EXPECT_EQ(cpuFeatures.basicLeaves[16][0], 16U);
    EXPECT_EQ(basicQueries, 17);
    EXPECT_EQ(zelm::cpuHasAvx2Set(), 1);
}

TEST(CpuFeatures, ABasicMaximumBeyondTheSignedRangeCachesNoLeaf) {
    Processor processor;
    processor.basicMaximum = 0x80000001U;
    const ForcedProcessor forced{processor};
    EXPECT_LT(cpuFeatures.basicCount, 0);
    EXPECT_EQ(basicQueries, 1);
    EXPECT_EQ(zelm::cpuHasSse41(), 0);
    EXPECT_EQ(zelm::cpuHasAvx2Set(), 0);
}

TEST(CpuFeatures, AsManyExtendedLeavesAreReadAsThereAreBasicOnes) {
    Processor processor;
    processor.basicMaximum = 3;
    processor.extendedMaximum = 0x80000008U;
    const ForcedProcessor forced{processor};
    EXPECT_EQ(cpuFeatures.extendedCount, 8);
    EXPECT_EQ(extendedQueries, 4);
    EXPECT_EQ(cpuFeatures.extendedLeaves[3][0], 0x80000003U);
    EXPECT_EQ(cpuFeatures.extendedLeaves[4][0], 0U);
}

TEST(CpuFeatures, TheExtendedCountIsCappedAtSixteenAndANegativeOneStays) {
    Processor processor;
    processor.extendedMaximum = 0x8000001FU;
    {
        const ForcedProcessor forced{processor};
        EXPECT_EQ(cpuFeatures.extendedCount, 16);
    }
    processor.extendedMaximum = 5;  // a processor without extended leaves
    const ForcedProcessor forced{processor};
    EXPECT_LT(cpuFeatures.extendedCount, 0);
    EXPECT_EQ(zelm::cpuHasAvx2Set(), 0);
}

TEST(CpuFeatures, WithoutSse41ThePredicateIsZero) {
    Processor processor;
    processor.leaf1Ecx &= ~(1U << 19);
    const ForcedProcessor forced{processor};
    EXPECT_EQ(zelm::cpuHasSse41(), 0);
}

TEST(CpuFeatures, TheFirstPredicateFillsTheCacheFromTheProcessor) {
    std::memset(&cpuFeatures, 0, sizeof cpuFeatures);
    zelm::cpuHasSse41();
    EXPECT_EQ(cpuFeatures.filled, 1);
    std::uint32_t words[4];
    EXPECT_EQ(zelm::cpuidQuery(0, 0, words), words[0]);
    EXPECT_EQ(cpuFeatures.basicLeaves[0][1], words[1]);
#if defined(__x86_64__) || defined(__i386__)
    EXPECT_GE(cpuFeatures.basicCount, 1);
    EXPECT_EQ(zelm::cpuHasSse41() != 0, __builtin_cpu_supports("sse4.1") != 0);
    EXPECT_EQ(zelm::cpuHasAvx2() != 0, __builtin_cpu_supports("avx2") != 0);
#endif
}

TEST(CpuFeatures, FirstUseFromManyThreadsAgrees) {
    for (int round = 0; round < 50; ++round) {
        std::memset(&cpuFeatures, 0, sizeof cpuFeatures);
        std::vector<std::thread> threads;
        std::int32_t results[8] = {};
        for (std::int32_t& result : results) {
            threads.emplace_back([&result] { result = zelm::cpuHasAvx2Set() + 2 * zelm::cpuHasSse41(); });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        for (const std::int32_t result : results) {
            EXPECT_EQ(result, results[0]);
        }
    }
}

}  // namespace
