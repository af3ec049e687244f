// How well lengths will be measured with a calibration, as its covariance tells.
#ifndef ZELM_TOOL_LENGTH_FORECAST_H
#define ZELM_TOOL_LENGTH_FORECAST_H

#include <cstddef>
#include <optional>

#include "rigFigures.h"
#include "rigFile.h"

namespace zelm::tool {

// Of lengths between dots in the space where the plates were shown. U95 is half of the interval that holds 95 % of a
// length's errors, plate units.
struct LengthForecast {
    std::size_t lengths = 0;
    double shortest = 0.0;  // plate units
    double longest = 0.0;
    double rms = 0.0;    // root mean square of the lengths' U95
    double worst = 0.0;  // largest U95
};

// Nothing where the rig's covariance is not known, or no view shows dots to both cameras.
std::optional<LengthForecast> lengthForecast(const LoadedRig& rig, const RigFigures& figures);

}  // namespace zelm::tool

#endif
