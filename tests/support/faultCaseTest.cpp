// Runs every registered fault case with its k-th allocation failing, for every k, and checks that every function of the
// public headers has a case.
#include <algorithm>
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

}  // namespace
}  // namespace zelmtest
