// The exported function that tells the true depths of a rendered scene.
#include <cmath>
#include <limits>
#include <vector>

#include "fault.h"
#include "trueDepths.h"

using namespace zelm::measure;

std::int32_t zelmMeasureTrueDepths(ZelmMeasureRig* handle, const std::uint16_t* map, double unit, std::int64_t count,
                                   const double* pixels, double* depths, std::int32_t* seenByBoth) {
    return withRig(handle, [&](const Rig& rig) {
        require(map != nullptr && unit > 0.0 && std::isfinite(unit), "the map is NULL, or its unit not greater than 0");
        require(count >= 0 && ((pixels != nullptr && depths != nullptr) || count == 0),
                "an array is NULL, or the number of pixels negative");
        const TrueDepths truth(rig, map, unit);
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
            const Point2d p{pixels[2 * i], pixels[2 * i + 1]};
            depths[i] = truth.at(p).value_or(std::numeric_limits<double>::quiet_NaN());
            if (seenByBoth != nullptr) {
                seenByBoth[i] = truth.isSeenByBoth(p) ? 1 : 0;
            }
        }
    });
}
