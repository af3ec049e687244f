// The tests' allocator: counts what the library takes and can make the k-th allocation fail.
#ifndef ZELM_TEST_FAULT_ALLOC_H
#define ZELM_TEST_FAULT_ALLOC_H

#include <cstddef>

namespace zelmtest {

struct AllocCounters {
    long requests = 0;      // allocations and growths asked for since arm()
    long live = 0;          // blocks handed out and not returned, over the whole run
    std::size_t bytes = 0;  // bytes asked for since arm()
    bool faultHit = false;  // the armed fault was reached
};

const AllocCounters& allocCounters();

// Starts counting anew; request number failAt (from 1) fails, 0 lets all pass. Only that one request fails.
void armAllocFault(long failAt);
void disarmAllocFault();

}  // namespace zelmtest

#endif
