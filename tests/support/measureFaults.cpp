#include "measureFaults.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

#include "faultAlloc.h"

namespace {

// Of this thread alone: other threads belong to the thread library.
struct NewCounter {
    bool counting = false;  // blocks
    bool failing = false;   // requests are numbered, and one of them fails
    bool hit = false;
    long requests = 0;
    long failAt = 0;  // 0: none
    long live = 0;    // blocks asked for while counting, less those given back
};
thread_local NewCounter newCounter;

void* allocate(std::size_t bytes, std::size_t alignment) noexcept {
    if (newCounter.failing && ++newCounter.requests == newCounter.failAt) {
        newCounter.hit = true;
        return nullptr;
    }
    const std::size_t rounded = (std::max<std::size_t>(bytes, 1) + alignment - 1) / alignment * alignment;
    void* const block = std::aligned_alloc(alignment, rounded);
    newCounter.live += block != nullptr && newCounter.counting ? 1 : 0;
    return block;
}

void release(void* block) noexcept {
    newCounter.live -= block != nullptr && newCounter.counting ? 1 : 0;
    std::free(block);
}

void* allocateOrThrow(std::size_t bytes, std::size_t alignment) {
    void* const block = allocate(bytes, alignment);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

constexpr std::size_t kUsual = alignof(std::max_align_t);

}  // namespace

void* operator new(std::size_t bytes) {
    return allocateOrThrow(bytes, kUsual);
}
void* operator new[](std::size_t bytes) {
    return allocateOrThrow(bytes, kUsual);
}
void* operator new(std::size_t bytes, std::align_val_t alignment) {
    return allocateOrThrow(bytes, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t bytes, std::align_val_t alignment) {
    return allocateOrThrow(bytes, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return allocate(bytes, kUsual);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
    return allocate(bytes, kUsual);
}
void operator delete(void* block) noexcept {
    release(block);
}
void operator delete[](void* block) noexcept {
    release(block);
}
void operator delete(void* block, std::size_t) noexcept {
    release(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    release(block);
}
void operator delete(void* block, std::align_val_t) noexcept {
    release(block);
}
void operator delete[](void* block, std::align_val_t) noexcept {
    release(block);
}
void operator delete(void* block, std::size_t, std::align_val_t) noexcept {
    release(block);
}
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept {
    release(block);
}

namespace zelmtest {
namespace {

struct Run {
    std::int32_t status = 0;
    bool hit = false;
    long requests = 0;
    long left = 0;  // blocks
    FaultOutputs outputs;
};

// One call with allocation number failAt failing: of the core, or of the library itself.
Run runWithFault(const FaultTrial& trial, bool inCore, long failAt) {
    Run run;
    const long liveInCore = allocCounters().live;
    newCounter = {.counting = true, .failAt = inCore ? 0 : failAt};
    if (trial.before) {
        trial.before();
    }
    armAllocFault(inCore ? failAt : 0);
    newCounter.failing = true;
    run.status = trial.call(run.outputs);
    newCounter.failing = false;
    disarmAllocFault();
    run.hit = newCounter.hit || allocCounters().faultHit;
    run.requests = newCounter.requests + allocCounters().requests;
    if (trial.after) {
        trial.after();
    }
    newCounter.counting = false;
    run.left = newCounter.live + allocCounters().live - liveInCore;
    return run;
}

}  // namespace

FaultOutputs::FaultOutputs() {
    std::memset(static_cast<void*>(this), 0xA5, sizeof *this);
    figures.size = sizeof figures;
    traits.size = sizeof traits;
}

bool FaultOutputs::operator==(const FaultOutputs& other) const {
    return std::memcmp(this, &other, sizeof other) == 0;
}

FaultCounts expectEveryFailureIsTold(const FaultTrial& trial) {
    FaultCounts failures;
    const Run sound = runWithFault(trial, false, 0);
    EXPECT_EQ(sound.status, trial.success);
    for (const bool inCore : {false, true}) {
        long& failed = inCore ? failures.core : failures.own;
        for (long k = 1;; k += k < trial.everyOf ? 1 : 1 + static_cast<long>(trial.growth * static_cast<double>(k))) {
            const Run run = runWithFault(trial, inCore, k);
            EXPECT_GE(run.left, 0) << (inCore ? "core " : "own ") << k;
            EXPECT_LE(run.left, run.hit ? trial.lost : 0) << (inCore ? "core " : "own ") << k;
            if (!run.hit) {
                EXPECT_EQ(run.status, trial.success);
                break;
            }
            failed += 1;
            if (trial.canDoWithout && run.status == trial.success && run.outputs == sound.outputs) {
                continue;
            }
            EXPECT_EQ(run.status, ZELM_ERR_MEMORY) << (inCore ? "core " : "own ") << k;
            EXPECT_TRUE(run.outputs == FaultOutputs()) << (inCore ? "core " : "own ") << k;
            if (testing::Test::HasFailure()) {
                return failures;
            }
        }
    }
    return failures;
}

FaultCounts expectEveryFailureIsTold(const FaultCall& call, std::int32_t success, bool canDoWithout) {
    return expectEveryFailureIsTold({.call = call, .success = success, .canDoWithout = canDoWithout});
}

void expectNoAllocation(const FaultCall& call, std::int32_t success) {
    const Run run = runWithFault({.call = call}, false, 0);
    EXPECT_EQ(run.status, success);
    EXPECT_EQ(run.requests, 0);
    EXPECT_LE(run.left, 0);  // fewer where something is closed
}

bool hasMetFailure() {
    return newCounter.hit || allocCounters().faultHit;
}

}  // namespace zelmtest
