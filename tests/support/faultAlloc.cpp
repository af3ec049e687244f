#include "faultAlloc.h"

#include <cstdlib>

#include "alloc.h"

namespace zelmtest {
namespace {

AllocCounters counters;
bool armed = false;
long failAtRequest = 0;

bool mustFail(std::size_t bytes) {
    if (!armed) {
        return false;
    }
    counters.requests += 1;
    counters.bytes += bytes;
    if (counters.requests == failAtRequest) {
        counters.faultHit = true;
        return true;
    }
    return false;
}

}  // namespace

const AllocCounters& allocCounters() {
    return counters;
}

void armAllocFault(long failAt) {
    counters.requests = 0;
    counters.bytes = 0;
    counters.faultHit = false;
    failAtRequest = failAt;
    armed = true;
}

void disarmAllocFault() {
    armed = false;
}

}  // namespace zelmtest

namespace zelm {

void* allocBytes(std::size_t bytes) {
    if (zelmtest::mustFail(bytes)) {
        return nullptr;
    }
    void* const block = std::malloc(bytes);
    zelmtest::counters.live += block != nullptr ? 1 : 0;
    return block;
}

void* reallocBytes(void* block, std::size_t bytes) {
    if (zelmtest::mustFail(bytes)) {
        return nullptr;
    }
    void* const grown = std::realloc(block, bytes);
    zelmtest::counters.live += block == nullptr && grown != nullptr ? 1 : 0;
    return grown;
}

void freeBytes(void* block) {
    zelmtest::counters.live -= block != nullptr ? 1 : 0;
    std::free(block);
}

}  // namespace zelm
