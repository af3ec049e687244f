#include "figures.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zelm::measure {

Figures figuresOf(std::vector<double> distances) {
    Figures f;
    f.count = distances.size();
    if (distances.empty()) {
        return f;
    }
    for (double& d : distances) {
        d = std::isnan(d) ? std::numeric_limits<double>::infinity() : d;
        f.mean += d;
        f.rms += d * d;
        f.max = std::max(f.max, d);
    }
    f.mean /= static_cast<double>(f.count);
    f.rms = std::sqrt(f.rms / static_cast<double>(f.count));
    std::sort(distances.begin(), distances.end());
    const auto quantile = [&](double part) {
        return distances[std::min(static_cast<std::size_t>(part * static_cast<double>(f.count)), f.count - 1)];
    };
    f.median = quantile(0.5);
    f.quantile95 = quantile(0.95);
    return f;
}

}  // namespace zelm::measure
