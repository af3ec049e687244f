// How handles of rigs are made.
#ifndef ZELM_MEASURE_OPEN_RIG_H
#define ZELM_MEASURE_OPEN_RIG_H

#include <new>

#include "rig.h"

namespace zelm::measure {

// Opens a handle with what make() gives; keeps it, with the reason, when the data do not allow it.
template <class Make>
std::int32_t openRig(ZelmMeasureRig** handle, Make make) {
    auto* const opened = new (std::nothrow) ZelmMeasureRig;
    if (opened == nullptr) {
        return ZELM_ERR_MEMORY;
    }
    const std::int32_t status = guarded(&opened->error, [&] {
        opened->rig = make();
        opened->isOpen = true;
    });
    if (status >= 0 || status == ZELM_MEASURE_ERR_DATA) {
        *handle = opened;
    } else {
        delete opened;
    }
    return status;
}

}  // namespace zelm::measure

#endif
