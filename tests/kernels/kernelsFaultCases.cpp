// Allocation faults of the image kernels: they allocate nothing.
#include "faultCase.h"
#include "zelm/kernels.h"

namespace {

const double kIdentity[9] = {1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0};
const double kCamera[22] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 100.0, 100.0};
const float kMap[4] = {0.0F, 0.5F, 0.0F, 0.5F};
const std::uint8_t kPixels[4 * 4 * 4] = {1, 2, 3, 4};

}  // namespace

ZELM_NO_ALLOCATION_CASE(perspectiveTransAndDistortImage_8uC1) {
    std::uint8_t out[16];
    probe.call([&] {
        perspectiveTransAndDistortImage_8uC1(kIdentity, kCamera, kPixels, 4, 4, 4, out, 4, 4, 4);
        return 0;
    });
}

ZELM_NO_ALLOCATION_CASE(perspectiveTransAndDistortImage_8uC4) {
    std::uint8_t out[64];
    probe.call([&] {
        perspectiveTransAndDistortImage_8uC4(kIdentity, kCamera, kPixels, 16, 4, 4, out, 16, 4, 4);
        return 0;
    });
}

ZELM_NO_ALLOCATION_CASE(remapImage_8uC1) {
    std::uint8_t out[4];
    probe.call([&] {
        remapImage_8uC1(kPixels, 4, 4, 4, out, 2, 2, 2, kMap, 8, kMap, 8, 0, 0, 1, 1);
        return 0;
    });
}

ZELM_NO_ALLOCATION_CASE(remapImage_8uC4) {
    std::uint8_t out[16];
    probe.call([&] {
        remapImage_8uC4(kPixels, 16, 4, 4, out, 8, 2, 2, kMap, 8, kMap, 8, 0, 0, 1, 1);
        return 0;
    });
}
