#include "adjustOptions.h"

#include <algorithm>
#include <cmath>

#include "fault.h"

namespace zelm::measure {
namespace {

constexpr double kMinNoise = 1e-6;  // pixels
constexpr double kMaxNoise = 100.0;

bool isFlag(std::int32_t value) {
    return value == 0 || value == 1;
}

}  // namespace

AdjustOptions optionsOf(const ZelmMeasureAdjustOptions& o) {
    require(isFlag(o.holdSkew) && isFlag(o.squarePixels) && isFlag(o.estimateDiameters) && isFlag(o.estimateBow),
            "an option is neither 0 nor 1");
    require(o.noise == 0.0 || (o.noise >= kMinNoise && o.noise <= kMaxNoise), "the noise cannot be meant");
    AdjustOptions options;
    options.holdSkew = o.holdSkew == 1;
    options.squarePixels = o.squarePixels == 1;
    options.estimateFactors = o.estimateDiameters == 1;
    options.estimateBow = o.estimateBow == 1;
    options.knownNoise = o.noise;
    return options;
}

DotPlaces placesOf(const ZelmMeasureAdjustOptions& o) {
    require(o.placeCount >= 0, "the number of measured dots is negative");
    require(o.placeCount == 0 || (o.placeGrid != nullptr && o.places != nullptr), "an array of measured dots is NULL");
    DotPlaces places;
    for (std::size_t i = 0; i < static_cast<std::size_t>(o.placeCount); ++i) {
        const Vector3 place{o.places[3 * i], o.places[3 * i + 1], o.places[3 * i + 2]};
        require(std::isfinite(place[0]) && std::isfinite(place[1]) && std::isfinite(place[2]),
                "the position of a measured dot is not finite");
        places[{o.placeGrid[2 * i], o.placeGrid[2 * i + 1]}] = place;
    }
    return places;
}

void checkPlate(const Zelm2ViewPatternDesc& p) {
    for (const double length : {p.d0, p.d1, p.d2, p.d3, p.d4, p.d5, p.d6, p.d7}) {
        require(length > 0.0 && std::isfinite(length), "a length of the plate is not greater than 0");
    }
    require(p.polarity == 0 || p.polarity == 1, "the plate's polarity is neither 0 nor 1");
    constexpr double kMaxDots = 1e4;  // along a side; more is a mistake in a unit
    require(p.d0 / p.d4 < kMaxDots && p.d1 / p.d5 < kMaxDots, "the plate's dots are far too many");
    require(p.d6 / p.d4 < kMaxDots && p.d7 / p.d5 < kMaxDots, "the plate's markers are far too many dots away");
    if (p.d2 >= std::min(p.d4, p.d5)) {
        refuse("the plate's dots are wider than their pitch: does its description give diameters in the pitch's unit?");
    }
}

}  // namespace zelm::measure
