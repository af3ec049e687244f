#include "colourScale.h"

#include <algorithm>
#include <cmath>

namespace zelm::tool {

ColourRange colourRange(std::vector<double> values) {
    constexpr double kOutside = 0.02;  // part of the values at each end that may lie beyond
    constexpr double kMargin = 0.05;   // of the span between
    std::erase_if(values, [](double value) { return !std::isfinite(value); });
    if (values.empty()) {
        return {};
    }
    std::sort(values.begin(), values.end());
    const auto skipped = static_cast<std::size_t>(kOutside * static_cast<double>(values.size()));
    const double low = values[skipped];
    const double high = values[values.size() - 1 - skipped];
    const double margin = kMargin * (high - low);
    ColourRange range{std::max(values.front(), low - margin), std::min(values.back(), high + margin)};
    range.isCutBelow = values.front() < range.from;
    range.isCutAbove = values.back() > range.to;
    const double least = 1e-6 * std::max({std::fabs(range.from), std::fabs(range.to), 1e-6});
    if (range.to - range.from < least) {
        range.from -= least;
        range.to += least;
    }
    return range;
}

Colour scaleColour(double part) {
    const double place = std::clamp(part, 0.0, 1.0) * (kScaleColours.size() - 1);
    const auto i = std::min(static_cast<std::size_t>(place), kScaleColours.size() - 2);
    const double f = place - static_cast<double>(i);
    const Colour& a = kScaleColours[i];
    const Colour& b = kScaleColours[i + 1];
    return {a.red + f * (b.red - a.red), a.green + f * (b.green - a.green), a.blue + f * (b.blue - a.blue)};
}

}  // namespace zelm::tool
