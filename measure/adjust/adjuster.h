// The bundle adjustment of a pair: both cameras, their relative pose and all plates from all dots at once.
#ifndef ZELM_MEASURE_ADJUSTER_H
#define ZELM_MEASURE_ADJUSTER_H

#include <array>
#include <cstddef>
#include <vector>

#include "adjustProblem.h"

namespace zelm::measure {

struct AdjustSummary {
    std::array<double, kSides> rmsBefore{};  // of a coordinate of the dots that take part in the end, pixels
    std::array<double, kSides> rms{};        //
    std::array<double, kSides> noise{};      // standard deviation of a coordinate beyond the dots' own, pixels
    std::size_t observations = 0;            // dots that take part
    std::size_t outliers = 0;
    std::size_t viewsLeftOut = 0;
    std::size_t parameters = 0;
    double squares = 0.0;    // sum of the squared residuals, pixels^2
    double freedom = 0.0;    // coordinates less parameters
    double chiSquare = 0.0;  // sum of the squared weighted residuals
    int iterations = 0;

    // Standard deviation of a coordinate, pixels: what the residuals tell, both cameras together.
    double deviation() const;
};

// Moves the state to the least weighted squares; tells of every dot whether it takes part and what it lacks. Throws
// Fault where the observations cannot determine the state.
AdjustSummary adjust(AdjustState& state, std::vector<AdjustView>& views, const AdjustOptions& options);

// Whether the dots of a view that take part are enough, and not all on one line, so that they tell where the plate is.
bool placesPlate(const AdjustView& view);

// The covariance that a dot takes part with: its own and the noise of its camera.
std::array<double, 3> covarianceOf(const DotObservation& dot, double noise);

}  // namespace zelm::measure

#endif
