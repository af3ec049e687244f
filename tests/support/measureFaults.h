// Calls of the measuring library with one allocation failing, of the library's own or of the core's.
#ifndef ZELM_TEST_MEASURE_FAULTS_H
#define ZELM_TEST_MEASURE_FAULTS_H

#include <zelmMeasure.h>

#include <cstdint>
#include <cstring>
#include <functional>

#include "measureCases.h"

namespace zelmtest {

// Outputs of a call, compared as bytes.
struct FaultOutputs {
    double numbers[512];
    std::int64_t longs[4];
    std::int32_t integers[128];
    ZelmMeasureFigures figures;
    ZelmMeasurePlateTraits traits;

    FaultOutputs();
    bool operator==(const FaultOutputs& other) const;
};

// A record of the caller's whose every byte is known.
template <class Record>
struct WatchedRecord {
    Record record;

    WatchedRecord() {
        std::memset(static_cast<void*>(&record), 0xA5, sizeof record);
        record.size = static_cast<std::int32_t>(sizeof record);
    }
    [[nodiscard]] bool isUntouched() const {
        const WatchedRecord fresh;
        return std::memcmp(&record, &fresh.record, sizeof record) == 0;
    }
};

using FaultCall = std::function<std::int32_t(FaultOutputs&)>;

// Ceres is not written for memory that fails: up to so many blocks of its own structures stay behind.
constexpr long kLostByCeres = 1000;

// What surrounds a call, and how many of its allocations are made to fail.
struct FaultTrial {
    FaultCall call{};
    std::int32_t success = ZELM_OK;
    // A call may do without the memory, as sorting can, which then takes longer: with the outputs of a sound one.
    bool canDoWithout = false;
    // Before and after each call, where nothing fails: what is made before is given back after.
    std::function<void()> before{};
    std::function<void()> after{};
    // The first so many allocations fail one by one, later ones at a distance that grows with their number: long
    // searches ask for memory tens of thousands of times, at the same few places.
    long everyOf = 200;
    double growth = 0.1;
    // Blocks that a library below loses at most where memory fails inside it.
    long lost = 0;
};

// The numbers of allocations that were made to fail.
struct FaultCounts {
    long own = 0;
    long core = 0;
};

// Calls once, so that what prepares itself once has done so; then makes one allocation after the other fail and expects
// each time ZELM_ERR_MEMORY, outputs as they were and no block left over.
FaultCounts expectEveryFailureIsTold(const FaultTrial& trial);
FaultCounts expectEveryFailureIsTold(const FaultCall& call, std::int32_t success = ZELM_OK, bool canDoWithout = false);
// A call that asks for no memory at all.
void expectNoAllocation(const FaultCall& call, std::int32_t success = ZELM_OK);

// Whether the present call has met a failure.
bool hasMetFailure();

}  // namespace zelmtest

#endif
