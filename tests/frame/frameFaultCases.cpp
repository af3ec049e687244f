// The frame's one export allocates nothing.
#include <array>

#include "faultCase.h"
#include "zelm/image.h"

ZELM_NO_ALLOCATION_CASE(zelmConvertColorToGray_vImageARGB8888toPlanar8) {
    std::array<uint8_t, 4> colour = {255, 1, 1, 1};
    uint8_t gray = 0;
    const vImage_Buffer src = {colour.data(), 1, 1, 4};
    const vImage_Buffer dst = {&gray, 1, 1, 1};
    EXPECT_EQ(probe.call([&] { return zelmConvertColorToGray_vImageARGB8888toPlanar8(&src, &dst); }), ZELM_OK);
    EXPECT_EQ(gray, 1);
}
