// Statuses of the core that hide want of memory.
#ifndef ZELM_MEASURE_CORE_STATUS_H
#define ZELM_MEASURE_CORE_STATUS_H

#include <cstdint>

#include "fault.h"

namespace zelm::measure {

// The status of a call of the core whose refinement tells want of memory as `hiding`, like data that do not settle.
// Asked again the data are refused again, while memory that is short is told as such, or is there by then.
template <class Call>
std::int32_t statusOfCore(std::int32_t hiding, Call call) {
    std::int32_t status = call();
    if (status == hiding) {
        status = call();
    }
    requireMemory(status);
    return status;
}

}  // namespace zelm::measure

#endif
