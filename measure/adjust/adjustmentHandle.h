// What the handles of an adjustment point to.
#ifndef ZELM_MEASURE_ADJUSTMENT_HANDLE_H
#define ZELM_MEASURE_ADJUSTMENT_HANDLE_H

#include <cstdint>
#include <memory>

#include "adjustment.h"
#include "fault.h"

struct ZelmMeasureAdjustment {
    std::unique_ptr<zelm::measure::Adjustment> adjustment;  // none: refused
    zelm::measure::ErrorText error;
};

namespace zelm::measure {

// Does the work of a function with an adjustment.
template <class Work>
std::int32_t withAdjustment(ZelmMeasureAdjustment* handle, Work work) noexcept {
    if (handle == nullptr || !handle->adjustment) {
        return ZELM_ERR_PARAM;
    }
    return guarded(&handle->error, [&] { work(*handle->adjustment); });
}

}  // namespace zelm::measure

#endif
