// Dots with their places on the plate, as the core has read them for a calibration.
#ifndef ZELM_MEASURE_READ_PLACES_H
#define ZELM_MEASURE_READ_PLACES_H

#include <zelmLib.h>

#include <cstdint>
#include <vector>

namespace zelm::measure {

struct ReadDot {
    std::int32_t column = 0;  // from the corner marker
    std::int32_t row = 0;
    Point2d plane{};  // plate units
    Point2d pixel{};
};

// Throws Fault for an object that was loaded, which has no dots, and for a view that it does not have.
std::vector<ReadDot> readPlaces(const Zelm2ViewCalib* calib, char side, std::int32_t view);

}  // namespace zelm::measure

#endif
