// Figures of many distances.
#ifndef ZELM_MEASURE_FIGURES_H
#define ZELM_MEASURE_FIGURES_H

#include <cstddef>
#include <vector>

namespace zelm::measure {

struct Figures {
    std::size_t count = 0;
    double mean = 0.0;
    double rms = 0.0;
    double max = 0.0;
    double median = 0.0;
    double quantile95 = 0.0;
};

// NaN counts as infinitely far.
Figures figuresOf(std::vector<double> distances);

}  // namespace zelm::measure

#endif
