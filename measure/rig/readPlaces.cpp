#include "readPlaces.h"

#include <cmath>

#include "calibObject.h"
#include "fault.h"

namespace zelm::measure {

std::vector<ReadDot> readPlaces(const Zelm2ViewCalib* calib, char side, std::int32_t view) {
    require(calib != nullptr && calib->work != nullptr, "the object is NULL");
    Zelm2ViewWork* const work = openedWork(*calib);
    require(work != nullptr, "the object was loaded: it holds no dots");
    require(view >= 0 && view < work->views, "the object has no such view");
    const Zelm2ViewPtnEntry& entry = entriesOf(work, side == 'L' ? Camera::left : Camera::right)[view];
    std::vector<ReadDot> dots(static_cast<std::size_t>(entry.count));
    for (std::size_t i = 0; i < dots.size(); ++i) {
        const Point2d plane = entry.plane[i];
        dots[i] = {static_cast<std::int32_t>(std::lround(plane.x / work->pattern.d4)),
                   static_cast<std::int32_t>(std::lround(plane.y / work->pattern.d5)), plane, entry.image[i]};
    }
    return dots;
}

}  // namespace zelm::measure
