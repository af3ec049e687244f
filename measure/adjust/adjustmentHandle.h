// What the handles of an adjustment point to.
#ifndef ZELM_MEASURE_ADJUSTMENT_HANDLE_H
#define ZELM_MEASURE_ADJUSTMENT_HANDLE_H

#include <cstdint>
#include <memory>
#include <new>

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

// Makes a handle of what `make` gives, or one that holds the words of its refusal.
template <class Make>
std::int32_t openAdjustment(ZelmMeasureAdjustment** adjustment, Make make) noexcept {
    auto* const opened = new (std::nothrow) ZelmMeasureAdjustment;
    if (opened == nullptr) {
        return ZELM_ERR_MEMORY;
    }
    const std::int32_t status = guarded(&opened->error, [&] { opened->adjustment = make(); });
    if (status >= 0 || status == ZELM_MEASURE_ERR_DATA) {
        *adjustment = opened;
    } else {
        delete opened;
    }
    return status;
}

}  // namespace zelm::measure

#endif
