// Fault cases: one for every exported function, so that each is run with each of its allocations failing.
//
//   ZELM_FAULT_CASE(zelmMatInvert) {                    // runs again and again, the k-th allocation failing in run k
//       double out[4] = {7, 7, 7, 7};
//       const int32_t status = probe.call([&] { return zelmMatInvert(2, a, out); });
//       if (probe.failed()) {                            // this run met the fault
//           EXPECT_EQ(status, ZELM_ERR_MEMORY);
//           EXPECT_EQ(out[0], 7);
//       } else {
//           EXPECT_EQ(status, ZELM_OK);
//       }
//   }
//   ZELM_NO_ALLOCATION_CASE(zelmMatZero) { probe.call([&] { zelmMatZero(2, 2, a); return 0; }); }
//
// Everything outside probe.call() (set-up, clean-up) is never faulted. After each run no block may be left over.
// A test compares the names with the public headers, so that a new export without a case fails the build's tests.
#ifndef ZELM_TEST_FAULT_CASE_H
#define ZELM_TEST_FAULT_CASE_H

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "faultAlloc.h"

namespace zelmtest {

class FaultProbe {
public:
    explicit FaultProbe(long failAtRequest) : failAt(failAtRequest) {}

    template <class F>
    auto call(F function) {
        armAllocFault(failAt);
        auto result = function();
        disarmAllocFault();
        hit = hit || allocCounters().faultHit;
        requests += allocCounters().requests;
        return result;
    }
    [[nodiscard]] bool failed() const { return hit; }
    [[nodiscard]] long allocations() const { return requests; }

private:
    long failAt;
    bool hit = false;
    long requests = 0;
};

struct FaultCase {
    std::string function;
    bool allocates;
    void (*body)(FaultProbe&);
};

std::vector<FaultCase>& faultCases();

struct FaultCaseRegistrar {
    FaultCaseRegistrar(const char* function, bool allocates, void (*body)(FaultProbe&)) {
        faultCases().push_back({function, allocates, body});
    }
};

}  // namespace zelmtest

#define ZELM_FAULT_CASE_IMPL(function, allocates)                                                      \
    static void faultCaseOf_##function(zelmtest::FaultProbe& probe);                                   \
    static const zelmtest::FaultCaseRegistrar faultCaseRegistrarOf_##function(#function, allocates,    \
                                                                              faultCaseOf_##function); \
    static void faultCaseOf_##function([[maybe_unused]] zelmtest::FaultProbe& probe)

#define ZELM_FAULT_CASE(function) ZELM_FAULT_CASE_IMPL(function, true)
#define ZELM_NO_ALLOCATION_CASE(function) ZELM_FAULT_CASE_IMPL(function, false)

#endif
