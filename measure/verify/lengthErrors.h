// Errors of lengths, and where in the measured volume they are.
#ifndef ZELM_MEASURE_LENGTH_ERRORS_H
#define ZELM_MEASURE_LENGTH_ERRORS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "rig.h"

namespace zelm::measure {

constexpr std::size_t kRegions = 9;
constexpr std::size_t kSlabs = 3;

struct KnownLength {
    Vector3 from{};
    Vector3 to{};
    double nominal = 0.0;
};

struct MeasuredLength {
    double measured = 0.0;
    Vector3 middle{};
    double depth = 0.0;
    std::size_t region = 0;
    std::size_t slab = 0;
};

struct LengthErrors {
    std::vector<MeasuredLength> lengths;
    ZelmMeasureLengthSummary summary{};
};

// Of at least one length.
LengthErrors lengthErrors(const Rig& rig, const std::vector<KnownLength>& lengths);

}  // namespace zelm::measure

#endif
