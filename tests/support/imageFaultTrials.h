// Random images of random plates, good ones and ones with a known fault, for counting how often the fault is named.
#ifndef ZELM_TEST_IMAGE_FAULT_TRIALS_H
#define ZELM_TEST_IMAGE_FAULT_TRIALS_H

#include <zelmMeasure.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "trialStations.h"

namespace zelm::accuracy {

// A fault that images can be made with.
struct TrialFault {
    const char* name;             // for people
    ZelmMeasureImageCause cause;  // what has to be named
    TrialImage (*make)(render::RandomSource&);
};

const std::vector<TrialFault>& trialFaults();

// A whole, sharp, evenly lit plate, wholly in view.
TrialImage goodImage(std::uint64_t seed);

// An image with that fault, which the reader refuses; nothing where it reads it all the same.
std::optional<TrialImage> faultyImage(const TrialFault& fault, std::uint64_t seed);

ZelmMeasureImageDiagnosis diagnosisOf(const TrialImage& trial);

// Whether cause and figures are those of the fault: a smear's direction to 15 degrees, no side but those over which
// the plate hangs.
bool isNamed(const TrialFault& fault, const TrialImage& trial, const ZelmMeasureImageDiagnosis& diagnosis);

// Degrees between the smear of an image and the one that was found.
double directionError(const TrialImage& trial, const ZelmMeasureImageDiagnosis& diagnosis);

}  // namespace zelm::accuracy

#endif
