#include "patternOutliers.h"

#include <algorithm>

#include "zelm/math.h"

namespace zelm {
namespace {

constexpr std::size_t kMinDots = 2;         // a mean and a standard deviation need as many
constexpr double kEccentricityLimit = 3.0;  // standard deviations above the mean
constexpr double kAreaLimit = 2.8;          // standard deviations above the mean
constexpr double kMinDeviation = 0.01;      // of either property; dots that are all alike have no outliers

// The value that lies so many deviations above the mean of a dot's property.
std::int32_t upperLimit(const DotList& dots, double PatternDot::*property, double deviations,
                        WorkBuffer<double>* values, double* limit) {
    const auto list = dots.span();
    std::transform(list.begin(), list.end(), values->data(), [property](const auto& dot) { return dot.*property; });
    double mean = 0.0;
    double variance = 0.0;
    double deviation = 0.0;
    const auto n = static_cast<std::int32_t>(list.size());
    if (const auto s = zelmMathStat(n, values->data(), &mean, &variance, &deviation); s < 0) {
        return s;
    }
    *limit = mean + deviations * std::max(deviation, kMinDeviation);
    return ZELM_OK;
}

}  // namespace

std::int32_t rejectOutlierDots(DotList* dots) {
    if (dots->size() < kMinDots) {
        return ZELM_ERR_PATTERN;
    }
    WorkBuffer<double> values(dots->size());
    if (!values.ok()) {
        return ZELM_ERR_MEMORY;
    }
    PatternDot limit{};
    for (const auto& [property, deviations] :
         {std::pair{&PatternDot::eccentricity, kEccentricityLimit}, std::pair{&PatternDot::blobArea, kAreaLimit},
          std::pair{&PatternDot::ellipseArea, kAreaLimit}}) {
        if (const auto s = upperLimit(*dots, property, deviations, &values, &(limit.*property)); s < 0) {
            return s;
        }
    }
    // A marker's blob is as large as its ellipse; only an ellipse that outgrows its blob is wrong.
    dots->keepIf([&limit](const PatternDot& dot) {
        return dot.eccentricity < limit.eccentricity &&
               (dot.blobArea > limit.blobArea || dot.ellipseArea < limit.ellipseArea);
    });
    return ZELM_OK;
}

}  // namespace zelm
