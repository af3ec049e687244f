// Runs every registered fault case with its k-th allocation failing, for every k, and checks that every function of the
// public headers has a case.
#include <cstdlib>
#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "faultCase.h"

namespace zelmtest {
namespace {

std::set<std::string> exportedFunctions() {
    std::set<std::string> names;
    const std::regex declaration(R"(\nZELM_API[^;(]*?(\w+)\s*\()");
    for (const auto& file : std::filesystem::directory_iterator(ZELM_PUBLIC_HEADERS)) {
        std::ifstream in(file.path());
        std::stringstream text;
        text << in.rdbuf();
        const std::string source = text.str();
        for (std::sregex_iterator it(source.begin(), source.end(), declaration), end; it != end; ++it) {
            names.insert((*it)[1]);
        }
    }
    return names;
}

// A case that still meets faults after so many is looping.
constexpr long kMaxAllocations = 100000;

void runCase(const FaultCase& faultCase) {
    SCOPED_TRACE(faultCase.function);
    long faults = 0;
    for (long k = 1; k <= kMaxAllocations; ++k) {
        SCOPED_TRACE("allocation " + std::to_string(k) + " fails");
        const long liveBefore = allocCounters().live;
        FaultProbe probe(k);
        faultCase.body(probe);
        EXPECT_EQ(allocCounters().live, liveBefore) << "leaked blocks";
        if (!probe.failed()) {
            if (faultCase.allocates) {
                EXPECT_GT(faults, 0) << "declared as allocating, but never allocates";
            } else {
                EXPECT_EQ(probe.allocations(), 0) << "declared as not allocating";
            }
            return;
        }
        faults += 1;
        if (::testing::Test::HasFailure()) {
            return;
        }
    }
    ADD_FAILURE() << "still allocating after " << kMaxAllocations << " faults";
}

TEST(FaultCases, EveryExportedFunctionHasExactlyOneCase) {
    std::multiset<std::string> covered;
    for (const auto& faultCase : faultCases()) {
        covered.insert(faultCase.function);
    }
    const auto exported = exportedFunctions();
    EXPECT_GT(exported.size(), 50U) << "the headers were not read";
    for (const auto& name : exported) {
        EXPECT_EQ(covered.count(name), 1U) << name;
    }
    for (const auto& name : covered) {
        EXPECT_TRUE(exported.contains(name)) << name << " is not exported";
    }
}

TEST(FaultCases, EachFailingAllocationIsReportedAndNothingLeaks) {
    for (const auto& faultCase : faultCases()) {
        runCase(faultCase);
    }
}

// Cheap functions are called ten thousand times, those that calibrate or search some dozens of times at least.
constexpr int kMostCalls = 10000;
constexpr int kLeastCalls = 30;

// What the process has taken from the heap, where the C library tells.
std::size_t heapInUse() {
#ifdef __GLIBC__
    return mallinfo2().uordblks;
#else
    return 0;
#endif
}

int callsWithin(const FaultCase& faultCase, std::chrono::milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    int calls = 0;
    while (calls < kLeastCalls || (calls < kMostCalls && std::chrono::steady_clock::now() < end)) {
        FaultProbe probe(0);
        faultCase.body(probe);
        calls += 1;
    }
    return calls;
}

TEST(FaultCases, ManyCallsTakeNoMemoryForGood) {
    for (const auto& faultCase : faultCases()) {
        SCOPED_TRACE(faultCase.function);
        callsWithin(faultCase, std::chrono::milliseconds(0));
        const long blocks = allocCounters().live;
        const std::size_t bytes = heapInUse();
        const int calls = callsWithin(faultCase, std::chrono::milliseconds(200));
        EXPECT_EQ(allocCounters().live, blocks) << calls << " calls";
        EXPECT_EQ(heapInUse(), bytes) << calls << " calls";
    }
}

}  // namespace
}  // namespace zelmtest
